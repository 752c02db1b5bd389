// What stands behind the calls of bands.h.
#pragma once

#include "workers.h"

#include <cstdint>

namespace bands {

struct Recorder {
    bool started = false;
    uint64_t counts[4] = {}; // by NINEFOLD_BANDS_RECORDED, ...
    Batch batch;
    Workers workers;
    // Below so many ns the thread that flushes draws alone: others take about half of that to wake.
    double worthSharing = 100e3;
    // Draws of a cost below are drawn at once while nothing waits before them: recording them costs more than other threads save.
    // With one thread only what does not fit a cache is worth it.
    float leastCost = 0;
    bool awake = false; // threads were woken for this batch
    void (*divide)(const Batch &batch) = nullptr; // tests draw the rows of a batch in an order of their own

    int start(int threads);
    void stop();
    void flush();
    // False: the caller draws it, and what was recorded before it is drawn.
    bool record(layer::Id id);
};

Recorder &recorder();

} // namespace bands
