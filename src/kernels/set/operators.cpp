// Row forms of the operators behind multiFunc and blendFunc, and the form that calls a host's own.
#include "kernels/set/operators.h"
#include "kernels/set/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

using ops::Op;

// wide: blendAlpha or blendAlphaRgb above 255, or prescaleMulti above 256.
template <Op op, bool wide>
NINEFOLD_LANE V apply(V f, V s)
{
    const u32 m = rs.prescaleMulti;
    const auto rgb = [m](V p) __attribute__((always_inline)) { return wide ? scaleRgbWide(p, m) : scaleRgb(p, m); };
    const auto alpha = [m](V p) __attribute__((always_inline)) { return wide ? scaleAlphaWide(p, m) : scaleAlpha(p, m); };
    const auto constant = [f, s](u32 a) __attribute__((always_inline)) {
        return wide ? opConstAlphaWide(f, s, a) : opConstAlpha(f, s, a);
    };
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

template <Op op, bool wide>
void rowOperator(PixelOperator, u32* out, const u32* first, const u32* second, int secondMask, const u32* pick, int n)
{
    for (int k = 0; k < n; k += lanes) {
        const V f = load(first + k);
        store(out + k, select(asMask(load(pick + k)), apply<op, wide>(f, load(second + (k & secondMask))), f));
    }
}

template <size_t... op>
constexpr Operators makeOperators(std::index_sequence<op...>)
{
    return {{{rowOperator<Op(op), false>...}, {rowOperator<Op(op), true>...}}};
}

} // namespace

void hostOperator(PixelOperator func, u32* out, const u32* first, const u32* second, int secondMask, const u32* pick, int n)
{
    for (int k = 0; k < n; ++k)
        out[k] = pick[k] ? func(first[k], second[k & secondMask]) : first[k];
}

constinit const Operators operators = makeOperators(std::make_index_sequence<size_t(ops::opCount)>());

} // namespace ninefold::NINEFOLD_SET
