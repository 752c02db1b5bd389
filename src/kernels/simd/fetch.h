// Fetches: where a vector of pixels gets its source words from, a template over the texture and what the plan says of it. A fetch
// starts at a pixel of a span, gives `lanes` words a call and steps on. Its key is the texel that the transparent test looks at.
#pragma once

#include "kernels/simd/positions.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <int t, Sample s>
struct Fetch;

// Whether a fetch has direct(n): where n texels lie in memory in the order of the pixels and may be read in whole vectors, or
// null.
template <class Fetcher>
constexpr bool hasDirect = requires(const Fetcher &fetch, int n)
{
    fetch.direct(n);
};

// Fetches that test their key are the rule.
struct Tested {
    static constexpr bool tests = true, mapped = false;
};
struct Untested {
    static constexpr bool tests = false, mapped = false;
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
