// What each operator of the list does with a word of pixels.
#pragma once

#include "ops/blend.h"

namespace ninefold::ops {

// wide: blendAlpha or blendAlphaRgb above 255, or prescaleMulti above 256.
template <int op, bool wide, class W>
NINEFOLD_INLINE W apply(W first, W second, const Factors &factors)
{
    constexpr Op is = opList[op];
    if constexpr (is.scales)
        second = prescaled<is.blend, wide, !is.keepsAlpha>(second, factors.prescaleMulti);
    W result = first;
    if constexpr (is.blend == NINEFOLD_MULTI_OP_CONST_ALPHA_RGB)
        result = opConstAlpha<wide>(first, second, factors.blendAlphaRgb);
    else
        result = blended<is.blend, wide>(first, second, factors);
    return is.keepsAlpha ? first ^ ((first ^ result) & 0xFFFFFFu) : result; // of xor, and and or some of it cancels out
}

} // namespace ninefold::ops
