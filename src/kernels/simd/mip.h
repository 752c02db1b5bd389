// Texels of a mip level and of the one below it.
#pragma once

#include "kernels/simd/mix.h"
#include "kernels/simd/operators.h"
#include "kernels/simd/point.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <int t>
NINEFOLD_LANE V weightOf()
{
    return splat(u32(t ? rs.mipFrac1 : rs.mipFrac));
}

template <int t, Sample s>
requires(s.reading == Reading::firstTexel) struct Fetch<t, s> : Tested {
    const u32 *pixels;
    NINEFOLD_INLINED Fetch(const Span &span, int) : pixels(span.tex[t].level.pixels) {}
    NINEFOLD_INLINED V get(int, V &key) const { return key = splat(*pixels); }
    NINEFOLD_INLINED void advance() {}
};

// The point sample of the level, which is the key, with what stands below it in the next level.
template <int t, Motion motion>
struct LevelPair {
    Position<t, motion> position;
    const Source level, next;
    NINEFOLD_INLINED LevelPair(const Span &s, int first) : position(s, first), level(s.tex[t].level), next(s.tex[t].next) {}
    NINEFOLD_INLINED void get(int, V &upper, V &lower) const
    {
        V u, v;
        position.get(u, v);
        upper = texel(level, whole(u) & level.maskU, whole(v) & level.maskV);
        lower = texel(next, (V)((S)u >> 17) & next.maskU, (V)((S)v >> 17) & next.maskV);
    }
    NINEFOLD_INLINED void advance() { position.advance(); }
};

// The same with a fixed row, which truncates for the level and floors for the next one.
template <int t>
struct LevelPair<t, Motion::row> {
    Fetch<t, Sample{Motion::row, Reading::point}> level;
    Window<17> next;
    NINEFOLD_INLINED LevelPair(const Span &s, int first)
        : level(s, first), next(rowOf(s.tex[t].next, u32(i32(s.tex[t].v.start) >> 17)), s.tex[t].next.maskU, s.tex[t].u, first)
    {}
    NINEFOLD_INLINED void get(int left, V &upper, V &lower) const
    {
        level.get(left, upper);
        lower = next.get(level.u.value, left);
    }
    NINEFOLD_INLINED void advance() { level.advance(), next.advance(); }
};

template <int t, Sample s>
requires(s.reading == Reading::mipMix) struct Fetch<t, s> : Tested {
    LevelPair<t, s.motion> pair;
    V weight;
    NINEFOLD_INLINED Fetch(const Span &span, int first) : pair(span, first), weight(weightOf<t>()) {}
    NINEFOLD_INLINED V get(int left, V &key) const
    {
        V lower;
        pair.get(left, key, lower);
        return mixWide(lower, key, weight, 255u - weight);
    }
    NINEFOLD_INLINED void advance() { pair.advance(); }
};

template <int t, Sample s>
requires(s.reading == Reading::mipNext) struct Fetch<t, s> : Tested {
    LevelPair<t, s.motion> pair;
    NINEFOLD_INLINED Fetch(const Span &span, int first) : pair(span, first) {}
    NINEFOLD_INLINED V get(int left, V &key) const
    {
        V lower;
        pair.get(left, key, lower);
        return lower;
    }
    NINEFOLD_INLINED void advance() { pair.advance(); }
};

// Four-texel mixes of the level and of the next one, mixed by the weight. The weights and sides of the level serve both. In
// triangles the third tap of the next level is the diagonal and the fourth moves a whole texel of it.
template <int t, Sample s>
requires(s.reading == Reading::mipBilinear) struct Fetch<t, s> : Tested {
    Position<t, s.motion> position;
    const Source level, next;
    V weight;
    NINEFOLD_INLINED Fetch(const Span &span, int first)
        : position(span, first), level(span.tex[t].level), next(span.tex[t].next), weight(weightOf<t>())
    {}
    NINEFOLD_INLINED V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        const Taps taps = Taps::at(u, v);
        const Sums upper = mixedTexels(level, taps, u, v, key);
        const V column = whole(half(u)) & next.maskU, column2 = whole(half(u + taps.moveU)) & next.maskU;
        const V row = shiftLeft(whole(half(v)) & next.maskV, next.shift);
        const V row2 = shiftLeft(whole(half(v + taps.moveV)) & next.maskV, next.shift);
        const V centre = gather(next.pixels, row + column), side = gather(next.pixels, row + column2);
        const V diagonal = gather(next.pixels, row2 + column2);
        V below;
        if constexpr (s.triangle)
            below = gather(next.pixels, shiftLeft(whole(half(v) + taps.moveV) & next.maskV, next.shift) + column);
        else
            below = gather(next.pixels, row2 + column);
        const Sums lower =
            s.triangle ? Sums::of(taps, centre, side, diagonal, below) : Sums::of(taps, centre, side, below, diagonal);
        const V other = 255u - weight;
        if constexpr (t == 0) {
            return mixWide(lower.three(), upper.three(), weight, other);
        } else { // four channels; red and blue are cut before they are added
            const V a = upper.four(), b = lower.four();
            return (((a >> 8 & 0xFF00FFu) * weight + (b >> 8 & 0xFF00FFu) * other) & 0xFF00FF00u) +
                   ((((b & 0xFF00FFu) * other >> 8) + ((a & 0xFF00FFu) * weight >> 8)) & 0xFF00FFu);
        }
    }
    NINEFOLD_INLINED void advance() { position.advance(); }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
