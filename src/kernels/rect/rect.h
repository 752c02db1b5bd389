// Frames of rectangles: from two corners to rows of pixels.
#pragma once

#include "kernels/frame.h"

#include <cmath>
#include <utility>

namespace ninefold {

// A rectangle after clipping, and what the clip cut off.
struct Box {
    int32_t left, top, right, bottom;
    Divider byWidth, byHeight; // unclipped sizes
    uint32_t dx, dy; // columns and rows cut off at the left and top
    bool flippedX, flippedY; // vertex[0] lies right of, below vertex[1]

    // False: nothing to draw.
    [[gnu::always_inline]] bool make()
    {
        const int32_t x0 = rs.vertex[0].x + rs.originX, x1 = rs.vertex[1].x + rs.originX;
        const int32_t y0 = rs.vertex[0].y + rs.originY, y1 = rs.vertex[1].y + rs.originY;
        flippedX = x0 > x1, flippedY = y0 > y1;
        left = flippedX ? x1 : x0, right = flippedX ? x0 : x1;
        top = flippedY ? y1 : y0, bottom = flippedY ? y0 : y1;
        if (rs.clipRight <= left || rs.clipBottom <= top || rs.clipLeft >= right || rs.clipTop >= bottom || right == left ||
            bottom == top)
            return false;
        byWidth = Divider(uint32_t(right) - uint32_t(left));
        byHeight = Divider(uint32_t(bottom) - uint32_t(top));
        dx = rs.clipLeft > left ? uint32_t(rs.clipLeft) - uint32_t(left) : 0;
        dy = rs.clipTop > top ? uint32_t(rs.clipTop) - uint32_t(top) : 0;
        left += int32_t(dx), top += int32_t(dy);
        right = right < rs.clipRight ? right : rs.clipRight;
        bottom = bottom < rs.clipBottom ? bottom : rs.clipBottom;
        return true;
    }
};

// A quantity along one axis of the unclipped rectangle, its end exclusive, from the first pixel that the clip leaves.
inline Linear along(uint32_t from, uint32_t to, bool flipped, const Divider &bySize, uint32_t cut)
{
    if (flipped)
        std::swap(from, to);
    const uint32_t step = bySize(to - from);
    return {from + step * cut, step};
}

// A quantity with a value at each corner, linear down the left and right edge, and across each row.
struct Corners {
    Linear left, right;
    // Corners in the order top left, top right, bottom left, bottom right; `box` says which of them change places.
    void make(uint32_t c0, uint32_t c1, uint32_t c2, uint32_t c3, bool flippedX, bool flippedY, const Box &box)
    {
        if (flippedX)
            std::swap(c0, c1), std::swap(c2, c3);
        if (flippedY)
            std::swap(c0, c2), std::swap(c1, c3);
        left = along(c0, c2, false, box.byHeight, box.dy);
        right = along(c1, c3, false, box.byHeight, box.dy);
    }
    Linear row(const Box &box) const
    {
        const uint32_t step = box.byWidth(right.start - left.start);
        return {left.start + step * box.dx, step};
    }
    void nextRow() { left.start += left.step, right.start += right.step; }
};

// A colour's channels in the order alpha, red, green, blue, as 8-bit values over 16 fraction bits.
inline uint32_t channel(uint32_t colour, int k) { return (colour >> (24 - 8 * k) & 0xFF) << 16; }

struct CornerColours {
    Corners channels[4];
    void make(bool flippedX, bool flippedY, const Box &box)
    {
        for (int k = 0; k < 4; ++k)
            channels[k].make(channel(rs.color[0], k), channel(rs.color[1], k), channel(rs.color[2], k), channel(rs.color[3], k),
                             flippedX, flippedY, box);
    }
    void row(const Box &box, Span &s) const
    {
        for (int k = 0; k < 4; ++k)
            s.colour[k] = channels[k].row(box);
    }
    void nextRow()
    {
        for (Corners &c : channels)
            c.nextRow();
    }
};

// How the position in a texture moves, a class for each rect option. start: once a call; row: before each row that is drawn.

// Whole texels, one a pixel.
template <int t>
struct UnitWalk {
    void start(const Box &box, Span &s)
    {
        const TexCoord &at = t ? rs.uv1[0] : rs.uv0[0];
        const Source &level = t ? s.tex1 : s.tex0;
        Linear &u = t ? s.u1 : s.u0, &v = t ? s.v1 : s.v0;
        u = {(uint32_t(at.u >> 16) + box.dx) & level.maskU, 1};
        v = {(uint32_t(at.v >> 16) + box.dy) & level.maskV, 0};
    }
    bool row(const Box &, Span &) { return true; }
    void nextRow(const Box &, Span &s)
    {
        Linear &v = t ? s.v1 : s.v0;
        v.start = (v.start + 1) & (t ? s.tex1 : s.tex0).maskV;
    }
};

// One texel a pixel from a 16.16 position.
template <int t>
struct Unit16Walk {
    void start(const Box &box, Span &s)
    {
        const TexCoord &at = t ? rs.uv1[0] : rs.uv0[0];
        (t ? s.u1 : s.u0) = Linear{uint32_t(at.u) + (box.dx << 16), 0x10000};
        (t ? s.v1 : s.v0) = Linear{uint32_t(at.v) + (box.dy << 16), 0};
    }
    bool row(const Box &, Span &) { return true; }
    void nextRow(const Box &, Span &s) { (t ? s.v1 : s.v0).start += 0x10000; }
};

template <int t>
struct StretchWalk {
    uint32_t stepV;
    void start(const Box &box, Span &s)
    {
        const TexCoord *uv = t ? rs.uv1 : rs.uv0;
        (t ? s.u1 : s.u0) = along(uint32_t(uv[0].u), uint32_t(uv[1].u), box.flippedX, box.byWidth, box.dx);
        const Linear v = along(uint32_t(uv[0].v), uint32_t(uv[1].v), box.flippedY, box.byHeight, box.dy);
        (t ? s.v1 : s.v0) = Linear{v.start, 0};
        stepV = v.step;
    }
    bool row(const Box &, Span &) { return true; }
    void nextRow(const Box &, Span &s) { (t ? s.v1 : s.v0).start += stepV; }
};

template <int t>
struct CornersWalk {
    Corners u, v;
    void start(const Box &box, Span &)
    {
        const TexCoord *uv = t ? rs.uv1 : rs.uv0;
        u.make(uint32_t(uv[0].u), uint32_t(uv[1].u), uint32_t(uv[2].u), uint32_t(uv[3].u), box.flippedX, box.flippedY, box);
        v.make(uint32_t(uv[0].v), uint32_t(uv[1].v), uint32_t(uv[2].v), uint32_t(uv[3].v), box.flippedX, box.flippedY, box);
    }
    bool row(const Box &box, Span &s)
    {
        (t ? s.u1 : s.u0) = u.row(box);
        (t ? s.v1 : s.v0) = v.row(box);
        return true;
    }
    void nextRow(const Box &, Span &) { u.nextRow(), v.nextRow(); }
};

// The mip level of a line, from the length of its segment. levels: also the next one is set.
template <int t, bool levels, bool marks>
void chooseLineLevel(const LineTableRecord &line, const Box &box, Span &s)
{
    const int32_t a = int32_t(uint32_t(line.endV) - uint32_t(line.startV)) / 65536;
    const int32_t b = int32_t(uint32_t(line.endU) - uint32_t(line.startU)) / 65536;
    const int32_t aa = int32_t(uint32_t(a) * uint32_t(a));
    const int32_t length = int32_t(std::sqrt(double(aa) + double(b) * double(b)));
    const int32_t step = int32_t(box.byWidth(uint32_t(length) << 16));
    uint32_t level = 0;
    for (uint32_t i = 0; i < 16; ++i) {
        if (step >= int32_t(0x10000u << i) && step < int32_t(0x10000u << (i + 1))) {
            level = i;
            const int32_t frac = 255 - ((step >> (i + 8)) & 0xFF);
            if (t)
                rs.mipFrac1 = frac;
            else if (marks)
                rs.mipFrac = frac;
            break;
        }
    }
    const Texture &base = *(t ? rs.tex1 : rs.tex0);
    if (level >= base.mipCount - 1)
        level = base.mipCount - 2;
    (t ? s.tex1 : s.tex0) = sourceOf(*base.mip[level]);
    if (levels) {
        Texture *next = base.mip[level + 1];
        (t ? rs.mipTex1 : rs.mipTex) = next;
        (t ? s.next1 : s.next0) = sourceOf(*next);
    }
    const uint32_t du = uint32_t(int32_t(box.byWidth(uint32_t(line.endU) - uint32_t(line.startU))) >> level);
    const uint32_t dv = uint32_t(int32_t(box.byWidth(uint32_t(line.endV) - uint32_t(line.startV))) >> level);
    (t ? s.u1 : s.u0) = Linear{uint32_t(line.startU >> level) + du * box.dx, du};
    (t ? s.v1 : s.v0) = Linear{uint32_t(line.startV >> level) + dv * box.dx, dv};
}

enum class LineLevel { none, own, ownAndNext };

template <int t, LineLevel choice, bool marks>
struct TableWalk {
    const LineTableRecord *line;
    void start(const Box &box, Span &) { line = (t ? rs.lineTable1 : rs.lineTable0) + box.dy; }
    // False: the row is left out. Only the first texture's table says so.
    bool row(const Box &box, Span &s)
    {
        if (t == 0 && line->startU == NINEFOLD_SKIP_ROW)
            return false;
        if constexpr (choice == LineLevel::none) {
            const uint32_t du = box.byWidth(uint32_t(line->endU) - uint32_t(line->startU));
            const uint32_t dv = box.byWidth(uint32_t(line->endV) - uint32_t(line->startV));
            (t ? s.u1 : s.u0) = Linear{uint32_t(line->startU) + du * box.dx, du};
            (t ? s.v1 : s.v0) = Linear{uint32_t(line->startV) + dv * box.dx, dv};
        } else {
            chooseLineLevel<t, choice == LineLevel::ownAndNext, marks>(*line, box, s);
        }
        return true;
    }
    void nextRow(const Box &, Span &) { ++line; }
};

struct NoWalk {
    void start(const Box &, Span &) {}
    bool row(const Box &, Span &) { return true; }
    void nextRow(const Box &, Span &) {}
};

template <Frame f, int t, bool marks>
struct WalkOf {
    using type = NoWalk;
};
template <int t, bool marks>
struct WalkOf<Frame::rectUnit, t, marks> {
    using type = UnitWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectRuns, t, marks> {
    using type = UnitWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectMapped, t, marks> {
    using type = UnitWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectUnit16, t, marks> {
    using type = Unit16Walk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectStretch, t, marks> {
    using type = StretchWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectStretchLevels, t, marks> {
    using type = StretchWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectCorners, t, marks> {
    using type = CornersWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectCornersLevels, t, marks> {
    using type = CornersWalk<t>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectTable, t, marks> {
    using type = TableWalk<t, LineLevel::none, marks>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectTableLevel, t, marks> {
    using type = TableWalk<t, LineLevel::own, marks>;
};
template <int t, bool marks>
struct WalkOf<Frame::rectTableLevels, t, marks> {
    using type = TableWalk<t, LineLevel::ownAndNext, marks>;
};

constexpr bool isColourRect(Frame f) { return f == Frame::rectFlat || f == Frame::rectGouraud; }
constexpr bool choosesLineLevels(Frame f) { return f == Frame::rectTableLevel || f == Frame::rectTableLevels; }
constexpr bool hasNextLevels(Frame f) { return f == Frame::rectStretchLevels || f == Frame::rectCornersLevels; }
// Unit-scale rectangles and filter 7 keep their colours at the corners of the screen; the others let them follow the vertices.
constexpr bool coloursFollow(Frame f)
{
    return !isColourRect(f) && f != Frame::rectUnit && f != Frame::rectUnit16 && f != Frame::rectRuns && f != Frame::rectMapped;
}

inline bool chainOverlaps(const Texture &t, const Target &target)
{
    for (uint32_t k = 0; k < t.mipCount; ++k)
        if (target.overlaps(sourceOf(*t.mip[k])))
            return true;
    return false;
}

// A row of a run-length rectangle: over holes, and through stretches that the map vouches for.
template <Multi multi>
void drawRuns(Painter<multi> &painter, Span &s, int32_t columns)
{
    const Texture &texture = *rs.tex0;
    const size_t row = size_t(s.v0.start) << texture.log2Width;
    const int8_t *map = texture.runlengthMap + row;
    uint32_t column = s.u0.start;
    int32_t pixel = 0;
    for (int32_t remaining = columns; remaining > 0;) {
        const int32_t n = map[column];
        remaining -= n < 0 ? -n : n;
        if (n < 0) {
            const int32_t skip = int8_t(-n); // 128 zero texels do not fit: the row goes on 128 pixels further left
            column = (column + uint32_t(skip)) & s.tex0.maskU;
            pixel += skip;
        } else {
            const int32_t length = remaining < 0 ? n + remaining : n;
            painter.chunk.slip = texture.pixels + row + column;
            s.run = painter.chunk.slip - pixel;
            painter.draw(s, pixel, length);
            column = (column + uint32_t(n)) & s.tex0.maskU;
            pixel += length;
        }
    }
}

// How far v0 moves from row to row, where that is all that moves.
template <class Walk>
uint32_t stepOf(const Walk &)
{
    return 0;
}
template <>
inline uint32_t stepOf(const Unit16Walk<0> &)
{
    return 0x10000;
}
template <>
inline uint32_t stepOf(const StretchWalk<0> &walk)
{
    return walk.stepV;
}

template <Frame f, Multi multi, bool rule, bool marks>
void drawRect(PartIds ids)
{
    Box box;
    if (!box.make())
        return;
    Span s;
    Target target = targetOf(box.left, box.top, box.right, box.bottom, marks);
    if constexpr (f == Frame::rectRuns) // it may move back, by as much as the row is wide
        target.pixels = static_cast<const uint32_t *>(target.pixels) - (box.right - box.left) - 128;
    bool overlap = false;
    const auto check = [&](const Source &source) { overlap |= target.overlaps(source); };
    typename WalkOf<f, 0, marks>::type walk0;
    typename WalkOf<f, 1, marks>::type walk1;
    if constexpr (choosesLineLevels(f)) {
        overlap |= chainOverlaps(*rs.tex0, target);
        if constexpr (hasSecond(multi))
            overlap |= chainOverlaps(*rs.tex1, target);
    } else if constexpr (!isColourRect(f)) {
        check(s.tex0 = sourceOf(*rs.tex0));
        if constexpr (hasSecond(multi))
            check(s.tex1 = sourceOf(*rs.tex1));
        if constexpr (hasNextLevels(f)) {
            check(s.next0 = sourceOf(*rs.mipTex));
            if constexpr (hasSecond(multi))
                check(s.next1 = sourceOf(*rs.mipTex1));
        }
    }
    walk0.start(box, s);
    if constexpr (hasSecond(multi))
        walk1.start(box, s);
    uint32_t ruleStepV = 0;
    if constexpr (rule) {
        check(s.rule = sourceOf(*rs.tex2));
        s.u2 = along(uint32_t(rs.uv2[0].u), uint32_t(rs.uv2[1].u), box.flippedX, box.byWidth, box.dx);
        s.v2 = along(uint32_t(rs.uv2[0].v), uint32_t(rs.uv2[1].v), box.flippedY, box.byHeight, box.dy);
        ruleStepV = s.v2.step;
        s.v2.step = 0;
    }
    CornerColours colours;
    constexpr bool coloured = hasCorners(multi) || f == Frame::rectGouraud;
    if constexpr (coloured)
        colours.make(coloursFollow(f) && box.flippedX, coloursFollow(f) && box.flippedY, box);

    const size_t first = (size_t(uint32_t(box.top)) << rs.dstShift) + uint32_t(box.left);
    const uint32_t pitch = rs.dstPitch;
    s.x = uint32_t(box.left);
    s.dst = rs.dstPixels + first;
    s.z = rs.zBuffer + first;
    s.plane = rs.shaheiPlane + first / 16;
    s.zeroMap = nullptr;
    if constexpr (f == Frame::rectMapped)
        s.zeroMap = rs.tex0->zeroPixelMap + first / 16;
    const int32_t columns = box.right - box.left;
    uint32_t maskRow = uint32_t(box.top);
    if constexpr (multi == Multi::none && !rule && !marks && drawsBlocks(f)) {
        if (ids.fused() && !overlap && (ids.custom() ? ops::operatorIndex(rs.blendFunc) < 0 : !hasWideFactors())) {
            const Rows rows{box.bottom - box.top, columns, pitch, stepOf(walk0), maskRow};
            const InstructionSet &set = *(columns > 8 ? activeSets.any : activeSets.upTo8);
            set.blocks[ids.fused() - 1](s, rows);
            return;
        }
    }
    Painter<multi> painter(ids, overlap);
    for (int32_t rows = box.bottom - box.top; rows > 0; --rows) {
        if (walk0.row(box, s)) {
            if constexpr (hasSecond(multi))
                walk1.row(box, s);
            if constexpr (coloured)
                colours.row(box, s);
            s.maskRow = rs.drawMask[maskRow & 15];
            if constexpr (f == Frame::rectRuns)
                drawRuns(painter, s, columns);
            else
                painter.draw(s, 0, columns);
            // These stand still on a row that is left out.
            ++maskRow;
            s.plane += pitch >> 4;
            if constexpr (f == Frame::rectMapped)
                s.zeroMap += pitch >> 4;
            if constexpr (rule)
                s.v2.start += ruleStepV;
        }
        walk0.nextRow(box, s);
        if constexpr (hasSecond(multi))
            walk1.nextRow(box, s);
        if constexpr (coloured)
            colours.nextRow();
        s.dst += pitch;
        s.z += pitch;
    }
}

} // namespace ninefold
