#include "workers.h"

#include <chrono>
#include <system_error>

namespace bands {
namespace {

// Waking a thread takes some 50 us. It stays awake for some 100 us, in which a frame of two thousand draws is recorded.
constexpr int idleTurns = 5000, turnsBeforeYielding = 4000;

void pause()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

constexpr uint64_t batchStep = uint64_t{1} << 32;
constexpr uint32_t nextOf(uint64_t ticket) { return uint32_t(ticket) & 0xFFFF; }
constexpr uint32_t countOf(uint64_t ticket) { return uint32_t(ticket) >> 16; }

} // namespace

int Workers::start(int wanted)
{
    ends = false;
    while (count() < wanted)
        try {
            threads.emplace_back([this] { work(); });
        } catch (const std::system_error &) {
            break;
        }
    return count();
}

void Workers::stop()
{
    ends = true;
    wake();
    for (std::thread &thread : threads)
        thread.join();
    threads.clear();
}

// A batch of no bands.
void Workers::wake()
{
    ticket.store((ticket.load(std::memory_order_relaxed) / batchStep + 1) * batchStep);
    ticket.notify_all();
}

bool Workers::takeBand()
{
    uint64_t now = ticket.load(std::memory_order_acquire);
    while (nextOf(now) < countOf(now))
        if (ticket.compare_exchange_weak(now, now + 1, std::memory_order_acq_rel, std::memory_order_acquire)) {
            const auto start = std::chrono::steady_clock::now();
            current->drawBand(int(nextOf(now)));
            const std::chrono::nanoseconds time = std::chrono::steady_clock::now() - start;
            nanoseconds.fetch_add(time.count(), std::memory_order_relaxed);
            drawn.fetch_add(1, std::memory_order_release);
            return true;
        }
    return false;
}

void Workers::work()
{
    for (int idle = 0; !ends.load(std::memory_order_relaxed);) {
        if (takeBand()) {
            idle = 0;
        } else if (++idle < idleTurns) {
            pause();
        } else {
            const uint64_t now = ticket.load(std::memory_order_acquire);
            if (nextOf(now) >= countOf(now) && !ends.load(std::memory_order_relaxed))
                ticket.wait(now, std::memory_order_acquire);
            idle = 0;
        }
    }
}

void Workers::draw(const Batch &batch, int bandCount)
{
    current = &batch;
    drawn.store(0, std::memory_order_relaxed);
    nanoseconds.store(0, std::memory_order_relaxed);
    const uint64_t number = ticket.load(std::memory_order_relaxed) / batchStep + 1;
    ticket.store(number * batchStep | uint64_t(uint32_t(bandCount)) << 16);
    ticket.notify_all();
    while (takeBand()) {
    }
    for (int turn = 0; drawn.load(std::memory_order_acquire) < bandCount;)
        if (++turn < turnsBeforeYielding)
            pause();
        else
            std::this_thread::yield();
}

} // namespace bands
