// Fused entries: gate, fetch, blend and write of a row in registers, made of what the parts are made of.
#pragma once

#include "kernels/plan.h"
#include "kernels/simd/blend.h"
#include "kernels/simd/fetch_of.h"
#include "kernels/simd/gates.h"
#include "kernels/simd/tables.h"

#include <type_traits>

namespace ninefold::NINEFOLD_SET {
namespace {

// One vector of pixels, or the first `left` of it.
template <bool gated, int blend, bool whole, class Fetcher>
NINEFOLD_LANE void drawVector(u32 *dst, int left, M free, const Fetcher &fetch, const BlendFactors &factors)
{
    V key;
    const V source = fetch.get(whole ? lanes : left, key);
    if constexpr (!gated && !Fetcher::tests && blend == 0) {
        whole ? store(dst, source) : storeSome(dst, source, left);
        return;
    }
    M live = free;
    if constexpr (Fetcher::tests)
        live = gated ? M(live & isNotZero(key)) : isNotZero(key);
    const bool all = !gated && !Fetcher::tests;
#if defined(__AVX512F__)
    if constexpr (blend == 0) { // without a look at what is there
        storeMasked(dst, source, whole ? live : M(live & firstLanes(left)));
        return;
    }
#endif
    const V d = whole ? load(dst) : loadSome(dst, left);
    const V result = blended<blend, false>(d, source, factors);
    const V kept = all ? result : select(live, result, d);
    whole ? store(dst, kept) : storeSome(dst, kept, left);
}

// A fetch with prescale behind it.
template <class Fetcher, int blend>
struct Faded : Fetcher {
    using Fetcher::Fetcher;
    u32 factor = rs.prescale;
    __attribute__((always_inline)) V get(int left, V &key) const
    {
        return prescaled<blend, false>(Fetcher::get(left, key), factor);
    }
};
template <class Fetcher, bool prescale, int blend>
using Fading = std::conditional_t<prescale, Faded<Fetcher, blend>, Fetcher>;

// n pixels from dst on; the fetch stands at the first.
template <int blend, class Fetcher>
NINEFOLD_LANE void drawPixels(u32 *dst, int n, Fetcher &fetch, const BlendFactors &factors)
{
    int k = 0;
    for (; k + lanes <= n; k += lanes, fetch.advance())
        drawVector<false, blend, true>(dst + k, lanes, M{}, fetch, factors);
    if (k < n)
        drawVector<false, blend, false>(dst + k, n - k, M{}, fetch, factors);
}

// Pixels first to first + n - 1 of a span.
template <Fetch f, bool prescale, Gate g, int blend>
NINEFOLD_LANE void drawSpan(const Span &s, int first, int n, const BlendFactors &factors)
{
    if constexpr (g == Gate::none) {
        Fading<FetchOf<f>, prescale, blend> fetch(s, first);
        drawPixels<blend>(s.dst + first, n, fetch, factors);
    } else {
        for (const int end = first + n; first < end;) {
            const int count = end - first < 64 ? end - first : 64;
            const u64 free = freePixels<g, false>(s, first, count);
            if (free == 0) {
                first += count;
                first += refusedPixels<g>(s, first, end - first);
                continue;
            }
            FetchOf<f> fetch(s, first);
            u32 *const dst = s.dst + first;
            int k = 0;
            for (; k + lanes <= count; k += lanes, fetch.advance())
                drawVector<true, blend, true>(dst + k, lanes, lanesOf(free >> k), fetch, factors);
            if (k < count)
                drawVector<true, blend, false>(dst + k, count - k, lanesOf(free >> k), fetch, factors);
            first += count;
        }
    }
}

// n words of one colour. Stores overlap rather than split cache lines: a fill does nothing else.
NINEFOLD_LANE void fillRow(u32 *dst, int n, u32 colour)
{
    constexpr int quarter = 4;
    const auto store4 = [colour](u32 * p) __attribute__((always_inline))
    {
        typedef u32 Four __attribute__((vector_size(16)));
        const Four four = colour - Four{};
        __builtin_memcpy(p, &four, sizeof four);
    };
#if defined(NINEFOLD_X86)
    if (n >= 512) { // the processor's own fill does not read what it overwrites
        size_t count = size_t(n);
        __asm__ volatile("rep stosl" : "+D"(dst), "+c"(count) : "a"(colour) : "memory");
        return;
    }
#endif
    if (n < quarter) {
        for (int k = 0; k < n; ++k)
            dst[k] = colour;
        return;
    }
    u32 *const end = dst + n;
    if (lanes == 8 && n == lanes) {
        store(dst, splat(colour));
        return;
    }
    store4(dst);
    store4(end - quarter);
    u32 *at = reinterpret_cast<u32 *>((reinterpret_cast<uintptr_t>(dst) + 16) & ~uintptr_t(15));
    if constexpr (lanes > quarter) {
        if (end - at >= 4 * lanes) {
            const u32 *const line =
                reinterpret_cast<u32 *>((reinterpret_cast<uintptr_t>(at) + bytes - 1) & ~uintptr_t(bytes - 1));
            for (; at < line; at += quarter)
                store4(at);
            for (const V v = splat(colour); at + lanes <= end; at += lanes)
                store(at, v);
        }
    }
    for (; at + quarter <= end; at += quarter)
        store4(at);
}

// The columns of a stretch, which are the same in every row: worked out once, for up to `size` of them. mixed: with their
// neighbours.
template <bool mixed>
struct Columns {
    static constexpr int size = 256;
    alignas(64) u32 centre[size]; // within the vector's window, or in the texture row where it has none
    alignas(64) u32 side[mixed ? size : 1]; // the neighbour
    WindowFit fits[size / lanes];

