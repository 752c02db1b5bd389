// The commands time and diff.
#include "command.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace replay {

using namespace capture;
using Step = Player::Step;

namespace {

struct Timed {
    uint64_t draw, frame, nanoseconds, recorded, pixels;
    uint32_t kernel; // index of its name
};

struct Sum {
    uint64_t draws = 0, nanoseconds = 0, recorded = 0, pixels = 0;
};

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : text)
        result += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    return result;
}

unsigned hueOf(uint32_t kernel) { return kernel * 47 % 360; }

// `order`: kernels by their time, `slowest`: draws.
void writePage(const std::string &path, const std::string &title, const std::vector<Timed> &draws,
               const std::vector<std::string> &names, const std::vector<Sum> &sums, const std::vector<uint32_t> &order,
               const std::vector<Timed> &slowest)
{
    constexpr size_t mostFrames = 40;
    constexpr double width = 1200;
    std::map<uint64_t, uint64_t> frames; // with their time
    for (const Timed &draw : draws)
        frames[draw.frame] += draw.nanoseconds;
    std::vector<std::pair<uint64_t, uint64_t>> longFrames;
    for (const auto &[frame, time] : frames)
        longFrames.emplace_back(time, frame);
    std::sort(longFrames.rbegin(), longFrames.rend());
    if (longFrames.size() > mostFrames)
        longFrames.resize(mostFrames);
    std::sort(longFrames.begin(), longFrames.end(), [](const auto &a, const auto &b) { return a.second < b.second; });
    uint64_t longest = 1;
    for (const auto &[time, frame] : longFrames)
        longest = std::max(longest, time);
    std::FILE *const page = std::fopen(path.c_str(), "w");
    if (!page)
        fail(statusFile, "cannot write " + path);
    std::fprintf(page,
                 "<!doctype html>\n<html lang=\"en\"><meta charset=\"utf-8\"><title>%s</title>\n<style>body{font:14px "
                 "sans-serif;margin:2em}rect{stroke:#fff;stroke-width:.3}table{border-collapse:collapse}td,th{padding:1px 1.2em "
                 "1px 0;text-align:right}td:last-child,th:last-child{text-align:left}i{display:inline-block;width:.8em;"
                 "height:.8em;margin-right:.5em}</style>\n<h1>%s</h1>\n<p>%s in %s. Each line is a frame, as long as "
                 "its draws took together, from left to right in their order; the longest is %.3f ms. Point at a draw for its "
                 "name.%s</p>\n",
                 escaped(title).c_str(), escaped(title).c_str(), counted(draws.size(), "draw").c_str(),
                 counted(frames.size(), "frame").c_str(), double(longest) / 1e6,
                 frames.size() > mostFrames ? (" The " + std::to_string(mostFrames) + " slowest frames are shown.").c_str() : "");
    for (const auto &[time, frame] : longFrames) {
        std::fprintf(page, "<div>frame %llu, %.3f ms</div><svg width=\"%.0f\" height=\"22\">\n",
                     static_cast<unsigned long long>(frame), double(time) / 1e6, width);
        double x = 0;
        for (const Timed &draw : draws) {
            if (draw.frame != frame)
                continue;
            const double size = width * double(draw.nanoseconds) / double(longest);
            std::fprintf(page,
                         "<rect x=\"%.2f\" width=\"%.2f\" height=\"20\" fill=\"hsl(%u,60%%,55%%)\"><title>draw %llu, %s: %s "
                         "ns, %s pixels</title></rect>\n",
                         x, size, hueOf(draw.kernel), static_cast<unsigned long long>(draw.draw),
                         escaped(names[draw.kernel]).c_str(), grouped(draw.nanoseconds).c_str(), grouped(draw.pixels).c_str());
            x += size;
        }
        std::fputs("</svg>\n", page);
    }
    const auto cell = [&](const std::string &text) { std::fprintf(page, "<td>%s</td>", text.c_str()); };
    const auto nameCell = [&](uint32_t kernel) {
        std::fprintf(page, "<td><i style=\"background:hsl(%u,60%%,55%%)\"></i>%s</td></tr>\n", hueOf(kernel),
                     escaped(names[kernel]).c_str());
    };
    const auto decimal = [](double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%.3f", value);
        return std::string(text);
    };
    std::fputs("<h2>Kernels and functions</h2>\n<table><tr><th>draws</th><th>ms</th><th>recorded ms</th><th>ns a "
               "draw</th><th>ns a pixel</th><th></th></tr>\n",
               page);
    for (const uint32_t kernel : order) {
        const Sum &sum = sums[kernel];
        std::fputs("<tr>", page);
        cell(grouped(sum.draws)), cell(decimal(double(sum.nanoseconds) / 1e6)), cell(decimal(double(sum.recorded) / 1e6));
        cell(grouped(sum.nanoseconds / sum.draws)), cell(sum.pixels ? decimal(double(sum.nanoseconds) / double(sum.pixels)) : "");
        nameCell(kernel);
    }
    std::fputs("</table>\n<h2>The slowest draws</h2>\n<table><tr><th>draw</th><th>frame</th><th>ns</th><th>pixels</th><th></th>"
               "</tr>\n",
               page);
    for (const Timed &draw : slowest) {
        std::fputs("<tr>", page);
        cell(grouped(draw.draw)), cell(grouped(draw.frame)), cell(grouped(draw.nanoseconds)), cell(grouped(draw.pixels));
        nameCell(draw.kernel);
    }
    std::fputs("</table>\n</html>\n", page);
    const bool bad = std::ferror(page) != 0;
    if (std::fclose(page) != 0 || bad)
        fail(statusFile, "cannot write all of " + path);
}

} // namespace

