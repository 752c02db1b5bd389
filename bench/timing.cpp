#include "timing.h"

#include "scene.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#include <unistd.h>

namespace bench {

namespace {

// Processor time of all threads together: what others run meanwhile does not count, and a peer that took a second thread would
// not gain by it.
double now()
{
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

// The frame buffer as every turn finds it: what a blend makes of it must not add up.
void prepare(const Contender &contender)
{
    fillFrame();
    if (contender.prepare)
        contender.prepare();
}

double quantileOf(std::vector<double> values, double share)
{
    const auto at = values.begin() + std::lround(share * double(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

// Clocks, caches and predictors follow the work of the last milliseconds: a slow contender would hand its own to the next one.
void warm(const Contender &contender, long calls)
{
    constexpr double enough = 4e-3;
    const double start = now();
    do
        contender.run(calls);
    while (now() - start < enough);
}

// Reads twice what the last cache holds, a word of each line.
void emptyCaches()
{
    static const std::vector<uint64_t> other(size_t(std::clamp(2 * sysconf(_SC_LEVEL3_CACHE_SIZE), 16L << 20, 128L << 20)) / 8,
                                             1);
    uint64_t sum = 0;
    for (size_t i = 0; i < other.size(); i += 8)
        sum += other[i];
    asm volatile("" ::"r"(sum)); // so that it is read
}

// Calls that fill a turn, in whole cycles where one is longer than a handful of calls.
long callsFor(const Contender &contender, double batchSeconds)
{
    long calls = 1;
    double seconds = secondsOf(contender, calls);
    while (seconds < batchSeconds / 4 && calls < 1L << 40) {
        calls *= seconds < batchSeconds / 64 ? 16 : 2;
        seconds = secondsOf(contender, calls);
    }
    calls = std::max(1L, long(double(calls) * batchSeconds / seconds));
    const long cycle = contender.cycle;
    return calls < 64 && cycle == 64 ? calls : (calls + cycle - 1) / cycle * cycle;
}

} // namespace

double secondsOf(const Contender &contender, long calls)
{
    if (contender.seconds)
        return contender.seconds(calls, now);
    const double start = now();
    contender.run(calls);
    return now() - start;
}

double Measured::quantile(double share) const { return quantileOf(nanoseconds, share); }

double ratio(const Measured &a, const Measured &b)
{
    std::vector<double> ratios(a.nanoseconds.size());
    for (size_t i = 0; i < ratios.size(); ++i)
        ratios[i] = a.nanoseconds[i] / b.nanoseconds[i];
    return quantileOf(std::move(ratios), 0.5);
}

// A loop of our own and no benchmark library: those measure one contender to its end before the next, or shuffle whole
// repetitions of seconds. Clocks and neighbours change faster than that, so here every contender has a turn of a millisecond in
// every round, and what counts is the ratio of two turns of the same round.
std::vector<Measured> measure(const Contenders &contenders, const Effort &effort, Caches caches)
{
    std::vector<Measured> all;
    std::vector<long> calls;
    for (const Contender &contender : contenders) {
        all.push_back({contender.name, contender.note, contender.role, {}});
        prepare(contender);
        contender.run(1); // first calls compile, allocate, fault pages in
        calls.push_back(caches == Caches::cold ? contender.cycle : callsFor(contender, effort.batchSeconds * contender.patience));
    }
    for (int round = 0; round < effort.rounds; ++round)
        for (size_t turn = 0; turn < contenders.size(); ++turn) {
            // Another one begins each round, and the direction changes, so that nobody always runs after the same neighbour.
            const size_t step = round % 2 ? contenders.size() - 1 - turn : turn;
            const size_t i = (step + size_t(round)) % contenders.size();
            prepare(contenders[i]);
            warm(contenders[i], calls[i]);
            prepare(contenders[i]);
            if (caches == Caches::cold)
                emptyCaches();
            else if (calls[i] >= 64) // what the preparation has put out of the caches
                contenders[i].run(64);
            all[i].nanoseconds.push_back(secondsOf(contenders[i], calls[i]) * 1e9 / double(calls[i]));
        }
    return all;
}

} // namespace bench
