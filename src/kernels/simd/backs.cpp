// Backs: prescale, blend, soft edge, the masked write and the marks in the planes.
#include "kernels/plan.h"
#include "kernels/simd/operators.h"
#include "kernels/simd/set.h"

namespace ninefold::NINEFOLD_SET {
namespace {

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

template <BackKey key, bool wide>
void back(const Span &span, int first, int n, Chunk &c, [[maybe_unused]] RowOperator custom)
{
    constexpr int blend = key.blend;
    u32 *dst = span.dst + first;
    const ops::Factors factors;
    [[maybe_unused]] const ops::SoftEdge<V> edge;
    if constexpr (blend == NINEFOLD_BLEND_CUSTOM) {
        alignas(64) u32 old[Chunk::padded];
        int k = 0;
        do {
            store(old + k, n - k >= lanes ? load(dst + k) : loadSome(dst + k, n - k));
            if constexpr (key.prescale)
                store(c.words + k, prescaled<blend, wide>(load(c.source + k), factors.prescale));
        } while ((k += lanes) < n);
        custom(c.words, old, key.prescale ? c.words : c.source, -1, c.live, n);
        c.source = c.words;
    }
    for (int k = 0; k < n; k += lanes) {
        const int left = n - k;
        const M live = lanesOf(c.live[k / 64] >> (k & 63));
        V s = load(c.source + k);
        const V d = left >= lanes ? load(dst + k) : loadSome(dst + k, left);
        if constexpr (blend != NINEFOLD_BLEND_CUSTOM) {
            if constexpr (key.prescale)
                s = prescaled<blend, wide>(s, factors.prescale);
            s = blended<blend, wide>(d, s, factors);
        }
        if constexpr (key.soft)
            s = softEdge(d, s, load(c.rule + k) & 0xFFu, edge);
        s = select(live, s, d);
        if (left >= lanes)
            store(dst + k, s);
        else
            storeSome(dst + k, s, left);
    }
    if constexpr (key.marks != Marks::none) {
        for (int k = 0; k < n; k += 64) {
            const u64 marks = c.marks[k / 64];
            markPlane(span.plane, (span.x & 15) + u32(first + k), marks);
            if constexpr (key.marks == Marks::planeZ)
                markZ(span.z + first + k, marks);
        }
    }
}

constexpr UsedParts used = usedParts();

template <bool wide>
consteval std::array<Back, BackKey::count> makeBacks()
{
    return arrayOf<Back, BackKey::count>([]<int index>() -> Back {
        constexpr BackKey key = BackKey::of(index);
        if constexpr (used.back[index])
            return back < key, wide && (key.prescale || key.blend == NINEFOLD_BLEND_CONST_ALPHA) > ;
        return nullptr;
    });
}

} // namespace

constinit const std::array<Back, BackKey::count> backs[2] = {makeBacks<false>(), makeBacks<true>()};

} // namespace ninefold::NINEFOLD_SET
