// Fused spans with a multi stage: unit fetch, second operand, operator, blend and write of a row in registers.
#include "kernels/simd/colours.h"
#include "kernels/simd/fused.h"
#include "kernels/simd/point.h"

namespace ninefold::NINEFOLD_SET {
namespace {

constexpr Sample operandOf(Multi multi)
{
    return multi == Multi::texture   ? Sample{Motion::unit, Reading::point}
           : multi == Multi::corners ? Sample{Motion::free, Reading::corners}
                                     : Sample{Motion::free, Reading::flat};
}

// What the operator makes of a texel and its second operand. A zero in tex1 is no operand.
template <MultiSpanKey key>
struct Combined : Tested {
    Fetch<0, Sample{Motion::unit, Reading::point}> texels;
    Fetch<1, operandOf(key.multi)> operands;
    ops::Factors factors;
    NINEFOLD_INLINED Combined(const Span &s, int first) : texels(s, first), operands(s, first) {}
    NINEFOLD_INLINED V get(int left, V &tested) const
    {
        const V first = texels.get(left, tested);
        V found;
        const V result = apply<key.op, false>(first, operands.get(left, found), factors);
        return key.multi == Multi::texture ? select(isNotZero(found), result, first) : result;
    }
    NINEFOLD_INLINED void advance() { texels.advance(), operands.advance(); }
};

template <MultiSpanKey key>
void multiSpan(const Span &s, int first, int n)
{
    const ops::Factors factors;
    Combined<key> fetch(s, first);
    drawPixels<key.blend>(s.dst + first, n, fetch, factors);
}

} // namespace

constinit const std::array<FusedSpan, MultiSpanKey::count> multiSpans =
    arrayOf<FusedSpan, MultiSpanKey::count>([]<int index>() -> FusedSpan { return multiSpan<MultiSpanKey::of(index)>; });

} // namespace ninefold::NINEFOLD_SET
