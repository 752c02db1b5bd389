// Gates: which of up to 64 pixels the planes and the stipple leave free.
#pragma once

#include "kernels/parts.h"
#include "kernels/simd/lanes.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// Pixels 0 to n - 1 (n up to 64) from bit `at` of plane words on, pixel 0 in bit 63. Only words that hold one of them are read.
NINEFOLD_LANE u64 planeBits(const u16 *words, u32 at, int n)
{
    words += at >> 4;
    at &= 15;
    const u32 last = (at + u32(n) - 1) >> 4;
    u64 bits = u64(words[0]) << (48 + at);
    for (u32 k = 1; k <= last; ++k) {
        const int shift = 48 + int(at) - 16 * int(k);
        bits |= shift >= 0 ? u64(words[k]) << shift : u64(words[k]) >> -shift;
    }
    return bits;
}

// The stipple of pixels from column x on, in the same order.
NINEFOLD_LANE u64 stippleBits(u32 maskRow, u32 x)
{
    const u64 bits = maskRow * 0x0001000100010001u;
    return bits << (x & 15) | bits >> ((64 - (x & 15)) & 63);
}

// Pixel 0 from bit 63 to bit 0, and so on.
NINEFOLD_LANE u64 mirrored(u64 bits)
{
    bits = __builtin_bswap64(bits);
    bits = (bits & 0x0F0F0F0F0F0F0F0F) << 4 | (bits >> 4 & 0x0F0F0F0F0F0F0F0F);
    bits = (bits & 0x3333333333333333) << 2 | (bits >> 2 & 0x3333333333333333);
    return (bits & 0x5555555555555555) << 1 | (bits >> 1 & 0x5555555555555555);
}

// Bit k: byte k, of n up to 64, is at least `limit`. No byte behind them is touched.
NINEFOLD_LANE u64 zBits(const u8 *z, int n, u8 limit)
{
#if defined(__AVX512BW__)
    const __mmask64 all = n >= 64 ? ~0ull : (1ull << n) - 1;
    return _mm512_mask_cmpge_epu8_mask(all, _mm512_maskz_loadu_epi8(all, z), _mm512_set1_epi8(char(limit)));
#else
    u64 bits = 0;
    for (int k = 0; k < n; k += 16)
        bits |= u64(bytesAtLeast(z + k, n - k < 16 ? n - k : 16, limit)) << k;
    return bits;
#endif
}

// Bit k: the planes and the stipple leave pixel first + k free, for n pixels up to 64. mapped: the zero-pixel map takes part.
template <Gate g, bool mapped>
NINEFOLD_LANE u64 freePixels(const Span &s, int first, int n)
{
    u64 bits = n >= 64 ? ~u64(0) : (u64(1) << n) - 1;
    if constexpr (g == Gate::plane) {
        const u32 at = (s.x & 15) + u32(first);
        u64 taken = planeBits(s.plane, at, n) | stippleBits(s.maskRow, at);
        if (mapped)
            taken |= planeBits(s.zeroMap, at, n);
        bits &= mirrored(~taken);
    }
    if constexpr (g == Gate::z || g == Gate::zMask)
        bits &= zBits(s.z + first, n, u8(rs.zRef));
    if constexpr (g == Gate::mask || g == Gate::zMask)
        bits &= mirrored(~stippleBits(s.maskRow, s.x + u32(first)));
    return bits;
}

// How many of n pixels from `first` on are surely refused: whole words of the plane, whole vectors of priorities.
template <Gate g>
NINEFOLD_LANE int refusedPixels([[maybe_unused]] const Span &s, [[maybe_unused]] int first, [[maybe_unused]] int n)
{
    if constexpr (g == Gate::plane) {
        const u32 at = (s.x & 15) + u32(first), end = at + u32(n);
        const u16 *word = s.plane + (at >> 4);
        const u16 *const last = s.plane + ((end - 1) >> 4);
        constexpr int wide = bytes / 2;
        while (last - word >= 2 * wide - 1) {
            V a, b;
            __builtin_memcpy(&a, word, sizeof a);
            __builtin_memcpy(&b, word + wide, sizeof b);
            if (any(isNotZero(~(a & b))))
                break;
            word += 2 * wide;
        }
        for (; last - word >= 3; word += 4) {
            u64 four;
            __builtin_memcpy(&four, word, sizeof four);
            if (four != ~u64(0))
                break;
        }
        while (word <= last && *word == 0xFFFF)
            ++word;
        const u32 stop = u32(word - s.plane) * 16;
        return stop <= at ? 0 : int((stop < end ? stop : end) - at);
    }
    if constexpr (g == Gate::z || g == Gate::zMask) {
        const u8 *const z = s.z + first;
        const u8 limit = u8(rs.zRef);
        int k = 0;
#if defined(__AVX512BW__)
        while (n - k >= 64 && zBits(z + k, 64, limit) == 0)
            k += 64;
#else
        while (n - k >= 16 && bytesAtLeast(z + k, 16, limit) == 0)
            k += 16;
#endif
        return k;
    }
    return 0;
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
