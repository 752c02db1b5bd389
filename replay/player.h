// Draws a capture again: applies its events to memory and textures of its own, and calls kernels. rs of the linked library is all its.
#pragma once

#include "format.h"
#include "library.h"
#include "reach.h"
#include "store.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace capture {

// What a draw left behind, as far as it may have changed: hashes of memory, calls of the host's operators, cells of rs.
struct Result {
    uint8_t flags = 0; // resultPixels, ...
    uint64_t hash[3] = {}; // of pixels, plane, priorities
    uint64_t digest[2] = {}; // of the calls of multiFunc and blendFunc
    uint64_t calls[2] = {};
};

struct DrawEvent {
    uint64_t number = 0, frame = 0; // from 1
    layer::Id id = 0;
    std::string name;
    bool known = false; // false: this program has no kernel of that name
    uint32_t back = 0;
    bool hasResult = false; // false: the file ends in it
    Result result;
    std::vector<uint64_t> after; // cells of rs
    uint64_t nanoseconds = 0; // on the recorded machine
    std::vector<uint32_t> words[2]; // of the host's multiFunc and blendFunc
};

struct FrameEvent {
    uint64_t number = 0;
    Cut cut = Cut::end;
    uint64_t pixels = 0; // address
    uint32_t shift = 0, width = 0, height = 0;
    layer::Pixels reached{}; // what the hash covers
    uint64_t hash = 0;
};

// Rows of bytes that go to memory of ours. With bits only those elements whose bit is set.
struct MemoryWrite {
    uint8_t *to;
    const uint8_t *from, *bits; // bits: null, or rows of whole bytes, the lowest bit of each first
    size_t rowBytes, rows, stride, element;

    size_t bitBytes() const { return bits ? (rowBytes / element + 7) / 8 : 0; } // of a row
    void write() const;
};

// Which cells of rs a frame buffer's address and the like are; a texture as a player holds it.
struct HeldTexture {
    std::unique_ptr<Texture> record; // with stand-ins for addresses but those of levels
    std::vector<uint64_t> cells;
    bool told = false; // false: only known as a pointer
};

class Player {
public:
    enum class Step { draw, frame, end };

    explicit Player(Reader &from, uint64_t memoryLimit = Store::usualLimit);

    // Goes on to the next draw, the next frame's end, or the end.
    Step next();
    const DrawEvent &draw() const { return current; }
    const FrameEvent &frame() const { return ended; }
    uint64_t draws() const { return drawCount; }
    uint64_t frames() const { return frameCount; }
    uint64_t lost() const { return lostCount; }
    // Why it ended before the capture does; empty where it did not.
    const std::string &problem() const { return trouble; }
    const std::map<std::string, std::string> &notes() const { return noteTexts; }
    const std::map<uint64_t, std::string> &labels() const { return labelTexts; }
    const std::map<uint64_t, HeldTexture> &textures() const { return held; }
    const std::vector<uint64_t> &state() const { return cells; } // of rs before the draw, in the order of stateCells()
    const Store &memory() const { return store; }
    std::function<void(const MemoryWrite &)> wrote; // is told of what events put into memory; may be empty
    // Makes memory that will be needed, as another player's has it: then none moves. False without memory.
    bool reserve(const Store &like);
    void clearMemory() { store.clear(); }

    // Makes the draw's memory, points rs of the linked library to it. False where the draw cannot or must not be made, with why in
    // refusal(). Rules that the twin calls errors refuse it, unless `unchecked`.
    bool prepare(bool unchecked = false);
    const std::string &refusal() const { return why; }
    // Names of the rules that prepare() met, of the severity that the twin's settings ask for: errors, unless they are changed.
    static const std::vector<std::string> &findings();
    // What it reads and may write, in our memory, valid between prepare and the next step.
    const std::vector<Rows> &rows() const { return reachRows; }
    const layer::Footprint &footprint() const { return reach; }
    // Calls the kernel of a library; rs of the linked library then holds what it left behind. The time is that of the call.
    uint64_t make(Library &library);
    // After all that was made with it: rs and the textures become what the next draw needs.
    void finish();
    // What is there now, in the form of a recorded result.
    Result now() const;
    // Empty, or what differs from the recorded result, in words.
    std::string compare() const;