    // The vector that starts with column k, wrapped by mask. sure: `reach` holds all of its columns.
    __attribute__((always_inline)) void put(int k, V column, V neighbour, u32 mask, [[maybe_unused]] Reach reach,
                                            [[maybe_unused]] bool sure)
    {
        WindowFit &fit = fits[k / lanes];
        V move{};
        fit = {0, 0};
#if defined(__AVX2__)
        if (sure)
            fit = WindowFit::of(reach.lowest, reach.extent, mask, 2);
        move = splat(u32(reach.lowest) - ((u32(reach.lowest) & mask) - fit.base));
#endif
        const u32 inWindow = 2 * lanes - 1; // a position that wraps at 32 bits is right modulo the texture
        store(centre + k, fit.vectors ? (column - move) & inWindow : column & mask);
        if constexpr (mixed)
            store(side + k, fit.vectors ? (neighbour - move) & inWindow : neighbour & mask);
    }

    // Texels of one row at the vector that starts with column k; atSide only where mixed.
    __attribute__((always_inline)) void texels(const u32 *row, int k, V &atCentre, V &atSide) const
    {
#if defined(__AVX2__)
        const WindowFit fit = fits[k / lanes];
        const u32 *window = row + fit.base;
        if (fit.vectors == 1) {
            const V texel = load(window);
            atCentre = permute(texel, load(centre + k));
            if constexpr (mixed)
                atSide = permute(texel, load(side + k));
            return;
        }
        if (fit.vectors == 2) {
            const V low = load(window), high = load(window + lanes);
            atCentre = permute2(low, high, load(centre + k));
            if constexpr (mixed)
                atSide = permute2(low, high, load(side + k));
            return;
        }
#endif
        atCentre = gatherAt(row, centre + k);
        if constexpr (mixed)
            atSide = gatherAt(row, side + k);
    }
};

// With steps of this size the ends of a vector tell how far its positions reach: they do not go round 2^32.
NINEFOLD_LANE bool cannotLap(u32 step) { return step + 0x8000000 < 0x10000000; }

// Each fetch of a stretch has a Table of what is worked out once.

// One texel of a row.
struct PointColumns {
    static constexpr bool tests = true;
    struct Table {
        Columns<false> columns;
        __attribute__((always_inline)) void make(const Span &s, int first, int n)
        {
            const u32 step = s.u0.step;
            Ramp u = Ramp::make(s.u0, first);
            u32 position = s.u0.start + step * u32(first);
            for (int i = 0; i < n; i += lanes, u.advance(), position += step * lanes) {
                const u32 last = u32(n - i < lanes ? n - i : lanes) - 1;
                columns.put(i, whole(u.value), V{}, s.tex0.maskU, Reach::of(position, step, last, 16), cannotLap(step));
            }
        }
    };
    const Table &table;
    const u32 *row;
    int k = 0;
    __attribute__((always_inline)) PointColumns(const Span &s, const Table &columns)
        : table(columns), row(s.tex0.pixels + (size_t(truncated(s.v0.start) & s.tex0.maskV) << s.tex0.shift))
    {}
    __attribute__((always_inline)) V get(int, V &key) const
    {
        V none;
        table.columns.texels(row, k, key, none);
        return key;
    }
    __attribute__((always_inline)) void advance() { k += lanes; }
};

// A four-texel mix.
template <bool four>
struct MixedColumns {
    static constexpr bool tests = true;
    struct Table {
        Columns<true> columns;
        alignas(64) u32 weight[Columns<true>::size]; // wx in both halves
        __attribute__((always_inline)) void make(const Span &s, int first, int n)
        {
            const u32 step = s.u0.step;
            Ramp u = Ramp::make(s.u0, first);
            u32 position = s.u0.start + step * u32(first);
            for (int i = 0; i < n; i += lanes, u.advance(), position += step * lanes) {
                const V fx = u.value >> 8 & 0xFFu, far = (V)((S)(u.value << 16) >> 31);
                store(weight + i, bothHalves(fx ^ ((far ^ 0x80u) & 0xFFu)));
                const V neighbour = whole(u.value + ((far & 0x20000u) - 0x10000u));
                // A pair is the texel half a texel back and the one after it.
                const u32 last = u32(n - i < lanes ? n - i : lanes) - 1;
                Reach reach = Reach::of(position - 0x8000, step, last, 16);
                ++reach.extent;
                columns.put(i, whole(u.value), neighbour, s.tex0.maskU, reach, cannotLap(step));
            }
        }
    };
    const Table &table;
    const u32 *row, *row2;
    V wy; // in both halves
    int k = 0;
    __attribute__((always_inline)) MixedColumns(const Span &s, const Table &columns) : table(columns)
    {
        const u32 v = s.v0.start, fy = v >> 8 & 0xFF;
        const bool far = fy >= 128;
        const u32 weight = fy ^ (far ? 0x7Fu : 0x80u);
        wy = splat(weight | weight << 16);
        row = s.tex0.pixels + (size_t((v >> 16) & s.tex0.maskV) << s.tex0.shift);
        row2 = s.tex0.pixels + (size_t(((v + (far ? 0x10000u : 0u - 0x10000u)) >> 16) & s.tex0.maskV) << s.tex0.shift);
    }
    __attribute__((always_inline)) Taps taps() const
    {
        const V wx = load(table.weight + k), p = high8(mul16(wx, wy));
        return Taps{V{}, V{}, p, wy - p, wx - p, 0x01000100u - wx - wy + p};
    }
    __attribute__((always_inline)) Sums sums(const Taps &taps, V &key) const
    {
        V side, below, corner;
        table.columns.texels(row, k, key, side);
        table.columns.texels(row2, k, below, corner);
        return Sums::of(taps, key, side, below, corner);
    }
    __attribute__((always_inline)) V get(int, V &key) const
    {
        const Sums mixed = sums(taps(), key);
        return four ? mixed.four() : mixed.three();
    }
    __attribute__((always_inline)) void advance() { k += lanes; }
};

// Four-texel mixes of the level and of the next one, mixed: MipBilinear by columns.
struct MipColumns {
    static constexpr bool tests = true;
    struct Table {
        MixedColumns<false>::Table level;
        Columns<true> next;
        __attribute__((always_inline)) void make(const Span &s, int first, int n)
        {
            level.make(s, first, n);
            Ramp u = Ramp::make(s.u0, first);
            for (int k = 0; k < n; k += lanes, u.advance()) {
                const V far = (V)((S)(u.value << 16) >> 31);
                const V column = whole(half(u.value)), neighbour = whole(half(u.value + ((far & 0x20000u) - 0x10000u)));
                alignas(bytes) i32 at[2 * lanes];
                store(reinterpret_cast<u32 *>(at), column);
                store(reinterpret_cast<u32 *>(at) + lanes, neighbour);
                i32 lowest = at[0], highest = at[0];
                for (int j = 0; j < n - k && j < lanes; ++j) {
                    const i32 a = at[j], b = at[j + lanes];
                    const i32 less = a < b ? a : b, more = a < b ? b : a;
                    lowest = less < lowest ? less : lowest, highest = more > highest ? more : highest;
                }
                next.put(k, column, neighbour, s.next0.maskU, {lowest, u32(highest) - u32(lowest)}, true);
            }
        }
    };
    MixedColumns<false> level;
    const Columns<true> &columns;
    const u32 *row, *row2; // of the next level
    V weight = splat(u32(rs.mipFrac));
    __attribute__((always_inline)) MipColumns(const Span &s, const Table &table) : level(s, table.level), columns(table.next)
    {
        const auto rowAt = [&s](u32 v) {
            return s.next0.pixels + (size_t(u32(i32(v) / 2 >> 16) & s.next0.maskV) << s.next0.shift);
        };
        const u32 v = s.v0.start;
        row = rowAt(v), row2 = rowAt(v + (v & 0x8000 ? 0x10000u : 0u - 0x10000u));
    }
    __attribute__((always_inline)) V get(int, V &key) const
    {
        const Taps taps = level.taps();
        const V upper = level.sums(taps, key).three();
        V centre, side, below, corner;
        columns.texels(row, level.k, centre, side);
        columns.texels(row2, level.k, below, corner);
        return mixWide(Sums::of(taps, centre, side, below, corner).three(), upper, weight, 255u - weight);
    }
    __attribute__((always_inline)) void advance() { level.advance(); }
};

// Stretches: the columns are worked out once for all rows.
template <class Fetcher, int blend>
void stretchBlock(const Span &span, const Rows &rows)
{
    const BlendFactors factors;
    Span s;
    s.tex0 = span.tex0, s.next0 = span.next0;
    typename Fetcher::Table table;
    constexpr int size = Columns<false>::size;
    for (int first = 0; first < rows.columns; first += size) {
        const int n = rows.columns - first < size ? rows.columns - first : size;
        table.make(span, first, n);
        u32 *dst = span.dst + first;
        s.v0.start = span.v0.start;
        for (int row = rows.count; row > 0; --row, dst += rows.pitch, s.v0.start += rows.stepV) {
            Fetcher fetch(s, table);
            drawPixels<blend>(dst, n, fetch, factors);
        }
    }
}

// Texels side by side.
struct Texels : Tested {
    const u32 *at;
    __attribute__((always_inline)) explicit Texels(const u32 *first) : at(first) {}
    __attribute__((always_inline)) V get(int left, V &key) const { return key = left >= lanes ? load(at) : loadSome(at, left); }
};

// Sprites of up to one vector a row that do not go round the edge of the texture. False: it is none, and nothing is drawn.
template <bool prescale, int blend>
NINEFOLD_LANE bool narrowBlock(const Span &span, const Rows &rows)
{
    const Source t = span.tex0;
    const int n = rows.columns;
    const u32 column = span.u0.start & t.maskU;
    if (n > lanes || t.maskU - column < u32(n - 1))
        return false;
    const BlendFactors factors;
    const u32 *const texels = t.pixels + column;
    u32 *dst = span.dst;
    u32 v = span.v0.start;
    for (int row = rows.count; row > 0; --row, dst += rows.pitch, v = (v + 1) & t.maskV) {
        const Fading<Texels, prescale, blend> fetch(texels + (size_t(v) << t.shift));
        if (n == lanes)
            drawVector<false, blend, true>(dst, lanes, M{}, fetch, factors);
        else
            drawVector<false, blend, false>(dst, n, M{}, fetch, factors);
    }
    return true;
}

template <Fetch f, bool prescale, Gate g, int blend>
void block(const Span &span, const Rows &rows)
{
    if constexpr (f == Fetch::flat && g == Gate::none && blend == 0) {
        const bool whole = u32(rows.columns) == rows.pitch; // then the rows are one
        const int count = whole ? 1 : rows.count, columns = whole ? rows.columns * rows.count : rows.columns;
        u32 *dst = span.dst;
        for (int row = count; row > 0; --row, dst += rows.pitch)
            fillRow(dst, columns, rs.color[0]);
        return;
    }
    if constexpr (f == Fetch::bilinearRow3 || f == Fetch::bilinearRow4) {
        stretchBlock<Fading<MixedColumns<f == Fetch::bilinearRow4>, prescale, blend>, blend>(span, rows);
        return;
    }
    if constexpr (f == Fetch::mipBilinearRow) {
        stretchBlock<MipColumns, blend>(span, rows);
        return;
    }
    if constexpr (f == Fetch::pointRow && g == Gate::none) {
        stretchBlock<Fading<PointColumns, prescale, blend>, blend>(span, rows);
        return;
    }
    if constexpr (blend == 12) { // the host's own operator: its call is what costs
        const PixelOperator func = rs.blendFunc;
        u32 *dst = span.dst;
        u32 v = span.v0.start;
        for (int row = rows.count; row > 0; --row, dst += rows.pitch, v = (v + 1) & span.tex0.maskV) {
            const u32 *const texels = span.tex0.pixels + (size_t(v) << span.tex0.shift);
            for (int k = 0; k < rows.columns; ++k)
                if (const u32 texel = texels[(span.u0.start + u32(k)) & span.tex0.maskU])
                    dst[k] = func(dst[k], texel);
        }
        return;
    }
    if constexpr (f == Fetch::unit && g == Gate::none && lanes <= 8) // 16 lanes gain nothing by it
        if (narrowBlock<prescale, blend>(span, rows))
            return;
    const BlendFactors factors;
    Span s; // what changes or is read per row, kept where it can stay in registers
    s.dst = span.dst, s.x = span.x, s.z = span.z;
    s.tex0.pixels = span.tex0.pixels, s.tex0.maskU = span.tex0.maskU;
    s.tex0.maskV = span.tex0.maskV, s.tex0.shift = span.tex0.shift;
    s.u0.start = span.u0.start, s.u0.step = span.u0.step, s.v0.start = span.v0.start, s.v0.step = 0;
    u32 maskRow = rows.maskRow;
    for (int row = rows.count; row > 0; --row) {
        if constexpr (g == Gate::mask || g == Gate::zMask)
            s.maskRow = rs.drawMask[maskRow++ & 15];
        drawSpan<f, prescale, g, blend>(s, 0, rows.columns, factors);
        s.dst += rows.pitch;
        s.z += rows.pitch;
        s.v0.start = f == Fetch::unit ? (s.v0.start + 1) & s.tex0.maskV : s.v0.start + rows.stepV;
    }
}

template <Fetch f, Gate g, int blend>
void fusedSpan(const Span &s, int first, int n)
{
    if constexpr (f == Fetch::flat && g == Gate::none && blend == 0) {
        fillRow(s.dst + first, n, rs.color[0]);
        return;
    }
    const BlendFactors factors;
    drawSpan<f, false, g, blend>(s, first, n, factors);
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
