// Fronts: which pixels of a chunk live, and their source words.
#include "kernels/plan.h"
#include "kernels/set/fetch_of.h"
#include "kernels/set/gates.h"
#include "kernels/set/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

constexpr bool isMipMix(Fetch f) { return f == Fetch::mipMixRow || f == Fetch::mipMix || f == Fetch::mipMixPers; }

template <Rule r> struct RuleOf;
template <> struct RuleOf<Rule::none> : NoRule { using NoRule::NoRule; };
template <> struct RuleOf<Rule::row> : RuleRow { using RuleRow::RuleRow; };
template <> struct RuleOf<Rule::free> : RuleFree { using RuleFree::RuleFree; };

template <Fetch f, Rule r, Gate g>
bool front(const Span& span, int first, int n, Chunk& c)
{
    using Fetcher = FetchOf<f>;
    constexpr bool marksRun = ninefold::marksRun({.frame = {}, .multi = {}, .fetch = f, .rule = r, .gate = g, .second = {},
                                                  .prescale = false, .blend = 0,
                                                  .marks = g == Gate::plane ? Marks::plane : Marks::none});
    const V threshold = splat(u32(r == Rule::none ? 0 : rs.ruleThreshold));
    // Gates speak of 64 pixels at a time.
    constexpr int blockSize = g == Gate::none ? Chunk::size : 64;
    u64 drawn = 0;
    for (int begin = 0; begin < n; begin += blockSize) {
        const int count = n - begin < blockSize ? n - begin : blockSize;
        const u64 free = freePixels<g, Fetcher::mapped>(span, first + begin, count);
        u64 marks = 0;
        if (g != Gate::none && free == 0) {
            for (int k = begin; k < begin + count; k += lanes)
                store(c.live + k, V{});
        } else {
            Fetcher fetch(span, first + begin);
            RuleOf<r> rule(span, first + begin);
            for (int k = 0; k < count; k += lanes, fetch.advance(), rule.advance()) {
                M live = g == Gate::none ? firstLanes(count - k) : lanesOf(free >> k);
                V value{};
                if constexpr (r != Rule::none) {
                    value = rule.get(count - k);
                    live &= greaterSigned(value, threshold);
                }
                const int at = begin + k;
                if ((r == Rule::none && g == Gate::none) || any(live)) {
                    V key;
                    const V source = fetch.get(count - k, key);
                    if constexpr (Fetcher::tests)
                        live &= isNotZero(key);
                    store(c.source + at, source);
                    if constexpr (isMipMix(f))
                        store(c.other + at, key);
                    if constexpr (r != Rule::none)
                        store(c.rule + at, value);
                    if constexpr (g == Gate::plane)
                        marks |= u64(bitsOf(live)) << k;
                    drawn |= bitsOf(live);
                }
                store(c.live + at, asLanes(live));
            }
        }
        if constexpr (g == Gate::plane) {
            c.marks[begin / 64] = marksRun ? free : marks;
            if constexpr (marksRun)
                drawn |= free;
        }
    }
    return drawn != 0;
}

// The reading position moves on pixels that pass the rule test alone.
bool frontRunSlip(const Span& span, int first, int n, Chunk& c)
{
    RuleRow rule(span, first);
    const V threshold = splat(u32(rs.ruleThreshold));
    u32 passed = 0;
    for (int k = 0; k < n; k += lanes) {
        const V value = rule.get(n - k);
        const M live = firstLanes(n - k) & greaterSigned(value, threshold);
        store(c.rule + k, value);
        store(c.live + k, asLanes(live));
        for (u32 bits = bitsOf(live); bits; bits &= bits - 1, ++passed)
            c.source[k + __builtin_ctz(bits)] = *c.slip++;
        rule.advance();
    }
    return passed != 0;
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
