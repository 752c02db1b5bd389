// What a draw reads and may write. Needs follow from what is called alone; a footprint from needs and rs as it stands.
#pragma once

#include "layer.h"

#include "kernels/plan.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace layer {

enum class Shape : uint8_t { nothing, line, rectangle, triangle, planes }; // planes: occlusion triangles
enum class Choice : uint8_t { none, stretch, corners, polygon }; // by which driver a mip level is chosen for the whole primitive

// What the kernel of a record, or a function that draws, works with. Nothing is said of a kernel that draws nothing.
struct Needs {
    ninefold::Axes axes; // of functions: those of the kernel that they are or resemble
    Shape shape;
    Choice choice;
    ninefold::Walk walk;
    ninefold::Map map;
    bool tex0, tex1, tex2; // are fetched from
    bool lineLevels; // every level of a chain may be, a level for each row
    bool next; // so is the level below the chosen one, or mipTex where none is chosen
    bool next1;
    bool lineTable0, lineTable1, scanShift;
    bool readsPlane, writesPlane, readsZ, writesZ, writesPixels, drawMask;
    bool stippleSteps; // the stippled choice of texels
    bool mosaic, mosaic1; // mosaicSize, mosaicSize1
    bool pers;
    bool callsBlend, callsMulti;
    bool ruleTest; // ruleThreshold, ruleWidth, ruleCurve
    uint8_t positions; // of uv0 and uv1
    uint8_t colours; // of color[]
};
const Needs &needsOf(Id id);

// Fields of rs that point to something.
enum class Field : uint8_t {
    dstPixels,
    shaheiPlane,
    zBuffer,
    tex0,
    tex1,
    tex2,
    mipTex,
    mipTex1,
    runlengthMap, // of tex0
    zeroPixelMap, // of tex0
    lineTable0,
    lineTable1,
    scanShift,
    count
};
const char *fieldName(Field field);

struct Pixels {
    int32_t left, top, right, bottom; // right and bottom exclusive, in the frame buffer
    bool empty() const { return left >= right || top >= bottom; }
};

// A texture, or a level of its chain, that a draw fetches from, or whose record it looks at only.
struct TextureUse {
    Field field;
    uint8_t level; // 0: the texture itself
    bool fetched;
    const Texture *texture; // may be null
};

// Memory but for the texture's pixels. Planes and frame buffer from the first pixel to the last one.
struct MemoryUse {
    Field field;
    bool written;
    const void *begin;
    size_t size; // bytes
};

struct Footprint {
    // No pixel lies outside of it. It is as small as the corners and the clip rectangle make it; gates, rules, keys and stipples
    // may leave less.
    Pixels pixels;
    uint32_t columnsCut, rowsCut; // columns and rows of an unclipped rectangle that the clip cuts off at the left and above
    bool chooses; // a mip level is chosen for the whole primitive, and it is not the texture itself
    bool overlaps; // a texture shares memory with what is written: pixels are drawn one at a time
    uint8_t textureCount, memoryCount;
    TextureUse texture[40];
    MemoryUse used[8];

    std::span<const TextureUse> textures() const { return {texture, textureCount}; }
    std::span<const MemoryUse> memory() const { return {used, memoryCount}; }
};

// Works it out from rs; rs is afterwards as before. `readable` says whether the record of a texture may be looked at.
void findFootprint(Id id, bool (*readable)(const Texture *), Footprint &footprint);

} // namespace layer
