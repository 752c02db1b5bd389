// Triangles, affine and in perspective.
#include <algorithm>
#include <utility>

#include "shapes.h"

namespace reference {

Corners::Corners(const RenderState &state)
{
    const Vertex(&vertex)[4] = state.vertex;
    // the comparisons and their strictness decide about ties
    top = 0;
    int b = 1, c = 2;
    if (vertex[0].y > vertex[1].y)
        std::swap(top, b);
    if (vertex[top].y > vertex[2].y) {
        c = top;
        top = 2;
    }
    mid = b;
    bot = c;
    if (vertex[mid].y > vertex[bot].y)
        std::swap(mid, bot);
    const auto leftFirst = [&vertex](int &one, int &other) {
        if (vertex[one].y == vertex[other].y && vertex[one].x > vertex[other].x)
            std::swap(one, other);
    };
    leftFirst(top, mid);
    leftFirst(top, bot);
    leftFirst(mid, bot);

    xT = add(vertex[top].x, state.originX);
    xM = add(vertex[mid].x, state.originX);
    xB = add(vertex[bot].x, state.originX);
    yT = add(vertex[top].y, state.originY);
    yM = add(vertex[mid].y, state.originY);
    yB = add(vertex[bot].y, state.originY);
}

bool Corners::rejected(const RenderState &state) const
{
    return state.clipTop > yB || state.clipBottom <= yT || (yT == yM && yM == yB);
}

int32_t Corners::cross() const { return sub(mul(sub(xM, xT), sub(yB, yT)), mul(sub(xB, xT), sub(yM, yT))); }

namespace {

// What edges carry.
enum Attribute : int { edgeX, u0, v0, u1, v1, u2, v2, depth, alpha, attributeCount = alpha + 4 };

using Values = int32_t[attributeCount];

class Triangle {
public:
    Triangle(const Modes &drawModes, RenderState &drawState, const Corners &drawCorners);
    void draw();

private:
    const Modes &modes;
    RenderState &state;
    const Corners &corners;
    Painter painter;

    bool carried[attributeCount] = {};
    Values atTop, atMid, atBot;

    // An edge from one row to another.
    struct Edge {
        int32_t firstRow;
        Ramp value[attributeCount];
    };
    Edge edge(const Values &from, int32_t fromRow, const Values &to, int32_t toRow) const;

