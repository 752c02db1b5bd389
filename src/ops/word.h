// What operators need of a word of pixels beside the language's arithmetic. A word is one pixel (uint32_t) or a vector of them,
// whose form is in kernels/simd/operators.h.
#pragma once

#include <cstdint>

// For the pure functions of pixels. Never emitted out of line, so that a unit compiled for a newer instruction set has no copy
// that the linker could pick for every machine.
#define NINEFOLD_INLINE [[gnu::always_inline]] constexpr
// The same for members and lambdas.
#define NINEFOLD_INLINED __attribute__((always_inline))

namespace ninefold::ops {

template <class W>
struct Word;

template <>
struct Word<uint32_t> {
    // Whether products by factors that fit are faster in 16-bit halves than packed in 32 bits.
    static constexpr bool halves = false;

    // The products of the upper and of the lower 16 bits, each less what does not fit.
    NINEFOLD_INLINE static uint32_t mul16(uint32_t a, uint32_t b) { return (a >> 16) * (b >> 16) << 16 | (a * b & 0xFFFF); }
    // The same of the 32-bit products: what mul16 leaves out.
    NINEFOLD_INLINE static uint32_t mulHigh16(uint32_t a, uint32_t b)
    {
        return ((a >> 16) * (b >> 16) & 0xFFFF0000) | (a & 0xFFFF) * (b & 0xFFFF) >> 16;
    }
    // The upper byte of each half moved down, the lower one moved up.
    NINEFOLD_INLINE static uint32_t down8(uint32_t a) { return a >> 8 & 0xFF00FF; }
    NINEFOLD_INLINE static uint32_t up8(uint32_t a) { return a << 8 & 0xFF00FF00; }
    // Alpha in both halves.
    NINEFOLD_INLINE static uint32_t alphas(uint32_t a) { return (a >> 24) * 0x10001; }
    // Divides words into quotients below 256.
    struct Divisor {
        uint32_t value;
        NINEFOLD_INLINE uint32_t into(uint32_t a) const { return a / value; }
    };

    NINEFOLD_INLINE static bool equal(uint32_t a, uint32_t b) { return a == b; }
    NINEFOLD_INLINE static bool greaterSigned(uint32_t a, uint32_t b) { return int32_t(a) > int32_t(b); }
    NINEFOLD_INLINE static bool any(bool which) { return which; }
    NINEFOLD_INLINE static uint32_t select(bool which, uint32_t a, uint32_t b) { return which ? a : b; }
};

// The same pixel in all lanes.
template <class W>
NINEFOLD_INLINE W splat(uint32_t pixel)
{
    return pixel - W{};
}

} // namespace ninefold::ops
