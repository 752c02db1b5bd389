// Scaling by a factor in which 256 is one. Factors above 256 are allowed: the words wrap and blue spills into red's half.
#pragma once

#include "ops/inline.h"

#include <cstdint>

namespace ninefold::ops {

// (c * factor) >> 8 for red, green and blue; alpha 0
NINEFOLD_INLINE uint32_t scaleRgb(uint32_t pixel, uint32_t factor)
{
    return (((pixel & 0xFF00FF) * factor & 0xFF00FF00) | ((pixel & 0xFF00) * factor & 0xFF0000)) >> 8;
}

// ((A * factor) >> 8) & 255 for alpha; the colour stays
NINEFOLD_INLINE uint32_t scaleAlpha(uint32_t pixel, uint32_t factor)
{
    return (pixel & 0xFFFFFF) | (((pixel >> 8 & 0xFF0000) * factor) & 0xFF000000);
}

// The source of a blend after prescale: its opacity under the alpha blends (also under blend 2, which does not look at it), its
// colour under all others.
NINEFOLD_INLINE uint32_t prescaleSource(int blend, uint32_t source, uint32_t factor)
{
    if (blend == 1 || blend == 2 || blend == 4)
        return scaleAlpha(source, factor);
    return scaleRgb(source, factor) | (source & 0xFF000000);
}

} // namespace ninefold::ops
