// What bands are worth: frames of 1920 by 1080 drawn plainly, and recorded and flushed by so many threads. Linked with the library
// of bands; plain is the same library, not started, whose kernels are the plain library's.
//
//     bench_bands [--turns N] [--best] [--pin] [--threads N]... [--capture FILE]... [FRAME]...
//     LD_LIBRARY_PATH=build bench_bands sizes    what the plain library takes
#include "bands_model.h"
#include "captures.h"

#include <ninefold/bands.h>

#include <dirent.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr int width = 1920, height = 1080;

uint32_t state = 1;
uint32_t word() // the same numbers everywhere
{
    state = state * 1664525 + 1013904223;
    return state ^ state >> 15;
}
int below(int count) { return int(uint64_t(word()) * uint32_t(count) >> 32); }

Texture *picture(int columns, int rows)
{
    Texture *const texture = CreateTexture(static_cast<unsigned long>(columns), static_cast<unsigned long>(rows));
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            texture->pixels[(size_t(y) << texture->log2Width) + size_t(x)] = word() | 0x01000000;
    return texture;
}

DrawFunc kernel(int shape, int rectOpt, int filter, int blend, int pers = 0)
{
    return SearchDrawFunc(
        CreateDrawCodeSub(pers, 0, 0, filter, rectOpt, NINEFOLD_SHAHEI_NONE, blend, NINEFOLD_MULTI_NONE, shape));
}

// What a frame comes to, where it is looked at instead of drawn.
Work *looked = nullptr;
bool isLooked(int rows, double area)
{
    if (!looked)
        return false;
    ++looked->draws;
    looked->rows += rows;
    looked->target = std::min(looked->target + 8 * area, 8.0 * width * height);
    return true;
}

struct Sprite {
    int x, y;
    Texture *texture;
};

void drawSprite(DrawFunc draw, const Sprite &sprite, int size)
{
    rs.tex0 = sprite.texture;
    rs.uv0[0] = {0, 0};
    rs.vertex[0] = {sprite.x, sprite.y, 0};
    rs.vertex[1] = {sprite.x + size, sprite.y + size, 0};
    if (!isLooked(size, size * size))
        draw();
}

struct Triangle {
    Vertex vertex[3];
    TexCoord uv[3];
    Texture *texture;
};

void drawTriangle(DrawFunc draw, const Triangle &triangle)
{
    std::copy_n(triangle.vertex, 3, rs.vertex);
    std::copy_n(triangle.uv, 3, rs.uv0);
    rs.tex0 = triangle.texture;
    const Vertex *const v = triangle.vertex;
    const auto [top, bottom] = std::minmax({v[0].y, v[1].y, v[2].y});
    const auto [left, right] = std::minmax({v[0].x, v[1].x, v[2].x});
    if (!isLooked(bottom - top, (bottom - top) * double(right - left) / 2))
        draw();
}

// What frames are drawn from.
struct Stock {
    std::vector<Texture *> layers, small;
    std::vector<Sprite> sprites;
    std::vector<Triangle> triangles;
    DrawFunc copy, alpha, bilinear, floor;

