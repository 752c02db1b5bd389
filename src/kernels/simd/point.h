// Single texels.
#pragma once

#include "kernels/simd/fetch.h"
#include "kernels/simd/window.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <int t, Sample s>
requires(s.motion == Motion::unit && (s.reading == Reading::point || s.reading == Reading::mapped)) struct Fetch<t, s> {
    static constexpr bool tests = s.reading == Reading::point, mapped = !tests;
    const u32 *row;
    u32 column, mask;
    NINEFOLD_INLINED Fetch(const Span &span, int first)
    {
        const Source &level = span.tex[t].level;
        row = rowOf(level, span.tex[t].v.start);
        column = span.tex[t].u.start + u32(first);
        mask = level.maskU;
    }
    NINEFOLD_INLINED V get(int left, V &key) const
    {
        const u32 at = column & mask;
        if (mask - at >= u32(lanes - 1))
            key = load(row + at);
        else if (left < lanes && mask - at >= u32(left - 1))
            key = loadSome(row + at, left);
        else
            key = gather(row, (splat(column) + iota()) & mask);
        return key;
    }
    NINEFOLD_INLINED const u32 *direct(int n) const
    {
        const u32 at = column & mask;
        return mask - at >= u32(n - 1) / lanes * lanes + (lanes - 1) ? row + at : nullptr;
    }
    NINEFOLD_INLINED void advance() { column += lanes; }
};

template <int t, Sample s>
requires(s.reading == Reading::run) struct Fetch<t, s> : Untested {
    const u32 *at, *end; // of the texture
    NINEFOLD_INLINED Fetch(const Span &span, int first)
        : at(span.run + first), end(span.tex[t].level.pixels + (size_t(span.tex[t].level.maskV + 1) << span.tex[t].level.shift))
    {}
    NINEFOLD_INLINED const u32 *direct(int n) const { return end - at >= (n + lanes - 1) / lanes * lanes ? at : nullptr; }
    NINEFOLD_INLINED V get(int left, V &key) const { return key = left >= lanes ? load(at) : loadSome(at, left); }
    NINEFOLD_INLINED void advance() { at += lanes; }
};

template <int t, Sample s>
requires(s.motion == Motion::row && s.reading == Reading::point) struct Fetch<t, s> : Tested {
    Window<> window;
    Ramp u;
    NINEFOLD_INLINED Fetch(const Span &span, int first)
        : window(rowOf(span.tex[t].level, truncated(span.tex[t].v.start)), span.tex[t].level.maskU, span.tex[t].u, first),
          u(Ramp::make(span.tex[t].u, first))
    {}
    NINEFOLD_INLINED V get(int left, V &key) const { return key = window.get(u.value, left); }
    NINEFOLD_INLINED void advance() { u.advance(), window.advance(); }
};

template <int t, Sample s>
requires((s.motion == Motion::free || s.motion == Motion::pers) && s.reading == Reading::point) struct Fetch<t, s> : Tested {
    Position<t, s.motion> position;
    const Source level;
    NINEFOLD_INLINED Fetch(const Span &span, int first) : position(span, first), level(span.tex[t].level) {}
    NINEFOLD_INLINED V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        return key = texel(level, whole(u) & level.maskU, whole(v) & level.maskV);
    }
    NINEFOLD_INLINED void advance() { position.advance(); }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
