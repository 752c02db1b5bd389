// The commands verify and time on several threads, by the library of bands.
#include "command.h"

#include "tape.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <ninefold/bands.h>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace replay {

using namespace capture;

const Option threadsOption = {
    "threads", "A..B",
    "draw by the library of bands, on A to B threads; verify then compares pixels at the end of frames, "
    "and rs after each draw"};

namespace {

// The library of bands: that of --lib, or where it stands beside this program as both were built or installed.
class Bands {
public:
    explicit Bands(const Arguments &arguments)
    {
        std::string error;
        library = Library::load(arguments.has("lib") ? arguments.text("lib", "") : beside(), error);
        if (!library)
            fail(statusFile, error);
        using Get = const NinefoldBandsCalls *(*)();
        const auto get = reinterpret_cast<Get>(library->find("ninefoldBandsCalls"));
        if (!get)
            fail(statusFile, arguments.text("lib", "") + " is no library of bands, which --threads needs");
        calls = get();
    }
    ~Bands() { calls->stop(); }
    Bands(const Bands &) = delete;
    Bands &operator=(const Bands &) = delete;

    void start(int threads) const
    {
        if (const int given = calls->start(threads); given != threads)
            fail(statusFile, "the system gives " + std::to_string(given) + " threads instead of " + std::to_string(threads));
    }
    uint64_t count(int what) const { return calls->count(what); }

