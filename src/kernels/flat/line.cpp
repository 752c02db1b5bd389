// Lines: one pixel wide, from vertex[0] to vertex[1], the end left out while it is inside the clip rectangle.
#include "kernels/flat/line.h"

#include "kernels/frame.h"

#include <utility>

namespace ninefold {
namespace {

struct Line {
    bool steep;        // y is the major axis
    int32_t direction; // of the major axis
    int32_t major;
    uint32_t minorPosition, minorStep; // 16.16
    int32_t count;                     // pixels, unless leaving minorLow to minorHigh - 1 ends the line
    bool testMinor;
    int32_t minorLow, minorHigh;
    uint32_t length;  // of the unclipped line
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
        if (direction < 0) {
            if (begin >= high) {
                skip(begin - high + 1);
                len -= begin - high + 1;
                major = high - 1;
            }
            if (end < low)
                len += end - low;
        } else {
            if (begin < low) {
                skip(low - begin);
                len -= low - begin;
                major = low;
            }
            if (end >= high)
                len += high - end - 1;
        }
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

} // namespace

template <bool gouraud, Gate gate, Marks marks>
void drawLine(PartIds ids)
{
    Line line;
    if (!line.make())
        return;
    const SetTable& set = *activeSet;
    const Front front = set.fronts[ids.front()];
    const Back back = set.backs[rs.prescale > 256 || rs.blendAlpha > 255][ids.back()];
    Chunk chunk;
    if (ids.custom()) {
        const int op = ops::operatorIndex(rs.blendFunc);
        const bool wide = rs.blendAlpha > 255 || rs.blendAlphaRgb > 255 || rs.prescaleMulti > 256;
        chunk.blendFunc = rs.blendFunc;
        chunk.blendRow = op < 0 ? set.hostOperator : set.operators[wide][op];
    }
    Span s, written;
    if constexpr (gouraud) {
        for (int k = 0; k < 4; ++k) {
            const uint32_t from = (rs.color[0] >> (24 - 8 * k) & 0xFF) << 16, to = (rs.color[1] >> (24 - 8 * k) & 0xFF) << 16;
            const uint32_t step = divided(to - from, line.length);
            s.colour[k] = {from + step * line.skipped, step};
        }
    }
    const uint8_t zRef = uint8_t(rs.zRef);
    uint32_t pixels[Chunk::padded];
    ptrdiff_t offsets[Chunk::size];
    written.dst = pixels;
    for (int32_t first = 0; line.count > 0; first += Chunk::size) {
        const int most = line.count < Chunk::size ? line.count : Chunk::size;
        front(s, first, most, chunk);
        int n = 0;
        for (; n < most; ++n, line.minorPosition += line.minorStep, line.major += line.direction) {
            const int32_t minor = line.minor();
            if (line.testMinor && (minor < line.minorLow || minor >= line.minorHigh)) {
                line.count = 0;
                break;
            }
            const int32_t x = line.steep ? minor : line.major, y = line.steep ? line.major : minor;
            const ptrdiff_t offset = (ptrdiff_t(y) << rs.dstShift) + x;
            offsets[n] = offset;
            pixels[n] = rs.dstPixels[offset];
            bool live = true;
            if constexpr (gate == Gate::plane) { // bit by bit: rows of a narrow frame buffer share them
                uint16_t& word = rs.shaheiPlane[offset / 16];
                const uint32_t bit = 0x8000u >> (x & 15);
                live = !((word | rs.drawMask[y & 15]) & bit);
                if (live) {
                    word = uint16_t(word | bit);
                    if constexpr (marks == Marks::planeZ)
                        rs.zBuffer[offset] = zRef;
                }
            }
            if constexpr (gate == Gate::z || gate == Gate::zMask)
                live = zRef <= rs.zBuffer[offset];
            if constexpr (gate == Gate::mask || gate == Gate::zMask)
                live = live && !(rs.drawMask[y & 15] & 0x8000u >> (x & 15));
            if constexpr (gate != Gate::none)
                chunk.live[n] = live ? ~0u : 0u;
        }
        line.count -= most;
        if (n == 0)
            return;
        back(written, 0, n, chunk);
        for (int k = 0; k < n; ++k)
            if (gate == Gate::none || chunk.live[k])
                rs.dstPixels[offsets[k]] = pixels[k];
    }
}

#define NINEFOLD_LINE(gate, marks)                                                                                                   \
    template void drawLine<false, Gate::gate, Marks::marks>(PartIds);                                                                \
    template void drawLine<true, Gate::gate, Marks::marks>(PartIds);
NINEFOLD_LINE(none, none)
NINEFOLD_LINE(plane, plane)
NINEFOLD_LINE(plane, planeZ)
NINEFOLD_LINE(z, none)
NINEFOLD_LINE(mask, none)
NINEFOLD_LINE(zMask, none)

} // namespace ninefold
