// Frames of triangles: vertex order, edges, and the walk over rows.
#pragma once

#include "core/startup.h"
#include "kernels/frame.h"
#include "kernels/painter.h"

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

// Which attributes a triangle carries, and where they stand in its edges.
template <Frame f>
struct Attributes {
    static constexpr bool textured = f.walk != Walk::none, pers = f.walk == Walk::pers;
    static constexpr int x = 0;
    static constexpr int uv[2] = {1, 1 + 2 * textured + pers};
    static constexpr int w = 1 + 2 * textured;
    static constexpr int ruleUV = uv[1] + 2 * f.second();
    static constexpr int colour = ruleUV + 2 * f.rule;
    static constexpr int count = colour + 4 * f.colours();
};

// How far left the coordinates of all three vertices can go without reaching bit 31.
inline uint32_t coordinateShift(int32_t a, int32_t b, int32_t c)
{
    const auto shift = [](int32_t x) { return x < 0 ? 0u : uint32_t(uvlShift[x >> 24]); };
    uint32_t s = shift(a);
    s = shift(b) < s ? shift(b) : s;
    return shift(c) < s ? shift(c) : s;
}

// Texture positions of the vertices on their way into the edges: as they are, or over the depth, with as many bits as there is
// room for.
template <bool pers>
struct VertexPositions {
    const TexCoord *uv;
    uint32_t shiftU = 0, shiftV = 0;

    VertexPositions(const TexCoord *positions, const Order &o, Sampled &s) : uv(positions)
    {
        if constexpr (pers) {
            shiftU = coordinateShift(uv[o.top].u, uv[o.mid].u, uv[o.bot].u);
            shiftV = coordinateShift(uv[o.top].v, uv[o.mid].v, uv[o.bot].v);
            s.shiftU = shiftU + 1, s.shiftV = shiftV + 1;
        }
    }
    void put(int index, const Divider &byDepth, uint32_t *to) const
    {
        const uint32_t u = uint32_t(uv[index].u), v = uint32_t(uv[index].v);
        to[0] = pers ? byDepth(u << shiftU) : u;
        to[1] = pers ? byDepth(v << shiftV) : v;
    }
};

template <Frame f>
void drawTriangle(PartIds ids)
{
    using A = Attributes<f>;
    Order o;
    if (!o.make())
        return;
    Span s;
    const bool overlap = takeTextures<f>(s, targetOf(rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom, f.marks));
    const VertexPositions<A::pers> positions0(rs.uv0, o, s.tex[0]);
    const VertexPositions<A::pers && f.second()> positions1(rs.uv1, o, s.tex[1]);
    const auto vertex = [&](int index, int32_t px, uint32_t(&a)[A::count]) NINEFOLD_INLINED {
        a[A::x] = (uint32_t(px) << 16) + (A::textured ? 0x8000 : 0); // colours alone take no rounding to the nearest pixel
        [[maybe_unused]] const Divider byDepth(uint32_t(rs.vertex[index].z));
        if constexpr (A::textured)
            positions0.put(index, byDepth, a + A::uv[0]);
        if constexpr (A::pers)
            a[A::w] = byDepth(0x7FFFFFFF);
        if constexpr (f.second())
            positions1.put(index, byDepth, a + A::uv[1]);
        if constexpr (f.rule)
            a[A::ruleUV] = uint32_t(rs.uv2[index].u), a[A::ruleUV + 1] = uint32_t(rs.uv2[index].v);
        if constexpr (f.colours())
            for (int k = 0; k < 4; ++k)
                a[A::colour + k] = channel(rs.color[index], k);
    };
    uint32_t top[A::count], mid[A::count], bot[A::count];
    vertex(o.top, o.xT, top);
    vertex(o.mid, o.xM, mid);
    vertex(o.bot, o.xB, bot);

    Painter<f.multi> painter(ids, Method::of<f.multi>(ids, overlap));
    s.zeroMap = nullptr;
    const int32_t clipLeft = rs.clipLeft, clipRight = rs.clipRight;
    const int32_t *const scanShift = rs.scanShift;
    using E = Edge<A::count>;
    scan<A::count>(o, top, mid, bot, [&](E &left, E &right, int32_t &row, int32_t rows) NINEFOLD_INLINED {
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
            const auto across = [&](int k) NINEFOLD_INLINED {
                const uint32_t step = byWidth(right.value[k] - left.value[k]);
                return Linear{left.value[k] + step * cut, step};
            };
            if constexpr (A::textured)
                s.tex[0].u = across(A::uv[0]), s.tex[0].v = across(A::uv[0] + 1);
            if constexpr (A::pers)
                s.w = across(A::w);
            if constexpr (f.second())
                s.tex[1].u = across(A::uv[1]), s.tex[1].v = across(A::uv[1] + 1);
            if constexpr (f.rule)
                s.ruleU = across(A::ruleUV), s.ruleV = across(A::ruleUV + 1);
            if constexpr (f.colours())
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

} // namespace ninefold
