// Fronts and seconds that read single texels.
#include "kernels/simd/point.h"
#include "kernels/simd/front.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// The reading position moves on pixels that pass the rule test alone.
template <>
bool front<FrontKey{{Motion::unit, Reading::slip}, Rule::row, Gate::none}>(const Span &span, int first, int n, Chunk &c)
{
    RuleValues<Rule::row> rule(span, first);
    const V threshold = splat(u32(rs.ruleThreshold));
    c.source = c.words, c.rule = c.rules;
    u64 some = 0;
    for (int begin = 0; begin < n; begin += 64) {
        u64 live = 0;
        for (int k = begin; k < n && k < begin + 64; k += lanes, rule.advance()) {
            const V value = rule.get(n - k);
            store(c.rules + k, value);
            u32 bits = bitsOf(firstLanes(n - k) & greaterSigned(value, threshold));
            live |= u64(bits) << (k & 63);
            for (; bits; bits &= bits - 1)
                c.words[k + __builtin_ctz(bits)] = *c.slip++;
        }
        some |= c.live[begin / 64] = live;
    }
    return some != 0;
}

} // namespace

NINEFOLD_READING(Reading::point)
NINEFOLD_READING(Reading::mapped)
NINEFOLD_READING(Reading::run)
NINEFOLD_READING(Reading::slip)

} // namespace ninefold::NINEFOLD_SET
