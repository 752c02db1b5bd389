// What all frames share.
#pragma once

#include "kernels/plan.h"
#include "ops/word.h"

#include <cstddef>
#include <cstdint>

namespace ninefold {

inline Source sourceOf(const Texture &t) { return {t.pixels, t.width - 1, t.height - 1, t.log2Width}; }

// Signed division towards zero that wraps where the quotient does not fit.
inline uint32_t divided(uint32_t a, uint32_t b) { return int32_t(b) == -1 ? 0 - a : uint32_t(int32_t(a) / int32_t(b)); }

// The same by one divisor for many dividends, without a division each. Neither dividend nor divisor is above 2^31 in size, so
// a quotient that is no whole number stays at least 1 / divisor short of the next one; raising the reciprocal by 2^-50 outweighs
// its rounding and moves the quotient by less than that. Truncation then gives the exact quotient, 2^31 wraps.
class Divider {
public:
    Divider() = default;
    explicit Divider(uint32_t divisor) : reciprocal((1.0 + 0x1p-50) / double(int32_t(divisor))) {}
    uint32_t operator()(uint32_t dividend) const { return uint32_t(int64_t(double(int32_t(dividend)) * reciprocal)); }

private:
    double reciprocal;
};

// A colour's channels in the order alpha, red, green, blue, as 8-bit values over 16 fraction bits.
inline uint32_t channel(uint32_t colour, int k) { return (colour >> (24 - 8 * k) & 0xFF) << 16; }

// What rs holds of texture 0 or 1.
template <int t>
struct FieldsOf {
    static TexCoord *uv() { return t ? rs.uv1 : rs.uv0; }
    static Texture *&texture() { return t ? rs.tex1 : rs.tex0; }
    static Texture *&next() { return t ? rs.mipTex1 : rs.mipTex; }
    static int32_t &frac() { return t ? rs.mipFrac1 : rs.mipFrac; }
};

// The mip level of tex0 or tex1 for a texel density in 16.16, with at least two levels in the chain. Octave k reaches from 2^k
// to 2^(k + 1) texels a pixel; its weight `frac`, of the level against the next, is left alone where none fits. The bounds of
// octaves wrap at 32 bits: negative densities, which come of differences that wrapped, lie in the last one, those from 2^30 on
// in none.
inline uint32_t levelOf(const Texture &texture, int32_t density, int32_t &frac)
{
    uint32_t level = 0;
    if (density < 0 || (density >= 0x10000 && density < 0x40000000)) {
        level = density < 0 ? 15 : uint32_t(std::bit_width(uint32_t(density))) - 17;
        frac = 255 - ((density >> (level + 8)) & 0xFF);
    }
    return level >= texture.mipCount - 1 ? texture.mipCount - 2 : level;
}

// Memory that a call writes. Frames widen it rather than work it out to the pixel: what it decides is only how fast a row is
// drawn.
struct Target {
    const void *pixels, *pixelsEnd;
    const void *plane, *planeEnd; // null where no plane is marked
    const void *z, *zEnd;

    static bool meet(const void *a, const void *aEnd, const void *b, const void *bEnd)
    {
        return uintptr_t(a) < uintptr_t(bEnd) && uintptr_t(b) < uintptr_t(aEnd);
    }
    [[gnu::always_inline]] bool overlaps(const Source &t) const
    {
        const uint32_t *end = t.pixels + (size_t(t.maskV + 1) << t.shift);
        return meet(t.pixels, end, pixels, pixelsEnd) || meet(t.pixels, end, plane, planeEnd) || meet(t.pixels, end, z, zEnd);
    }
    bool overlapsChain(const Texture &t) const
    {
        for (uint32_t k = 0; k < t.mipCount; ++k)
            if (overlaps(sourceOf(*t.mip[k])))
                return true;
        return false;
    }
};

// The rows top to bottom - 1, columns left to right - 1 of the frame buffer and, with `marks`, of the planes.
[[gnu::always_inline]] inline Target targetOf(int32_t left, int32_t top, int32_t right, int32_t bottom, bool marks)
{
    const ptrdiff_t first = (ptrdiff_t(top) << rs.dstShift) + left, end = (ptrdiff_t(bottom - 1) << rs.dstShift) + right;
    Target t{rs.dstPixels + first, rs.dstPixels + end, nullptr, nullptr, nullptr, nullptr};
    if (marks) {
        t.plane = rs.shaheiPlane + first / 16, t.planeEnd = rs.shaheiPlane + end / 16 + 1;
        t.z = rs.zBuffer + first, t.zEnd = rs.zBuffer + end;
    }
    return t;
}

// Puts the textures that a frame reads into a span, those with a level of their own for each line excepted, and tells whether
// any of them shares memory with what is written.
template <Frame f>
[[gnu::always_inline]] inline bool takeTextures(Span &s, const Target &target)
{
    bool overlap = false;
    const auto take = [&](Source &source, const Texture *texture) NINEFOLD_INLINED {
        source = sourceOf(*texture);
        overlap |= target.overlaps(source);
    };
    if constexpr (f.walk != Walk::none && f.hasLineLevels()) {
        overlap |= target.overlapsChain(*rs.tex0);
        if constexpr (f.second())
            overlap |= target.overlapsChain(*rs.tex1);
    } else if constexpr (f.walk != Walk::none) {
        take(s.tex[0].level, rs.tex0);
        if constexpr (f.hasNext())
            take(s.tex[0].next, rs.mipTex);
        if constexpr (f.second()) {
            take(s.tex[1].level, rs.tex1);
            if constexpr (f.hasNext())
                take(s.tex[1].next, rs.mipTex1);
        }
    }
    if constexpr (f.rule)
        take(s.rule, rs.tex2);
    return overlap;
}

} // namespace ninefold
