// Stretched rectangles (rect option 1).
#include "support/canvas.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class Stretch : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.tex0 = rs.tex1 = equipped(index(64, 32));
    }

    static void span(int32_t u0, int32_t v0, int32_t u1, int32_t v1)
    {
        rs.uv0[0] = {u0, v0};
        rs.uv0[1] = {u1, v1};
    }

    // Point samples of tex0: filter 2 below two texels a pixel is filter 0.
    static std::vector<Modes> forms()
    {
        std::vector<Modes> all;
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE})
            for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_MIP})
                all.push_back({.filter = filter, .rectOpt = NINEFOLD_RECT_STRETCH, .shahei = shahei});
        return all;
    }
};

TEST_F(Stretch, AStepOfOneTexelIsTheUnitCopy)
{
    span(0, texels(4), 0x100000, texels(10));
    corners(20, 5, 36, 11);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        const State stretched = state();
        wipe();
        draw({.shahei = m.shahei});
        EXPECT_TRUE(state() == stretched) << m;
        EXPECT_EQ(at(35, 10), idAt(15, 9));
    }
}

TEST_F(Stretch, AStepThatDoesNotDivideIsTruncated)
{
    // A texel over three pixels: 0x5555, so that the position is 0xAAAA at the last. From 2/3 of a texel on: 0xAAAB, 0x10000,
    // 0x15555.
    corners(0, 0, 3, 1);
    for (const Modes &m : forms()) {
        wipe();
        span(0xAAAB, 0, 0x1AAAB, texels(1));
        draw(m);
        EXPECT_EQ(row(0, 0, 3), (Pixels{idAt(0, 0), idAt(1, 0), idAt(1, 0)})) << m;
        wipe();
        span(0xAAAA, 0, 0x1AAAA, texels(1)); // 0xFFFF falls short
        draw(m);
        EXPECT_EQ(row(0, 0, 3), (Pixels{idAt(0, 0), idAt(0, 0), idAt(1, 0)})) << m;
    }
}

TEST_F(Stretch, TheLostRemainderAddsUpOverTheRow)
{
    // 10 texels over 48 pixels: 655360 / 48 = 13653, so that pixel 47 stands at 641691, 9.79 texels; each texel starts where k *
    // 13653 passes it.
    span(0, 0, texels(10), texels(1));
    corners(0, 0, 48, 1);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        for (uint32_t x = 0; x < 48; ++x)
            ASSERT_EQ(at(int(x), 0), idAt(x * 13653 >> 16, 0)) << m << " at " << x;
    }
}

TEST_F(Stretch, NegativeStepsMirrorAndTruncateTowardZero)
{
    // -10 texels over 48 pixels: -13653, not -13654.
    span(texels(10), texels(3), 0, texels(0));
    corners(0, 0, 48, 3);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 48; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(655360 - 13653 * x) >> 16, uint32_t(3 - y))) << m << " at " << x;
    }
}

