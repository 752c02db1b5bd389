// Lanes: a vector of pixels of exactly the register width of the instruction set that this file is compiled for, and the few
// operations on it that the language has no word for. Nearly all intrinsics stand here. Everything is in an anonymous namespace:
// a function compiled with raised flags must never be merged with one compiled for the baseline.
#pragma once

#include "ops/word.h"

#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#define NINEFOLD_X86 1
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push // g++ 12 takes the header's own undefined vectors for a mistake
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
#endif

#ifndef NINEFOLD_SET
#define NINEFOLD_SET v1
#endif

#define NINEFOLD_LANE static inline NINEFOLD_INLINED

namespace ninefold::NINEFOLD_SET {
namespace {

using u8 = uint8_t;
using u16 = uint16_t;
using u32 = uint32_t;
using u64 = uint64_t;
using i32 = int32_t;

#if defined(__AVX512F__)
constexpr int lanes = 16;
#elif defined(__AVX2__)
constexpr int lanes = 8;
#else
constexpr int lanes = 4;
#endif
constexpr int bytes = lanes * 4;

typedef u32 V __attribute__((vector_size(bytes))); // pixels, indices
typedef i32 S __attribute__((vector_size(bytes))); // the same, signed
typedef u16 H __attribute__((vector_size(bytes))); // 16-bit halves
typedef u64 D __attribute__((vector_size(bytes))); // pairs of lanes
typedef double F __attribute__((vector_size(bytes))); // doubles over pairs of lanes
typedef float R __attribute__((vector_size(bytes))); // reals over lanes

// Which lanes: a mask register, or all ones and 0 in the lanes.
#if defined(__AVX512F__)
typedef __mmask16 M;
#else
typedef V M;
#endif

NINEFOLD_LANE V splat(u32 x) { return x - V{}; }
NINEFOLD_LANE V iota()
{
#if defined(__AVX512F__)
    return V{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
#elif defined(__AVX2__)
    return V{0, 1, 2, 3, 4, 5, 6, 7};
#else
    return V{0, 1, 2, 3};
#endif
}

NINEFOLD_LANE V load(const u32 *p)
{
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
NINEFOLD_LANE void store(u32 *p, V v) { __builtin_memcpy(p, &v, sizeof v); }

// Keeps a loaded vector in its register. g++ makes of one load an operand of each instruction that uses it, and loads as often.
NINEFOLD_LANE V once(V v)
{
#if defined(NINEFOLD_X86) && !defined(NINEFOLD_LANES_BY_HAND) // which are wider than a register
    asm("" : "+v"(v));
#endif
    return v;
}

// The first n pixels, 0 < n < lanes; memory behind them is not touched.
NINEFOLD_LANE V loadSome(const u32 *p, int n)
{
#if defined(__AVX512F__)
    return (V)_mm512_maskz_loadu_epi32(__mmask16((1u << n) - 1), p);
#elif defined(__AVX2__)
    return (V)_mm256_maskload_epi32(reinterpret_cast<const int *>(p), (__m256i)((S)iota() < (S)splat(u32(n))));
#elif defined(NINEFOLD_X86)
    __m128i v = n & 2 ? _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)) : _mm_setzero_si128();
    if (n & 1) {
        const __m128i last = _mm_cvtsi32_si128(int(p[n - 1]));
        v = n & 2 ? _mm_unpacklo_epi64(v, last) : last;
    }
    return (V)v;
#else
    V v{};
    for (int k = 0; k < n; ++k)
        v[k] = p[k];
    return v;
#endif
}

NINEFOLD_LANE void storeSome(u32 *p, V v, int n)
{
#if defined(__AVX512F__)
    _mm512_mask_storeu_epi32(p, __mmask16((1u << n) - 1), (__m512i)v);
#elif defined(__AVX2__)
    _mm256_maskstore_epi32(reinterpret_cast<int *>(p), (__m256i)((S)iota() < (S)splat(u32(n))), (__m256i)v);
#elif defined(NINEFOLD_X86)
    if (n & 2) {
        _mm_storel_epi64(reinterpret_cast<__m128i *>(p), (__m128i)v);
        v = (V)_mm_unpackhi_epi64((__m128i)v, (__m128i)v);
        p += 2;
    }
    if (n & 1)
        *p = u32(_mm_cvtsi128_si32((__m128i)v));
#else
    for (int k = 0; k < n; ++k)
        p[k] = v[k];
#endif
}

#if defined(__AVX512F__)
NINEFOLD_LANE void storeMasked(u32 *p, V v, M mask) { _mm512_mask_storeu_epi32(p, mask, (__m512i)v); }
#endif

// Comparisons.
#if defined(__AVX512F__)
NINEFOLD_LANE M isNotZero(V v) { return _mm512_test_epi32_mask((__m512i)v, (__m512i)v); }
NINEFOLD_LANE M equal(V a, V b) { return _mm512_cmpeq_epi32_mask((__m512i)a, (__m512i)b); }
NINEFOLD_LANE M greaterSigned(V a, V b) { return _mm512_cmpgt_epi32_mask((__m512i)a, (__m512i)b); }
NINEFOLD_LANE M atLeast(V a, V b) { return _mm512_cmpge_epu32_mask((__m512i)a, (__m512i)b); }
NINEFOLD_LANE M topBit(V v) { return _mm512_movepi32_mask((__m512i)v); }
// Lanes whose bit is set; lane 0 is the lowest.
NINEFOLD_LANE M lanesOf(u64 bits) { return __mmask16(bits); }
NINEFOLD_LANE u32 bitsOf(M mask) { return mask; }
#else
NINEFOLD_LANE M isNotZero(V v) { return (M)(v != V{}); }
NINEFOLD_LANE M equal(V a, V b) { return (M)(a == b); }
NINEFOLD_LANE M greaterSigned(V a, V b) { return (M)((S)a > (S)b); }
NINEFOLD_LANE M atLeast(V a, V b) { return (M)(a >= b); }
NINEFOLD_LANE M topBit(V v) { return (M)((S)v >> 31); }
NINEFOLD_LANE M lanesOf(u64 bits)
{
    const V bit = splat(1) << iota();
    return equal(splat(u32(bits)) & bit, bit);
}
NINEFOLD_LANE u32 bitsOf(M mask)
{
#if defined(__AVX2__)
    return u32(_mm256_movemask_ps((__m256)mask));
#elif defined(NINEFOLD_X86)
    return u32(_mm_movemask_ps((__m128)mask));
#else
    u32 bits = 0;
    for (int k = 0; k < lanes; ++k)
        bits |= (mask[k] & 1) << k;
    return bits;
#endif
}
#endif
NINEFOLD_LANE bool any(M mask) { return bitsOf(mask) != 0; }

// mask ? a : b, lane by lane.
NINEFOLD_LANE V select(M mask, V a, V b)
{
#if defined(__AVX512F__)
    return (V)_mm512_mask_blend_epi32(mask, (__m512i)b, (__m512i)a);
#elif defined(__AVX2__)
    return (V)_mm256_blendv_epi8((__m256i)b, (__m256i)a, (__m256i)mask);
#else
    return (mask & a) | (~mask & b);
#endif
}

// Whether the lanes' bits of `which` are neither all clear nor all set.
NINEFOLD_LANE bool isMixed(V v, u32 which)
{
#if defined(__AVX2__) && !defined(__AVX512F__)
    return _mm256_testnzc_si256((__m256i)v, (__m256i)splat(which));
#else
    return any(isNotZero(v & which)) && any(isNotZero(~v & which));
#endif
}

// The first n lanes; all of them where n is more.
NINEFOLD_LANE M firstLanes(int n)
{
#if defined(__AVX512F__)
    return n >= lanes ? __mmask16(0xFFFF) : __mmask16((1u << n) - 1);
#else
    return greaterSigned(splat(u32(n)), iota());
#endif
}

// Shifts of all lanes by one count.
NINEFOLD_LANE V shiftLeft(V v, u32 n) { return v << n; }
NINEFOLD_LANE V shiftSigned(V v, u32 n) { return (V)((S)v >> int(n)); }

// The greater and the lesser of each pair of bytes.
typedef u8 B __attribute__((vector_size(bytes)));
NINEFOLD_LANE V greaterBytes(V a, V b) { return (V)((B)a > (B)b ? (B)a : (B)b); }
NINEFOLD_LANE V lesserBytes(V a, V b) { return (V)((B)a < (B)b ? (B)a : (B)b); }

// 16.16 to whole: floor, and truncation towards zero.
NINEFOLD_LANE V whole(V v) { return (V)((S)v >> 16); }
NINEFOLD_LANE V wholeTruncated(V v) { return (V)((S)(v + ((V)((S)v >> 31) & 0xFFFFu)) >> 16); }
// Truncating half.
NINEFOLD_LANE V half(V v) { return (V)((S)(v + (v >> 31)) >> 1); }

// Products of the 16-bit halves of each lane: their lower and their upper half. The upper byte of each half moved down, the lower
// one moved up.
NINEFOLD_LANE V mul16(V a, V b) { return (V)((H)a * (H)b); }
NINEFOLD_LANE V mulHigh16(V a, V b)
{
#if defined(__AVX512F__)
    return (V)_mm512_mulhi_epu16((__m512i)a, (__m512i)b);
#elif defined(__AVX2__)
    return (V)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
#elif defined(NINEFOLD_X86)
    return (V)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
#else
    return ((a >> 16) * (b >> 16) & 0xFFFF0000u) | (a & 0xFFFFu) * (b & 0xFFFFu) >> 16;
#endif
}
NINEFOLD_LANE V high8(V a) { return (V)((H)a >> 8); }
NINEFOLD_LANE V low8(V a) { return (V)((H)a << 8); }
NINEFOLD_LANE V bothHalves(V a) { return a | a << 16; }
// Alpha in both halves.
NINEFOLD_LANE V alphas(V a)
{
#if defined(__AVX2__)
    constexpr u64 low = 0x8007800780038003, high = 0x800F800F800B800B;
#if defined(__AVX512F__)
    return (V)_mm512_shuffle_epi8((__m512i)a, (__m512i)D{low, high, low, high, low, high, low, high});
#else
    return (V)_mm256_shuffle_epi8((__m256i)a, (__m256i)D{low, high, low, high});
#endif
#else
    return bothHalves(a >> 24);
#endif
}

// pixels[at[k]] in lane k, and with the indices in a vector. Every index must lie inside the texture. Scalar loads beat the
// hardware's gather, also that of 16 lanes, and pairing them up beats inserting them one after another.
NINEFOLD_LANE V gatherAt(const u32 *pixels, const u32 *at)
{
#if defined(NINEFOLD_X86)
    const auto four = [=](int k) NINEFOLD_INLINED {
        const auto two = [=](int j) NINEFOLD_INLINED {
            return _mm_unpacklo_epi32(_mm_cvtsi32_si128(int(pixels[at[j]])), _mm_cvtsi32_si128(int(pixels[at[j + 1]])));
        };
        return _mm_unpacklo_epi64(two(k), two(k + 2));
    };
#if defined(__AVX2__)
    const auto eight = [=](int k)
                           NINEFOLD_INLINED { return _mm256_inserti128_si256(_mm256_castsi128_si256(four(k)), four(k + 4), 1); };
#if defined(__AVX512F__)
    return (V)_mm512_inserti64x4(_mm512_castsi256_si512(eight(0)), eight(8), 1);
#else
    return (V)eight(0);
#endif
#else
    return (V)four(0);
#endif
#else
    return V{pixels[at[0]], pixels[at[1]], pixels[at[2]], pixels[at[3]]};
#endif
}
// The indices go through memory: one store, then independent loads.
NINEFOLD_LANE V gather(const u32 *pixels, V index)
{
    alignas(bytes) u32 at[lanes];
    store(at, index);
    return gatherAt(pixels, at);
}

#if defined(__AVX2__)
// pixels[index] and pixels[index + 1] in each lane, by one load for both: also of 16 lanes faster than the hardware gather.
NINEFOLD_LANE void gatherPairs(const u32 *pixels, V index, V &first, V &second)
{
    alignas(bytes) u32 at[lanes];
    store(at, index);
    const auto pair = [&](int a, int b) NINEFOLD_INLINED {
        const __m128i x = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(pixels + at[a]));
        return (__m128i)_mm_loadh_pd((__m128d)x, reinterpret_cast<const double *>(pixels + at[b]));
    };
    // Pairs 0, 1 with 4, 5 and so on: the shuffle within 128-bit parts then gives the lanes in order.
    const auto pairs = [&](int k) NINEFOLD_INLINED {
        const __m256i eight = _mm256_inserti128_si256(_mm256_castsi128_si256(pair(k, k + 1)), pair(k + 4, k + 5), 1);
#if defined(__AVX512F__)
        const __m256i more = _mm256_inserti128_si256(_mm256_castsi128_si256(pair(k + 8, k + 9)), pair(k + 12, k + 13), 1);
        return (__m512)_mm512_inserti64x4(_mm512_castsi256_si512(eight), more, 1);
#else
        return (__m256)eight;
#endif
    };
    const auto a = pairs(0), b = pairs(2);
#if defined(__AVX512F__)
    first = (V)_mm512_shuffle_ps(a, b, 0x88);
    second = (V)_mm512_shuffle_ps(a, b, 0xDD);
#else
    first = (V)_mm256_shuffle_ps(a, b, 0x88);
    second = (V)_mm256_shuffle_ps(a, b, 0xDD);
#endif
}

// a[index] for indices below lanes, and (a, b)[index] for indices below twice that.
NINEFOLD_LANE V permute(V a, V index)
{
#if defined(__AVX512F__)
    return (V)_mm512_permutexvar_epi32((__m512i)index, (__m512i)a);
#else
    return (V)_mm256_permutevar8x32_epi32((__m256i)a, (__m256i)index);
#endif
}
NINEFOLD_LANE V permute2(V a, V b, V index)
{
#if defined(__AVX512F__)
    return (V)_mm512_permutex2var_epi32((__m512i)a, (__m512i)index, (__m512i)b);
#else
    return select(greaterSigned(index, splat(lanes - 1)), permute(b, index), permute(a, index));
#endif
}
#endif

// The first n bytes, 0 < n <= 8, in the low bytes of a word; no byte behind them is touched.
NINEFOLD_LANE u64 loadBytes(const u8 *p, int n)
{
    if (n >= 4) {
        u32 low, high;
        __builtin_memcpy(&low, p, 4);
        __builtin_memcpy(&high, p + n - 4, 4);
        return low | u64(high) << 8 * (n - 4);
    }
    return p[0] | u64(p[n >> 1]) << 8 * (n >> 1) | u64(p[n - 1]) << 8 * (n - 1);
}

// Bit k: byte k is at least `limit`, for n bytes, 0 < n <= 16.
NINEFOLD_LANE u32 bytesAtLeast(const u8 *p, int n, u8 limit)
{
#if defined(NINEFOLD_X86)
    __m128i b;
    if (n == 16)
        b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
    else
        b = _mm_set_epi64x(n > 8 ? static_cast<long long>(loadBytes(p + 8, n - 8)) : 0,
                           static_cast<long long>(loadBytes(p, n < 8 ? n : 8)));
    return u32(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(b, _mm_set1_epi8(char(limit))), b))) & ((1u << n) - 1);
