// Pools of pixels, made once, from which buffers are filled.
#pragma once

#include <cstddef>
#include <cstdint>

namespace support {

enum Pool {
    noisePool, // a third of it zeros
    solidPool, // no zero
    extremePool, // channels at the ends and the middle of their range
    runPool, // long runs of zeros, and of noise
    alphaPool, // much that is opaque, or without alpha
    stripePool, // long runs of zeros, and of one colour
    spritePool, // runs of zeros, of colours without alpha, opaque and mixed ones
    poolCount
};

constexpr uint32_t poolWords = 0x10000;

const std::byte *poolBytes(Pool pool);

} // namespace support
