// What stands behind the calls of bands.h.
#pragma once

#include "workers.h"

#include <cstdint>

namespace bands {

// Whether recording pays. A frame - what lies between two flushes of the host's - is expected to go on as the ones did that began
// with such a draw. Where it did not pay the next one is drawn at once, after a second try the next 3, then 7, 15 and 31.
class Experience {
public:
    enum class Advice : uint8_t { unknown, pays, drawAtOnce };
    Advice begin(uint32_t key);
    // Of a frame that was not drawn at once.
    void end(bool paid);

private:
    struct Known {
        uint32_t key;
        uint8_t pause, left; // frames to draw at once, and how many of them are to come
        bool pays;
    };
    Known known[64]{};
    Known *current = nullptr;
};

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
    void (*divide)(const Batch &batch) = nullptr; // tests draw the rows of a batch in an order of their own
    Experience experience;
    bool learns = true; // tests record every frame
    bool atOnce = false; // the frame is drawn at once, untold

    int start(int threads);
    void stop();
    // Of the host's: a frame ends.
    void endFrame();
    void flush();
    // False: the caller draws it, and what was recorded before it is drawn.
    bool record(layer::Id id);

private:
    bool began = false; // the frame has a draw
    bool awake = false; // threads were woken for this batch
    // Of the frame: ns that recording and drawing took, and about what drawing at once would have taken.
    double spent = 0, worth = 0;
    double clockCost = 0; // ns to read it
    uint32_t samples = 0;

    void beginFrame(layer::Id id);
    void wake();
};

Recorder &recorder();

} // namespace bands
