// Rectangles and triangles of colours alone (filters 6 and 7).
#include "support/canvas.h"
#include "support/trapezoid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace canvas;

namespace {

class Colours : public Canvas {
protected:
    explicit Colours(unsigned w = 256, unsigned h = 32) : Canvas(w, h) {}

    static constexpr Modes flatRect{.filter = NINEFOLD_FILTER_FLAT}, gouraudRect{.filter = NINEFOLD_FILTER_GOURAUD},
        flatTriangle{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_FLAT},
        gouraudTriangle{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_GOURAUD};

    static Modes with(Modes m, int shahei, int blend = NINEFOLD_BLEND_COPY)
    {
        m.shahei = shahei, m.blend = blend;
        return m;
    }

    static void colours(uint32_t c0, uint32_t c1, uint32_t c2, uint32_t c3 = 0)
    {
        rs.color[0] = c0, rs.color[1] = c1, rs.color[2] = c2, rs.color[3] = c3;
    }
};

class FlatRectangle : public Colours {};

TEST_F(FlatRectangle, EveryPixelIsTheFirstColour)
{
    colours(0x80112233, 1, 2, 3);
    for (int flip = 0; flip < 4; ++flip) {
        clear();
        corners(flip & 1 ? 40 : 5, flip & 2 ? 9 : 3, flip & 1 ? 5 : 40, flip & 2 ? 3 : 9);
        draw(flatRect);
        EXPECT_EQ(drawnCount(), 35 * 6);
        EXPECT_EQ(row(3, 4, 6), (Pixels{ground, 0x80112233}));
        EXPECT_EQ(row(8, 39, 41), (Pixels{0x80112233, ground}));
    }
}

class WideFlatRectangle : public Colours {
protected:
    WideFlatRectangle() : Colours(2048, 4) {}
};

TEST_F(WideFlatRectangle, LongRowsAreFilledToTheirEndsAndNoFurther)
{
    colours(0x80112233, 1, 2, 3);
    for (int columns : {511, 512, 513, 1000, 1024, 2046}) {
        clear();
        corners(1, 1, 1 + columns, 3);
        draw(flatRect);
        EXPECT_EQ(drawnCount(), columns * 2);
        for (int y = 1; y < 3; ++y)
            EXPECT_EQ(std::count(&at(1, y), &at(1, y) + columns, 0x80112233u), columns);
        EXPECT_EQ(at(0, 1), ground);
        EXPECT_EQ(at(1 + columns, 2), ground);
    }
}

TEST_F(FlatRectangle, ShortRowsAreFilledToTheirEndsAndNoFurther)
{
    colours(0xFF00FF00, 0, 0, 0);
    for (int set = 0; set < ninefold::usableSets() && ninefold::useSet(set); ++set) {
        for (int columns = 1; columns <= 40; ++columns) {
            for (int left = 1; left <= 17; ++left) {
                clear();
                corners(left, 3, left + columns, 5);
                draw(flatRect);
                ASSERT_EQ(drawnCount(), 2 * columns) << ninefold::setNames[set] << ": " << columns << " from " << left;
                ASSERT_EQ(at(left - 1, 3), ground) << columns;
                ASSERT_EQ(at(left + columns, 4), ground) << columns;
            }
        }
    }
}

TEST_F(FlatRectangle, ZeroIsAColourLikeAnyOther)
{
    corners(5, 3, 40, 9);
    triangle(5, 12, 40, 12, 5, 30);
    for (Modes m : {flatRect, gouraudRect, flatTriangle, gouraudTriangle}) {
        for (int shahei :
             {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE}) {
            wipe();
            colours(0, 0, 0, 0);
            rs.zRef = 4;
            if (m.shape == NINEFOLD_SHAPE_RECTANGLE)
                corners(5, 3, 40, 9);
            else
                triangle(5, 3, 40, 3, 5, 9);
            draw(with(m, shahei));
            EXPECT_EQ(at(6, 3), 0u) << m;
            EXPECT_EQ(taken(6, 3), marksPlane(shahei)) << m;
            EXPECT_EQ(zAt(6, 3), shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 4 : 0) << m;
        }
    }
}

TEST_F(FlatRectangle, GatesTakeTheirPixels)
{
    rs.writeMask = 0xFFFFFFFF;
    colours(0xFFAA5500, 0xFFAA5500, 0xFFAA5500, 0xFFAA5500);
    std::mt19937 random(3);
    for (uint16_t &row : rs.drawMask)
        row = static_cast<uint16_t>(random());
    for (Modes m : {flatRect, gouraudRect, flatTriangle, gouraudTriangle}) {
        for (int shahei : shaheis) {
            wipe();
            for (uint16_t &word : plane)
                word = static_cast<uint16_t>(random() & random());
            for (uint8_t &byte : z)
                byte = static_cast<uint8_t>(random());
            rs.zRef = 0x780;
            const State before = state();
            if (m.shape == NINEFOLD_SHAPE_RECTANGLE)
                corners(37, 2, 199, 31);
            else
                triangle(37, 2, 199, 2, 37, 31);
            draw(with(m, shahei, testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY));
            // Slope of the triangle's right edge: -162 / 29, truncated in 16.16.
            for (int y = 0; y < 32; ++y) {
                const int right = m.shape == NINEFOLD_SHAPE_RECTANGLE ? 199 : (199 * 65536 - 162 * 65536 / 29 * (y - 2)) >> 16;
                for (int x = 0; x < 256; ++x) {
                    const size_t i = size_t(y * 256 + x);
                    const bool bit = before.plane[i / 16] >> (15 - x % 16) & 1, mask = rs.drawMask[y & 15] >> (15 - x % 16) & 1;
                    bool drawn = x >= 37 && x < right && y >= 2 && y < 31;
                    if (marksPlane(shahei))
                        drawn = drawn && !bit && !mask;
                    if (shahei >= 4)
                        drawn = drawn && !mask;
                    if (testsPriority(shahei))
                        drawn = drawn && before.z[i] >= 0x80;
                    ASSERT_EQ(at(x, y), drawn ? 0xFFAA5500 : ground) << m << " shahei " << shahei << " at " << x << ", " << y;
                    ASSERT_EQ(taken(x, y), bit || (drawn && (marksPlane(shahei))))
                        << m << " shahei " << shahei << " at " << x << ", " << y;
                    ASSERT_EQ(zAt(x, y), drawn && shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x80 : before.z[i])
                        << m << " shahei " << shahei;
                }
            }
        }
    }
}

class GouraudRectangle : public Colours {
protected:
    // The pixel of a rectangle from (left, top), w by h, by its corner colours.
    static uint32_t colourAt(int x, int y, int w, int h)
    {
        uint32_t pixel = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const auto channel = [shift](int k) { return static_cast<int>(rs.color[k] >> shift & 255) << 16; };
            const int left = channel(0) + (channel(2) - channel(0)) / h * y,
                      right = channel(1) + (channel(3) - channel(1)) / h * y;
            pixel |= static_cast<uint32_t>((left + (right - left) / w * x) >> 16 & 255) << shift;
        }
        return pixel;
    }
};

