// The threads that draw bands besides the one that flushes.
#pragma once

#include "batch.h"

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace bands {

class Workers {
public:
    // Threads in all, the calling one included. As many as the system grants.
    int start(int wanted);
    void stop();
    int count() const { return int(threads.size()) + 1; }

    // Wakes them ahead of a batch.
    void wake();
    // Draws a batch of so many bands; returns when it is drawn.
    void draw(const Batch &batch, int bandCount);
    // What that took all threads together, ns.
    double drawingTime() const { return double(nanoseconds.load(std::memory_order_relaxed)); }

private:
    // What there is to take: bits 0 to 15 the next band, 16 to 31 their number, from 32 on the number of the batch. A band is
    // taken by one compare-and-swap, so no thread takes one of a batch that is over.
    // It has a line of the cache to itself: threads that wait for it look at it all the time.
    alignas(64) std::atomic<uint64_t> ticket{0};
    alignas(64) std::atomic<int> drawn{0};
    std::atomic<int64_t> nanoseconds{0};
    alignas(64) std::atomic<bool> ends{false};
    const Batch *current = nullptr;
    std::vector<std::thread> threads;

    bool takeBand();
    void work();
};

} // namespace bands
