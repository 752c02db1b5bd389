// The kernels of one family. NINEFOLD_FAMILY names it, NINEFOLD_FRAMES the header with its frames.
#include NINEFOLD_FRAMES
#include "kernels/kernel.h"
#include "kernels/table.h"

namespace ninefold {
namespace {

constexpr Family family = Family::NINEFOLD_FAMILY;

constexpr size_t count = [] {
    size_t n = 0;
    forEachCombination([&n](const Axes &a) { n += familyOf(a) == family; });
    return n;
}();

constexpr auto codes = [] {
    std::array<uint32_t, count> found{};
    size_t n = 0;
    forEachCombination([&](const Axes &a) {
        if (familyOf(a) == family)
            found[n++] = codeOf(a);
    });
    return found;
}();

constinit const auto kernels = arrayOf<DrawFunc, int(count)>([]<int index>() -> DrawFunc { return kernelOf<codes[index]>(); });

} // namespace

template <>
constinit const DrawFunc *const KernelsOf<family>::first = kernels.data();

} // namespace ninefold
