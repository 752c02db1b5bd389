// The rule test and the soft edge in kernels.
#include "support/canvas.h"
#include "support/levels.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

// The weight of the new pixel at a rule value above the threshold and below threshold + width.
uint32_t weightAt(int value, int threshold, int ruleWidth, int curve)
{
    uint32_t w = (static_cast<uint32_t>(value - threshold) << 8) / static_cast<uint32_t>(ruleWidth);
    if (curve == 1)
        w = 255 - ((255 - w) * (255 - w) >> 8);
    else if (curve == 2)
        w = w * w >> 8;
    return w;
}

class Rule : public Canvas {
protected:
    explicit Rule(unsigned w = 64, unsigned h = 32) : Canvas(w, h) {}

    void SetUp() override
    {
        Canvas::SetUp();
        rs.tex0 = equipped(index(64, 32));
        rs.tex1 = equipped(index(64, 32));
        rs.writeMask = 0xFFFFFFFF;
        std::fill_n(rs.color, 4, 0xFFABCDEFu);
    }

    // Every form with a rule; those of colours alone last.
    static std::vector<Modes> forms(int shahei = NINEFOLD_SHAHEI_NONE, int blend = NINEFOLD_BLEND_COPY)
    {
        std::vector<Modes> all = pointForms(shahei, blend);
        for (int shape : {NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_SHAPE_TRIANGLE})
            for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD})
                all.push_back({.shape = shape, .filter = filter, .shahei = shahei, .blend = blend});
        for (Modes &m : all)
            m.rule = NINEFOLD_RULE_ON;
        return all;
    }

    static bool isColours(const Modes &m) { return hasColoursOnly(m.filter); }
    static uint32_t sourceAt(const Modes &m, int x, int y) { return isColours(m) ? 0xFFABCDEF : idAt(uint32_t(x), uint32_t(y)); }

    // The slip of run-length rectangles is told in their own tests.
    static bool slips(const Modes &m) { return m.rectOpt == NINEFOLD_RECT_RUNS && m.shahei == NINEFOLD_SHAHEI_NONE; }
};

TEST_F(Rule, AThresholdOf255RefusesEverythingMinusOneNothing)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t v) { return (u * 5 + v * 3) & 255; });
    for (const Modes &m : forms()) {
        for (int threshold : {255, 256, 1000, INT32_MAX}) {
            rs.ruleThreshold = threshold;
            for (int ruleWidth : {0, 10}) {
                if (threshold == INT32_MAX && ruleWidth)
                    continue;
                rs.ruleWidth = ruleWidth;
                clear();
                place(m, 1, 1, 60, 30);
                draw(m);
                EXPECT_TRUE(untouched()) << m << " " << threshold;
            }
        }
        rs.ruleThreshold = -1, rs.ruleWidth = 0;
        clear();
        place(m, 1, 1, 60, 30);
        draw(m);
        for (int y = 1; y < 30; ++y)
            for (int x = 1; x < 60; ++x)
                ASSERT_EQ(at(x, y), sourceAt(m, x, y)) << m << " at " << x << ", " << y;
    }
}

TEST_F(Rule, TheThresholdItselfIsRefusedAndTheEndOfTheEdgeIsFull)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return 95 + u; }); // pixel x has the value 95 + x
    rs.ruleThreshold = 100, rs.ruleWidth = 8;
    for (const Modes &m : forms()) {
        if (slips(m))
            continue;
        clear();
        place(m, 0, 0, 30, 3);
        draw(m);
        EXPECT_EQ(at(5, 1), ground) << m; // 100
        EXPECT_NE(at(6, 1), ground) << m;
        EXPECT_EQ(at(6, 1) >> 24, 0u) << m; // soft
        EXPECT_EQ(at(12, 1) >> 24, 0u) << m;
        EXPECT_EQ(at(13, 1), sourceAt(m, 13, 1)) << m; // 108
    }
}

