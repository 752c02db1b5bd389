// The path of one pixel, and the two ways along a row of pixels.
#pragma once

#include <optional>

#include "arithmetic.h"
#include "fetch.h"
#include "modes.h"

#include <ninefold/render_state.h>

namespace reference {

// How a kernel makes the source of a pixel.
enum class Form {
    flat, // color[0]
    gouraud, // the four colour ramps
    point, // one texel
    mosaic, // the texel at the start of a block
    stippled, // one of two texels
    fourTexels, // bilinear
    pointLevels, // a texel mixed with one of the next smaller level, for the multi stage
    pointBelow, // the texel of the next smaller level; the level's own only decides whether to draw
    firstTexel, // the first texel of the level
    fourLevels // bilinear on two levels, mixed
};

Form formOf(const Modes &modes);

// Where a row reads a texture. The ramps count pixels from Row::origin.
struct SourceRow {
    const Texture *texture = nullptr;
    Ramp u, v;
    uint32_t shiftU = 0, shiftV = 0; // of perspective coordinates
};

// What a row of pixels is drawn from.
struct Row {
    int32_t origin = 0; // the column at which ramps start
    int32_t pixels = 0; // index of column 0 in frame buffer and zBuffer
    int32_t plane = 0; // index of the plane word that holds the row's first pixel
    uint16_t mask = 0; // stipple row
    SourceRow source[2]; // tex0 and tex1
    Ramp depth; // perspective weight
    Ramp ruleU, ruleV; // in tex2
    Ramp colour[4]; // alpha, red, green, blue, each 8.16
};

// A packed colour as four 8.16 values: alpha, red, green, blue.
struct Channels {
    int32_t value[4];

    explicit Channels(uint32_t packed);
};

enum class Outcome { refusedByRule, dropped, written };

class Painter {
public:
    Painter(const Modes &drawModes, RenderState &drawState) : modes(drawModes), state(drawState), form(formOf(drawModes)) {}

    Row row;

    // One pixel of the row. The source of tex0 is that of the pixel `behind` columns further left.
    Outcome pixel(int32_t column, int32_t behind = 0);

    // Columns left to right - 1, with whatever gate the modes have.
    void span(int32_t left, int32_t right);

private:
    const Modes modes;
    RenderState &state;
    const Form form;

    void words(int32_t left, int32_t right);
    int32_t ruleValue(int32_t distance) const;
    std::optional<uint32_t> source(int32_t distance, int32_t behind) const;
    uint32_t withSecondTexture(uint32_t centre, uint32_t first, int32_t distance) const;
    Position position(const SourceRow &from, int32_t distance) const;
    uint32_t pointTexelOfRow(const Texture &texture, Position at) const;
    uint32_t blockTexel(const Texture &texture, Position at) const;
    uint32_t secondBlockTexel(const Texture &texture, Position at) const;
};

// The 8.16 colour ramps `distance` pixels on, packed: cut to eight bits each, or as filter 7 does it, which lets what exceeds them
// into the channel above.
uint32_t packedInRange(const Ramp (&colour)[4], int32_t distance);
uint32_t packedGouraud(const Ramp (&colour)[4], int32_t distance);

} // namespace reference
