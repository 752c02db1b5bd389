// Triangle setup: vertex order, rejection, edges.
#include "support/canvas.h"
#include "support/trapezoid.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

const int orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

class Triangle : public Canvas {
protected:
    explicit Triangle(unsigned w = 64, unsigned h = 32) : Canvas(w, h) {}

    void SetUp() override
    {
        Canvas::SetUp();
        rs.tex0 = rs.tex1 = equipped(solid(0xFFABCDEF));
    }

    // Columns that a row has, as the first one drawn and the one behind the last; {0, 0} for none.
    std::pair<int, int> spanOf(int y) const
    {
        int first = 0, end = 0;
        for (int x = 0; x < static_cast<int>(width); ++x) {
            if (at(x, y) == ground)
                continue;
            if (end == 0)
                first = x;
            end = x + 1;
        }
        return {first, end};
    }

    std::vector<std::pair<int, int>> spans(int top, int bottom) const
    {
        std::vector<std::pair<int, int>> all;
        for (int y = top; y < bottom; ++y)
            all.push_back(spanOf(y));
        return all;
    }

    static std::vector<Modes> forms()
    {
        std::vector<Modes> all;
        for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_BILINEAR})
            for (int pers : {0, 1})
                for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})
                    all.push_back({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers, .filter = filter, .shahei = shahei});
        return all;
    }
};

TEST_F(Triangle, EdgesAreRoundedToTheNearestPixelAndExclusiveRightAndBelow)
{
    // Long edge from 2.5 by 1/4 a row; short edge from 2.5 by 2, then from 10.5 by -3/2.
    triangle(2, 1, 10, 5, 4, 9);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(spans(0, 10), (std::vector<std::pair<int, int>>{
                                    {0, 0}, {0, 0}, {2, 4}, {3, 6}, {3, 8}, {3, 10}, {3, 9}, {4, 7}, {4, 6}, {0, 0}}))
            << m;
    }
}

TEST_F(Triangle, TheMiddleVertexMayLieOnEitherSideOfTheLongEdge)
{
    // The mirror image: rounding makes it no mirror image of pixels. Long edge from 10.5 by -1/4, short edge by -2, then from 2.5
    // by 3/2.
    triangle(10, 1, 2, 5, 8, 9);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(spans(1, 9),
                  (std::vector<std::pair<int, int>>{{0, 0}, {8, 10}, {6, 10}, {4, 9}, {2, 9}, {4, 9}, {5, 9}, {7, 8}}))
            << m;
    }
}

TEST_F(Triangle, FlatTopsAndBottoms)
{
    for (const Modes &m : forms()) {
        triangle(4, 2, 12, 2, 8, 10); // 4.5 by 1/2 and 12.5 by -1/2
        wipe();
        draw(m);
        EXPECT_EQ(spans(1, 11), (std::vector<std::pair<int, int>>{
                                    {0, 0}, {4, 12}, {5, 12}, {5, 11}, {6, 11}, {6, 10}, {7, 10}, {7, 9}, {8, 9}, {0, 0}}))
            << m;
        triangle(8, 2, 4, 10, 12, 10); // 8.5 by -1/2 and by 1/2
        wipe();
        draw(m);
        EXPECT_EQ(spans(1, 11), (std::vector<std::pair<int, int>>{
                                    {0, 0}, {0, 0}, {8, 9}, {7, 9}, {7, 10}, {6, 10}, {6, 11}, {5, 11}, {5, 12}, {0, 0}}))
            << m;
    }
}

TEST_F(Triangle, OneRowDrawsNothing)
{
    for (const Modes &m : forms()) {
        for (const auto &x : {std::array{3, 40, 20}, {20, 3, 40}, {40, 20, 3}, {7, 7, 7}, {-100, 1000, 5}}) {
            triangle(x[0], 9, x[1], 9, x[2], 9);
            wipe();
            draw(m);
            EXPECT_TRUE(untouched()) << m;
        }
    }
}

TEST_F(Triangle, AnyVertexOrderGivesTheSamePixels)
{
    rs.tex0 = equipped(index(64, 32));
    rs.tex1 = equipped(index(64, 32));
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        Vertex v[3];
        TexCoord uv[3];
        uint32_t colour[3];
        for (int k = 0; k < 3; ++k) {
            v[k] = {static_cast<int>(random() % 80) - 8, static_cast<int>(random() % 44) - 6, 1 + static_cast<int>(random() % 5)};
            uv[k] = {static_cast<int32_t>(random() % 0x400000), static_cast<int32_t>(random() % 0x200000)};
            colour[k] = static_cast<uint32_t>(random());
        }
        if (round % 4 == 1)
            v[1].y = v[0].y, v[1].x = v[0].x + 9; // flat top or bottom
        if (round % 4 == 2)
            v[2].y = v[0].y, v[2].x = v[0].x - 9;
        for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
            for (int multi : {NINEFOLD_MULTI_NONE, NINEFOLD_MULTI_CORNERS}) {
                const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = round % 2, .filter = filter, .multi = multi};
                State first;
                for (const auto &order : orders) {
                    for (int k = 0; k < 3; ++k)
                        rs.vertex[k] = v[order[k]], rs.uv0[k] = uv[order[k]], rs.color[k] = colour[order[k]];
                    clear();
                    if (filter == NINEFOLD_FILTER_FLAT)
                        rs.color[0] = 0xFF00FF00; // not sorted with the vertices
                    draw(m);
                    if (order[0] == 0 && order[1] == 1)
                        first = state();
                    EXPECT_EQ(state().pixels, first.pixels) << m << " round " << round;
                }
            }
        }
    }
}