TEST_F(Rule, WithoutAWidthTheEdgeIsHard)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return 95 + u; });
    rs.ruleThreshold = 100;
    for (const Modes &m : forms()) {
        if (slips(m))
            continue;
        for (int ruleWidth : {0, 1, -1, -1000}) { // 1 holds no value either
            rs.ruleWidth = ruleWidth;
            clear();
            place(m, 0, 0, 30, 3);
            draw(m);
            for (int x = 0; x < 30; ++x)
                ASSERT_EQ(at(x, 1), x <= 5 ? ground : sourceAt(m, x, 1)) << m << " width " << ruleWidth << " at " << x;
        }
    }
}

TEST_F(Rule, HalfwayInAnEdgeOfTwoTheWeightIsAHalf)
{
    // Threshold 100, width 2, value 101: 128. (0xAB * 128 + 0x22 * 127) / 256 = 102 and so on; alpha 0.
    rs.tex2 = solid(101);
    rs.ruleThreshold = 100, rs.ruleWidth = 2;
    for (const Modes &m : forms()) {
        clear();
        place(m, 0, 0, 8, 8);
        rs.tex0 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0xFFABCDEF; }));
        draw(m);
        EXPECT_EQ(at(2, 2), 0x00667F99u) << m;
    }
}

TEST_F(Rule, FullPixelsKeepTheirAlphaSoftOnesHaveNone)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return u % 2 ? 250u : 150u; });
    rs.ruleThreshold = 100, rs.ruleWidth = 100;
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE}) {
        for (const Modes &m : forms(shahei)) {
            wipe();
            place(m, 0, 0, 30, 8);
            draw(m);
            for (int x = 0; x < 30; ++x)
                EXPECT_EQ(at(x, 2) >> 24, x % 2 ? 0xFFu : 0u) << m;
        }
    }
}

TEST_F(Rule, OnlyTheLowByteOfARuleTexelCounts)
{
    Texture *clean = texture(64, 32, [](uint32_t u, uint32_t v) { return (u * 5 + v * 3) & 255; });
    Texture *dirty = texture(
        64, 32, [](uint32_t u, uint32_t v) { return ((u * 5 + v * 3) & 255) | (0x9E3779B9 * (u + 64 * v + 1) & 0xFFFFFF00); });
    rs.ruleThreshold = 90, rs.ruleWidth = 60;
    for (const Modes &m : forms()) {
        rs.tex2 = clean;
        clear();
        place(m, 0, 0, 60, 30);
        draw(m);
        const State expected = state();
        rs.tex2 = dirty;
        clear();
        draw(m);
        EXPECT_EQ(state().pixels, expected.pixels) << m;
    }
}

TEST_F(Rule, CoordinatesTruncateTowardZero)
{
    // Only column 0 (row 0) passes. A raw -1 is in it, and so is everything down to -0xFFFF; -0x10000 is in the last one.
    rs.ruleThreshold = 10;
    for (const Modes &m : forms()) {
        for (bool inU : {true, false}) {
            rs.tex2 = texture(16, 16, [&](uint32_t u, uint32_t v) { return (inU ? u : v) == 0 ? 255u : 0u; });
            for (const auto &[start, passes] : {std::pair{0, true},
                                                {-1, true},
                                                {-0x8000, true},
                                                {-0xFFFF, true},
                                                {-0x10000, false},
                                                {0xFFFF, true},
                                                {0x10000, false}}) {
                clear();
                place(m, 0, 0, 1, 1);
                for (int k = 0; k < 3; ++k)
                    rs.uv2[k] = inU ? TexCoord{start, 0} : TexCoord{0, start};
                draw(m);
                EXPECT_EQ(at(0, 0), passes ? sourceAt(m, 0, 0) : ground) << m << (inU ? " u " : " v ") << start;
            }
        }
    }
}

TEST_F(Rule, OnNegativePositionsTheSourcesColumnFloorsAndTheRulesTruncates)
{
    rs.tex2 = texture(16, 1, [](uint32_t u, uint32_t) { return u == 0 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    corners(0, 0, 4, 1);
    rs.uv0[0] = {-texels(2) + 0x8000, 0}, rs.uv0[1] = {texels(2) + 0x8000, 0};
    rs.uv2[0] = {-texels(2) + 0x8000, 0}, rs.uv2[1] = {texels(2) + 0x8000, 0};
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_STRETCH});
    // -1.5, -0.5, 0.5, 1.5: the rule's columns are -1, 0, 0, 1, the source's -2, -1, 0, 1.
    EXPECT_EQ(row(0, 0, 4), (Pixels{ground, idAt(63, 0), idAt(0, 0), ground}));
}

