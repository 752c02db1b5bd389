// What all frames share: the painter that sends the pixels of a row through the parts, and what is small and shared.
#pragma once

#include "kernels/plan.h"

#include <cstddef>
#include <cstdint>

namespace ninefold {

// A frame draws one primitive from rs with the parts named by `ids`. One function for each combination of what it must keep track
// of.
template <Frame frame, Multi multi, bool rule, bool marks>
void drawFrame(PartIds ids);

inline Source sourceOf(const Texture &t) { return {t.pixels, t.width - 1, t.height - 1, t.log2Width}; }

// Signed division towards zero that wraps where the quotient does not fit.
inline uint32_t divided(uint32_t a, uint32_t b) { return int32_t(b) == -1 ? 0 - a : uint32_t(int32_t(a) / int32_t(b)); }

// The same by one divisor for many dividends, without a division each. Neither dividend nor divisor is above 2^31 in size, so
// a quotient that is no whole number stays at least 1 / divisor short of the next one; raising the reciprocal by 2^-50 outweighs
// its rounding and moves the quotient by less than that. Truncation then gives the exact quotient, 2^31 wraps.
class Divider {
public:
    Divider() = default;
    explicit Divider(uint32_t divisor) : reciprocal((1.0 + 0x1p-50) / double(int32_t(divisor))) {}
    uint32_t operator()(uint32_t dividend) const { return uint32_t(int64_t(double(int32_t(dividend)) * reciprocal)); }

private:
    double reciprocal;
};

constexpr bool hasSecond(Multi m) { return m == Multi::second || m == Multi::secondUnused; }
constexpr bool hasCorners(Multi m) { return m == Multi::corners || m == Multi::cornersUnused; }
constexpr bool hasColour(Multi m) { return m == Multi::colour || m == Multi::colourUnused; }
constexpr bool isUnused(Multi m) { return m >= Multi::secondUnused; }

// Whether factors are beyond what 16-bit products hold.
inline bool hasWideFactors() { return rs.prescale > 256 || rs.blendAlpha > 255; }

// Memory that a call writes. Frames widen it rather than work it out to the pixel: what it decides is only how fast a row is
// drawn.
struct Target {
    const void *pixels, *pixelsEnd;
    const void *plane, *planeEnd; // null where no plane is marked
    const void *z, *zEnd;

    static bool meet(const void *a, const void *aEnd, const void *b, const void *bEnd)
    {
        return uintptr_t(a) < uintptr_t(bEnd) && uintptr_t(b) < uintptr_t(aEnd);
    }
    bool overlaps(const Source &t) const
    {
        const uint32_t *end = t.pixels + (size_t(t.maskV + 1) << t.shift);
        return meet(t.pixels, end, pixels, pixelsEnd) || meet(t.pixels, end, plane, planeEnd) || meet(t.pixels, end, z, zEnd);
    }
};

// The rows top to bottom - 1, columns left to right - 1 of the frame buffer and, with `marks`, of the planes.
inline Target targetOf(int32_t left, int32_t top, int32_t right, int32_t bottom, bool marks)
{
    const ptrdiff_t first = (ptrdiff_t(top) << rs.dstShift) + left, end = (ptrdiff_t(bottom - 1) << rs.dstShift) + right;
    Target t{rs.dstPixels + first, rs.dstPixels + end, nullptr, nullptr, nullptr, nullptr};
    if (marks) {
        t.plane = rs.shaheiPlane + first / 16, t.planeEnd = rs.shaheiPlane + end / 16 + 1;
        t.z = rs.zBuffer + first, t.zEnd = rs.zBuffer + end;
    }
    return t;
}

template <Multi multi>
class Painter {
public:
    // `overlap`: a source shares memory with what is written. Then, and where both operators are the host's own, pixels go one at
    // a time.
    Painter(PartIds parts, bool overlap) : ids(parts)
    {
        const InstructionSet &set = *activeSets.any;
        front = set.fronts[ids.front()];
        back = set.backs[hasWideFactors()][ids.back()];
        const bool wide = rs.blendAlpha > 255 || rs.blendAlphaRgb > 255 || rs.prescaleMulti > 256;
        bool hostMulti = false, hostBlend = false;
        [[maybe_unused]] int multiOp = 0;
        if constexpr (multi != Multi::none) {
            multiOp = ops::operatorIndex(rs.multiFunc);
            hostMulti = multiOp < 0;
            multiRow = hostMulti ? set.hostOperator : set.operators[wide][multiOp];
            if constexpr (isUnused(multi))
                callMulti = hostMulti;
            if constexpr (!hasColour(multi))
                second = set.seconds[ids.second()];
            if constexpr (hasColour(multi)) {
                for (int k = 0; k < 16; ++k)
                    chunk.seconds[k] = rs.color[0];
                chunk.second = chunk.seconds;
            }
        }
        if (ids.custom()) {
            const int op = ops::operatorIndex(rs.blendFunc);
            hostBlend = op < 0;
            chunk.blendFunc = rs.blendFunc;
            chunk.blendRow = hostBlend ? nullptr : set.operators[wide][op];
        }
        alike = set.alike[ids.front() / uint32_t(Gate::count) % uint32_t(Rule::count)][ids.front() % uint32_t(Gate::count)];
        plainBlock = nullptr, plainSpan = nullptr;
        if (ids.plain() && !overlap && !hasWideFactors()) {
            if (ids.isBlock())
                plainBlock = set.blocks[ids.plain() - 1];
            else
                plainSpan = set.spans[ids.plain() - 1];
        }
        fused[0] = nullptr;
        if (ids.fused() && !overlap) {
            const uint32_t index = ids.fused() - 1;
            if constexpr (multi == Multi::none) {
                if (!hasWideFactors() && !ids.isBlock())
                    fused[0] = activeSets.upTo4->spans[index], fused[1] = activeSets.upTo8->spans[index],
                    fused[2] = set.spans[index];
            } else if (!isUnused(multi) && !hostMulti && !wide) {
                const uint32_t op = index + uint32_t(multiOp);
                fused[0] = activeSets.upTo4->multiSpans[op], fused[1] = activeSets.upTo8->multiSpans[op],
                fused[2] = set.multiSpans[op];
            }
        }
        step = overlap || (hostMulti && hostBlend) ? 1 : Chunk::size;
        literal = overlap && ids.marks() != Marks::none;
    }

