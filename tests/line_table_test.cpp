// Line-table rectangles (rect option 3), and what a row that is left out moves and what it does not.
#include "support/canvas.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class LineTable : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.tex0 = equipped(index(64, 32));
        rs.tex1 = equipped(texture(64, 32, [](uint32_t u, uint32_t v) { return 0x800000 + v * 0x1000 + u; }));
        rs.writeMask = 0xFFFFFFFF;
    }

    // Point samples of tex0. Those with a Z test merge all bits.
    static std::vector<Modes> forms(const std::vector<int> &gates, int multi = NINEFOLD_MULTI_NONE)
    {
        std::vector<Modes> all;
        for (int shahei : gates)
            for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_MIP})
                if (filter != NINEFOLD_FILTER_MIP || (multi == NINEFOLD_MULTI_NONE && !marksPlane(shahei)))
                    all.push_back({.filter = filter,
                                   .rectOpt = NINEFOLD_RECT_TABLE,
                                   .shahei = shahei,
                                   .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY,
                                   .multi = multi});
        return all;
    }

    // Texel for pixel over (0, 0) to (16, 8), with row 4 left out.
    void gapInRowFour()
    {
        place({}, 0, 0, 16, 8);
        lines[4].startU = NINEFOLD_SKIP_ROW;
    }

    // Row y shows pixel y above the gap, and pixel y - 1 below it.
    void expectDiagonalThatLags(const Modes &m)
    {
        for (int y = 0; y < 8; ++y) {
            Pixels expected(16, ground);
            const int x = y < 4 ? y : y - 1;
            if (y != 4)
                expected[size_t(x)] = idAt(uint32_t(x), uint32_t(y));
            EXPECT_EQ(row(y, 0, 16), expected) << m << " row " << y;
        }
    }

    static Pixels texelRow(uint32_t v, int n)
    {
        Pixels pixels;
        for (int u = 0; u < n; ++u)
            pixels.push_back(idAt(uint32_t(u), v));
        return pixels;
    }
};

TEST_F(LineTable, EachRowHasASegmentOfItsOwn)
{
    place({}, 8, 4, 16, 9);
    lines[0] = {texels(3), texels(5), texels(11), texels(5)}; // unit scale
    lines[1] = {texels(20), texels(9), texels(12), texels(9)}; // mirrored
    lines[2] = {texels(30), texels(2), texels(30), texels(10)}; // straight down one column
    lines[3] = {texels(0), texels(0), texels(4), texels(8)}; // slanted, half a column a pixel
    lines[4] = {texels(50), texels(20), texels(50), texels(12)}; // straight up one
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_STIPPLE})) {
        clear();
        draw(m);
        for (uint32_t k = 0; k < 8; ++k) {
            EXPECT_EQ(at(8 + int(k), 4), idAt(3 + k, 5)) << m;
            EXPECT_EQ(at(8 + int(k), 5), idAt(20 - k, 9)) << m;
            EXPECT_EQ(at(8 + int(k), 6), idAt(30, 2 + k)) << m;
            EXPECT_EQ(at(8 + int(k), 7), idAt(k / 2, k)) << m;
            EXPECT_EQ(at(8 + int(k), 8), idAt(50, 20 - k)) << m;
        }
        EXPECT_TRUE(groundOutside(8, 4, 16, 9));
    }
}

TEST_F(LineTable, RowsAndColumnsBothFloorAndStepsTruncate)
{
    place({}, 0, 0, 3, 1);
    // From half a texel before 0; 2 texels over 3 pixels are 0xAAAA and -2 texels -0xAAAA.
    lines[0] = {-0x8000, -0x8000, -0x8000 + texels(2), -0x8000 - texels(2)};
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})) {
        wipe();
        draw(m);
        // u: -0x8000, 0x2AAA, 0xD554; v: -0x8000, -0x12AAA, -0x1D554.
        EXPECT_EQ(row(0, 0, 3), (Pixels{idAt(63, 31), idAt(0, 30), idAt(0, 30)})) << m;
    }
}

