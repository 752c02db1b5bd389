#include "yardsticks.h"

#include "bench.h"
#include "hold.h"

namespace bench {

namespace {

// Loops of a row, plain enough for the compiler to vectorise.
struct CountAbove {
    using Word = uint32_t;
    [[gnu::always_inline]] static uint32_t run(const Word *texels, int width, uint32_t threshold)
    {
        uint32_t count = 0;
        for (int i = 0; i < width; ++i)
            count += (texels[i] & 255) > threshold;
        return count;
    }
};

struct Joined {
    using Word = uint16_t;
    [[gnu::always_inline]] static uint32_t run(const Word *words, int count, uint32_t)
    {
        uint16_t all = 0xFFFF;
        for (int i = 0; i < count; ++i)
            all = uint16_t(all & words[i]);
        return all;
    }
};

struct Largest {
    using Word = uint8_t;
    [[gnu::always_inline]] static uint32_t run(const Word *bytes, int width, uint32_t)
    {
        uint8_t most = 0;
        for (int i = 0; i < width; ++i)
            most = bytes[i] > most ? bytes[i] : most;
        return most;
    }
};

// A loop in the best set that the processor has and that contenders are held to; the compiler's own clones could not be held.
template <class Loop>
struct InSets {
    using Word = typename Loop::Word;
    static uint32_t plain(const Word *words, int n, uint32_t value) { return Loop::run(words, n, value); }
#if defined(__x86_64__)
    [[gnu::target("avx2")]] static uint32_t v3(const Word *words, int n, uint32_t value) { return Loop::run(words, n, value); }
    [[gnu::target("avx512f,avx512bw")]] static uint32_t v4(const Word *words, int n, uint32_t value)
    {
        return Loop::run(words, n, value);
    }
#endif
    static auto choose()
    {
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx512bw") && !isHeldToV3())
            return v4;
        if (__builtin_cpu_supports("avx2"))
            return v3;
#endif
        return plain;
    }
    static uint32_t run(const Word *words, int n, uint32_t value)
    {
        static const auto chosen = choose();
        return chosen(words, n, value);
    }
};

} // namespace

uint32_t readRuleValues(const uint32_t *texels, const std::vector<Span> &spans, int threshold)
{
    uint32_t count = 0;
    for (const Span &span : spans)
        count += InSets<CountAbove>::run(texels + span.y * frameSize + span.left, span.width, uint32_t(threshold));
    return count;
}

uint32_t readPlane(const uint16_t *plane, const std::vector<Span> &spans)
{
    uint32_t all = 0xFFFF;
    for (const Span &span : spans) {
        const int first = span.left >> 4, last = (span.left + span.width + 15) >> 4;
        all &= InSets<Joined>::run(plane + (span.y * frameSize >> 4) + first, last - first, 0);
    }
    return all;
}

uint32_t readPriorities(const uint8_t *zBuffer, const std::vector<Span> &spans, int reference)
{
    uint32_t passed = 0;
    for (const Span &span : spans)
        passed += InSets<Largest>::run(zBuffer + span.y * frameSize + span.left, span.width, 0) >= uint32_t(reference);
    return passed;
}

void callPerPixel(uint32_t *frame, const uint32_t *texels, const std::vector<Span> &spans, Operator call)
{
    for (const Span &span : spans) {
        uint32_t *const d = frame + span.y * frameSize + span.left;
        const uint32_t *const s = texels + span.y * frameSize + span.left;
        for (int i = 0; i < span.width; ++i)
            if (s[i])
                d[i] = call(d[i], s[i]);
    }
}

} // namespace bench
