// What happens to one pair of packed pixels.
#pragma once

#include <cstdint>

#include <ninefold/render_state.h>

namespace reference {

// Blends 1, 2, 4 to 12 on a frame-buffer pixel and a source; blend 0 is the source.
uint32_t blended(int blend, uint32_t dst, uint32_t src);

// Red, green, blue times `factor` over 256, alpha 0; alpha times `factor` over 256, colour kept.
uint32_t scaleRgb(uint32_t pixel, uint32_t factor);
uint32_t scaleAlpha(uint32_t pixel, uint32_t factor);

// Prescale: alpha for the alpha blends, colour for the others.
uint32_t prescaled(bool alphaBlend, uint32_t src, uint32_t factor);

// first * firstWeight + second * secondWeight over 256 in red, green and blue; alpha 0. With weights that add up to more than 256
// channels run into each other.
uint32_t weighted(uint32_t first, uint32_t firstWeight, uint32_t second, uint32_t secondWeight);

// The mix of old and new pixel inside the soft edge, for a rule value above ruleThreshold and below ruleThreshold + ruleWidth.
uint32_t softEdge(const RenderState &state, uint32_t dst, uint32_t src, int32_t ruleValue);

} // namespace reference
