#include "check.h"

#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace bench {

namespace {

using Picture = std::vector<uint32_t>;

Picture draw(const Contender &contender, long calls)
{
    fillFrame();
    if (contender.prepare)
        contender.prepare();
    contender.run(calls);
    return Picture(frame().pixels, frame().pixels + frameSize * frameSize);
}

void write(const Picture &picture, const std::filesystem::path &path)
{
    std::ofstream out(path, std::ios::binary);
    out << "P6 " << frameSize << ' ' << frameSize << " 255\n";
    for (uint32_t pixel : picture)
        out.put(char(pixel >> 16)).put(char(pixel >> 8)).put(char(pixel));
}

int differenceOf(uint32_t a, uint32_t b)
{
    int sum = 0;
    for (int shift : {0, 8, 16})
        sum += std::abs(int(a >> shift & 255) - int(b >> shift & 255));
    return sum;
}

// Of a pixel from the most alike around its place in the other picture, as the mean of the channels: coverage rules differ by a
// pixel.
double nearestDifference(const Picture &picture, const Picture &other, int x, int y)
{
    int least = 765;
    for (int v = std::max(y - 1, 0); v <= std::min(y + 1, frameSize - 1); ++v)
        for (int u = std::max(x - 1, 0); u <= std::min(x + 1, frameSize - 1); ++u)
            least = std::min(least, differenceOf(picture[size_t(y * frameSize + x)], other[size_t(v * frameSize + u)]));
    return least / 3.0;
}

struct Comparison {
    size_t drawn = 0, drawnByOurs = 0, unequal = 0;
    double difference = 0; // mean over what either has drawn
};

Comparison compare(const Picture &picture, const Picture &ours, const Picture &before)
{
    Comparison result;
    size_t either = 0;
    for (size_t i = 0; i < picture.size(); ++i) {
        const bool drawn = picture[i] != before[i], drawnByOurs = ours[i] != before[i];
        result.drawn += drawn;
        result.drawnByOurs += drawnByOurs;
        result.unequal += picture[i] != ours[i];
        if (drawn || drawnByOurs)
            ++either, result.difference += nearestDifference(picture, ours, int(i) % frameSize, int(i) / frameSize);
    }
    result.difference = either ? result.difference / double(either) : 0;
    return result;
}

} // namespace

int checkContenders(const std::vector<Job> &jobs, const std::filesystem::path &pictures)
{
    int wrong = 0;
    if (!pictures.empty())
        std::filesystem::create_directories(pictures);
    std::printf("%-40s %-16s %10s %10s\n", "job", "contender", "drawn", "difference");
    for (const Job &job : jobs) {
        for (const Contender &contender : job.more &&job.frames > 0 ? contendersOf(job) : Contenders()) {
            contender.prepare();
            const std::string words = contender.verify();
            std::printf("%-40s %-16s %s\n", job.name.c_str(), contender.name.c_str(),
                        words.empty() ? "as recorded" : ("WRONG: " + words).c_str());
            wrong += !words.empty();
        }
        if (job.kernel || job.work.primitives.empty())
            continue; // nothing in the frame buffer
        const Contenders contenders = contendersOf(job);
        fillFrame();
        const Picture before(frame().pixels, frame().pixels + frameSize * frameSize);
        Picture ours;
        for (const Contender &contender : contenders) {
            if (contender.role == Role::memcpy || contender.role == Role::yardstick ||
                (job.ownOnly && contender.role != Role::ours))
                continue;
            const Picture picture = draw(contender, std::max(1L, long(job.work.primitives.size())));
            if (ours.empty())
                ours = picture;
            if (!pictures.empty()) {
                std::string name = job.name + "-" + contender.name;
                std::replace(name.begin(), name.end(), '/', '-');
                write(picture, pictures / (name + ".ppm"));
            }
            const Comparison found = compare(picture, ours, before);
            const double share = double(found.drawn) / double(std::max(found.drawnByOurs, size_t(1)));
            const bool exact = contender.role < Role::yardstick;
            const bool bad = (found.drawn == 0) != job.refused ||
                             (exact ? found.unequal > 0 : found.difference > contender.tolerance || share < 0.8 || share > 1.2);
            wrong += bad;
            if (!exact || bad)
                std::printf("%-40s %-16s %9.0f%% %10.2f%s\n", job.name.c_str(), contender.name.c_str(), share * 100,
                            found.difference, bad ? "  WRONG" : "");
        }
    }
    return wrong;
}

} // namespace bench
