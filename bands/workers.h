// The threads that draw bands besides the one that flushes.
#pragma once

#include "batch.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
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

private:
    // The bands of a batch are dealt out in turn of the rows: in frame after frame a thread begins with the same rows, which its
    // caches may still hold. One that has drawn its own takes what others have left.
    // Bits 0 to 15 are the next band, 16 to 31 the end of the share, from 32 on the number of the batch. A band is taken by one
    // compare-and-swap, so no thread takes one of a batch that is over.
    struct alignas(64) Share {
        std::atomic<uint64_t> ticket{0};
    };
    std::unique_ptr<Share[]> shares; // of each thread, the calling one first
    // These have lines of the cache to themselves: threads that wait look at them all the time.
    alignas(64) std::atomic<uint32_t> announced{0}; // grows with each batch, and to wake threads
    alignas(64) std::atomic<int> drawn{0};
    alignas(64) std::atomic<bool> ends{false};
    const Batch *current = nullptr;
    int shareCount = 0;
    uint32_t batchNumber = 0;
    std::vector<std::thread> threads;
#if defined(_WIN32) // libstdc++'s wait on an atomic, which has no futex there, may miss a notification
    std::mutex mutex;
    std::condition_variable called;
#endif

    bool takeBand(Share &share);
    bool takeBands(int thread);
    void work(int thread);
    void announce();
    void sleep(uint32_t seen); // until there is an announcement after that one
};

} // namespace bands