TEST_F(LineTable, TheFirstDrawnRecordIsThatOfTheFirstRowTheClipLeaves)
{
    place({}, 4, -10, 20, 10);
    for (uint32_t k = 0; k < 20; ++k)
        lines[k] = {texels(int(k)), texels(3), texels(int(k) + 16), texels(3)};
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})) {
        wipe();
        rs.clipLeft = 7;
        draw(m);
        rs.clipLeft = 0;
        for (int y = 0; y < 10; ++y) // row y has record 10 + y; column 7 is 3 steps in
            for (int x = 7; x < 20; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(10 + y + x - 4), 3)) << m;
        EXPECT_TRUE(groundOutside(7, 0, 20, 10)) << m;
    }
}

TEST_F(LineTable, ATableOfLeftOutRowsDrawsNothingAndTouchesNoPlane)
{
    place({}, 3, 2, 40, 20);
    for (LineTableRecord &line : lines)
        line.startU = NINEFOLD_SKIP_ROW;
    lines.push_back({1, 1, 1, 1});
    for (int shahei : shaheis) {
        for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_BILINEAR, NINEFOLD_FILTER_MIP,
                           NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP_BILINEAR}) {
            for (int multi : multis) {
                const Modes m{.filter = filter,
                              .rectOpt = NINEFOLD_RECT_TABLE,
                              .shahei = shahei,
                              .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY,
                              .multi = multi};
                wipe();
                std::fill(plane.begin(), plane.end(), uint16_t{0x1248});
                const State before = state();
                draw(m);
                EXPECT_TRUE(state() == before) << m; // nor mipTex and its like
            }
        }
    }
}

TEST_F(LineTable, OnlyTheExactStartUIsTheSentinel)
{
    place({}, 0, 0, 1, 4);
    lines[0] = {0x7FFF0001, 0, 0x7FFF0001, 0};
    lines[1] = {0x7FFEFFFF, 0, 0x7FFEFFFF, 0};
    lines[2] = {0, NINEFOLD_SKIP_ROW, NINEFOLD_SKIP_ROW, NINEFOLD_SKIP_ROW};
    lines[3] = {NINEFOLD_SKIP_ROW, 0, 0, 0};
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_STIPPLE})) {
        if (m.filter != NINEFOLD_FILTER_POINT && m.filter != NINEFOLD_FILTER_MOSAIC)
            continue; // the length of row 2 asks for a smaller level
        clear();
        draw(m);
        EXPECT_EQ(column(0, 0, 4), (Pixels{idAt(63, 0), idAt(62, 0), idAt(0, 31), ground})) << m;
    }
}

TEST_F(LineTable, BehindAGapTheFrameBufferTheTableAndTheZPlaneHaveMovedOn)
{
    gapInRowFour();
    for (const Modes &m : forms({std::begin(shaheis), std::end(shaheis)})) {
        wipe();
        for (int x = 0; x < 16; ++x)
            for (int y = 0; y < 8; ++y)
                zAt(x, y) = static_cast<uint8_t>(y == 5 && x % 2 ? 1 : 2);
        rs.zRef = 2;
        draw(m);
        for (int y = 0; y < 8; ++y) {
            Pixels expected = y == 4 ? Pixels(16, ground) : texelRow(uint32_t(y), 16);
            if (y == 5 && (testsPriority(m.shahei))) // the Z bytes of row 5 are those of row 5
                for (size_t x = 1; x < 16; x += 2)
                    expected[x] = ground;
            EXPECT_EQ(row(y, 0, 16), expected) << m << " row " << y;
        }
    }
}

TEST_F(LineTable, BehindAGapTheStippleRowIsThatOfTheRowAbove)
{
    gapInRowFour();
    for (int y = 0; y < 16; ++y) // row y lets pixel y through
        rs.drawMask[y] = static_cast<uint16_t>(~(0x8000 >> y));
    for (const Modes &m : forms({NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE,
                                 NINEFOLD_SHAHEI_PRIORITY_STIPPLE})) {
        wipe();
        rs.zRef = 0;
        draw(m);
        expectDiagonalThatLags(m);
    }
}