int runTime(const Arguments &arguments)
{
    if (arguments.has("threads")) {
        if (arguments.has("html"))
            fail(statusUsage, "--html goes not with --threads: on several threads draws have no time of their own");
        return runThreads(arguments, true);
    }
    const Opened opened(arguments.words[0]);
    if (arguments.has("html"))
        keep(opened.path, arguments.text("html", ""));
    const Drawer drawer(arguments);
    const uint64_t repeats = numberOf(arguments.text("repeat", "5"), "--repeat", 1, 100000);
    Player &player = *opened.player;
    Progress progress("time", *opened.reader);
    std::vector<Timed> draws;
    std::vector<std::string> names;
    std::map<std::string, uint32_t> indices;
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step == Step::frame || !player.prepare(arguments.has("unchecked")))
            continue;
        const Bytes before = player.save();
        uint64_t least = UINT64_MAX;
        for (uint64_t k = 0; k < repeats; ++k) {
            player.restore(before);
            least = std::min(least, player.make(drawer.library()));
        }
        const layer::Pixels p = player.footprint().pixels;
        const DrawEvent &draw = player.draw();
        const auto [index, isNew] = indices.emplace(draw.name, uint32_t(names.size()));
        if (isNew)
            names.push_back(draw.name);
        draws.push_back({draw.number, draw.frame, least, draw.nanoseconds,
                         p.empty() ? 0 : uint64_t(int64_t{p.right} - p.left) * uint64_t(int64_t{p.bottom} - p.top),
                         index->second});
        player.finish();
    }
    std::vector<Sum> sums(names.size());
    Sum all;
    for (const Timed &draw : draws)
        for (Sum *const sum : {&sums[draw.kernel], &all})
            ++sum->draws, sum->nanoseconds += draw.nanoseconds, sum->recorded += draw.recorded, sum->pixels += draw.pixels;
    std::vector<uint32_t> order; // of kernels, the longest first
    for (uint32_t kernel = 0; kernel < names.size(); ++kernel)
        order.push_back(kernel);
    std::stable_sort(order.begin(), order.end(),
                     [&](uint32_t a, uint32_t b) { return sums[a].nanoseconds > sums[b].nanoseconds; });
    std::printf("%s: %s, %.3f ms in kernels, the shortest of %s each; %.3f ms where it was recorded\n\n", opened.path.c_str(),
                counted(all.draws, "draw").c_str(), double(all.nanoseconds) / 1e6, counted(repeats, "run").c_str(),
                double(all.recorded) / 1e6);
    std::printf("%8s %12s %12s %10s %9s  kernel or function\n", "draws", "ms", "recorded ms", "ns/draw", "ns/pixel");
    for (const uint32_t kernel : order) {
        const Sum &sum = sums[kernel];
        std::printf("%8s %12.3f %12.3f %10.0f %9.3f  %s\n", grouped(sum.draws).c_str(), double(sum.nanoseconds) / 1e6,
                    double(sum.recorded) / 1e6, double(sum.nanoseconds) / double(sum.draws),
                    sum.pixels ? double(sum.nanoseconds) / double(sum.pixels) : 0.0, names[kernel].c_str());
    }
    std::vector<Timed> slowest = draws;
    std::stable_sort(slowest.begin(), slowest.end(),
                     [](const Timed &a, const Timed &b) { return a.nanoseconds > b.nanoseconds; });
    if (slowest.size() > 20)
        slowest.resize(20);
    std::printf("\nthe slowest draws\n%8s %8s %12s %10s  kernel or function\n", "draw", "frame", "ns", "pixels");
    for (const Timed &draw : slowest)
        std::printf("%8s %8s %12s %10s  %s\n", grouped(draw.draw).c_str(), grouped(draw.frame).c_str(),
                    grouped(draw.nanoseconds).c_str(), grouped(draw.pixels).c_str(), names[draw.kernel].c_str());
    if (arguments.has("html"))
        writePage(arguments.text("html", ""), opened.path, draws, names, sums, order, slowest);
    return opened.complaint();
}