    Stock()
    {
        copy = kernel(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, NINEFOLD_BLEND_COPY);
        alpha = kernel(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, NINEFOLD_BLEND_ALPHA);
        bilinear = kernel(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, NINEFOLD_BLEND_ALPHA);
        floor = kernel(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, NINEFOLD_BLEND_COPY, 1);
        for (int k = 0; k < 16; ++k)
            small.push_back(picture(64, 64));
        for (int k = 0; k < 2000; ++k)
            sprites.push_back({below(width - 32), below(height - 32), small[size_t(below(16))]});
        for (int k = 0; k < 300; ++k) {
            const int x = below(width - 90), y = below(height - 90);
            triangles.push_back({{{x, y, 1}, {x + 30 + below(60), y + 10, 1}, {x + 10, y + 40 + below(50), 1}},
                                 {{0, 0}, {60 << 16, 0}, {0, 60 << 16}},
                                 small[size_t(below(16))]});
        }
    }
    void needLayers(size_t count)
    {
        while (layers.size() < count)
            layers.push_back(picture(width, height));
    }
    mutable std::vector<char> used; // pictures of the frame that is looked at
    void layer(DrawFunc draw, size_t number) const
    {
        rs.tex0 = layers[number];
        rs.uv0[0] = {0, 0};
        rs.vertex[0] = {0, 0, 0};
        rs.vertex[1] = {width, height, 0};
        if (!isLooked(height, width * height)) {
            draw();
            return;
        }
        const bool before = std::exchange(used[number], char(1)) != 0;
        (before ? looked->again : looked->first) += 4.0 * width * height;
        looked->layers = looked->first + looked->again > 2 * 4.0 * 2048 * height;
    }
    void drawFloor() const
    {
        constexpr int32_t far = 4000, near = 400, end = 200 << 16;
        const Vertex v[4] = {{0, 300, far}, {width, 300, far}, {0, height, near}, {width, height, near}};
        const TexCoord uv[4] = {{0, 0}, {end, 0}, {0, end}, {end, end}};
        for (const auto &[a, b, c] : {std::array{0, 1, 2}, std::array{1, 3, 2}})
            drawTriangle(floor, {{v[a], v[b], v[c]}, {uv[a], uv[b], uv[c]}, small[0]});
    }
};

struct Frame {
    const char *name, *words;
    size_t layers; // pictures of the frame's size
    std::function<void(const Stock &)> draw;
};

const Frame frames[] = {
    {"layers4", "30 full-screen alpha layers of 4 pictures", 4,
     [](const Stock &stock) {
         for (size_t k = 0; k < 30; ++k)
             stock.layer(stock.alpha, k % 4);
     }},
    {"layers30", "30 full-screen alpha layers of 30 pictures", 30,
     [](const Stock &stock) {
         for (size_t k = 0; k < 30; ++k)
             stock.layer(stock.alpha, k);
     }},
    {"sprites", "2,000 sprites of 32 by 32", 0,
     [](const Stock &stock) {
         for (const Sprite &sprite : stock.sprites)
             drawSprite(stock.alpha, sprite, 32);
     }},
    {"floor", "a perspective floor with 300 triangles", 0,
     [](const Stock &stock) {
         stock.drawFloor();
         for (const Triangle &triangle : stock.triangles)
             drawTriangle(stock.bilinear, triangle);
     }},
    {"mix", "2,106 draws: 6 layers, 100 triangles, 2,000 sprites", 4,
     [](const Stock &stock) {
         stock.layer(stock.copy, 0);
         for (size_t k = 1; k < 6; ++k)
             stock.layer(stock.alpha, k % 4);
         for (size_t k = 0; k < 100; ++k)
             drawTriangle(stock.bilinear, stock.triangles[k]);
         for (const Sprite &sprite : stock.sprites)
             drawSprite(stock.alpha, sprite, 32);
     }},
};

using Clock = std::chrono::steady_clock;
double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

bool best = false;
double median(std::vector<double> values)
{
    if (best)
        return *std::min_element(values.begin(), values.end());
    std::nth_element(values.begin(), values.begin() + ptrdiff_t(values.size() / 2), values.end());
    return values[values.size() / 2];
}

bool pinned = false;

// Each thread on a processor of its own, as far as there are.
void pin()
{
    DIR *const tasks = opendir("/proc/self/task");
    int processor = 0;
    while (const dirent *const task = tasks ? readdir(tasks) : nullptr) {
        if (*task->d_name == '.')
            continue;
        cpu_set_t set;
        CPU_ZERO(&set);
        CPU_SET(processor++ % int(sysconf(_SC_NPROCESSORS_ONLN)), &set);
        sched_setaffinity(pid_t(std::strtol(task->d_name, nullptr, 10)), sizeof set, &set);
    }
    if (tasks)
        closedir(tasks);
}

// 0 threads: plain.
void use(int threads)
{
    static cpu_set_t all; // as there are no more threads than these
    static const bool known = sched_getaffinity(0, sizeof all, &all) == 0;
    if (pinned && known)
        sched_setaffinity(0, sizeof all, &all);
    if (threads == 0)
        NinefoldBandsStop();
    else if (const int given = NinefoldBandsStart(threads); given != threads) {
        std::fprintf(stderr, "bench_bands: --threads %d, but there are processors for %d\n", threads, given);
        std::exit(2);
    }
    if (pinned)
        pin();
}

