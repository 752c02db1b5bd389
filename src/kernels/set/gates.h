// Gates: which pixels of a vector the planes and the stipple leave free.
#pragma once

#include "kernels/parts.h"
#include "kernels/set/lanes.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// Lane k lives where bit 31 - k is clear.
NINEFOLD_LANE V clearBits(u32 bits) { return (V)((S)(splat(bits) & (splat(0x80000000u) >> iota())) == S{}); }

// Plane bits from bit `at` of `words` on, in the top of the result; only words that hold one of the n pixels are read.
NINEFOLD_LANE u32 window(const u16* words, u32 at, int n)
{
    const u32 word = at >> 4, last = (at + u32(n < lanes ? n : lanes) - 1) >> 4;
    u32 bits = u32(words[word]) << 16;
    if (last != word)
        bits |= words[last];
    return bits << (at & 15);
}

NINEFOLD_LANE u32 stippleWindow(u32 maskRow, u32 x) { return (maskRow << 16 | maskRow) << (x & 15); }

template <Gate g, bool mapped>
struct Gates {
    const Span& span;
    int index;
    __attribute__((always_inline)) Gates(const Span& s, int first) : span(s), index(first) {}
    __attribute__((always_inline)) V get(V live, int left) const
    {
        if constexpr (g == Gate::plane) {
            const u32 at = (span.x & 15) + u32(index);
            u32 bits = window(span.plane, at, left) | stippleWindow(span.maskRow, at);
            if (mapped)
                bits |= window(span.zeroMap, at, left);
            live &= clearBits(bits);
        }
        if constexpr (g == Gate::z || g == Gate::zMask)
            live &= (V)((S)loadBytes(span.z + index, left) >= (S)splat(rs.zRef & 255));
        if constexpr (g == Gate::mask || g == Gate::zMask)
            live &= clearBits(stippleWindow(span.maskRow, span.x + u32(index)));
        return live;
    }
    __attribute__((always_inline)) void advance() { index += lanes; }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
