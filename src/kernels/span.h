// What a frame hands to the functions that draw a row: a Span, drawn in Chunks by a front, mids and a back.
#pragma once

#include <ninefold/render_state.h>

#include <cstdint>

namespace ninefold {

// A texture as fetches see it.
struct Source {
    const uint32_t *pixels;
    uint32_t maskU, maskV; // width - 1, height - 1
    uint32_t shift; // log2 of the width
};

// A quantity of a row: start + step * i at pixel i, in wrapping 32-bit arithmetic.
struct Linear {
    uint32_t start, step;
};

// One row of pixels and everything in it that is linear in the pixel index. A frame fills what the kernel's parts read, once a
// call or once a row; factors, thresholds and colours the parts read from rs.
struct Span {
    uint32_t *dst; // pixel 0 in the frame buffer
    uint8_t *z; // pixel 0 in the priority plane
    uint16_t *plane; // the Shahei word of pixel 0
    const uint16_t *zeroMap; // the zero-pixel word of pixel 0 (rect option 6)
    uint32_t x; // frame-buffer column of pixel 0
    uint32_t maskRow; // drawMask row, 16 bits
    const uint32_t *run; // texel of pixel 0 where a run-length stretch is read on without wrap (rect option 5)

    Source tex0, tex1, rule;
    Source next0, next1; // mip levels below tex0, tex1
    Linear u0, v0; // tex0: 16.16 texels; whole texels for unit scale; coordinate / depth under perspective
    Linear u1, v1; // tex1
    Linear u2, v2; // rule, always linear on the screen
    Linear w; // 1 / depth
    uint32_t shiftU0, shiftV0, shiftU1, shiftV1; // perspective: right shift that turns a 0.32 quotient into 16.16 texels
    Linear colour[4]; // alpha, red, green, blue; 8 bits over 16 fraction bits
};

// Up to 256 pixels on their way through the parts. Arrays are padded so that a vector may run over the end. A set of pixels is
// words of 64: bit k of word j stands for pixel 64 j + k.
struct Chunk {
    static constexpr int size = 256;
    static constexpr int padded = size + 16;
    using Pixels = uint64_t[size / 64];
    const uint32_t *source; // source words: `words`, or texels where they lie in memory in order
    const uint32_t *second; // second operands of the multi stage: `seconds`, or texels
    Pixels live; // go on
    Pixels valid; // of them, those where tex1 has a second operand
    Pixels marks; // are marked in the planes
    alignas(64) uint32_t words[padded];
    alignas(64) uint32_t seconds[padded];
    alignas(64) uint32_t other[padded]; // mip forms: unmixed texel; unused operators: result; custom blends: destination
    alignas(64) uint32_t rule[padded]; // rule values
    const uint32_t *slip; // reading position of the rule slip (rect option 5)
    PixelOperator blendFunc; // the custom blend, and how a chunk of it is run; null: it is the host's own
    void (*blendRow)(PixelOperator, uint32_t *out, const uint32_t *first, const uint32_t *second, int secondMask,
                     const uint64_t *pick, int n);
};

// A part works on pixels first to first + n - 1 of a span, n at most Chunk::size.
using Front = bool (*)(const Span &, int first, int n, Chunk &); // gates and fetch; false: nothing lives
using Mid = void (*)(const Span &, int first, int n, Chunk &); // makes the second operand
using Back = void (*)(const Span &, int first, int n, Chunk &); // prescale, blend, soft edge, write
// How many pixels from the first on, at most n, rule or gate surely treat alike: they are all refused or, with `through`, all let
// through and none of them lies on the soft edge of the rule. Gates only refuse.
using Alike = int (*)(const Span &, int first, int n, bool &through);
// out = picked ? op(first, second) : first, where pixel k has second[k & secondMask]: -1, or 0 for one word repeated (sixteen of
// them are read). The function is called by the form that serves a host's own operator, left to right.
using RowOperator = decltype(Chunk::blendRow);

} // namespace ninefold