TEST_F(Rule, LiesAlongTheAxesOfARectangleInEveryRectOption)
{
    // uv2[0] to uv2[1] from corner to corner; [2] and [3] are not read. Steps truncate: 20 texels over 48 columns, 11 over 24
    // rows.
    rs.tex2 = texture(32, 32, [](uint32_t u, uint32_t v) { return (u + v) % 2 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    for (const Modes &m : forms()) {
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE || slips(m))
            continue;
        for (const bool clipped : {false, true}) {
            clear();
            place(m, 6, 3, 54, 27);
            rs.uv2[0] = {0x12345, 0x23456}, rs.uv2[1] = {0x12345 + texels(20), 0x23456 + texels(11)};
            rs.uv2[2] = rs.uv2[3] = {0x7FFFFFFF, -1};
            if (clipped)
                clip(11, 8, 49, 20);
            draw(m);
            const int du = texels(20) / 48, dv = texels(11) / 24;
            for (int y = rs.clipTop; y < std::min(rs.clipBottom, 27); ++y) {
                for (int x = rs.clipLeft; x < std::min(rs.clipRight, 54); ++x) {
                    const bool inside = x >= 6 && y >= 3;
                    const bool passes = inside && (((0x12345 + du * (x - 6)) / 65536 + (0x23456 + dv * (y - 3)) / 65536) & 1);
                    ASSERT_EQ(at(x, y), passes ? sourceAt(m, x, y) : ground) << m << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST_F(Rule, FollowsReversedCornersAlsoWhereTheSourceDoesNot)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t v) { return u == 3 && v == 2 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    for (const Modes &m : forms()) {
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE || slips(m))
            continue;
        for (int flip = 0; flip < 4; ++flip) {
            clear();
            place(m, 8, 4, 24, 12);
            corners(flip & 1 ? 24 : 8, flip & 2 ? 12 : 4, flip & 1 ? 8 : 24, flip & 2 ? 4 : 12);
            // From vertex[0] on a texel a pixel; towards it from the other side, the first column stands at uv2[1].
            rs.uv2[0] = {0, 0}, rs.uv2[1] = {texels(16), texels(8)};
            draw(m);
            const int x = flip & 1 ? 24 - 3 : 8 + 3, y = flip & 2 ? 12 - 2 : 4 + 2;
            EXPECT_EQ(drawnCount(), 1) << m << " flip " << flip;
            EXPECT_NE(at(x, y), ground) << m << " flip " << flip;
            // With the coordinates exchanged as well it is the unreversed picture again.
            clear();
            rs.uv2[0] = {flip & 1 ? texels(16) : 0, flip & 2 ? texels(8) : 0};
            rs.uv2[1] = {flip & 1 ? 0 : texels(16), flip & 2 ? 0 : texels(8)};
            draw(m);
            EXPECT_EQ(drawnCount(), 1) << m << " flip " << flip;
            EXPECT_NE(at(11, 6), ground) << m << " flip " << flip;
        }
    }
}

TEST_F(Rule, StandsBeforeAllOtherTests)
{
    // Nothing is asked of a refused pixel: operators are not called, planes not written, and gates cut what is left.
    static int calls;
    rs.multiFunc = [](uint32_t first, uint32_t) {
        ++calls;
        return first;
    };
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return u % 3 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    std::fill_n(rs.drawMask, 16, uint16_t{0x1111}); // 3 of four
    rs.zRef = 5;
    for (int shahei : shaheis) {
        for (Modes m : forms(shahei, testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY)) {
            if (isColours(m) || slips(m) || (m.shape == NINEFOLD_SHAPE_TRIANGLE && m.filter == NINEFOLD_FILTER_MIP))
                continue;
            m.multi = NINEFOLD_MULTI_COLOUR;
            wipe();
            for (size_t k = 0; k < z.size(); ++k)
                z[k] = k % 5 ? 5 : 4;
            place(m, 0, 0, 60, 1);
            int expected = 0;
            for (int x = 0; x < 60; ++x) {
                const bool mask = shahei != NINEFOLD_SHAHEI_NONE && shahei != NINEFOLD_SHAHEI_PRIORITY && x % 4 == 3,
                           low = (testsPriority(shahei)) && x % 5 == 0;
                expected += x % 3 && !mask && !low;
            }
            underEverySet([&] {
                calls = 0;
                kernel(m)();
                EXPECT_EQ(calls, expected) << m;
            });
            EXPECT_EQ(drawnCount(), expected) << m;
        }
    }
}

TEST_F(Rule, RefusedPixelsStayFreeInThePlanes)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t v) { return (u + v) % 3 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    rs.zRef = 0x66;
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (const Modes &m : forms(shahei)) {
            if (m.shape == NINEFOLD_SHAPE_RECTANGLE && isColours(m))
                continue;
            wipe();
            place(m, 3, 2, 60, 30);
            draw(m);
            for (int y = 2; y < 30; ++y) {
                for (int x = 3; x < 60; ++x) {
                    const bool drawn = (x + y) % 3;
                    ASSERT_EQ(at(x, y) != ground, drawn) << m;
                    ASSERT_EQ(taken(x, y), drawn) << m << " at " << x << ", " << y;
                    ASSERT_EQ(zAt(x, y), drawn && shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x66 : 0) << m;
                }
            }
        }
    }
}

TEST_F(Rule, ColourRectanglesMarkTheWholeRunAlsoWhatIsRefused)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t v) { return (u + v) % 3 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    rs.zRef = 0x66;
    std::fill_n(rs.drawMask, 16, uint16_t{0x0100}); // what the stipple holds back is in no run
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
            for (int prescale : {0, 1}) {
                const Modes m{.rule = NINEFOLD_RULE_ON, .prescale = prescale, .filter = filter, .shahei = shahei};
                for (int threshold : {10, 255}) { // refusing some, and all
                    rs.ruleThreshold = threshold;
                    wipe();
                    plane[4 * 5 + 1] = 0x00F0;
                    place(m, 3, 2, 60, 30);
                    draw(m);
                    for (int y = 0; y < 32; ++y) {
                        for (int x = 0; x < 64; ++x) {
                            const bool was = y == 5 && x >= 24 && x < 28,
                                       inRun = x >= 3 && x < 60 && y >= 2 && y < 30 && x % 16 != 7 && !was;
                            ASSERT_EQ(at(x, y) != ground, inRun && (x + y) % 3 && threshold == 10)
                                << m << " at " << x << ", " << y;
                            ASSERT_EQ(taken(x, y), was || inRun) << m << " at " << x << ", " << y;
                            ASSERT_EQ(zAt(x, y), inRun && shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x66 : 0) << m;
                        }
                    }
                }
            }
        }
    }
}