TEST_F(GouraudRectangle, BlueFrom0To255Over256PixelsEndsAt254)
{
    colours(0xFF000000, 0xFF0000FF, 0xFF000000, 0xFF0000FF);
    corners(0, 4, 256, 6);
    draw(gouraudRect);
    // Step 0xFF00: pixel x has x * 0xFF00 / 0x10000.
    for (int y = 4; y < 6; ++y)
        for (uint32_t x = 0; x < 256; ++x)
            ASSERT_EQ(at(int(x), y), 0xFF000000 | x * 0xFF00 >> 16) << x;
    EXPECT_EQ(at(255, 4), 0xFF0000FEu);
}

TEST_F(GouraudRectangle, OneColumnHasTheLeftColoursOneRowThoseOfTheTop)
{
    colours(0xFF102030, 0xFFFFFFFF, 0xFF908070, 0x00000000);
    corners(9, 2, 10, 10);
    draw(gouraudRect);
    for (uint32_t k = 0; k < 8; ++k) // 0x80, 0x60, 0x40 over eight rows
        EXPECT_EQ(at(9, 2 + int(k)), 0xFF102030 + k * 0x100C08) << k;
    EXPECT_EQ(drawnCount(), 8);
    clear();
    colours(0xFF102030, 0xFF908070, 0, 0xFFFFFFFF);
    corners(9, 2, 17, 3);
    draw(gouraudRect);
    for (uint32_t k = 0; k < 8; ++k)
        EXPECT_EQ(at(9 + int(k), 2), 0xFF102030 + k * 0x100C08) << k;
    EXPECT_EQ(drawnCount(), 8);
}

