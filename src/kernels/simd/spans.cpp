// Fused spans: one row each, for frames whose rows differ.
#include "kernels/simd/colours.h"
#include "kernels/simd/fill.h"
#include "kernels/simd/fused.h"
#include "kernels/simd/mix.h"
#include "kernels/simd/point.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <FusedKey key>
void fusedSpan(const Span &s, int first, int n)
{
    const ops::Factors factors;
    drawSpan<key>(s, first, n, factors);
}

void fillSpan(const Span &s, int first, int n) { fillRow(s.dst + first, n, rs.color[0]); }

constexpr UsedParts used = usedParts();

} // namespace

constinit const std::array<FusedSpan, Spans::count> fusedSpans = arrayOf<FusedSpan, Spans::count>([]<int index>() -> FusedSpan {
    constexpr FusedKey key = Spans::of(index);
    if constexpr (!used.span[index])
        return nullptr;
    else if constexpr (isFill(key))
        return fillSpan;
    else
        return fusedSpan<key>;
});

} // namespace ninefold::NINEFOLD_SET
