// Fetches: where a vector of pixels gets its source words from. A fetch starts at a pixel of a span, gives `lanes` words a call
// and steps on. Its key is the texel that the transparent test looks at.
#pragma once

#include "core/tables.h"
#include "kernels/parts.h"
#include "kernels/simd/operators.h"

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
    __attribute__((always_inline)) void advance() { value += step; }
};

// Texture 0 or 1 of a span, with everything that belongs to it.
template <int t>
struct Texture01 {
    NINEFOLD_LANE const Source &level(const Span &s) { return t ? s.tex1 : s.tex0; }
    NINEFOLD_LANE const Source &next(const Span &s) { return t ? s.next1 : s.next0; }
    NINEFOLD_LANE const Linear &u(const Span &s) { return t ? s.u1 : s.u0; }
    NINEFOLD_LANE const Linear &v(const Span &s) { return t ? s.v1 : s.v0; }
    NINEFOLD_LANE u32 shiftU(const Span &s) { return t ? s.shiftU1 : s.shiftU0; }
    NINEFOLD_LANE u32 shiftV(const Span &s) { return t ? s.shiftV1 : s.shiftV0; }
    NINEFOLD_LANE u32 weight() { return u32(t ? rs.mipFrac1 : rs.mipFrac); }
};

// 16.16 positions, three ways.
template <int t>
struct RowPosition {
    Ramp u;
    V v;
    __attribute__((always_inline)) RowPosition(const Span &s, int first)
        : u(Ramp::make(Texture01<t>::u(s), first)), v(splat(Texture01<t>::v(s).start))
    {}
    __attribute__((always_inline)) void get(V &atU, V &atV) const { atU = u.value, atV = v; }
    __attribute__((always_inline)) void advance() { u.advance(); }
};

