// Mip chains whose texels tell where they are from, and the arithmetic of two levels one channel at a time.
#pragma once

#include <ninefold/texture.h>

#include <cstdint>

namespace levels {

// Texel (u, v) of level l. Channels differ, alpha is never 0.
constexpr uint32_t idAt(uint32_t l, uint32_t u, uint32_t v)
{
    return 0x80000000 + (l << 24) + ((u * 37 + l * 101) % 256 << 16) + ((v * 59 + l * 77) % 256 << 8) +
           (u * 11 + v * 7 + l * 53) % 256;
}

// The same of another texture, with columns and rows exchanged.
constexpr uint32_t otherIdAt(uint32_t l, uint32_t u, uint32_t v) { return ~idAt(l, v, u) | 0x40000000; }

// Makes the chain and fills every level by pixelAt(level, u, v).
template <class PixelAt>
Texture *fill(Texture *t, PixelAt &&pixelAt)
{
    CreateMipmapTexture(t);
    for (uint32_t l = 0; l < t->mipCount; ++l) {
        Texture &level = *t->mip[l];
        for (uint32_t v = 0; v < level.height; ++v)
            for (uint32_t u = 0; u < level.width; ++u)
                level.pixels[(v << level.log2Width) + u] = pixelAt(l, u, v);
    }
    return t;
}

inline uint32_t texel(const Texture &t, int column, int line)
{
    return t.pixels[((static_cast<uint32_t>(line) & (t.height - 1)) << t.log2Width) +
                    (static_cast<uint32_t>(column) & (t.width - 1))];
}

inline uint32_t point(const Texture &t, int32_t u, int32_t v) { return texel(t, u >> 16, v >> 16); }

// (a * f + b * (255 - f)) / 256 in red, green and blue; alpha 0.
inline uint32_t mix3(uint32_t a, uint32_t b, uint32_t f)
{
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((a >> shift & 255) * f + (b >> shift & 255) * (255 - f)) >> 8 << shift;
    return result;
}

// The same with alpha; blue alone is truncated before it is added up.
inline uint32_t mix4(uint32_t a, uint32_t b, uint32_t f)
{
    uint32_t result = ((a & 255) * f >> 8) + ((b & 255) * (255 - f) >> 8);
    for (int shift = 8; shift < 32; shift += 8)
        result |= ((a >> shift & 255) * f + (b >> shift & 255) * (255 - f)) >> 8 << shift;
    return result;
}

// The four weights at a position and where its neighbours lie.
struct Taps {
    uint32_t centre, h, w, d;
    int32_t moveU, moveV;
};

inline Taps tapsAt(int32_t u, int32_t v)
{
    const uint32_t fx = static_cast<uint32_t>(u) >> 8 & 255, fy = static_cast<uint32_t>(v) >> 8 & 255;
    const uint32_t wx = fx < 128 ? fx + 128 : 383 - fx, wy = fy < 128 ? fy + 128 : 383 - fy, p = wx * wy >> 8;
    return {p, wy - p, wx - p, 256 - wx - wy + p, fx < 128 ? -0x10000 : 0x10000, fy < 128 ? -0x10000 : 0x10000};
}

inline uint32_t weigh(const Taps &k, uint32_t centre, uint32_t h, uint32_t w, uint32_t d, bool four)
{
    uint32_t result = 0;
    for (int shift = 0; shift < (four ? 32 : 24); shift += 8) {
        const auto byte = [shift](uint32_t word) { return word >> shift & 255; };
        result |= (byte(centre) * k.centre + byte(h) * k.h + byte(w) * k.w + byte(d) * k.d) >> 8 << shift;
    }
    return result;
}

// Four texels of the level itself.
inline uint32_t bilinear(const Texture &t, int32_t u, int32_t v, bool four)
{
    const Taps k = tapsAt(u, v);
    return weigh(k, point(t, u, v), point(t, u + k.moveU, v), point(t, u, v + k.moveV), point(t, u + k.moveU, v + k.moveV), four);
}

// Four texels of the level below, at half of every position, by the weights of the level.
inline uint32_t bilinearBelow(const Texture &t, int32_t u, int32_t v, bool four)
{
    const Taps k = tapsAt(u, v);
    const int32_t u2 = (u + k.moveU) / 2, v2 = (v + k.moveV) / 2;
    return weigh(k, point(t, u / 2, v / 2), point(t, u2, v / 2), point(t, u / 2, v2), point(t, u2, v2), four);
}

// The triangles' taps: the third is the diagonal, the fourth moves a whole texel of the level below.
inline uint32_t bilinearBelowInTriangles(const Texture &t, int32_t u, int32_t v, bool four)
{
    const Taps k = tapsAt(u, v);
    const int32_t u2 = (u + k.moveU) / 2, v2 = (v + k.moveV) / 2;
    return weigh(k, point(t, u / 2, v / 2), point(t, u2, v / 2), point(t, u2, v2), point(t, u / 2, v / 2 + k.moveV), four);
}

} // namespace levels