TEST_F(Stretch, CoordinatesFollowTheirVerticesSoThatReversedCornersMirror)
{
    span(texels(2), texels(4), texels(18), texels(8));
    for (const Modes &m : forms()) {
        for (int flip = 0; flip < 4; ++flip) {
            wipe();
            corners(flip & 1 ? 26 : 10, flip & 2 ? 14 : 10, flip & 1 ? 10 : 26, flip & 2 ? 10 : 14);
            draw(m);
            // uv0[0] belongs to vertex[0], wherever it lies. Reversed, the left column stands at uv0[1] and the steps go down.
            for (int y = 10; y < 14; ++y) {
                for (int x = 10; x < 26; ++x) {
                    const int u = flip & 1 ? 18 - (x - 10) : 2 + (x - 10), v = flip & 2 ? 8 - (y - 10) : 4 + (y - 10);
                    ASSERT_EQ(at(x, y), idAt(uint32_t(u), uint32_t(v))) << m << " flip " << flip << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST_F(Stretch, VerticesAndCoordinatesExchangedTogetherGiveTheSamePicture)
{
    for (const Modes &m : forms()) {
        span(texels(2), texels(4), texels(18), texels(8));
        corners(10, 10, 26, 14);
        wipe();
        draw(m);
        const State straight = state();
        span(texels(18), texels(8), texels(2), texels(4));
        corners(26, 14, 10, 10);
        wipe();
        draw(m);
        EXPECT_EQ(state().pixels, straight.pixels) << m;
    }
}

TEST_F(Stretch, RowsTruncateTowardZeroColumnsFloor)
{
    // Half a texel before 0.
    span(-0x8000, -0x8000, -0x8000 + texels(4), -0x8000 + texels(4));
    corners(0, 0, 4, 4);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(row(0, 0, 4), (Pixels{idAt(63, 0), idAt(0, 0), idAt(1, 0), idAt(2, 0)})) << m;
        EXPECT_EQ(column(1, 0, 4), (Pixels{idAt(0, 0), idAt(0, 0), idAt(0, 1), idAt(0, 2)})) << m;
    }
}

TEST_F(Stretch, OnlyWholeNegativeRowsReachTheLastRow)
{
    for (const Modes &m : forms()) {
        for (const auto &[v, expected] :
             {std::pair{-1, 0u}, {-0xFFFF, 0u}, {-0x10000, 31u}, {-0x10001, 31u}, {-0x1FFFF, 31u}, {-0x20000, 30u}}) {
            span(0, v, texels(1), v + 1);
            corners(0, 0, 1, 1);
            wipe();
            draw(m);
            EXPECT_EQ(at(0, 0), idAt(0, expected)) << m << " v " << v;
        }
    }
}

TEST_F(Stretch, TheSecondTextureTruncatesItsRowsAlike)
{
    rs.tex0 = solid(0xFF000000);
    CreateMipmapTexture(rs.tex0);
    rs.tex1 = texture(64, 32, [](uint32_t u, uint32_t v) { return 0x800000 + v * 0x1000 + u; });
    CreateMipmapTexture(rs.tex1);
    rs.uv1[0] = {-0x8000, -0x8000};
    rs.uv1[1] = {-0x8000 + texels(2), -0x8000 + texels(2)};
    corners(0, 0, 2, 2);
    for (Modes m : forms()) {
        m.multi = NINEFOLD_MULTI_TEXTURE;
        wipe();
        span(0, 0, 0, 0);
        draw(m);
        EXPECT_EQ(row(0, 0, 2), (Pixels{0xFF80003F, 0xFF800000})) << m;
        EXPECT_EQ(row(1, 0, 2), (Pixels{0xFF80003F, 0xFF800000})) << m;
    }
}

TEST_F(Stretch, TheSecondTextureHasStepsAndReversalOfItsOwn)
{
    rs.tex0 = solid(0xFF000000);
    CreateMipmapTexture(rs.tex0);
    rs.tex1 = texture(16, 8, [](uint32_t u, uint32_t v) { return 0x800000 + v * 0x1000 + u; });
    CreateMipmapTexture(rs.tex1);
    rs.uv1[0] = {texels(4), texels(3)};
    rs.uv1[1] = {texels(8), texels(1)};
    corners(8, 2, 0, 0); // half a texel a pixel, one a row, both reversed
    for (Modes m : forms()) {
        m.multi = NINEFOLD_MULTI_TEXTURE;
        wipe();
        draw(m);
        EXPECT_EQ(row(0, 0, 8),
                  (Pixels{0xFF801008, 0xFF801007, 0xFF801007, 0xFF801006, 0xFF801006, 0xFF801005, 0xFF801005, 0xFF801004}))
            << m;
        EXPECT_EQ(at(0, 1), 0xFF802008) << m;
    }
}

TEST_F(Stretch, TheClipMovesTheStartByWholeSteps)
{
    // 37 texels over 30 pixels: 2424832 / 30 = 80827.
    span(0x1234, 0x5678, 0x1234 + texels(37), 0x5678 + texels(9));
    corners(10, 3, 40, 23);
    const int32_t dv = texels(9) / 20;
    for (const Modes &m : forms()) {
        wipe();
        clip(15, 8, 33, 17);
        draw(m);
        clip(0, 0, 64, 32);
        for (int y = 8; y < 17; ++y)
            for (int x = 15; x < 33; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(0x1234 + 80827 * (x - 10)) >> 16, uint32_t(0x5678 + dv * (y - 3)) >> 16)) << m;
        EXPECT_TRUE(groundOutside(15, 8, 33, 17));
    }
}

TEST_F(Stretch, AStepOfZeroRepeatsOneTexel)
{
    span(texels(7) + 5, texels(9), texels(7) + 5 + 15, texels(9)); // 15 / 16 truncates to 0
    corners(0, 0, 16, 16);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(at(0, 0), idAt(7, 9)) << m;
        EXPECT_EQ(at(15, 15), idAt(7, 9)) << m;
        EXPECT_EQ(drawnCount(), 256) << m;
    }
}

TEST_F(Stretch, PositionsWrapByTheTexturesMasks)
{
    span(texels(60), texels(30), texels(70), texels(34));
    corners(0, 0, 10, 4);
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(row(1, 2, 6), (Pixels{idAt(62, 31), idAt(63, 31), idAt(0, 31), idAt(1, 31)})) << m;
        EXPECT_EQ(at(0, 2), idAt(60, 0)) << m;
    }
}

TEST_F(Stretch, WhichVertexIsLeftIsDecidedWithTheOriginAdded)
{
    // vertex[0].x is almost the greatest number, vertex[1].x, 16 pixels on, wraps to almost the least. With the origin they are
    // 10 and 26.
    rs.originX = static_cast<int32_t>(0x80000012u);
    rs.originY = static_cast<int32_t>(0x80000012u);
    rs.vertex[0] = {0x7FFFFFF8, 0x7FFFFFF8, 0};
    rs.vertex[1] = {static_cast<int32_t>(0x80000008u), static_cast<int32_t>(0x80000008u), 0};
    span(texels(2), texels(4), texels(18), texels(20));
    for (const Modes &m : forms()) {
        wipe();
        draw(m);
        EXPECT_EQ(drawnCount(), 256) << m;
        EXPECT_EQ(at(10, 10), idAt(2, 4)) << m;
        EXPECT_EQ(at(25, 25), idAt(17, 19)) << m;
    }
}

TEST_F(Stretch, StepsThatGoRoundTheTextureAndThe32BitsWithinAVector)
{
    // A width of -3 after wrapping, and a step of -613566757: seven pixels on, the position has nearly gone round 2^32.
    Texture *wide = texture(1024, 1, idAt);
    rs.tex0 = wide;
    const uint32_t step = uint32_t(-613566757), start = 0xA8000;
    rs.vertex[0] = {INT32_MIN, 0, 0};
    rs.vertex[1] = {INT32_MAX - 2, 1, 0};
    rs.uv0[0] = {int32_t(start), 0}, rs.uv0[1] = {int32_t(start - 3 * step), 0};
    for (int set = 0; set < ninefold::usableSets() && ninefold::useSet(set); ++set) {
        wipe();
        draw({.rectOpt = NINEFOLD_RECT_STRETCH});
        for (uint32_t x = 0; x < 64; ++x) {
            const uint32_t position = start + step * (0x80000000u + x);
            ASSERT_EQ(at(int(x), 0), idAt(uint32_t(int32_t(position) >> 16) & 1023, 0)) << ninefold::setNames[set] << " " << x;
        }
    }
}

TEST_F(Stretch, MixesGoOverTheEndOfThe32BitsInTheWidestTexture)
{
    Texture *widest = texture(65536, 1, [](uint32_t u, uint32_t) { return 0xFF000001u | u * 40503; });
    rs.tex0 = widest;
    corners(0, 0, 64, 1);
    for (uint32_t u = 0x7FF00000; u < 0x80100000; u += 0x8000) {
        rs.uv0[0] = {int32_t(u), 0};
        Pixels baseline;
        for (int set = 0; set < ninefold::usableSets() && ninefold::useSet(set); ++set) {
            wipe();
            draw({.filter = NINEFOLD_FILTER_BILINEAR});
            if (set == 0)
                baseline = row(0, 0, 64);
            ASSERT_EQ(row(0, 0, 64), baseline) << ninefold::setNames[set] << std::hex << " " << u;
        }
    }
}

} // namespace