template <int t>
struct FreePosition {
    Ramp u, v;
    __attribute__((always_inline)) FreePosition(const Span &s, int first)
        : u(Ramp::make(Texture01<t>::u(s), first)), v(Ramp::make(Texture01<t>::v(s), first))
    {}
    __attribute__((always_inline)) void get(V &atU, V &atV) const { atU = u.value, atV = v.value; }
    __attribute__((always_inline)) void advance() { u.advance(), v.advance(); }
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

template <int t>
struct PersPosition {
    Ramp u, v, w;
    u32 shiftU, shiftV;
    __attribute__((always_inline)) PersPosition(const Span &s, int first)
        : u(Ramp::make(Texture01<t>::u(s), first)), v(Ramp::make(Texture01<t>::v(s), first)), w(Ramp::make(s.w, first)),
          shiftU(Texture01<t>::shiftU(s)), shiftV(Texture01<t>::shiftV(s))
    {}
    __attribute__((always_inline)) void get(V &atU, V &atV) const
    {
        atU = shiftSigned(fraction(u.value, w.value), shiftU);
        atV = shiftSigned(fraction(v.value, w.value), shiftV);
    }
    __attribute__((always_inline)) void advance() { u.advance(), v.advance(), w.advance(); }
};

NINEFOLD_LANE V texel(const Source &t, V column, V row) { return gather(t.pixels, shiftLeft(row, t.shift) + column); }

// 16.16 to whole for one value, towards zero.
NINEFOLD_LANE u32 truncated(u32 v) { return u32(i32(v) / 65536); }

// Whether a fetch has direct(n): where n texels lie in memory in the order of the pixels and may be read in whole vectors, or
// null.
template <class Fetcher>
constexpr bool hasDirect = requires(const Fetcher &fetch, int n)
{
    fetch.direct(n);
};

// Fetches that test their key are the rule.
struct Tested {
    static constexpr bool tests = true, mapped = false;
};
struct Untested {
    static constexpr bool tests = false, mapped = false;
};

template <int t, bool test, bool map = false>
struct Unit {
    static constexpr bool tests = test, mapped = map;
    const u32 *row;
    u32 column, mask;
    __attribute__((always_inline)) Unit(const Span &s, int first)
    {
        const Source &level = Texture01<t>::level(s);
        row = level.pixels + (size_t(Texture01<t>::v(s).start) << level.shift);
        column = Texture01<t>::u(s).start + u32(first);
        mask = level.maskU;
    }
    __attribute__((always_inline)) V get(int left, V &key) const
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
    __attribute__((always_inline)) const u32 *direct(int n) const
    {
        const u32 at = column & mask;
        return mask - at >= u32(n - 1) / lanes * lanes + (lanes - 1) ? row + at : nullptr;
    }
    __attribute__((always_inline)) void advance() { column += lanes; }
};

struct Run : Untested {
    const u32 *at, *end; // of the texture
    __attribute__((always_inline)) Run(const Span &s, int first)
        : at(s.run + first), end(s.tex0.pixels + (size_t(s.tex0.maskV + 1) << s.tex0.shift))
    {}
    __attribute__((always_inline)) const u32 *direct(int n) const
    {
        return end - at >= (n + lanes - 1) / lanes * lanes ? at : nullptr;
    }
    __attribute__((always_inline)) V get(int left, V &key) const { return key = left >= lanes ? load(at) : loadSome(at, left); }
    __attribute__((always_inline)) void advance() { at += lanes; }
};

// Where a vector of pixels finds all its columns of a texture row in one or two vectors of neighbours. lowest: the first of the
// columns before wrapping, extent: how far the last lies behind it.
struct WindowFit {
    int vectors; // 0: they do not fit
    u32 base; // first column of the window
    NINEFOLD_LANE WindowFit of(i32 lowest, u32 extent, u32 mask, int most)
    {
        const u32 column = u32(lowest) & mask;
        for (int vectors = 1; vectors <= most; ++vectors) {
            const u32 size = u32(vectors * lanes);
            if (mask < size - 1 || extent > mask - column)
                continue;
            const u32 latest = mask - (size - 1), base = column < latest ? column : latest;
            if (extent + (column - base) < size)
                return {vectors, base};
        }
        return {0, 0};
    }
};

// The columns of a vector's positions, from the first pixel to the `last` one: the lowest of them and how far the others lie
// behind it. The extent is huge where the position wraps within the vector.
struct Reach {
    i32 lowest;
    u32 extent;
    NINEFOLD_LANE Reach of(u32 position, u32 step, u32 last, int shift)
    {
        const i32 a = i32(position) >> shift, b = i32(position + step * last) >> shift;
        return i32(step) < 0 ? Reach{b, u32(a) - u32(b)} : Reach{a, u32(b) - u32(a)};
    }
};

// Columns of one texture row at steps of up to two texels, read as one or two vectors of neighbours and sorted by a permutation.
// A column is the position shifted right by `shift`: 16, or 17 where the texture is the next level's.
template <int shift = 16>
struct Window {
    const u32 *row;
    u32 mask;
    u32 position, step; // 16.16, of the first pixel of the next vector
    int most; // vectors that are worth a try
    bool unit; // one texel a pixel
    __attribute__((always_inline)) Window(const u32 *texels, u32 columnMask, const Linear &u, int first)
        : row(texels), mask(columnMask), position(u.start + u.step * u32(first)), step(u.step)
    {
        const u32 size = i32(step) < 0 ? 0 - step : step;
        most = size <= 1u << shift ? 1 : size <= 2u << shift ? 2 : 0;
        unit = step == 1u << shift && mask <= 0xFFFFFFFF >> shift;
    }
    // The texels at the wrapped columns of u; pixels from `left` on may get anything.
    __attribute__((always_inline)) V get(V u, int left) const
    {
        if (unit) {
            const u32 column = (position >> shift) & mask;
            if (mask - column >= u32(lanes - 1))
                return load(row + column);
        }
#if defined(__AVX2__)
        if (most) {
            const u32 last = u32(left < lanes ? left : lanes) - 1;
            const Reach reach = Reach::of(position, step, last, shift);
            const WindowFit fit = WindowFit::of(reach.lowest, reach.extent, mask, most);
            if (fit.vectors) {
                const V index = (V)((S)u >> shift) - splat(u32(reach.lowest) - ((u32(reach.lowest) & mask) - fit.base));
                return fit.vectors == 1 ? permute(load(row + fit.base), index)
                                        : permute2(load(row + fit.base), load(row + fit.base + lanes), index);
            }
        }
#else
        (void)left;
#endif
        return gather(row, (V)((S)u >> shift) & mask);
    }
    __attribute__((always_inline)) void advance() { position += step * lanes; }
};

template <int t>
struct PointRow : Tested {
    Window<> window;
    Ramp u;
    __attribute__((always_inline)) static const u32 *rowOf(const Span &s)
    {
        const Source &level = Texture01<t>::level(s);
        return level.pixels + (size_t(truncated(Texture01<t>::v(s).start) & level.maskV) << level.shift);
    }
    __attribute__((always_inline)) PointRow(const Span &s, int first)
        : window(rowOf(s), Texture01<t>::level(s).maskU, Texture01<t>::u(s), first), u(Ramp::make(Texture01<t>::u(s), first))
    {}
    __attribute__((always_inline)) V get(int left, V &key) const { return key = window.get(u.value, left); }
    __attribute__((always_inline)) void advance() { u.advance(), window.advance(); }
};

template <template <int> class Position, int t>
struct Point : Tested {
    Position<t> position;
    const Source level;
    __attribute__((always_inline)) Point(const Span &s, int first) : position(s, first), level(Texture01<t>::level(s)) {}
    __attribute__((always_inline)) V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        return key = texel(level, whole(u) & level.maskU, whole(v) & level.maskV);
    }
    __attribute__((always_inline)) void advance() { position.advance(); }
};

