#include "scalar.h"

#include "ops/blend.h"

#include <algorithm>

namespace bench::scalar {

namespace {

using ninefold::ops::opConstAlpha;

struct Copy {
    uint32_t operator()(uint32_t, uint32_t s) const { return s; }
};
struct Alpha {
    uint32_t operator()(uint32_t d, uint32_t s) const { return ninefold::ops::opAlpha(d, s); }
};
struct ConstAlpha {
    uint32_t operator()(uint32_t d, uint32_t s) const { return opConstAlpha(d, s, rs.blendAlpha); }
};
struct AlphaFast {
    uint32_t operator()(uint32_t d, uint32_t s) const { return ninefold::ops::opAlphaFast(d, s); }
};
struct Add {
    uint32_t operator()(uint32_t d, uint32_t s) const { return ninefold::ops::opAdd(d, s); }
};
struct Mul {
    uint32_t operator()(uint32_t d, uint32_t s) const { return ninefold::ops::opMul(d, s); }
};
struct Screen {
    uint32_t operator()(uint32_t d, uint32_t s) const { return ninefold::ops::opScreen(d, s); }
};
struct Overlay {
    uint32_t operator()(uint32_t d, uint32_t s) const { return ninefold::ops::opOverlay(d, s); }
};

// The corners in order and what the clip cuts off; false if nothing is left.
struct Box {
    int left, top, right, bottom, width, height, dx, dy;

