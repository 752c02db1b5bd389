// Lanes: a vector of pixels of exactly the register width of the instruction set that this file is compiled for, and the few
// operations on it that the language has no word for. All intrinsics stand here. Everything is in an anonymous namespace: a function
// compiled with raised flags must never be merged with one compiled for the baseline.
#pragma once

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

#define NINEFOLD_LANE static inline __attribute__((always_inline))

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

typedef u32 V __attribute__((vector_size(bytes)));    // pixels, indices, lane masks (all ones or 0)
typedef i32 S __attribute__((vector_size(bytes)));    // the same, signed
typedef u16 H __attribute__((vector_size(bytes)));    // 16-bit halves
typedef u64 D __attribute__((vector_size(bytes)));    // pairs of lanes
typedef double F __attribute__((vector_size(bytes))); // doubles over pairs of lanes
typedef float R __attribute__((vector_size(bytes)));  // reals over lanes

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

NINEFOLD_LANE V load(const u32* p)
{
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
NINEFOLD_LANE void store(u32* p, V v) { __builtin_memcpy(p, &v, sizeof v); }

// The first n pixels, 0 < n < lanes; memory behind them is not touched.
NINEFOLD_LANE V loadSome(const u32* p, int n)
{
#if defined(__AVX512F__)
    return (V)_mm512_maskz_loadu_epi32(__mmask16((1u << n) - 1), p);
#elif defined(__AVX2__)
    return (V)_mm256_maskload_epi32(reinterpret_cast<const int*>(p), (__m256i)((S)iota() < (S)splat(u32(n))));
#elif defined(NINEFOLD_X86)
    __m128i v = n & 2 ? _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)) : _mm_setzero_si128();
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

NINEFOLD_LANE void storeSome(u32* p, V v, int n)
{
#if defined(__AVX512F__)
    _mm512_mask_storeu_epi32(p, __mmask16((1u << n) - 1), (__m512i)v);
#elif defined(__AVX2__)
    _mm256_maskstore_epi32(reinterpret_cast<int*>(p), (__m256i)((S)iota() < (S)splat(u32(n))), (__m256i)v);
#elif defined(NINEFOLD_X86)
    if (n & 2) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), (__m128i)v);
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

// mask ? a : b, lane by lane; mask lanes are all ones or 0.
NINEFOLD_LANE V select(V mask, V a, V b)
{
#if defined(__AVX512F__)
    return (V)_mm512_mask_blend_epi32(_mm512_test_epi32_mask((__m512i)mask, (__m512i)mask), (__m512i)b, (__m512i)a);
#elif defined(__AVX2__)
    return (V)_mm256_blendv_epi8((__m256i)b, (__m256i)a, (__m256i)mask);
#else
    return (mask & a) | (~mask & b);
#endif
}

