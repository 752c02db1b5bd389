// The table of this instruction set.
#include "kernels/set/fetch.h"
#include "kernels/set/gates.h"
#include "kernels/set/tables.h"

#include <type_traits>

namespace ninefold::NINEFOLD_SET {
namespace {

template <Rule r, Gate g>
int refused(const Span& s, int first, int n)
{
    if constexpr (r == Rule::none) {
        return refusedPixels<g>(s, first, n);
    } else {
        std::conditional_t<r == Rule::row, RuleRow, RuleFree> rule(s, first);
        const V threshold = splat(u32(rs.ruleThreshold));
        int k = 0;
        for (; k < n && !any(firstLanes(n - k) & greaterSigned(rule.get(n - k), threshold)); k += lanes)
            rule.advance();
        return k < n ? k : n;
    }
}

} // namespace

constinit const SetTable set = {
    .fronts = fronts.at,
    .seconds = seconds.at,
    .backs = {backs.at[0], backs.at[1]},
    .operators = {operators.at[0], operators.at[1]},
    .hostOperator = hostOperator,
    .blocks = blocks.at,
    .spans = fusedSpans.at,
    .refused =
        {
            {nullptr, refused<Rule::none, Gate::plane>, refused<Rule::none, Gate::z>, nullptr, refused<Rule::none, Gate::zMask>},
            {refused<Rule::row, Gate::none>, refused<Rule::none, Gate::plane>, refused<Rule::row, Gate::none>,
             refused<Rule::row, Gate::none>, refused<Rule::row, Gate::none>},
            {refused<Rule::free, Gate::none>, refused<Rule::none, Gate::plane>, refused<Rule::free, Gate::none>,
             refused<Rule::free, Gate::none>, refused<Rule::free, Gate::none>},
        },
#if defined(__AVX512F__)
    .upTo8 = &v3::set,
    .upTo4 = &v1::set,
#elif defined(__AVX2__)
    .upTo8 = &v3::set,
    .upTo4 = &v1::set,
#else
    .upTo8 = &v1::set,
    .upTo4 = &v1::set,
#endif
};

} // namespace ninefold::NINEFOLD_SET
