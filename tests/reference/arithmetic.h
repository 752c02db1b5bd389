// 32-bit arithmetic that wraps, and the ramps that everything in a row of pixels follows.
#pragma once

#include <cstdint>

namespace reference {

inline int32_t add(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }

inline int32_t sub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }

inline int32_t mul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }

inline int32_t shiftLeft(int32_t a, uint32_t bits) { return static_cast<int32_t>(static_cast<uint32_t>(a) << bits); }

// Truncates towards zero; the smallest number divided by -1 gives itself.
inline int32_t divide(int32_t a, int32_t b) { return b == -1 ? sub(0, a) : a / b; }

// The magnitude of the smallest number is itself.
inline int32_t magnitude(int32_t a) { return a < 0 ? sub(0, a) : a; }

// A 16.16 value as a whole number, towards zero: -0.5 gives 0, unlike a shift.
inline int32_t whole(int32_t position) { return position / 65536; }

inline int32_t fromWhole(int32_t pixels) { return shiftLeft(pixels, 16); }

inline int32_t wrapped(int32_t value, uint32_t powerOfTwo)
{
    return static_cast<int32_t>(static_cast<uint32_t>(value) & (powerOfTwo - 1));
}

// A quantity that changes by the same step from one pixel, or one row, to the next.
struct Ramp {
    int32_t start = 0;
    int32_t step = 0;

    int32_t at(int32_t distance) const { return add(start, mul(step, distance)); }
};

// From `from` towards `to` in `count` steps; the step truncates, so `to` itself may not be met.
inline Ramp rampBetween(int32_t from, int32_t to, int32_t count) { return {from, divide(sub(to, from), count)}; }

} // namespace reference