TEST_F(Triangle, OnFlatEdgesTheLeftCornerComesFirstWhateverTheOrder)
{
    // Left texels are 8, right ones 40: seen in every row's first pixel.
    rs.tex0 = equipped(index(64, 32));
    const int shapes[][3][2] = {
        {{10, 4}, {26, 4}, {10, 20}}, {{10, 4}, {26, 4}, {26, 20}}, {{10, 20}, {26, 20}, {10, 4}}, {{10, 20}, {26, 20}, {26, 4}}};
    for (const auto &shape : shapes) {
        std::vector<uint32_t> first;
        for (const auto &order : orders) {
            for (int k = 0; k < 3; ++k) {
                const auto &corner = shape[order[k]];
                rs.vertex[k] = {corner[0], corner[1], 1};
                rs.uv0[k] = {corner[0] == 10 ? texels(8) : texels(40), texels(3)};
            }
            clear();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
            if (first.empty()) {
                first = state().pixels;
                EXPECT_GT(drawnCount(), 100);
                const int y = 12;
                const auto [left, right] = spanOf(y);
                EXPECT_EQ(at(left, y), idAt(uint32_t(8 + 2 * (left - 10)), 3)); // 2 texels a pixel to the right
                EXPECT_EQ(at(right - 1, y), idAt(uint32_t(8 + 2 * (right - 1 - 10)), 3));
            }
            EXPECT_EQ(state().pixels, first);
        }
    }
}

TEST_F(Triangle, RejectionByRowsIsThatOfWholeTriangles)
{
    // A driver keeps the density of every triangle that is not rejected: that tells the two apart.
    clip(0, 8, 64, 24);
    rs.uv0[0] = {0, 0}, rs.uv0[1] = {texels(4), 0}, rs.uv0[2] = {0, texels(4)};
    const auto rejected = [&](int y0, int y1, int y2) {
        rs.mipRatio = -1;
        triangle(10, y0, 20, y1, 12, y2);
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_MIP});
        EXPECT_TRUE(untouched());
        return rs.mipRatio == -1;
    };
    EXPECT_FALSE(rejected(2, 3, 8)); // its last row is the one above the clip
    EXPECT_TRUE(rejected(2, 3, 7));
    EXPECT_TRUE(rejected(24, 25, 30)); // starts where the clip ends
    EXPECT_TRUE(rejected(10, 10, 10));
    rs.originY = 1;
    EXPECT_FALSE(rejected(2, 3, 7));
    EXPECT_TRUE(rejected(23, 24, 29));
}

TEST_F(Triangle, ColumnsAreNoReasonToReject)
{
    // Vertices far to both sides: only spans are clipped.
    for (const Modes &m : forms()) {
        triangle(-20000, 4, 12000, 4, 12000, 20);
        rs.clipLeft = 3, rs.clipRight = 60;
        wipe();
        draw(m);
        // The left edge comes from -20000 by 2000 a row: it is at 0 in row 14 and at 2000 in row 15.
        for (int y = 4; y < 20; ++y)
            EXPECT_EQ(spanOf(y), y <= 14 ? std::pair(3, 60) : std::pair(0, 0)) << m << " row " << y;
        clip(0, 0, 64, 32);
    }
}

TEST_F(Triangle, SharedEdgesAreDrawnOnce)
{
    // Fans around a point and halves of rectangles: no pixel twice, none left out inside.
    rs.blendFunc = [](uint32_t destination, uint32_t) { return destination + 1; };
    const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE, .blend = NINEFOLD_BLEND_CUSTOM};
    const int outline[][2] = {{4, 3}, {30, 1}, {58, 6}, {61, 28}, {33, 30}, {2, 25}};
    std::fill_n(frame->pixels, width * height, 0u);
    for (int k = 0; k < 6; ++k) {
        const auto &a = outline[k], &b = outline[(k + 1) % 6];
        triangle(a[0], a[1], b[0], b[1], 31, 14);
        kernel(m)();
    }
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_LE(at(x, y), 1u) << x << ", " << y;
    for (int y = 7; y < 25; ++y)
        for (int x = 5; x < 58; ++x)
            ASSERT_EQ(at(x, y), 1u) << x << ", " << y;
    // A rectangle of two halves has all of its pixels, each once.
    std::fill_n(frame->pixels, width * height, 0u);
    triangle(10, 5, 50, 5, 10, 28);
    kernel(m)();
    triangle(50, 5, 50, 28, 10, 28);
    kernel(m)();
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(at(x, y), x >= 10 && x < 50 && y >= 5 && y < 28) << x << ", " << y;
}

