// Choice of a mip level: for a row of a line table, and for a whole primitive.
#include <algorithm>
#include <cmath>

#include "shapes.h"

namespace reference {

namespace {

struct Choice {
    bool found = false;
    uint32_t octave = 0; // 0 where none was found
    int32_t weight = 0; // of the level against the next smaller one
};

// The octave of a 16.16 density. The bounds wrap: above the 14th octave they turn negative, so that negative densities land in
// the last one.
Choice octaveOf(int32_t density)
{
    for (uint32_t octave = 0; octave < 16; ++octave) {
        const int32_t lower = shiftLeft(0x10000, octave);
        const int32_t upper = octave == 15 ? 0 : shiftLeft(0x10000, octave + 1);
        if (density >= lower && density < upper)
            return {true, octave, 255 - (density >> (octave + 8) & 255)};
    }
    return {};
}

// The last level is never the main one.
uint32_t levelOf(const Choice &choice, const Texture &texture)
{
    return choice.octave < texture.mipCount - 1 ? choice.octave : texture.mipCount - 2;
}

// Length of a segment in texels; both differences in whole texels.
int32_t lengthOf(int32_t u, int32_t v)
{
    const double horizontal = u;
    return static_cast<int32_t>(std::sqrt(static_cast<double>(mul(v, v)) + horizontal * horizontal));
}

int32_t segmentLength(TexCoord from, TexCoord to) { return lengthOf(whole(sub(to.u, from.u)), whole(sub(to.v, from.v))); }

} // namespace

SourceRow lineLevelSource(const Modes &modes, RenderState &state, int textureNumber, const LineTableRecord &record, int32_t width)
{
    const int32_t length = segmentLength({record.startU, record.startV}, {record.endU, record.endV});
    const Choice choice = octaveOf(divide(fromWhole(length), width));
    Texture &base = textureNumber == 0 ? *state.tex0 : *state.tex1;
    const uint32_t level = levelOf(choice, base);

    const bool writesWeight = textureNumber == 1 || modes.plane();
    if (choice.found && writesWeight)
        (textureNumber == 0 ? state.mipFrac : state.mipFrac1) = choice.weight;
    if (modes.filter == 2 || modes.filter == 5)
        (textureNumber == 0 ? state.mipTex : state.mipTex1) = base.mip[level + 1];

    SourceRow source;
    source.texture = base.mip[level];
    source.u = {record.startU >> level, divide(sub(record.endU, record.startU), width) >> level};
    source.v = {record.startV >> level, divide(sub(record.endV, record.startV), width) >> level};
    return source;
}

namespace {

// The level of `density` in the place of a texture and its coordinates.
void substitute(int32_t density, Texture *&texture, TexCoord (&uv)[4], int32_t &weight, Texture *&below)
{
    const Choice choice = octaveOf(density);
    if (choice.found)
        weight = choice.weight;
    const uint32_t level = levelOf(choice, *texture);
    below = texture->mip[level + 1];
    texture = texture->mip[level];
    for (TexCoord &corner : uv)
        corner = {corner.u >> level, corner.v >> level};
}

// Draws with `density` as the measure of a texture's coordinates: from the base texture with `direct`, or from a level.
template <typename Density, typename Direct, typename Draw>
void drawByLevel(RenderState &state, Density density, Direct direct, Draw drawShape, const Modes &modes)
{
    const int32_t density0 = density(state.uv0);
    if (modes.shape == triangle)
        state.mipRatio = density0;
    if (direct(density0)) {
        Modes plain = modes;
        plain.filter = modes.filter == 2 ? 0 : 1;
        drawShape(plain, state);
        return;
    }

    const RenderState saved = state;
    substitute(density0, state.tex0, state.uv0, state.mipFrac, state.mipTex);
    if (state.tex1 != nullptr)
        substitute(density(state.uv1), state.tex1, state.uv1, state.mipFrac1, state.mipTex1);
    drawShape(modes, state);
    state.tex0 = saved.tex0;
    state.tex1 = saved.tex1;
    std::copy(saved.uv0, saved.uv0 + 4, state.uv0);
    std::copy(saved.uv1, saved.uv1 + 4, state.uv1);
}

bool belowTwo(int32_t density) { return (static_cast<uint32_t>(density) & 0xFFFF0000) <= 0x10000; }

} // namespace

void drawStretchedByLevel(const Modes &modes, RenderState &state)
{
    const int32_t dx = sub(state.vertex[1].x, state.vertex[0].x);
    const int32_t dy = sub(state.vertex[1].y, state.vertex[0].y);
    if (dx == 0 || dy == 0)
        return;
    const auto density = [dx, dy](const TexCoord(&uv)[4]) {
        return std::min(magnitude(divide(sub(uv[1].u, uv[0].u), dx)), magnitude(divide(sub(uv[1].v, uv[0].v), dy)));
    };
    drawByLevel(state, density, belowTwo, drawRectangle, modes);
}

void drawCornersByLevel(const Modes &modes, RenderState &state)
{
    const int32_t dx = sub(state.vertex[1].x, state.vertex[0].x);
    const int32_t dy = sub(state.vertex[1].y, state.vertex[0].y);
    if (dx == 0 || dy == 0)
        return;
    const auto density = [dx, dy](const TexCoord(&uv)[4]) {
        return std::min(magnitude(divide(fromWhole(segmentLength(uv[0], uv[1])), dx)),
                        magnitude(divide(fromWhole(segmentLength(uv[0], uv[2])), dy)));
    };
    drawByLevel(state, density, belowTwo, drawRectangle, modes);
}

static int32_t rootOfArea(int32_t area) { return static_cast<int32_t>(std::sqrt(std::fabs(static_cast<double>(area)))); }

void drawTriangleByLevel(const Modes &modes, RenderState &state)
{
    const Corners corners(state);
    if (corners.rejected(state))
        return;
    const int32_t onScreen = rootOfArea(corners.cross());
    if (onScreen == 0)
        return;
    const auto density = [&corners, onScreen](const TexCoord(&uv)[4]) {
        const TexCoord &top = uv[corners.top], &mid = uv[corners.mid], &bot = uv[corners.bot];
        const int32_t area =
            sub(mul(whole(sub(bot.v, top.v)), whole(sub(mid.u, top.u))), mul(whole(sub(bot.u, top.u)), whole(sub(mid.v, top.v))));
        const uint32_t ratio = (static_cast<uint32_t>(rootOfArea(area)) << 16) / static_cast<uint32_t>(onScreen);
        return static_cast<int32_t>(ratio);
    };
    drawByLevel(
        state, density, [](int32_t value) { return value <= 0x10000; }, drawTriangle, modes);
}

} // namespace reference