constexpr double warmTime = 10e-3; // s

// The median times of ways to draw, in seconds, each in turn; which one follows which changes too. `draw` draws, flushes and gives
// its time.
template <class Draw>
std::vector<double> measureBy(const std::vector<int> &ways, int turns, Draw &&draw)
{
    std::vector<std::vector<double>> times(ways.size());
    const Clock::time_point start = Clock::now();
    for (int turn = -1; turn < turns || (turn < turns * 10 && secondsSince(start) < 3); ++turn)
        for (size_t number = 0; number < ways.size(); ++number) {
            const size_t step = ways.size() > 2 && turn % 2 ? ways.size() - 1 : 1;
            const size_t way = (size_t(turn + 1) / 2 + number * step) % ways.size();
            use(ways[way]);
            Clock::time_point began = Clock::now();
            do // the first ones have other threads' pixels in their cache, and find out whether recording pays
                draw();
            while (secondsSince(began) < warmTime);
            began = Clock::now();
            do {
                const double seconds = draw();
                if (turn >= 0)
                    times[way].push_back(seconds);
            } while (secondsSince(began) < warmTime);
        }
    std::vector<double> medians;
    for (std::vector<double> &values : times)
        medians.push_back(median(values));
    return medians;
}

void printTimes(const std::vector<double> &times, double unit)
{
    std::printf("%10.3f", times[0] * unit);
    for (size_t k = 1; k < times.size(); ++k)
        std::printf("    x%5.2f", times[0] / times[k]);
    std::printf("\n");
}

template <class Draw>
std::vector<double> measure(const std::vector<int> &ways, int turns, Draw &&draw)
{
    return measureBy(ways, turns, [&] {
        const Clock::time_point start = Clock::now();
        draw();
        NinefoldBandsFlush();
        return secondsSince(start);
    });
}

// The frames of a capture; false where there are none.
bool measureCapture(const std::string &path, const std::vector<int> &ways, int turns)
{
    std::string error;
    capture::Draws *const draws = bench::openCapture(path, error);
    if (!draws) {
        std::fprintf(stderr, "bench_bands: %s\n", error.c_str());
        return false;
    }
    if (draws->refused())
        std::fprintf(stderr, "bench_bands: %s: %llu draws are left out; first %s\n", path.c_str(),
                     static_cast<unsigned long long>(draws->refused()), draws->refusal());
    char words[100];
    std::snprintf(words, sizeof words, "%.30s, %llu draws in %llu frames", path.substr(path.rfind('/') + 1).c_str(),
                  static_cast<unsigned long long>(draws->draws()), static_cast<unsigned long long>(draws->frames()));
    std::printf("%-54s", words);
    std::fflush(stdout);
    const auto clock = [] { return std::chrono::duration<double>(Clock::now().time_since_epoch()).count(); };
    const auto flush = [] { static_cast<void>(NinefoldBandsFlush()); };
    printTimes(measureBy(ways, turns, [&] { return draws->play(flush, clock); }), 1e3 / double(draws->frames()));
    return true;
}

void printWays(const std::vector<int> &ways)
{
    for (const int threads : ways)
        if (threads == 0)
            std::printf("%10s", "plain");
        else
            std::printf("%9dt", threads);
}

Work workOf(const Frame &frame, const Stock &stock)
{
    Work work;
    stock.used.assign(stock.layers.size(), false);
    looked = &work;
    frame.draw(stock);
    looked = nullptr;
    return work;
}

// Seconds that recording a draw takes, without the flush, of frames that are recorded as a whole.
double recordingTime(const Stock &stock, int turns)
{
    std::vector<double> times;
    use(2);
    for (int turn = 0; turn < turns * 40 && times.size() < size_t(turns) * 10; ++turn) {
        const unsigned long long before = NinefoldBandsCount(NINEFOLD_BANDS_RECORDED);
        const Clock::time_point start = Clock::now();
        frames[2].draw(stock);
        const double time = secondsSince(start);
        if (NinefoldBandsCount(NINEFOLD_BANDS_RECORDED) - before == stock.sprites.size())
            times.push_back(time / double(stock.sprites.size()));
        NinefoldBandsFlush();
    }
    return times.empty() ? 0 : median(times);
}

