// The row walk of triangles: clip, scan shift, gates, attributes.
#include "support/canvas.h"
#include "support/trapezoid.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

class Walker : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.tex0 = rs.tex1 = equipped(index(64, 32));
        rs.writeMask = 0xFFFFFFFF;
    }

    // The triangle's texture coordinates are its vertices', so that pixels show where they are, and the texture in motion too.
    static void mapByPlace()
    {
        for (int k = 0; k < 3; ++k)
            rs.uv0[k] = rs.uv1[k] = {texels(rs.vertex[k].x), texels(rs.vertex[k].y)};
    }

    static std::vector<Modes> forms()
    {
        std::vector<Modes> all;
        for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC})
            for (int pers : {0, 1})
                for (int shahei : shaheis)
                    all.push_back({.shape = NINEFOLD_SHAPE_TRIANGLE,
                                   .pers = pers,
                                   .filter = filter,
                                   .shahei = shahei,
                                   .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY});
        return all;
    }
};

TEST_F(Walker, AnUpperTrapezoidAboveTheClipHandsItsEdgesOn)
{
    // Middle at row 8. Long edge 4.5 by 1/2; the short one starts anew at 40.5, by -2.
    triangle(4, 0, 40, 8, 16, 24);
    mapByPlace();
    for (const Modes &m : forms()) {
        wipe();
        clip(0, 0, 64, 32);
        draw(m);
        const State whole = state();
        for (int top : {3, 8, 10, 20}) {
            wipe();
            clip(0, top, 64, 32);
            draw(m);
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(at(x, y), y < top ? ground : whole.pixels[size_t(y * 64 + x)])
                        << m << " top " << top << " at " << x << ", " << y;
        }
        wipe();
        clip(0, 8, 64, 32);
        draw(m);
        EXPECT_NE(at(8, 8), ground) << m; // row 8: 4.5 + 8 / 2 to 40.5
        EXPECT_EQ(at(7, 8), ground) << m;
        EXPECT_NE(at(39, 8), ground) << m;
        EXPECT_EQ(at(40, 8), ground) << m;
    }
}

TEST_F(Walker, AClipThatEndsInTheUpperTrapezoidEndsTheTriangle)
{
    triangle(4, 0, 40, 8, 16, 24);
    mapByPlace();
    for (const Modes &m : forms()) {
        wipe();
        clip(0, 0, 64, 32);
        draw(m);
        const State whole = state();
        for (int bottom : {1, 5, 8, 9}) {
            wipe();
            clip(0, 0, 64, bottom);
            draw(m);
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(at(x, y), y >= bottom ? ground : whole.pixels[size_t(y * 64 + x)]) << m << " bottom " << bottom;
        }
    }
}

TEST_F(Walker, SpansOfNoWidthDrawNothingAndDivideByNothing)
{
    // The first row of a general triangle has both ends in one column; a line has it in every row.
    for (const Modes &m : forms()) {
        wipe();
        triangle(10, 2, 10, 12, 10, 25);
        mapByPlace();
        draw(m);
        triangle(10, 2, 10, 25, 10, 12);
        draw(m);
        EXPECT_TRUE(untouched()) << m;
        EXPECT_EQ(plane, std::vector<uint16_t>(plane.size(), 0)) << m;
    }
}

TEST_F(Walker, SpansThatRoundingCrossesDrawNothingAndMarkNothing)
{
    // Slivers around a line, to either side.
    std::mt19937 random(23);
    for (int round = 0; round < 200; ++round) {
        const int x = 20 + static_cast<int>(random() % 20), h1 = 1 + static_cast<int>(random() % 14),
                  h2 = 1 + static_cast<int>(random() % 14);
        const int dx = static_cast<int>(random() % 31) - 15;
        triangle(x, 1, x + dx * h1 / (h1 + h2), 1 + h1, x + dx, 1 + h1 + h2);
        mapByPlace();
        std::array<trapezoid::Corner, 3> corners;
        for (size_t k = 0; k < 3; ++k)
            corners[k] = {rs.vertex[k].x, rs.vertex[k].y, {}};
        const trapezoid::Picture expected = trapezoid::draw(corners, 0x8000, {0, 0, 64, 32});
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
            wipe();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = shahei});
            EXPECT_EQ(drawnCount(), static_cast<int>(expected.size())) << round;
            for (int py = 0; py < 32; ++py)
                for (int px = 0; px < 64; ++px)
                    ASSERT_EQ(taken(px, py), shahei && expected.contains({px, py})) << round << " at " << px << ", " << py;
        }
    }
}

