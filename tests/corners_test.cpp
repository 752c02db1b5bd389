// Four-corner rectangles (rect option 2).
#include "support/canvas.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class FourCorners : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.tex0 = rs.tex1 = equipped(index(64, 32));
    }

    static void quad(TexCoord a, TexCoord b, TexCoord c, TexCoord d)
    {
        rs.uv0[0] = a, rs.uv0[1] = b, rs.uv0[2] = c, rs.uv0[3] = d;
    }

    // At up to two texels a pixel filter 2 is filter 0.
    static std::vector<Modes> forms()
    {
        std::vector<Modes> all;
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})
            for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_MIP})
                all.push_back({.filter = filter, .rectOpt = NINEFOLD_RECT_CORNERS, .shahei = shahei});
        return all;
    }
};

TEST_F(FourCorners, AParallelogramAlongTheAxesIsTheStretch)
{
    const int32_t u = 0x34567, v = 0x51234;
    corners(7, 3, 27, 15);
    for (const Modes &m : forms()) {
        wipe();
        quad({u, v}, {u + texels(20), v}, {u, v + texels(12)}, {u + texels(20), v + texels(12)});
        draw(m);
        const State corners2 = state();
        wipe();
        rs.uv0[1] = rs.uv0[3];
        draw({.filter = m.filter, .rectOpt = NINEFOLD_RECT_STRETCH, .shahei = m.shahei});
        EXPECT_EQ(state().pixels, corners2.pixels) << m;
        EXPECT_EQ(at(10, 5), idAt(3 + 3, 5 + 2));
    }
}

TEST_F(FourCorners, RowsAndColumnsBothFloor)
{
    quad({-0x8000, -0x8000}, {-0x8000 + texels(4), -0x8000}, {-0x8000, -0x8000 + texels(4)},
         {-0x8000 + texels(4), -0x8000 + texels(4)});
    corners(0, 0, 4, 4);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(row(0, 0, 4), (Pixels{idAt(63, 31), idAt(0, 31), idAt(1, 31), idAt(2, 31)})) << m;
        EXPECT_EQ(row(1, 0, 4), (Pixels{idAt(63, 0), idAt(0, 0), idAt(1, 0), idAt(2, 0)})) << m;
    }
}

TEST_F(FourCorners, EqualTopCornersMakeTheTopRowOneTexel)
{
    quad({texels(20), texels(2)}, {texels(20), texels(2)}, {texels(4), texels(18)}, {texels(36), texels(18)});
    corners(0, 0, 16, 16);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(row(0, 0, 16), Pixels(16, idAt(20, 2))) << m;
        // Row k runs from 20 - k by 2k / 16 texels a pixel.
        for (int k = 1; k < 16; ++k)
            for (int x = 0; x < 16; ++x)
                ASSERT_EQ(at(x, k), idAt(uint32_t(texels(20 - k) + k * 0x2000 * x) >> 16, uint32_t(2 + k)))
                    << m << " at " << x << ", " << k;
    }
}

TEST_F(FourCorners, PairsFollowTheirVertices)
{
    const TexCoord a{texels(1), texels(1)}, b{texels(9), texels(3)}, c{texels(3), texels(9)}, d{texels(11), texels(11)};
    for (const Modes &m : forms()) {
        quad(a, b, c, d);
        corners(8, 8, 16, 16);
        wipe();
        draw(m);
        const std::vector<uint32_t> straight = state().pixels;
        EXPECT_EQ(at(8, 8), idAt(1, 1)) << m;
        // Reversed in x with left and right pairs exchanged: the same; likewise in y.
        quad(b, a, d, c);
        corners(16, 8, 8, 16);
        wipe();
        draw(m);
        EXPECT_EQ(state().pixels, straight) << m;
        quad(c, d, a, b);
        corners(8, 16, 16, 8);
        wipe();
        draw(m);
        EXPECT_EQ(state().pixels, straight) << m;
        quad(d, c, b, a);
        corners(16, 16, 8, 8);
        wipe();
        draw(m);
        EXPECT_EQ(state().pixels, straight) << m;
        // Reversed with the pairs as they are: mirrored.
        quad(a, b, c, d);
        corners(16, 8, 8, 16);
        wipe();
        draw(m);
        EXPECT_EQ(at(8, 8), idAt(9, 3)) << m;
        EXPECT_EQ(at(8, 12), idAt(10, 7)) << m;
    }
}