namespace {

// A cell of rs as far as two captures can be compared by it: addresses say nothing, and of a texture its size alone.
std::string comparable(const Player &player, size_t index)
{
    const uint64_t value = player.state()[index];
    switch (stateCells()[index].kind) {
    case Cell::Kind::address: return value ? "set" : "null";
    case Cell::Kind::texture: {
        const auto found = player.textures().find(value);
        if (!value || found == player.textures().end() || !found->second.told)
            return value ? "unknown" : "null";
        return std::to_string(found->second.record->width) + " x " + std::to_string(found->second.record->height);
    }
    case Cell::Kind::operation: return Operators::name(value);
    default: return numberInWords(stateCells()[index], value);
    }
}

} // namespace

int runDiff(const Arguments &arguments)
{
    const Opened first(arguments.words[0]), second(arguments.words[1]);
    Player &a = *first.player, &b = *second.player;
    Progress progress("diff", *first.reader);
    const auto next = [](Player &player) {
        Step step;
        while ((step = player.next()) == Step::frame) {
        }
        return step;
    };
    for (;;) {
        const Step ofA = next(a), ofB = next(b);
        progress.show(a);
        if (ofA == Step::end || ofB == Step::end) {
            const int status = std::max(first.complaint(), second.complaint());
            if (ofA == ofB) {
                std::printf("%s, all alike\n", counted(a.draws(), "draw").c_str());
                return status;
            }
            const Opened &longer = ofA == Step::end ? second : first;
            std::printf("%s goes on where the other ends, after draw %s\n", longer.path.c_str(),
                        grouped((ofA == Step::end ? a : b).draws()).c_str());
            return std::max(status, int(statusFound)); // what ends early is not shorter
        }
        const DrawEvent &one = a.draw(), &other = b.draw();
        std::vector<std::string> words;
        if (one.name != other.name)
            words.push_back("the other draws " + other.name);
        for (size_t k = 0; k < stateCells().size(); ++k) {
            const bool isNumber = stateCells()[k].kind == Cell::Kind::number;
            if (isNumber && a.state()[k] == b.state()[k])
                continue;
            if (const std::string is = comparable(a, k), elsewhere = comparable(b, k); is != elsewhere)
                words.emplace_back("rs.")
                    .append(stateCells()[k].name)
                    .append(" is ")
                    .append(is)
                    .append(", in the other ")
                    .append(elsewhere);
        }
        if (words.empty() && one.hasResult && other.hasResult)
            for (int part = 0; part < 3; ++part)
                if (one.result.hash[part] != other.result.hash[part])
                    words.emplace_back(part == 0   ? "the frame buffer is another afterwards"
                                       : part == 1 ? "the Shahei plane is another afterwards"
                                                   : "the priorities are others afterwards");
        if (words.empty())
            continue;
        std::printf("%s\n", drawLabel(one).c_str());
        for (const std::string &word : words)
            std::printf("  %s\n", word.c_str());
        return statusFound;
    }
}

} // namespace replay
