// The least that some jobs can cost: reading what decides, filling what is filled, making the calls. Each compiled for every
// instruction set and chosen by the processor.
#pragma once

#include <cstdint>
#include <vector>

namespace bench {

// Pixels of a row of the frame.
struct Span {
    int y, left, width;
};

// Each returns something of what it has read.
uint32_t readRuleValues(const uint32_t *texels, const std::vector<Span> &spans, int threshold);
uint32_t readPlane(const uint16_t *plane, const std::vector<Span> &spans);
uint32_t readPriorities(const uint8_t *zBuffer, const std::vector<Span> &spans, int reference);

using Operator = uint32_t (*)(uint32_t first, uint32_t second);
void callPerPixel(uint32_t *frame, const uint32_t *texels, const std::vector<Span> &spans, Operator call);

} // namespace bench