    void fill(Values &values, int index, int32_t x) const;
    uint32_t textureShift(const TexCoord (&uv)[4], int32_t TexCoord::*coordinate) const;
    void rows(int32_t fromRow, int32_t toRow, const Edge &left, const Edge &right);
    Ramp along(Attribute attribute, const Edge &left, const Edge &right, int32_t y, int32_t width) const;
};

// How far a coordinate of all three vertices can go up; decided by its top byte, at most 7.
uint32_t Triangle::textureShift(const TexCoord (&uv)[4], int32_t TexCoord::*coordinate) const
{
    uint32_t smallest = 7;
    for (int index = 0; index < 3; ++index) {
        const int32_t value = uv[index].*coordinate;
        uint32_t shift = 0;
        if (value >= 0)
            while (shift < 7 && (value >> 24 << shift & 0x40) == 0)
                ++shift;
        smallest = std::min(smallest, shift);
    }
    return smallest;
}

void Triangle::fill(Values &values, int index, int32_t x) const
{
    // textured triangles take the nearest column, filled ones truncate
    values[edgeX] = add(fromWhole(x), modes.textured() ? 0x8000 : 0);
    values[u0] = state.uv0[index].u;
    values[v0] = state.uv0[index].v;
    values[u1] = state.uv1[index].u;
    values[v1] = state.uv1[index].v;
    values[u2] = state.uv2[index].u;
    values[v2] = state.uv2[index].v;
    values[depth] = 0;
    const Channels colour(state.color[index]);
    for (int i = 0; i < 4; ++i)
        values[alpha + i] = colour.value[i];
    if (carried[depth]) {
        const int32_t z = state.vertex[index].z;
        const SourceRow(&source)[2] = painter.row.source;
        values[u0] = divide(shiftLeft(values[u0], source[0].shiftU), z);
        values[v0] = divide(shiftLeft(values[v0], source[0].shiftV), z);
        values[u1] = divide(shiftLeft(values[u1], source[1].shiftU), z);
        values[v1] = divide(shiftLeft(values[v1], source[1].shiftV), z);
        values[depth] = 0x7FFFFFFF / z;
    }
}

Triangle::Triangle(const Modes &drawModes, RenderState &drawState, const Corners &drawCorners)
    : modes(drawModes), state(drawState), corners(drawCorners), painter(drawModes, drawState)
{
    carried[edgeX] = true;
    carried[u0] = carried[v0] = modes.textured();
    carried[u1] = carried[v1] = modes.multi == 0;
    carried[u2] = carried[v2] = modes.rule;
    carried[depth] = modes.pers && modes.textured();
    for (int i = 0; i < 4; ++i)
        carried[alpha + i] = modes.hasColours();

    SourceRow(&source)[2] = painter.row.source;
    source[0].texture = state.tex0;
    source[1].texture = state.tex1;
    source[0].shiftU = textureShift(state.uv0, &TexCoord::u);
    source[0].shiftV = textureShift(state.uv0, &TexCoord::v);
    source[1].shiftU = textureShift(state.uv1, &TexCoord::u);
    source[1].shiftV = textureShift(state.uv1, &TexCoord::v);

    fill(atTop, corners.top, corners.xT);
    fill(atMid, corners.mid, corners.xM);
    fill(atBot, corners.bot, corners.xB);
}

Triangle::Edge Triangle::edge(const Values &from, int32_t fromRow, const Values &to, int32_t toRow) const
{
    Edge result;
    result.firstRow = fromRow;
    for (int i = 0; i < attributeCount; ++i)
        if (carried[i])
            result.value[i] = rampBetween(from[i], to[i], sub(toRow, fromRow));
    return result;
}

// An attribute along the span of row y, from one edge to the other.
Ramp Triangle::along(Attribute attribute, const Edge &left, const Edge &right, int32_t y, int32_t width) const
{
    const int32_t from = left.value[attribute].at(sub(y, left.firstRow));
    if (width == 0)
        return {from, 0};
    return rampBetween(from, right.value[attribute].at(sub(y, right.firstRow)), width);
}

void Triangle::rows(int32_t fromRow, int32_t toRow, const Edge &left, const Edge &right)
{
    Row &row = painter.row;
    for (int32_t y = std::max(fromRow, state.clipTop); y < std::min(toRow, state.clipBottom); ++y) {
        int32_t spanLeft = left.value[edgeX].at(sub(y, left.firstRow)) >> 16;
        int32_t spanRight = right.value[edgeX].at(sub(y, right.firstRow)) >> 16;
        if (state.scanShift != nullptr) {
            spanLeft = add(spanLeft, state.scanShift[y]);
            spanRight = add(spanRight, state.scanShift[y]);
        }
        const int32_t firstColumn = std::max(spanLeft, state.clipLeft);
        const int32_t endColumn = std::min(spanRight, state.clipRight);
        if (firstColumn >= endColumn)
            continue;

        const int32_t width = sub(spanRight, spanLeft);
        const auto ramp = [&](Attribute attribute) { return along(attribute, left, right, y, width); };
        row.origin = spanLeft;
        row.pixels = shiftLeft(y, state.dstShift);
        row.plane = (row.pixels + firstColumn) >> 4;
        row.mask = state.drawMask[y & 15];
        if (carried[u0]) {
            row.source[0].u = ramp(u0);
            row.source[0].v = ramp(v0);
        }
        if (carried[u1]) {
            row.source[1].u = ramp(u1);
            row.source[1].v = ramp(v1);
        }
        if (carried[u2]) {
            row.ruleU = ramp(u2);
            row.ruleV = ramp(v2);
        }
        if (carried[depth])
            row.depth = ramp(depth);
        if (carried[alpha])
            for (int i = 0; i < 4; ++i)
                row.colour[i] = ramp(static_cast<Attribute>(alpha + i));
        painter.span(firstColumn, endColumn);
    }
}

void Triangle::draw()
{
    const int32_t yT = corners.yT, yM = corners.yM, yB = corners.yB;
    const Edge longEdge = edge(atTop, yT, atBot, yB);
    if (yT == yM) {
        rows(yT, yB, longEdge, edge(atMid, yM, atBot, yB));
    } else if (yM == yB) {
        rows(yT, yB, edge(atTop, yT, atMid, yM), longEdge);
    } else {
        const Edge upper = edge(atTop, yT, atMid, yM);
        const Edge lower = edge(atMid, yM, atBot, yB);
        const bool midLeft = corners.cross() < 0;
        rows(yT, yM, midLeft ? upper : longEdge, midLeft ? longEdge : upper);
        rows(yM, yB, midLeft ? lower : longEdge, midLeft ? longEdge : lower);
    }
}

} // namespace

void drawTriangle(const Modes &modes, RenderState &state)
{
    const Corners corners(state);
    if (!corners.rejected(state))
        Triangle(modes, state, corners).draw();
}

} // namespace reference
