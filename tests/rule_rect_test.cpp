// The exported rule rectangles.
#include "support/canvas.h"
#include "support/levels.h"

#include "core/catalogue.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

// The rule's answer for one pixel: the old one, the new one, or a mix without alpha.
uint32_t edge(uint32_t destination, uint32_t source, int value)
{
    if (rs.ruleThreshold >= value)
        return destination;
    if (rs.ruleThreshold + rs.ruleWidth <= value)
        return source;
    uint32_t w = (static_cast<uint32_t>(value - rs.ruleThreshold) << 8) / static_cast<uint32_t>(rs.ruleWidth);
    if (rs.ruleCurve == NINEFOLD_CURVE_FAST)
        w = 255 - ((255 - w) * (255 - w) >> 8);
    else if (rs.ruleCurve == NINEFOLD_CURVE_SLOW)
        w = w * w >> 8;
    return levels::mix3(source, destination, w);
}

class RuleRectangle : public Canvas {
protected:
    // Draws under every instruction set, in the same way each time.
    void run(void (*function)())
    {
        underEverySet([&] { function(); });
    }
};

TEST_F(RuleRectangle, NoneOfThemIsInTheTable)
{
    ninefold::forEachCombination([](const ninefold::Axes &a) {
        const DrawFunc func = SearchDrawFunc(ninefold::codeOf(a));
        ASSERT_TRUE(func != &DrawRectTexRule && func != &DrawRectGradRule && func != &DrawRectGradRule_GEN_RULE_TEST &&
                    func != &DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    });
}

class TextureRule : public RuleRectangle {
protected:
    void SetUp() override
    {
        RuleRectangle::SetUp();
        rs.tex0 = index(64, 32);
        rs.tex1 = texture(64, 32, [](uint32_t u, uint32_t v) { return 0xABCD0000 | ((u * 4 + v) & 255); });
        rs.tex2 = nullptr; // takes no part
        rs.ruleThreshold = 60, rs.ruleWidth = 90;
        overAll(4, 2, 60, 30);
    }

    // Texel for pixel.
    static void overAll(int left, int top, int right, int bottom)
    {
        corners(left, top, right, bottom);
        rs.uv0[0] = rs.uv1[0] = {texels(left), texels(top)};
        rs.uv0[1] = rs.uv1[1] = {texels(right), texels(bottom)};
    }
};

TEST_F(TextureRule, WipesTheSourceInByTheSecondTexture)
{
    for (int curve : {NINEFOLD_CURVE_LINEAR, NINEFOLD_CURVE_FAST, NINEFOLD_CURVE_SLOW}) {
        rs.ruleCurve = curve;
        clear();
        run(DrawRectTexRule);
        for (int y = 2; y < 30; ++y)
            for (int x = 4; x < 60; ++x)
                ASSERT_EQ(at(x, y), edge(ground, idAt(uint32_t(x), uint32_t(y)), (x * 4 + y) & 255)) << x << ", " << y;
        EXPECT_TRUE(groundOutside(4, 2, 60, 30));
    }
    EXPECT_EQ(at(10, 2), ground); // 42
    EXPECT_EQ(at(40, 5), idAt(40, 5)); // 165
    EXPECT_EQ(at(25, 5) >> 24, 0u) << "soft: 105";
}

TEST_F(TextureRule, AThresholdAboveAllValuesLeavesThePicture)
{
    for (int threshold : {255, 300, INT32_MAX - 200}) {
        rs.ruleThreshold = threshold;
        run(DrawRectTexRule);
        EXPECT_TRUE(untouched());
    }
}

TEST_F(TextureRule, WithoutAWidthTheEdgeIsHard)
{
    for (int ruleWidth : {0, 1, -5}) {
        rs.ruleWidth = ruleWidth;
        clear();
        run(DrawRectTexRule);
        for (int x = 4; x < 60; ++x)
            ASSERT_EQ(at(x, 4), ((x * 4 + 4) & 255) <= 60 ? ground : idAt(uint32_t(x), 4)) << x;
    }
}

TEST_F(TextureRule, AZeroTexelIsDrawnLikeAnyOther)
{
    rs.tex0 = texture(64, 32, [](uint32_t u, uint32_t) { return u % 2 ? 0 : 0xFF808080; });
    rs.tex1 = texture(64, 32, [](uint32_t, uint32_t v) { return v % 2 ? 255u : 100u; });
    run(DrawRectTexRule);
    EXPECT_EQ(at(11, 5), 0u);
    EXPECT_EQ(at(12, 5), 0xFF808080u);
    EXPECT_EQ(at(11, 6), edge(ground, 0, 100));
    EXPECT_NE(at(11, 6), ground);
}

TEST_F(TextureRule, BothTexturesAreStretchedWithTruncatedStepsAndFlooredColumnsAndTruncatedRows)
{
    rs.tex1 = texture(16, 16, [](uint32_t u, uint32_t v) { return u * 16 + v; });
    for (int round = 0; round < 2; ++round) {
        rs.uv0[0] = {-0x28000, -0x18000}, rs.uv0[1] = {texels(30), texels(13)};
        rs.uv1[0] = {-0x38000, -0x28000}, rs.uv1[1] = {texels(11), texels(9)};
        clip(round ? 13 : 0, round ? 9 : 0, round ? 50 : 64, round ? 25 : 32);
        clear();
        run(DrawRectTexRule);
        const int du = (texels(30) + 0x28000) / 56, dv = (texels(13) + 0x18000) / 28, ru = (texels(11) + 0x38000) / 56,
                  rv = (texels(9) + 0x28000) / 28;
        for (int y = rs.clipTop; y < rs.clipBottom; ++y) {
            for (int x = rs.clipLeft; x < rs.clipRight; ++x) {
                uint32_t expected = ground;
                if (x >= 4 && x < 60 && y >= 2 && y < 30) {
                    const uint32_t source =
                        levels::texel(*rs.tex0, (-0x28000 + du * (x - 4)) >> 16, (-0x18000 + dv * (y - 2)) / 65536);
                    const uint32_t value =
                        levels::texel(*rs.tex1, (-0x38000 + ru * (x - 4)) >> 16, (-0x28000 + rv * (y - 2)) / 65536) & 255;
                    expected = edge(ground, source, int(value));
                }
                ASSERT_EQ(at(x, y), expected) << x << ", " << y;
            }
        }
        EXPECT_TRUE(groundOutside(rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom));
    }
}

TEST_F(TextureRule, CoordinatesFollowReversedCorners)
{
    for (int flip = 0; flip < 4; ++flip) {
        corners(flip & 1 ? 60 : 4, flip & 2 ? 30 : 2, flip & 1 ? 4 : 60, flip & 2 ? 2 : 30);
        const TexCoord before[] = {rs.uv0[0], rs.uv0[1], rs.uv1[0], rs.uv1[1]};
        clear();
        run(DrawRectTexRule);
        for (int y = 2; y < 30; ++y) {
            for (int x = 4; x < 60; ++x) { // column 4 stands at 60 when reversed, and steps go down
                const int u = flip & 1 ? 64 - x : x, v = flip & 2 ? 32 - y : y;
                ASSERT_EQ(at(x, y), edge(ground, idAt(uint32_t(u), uint32_t(v)), (u * 4 + v) & 255))
                    << flip << " at " << x << ", " << y;
            }
        }
        EXPECT_EQ(std::memcmp(&before[0], rs.uv0, 2 * sizeof(TexCoord)), 0);
        EXPECT_EQ(std::memcmp(&before[2], rs.uv1, 2 * sizeof(TexCoord)), 0);
    }
}

TEST_F(TextureRule, LooksAtNoModeMaskOrPlane)
{
    run(DrawRectTexRule);
    const State expected = state();
    clear();
    SetShapeMode(NINEFOLD_SHAPE_TRIANGLE);
    SetFilterMode(NINEFOLD_FILTER_MIP_BILINEAR);
    SetBlendMode(NINEFOLD_BLEND_SCREEN);
    SetShaheiMode(NINEFOLD_SHAHEI_PRIORITY_STIPPLE);
    SetPrescaleMode(NINEFOLD_PRESCALE_ON);
    rs.prescale = 3;
    rs.blendAlpha = 0;
    std::fill_n(rs.drawMask, 16, uint16_t{0xFFFF});
    std::fill(plane.begin(), plane.end(), uint16_t{0xFFFF});
    rs.zRef = 255;
    rs.scanShift = reinterpret_cast<int32_t *>(1);
    run(DrawRectTexRule);
    EXPECT_EQ(state().pixels, expected.pixels);
    EXPECT_EQ(plane, std::vector<uint16_t>(plane.size(), 0xFFFF));
}

TEST_F(TextureRule, EmptyAndClippedAwayRectanglesTouchNothing)
{
    clip(8, 6, 40, 24);
    const int placements[][4] = {{20, 10, 20, 20}, {10, 15, 30, 15}, {40, 10, 50, 20},
                                 {2, 10, 8, 20},   {10, 24, 20, 30}, {10, 2, 20, 6}};
    for (const auto &p : placements) {
        for (void (*function)() : {DrawRectTexRule, DrawRectGradRule}) {
            overAll(p[0], p[1], p[2], p[3]);
            run(function);
            corners(p[2], p[3], p[0], p[1]);
            run(function);
            EXPECT_TRUE(untouched());
        }
    }
}

class GradientRule : public RuleRectangle {
protected:
    void SetUp() override
    {
        RuleRectangle::SetUp();
        rs.tex0 = index(64, 32);
        rs.tex1 = rs.tex2 = nullptr;
        corners(4, 2, 60, 30);
        rs.uv0[0] = {texels(4), texels(2)}, rs.uv0[1] = {texels(60), texels(30)};
    }

    static void values(uint32_t c0, uint32_t c1, uint32_t c2, uint32_t c3)
    {
        rs.color[0] = 0xFFEEDD00 | c0, rs.color[1] = 0x12345600 | c1, rs.color[2] = 0x80808000 | c2,
        rs.color[3] = c3; // low bytes count
    }

    // The rule value in a w by h rectangle of these corners.
    static int valueAt(int x, int y, int w, int h, int c0, int c1, int c2, int c3)
    {
        const int left = c0 * 65536 + (c2 - c0) * 65536 / h * y, right = c1 * 65536 + (c3 - c1) * 65536 / h * y;
        return (left + (right - left) / w * x) >> 16 & 255;
    }
};

TEST_F(GradientRule, AConstantValueIsDrawnOrNotAsAWhole)
{
    values(128, 128, 128, 128);
    rs.ruleThreshold = 127, rs.ruleWidth = 1;
    run(DrawRectGradRule);
    for (int y = 2; y < 30; ++y)
        for (int x = 4; x < 60; ++x)
            ASSERT_EQ(at(x, y), idAt(uint32_t(x), uint32_t(y)));
    clear();
    rs.ruleThreshold = 128;
    run(DrawRectGradRule);
    EXPECT_TRUE(untouched());
}

TEST_F(GradientRule, WipesFromLeftToRightAndWithReversedVerticesFromRightToLeft)
{
    values(0, 255, 0, 255);
    rs.ruleThreshold = 127, rs.ruleWidth = 0;
    // The value of column k is k * (255 << 16) / 56 >> 16 = k * 298410 >> 16: above 127 from k = 29 on (132).
    run(DrawRectGradRule);
    for (int x = 4; x < 60; ++x)
        ASSERT_EQ(at(x, 9), x - 4 < 29 ? ground : idAt(uint32_t(x), 9)) << x;
    clear();
    corners(60, 2, 4, 30);
    run(DrawRectGradRule);
    // Now the value falls from 255 at column 0: 255 - k * 4.55 is above 127 up to k = 27 (132), 128 - 0.5 at 28.
    for (int x = 4; x < 60; ++x)
        ASSERT_EQ(at(x, 9) != ground, x - 4 <= 28 && 255 * 65536 - (x - 4) * 298410 >= 128 * 65536) << x;
    EXPECT_EQ(at(4, 9), idAt(60, 9)); // the source follows as well
    EXPECT_EQ(at(59, 9), ground);
}

TEST_F(GradientRule, CornerValuesFollowTheirVertices)
{
    rs.ruleThreshold = 100, rs.ruleWidth = 60, rs.ruleCurve = NINEFOLD_CURVE_SLOW;
    for (int flip = 0; flip < 4; ++flip) {
        corners(flip & 1 ? 60 : 4, flip & 2 ? 30 : 2, flip & 1 ? 4 : 60, flip & 2 ? 2 : 30);
        values(10, 220, 130, 250);
        int c[] = {10, 220, 130, 250};
        if (flip & 1)
            std::swap(c[0], c[1]), std::swap(c[2], c[3]);
        if (flip & 2)
            std::swap(c[0], c[2]), std::swap(c[1], c[3]);
        for (int clipped : {0, 1}) {
            clip(clipped ? 9 : 0, clipped ? 7 : 0, clipped ? 47 : 64, clipped ? 28 : 32);
            clear();
            run(DrawRectGradRule);
            for (int y = std::max(2, rs.clipTop); y < std::min(30, rs.clipBottom); ++y) {
                for (int x = std::max(4, rs.clipLeft); x < std::min(60, rs.clipRight); ++x) {
                    const int u = flip & 1 ? 64 - x : x, v = flip & 2 ? 32 - y : y;
                    ASSERT_EQ(at(x, y),
                              edge(ground, idAt(uint32_t(u), uint32_t(v)), valueAt(x - 4, y - 2, 56, 28, c[0], c[1], c[2], c[3])))
                        << flip << " at " << x << ", " << y;
                }
            }
            EXPECT_TRUE(groundOutside(rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom));
        }
    }
}

TEST_F(GradientRule, UnlikeThoseOfAGouraudRectangle)
{
    values(0, 255, 0, 255);
    rs.ruleThreshold = 127, rs.ruleWidth = 0;
    corners(60, 2, 4, 30);
    rs.color[0] = rs.color[2] = 0xFF000000, rs.color[1] = rs.color[3] = 0xFF0000FF;
    draw({.filter = NINEFOLD_FILTER_GOURAUD});
    EXPECT_LT(at(5, 5), at(58, 5)); // blue grows to the right all the same
    clear();
    run(DrawRectGradRule);
    EXPECT_NE(at(5, 5), ground);
    EXPECT_EQ(at(58, 5), ground);
}

TEST_F(GradientRule, AZeroTexelIsDrawnAndSoftPixelsHaveNoAlpha)
{
    rs.tex0 = texture(64, 32, [](uint32_t u, uint32_t) { return u % 2 ? 0 : 0xFF808080; });
    values(200, 200, 200, 200);
    rs.ruleThreshold = 100, rs.ruleWidth = 50;
    run(DrawRectGradRule);
    EXPECT_EQ(at(11, 5), 0u);
    EXPECT_EQ(at(12, 5), 0xFF808080u);
    rs.ruleWidth = 200;
    clear();
    run(DrawRectGradRule);
    // Weight (200 - 100) * 256 / 200 = 128.
    EXPECT_EQ(at(12, 5), levels::mix3(0xFF808080, ground, 128));
    EXPECT_EQ(at(12, 5) >> 24, 0u);
    EXPECT_EQ(at(11, 5), levels::mix3(0, ground, 128));
}

// Screen over a four-corner rectangle with rule, plane and stipple.
class ScreenRule : public RuleRectangle {
protected:
    void SetUp() override
    {
        RuleRectangle::SetUp();
        base = rs.tex0 = levels::fill(
            texture(64, 32), [](uint32_t l, uint32_t u, uint32_t v) { return (u * 3 + v) % 11 ? levels::idAt(l, u, v) : 0; });
        second = rs.tex1 = levels::fill(texture(32, 32), levels::idAt);
        rs.tex2 = texture(16, 16, [](uint32_t u, uint32_t v) { return 0xFFFFFF00 | (u * 13 + v * 7); });
        rs.ruleThreshold = 60, rs.ruleWidth = 100;
        rs.uv2[0] = {0x8000, 0x4000}, rs.uv2[1] = {texels(14), texels(15)};
        rs.mipFrac = 201, rs.mipFrac1 = 99;
        rs.mipTex = base->mip[1], rs.mipTex1 = nullptr;
        rs.zRef = 200;
        std::mt19937 random(103);
        for (uint16_t &word : plane)
            word = static_cast<uint16_t>(random() & random());
        for (uint16_t &row : rs.drawMask)
            row = static_cast<uint16_t>(random() & random());
        corners(5, 3, 53, 27);
        before = plane;
    }

    static uint32_t screen(uint32_t d, uint32_t s)
    {
        uint32_t result = 0xFF000000;
        for (int shift = 0; shift < 24; shift += 8)
            result |= (255 - ((255 - (d >> shift & 255)) * (255 - (s >> shift & 255)) >> 8)) << shift;
        return result;
    }

    // The rectangle from (5, 3), 48 by 24, given its texel and key at a pixel.
    template <class Sample>
    void expectPicture(const TexCoord *uv, Sample &&sample)
    {
        const int u2 = (rs.uv2[1].u - rs.uv2[0].u) / 48, v2 = (rs.uv2[1].v - rs.uv2[0].v) / 24;
        int drawn = 0;
        for (int y = 0; y < 32; ++y) {
            const int line = y - 3;
            const int left = uv[0].u + (uv[2].u - uv[0].u) / 24 * line, right = uv[1].u + (uv[3].u - uv[1].u) / 24 * line;
            const int leftV = uv[0].v + (uv[2].v - uv[0].v) / 24 * line, rightV = uv[1].v + (uv[3].v - uv[1].v) / 24 * line;
            for (int x = 0; x < 64; ++x) {
                const bool was = before[size_t(y * 4 + x / 16)] >> (15 - x % 16) & 1,
                           mask = rs.drawMask[y & 15] >> (15 - x % 16) & 1;
                uint32_t expected = ground;
                bool mark = false;
                if (x >= 5 && x < 53 && y >= 3 && y < 27 && !was && !mask) {
                    const int column = x - 5, u = left + (right - left) / 48 * column, v = leftV + (rightV - leftV) / 48 * column;
                    const int value = static_cast<int>(
                        levels::texel(*rs.tex2, (rs.uv2[0].u + u2 * column) / 65536, (rs.uv2[0].v + v2 * line) / 65536) & 255);
                    uint32_t key = 0;
                    const uint32_t source = sample(u, v, key);
                    if (rs.ruleThreshold < value && key) {
                        expected = edge(ground, screen(ground, source), value);
                        mark = true;
                    }
                }
                ASSERT_EQ(at(x, y), expected) << x << ", " << y;
                ASSERT_EQ(taken(x, y), was || mark) << x << ", " << y;
                drawn += mark;
            }
        }
        EXPECT_GT(drawn, 100);
        EXPECT_EQ(std::count(z.begin(), z.end(), 0), std::ptrdiff_t(z.size())) << "the priority plane takes no part";
    }

    static void quad(int32_t scale)
    {
        rs.uv0[0] = {0x13456, 0x23456}, rs.uv0[1] = {0x13456 + scale * 48, 0x23456 + scale * 24};
        rs.uv0[2] = {0x53456, 0x23456 + scale * 24}, rs.uv0[3] = {0x13456 + scale * 40, 0x83456 + scale * 20};
    }

    Texture *base, *second;
    std::vector<uint16_t> before;
};

TEST_F(ScreenRule, MixesBothLevelsAsTheyStand)
{
    quad(0x9000);
    run(DrawRectGradRule_GEN_RULE_TEST);
    expectPicture(rs.uv0, [&](int u, int v, uint32_t &key) {
        key = levels::point(*base, u, v);
        return levels::mix3(levels::bilinear(*base, u, v, false), levels::bilinearBelow(*base->mip[1], u, v, false), 201);
    });
    EXPECT_EQ(rs.mipFrac, 201);
    EXPECT_EQ(rs.mipTex, base->mip[1]);
}

TEST_F(ScreenRule, BelowTwoTexelsItSamplesTheBaseBilinearly)
{
    quad(0x1FFFF);
    const State start = state();
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    EXPECT_EQ(std::memcmp(&start.rs, &rs, sizeof rs), 0) << "no field is changed";
    expectPicture(rs.uv0, [&](int u, int v, uint32_t &key) {
        key = levels::point(*base, u, v);
        return levels::bilinear(*base, u, v, false);
    });
}

TEST_F(ScreenRule, FromTwoTexelsOnItChoosesALevel)
{
    for (const auto &[scale, level, frac] :
         {std::tuple{0x20000, 1, 255}, {0x30000, 1, 127}, {0x3FFFF, 1, 0}, {0x40000, 2, 255}, {0x180000, 4, 127}}) {
        std::copy(before.begin(), before.end(), plane.begin());
        clear();
        quad(scale);
        rs.uv1[0] = {0, 0}, rs.uv1[1] = {texels(48 * 5), texels(24 * 7)}; // 5: level 2, 255 - (0x50000 >> 10 & 255) = 191
        const State start = state();
        run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
        EXPECT_EQ(rs.mipFrac, frac);
        const int clamped = std::min(level, static_cast<int>(base->mipCount) - 2);
        EXPECT_EQ(rs.mipTex, base->mip[clamped + 1]);
        EXPECT_EQ(rs.mipFrac1, 191);
        EXPECT_EQ(rs.mipTex1, second->mip[3]);
        EXPECT_EQ(rs.tex0, base);
        EXPECT_EQ(rs.tex1, second);
        EXPECT_EQ(std::memcmp(start.rs.uv0, rs.uv0, sizeof rs.uv0), 0);
        EXPECT_EQ(std::memcmp(start.rs.uv1, rs.uv1, sizeof rs.uv1), 0);
        TexCoord shifted[4];
        for (int k = 0; k < 4; ++k)
            shifted[k] = {rs.uv0[k].u >> clamped, rs.uv0[k].v >> clamped};
        if (clamped < 3) { // smaller levels have too few set texels to tell
            expectPicture(shifted, [&, l = clamped, f = uint32_t(frac)](int u, int v, uint32_t &key) {
                key = levels::point(*base->mip[l], u, v);
                return levels::mix3(levels::bilinear(*base->mip[l], u, v, false),
                                    levels::bilinearBelow(*base->mip[l + 1], u, v, false), f);
            });
        }
    }
}

TEST_F(ScreenRule, TheSmallerStepDecides)
{
    quad(0x10000);
    rs.uv0[1] = {rs.uv0[0].u + 0x18000 * 48, rs.uv0[0].v + 0x40000 * 24}; // 1.5 and 4
    const State start = state();
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    EXPECT_EQ(std::memcmp(&start.rs, &rs, sizeof rs), 0);
    rs.uv0[1] = {rs.uv0[0].u - 0x40000 * 48, rs.uv0[0].v - 0x28000 * 24}; // 4 and 2.5, backward
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    EXPECT_EQ(rs.mipFrac, 191);
    EXPECT_EQ(rs.mipTex, base->mip[2]);
}

TEST_F(ScreenRule, StepsAndLevelsAreComparedAsTheyWrap)
{
    clip(0, 0, 0, 0); // the choice alone
    // A step of -2^31 keeps its sign, is the smaller, passes for two texels and more and fits the sixteenth octave.
    corners(5, 3, 6, 4);
    rs.uv0[0] = rs.uv1[0] = {0, 0};
    rs.uv0[1] = {INT32_MIN, texels(40)};
    rs.uv1[1] = {texels(40), INT32_MIN};
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    EXPECT_EQ(rs.mipFrac, 255);
    EXPECT_EQ(rs.mipFrac1, 255);
    EXPECT_EQ(rs.mipTex, base->mip[base->mipCount - 1]);
    EXPECT_EQ(rs.mipTex1, second->mip[second->mipCount - 1]);
    // Beyond the last octave: level 0 and the old weights, but levels all the same.
    rs.mipFrac = 201, rs.mipFrac1 = 99;
    rs.mipTex1 = nullptr;
    rs.uv0[1] = rs.uv1[1] = {0x40000000, 0x50000000};
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    EXPECT_EQ(rs.mipFrac, 201);
    EXPECT_EQ(rs.mipFrac1, 99);
    EXPECT_EQ(rs.mipTex, base->mip[1]);
    EXPECT_EQ(rs.mipTex1, second->mip[1]);
    // Levels are limited by one less than their count, unsigned: no count limits nothing.
    const uint32_t count = base->mipCount;
    rs.uv0[1] = {texels(9), texels(8)};
    base->mipCount = 0;
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    base->mipCount = count;
    EXPECT_EQ(rs.mipTex, base->mip[4]);
}

TEST_F(ScreenRule, AVanishingSizeReturnsAtOnce)
{
    for (const auto &[x, y] : {std::pair{5, 27}, {53, 3}}) {
        corners(5, 3, x, y);
        quad(0x40000);
        const State start = state();
        run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
        EXPECT_TRUE(state() == start);
    }
}

TEST_F(ScreenRule, TheOldWeightOfTheSecondTextureStaysBelowOneTexel)
{
    quad(0x20000);
    rs.uv1[0] = {0, 0}, rs.uv1[1] = {texels(20), texels(10)};
    run(DrawRectGradRule_GEN_RULE_MIPMAP_TEST);
    EXPECT_EQ(rs.mipFrac, 255);
    EXPECT_EQ(rs.mipFrac1, 99);
    EXPECT_EQ(rs.mipTex1, second->mip[1]);
}

} // namespace
