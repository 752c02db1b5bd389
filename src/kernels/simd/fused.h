// Fused entries: gate, fetch, blend and write of a row in registers, made of what the parts are made of.
#pragma once

#include "kernels/plan.h"
#include "kernels/simd/fetch.h"
#include "kernels/simd/gates.h"
#include "kernels/simd/operators.h"
#include "kernels/simd/set.h"

#include <type_traits>

namespace ninefold::NINEFOLD_SET {
namespace {

constexpr bool isFill(const FusedKey &key)
{
    return key.sample.reading == Reading::flat && key.gate == Gate::none && key.blend == NINEFOLD_BLEND_COPY;
}

// How much of a vector is drawn.
struct Whole {
    static constexpr int count = lanes;
    NINEFOLD_INLINED V load(const u32 *p) const { return NINEFOLD_SET::load(p); }
    NINEFOLD_INLINED void store(u32 *p, V v) const { NINEFOLD_SET::store(p, v); }
    NINEFOLD_INLINED M cut(M mask) const { return mask; }
};
struct Begin {
    int count;
    NINEFOLD_INLINED V load(const u32 *p) const { return loadSome(p, count); }
    NINEFOLD_INLINED void store(u32 *p, V v) const { storeSome(p, v, count); }
    NINEFOLD_INLINED M cut(M mask) const { return M(mask & firstLanes(count)); }
};
// A whole vector that is written later on.
struct Later : Whole {
    V &result;
    NINEFOLD_INLINED explicit Later(V &v) : result(v) {}
    NINEFOLD_INLINED void store(u32 *, V v) const { result = v; }
};
// In the place of a mask of free pixels: there is no gate.
struct Ungated {};

// Fetches of texels side by side, as they are drawn.
template <class Fetcher>
constexpr bool isSprite = requires
{
    typename Fetcher::Sprite;
};

// One vector of pixels.
template <int blend, class Extent, class Free, class Fetcher>
NINEFOLD_LANE void drawVector(u32 *dst, Extent extent, Free free, const Fetcher &fetch, const ops::Factors &factors)
{
    constexpr bool gated = !std::is_same_v<Free, Ungated>, every = !gated && !Fetcher::tests;
    V key;
    const V source = fetch.get(extent.count, key);
    if constexpr (every && blend == NINEFOLD_BLEND_COPY) {
        extent.store(dst, source);
        return;
    }
    [[maybe_unused]] const auto live = [&]() NINEFOLD_INLINED {
        if constexpr (gated && Fetcher::tests)
            return M(free & isNotZero(key));
        else if constexpr (gated)
            return free;
        else
            return isNotZero(key);
    };
#if defined(__AVX512F__)
    if constexpr (blend == NINEFOLD_BLEND_COPY) { // without a look at what is there
        storeMasked(dst, source, extent.cut(live()));
        return;
    }
#endif
    constexpr bool keepsByAlpha = blend == NINEFOLD_BLEND_ALPHA_FAST && isSprite<Fetcher> && !gated;
    if constexpr (isSprite<Fetcher> && !std::is_same_v<Extent, Later> && !gated &&
                  (blend == NINEFOLD_BLEND_ALPHA || blend == NINEFOLD_BLEND_ALPHA_FAST)) {
        // Most of a sprite is empty or opaque, in runs.
        if (!isMixed(source, 0xFF000000)) {
            if (any(topBit(source))) {
                extent.store(dst, blend == NINEFOLD_BLEND_ALPHA_FAST ? source : ops::scaleRgb<false>(source, 255));
                return;
            }
            if (keepsByAlpha || (Fetcher::tests && !any(live())))
                return;
        }
    }
    const V d = once(extent.load(dst));
    const V result = blended<blend, false>(d, source, factors);
    if constexpr (every || keepsByAlpha)
        extent.store(dst, result);
    else if constexpr (gated)
        extent.store(dst, select(live(), result, d));
    else // of a zero there is a comparison everywhere
        extent.store(dst, select(equal(key, V{}), d, result));
}

// A fetch with prescale behind it.
template <class Fetcher, int blend>
struct Faded : Fetcher {
    using Fetcher::Fetcher;
    u32 factor = rs.prescale;
    NINEFOLD_INLINED V get(int left, V &key) const { return prescaled<blend, false>(Fetcher::get(left, key), factor); }
};
template <class Fetcher, FusedKey key>
using Fading = std::conditional_t<key.prescale, Faded<Fetcher, key.blend>, Fetcher>;

// n pixels from dst on; the fetch stands at the first.
template <int blend, class Fetcher>
NINEFOLD_LANE void drawPixels(u32 *dst, int n, Fetcher &fetch, const ops::Factors &factors)
{
    int k = 0;
    for (; k + lanes <= n; k += lanes, fetch.advance())
        drawVector<blend>(dst + k, Whole{}, Ungated{}, fetch, factors);
    if (k < n)
        drawVector<blend>(dst + k, Begin{n - k}, Ungated{}, fetch, factors);
}

// Pixels first to first + n - 1 of a span.
template <FusedKey key>
NINEFOLD_LANE void drawSpan(const Span &s, int first, int n, const ops::Factors &factors)
{
    using Fetcher = Fading<Fetch<0, key.sample>, key>;
    if constexpr (key.gate == Gate::none) {
        Fetcher fetch(s, first);
        drawPixels<key.blend>(s.dst + first, n, fetch, factors);
    } else {
        for (const int end = first + n; first < end;) {
            const int count = end - first < 64 ? end - first : 64;
            const u64 free = freePixels<key.gate, false>(s, first, count);
            if (free == 0) {
                first += count;
                first += refusedPixels<key.gate>(s, first, end - first);
                continue;
            }
            Fetcher fetch(s, first);
            u32 *const dst = s.dst + first;
            int k = 0;
            for (; k + lanes <= count; k += lanes, fetch.advance())
                drawVector<key.blend>(dst + k, Whole{}, lanesOf(free >> k), fetch, factors);
            if (k < count)
                drawVector<key.blend>(dst + k, Begin{count - k}, lanesOf(free >> k), fetch, factors);
            first += count;
        }
    }
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
