// Blocks: rectangles whose rows are alike, drawn by one function each.
#include "kernels/simd/fused.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

constexpr UsedParts used = usedParts();

template <int index>
constexpr Block blockAt()
{
    if constexpr (!used.block[index]) {
        return nullptr;
    } else {
        constexpr FusedFetch f = blockFetches[index / blendCount / int(Gate::count)];
        return block<f.fetch, f.prescale, Gate(index / blendCount % int(Gate::count)), index % blendCount>;
    }
}

template <size_t... index>
constexpr Blocks makeBlocks(std::index_sequence<index...>)
{
    return {{blockAt<int(index)>()...}};
}

} // namespace

constinit const Blocks blocks = makeBlocks(std::make_index_sequence<blockCount>());

} // namespace ninefold::NINEFOLD_SET
