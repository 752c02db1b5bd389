// The exported rule rectangles: two simple ones, and two of the table's kind that have no code.
#include "rule_rectangles.h"

#include <utility>

#include "operators.h"
#include "shapes.h"

namespace reference {

namespace {

uint32_t wiped(const RenderState &state, uint32_t dst, uint32_t src, int32_t ruleValue)
{
    if (state.ruleThreshold >= ruleValue)
        return dst;
    if (add(state.ruleThreshold, state.ruleWidth) <= ruleValue)
        return src;
    return softEdge(state, dst, src, ruleValue);
}

// A texture stretched over the box, as its four bounds say.
struct Stretch {
    Ramp u, v;

    Stretch(TexCoord from, TexCoord to, const Box &box)
    {
        if (box.swapX)
            std::swap(from.u, to.u);
        if (box.swapY)
            std::swap(from.v, to.v);
        u = rampBetween(from.u, to.u, box.width);
        v = rampBetween(from.v, to.v, box.height);
    }

    uint32_t texel(const Texture &texture, int32_t x, int32_t y) const
    {
        return pointTexelRowToZero(texture, {u.at(x), v.at(y)});
    }
};

// tex0 stretched over the rectangle, wiped in by ruleAt(x, y); both count from the unclipped corner.
template <typename Rule>
void drawWiped(RenderState &state, const Box &box, Rule ruleAt)
{
    const Stretch picture(state.uv0[0], state.uv0[1], box);
    for (int32_t y = box.top; y < box.bottom; ++y)
        for (int32_t x = box.left; x < box.right; ++x) {
            const int32_t dx = sub(x, box.fullLeft), dy = sub(y, box.fullTop);
            uint32_t &destination = state.dstPixels[shiftLeft(y, state.dstShift) + x];
            const uint32_t source = picture.texel(*state.tex0, dx, dy);
            destination = wiped(state, destination, source, ruleAt(dx, dy));
        }
}

void drawRectTexRule(RenderState &state)
{
    const Box box(state);
    if (box.empty)
        return;
    const Stretch rule(state.uv1[0], state.uv1[1], box);
    drawWiped(state, box, [&](int32_t x, int32_t y) { return static_cast<int32_t>(rule.texel(*state.tex1, x, y) & 255); });
}

void drawRectGradRule(RenderState &state)
{
    const Box box(state);
    if (box.empty)
        return;
    int32_t corner[4];
    for (int i = 0; i < 4; ++i)
        corner[i] = fromWhole(static_cast<int32_t>(state.color[i] & 255));
    if (box.swapX) {
        std::swap(corner[0], corner[1]);
        std::swap(corner[2], corner[3]);
    }
    if (box.swapY) {
        std::swap(corner[0], corner[2]);
        std::swap(corner[1], corner[3]);
    }
    const Ramp left = rampBetween(corner[0], corner[2], box.height);
    const Ramp right = rampBetween(corner[1], corner[3], box.height);
    drawWiped(state, box,
              [&](int32_t x, int32_t y) { return rampBetween(left.at(y), right.at(y), box.width).at(x) >> 16 & 255; });
}

// Rule, four corners, plane walk, screen: a combination that the table does not hold.
Modes testKernel(int filter)
{
    Modes modes;
    modes.shape = rectangle;
    modes.multi = 3;
    modes.blend = 9;
    modes.shahei = 1;
    modes.option = 2;
    modes.filter = filter;
    modes.rule = true;
    return modes;
}

} // namespace

bool drawRuleRectangle(std::string_view name, RenderState &state)
{
    if (name == "DrawRectTexRule")
        drawRectTexRule(state);
    else if (name == "DrawRectGradRule")
        drawRectGradRule(state);
    else if (name == "DrawRectGradRule_GEN_RULE_TEST")
        drawRectangle(testKernel(5), state);
    else if (name == "DrawRectGradRule_GEN_RULE_MIPMAP_TEST")
        drawStretchedByLevel(testKernel(5), state); // the density of its first two corners decides
    else
        return false;
    return true;
}

} // namespace reference
