// The blend stage in lanes, by blend number, with prescale ahead of it.
#pragma once

#include "kernels/simd/operators.h"

#include <ninefold/render_state.h>

namespace ninefold::NINEFOLD_SET {
namespace {

// Blends 1, 2 and 4 are weighed by alpha and prescale fades them; under any other it dims the colour.
template <int blend, bool wide>
NINEFOLD_LANE V prescaled(V source, u32 factor)
{
    if (blend == 1 || blend == 2 || blend == 4)
        return wide ? scaleAlphaWide(source, factor) : scaleAlpha(source, factor);
    const V scaled = wide ? scaleRgbWide(source, factor) : scaleRgb(source, factor);
    return blend == 5 ? scaled : scaled | (source & 0xFF000000u); // add reads no alpha
}

// What blends read from rs, read once: a store to the frame buffer might change rs for all that the compiler knows.
struct BlendFactors {
    u32 alpha = rs.blendAlpha, writeMask = rs.writeMask, prescale = rs.prescale;
};

template <int blend, bool wide>
NINEFOLD_LANE V blended(V d, V s, const BlendFactors &f)
{
    switch (blend) {
    case 1: return opAlpha(d, s);
    case 2: return wide ? opConstAlphaWide(d, s, f.alpha) : opConstAlpha(d, s, f.alpha);
    case 4: return opAlphaFast(d, s);
    case 5: return opAdd(d, s);
    case 6: return opSub(d, s);
    case 7: return opMul(d, s);
    case 8: return opMul2(d, s);
    case 9: return opScreen(d, s);
    case 10: return opOverlay(d, s);
    case 11: return opMerge(d, s, f.writeMask);
    default: return s;
    }
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