// (x / size) * size, truncating, for |x| up to 2^24: a correctly rounded quotient of such a value cannot reach the next whole
// number.
struct BlockSize {
    R size;
    __attribute__((always_inline)) explicit BlockSize(i32 k) : size(float(k) - R{}) {}
    __attribute__((always_inline)) V operator()(V x) const { return toWhole(toReal(toWhole(toReal(x) / size)) * size); }
};

template <int t>
struct MosaicUnit : Tested {
    const u32 *row;
    BlockSize block;
    u32 column, mask;
    __attribute__((always_inline)) MosaicUnit(const Span &s, int first) : block(rs.mosaicSize1)
    {
        const Source &level = Texture01<t>::level(s);
        const i32 v = i32(Texture01<t>::v(s).start);
        row = level.pixels + (size_t(v / rs.mosaicSize * rs.mosaicSize) << level.shift);
        column = Texture01<t>::u(s).start + u32(first);
        mask = level.maskU;
    }
    __attribute__((always_inline)) V get(int, V &key) const { return key = gather(row, block((splat(column) + iota()) & mask)); }
    __attribute__((always_inline)) void advance() { column += lanes; }
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

template <int t>
struct MosaicRow : Tested {
    const u32 *row;
    BlockSize block;
    u32 mask;
    Ramp u;
    __attribute__((always_inline)) MosaicRow(const Span &s, int first)
        : block(mosaicColumnSize<t>()), u(Ramp::make(Texture01<t>::u(s), first))
    {
        const Source &level = Texture01<t>::level(s);
        const i32 v = i32(truncated(Texture01<t>::v(s).start));
        row = level.pixels + (size_t(u32(v / rs.mosaicSize * rs.mosaicSize) & level.maskV) << level.shift);
        mask = level.maskU;
    }
    __attribute__((always_inline)) V get(int, V &key) const { return key = gather(row, mosaicColumn<t>(block, u.value, mask)); }
    __attribute__((always_inline)) void advance() { u.advance(); }
};

// The rows of tex1 are quantised before they wrap in rectangles, after it in triangles.
template <template <int> class Position, int t, bool triangle>
struct Mosaic : Tested {
    Position<t> position;
    const Source level;
    BlockSize rows, columns;
    __attribute__((always_inline)) Mosaic(const Span &s, int first)
        : position(s, first), level(Texture01<t>::level(s)), rows(rs.mosaicSize), columns(mosaicColumnSize<t>())
    {}
    __attribute__((always_inline)) V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        const V row = t && triangle ? rows(whole(v) & level.maskV) : rows(whole(v)) & level.maskV;
        return key = texel(level, mosaicColumn<t>(columns, u, level.maskU), row);
    }
    __attribute__((always_inline)) void advance() { position.advance(); }
};

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
    __attribute__((always_inline)) V three() const { return (redBlue >> 8 & 0xFF00FFu) | (alphaGreen & 0xFF00u); }
    __attribute__((always_inline)) V four() const { return (redBlue >> 8 & 0xFF00FFu) | (alphaGreen & 0xFF00FF00u); }
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

template <template <int> class Position, int t, bool four>
struct Bilinear : Tested {
    Position<t> position;
    const Source level;
    __attribute__((always_inline)) Bilinear(const Span &s, int first) : position(s, first), level(Texture01<t>::level(s)) {}
    __attribute__((always_inline)) V get(int, V &key) const
    {
        V u, v;
        position.get(u, v);
        const Sums sums = mixedTexels(level, Taps::at(u, v), u, v, key);
        return four ? sums.four() : sums.three();
    }
    __attribute__((always_inline)) void advance() { position.advance(); }
};

