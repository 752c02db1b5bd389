// Run-length rectangles: rect option 5 by the run-length map, rect option 6 by the zero-pixel map beside the Shahei plane.
#include "support/canvas.h"

#include <gtest/gtest.h>

#include <utility>

using namespace canvas;

namespace {

class RunLength : public Canvas {
protected:
    RunLength() : Canvas(2048, 8) {}

    // Every form of rect option 5 that ends in a copy; blends by writeMask stand in where blend 0 has none.
    static std::vector<Modes> forms(int multi = NINEFOLD_MULTI_NONE)
    {
        rs.writeMask = 0xFFFFFFFF;
        std::vector<Modes> all;
        for (int shahei :
             {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE})
            all.push_back({.rectOpt = NINEFOLD_RECT_RUNS,
                           .shahei = shahei,
                           .blend = shahei == NINEFOLD_SHAHEI_NONE || shahei == NINEFOLD_SHAHEI_STIPPLE ? 0 : 11,
                           .multi = multi});
        return all;
    }

    // A texture of one row whose zeros are holes, with its map.
    template <class IsHole>
    Texture *holed(unsigned w, IsHole &&isHole)
    {
        Texture *t = texture(w, 1, [&](uint32_t u, uint32_t v) { return isHole(static_cast<int>(u)) ? 0 : idAt(u, v); });
        CreateRunlengthMap(t);
        return t;
    }
};

TEST_F(RunLength, AFullRowIsReadInStretchesOfAtMost127)
{
    rs.tex0 = holed(1024, [](int) { return false; });
    corners(0, 0, 1024, 1);
    for (const Modes &m : forms()) {
        clear();
        draw(m);
        for (int x = 0; x < 1024; ++x)
            ASSERT_EQ(at(x, 0), idAt(uint32_t(x), 0)) << m;
        EXPECT_EQ(at(1024, 0), ground);
    }
    // The slip of a rule shows where stretches begin. The rule stops pixel 0 alone: the first 127 pixels read one texel further
    // back.
    rs.tex2 = texture(1024, 1, [](uint32_t u, uint32_t) { return u == 0 ? 0u : 255u; });
    rs.uv2[1] = {texels(1024), texels(1)};
    clear();
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS});
    EXPECT_EQ(at(0, 0), ground);
    for (int x = 1; x < 127; ++x)
        ASSERT_EQ(at(x, 0), idAt(uint32_t(x - 1), 0));
    for (int x = 127; x < 1024; ++x)
        ASSERT_EQ(at(x, 0), idAt(uint32_t(x), 0));
}

TEST_F(RunLength, AStartInsideAStretchReadsTheRestOfIt)
{
    rs.tex0 = holed(64, [](int u) { return u >= 20 && u < 30; });
    for (const Modes &m : forms()) {
        // In a run, by the position and by the clip; and in a hole.
        rs.uv0[0] = {texels(13), 0};
        corners(100, 0, 120, 1);
        clear();
        draw(m);
        EXPECT_EQ(row(0, 99, 108), (Pixels{ground, idAt(13, 0), idAt(14, 0), idAt(15, 0), idAt(16, 0), idAt(17, 0), idAt(18, 0),
                                           idAt(19, 0), ground}));
        EXPECT_EQ(row(0, 116, 121), (Pixels{ground, idAt(30, 0), idAt(31, 0), idAt(32, 0), ground}));
        const State whole = state();
        clear();
        rs.clipLeft = 104;
        draw(m);
        rs.clipLeft = 0;
        EXPECT_EQ(row(0, 99, 104), Pixels(5, ground));
        for (size_t x = 104; x < 121; ++x)
            EXPECT_EQ(at(int(x), 0), whole.pixels[x]) << m;
        clear();
        rs.uv0[0] = {texels(25), 0};
        draw(m);
        EXPECT_EQ(row(0, 99, 107), (Pixels{ground, ground, ground, ground, ground, ground, idAt(30, 0), idAt(31, 0)}));
    }
}