TEST_F(Rule, SkippedRunsStepTheRulesColumnByMultiplication)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return u % 2 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    for (const Modes &m : forms(NINEFOLD_SHAHEI_PLANE)) {
        wipe();
        for (size_t y = 0; y < 32; ++y)
            plane[4 * y] = 0x3FFC, plane[4 * y + 1] = 0xFFFF, plane[4 * y + 2] = 0x8001;
        place(m, 1, 0, 63, 20);
        rs.uv2[0].u /= 2, rs.uv2[1].u /= 2; // two pixels a column
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE)
            rs.uv2[2].u /= 2;
        const bool wholeRun = m.shape == NINEFOLD_SHAPE_RECTANGLE && isColours(m);
        draw(m);
        for (int x = 1; x < 63; ++x) {
            const int bits[] = {0x3FFC, 0xFFFF, 0x8001, 0};
            const bool was = bits[x / 16] >> (15 - x % 16) & 1, passes = x / 2 % 2;
            EXPECT_EQ(at(x, 3), !was && passes ? sourceAt(m, x, 3) : ground) << m << " at " << x;
            EXPECT_EQ(taken(x, 3), was || passes || wholeRun) << m << " at " << x;
        }
    }
}

TEST_F(Rule, WithRectOptionFiveTheFirstPixelThatPassesTakesTheFirstTexelOfItsRun)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return u == 10 ? 0u : 255u; });
    rs.ruleThreshold = 10;
    const Modes m{.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS};
    place(m, 10, 4, 20, 5);
    draw(m);
    EXPECT_EQ(row(4, 10, 13), (Pixels{ground, idAt(10, 4), idAt(11, 4)}));
    // Not so under gates.
    clear();
    Modes gated = m;
    gated.shahei = NINEFOLD_SHAHEI_STIPPLE;
    draw(gated);
    EXPECT_EQ(row(4, 10, 13), (Pixels{ground, idAt(11, 4), idAt(12, 4)}));
}