    bool set(int x0, int y0, int x1, int y1)
    {
        left = std::min(x0, x1), right = std::max(x0, x1), top = std::min(y0, y1), bottom = std::max(y0, y1);
        if (rs.clipRight <= left || rs.clipBottom <= top || rs.clipLeft >= right || rs.clipTop >= bottom || left == right ||
            top == bottom)
            return false;
        width = right - left, height = bottom - top;
        dx = std::max(rs.clipLeft - left, 0), dy = std::max(rs.clipTop - top, 0);
        left += dx, top += dy, right = std::min(right, rs.clipRight), bottom = std::min(bottom, rs.clipBottom);
        return true;
    }
    bool set()
    {
        return set(rs.vertex[0].x + rs.originX, rs.vertex[0].y + rs.originY, rs.vertex[1].x + rs.originX,
                   rs.vertex[1].y + rs.originY);
    }
};

uint32_t *rowAt(int x, int y) { return rs.dstPixels + (y << rs.dstShift) + x; }

template <class Blend>
[[gnu::always_inline]] inline void unit(Blend blend)
{
    Box box;
    if (!box.set())
        return;
    const Texture &texture = *rs.tex0;
    const uint32_t maskU = texture.width - 1, maskV = texture.height - 1, shift = texture.log2Width;
    const uint32_t u0 = uint32_t((rs.uv0[0].u >> 16) + box.dx);
    uint32_t v = uint32_t((rs.uv0[0].v >> 16) + box.dy) & maskV;
    uint32_t *row = rowAt(box.left, box.top);
    const uint32_t pitch = rs.dstPitch;
    const int columns = box.right - box.left;
    for (int y = box.top; y < box.bottom; ++y, row += pitch, v = (v + 1) & maskV) {
        const uint32_t *const source = texture.pixels + (v << shift);
        uint32_t *d = row;
        uint32_t u = u0;
        for (int n = columns; n; --n, ++d, ++u)
            if (const uint32_t texel = source[u & maskU])
                *d = blend(*d, texel);
    }
}

template <bool fourChannels>
[[gnu::always_inline]] inline uint32_t mixed(const Texture &texture, uint32_t u, uint32_t v, uint32_t centre)
{
    const uint32_t maskU = texture.width - 1, maskV = texture.height - 1, shift = texture.log2Width;
    const uint32_t fx = u >> 8 & 255, fy = v >> 8 & 255;
    const uint32_t column = u >> 16 & maskU, row = (v >> 16 & maskV) << shift;
    const uint32_t column2 = ((u >> 16) + (fx < 128 ? ~0u : 1u)) & maskU, row2 = (((v >> 16) + (fy < 128 ? ~0u : 1u)) & maskV)
                                                                                 << shift;
    const uint32_t wx = fx < 128 ? fx + 128 : 383 - fx, wy = fy < 128 ? fy + 128 : 383 - fy, p = wx * wy >> 8;
    const uint32_t h = texture.pixels[row + column2], w = texture.pixels[row2 + column], d = texture.pixels[row2 + column2];
    const auto sum = [&](auto part) {
        return part(centre) * p + part(h) * (wy - p) + part(w) * (wx - p) + part(d) * (256 - wx - wy + p);
    };
    const uint32_t redBlue = sum([](uint32_t t) { return t & 0xFF00FF; });
    if constexpr (fourChannels) {
        const uint32_t alphaGreen = sum([](uint32_t t) { return t >> 8 & 0xFF00FF; });
        return (redBlue >> 8 & 0xFF00FF) | (alphaGreen & 0xFF00FF00);
    }
    const uint32_t green = sum([](uint32_t t) { return t & 0xFF00; });
    return ((redBlue & 0xFF00FF00) + (green & 0xFF0000)) >> 8;
}

template <bool bilinear, bool fourChannels, class Blend>
[[gnu::always_inline]] inline void stretch(Blend blend)
{
    int x0 = rs.vertex[0].x + rs.originX, x1 = rs.vertex[1].x + rs.originX;
    int y0 = rs.vertex[0].y + rs.originY, y1 = rs.vertex[1].y + rs.originY;
    int32_t uLeft = rs.uv0[0].u, uRight = rs.uv0[1].u, vTop = rs.uv0[0].v, vBottom = rs.uv0[1].v;
    if (x0 > x1)
        std::swap(uLeft, uRight);
    if (y0 > y1)
        std::swap(vTop, vBottom);
    Box box;
    if (!box.set(x0, y0, x1, y1))
        return;
    const Texture &texture = *rs.tex0;
    const uint32_t maskU = texture.width - 1, maskV = texture.height - 1, shift = texture.log2Width;
    const int32_t du = int32_t(uint32_t(uRight) - uint32_t(uLeft)) / box.width;
    const int32_t dv = int32_t(uint32_t(vBottom) - uint32_t(vTop)) / box.height;
    const uint32_t u0 = uint32_t(uLeft) + uint32_t(du) * uint32_t(box.dx);
    uint32_t v = uint32_t(vTop) + uint32_t(dv) * uint32_t(box.dy);
    uint32_t *row = rowAt(box.left, box.top);
    const uint32_t pitch = rs.dstPitch;
    const int columns = box.right - box.left;
    for (int y = box.top; y < box.bottom; ++y, row += pitch, v += uint32_t(dv)) {
        const uint32_t line = bilinear ? v >> 16 & maskV : uint32_t(int32_t(v) / 65536) & maskV;
        const uint32_t *const source = texture.pixels + (line << shift);
        uint32_t *d = row;
        uint32_t u = u0;
        for (int n = columns; n; --n, ++d, u += uint32_t(du)) {
            uint32_t texel = source[u >> 16 & maskU];
            if (!texel)
                continue;
            if constexpr (bilinear)
                texel = mixed<fourChannels>(texture, u, v, texel);
            *d = blend(*d, texel);
        }
    }
}

// Triangles: attributes run down both edges and then along the row. `bias` is what an edge adds to reach its pixel.
template <int count>
struct Attributes {
    uint32_t value[count + (count == 0)];
};

template <int count>
struct Edge {
    int32_t x, stepX;
    Attributes<count> a, step;