TEST_F(RunLength, RectanglesWiderThanTheTextureWrapAtTheStretchBoundary)
{
    rs.tex0 = holed(16, [](int u) { return u == 3 || u == 4 || u == 15; });
    rs.uv0[0] = {texels(-2), 0}; // column 14
    corners(7, 2, 60, 3);
    for (const Modes &m : forms()) {
        clear();
        draw(m);
        for (int x = 7; x < 60; ++x) {
            const uint32_t u = uint32_t(x - 7 + 14) & 15;
            ASSERT_EQ(at(x, 2), u == 3 || u == 4 || u == 15 ? ground : idAt(u, 0)) << m << " at " << x;
        }
        EXPECT_TRUE(groundOutside(7, 2, 60, 3));
    }
}

TEST_F(RunLength, RunsEndAtTheLastColumnOfTheirRow)
{
    // Rows of the texture that are full would be one run of the pixel store.
    rs.tex0 = texture(8, 4, idAt);
    CreateRunlengthMap(rs.tex0);
    corners(0, 0, 24, 6);
    for (const Modes &m : forms()) {
        clear();
        draw(m);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 24; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(x) & 7, uint32_t(y) & 3)) << m;
    }
}

TEST_F(RunLength, AStretchLongerThanWhatRemainsEndsTheRow)
{
    rs.tex0 = holed(256, [](int u) { return u >= 40 && u < 60; });
    for (const Modes &m : forms()) {
        clear();
        corners(5, 1, 15, 3); // inside a run of 40
        draw(m);
        EXPECT_EQ(row(1, 13, 17), (Pixels{idAt(8, 0), idAt(9, 0), ground, ground})) << m;
        EXPECT_TRUE(groundOutside(5, 1, 15, 3));
        clear();
        corners(5, 1, 50, 3); // inside the hole behind it
        draw(m);
        EXPECT_EQ(row(1, 43, 47), (Pixels{idAt(38, 0), idAt(39, 0), ground, ground})) << m;
        EXPECT_TRUE(groundOutside(5, 1, 45, 3));
        clear();
        rs.clipRight = 12; // the clip cuts the run
        draw(m);
        rs.clipRight = 2048;
        EXPECT_TRUE(groundOutside(5, 1, 12, 3)) << m;
        EXPECT_EQ(at(11, 2), idAt(6, 0)) << m;
    }
}

TEST_F(RunLength, AHoleOf127IsSkippedAsItStands)
{
    rs.tex0 = holed(512, [](int u) { return u >= 10 && u < 137; });
    corners(300, 0, 500, 1);
    for (const Modes &m : forms()) {
        clear();
        draw(m);
        for (int x = 300; x < 500; ++x) {
            const int u = x - 300;
            ASSERT_EQ(at(x, 0), u >= 10 && u < 137 ? ground : idAt(uint32_t(u), 0)) << m << " at " << u;
        }
        EXPECT_TRUE(groundOutside(300, 0, 500, 1));
    }
}

// A hole of 200 at columns 10 to 209 of 512, drawn 300 wide from column 0. After ten pixels the map says -128: 162 remain, and
// the row goes on at pixel -118, column 10 - 128 = 394. From there 118 texels reach the texture's end (118 is the map's byte), 44
// remain; then the ten of the start once more, 34 remain; then the hole again, which ends the row.
TEST_F(RunLength, AHoleOf128OrMoreMovesBack)
{
    rs.tex0 = holed(512, [](int u) { return u >= 10 && u < 210; });
    for (const Modes &m : forms()) {
        for (int clipLeft : {0, 350}) { // taken literally, also left of the clip rectangle
            corners(350, 2, 650, 3);
            rs.clipLeft = clipLeft;
            clear();
            draw(m);
            for (int x = 0; x < 2048; ++x) {
                uint32_t expected = ground;
                if (x >= 350 - 118 && x < 350)
                    expected = idAt(uint32_t(394 + x - 232), 0);
                else if (x >= 350 && x < 360)
                    expected = idAt(uint32_t(x - 350), 0);
                ASSERT_EQ(at(x, 2), expected) << m << " at " << x;
            }
        }
        rs.clipLeft = 0;
        // Exactly 128 moves back as well: there 138 is the column behind the hole.
        Texture *longer = rs.tex0;
        rs.tex0 = holed(512, [](int u) { return u >= 10 && u < 138; });
        clear();
        draw(m);
        EXPECT_EQ(at(350 - 118, 2), idAt(394, 0)) << m;
        EXPECT_EQ(at(488, 2), ground) << m;
        rs.tex0 = longer;
    }
}

