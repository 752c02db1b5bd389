// Row forms of the operators behind multiFunc and blendFunc.
#include "kernels/simd/operators.h"
#include "kernels/simd/set.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <int op, bool wide>
void rowOperator(u32 *out, const u32 *first, const u32 *second, int secondMask, const u64 *pick, int n)
{
    const ops::Factors factors;
    for (int k = 0; k < n; k += lanes) {
        const V f = load(first + k), result = apply<op, wide>(f, load(second + (k & secondMask)), factors);
        store(out + k, select(lanesOf(pick[k / 64] >> (k & 63)), result, f));
    }
}

template <bool wide>
consteval std::array<RowOperator, ops::opCount> makeOperators()
{
    return arrayOf<RowOperator, ops::opCount>([]<int op>() -> RowOperator { return rowOperator<op, wide>; });
}

} // namespace

constinit const std::array<RowOperator, ops::opCount> operators[2] = {makeOperators<false>(), makeOperators<true>()};

} // namespace ninefold::NINEFOLD_SET