TEST_F(LineTable, BehindAGapThePlaneWordsAreThoseOfTheRowAbove)
{
    gapInRowFour();
    for (const Modes &m : forms({NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY})) {
        wipe();
        plane[4 * 4] = 0xF000; // seen by row 5
        plane[4 * 7] = 0x00FF; // seen by none
        rs.zRef = 0x42;
        draw(m);
        EXPECT_EQ(row(3, 0, 16), texelRow(3, 16)) << m;
        Pixels five = texelRow(5, 16);
        std::fill_n(five.begin(), 4, ground);
        EXPECT_EQ(row(5, 0, 16), five) << m;
        EXPECT_EQ(row(7, 0, 16), texelRow(7, 16)) << m;
        for (size_t y = 0; y < 7; ++y)
            EXPECT_EQ(plane[4 * y], 0xFFFF) << m << " row " << y;
        EXPECT_EQ(plane[4 * 7], 0x00FF) << m;
        // The Z bytes are written where the pixels are.
        EXPECT_EQ(zAt(0, 4), 0);
        EXPECT_EQ(zAt(0, 5), 0);
        EXPECT_EQ(zAt(4, 5), m.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x42 : 0) << m;
        EXPECT_EQ(zAt(0, 7), m.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x42 : 0) << m;
    }
}

TEST_F(LineTable, BehindAGapTheRuleRowIsThatOfTheRowAbove)
{
    gapInRowFour();
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t v) { return u == v ? 255u : 0u; }); // row y passes pixel y
    for (Modes m : forms({std::begin(shaheis), std::end(shaheis)})) {
        m.rule = NINEFOLD_RULE_ON;
        wipe();
        rs.zRef = 0;
        draw(m);
        expectDiagonalThatLags(m);
    }
}

TEST_F(LineTable, SeveralGapsAddUp)
{
    place({}, 0, 0, 16, 8);
    lines[1].startU = lines[2].startU = lines[5].startU = NINEFOLD_SKIP_ROW;
    for (int y = 0; y < 16; ++y)
        rs.drawMask[y] = static_cast<uint16_t>(~(0x8000 >> y));
    for (const Modes &m : forms({NINEFOLD_SHAHEI_STIPPLE})) {
        clear();
        draw(m);
        // Rows 0, 3, 4, 6, 7 take the stipple rows 0, 1, 2, 3, 4.
        EXPECT_EQ(drawnCount(), 5) << m;
        EXPECT_EQ(at(0, 0), idAt(0, 0));
        EXPECT_EQ(at(1, 3), idAt(1, 3));
        EXPECT_EQ(at(2, 4), idAt(2, 4));
        EXPECT_EQ(at(3, 6), idAt(3, 6));
        EXPECT_EQ(at(4, 7), idAt(4, 7));
    }
}

TEST_F(LineTable, GapsThatTheClipCutsOffDoNotCount)
{
    gapInRowFour();
    lines[1].startU = NINEFOLD_SKIP_ROW; // cut off below
    rs.tex2 = texture(64, 32, [](uint32_t, uint32_t v) { return v == 2 || v == 3 || v == 4 ? 255u : 0u; });
    for (int y = 0; y < 16; ++y)
        rs.drawMask[y] = y == 2 || y == 4 ? 0x00FF : 0xFFFF;
    for (Modes m : forms({NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})) {
        m.rule = NINEFOLD_RULE_ON;
        wipe();
        plane[4 * 2] = 0x8000;
        rs.clipTop = 2;
        draw(m);
        rs.clipTop = 0;
        // Rows 2, 3 take stipple, plane and rule rows 2, 3; row 5 takes 4.
        Pixels two = texelRow(2, 16), five = texelRow(5, 16);
        for (size_t x = 8; x < 16; ++x)
            two[x] = five[x] = ground;
        if (m.shahei == NINEFOLD_SHAHEI_PLANE)
            two[0] = ground;
        EXPECT_EQ(row(2, 0, 16), two) << m;
        EXPECT_EQ(row(3, 0, 16), Pixels(16, ground)) << m;
        EXPECT_EQ(row(5, 0, 16), five) << m;
        EXPECT_EQ(row(6, 0, 16), Pixels(16, ground)) << m;
    }
}

