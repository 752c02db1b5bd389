// Rule values: the low byte of the rule texel. Positions truncate towards zero.
#pragma once

#include "kernels/simd/window.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <Rule rule>
struct RuleValues;

template <>
struct RuleValues<Rule::none> {
    NINEFOLD_INLINED RuleValues(const Span &, int) {}
    NINEFOLD_INLINED V get(int) const { return V{}; }
    NINEFOLD_INLINED void advance() {}
};

template <>
struct RuleValues<Rule::row> {
    Window<> window;
    Ramp u;
    NINEFOLD_INLINED RuleValues(const Span &s, int first)
        : window(rowOf(s.rule, truncated(s.ruleV.start)), s.rule.maskU, s.ruleU, first), u(Ramp::make(s.ruleU, first))
    {}
    NINEFOLD_INLINED V get(int left) const
    {
        // Only what is not negative floors as it truncates. Without a window the step is so wide that the position may wrap
        // within the vector unseen.
        const i32 last = i32(window.position + window.step * u32(lanes - 1));
        if (window.most && (i32(window.position) | last) >= 0)
            return window.get(u.value, left) & 0xFFu;
        return gather(window.row, wholeTruncated(u.value) & window.mask) & 0xFFu;
    }
    // The words of n pixels where they lie in memory one a pixel, or null.
    NINEFOLD_INLINED const u32 *direct(int n) const
    {
        const u32 column = (window.position >> 16) & window.mask;
        const bool fits = window.unit && n > 0 && window.position + (u64(n) << 16) < 0x80000000 &&
                          window.mask - column >= u32(n - 1) / lanes * lanes + (lanes - 1);
        return fits ? window.row + column : nullptr;
    }
    NINEFOLD_INLINED void advance() { u.advance(), window.advance(); }
};

template <>
struct RuleValues<Rule::free> {
    RuleValues<Rule::row> row; // where the row stands still across the span
    Ramp u, v;
    const Source level;
    bool still;
    NINEFOLD_INLINED RuleValues(const Span &s, int first)
        : row(s, first), u(Ramp::make(s.ruleU, first)), v(Ramp::make(s.ruleV, first)), level(s.rule), still(s.ruleV.step == 0)
    {}
    NINEFOLD_INLINED V get(int left) const
    {
        if (still)
            return row.get(left);
        return texel(level, wholeTruncated(u.value) & level.maskU, wholeTruncated(v.value) & level.maskV) & 0xFFu;
    }
    NINEFOLD_INLINED const u32 *direct(int n) const { return still ? row.direct(n) : nullptr; }
    NINEFOLD_INLINED void advance() { u.advance(), v.advance(), row.advance(); }
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
