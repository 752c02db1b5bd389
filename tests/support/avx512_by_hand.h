// The AVX-512 intrinsics of kernels/simd/ written out for processors that lack them, so that the text for 16 lanes runs on any
// with AVX2. The compiler includes this before everything else. An intrinsic that is missing here does not compile. Each is its
// definition, lane by lane: memory outside a mask is not touched, and what an intrinsic leaves undefined is not 0.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace avx512_by_hand {

typedef uint32_t Words __attribute__((vector_size(64), may_alias));
typedef uint64_t Pairs __attribute__((vector_size(64), may_alias));
typedef uint8_t Bytes __attribute__((vector_size(64), may_alias));

// Bit k: lane k passes.
template <class Test>
inline __mmask16 wordsThat(Test &&passes)
{
    unsigned bits = 0;
    for (int k = 0; k < 16; ++k)
        bits |= unsigned(passes(k)) << k;
    return __mmask16(bits);
}

inline __m512i loadWords(__mmask16 mask, const void *p)
{
    Words v{};
    for (int k = 0; k < 16; ++k)
        if (mask >> k & 1)
            __builtin_memcpy(&v[k], static_cast<const char *>(p) + 4 * k, 4);
    return (__m512i)v;
}
inline void storeWords(void *p, __mmask16 mask, __m512i a)
{
    for (int k = 0; k < 16; ++k) {
        const uint32_t word = ((Words)a)[k];
        if (mask >> k & 1)
            __builtin_memcpy(static_cast<char *>(p) + 4 * k, &word, 4);
    }
}
inline __m512i loadBytes(__mmask64 mask, const void *p)
{
    Bytes v{};
    for (int k = 0; k < 64; ++k)
        if (mask >> k & 1)
            v[k] = static_cast<const uint8_t *>(p)[k];
    return (__m512i)v;
}
inline void storeBytes(void *p, __mmask64 mask, __m512i a)
{
    for (int k = 0; k < 64; ++k)
        if (mask >> k & 1)
            static_cast<uint8_t *>(p)[k] = ((Bytes)a)[k];
}
inline __m512i everyByte(char value) { return (__m512i)(uint8_t(value) - Bytes{}); }

inline __mmask16 testWords(__m512i a, __m512i b)
{
    return wordsThat([&](int k) { return (((Words)a)[k] & ((Words)b)[k]) != 0; });
}
inline __mmask16 equalWords(__m512i a, __m512i b)
{
    return wordsThat([&](int k) { return ((Words)a)[k] == ((Words)b)[k]; });
}
inline __mmask16 greaterSigned(__m512i a, __m512i b)
{
    return wordsThat([&](int k) { return int32_t(((Words)a)[k]) > int32_t(((Words)b)[k]); });
}
inline __mmask16 atLeastWords(__m512i a, __m512i b)
{
    return wordsThat([&](int k) { return ((Words)a)[k] >= ((Words)b)[k]; });
}
inline __mmask16 topBits(__m512i a)
{
    return wordsThat([&](int k) { return ((Words)a)[k] >> 31 != 0; });
}
inline __mmask64 atLeastBytes(__mmask64 mask, __m512i a, __m512i b)
{
    __mmask64 bits = 0;
    for (int k = 0; k < 64; ++k)
        bits |= __mmask64(((Bytes)a)[k] >= ((Bytes)b)[k]) << k;
    return bits & mask;
}

