// Makes a scene.
#pragma once

#include "pools.h"
#include "random.h"
#include "scene.h"

namespace support {

inline int32_t wrapping(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value))); }

// Of a difference that may need 33 bits: as drawing takes it.
inline int32_t distanceOf(int32_t a, int32_t b)
{
    const int32_t difference = wrapping(int64_t{a} - b);
    return difference < 0 ? wrapping(-int64_t{difference}) : difference;
}

// Sums of scenes are checked in, so no expression may draw two random numbers in an order that a compiler is free to choose.
class Builder {
public:
    Builder(Scene &sceneToFill, World &worldToFill, Random numbers) : scene(sceneToFill), world(worldToFill), random(numbers) {}
    void build();

private:
    Scene &scene;
    World &world;
    Random random;

    bool big = false, small = false, overlap = false, guard = false, offsets = false, large = false;
    bool unit = false; // a rectangle of a texel a pixel
    bool laps = false; // positions go round 2^32 between the ends of a vector
    bool atEnd = false; // of the slot, with guard
    bool tight = false; // with guard: there is nothing but what lies between the first and the last pixel of the clip rectangle
    bool chains = false; // levels are walked
    bool forward = false; // texture positions must not be negative
    bool writesPlanes = false, readsPriority = false;
    int64_t firstWord = 0, endWord = 0; // of the Shahei plane

    ninefold::Axes &axes() { return scene.axes; }
    bool textured() { return !ninefold::hasColoursOnly(axes().filter) && !scene.subject.fillsPlanes(); }

    // memory
    Place place(int slot, uint32_t bytes, uint32_t align, uint32_t roomBefore, uint32_t roomAfter);
    void addWindow(int slot, int64_t begin, int64_t end);
    void fill(const Window &window, Pool pool);

    // what is drawn into
    void frame();
    void clipRange(int32_t size, int32_t &low, int32_t &high);
    void planes();

    // where
    void primitive();
    bool visible() const;
    void rectangle();
    void range(int32_t low, int32_t high, int32_t size, int32_t &from, int32_t &to);
    void line();
    void triangle();
    void origin();
    void farOut();
    void wrapWidth();
    void lap(TexCoord (&uv)[4]);

    // textures and positions in them
    struct Size {
        int log2Width, log2Height;
    };
    Size textureSize();
    int texture(int slot, Size size, Pool pool, bool chain);
    int source(int firstSlot);
    void textures();
    void overlaps();
    void atOffset();
    bool readsInPlace();
    void maps();
    struct Path {
        int32_t from, to;
    };
    int32_t step();
    Path path(int32_t count, int log2Size);
    void positions(TexCoord (&uv)[4], int texture);
    void lineTable(Place &table, int slot, int texture, bool skips);
    void shifts();

    // the rest
    void colours();
    void factors();
    void rule();
    void modes();
    void watchers();
};

} // namespace support
