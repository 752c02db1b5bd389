// Lane forms of the pixel operators; their scalar definitions are in src/ops. Channels that fit are multiplied in 16-bit halves:
// with weights up to 255 (or a factor up to 256) no sum passes 65,535, so the bits are those of the packed 32-bit arithmetic. The
// wide forms serve constant factors beyond that, where channels spill into each other.
#pragma once

#include "kernels/simd/lanes.h"
#include "ops/operators.h"

#include <ninefold/render_state.h>

namespace ninefold::NINEFOLD_SET {
namespace {

// (s * a + d * w) >> 8 in red, green, blue, with the weights a, w in both halves of each lane; alpha 0.
NINEFOLD_LANE V mixHalves(V d, V s, V a, V w)
{
    const V redBlue = mul16(d & 0xFF00FFu, w) + mul16(s & 0xFF00FFu, a);
    const V green = mul16(d >> 8 & 0xFFu, w) + mul16(s >> 8 & 0xFFu, a);
    return (redBlue >> 8 & 0xFF00FFu) | (green & 0xFF00u);
}

// The same in wrapping 32-bit products.
NINEFOLD_LANE V mixWide(V d, V s, V a, V w)
{
    const V redBlue = (d & 0xFF00FFu) * w + (s & 0xFF00FFu) * a;
    const V green = (d & 0xFF00u) * w + (s & 0xFF00u) * a;
    return ((redBlue & 0xFF00FF00u) | (green & 0xFF0000u)) >> 8;
}

NINEFOLD_LANE V opAlpha(V d, V s)
{
    const V a = bothHalves(s >> 24);
    return mixHalves(d, s, a, a ^ 0xFF00FFu);
}

NINEFOLD_LANE V opAlphaFast(V d, V s)
{
    const V a = s >> 24;
    return select(equal(a, splat(255)), s, select(isZero(a), d, opAlpha(d, s)));
}

NINEFOLD_LANE V opConstAlpha(V d, V s, u32 alpha) // alpha up to 255
{
    const V a = splat(alpha | alpha << 16);
    return mixHalves(d, s, a, a ^ 0xFF00FFu);
}

NINEFOLD_LANE V opConstAlphaWide(V d, V s, u32 alpha) { return mixWide(d, s, splat(alpha), splat(255 - alpha)); }

NINEFOLD_LANE V opAdd(V d, V s)
{
    const V sum = (d & 0xFEFEFFu) + (s & 0xFEFEFFu);
    return (0x80808000u - (sum & 0x1010100u)) >> 7 | sum;
}

NINEFOLD_LANE V opSub(V d, V s)
{
    const V difference = (d | 0x1010101u) - (s | 0x1010101u);
    return ~((0x80808000u - (difference & 0x1010100u)) >> 7) & difference;
}

NINEFOLD_LANE V opMul(V d, V s)
{
    const V redBlue = mul16(d & 0xFF00FFu, s & 0xFF00FFu);
    const V green = mul16(d >> 8 & 0xFFu, s >> 8 & 0xFFu);
    return (redBlue >> 8 & 0xFF00FFu) | (green & 0xFF00u);
}

NINEFOLD_LANE V opMul2(V d, V s)
{
    const V v = opMul(d, s), h = v & 0x80808080u;
    return (h - (h >> 7)) | v << 1 | h;
}

// The product of the complements, complemented. By channels: g++ complements a whole AVX-512 vector by an instruction that waits
// for the register's older value too, which made a loop three times slower.
NINEFOLD_LANE V opScreen(V d, V s)
{
    const V redBlue = mul16(~d & 0xFF00FFu, ~s & 0xFF00FFu);
    const V green = mul16(~(d >> 8) & 0xFFu, ~(s >> 8) & 0xFFu);
    return ~((redBlue >> 8 & 0xFF00FFu) | (green & 0xFF00u));
}

NINEFOLD_LANE V opOverlay(V d, V s)
{
    const V h = d & 0x808080u, k = h | (h - (h >> 7));
    return (opMul(d ^ k, s ^ k) << 1) ^ k; // each product is below 2^15: doubling leaves its byte
}

NINEFOLD_LANE V opMerge(V d, V s, u32 mask) { return (d & ~mask) | (s & mask); }

NINEFOLD_LANE V luma(V p)
{
    const V sum = ((p >> 16 & 0xFFu) * 76u >> 8) + ((p >> 8 & 0xFFu) * 150u >> 8) + ((p & 0xFFu) * 29u >> 8);
    return sum | sum << 8 | sum << 16;
}

// Factors up to 256.
NINEFOLD_LANE V scaleRgb(V p, u32 factor)
{
    const V f = splat(factor | factor << 16);
    return (mul16(p & 0xFF00FFu, f) >> 8 & 0xFF00FFu) | (mul16(p >> 8 & 0xFFu, f) & 0xFF00u);
}
NINEFOLD_LANE V scaleAlpha(V p, u32 factor) { return (p & 0xFFFFFFu) | (mul16(p >> 24, splat(factor)) & 0xFF00u) << 16; }

// Any factor.
NINEFOLD_LANE V scaleRgbWide(V p, u32 factor)
{
    return (((p & 0xFF00FFu) * factor & 0xFF00FF00u) | ((p & 0xFF00u) * factor & 0xFF0000u)) >> 8;
}
NINEFOLD_LANE V scaleAlphaWide(V p, u32 factor) { return (p & 0xFFFFFFu) | (((p >> 8 & 0xFF0000u) * factor) & 0xFF000000u); }

NINEFOLD_LANE V keepAlpha(V first, V x) { return (x & 0xFFFFFFu) | (first & 0xFF000000u); }

// An operator of the multi stage or behind blendFunc. wide: blendAlpha or blendAlphaRgb above 255, or prescaleMulti above 256.
template <ops::Op op, bool wide>
NINEFOLD_LANE V apply(V f, V s)
{
    const u32 m = rs.prescaleMulti;
    const auto rgb = [m](V p) __attribute__((always_inline)) { return wide ? scaleRgbWide(p, m) : scaleRgb(p, m); };
    const auto alpha = [m](V p) __attribute__((always_inline)) { return wide ? scaleAlphaWide(p, m) : scaleAlpha(p, m); };
    const auto constant = [ f, s ](u32 a) __attribute__((always_inline))
    {
        return wide ? opConstAlphaWide(f, s, a) : opConstAlpha(f, s, a);
    };
    using ops::Op;
    switch (op) {
    case Op::src: return s;
    case Op::dst: return f;
    case Op::lumaSrc: return luma(s);
    case Op::lumaDst: return luma(f);
    case Op::xorWord: return f ^ s;
    case Op::andWord: return f & s;
    case Op::orWord: return f | s;

    case Op::keepSrc: return keepAlpha(f, s);
    case Op::keepAlpha: return keepAlpha(f, opAlpha(f, s));
    case Op::constAlpha: return constant(rs.blendAlpha);
    case Op::keepConstAlphaRgb: return keepAlpha(f, constant(rs.blendAlphaRgb));
    case Op::keepAlphaFast: return keepAlpha(f, opAlphaFast(f, s));
    case Op::keepAdd: return keepAlpha(f, opAdd(f, s));
    case Op::keepSub: return keepAlpha(f, opSub(f, s));
    case Op::keepMul: return keepAlpha(f, opMul(f, s));
    case Op::keepMul2: return keepAlpha(f, opMul2(f, s));
    case Op::keepScreen: return keepAlpha(f, opScreen(f, s));
    case Op::keepOverlay: return keepAlpha(f, opOverlay(f, s));
    case Op::merge: return opMerge(f, s, rs.writeMask);
    case Op::keepLumaSrc: return keepAlpha(f, luma(s));
    case Op::keepLumaDst: return keepAlpha(f, luma(f));
    case Op::keepXor: return f ^ (s & 0xFFFFFFu);
    case Op::keepAnd: return f & (s | 0xFF000000u);
    case Op::keepOr: return f | (s & 0xFFFFFFu);

    case Op::scaledSrc: return keepAlpha(f, rgb(s));
    case Op::scaledAlpha: return keepAlpha(f, opAlpha(f, alpha(s)));
    case Op::keepConstAlpha: return keepAlpha(f, constant(rs.blendAlpha));
    case Op::scaledAlphaFast: return keepAlpha(f, opAlphaFast(f, alpha(s)));
    case Op::scaledAdd: return keepAlpha(f, opAdd(f, rgb(s)));
    case Op::scaledSub: return keepAlpha(f, opSub(f, rgb(s)));
    case Op::scaledMul: return keepAlpha(f, opMul(f, rgb(s)));
    case Op::scaledMul2: return keepAlpha(f, opMul2(f, rgb(s)));
    case Op::scaledScreen: return keepAlpha(f, opScreen(f, rgb(s)));
    case Op::scaledOverlay: return keepAlpha(f, opOverlay(f, rgb(s)));
    case Op::scaledMerge: return opMerge(f, rgb(s) | (s & 0xFF000000u), rs.writeMask);
    case Op::scaledLumaSrc: return keepAlpha(f, luma(rgb(s)));
    case Op::scaledXor: return f ^ rgb(s);
    case Op::scaledAnd: return f & (rgb(s) | 0xFF000000u);
    case Op::scaledOr: return f | rgb(s);
    }
    __builtin_unreachable();
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
