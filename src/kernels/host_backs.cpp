// Backs of kernels that call a host's own operator, for every machine: a pixel is drawn, from the multi stage to the write, before
// the next one is looked at.
#include "kernels/plan.h"
#include "ops/blend.h"

namespace ninefold {
namespace {

template <BackKey key>
void hostBack(const Span &s, int first, int n, Chunk &c, const HostMulti &multi)
{
    const ops::Factors factors;
    [[maybe_unused]] const ops::SoftEdge<uint32_t> edge;
    const auto draw = [&](int k) {
        uint32_t source = c.source[k];
        if (multi.call && multi.picked[k / 64] >> (k & 63) & 1) {
            const uint32_t result = multi.call(source, c.second[k & multi.secondMask]);
            source = multi.dropped ? source : result;
        }
        uint32_t &pixel = s.dst[first + k];
        const uint32_t old = pixel;
        if constexpr (key.prescale)
            source = ops::prescaled<key.blend, true>(source, factors.prescale);
        if constexpr (key.blend == NINEFOLD_BLEND_CUSTOM)
            source = rs.blendFunc(old, source);
        else
            source = ops::blended<key.blend, true>(old, source, factors);
        if constexpr (key.soft)
            source = ops::softEdge(old, source, c.rule[k] & 0xFF, edge);
        pixel = source;
        if constexpr (key.marks == Marks::planeZ)
            s.z[first + k] = uint8_t(rs.zRef);
    };
    for (int begin = 0; begin < n; begin += 64)
        for (uint64_t live = c.live[begin / 64]; live; live &= live - 1)
            draw(begin + std::countr_zero(live));
    if constexpr (key.marks != Marks::none) {
        const uint32_t column = (s.x & 15) + uint32_t(first);
        for (int k = 0; k < n; ++k)
            if (c.marks[k / 64] >> (k & 63) & 1)
                s.plane[(column + uint32_t(k)) >> 4] |= uint16_t(0x8000 >> ((column + uint32_t(k)) & 15));
    }
}

constexpr UsedParts used = usedParts();

} // namespace

constinit const std::array<HostBack, BackKey::count> hostBacks = arrayOf<HostBack, BackKey::count>([]<int index>() -> HostBack {
    if constexpr (used.back[index])
        return hostBack<BackKey::of(index)>;
    return nullptr;
});

} // namespace ninefold
