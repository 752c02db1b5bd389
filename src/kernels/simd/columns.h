// Stretches: what is the same in every row is worked out once, in strips of columns.
#pragma once

#include "kernels/simd/mip.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// The columns of a stretch, which are the same in every row: worked out once, for up to `size` of them. mixed: with their
// neighbours.
template <bool mixed>
struct Columns {
    static constexpr int size = 1024; // narrower strips walk every page of the frame buffer several times
    alignas(64) u32 centre[size]; // within the vector's window, or in the texture row where it has none
    alignas(64) u32 side[mixed ? size : 1]; // the neighbour
    WindowFit fits[size / lanes];

    // The vector that starts with column k, wrapped by mask. sure: `reach` holds all of its columns.
    NINEFOLD_INLINED void put(int k, V column, V neighbour, u32 mask, [[maybe_unused]] Reach reach, [[maybe_unused]] bool sure)
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
    NINEFOLD_INLINED void texels(const u32 *row, int k, V &atCentre, V &atSide) const
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

// The vectors of columns first to first + n - 1: body(column, positions, position of the first, index of the last pixel).
template <class Body>
NINEFOLD_LANE void forEachVector(const Linear &along, int first, int n, Body &&body)
{
    Ramp u = Ramp::make(along, first);
    u32 position = along.start + along.step * u32(first);
    for (int k = 0; k < n; k += lanes, u.advance(), position += along.step * lanes)
        body(k, u.value, position, u32(n - k < lanes ? n - k : lanes) - 1);
}

// Each fetch of a stretch has a Prepared of what is worked out once.

// One texel of a row.
struct PointColumns {
    static constexpr bool tests = true;
    struct Prepared {
        Columns<false> columns;
        NINEFOLD_INLINED void make(const Span &s, int first, int n)
        {
            const u32 step = s.tex[0].u.step, mask = s.tex[0].level.maskU;
            forEachVector(s.tex[0].u, first, n, [&](int at, V u, u32 position, u32 last) NINEFOLD_INLINED {
                columns.put(at, whole(u), V{}, mask, Reach::of(position, step, last, 16), cannotLap(step));
            });
        }
    };
    const Prepared &prepared;
    const u32 *row;
    int k = 0;
    NINEFOLD_INLINED PointColumns(const Span &s, const Prepared &made)
        : prepared(made), row(rowOf(s.tex[0].level, truncated(s.tex[0].v.start)))
    {}
    NINEFOLD_INLINED V get(int, V &key) const
    {
        V none;
        prepared.columns.texels(row, k, key, none);
        return key;
    }
    NINEFOLD_INLINED void advance() { k += lanes; }
};

// A four-texel mix.
template <bool four>
struct MixedColumns {
    static constexpr bool tests = true;
    struct Prepared {
        Columns<true> columns;
        alignas(64) u32 weight[Columns<true>::size]; // wx in both halves
        NINEFOLD_INLINED void make(const Span &s, int first, int n)
        {
            const u32 step = s.tex[0].u.step, mask = s.tex[0].level.maskU;
            forEachVector(s.tex[0].u, first, n, [&](int at, V u, u32 position, u32 last) NINEFOLD_INLINED {
                const V fx = u >> 8 & 0xFFu, far = (V)((S)(u << 16) >> 31);
                store(weight + at, bothHalves(fx ^ ((far ^ 0x80u) & 0xFFu)));
                // A pair is the texel half a texel back and the one after it.
                Reach reach = Reach::of(position - 0x8000, step, last, 16);
                ++reach.extent;
                columns.put(at, whole(u), whole(u + ((far & 0x20000u) - 0x10000u)), mask, reach, cannotLap(step));
            });
        }
    };
    const Prepared &prepared;
    const u32 *row, *row2;
    V wy; // in both halves
    int k = 0;
    NINEFOLD_INLINED MixedColumns(const Span &s, const Prepared &made) : prepared(made)
    {
        const u32 v = s.tex[0].v.start, fy = v >> 8 & 0xFF;
        const bool far = fy >= 128;
        const u32 weight = fy ^ (far ? 0x7Fu : 0x80u);
        wy = splat(weight | weight << 16);
        row = rowOf(s.tex[0].level, v >> 16);
        row2 = rowOf(s.tex[0].level, (v + (far ? 0x10000u : 0u - 0x10000u)) >> 16);
    }
    NINEFOLD_INLINED Taps taps() const
    {
        const V wx = load(prepared.weight + k), p = high8(mul16(wx, wy));
        return Taps{V{}, V{}, p, wy - p, wx - p, 0x01000100u - wx - wy + p};
    }
    NINEFOLD_INLINED Sums sums(const Taps &taps, V &key) const
    {
        V side, below, corner;
        prepared.columns.texels(row, k, key, side);
        prepared.columns.texels(row2, k, below, corner);
        return Sums::of(taps, key, side, below, corner);
    }
    NINEFOLD_INLINED V get(int, V &key) const
    {
        const Sums mixed = sums(taps(), key);
        return four ? mixed.four() : mixed.three();
    }
    NINEFOLD_INLINED void advance() { k += lanes; }
};

// Four-texel mixes of the level and of the next one, mixed: MipBilinear by columns.
struct MipColumns {
    static constexpr bool tests = true;
    struct Prepared {
        MixedColumns<false>::Prepared level;
        Columns<true> next;
        NINEFOLD_INLINED void make(const Span &s, int first, int n)
        {
            level.make(s, first, n);
            forEachVector(s.tex[0].u, first, n, [&](int at, V u, u32, u32 last) NINEFOLD_INLINED {
                const V far = (V)((S)(u << 16) >> 31);
                const V column = whole(half(u)), neighbour = whole(half(u + ((far & 0x20000u) - 0x10000u)));
                alignas(bytes) i32 found[2 * lanes];
                store(reinterpret_cast<u32 *>(found), column);
                store(reinterpret_cast<u32 *>(found) + lanes, neighbour);
                i32 lowest = found[0], highest = found[0];
                for (u32 j = 0; j <= last; ++j) {
                    const i32 a = found[j], b = found[j + lanes];
                    const i32 less = a < b ? a : b, more = a < b ? b : a;
                    lowest = less < lowest ? less : lowest, highest = more > highest ? more : highest;
                }
                next.put(at, column, neighbour, s.tex[0].next.maskU, {lowest, u32(highest) - u32(lowest)}, true);
            });
        }
    };
    MixedColumns<false> level;
    const Columns<true> &columns;
    const u32 *row, *row2; // of the next level
    V weight = splat(u32(rs.mipFrac));
    NINEFOLD_INLINED MipColumns(const Span &s, const Prepared &prepared) : level(s, prepared.level), columns(prepared.next)
    {
        const auto rowAt = [&s](u32 v) { return rowOf(s.tex[0].next, u32(i32(v) / 2 >> 16)); };
        const u32 v = s.tex[0].v.start;
        row = rowAt(v), row2 = rowAt(v + (v & 0x8000 ? 0x10000u : 0u - 0x10000u));
    }
    NINEFOLD_INLINED V get(int, V &key) const
    {
        const Taps taps = level.taps();
        const V upper = level.sums(taps, key).three();
        V centre, side, below, corner;
        columns.texels(row, level.k, centre, side);
        columns.texels(row2, level.k, below, corner);
        return mixWide(Sums::of(taps, centre, side, below, corner).three(), upper, weight, 255u - weight);
    }
    NINEFOLD_INLINED void advance() { level.advance(); }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