// One of two neighbouring texels of the nearer row: the left of the pair while the fraction is below the column's threshold.
struct Stipple : Tested {
    FreePosition<0> position;
    const Source level;
    u32 x;
    __attribute__((always_inline)) Stipple(const Span &s, int first) : position(s, first), level(s.tex0), x(s.x + u32(first)) {}
    __attribute__((always_inline)) V get(int, V &key) const
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
    __attribute__((always_inline)) void advance() { position.advance(), x += lanes; }
};

struct Flat : Untested {
    V colour;
    __attribute__((always_inline)) Flat(const Span &, int) : colour(splat(rs.color[0])) {}
    __attribute__((always_inline)) V get(int, V &key) const { return key = colour; }
    __attribute__((always_inline)) void advance() {}
};

struct Colours : Untested {
    Ramp a, r, g, b;
    __attribute__((always_inline)) Colours(const Span &s, int first)
        : a(Ramp::make(s.colour[0], first)), r(Ramp::make(s.colour[1], first)), g(Ramp::make(s.colour[2], first)),
          b(Ramp::make(s.colour[3], first))
    {}
    __attribute__((always_inline)) void advance() { a.advance(), r.advance(), g.advance(), b.advance(); }
};

// The two-shift pack: what lies above bit 23 of green and red leaks into the channel above.
struct Gouraud : Colours {
    using Colours::Colours;
    __attribute__((always_inline)) V get(int, V &key) const
    {
        const V low = ((g.value & 0xFFFF00FFu) | b.value >> 8) >> 8;
        const V high = ((a.value & 0xFFFF00FFu) << 8 | r.value) & 0xFFFF0000u;
        return key = low | high;
    }
};

struct Corners : Colours {
    using Colours::Colours;
    __attribute__((always_inline)) V get(int, V &key) const
    {
        key = splat(1); // a colour is never transparent
        return (a.value << 8 & 0xFF000000u) | (r.value & 0xFF0000u) | (g.value >> 8 & 0xFF00u) | (b.value >> 16 & 0xFFu);
    }
};

template <int t>
struct FirstTexel : Tested {
    const u32 *pixels;
    __attribute__((always_inline)) FirstTexel(const Span &s, int) : pixels(Texture01<t>::level(s).pixels) {}
    __attribute__((always_inline)) V get(int, V &key) const { return key = splat(*pixels); }
    __attribute__((always_inline)) void advance() {}
};

// The point sample of the level, which is the key, with what stands below it in the next level.
template <template <int> class Position, int t>
struct LevelPair {
    Position<t> position;
    const Source level, next;
    __attribute__((always_inline)) LevelPair(const Span &s, int first)
        : position(s, first), level(Texture01<t>::level(s)), next(Texture01<t>::next(s))
    {}
    __attribute__((always_inline)) void get(int, V &upper, V &lower) const
    {
        V u, v;
        position.get(u, v);
        upper = texel(level, whole(u) & level.maskU, whole(v) & level.maskV);
        lower = texel(next, (V)((S)u >> 17) & next.maskU, (V)((S)v >> 17) & next.maskV);
    }
    __attribute__((always_inline)) void advance() { position.advance(); }
};

// The same with a fixed row, which truncates for the level and floors for the next one.
template <int t>
struct LevelPairRow {
    PointRow<t> level;
    Window<17> next;
    __attribute__((always_inline)) static const u32 *rowOf(const Span &s)
    {
        const Source &next = Texture01<t>::next(s);
        return next.pixels + (size_t(u32(i32(Texture01<t>::v(s).start) >> 17) & next.maskV) << next.shift);
    }
    __attribute__((always_inline)) LevelPairRow(const Span &s, int first)
        : level(s, first), next(rowOf(s), Texture01<t>::next(s).maskU, Texture01<t>::u(s), first)
    {}
    __attribute__((always_inline)) void get(int left, V &upper, V &lower) const
    {
        level.get(left, upper);
        lower = next.get(level.u.value, left);
    }
    __attribute__((always_inline)) void advance() { level.advance(), next.advance(); }
};

template <class Pair, int t>
struct MipMix : Tested {
    Pair pair;
    V weight;
    __attribute__((always_inline)) MipMix(const Span &s, int first) : pair(s, first), weight(splat(Texture01<t>::weight())) {}
    __attribute__((always_inline)) V get(int left, V &key) const
    {
        V lower;
        pair.get(left, key, lower);
        return mixWide(lower, key, weight, 255u - weight);
    }
    __attribute__((always_inline)) void advance() { pair.advance(); }
};

