// What draws each shape, for a code already taken apart.
#pragma once

#include "modes.h"
#include "pixel.h"

#include <ninefold/render_state.h>

namespace reference {

void drawLine(const Modes &modes, RenderState &state);
void drawRectangle(const Modes &modes, RenderState &state);
void drawTriangle(const Modes &modes, RenderState &state);

// Filters 2 and 5 of stretched and four-corner rectangles and of triangles: one level for the whole primitive.
void drawStretchedByLevel(const Modes &modes, RenderState &state);
void drawCornersByLevel(const Modes &modes, RenderState &state);
void drawTriangleByLevel(const Modes &modes, RenderState &state);

// A rectangle's corners with the origin added, in order, and cut to the clip rectangle.
struct Box {
    int32_t fullLeft, fullTop, width, height; // before clipping
    int32_t left, top, right, bottom; // after
    bool swapX, swapY; // vertex[0] was the right one, the lower one

    explicit Box(const RenderState &state);
    bool empty = false;
};

// A triangle's corners from top to bottom, among equal rows from left to right; with the origin added.
struct Corners {
    int top, mid, bot; // indices of vertices
    int32_t xT, yT, xM, yM, xB, yB;

    explicit Corners(const RenderState &state);
    // above or below the clip rectangle, or of no height
    bool rejected(const RenderState &state) const;
    // below 0: mid is left of the edge from top to bottom
    int32_t cross() const;
};

// The line-table form of filters 2 to 5: the level for one row, found from its segment. Fills the position of the row, its level,
// and the scratch fields that this filter writes.
SourceRow lineLevelSource(const Modes &modes, RenderState &state, int textureNumber, const LineTableRecord &record,
                          int32_t width);

} // namespace reference
