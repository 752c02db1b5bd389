// Fronts: which pixels of a chunk live, and their source words. Seconds: the second operand of the multi stage, a texel of tex1 or
// the running corner colours. Each reading has a unit of its own, which makes both of its fetches.
#pragma once

#include "kernels/plan.h"
#include "kernels/simd/fetch.h"
#include "kernels/simd/gates.h"
#include "kernels/simd/rules.h"
#include "kernels/simd/set.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <FrontKey key>
bool front(const Span &span, int first, int n, Chunk &c)
{
    constexpr Rule r = key.rule;
    constexpr Gate g = key.gate;
    constexpr Reading reading = key.sample.reading;
    using Fetcher = Fetch<0, key.sample>;
    constexpr bool marksAll = marksRun(reading, r, g == Gate::plane);
    const V threshold = splat(u32(r == Rule::none ? 0 : rs.ruleThreshold));
    const u32 *direct = nullptr;
    if constexpr (hasDirect<Fetcher>)
        direct = Fetcher(span, first).direct(n);
    c.source = direct ? direct : c.words;
    [[maybe_unused]] const u32 *directRule = nullptr;
    if constexpr (r != Rule::none) {
        directRule = RuleValues<r>(span, first).direct(n);
        c.rule = directRule ? directRule : c.rules;
    }
    u64 some = 0;
    for (int begin = 0; begin < n; begin += 64) {
        const int count = n - begin < 64 ? n - begin : 64;
        const u64 free = freePixels<g, Fetcher::mapped>(span, first + begin, count);
        u64 live = 0;
        if (free != 0) {
            Fetcher fetch(span, first + begin);
            RuleValues<r> rule(span, first + begin);
            for (int k = 0; k < count; k += lanes, fetch.advance(), rule.advance()) {
                const int at = begin + k;
                u32 bits = u32(free >> k) & ((1u << (lanes - 1) << 1) - 1);
                if constexpr (r != Rule::none) {
                    V value;
                    if (directRule)
                        value = load(directRule + at) & 0xFFu;
                    else
                        store(c.rules + at, value = rule.get(count - k));
                    bits &= bitsOf(greaterSigned(value, threshold));
                }
                if ((r != Rule::none || g != Gate::none) && bits == 0)
                    continue;
                V tested{};
                if (direct) {
                    if constexpr (Fetcher::tests)
                        tested = load(direct + at);
                } else {
                    store(c.words + at, fetch.get(count - k, tested));
                }
                if constexpr (reading == Reading::mipMix)
                    store(c.unmixed + at, tested);
                if constexpr (Fetcher::tests)
                    bits &= bitsOf(isNotZero(tested));
                live |= u64(bits) << k;
            }
        }
        c.live[begin / 64] = live;
        if constexpr (g == Gate::plane)
            c.marks[begin / 64] = marksAll ? free : live;
        some |= marksAll ? free : live;
    }
    return some != 0;
}

template <SecondKey key>
void second(const Span &span, int first, int n, Chunk &c)
{
    using Fetcher = Fetch<1, key.sample>;
    Fetcher fetch(span, first);
    const u32 *direct = nullptr;
    if constexpr (hasDirect<Fetcher>)
        direct = fetch.direct(n);
    c.second = direct ? direct : c.seconds;
    for (int begin = 0; begin < n; begin += 64) {
        u64 valid = 0;
        for (int k = begin; k < n && k < begin + 64; k += lanes, fetch.advance()) {
            V tested;
            if (direct)
                tested = load(direct + k);
            else
                store(c.seconds + k, fetch.get(n - k, tested));
            if constexpr (key.sample.reading != Reading::corners) {
                const M found = isNotZero(tested);
                valid |= u64(bitsOf(found)) << (k & 63);
                if constexpr (key.unmixes)
                    store(c.words + k, select(found, load(c.words + k), load(c.unmixed + k)));
            }
        }
        c.valid[begin / 64] = valid & c.live[begin / 64];
    }
}

constexpr UsedParts used = usedParts();

template <Reading reading>
consteval Fronts makeFronts()
{
    return arrayOf<Front, FrontKey::count>([]<int index>() -> Front {
        if constexpr (used.front[int(reading)][index])
            return front<FrontKey::of(reading, index)>;
        return nullptr;
    });
}

template <Reading reading>
consteval Seconds makeSeconds()
{
    return arrayOf<Second, SecondKey::count>([]<int index>() -> Second {
        if constexpr (used.second[int(reading)][index])
            return second<SecondKey::of(reading, index)>;
        return nullptr;
    });
}

} // namespace

#define NINEFOLD_READING(reading)                                                                                                \
    template <>                                                                                                                  \
    constinit const Fronts PartsOf<reading>::fronts = makeFronts<reading>();                                                     \
    template <>                                                                                                                  \
    constinit const Seconds PartsOf<reading>::seconds = makeSeconds<reading>();

} // namespace ninefold::NINEFOLD_SET
