// Reading a texture at a 16.16 position, in all the forms that the filters have.
#pragma once

#include <cstdint>

#include "arithmetic.h"

#include <ninefold/texture.h>

namespace reference {

struct Position {
    int32_t u, v;
};

// The texel at whole, wrapping coordinates.
uint32_t texelAt(const Texture &texture, int32_t column, int32_t row);

// The texel that holds `at`.
uint32_t pointTexel(const Texture &texture, Position at);

// The same with the row found towards zero, as in stretched rectangles.
uint32_t pointTexelRowToZero(const Texture &texture, Position at);

// The texel of the next smaller level under the position `at` of the level before it.
uint32_t pointTexelBelow(const Texture &below, Position at);

// `value` taken towards zero to a multiple of `size`.
int32_t quantised(int32_t value, int32_t size);

// What mip-mapped bilinear sampling of line tables and four-corner rectangles reads without a plane walk: its masks let no bit of
// a position from 0 on through, so the first texel. A negative position would be outside the texture; here it wraps into it.
uint32_t firstTexel(const Texture &texture, Position at);

// One of two texels around `at`, chosen by a stipple of the frame-buffer column.
uint32_t stippledTexel(const Texture &texture, Position at, int32_t column);

// The three neighbours of a texel towards which `at` lies, and the weights of the four, 256 in all.
struct FourTexels {
    int32_t sideU, sideV; // +1 or -1
    uint32_t centre, across, along, diagonal; // weights: texel itself, same row, same column, neither

    explicit FourTexels(Position at);

    // The mix around `at`; alpha 0 unless asked for.
    uint32_t mix(const Texture &texture, Position at, bool withAlpha) const;

    // The same weights on the next smaller level, at half the position.
    uint32_t mixBelow(const Texture &below, Position at, bool withAlpha) const;

    // The form of triangles: the diagonal has the weight of the column neighbour, and what has its weight lies a whole texel of
    // the smaller level away.
    uint32_t mixBelowInTriangle(const Texture &below, Position at, bool withAlpha) const;

private:
    uint32_t mixed(uint32_t t0, uint32_t t1, uint32_t t2, uint32_t t3, bool withAlpha) const;
};

// Two levels mixed in four channels, `weight` of 255 for the first.
uint32_t levelsMixedWithAlpha(uint32_t level, uint32_t below, uint32_t weight);

} // namespace reference