    void set(int xFrom, int xTo, int rows, const Attributes<count> &from, const Attributes<count> &to, int32_t bias)
    {
        x = int32_t(uint32_t(xFrom) << 16) + bias;
        stepX = int32_t(uint32_t(xTo - xFrom) << 16) / rows;
        a = from;
        for (int i = 0; i < count; ++i)
            step.value[i] = uint32_t(int32_t(to.value[i] - from.value[i]) / rows);
    }
    void advance(uint32_t rows)
    {
        x = int32_t(uint32_t(x) + uint32_t(stepX) * rows);
        for (int i = 0; i < count; ++i)
            a.value[i] += step.value[i] * rows;
    }
};

template <int count, class Pixel>
[[gnu::always_inline]] inline void walk(Edge<count> &left, Edge<count> &right, int &y, int rows, Pixel pixel)
{
    if (rs.clipTop > y) {
        const int skipped = std::min(rows, rs.clipTop - y);
        left.advance(uint32_t(skipped)), right.advance(uint32_t(skipped));
        y += skipped, rows -= skipped;
    }
    if (rows + y >= rs.clipBottom)
        rows = rs.clipBottom - y;
    const int32_t clipLeft = rs.clipLeft, clipRight = rs.clipRight;
    for (; rows > 0; --rows, ++y, left.advance(1), right.advance(1)) {
        int x = left.x >> 16, end = right.x >> 16;
        if (rs.scanShift)
            x += rs.scanShift[y], end += rs.scanShift[y];
        Attributes<count> step{}, a = left.a;
        if (const int width = end - x)
            for (int i = 0; i < count; ++i)
                step.value[i] = uint32_t(int32_t(right.a.value[i] - left.a.value[i]) / width);
        if (x < clipLeft) {
            for (int i = 0; i < count; ++i)
                a.value[i] += step.value[i] * uint32_t(clipLeft - x);
            x = clipLeft;
        }
        end = std::min(end, clipRight);
        for (uint32_t *d = rowAt(x, y); x < end; ++x, ++d) {
            pixel(d, a);
            for (int i = 0; i < count; ++i)
                a.value[i] += step.value[i];
        }
    }
}

template <int count, class Load, class Pixel>
[[gnu::always_inline]] inline void triangle(int32_t bias, Load load, Pixel pixel)
{
    const Vertex *const vertex = rs.vertex;
    int t = 0, b = 1, c = 2;
    if (vertex[0].y > vertex[1].y)
        t = 1, b = 0;
    if (vertex[t].y > vertex[2].y)
        c = t, t = 2;
    int m = vertex[b].y <= vertex[c].y ? b : c;
    b = m == b ? c : b;
    if (vertex[t].y == vertex[m].y && vertex[t].x > vertex[m].x)
        std::swap(t, m);
    if (vertex[t].y == vertex[b].y && vertex[t].x > vertex[b].x)
        std::swap(t, b);
    if (vertex[m].y == vertex[b].y && vertex[m].x > vertex[b].x)
        std::swap(m, b);
    const int xT = vertex[t].x + rs.originX, xM = vertex[m].x + rs.originX, xB = vertex[b].x + rs.originX;
    const int yT = vertex[t].y + rs.originY, yM = vertex[m].y + rs.originY, yB = vertex[b].y + rs.originY;
    if (rs.clipTop > yB || rs.clipBottom <= yT || (yT == yM && yM == yB))
        return;
    const Attributes<count> aT = load(t), aM = load(m), aB = load(b);
    Edge<count> left, right;
    int y = yT;
    if (yT == yM || yM == yB) {
        const bool flatTop = yT == yM;
        left.set(xT, flatTop ? xB : xM, yB - yT, aT, flatTop ? aB : aM, bias);
        right.set(flatTop ? xM : xT, xB, yB - yT, flatTop ? aM : aT, aB, bias);
        walk(left, right, y, yB - yT, pixel);
        return;
    }
    const bool middleLeft = (xM - xT) * (yB - yT) - (xB - xT) * (yM - yT) < 0;
    Edge<count> &shortEdge = middleLeft ? left : right;
    (middleLeft ? right : left).set(xT, xB, yB - yT, aT, aB, bias);
    shortEdge.set(xT, xM, yM - yT, aT, aM, bias);
    walk(left, right, y, yM - yT, pixel);
    shortEdge.set(xM, xB, yB - yM, aM, aB, bias);
    walk(left, right, y, yB - yM, pixel);
}

template <bool bilinear, bool fourChannels, class Blend>
[[gnu::always_inline]] inline void texturedTriangle(Blend blend)
{
    const Texture &texture = *rs.tex0;
    const uint32_t maskU = texture.width - 1, maskV = texture.height - 1, shift = texture.log2Width;
    triangle<2>(
        0x8000,
        [](int i) {
            return Attributes<2>{{uint32_t(rs.uv0[i].u), uint32_t(rs.uv0[i].v)}};
        },
        [&](uint32_t *d, const Attributes<2> &a) {
            uint32_t texel = texture.pixels[((a.value[1] >> 16 & maskV) << shift) + (a.value[0] >> 16 & maskU)];
            if (!texel)
                return;
            if constexpr (bilinear)
                texel = mixed<fourChannels>(texture, a.value[0], a.value[1], texel);
            *d = blend(*d, texel);
        });
}

} // namespace

void unitCopy() { unit(Copy()); }
void unitAlpha() { unit(Alpha()); }
void unitConstAlpha() { unit(ConstAlpha()); }
void unitAlphaFast() { unit(AlphaFast()); }
void unitAdd() { unit(Add()); }
void unitMul() { unit(Mul()); }
void unitScreen() { unit(Screen()); }
void unitOverlay() { unit(Overlay()); }

void pointCopy() { stretch<false, false>(Copy()); }
void pointAlpha() { stretch<false, false>(Alpha()); }
void bilinearCopy() { stretch<true, false>(Copy()); }
void bilinearAlpha() { stretch<true, true>(Alpha()); }

void triangleCopy() { texturedTriangle<false, false>(Copy()); }
void triangleAlpha() { texturedTriangle<false, false>(Alpha()); }
void triangleBilinearCopy() { texturedTriangle<true, false>(Copy()); }
void triangleBilinearAlpha() { texturedTriangle<true, true>(Alpha()); }

void gouraudTriangle()
{
    triangle<4>(
        0,
        [](int i) {
            const uint32_t c = rs.color[i];
            return Attributes<4>{{c >> 8 & 0xFF0000, c & 0xFF0000, (c & 0xFF00) << 8, (c & 0xFF) << 16}};
        },
        [](uint32_t *d, const Attributes<4> &a) {
            const uint32_t low = ((a.value[2] & 0xFFFF00FF) | a.value[3] >> 8) >> 8;
            *d = low | ((((a.value[0] & 0xFFFF00FF) << 8) | a.value[1]) & 0xFFFF0000);
        });
}

void flatTriangle()
{
    triangle<0>(
        0, [](int) { return Attributes<0>(); }, [colour = rs.color[0]](uint32_t *d, const Attributes<0> &) { *d = colour; });
}

void flatRect()
{
    Box box;
    if (!box.set())
        return;
    uint32_t *row = rowAt(box.left, box.top);
    const uint32_t pitch = rs.dstPitch, colour = rs.color[0];
    const int columns = box.right - box.left;
    for (int y = box.top; y < box.bottom; ++y, row += pitch)
        for (int x = 0; x < columns; ++x)
            row[x] = colour;
}

// For lines whose ends both lie inside the clip rectangle, the only ones that are timed.
void flatLine()
{
    const int x0 = rs.vertex[0].x + rs.originX, x1 = rs.vertex[1].x + rs.originX;
    const int y0 = rs.vertex[0].y + rs.originY, y1 = rs.vertex[1].y + rs.originY;
    const auto inside = [](int x, int y) { return x >= rs.clipLeft && y >= rs.clipTop && x < rs.clipRight && y < rs.clipBottom; };
    if (!inside(x0, y0) || !inside(x1, y1))
        return;
    const int lengthX = std::abs(x1 - x0) + 1, lengthY = std::abs(y1 - y0) + 1;
    const bool steep = lengthX < lengthY;
    const int length = steep ? lengthY : lengthX;
    int major = steep ? y0 : x0, minor = steep ? x0 : y0;
    const int direction = (steep ? y0 > y1 : x0 > x1) ? -1 : 1;
    int32_t t = int32_t(uint32_t((steep ? x1 : y1) - minor) << 16);
    t += t < 1 ? -32768 : 32768;
    const int32_t step = t / length;
    int32_t position = int32_t(uint32_t(minor) << 16) + 0x8000;
    const uint32_t colour = rs.color[0];
    for (int n = length - 1; n > 0; --n, major += direction, position += step) {
        minor = position / 65536;
        *(steep ? rowAt(minor, major) : rowAt(major, minor)) = colour;
    }
}

} // namespace bench::scalar
