// The blend operators: (destination, source) to pixel, each in the packed form that defines it. Channels share words, nothing
// rounds, and some results carry bits from channel to channel or leave a fixed alpha; pictures rest on every one of those bits.
//
// In the formulas above the functions d and s are one channel of either operand; A is the alpha of the source.
#pragma once

#include "ops/inline.h"

#include <cstdint>

namespace ninefold::ops {

// (s * a + d * (255 - a)) >> 8; alpha 0. A factor above 255 wraps like the rest of the arithmetic.
NINEFOLD_INLINE uint32_t opConstAlpha(uint32_t dst, uint32_t src, uint32_t a)
{
    const uint32_t w = 255 - a;
    const uint32_t redBlue = (dst & 0xFF00FF) * w + (src & 0xFF00FF) * a;
    const uint32_t green = (dst & 0xFF00) * w + (src & 0xFF00) * a;
    return ((redBlue & 0xFF00FF00) | (green & 0xFF0000)) >> 8;
}

// (s * A + d * (255 - A)) >> 8; alpha 0. Darkens by up to 1 even where A is 0 or 255.
NINEFOLD_INLINE uint32_t opAlpha(uint32_t dst, uint32_t src) { return opConstAlpha(dst, src, src >> 24); }

// The same, but A of 255 gives the source and A of 0 the destination, alpha included.
NINEFOLD_INLINE uint32_t opAlphaFast(uint32_t dst, uint32_t src)
{
    const uint32_t a = src >> 24;
    return a == 255 ? src : a == 0 ? dst : opConstAlpha(dst, src, a);
}

// d + s, up to 255; alpha 1. The low bit of red and green is kept free for the carry from below: it takes no part and comes out
// set.
NINEFOLD_INLINE uint32_t opAdd(uint32_t dst, uint32_t src)
{
    const uint32_t sum = (dst & 0xFEFEFF) + (src & 0xFEFEFF);
    const uint32_t full = (0x80808000 - (sum & 0x1010100)) >> 7; // 0xFE in a channel that carried, else the bit above it
    return full | sum;
}

// (d | 1) - (s | 1) less the borrow from below, down to 0; alpha wraps. A channel that borrowed keeps the borrow from below.
NINEFOLD_INLINE uint32_t opSub(uint32_t dst, uint32_t src)
{
    const uint32_t difference = (dst | 0x1010101) - (src | 0x1010101);
    const uint32_t empty = (0x80808000 - (difference & 0x1010100)) >> 7; // as in opAdd, of the borrows
    return ~empty & difference;
}

// (d * s) >> 8; alpha 0
NINEFOLD_INLINE uint32_t opMul(uint32_t dst, uint32_t src)
{
    const uint32_t red = (src >> 16 & 0xFF) * (dst & 0xFF00FF);
    const uint32_t green = (src >> 8 & 0xFF) * (dst & 0xFF00);
    const uint32_t blue = (src & 0xFF) * (dst & 0xFF00FF);
    return ((red & 0xFF000000) | (green & 0xFF0000) | (blue & 0xFF00)) >> 8;
}

// opMul doubled, up to 255. The top bit of a product goes to bit 0 of the channel above, that of red to alpha.
NINEFOLD_INLINE uint32_t opMul2(uint32_t dst, uint32_t src)
{
    const uint32_t product = opMul(dst, src);
    const uint32_t high = product & 0x80808080;
    return (high - (high >> 7)) | (product * 2) | high;
}

// 255 - (((255 - d) * (255 - s)) >> 8); alpha 255
NINEFOLD_INLINE uint32_t opScreen(uint32_t dst, uint32_t src) { return ~opMul(~dst, ~src); }

// d < 128: ((d * s) >> 8) * 2, else 255 - (((255 - d) * (255 - s)) >> 8) * 2; alpha 0
NINEFOLD_INLINE uint32_t opOverlay(uint32_t dst, uint32_t src)
{
    const uint32_t high = dst & 0x808080;
    const uint32_t flip = high | (high - (high >> 7)); // 0xFF in the channels where d >= 128
    const uint32_t a = dst ^ flip;
    const uint32_t b = src ^ flip;
    const uint32_t red = (b >> 16 & 0xFF) * (a & 0xFF00FF);
    const uint32_t green = (b >> 8 & 0xFF) * (a & 0xFF00);
    const uint32_t blue = (b & 0xFF) * (a & 0xFF00FF);
    return (((red & 0xFF000000) | (green & 0xFF0000) | (blue & 0xFF00)) >> 7) ^ flip;
}

// Set bits of the mask from the source, the others from the destination; alpha is no exception.
NINEFOLD_INLINE uint32_t opMerge(uint32_t dst, uint32_t src, uint32_t mask) { return (dst & ~mask) | (src & mask); }

// L in red, green and blue, L = ((R * 76) >> 8) + ((G * 150) >> 8) + ((B * 29) >> 8), at most 252; alpha 0
NINEFOLD_INLINE uint32_t luma(uint32_t pixel)
{
    const uint32_t red = (pixel >> 16 & 0xFF) * 76 >> 8;
    const uint32_t green = (pixel >> 8 & 0xFF) * 150 >> 8;
    const uint32_t blue = (pixel & 0xFF) * 29 >> 8;
    return (red + green + blue) * 0x10101;
}

// s
NINEFOLD_INLINE uint32_t opSrc(uint32_t, uint32_t src) { return src; }

// d
NINEFOLD_INLINE uint32_t opDst(uint32_t dst, uint32_t) { return dst; }

// luma of the source; alpha 0
NINEFOLD_INLINE uint32_t opLumaSrc(uint32_t, uint32_t src) { return luma(src); }

// luma of the destination; alpha 0
NINEFOLD_INLINE uint32_t opLumaDst(uint32_t dst, uint32_t) { return luma(dst); }

// d ^ s, alpha included
NINEFOLD_INLINE uint32_t opXor(uint32_t dst, uint32_t src) { return dst ^ src; }

// d & s, alpha included
NINEFOLD_INLINE uint32_t opAnd(uint32_t dst, uint32_t src) { return dst & src; }

// d | s, alpha included
NINEFOLD_INLINE uint32_t opOr(uint32_t dst, uint32_t src) { return dst | src; }

} // namespace ninefold::ops
