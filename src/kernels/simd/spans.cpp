// Fused spans: one row each, for frames whose rows differ.
#include "kernels/simd/fused.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

constexpr UsedParts used = usedParts();

template <int index>
constexpr FusedSpan spanAt()
{
    if constexpr (!used.span[index])
        return nullptr;
    else
        return fusedSpan<spanFetches[index / blendCount / int(Gate::count)].fetch, Gate(index / blendCount % int(Gate::count)),
                         index % blendCount>;
}

template <size_t... index>
constexpr FusedSpans makeSpans(std::index_sequence<index...>)
{
    return {{spanAt<int(index)>()...}};
}

} // namespace

constinit const FusedSpans fusedSpans = makeSpans(std::make_index_sequence<spanCount>());

} // namespace ninefold::NINEFOLD_SET