TEST_F(Rule, MipFormsKeepTheRuleTextureAndItsCoordinates)
{
    rs.tex2 = texture(16, 16, [](uint32_t u, uint32_t) { return u % 2 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    corners(0, 0, 8, 8);
    rs.uv2[0] = {0, 0}, rs.uv2[1] = {texels(8), texels(8)};
    for (int rectOpt : {NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS}) {
        for (int filter : {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR}) {
            clear();
            rs.uv0[0] = {0, 0};
            rs.uv0[1] = {texels(32), rectOpt == NINEFOLD_RECT_STRETCH ? texels(24) : 0};
            rs.uv0[2] = {0, texels(24)}, rs.uv0[3] = {texels(32), texels(24)};
            draw({.rule = NINEFOLD_RULE_ON, .filter = filter, .rectOpt = rectOpt});
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(at(x, 5) != ground, x % 2 == 1) << filter << " " << rectOpt << " at " << x;
        }
    }
}

// The soft edge for all rule values.
class SoftEdge : public Rule {
protected:
    SoftEdge() : Rule(256, 4) {}

    void SetUp() override
    {
        Rule::SetUp();
        rs.writeMask = 0xFFFFFFFF;
        rs.tex2 = texture(256, 1, [](uint32_t u, uint32_t) { return u; });
        rs.tex0 = texture(256, 1, [](uint32_t u, uint32_t) { return 0xFF000000 | u * 0x9E3779 | 1; });
        CreateRunlengthMap(rs.tex0);
        corners(0, 0, 256, 1);
        rs.uv0[1] = rs.uv2[1] = {texels(256), texels(1)};
        for (uint32_t x = 0; x < 256; ++x)
            at(int(x), 0) = 0x77000000 | (x * 0x51ED27 & 0xFFFFFF);
    }
};

TEST_F(SoftEdge, TheCurvesRunAsTheyShould)
{
    // Weights at 0, 64, 128, 192, 255 of 256.
    const int values[] = {0, 64, 128, 192, 255}, one[] = {1, 113, 192, 240, 255}, two[] = {0, 16, 64, 144, 254};
    for (int k = 0; k < 5; ++k) {
        EXPECT_EQ(weightAt(values[k], 0, 256, 0), uint32_t(values[k]));
        EXPECT_EQ(weightAt(values[k], 0, 256, 1), uint32_t(one[k]));
        EXPECT_EQ(weightAt(values[k], 0, 256, 2), uint32_t(two[k]));
    }
}

TEST_F(SoftEdge, EveryValueHasItsWeightUnderEveryCurveThresholdAndWidth)
{
    const State before = state();
    std::mt19937 random(101);
    std::vector<std::pair<int, int>> edges = {{-1, 256},
                                              {-1, 255},
                                              {-1, 257},
                                              {0, 255},
                                              {0, 2},
                                              {100, 2},
                                              {100, 3},
                                              {253, 2},
                                              {-1, 2},
                                              {10, 1000000},
                                              {10, INT32_MAX - 300},
                                              {-1000000, 1000100},
                                              {-256, 300},
                                              {-16777000, 16777100},
                                              {100 - (77 << 15), 0x800000}, // steps from 76 to 77 between values 99 and 100
                                              {101 - (77 << 15), 0x800000},
                                              {-30000000, 30000200}}; // the last wraps in its shift
    for (int k = 0; k < 200 / thin; ++k)
        edges.emplace_back(static_cast<int>(random() % 300) - 40, 1 + static_cast<int>(random() % 400));
    for (int set = 0; set < ninefold::usableSets(); ++set) {
        ninefold::useSet(set);
        const DrawFunc stretch = kernel({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_STRETCH});
        for (const auto &[threshold, ruleWidth] : edges) {
            for (int curve : {0, 1, 2, 3, -1, 1000}) {
                restore(before);
                rs.ruleThreshold = threshold, rs.ruleWidth = ruleWidth, rs.ruleCurve = curve;
                stretch();
                for (int m = 0; m < 256; ++m) {
                    const uint32_t d = before.pixels[size_t(m)], s = rs.tex0->pixels[m];
                    const uint32_t expected = threshold >= m ? d
                                              : threshold + ruleWidth > m
                                                  ? levels::mix3(s, d, weightAt(m, threshold, ruleWidth, curve))
                                                  : s;
                    ASSERT_EQ(at(m, 0), expected) << "value " << m << " threshold " << threshold << " width " << ruleWidth
                                                  << " curve " << curve << " " << ninefold::setNames[set];
                }
            }
        }
    }
}

TEST_F(SoftEdge, MixesTheBlendedPixelWithTheDestinationAsItStood)
{
    // Threshold -1 and width 256 give weight value + 1 for 0 to 254: at 127 128, a half each.
    rs.ruleThreshold = -1, rs.ruleWidth = 256;
    static std::vector<std::pair<uint32_t, uint32_t>> seen;
    rs.blendFunc = [](uint32_t destination, uint32_t source) {
        seen.emplace_back(destination, source);
        return destination ^ source;
    };
    const State before = state();
    seen.clear();
    kernel({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_STRETCH, .blend = NINEFOLD_BLEND_CUSTOM})();
    ASSERT_EQ(seen.size(), 256u);
    for (uint32_t m = 0; m < 256; ++m) {
        const uint32_t d = before.pixels[m], s = rs.tex0->pixels[m];
        EXPECT_EQ(seen[m], std::pair(d, s));
        EXPECT_EQ(at(int(m), 0), m == 255 ? d ^ s : levels::mix3(d ^ s, d, m + 1)) << m;
    }
    // Blend 9 over 11223344 of C0A06020 is FFAD815D; a half of it: (0xAD * 128 + 0x22 * 127) / 256 = 103, 0x59, 0x50.
    Texture *rule = rs.tex2;
    rs.tex2 = solid(127);
    rs.tex0 = texture(256, 1, [](uint32_t, uint32_t) { return 0xC0A06020; });
    clear();
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_STRETCH, .blend = NINEFOLD_BLEND_SCREEN});
    EXPECT_EQ(at(3, 0), 0x00675950u);
    rs.tex2 = rule;
}

TEST_F(SoftEdge, IsTheSameInEveryFormThatReachesIt)
{
    rs.ruleThreshold = 30, rs.ruleWidth = 170, rs.ruleCurve = NINEFOLD_CURVE_FAST;
    const State before = state();
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_STRETCH});
    const State expected = state();
    restore(before);
    for (const Modes &m : {Modes{.rule = NINEFOLD_RULE_ON}, Modes{.rule = NINEFOLD_RULE_ON, .filter = NINEFOLD_FILTER_MOSAIC},
                           Modes{.rule = NINEFOLD_RULE_ON, .shahei = NINEFOLD_SHAHEI_STIPPLE},
                           Modes{.rule = NINEFOLD_RULE_ON, .shahei = NINEFOLD_SHAHEI_PLANE},
                           Modes{.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS, .shahei = NINEFOLD_SHAHEI_STIPPLE}}) {
        restore(before);
        rs.ruleThreshold = 30, rs.ruleWidth = 170, rs.ruleCurve = NINEFOLD_CURVE_FAST;
        draw(m);
        EXPECT_EQ(state().pixels, expected.pixels) << m;
    }
}

} // namespace
