// Row forms of the operators behind multiFunc and blendFunc, and the form that calls a host's own.
#include "kernels/simd/operators.h"
#include "kernels/simd/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

using ops::Op;

template <Op op, bool wide>
void rowOperator(PixelOperator, u32 *out, const u32 *first, const u32 *second, int secondMask, const u64 *pick, int n)
{
    for (int k = 0; k < n; k += lanes) {
        const V f = load(first + k);
        store(out + k, select(lanesOf(pick[k / 64] >> (k & 63)), apply<op, wide>(f, load(second + (k & secondMask))), f));
    }
}

template <size_t... op>
constexpr Operators makeOperators(std::index_sequence<op...>)
{
    return {{{rowOperator<Op(op), false>...}, {rowOperator<Op(op), true>...}}};
}

} // namespace

void hostOperator(PixelOperator func, u32 *out, const u32 *first, const u32 *second, int secondMask, const u64 *pick, int n)
{
    for (int k = 0; k < n; ++k)
        out[k] = pick[k / 64] >> (k & 63) & 1 ? func(first[k], second[k & secondMask]) : first[k];
}

constinit const Operators operators = makeOperators(std::make_index_sequence<size_t(ops::opCount)>());

} // namespace ninefold::NINEFOLD_SET