#else
    u32 bits = 0;
    for (int k = 0; k < n; ++k)
        bits |= u32(p[k] >= limit) << k;
    return bits;
#endif
}

// The low 32 bits of a and b of each pair, multiplied to 64.
NINEFOLD_LANE D mulWide(D a, D b)
{
#if defined(__AVX512F__)
    return (D)_mm512_mul_epu32((__m512i)a, (__m512i)b);
#elif defined(__AVX2__)
    return (D)_mm256_mul_epu32((__m256i)a, (__m256i)b);
#elif defined(NINEFOLD_X86)
    return (D)_mm_mul_epu32((__m128i)a, (__m128i)b);
#else
    return (a & 0xFFFFFFFFu) * (b & 0xFFFFFFFFu);
#endif
}

// Unsigned words below 2^32 in the pairs, to doubles and back (to the nearest), by way of the mantissa of 2^52.
NINEFOLD_LANE F toDouble(D a) { return (F)(a | 0x4330000000000000ull) - 4503599627370496.0; }
NINEFOLD_LANE D toNearest(F a) { return (D)(a + 4503599627370496.0) & 0xFFFFFFFFFFFFFull; }

NINEFOLD_LANE R toReal(V a) { return __builtin_convertvector((S)a, R); }
NINEFOLD_LANE V toWhole(R a) { return (V) __builtin_convertvector(a, S); } // truncating

} // namespace
} // namespace ninefold::NINEFOLD_SET