TEST_F(Walker, CrossedEndsChangeNoBitWhateverThePlaneHolds)
{
    std::mt19937 random(29);
    // Downward to the left with its middle on the line: crossed in every row.
    triangle(60, 0, 45, 8, 1, 31);
    mapByPlace();
    for (int round = 0; round < 20; ++round) {
        wipe();
        for (uint16_t &word : plane)
            word = static_cast<uint16_t>(random());
        const std::vector<uint16_t> before = plane;
        std::array<trapezoid::Corner, 3> corners;
        for (size_t k = 0; k < 3; ++k)
            corners[k] = {rs.vertex[k].x, rs.vertex[k].y, {}};
        const trapezoid::Picture expected = trapezoid::draw(corners, 0x8000, {0, 0, 64, 32});
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = NINEFOLD_SHAHEI_PLANE});
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const bool was = before[size_t(y * 4 + x / 16)] >> (15 - x % 16) & 1;
                ASSERT_EQ(taken(x, y), was || expected.contains({x, y})) << x << ", " << y;
            }
        }
    }
}

TEST_F(Walker, ScanShiftMovesSpansWithTheirTexels)
{
    std::vector<int32_t> shifts(32);
    for (int y = 0; y < 32; ++y)
        shifts[size_t(y)] = (y * 7) % 23 - 11;
    triangle(20, 1, 44, 9, 28, 31);
    mapByPlace();
    for (const Modes &m : forms()) {
        rs.scanShift = nullptr;
        wipe();
        draw(m);
        const State straight = state();
        rs.scanShift = shifts.data();
        wipe();
        draw(m);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const int from = x - shifts[size_t(y)];
                const uint32_t expected = from >= 0 && from < 64 ? straight.pixels[size_t(y * 64 + from)] : ground;
                ASSERT_EQ(at(x, y), expected) << m << " at " << x << ", " << y;
                if (marksPlane(m.shahei)) {
                    ASSERT_EQ(taken(x, y), expected != ground) << m;
                }
            }
        }
    }
}

TEST_F(Walker, AShiftBeyondTheClipSkipsItsRowAndDisturbsNoOther)
{
    std::vector<int32_t> shifts(32, 0);
    shifts[5] = 1000, shifts[6] = -1000, shifts[7] = 40, shifts[9] = INT32_MAX - 100, shifts[10] = INT32_MIN + 100;
    triangle(20, 1, 44, 9, 28, 31);
    mapByPlace();
    clip(8, 2, 60, 30);
    for (const Modes &m : forms()) {
        rs.scanShift = nullptr;
        wipe();
        draw(m);
        const State straight = state();
        rs.scanShift = shifts.data();
        wipe();
        draw(m);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const bool gone = y == 5 || y == 6 || y == 7 || y == 9 || y == 10;
                ASSERT_EQ(at(x, y), gone ? ground : straight.pixels[size_t(y * 64 + x)]) << m << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(Walker, ScanShiftIsReadAtAbsoluteRowsInsideTheClipOnly)
{
    // A table that has just those rows: the sanitizers see what lies outside.
    const std::vector<int32_t> shifts(10, 3);
    triangle(10, -20, 40, -5, 20, 60);
    rs.originY = 4;
    clip(0, 12, 64, 22);
    for (const Modes &m : forms()) {
        rs.scanShift = nullptr;
        wipe();
        draw(m);
        const State straight = state();
        rs.scanShift = const_cast<int32_t *>(shifts.data()) - 12;
        wipe();
        draw(m);
        for (int y = 12; y < 22; ++y)
            for (int x = 3; x < 64; ++x)
                ASSERT_EQ(at(x, y), straight.pixels[size_t(y * 64 + x - 3)]) << m;
    }
}

TEST_F(Walker, ASpanClippedOnTheLeftShowsTheSameTexels)
{
    triangle(-9, 2, 61, 7, 13, 30);
    rs.uv0[0] = {0x12345, 0x23456}, rs.uv0[1] = {0x1E54321, 0x34567}, rs.uv0[2] = {0x345678, 0x1098765};
    for (const Modes &m : forms()) {
        wipe();
        clip(0, 0, 64, 32);
        draw(m);
        const State whole = state();
        wipe();
        clip(17, 0, 41, 32);
        draw(m);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 64; ++x)
                ASSERT_EQ(at(x, y), x < 17 || x >= 41 ? ground : whole.pixels[size_t(y * 64 + x)])
                    << m << " at " << x << ", " << y;
    }
}

TEST_F(Walker, SlopesTruncate)
{
    // Left edge u 0 to 10 texels, right edge 0 to 20, over 8 rows; row y is 3 y wide.
    triangle(4, 0, 4, 8, 28, 8);
    rs.uv0[0] = {0, 0}, rs.uv0[1] = {texels(10), 0}, rs.uv0[2] = {texels(20), 0};
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        for (int y = 1; y < 8; ++y) {
            const int left = 81920 * y, right = 163840 * y, step = (right - left) / (3 * y); // 27306 of 27306.67
            for (int x = 0; x < 3 * y; ++x)
                ASSERT_EQ(at(4 + x, y), idAt(uint32_t(left + step * x) >> 16, 0)) << m << " at " << x << ", " << y;
            ASSERT_EQ(at(4 + 3 * y, y), ground) << m;
        }
    }
}

