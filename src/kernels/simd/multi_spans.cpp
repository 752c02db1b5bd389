// Fused spans with a multi stage: unit fetch, second operand, operator, blend and write of a row in registers.
#include "kernels/simd/colours.h"
#include "kernels/simd/fused.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// Texels of tex0 or tex1 side by side, from pixel `first` of a span on.
template <int t>
struct Stretch {
    const u32 *at;
    int length; // to the edge of the texture
    NINEFOLD_INLINED Stretch(const Span &s, int first)
    {
        const Sampled &tex = s.tex[t];
        const u32 column = (tex.u.start + u32(first)) & tex.level.maskU;
        at = tex.level.pixels + (size_t(tex.v.start) << tex.level.shift) + column;
        length = int(tex.level.maskU - column) + 1;
    }
    NINEFOLD_INLINED V get(int left, V &key) const { return key = left >= lanes ? load(at) : loadSome(at, left); }
    NINEFOLD_INLINED void advance() { at += lanes; }
};

// What the operator makes of a texel and its second operand. A zero in tex1 is no operand.
template <MultiSpanKey key>
struct Combined : Tested {
    static constexpr bool textured = key.multi == Multi::texture;
    Stretch<0> texels;
    static constexpr Reading colours = key.multi == Multi::corners ? Reading::corners : Reading::flat;
    std::conditional_t<textured, Stretch<1>, Fetch<1, Sample{Motion::free, colours}>> operands;
    const ops::Factors &factors;
    NINEFOLD_INLINED Combined(const Span &s, int first, const ops::Factors &f) : texels(s, first), operands(s, first), factors(f)
    {}
    NINEFOLD_INLINED int length() const
    {
        if constexpr (textured)
            return operands.length < texels.length ? operands.length : texels.length;
        return texels.length;
    }
    NINEFOLD_INLINED V get(int left, V &tested) const
    {
        const V first = texels.get(left, tested);
        V found;
        const V result = apply<key.op, false>(first, operands.get(left, found), factors);
        return textured ? select(isNotZero(found), result, first) : result;
    }
    NINEFOLD_INLINED void advance() { texels.advance(), operands.advance(); }
};

template <MultiSpanKey key>
void multiSpan(const Span &s, int first, int n)
{
    const ops::Factors factors;
    for (int count; n > 0; first += count, n -= count) {
        Combined<key> fetch(s, first, factors);
        count = n < fetch.length() ? n : fetch.length();
        drawPixels<key.blend>(s.dst + first, count, fetch, factors);
    }
}

} // namespace

constinit const std::array<FusedSpan, MultiSpanKey::count> multiSpans =
    arrayOf<FusedSpan, MultiSpanKey::count>([]<int index>() -> FusedSpan { return multiSpan<MultiSpanKey::of(index)>; });

} // namespace ninefold::NINEFOLD_SET
