// Operators: pairs of the library's and the reference's, and a host's own that record how they are called. Two of those also look
// at the picture as far as it is drawn.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <ninefold/render_state.h>

namespace support {

// What the host's own operators were called with, and in which order.
struct Calls {
    uint64_t digest = 0;
    uint64_t count = 0;

    bool operator==(const Calls &) const = default;
};
extern Calls calls;

// What the watching operators see: the frame buffer and the priorities that are drawn into, as far as there is memory around them.
// An operator is not told which pixel it is called for, so where call n looks is written down while the reference draws; the
// library draws after it and looks at the same places.
struct Sight {
    const uint32_t *pixels = nullptr;
    const uint8_t *priorities = nullptr; // or null
    int64_t firstPixel = 0, endPixel = 0, firstPriority = 0, endPriority = 0;
    int64_t pitch = 0;
    bool byReference = false;
    std::vector<int32_t> places; // by call
};
extern Sight sight;

// An operator by number.
enum : int {
    nullOperator,
    hostMulti, // what they return depends on all calls so far
    hostBlend,
    libraryOperators, // and up
    multiOperators = libraryOperators, // 20 values in each of two banks
    blendOperators = multiOperators + 40, // values 13 to 20
    operatorCount = blendOperators + 8,
    watchingMulti = operatorCount, // as the host's own, and what they return depends on what they see
    watchingBlend,
    pairCount
};

struct OperatorPair {
    PixelOperator library, reference;
};
OperatorPair operatorPair(int number);
std::string operatorName(int number);

// Calls the library's start-up functions, once, and learns its operators from the setters.
void startLibrary();

} // namespace support
