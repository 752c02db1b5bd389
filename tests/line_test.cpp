// Lines.
#include "support/canvas.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

using Points = std::vector<std::pair<int, int>>;

// The pixels of a line in order, step by step.
Points walk(int x0, int y0, int x1, int y1, int left, int top, int right, int bottom)
{
    const auto isInside = [&](int x, int y) { return x >= left && y >= top && x < right && y < bottom; };
    const bool inside0 = isInside(x0, y0), inside1 = isInside(x1, y1);
    const int lenX = std::abs(x1 - x0) + 1, lenY = std::abs(y1 - y0) + 1;
    const bool steep = lenX < lenY;
    const int begin = steep ? y0 : x0, end = steep ? y1 : x1, from = steep ? x0 : y0, to = steep ? x1 : y1;
    const int lo = steep ? top : left, hi = steep ? bottom : right, minorLo = steep ? left : top,
              minorHi = steep ? right : bottom;
    int len = steep ? lenY : lenX;
    int t = (to - from) * 65536;
    t += t < 1 ? -32768 : 32768;
    const int step = t / len, dir = begin > end ? -1 : 1;
    int position = from * 65536 + 0x8000, major = begin;
    Points points;
    const auto minor = [&] { return position / 65536; };
    const auto draw = [&] { points.push_back(steep ? std::pair(minor(), major) : std::pair(major, minor())); };
    const auto advance = [&](int k) { position += step * k, major += dir * k; };
    if (inside0 && inside1) {
        for (int n = len - 1; n > 0; --n)
            draw(), advance(1);
        return points;
    }
    if (dir < 0 && begin >= hi)
        len -= begin - hi + 1, advance(begin - hi + 1);
    if (dir < 0 && end < lo)
        len += end - lo;
    if (dir > 0 && begin < lo)
        len -= lo - begin, advance(lo - begin);
    if (dir > 0 && end >= hi)
        len += hi - end - 1;
    const int m = minor();
    if ((step >= 0 && m >= minorHi) || (step <= 0 && m < minorLo))
        return points;
    if (step > 0 && m < minorLo) {
        while (len > 0 && minor() < minorLo)
            advance(1), --len;
        if (minor() < minorLo)
            --len;
    }
    if (m >= minorHi) {
        while (len > 0 && minor() >= minorHi)
            advance(1), --len;
        if (minor() >= minorHi)
            --len;
    }
    if (inside1) {
        for (int n = len - 1; n > 0; --n)
            draw(), advance(1);
        return points;
    }
    while (len >= 1) {
        --len;
        if (minor() < minorLo || minor() >= minorHi)
            break;
        draw();
        advance(1);
    }
    return points;
}

class Line : public Canvas {
protected:
    static constexpr uint32_t white = 0xFFFFFFFF;

    void SetUp() override
    {
        Canvas::SetUp();
        rs.color[0] = rs.color[1] = white;
        rs.writeMask = 0xFFFFFFFF;
    }

    static Modes line(int filter, int shahei = NINEFOLD_SHAHEI_NONE)
    {
        return {.shape = NINEFOLD_SHAPE_LINE,
                .filter = filter,
                .shahei = shahei,
                .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY};
    }

    void expectPoints(const Points &expected)
    {
        for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
            clear();
            draw(line(filter));
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(at(x, y) != ground, std::find(expected.begin(), expected.end(), std::pair(x, y)) != expected.end())
                        << x << ", " << y << " of (" << rs.vertex[0].x << ", " << rs.vertex[0].y << ") to (" << rs.vertex[1].x
                        << ", " << rs.vertex[1].y << ")";
        }
    }

    void expectPoints(int x0, int y0, int x1, int y1, const Points &expected)
    {
        corners(x0, y0, x1, y1);
        expectPoints(expected);
    }
};