TEST_F(Walker, TexelsOfNegativePositionsFloor)
{
    triangle(0, 0, 8, 0, 0, 8);
    rs.uv0[0] = {-0x8000, -0x8000}, rs.uv0[1] = {-0x8000 + texels(8), -0x8000}, rs.uv0[2] = {-0x8000, -0x8000 + texels(8)};
    for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC}) {
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = filter});
        EXPECT_EQ(row(0, 0, 3), (Pixels{idAt(63, 31), idAt(0, 31), idAt(1, 31)}));
        EXPECT_EQ(row(1, 0, 3), (Pixels{idAt(63, 0), idAt(0, 0), idAt(1, 0)}));
    }
}

TEST_F(Walker, ASecondTriangleFillsWhatTheFirstLeftOpen)
{
    Texture *holed = texture(64, 32, [](uint32_t u, uint32_t v) { return (u + v) % 4 ? idAt(u, v) : 0; });
    Texture *full = texture(64, 32, [](uint32_t, uint32_t) { return 0xFFABCDEF; });
    for (Texture *t : {holed, full})
        equipped(t);
    for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_MIP}) {
        for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
            const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = filter, .shahei = shahei};
            wipe();
            triangle(3, 1, 60, 4, 30, 31);
            mapByPlace();
            rs.tex0 = holed;
            draw(m);
            const State first = state();
            rs.tex0 = full;
            draw(m);
            int filled = 0;
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const uint32_t was = first.pixels[size_t(y * 64 + x)];
                    const bool bit = first.plane[size_t(y * 4 + x / 16)] >> (15 - x % 16) & 1;
                    ASSERT_EQ(bit, was != ground);
                    if (bit) {
                        ASSERT_EQ(at(x, y), was) << "what the first one drew stays";
                    }
                    filled += !bit && at(x, y) == 0xFFABCDEF;
                }
            }
            EXPECT_GT(filled, 100) << m;
        }
    }
}

TEST_F(Walker, SpansInOneWordAndSpansThatEndOnOneKeepTheBitsAround)
{
    std::mt19937 random(31);
    for (const auto &[left, right] :
         {std::pair{19, 27}, {16, 32}, {17, 32}, {16, 31}, {5, 16}, {15, 17}, {31, 33}, {48, 64}, {63, 64}}) {
        for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
            wipe();
            for (uint16_t &word : plane)
                word = static_cast<uint16_t>(random() & random());
            const std::vector<uint16_t> before = plane;
            // Vertical edges for a few rows: two of the triangles that make a rectangle, cut by the clip.
            const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = shahei};
            place(m, left, 4, right, 9);
            draw(m);
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const bool was = before[size_t(y * 4 + x / 16)] >> (15 - x % 16) & 1;
                    const bool inside = x >= left && x < right && y >= 4 && y < 9;
                    ASSERT_EQ(taken(x, y), was || inside) << left << " to " << right << " at " << x << ", " << y;
                    ASSERT_EQ(at(x, y), inside && !was ? idAt(uint32_t(x), uint32_t(y)) : ground) << left << " to " << right;
                }
            }
        }
    }
}

TEST_F(Walker, SpansThatTheTriangleEndsOnAWordBoundaryKeepTheWordBehind)
{
    // The right edge is vertical at 32; no clip takes part.
    triangle(32, 2, 32, 10, 16, 10);
    mapByPlace();
    for (uint16_t behind : {uint16_t{0}, uint16_t{0xFFFF}, uint16_t{0x8001}}) {
        wipe();
        for (size_t y = 0; y < 32; ++y)
            plane[y * 4 + 2] = behind;
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = NINEFOLD_SHAHEI_PLANE});
        for (size_t y = 0; y < 32; ++y)
            EXPECT_EQ(plane[y * 4 + 2], behind);
        EXPECT_EQ(plane[9 * 4 + 1], 0x3FFF); // columns 18 to 31
    }
}

TEST_F(Walker, ColoursOfCornersFollowTheirVertices)
{
    // color[i] belongs to vertex[i]: red along x, green along y, blue at the top only.
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    const int orders[][3] = {{0, 1, 2}, {1, 2, 0}, {2, 1, 0}};
    const Vertex v[] = {{0, 0, 1}, {16, 0, 1}, {0, 16, 1}};
    const uint32_t colour[] = {0x00000010, 0x00800010, 0x00008010};
    for (const auto &order : orders) {
        for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_BILINEAR, NINEFOLD_FILTER_MOSAIC}) {
            for (int k = 0; k < 3; ++k)
                rs.vertex[k] = v[order[k]], rs.color[k] = colour[order[k]];
            mapByPlace();
            clear();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = filter, .multi = NINEFOLD_MULTI_CORNERS});
            const uint32_t alpha = filter == NINEFOLD_FILTER_BILINEAR ? 0 : 0xFF000000;
            for (uint32_t y = 0; y < 16; ++y)
                for (uint32_t x = 0; x < 16 - y; ++x)
                    ASSERT_EQ(at(int(x), int(y)), alpha | x * 8 << 16 | y * 8 << 8 | 0x10) << x << ", " << y;
        }
    }
}