// A frame of one large draw, by two threads: right behind another one, and when they have gone to sleep.
void printWaking(const Stock &stock, int turns)
{
    const auto time = [&](int threads, bool asleep) {
        std::vector<double> times;
        use(threads);
        for (int turn = -1; turn < turns * 2; ++turn) {
            if (asleep)
                std::this_thread::sleep_for(std::chrono::milliseconds(3));
            const Clock::time_point start = Clock::now();
            stock.layer(stock.alpha, 0);
            NinefoldBandsFlush();
            if (turn >= 0)
                times.push_back(secondsSince(start) * 1e6);
        }
        return median(times);
    };
    std::printf("one full-screen layer, us: %.0f plain, %.0f by two threads, %.0f by two that slept\n", time(0, false),
                time(2, false), time(2, true));
}

constexpr int manyCores[] = {4, 8, 16, 32, 64};

void printModel(Stock &stock, int turns)
{
    const Machine machine = measureMachine();
    const double recording = recordingTime(stock, turns);
    std::printf(
        "\nmodel: recording %.0f ns a draw; read, read and written by one core and by two: %.1f and %.1f GB/s of the last "
        "cache, %.1f and %.1f GB/s of memory; a line from core to core %.0f ns\n",
        recording * 1e9, machine.near[0] / 1e9, machine.near[1] / 1e9, machine.far[0] / 1e9, machine.far[1] / 1e9,
        machine.line * 1e9);
    std::printf("%-54s%9s%9s%9s", "factors; of more cores: memory of two cores - of each", "1, seen", "2, seen", "2");
    for (const int cores : manyCores)
        std::printf("%13d", cores);
    std::printf("\n");
    for (const Frame &frame : frames) {
        stock.needLayers(frame.layers);
        const Work work = workOf(frame, stock);
        std::printf("%-54s", frame.words);
        std::fflush(stdout);
        const std::vector<double> times = measure({0, 1, 2}, turns, [&] { frame.draw(stock); });
        const Measured measured{times[0], times[1], times[2], recording};
        std::printf("   x%5.2f   x%5.2f   x%5.2f", times[0] / times[1], times[0] / times[2],
                    times[0] / modelled(machine, work, measured, 2, false));
        for (const int cores : manyCores)
            std::printf("  x%4.1f -%5.1f", times[0] / modelled(machine, work, measured, cores, false),
                        times[0] / modelled(machine, work, measured, cores, true));
        std::printf("\n");
    }
}

[[noreturn]] void usage(int status)
{
    std::fprintf(status ? stderr : stdout,
                 "bench_bands [--turns N] [--best] [--pin] [--threads N]... [--capture FILE]... [FRAME]...\n"
                 "Draws frames of 1920 by 1080 plainly and by bands, in turn; prints median times.\n"
                 "  --turns N    how often each, 20 without; quick ones up to ten times as often\n"
                 "  --best       the shortest times instead: where others use the machine\n"
                 "  --pin        each thread on a processor of its own\n"
                 "  --threads N  numbers of threads, up to that of processors; 1 and 2 without\n"
                 "  --capture FILE  the frames of a capture, on average; other frames only where named\n"
                 "Frames, all without:\n");
    for (const Frame &frame : frames)
        std::fprintf(status ? stderr : stdout, "  %-10s %s\n", frame.name, frame.words);
    std::fprintf(status ? stderr : stdout, "  %-10s %s\n  %-10s %s\n  %-10s %s\n", "overhead",
                 "what recording costs a draw, and waking threads", "sizes", "frames of 500 alpha sprites by their size", "model",
                 "what 2 to 64 cores would give, worked out from what one and two do here");
    std::exit(status);
}

int numberFrom(const char *name, const char *text)
{
    char *end = nullptr;
    const long number = text ? std::strtol(text, &end, 10) : 0;
    if (!text || *end || number < 1 || number > 100000) {
        std::fprintf(stderr, "bench_bands: %s takes a number from 1 to 100000, not '%s'\n", name, text ? text : "");
        std::exit(2);
    }
    return int(number);
}

} // namespace

