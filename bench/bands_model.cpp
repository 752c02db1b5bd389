#include "bands_model.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

void runOn(int processor)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor % int(sysconf(_SC_NPROCESSORS_ONLN)), &set);
    sched_setaffinity(0, sizeof set, &set);
}

// Bytes a second that so many cores together read and write as a blend does: source, old pixel, new pixel.
double bandwidth(int cores, size_t bytes, int passes)
{
    std::atomic<int> ready{0};
    std::vector<double> rates(static_cast<size_t>(cores));
    std::vector<std::thread> threads;
    for (int core = 0; core < cores; ++core)
        threads.emplace_back([&, core] {
            runOn(core);
            const size_t count = bytes / 2 / sizeof(uint64_t);
            std::vector<uint64_t> source(count, 1), target(count, 2);
            ++ready;
            while (ready < cores) {
            }
            double best = 1e9;
            for (int pass = 0; pass < passes; ++pass) {
                const Clock::time_point start = Clock::now();
                for (size_t k = 0; k < count; ++k)
                    target[k] += source[k];
                best = std::min(best, secondsSince(start));
                std::atomic_signal_fence(std::memory_order_seq_cst);
            }
            rates[size_t(core)] = double(3 * count * sizeof(uint64_t)) / best;
        });
    for (std::thread &thread : threads)
        thread.join();
    double sum = 0;
    for (const double rate : rates)
        sum += rate;
    return sum;
}

double lineTransfer()
{
    constexpr int turns = 1000, rounds = 50;
    alignas(64) std::atomic<int> ball{0};
    std::thread other([&] {
        runOn(1);
        for (int turn = 0; turn < turns * rounds; ++turn) {
            while (ball != 2 * turn + 1) {
            }
            ball = 2 * turn + 2;
        }
    });
    double best = 1e9;
    std::thread one([&] {
        runOn(0);
        for (int round = 0; round < rounds; ++round) {
            const Clock::time_point start = Clock::now();
            for (int turn = round * turns; turn < (round + 1) * turns; ++turn) {
                ball = 2 * turn + 1;
                while (ball != 2 * turn + 2) {
                }
            }
            best = std::min(best, secondsSince(start) / (2 * turns));
        }
    });
    one.join();
    other.join();
    return best;
}

// The last cache's bytes, as the kernel of the system tells them; sysconf is wrong on some virtual machines.
double lastCache()
{
    double bytes = 16 << 20;
    for (int level = 0; level < 8; ++level) {
        std::ifstream file("/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(level) + "/size");
        double kilobytes = 0;
        if (file >> kilobytes)
            bytes = kilobytes * 1024;
    }
    return bytes;
}

// As in bands/batch.cpp.
int bandsOf(const Work &work, int threads)
{
    constexpr int rows = 1080;
    int bandRows = work.layers ? (560 << 10) / (4 * 2048) : rows;
    if (threads > 1) {
        const int wanted = (work.layers ? 8 : 6) * threads;
        bandRows = std::min(bandRows, std::max(16, (rows + wanted - 1) / wanted));
    }
    return (rows + bandRows - 1) / bandRows;
}

// A draw begun once more in another band, and passed over in one, s. Assumed.
constexpr double again = 30e-9, passed = 1e-9;

double repeats(const Work &work, int threads)
{
    const int bands = bandsOf(work, threads);
    return again * (work.draws + work.rows * bands / 1080) + passed * work.draws * bands;
}

double moving(const Machine &machine, const Work &work, int cores, bool wide)
{
    double far = work.first + work.target, near = work.again;
    if (far < machine.lastCache)
        near += far, far = 0;
    const double second = machine.far[1] - machine.far[0];
    const double rate = cores == 1 ? machine.far[0] : machine.far[0] + std::max(0.0, second) * (wide ? cores - 1 : 1);
    return far / rate + near / (cores == 1 ? machine.near[0] : machine.near[1] / 2 * cores);
}

} // namespace

Machine measureMachine()
{
    Machine machine{};
    for (int cores : {1, 2}) {
        machine.near[cores - 1] = bandwidth(cores, size_t{5} << 20, 40);
        machine.far[cores - 1] = bandwidth(cores, size_t{128} << 20, 4);
    }
    machine.line = lineTransfer();
    machine.lastCache = lastCache();
    return machine;
}

double modelled(const Machine &machine, const Work &work, const Measured &measured, int cores, bool wide)
{
    // What one thread in bands does not move or begin again it computes, which many do side by side, the last bands not quite.
    const double computing = std::max(0.0, measured.one - moving(machine, work, 1, wide) - repeats(work, 1));
    const int bands = bandsOf(work, cores), rounds = (bands + cores - 1) / cores;
    const double time = measured.recording * work.draws + (computing + repeats(work, cores)) * rounds / bands +
                        moving(machine, work, cores, wide) + bands * machine.line;
    return std::min(time, measured.plain); // such frames are drawn at once
}
