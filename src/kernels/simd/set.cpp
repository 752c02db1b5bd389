// The table of this instruction set.
#include "kernels/simd/fetch.h"
#include "kernels/simd/gates.h"
#include "kernels/simd/tables.h"

#include <type_traits>

namespace ninefold::NINEFOLD_SET {
namespace {

template <Gate g>
int refusedByGate(const Span &s, int first, int n, bool &through)
{
    through = false;
    return refusedPixels<g>(s, first, n);
}

// What a rule makes of pixels: bit 0: some are drawn, bit 1: some are not drawn whole.
struct Verdict {
    V threshold = splat(u32(rs.ruleThreshold)), full = splat(u32(rs.ruleThreshold) + u32(rs.ruleWidth));
    __attribute__((always_inline)) int operator()(V value, M which) const
    {
        const M live = greaterSigned(value, threshold), soft = greaterSigned(full, value);
        return any(live & which) | any((soft | ~live) & which) << 1;
    }
};

// Counts by whole vectors; 0 where the first one is mixed.
template <Rule r>
int alikeByRule(const Span &s, int first, int n, bool &through)
{
    std::conditional_t<r == Rule::row, RuleRow, RuleFree> rule(s, first);
    const Verdict verdict;
    const int wanted = verdict(rule.get(n), firstLanes(n));
    if (wanted == 3)
        return 0;
    through = wanted == 1;
    int k = lanes;
    rule.advance();
    if (const u32 *values = rule.direct(n - k)) {
        // One texel a pixel: the value of each four that speaks most against the verdict decides.
        const V byte = splat(0xFF);
        for (values -= k; n - k >= 4 * lanes; k += 4 * lanes) {
            const V a = load(values + k), b = load(values + k + lanes);
            const V c = load(values + k + 2 * lanes), d = load(values + k + 3 * lanes);
            const auto worse = [through](V x, V y) __attribute__((always_inline))
            {
                return through ? lesserBytes(x, y) : greaterBytes(x, y);
            };
            const V worst = worse(worse(a, b), worse(c, d));
            if (verdict(worst & byte, firstLanes(lanes)) != wanted)
                return k;
        }
        for (; k < n; k += lanes)
            if (verdict(load(values + k) & byte, firstLanes(n - k)) != wanted)
                return k;
        return n;
    }
    for (; k < n; k += lanes, rule.advance())
        if (verdict(rule.get(n - k), firstLanes(n - k)) != wanted)
            return k;
    return n;
}

} // namespace

constinit const InstructionSet set = {
    .lanes = lanes,
    .fronts = fronts.at,
    .seconds = seconds.at,
    .backs = {backs.at[0], backs.at[1]},
    .operators = {operators.at[0], operators.at[1]},
    .hostOperator = hostOperator,
    .blocks = blocks.at,
    .spans = fusedSpans.at,
    .multiSpans = multiSpans.at,
    .alike =
        {
            {nullptr, refusedByGate<Gate::plane>, refusedByGate<Gate::z>, nullptr, refusedByGate<Gate::zMask>},
            {alikeByRule<Rule::row>, refusedByGate<Gate::plane>, alikeByRule<Rule::row>, alikeByRule<Rule::row>,
             alikeByRule<Rule::row>},
            {alikeByRule<Rule::free>, refusedByGate<Gate::plane>, alikeByRule<Rule::free>, alikeByRule<Rule::free>,
             alikeByRule<Rule::free>},
        },
};

} // namespace ninefold::NINEFOLD_SET
