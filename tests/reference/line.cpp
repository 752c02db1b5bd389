// Lines.
#include "operators.h"
#include "reference.h"
#include "shapes.h"

namespace reference {

namespace {

// The two axes of a line; both the same way round for the major and the minor one.
struct Axis {
    int32_t from, to, low, high; // ends; clip bounds, the high one exclusive

    int32_t length() const { return add(magnitude(sub(to, from)), 1); }
};

class Line {
public:
    Line(const Modes &drawModes, RenderState &drawState);
    void draw();

private:
    const Modes &modes;
    RenderState &state;
    bool steep;
    bool inside[2];
    Axis major, minor;
    int32_t length; // pixels still to go, the end point included
    int32_t direction; // along the major axis
    Ramp minorRamp;
    Ramp colour[4];
    int32_t steps = 0; // made so far

    int32_t minorNow() const { return whole(minorRamp.at(steps)); }
    void drawInside();
    void drawClipped();
    void pixel();
    void store(int32_t offset);
};

Line::Line(const Modes &drawModes, RenderState &drawState) : modes(drawModes), state(drawState)
{
    Axis x{add(state.vertex[0].x, state.originX), add(state.vertex[1].x, state.originX), state.clipLeft, state.clipRight};
    Axis y{add(state.vertex[0].y, state.originY), add(state.vertex[1].y, state.originY), state.clipTop, state.clipBottom};
    inside[0] = x.from >= x.low && y.from >= y.low && x.from < x.high && y.from < y.high;
    inside[1] = x.to >= x.low && y.to >= y.low && x.to < x.high && y.to < y.high;
    steep = x.length() < y.length();
    major = steep ? y : x;
    minor = steep ? x : y;
    length = major.length();
    direction = major.from > major.to ? -1 : 1;

    // half a pixel more in the direction of travel; no travel counts as backward
    const int32_t travel = fromWhole(sub(minor.to, minor.from));
    const int32_t widened = travel < 1 ? sub(travel, 32768) : add(travel, 32768);
    minorRamp = {add(fromWhole(minor.from), 0x8000), divide(widened, length)};

    const Channels from(state.color[0]), to(state.color[1]);
    for (int i = 0; i < 4; ++i)
        colour[i] = rampBetween(from.value[i], to.value[i], length);
}

void Line::store(int32_t offset)
{
    pixelInHand = offset;
    uint32_t source = modes.filter == 6 ? state.color[0] : packedGouraud(colour, steps);
    if (modes.prescale)
        source = prescaled(modes.alphaBlend(), source, state.prescale);
    uint32_t &destination = state.dstPixels[offset];
    destination = modes.blend == 0 ? source : blended(modes.blend, destination, source);
}

void Line::pixel()
{
    const int32_t along = add(major.from, mul(direction, steps));
    const int32_t x = steep ? minorNow() : along;
    const int32_t y = steep ? along : minorNow();
    const int32_t offset = add(shiftLeft(y, state.dstShift), x);
    const uint16_t bit = static_cast<uint16_t>(0x8000 >> (x & 15));
    const bool masked = (state.drawMask[y & 15] & bit) != 0;
    if (modes.plane()) {
        uint16_t &word = state.shaheiPlane[offset / 16];
        if (masked || (word & bit) != 0)
            return;
        store(offset);
        if (modes.shahei == 2)
            state.zBuffer[offset] = static_cast<uint8_t>(state.zRef);
        word |= bit;
        return;
    }
    if (modes.zTest() && state.zBuffer[offset] < (state.zRef & 255))
        return;
    if (modes.stippled() && masked)
        return;
    store(offset);
}

void Line::drawInside()
{
    for (int32_t left = sub(length, 1); left >= 1; --left) {
        pixel();
        ++steps;
    }
}

void Line::drawClipped()
{
    // cut the ends that lie beyond the clip rectangle along the major axis
    int32_t skipped = 0;
    if (direction < 0) {
        if (major.from >= major.high)
            skipped = add(sub(major.from, major.high), 1);
    } else if (major.from < major.low) {
        skipped = sub(major.low, major.from);
    }
    steps = skipped;
    length = sub(length, skipped);
    if (direction < 0) {
        if (major.to < major.low)
            length = add(length, sub(major.to, major.low));
    } else if (major.to >= major.high) {
        length = sub(add(length, sub(major.high, major.to)), 1);
    }

    // leave at once when going away from it on the minor axis; otherwise walk up to it
    const int32_t start = minorNow();
    if (minorRamp.step >= 0 && start >= minor.high)
        return;
    if (minorRamp.step <= 0 && start < minor.low)
        return;
    const bool below = minorRamp.step > 0 && start < minor.low;
    const bool above = start >= minor.high;
    if (below || above) {
        bool reached = false;
        while (length > 0 && !reached) {
            ++steps;
            --length;
            reached = below ? minorNow() >= minor.low : minorNow() < minor.high;
        }
        if (!reached)
            --length;
    }

    if (inside[1]) {
        drawInside();
        return;
    }
    while (length >= 1) {
        const int32_t now = minorNow();
        if (now < minor.low || now >= minor.high)
            return;
        --length;
        pixel();
        ++steps;
    }
}

void Line::draw()
{
    if (inside[0] && inside[1])
        drawInside();
    else
        drawClipped();
}

} // namespace

void drawLine(const Modes &modes, RenderState &state) { Line(modes, state).draw(); }

} // namespace reference
