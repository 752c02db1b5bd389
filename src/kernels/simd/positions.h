// Positions: where in a texture a vector of pixels reads, for each way in which that moves along a row.
#pragma once

#include "kernels/parts.h"
#include "kernels/simd/lanes.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// The values of a linear quantity at pixels first to first + lanes - 1, and on from there.
struct Ramp {
    V value, step;
    NINEFOLD_LANE Ramp make(const Linear &l, int first)
    {
        const u32 start = l.start + l.step * u32(first);
        return {splat(start) + iota() * splat(l.step), splat(l.step * lanes)};
    }
    NINEFOLD_INLINED void advance() { value += step; }
};

// floor(a * 2^32 / w) for the low word of each pair, a below w; otherwise anything. One double division serves: the quotient to
// the nearest is right or one too great, and the sign of the 64-bit remainder tells which.
NINEFOLD_LANE D quotientOfPairs(D a, D w, F reciprocal)
{
    const D quotient = toNearest(toDouble(a) * reciprocal);
    const D remainder = (a << 32) - mulWide(quotient, w);
    return (quotient - (remainder >> 63)) & 0xFFFFFFFFu;
}

// a mod w, in the same way.
NINEFOLD_LANE D remainderOfPairs(D a, D w, F reciprocal)
{
    const D quotient = toNearest(toDouble(a) * (reciprocal * (1.0 / 4294967296.0)));
    const D remainder = a - mulWide(quotient, w);
    return (remainder + (-(remainder >> 63) & w)) & 0xFFFFFFFFu;
}

// floor((a mod w) * 2^32 / w), unsigned. A w of 0 gives anything.
NINEFOLD_LANE V fraction(V a, V w)
{
    D aLow = (D)a & 0xFFFFFFFFu, aHigh = (D)a >> 32;
    const D wLow = (D)w & 0xFFFFFFFFu, wHigh = (D)w >> 32;
    const F low = 4294967296.0 / toDouble(wLow), high = 4294967296.0 / toDouble(wHigh);
    if (any(atLeast(a, w))) { // only from coordinates that the division by depth was not made for
        aLow = remainderOfPairs(aLow, wLow, low);
        aHigh = remainderOfPairs(aHigh, wHigh, high);
    }
    return (V)(quotientOfPairs(aLow, wLow, low) | quotientOfPairs(aHigh, wHigh, high) << 32);
}

// 16.16 positions.
template <int t, Motion motion>
struct Position;

template <int t>
struct Position<t, Motion::row> {
    Ramp u;
    V v;
    NINEFOLD_INLINED Position(const Span &s, int first) : u(Ramp::make(s.tex[t].u, first)), v(splat(s.tex[t].v.start)) {}
    NINEFOLD_INLINED void get(V &atU, V &atV) const { atU = u.value, atV = v; }
    NINEFOLD_INLINED void advance() { u.advance(); }
};

template <int t>
struct Position<t, Motion::free> {
    Ramp u, v;
    NINEFOLD_INLINED Position(const Span &s, int first) : u(Ramp::make(s.tex[t].u, first)), v(Ramp::make(s.tex[t].v, first)) {}
    NINEFOLD_INLINED void get(V &atU, V &atV) const { atU = u.value, atV = v.value; }
    NINEFOLD_INLINED void advance() { u.advance(), v.advance(); }
};

template <int t>
struct Position<t, Motion::pers> {
    Ramp u, v, w;
    u32 shiftU, shiftV;
    NINEFOLD_INLINED Position(const Span &s, int first)
        : u(Ramp::make(s.tex[t].u, first)), v(Ramp::make(s.tex[t].v, first)), w(Ramp::make(s.w, first)), shiftU(s.tex[t].shiftU),
          shiftV(s.tex[t].shiftV)
    {}
    NINEFOLD_INLINED void get(V &atU, V &atV) const
    {
        atU = shiftSigned(fraction(u.value, w.value), shiftU);
        atV = shiftSigned(fraction(v.value, w.value), shiftV);
    }
    NINEFOLD_INLINED void advance() { u.advance(), v.advance(), w.advance(); }
};

// A row of texels, wrapped.
NINEFOLD_LANE const u32 *rowOf(const Source &t, u32 row) { return t.pixels + (size_t(row & t.maskV) << t.shift); }

NINEFOLD_LANE V texel(const Source &t, V column, V row) { return gather(t.pixels, shiftLeft(row, t.shift) + column); }

// 16.16 to whole for one value, towards zero.
NINEFOLD_LANE u32 truncated(u32 v) { return u32(i32(v) / 65536); }

} // namespace
} // namespace ninefold::NINEFOLD_SET
