// Occlusion triangles: the triangle scan, with spans of the Shahei plane and the priority plane in the place of pixels.
#include <ninefold/draw.h>

#include "kernels/polygon/triangle.h"

#include <cstring>

namespace ninefold {
namespace {

enum class Fill { set, clear, flip, reference }; // reference: the primitive's own priority

template <Fill fill>
void fillWord(uint16_t &word, uint32_t bits)
{
    word = uint16_t(fill == Fill::set ? word | bits : fill == Fill::clear ? word & ~bits : word ^ bits);
}

template <Fill fill>
void fillShahei(int32_t x, int32_t y, int32_t width)
{
    if (width <= 0)
        return;
    uint16_t *word = rs.shaheiPlane + (((ptrdiff_t(y) << rs.dstShift) + x) >> 4);
    const int32_t end = x + width;
    if (x / 16 == end / 16) {
        fillWord<fill>(*word, (0xFFFFu >> (x & 15)) & ~(0xFFFFu >> (end & 15)));
        return;
    }
    if (x & 15) {
        fillWord<fill>(*word++, 0xFFFFu >> (x & 15));
        width -= 16 - (x & 15);
    }
    const int32_t words = width / 16;
    if constexpr (fill == Fill::flip)
        for (int32_t k = 0; k < words; ++k)
            word[k] = uint16_t(~word[k]);
    else
        std::memset(word, fill == Fill::set ? 0xFF : 0, size_t(words) * 2);
    if (width & 15)
        fillWord<fill>(word[words], ~(0xFFFFu >> (width & 15)) & 0xFFFFu);
}

template <Fill fill>
void fillZ(int32_t x, int32_t y, int32_t width)
{
    uint8_t *z = rs.zBuffer + ((ptrdiff_t(y) << rs.dstShift) + x);
    if constexpr (fill == Fill::flip)
        for (int32_t k = 0; k < width; ++k)
            z[k] = uint8_t(~z[k]);
    else if (width > 0)
        std::memset(z, fill == Fill::set ? 0xFF : fill == Fill::clear ? 0 : uint8_t(rs.zRef), size_t(width));
}

template <auto first, auto second>
void both(int32_t x, int32_t y, int32_t width)
{
    first(x, y, width), second(x, y, width);
}

// fill(x, y, width) for each row of the triangle; the width may be negative.
template <class FillSpan>
void fillTriangle(FillSpan &&fill)
{
    Order o;
    if (!o.make())
        return;
    // Edges start at the pixel's left border: spans truncate.
    const uint32_t top[1] = {uint32_t(o.xT) << 16}, mid[1] = {uint32_t(o.xM) << 16}, bot[1] = {uint32_t(o.xB) << 16};
    scan<1>(o, top, mid, bot, [&](Edge<1> &left, Edge<1> &right, int32_t &row, int32_t rows) {
        if (rs.clipTop > row) {
            // The jump goes by clipLeft, not by clipTop. It is a slip that is kept: it may go up. Past the end of the trapezoid
            // nothing is drawn, so its height serves as the limit of single ones too.
            const int32_t slip = rs.clipLeft - row, jump = rows < slip ? rows : slip;
            row += jump, rows -= jump;
            left.advance(uint32_t(jump)), right.advance(uint32_t(jump));
        }
        if (row + rows >= rs.clipBottom)
            rows = rs.clipBottom - row;
        for (; rows > 0; --rows, ++row, left.advance(1), right.advance(1)) {
            int32_t l = int32_t(left.value[0]) >> 16;
            const int32_t r = int32_t(right.value[0]) >> 16;
            int32_t width = r - l;
            if (l < rs.clipLeft)
                width -= rs.clipLeft - l, l = rs.clipLeft;
            if (r > rs.clipRight)
                width += rs.clipRight - r;
            fill(l, row, width);
        }
    });
}

} // namespace
} // namespace ninefold

using namespace ninefold;

void DrawShaheiPolygonSet(void) { fillTriangle(fillShahei<Fill::set>); }
void DrawShaheiPolygonFlip(void) { fillTriangle(fillShahei<Fill::flip>); }
void DrawShaheiPolygonReset(void) { fillTriangle(fillShahei<Fill::clear>); }
void DrawZbufferPolygon(void) { fillTriangle(fillZ<Fill::reference>); }
void DrawZbufferPolygon0xff(void) { fillTriangle(fillZ<Fill::set>); }
void DrawZbufferPolygonFlip(void) { fillTriangle(fillZ<Fill::flip>); }
void DrawZbufferPolygonClear(void) { fillTriangle(fillZ<Fill::clear>); }
void DrawShaheiZbufferPolygonMask(void) { fillTriangle(both<fillShahei<Fill::set>, fillZ<Fill::clear>>); }
void DrawShaheiZbufferPolygonUnmask(void) { fillTriangle(both<fillShahei<Fill::clear>, fillZ<Fill::set>>); }
void DrawShaheiZbufferPolygonFlip(void) { fillTriangle(both<fillShahei<Fill::flip>, fillZ<Fill::flip>>); }
