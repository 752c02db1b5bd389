// Unit-scale rectangles and the frame that all rectangles share.
#include "support/canvas.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class UnitRectangle : public Canvas {
protected:
    // Rect options that read a texel a pixel from uv0[0] on, each with what it needs of its texture.
    std::vector<Modes> unitForms(Texture *t)
    {
        CreateRunlengthMap(t);
        return {{},
                {.filter = NINEFOLD_FILTER_MOSAIC},
                {.rectOpt = NINEFOLD_RECT_RUNS},
                {.shahei = NINEFOLD_SHAHEI_PLANE},
                {.filter = NINEFOLD_FILTER_MOSAIC, .shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY},
                {.shahei = NINEFOLD_SHAHEI_STIPPLE}};
    }
};

TEST_F(UnitRectangle, CopiesTexelsFromTheStartPosition)
{
    rs.tex0 = index(64, 32);
    rs.uv0[0] = {texels(5), texels(3)};
    corners(10, 10, 14, 12);
    draw({});
    EXPECT_EQ(row(10, 9, 15), (Pixels{ground, idAt(5, 3), idAt(6, 3), idAt(7, 3), idAt(8, 3), ground}));
    EXPECT_EQ(row(11, 9, 15), (Pixels{ground, idAt(5, 4), idAt(6, 4), idAt(7, 4), idAt(8, 4), ground}));
    EXPECT_TRUE(groundOutside(10, 10, 14, 12)); // right and bottom are outside
}

TEST_F(UnitRectangle, ReversedCornersDrawTheSameFromTheSameStart)
{
    rs.tex0 = index(64, 32);
    rs.uv0[0] = {texels(5), texels(3)};
    rs.uv0[1] = {texels(9), texels(1)}; // not read
    for (const Modes &m : unitForms(rs.tex0)) {
        for (int flip = 0; flip < 4; ++flip) {
            SCOPED_TRACE(flip);
            clear();
            std::fill(plane.begin(), plane.end(), uint16_t{0});
            corners(flip & 1 ? 20 : 10, flip & 2 ? 20 : 10, flip & 1 ? 10 : 20, flip & 2 ? 10 : 20);
            draw(m);
            for (int y = 10; y < 20; ++y)
                for (int x = 10; x < 20; ++x)
                    ASSERT_EQ(at(x, y), idAt(uint32_t(x - 5), uint32_t(y - 7))) << x << " " << y;
            EXPECT_TRUE(groundOutside(10, 10, 20, 20));
        }
    }
}

TEST_F(UnitRectangle, EdgesThatTouchTheClipFromOutsideDrawNothing)
{
    rs.tex0 = index(64, 32);
    clip(20, 10, 40, 20);
    const int placements[][4] = {{10, 12, 20, 18}, {40, 12, 50, 18}, {22, 5, 38, 10}, {22, 20, 38, 25}};
    for (const Modes &m : unitForms(rs.tex0)) {
        for (const auto &p : placements) {
            corners(p[0], p[1], p[2], p[3]);
            draw(m);
            EXPECT_TRUE(untouched()) << p[0] << " " << p[1];
        }
    }
    // A pixel further in there is one column or row.
    corners(10, 12, 21, 18);
    draw({});
    EXPECT_EQ(drawnCount(), 6);
    clear();
    corners(22, 19, 38, 25);
    draw({});
    EXPECT_EQ(drawnCount(), 16);
}

TEST_F(UnitRectangle, ZeroWidthOrHeightDrawsNothingAnywhere)
{
    rs.tex0 = index(64, 32);
    for (const Modes &m : unitForms(rs.tex0)) {
        for (int x : {-3, 0, 7, 16, 63, 64, 70}) {
            corners(x, 2, x, 30);
            draw(m);
            corners(2, x / 2, 60, x / 2);
            draw(m);
            ASSERT_TRUE(untouched()) << x;
        }
    }
}

TEST_F(UnitRectangle, WhatTheClipCutsOffMovesTheSourceAlong)
{
    rs.tex0 = index(16, 8);
    rs.uv0[0] = {texels(14), texels(6)};
    clip(12, 9, 20, 14);
    corners(9, 7, 30, 30);
    for (const Modes &m : unitForms(rs.tex0)) {
        clear();
        std::fill(plane.begin(), plane.end(), uint16_t{0});
        draw(m);
        // Column 14 + 3 and row 6 + 2, wrapped.
        for (int y = 9; y < 14; ++y)
            for (int x = 12; x < 20; ++x)
                ASSERT_EQ(at(x, y), idAt((17 + x - 12) & 15, (8 + y - 9) & 7)) << x << " " << y;
        EXPECT_TRUE(groundOutside(12, 9, 20, 14));
    }
}