TEST_F(Walker, TheOneColourIsNotSortedWithTheVertices)
{
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    rs.color[0] = 0x00112233, rs.color[1] = 0x00445566, rs.color[2] = 0x00778899;
    triangle(0, 16, 16, 0, 0, 0);
    mapByPlace();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .multi = NINEFOLD_MULTI_COLOUR});
    EXPECT_EQ(at(3, 3), 0xFF112233u);
    EXPECT_EQ(at(12, 0), 0xFF112233u);
}

TEST_F(Walker, TheSecondTextureHasAttributesAndMasksOfItsOwn)
{
    rs.tex0 = equipped(solid(0xFF000000));
    rs.tex1 = texture(8, 4, [](uint32_t u, uint32_t v) { return 0x800000 + v * 0x100 + u; });
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    triangle(0, 0, 16, 0, 0, 16);
    rs.uv1[0] = {texels(3), texels(2)}, rs.uv1[1] = {texels(35), texels(2)}, rs.uv1[2] = {texels(3), texels(10)};
    for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC}) {
        for (int pers : {0, 1}) {
            clear();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers, .filter = filter, .multi = NINEFOLD_MULTI_TEXTURE});
            for (uint32_t y = 0; y < 8; ++y)
                for (uint32_t x = 0; x < 16 - y; ++x) // two texels a pixel across, half a texel a row down
                    ASSERT_EQ(at(int(x), int(y)), 0xFF800000 + ((2 + y / 2) & 3) * 0x100 + ((3 + 2 * x) & 7)) << x << ", " << y;
        }
    }
}

TEST_F(Walker, RefusedPixelsStepAllTheSame)
{
    triangle(0, 0, 32, 0, 0, 32);
    mapByPlace();
    std::fill_n(rs.drawMask, 16, uint16_t{0xA5C3});
    rs.zRef = 7;
    for (const Modes &m : forms()) {
        wipe();
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 64; ++x)
                zAt(x, y) = (x * 3 + y) % 4 ? 7 : 6;
        for (size_t k = 0; k < plane.size(); ++k)
            plane[k] = 0x1812;
        draw(m);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32 - y; ++x) {
                bool drawn = true;
                if (marksPlane(m.shahei))
                    drawn = !((0xA5C3 | 0x1812) >> (15 - x % 16) & 1);
                if (m.shahei == NINEFOLD_SHAHEI_STIPPLE || m.shahei == NINEFOLD_SHAHEI_PRIORITY_STIPPLE)
                    drawn = !(0xA5C3 >> (15 - x % 16) & 1);
                if (testsPriority(m.shahei))
                    drawn = drawn && (x * 3 + y) % 4;
                ASSERT_EQ(at(x, y), drawn ? idAt(uint32_t(x), uint32_t(y)) : ground) << m << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(Walker, OnlyTheLowByteOfZRefCounts)
{
    triangle(0, 0, 16, 0, 0, 16);
    mapByPlace();
    for (int shahei : {NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        wipe();
        std::fill(z.begin(), z.end(), uint8_t{5});
        rs.zRef = 0x105;
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = shahei, .blend = NINEFOLD_BLEND_MERGE});
        EXPECT_EQ(at(3, 3), idAt(3, 3));
        wipe();
        rs.zRef = 0x06;
        std::fill(z.begin(), z.end(), uint8_t{5});
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = shahei, .blend = NINEFOLD_BLEND_MERGE});
        EXPECT_TRUE(untouched());
    }
}

TEST_F(Walker, AnEmptyClipRectangleReadsAndWritesNoPlaneAlsoWhereTheSourceIsTheFrameBuffer)
{
    // The word before the plane's first is not the plane's.
    rs.tex0 = frame;
    rs.uv0[1] = {texels(16), texels(4)};
    corners(-5, 0, 30, 4);
    for (int left : {0, 5, 16}) {
        clip(left, 0, left, 8);
        for (const Modes &m :
             {Modes{.shahei = NINEFOLD_SHAHEI_PLANE},
              {.shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY},
              {.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH, .shahei = NINEFOLD_SHAHEI_PLANE}}) {
            wipe();
            draw(m);
            EXPECT_TRUE(untouched()) << m << " from " << left;
        }
    }
}

} // namespace
