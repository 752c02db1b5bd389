// The table of this instruction set.
#include "kernels/simd/set.h"
#include "kernels/simd/gates.h"
#include "kernels/simd/rules.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

template <Gate g>
int refusedByGate(const Span &s, int first, int n, bool &through)
{
    through = false;
    return refusedPixels<g>(s, first, n);
}

// What a rule makes of pixels.
enum class Verdict { refused, whole, mixed };

struct RuleTest {
    V threshold = splat(u32(rs.ruleThreshold)), full = splat(u32(rs.ruleThreshold) + u32(rs.ruleWidth));
    NINEFOLD_INLINED Verdict operator()(V value, M which) const
    {
        const M live = greaterSigned(value, threshold), soft = greaterSigned(full, value);
        if (!any(live & which))
            return Verdict::refused;
        return any((soft | ~live) & which) ? Verdict::mixed : Verdict::whole;
    }
};

// Counts by whole vectors; 0 where the first one is mixed.
template <Rule r>
int alikeByRule(const Span &s, int first, int n, bool &through)
{
    RuleValues<r> rule(s, first);
    const RuleTest test;
    const Verdict verdict = test(rule.get(n), firstLanes(n));
    if (verdict == Verdict::mixed)
        return 0;
    through = verdict == Verdict::whole;
    int k = lanes;
    rule.advance();
    if (const u32 *values = rule.direct(n - k)) {
        // One texel a pixel: the value of each four that speaks most against the verdict decides.
        const V byte = splat(0xFF);
        for (values -= k; n - k >= 4 * lanes; k += 4 * lanes) {
            const V a = load(values + k), b = load(values + k + lanes);
            const V c = load(values + k + 2 * lanes), d = load(values + k + 3 * lanes);
            const auto worse = [through](V x, V y) NINEFOLD_INLINED { return through ? lesserBytes(x, y) : greaterBytes(x, y); };
            const V worst = worse(worse(a, b), worse(c, d));
            if (test(worst & byte, firstLanes(lanes)) != verdict)
                return k;
        }
        for (; k < n; k += lanes)
            if (test(load(values + k) & byte, firstLanes(n - k)) != verdict)
                return k;
        return n;
    }
    for (; k < n; k += lanes, rule.advance())
        if (test(rule.get(n - k), firstLanes(n - k)) != verdict)
            return k;
    return n;
}

// By Rule and Gate. A rule comes before the gate, but for the plane: whole words of it are taken at once.
constexpr Alike none = nullptr, plane = refusedByGate<Gate::plane>, row = alikeByRule<Rule::row>, free = alikeByRule<Rule::free>;

template <size_t... reading>
constexpr InstructionSet makeSet(std::index_sequence<reading...>)
{
    return {
        .lanes = lanes,
        .fronts = {PartsOf<Reading(reading)>::fronts.data()...},
        .seconds = {PartsOf<Reading(reading)>::seconds.data()...},
        .backs = {backs[0].data(), backs[1].data()},
        .operators = {operators[0].data(), operators[1].data()},
        .blocks = blocks.data(),
        .spans = fusedSpans.data(),
        .multiSpans = multiSpans.data(),
        .alike = {none, plane, refusedByGate<Gate::z>, none, refusedByGate<Gate::zMask>, //
                  row, plane, row, row, row, //
                  free, plane, free, free, free},
    };
}

} // namespace

constinit const InstructionSet set = makeSet(std::make_index_sequence<size_t(Reading::count)>());

} // namespace ninefold::NINEFOLD_SET
