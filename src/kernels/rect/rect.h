// Frames of rectangles: from two corners to rows of pixels.
#pragma once

#include "kernels/frame.h"
#include "kernels/painter.h"

#include <cmath>
#include <cstring>
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
struct EdgePair {
    Linear left, right;
    // Values in the order top left, top right, bottom left, bottom right; the flips say which of them change places.
    void make(const uint32_t (&value)[4], bool flippedX, bool flippedY, const Box &box)
    {
        const int k = flippedX + 2 * flippedY;
        left = along(value[k], value[2 ^ k], false, box.byHeight, box.dy);
        right = along(value[1 ^ k], value[3 ^ k], false, box.byHeight, box.dy);
    }
    Linear row(const Box &box) const
    {
        const uint32_t step = box.byWidth(right.start - left.start);
        return {left.start + step * box.dx, step};
    }
    void nextRow() { left.start += left.step, right.start += right.step; }
};

struct CornerColours {
    EdgePair channels[4];
    void make(bool flippedX, bool flippedY, const Box &box)
    {
        for (int k = 0; k < 4; ++k)
            channels[k].make({channel(rs.color[0], k), channel(rs.color[1], k), channel(rs.color[2], k), channel(rs.color[3], k)},
                             flippedX, flippedY, box);
    }
    void row(const Box &box, Span &s) const
    {
        for (int k = 0; k < 4; ++k)
            s.colour[k] = channels[k].row(box);
    }
    void nextRow()
    {
        for (EdgePair &pair : channels)
            pair.nextRow();
    }
};

// How the position in a texture moves, a class for each walk. start: once a call; row: before each row that is drawn, false
// where it is left out; nextRow: after each row. stepV: how far v moves from row to row, where that is all that moves.
struct StillWalk {
    static constexpr uint32_t stepV = 0;
    void start(const Box &, Sampled &) {}
    bool row(const Box &, Sampled &) { return true; }
    void nextRow(Sampled &) {}
};
template <Frame f, int t>
struct RowWalk : StillWalk {};

// Whole texels, one a pixel.
template <Frame f, int t>
requires(f.walk == Walk::unit) struct RowWalk<f, t> : StillWalk {
    void start(const Box &box, Sampled &s)
    {
        const TexCoord &at = FieldsOf<t>::uv()[0];
        s.u = {(uint32_t(at.u >> 16) + box.dx) & s.level.maskU, 1};
        s.v = {(uint32_t(at.v >> 16) + box.dy) & s.level.maskV, 0};
    }
    void nextRow(Sampled &s) { s.v.start = (s.v.start + 1) & s.level.maskV; }
};

// One texel a pixel from a 16.16 position.
template <Frame f, int t>
requires(f.walk == Walk::unit16) struct RowWalk<f, t> : StillWalk {
    static constexpr uint32_t stepV = 0x10000;
    void start(const Box &box, Sampled &s)
    {
        const TexCoord &at = FieldsOf<t>::uv()[0];
        s.u = {uint32_t(at.u) + (box.dx << 16), 0x10000};
        s.v = {uint32_t(at.v) + (box.dy << 16), 0};
    }
    void nextRow(Sampled &s) { s.v.start += stepV; }
};

template <Frame f, int t>
requires(f.walk == Walk::stretch) struct RowWalk<f, t> : StillWalk {
    uint32_t stepV;
    void start(const Box &box, Sampled &s)
    {
        const TexCoord *uv = FieldsOf<t>::uv();
        s.u = along(uint32_t(uv[0].u), uint32_t(uv[1].u), box.flippedX, box.byWidth, box.dx);
        s.v = along(uint32_t(uv[0].v), uint32_t(uv[1].v), box.flippedY, box.byHeight, box.dy);
        stepV = s.v.step;
        s.v.step = 0;
    }
    void nextRow(Sampled &s) { s.v.start += stepV; }
};

template <Frame f, int t>
requires(f.walk == Walk::corners) struct RowWalk<f, t> : StillWalk {
    EdgePair u, v;
    void start(const Box &box, Sampled &)
    {
        const TexCoord *uv = FieldsOf<t>::uv();
        u.make({uint32_t(uv[0].u), uint32_t(uv[1].u), uint32_t(uv[2].u), uint32_t(uv[3].u)}, box.flippedX, box.flippedY, box);
        v.make({uint32_t(uv[0].v), uint32_t(uv[1].v), uint32_t(uv[2].v), uint32_t(uv[3].v)}, box.flippedX, box.flippedY, box);
    }
    bool row(const Box &box, Sampled &s)
    {
        s.u = u.row(box), s.v = v.row(box);
        return true;
    }
    void nextRow(Sampled &) { u.nextRow(), v.nextRow(); }
};

