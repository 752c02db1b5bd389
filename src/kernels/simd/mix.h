// Four texels mixed, and one of two chosen by a stipple.
#pragma once

#include "core/startup.h"
#include "kernels/simd/fetch.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// The taps of a four-texel mix at a 16.16 position: which side the neighbours lie, and the four weights (in both halves of each
// lane), which add up to 256.
struct Taps {
    V moveU, moveV; // plus or minus one texel, to the neighbour
    V centre, side, row, corner; // weights
    NINEFOLD_LANE Taps at(V u, V v)
    {
        const V fx = u >> 8 & 0xFFu, fy = v >> 8 & 0xFFu;
        const V farX = (V)((S)(u << 16) >> 31), farY = (V)((S)(v << 16) >> 31); // fraction of 128 and more
        // 128 + f below 128, else 383 - f
        const V wx = fx ^ ((farX ^ 0x80u) & 0xFFu), wy = fy ^ ((farY ^ 0x80u) & 0xFFu);
        const V p = mul16(wx, wy) >> 8;
        const V far = splat(0x20000), near = splat(u32(-0x10000));
        return {(farX & far) + near, (farY & far) + near, bothHalves(p),
                bothHalves(wy - p),  bothHalves(wx - p),  bothHalves(256u - wx - wy + p)};
    }
};

// Sums of red and blue, and of alpha and green, in 16-bit halves; the mixed channel is the top byte of each.
struct Sums {
    V redBlue, alphaGreen;
    NINEFOLD_LANE Sums of(const Taps &w, V centre, V side, V row, V corner)
    {
        return {mul16(centre & 0xFF00FFu, w.centre) + mul16(side & 0xFF00FFu, w.side) + mul16(row & 0xFF00FFu, w.row) +
                    mul16(corner & 0xFF00FFu, w.corner),
                mul16(centre >> 8 & 0xFF00FFu, w.centre) + mul16(side >> 8 & 0xFF00FFu, w.side) +
                    mul16(row >> 8 & 0xFF00FFu, w.row) + mul16(corner >> 8 & 0xFF00FFu, w.corner)};
    }
    NINEFOLD_INLINED V three() const { return (redBlue >> 8 & 0xFF00FFu) | (alphaGreen & 0xFF00u); }
    NINEFOLD_INLINED V four() const { return (redBlue >> 8 & 0xFF00FFu) | (alphaGreen & 0xFF00FF00u); }
};

NINEFOLD_LANE Sums mixedTexels(const Source &level, const Taps &taps, V u, V v, V &centre)
{
#if defined(__AVX2__)
    // Centre and side are neighbours in memory, unless the pair goes round the edge of the texture.
    const V pair = whole(u - 0x8000u) & level.maskU;
    if (!any(equal(pair, splat(level.maskU)))) {
        const V upper = shiftLeft(whole(v) & level.maskV, level.shift);
        const V lower = shiftLeft(whole(v + taps.moveV) & level.maskV, level.shift);
        V left, right, left2, right2;
        gatherPairs(level.pixels, upper + pair, left, right);
        gatherPairs(level.pixels, lower + pair, left2, right2);
        const M far = topBit(u << 16); // the centre is the left one
        centre = select(far, left, right);
        return Sums::of(taps, centre, select(far, right, left), select(far, left2, right2), select(far, right2, left2));
    }
#endif
    const V row = shiftLeft(whole(v) & level.maskV, level.shift), column = whole(u) & level.maskU;
    const V row2 = shiftLeft(whole(v + taps.moveV) & level.maskV, level.shift), column2 = whole(u + taps.moveU) & level.maskU;
    centre = gather(level.pixels, row + column);
    return Sums::of(taps, centre, gather(level.pixels, row + column2), gather(level.pixels, row2 + column),
                    gather(level.pixels, row2 + column2));
}

template <int t, Sample s>
requires(s.reading == Reading::mix3 || s.reading == Reading::mix4) struct Fetch<t, s> : Tested {
    Position<t, s.motion> position;
    const Source level;
    NINEFOLD_INLINED Fetch(const Span &span, int first) : position(span, first), level(span.tex[t].level) {}
    NINEFOLD_INLINED V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        const Sums sums = mixedTexels(level, Taps::at(u, v), u, v, key);
        return s.reading == Reading::mix4 ? sums.four() : sums.three();
    }
    NINEFOLD_INLINED void advance() { position.advance(); }
};

// One of two neighbouring texels of the nearer row: the left of the pair while the fraction is below the column's threshold.
template <int t, Sample s>
requires(s.reading == Reading::stipple) struct Fetch<t, s> : Tested {
    Position<t, s.motion> position;
    const Source level;
    u32 x;
    NINEFOLD_INLINED Fetch(const Span &span, int first) : position(span, first), level(span.tex[t].level), x(span.x + u32(first))
    {}
    NINEFOLD_INLINED V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        key = texel(level, whole(u) & level.maskU, whole(v) & level.maskV);
        // Half a texel back, the pair is the texel of the position and the one to its right, and the row is that of the position.
        const V pair = u - 0x8000u, row = v - 0x8000u;
        const V fraction = pair >> 8 & 0xFFu;
        const M left = greaterSigned(load(stippleSteps + (x & 15)), fraction);
        return texel(level, whole(pair + select(left, V{}, splat(0x10000))) & level.maskU, whole(row) & level.maskV);
    }
    NINEFOLD_INLINED void advance() { position.advance(), x += lanes; }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