TEST_F(Line, OnePointDrawsNothingInsideOrOutside)
{
    clip(8, 8, 40, 24);
    expectPoints(10, 10, 10, 10, {});
    expectPoints(2, 10, 2, 10, {});
    expectPoints(10, 24, 10, 24, {});
    expectPoints(8, 8, 8, 8, {});
    expectPoints(40, 24, 40, 24, {});
}

TEST_F(Line, TheEndPointIsLeftOut)
{
    expectPoints(0, 0, 3, 0, {{0, 0}, {1, 0}, {2, 0}});
    expectPoints(3, 0, 0, 0, {{3, 0}, {2, 0}, {1, 0}});
    expectPoints(5, 2, 5, 5, {{5, 2}, {5, 3}, {5, 4}});
    expectPoints(5, 5, 5, 2, {{5, 5}, {5, 4}, {5, 3}});
    expectPoints(2, 2, 5, 5, {{2, 2}, {3, 3}, {4, 4}});
    expectPoints(5, 2, 2, 5, {{5, 2}, {4, 3}, {3, 4}});
}

TEST_F(Line, ATieOfLengthsGoesToX)
{
    expectPoints(2, 2, 5, 5, {{2, 2}, {3, 3}, {4, 4}});
    // A minor coordinate of -1 counts as 0, a major one is cut off: that tells which is which.
    expectPoints(2, -1, 5, 2, {{2, 0}, {3, 0}, {4, 1}});
    expectPoints(-1, 2, 2, 5, {{0, 3}, {1, 4}});
    // A row more and y is the major axis.
    expectPoints(-1, 2, 2, 6, {{0, 2}, {0, 3}, {0, 4}, {1, 5}});
}

TEST_F(Line, RowsOfAShallowLineByHand)
{
    // (0, 0) to (7, 2): t = 2.5 * 65536 = 163840, / 8 = 20480, from 0.5: 32768 + 20480 k. Row 1 from k = 2 (73728), row 2 from k
    // = 5 (135168).
    expectPoints(0, 0, 7, 2, {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 1}, {5, 2}, {6, 2}});
    // (7, 2) back: -163840 / 8, from 2.5: 163840 - 20480 k. Row 1 from k = 2 (122880), row 0 from k = 5 (61440).
    expectPoints(7, 2, 0, 0, {{7, 2}, {6, 2}, {5, 1}, {4, 1}, {3, 1}, {2, 0}, {1, 0}});
}

TEST_F(Line, AHorizontalLineStaysOnItsRow)
{
    // A zero difference counts as negative: -32768 / len a pixel from half a pixel in.
    for (int y : {0, 1, 17, 31}) {
        Points expected;
        for (int x = 1; x < 63; ++x)
            expected.push_back({x, y});
        expectPoints(1, y, 63, y, expected);
    }
    // Its last step would fall below the row with a clip to leave: 2 pixels, -16384 each.
    expectPoints(62, 9, 70, 9, {{62, 9}, {63, 9}});
}

TEST_F(Line, WithItsEndOutsideItRunsUpToTheLastPixelInside)
{
    clip(4, 4, 20, 16);
    expectPoints(10, 8, 30, 8, {{10, 8}, {11, 8}, {12, 8}, {13, 8}, {14, 8}, {15, 8}, {16, 8}, {17, 8}, {18, 8}, {19, 8}});
    expectPoints(6, 8, -30, 8, {{6, 8}, {5, 8}, {4, 8}});
    expectPoints(10, 14, 10, 40, {{10, 14}, {10, 15}});
    expectPoints(10, 5, 10, -9, {{10, 5}, {10, 4}});
    // Out through the minor axis.
    expectPoints(10, 13, 19, 19, walk(10, 13, 19, 19, 4, 4, 20, 16));
    EXPECT_EQ(walk(10, 13, 19, 19, 4, 4, 20, 16), (Points{{10, 13}, {11, 14}, {12, 14}, {13, 15}}));
    // Exactly at the bound, which is outside.
    expectPoints(18, 8, 20, 8, {{18, 8}, {19, 8}});
}

