// The painter: sends the pixels of a row through the parts of a kernel.
#pragma once

#include "kernels/plan.h"

namespace ninefold {

// How the pixels of a row are drawn.
enum class Way : uint8_t {
    fused, // by one function
    chunks, // by parts, up to Chunk::size at a time
    single, // by parts, one at a time: a source shares memory with what is written
    words, // the same where planes are marked: the plane walk as it is defined
};

// What a call finds in rs beside its kernel's parts, and the way that follows.
struct Method {
    Way way;
    bool wide; // a factor is beyond what 16-bit products hold
    bool hostMulti = false, hostBlend = false;
    int multiOp = 0, blendOp = 0; // where they are the library's

    [[gnu::always_inline]] static bool findsWide()
    {
        return rs.prescale > 256 || rs.prescaleMulti > 256 || rs.blendAlpha > 255 || rs.blendAlphaRgb > 255;
    }

    // overlap: a source shares memory with what is written.
    template <Multi multi>
    [[gnu::always_inline]] static Method of(PartIds ids, bool overlap)
    {
        Method m;
        m.wide = findsWide();
        if constexpr (multi != Multi::none) {
            m.multiOp = ops::operatorIndex(rs.multiFunc);
            m.hostMulti = m.multiOp < 0;
        }
        if (ids.is(PartIds::isCustom)) {
            m.blendOp = ops::operatorIndex(rs.blendFunc);
            m.hostBlend = m.blendOp < 0;
        }
        if (overlap)
            m.way = ids.is(PartIds::marks) ? Way::words : Way::single;
        else // of custom blends only a host's own is fused, and it has no factors
            m.way = ids.entry && !ids.is(PartIds::hasRule) && !m.hostMulti && (ids.is(PartIds::isCustom) ? m.hostBlend : !m.wide)
                        ? Way::fused
                        : Way::chunks;
        return m;
    }
};

template <Multi multi>
class Painter {
public:
    Painter(PartIds parts, const Method &method) : ids(parts), way(method.way), wide(method.wide)
    {
        const InstructionSet &set = *activeSets.any;
        front = set.fronts[ids.reading][ids.front];
        back = set.backs[wide][ids.back];
        hostCalls = method.hostMulti || method.hostBlend;
        if (ids.is(PartIds::isCustom) && !hostCalls)
            custom = set.operators[wide][method.blendOp];
        if constexpr (multi != Multi::none) {
            hostMulti = {method.hostMulti ? rs.multiFunc : nullptr, multi == Multi::texture ? chunk.valid : chunk.live,
                         secondMask, ids.is(PartIds::dropsMulti)};
            if (!ids.is(PartIds::dropsMulti) && !method.hostMulti)
                multiRow = set.operators[wide][method.multiOp];
            if constexpr (multi != Multi::colour)
                second = set.seconds[ids.secondReading][ids.second];
            if constexpr (multi == Multi::colour) {
                for (int k = 0; k < 16; ++k)
                    chunk.seconds[k] = rs.color[0];
                chunk.second = chunk.seconds;
            }
        }
        alike = set.alike[ids.front % AlikeKey::size];
        if (way == Way::fused) {
            const auto at = [&](const InstructionSet *narrow) {
                return multi == Multi::none ? narrow->spans[ids.entry - 1] : narrow->multiSpans[ids.entry - 1 + method.multiOp];
            };
            fused[0] = at(activeSets.upTo4), fused[1] = at(activeSets.upTo8), fused[2] = at(activeSets.any);
        } else if (ids.entry && ids.is(PartIds::hasRule) && way == Way::chunks && !method.wide) {
            if (ids.is(PartIds::isBlock))
                plainBlock = set.blocks[ids.entry - 1];
            else
                plainSpan = set.spans[ids.entry - 1];
        }
    }

    // Pixels first to first + n - 1.
    void draw(const Span &s, int first, int n)
    {
        if (way == Way::fused)
            return fused[(n > 4) + (n > 8)](s, first, n);
        if (way == Way::words)
            return drawWords(s, n);
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
            const int most = way == Way::single ? 1 : Chunk::size, count = n < most ? n : most;
            const bool drawn = front(s, first, count, chunk);
            if (drawn)
                finish(s, first, count, ids.back, back);
            ask = (!drawn || plain) && alike;
            first += count, n -= count;
        }
    }

    Chunk chunk;

private:
    static constexpr int secondMask = multi == Multi::colour ? 0 : -1;

    // Pixels that the rule lets through whole.
    void drawPlain(const Span &s, int first, int n)
    {
        if (plainSpan) {
            plainSpan(s, first, n);
            return;
        }
        Span part{};
        part.dst = s.dst + first;
        part.tex[0] = s.tex[0];
        part.tex[0].u.start += part.tex[0].u.step * uint32_t(first);
        plainBlock(part, {1, n, 0, 0, 0});
    }

    // From the multi stage on.
    void finish(const Span &s, int first, int n, int backIndex, Back libraryBack)
    {
        if constexpr (multi != Multi::none) {
            if (second && (multiRow || hostMulti.call)) // a host's operator is called even where nothing of it is kept
                second(s, first, n, chunk);
            if (multiRow) {
                multiRow(chunk.words, chunk.source, chunk.second, secondMask, hostMulti.picked, n);
                chunk.source = chunk.words;
            }
        }
        if (hostCalls)
            hostBacks[backIndex](s, first, n, chunk, hostMulti);
        else
            libraryBack(s, first, n, chunk, custom);
    }

    // The plane walk as it is defined, word by word, for a source that shares memory with a plane: what lies outside the span is
    // forced for the time of the row, a word is read before its pixels are drawn and marked after them.
    [[gnu::noinline]] void drawWords(const Span &s, int n)
    {
        if (n <= 0) // an empty clip rectangle
            return;
        const BackKey key = BackKey::of(ids.back);
        const int unmarked = BackKey{Marks::none, key.blend, key.prescale, key.soft}.index();
        const Front ungated = activeSets.any->fronts[ids.reading][ids.front - int(Gate::plane)];
        const Back unmarkedBack = activeSets.any->backs[wide][unmarked];
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
                const bool drawn = ungated(s, pixel, 1, chunk);
                if (drawn)
                    finish(s, pixel, 1, unmarked, unmarkedBack);
                if (drawn || ids.is(PartIds::marksAll)) {
                    bits |= 1;
                    if (key.marks == Marks::planeZ)
                        s.z[pixel] = uint8_t(rs.zRef);
                }
            }
            *word = uint16_t(*word | bits);
        }
        *firstWord = uint16_t((*firstWord & ~firstMask) | (firstSaved & firstMask));
        *lastWord = uint16_t((*lastWord & ~lastMask) | (lastSaved & lastMask));
    }

    PartIds ids;
    Way way;
    bool wide;
    bool hostCalls = false; // an operator is the host's own
    Front front;
    Second second = nullptr;
    Back back;
    RowOperator multiRow = nullptr, custom = nullptr; // of the library's operators
    HostMulti hostMulti{};
    Alike alike;
    FusedSpan fused[3]; // for spans of up to 4, up to 8 and more pixels
    Block plainBlock = nullptr; // one of these, or neither
    FusedSpan plainSpan = nullptr;
};

} // namespace ninefold
