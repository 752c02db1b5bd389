// The operators that blendFunc and multiFunc can point to. One enumeration covers both kinds, since a host may put any of them
// behind either pointer; kernels ask operatorIndex which one a pointer is and draw with its row form.
#pragma once

#include <ninefold/render_state.h>

#include "ops/blend.h"
#include "ops/inline.h"
#include "ops/prescale.h"

#include <array>

namespace ninefold::ops {

// Each enumerator is one function with an address of its own. `keep...` takes alpha from the first operand; `scaled...` does so
// too and scales the second operand by prescaleMulti first.
enum class Op : int {
    // behind blendFunc
    src,
    lumaSrc,
    lumaDst,
    xorWord,
    andWord,
    orWord,
    dst, // also value 19 of both banks of multi operators

    // the first bank
    keepSrc,
    keepAlpha,
    constAlpha, // alpha 0: the one multi operator that does not keep it
    keepConstAlphaRgb,
    keepAlphaFast,
    keepAdd,
    keepSub,
    keepMul,
    keepMul2,
    keepScreen,
    keepOverlay,
    merge,
    keepLumaSrc,
    keepLumaDst,
    keepXor,
    keepAnd,
    keepOr,

    // those that only the second bank has
    scaledSrc,
    scaledAlpha,
    keepConstAlpha,
    scaledAlphaFast,
    scaledAdd,
    scaledSub,
    scaledMul,
    scaledMul2,
    scaledScreen,
    scaledOverlay,
    scaledMerge,
    scaledLumaSrc,
    scaledXor,
    scaledAnd,
    scaledOr,
};

constexpr int opCount = static_cast<int>(Op::scaledOr) + 1;

// By bank and value of SetBlendModeMulti. Values 3, 15 and 19 are the same in both banks; 12 and 13 are 0.
constexpr Op multiOperators[2][20] = {
    {Op::keepSrc,     Op::keepAlpha,   Op::constAlpha, Op::keepConstAlphaRgb, Op::keepAlphaFast, Op::keepAdd, Op::keepSub,
     Op::keepMul,     Op::keepMul2,    Op::keepScreen, Op::keepOverlay,       Op::merge,         Op::keepSrc, Op::keepSrc,
     Op::keepLumaSrc, Op::keepLumaDst, Op::keepXor,    Op::keepAnd,           Op::keepOr,        Op::dst},
    {Op::scaledSrc,     Op::scaledAlpha, Op::keepConstAlpha, Op::keepConstAlphaRgb, Op::scaledAlphaFast,
     Op::scaledAdd,     Op::scaledSub,   Op::scaledMul,      Op::scaledMul2,        Op::scaledScreen,
     Op::scaledOverlay, Op::scaledMerge, Op::scaledSrc,      Op::scaledSrc,         Op::scaledLumaSrc,
     Op::keepLumaDst,   Op::scaledXor,   Op::scaledAnd,      Op::scaledOr,          Op::dst},
};

// What operators read beside their operands; the fields of rs of these names.
struct Factors {
    uint32_t blendAlpha;
    uint32_t blendAlphaRgb;
    uint32_t prescaleMulti;
    uint32_t writeMask;
};

// The low 24 bits of `color` with the alpha of `first`.
NINEFOLD_INLINE uint32_t withAlphaOf(uint32_t first, uint32_t color) { return (color & 0xFFFFFF) | (first & 0xFF000000); }

// The scalar definition of every operator.
template <Op op>
NINEFOLD_INLINE uint32_t apply(uint32_t f, uint32_t s, const Factors &k)
{
    const uint32_t scaled = scaleRgb(s, k.prescaleMulti);
    switch (op) {
    case Op::src: return opSrc(f, s);
    case Op::lumaSrc: return opLumaSrc(f, s);
    case Op::lumaDst: return opLumaDst(f, s);
    case Op::xorWord: return opXor(f, s);
    case Op::andWord: return opAnd(f, s);
    case Op::orWord: return opOr(f, s);

    case Op::keepSrc: return withAlphaOf(f, s);
    case Op::keepAlpha: return withAlphaOf(f, opAlpha(f, s));
    case Op::constAlpha: return opConstAlpha(f, s, k.blendAlpha);
    case Op::keepConstAlphaRgb: return withAlphaOf(f, opConstAlpha(f, s, k.blendAlphaRgb));
    case Op::keepAlphaFast: return withAlphaOf(f, opAlphaFast(f, s));
    case Op::keepAdd: return withAlphaOf(f, opAdd(f, s));
    case Op::keepSub: return withAlphaOf(f, opSub(f, s));
    case Op::keepMul: return withAlphaOf(f, opMul(f, s));
    case Op::keepMul2: return withAlphaOf(f, opMul2(f, s));
    case Op::keepScreen: return withAlphaOf(f, opScreen(f, s));
    case Op::keepOverlay: return withAlphaOf(f, opOverlay(f, s));
    case Op::merge: return opMerge(f, s, k.writeMask);
    case Op::keepLumaSrc: return withAlphaOf(f, luma(s));
    case Op::keepLumaDst: return withAlphaOf(f, luma(f));
    case Op::keepXor: return f ^ (s & 0xFFFFFF);
    case Op::keepAnd: return f & (s | 0xFF000000);
    case Op::keepOr: return f | (s & 0xFFFFFF);

    case Op::scaledSrc: return withAlphaOf(f, scaled);
    case Op::scaledAlpha: return withAlphaOf(f, opAlpha(f, scaleAlpha(s, k.prescaleMulti)));
    case Op::keepConstAlpha: return withAlphaOf(f, opConstAlpha(f, s, k.blendAlpha)); // reads no alpha that could be scaled
    case Op::scaledAlphaFast: return withAlphaOf(f, opAlphaFast(f, scaleAlpha(s, k.prescaleMulti)));
    case Op::scaledAdd: return withAlphaOf(f, opAdd(f, scaled));
    case Op::scaledSub: return withAlphaOf(f, opSub(f, scaled));
    case Op::scaledMul: return withAlphaOf(f, opMul(f, scaled));
    case Op::scaledMul2: return withAlphaOf(f, opMul2(f, scaled));
    case Op::scaledScreen: return withAlphaOf(f, opScreen(f, scaled));
    case Op::scaledOverlay: return withAlphaOf(f, opOverlay(f, scaled));
    case Op::scaledMerge: return opMerge(f, scaled | (s & 0xFF000000), k.writeMask);
    case Op::scaledLumaSrc: return withAlphaOf(f, luma(scaled));
    case Op::scaledXor: return f ^ scaled;
    case Op::scaledAnd: return f & (scaled | 0xFF000000);
    case Op::scaledOr: return f | scaled;

    case Op::dst: break;
    }
    return opDst(f, s);
}

// The functions, by Op; each reads its factors from rs.
extern const std::array<PixelOperator, opCount> operators;

// The Op that a pointer is, -1 for null and for a host's own function.
int operatorIndex(PixelOperator function);

} // namespace ninefold::ops