TEST_F(Line, WithItsStartOutsideItStopsShortOfTheEnd)
{
    clip(4, 4, 20, 16);
    expectPoints(-5, 8, 7, 8, {{4, 8}, {5, 8}, {6, 8}});
    expectPoints(30, 8, 17, 8, {{19, 8}, {18, 8}});
    expectPoints(10, -7, 10, 6, {{10, 4}, {10, 5}});
    expectPoints(10, 30, 10, 13, {{10, 15}, {10, 14}});
    expectPoints(20, 8, 18, 8, {{19, 8}});
}

TEST_F(Line, ThroughTheClipFromSideToSide)
{
    clip(4, 4, 20, 16);
    Points all;
    for (int x = 4; x < 20; ++x)
        all.push_back({x, 9});
    expectPoints(-50, 9, 50, 9, all);
    expectPoints(50, 9, -50, 9, all);
    Points down;
    for (int y = 4; y < 16; ++y)
        down.push_back({9, y});
    expectPoints(9, -50, 9, 50, down);
    expectPoints(9, 50, 9, -50, down);
}

TEST_F(Line, AMinorStartOfMinusOneCountsAsZero)
{
    // (-1 << 16) + 0x8000 truncates to 0, inside a clip bound of 0.
    expectPoints(2, -1, 6, -1, {{2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}});
    expectPoints(-1, 2, -1, 6, {{0, 2}, {0, 3}, {0, 4}, {0, 5}, {0, 6}});
    // At -2 it is -1 and outside.
    expectPoints(2, -2, 6, -2, {});
    // With a bound of 1 row 0 is outside.
    clip(0, 1, 64, 32);
    expectPoints(2, -1, 6, -1, {});
}

TEST_F(Line, GoingAwayFromTheClipOnTheMinorAxisDrawsNothing)
{
    clip(4, 4, 60, 16);
    expectPoints(10, 2, 40, -9, {});
    expectPoints(10, 2, 40, 2, {}); // along the bound: counts as going away below
    expectPoints(10, 16, 40, 30, {});
    expectPoints(10, 16, 40, 16, walk(10, 16, 40, 16, 4, 4, 60, 16));
    expectPoints(2, 6, -9, 15, {});
}

TEST_F(Line, ComingTowardTheClipOnTheMinorAxisItIsWalkedUpToIt)
{
    clip(4, 4, 60, 16);
    const Points down = walk(10, 0, 30, 10, 4, 4, 60, 16);
    // From row 0 by 10.5 / 21 = 0.5 a column: row 4 from column 17 (0.5 + 3.5).
    ASSERT_EQ(down.front(), std::pair(17, 4));
    ASSERT_EQ(down.back(), std::pair(29, 10)); // short of the end
    expectPoints(10, 0, 30, 10, down);
    // From below: 20.5 - 0.5 k is in row 15 from k = 10 on.
    const Points up = walk(10, 20, 30, 10, 4, 4, 60, 16);
    ASSERT_EQ(up.front(), std::pair(20, 15));
    expectPoints(10, 20, 30, 10, up);
    // One that does not get there runs out.
    expectPoints(10, 0, 14, 2, {});
    expectPoints(10, 30, 14, 28, {});
    expectPoints(30, 0, 62, 3, {});
}

