// Fronts: which pixels of a chunk live, and their source words.
#include "kernels/plan.h"
#include "kernels/simd/fetch_of.h"
#include "kernels/simd/gates.h"
#include "kernels/simd/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

constexpr bool isMipMix(Fetch f) { return f == Fetch::mipMixRow || f == Fetch::mipMix || f == Fetch::mipMixPers; }

template <Rule r>
struct RuleOf;
template <>
struct RuleOf<Rule::none> : NoRule {
    using NoRule::NoRule;
};
template <>
struct RuleOf<Rule::row> : RuleRow {
    using RuleRow::RuleRow;
};
template <>
struct RuleOf<Rule::free> : RuleFree {
    using RuleFree::RuleFree;
};

template <Fetch f, Rule r, Gate g>
bool front(const Span &span, int first, int n, Chunk &c)
{
    using Fetcher = FetchOf<f>;
    constexpr bool marksRun = ninefold::marksRun({.frame = {},
                                                  .multi = {},
                                                  .fetch = f,
                                                  .rule = r,
                                                  .gate = g,
                                                  .second = {},
                                                  .prescale = false,
                                                  .blend = 0,
                                                  .marks = g == Gate::plane ? Marks::plane : Marks::none});
    const V threshold = splat(u32(r == Rule::none ? 0 : rs.ruleThreshold));
    const u32 *direct = nullptr;
    if constexpr (hasDirect<Fetcher>)
        direct = Fetcher(span, first).direct(n);
    c.source = direct ? direct : c.words;
    // Which of up to 64 pixels from `begin` on live, of those that are free.
    const auto drawn = [&](Fetcher & fetch, RuleOf<r> & rule, int begin, int count, u64 free) __attribute__((always_inline))
    {
        u64 live = 0;
        for (int k = 0; k < count; k += lanes, fetch.advance(), rule.advance()) {
            const int at = begin + k;
            u32 bits = u32(free >> k) & ((1u << (lanes - 1) << 1) - 1);
            if constexpr (r != Rule::none) {
                const V value = rule.get(count - k);
                store(c.rule + at, value);
                bits &= bitsOf(greaterSigned(value, threshold));
            }
            if ((r != Rule::none || g != Gate::none) && bits == 0)
                continue;
            V key{};
            if (direct) {
                if constexpr (Fetcher::tests)
                    key = load(direct + at);
            } else {
                store(c.words + at, fetch.get(count - k, key));
            }
            if constexpr (isMipMix(f))
                store(c.other + at, key);
            if constexpr (Fetcher::tests)
                bits &= bitsOf(isNotZero(key));
            live |= u64(bits) << k;
        }
        return live;
    };
    u64 some = 0;
    if constexpr (g == Gate::none) {
        Fetcher fetch(span, first);
        RuleOf<r> rule(span, first);
        for (int begin = 0; begin < n; begin += 64) {
            const int count = n - begin < 64 ? n - begin : 64;
            some |= c.live[begin / 64] = drawn(fetch, rule, begin, count, freePixels<g, false>(span, first + begin, count));
        }
    } else {
        for (int begin = 0; begin < n; begin += 64) {
            const int count = n - begin < 64 ? n - begin : 64;
            const u64 free = freePixels<g, Fetcher::mapped>(span, first + begin, count);
            u64 live = 0;
            if (free != 0) {
                Fetcher fetch(span, first + begin);
                RuleOf<r> rule(span, first + begin);
                live = drawn(fetch, rule, begin, count, free);
            }
            c.live[begin / 64] = live;
            if constexpr (g == Gate::plane)
                c.marks[begin / 64] = marksRun ? free : live;
            some |= marksRun ? free : live;
        }
    }
    return some != 0;
}

// The reading position moves on pixels that pass the rule test alone.
bool frontRunSlip(const Span &span, int first, int n, Chunk &c)
{
    RuleRow rule(span, first);
    const V threshold = splat(u32(rs.ruleThreshold));
    c.source = c.words;
    u64 some = 0;
    for (int begin = 0; begin < n; begin += 64) {
        u64 live = 0;
        for (int k = begin; k < n && k < begin + 64; k += lanes, rule.advance()) {
            const V value = rule.get(n - k);
            store(c.rule + k, value);
            u32 bits = bitsOf(firstLanes(n - k) & greaterSigned(value, threshold));
            live |= u64(bits) << (k & 63);
            for (; bits; bits &= bits - 1)
                c.words[k + __builtin_ctz(bits)] = *c.slip++;
        }
        some |= c.live[begin / 64] = live;
    }
    return some != 0;
}

constexpr UsedParts used = usedParts();

template <int index>
constexpr Front frontAt()
{
    constexpr Fetch f = Fetch(index / int(Rule::count) / int(Gate::count));
    constexpr Rule r = Rule(index / int(Gate::count) % int(Rule::count));
    constexpr Gate g = Gate(index % int(Gate::count));
    if constexpr (!used.front[index])
        return nullptr;
    else if constexpr (f == Fetch::runSlip)
        return frontRunSlip;
    else
        return front<f, r, g>;
}

template <size_t... index>
constexpr Fronts makeFronts(std::index_sequence<index...>)
{
    return {{frontAt<int(index)>()...}};
}

} // namespace

constinit const Fronts fronts = makeFronts(std::make_index_sequence<frontCount>());

} // namespace ninefold::NINEFOLD_SET