int main(int, char **arguments)
{
    int turns = 20;
    std::vector<int> ways{0};
    std::vector<std::string> wanted, captures;
    for (char **argument = arguments + 1; *argument; ++argument)
        if (std::strcmp(*argument, "--help") == 0)
            usage(0);
        else if (std::strcmp(*argument, "--best") == 0)
            best = true;
        else if (std::strcmp(*argument, "--pin") == 0)
            pinned = true;
        else if (std::strcmp(*argument, "--turns") == 0)
            turns = numberFrom("--turns", *++argument);
        else if (std::strcmp(*argument, "--threads") == 0)
            ways.push_back(numberFrom("--threads", *++argument));
        else if (std::strcmp(*argument, "--capture") == 0 && argument[1])
            captures.emplace_back(*++argument);
        else if (**argument == '-')
            usage(2);
        else
            wanted.emplace_back(*argument);
    if (ways.size() == 1)
        ways = NinefoldBandsStart(2) == 2 ? std::vector{0, 1, 2} : std::vector{0, 1};
    const auto isWanted = [&](const char *name) {
        return (wanted.empty() && captures.empty()) || std::find(wanted.begin(), wanted.end(), name) != wanted.end();
    };
    for (const std::string &name : wanted)
        if (name != "overhead" && name != "sizes" && name != "model" &&
            std::none_of(std::begin(frames), std::end(frames), [&](const Frame &frame) { return name == frame.name; })) {
            std::fprintf(stderr, "bench_bands: no frame '%s'\n", name.c_str());
            usage(2);
        }

    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
    SetFrameBuffer(CreateTexture(width, height));
    ClearTexture(rs.frameBuffer);
    rs.clipRight = width, rs.clipBottom = height;
    Stock stock;
    const bool bands = NinefoldBands() != nullptr;
    if (!bands) {
        std::fprintf(stderr, "bench_bands: this library is not that of bands, so plain drawing alone is timed\n");
        ways = {0};
    }

    bool heading = false;
    const auto head = [&] {
        if (heading)
            return;
        std::printf("%-54s", "frame, ms and factors");
        printWays(ways);
        std::printf("\n");
        heading = true;
    };
    for (const std::string &path : captures) {
        head();
        if (!measureCapture(path, ways, turns))
            return 1;
    }
    for (const Frame &frame : frames) {
        if (!isWanted(frame.name))
            continue;
        head();
        stock.needLayers(frame.layers);
        std::printf("%-54s", frame.words);
        std::fflush(stdout);
        printTimes(measure(ways, turns, [&] { frame.draw(stock); }), 1e3);
    }
    if (isWanted("sizes")) {
        std::printf("\n%-54s", "500 alpha sprites by size, us and factors");
        printWays(ways);
        std::printf("\n");
        std::vector<int> gains(ways.size(), 0); // from this size on
        for (const int size : {1, 4, 8, 16, 24, 32, 48, 64}) {
            std::printf("%-54d", size);
            std::fflush(stdout);
            const std::vector<double> times = measure(ways, turns, [&] {
                for (size_t k = 0; k < 500; ++k)
                    drawSprite(stock.alpha, stock.sprites[k], size);
            });
            printTimes(times, 1e6);
            for (size_t k = 1; k < ways.size(); ++k)
                if (times[0] < 1.05 * times[k])
                    gains[k] = 0;
                else if (gains[k] == 0)
                    gains[k] = size;
        }
        if (bands)
            std::printf("%-64s", "gains 5 % and more from size");
        for (size_t k = 1; k < ways.size(); ++k)
            gains[k] ? std::printf("%10d", gains[k]) : std::printf("%10s", "none");
        std::printf("\n");
    }
    if (bands && isWanted("overhead")) {
        stock.needLayers(1);
        std::printf("\nrecording: %.0f ns a draw\n", recordingTime(stock, turns) * 1e9);
        printWaking(stock, turns);
    }
    if (bands && isWanted("model"))
        printModel(stock, std::max(3, turns / 2));
    NinefoldBandsStop();
    return 0;
}