// One bit a lane, lane 0 lowest.
NINEFOLD_LANE u32 bitsOf(V mask)
{
#if defined(__AVX512F__)
    return _mm512_test_epi32_mask((__m512i)mask, (__m512i)mask);
#elif defined(__AVX2__)
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
NINEFOLD_LANE bool any(V mask) { return bitsOf(mask) != 0; }

// All ones in the first n lanes.
NINEFOLD_LANE V firstLanes(int n) { return (V)((S)iota() < (S)splat(u32(n))); }

NINEFOLD_LANE V isZero(V v) { return (V)(v == V{}); }
NINEFOLD_LANE V isNotZero(V v) { return (V)(v != V{}); }

// Shifts of all lanes by one count.
#if defined(__AVX512F__)
NINEFOLD_LANE V shiftLeft(V v, u32 n) { return (V)_mm512_sll_epi32((__m512i)v, _mm_cvtsi32_si128(int(n))); }
NINEFOLD_LANE V shiftSigned(V v, u32 n) { return (V)_mm512_sra_epi32((__m512i)v, _mm_cvtsi32_si128(int(n))); }
#elif defined(__AVX2__)
NINEFOLD_LANE V shiftLeft(V v, u32 n) { return (V)_mm256_sll_epi32((__m256i)v, _mm_cvtsi32_si128(int(n))); }
NINEFOLD_LANE V shiftSigned(V v, u32 n) { return (V)_mm256_sra_epi32((__m256i)v, _mm_cvtsi32_si128(int(n))); }
#elif defined(NINEFOLD_X86)
NINEFOLD_LANE V shiftLeft(V v, u32 n) { return (V)_mm_sll_epi32((__m128i)v, _mm_cvtsi32_si128(int(n))); }
NINEFOLD_LANE V shiftSigned(V v, u32 n) { return (V)_mm_sra_epi32((__m128i)v, _mm_cvtsi32_si128(int(n))); }
#else
NINEFOLD_LANE V shiftLeft(V v, u32 n) { return v << splat(n); }
NINEFOLD_LANE V shiftSigned(V v, u32 n) { return (V)((S)v >> (S)splat(n)); }
#endif

// 16.16 to whole: floor, and truncation toward zero.
NINEFOLD_LANE V whole(V v) { return (V)((S)v >> 16); }
NINEFOLD_LANE V wholeTruncated(V v) { return (V)((S)(v + ((V)((S)v >> 31) & 0xFFFFu)) >> 16); }
// Truncating half.
NINEFOLD_LANE V half(V v) { return (V)((S)(v + (v >> 31)) >> 1); }

// Products in the 16-bit halves of each lane, and their top bytes moved down.
NINEFOLD_LANE V mul16(V a, V b) { return (V)((H)a * (H)b); }
NINEFOLD_LANE V high8(V a) { return (V)((H)a >> 8); }
NINEFOLD_LANE V bothHalves(V a) { return a | a << 16; }

// pixels[index] in each lane. Every index must lie inside the texture.
NINEFOLD_LANE V gather(const u32* pixels, V index)
{
#if defined(__AVX512F__)
    return (V)_mm512_i32gather_epi32((__m512i)index, reinterpret_cast<const int*>(pixels), 4);
#else
    // Scalar loads beat the hardware gather of 8 lanes. The indices go through memory: one store, then independent loads.
    alignas(bytes) u32 at[lanes];
    store(at, index);
#if defined(__AVX2__)
    return V{pixels[at[0]], pixels[at[1]], pixels[at[2]], pixels[at[3]], pixels[at[4]], pixels[at[5]], pixels[at[6]], pixels[at[7]]};
#else
    return V{pixels[at[0]], pixels[at[1]], pixels[at[2]], pixels[at[3]]};
#endif
#endif
}

// Bytes widened to lanes; with n < lanes only n bytes are touched and the other lanes are 0.
NINEFOLD_LANE V loadBytes(const u8* p, int n)
{
#if defined(__AVX512F__)
    const __m128i b = n >= lanes ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(p))
                                 : _mm_maskz_loadu_epi8(__mmask16((1u << n) - 1), p);
    return (V)_mm512_cvtepu8_epi32(b);
#else
    u64 b = 0;
    if (n >= lanes)
        __builtin_memcpy(&b, p, lanes);
    else
        for (int k = n; k-- > 0;)
            b = b << 8 | p[k];
#if defined(__AVX2__)
    return (V)_mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(b)));
#elif defined(NINEFOLD_X86)
    const __m128i zero = _mm_setzero_si128();
    return (V)_mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(int(b)), zero), zero);
#else
    return V{u32(b & 255), u32(b >> 8 & 255), u32(b >> 16 & 255), u32(b >> 24 & 255)};
#endif
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

NINEFOLD_LANE R toReal(V a)
{
#if defined(__AVX512F__)
    return (R)_mm512_cvtepi32_ps((__m512i)a);
#elif defined(__AVX2__)
    return (R)_mm256_cvtepi32_ps((__m256i)a);
#elif defined(NINEFOLD_X86)
    return (R)_mm_cvtepi32_ps((__m128i)a);
#else
    return __builtin_convertvector((S)a, R);
#endif
}
NINEFOLD_LANE V toWhole(R a) // truncating
{
#if defined(__AVX512F__)
    return (V)_mm512_cvttps_epi32((__m512)a);
#elif defined(__AVX2__)
    return (V)_mm256_cvttps_epi32((__m256)a);
#elif defined(NINEFOLD_X86)
    return (V)_mm_cvttps_epi32((__m128)a);
#else
    return (V)__builtin_convertvector(a, S);
#endif
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