TEST_F(Line, EveryDirectionAndEveryKindOfEnd)
{
    std::mt19937 random(83);
    for (int round = 0; round < 3000 / thin; ++round) {
        clip(round % 9, round % 7, 64 - round % 11, 32 - round % 5);
        const int spread = round % 4 == 0 ? 200 : 30;
        const auto x = [&] { return static_cast<int>(random() % uint32_t(64 + spread)) - spread / 2; };
        const auto y = [&] { return static_cast<int>(random() % uint32_t(32 + spread)) - spread / 2; };
        const int x0 = x(), y0 = y(), x1 = round % 13 == 0 ? x0 : x(), y1 = round % 17 == 0 ? y0 : y();
        const Points expected = walk(x0, y0, x1, y1, rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom);
        rs.originX = round % 5 - 2, rs.originY = round % 3 - 1;
        corners(x0 - rs.originX, y0 - rs.originY, x1 - rs.originX, y1 - rs.originY);
        clear();
        for (int set = 0; set < ninefold::usableSets(); ++set) {
            ninefold::useSet(set);
            kernel(line(round % 2 ? NINEFOLD_FILTER_GOURAUD : NINEFOLD_FILTER_FLAT))();
        }
        ASSERT_EQ(drawnCount(), static_cast<int>(expected.size())) << x0 << ", " << y0 << " to " << x1 << ", " << y1;
        for (const auto &[px, py] : expected)
            ASSERT_NE(at(px, py), ground) << x0 << ", " << y0 << " to " << x1 << ", " << y1;
    }
}

TEST_F(Line, ColoursRunTowardTheEndByTheWholeLength)
{
    // Three points from blue 0 to 255: a slope of 0x550000, pixels 0 and 85; the third is not drawn.
    rs.color[0] = 0xFF000000, rs.color[1] = 0xFF0000FF;
    corners(10, 5, 12, 5);
    draw(line(NINEFOLD_FILTER_GOURAUD));
    EXPECT_EQ(row(5, 9, 13), (Pixels{ground, 0xFF000000, 0xFF000055, ground}));
    // The other way, falling: 255, 170.
    rs.color[0] = 0xFF0000FF, rs.color[1] = 0xFF000000;
    clear();
    corners(10, 5, 10, 7);
    draw(line(NINEFOLD_FILTER_GOURAUD));
    EXPECT_EQ(column(10, 4, 8), (Pixels{ground, 0xFF0000FF, 0xFF0000AA, ground}));
    // Filter 6 has the first colour all along.
    clear();
    draw(line(NINEFOLD_FILTER_FLAT));
    EXPECT_EQ(column(10, 4, 8), (Pixels{ground, 0xFF0000FF, 0xFF0000FF, ground}));
}

TEST_F(Line, ClippingDoesNotMoveItsColours)
{
    rs.color[0] = 0x10F02040, rs.color[1] = 0xE01090C0;
    const int ends[][4] = {{2, 3, 61, 25}, {61, 25, 2, 3}, {5, 30, 20, 1}, {30, 1, 12, 31}};
    for (const auto &e : ends) {
        corners(e[0], e[1], e[2], e[3]);
        for (int shahei : shaheis) {
            clip(0, 0, 64, 32);
            wipe();
            rs.zRef = 0;
            draw(line(NINEFOLD_FILTER_GOURAUD, shahei));
            const State whole = state();
            wipe();
            clip(9, 8, 44, 21);
            draw(line(NINEFOLD_FILTER_GOURAUD, shahei));
            EXPECT_GT(drawnCount(), 5);
            for (int y = 8; y < 21; ++y)
                for (int x = 9; x < 44; ++x)
                    ASSERT_EQ(at(x, y), whole.pixels[size_t(y * 64 + x)]) << shahei << " at " << x << ", " << y;
            EXPECT_TRUE(groundOutside(9, 8, 44, 21));
        }
    }
}