TEST_F(Triangle, EdgesAndAttributesAgreeWithAPlainWalk)
{
    rs.tex0 = equipped(texture(64, 64, [](uint32_t u, uint32_t v) { return 0xFF000000 | v << 8 | u; }));
    std::mt19937 random(17);
    for (int round = 0; round < 300; ++round) {
        std::array<trapezoid::Corner, 3> corners;
        for (int k = 0; k < 3; ++k) {
            // Ties of x and y are common; some vertices lie outside.
            const int x = static_cast<int>(random() % 20) * 5 - 15, y = static_cast<int>(random() % 12) * 4 - 8;
            rs.vertex[k] = {x, y, 1};
            rs.uv0[k] = {static_cast<int32_t>(random() % 0x800000) - 0x400000,
                         static_cast<int32_t>(random() % 0x800000) - 0x400000};
            corners[size_t(k)] = {x, y, {rs.uv0[k].u, rs.uv0[k].v}};
        }
        const trapezoid::Clip window{static_cast<int>(random() % 10), static_cast<int>(random() % 10),
                                     40 + static_cast<int>(random() % 25), 20 + static_cast<int>(random() % 13)};
        clip(window.left, window.top, window.right, window.bottom);
        const trapezoid::Picture expected = trapezoid::draw(corners, 0x8000, window);
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const auto pixel = expected.find({x, y});
                uint32_t colour = ground;
                if (pixel != expected.end())
                    colour = rs.tex0->pixels[(pixel->second[1] >> 16 & 63) << 6 | (pixel->second[0] >> 16 & 63)];
                ASSERT_EQ(at(x, y), colour) << "round " << round << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(Triangle, DifferencesOf32768ColumnsWrap)
{
    // (40000 << 16) / 8 wraps to (40000 - 65536) * 65536 / 8: the right edge runs to the left and nothing is drawn.
    triangle(0, 0, 0, 8, 40000, 8);
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_TRUE(untouched());
    // 32767 does not.
    triangle(0, 0, 0, 8, 32767, 8);
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_EQ(spanOf(1), std::pair(0, 64));
}

TEST_F(Triangle, VerticesAreOrderedWithoutTheOrigin)
{
    // Row 26 is the least number as the host gives it, row 10 the greatest: the order is upside down, and there are no rows.
    rs.originY = static_cast<int32_t>(0x80000012u);
    for (int k = 0; k < 3; ++k)
        rs.vertex[k] = {k == 1 ? 40 : 10, static_cast<int32_t>(k == 2 ? 0x80000008u : 0x7FFFFFF8u), 1};
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_TRUE(untouched()) << m;
    }
    // Rows that do not wrap are in order.
    rs.originY = 5;
    triangle(10, 5, 40, 5, 10, 21);
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_EQ(spanOf(10), std::pair(10, 40));
}

TEST_F(Triangle, TheOrientationWraps)
{
    // The middle vertex lies to the right. 30000 * 90000 wraps to a negative number, which makes its edge the left one: all rows
    // are crossed.
    triangle(0, 0, 30000, 10, 0, 20);
    clip(0, 0, 64, 32);
    clear();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_EQ(spanOf(1), std::pair(0, 64)) << "30000 * 20 does not wrap";
    triangle(0, 0, 30000, 10, 0, 30000 * 3);
    clear();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_EQ(spanOf(1), std::pair(0, 0));
}

// Long enough that truncated steps come apart.
class TallTriangle : public Triangle {
protected:
    TallTriangle() : Triangle(512, 1024) {}
};

TEST_F(TallTriangle, ACollinearOneHasItsMiddleOnTheRightAndShowsWhereEdgesComeApart)
{
    // The long edge has lost more by row 567 than the one that started anew in row 59: it is in column 480 still.
    triangle(0, 0, 50, 59, 500, 590);
    for (int pers : {0, 1}) {
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers});
        EXPECT_EQ(drawnCount(), 1);
        EXPECT_EQ(at(480, 567), 0xFFABCDEFu);
    }
    // Downward to the left the long edge stays to the right, and the spans have negative widths.
    clear();
    triangle(500, 0, 450, 59, 0, 590);
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
    EXPECT_TRUE(untouched());
}

TEST_F(TallTriangle, TheLongEdgeCarriesItsTruncationOnFromTheUpperTrapezoid)
{
    // 50 columns over 59 rows lose up to a unit a row. If the long edge started anew at the middle, row 567 would be empty.
    triangle(0, 0, 50, 59, 500, 590);
    for (int top : {0, 30, 59, 100, 500}) { // also when rows, or all of the upper trapezoid, are cut off
        clear();
        clip(0, top, 512, 1024);
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE});
        EXPECT_EQ(drawnCount(), 1) << top;
        EXPECT_EQ(at(480, 567), 0xFFABCDEFu) << top;
    }
}

} // namespace
