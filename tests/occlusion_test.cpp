// Occlusion triangles: fills of the Shahei plane and the priority plane.
#include "support/canvas.h"
#include "support/trapezoid.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

enum class Bits { keep, set, flip, reset };
enum class Bytes { keep, all, flip, clear, ref };

struct Fill {
    const char *name;
    void (*draw)();
    Bits bits;
    Bytes bytes;

    bool bitAfter(bool bit) const { return bits == Bits::set || (bits == Bits::flip ? !bit : bits == Bits::keep && bit); }
    uint8_t byteAfter(uint8_t byte) const
    {
        switch (bytes) {
        case Bytes::all: return 255;
        case Bytes::flip: return static_cast<uint8_t>(~byte);
        case Bytes::clear: return 0;
        case Bytes::ref: return static_cast<uint8_t>(rs.zRef);
        default: return byte;
        }
    }
};

const Fill fills[] = {
    {"DrawShaheiPolygonSet", DrawShaheiPolygonSet, Bits::set, Bytes::keep},
    {"DrawShaheiPolygonFlip", DrawShaheiPolygonFlip, Bits::flip, Bytes::keep},
    {"DrawShaheiPolygonReset", DrawShaheiPolygonReset, Bits::reset, Bytes::keep},
    {"DrawZbufferPolygon0xff", DrawZbufferPolygon0xff, Bits::keep, Bytes::all},
    {"DrawZbufferPolygonFlip", DrawZbufferPolygonFlip, Bits::keep, Bytes::flip},
    {"DrawZbufferPolygonClear", DrawZbufferPolygonClear, Bits::keep, Bytes::clear},
    {"DrawZbufferPolygon", DrawZbufferPolygon, Bits::keep, Bytes::ref},
    {"DrawShaheiZbufferPolygonMask", DrawShaheiZbufferPolygonMask, Bits::set, Bytes::clear},
    {"DrawShaheiZbufferPolygonUnmask", DrawShaheiZbufferPolygonUnmask, Bits::reset, Bytes::all},
    {"DrawShaheiZbufferPolygonFlip", DrawShaheiZbufferPolygonFlip, Bits::flip, Bytes::flip},
};

class Occlusion : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.zRef = 0x9C;
        std::mt19937 random(61);
        for (uint16_t &word : plane)
            word = static_cast<uint16_t>(random());
        for (uint8_t &byte : z)
            byte = static_cast<uint8_t>(random());
        before = state();
    }

    template <class Inside>
    void expectFilled(const Fill &f, Inside &&inside)
    {
        SCOPED_TRACE(f.name);
        restoreKeepingRs();
        f.draw();
        EXPECT_EQ(state().pixels, before.pixels) << "the frame buffer takes no part";
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const size_t i = size_t(y * 64 + x);
                const bool bit = before.plane[i / 16] >> (15 - x % 16) & 1, in = inside(x, y);
                ASSERT_EQ(taken(x, y), in ? f.bitAfter(bit) : bit) << "bit at " << x << ", " << y;
                ASSERT_EQ(zAt(x, y), in ? f.byteAfter(before.z[i]) : before.z[i]) << "byte at " << x << ", " << y;
            }
        }
    }

    void restoreKeepingRs()
    {
        std::copy(before.plane.begin(), before.plane.end(), plane.begin());
        std::copy(before.z.begin(), before.z.end(), z.begin());
    }

    // One row: a triangle of height 1 with a flat top.
    static void span(int left, int right, int y) { triangle(left, y, right, y, left, y + 1); }

    State before;
};

TEST_F(Occlusion, ASpanInOneWordChangesItsBitsOnly)
{
    std::fill(plane.begin(), plane.end(), uint16_t{0});
    span(3, 8, 2); // bits 12 down to 8
    DrawShaheiPolygonSet();
    EXPECT_EQ(plane[4 * 2], 0x1F00);
    DrawShaheiPolygonFlip();
    EXPECT_EQ(plane[4 * 2], 0);
    std::fill(plane.begin(), plane.end(), uint16_t{0xFFFF});
    DrawShaheiPolygonReset();
    EXPECT_EQ(plane[4 * 2], 0xE0FF);
    EXPECT_EQ(plane[4 * 2 + 1], 0xFFFF);
    EXPECT_EQ(plane[4 * 1], 0xFFFF);
}

TEST_F(Occlusion, SpansAtEveryPlaceAndOfEveryWidth)
{
    for (int left = 0; left < 48; left += thin == 1 ? 1 : 5) {
        for (int right = left + 1; right <= 64; right += thin == 1 ? 1 : 3) {
            span(left, right, 5);
            const Fill &f = fills[(left * 64 + right) % 10];
            expectFilled(f, [&](int x, int y) { return y == 5 && x >= left && x < right; });
        }
    }
    // A whole word, and ends on word boundaries, with every fill.
    for (const auto &ends : {std::pair{16, 32}, {16, 48}, {5, 16}, {5, 32}, {32, 37}, {0, 64}, {63, 64}}) {
        const int left = ends.first, right = ends.second;
        span(left, right, 5);
        for (const Fill &f : fills)
            expectFilled(f, [&](int x, int y) { return y == 5 && x >= left && x < right; });
    }
}

