// Colours in the place of texels.
#pragma once

#include "kernels/simd/fetch.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <int t, Sample s>
requires(s.reading == Reading::flat) struct Fetch<t, s> : Untested {
    V colour;
    NINEFOLD_INLINED Fetch(const Span &, int) : colour(splat(rs.color[0])) {}
    NINEFOLD_INLINED V get(int, V &key) const { return key = colour; }
    NINEFOLD_INLINED void advance() {}
};

struct Colours : Untested {
    Ramp a, r, g, b;
    NINEFOLD_INLINED Colours(const Span &s, int first)
        : a(Ramp::make(s.colour[0], first)), r(Ramp::make(s.colour[1], first)), g(Ramp::make(s.colour[2], first)),
          b(Ramp::make(s.colour[3], first))
    {}
    NINEFOLD_INLINED void advance() { a.advance(), r.advance(), g.advance(), b.advance(); }
};

// The two-shift pack: what lies above bit 23 of green and red leaks into the channel above.
template <int t, Sample s>
requires(s.reading == Reading::gouraud) struct Fetch<t, s> : Colours {
    using Colours::Colours;
    NINEFOLD_INLINED V get(int, V &key) const
    {
        const V low = ((g.value & 0xFFFF00FFu) | b.value >> 8) >> 8;
        const V high = ((a.value & 0xFFFF00FFu) << 8 | r.value) & 0xFFFF0000u;
        return key = low | high;
    }
};

template <int t, Sample s>
requires(s.reading == Reading::corners) struct Fetch<t, s> : Colours {
    using Colours::Colours;
    NINEFOLD_INLINED V get(int, V &key) const
    {
        key = splat(1); // a colour is never transparent
        return (a.value << 8 & 0xFF000000u) | (r.value & 0xFF0000u) | (g.value >> 8 & 0xFF00u) | (b.value >> 16 & 0xFFu);
    }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