TEST_F(LineTable, CornerColoursStepOverGaps)
{
    gapInRowFour();
    rs.color[2] = rs.color[3] = 80; // 10 a row
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}, NINEFOLD_MULTI_CORNERS)) {
        wipe();
        draw(m);
        for (int y = 0; y < 8; ++y)
            EXPECT_EQ(row(y, 0, 16), y == 4 ? Pixels(16, ground) : Pixels(16, 0xFF000000 + uint32_t(y) * 10))
                << m << " row " << y;
    }
}

TEST_F(LineTable, TheSecondTableStepsOverGapsAndIsNotTestedItself)
{
    gapInRowFour();
    std::vector<LineTableRecord> second(8);
    for (int y = 0; y < 8; ++y)
        second[size_t(y)] = {texels(20 + y), texels(y), texels(36 + y), texels(y)};
    second[2] = {NINEFOLD_SKIP_ROW, texels(3), NINEFOLD_SKIP_ROW, texels(3)}; // column 0x7FFF is 63, wrapped
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}, NINEFOLD_MULTI_TEXTURE)) {
        rs.lineTable1 = second.data();
        wipe();
        draw(m);
        for (int y = 0; y < 8; ++y) {
            Pixels expected(16, ground);
            for (uint32_t x = 0; y != 4 && x < 16; ++x)
                expected[x] = y == 2 ? 0xFF80303F : 0xFF800000 + uint32_t(y) * 0x1000 + uint32_t(20 + y) + x;
            EXPECT_EQ(row(y, 0, 16), expected) << m << " row " << y;
        }
    }
}

TEST_F(LineTable, WithoutASecondTextureTheSecondTableIsNotRead)
{
    gapInRowFour();
    rs.lineTable1 = nullptr;
    rs.tex1 = nullptr;
    for (int multi : {NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_NONE})
        for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}, multi))
            draw(m);
    EXPECT_NE(at(0, 0), ground);
}

TEST_F(LineTable, ReversedCornersLeaveTheTableAndExchangeColoursAndRule)
{
    rs.tex2 = texture(64, 32, [](uint32_t u, uint32_t) { return u == 0 ? 255u : 0u; });
    rs.color[0] = 10, rs.color[1] = 20, rs.color[2] = 30, rs.color[3] = 40;
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})) {
        wipe();
        place({}, 8, 4, 16, 8);
        corners(16, 8, 8, 4);
        draw(m);
        for (int y = 4; y < 8; ++y)
            for (int x = 8; x < 16; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(x), uint32_t(y))) << m;
        // Colours: the bottom right's is now at the top left.
        Modes coloured = m;
        coloured.multi = NINEFOLD_MULTI_CORNERS;
        if (m.filter != NINEFOLD_FILTER_MIP) {
            wipe();
            draw(coloured);
            EXPECT_EQ(at(8, 4), 0xFF000000u + 40) << m;
        }
        // The rule runs from 7 down by 7/8 a pixel: column 0 at the last one alone. Unexchanged the first two would pass.
        Modes ruled = m;
        ruled.rule = NINEFOLD_RULE_ON;
        rs.uv2[0] = {texels(0), 0}, rs.uv2[1] = {texels(7), 0};
        wipe();
        draw(ruled);
        EXPECT_EQ(row(5, 8, 16), (Pixels{ground, ground, ground, ground, ground, ground, ground, idAt(15, 5)})) << m;
    }
}

TEST_F(LineTable, ASegmentIsAsWideAsTheRectangleWhateverTheClipLeaves)
{
    place({}, 0, 0, 10, 1);
    lines[0] = {0, 0, texels(7), texels(3)};
    // 458752 / 10 = 45875, 196608 / 10 = 19660.
    for (const Modes &m : forms({NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})) {
        wipe();
        clip(4, 0, 8, 1);
        draw(m);
        clip(0, 0, 64, 32);
        Pixels expected;
        for (uint32_t x = 4; x < 8; ++x)
            expected.push_back(idAt(x * 45875 >> 16, x * 19660 >> 16));
        EXPECT_EQ(row(0, 4, 8), expected) << m;
        EXPECT_TRUE(groundOutside(4, 0, 8, 1)) << m;
    }
}

} // namespace
