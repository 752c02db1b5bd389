// Fused entries: gate, fetch, blend and write of a row in registers, made of what the parts are made of.
#pragma once

#include "kernels/plan.h"
#include "kernels/set/blend.h"
#include "kernels/set/fetch_of.h"
#include "kernels/set/gates.h"
#include "kernels/set/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

// One vector of pixels, or the first `left` of it.
template <bool gated, int blend, bool whole, class Fetcher>
NINEFOLD_LANE void drawVector(u32* dst, int left, M free, const Fetcher& fetch, const BlendFactors& factors)
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
    if constexpr (blend == 0) {
        storeMasked(dst, source, whole ? live : M(live & firstLanes(left)));
        return;
    }
#endif
    const V d = whole ? load(dst) : loadSome(dst, left);
    const V result = blended<blend, false>(d, source, factors);
    const V kept = all ? result : select(live, result, d);
    whole ? store(dst, kept) : storeSome(dst, kept, left);
}

// Pixels first to first + n - 1; the fetch stands at the first.
template <Gate g, int blend, class Fetcher>
NINEFOLD_LANE void drawRow(const Span& s, int first, int n, Fetcher& fetch, const BlendFactors& factors)
{
    constexpr bool gated = g != Gate::none;
    u32* dst = s.dst + first;
    for (const int end = first + n; first < end; first += gated ? Chunk::size : n) {
        const int count = gated && end - first > Chunk::size ? Chunk::size : end - first;
        const u64 free = gated ? freePixels<g, false>(s, first, count) : 0;
        int k = 0;
        for (; k + lanes <= count; k += lanes, dst += lanes, fetch.advance())
            drawVector<gated, blend, true>(dst, lanes, gated ? lanesOf(free >> k) : M{}, fetch, factors);
        if (k < count)
            drawVector<gated, blend, false>(dst, count - k, gated ? lanesOf(free >> k) : M{}, fetch, factors);
    }
}

// n words of one colour. Stores overlap rather than split cache lines: a fill does nothing else.
NINEFOLD_LANE void fillRow(u32* dst, int n, u32 colour)
{
    const V v = splat(colour);
#if defined(__AVX512F__)
    u32* line = reinterpret_cast<u32*>(reinterpret_cast<uintptr_t>(dst) & ~uintptr_t(63));
    const int head = int(dst - line), end = head + n;
    if (end <= lanes) {
        storeMasked(line, v, M(((1u << n) - 1) << head));
        return;
    }
    storeMasked(line, v, M(0xFFFFu << head));
    int k = lanes;
    for (; k + lanes <= end; k += lanes)
        store(line + k, v);
    if (k < end)
        storeSome(line + k, v, end - k);
#else
    constexpr int quarter = 4;
    const auto store4 = [](u32* p, u32 c) __attribute__((always_inline)) {
        typedef u32 Four __attribute__((vector_size(16)));
        const Four four = c - Four{};
        __builtin_memcpy(p, &four, sizeof four);
    };
    if (n < quarter) {
        for (int k = 0; k < n; ++k)
            dst[k] = colour;
        return;
    }
    store4(dst, colour);
    store4(dst + n - quarter, colour);
    u32* at = reinterpret_cast<u32*>((reinterpret_cast<uintptr_t>(dst) + 16) & ~uintptr_t(15));
    u32* const end = dst + n;
    if constexpr (lanes > quarter) {
        if (end - at >= 2 * lanes) {
            store4(at, colour);
            at = reinterpret_cast<u32*>((reinterpret_cast<uintptr_t>(at) + bytes - 1) & ~uintptr_t(bytes - 1));
            for (; at + lanes <= end; at += lanes)
                store(at, v);
        }
    }
    for (; at + quarter <= end; at += quarter)
        store4(at, colour);
#endif
}

// Columns of a four-texel mix at steps that are the same in every row: worked out once, for up to `size` of them.
struct MixColumns {
    static constexpr int size = 256;
    alignas(64) u32 centre[size], side[size]; // of the vector's window, or of the texture row where it has none
    alignas(64) u32 weight[size];             // wx in both halves
    u32 base[size / lanes];                   // first column of the window
    u8 windows[size / lanes];                 // vectors in it, 0: none

    __attribute__((always_inline)) void make(const Span& s, int first, int n)
    {
        const u32 mask = s.tex0.maskU;
        Ramp u = Ramp::make(s.u0, first);
        u32 position = s.u0.start + s.u0.step * u32(first);
        for (int k = 0; k < n; k += lanes, u.advance(), position += s.u0.step * lanes) {
            const V fx = u.value >> 8 & 0xFFu, far = (V)((S)(u.value << 16) >> 31);
            store(weight + k, bothHalves(fx ^ ((far ^ 0x80u) & 0xFFu)));
            const V column = whole(u.value), neighbour = whole(u.value + ((far & 0x20000u) - 0x10000u));
            windows[k / lanes] = 0;
#if defined(__AVX2__)
            const int last = (n - k < lanes ? n - k : lanes) - 1;
            const i32 a = i32(position - 0x8000) >> 16, b = i32(position + s.u0.step * u32(last) - 0x8000) >> 16;
            const bool falling = i32(s.u0.step) < 0;
            const i32 lowest = falling ? b : a;
            const u32 extent = u32(falling ? a - b : b - a) + 1, from = u32(lowest) & mask;
            for (u32 count = 1; count <= 2; ++count) {
                const u32 width = count * lanes;
                if (mask < width - 1 || extent >= width || extent > mask - from)
                    continue;
                const u32 latest = mask - (width - 1), start = from < latest ? from : latest;
                if (extent + (from - start) >= width)
                    continue;
                windows[k / lanes] = u8(count);
                base[k / lanes] = start;
                const V move = splat(u32(lowest) - (from - start));
                store(centre + k, column - move);
                store(side + k, neighbour - move);
                break;
            }
            if (windows[k / lanes])
                continue;
#endif
            store(centre + k, column & mask);
            store(side + k, neighbour & mask);
        }
    }