// Edges first, then rows: left u 0 to 10 texels over 3 rows (218453 a row), right u 0 to 1 (21845), over 7 columns. Row 2 runs
// from 436906 to 43690: -393216 / 7 = -56173.
TEST_F(FourCorners, EdgesStepDownAndEachRowIsDividedAnew)
{
    quad({0, 0}, {0, 0}, {texels(10), 0}, {texels(1), 0});
    corners(0, 0, 7, 3);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        for (int y = 0; y < 3; ++y) {
            const int32_t left = 218453 * y, right = 21845 * y, step = (right - left) / 7;
            for (int x = 0; x < 7; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(left + step * x) >> 16, 0)) << m << " at " << x << ", " << y;
        }
        EXPECT_EQ(row(2, 0, 7), (Pixels{idAt(6, 0), idAt(5, 0), idAt(4, 0), idAt(4, 0), idAt(3, 0), idAt(2, 0), idAt(1, 0)}))
            << m;
    }
}

TEST_F(FourCorners, TheClipKeepsUnclippedSlopes)
{
    quad({0x8123, 0x4321}, {texels(20), texels(5)}, {texels(3), texels(17)}, {texels(31), texels(12)});
    corners(4, 2, 33, 21);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        const State whole = state();
        wipe();
        clip(9, 7, 30, 18);
        draw(m);
        clip(0, 0, 64, 32);
        for (int y = 7; y < 18; ++y)
            for (int x = 9; x < 30; ++x)
                ASSERT_EQ(at(x, y), whole.pixels[size_t(y * 64 + x)]) << m;
        EXPECT_TRUE(groundOutside(9, 7, 30, 18)) << m;
    }
}

TEST_F(FourCorners, TheSecondTextureHasCornersOfItsOwn)
{
    rs.tex0 = solid(0xFF000000);
    CreateMipmapTexture(rs.tex0);
    rs.tex1 = texture(16, 16, [](uint32_t u, uint32_t v) { return 0x800000 + v * 0x1000 + u; });
    CreateMipmapTexture(rs.tex1);
    quad({0, 0}, {0, 0}, {0, 0}, {0, 0});
    // Turned by a quarter: u runs down, v to the right, from half a texel before 0.
    rs.uv1[0] = {-0x8000, -0x8000};
    rs.uv1[1] = {-0x8000, -0x8000 + texels(4)};
    rs.uv1[2] = {-0x8000 + texels(4), -0x8000};
    rs.uv1[3] = {-0x8000 + texels(4), -0x8000 + texels(4)};
    corners(0, 0, 4, 4);
    for (Modes m : forms()) {
        m.multi = NINEFOLD_MULTI_TEXTURE;
        wipe();
        draw(m);
        EXPECT_EQ(row(0, 0, 4), (Pixels{0xFF80F00F, 0xFF80000F, 0xFF80100F, 0xFF80200F})) << m;
        EXPECT_EQ(column(0, 0, 4), (Pixels{0xFF80F00F, 0xFF80F000, 0xFF80F001, 0xFF80F002})) << m;
        // It follows the vertices, too.
        corners(4, 0, 0, 4);
        wipe();
        draw(m);
        corners(0, 0, 4, 4);
        EXPECT_EQ(row(0, 0, 4), (Pixels{0xFF80300F, 0xFF80200F, 0xFF80100F, 0xFF80000F})) << m;
    }
}

} // namespace
