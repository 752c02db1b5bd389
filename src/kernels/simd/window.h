// Windows: the texels of one texture row that a vector of pixels reads, as one or two vectors of neighbours.
#pragma once

#include "kernels/simd/positions.h"

namespace ninefold::NINEFOLD_SET {
namespace {

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
    NINEFOLD_INLINED Window(const u32 *texels, u32 columnMask, const Linear &u, int first)
        : row(texels), mask(columnMask), position(u.start + u.step * u32(first)), step(u.step)
    {
        const u32 size = i32(step) < 0 ? 0 - step : step;
        most = size <= 1u << shift ? 1 : size <= 2u << shift ? 2 : 0;
        unit = step == 1u << shift && mask <= 0xFFFFFFFF >> shift;
    }
    // The texels at the wrapped columns of u; pixels from `left` on may get anything.
    NINEFOLD_INLINED V get(V u, int left) const
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
    NINEFOLD_INLINED void advance() { position += step * lanes; }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