TEST_F(UnitRectangle, AStartOfMinusOneIsTheLastColumnAndRow)
{
    rs.tex0 = index(256, 4);
    rs.uv0[0] = {static_cast<int32_t>(0xFFFF0000), static_cast<int32_t>(0xFFFF0000)};
    corners(0, 0, 3, 2);
    for (const Modes &m : unitForms(rs.tex0)) {
        clear();
        std::fill(plane.begin(), plane.end(), uint16_t{0});
        draw(m);
        EXPECT_EQ(row(0, 0, 4), (Pixels{idAt(255, 3), idAt(0, 3), idAt(1, 3), ground}));
        EXPECT_EQ(row(1, 0, 4), (Pixels{idAt(255, 0), idAt(0, 0), idAt(1, 0), ground}));
    }
}

TEST_F(UnitRectangle, NegativePositionsRepeatTheTextureWithoutEnd)
{
    rs.tex0 = index(4, 4);
    rs.uv0[0] = {texels(-4099), texels(-6)}; // -4099 is 1 and -6 is 2, wrapped
    corners(0, 0, 8, 3);
    draw({});
    EXPECT_EQ(row(0, 0, 8),
              (Pixels{idAt(1, 2), idAt(2, 2), idAt(3, 2), idAt(0, 2), idAt(1, 2), idAt(2, 2), idAt(3, 2), idAt(0, 2)}));
    EXPECT_EQ(at(0, 1), idAt(1, 3));
    EXPECT_EQ(at(0, 2), idAt(1, 0));
}

TEST_F(UnitRectangle, ARectangleLargerThanTheTextureTilesIt)
{
    rs.tex0 = index(8, 4);
    corners(1, 1, 40, 20);
    for (const Modes &m : unitForms(rs.tex0)) {
        clear();
        std::fill(plane.begin(), plane.end(), uint16_t{0});
        draw(m);
        for (int y = 1; y < 20; ++y)
            for (int x = 1; x < 40; ++x)
                ASSERT_EQ(at(x, y), idAt((x - 1) & 7, (y - 1) & 3)) << x << " " << y;
    }
}

TEST_F(UnitRectangle, OnlyTheWholeWordZeroIsNoPixel)
{
    rs.tex0 = texture(4, 1, {0xFF000000, 0x00000000, 0x00FFFFFF, 0x00000001});
    corners(0, 0, 4, 1);
    for (const Modes &m : unitForms(rs.tex0)) {
        clear();
        std::fill(plane.begin(), plane.end(), uint16_t{0});
        draw(m);
        EXPECT_EQ(row(0, 0, 4), (Pixels{0xFF000000, ground, 0x00FFFFFF, 0x00000001}));
    }
}

TEST_F(UnitRectangle, FractionsOfTheStartMakeNoDifference)
{
    rs.tex0 = index(64, 32);
    for (int32_t fraction : {0, 1, 0x7FFF, 0x8000, 0xFFFF}) {
        for (const Modes &m : unitForms(rs.tex0)) {
            rs.uv0[0] = {texels(-7) + fraction, texels(3) + fraction};
            corners(0, 0, 2, 1);
            clear();
            std::fill(plane.begin(), plane.end(), uint16_t{0});
            draw(m);
            EXPECT_EQ(row(0, 0, 3), (Pixels{idAt(57, 3), idAt(58, 3), ground})) << fraction;
        }
    }
}

TEST_F(UnitRectangle, TheOriginMovesBothCorners)
{
    rs.tex0 = index(64, 32);
    rs.originX = 10, rs.originY = -5;
    corners(-8, 8, -5, 10);
    draw({});
    EXPECT_EQ(row(3, 1, 6), (Pixels{ground, idAt(0, 0), idAt(1, 0), idAt(2, 0), ground}));
    EXPECT_EQ(row(4, 1, 6), (Pixels{ground, idAt(0, 1), idAt(1, 1), idAt(2, 1), ground}));
    EXPECT_TRUE(groundOutside(2, 3, 5, 5));
}

TEST_F(UnitRectangle, TheSecondTextureHasAStartAndAWrapOfItsOwn)
{
    rs.tex0 = index(64, 32);
    rs.tex1 = texture(4, 2, [](uint32_t u, uint32_t v) { return 0xA0 + 16 * v + u; });
    rs.uv0[0] = {texels(5), texels(3)};
    rs.uv1[0] = {texels(-1) + 0xFFFF, texels(1)};
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND); // the low bytes of tex1 with the alpha of tex0
    corners(0, 0, 3, 2);
    clip(1, 0, 64, 32);
    draw({.multi = NINEFOLD_MULTI_TEXTURE});
    EXPECT_EQ(row(0, 0, 4), (Pixels{ground, 0xFF0000B0, 0xFF0000B1, ground}));
    EXPECT_EQ(row(1, 0, 4), (Pixels{ground, 0xFF0000A0, 0xFF0000A1, ground}));
}

TEST_F(UnitRectangle, RectanglesOfFarCoordinatesAreClippedLikeNearOnes)
{
    rs.tex0 = index(64, 32);
    corners(-30000, -20000, 30000, 20000);
    draw({});
    // 30000 is 48 and 20000 is 0 in a texture of 64 by 32.
    EXPECT_EQ(at(0, 0), idAt(30000 & 63, 20000 & 31));
    EXPECT_EQ(at(63, 31), idAt(30063 & 63, 20031 & 31));
}

} // namespace
