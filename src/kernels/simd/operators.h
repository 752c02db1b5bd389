// The pixel operators of src/ops on vectors.
#pragma once

#include "kernels/simd/lanes.h"
#include "ops/operators.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// a / b for unsigned words, exact: the quotient of two such doubles, rounded once, cannot reach the next whole number.
NINEFOLD_LANE D divided(D a, D b)
{
    const D rounded = toNearest(toDouble(a) / toDouble(b));
    return rounded - ((a - mulWide(rounded, b)) >> 63);
}

using ops::apply, ops::blended, ops::mixWide, ops::prescaled;

} // namespace
} // namespace ninefold::NINEFOLD_SET

template <>
struct ninefold::ops::Word<ninefold::NINEFOLD_SET::V> {
    using V = NINEFOLD_SET::V;
    using D = NINEFOLD_SET::D;
    using M = NINEFOLD_SET::M;

    static constexpr bool halves = true;

    NINEFOLD_LANE V mul16(V a, V b) { return NINEFOLD_SET::mul16(a, b); }
    NINEFOLD_LANE V mulHigh16(V a, V b) { return NINEFOLD_SET::mulHigh16(a, b); }
    NINEFOLD_LANE V down8(V a) { return NINEFOLD_SET::high8(a); }
    NINEFOLD_LANE V up8(V a) { return NINEFOLD_SET::low8(a); }
    NINEFOLD_LANE V alphas(V a) { return NINEFOLD_SET::alphas(a); }
    // Divides words into quotients below 256.
    struct Divisor {
        V value, last;
        NINEFOLD_SET::R reciprocal;
        bool small;
        NINEFOLD_INLINED explicit Divisor(uint32_t b)
            : value(NINEFOLD_SET::splat(b)), last(value - 1), reciprocal(float(1 - 0x1p-20) / float(b) - NINEFOLD_SET::R{}),
              small(b < 0x800000)
        {}
        NINEFOLD_INLINED V into(V a) const
        {
            if (small) { // then a is below 2^31, and the guess right or 1 too low
                const V guess = NINEFOLD_SET::toWhole(NINEFOLD_SET::toReal(a) * reciprocal);
                return NINEFOLD_SET::select(NINEFOLD_SET::greaterSigned(a - guess * value, last), guess + 1, guess);
            }
            const D low = (D)value & 0xFFFFFFFFu;
            const D even = NINEFOLD_SET::divided((D)a & 0xFFFFFFFFu, low), odd = NINEFOLD_SET::divided((D)a >> 32, low);
            return (V)(even & 0xFFFFFFFFu) | (V)(odd << 32);
        }
    };

    NINEFOLD_LANE M equal(V a, V b) { return NINEFOLD_SET::equal(a, b); }
    NINEFOLD_LANE M greaterSigned(V a, V b) { return NINEFOLD_SET::greaterSigned(a, b); }
    NINEFOLD_LANE bool any(M which) { return NINEFOLD_SET::any(which); }
    NINEFOLD_LANE V select(M which, V a, V b) { return NINEFOLD_SET::select(which, a, b); }
};