TEST_F(GouraudRectangle, ChannelsRunDownTheEdgesAndAcrossEachRow)
{
    std::mt19937 random(71);
    for (int round = 0; round < 60; ++round) {
        for (uint32_t &c : rs.color)
            c = static_cast<uint32_t>(random());
        const int w = 1 + static_cast<int>(random() % 200), h = 1 + static_cast<int>(random() % 28);
        for (int flip = 0; flip < 4; ++flip) { // exchanged vertices change nothing: the colours stay at the screen's corners
            corners(flip & 1 ? 20 + w : 20, flip & 2 ? 2 + h : 2, flip & 1 ? 20 : 20 + w, flip & 2 ? 2 : 2 + h);
            clip(0, 0, 256, 32);
            clear();
            draw(gouraudRect);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    ASSERT_EQ(at(20 + x, 2 + y), colourAt(x, y, w, h)) << w << " by " << h << " at " << x << ", " << y;
            ASSERT_EQ(drawnCount(), w * h);
        }
        // Nor does the clip.
        clear();
        clip(20 + w / 3, 2 + h / 4, 20 + w - w / 5, 2 + h - h / 3);
        draw(gouraudRect);
        for (int y = rs.clipTop; y < rs.clipBottom; ++y)
            for (int x = rs.clipLeft; x < rs.clipRight; ++x)
                ASSERT_EQ(at(x, y), colourAt(x - 20, y - 2, w, h)) << w << " by " << h;
        EXPECT_TRUE(groundOutside(rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom));
    }
}

TEST_F(GouraudRectangle, ChannelsBeyondTheirRangeLeakIntoTheChannelAbove)
{
    // Corners 2^32 - 3 columns apart: the width wraps to -3. Up to column 0 there are 2^31 steps, 0 for even ones.
    colours(0x80C81000, 0x80E62E1E, 0x80C81000, 0x80E62E1E); // red, green and blue go down by 10 a pixel
    rs.vertex[0] = {INT32_MIN, 3, 0}, rs.vertex[1] = {INT32_MAX - 2, 5, 0};
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}) {
        wipe();
        draw(with(gouraudRect, shahei));
        for (int y = 3; y < 5; ++y) {
            for (uint32_t x = 0; x < 256; ++x) {
                const uint32_t red = 0xC80000 - x * 0xA0000, green = 0x100000 - x * 0xA0000, blue = 0 - x * 0xA0000;
                ASSERT_EQ(at(int(x), y), 0x80000000 | red >> 16 << 16 | green >> 16 << 8 | blue >> 16) << shahei << " at " << x;
            }
        }
    }
    EXPECT_EQ(at(1, 3), 0x80BE0600u | 0xFFF6); // the sign of blue is in green
}

TEST_F(GouraudRectangle, FallingChannelsTruncateTowardZero)
{
    // 255 to 0 over 3 pixels: -0x550000; over 7: -16711680 / 7 = -2387382.
    colours(0xFF0000FF, 0xFF000000, 0xFF0000FF, 0xFF000000);
    corners(0, 0, 7, 1);
    draw(gouraudRect);
    EXPECT_EQ(row(0, 0, 7), (Pixels{0xFF0000FF, 0xFF0000DA, 0xFF0000B6, 0xFF000091, 0xFF00006D, 0xFF000048, 0xFF000024}));
}

