// The rule rectangles that are called by name.
#include <ninefold/draw.h>

#include "kernels/kernel.h"
#include "kernels/rect/rect.h"

namespace ninefold {
namespace {

// A stretched tex0 without transparent pixels, wiped in by the rule values that `values` puts into a chunk.
template <class Values>
void drawRuleRect(const Box &box, bool overlap, Span &s, Values &&values)
{
    const InstructionSet &set = *activeSets.any;
    const Front front = set.fronts[frontIndex(Fetch::pointRow, Rule::none, Gate::none)];
    const Back back = set.backs[0][backIndex(false, 0, true, Marks::none)];
    const int step = overlap ? 1 : Chunk::size;
    StretchWalk<0> walk;
    walk.start(box, s);
    Chunk chunk;
    s.dst = rs.dstPixels + (size_t(uint32_t(box.top)) << rs.dstShift) + uint32_t(box.left);
    for (int32_t y = box.top; y < box.bottom; ++y) {
        values.row(s);
        const int columns = box.right - box.left;
        for (int first = 0; first < columns; first += step) {
            const int n = columns - first < step ? columns - first : step;
            front(s, first, n, chunk);
            values.get(s, first, n, chunk);
            for (uint64_t &word : chunk.live)
                word = 0;
            for (int k = 0; k < n; ++k)
                chunk.live[k / 64] |= uint64_t(rs.ruleThreshold < int32_t(chunk.rule[k])) << (k & 63);
            back(s, first, n, chunk);
        }
        walk.nextRow(box, s);
        values.nextRow(s);
        s.dst += rs.dstPitch;
    }
}

struct TextureValues {
    const Box &box;
    StretchWalk<1> walk;
    Mid fetch = activeSets.any->seconds[int(Second::pointRow)];
    void row(Span &) {}
    void get(const Span &s, int first, int n, Chunk &c) const
    {
        fetch(s, first, n, c);
        for (int k = 0; k < n; ++k)
            c.rule[k] = c.second[k] & 0xFF;
    }
    void nextRow(Span &s) { walk.nextRow(box, s); }
};

struct GradientValues {
    const Box &box;
    Corners corners;
    Linear values;
    void row(Span &) { values = corners.row(box); }
    void get(const Span &, int first, int n, Chunk &c) const
    {
        for (int k = 0; k < n; ++k)
            c.rule[k] = (values.start + values.step * uint32_t(first + k)) >> 16 & 0xFF;
    }
    void nextRow(Span &) { corners.nextRow(); }
};

constexpr DrawFunc mixedKernel = ownKernel<codeOf(ruleRectangle(5))>();
constexpr DrawFunc bilinearKernel = ownKernel<codeOf(ruleRectangle(1))>();

} // namespace
} // namespace ninefold

using namespace ninefold;

void DrawRectTexRule(void)
{
    Box box;
    if (!box.make())
        return;
    Span s;
    s.tex0 = sourceOf(*rs.tex0), s.tex1 = sourceOf(*rs.tex1);
    const Target target = targetOf(box.left, box.top, box.right, box.bottom, false);
    TextureValues values{box, {}};
    values.walk.start(box, s);
    drawRuleRect(box, target.overlaps(s.tex0) || target.overlaps(s.tex1), s, values);
}

void DrawRectGradRule(void)
{
    Box box;
    if (!box.make())
        return;
    Span s;
    s.tex0 = sourceOf(*rs.tex0);
    const Target target = targetOf(box.left, box.top, box.right, box.bottom, false);
    GradientValues values{box, {}, {}};
    const auto corner = [](int k) { return (rs.color[k] & 0xFF) << 16; };
    values.corners.make(corner(0), corner(1), corner(2), corner(3), box.flippedX, box.flippedY, box);
    drawRuleRect(box, target.overlaps(s.tex0), s, values);
}

void DrawRectGradRule_GEN_RULE_TEST(void) { mixedKernel(); }
void DrawRectGradRule_GEN_RULE_MIPMAP_TEST(void) { drawMipStretch(mixedKernel, bilinearKernel); }

// Kernels of the table that have a name of their own.
void DrawRectTexRunlen_TEST(void) { ownKernel<0x188369>()(); }
void DrawLineTest(void) { ownKernel<0xFDA768>()(); }
void DrawPolygon_PERS_TEST(void) { ownKernel<0x81C036A>()(); }
