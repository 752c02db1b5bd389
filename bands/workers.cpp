#include "workers.h"

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

constexpr uint32_t nextOf(uint64_t ticket) { return uint32_t(ticket) & 0xFFFF; }
constexpr uint32_t endOf(uint64_t ticket) { return uint32_t(ticket) >> 16; }

} // namespace

int Workers::start(int wanted)
{
    if (count() == wanted)
        return wanted;
    stop();
    ends = false;
    shareCount = wanted;
    shares = std::make_unique<Share[]>(size_t(wanted));
    while (count() < wanted)
        try {
            threads.emplace_back([this, number = count()] { work(number); });
        } catch (const std::system_error &) {
            break;
        }
    return count();
}

void Workers::stop()
{
    ends = true;
    announce();
    for (std::thread &thread : threads)
        thread.join();
    threads.clear();
}

void Workers::announce()
{
    announced.fetch_add(1);
#if defined(_WIN32)
    mutex.lock(); // nobody is between looking and waiting
    mutex.unlock();
    called.notify_all();
#else
    announced.notify_all();
#endif
}

void Workers::sleep(uint32_t seen)
{
#if defined(_WIN32)
    std::unique_lock lock(mutex);
    called.wait(lock, [&] { return announced.load(std::memory_order_acquire) != seen; });
#else
    announced.wait(seen, std::memory_order_acquire);
#endif
}

void Workers::wake() { announce(); }

bool Workers::takeBand(Share &share)
{
    uint64_t now = share.ticket.load(std::memory_order_acquire);
    while (nextOf(now) < endOf(now))
        if (share.ticket.compare_exchange_weak(now, now + 1, std::memory_order_acq_rel, std::memory_order_acquire)) {
            current->drawBand(int(nextOf(now)));
            drawn.fetch_add(1, std::memory_order_release);
            return true;
        }
    return false;
}

// First its own, then of others.
bool Workers::takeBands(int thread)
{
    bool any = false;
    for (int k = 0; k < shareCount; ++k)
        while (takeBand(shares[size_t((thread + k) % shareCount)]))
            any = true;
    return any;
}

void Workers::work(int thread)
{
    for (int idle = 0; !ends.load(std::memory_order_relaxed);) {
        const uint32_t seen = announced.load(std::memory_order_acquire);
        if (takeBands(thread))
            idle = 0;
        while (announced.load(std::memory_order_relaxed) == seen && ++idle < idleTurns)
            pause();
        if (idle >= idleTurns) {
            if (!ends.load(std::memory_order_relaxed))
                sleep(seen);
            idle = 0;
        }
    }
}

void Workers::draw(const Batch &batch, int bandCount)
{
    current = &batch;
    drawn.store(0, std::memory_order_relaxed);
    ++batchNumber;
    for (int k = 0; k < shareCount; ++k) {
        const auto begin = uint32_t(bandCount * k / shareCount), end = uint32_t(bandCount * (k + 1) / shareCount);
        shares[size_t(k)].ticket.store(uint64_t{batchNumber} << 32 | end << 16 | begin, std::memory_order_release);
    }
    announce();
    takeBands(0);
    for (int turn = 0; drawn.load(std::memory_order_acquire) < bandCount;)
        if (++turn < turnsBeforeYielding)
            pause();
        else
            std::this_thread::yield();
}

} // namespace bands