// A second texture in the pixels before the row, each of its texels one pixel behind the pixel that it is for: where the row
// moves back over it, what was drawn last is read next. The hole is in row 1 of two.
TEST_F(RunLength, WhatARowThatMovesBackDrawsOverIsReadAsItGrows)
{
    rs.tex0 = texture(512, 2, [](uint32_t u, uint32_t v) { return v == 1 && u >= 10 && u < 210 ? 0 : idAt(u, v); });
    CreateRunlengthMap(rs.tex0);
    rs.uv0[0] = {0, texels(1)};
    rs.tex1 = texture(256, 1);
    rs.uv1[0] = {texels(-1), 0};
    uint32_t *const own = std::exchange(rs.tex1->pixels, &at(44, 2));
    corners(300, 2, 600, 3);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    for (const Modes &m : forms(NINEFOLD_MULTI_TEXTURE)) {
        clear();
        at(181, 2) = 0x123456;
        draw(m);
        int x = 182;
        while (x < 300 && (at(x, 2) & 0xFFFFFF) == 0x123456)
            ++x;
        EXPECT_EQ(x, 300) << m;
    }
    rs.tex1->pixels = own;
}

TEST_F(RunLength, ThePositionsBesideTheTextureMoveWithTheHoles)
{
    rs.tex0 = holed(64, [](int u) { return u % 10 >= 4; });
    rs.tex1 = texture(256, 1, [](uint32_t u, uint32_t) { return 0x100 + u; });
    corners(20, 1, 60, 2);
    std::fill_n(rs.drawMask, 16, uint16_t{0x0101}); // pixels 7 and 15
    for (const Modes &m : forms(NINEFOLD_MULTI_TEXTURE)) {
        clear();
        for (int x = 0; x < 2048; ++x)
            zAt(x, 1) = x == 31 || x == 41 ? 3 : 4;
        rs.zRef = 4;
        draw(m);
        for (int x = 20; x < 60; ++x) {
            bool drawn = (x - 20) % 10 < 4;
            if (m.shahei >= NINEFOLD_SHAHEI_STIPPLE && x % 8 == 7)
                drawn = false;
            if ((testsPriority(m.shahei)) && (x == 31 || x == 41))
                drawn = false;
            ASSERT_EQ(at(x, 1), drawn ? 0xFF000100 + uint32_t(x - 20) : ground) << m << " at " << x;
        }
    }
}

TEST_F(RunLength, CornerColoursMoveWithTheHoles)
{
    rs.tex0 = holed(64, [](int u) { return u % 10 >= 4; });
    rs.color[1] = rs.color[3] = 200; // 4 a pixel over 50
    corners(20, 1, 70, 2);
    for (const Modes &m : forms(NINEFOLD_MULTI_CORNERS)) {
        clear();
        rs.zRef = 0;
        draw(m);
        for (int x = 20; x < 70; ++x)
            ASSERT_EQ(at(x, 1), (x - 20) % 10 < 4 && x - 20 < 64 ? 0xFF000000 + uint32_t(x - 20) * 4 : ground)
                << m << " at " << x;
    }
}

class RuleSlip : public RunLength {
protected:
    void SetUp() override
    {
        RunLength::SetUp();
        rs.ruleThreshold = 10;
    }
    // Rule values by pixel, on a rectangle from x = 100, y = 0.
    void rule(std::initializer_list<uint32_t> values)
    {
        rs.tex2 = texture(64, 1, values);
        rs.uv2[1] = {texels(static_cast<int>(values.size())), texels(1)};
        corners(100, 0, 100 + static_cast<int>(values.size()), 1);
    }
};