    // Another value for a cell of rs before the draw, another kernel; prepare() then works from it.
    void change(size_t cell, uint64_t value) { cells[cell] = value; }
    void change(layer::Id id) { current.id = id, current.name = layer::nameOf(id), current.known = true; }

    // All that what comes next depends on, between two steps, to go back to.
    class Snapshot {
    public:
        size_t bytes() const { return memory.bytes() + textures.size() * 1000; } // about, without what earlier ones have

    private:
        friend class Player;
        Reader::Place place{};
        Store::Image memory;
        std::vector<uint64_t> cells;
        std::map<uint64_t, std::vector<uint64_t>> textures;
        uint64_t draws = 0, frames = 0, lost = 0;
    };
    // After finish(). `earlier` shares its memory with what is the same. None at a draw in which the file ends.
    std::optional<Snapshot> snapshot(const Snapshot *earlier) const;
    bool restore(const Snapshot &snapshot); // false: only a new player helps

    // Bytes of what the draw may write, to go back to.
    Bytes save() const;
    void restore(const Bytes &saved);

    // The picture of the frame buffer that draws go to, or of a frame that ended: rows of `width` words. Empty where there is none.
    struct Picture {
        uint32_t width = 0, height = 0;
        std::vector<uint32_t> pixels;
    };
    Picture picture(uint64_t pixels, uint32_t shift, uint32_t width, uint32_t height) const;
    Picture framePicture() const { return picture(ended.pixels, ended.shift, ended.width, ended.height); }
    Picture drawPicture() const;
    // The hash of what a frame's covers.
    uint64_t frameHash() const;

    std::string textureName(uint64_t address) const; // for people
    uint64_t addressOf(const Texture *texture) const { return addresses.at(texture); } // of one that a draw works with
    Picture texturePicture(const Texture *texture) const; // without what lies beside it

private:
    Reader &reader;
    Store store;
    std::map<uint64_t, HeldTexture> held;
    std::map<const Texture *, uint64_t> addresses;
    std::vector<uint64_t> cells; // of rs
    std::vector<int> stateOrder, textureOrder; // the file's cells as ours; -1: we have none
    DrawEvent current;
    FrameEvent ended;
    bool drawn = false; // current is a draw whose state has yet to be taken over
    Event ahead; // read, and not yet applied
    bool hasAhead = false;
    uint64_t drawCount = 0, frameCount = 0, lostCount = 0;
    std::string trouble, why;
    std::map<std::string, std::string> noteTexts;
    std::map<uint64_t, std::string> labelTexts;
    layer::Footprint reach{};
    std::vector<Rows> reachRows;
    std::vector<std::pair<Texture *, std::vector<unsigned char>>> patched; // records as they were before prepare
    alignas(8) unsigned char before[sizeof(RenderState)] = {};
    layer::Call call{};
    bool told = false; // the layer was told of the draw

    Step stop(const std::string &words);
    bool apply(const Event &event);
    bool takeCells(In &in);
    bool takeMemory(In &in);
    bool takeTexture(In &in);
    void storeCell(size_t index, uint64_t value, HeldTexture &to);
    bool takeDraw(In &in);
    bool takeResult(In &in);
    bool takeFrame(In &in);
    bool takeChanges(In &in, std::vector<uint64_t> &to) const;
    Texture *textureAt(uint64_t address);
    void fill();
    bool map();
    uint64_t textureField(const Texture *texture, size_t cell) const;
    uint64_t recordedField(layer::Field field) const;
    bool refuse(const std::string &words);
};

} // namespace capture
