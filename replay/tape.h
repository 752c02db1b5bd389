// A capture laid out so that all its draws can be made at once, again and again, by any library: none of what a player does between
// two draws stands between them. What draws leave for later, as bands do, finds its memory where it was.
#pragma once

#include "player.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace capture {

class Tape {
public:
    using Watch = std::function<void(const Player &)>;
    using Open = std::function<std::unique_ptr<Reader>(std::string &error)>; // called twice
    // Reads a whole capture, drawing it with the linked library. Null, and why, where it cannot be read or is too large. Draws
    // that cannot or must not be made are left out.
    static std::unique_ptr<Tape> read(const Open &open, bool unchecked, const Watch &watch, std::string &error,
                                      uint64_t memoryLimit = Store::usualLimit);
    static std::unique_ptr<Tape> read(const std::string &path, bool unchecked, const Watch &watch, std::string &error);

    uint64_t draws() const { return drawCount; } // those in it
    uint64_t empty() const { return emptyCount; } // draws of nothing, which are not
    uint64_t frames() const { return frameList.size(); }
    uint64_t pixels() const { return pixelCount; } // in the draws' reach
    uint64_t refused() const { return refusedCount; }
    const std::string &refusal() const { return firstRefusal; } // of the first
    // The first draw that the linked library did not make as it was recorded, in words; empty: none.
    const std::string &difference() const { return firstDifference; }
    const Player &player() const { return *source; } // at the end of the capture

    // Makes all draws once. `flush`, which may be empty, ends each frame and stands before what the host wrote itself. The time of
    // each frame by `clock` is that of draws and flushes alone.
    void play(Library &library, const std::function<void()> &flush, double (*clock)(), std::vector<double> &frameSeconds);
    // Makes all draws once. Empty, or where rs after a draw or memory at the end of a frame are not as the linked library left
    // them.
    std::string verify(Library &library, const std::function<void()> &flush);

private:
    // rs by words of 32 bits.
    struct Word {
        uint32_t index, value;
    };
    // Bytes that go to memory or into a texture's record. Those and the bits stand in `bytes`, whose place may change.
    struct Patch {
        MemoryWrite write;
        size_t from, bits;
    };
    // The ends of what belongs to it in the lists below; it begins where the step before ends.
    struct Step {
        size_t patches, words, left, written;
        bool draws; // false: it only writes memory, at the end of a frame
        layer::Id id;
        uint64_t number, frame;
        uint64_t operators[2]; // of multiFunc and blendFunc
        size_t speech; // index of what the host's operators return, if there are any
        uint64_t hash; // of what it may write, at the end of its frame
    };
    struct Said {
        std::vector<uint32_t> words[2];
    };
    static constexpr uint64_t sizeLimit = sizeof(void *) == 8 ? uint64_t{1} << 31 : uint64_t{1} << 28;

    std::unique_ptr<Reader> reader;
    std::unique_ptr<Player> source;
    std::vector<Step> steps;
    std::vector<size_t> frameList; // ends, in steps
    std::vector<Patch> patches;
    Bytes bytes; // of patches
    std::vector<Word> words, left; // before and after draws
    std::vector<Rows> written;
    std::vector<Said> said;
    uint64_t drawCount = 0, emptyCount = 0, pixelCount = 0, refusedCount = 0;
    std::string firstRefusal, firstDifference;
    bool isTooLarge = false;

    Tape() = default;
    bool take(const Reader &from);
    void takeDraw(bool unchecked);
    void takeRecord(const Texture *record);
    void addStep(bool draws);
    void endFrame();
    uint64_t hashOf(size_t step) const;
    void addPatch(const MemoryWrite &write);
    void write(size_t begin, size_t end) const; // patches
    void setOperators(const Step &step, Library &library) const;

    // While it is read: rs as the step before left it, what the records hold, patches that belong to the next step.
    struct Reading;
    Reading *reading = nullptr;
};

} // namespace capture
