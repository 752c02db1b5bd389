// Blocks of one texel each.
#pragma once

#include "kernels/simd/fetch.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// (x / size) * size, truncating, for |x| up to 2^24: a correctly rounded quotient of such a value cannot reach the next whole
// number.
struct BlockSize {
    R size;
    NINEFOLD_INLINED explicit BlockSize(i32 k) : size(float(k) - R{}) {}
    NINEFOLD_INLINED V operator()(V x) const { return toWhole(toReal(toWhole(toReal(x) / size)) * size); }
};

// Columns of tex0 are quantised by mosaicSize, then wrapped; those of tex1 the other way round and by mosaicSize1.
template <int t>
NINEFOLD_LANE V mosaicColumn(const BlockSize &block, V u, u32 mask)
{
    return t ? block(whole(u) & mask) : block(whole(u)) & mask;
}
template <int t>
NINEFOLD_LANE i32 mosaicColumnSize()
{
    return t ? rs.mosaicSize1 : rs.mosaicSize;
}

// Unit scale quantises what is wrapped, with the block's width and height apart.
template <int t, Sample s>
requires((s.motion == Motion::unit || s.motion == Motion::row) && s.reading == Reading::mosaic) struct Fetch<t, s> : Tested {
    static constexpr bool unit = s.motion == Motion::unit;
    const u32 *row;
    BlockSize block;
    u32 mask;
    Ramp u;
    NINEFOLD_INLINED Fetch(const Span &span, int first)
        : block(unit ? rs.mosaicSize1 : mosaicColumnSize<t>()), mask(span.tex[t].level.maskU), u(Ramp::make(span.tex[t].u, first))
    {
        const i32 v = i32(unit ? span.tex[t].v.start : truncated(span.tex[t].v.start));
        row = rowOf(span.tex[t].level, u32(v / rs.mosaicSize * rs.mosaicSize));
    }
    NINEFOLD_INLINED V get(int, V &key) const
    {
        return key = gather(row, unit ? block(u.value & mask) : mosaicColumn<t>(block, u.value, mask));
    }
    NINEFOLD_INLINED void advance() { u.advance(); }
};

// The rows of tex1 are quantised before they wrap in rectangles, after it in triangles.
template <int t, Sample s>
requires((s.motion == Motion::free || s.motion == Motion::pers) && s.reading == Reading::mosaic) struct Fetch<t, s> : Tested {
    Position<t, s.motion> position;
    const Source level;
    BlockSize rows, columns;
    NINEFOLD_INLINED Fetch(const Span &span, int first)
        : position(span, first), level(span.tex[t].level), rows(rs.mosaicSize), columns(mosaicColumnSize<t>())
    {}
    NINEFOLD_INLINED V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        const V row = t && s.triangle ? rows(whole(v) & level.maskV) : rows(whole(v)) & level.maskV;
        return key = texel(level, mosaicColumn<t>(columns, u, level.maskU), row);
    }
    NINEFOLD_INLINED void advance() { position.advance(); }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
