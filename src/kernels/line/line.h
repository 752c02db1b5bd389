// Lines: one pixel wide, from vertex[0] to vertex[1], the end left out while it is inside the clip rectangle.
#pragma once

#include "kernels/frame.h"
#include "ops/blend.h"

#include <cstddef>
#include <type_traits>

namespace ninefold {

struct Line {
    bool steep; // y is the major axis
    int32_t direction; // of the major axis
    int32_t major;
    uint32_t minorPosition, minorStep; // 16.16
    int32_t count; // pixels, unless leaving minorLow to minorHigh - 1 ends the line
    bool testMinor;
    int32_t minorLow, minorHigh;
    uint32_t length; // of the unclipped line
    uint32_t skipped; // steps made before the first pixel

    // Truncates: from -1 exclusive to 1 exclusive it is 0.
    int32_t minor() const { return int32_t(minorPosition) / 65536; }

    void skip(int32_t n)
    {
        minorPosition += minorStep * uint32_t(n);
        skipped += uint32_t(n);
    }

    // False: nothing to draw.
    bool make()
    {
        const int32_t x0 = rs.vertex[0].x + rs.originX, y0 = rs.vertex[0].y + rs.originY;
        const int32_t x1 = rs.vertex[1].x + rs.originX, y1 = rs.vertex[1].y + rs.originY;
        const auto inside = [](int32_t x, int32_t y) {
            return x >= rs.clipLeft && y >= rs.clipTop && x < rs.clipRight && y < rs.clipBottom;
        };
        const bool inside0 = inside(x0, y0), inside1 = inside(x1, y1);
        const int32_t lengthX = (x1 > x0 ? x1 - x0 : x0 - x1) + 1, lengthY = (y1 > y0 ? y1 - y0 : y0 - y1) + 1;
        steep = lengthX < lengthY;
        const int32_t begin = steep ? y0 : x0, end = steep ? y1 : x1;
        const int32_t from = steep ? x0 : y0, to = steep ? x1 : y1;
        const int32_t low = steep ? rs.clipTop : rs.clipLeft, high = steep ? rs.clipBottom : rs.clipRight;
        minorLow = steep ? rs.clipLeft : rs.clipTop, minorHigh = steep ? rs.clipRight : rs.clipBottom;
        int32_t len = steep ? lengthY : lengthX;
        length = uint32_t(len);
        uint32_t rise = (uint32_t(to) - uint32_t(from)) << 16;
        rise += int32_t(rise) < 1 ? 0u - 32768u : 32768u; // half a pixel away from the start; no difference counts as a fall
        minorStep = divided(rise, length);
        minorPosition = (uint32_t(from) << 16) + 0x8000;
        direction = begin > end ? -1 : 1;
        major = begin;
        skipped = 0;
        testMinor = false;
        if (inside0 && inside1) {
            count = len - 1;
            return count > 0;
        }
        // Along the line's own direction: how far its ends lie outside the clip rectangle.
        const int32_t before = direction < 0 ? begin - high + 1 : low - begin,
                      behind = direction < 0 ? low - end : end - high + 1;
        if (before > 0) {
            skip(before);
            len -= before;
            major += direction * before;
        }
        if (behind > 0)
            len -= behind;
        const int32_t step = int32_t(minorStep), start = minor();
        if ((step >= 0 && start >= minorHigh) || (step <= 0 && start < minorLow))
            return false;
        if (start < minorLow || start >= minorHigh) { // it comes towards the clip rectangle: walk up to it
            const bool below = start < minorLow;
            bool reached = false;
            while (len > 0 && !reached) {
                skip(1);
                major += direction;
                --len;
                reached = below ? minor() >= minorLow : minor() < minorHigh;
            }
            if (!reached)
                --len;
        }
        testMinor = !inside1;
        count = inside1 ? len - 1 : len;
        return count > 0;
    }
};

// The running colour of a Gouraud line, packed with what lies above bit 23 of green and red leaking into the channel above.
struct RunningColour {
    uint32_t value[4], step[4]; // alpha, red, green, blue
    explicit RunningColour(const Line &line)
    {
        const Divider byLength(line.length);
        for (int k = 0; k < 4; ++k) {
            const uint32_t from = channel(rs.color[0], k), to = channel(rs.color[1], k);
            step[k] = byLength(to - from);
            value[k] = from + step[k] * line.skipped;
        }
    }
    uint32_t packed() const
    {
        const uint32_t low = ((value[2] & 0xFFFF00FF) | value[3] >> 8) >> 8;
        return low | (((value[0] & 0xFFFF00FF) << 8 | value[1]) & 0xFFFF0000);
    }
    void advance()
    {
        for (int k = 0; k < 4; ++k)
            value[k] += step[k];
    }
};
struct FlatColour {
    uint32_t colour = rs.color[0];
    explicit FlatColour(const Line &) {}
    uint32_t packed() const { return colour; }
    void advance() {}
};

// The kernel of a combination. Pixels lie scattered and most lines are short, so they are drawn one by one; a host's own operator
// sees those before.
template <Axes a>
void drawLine()
{
    Line line;
    if (!line.make())
        return;
    std::conditional_t<a.filter == NINEFOLD_FILTER_GOURAUD, RunningColour, FlatColour> colour(line);
    constexpr bool plane = marksPlane(a.shahei), z = testsPriority(a.shahei), mask = testsStipple(a.shahei);
    uint32_t *const pixels = rs.dstPixels;
    const uint32_t shift = rs.dstShift;
    const uint8_t zRef = uint8_t(rs.zRef);
    const uint32_t minorShift = line.steep ? 0 : shift, majorShift = line.steep ? shift : 0;
    const ptrdiff_t majorStride = ptrdiff_t(line.direction) << majorShift;
    ptrdiff_t majorOffset = ptrdiff_t(line.major) << majorShift;
    for (; line.count > 0; --line.count, line.minorPosition += line.minorStep, majorOffset += majorStride,
                           line.major += line.direction, colour.advance()) {
        const int32_t minor = line.minor();
        if (line.testMinor && (minor < line.minorLow || minor >= line.minorHigh))
            return;
        const ptrdiff_t offset = (ptrdiff_t(minor) << minorShift) + majorOffset;
        [[maybe_unused]] const uint32_t bit = 0x8000u >> ((line.steep ? minor : line.major) & 15);
        [[maybe_unused]] const auto stipple = [&] { return rs.drawMask[(line.steep ? line.major : minor) & 15]; };
        // Bit by bit: the rows of a narrow frame buffer share the plane's.
        if constexpr (plane)
            if ((rs.shaheiPlane[offset / 16] | stipple()) & bit)
                continue;
        if constexpr (z)
            if (zRef > rs.zBuffer[offset])
                continue;
        if constexpr (mask)
            if (stipple() & bit)
                continue;
        uint32_t source = colour.packed();
        if constexpr (a.prescale)
            source = ops::prescaled<a.blend, true>(source, rs.prescale);
        if constexpr (a.blend == NINEFOLD_BLEND_CUSTOM)
            pixels[offset] = rs.blendFunc(pixels[offset], source);
        else
            pixels[offset] = ops::blended<a.blend, true>(pixels[offset], source, {});
        if constexpr (a.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY)
            rs.zBuffer[offset] = zRef;
        if constexpr (plane)
            rs.shaheiPlane[offset / 16] = uint16_t(rs.shaheiPlane[offset / 16] | bit);
    }
}

} // namespace ninefold
