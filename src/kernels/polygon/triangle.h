// Frames of triangles: vertex order, edges, and the walk over rows.
#pragma once

#include "core/tables.h"
#include "kernels/frame.h"

#include <utility>

namespace ninefold {

// The vertices of rs ordered by y, then by x, with the origin added.
struct Order {
    int top, mid, bot;
    int32_t xT, yT, xM, yM, xB, yB;

    // False: the triangle is above or below the clip rectangle or has no height.
    [[gnu::always_inline]] bool make()
    {
        const Vertex *v = rs.vertex;
        top = 0;
        int b = 1, c = 2;
        if (v[0].y > v[1].y)
            top = 1, b = 0;
        if (v[top].y > v[2].y)
            c = top, top = 2;
        mid = v[b].y <= v[c].y ? b : c;
        bot = v[b].y <= v[c].y ? c : b;
        if (v[top].y == v[mid].y && v[top].x > v[mid].x)
            std::swap(top, mid);
        if (v[top].y == v[bot].y && v[top].x > v[bot].x)
            std::swap(top, bot);
        if (v[mid].y == v[bot].y && v[mid].x > v[bot].x)
            std::swap(mid, bot);
        xT = v[top].x + rs.originX, yT = v[top].y + rs.originY;
        xM = v[mid].x + rs.originX, yM = v[mid].y + rs.originY;
        xB = v[bot].x + rs.originX, yB = v[bot].y + rs.originY;
        return !(rs.clipTop > yB) && !(rs.clipBottom <= yT) && !(yT == yM && yM == yB);
    }

    // Twice the signed area; negative where mid lies left of the long edge.
    int32_t cross() const
    {
        return int32_t((uint32_t(xM) - uint32_t(xT)) * (uint32_t(yB) - uint32_t(yT)) -
                       (uint32_t(xB) - uint32_t(xT)) * (uint32_t(yM) - uint32_t(yT)));
    }
};

// What an edge carries down the rows: x in 16.16 first, then the attributes.
template <int count>
struct Edge {
    uint32_t value[count], step[count];