template <class Pair>
struct MipNext : Tested {
    Pair pair;
    __attribute__((always_inline)) MipNext(const Span &s, int first) : pair(s, first) {}
    __attribute__((always_inline)) V get(int left, V &key) const
    {
        V lower;
        pair.get(left, key, lower);
        return lower;
    }
    __attribute__((always_inline)) void advance() { pair.advance(); }
};

// Four-texel mixes of the level and of the next one, mixed by the weight. The weights and sides of the level serve both. In
// triangles the third tap of the next level is the diagonal and the fourth moves a whole texel of it.
template <template <int> class Position, int t, bool triangle>
struct MipBilinear : Tested {
    Position<t> position;
    const Source level, next;
    V weight;
    __attribute__((always_inline)) MipBilinear(const Span &s, int first)
        : position(s, first), level(Texture01<t>::level(s)), next(Texture01<t>::next(s)), weight(splat(Texture01<t>::weight()))
    {}
    __attribute__((always_inline)) V get(int, V &key) const
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
        if constexpr (triangle)
            below = gather(next.pixels, shiftLeft(whole(half(v) + taps.moveV) & next.maskV, next.shift) + column);
        else
            below = gather(next.pixels, row2 + column);
        const Sums lower =
            triangle ? Sums::of(taps, centre, side, diagonal, below) : Sums::of(taps, centre, side, below, diagonal);
        const V other = 255u - weight;
        if constexpr (t == 0) {
            return mixWide(lower.three(), upper.three(), weight, other);
        } else { // four channels; red and blue are cut before they are added
            const V a = upper.four(), b = lower.four();
            return (((a >> 8 & 0xFF00FFu) * weight + (b >> 8 & 0xFF00FFu) * other) & 0xFF00FF00u) +
                   ((((b & 0xFF00FFu) * other >> 8) + ((a & 0xFF00FFu) * weight >> 8)) & 0xFF00FFu);
        }
    }
    __attribute__((always_inline)) void advance() { position.advance(); }
};

// Rule values: the low byte of the rule texel. Positions truncate towards zero.
struct NoRule {
    __attribute__((always_inline)) NoRule(const Span &, int) {}
    __attribute__((always_inline)) V get(int) const { return V{}; }
    __attribute__((always_inline)) void advance() {}
};

struct RuleRow {
    Window<> window;
    Ramp u;
    __attribute__((always_inline)) RuleRow(const Span &s, int first)
        : window(s.rule.pixels + (size_t(truncated(s.v2.start) & s.rule.maskV) << s.rule.shift), s.rule.maskU, s.u2, first),
          u(Ramp::make(s.u2, first))
    {}
    __attribute__((always_inline)) V get(int left) const
    {
        // Only what is not negative floors as it truncates. Without a window the step is so wide that the position may wrap
        // within the vector unseen.
        const i32 last = i32(window.position + window.step * u32(lanes - 1));
        if (window.most && (i32(window.position) | last) >= 0)
            return window.get(u.value, left) & 0xFFu;
        return gather(window.row, wholeTruncated(u.value) & window.mask) & 0xFFu;
    }
    // The words of n pixels where they lie in memory one a pixel, or null.
    __attribute__((always_inline)) const u32 *direct(int n) const
    {
        const u32 column = (window.position >> 16) & window.mask;
        const bool fits = window.unit && n > 0 && window.position + (u64(n) << 16) < 0x80000000 &&
                          window.mask - column >= u32(n - 1) / lanes * lanes + (lanes - 1);
        return fits ? window.row + column : nullptr;
    }
    __attribute__((always_inline)) void advance() { u.advance(), window.advance(); }
};

struct RuleFree {
    RuleRow row; // where the row stands still across the span
    Ramp u, v;
    const Source level;
    bool still;
    __attribute__((always_inline)) RuleFree(const Span &s, int first)
        : row(s, first), u(Ramp::make(s.u2, first)), v(Ramp::make(s.v2, first)), level(s.rule), still(s.v2.step == 0)
    {}
    __attribute__((always_inline)) V get(int left) const
    {
        if (still)
            return row.get(left);
        return texel(level, wholeTruncated(u.value) & level.maskU, wholeTruncated(v.value) & level.maskV) & 0xFFu;
    }
    __attribute__((always_inline)) const u32 *direct(int n) const { return still ? row.direct(n) : nullptr; }
    __attribute__((always_inline)) void advance() { u.advance(), v.advance(), row.advance(); }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