TEST_F(RuleSlip, AStoppedPixelHoldsTheSourceBackToTheEndOfItsStretch)
{
    rs.tex0 = holed(64, [](int u) { return u == 6 || u == 7; });
    //     0    1   2    3  4    5    6    7    8    9   10   11
    rule({10, 255, 0, 255, 9, 255, 255, 255, 255, 0, 255, 255});
    clear();
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS});
    EXPECT_EQ(row(0, 99, 113), (Pixels{ground, ground, idAt(0, 0), ground, idAt(1, 0), ground, idAt(2, 0), ground, ground,
                                       idAt(8, 0), ground, idAt(9, 0), idAt(10, 0), ground}));
}

TEST_F(RuleSlip, IsThereWithEveryBlendAndMulti)
{
    rs.tex0 = holed(64, [](int) { return false; });
    rs.tex1 = solid(0xFF000000);
    rs.multiFunc = [](uint32_t first, uint32_t) { return first; };
    rs.blendFunc = [](uint32_t, uint32_t source) { return source; };
    rule({0, 255, 0, 255});
    for (int multi : multis) {
        for (int blend : {NINEFOLD_BLEND_COPY, NINEFOLD_BLEND_MERGE, NINEFOLD_BLEND_CUSTOM}) {
            rs.writeMask = 0xFFFFFFFF;
            clear();
            draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS, .blend = blend, .multi = multi});
            EXPECT_EQ(row(0, 100, 104), (Pixels{ground, idAt(0, 0), ground, idAt(1, 0)})) << blend << " " << multi;
        }
    }
}

TEST_F(RuleSlip, IsNotThereUnderGatesNorInOtherRectOptions)
{
    rs.tex0 = holed(64, [](int) { return false; });
    rule({0, 255, 0, 255});
    std::vector<Modes> others = forms();
    others.erase(others.begin()); // Shahei mode 0
    others.push_back({});
    others.push_back({.filter = NINEFOLD_FILTER_MOSAIC});
    for (Modes m : others) {
        m.rule = NINEFOLD_RULE_ON;
        clear();
        draw(m);
        EXPECT_EQ(row(0, 100, 104), (Pixels{ground, idAt(1, 0), ground, idAt(3, 0)})) << m;
    }
}

TEST_F(RuleSlip, DestinationAndSecondTextureDoNotSlip)
{
    rs.tex0 = holed(64, [](int) { return false; });
    rs.tex1 = texture(64, 1, [](uint32_t u, uint32_t) { return 0x500 + u; });
    rs.multiFunc = [](uint32_t first, uint32_t second) { return first << 16 | second; };
    rule({0, 255, 255, 0, 255});
    clear();
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS, .multi = NINEFOLD_MULTI_TEXTURE});
    EXPECT_EQ(row(0, 100, 105), (Pixels{ground, 0x00000501, 0x00010502, ground, 0x00020504}));
}

TEST_F(RuleSlip, LastsOverALongStretchOfManyChunks)
{
    rs.tex0 = holed(128, [](int) { return false; });
    rs.tex2 = texture(128, 1, [](uint32_t u, uint32_t) { return u % 3 ? 255u : 0u; });
    rs.uv2[1] = {texels(120), texels(1)};
    corners(100, 0, 220, 1);
    clear();
    draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_RUNS});
    uint32_t passed = 0;
    for (int k = 0; k < 120; ++k)
        ASSERT_EQ(at(100 + k, 0), k % 3 ? idAt(passed++, 0) : ground) << k;
}

class ZeroMap : public Canvas {
protected:
    // A texture that lies on the frame buffer position for position.
    template <class IsHole>
    Texture *mapped(IsHole &&isHole)
    {
        Texture *t = texture(64, 32, [&](uint32_t u, uint32_t v) { return isHole(int(u), int(v)) ? 0 : idAt(u, v); });
        CreateZeroPixelMap(t);
        return t;
    }
};