    void from(const uint32_t (&a)[count], const uint32_t (&b)[count], const Divider &byHeight)
    {
        for (int k = 0; k < count; ++k) {
            value[k] = a[k];
            step[k] = byHeight(b[k] - a[k]);
        }
    }
    void advance(uint32_t rows)
    {
        for (int k = 0; k < count; ++k)
            value[k] += step[k] * rows;
    }
};

// The scan of a triangle: one trapezoid, or two of which the second goes on with the long edge as the first left it.
// walk(left, right, row, height) draws `height` rows and steps both edges and the row.
template <int count, class Walk>
[[gnu::always_inline]] inline void scan(const Order &o, const uint32_t (&top)[count], const uint32_t (&mid)[count],
                                        const uint32_t (&bot)[count], Walk &&walk)
{
    Edge<count> left, right;
    int32_t row = o.yT;
    uint32_t height = uint32_t(o.yB) - uint32_t(o.yT);
    const Divider byWhole(height);
    const bool flatTop = o.yT == o.yM, flatBottom = o.yM == o.yB;
    bool midLeft = false;
    if (flatTop) {
        left.from(top, bot, byWhole);
        right.from(mid, bot, byWhole);
    } else if (flatBottom) {
        left.from(top, mid, byWhole);
        right.from(top, bot, byWhole);
    } else {
        midLeft = o.cross() < 0;
        height = uint32_t(o.yM) - uint32_t(o.yT);
        const Divider byUpper(height);
        left.from(top, midLeft ? mid : bot, midLeft ? byUpper : byWhole);
        right.from(top, midLeft ? bot : mid, midLeft ? byWhole : byUpper);
    }
    for (bool more = !flatTop && !flatBottom;; more = false) {
        walk(left, right, row, int32_t(height));
        if (!more)
            return;
        height = uint32_t(o.yB) - uint32_t(o.yM);
        (midLeft ? left : right).from(mid, bot, Divider(height));
    }
}

constexpr bool isPers(Frame f) { return f == Frame::trianglePers || f == Frame::trianglePersLevels; }
constexpr bool isTextured(Frame f) { return f != Frame::triangleFlat && f != Frame::triangleGouraud; }
constexpr bool hasLevels(Frame f) { return f == Frame::triangleLevels || f == Frame::trianglePersLevels; }

// Which attributes a triangle carries, and where they stand in its edges.
template <Frame f, Multi multi, bool rule>
struct Attributes {
    static constexpr bool textured = isTextured(f), pers = isPers(f), second = hasSecond(multi);
    static constexpr bool colours = hasCorners(multi) || f == Frame::triangleGouraud;
    static constexpr int x = 0;
    static constexpr int uv0 = 1;
    static constexpr int w = uv0 + 2 * textured;
    static constexpr int uv1 = w + pers;
    static constexpr int uv2 = uv1 + 2 * second;
    static constexpr int colour = uv2 + 2 * rule;
    static constexpr int count = colour + 4 * colours;
};

// How far left the coordinates of all three vertices can go without reaching bit 31.
inline uint32_t coordinateShift(int32_t a, int32_t b, int32_t c)
{
    const auto shift = [](int32_t x) { return x < 0 ? 0u : uint32_t(uvlShift[x >> 24]); };
    uint32_t s = shift(a);
    s = shift(b) < s ? shift(b) : s;
    return shift(c) < s ? shift(c) : s;
}

template <Frame f, Multi multi, bool rule, bool marks>
void drawTriangle(PartIds ids)
{
    using A = Attributes<f, multi, rule>;
    Order o;
    if (!o.make())
        return;
    Span s;
    const Target target = targetOf(rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom, marks);
    bool overlap = false;
    const auto check = [&](const Source &source) { overlap |= target.overlaps(source); };
    if constexpr (A::textured)
        check(s.tex0 = sourceOf(*rs.tex0));
    if constexpr (A::second)
        check(s.tex1 = sourceOf(*rs.tex1));
    if constexpr (hasLevels(f)) {
        check(s.next0 = sourceOf(*rs.mipTex));
        if constexpr (A::second)
            check(s.next1 = sourceOf(*rs.mipTex1));
    }
    if constexpr (rule)
        check(s.rule = sourceOf(*rs.tex2));

    uint32_t shiftU0 = 0, shiftV0 = 0, shiftU1 = 0, shiftV1 = 0;
    if constexpr (A::pers) {
        shiftU0 = coordinateShift(rs.uv0[o.top].u, rs.uv0[o.mid].u, rs.uv0[o.bot].u);
        shiftV0 = coordinateShift(rs.uv0[o.top].v, rs.uv0[o.mid].v, rs.uv0[o.bot].v);
        s.shiftU0 = shiftU0 + 1, s.shiftV0 = shiftV0 + 1;
        if constexpr (A::second) {
            shiftU1 = coordinateShift(rs.uv1[o.top].u, rs.uv1[o.mid].u, rs.uv1[o.bot].u);
            shiftV1 = coordinateShift(rs.uv1[o.top].v, rs.uv1[o.mid].v, rs.uv1[o.bot].v);
            s.shiftU1 = shiftU1 + 1, s.shiftV1 = shiftV1 + 1;
        }
    }
    const auto vertex = [&](int index, int32_t px, uint32_t(&a)[A::count]) __attribute__((always_inline))
    {
        a[A::x] = (uint32_t(px) << 16) + (A::textured ? 0x8000 : 0); // colours alone take no rounding to the nearest pixel
        [[maybe_unused]] const Divider byDepth(uint32_t(rs.vertex[index].z));
        if constexpr (A::textured) {
            a[A::uv0] = uint32_t(rs.uv0[index].u), a[A::uv0 + 1] = uint32_t(rs.uv0[index].v);
            if constexpr (A::pers) {
                a[A::uv0] = byDepth(a[A::uv0] << shiftU0), a[A::uv0 + 1] = byDepth(a[A::uv0 + 1] << shiftV0);
                a[A::w] = byDepth(0x7FFFFFFF);
            }
        }
        if constexpr (A::second) {
            a[A::uv1] = uint32_t(rs.uv1[index].u), a[A::uv1 + 1] = uint32_t(rs.uv1[index].v);
            if constexpr (A::pers)
                a[A::uv1] = byDepth(a[A::uv1] << shiftU1), a[A::uv1 + 1] = byDepth(a[A::uv1 + 1] << shiftV1);
        }
        if constexpr (rule)
            a[A::uv2] = uint32_t(rs.uv2[index].u), a[A::uv2 + 1] = uint32_t(rs.uv2[index].v);
        if constexpr (A::colours)
            for (int k = 0; k < 4; ++k)
                a[A::colour + k] = (rs.color[index] >> (24 - 8 * k) & 0xFF) << 16;
    };
    uint32_t top[A::count], mid[A::count], bot[A::count];
    vertex(o.top, o.xT, top);
    vertex(o.mid, o.xM, mid);
    vertex(o.bot, o.xB, bot);

    Painter<multi> painter(ids, overlap);
    s.zeroMap = nullptr;
    const int32_t clipLeft = rs.clipLeft, clipRight = rs.clipRight;
    const int32_t *const scanShift = rs.scanShift;
    using E = Edge<A::count>;
    scan<A::count>(
        o, top, mid, bot, [&](E & left, E & right, int32_t & row, int32_t rows) __attribute__((always_inline)) {
            if (rs.clipTop > row) {
                const int32_t above = rs.clipTop - row, n = rows < above ? rows : above;
                row += n, rows -= n;
                left.advance(uint32_t(n)), right.advance(uint32_t(n));
            }
            if (rows + row >= rs.clipBottom)
                rows = rs.clipBottom - row;
            for (; rows > 0; --rows, ++row, left.advance(1), right.advance(1)) {
                int32_t l = int32_t(left.value[A::x]) >> 16, r = int32_t(right.value[A::x]) >> 16;
                const uint32_t width = uint32_t(r) - uint32_t(l);
                if (scanShift)
                    l += scanShift[row], r += scanShift[row];
                const int32_t end = r < clipRight ? r : clipRight, begin = l > clipLeft ? l : clipLeft;
                if (end <= begin)
                    continue;
                const uint32_t cut = uint32_t(begin) - uint32_t(l);
                [[maybe_unused]] const Divider byWidth(width);
                const auto across = [&](int k) __attribute__((always_inline))
                {
                    const uint32_t step = byWidth(right.value[k] - left.value[k]);
                    return Linear{left.value[k] + step * cut, step};
                };
                if constexpr (A::textured)
                    s.u0 = across(A::uv0), s.v0 = across(A::uv0 + 1);
                if constexpr (A::pers)
                    s.w = across(A::w);
                if constexpr (A::second)
                    s.u1 = across(A::uv1), s.v1 = across(A::uv1 + 1);
                if constexpr (rule)
                    s.u2 = across(A::uv2), s.v2 = across(A::uv2 + 1);
                if constexpr (A::colours)
                    for (int k = 0; k < 4; ++k)
                        s.colour[k] = across(A::colour + k);
                const size_t at = (size_t(uint32_t(row)) << rs.dstShift) + uint32_t(begin);
                s.x = uint32_t(begin);
                s.dst = rs.dstPixels + at;
                s.z = rs.zBuffer + at;
                s.plane = rs.shaheiPlane + at / 16;
                s.maskRow = rs.drawMask[row & 15];
                painter.draw(s, 0, end - begin);
            }
        });
}

template <Frame frame, Multi multi, bool rule, bool marks>
void drawFrame(PartIds ids)
{
    drawTriangle<frame, multi, rule, marks>(ids);
}

} // namespace ninefold

