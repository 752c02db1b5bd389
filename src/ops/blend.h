// The blend operators: (destination, source) to pixel, each in the packed form that defines it, for one pixel and for vectors of
// them. Channels share words, nothing rounds, and some results carry bits from channel to channel or leave a fixed alpha; pictures
// rest on every one of those bits.
//
// In the formulas above the functions d and s are one channel of either operand; A is the alpha of the source.
//
// Factors are meant to be up to 255, or 256 where that is one, and then fit 16-bit halves. A `wide` form takes any: the words wrap
// and channels spill into each other.
#pragma once

#include "ops/list.h"
#include "ops/word.h"

#include <ninefold/render_state.h>

namespace ninefold::ops {

// ---- products ----

// (s * a + d * w) >> 8; alpha 0. Any weights.
template <class W>
NINEFOLD_INLINE W mixWide(W d, W s, W a, W w)
{
    const W redBlue = (d & 0xFF00FFu) * w + (s & 0xFF00FFu) * a;
    const W green = (d & 0xFF00u) * w + (s & 0xFF00u) * a;
    return ((redBlue & 0xFF00FF00u) | (green & 0xFF0000u)) >> 8;
}

// (s * a + d * (255 - a)) >> 8; alpha 0. a: up to 255, in both halves.
template <class W>
NINEFOLD_INLINE W mixed(W d, W s, W a)
{
    using Is = Word<W>;
    const W w = a ^ 0xFF00FFu;
    const W redBlue = Is::mul16(d & 0xFF00FFu, w) + Is::mul16(s & 0xFF00FFu, a);
    const W green = Is::mul16(Is::down8(d), w) + Is::mul16(Is::down8(s), a);
    return Is::down8(redBlue) | (green & 0xFF00u);
}

// (c * factor) >> 8 for red, green and blue; alpha 0
template <bool wide = true, class W>
NINEFOLD_INLINE W scaleRgb(W pixel, uint32_t factor)
{
    if constexpr (wide || !Word<W>::halves)
        return (((pixel & 0xFF00FFu) * factor & 0xFF00FF00u) | ((pixel & 0xFF00u) * factor & 0xFF0000u)) >> 8;
    using Is = Word<W>;
    const W f = splat<W>(factor | factor << 16);
    return Is::mulHigh16(Is::up8(pixel), f) | (Is::mul16(Is::down8(pixel), f) & 0xFF00u);
}

// ((A * factor) >> 8) & 255 for alpha; the colour stays
template <bool wide = true, class W>
NINEFOLD_INLINE W scaleAlpha(W pixel, uint32_t factor)
{
    if constexpr (wide || !Word<W>::halves)
        return (pixel & 0xFFFFFFu) | ((pixel >> 8 & 0xFF0000u) * factor & 0xFF000000u);
    return (pixel & 0xFFFFFFu) | (Word<W>::mul16(pixel >> 24, splat<W>(factor)) & 0xFF00u) << 16;
}

// ---- operators ----

// (s * a + d * (255 - a)) >> 8; alpha 0
template <bool wide = true, class W>
NINEFOLD_INLINE W opConstAlpha(W d, W s, uint32_t a)
{
    if constexpr (wide || !Word<W>::halves)
        return mixWide(d, s, splat<W>(a), splat<W>(255u - a));
    return mixed(d, s, splat<W>(a | a << 16));
}

// (s * A + d * (255 - A)) >> 8; alpha 0. Darkens by up to 1 even where A is 0 or 255.
template <class W>
NINEFOLD_INLINE W opAlpha(W d, W s)
{
    if constexpr (!Word<W>::halves)
        return mixWide(d, s, s >> 24, 255u - (s >> 24));
    return mixed(d, s, Word<W>::alphas(s));
}

// The same, but A of 255 gives the source and A of 0 the destination, alpha included.
template <class W>
NINEFOLD_INLINE W opAlphaFast(W d, W s)
{
    using Is = Word<W>;
    const W a = Is::alphas(s);
    return Is::select(Is::equal(a, splat<W>(0xFF00FF)), s, Is::select(Is::equal(a, W{}), d, opAlpha(d, s)));
}

// d + s, up to 255; alpha 1. The low bit of red and green is kept free for the carry from below: it takes no part and comes out
// set.
template <class W>
NINEFOLD_INLINE W opAdd(W d, W s)
{
    const W sum = (d & 0xFEFEFFu) + (s & 0xFEFEFFu);
    const W full = (0x80808000u - (sum & 0x1010100u)) >> 7; // 0xFE in a channel that carried, else the bit above it
    return full | sum;
}

// (d | 1) - (s | 1) less the borrow from below, down to 0; alpha wraps. A channel that borrowed keeps the borrow from below.
template <class W>
NINEFOLD_INLINE W opSub(W d, W s)
{
    const W difference = (d | 0x1010101u) - (s | 0x1010101u);
    const W empty = (0x80808000u - (difference & 0x1010100u)) >> 7; // as in opAdd, of the borrows
    return ~empty & difference;
}

// (d * s) >> 8; alpha 0
template <class W>
NINEFOLD_INLINE W opMul(W d, W s)
{
    using Is = Word<W>;
    return Is::mulHigh16(Is::up8(d), s & 0xFF00FFu) | (Is::mulHigh16(d & 0xFF00u, s & 0xFF00u) & 0xFF00u);
}

// opMul doubled, up to 255. The top bit of a product goes to bit 0 of the channel above, that of red to alpha.
template <class W>
NINEFOLD_INLINE W opMul2(W d, W s)
{
    const W product = opMul(d, s), high = product & 0x80808080u;
    return (high - (high >> 7)) | product << 1 | high;
}

// 255 - (((255 - d) * (255 - s)) >> 8); alpha 255. Masks come before complements where they can: g++ complements a whole AVX-512
// vector by an instruction that waits for the register's older value too, which made a loop three times slower.
template <class W>
NINEFOLD_INLINE W opScreen(W d, W s)
{
    using Is = Word<W>;
    const W redBlue = Is::mulHigh16(Is::up8(d) ^ 0xFF00FF00u, ~s & 0xFF00FFu);
    return ~(redBlue | (Is::mulHigh16(~d & 0xFF00u, ~s & 0xFF00u) & 0xFF00u));
}

// d < 128: ((d * s) >> 8) * 2, else 255 - (((255 - d) * (255 - s)) >> 8) * 2; alpha 0
template <class W>
NINEFOLD_INLINE W opOverlay(W d, W s)
{
    const W high = d & 0x808080u;
    const W flip = high | (high - (high >> 7)); // 0xFF in the channels where d >= 128
    return (opMul(d ^ flip, s ^ flip) << 1) ^ flip; // a product of the lower half is below 2^15: doubled, it fits
}

// Set bits of the mask from the source, the others from the destination; alpha is no exception.
template <class W>
NINEFOLD_INLINE W opMerge(W d, W s, uint32_t mask)
{
    return (d & ~mask) | (s & mask);
}

// L in red, green and blue, L = ((R * 76) >> 8) + ((G * 150) >> 8) + ((B * 29) >> 8), at most 252; alpha 0
template <class W>
NINEFOLD_INLINE W luma(W pixel)
{
    const W level = ((pixel >> 16 & 0xFFu) * 76u >> 8) + ((pixel >> 8 & 0xFFu) * 150u >> 8) + ((pixel & 0xFFu) * 29u >> 8);
    return level | level << 8 | level << 16;
}

// ---- the stages ----

// What operators read beside their operands, read once: a store to the frame buffer might change rs for all that the compiler
// knows.
struct Factors {
    uint32_t blendAlpha = rs.blendAlpha, blendAlphaRgb = rs.blendAlphaRgb, writeMask = rs.writeMask;
    uint32_t prescale = rs.prescale, prescaleMulti = rs.prescaleMulti;