// The mip level of a line, from the length of its segment. Without marks the weight of tex0 stays in the level's search.
template <Frame f, int t>
uint32_t takeLineLevel(const LineTableRecord &line, const Box &box, Sampled &s)
{
    const int32_t a = int32_t(uint32_t(line.endV) - uint32_t(line.startV)) / 65536;
    const int32_t b = int32_t(uint32_t(line.endU) - uint32_t(line.startU)) / 65536;
    const int32_t aa = int32_t(uint32_t(a) * uint32_t(a));
    const int32_t length = int32_t(std::sqrt(double(aa) + double(b) * double(b)));
    const Texture &base = *FieldsOf<t>::texture();
    int32_t unread;
    const uint32_t level =
        levelOf(base, int32_t(box.byWidth(uint32_t(length) << 16)), t == 0 && !f.marks ? unread : FieldsOf<t>::frac());
    s.level = sourceOf(*base.mip[level]);
    if constexpr (f.levels == Levels::lineNext) {
        FieldsOf<t>::next() = base.mip[level + 1];
        s.next = sourceOf(*base.mip[level + 1]);
    }
    return level;
}

template <Frame f, int t>
requires(f.walk == Walk::table) struct RowWalk<f, t> : StillWalk {
    const LineTableRecord *line;
    void start(const Box &box, Sampled &) { line = (t ? rs.lineTable1 : rs.lineTable0) + box.dy; }
    bool row(const Box &box, Sampled &s)
    {
        if (t == 0 && line->startU == NINEFOLD_SKIP_ROW) // only the first texture's table says so
            return false;
        const uint32_t level = f.hasLineLevels() ? takeLineLevel<f, t>(*line, box, s) : 0;
        const auto across = [&](int32_t start, int32_t end) {
            const uint32_t step = uint32_t(int32_t(box.byWidth(uint32_t(end) - uint32_t(start))) >> level);
            return Linear{uint32_t(start >> level) + step * box.dx, step};
        };
        s.u = across(line->startU, line->endU), s.v = across(line->startV, line->endV);
        return true;
    }
    void nextRow(Sampled &) { ++line; }
};

// Unit-scale rectangles and filter 7 keep their colours at the corners of the screen; the others let them follow the vertices.
constexpr bool coloursFollow(const Frame &f)
{
    return f.walk == Walk::stretch || f.walk == Walk::corners || f.walk == Walk::table;
}

// A row of a run-length rectangle.
template <Multi multi>
void drawRuns(Painter<multi> &painter, Span &s, int32_t columns)
{
    const Texture &texture = *rs.tex0;
    const size_t row = size_t(s.tex[0].v.start) << texture.log2Width;
    forEachRun(texture.runlengthMap + row, s.tex[0].u.start, s.tex[0].level.maskU, columns,
               [&](int pixel, uint32_t column, int n) {
                   painter.chunk.slip = texture.pixels + row + column;
                   s.run = painter.chunk.slip - pixel;
                   painter.draw(s, pixel, n);
               });
}

// Whether the first row of a run-length rectangle has a hole that moves it back.
[[gnu::noinline]] inline bool movesBack(const Sampled &tex)
{
    const size_t row = size_t(tex.v.start & tex.level.maskV) << tex.level.shift;
    return std::memchr(rs.tex0->runlengthMap + row, -128, size_t(tex.level.maskU) + 1);
}

// Makes ready what a rectangle is drawn from, at its first row. False: nothing to draw. overlap: a source shares memory with what
// is written.
template <Frame f>
[[gnu::always_inline]] inline bool startRect(Box &box, Span &s, RowWalk<f, 0> &walk0, RowWalk<f, 1> &walk1, bool &overlap)
{
    if (!box.make())
        return false;
    const Target target = targetOf(box.left, box.top, box.right, box.bottom, f.marks);
    Target reach = target;
    if constexpr (f.map == Map::runs) // A row may move back, by less than it is wide, and so the first one to what lies before.
        reach.pixels = static_cast<const uint32_t *>(target.pixels) - (box.right - box.left);
    overlap = takeTextures<f>(s, reach);
    walk0.start(box, s.tex[0]);
    if constexpr (f.map == Map::runs) // Textures made one after the other lie that near.
        overlap = overlap && (movesBack(s.tex[0]) || takeTextures<f>(s, target));
    if constexpr (f.second())
        walk1.start(box, s.tex[1]);
    const size_t first = (size_t(uint32_t(box.top)) << rs.dstShift) + uint32_t(box.left);
    s.x = uint32_t(box.left);
    s.dst = rs.dstPixels + first;
    s.z = rs.zBuffer + first;
    s.plane = rs.shaheiPlane + first / 16;
    s.zeroMap = nullptr;
    if constexpr (f.map == Map::zeros)
        s.zeroMap = rs.tex0->zeroPixelMap + first / 16;
    return true;
}