TEST_F(Line, PlanesAndStippleAreTestedBitByBit)
{
    std::mt19937 random(89);
    for (int round = 0; round < 120; ++round) {
        for (uint16_t &row : rs.drawMask)
            row = static_cast<uint16_t>(random() & random());
        rs.zRef = 0x180;
        const int ends[] = {static_cast<int>(random() % 80) - 8, static_cast<int>(random() % 40) - 4,
                            static_cast<int>(random() % 80) - 8, static_cast<int>(random() % 40) - 4};
        corners(ends[0], ends[1], ends[2], ends[3]);
        const Points points = walk(ends[0], ends[1], ends[2], ends[3], 0, 0, 64, 32);
        for (int shahei : shaheis) {
            clear();
            for (uint16_t &word : plane)
                word = static_cast<uint16_t>(random() & random());
            for (uint8_t &byte : z)
                byte = static_cast<uint8_t>(random());
            const State before = state();
            draw(line(round % 2 ? NINEFOLD_FILTER_GOURAUD : NINEFOLD_FILTER_FLAT, shahei));
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const size_t i = size_t(y * 64 + x);
                    const bool bit = before.plane[i / 16] >> (15 - x % 16) & 1, mask = rs.drawMask[y & 15] >> (15 - x % 16) & 1;
                    bool drawn = std::find(points.begin(), points.end(), std::pair(x, y)) != points.end();
                    if (marksPlane(shahei))
                        drawn = drawn && !bit && !mask;
                    if (shahei >= 4)
                        drawn = drawn && !mask;
                    if (testsPriority(shahei))
                        drawn = drawn && before.z[i] >= 0x80;
                    ASSERT_EQ(at(x, y) != ground, drawn) << shahei << " at " << x << ", " << y;
                    ASSERT_EQ(taken(x, y), bit || (drawn && (marksPlane(shahei)))) << shahei;
                    ASSERT_EQ(zAt(x, y), drawn && shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x80 : before.z[i]) << shahei;
                }
            }
        }
    }
}

TEST_F(Line, ModeTwoHasNoPriorityTest)
{
    std::fill(z.begin(), z.end(), uint8_t{3});
    rs.zRef = 200;
    corners(5, 5, 9, 5);
    draw(line(NINEFOLD_FILTER_FLAT, NINEFOLD_SHAHEI_PLANE_PRIORITY));
    EXPECT_EQ(drawnCount(), 4);
    EXPECT_EQ(zAt(6, 5), 200);
    EXPECT_EQ(zAt(9, 5), 3);
}

TEST_F(Line, ZeroIsDrawnAndPrescaleFollowsTheBlend)
{
    rs.color[0] = rs.color[1] = 0;
    corners(5, 5, 9, 5);
    for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
        clear();
        draw(line(filter));
        EXPECT_EQ(row(5, 5, 10), (Pixels{0, 0, 0, 0, ground}));
    }
    rs.prescale = 128;
    rs.color[0] = rs.color[1] = 0x80604020;
    for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
        clear();
        draw({.shape = NINEFOLD_SHAPE_LINE, .prescale = NINEFOLD_PRESCALE_ON, .filter = filter});
        EXPECT_EQ(at(6, 5), 0x80302010u);
        clear();
        draw({.shape = NINEFOLD_SHAPE_LINE, .prescale = NINEFOLD_PRESCALE_ON, .filter = filter, .blend = NINEFOLD_BLEND_ALPHA});
        // Alpha 64: (0x60 * 64 + 0x22 * 191) / 256 and so on.
        EXPECT_EQ(at(6, 5), 0x0031363Au);
    }
}

TEST_F(Line, ScanShiftPlaysNoPart)
{
    const std::vector<int32_t> shifts(32, 5);
    rs.scanShift = const_cast<int32_t *>(shifts.data());
    expectPoints(10, 5, 13, 5, {{10, 5}, {11, 5}, {12, 5}});
}

TEST_F(Line, AScreenBlendOverAZTestIsTheKernelExportedByName)
{
    std::mt19937 random(97);
    for (uint8_t &byte : z)
        byte = static_cast<uint8_t>(random());
    rs.zRef = 100;
    rs.color[0] = 0x10F02040, rs.color[1] = 0xE01090C0;
    corners(-3, 2, 61, 29);
    draw({.shape = NINEFOLD_SHAPE_LINE,
          .filter = NINEFOLD_FILTER_GOURAUD,
          .shahei = NINEFOLD_SHAHEI_PRIORITY,
          .blend = NINEFOLD_BLEND_SCREEN});
    const State expected = state();
    EXPECT_FALSE(untouched());
    clear();
    DrawLineTest();
    EXPECT_TRUE(state() == expected);
}

} // namespace
