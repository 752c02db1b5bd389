#include "yardsticks.h"

#include "bench.h"

namespace bench {

namespace {

// Loops of a row, plain enough for the compiler to vectorise.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define BENCH_SETS [[gnu::target_clones("default", "avx2", "avx512f"), gnu::optimize("O3")]]
#else
#define BENCH_SETS
#endif

BENCH_SETS uint32_t countAbove(const uint32_t *texels, int width, uint32_t threshold)
{
    uint32_t count = 0;
    for (int i = 0; i < width; ++i)
        count += (texels[i] & 255) > threshold;
    return count;
}

BENCH_SETS uint32_t joined(const uint16_t *words, int count)
{
    uint16_t all = 0xFFFF;
    for (int i = 0; i < count; ++i)
        all = uint16_t(all & words[i]);
    return all;
}

BENCH_SETS uint32_t largest(const uint8_t *bytes, int width)
{
    uint8_t most = 0;
    for (int i = 0; i < width; ++i)
        most = bytes[i] > most ? bytes[i] : most;
    return most;
}

} // namespace

uint32_t readRuleValues(const uint32_t *texels, const std::vector<Span> &spans, int threshold)
{
    uint32_t count = 0;
    for (const Span &span : spans)
        count += countAbove(texels + span.y * frameSize + span.left, span.width, uint32_t(threshold));
    return count;
}

uint32_t readPlane(const uint16_t *plane, const std::vector<Span> &spans)
{
    uint32_t all = 0xFFFF;
    for (const Span &span : spans) {
        const int first = span.left >> 4, last = (span.left + span.width + 15) >> 4;
        all &= joined(plane + (span.y * frameSize >> 4) + first, last - first);
    }
    return all;
}

uint32_t readPriorities(const uint8_t *zBuffer, const std::vector<Span> &spans, int reference)
{
    uint32_t passed = 0;
    for (const Span &span : spans)
        passed += largest(zBuffer + span.y * frameSize + span.left, span.width) >= uint32_t(reference);
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
