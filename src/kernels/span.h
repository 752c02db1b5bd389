// What a frame hands to the functions that draw a row: a Span, drawn in Chunks by a front, a second and a back.
#pragma once

#include <ninefold/render_state.h>

#include <cstdint>

namespace ninefold {

// A texture, or one of its levels, as fetches see it.
struct Source {
    const uint32_t *pixels;
    uint32_t maskU, maskV; // width - 1, height - 1
    uint32_t shift; // log2 of the width
};

// A quantity of a row: start + step * i at pixel i, in wrapping 32-bit arithmetic.
struct Linear {
    uint32_t start, step;
};

// tex0 or tex1 on its way along a row.
struct Sampled {
    Source level, next; // next: the mip level below it
    Linear u, v; // in the unit of the kernel's Motion
    uint32_t shiftU, shiftV; // Motion::pers: right shift that turns a 0.32 quotient into 16.16 texels
};

// One row of pixels and everything in it that is linear in the pixel index. A frame fills what the kernel's parts read, once a
// call or once a row; factors, thresholds and colours the parts read from rs.
struct Span {
    uint32_t *dst; // pixel 0 in the frame buffer
    uint8_t *z; // pixel 0 in the priority plane
    uint16_t *plane; // the Shahei word of pixel 0
    const uint16_t *zeroMap; // the zero-pixel word of pixel 0 (Map::zeros)
    uint32_t x; // frame-buffer column of pixel 0
    uint32_t maskRow; // drawMask row, 16 bits
    const uint32_t *run; // texel of pixel 0 where a run-length stretch is read on without wrap (Map::runs)

    Sampled tex[2];
    Source rule;
    Linear ruleU, ruleV; // 16.16, always linear on the screen
    Linear w; // 1 / depth
    Linear colour[4]; // alpha, red, green, blue; 8 bits over 16 fraction bits
};

// Up to 256 pixels on their way through the parts. Arrays are padded so that a vector may run over the end. Some pixels of a
// chunk are bits in words of 64: bit k of word j stands for pixel 64 j + k.
struct Chunk {
    static constexpr int size = 256;
    static constexpr int padded = size + 16;
    using Pixels = uint64_t[size / 64];
    const uint32_t *source; // source words: `words`, or texels where they lie in memory in order
    const uint32_t *second; // second operands of the multi stage: `seconds`, or texels
    const uint32_t *rule; // rule values in the low bytes: `rules`, or texels
    Pixels live; // go on
    Pixels valid; // of them, those where tex1 has a second operand
    Pixels marks; // are marked in the planes
    alignas(64) uint32_t words[padded];
    alignas(64) uint32_t seconds[padded];
    alignas(64) uint32_t unmixed[padded]; // the level's own texel, beside a mix with the next level
    alignas(64) uint32_t rules[padded];
    const uint32_t *slip; // reading position of a run that moves by what the rule lets through
};

// out = picked ? op(first, second) : first, where pixel k has second[k & secondMask]: -1, or 0 for one word repeated (sixteen of
// them are read).
using RowOperator = void (*)(uint32_t *out, const uint32_t *first, const uint32_t *second, int secondMask, const uint64_t *picked,
                             int n);

// The multi stage where its operator is the host's own.
struct HostMulti {
    PixelOperator call; // null: the operator is one of the library's, and its stage is done
    const uint64_t *picked;
    int secondMask;
    bool dropped; // nothing of the result is kept
};

// A part works on pixels first to first + n - 1 of a span, n at most Chunk::size.
using Front = bool (*)(const Span &, int first, int n, Chunk &); // gates and fetch; false: nothing lives
using Second = void (*)(const Span &, int first, int n, Chunk &); // the second operand of the multi stage
// Prescale, blend, soft edge, write and marks; `custom` is the operator behind blendFunc.
using Back = void (*)(const Span &, int first, int n, Chunk &, RowOperator custom);
// The same where an operator is the host's own: pixel by pixel from the multi stage to the write, so that each call sees the
// picture as it grows.
using HostBack = void (*)(const Span &, int first, int n, Chunk &, const HostMulti &);
// How many pixels from the first on, at most n, rule or gate surely treat alike: they are all refused or, with `through`, all let
// through and none of them lies on the soft edge of the rule. Gates only refuse.
using Alike = int (*)(const Span &, int first, int n, bool &through);

// The stretches of non-zero texels in `columns` pixels from a column of the texture on, by a row of its run-length map:
// body(pixel, column, length).
template <class Body>
[[gnu::always_inline]] inline void forEachRun(const int8_t *map, uint32_t column, uint32_t maskU, int columns, Body &&body)
{
    for (int pixel = 0; columns > 0;) {
        const int n = map[column];
        if (n < 0) {
            columns += n;
            const int skip = int8_t(-n); // 128 zero texels do not fit: the row goes on 128 pixels further left
            column = (column + uint32_t(skip)) & maskU;
            pixel += skip;
        } else {
            const int length = n < columns ? n : columns;
            columns -= n;
            body(pixel, column, length);
            column = (column + uint32_t(n)) & maskU;
            pixel += length;
        }
    }
}

} // namespace ninefold