TEST_F(ZeroMap, PlaneBitsStayFreeUnderZeroTexels)
{
    rs.tex0 = mapped([](int u, int v) { return (u + v) % 3 == 0; });
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        wipe();
        rs.zRef = 0x77;
        place({}, 5, 3, 50, 20);
        draw({.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = shahei});
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const bool drawn = x >= 5 && x < 50 && y >= 3 && y < 20 && (x + y) % 3;
                ASSERT_EQ(at(x, y), drawn ? idAt(uint32_t(x), uint32_t(y)) : ground);
                ASSERT_EQ(taken(x, y), drawn);
                ASSERT_EQ(zAt(x, y), drawn && shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x77 : 0);
            }
        }
        // What is drawn later fills the holes and nothing else.
        rs.tex0 = mapped([](int, int) { return false; });
        draw({.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = shahei});
        for (int y = 3; y < 20; ++y)
            for (int x = 5; x < 50; ++x)
                ASSERT_TRUE(taken(x, y));
        rs.tex0 = mapped([](int u, int v) { return (u + v) % 3 == 0; });
    }
}

TEST_F(ZeroMap, MapStippleAndPlaneJoin)
{
    rs.tex0 = mapped([](int u, int) { return u % 4 == 0; });
    std::fill_n(rs.drawMask, 16, uint16_t{0x4444}); // 1 of four
    std::fill(plane.begin(), plane.end(), uint16_t{0x2222}); // 2 of four
    place({}, 0, 0, 64, 32);
    draw({.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE});
    for (int x = 0; x < 64; ++x)
        EXPECT_EQ(at(x, 7), x % 4 == 3 ? idAt(uint32_t(x), 7) : ground);
    EXPECT_EQ(plane[0], 0x3333); // neither the map's bits nor the stipple's come in
}

TEST_F(ZeroMap, TheMapIsReadByTheFrameBuffersPositionTheTexelsByTheSources)
{
    rs.tex0 = mapped([](int u, int) { return u == 20; });
    place({}, 16, 4, 32, 6);
    rs.uv0[0] = {texels(3), texels(9)};
    draw({.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE});
    for (int y = 4; y < 6; ++y)
        for (int x = 16; x < 32; ++x)
            EXPECT_EQ(at(x, y), x == 20 ? ground : idAt(uint32_t(x - 16 + 3), uint32_t(y - 4 + 9))) << x;
    EXPECT_EQ(plane[4 * 4 + 1], 0xF7FF);
}

TEST_F(ZeroMap, AZeroInTheSecondTextureIsNoHoleAndNoMark)
{
    rs.tex0 = mapped([](int u, int) { return u == 2; });
    rs.tex1 = texture(64, 32, [](uint32_t u, uint32_t) { return u % 2 ? 0x800 + u : 0; });
    place({}, 0, 0, 8, 1);
    draw({.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE, .multi = NINEFOLD_MULTI_TEXTURE});
    EXPECT_EQ(row(0, 0, 8), (Pixels{idAt(0, 0), 0xFF000801, ground, 0xFF000803, idAt(4, 0), 0xFF000805, idAt(6, 0), 0xFF000807}));
    EXPECT_EQ(plane[0], 0xDF00);
}

TEST_F(ZeroMap, PixelsThatTheRuleStopsStayFree)
{
    rs.tex0 = mapped([](int u, int) { return u == 2; });
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return u == 5 || u == 2 ? 0u : 255u; });
    rs.zRef = 9;
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        wipe();
        place({}, 0, 0, 8, 1);
        draw({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = shahei});
        EXPECT_EQ(row(0, 0, 8), (Pixels{idAt(0, 0), idAt(1, 0), ground, idAt(3, 0), idAt(4, 0), ground, idAt(6, 0), idAt(7, 0)}));
        EXPECT_EQ(plane[0], 0xDB00);
        EXPECT_EQ(zAt(5, 0), 0);
        EXPECT_EQ(zAt(6, 0), shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 9 : 0);
    }
}

TEST_F(ZeroMap, IsTheKernelExportedByName)
{
    rs.tex0 = mapped([](int u, int v) { return (u ^ v) % 5 == 0; });
    place({}, 3, 2, 59, 31);
    draw({.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE});
    const State expected = state();
    wipe();
    DrawRectTexRunlen_TEST();
    EXPECT_TRUE(state() == expected);
}

} // namespace