TEST_F(Occlusion, EveryFillDoesWhatItsNameSays)
{
    triangle(5, 3, 45, 3, 5, 23); // right edge by -2 a row
    for (const Fill &f : fills)
        expectFilled(f, [](int x, int y) { return y >= 3 && y < 23 && x >= 5 && x < 45 - 2 * (y - 3); });
}

TEST_F(Occlusion, FlippingTwiceRestoresThePlanes)
{
    triangle(5, 3, 61, 9, 17, 30);
    DrawShaheiPolygonFlip();
    EXPECT_NE(plane, before.plane);
    DrawShaheiPolygonFlip();
    EXPECT_EQ(plane, before.plane);
    DrawZbufferPolygonFlip();
    EXPECT_NE(z, before.z);
    DrawZbufferPolygonFlip();
    EXPECT_EQ(z, before.z);
    DrawShaheiZbufferPolygonFlip();
    DrawShaheiZbufferPolygonFlip();
    EXPECT_EQ(plane, before.plane);
    EXPECT_EQ(z, before.z);
}

TEST_F(Occlusion, NothingIsTouchedByTrianglesOnOneRowCrossedOrOutside)
{
    clip(8, 8, 56, 28);
    const int placements[][6] = {
        {9, 10, 40, 10, 20, 10}, // one row
        {20, 10, 20, 15, 20, 25}, // no width
        {40, 10, 38, 15, 33, 26}, // crossed by truncation in most rows
        {0, 9, 8, 9, 0, 20}, // left of the clip
        {56, 9, 63, 9, 60, 20}, // right
        {10, 1, 30, 2, 20, 8}, // above
        {10, 28, 30, 29, 20, 31}, // below
    };
    for (const auto &p : placements) {
        triangle(p[0], p[1], p[2], p[3], p[4], p[5]);
        for (const Fill &f : fills) {
            if (p[0] == 40)
                expectFilled(f, [&](int x, int y) {
                    return trapezoid::draw({{{40, 10, {}}, {38, 15, {}}, {33, 26, {}}}}, 0, {8, 8, 56, 28}).contains({x, y});
                });
            else
                expectFilled(f, [](int, int) { return false; });
        }
    }
}

TEST_F(Occlusion, EdgesTruncateWhereTexturedTrianglesRound)
{
    // From 10 by 3/4 a row: row 1 starts at 10.75. A textured triangle adds a half: 11.
    triangle(10, 4, 40, 4, 13, 8);
    rs.tex0 = solid(0xFFFFFFFF);
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_EQ(at(10, 5), ground);
    EXPECT_EQ(at(11, 5), 0xFFFFFFFFu);
    clear();
    // The right edge from 40 by -27/4: 33.25 in row 1, a textured one 33.75: the same pixel.
    expectFilled(fills[0], [](int x, int y) {
        const int k = y - 4;
        return k >= 0 && k < 4 && x >= (40 + 3 * k) / 4 && x < (160 - 27 * k) / 4;
    });
    EXPECT_TRUE(taken(10, 5));
}

TEST_F(Occlusion, TheScanAgreesWithAPlainWalk)
{
    std::mt19937 random(67);
    for (int round = 0; round < 400 / thin; ++round) {
        std::array<trapezoid::Corner, 3> corners;
        for (size_t k = 0; k < 3; ++k) {
            corners[k] = {static_cast<int>(random() % 90) - 13, static_cast<int>(random() % 50) - 9, {}};
            rs.vertex[k] = {corners[k].x - 3, corners[k].y + 2, 0};
        }
        rs.originX = 3, rs.originY = -2;
        // Equal left and top: then the jump is the usual clip.
        const int edge = static_cast<int>(random() % 12);
        clip(edge, edge, 50 + round % 15, 24 + round % 9);
        const trapezoid::Picture expected = trapezoid::draw(corners, 0, {rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom});
        expectFilled(fills[round % 10], [&](int x, int y) { return expected.contains({x, y}); });
    }
}

TEST_F(Occlusion, ScanShiftPlaysNoPart)
{
    const std::vector<int32_t> shifts(32, 7);
    rs.scanShift = const_cast<int32_t *>(shifts.data());
    triangle(5, 3, 45, 3, 5, 23);
    expectFilled(fills[0], [](int x, int y) { return y >= 3 && y < 23 && x >= 5 && x < 45 - 2 * (y - 3); });
}

