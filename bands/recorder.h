// What stands behind the calls of bands.h.
#pragma once

#include "workers.h"

#include <chrono>
#include <cstdint>

namespace bands {

// Whether recording pays. A frame - what lies between two flushes of the host's - is expected to go on as the ones did that began
// with such a draw. From time to time three of them are drawn the other way, recorded or at once, and where the time from
// the first draw to the end of the flush was shorter they stay at that. Where it was not, the next trial comes twice as late.
class Experience {
public:
    // How the frame is to be drawn that begins with a draw of such a key.
    enum class Way : uint8_t { recorded, atOnce };
    Way begin(uint32_t key);
    bool expectsThreads() const { return current->shared; }
    // What it took, whether anything was recorded, and whether other threads were worth it.
    void end(float time, bool recorded, bool shared);

private:
    struct Known {
        uint32_t key;
        Way way;
        bool shared;
        uint8_t tried; // frames of the trial
        uint16_t pause, left; // frames before the trial
        float time, otherTime, triedTime; // of a frame as it is drawn, the other way, in the trial; 0: none yet
    };
    Known known[64]{};
    Known *current = nullptr;

    void keepWay(uint16_t low, uint16_t high);
};

struct Recorder {
    bool started = false;
    uint64_t counts[4] = {}; // by NINEFOLD_BANDS_RECORDED, ...
    Batch batch;
    Workers workers;
    // Below so many ns the thread that flushes draws alone: others take about half of that to wake.
    double worthSharing = 0;
    // Draws of a cost below are drawn at once while nothing waits before them: recording them costs more than other threads save.
    // With one thread only what does not fit a cache is worth it.
    float leastCost = 0;
    void (*divide)(const Batch &batch) = nullptr; // tests draw the rows of a batch in an order of their own
    Experience experience;
    bool all = false; // everything is recorded and shared, on as many threads as were asked for; so is what a test divides
    bool atOnce = false; // the frame is drawn at once, untold

    int start(int threads);
    void stop();
    void recordAll(bool wanted);
    // Of the host's: a frame ends.
    void endFrame();
    void flush();
    // False: the caller draws it, and what was recorded before it is drawn.
    bool record(layer::Id id);

private:
    int asked = 0; // threads, when it was started
    bool open = false; // the frame has a draw
    bool awake = false; // threads were woken for this batch
    std::chrono::steady_clock::time_point opened; // when the frame had its first one
    uint64_t countsBefore[4] = {}; // likewise

    void beginFrame(layer::Id id);
    void wake();
    int startThreads();
};

Recorder &recorder();

} // namespace bands
