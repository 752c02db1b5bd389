// Fused entries: gate, fetch, blend and write of a row in registers, made of what the parts are made of.
#pragma once

#include "kernels/plan.h"
#include "kernels/set/blend.h"
#include "kernels/set/fetch_of.h"
#include "kernels/set/gates.h"
#include "kernels/set/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

// One vector of pixels, or the first `left` of it.
template <bool gated, int blend, bool whole, class Fetcher>
NINEFOLD_LANE void drawVector(u32* dst, int left, M free, const Fetcher& fetch, const BlendFactors& factors)
{
    V key;
    const V source = fetch.get(whole ? lanes : left, key);
    if constexpr (!gated && !Fetcher::tests && blend == 0) {
        whole ? store(dst, source) : storeSome(dst, source, left);
        return;
    }
    M live = free;
    if constexpr (Fetcher::tests)
        live = gated ? M(live & isNotZero(key)) : isNotZero(key);
    const bool all = !gated && !Fetcher::tests;
#if defined(__AVX512F__)
    if constexpr (blend == 0) {
        storeMasked(dst, source, whole ? live : M(live & firstLanes(left)));
        return;
    }
#endif
    const V d = whole ? load(dst) : loadSome(dst, left);
    const V result = blended<blend, false>(d, source, factors);
    const V kept = all ? result : select(live, result, d);
    whole ? store(dst, kept) : storeSome(dst, kept, left);
}

template <Gate g, int blend, class Fetcher>
NINEFOLD_LANE void drawRow(const Span& s, int n, Fetcher& fetch, const BlendFactors& factors)
{
    constexpr bool gated = g != Gate::none;
    u32* dst = s.dst;
    for (int first = 0; first < n; first += gated ? Chunk::size : n) {
        const int count = gated && n - first > Chunk::size ? Chunk::size : n - first;
        const u64 free = gated ? freePixels<g, false>(s, first, count) : 0;
        int k = 0;
        for (; k + lanes <= count; k += lanes, dst += lanes, fetch.advance())
            drawVector<gated, blend, true>(dst, lanes, gated ? lanesOf(free >> k) : M{}, fetch, factors);
        if (k < count)
            drawVector<gated, blend, false>(dst, count - k, gated ? lanesOf(free >> k) : M{}, fetch, factors);
    }
}

// The pieces of a span that a block changes or reads per row, kept where they can stay in registers.
template <Fetch f, Gate g, int blend>
void block(const Span& span, const Rows& rows)
{
    const BlendFactors factors;
    Span s;
    s.dst = span.dst, s.x = span.x, s.z = span.z;
    s.tex0.pixels = span.tex0.pixels, s.tex0.maskU = span.tex0.maskU, s.tex0.maskV = span.tex0.maskV, s.tex0.shift = span.tex0.shift;
    s.u0.start = span.u0.start, s.u0.step = span.u0.step, s.v0.start = span.v0.start, s.v0.step = 0;
    u32 maskRow = rows.maskRow;
    for (int row = rows.count; row > 0; --row) {
        if constexpr (g == Gate::mask || g == Gate::zMask)
            s.maskRow = rs.drawMask[maskRow++ & 15];
        FetchOf<f> fetch(s, 0);
        drawRow<g, blend>(s, rows.columns, fetch, factors);
        s.dst += rows.pitch;
        s.z += rows.pitch;
        s.v0.start = f == Fetch::unit ? (s.v0.start + 1) & s.tex0.maskV : s.v0.start + rows.stepV;
    }
}

template <Fetch f, Gate g, int blend>
void fusedSpan(const Span& s, int n)
{
    const BlendFactors factors;
    FetchOf<f> fetch(s, 0);
    drawRow<g, blend>(s, n, fetch, factors);
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