TEST_F(GouraudRectangle, UnderThePlaneWalkSkippedPixelsStep)
{
    std::mt19937 random(73);
    for (uint32_t &c : rs.color)
        c = static_cast<uint32_t>(random());
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        wipe();
        for (uint16_t &word : plane)
            word = static_cast<uint16_t>(random());
        const std::vector<uint16_t> before = plane;
        corners(21, 3, 212, 29); // starts inside a word
        draw(with(gouraudRect, shahei));
        for (int y = 3; y < 29; ++y)
            for (int x = 21; x < 212; ++x)
                ASSERT_EQ(at(x, y),
                          before[size_t(y * 16 + x / 16)] >> (15 - x % 16) & 1 ? ground : colourAt(x - 21, y - 3, 191, 26));
    }
}

class ColourTriangle : public Colours {
protected:
    ColourTriangle() : Colours(64, 32) {}
};

TEST_F(ColourTriangle, EdgesTruncateWhereTexturedOnesRound)
{
    // (0, 0), (3, 1), (0, 2): nothing on row 0, columns 0 to 2 on row 1.
    colours(0xFF00FF00, 0xFF00FF00, 0xFF00FF00);
    triangle(0, 0, 3, 1, 0, 2);
    for (const Modes &m : {flatTriangle, gouraudTriangle}) {
        clear();
        draw(m);
        EXPECT_EQ(drawnCount(), 3);
        EXPECT_EQ(row(1, 0, 4), (Pixels{0xFF00FF00, 0xFF00FF00, 0xFF00FF00, ground}));
    }
    // From 10 by 3/4 a row: 10 in row 1, where a textured triangle starts at 11.
    triangle(10, 4, 40, 4, 13, 8);
    for (const Modes &m : {flatTriangle, gouraudTriangle}) {
        clear();
        draw(m);
        EXPECT_NE(at(10, 5), ground);
        EXPECT_EQ(at(9, 5), ground);
    }
    rs.tex0 = solid(0xFF00FF00);
    clear();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_EQ(at(10, 5), ground);
    EXPECT_NE(at(11, 5), ground);
}

TEST_F(ColourTriangle, ACollinearOneHasItsMiddleOnTheRight)
{
    // By 1/3 a row: in row 3 the long edge is at 65535, the one that started anew at 65536.
    colours(0xFF00FF00, 0xFF00FF00, 0xFF00FF00);
    triangle(0, 0, 1, 3, 2, 6);
    for (const Modes &m : {flatTriangle, gouraudTriangle}) {
        clear();
        draw(m);
        EXPECT_EQ(drawnCount(), 1);
        EXPECT_EQ(at(0, 3), 0xFF00FF00u);
    }
    // The other way down ends cross.
    triangle(2, 0, 1, 3, 0, 6);
    for (const Modes &m : {flatTriangle, gouraudTriangle}) {
        clear();
        draw(m);
        EXPECT_TRUE(untouched());
    }
}

TEST_F(ColourTriangle, RowsOfNoWidthDrawNothing)
{
    colours(0xFF00FF00, 0xFFFF0000, 0xFF0000FF);
    triangle(10, 2, 10, 12, 10, 25);
    for (const Modes &m : {flatTriangle, gouraudTriangle}) {
        for (int shahei :
             {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE}) {
            wipe();
            draw(with(m, shahei));
            EXPECT_TRUE(untouched());
            EXPECT_EQ(plane, std::vector<uint16_t>(plane.size(), 0));
        }
    }
}