    [[gnu::always_inline]] Factors() noexcept = default;
};

// The operator of a value of SetBlendMode.
template <int blend, bool wide, class W>
NINEFOLD_INLINE W blended(W d, W s, const Factors &factors)
{
    switch (blend) {
    case NINEFOLD_BLEND_ALPHA: return opAlpha(d, s);
    case NINEFOLD_BLEND_CONST_ALPHA: return opConstAlpha<wide>(d, s, factors.blendAlpha);
    case NINEFOLD_BLEND_ALPHA_FAST: return opAlphaFast(d, s);
    case NINEFOLD_BLEND_ADD: return opAdd(d, s);
    case NINEFOLD_BLEND_SUB: return opSub(d, s);
    case NINEFOLD_BLEND_MUL: return opMul(d, s);
    case NINEFOLD_BLEND_MUL2: return opMul2(d, s);
    case NINEFOLD_BLEND_SCREEN: return opScreen(d, s);
    case NINEFOLD_BLEND_OVERLAY: return opOverlay(d, s);
    case NINEFOLD_BLEND_MERGE: return opMerge(d, s, factors.writeMask);
    case NINEFOLD_BLEND_LUMA_SRC: return luma(s);
    case NINEFOLD_BLEND_LUMA_DST: return luma(d);
    case NINEFOLD_BLEND_XOR: return d ^ s;
    case NINEFOLD_BLEND_AND: return d & s;
    case NINEFOLD_BLEND_OR: return d | s;
    case NINEFOLD_BLEND_DST: return d;
    default: return s;
    }
}

// The source of a blend after prescale: its opacity under the blends that alpha weighs (also under that by blendAlpha, which does
// not look at it), its colour under all others. alpha: whether anything reads it then.
template <int blend, bool wide, bool alpha = blend != NINEFOLD_BLEND_ADD, class W>
NINEFOLD_INLINE W prescaled(W source, uint32_t factor)
{
    if constexpr (weighsByAlpha(blend))
        return scaleAlpha<wide>(source, factor);
    const W scaled = scaleRgb<wide>(source, factor);
    return alpha ? scaled | (source & 0xFF000000u) : scaled;
}

// ---- soft edges ----

// The soft edge of a rule, as it stands in rs.
template <class W>
struct SoftEdge {
    W threshold = splat<W>(uint32_t(rs.ruleThreshold)), end = splat<W>(uint32_t(rs.ruleThreshold) + uint32_t(rs.ruleWidth));
    typename Word<W>::Divisor width{uint32_t(rs.ruleWidth)};
    int32_t curve = rs.ruleCurve;

    [[gnu::always_inline]] SoftEdge() noexcept = default;
};

// The weight of the new pixel at rule values between the threshold and threshold + width: 0 to 255, whatever these are.
template <class W>
NINEFOLD_INLINE W softWeight(W value, const SoftEdge<W> &edge)
{
    const W w = edge.width.into((value - edge.threshold) << 8);
    if (edge.curve == NINEFOLD_CURVE_FAST)
        return 255u - (Word<W>::mul16(255u - w, 255u - w) >> 8);
    return edge.curve == NINEFOLD_CURVE_SLOW ? Word<W>::mul16(w, w) >> 8 : w;
}

// A pixel behind its blend, at a rule value that lets it through. One within the edge is mixed with what was there; none is where
// the width is 0.
template <class W>
NINEFOLD_INLINE W softEdge(W d, W result, W value, const SoftEdge<W> &edge)
{
    const auto soft = Word<W>::greaterSigned(edge.end, value);
    if (!Word<W>::any(soft))
        return result;
    const W weight = softWeight(value, edge);
    return Word<W>::select(soft, mixed(d, result, weight | weight << 16), result);
}

} // namespace ninefold::ops
