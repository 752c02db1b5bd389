// Fused spans with a multi stage: unit fetch, second operand, operator, blend and write of a row in registers.
#include "kernels/simd/fused.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

template <Multi m>
struct OperandOf;
template <>
struct OperandOf<Multi::second> : Unit<1, true> {
    using Unit::Unit;
};
template <>
struct OperandOf<Multi::corners> : Corners {
    using Corners::Corners;
};
template <>
struct OperandOf<Multi::colour> : Flat {
    using Flat::Flat;
};

// What the operator makes of a texel and its second operand. A zero in tex1 is no operand.
template <Multi m, ops::Op op>
struct Combined : Tested {
    Unit<0, true> texels;
    OperandOf<m> operands;
    __attribute__((always_inline)) Combined(const Span &s, int first) : texels(s, first), operands(s, first) {}
    __attribute__((always_inline)) V get(int left, V &key) const
    {
        const V first = texels.get(left, key);
        V found;
        const V result = apply<op, false>(first, operands.get(left, found));
        return m == Multi::second ? select(isNotZero(found), result, first) : result;
    }
    __attribute__((always_inline)) void advance() { texels.advance(), operands.advance(); }
};

template <Multi m, int blend, ops::Op op>
void multiSpan(const Span &s, int first, int n)
{
    const BlendFactors factors;
    Combined<m, op> fetch(s, first);
    drawPixels<blend>(s.dst + first, n, fetch, factors);
}

template <size_t... index>
constexpr MultiSpans makeSpans(std::index_sequence<index...>)
{
    return {{multiSpan<Multi(index / ops::opCount / multiBlends), int(index / ops::opCount % multiBlends),
                       ops::Op(index % ops::opCount)>...}};
}

} // namespace

constinit const MultiSpans multiSpans = makeSpans(std::make_index_sequence<size_t(multiSpanCount)>());

} // namespace ninefold::NINEFOLD_SET
