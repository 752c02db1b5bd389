// Rectangles of every rect option.
#include <algorithm>
#include <utility>

#include "shapes.h"

namespace reference {

Box::Box(const RenderState &state)
{
    const int32_t x0 = add(state.vertex[0].x, state.originX);
    const int32_t x1 = add(state.vertex[1].x, state.originX);
    const int32_t y0 = add(state.vertex[0].y, state.originY);
    const int32_t y1 = add(state.vertex[1].y, state.originY);
    swapX = x0 > x1;
    swapY = y0 > y1;
    fullLeft = std::min(x0, x1);
    fullTop = std::min(y0, y1);
    right = std::max(x0, x1);
    bottom = std::max(y0, y1);
    width = sub(right, fullLeft);
    height = sub(bottom, fullTop);
    empty = state.clipRight <= fullLeft || state.clipBottom <= fullTop || state.clipLeft >= right || state.clipTop >= bottom ||
            width == 0 || height == 0;
    left = std::max(fullLeft, state.clipLeft);
    top = std::max(fullTop, state.clipTop);
    right = std::min(right, state.clipRight);
    bottom = std::min(bottom, state.clipBottom);
}

namespace {

// One texture's way over the rectangle. Rows are counted from the unclipped top.
class Walk {
public:
    Walk(const Modes &drawModes, RenderState &drawState, const Box &drawBox, int number)
        : modes(drawModes), state(drawState), box(drawBox), textureNumber(number),
          texture(number == 0 ? drawState.tex0 : drawState.tex1), table(number == 0 ? drawState.lineTable0 : drawState.lineTable1)
    {
        const TexCoord(&given)[4] = number == 0 ? state.uv0 : state.uv1;
        TexCoord corner[4] = {given[0], given[1], given[2], given[3]};
        if (modes.option == 1) {
            if (box.swapX)
                std::swap(corner[0].u, corner[1].u);
            if (box.swapY)
                std::swap(corner[0].v, corner[1].v);
            leftU = rampBetween(corner[0].u, corner[1].u, box.width); // along the row
            leftV = rampBetween(corner[0].v, corner[1].v, box.height);
        } else if (modes.option == 2) {
            if (box.swapX) {
                std::swap(corner[0], corner[1]);
                std::swap(corner[2], corner[3]);
            }
            if (box.swapY) {
                std::swap(corner[0], corner[2]);
                std::swap(corner[1], corner[3]);
            }
            leftU = rampBetween(corner[0].u, corner[2].u, box.height);
            leftV = rampBetween(corner[0].v, corner[2].v, box.height);
            rightU = rampBetween(corner[1].u, corner[3].u, box.height);
            rightV = rampBetween(corner[1].v, corner[3].v, box.height);
        } else {
            leftU = {corner[0].u, 0x10000};
            leftV = {corner[0].v, 0x10000};
        }
    }

    SourceRow at(int32_t line) const
    {
        SourceRow source;
        source.texture = texture;
        if (modes.option == 2) {
            source.u = rampBetween(leftU.at(line), rightU.at(line), box.width);
            source.v = rampBetween(leftV.at(line), rightV.at(line), box.width);
        } else if (modes.option == 3) {
            const LineTableRecord &record = table[line];
            if (modes.filter >= 2 && modes.filter <= 5)
                return lineLevelSource(modes, state, textureNumber, record, box.width);
            source.u = rampBetween(record.startU, record.endU, box.width);
            source.v = rampBetween(record.startV, record.endV, box.width);
        } else {
            source.u = leftU;
            source.v = {leftV.at(line), 0};
        }
        return source;
    }

private:
    const Modes &modes;
    RenderState &state;
    const Box &box;
    const int textureNumber;
    const Texture *const texture;
    const LineTableRecord *const table;
    Ramp leftU, leftV, rightU, rightV;
};

// Four colours over the rectangle.
class Colours {
public:
    Colours(const Modes &modes, const RenderState &state, const Box &drawBox) : width(drawBox.width)
    {
        uint32_t corner[4] = {state.color[0], state.color[1], state.color[2], state.color[3]};
        // they follow the vertices where source positions do
        const bool follow = modes.option >= 1 && modes.option <= 3;
        if (follow && drawBox.swapX) {
            std::swap(corner[0], corner[1]);
            std::swap(corner[2], corner[3]);
        }
        if (follow && drawBox.swapY) {
            std::swap(corner[0], corner[2]);
            std::swap(corner[1], corner[3]);
        }
        const Channels topLeft(corner[0]), topRight(corner[1]), bottomLeft(corner[2]), bottomRight(corner[3]);
        for (int i = 0; i < 4; ++i) {
            left[i] = rampBetween(topLeft.value[i], bottomLeft.value[i], drawBox.height);
            right[i] = rampBetween(topRight.value[i], bottomRight.value[i], drawBox.height);
        }
    }