    std::unique_ptr<Library> library;
    const NinefoldBandsCalls *calls = nullptr;

private:
    static std::string beside()
    {
        namespace fs = std::filesystem;
        std::error_code ignored;
#ifdef _WIN32
        char self[MAX_PATH] = "";
        GetModuleFileNameA(nullptr, self, sizeof self);
        const fs::path here = fs::path(self).parent_path();
#else
        const fs::path here = fs::read_symlink("/proc/self/exe", ignored).parent_path();
#endif
        for (const char *const folder : {NINEFOLD_BANDS_PLACES})
            if (const fs::path file = here / folder / NINEFOLD_BANDS_FILE; fs::exists(file, ignored))
                return fs::canonical(file, ignored).string();
        fail(statusFile,
             std::string("cannot find ") + NINEFOLD_BANDS_FILE + " of bands beside this program; --lib PATH names it");
    }
};

std::unique_ptr<Tape> readTape(const Arguments &arguments, const char *doing)
{
    const Opened opened(arguments.words[0]); // for its messages, and how far it is
    Progress progress(doing, *opened.reader);
    std::string error;
    std::unique_ptr<Tape> tape = Tape::read(
        opened.path, arguments.has("unchecked"), [&](const Player &player) { progress.show(player); }, error);
    if (!tape)
        fail(statusFile, error);
    return tape;
}

Range threadsOf(const Arguments &arguments)
{
    const Range range = rangeOf(arguments.text("threads", ""), "--threads");
    if (range.last > NINEFOLD_BANDS_MOST_THREADS)
        fail(statusUsage, "--threads is '" + arguments.text("threads", "") + "'; there are at most " +
                              std::to_string(NINEFOLD_BANDS_MOST_THREADS));
    return range;
}

int verifyOn(const Bands &bands, Tape &tape, const Range &range, const std::string &path)
{
    if (!tape.difference().empty()) {
        std::printf("%s: %s, on one thread without bands\n", path.c_str(), tape.difference().c_str());
        return statusFound;
    }
    bands.calls->recordAll(1);
    for (uint64_t threads = range.first; threads <= range.last; ++threads) {
        bands.start(int(threads));
        const uint64_t whole = bands.count(NINEFOLD_BANDS_WHOLE), recorded = bands.count(NINEFOLD_BANDS_RECORDED);
        const std::string differs = tape.verify(*bands.library, bands.calls->flush);
        if (!differs.empty()) {
            std::printf("%s: %s: %s\n", path.c_str(), counted(threads, "thread").c_str(), differs.c_str());
            return statusFound;
        }
        std::printf("%s: %s in %s as recorded on %s, %s of them by bands, %s whole\n", path.c_str(),
                    counted(tape.draws(), "draw").c_str(), counted(tape.frames(), "frame").c_str(),
                    counted(threads, "thread").c_str(), grouped(bands.count(NINEFOLD_BANDS_RECORDED) - recorded).c_str(),
                    grouped(bands.count(NINEFOLD_BANDS_WHOLE) - whole).c_str());
    }
    return statusGood;
}

double secondsNow() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

int timeOn(const Bands &bands, Tape &tape, Range range, const Arguments &arguments)
{
    // There are no more threads than processors, unless for tests.
    if (const auto most = uint64_t(bands.calls->start(int(range.last))); most < range.last) {
        std::printf("%s: there are processors for %s, not for %s\n", arguments.words[0].c_str(), counted(most, "thread").c_str(),
                    grouped(range.last).c_str());
        range = {std::min(range.first, most), most};
    }
    const uint64_t repeats = numberOf(arguments.text("repeat", "5"), "--repeat", 1, 100000);
    // Each way in turn, the shortest time of each frame. The first column is plain.
    std::vector<std::vector<double>> best(1 + size_t(range.last - range.first + 1));
    for (uint64_t turn = 0; turn < repeats; ++turn)
        for (size_t way = 0; way < best.size(); ++way) {
            std::vector<double> seconds;
            if (way == 0) {
                bands.calls->stop(); // its threads stay awake for a while
                tape.play(Library::linked(), nullptr, secondsNow, seconds);
            } else {
                bands.start(int(range.first + way - 1));
                tape.play(*bands.library, bands.calls->flush, secondsNow, seconds);
            }
            if (best[way].empty())
                best[way] = seconds;
            for (size_t k = 0; k < seconds.size(); ++k)
                best[way][k] = std::min(best[way][k], seconds[k]);
        }
    std::printf("%s: %s in %s, the shortest of %s of each frame\n\n%-26s %10s", arguments.words[0].c_str(),
                counted(tape.draws(), "draw").c_str(), counted(tape.frames(), "frame").c_str(), counted(repeats, "run").c_str(),
                "ms", "plain");
    for (uint64_t threads = range.first; threads <= range.last; ++threads)
        std::printf(" %10s", counted(threads, "thread").c_str());
    const auto print = [&](const std::string &what, const std::vector<double> &seconds) {
        std::printf("\n%-26s", what.c_str());
        for (const double each : seconds)
            std::printf(" %10.3f", each * 1e3);
        std::printf("  x%.2f", seconds.back() > 0 ? seconds[0] / seconds.back() : 0);
    };
    std::vector<double> sums;
    for (const std::vector<double> &way : best) {
        double sum = 0;
        for (const double each : way)
            sum += each;
        sums.push_back(sum / double(std::max<size_t>(way.size(), 1)));
    }
    print("a frame, on average", sums);
    std::vector<size_t> slowest(best[0].size());
    for (size_t k = 0; k < slowest.size(); ++k)
        slowest[k] = k;
    std::stable_sort(slowest.begin(), slowest.end(), [&](size_t a, size_t b) { return best[0][a] > best[0][b]; });
    if (slowest.size() > 20)
        slowest.resize(20);
    for (const size_t frame : slowest) {
        std::vector<double> seconds;
        for (const std::vector<double> &way : best)
            seconds.push_back(way[frame]);
        print("frame " + grouped(frame + 1), seconds);
    }
    std::printf("\n\nThe factor is that of plain to the last column.\n");
    return statusGood;
}

} // namespace

int runThreads(const Arguments &arguments, bool times)
{
    const Range range = threadsOf(arguments);
    const Bands bands(arguments);
    const std::unique_ptr<Tape> tape = readTape(arguments, times ? "time" : "verify");
    const std::string &path = arguments.words[0];
    const int status = times ? timeOn(bands, *tape, range, arguments) : verifyOn(bands, *tape, range, path);
    if (tape->empty())
        std::printf("%s: besides, %s without pixels in reach\n", path.c_str(), counted(tape->empty(), "draw").c_str());
    if (tape->refused())
        std::printf("%s: %s not made; first %s\n", path.c_str(), counted(tape->refused(), "draw").c_str(),
                    tape->refusal().c_str());
    const int complaint = complain(path, tape->player());
    return status != statusGood ? status : tape->refused() ? statusFound : complaint;
}

} // namespace replay
