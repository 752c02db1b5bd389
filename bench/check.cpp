#include "check.h"

#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace bench {

namespace {

using Picture = std::vector<uint32_t>;

Picture draw(const Contender& contender, long calls)
{
    fillFrame();
    if (contender.prepare)
        contender.prepare();
    contender.run(calls);
    return Picture(frame().pixels, frame().pixels + frameSize * frameSize);
}

void write(const Picture& picture, const std::filesystem::path& path)
{
    std::ofstream out(path, std::ios::binary);
    out << "P6 " << frameSize << ' ' << frameSize << " 255\n";
    for (uint32_t pixel : picture)
        out.put(char(pixel >> 16)).put(char(pixel >> 8)).put(char(pixel));
}

double differenceOf(uint32_t a, uint32_t b)
{
    int sum = 0;
    for (int shift : {0, 8, 16})
        sum += std::abs(int(a >> shift & 255) - int(b >> shift & 255));
    return sum / 3.0;
}

} // namespace

Contenders contendersOf(const Job& job)
{
    Contenders contenders;
    addMemcpy(job, contenders);
    addOurs(job, contenders);
    if (job.work.kind != Kind::other)
        for (const auto& [name, make] : peers())
            make(job.work, contenders);
    if (job.more)
        job.more(contenders);
    return contenders;
}

int checkContenders(const std::vector<Job>& jobs, const std::filesystem::path& pictures)
{
    int wrong = 0;
    if (!pictures.empty())
        std::filesystem::create_directories(pictures);
    std::printf("%-32s %-16s %10s %10s\n", "job", "contender", "drawn", "difference");
    for (const Job& job : jobs) {
        const Contenders contenders = contendersOf(job);
        fillFrame();
        const Picture before(frame().pixels, frame().pixels + frameSize * frameSize);
        Picture ours;
        for (const Contender& contender : contenders) {
            if (contender.role == Role::memcpy || contender.role == Role::yardstick)
                continue;
            const Picture picture = draw(contender, std::max(1L, long(job.work.primitives.size())));
            if (ours.empty())
                ours = picture;
            if (!pictures.empty()) {
                std::string name = job.name + "-" + contender.name;
                std::replace(name.begin(), name.end(), '/', '-');
                write(picture, pictures / (name + ".ppm"));
            }
            // Where either has drawn. Edges of shapes may differ by a pixel, which weighs most in the smallest ones.
            size_t drawn = 0, either = 0, unequal = 0;
            double difference = 0;
            for (size_t i = 0; i < picture.size(); ++i) {
                drawn += picture[i] != before[i];
                unequal += picture[i] != ours[i];
                if (picture[i] != before[i] || ours[i] != before[i])
                    ++either, difference += differenceOf(picture[i], ours[i]);
            }
            difference = either ? difference / double(either) : 255;
            const bool exact = contender.role != Role::peer;
            const bool bad = drawn == 0 || (exact ? unequal > 0 : difference > 10);
            wrong += bad;
            if (!exact || bad)
                std::printf("%-32s %-16s %10zu %10.2f%s\n", job.name.c_str(), contender.name.c_str(), drawn, difference,
                            bad ? "  WRONG" : "");
        }
    }
    return wrong;
}

} // namespace bench
