// Fills with one colour.
#pragma once

#include "kernels/simd/lanes.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// n words of one colour. Stores overlap rather than split cache lines: a fill does nothing else.
NINEFOLD_LANE void fillRow(u32 *dst, int n, u32 colour)
{
    constexpr int quarter = 4;
    const auto store4 = [colour](u32 *p) NINEFOLD_INLINED {
        typedef u32 Four __attribute__((vector_size(16)));
        const Four four = colour - Four{};
        __builtin_memcpy(p, &four, sizeof four);
    };
#if defined(NINEFOLD_X86)
    if (n >= 512) { // the processor's own fill does not read what it overwrites
        size_t count = size_t(n);
        __asm__ volatile("rep stosl" : "+D"(dst), "+c"(count) : "a"(colour) : "memory");
        return;
    }
#endif
    if (n < quarter) {
        for (int k = 0; k < n; ++k)
            dst[k] = colour;
        return;
    }
    u32 *const end = dst + n;
    if (lanes == 8 && n == lanes) {
        store(dst, splat(colour));
        return;
    }
    store4(dst);
    store4(end - quarter);
    u32 *at = reinterpret_cast<u32 *>((reinterpret_cast<uintptr_t>(dst) + 16) & ~uintptr_t(15));
    if constexpr (lanes > quarter) {
        if (end - at >= 4 * lanes) {
            const u32 *const line =
                reinterpret_cast<u32 *>((reinterpret_cast<uintptr_t>(at) + bytes - 1) & ~uintptr_t(bytes - 1));
            for (; at < line; at += quarter)
                store4(at);
            for (const V v = splat(colour); at + lanes <= end; at += lanes)
                store(at, v);
        }
    }
    for (; at + quarter <= end; at += quarter)
        store4(at);
}

} // namespace
} // namespace ninefold::NINEFOLD_SET