    void at(int32_t line, Ramp (&colour)[4]) const
    {
        for (int i = 0; i < 4; ++i)
            colour[i] = rampBetween(left[i].at(line), right[i].at(line), width);
    }

private:
    const int32_t width;
    Ramp left[4], right[4];
};

// Rect option 5: along the runs of the texture's map. A run of 128 zeros or more moves 128 columns back, because its length is
// negated in eight bits.
void drawRuns(const Modes &modes, const Texture &texture, const Box &box, Painter &painter)
{
    const SourceRow &source = painter.row.source[0];
    const int32_t line = wrapped(source.v.start >> 16, texture.height);
    const int8_t *const map = texture.runlengthMap + (static_cast<uint32_t>(line) << texture.log2Width);
    const bool slips = modes.rule && modes.shahei == 0;
    int32_t column = box.left;
    for (int32_t remaining = box.right - box.left; remaining > 0;) {
        const int32_t run = map[wrapped(source.u.at(column - box.fullLeft) >> 16, texture.width)];
        if (run < 0) {
            remaining += run;
            column += run == -128 ? -128 : -run;
            continue;
        }
        int32_t refused = 0;
        for (int32_t i = 0; i < std::min(run, remaining); ++i) {
            const Outcome outcome = painter.pixel(column + i, refused);
            if (outcome == Outcome::refusedByRule && slips)
                ++refused;
        }
        remaining -= run;
        column += run;
    }
}

} // namespace

void drawRectangle(const Modes &modes, RenderState &state)
{
    const Box box(state);
    if (box.empty)
        return;

    Painter painter(modes, state);
    Row &row = painter.row;
    row.origin = box.fullLeft;

    const Walk first(modes, state, box, 0);
    const Walk second(modes, state, box, 1);
    const Colours colours(modes, state, box);
    Ramp ruleV;
    if (modes.rule) {
        TexCoord from = state.uv2[0], to = state.uv2[1];
        if (box.swapX)
            std::swap(from.u, to.u);
        if (box.swapY)
            std::swap(from.v, to.v);
        row.ruleU = rampBetween(from.u, to.u, box.width);
        ruleV = rampBetween(from.v, to.v, box.height);
    }

    const int32_t firstPixel = shiftLeft(box.top, state.dstShift);
    int32_t drawnRows = 0; // mask, plane and rule stand still where the line table leaves a row out
    for (int32_t y = box.top; y < box.bottom; ++y) {
        const int32_t line = sub(y, box.fullTop);
        if (modes.option == 3 && state.lineTable0[line].startU == NINEFOLD_SKIP_ROW)
            continue;
        row.pixels = firstPixel + (y - box.top) * static_cast<int32_t>(state.dstPitch);
        row.plane = (firstPixel + box.left) / 16 + drawnRows * static_cast<int32_t>(state.dstPitch >> 4);
        row.mask = state.drawMask[(box.top + drawnRows) & 15];
        if (modes.rule)
            row.ruleV = {ruleV.at(sub(box.top + drawnRows, box.fullTop)), 0};
        if (modes.textured())
            row.source[0] = first.at(line);
        if (modes.multi == 0)
            row.source[1] = second.at(line);
        if (modes.hasColours())
            colours.at(line, row.colour);
        if (modes.option == 5)
            drawRuns(modes, *state.tex0, box, painter);
        else
            painter.span(box.left, box.right);
        ++drawnRows;
    }
}

} // namespace reference