inline __m512i blend(__mmask16 mask, __m512i a, __m512i b)
{
    Words v;
    for (int k = 0; k < 16; ++k)
        v[k] = mask >> k & 1 ? ((Words)b)[k] : ((Words)a)[k];
    return (__m512i)v;
}
inline __m512i permute(__m512i index, __m512i a)
{
    Words v;
    for (int k = 0; k < 16; ++k)
        v[k] = ((Words)a)[((Words)index)[k] & 15];
    return (__m512i)v;
}
inline __m512i permute2(__m512i a, __m512i index, __m512i b)
{
    Words v;
    for (int k = 0; k < 16; ++k) {
        const uint32_t from = ((Words)index)[k];
        v[k] = from & 16 ? ((Words)b)[from & 15] : ((Words)a)[from & 15];
    }
    return (__m512i)v;
}
inline __m512 shuffle(__m512 a, __m512 b, int two)
{
    Words v;
    for (int k = 0; k < 16; ++k)
        v[k] = (k & 2 ? (Words)b : (Words)a)[(k & 12) + (two >> 2 * (k & 3) & 3)];
    return (__m512)v;
}
inline __m512i widened(__m256i low)
{
    const __m256i undefined = _mm256_set1_epi32(0x5AC3965A);
    return __m512i{low[0], low[1], low[2], low[3], undefined[0], undefined[1], undefined[2], undefined[3]};
}
inline __m512i insert(__m512i a, __m256i half, int at)
{
    for (int k = 0; k < 4; ++k)
        a[4 * at + k] = half[k];
    return a;
}
inline __m512i shuffleBytes(__m512i a, __m512i index)
{
    Bytes v;
    for (int k = 0; k < 64; ++k) {
        const uint8_t from = ((Bytes)index)[k];
        v[k] = from & 0x80 ? 0 : ((Bytes)a)[(k & 48) + (from & 15)];
    }
    return (__m512i)v;
}
inline __m512i multiplyHighHalves(__m512i a, __m512i b)
{
    const auto high = [](Words x, Words y) { return (x & 0xFFFFu) * (y & 0xFFFFu) >> 16; };
    const Words x = (Words)a, y = (Words)b;
    return (__m512i)(high(x, y) | high(x >> 16, y >> 16) << 16);
}
inline __m512i multiplyLow(__m512i a, __m512i b) { return (__m512i)(((Pairs)a & 0xFFFFFFFFu) * ((Pairs)b & 0xFFFFFFFFu)); }

} // namespace avx512_by_hand

// Without optimisation the compiler's own are macros here and there.
#undef _mm512_inserti64x4
#undef _mm512_shuffle_ps
#undef _mm512_cmpge_epu32_mask
#undef _mm512_mask_cmpge_epu8_mask

#define _mm512_castsi256_si512 avx512_by_hand::widened
#define _mm512_cmpeq_epi32_mask avx512_by_hand::equalWords
#define _mm512_cmpge_epu32_mask avx512_by_hand::atLeastWords
#define _mm512_cmpgt_epi32_mask avx512_by_hand::greaterSigned
#define _mm512_inserti64x4 avx512_by_hand::insert
#define _mm512_mask_blend_epi32 avx512_by_hand::blend
#define _mm512_mask_cmpge_epu8_mask avx512_by_hand::atLeastBytes
#define _mm512_mask_storeu_epi32 avx512_by_hand::storeWords
#define _mm512_mask_storeu_epi8 avx512_by_hand::storeBytes
#define _mm512_maskz_loadu_epi32 avx512_by_hand::loadWords
#define _mm512_maskz_loadu_epi8 avx512_by_hand::loadBytes
#define _mm512_movepi32_mask avx512_by_hand::topBits
#define _mm512_mulhi_epu16 avx512_by_hand::multiplyHighHalves
#define _mm512_mul_epu32 avx512_by_hand::multiplyLow
#define _mm512_permutex2var_epi32 avx512_by_hand::permute2
#define _mm512_permutexvar_epi32 avx512_by_hand::permute
#define _mm512_set1_epi8 avx512_by_hand::everyByte
#define _mm512_shuffle_epi8 avx512_by_hand::shuffleBytes
#define _mm512_shuffle_ps avx512_by_hand::shuffle
#define _mm512_test_epi32_mask avx512_by_hand::testWords

#define NINEFOLD_LANES_BY_HAND 1
#define __AVX512F__ 1
#define __AVX512BW__ 1