// The top clip goes by the wrong field: where clipTop cuts, it jumps clipLeft - row rows.
class TopClip : public Occlusion {
protected:
    // Flat top: columns 10 to 25 - 2 k in row 4 + k, for eight rows.
    static void flatTop() { triangle(10, 4, 26, 4, 10, 12); }
    static bool inFlatTop(int x, int y) { return x >= 10 && x < 26 - 2 * (y - 4); }
};

TEST_F(TopClip, EqualFieldsClipAsOneWouldExpect)
{
    flatTop();
    clip(7, 7, 64, 32);
    for (const Fill &f : fills)
        expectFilled(f, [](int x, int y) { return y >= 7 && y < 12 && inFlatTop(x, y); });
}

TEST_F(TopClip, ALargerClipLeftSkipsRowsInside)
{
    flatTop();
    clip(9, 6, 64, 32); // jump 5: rows 6 to 8 are lost
    for (const Fill &f : fills)
        expectFilled(f, [](int x, int y) { return y >= 9 && y < 12 && inFlatTop(x, y); });
}

TEST_F(TopClip, TheJumpIsNotLimitedByASingleTrapezoid)
{
    flatTop();
    clip(13, 6, 64, 32); // jump 9 of 8 rows
    for (const Fill &f : fills)
        expectFilled(f, [](int, int) { return false; });
    // A flat bottom, too: apex (10, 4), right edge by 2.
    triangle(10, 4, 10, 12, 26, 12);
    clip(13, 6, 64, 32);
    for (const Fill &f : fills)
        expectFilled(f, [](int, int) { return false; });
    clip(8, 6, 64, 32);
    expectFilled(fills[0], [](int x, int y) { return y >= 8 && y < 12 && x >= 10 && x < 10 + 2 * (y - 4); });
}

TEST_F(TopClip, ANegativeJumpIsTakenLiterally)
{
    flatTop();
    clip(1, 6, 64, 32); // jump -3: from row 1, the edges back by three rows, eleven rows high
    for (const Fill &f : fills)
        expectFilled(f, [](int x, int y) { return y >= 1 && y < 12 && inFlatTop(x, y); });
    // Rows above the flat top are wider: 26 + 6 in row 1.
    DrawShaheiPolygonSet();
    EXPECT_TRUE(taken(31, 1));
    // The rows above an apex are crossed and draw nothing.
    triangle(10, 4, 10, 12, 26, 12);
    for (const Fill &f : fills)
        expectFilled(f, [](int x, int y) { return y >= 4 && y < 12 && x >= 10 && x < 10 + 2 * (y - 4); });
}

TEST_F(TopClip, IsLimitedInTheTwoTrapezoidsOfAGeneralTriangle)
{
    // Apex (10, 4), middle (26, 8) on the right, bottom (10, 16): right edge by 4, then from 26 by -2. Left edge vertical.
    const auto inside = [](int x, int y) { return x >= 10 && x < (y < 8 ? 10 + 4 * (y - 4) : 26 - 2 * (y - 8)); };
    triangle(10, 4, 26, 8, 10, 16);
    clip(9, 6, 64, 32); // jump 5, cut to the 4 of the upper part; the lower starts at row 8 and is not above clipTop
    for (const Fill &f : fills)
        expectFilled(f, [&](int x, int y) { return y >= 8 && y < 16 && inside(x, y); });
    clip(6, 10, 64,
         32); // the upper part jumps 2, from row 6 on, though that is above clipTop; the lower one by -2: rows 6, 7 anew
    std::fill(plane.begin(), plane.end(), uint16_t{0});
    DrawShaheiPolygonSet();
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 64; ++x) {
            // In rows 6 and 7 the lower part's right edge is 26 + 2 (8 - y).
            const bool expected = y >= 6 && y < 16 && x >= 10 && x < 26 - 2 * (y - 8);
            ASSERT_EQ(taken(x, y), expected) << x << ", " << y;
        }
    }
    clip(12, 10, 64, 32); // the upper part is jumped over, the lower jumps 4
    for (const Fill &f : fills)
        expectFilled(f, [&](int x, int y) { return y >= 12 && y < 16 && x >= 12 && inside(x, y); });
    clip(3, 6, 64, 32); // jump -1: one row above the apex, which is crossed
    for (const Fill &f : fills)
        expectFilled(f, [&](int x, int y) { return y >= 4 && y < 16 && inside(x, y); });
}

TEST_F(TopClip, RowsAboveClipTopGoIntoThePlaneAtTheirOwnPlace)
{
    // clipLeft 0 above a flat top: the row of the jump is row 0 whatever clipTop is.
    flatTop();
    clip(0, 8, 64, 32);
    for (const Fill &f : fills)
        expectFilled(f, [](int x, int y) { return y >= 0 && y < 12 && inFlatTop(x, y); });
}

} // namespace
