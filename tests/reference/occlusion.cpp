// Triangles that fill the occlusion planes.
#include "occlusion.h"

#include <algorithm>

namespace reference {

namespace {

enum class Bits { keep, set, clear, flip };
enum class Bytes { keep, all, none, reference, flip };

struct Fill {
    const char *name;
    Bits bits;
    Bytes bytes;
};

constexpr Fill fills[] = {
    {"DrawShaheiPolygonSet", Bits::set, Bytes::keep},
    {"DrawShaheiPolygonFlip", Bits::flip, Bytes::keep},
    {"DrawShaheiPolygonReset", Bits::clear, Bytes::keep},
    {"DrawZbufferPolygon", Bits::keep, Bytes::reference},
    {"DrawZbufferPolygon0xff", Bits::keep, Bytes::all},
    {"DrawZbufferPolygonFlip", Bits::keep, Bytes::flip},
    {"DrawZbufferPolygonClear", Bits::keep, Bytes::none},
    {"DrawShaheiZbufferPolygonMask", Bits::set, Bytes::none},
    {"DrawShaheiZbufferPolygonUnmask", Bits::clear, Bytes::all},
    {"DrawShaheiZbufferPolygonFlip", Bits::flip, Bytes::flip},
};

class Filler {
public:
    Filler(const Fill &fillToDraw, RenderState &drawState) : fill(fillToDraw), state(drawState) {}
    void draw();

private:
    const Fill &fill;
    RenderState &state;
    int32_t row = 0; // next row to fill
    Ramp left, right; // edges, from `row` on

    void part(int32_t height);
    void span(int32_t x, int32_t y, int32_t width);
};

Ramp edge(int32_t x, int32_t toX, int32_t height) { return {fromWhole(x), divide(fromWhole(sub(toX, x)), height)}; }

void Filler::span(int32_t x, int32_t y, int32_t width)
{
    const int32_t rowStart = shiftLeft(y, state.dstShift);
    const int32_t firstWord = (rowStart + x) >> 4;
    for (int32_t column = x; fill.bits != Bits::keep && column < x + width; ++column) {
        uint16_t &word = state.shaheiPlane[firstWord + (column >> 4) - (x >> 4)];
        const unsigned bit = 0x8000u >> (column & 15);
        const unsigned old = word;
        word = static_cast<uint16_t>(fill.bits == Bits::set ? old | bit : fill.bits == Bits::clear ? old & ~bit : old ^ bit);
    }
    for (int32_t column = x; fill.bytes != Bytes::keep && column < x + width; ++column) {
        uint8_t &byte = state.zBuffer[rowStart + column];
        switch (fill.bytes) {
        case Bytes::all: byte = 255; break;
        case Bytes::none: byte = 0; break;
        case Bytes::reference: byte = static_cast<uint8_t>(state.zRef); break;
        default: byte = static_cast<uint8_t>(~byte); break;
        }
    }
}

// Rows of one trapezoid. A part that starts above clipTop jumps by the distance to clipLeft, which may lead upward.
void Filler::part(int32_t height)
{
    if (state.clipTop > row) {
        const int32_t jump = std::min(height, sub(state.clipLeft, row));
        row = add(row, jump);
        left.start = left.at(jump);
        right.start = right.at(jump);
        height = sub(height, jump);
    }
    if (add(row, height) >= state.clipBottom)
        height = sub(state.clipBottom, row);
    for (; height > 0; --height) {
        const int32_t from = std::max(left.start >> 16, state.clipLeft);
        const int32_t to = std::min(right.start >> 16, state.clipRight);
        if (from < to)
            span(from, row, to - from);
        ++row;
        left.start = left.at(1);
        right.start = right.at(1);
    }
}

void Filler::draw()
{
    const Corners c(state);
    if (c.rejected(state))
        return;
    row = c.yT;
    const int32_t height = sub(c.yB, c.yT);
    const Ramp longEdge = edge(c.xT, c.xB, height);
    if (c.yT == c.yM) {
        left = longEdge;
        right = edge(c.xM, c.xB, height);
        part(height);
        return;
    }
    if (c.yM == c.yB) {
        left = edge(c.xT, c.xM, height);
        right = longEdge;
        part(height);
        return;
    }
    const bool midLeft = c.cross() < 0;
    const int32_t upper = sub(c.yM, c.yT), lower = sub(c.yB, c.yM);
    left = right = longEdge;
    Ramp &midEdge = midLeft ? left : right;
    midEdge = edge(c.xT, c.xM, upper);
    part(upper);
    midEdge = edge(c.xM, c.xB, lower);
    part(lower);
}

} // namespace

bool drawOcclusion(std::string_view name, RenderState &state)
{
    for (const Fill &fill : fills)
        if (name == fill.name) {
            Filler(fill, state).draw();
            return true;
        }
    return false;
}

} // namespace reference