// Rectangles that are drawn by one function where nothing stands against it.
template <Frame f>
constexpr bool hasBlock = f.multi == Multi::none && !f.rule && !f.marks && f.drawsBlocks();

template <Frame f>
[[gnu::always_inline]] inline void drawBlock(PartIds ids, const Box &box, const Span &s, const RowWalk<f, 0> &walk)
{
    const int32_t columns = box.right - box.left;
    const InstructionSet *set = columns > 8 ? activeSets.any : activeSets.upTo8;
    if (f.walk == Walk::unit && columns < 8) // two vectors of 4 beat one of 8 with a masked store
        set = activeSets.upTo4;
    set->blocks[ids.entry - 1](s, {box.bottom - box.top, columns, rs.dstPitch, walk.stepV, uint32_t(box.top)});
}

// Row by row, by the painter.
template <Frame f>
[[gnu::noinline]] void drawRows(PartIds ids)
{
    Box box;
    Span s;
    RowWalk<f, 0> walk0;
    RowWalk<f, 1> walk1;
    bool overlap;
    if (!startRect<f>(box, s, walk0, walk1, overlap))
        return;
    const Method method = Method::of<f.multi>(ids, overlap);
    if constexpr (hasBlock<f>)
        if (method.way == Way::fused)
            return drawBlock<f>(ids, box, s, walk0);
    const uint32_t pitch = rs.dstPitch;
    [[maybe_unused]] uint32_t ruleStepV = 0;
    if constexpr (f.rule) {
        s.ruleU = along(uint32_t(rs.uv2[0].u), uint32_t(rs.uv2[1].u), box.flippedX, box.byWidth, box.dx);
        s.ruleV = along(uint32_t(rs.uv2[0].v), uint32_t(rs.uv2[1].v), box.flippedY, box.byHeight, box.dy);
        ruleStepV = s.ruleV.step;
        s.ruleV.step = 0;
    }
    CornerColours colours;
    if constexpr (f.colours())
        colours.make(coloursFollow(f) && box.flippedX, coloursFollow(f) && box.flippedY, box);
    const int32_t columns = box.right - box.left;
    uint32_t maskRow = uint32_t(box.top);
    Painter<f.multi> painter(ids, method);
    for (int32_t rows = box.bottom - box.top; rows > 0; --rows) {
        if (walk0.row(box, s.tex[0])) {
            if constexpr (f.second())
                walk1.row(box, s.tex[1]);
            if constexpr (f.colours())
                colours.row(box, s);
            s.maskRow = rs.drawMask[maskRow & 15];
            if constexpr (f.map == Map::runs)
                drawRuns(painter, s, columns);
            else
                painter.draw(s, 0, columns);
            // These stand still on a row that is left out.
            ++maskRow;
            s.plane += pitch >> 4;
            if constexpr (f.map == Map::zeros)
                s.zeroMap += pitch >> 4;
            if constexpr (f.rule)
                s.ruleV.start += ruleStepV;
        }
        walk0.nextRow(s.tex[0]);
        if constexpr (f.second())
            walk1.nextRow(s.tex[1]);
        if constexpr (f.colours())
            colours.nextRow();
        s.dst += pitch;
        s.z += pitch;
    }
}

template <Frame f>
void drawRect(PartIds ids)
{
    if constexpr (hasBlock<f>) {
        // Most draws end here, without the stack and the registers that the painter takes.
        if (ids.entry && !ids.is(PartIds::isCustom) && !Method::findsWide()) {
            Box box;
            Span s;
            RowWalk<f, 0> walk0;
            RowWalk<f, 1> walk1;
            bool overlap;
            if (!startRect<f>(box, s, walk0, walk1, overlap))
                return;
            if (!overlap)
                return drawBlock<f>(ids, box, s, walk0);
        }
    }
    drawRows<f>(ids);
}

} // namespace ninefold