    // Texels of one row at the vector that starts with column k.
    __attribute__((always_inline)) void texels(const u32* row, int k, V& atCentre, V& atSide) const
    {
#if defined(__AVX2__)
        const u32* window = row + base[k / lanes];
        if (windows[k / lanes] == 1) {
            const V texel = load(window);
            atCentre = permute(texel, load(centre + k));
            atSide = permute(texel, load(side + k));
            return;
        }
        if (windows[k / lanes] == 2) {
            const V low = load(window), high = load(window + lanes);
            atCentre = permute2(low, high, load(centre + k));
            atSide = permute2(low, high, load(side + k));
            return;
        }
#endif
        atCentre = gatherAt(row, centre + k);
        atSide = gatherAt(row, side + k);
    }
};

// The mix at one vector of a row, by the columns' table.
template <bool four>
struct MixedRow {
    static constexpr bool tests = true;
    const MixColumns& columns;
    const u32 *row, *row2;
    V wy; // in both halves
    int k = 0;
    __attribute__((always_inline)) MixedRow(const Span& s, const MixColumns& table) : columns(table)
    {
        const u32 v = s.v0.start, fy = v >> 8 & 0xFF;
        const bool far = fy >= 128;
        const u32 weight = fy ^ (far ? 0x7Fu : 0x80u);
        wy = splat(weight | weight << 16);
        row = s.tex0.pixels + (size_t((v >> 16) & s.tex0.maskV) << s.tex0.shift);
        row2 = s.tex0.pixels + (size_t(((v + (far ? 0x10000u : 0u - 0x10000u)) >> 16) & s.tex0.maskV) << s.tex0.shift);
    }
    __attribute__((always_inline)) V get(int, V& key) const
    {
        V side, below, corner;
        columns.texels(row, k, key, side);
        columns.texels(row2, k, below, corner);
        const V wx = load(columns.weight + k);
        const V p = high8(mul16(wx, wy));
        const Taps taps = {{}, {}, p, wy - p, wx - p, 0x01000100u - wx - wy + p};
        const Sums sums = Sums::of(taps, key, side, below, corner);
        return four ? sums.four() : sums.three();
    }
    __attribute__((always_inline)) void advance() { k += lanes; }
};

// Four-texel mixes: the columns are worked out once for all rows.
template <Fetch f, int blend>
void mixedBlock(const Span& span, const Rows& rows)
{
    const BlendFactors factors;
    Span s;
    s.x = span.x;
    s.tex0.pixels = span.tex0.pixels, s.tex0.maskU = span.tex0.maskU, s.tex0.maskV = span.tex0.maskV, s.tex0.shift = span.tex0.shift;
    MixColumns columns;
    for (int first = 0; first < rows.columns; first += MixColumns::size) {
        const int n = rows.columns - first < MixColumns::size ? rows.columns - first : MixColumns::size;
        columns.make(span, first, n);
        s.dst = span.dst + first;
        s.v0.start = span.v0.start;
        for (int row = rows.count; row > 0; --row, s.dst += rows.pitch, s.v0.start += rows.stepV) {
            MixedRow<f == Fetch::bilinearRow4> fetch(s, columns);
            drawRow<Gate::none, blend>(s, 0, n, fetch, factors);
        }
    }
}

// The pieces of a span that a block changes or reads per row, kept where they can stay in registers.
template <Fetch f, Gate g, int blend>
void block(const Span& span, const Rows& rows)
{
    if constexpr (f == Fetch::flat && g == Gate::none && blend == 0) {
        u32* dst = span.dst;
        for (int row = rows.count; row > 0; --row, dst += rows.pitch)
            fillRow(dst, rows.columns, rs.color[0]);
        return;
    }
    if constexpr (f == Fetch::bilinearRow3 || f == Fetch::bilinearRow4) {
        mixedBlock<f, blend>(span, rows);
        return;
    }
    const BlendFactors factors;
    Span s;
    s.dst = span.dst, s.x = span.x, s.z = span.z;
    s.tex0.pixels = span.tex0.pixels, s.tex0.maskU = span.tex0.maskU, s.tex0.maskV = span.tex0.maskV, s.tex0.shift = span.tex0.shift;
    s.u0.start = span.u0.start, s.u0.step = span.u0.step, s.v0.start = span.v0.start, s.v0.step = 0;
    u32 maskRow = rows.maskRow;
    for (int row = rows.count; row > 0; --row) {
        if constexpr (g == Gate::mask || g == Gate::zMask)
            s.maskRow = rs.drawMask[maskRow++ & 15];
        FetchOf<f> fetch(s, 0);
        drawRow<g, blend>(s, 0, rows.columns, fetch, factors);
        s.dst += rows.pitch;
        s.z += rows.pitch;
        s.v0.start = f == Fetch::unit ? (s.v0.start + 1) & s.tex0.maskV : s.v0.start + rows.stepV;
    }
}

template <Fetch f, Gate g, int blend>
void fusedSpan(const Span& s, int first, int n)
{
    if constexpr (f == Fetch::flat && g == Gate::none && blend == 0) {
        fillRow(s.dst + first, n, rs.color[0]);
        return;
    }
    const BlendFactors factors;
    FetchOf<f> fetch(s, first);
    drawRow<g, blend>(s, first, n, fetch, factors);
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
