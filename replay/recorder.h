// Records what a host draws. It stands in the debug twin, which tells it of every draw before and after; to cut a capture down, the
// replay draws it under the twin and records that.
#pragma once

#include "cells.h"
#include "format.h"
#include "shadow.h"

#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace capture {

struct Options {
    std::string path;
    int level = 3; // of zstd, 1 to 19
    int pause = 0; // milliseconds between two draws that end a frame; 0: none do
    bool texturesEachDraw = false; // else they are compared once a frame
    bool flushesEachDraw = false; // else at the end of frames: what a crash takes along
    bool cutsAtBuffer = true; // SetFrameBuffer ends a frame
};

// What the recorder asks about the host's memory.
struct Memory {
    bool (*readable)(const void *begin, size_t size);
    bool (*record)(const Texture *); // whether the record may be looked at
    bool (*made)(const Texture *); // whether the library made it and has not deleted it: its pixels are there as long as it is
};

class Recorder {
public:
    // Null, and why, where the file cannot be written.
    static std::unique_ptr<Recorder> open(const Options &options, const Memory &memory, const Operators::Setters &setters,
                                          std::string &error);
    ~Recorder();
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    // Before and after a draw.
    void before(layer::Id id, const layer::Footprint &footprint);
    void after();
    // A frame ends, if anything was drawn since the last one did.
    void frame(Cut cut);
    // The library is about to change, or has changed, a texture's pixels, maps or levels.
    void touch(const Texture *texture);
    void label(const void *address, const std::string &name);
    void close();

    const Options &settings() const { return options; }
    uint64_t draws() const { return drawCount; }
    uint64_t frames() const { return frameCount; }
    uint64_t lost() const { return lostCount; }
    uint64_t bytes() const { return writer->written(); }
    bool good() const { return writer->good(); }

private:
    using Clock = std::chrono::steady_clock;

    Options options;
    Memory memory;
    std::unique_ptr<Writer> writer;
    Operators operators;
    Shadow shadow;
    Bytes gathered, mask;
    std::vector<Rows> rows, written;
    std::map<uintptr_t, std::vector<uint64_t>> textures; // cells of their records
    std::set<std::pair<uintptr_t, size_t>> compared; // sources in this frame
    std::vector<uint64_t> state; // cells of rs as replay holds them
    alignas(8) unsigned char last[sizeof(RenderState)] = {}; // rs as it was when they were taken
    PixelOperator hostMulti = nullptr, hostBlend = nullptr;
    bool isOpen = false; // between before and after of a draw that is recorded
    bool closed = false;
    Clock::time_point started{}, ended{};
    uint64_t drawCount = 0, frameCount = 0, lostCount = 0, drawnInFrame = 0;

    // The frame buffer of the last draw, and what was drawn of each.
    struct Target {
        uint32_t *pixels;
        uint32_t shift, width, height;
        const Texture *texture;
    } target{};
    std::map<uint32_t *, layer::Pixels> reached;

    Recorder(const Options &wanted, const Memory &asks, const Operators::Setters &setters);
    bool canRecord(const layer::Footprint &footprint, const std::vector<Rows> &all) const;
    void writeTexture(const Texture *texture);
    void gather(const Rows &source, const Shadow::Box &part);
    void writeMemory(const Rows &source);
    bool makeMask(const Rows &source, const Shadow::Box &part);
    void writeState(Out &out);
    void writeWords(Out &out, const std::vector<uint32_t> &words);
    void remember(const layer::Footprint &footprint);
};

} // namespace capture
