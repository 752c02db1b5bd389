// The rule rectangles that are called by name.
#include <ninefold/draw.h>

#include "kernels/kernel.h"
#include "kernels/rect/rect.h"

namespace ninefold {
namespace {

// The values are those of a stretched tex1.
struct TextureValues {
    static constexpr Frame frame{.walk = Walk::stretch, .multi = Multi::texture};
    const Box &box;
    RowWalk<frame, 1> walk;
    Second fetch = activeSets.any->seconds[int(Reading::point)][SecondKey{{Motion::row, Reading::point}, false}.index()];
    TextureValues(const Box &b, Span &s) : box(b) { walk.start(box, s.tex[1]); }
    void row() {}
    void get(const Span &s, int first, int n, Chunk &c) const
    {
        fetch(s, first, n, c);
        for (int k = 0; k < n; ++k)
            c.rules[k] = c.second[k] & 0xFF;
    }
    void nextRow(Span &s) { walk.nextRow(s.tex[1]); }
};

// The values run between the low bytes of the corner colours.
struct GradientValues {
    static constexpr Frame frame{.walk = Walk::stretch, .multi = Multi::none};
    const Box &box;
    EdgePair corners;
    Linear ramp;
    GradientValues(const Box &b, Span &) : box(b)
    {
        const auto corner = [](int k) { return (rs.color[k] & 0xFF) << 16; };
        corners.make({corner(0), corner(1), corner(2), corner(3)}, box.flippedX, box.flippedY, box);
    }
    void row() { ramp = corners.row(box); }
    void get(const Span &, int first, int n, Chunk &c) const
    {
        for (int k = 0; k < n; ++k)
            c.rules[k] = (ramp.start + ramp.step * uint32_t(first + k)) >> 16 & 0xFF;
    }
    void nextRow(Span &) { corners.nextRow(); }
};

// A stretched tex0 without transparent pixels, wiped in by the rule values that a Values puts into a chunk.
template <class Values>
void drawRuleRect()
{
    constexpr FrontKey point{{Motion::row, Reading::point}, Rule::none, Gate::none};
    constexpr BackKey copy{Marks::none, NINEFOLD_BLEND_COPY, false, true};
    const Front front = activeSets.any->fronts[int(Reading::point)][point.index()];
    const Back back = activeSets.any->backs[0][copy.index()];
    Box box;
    if (!box.make())
        return;
    Span s;
    const bool overlap = takeTextures<Values::frame>(s, targetOf(box.left, box.top, box.right, box.bottom, false));
    const int step = overlap ? 1 : Chunk::size, columns = box.right - box.left;
    RowWalk<Values::frame, 0> walk;
    walk.start(box, s.tex[0]);
    Values values(box, s);
    Chunk chunk;
    chunk.rule = chunk.rules;
    s.dst = rs.dstPixels + (size_t(uint32_t(box.top)) << rs.dstShift) + uint32_t(box.left);
    for (int32_t y = box.top; y < box.bottom; ++y) {
        values.row();
        for (int first = 0; first < columns; first += step) {
            const int n = columns - first < step ? columns - first : step;
            front(s, first, n, chunk);
            values.get(s, first, n, chunk);
            for (uint64_t &word : chunk.live)
                word = 0;
            for (int k = 0; k < n; ++k)
                chunk.live[k / 64] |= uint64_t(rs.ruleThreshold < int32_t(chunk.rules[k])) << (k & 63);
            back(s, first, n, chunk, nullptr);
        }
        walk.nextRow(s.tex[0]);
        values.nextRow(s);
        s.dst += rs.dstPitch;
    }
}

constexpr DrawFunc mixedKernel = ownKernel<codeOf(ruleRectangle(NINEFOLD_FILTER_MIP_BILINEAR))>();
constexpr DrawFunc bilinearKernel = ownKernel<codeOf(ruleRectangle(NINEFOLD_FILTER_BILINEAR))>();

} // namespace
} // namespace ninefold

using namespace ninefold;

void DrawRectTexRule(void) { drawRuleRect<TextureValues>(); }
void DrawRectGradRule(void) { drawRuleRect<GradientValues>(); }
void DrawRectGradRule_GEN_RULE_TEST(void) { mixedKernel(); }
void DrawRectGradRule_GEN_RULE_MIPMAP_TEST(void) { drawMipStretch(mixedKernel, bilinearKernel); }
