// Backs: prescale, blend, soft edge, the masked write and the marks in the planes.
#include "kernels/plan.h"
#include "kernels/simd/blend.h"
#include "kernels/simd/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

// a / b for unsigned words, exact: the quotient of two such doubles, rounded once, cannot reach the next whole number.
NINEFOLD_LANE D divided(D a, D b)
{
    const D rounded = toNearest(toDouble(a) / toDouble(b));
    return rounded - ((a - mulWide(rounded, b)) >> 63);
}

// The weight of the new pixel at rule values between the threshold and threshold + width.
NINEFOLD_LANE V softWeight(V value)
{
    const V numerator = (value - u32(rs.ruleThreshold)) << 8;
    const D width = (D)splat(u32(rs.ruleWidth)) & 0xFFFFFFFFu;
    V w = (V)(divided((D)numerator & 0xFFFFFFFFu, width) & 0xFFFFFFFFu) | (V)(divided((D)numerator >> 32, width) << 32);
    if (rs.ruleCurve == 1) {
        const V rest = 255u - w;
        w = 255u - (rest * rest >> 8);
    } else if (rs.ruleCurve == 2)
        w = w * w >> 8;
    return w;
}

NINEFOLD_LANE V softEdge(V d, V result, V value)
{
    const M soft = greaterSigned(splat(u32(rs.ruleThreshold) + u32(rs.ruleWidth)), value);
    if (!any(soft))
        return result;
    const V w = softWeight(value);
    return select(soft, mixWide(d, result, w, 255u - w), result);
}

// Sets bit 15 - (at & 15) of words[at / 16] for each marked pixel; words without one are not touched.
NINEFOLD_LANE void markPlane(u16 *words, u32 at, u64 marks)
{
    words += at >> 4;
    at &= 15;
    while (marks) {
        u32 bits = u32(marks) & (0xFFFFu >> at);
        marks >>= 16 - at;
        bits <<= at;
        if (bits) { // mirror: bit k of a word of marks is bit 15 - k of the plane
            bits = (bits & 0x5555) << 1 | (bits >> 1 & 0x5555);
            bits = (bits & 0x3333) << 2 | (bits >> 2 & 0x3333);
            bits = (bits & 0x0F0F) << 4 | (bits >> 4 & 0x0F0F);
            *words = u16(*words | (bits << 8 | bits >> 8));
        }
        ++words;
        at = 0;
    }
}

NINEFOLD_LANE void markZ(u8 *z, u64 marks)
{
    const u8 value = u8(rs.zRef);
#if defined(__AVX512BW__)
    _mm512_mask_storeu_epi8(z, marks, _mm512_set1_epi8(char(value)));
#else
    for (; marks; marks &= marks - 1)
        z[__builtin_ctzll(marks)] = value;
#endif
}

// A host's own blend: each pixel is written before the next one is asked for.
NINEFOLD_LANE void callHost(u32 *dst, int n, const Chunk &c)
{
    for (int begin = 0; begin < n; begin += 64)
        for (u64 bits = c.live[begin / 64]; bits; bits &= bits - 1) {
            const int k = begin + __builtin_ctzll(bits);
            dst[k] = c.blendFunc(dst[k], c.source[k]);
        }
}

template <bool prescale, int blend, bool soft, Marks m, bool wide>
void back(const Span &span, int first, int n, Chunk &c)
{
    u32 *dst = span.dst + first;
    const BlendFactors factors;
    if constexpr (blend == 12 && prescale) {
        for (int k = 0; k < n; k += lanes)
            store(c.words + k, prescaled<blend, wide>(load(c.source + k), factors.prescale));
        c.source = c.words;
    }
    if (blend == 12 && !soft && !c.blendRow) {
        callHost(dst, n, c);
    } else {
        if constexpr (blend == 12) {
            for (int k = 0; k < n; k += lanes)
                store(c.other + k, n - k >= lanes ? load(dst + k) : loadSome(dst + k, n - k));
            (c.blendRow ? c.blendRow : hostOperator)(c.blendFunc, c.words, c.other, c.source, -1, c.live, n);
            c.source = c.words;
        }
        for (int k = 0; k < n; k += lanes) {
            const int left = n - k;
            const M live = lanesOf(c.live[k / 64] >> (k & 63));
            V s = load(c.source + k);
            const V d = left >= lanes ? load(dst + k) : loadSome(dst + k, left);
            if constexpr (blend != 12) {
                if constexpr (prescale)
                    s = prescaled<blend, wide>(s, factors.prescale);
                s = blended<blend, wide>(d, s, factors);
            }
            if constexpr (soft)
                s = softEdge(d, s, load(c.rule + k));
            s = select(live, s, d);
            if (left >= lanes)
                store(dst + k, s);
            else
                storeSome(dst + k, s, left);
        }
    }
    if constexpr (m != Marks::none) {
        for (int k = 0; k < n; k += 64) {
            const u64 marks = c.marks[k / 64];
            markPlane(span.plane, (span.x & 15) + u32(first + k), marks);
            if constexpr (m == Marks::planeZ)
                markZ(span.z + first + k, marks);
        }
    }
}

constexpr UsedParts used = usedParts();

template <int index, bool wide>
constexpr Back backAt()
{
    constexpr bool soft = index & 1, prescale = index >> 1 & 1;
    constexpr int blend = index / 4 % blendCount;
    constexpr Marks m = Marks(index / 4 / blendCount);
    if constexpr (!used.back[index])
        return nullptr;
    else
        return back < prescale, blend, soft, m, wide && (prescale || blend == 2) > ;
}

template <size_t... index>
constexpr Backs makeBacks(std::index_sequence<index...>)
{
    return {{{backAt<int(index), false>()...}, {backAt<int(index), true>()...}}};
}

} // namespace

constinit const Backs backs = makeBacks(std::make_index_sequence<backCount>());

} // namespace ninefold::NINEFOLD_SET