TEST_F(ColourTriangle, ColoursFollowTheirVerticesAndAgreeWithAPlainWalk)
{
    std::mt19937 random(79);
    std::vector<int32_t> shifts(32);
    for (int round = 0; round < 200; ++round) {
        std::array<trapezoid::Corner, 3> corners;
        for (size_t k = 0; k < 3; ++k) {
            const int x = static_cast<int>(random() % 20) * 5 - 15, y = static_cast<int>(random() % 12) * 4 - 8;
            rs.vertex[k] = {x, y, 1 + static_cast<int>(k) * 7};
            rs.color[k] = static_cast<uint32_t>(random());
            corners[k] = {x, y, {}};
            for (int shift = 24; shift >= 0; shift -= 8)
                corners[k].attributes.push_back(int64_t{rs.color[k] >> shift & 255} << 16);
        }
        const bool shifted = round % 2;
        for (int32_t &shift : shifts)
            shift = static_cast<int32_t>(random() % 21) - 10;
        rs.scanShift = shifted ? shifts.data() : nullptr;
        const trapezoid::Clip window{round % 13, round % 11, 64 - round % 17, 32 - round % 7};
        clip(window.left, window.top, window.right, window.bottom);
        const trapezoid::Picture expected =
            trapezoid::draw(corners, 0, window, [&](int y) { return shifted ? shifts[size_t(y)] : 0; });
        for (int pers : {0, 1}) {
            // The kernels of both perspectives are one; a code with pers 1 is made by hand.
            clear();
            underEverySet([&] { SearchDrawFunc(gouraudTriangle.code() | uint32_t(pers) << 27)(); });
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    uint32_t colour = ground;
                    if (const auto pixel = expected.find({x, y}); pixel != expected.end()) {
                        const auto &c = pixel->second;
                        colour = uint32_t(c[0] >> 16) << 24 | uint32_t(c[1] >> 16) << 16 | uint32_t(c[2] >> 16) << 8 |
                                 uint32_t(c[3] >> 16);
                    }
                    ASSERT_EQ(at(x, y), colour) << "round " << round << " at " << x << ", " << y;
                }
            }
            clear();
            underEverySet([&] { SearchDrawFunc(flatTriangle.code() | uint32_t(pers) << 27)(); });
            EXPECT_EQ(drawnCount(), static_cast<int>(expected.size())) << round;
        }
    }
}

TEST_F(ColourTriangle, AShiftBeyondTheClipSkipsItsRowAndTheRestStepsOn)
{
    colours(0xFF000000, 0xFF0000F0, 0xFF00F000);
    triangle(4, 2, 34, 2, 4, 32);
    clip(2, 1, 60, 31);
    for (const Modes &m : {flatTriangle, gouraudTriangle}) {
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE}) {
            rs.scanShift = nullptr;
            wipe();
            draw(with(m, shahei));
            const State straight = state();
            std::vector<int32_t> shifts(32, 0);
            shifts[5] = 100, shifts[6] = -100, shifts[9] = 56; // 60 and beyond
            rs.scanShift = shifts.data();
            wipe();
            draw(with(m, shahei));
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(at(x, y), y == 5 || y == 6 || y == 9 ? ground : straight.pixels[size_t(y * 64 + x)])
                        << x << ", " << y;
            if (m.filter == NINEFOLD_FILTER_GOURAUD) { // 8 of blue a pixel, 8 of green a row
                EXPECT_EQ(at(7, 10), 0xFF000000u + 8 * 0x800 + 3 * 8);
            }
        }
    }
}

TEST_F(ColourTriangle, RectanglesDoNotLookAtScanShift)
{
    const std::vector<int32_t> shifts(32, 5);
    rs.scanShift = const_cast<int32_t *>(shifts.data());
    colours(0xFF00FF00, 0xFF00FF00, 0xFF00FF00, 0xFF00FF00);
    for (const Modes &m : {flatRect, gouraudRect}) {
        clear();
        corners(5, 5, 15, 15);
        draw(m);
        EXPECT_EQ(at(5, 5), 0xFF00FF00u);
        EXPECT_EQ(at(15, 5), ground);
    }
}

} // namespace