    // Pixels first to first + n - 1.
    void draw(const Span &s, int first, int n)
    {
        if (fused[0]) {
            fused[(n > 4) + (n > 8)](s, first, n);
            return;
        }
        if (literal) {
            drawWords(s, n);
            return;
        }
        // What a rule or a gate refuses comes in long runs, and so does what a rule lets through.
        const bool plain = plainBlock || plainSpan;
        bool ask = alike && n >= 64;
        while (n > 0) {
            if (ask) {
                bool through;
                const int count = alike(s, first, n, through);
                if (count > 0 && (!through || plain)) {
                    if (through)
                        drawPlain(s, first, count);
                    first += count, n -= count;
                    if (n == 0)
                        return;
                }
            }
            const int count = n < step ? n : step;
            const bool drawn = front(s, first, count, chunk);
            if (drawn) {
                combine(s, first, count);
                back(s, first, count, chunk);
            }
            ask = (!drawn || plain) && alike;
            first += count, n -= count;
        }
    }

    Chunk chunk;

private:
    // Pixels that the rule lets through whole.
    void drawPlain(const Span &s, int first, int n)
    {
        if (plainSpan) {
            plainSpan(s, first, n);
            return;
        }
        Span part{};
        part.dst = s.dst + first;
        part.tex0 = s.tex0, part.next0 = s.next0;
        part.u0 = {s.u0.start + s.u0.step * uint32_t(first), s.u0.step}, part.v0 = s.v0;
        plainBlock(part, {1, n, 0, 0, 0});
    }

    void combine(const Span &s, int first, int n)
    {
        if constexpr (multi != Multi::none) {
            if (isUnused(multi) && !callMulti)
                return;
            if constexpr (!hasColour(multi))
                second(s, first, n, chunk);
            // A host's operator is called even where nothing of it is kept.
            multiRow(rs.multiFunc, isUnused(multi) ? chunk.other : chunk.words, chunk.source, chunk.second,
                     hasColour(multi) ? 0 : -1, hasSecond(multi) ? chunk.valid : chunk.live, n);
            if constexpr (!isUnused(multi))
                chunk.source = chunk.words;
        }
    }

    // The plane walk as it is defined, word by word, for a source that shares memory with a plane: what lies outside the span is
    // forced for the time of the row, a word is read before its pixels are drawn and marked after them.
    [[gnu::noinline]] void drawWords(const Span &s, int n)
    {
        const InstructionSet &set = *activeSets.any;
        const Front ungatedFront = set.fronts[ids.frontUngated()];
        const Back unmarkedBack = set.backs[hasWideFactors()][ids.backUnmarked()];
        if (n <= 0) // an empty clip rectangle
            return;
        const int begin = int(s.x & 15), end = begin + n;
        uint16_t *const firstWord = s.plane, *const lastWord = s.plane + ((end - 1) >> 4);
        const uint16_t firstMask = uint16_t(0xFFFF0000u >> begin);
        const uint16_t lastMask = end & 15 ? uint16_t(0xFFFF >> (end & 15)) : uint16_t(0);
        const uint16_t firstSaved = *firstWord;
        *firstWord |= firstMask;
        const uint16_t lastSaved = *lastWord;
        *lastWord |= lastMask;
        int pixel = -begin;
        for (uint16_t *word = firstWord; word <= lastWord; ++word) {
            uint32_t taken = *word | s.maskRow, bits = 0;
            if (s.zeroMap)
                taken |= s.zeroMap[word - firstWord];
            for (int k = 0; k < 16; ++k, ++pixel) {
                bits <<= 1;
                if (taken >> (15 - k) & 1)
                    continue;
                const bool drawn = ungatedFront(s, pixel, 1, chunk);
                if (drawn) {
                    combine(s, pixel, 1);
                    unmarkedBack(s, pixel, 1, chunk);
                }
                if (drawn || ids.marksRun()) {
                    bits |= 1;
                    if (ids.marks() == Marks::planeZ)
                        s.z[pixel] = uint8_t(rs.zRef);
                }
            }
            *word = uint16_t(*word | bits);
        }
        *firstWord = uint16_t((*firstWord & ~firstMask) | (firstSaved & firstMask));
        *lastWord = uint16_t((*lastWord & ~lastMask) | (lastSaved & lastMask));
    }

    PartIds ids;
    Front front;
    Mid second;
    Back back;
    RowOperator multiRow;
    FusedSpan fused[3]; // for spans of up to 4, up to 8 and more pixels
    Alike alike;
    Block plainBlock; // one of these, or neither
    FusedSpan plainSpan;
    int step;
    bool callMulti;
    bool literal;
};

} // namespace ninefold