#define NINEFOLD_TRIANGLE_MULTI(frame, multi)                                                                                    \
    template void ninefold::drawFrame<ninefold::Frame::frame, ninefold::Multi::multi, false, false>(ninefold::PartIds);          \
    template void ninefold::drawFrame<ninefold::Frame::frame, ninefold::Multi::multi, false, true>(ninefold::PartIds);           \
    template void ninefold::drawFrame<ninefold::Frame::frame, ninefold::Multi::multi, true, false>(ninefold::PartIds);           \
    template void ninefold::drawFrame<ninefold::Frame::frame, ninefold::Multi::multi, true, true>(ninefold::PartIds);

#define NINEFOLD_TRIANGLE(frame)                                                                                                 \
    NINEFOLD_TRIANGLE_MULTI(frame, second)                                                                                       \
    NINEFOLD_TRIANGLE_MULTI(frame, corners)                                                                                      \
    NINEFOLD_TRIANGLE_MULTI(frame, colour)                                                                                       \
    NINEFOLD_TRIANGLE_MULTI(frame, none)

// Filter 2 without rule drops what the multi operator gives.
#define NINEFOLD_TRIANGLE_UNUSED(frame)                                                                                          \
    NINEFOLD_TRIANGLE_MULTI(frame, secondUnused)                                                                                 \
    NINEFOLD_TRIANGLE_MULTI(frame, cornersUnused)                                                                                \
    NINEFOLD_TRIANGLE_MULTI(frame, colourUnused)
