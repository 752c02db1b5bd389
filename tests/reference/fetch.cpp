#include "fetch.h"

#include "stipple.h"

namespace reference {

uint32_t texelAt(const Texture &texture, int32_t column, int32_t row)
{
    const uint32_t x = static_cast<uint32_t>(wrapped(column, texture.width));
    const uint32_t y = static_cast<uint32_t>(wrapped(row, texture.height));
    return texture.pixels[(y << texture.log2Width) + x];
}

uint32_t pointTexel(const Texture &texture, Position at) { return texelAt(texture, at.u >> 16, at.v >> 16); }

uint32_t pointTexelRowToZero(const Texture &texture, Position at) { return texelAt(texture, at.u >> 16, whole(at.v)); }

uint32_t pointTexelBelow(const Texture &below, Position at) { return texelAt(below, at.u >> 17, at.v >> 17); }

int32_t quantised(int32_t value, int32_t size) { return mul(divide(value, size), size); }

uint32_t firstTexel(const Texture &texture, Position at)
{
    const uint32_t column = static_cast<uint32_t>(at.u >> 16) & (texture.width - 1) << 16;
    const uint32_t row = static_cast<uint32_t>(at.v >> 16) & (texture.height - 1) << 16;
    const uint32_t index = (row << (16 - texture.log2Width)) + column;
    return texture.pixels[index & (texture.width * texture.height - 1)];
}

namespace {

struct Fraction {
    int32_t x, y; // 0 to 255; a texel's centre is at 128

    explicit Fraction(Position at) : x(at.u >> 8 & 255), y(at.v >> 8 & 255) {}
};

} // namespace

uint32_t stippledTexel(const Texture &texture, Position at, int32_t column)
{
    const Fraction fraction(at);
    const int32_t row = (at.v >> 16) - (fraction.y < 128 ? 1 : 0);
    const int32_t leftOfPair = (at.u >> 16) - (fraction.x < 128 ? 1 : 0);
    const int share = (fraction.x + 128) & 255;
    const bool takeLeft = stippleBit(share, column & 15, column & 15);
    return texelAt(texture, takeLeft ? leftOfPair : leftOfPair + 1, row);
}

FourTexels::FourTexels(Position at)
{
    const Fraction fraction(at);
    sideU = fraction.x < 128 ? -1 : 1;
    sideV = fraction.y < 128 ? -1 : 1;
    const int32_t nearX = fraction.x < 128 ? fraction.x + 128 : 383 - fraction.x;
    const int32_t nearY = fraction.y < 128 ? fraction.y + 128 : 383 - fraction.y;
    const int32_t both = nearX * nearY >> 8;
    centre = static_cast<uint32_t>(both);
    across = static_cast<uint32_t>(nearY - both);
    along = static_cast<uint32_t>(nearX - both);
    diagonal = static_cast<uint32_t>(256 - nearX - nearY + both);
}

uint32_t FourTexels::mixed(uint32_t t0, uint32_t t1, uint32_t t2, uint32_t t3, bool withAlpha) const
{
    uint32_t result = 0;
    for (uint32_t shift = 0; shift < (withAlpha ? 32u : 24u); shift += 8) {
        const uint32_t sum = (t0 >> shift & 255) * centre + (t1 >> shift & 255) * across + (t2 >> shift & 255) * along +
                             (t3 >> shift & 255) * diagonal;
        result |= sum >> 8 << shift;
    }
    return result;
}

uint32_t FourTexels::mix(const Texture &texture, Position at, bool withAlpha) const
{
    const int32_t column = at.u >> 16;
    const int32_t row = at.v >> 16;
    return mixed(texelAt(texture, column, row), texelAt(texture, column + sideU, row), texelAt(texture, column, row + sideV),
                 texelAt(texture, column + sideU, row + sideV), withAlpha);
}

uint32_t FourTexels::mixBelow(const Texture &below, Position at, bool withAlpha) const
{
    const Position half{at.u / 2, at.v / 2};
    const Position beside{add(at.u, fromWhole(sideU)) / 2, add(at.v, fromWhole(sideV)) / 2};
    return mixed(pointTexel(below, half), pointTexel(below, {beside.u, half.v}), pointTexel(below, {half.u, beside.v}),
                 pointTexel(below, beside), withAlpha);
}

uint32_t FourTexels::mixBelowInTriangle(const Texture &below, Position at, bool withAlpha) const
{
    const Position half{at.u / 2, at.v / 2};
    const Position beside{add(at.u, fromWhole(sideU)) / 2, add(at.v, fromWhole(sideV)) / 2};
    const Position farAlong{half.u, add(half.v, fromWhole(sideV))};
    return mixed(pointTexel(below, half), pointTexel(below, {beside.u, half.v}), pointTexel(below, beside),
                 pointTexel(below, farAlong), withAlpha);
}

uint32_t levelsMixedWithAlpha(uint32_t level, uint32_t below, uint32_t weight)
{
    const uint32_t rest = 255 - weight;
    const uint32_t alphaGreen = (level >> 8 & 0xFF00FF) * weight + (below >> 8 & 0xFF00FF) * rest;
    const uint32_t redBlue = ((level & 0xFF00FF) * weight >> 8) + ((below & 0xFF00FF) * rest >> 8);
    return (alphaGreen & 0xFF00FF00) + (redBlue & 0xFF00FF);
}

} // namespace reference
