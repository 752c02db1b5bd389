// Operators: pairs of the library's and the reference's, and two of a host's own that record how they are called.
#pragma once

#include <cstdint>
#include <string>

#include <ninefold/render_state.h>

namespace support {

// What the host's own operators were called with, and in which order.
struct Calls {
    uint64_t digest = 0;
    uint64_t count = 0;

    bool operator==(const Calls &) const = default;
};
extern Calls calls;

// An operator by number.
enum : int {
    nullOperator,
    hostMulti, // what they return depends on all calls so far
    hostBlend,
    libraryOperators, // and up
    multiOperators = libraryOperators, // 20 values in each of two banks
    blendOperators = multiOperators + 40, // values 13 to 20
    operatorCount = blendOperators + 8
};

struct OperatorPair {
    PixelOperator library, reference;
};
OperatorPair operatorPair(int number);
std::string operatorName(int number);

// Calls the library's start-up functions, once, and learns its operators from the setters.
void startLibrary();

} // namespace support
