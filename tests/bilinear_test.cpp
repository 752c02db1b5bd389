// Bilinear sampling (filter 1): the four-texel mix and the stippled choice.
#include "support/canvas.h"

#include <gtest/gtest.h>

#include <array>

using namespace canvas;

namespace {

bool isFour(int blend)
{
    return blend == NINEFOLD_BLEND_ALPHA || blend == NINEFOLD_BLEND_CONST_ALPHA || blend == NINEFOLD_BLEND_ALPHA_FAST;
}

bool isStippled(const Modes &m)
{
    return m.shape == NINEFOLD_SHAPE_RECTANGLE && (m.rectOpt == NINEFOLD_RECT_CORNERS || m.rectOpt == NINEFOLD_RECT_TABLE) &&
           !marksPlane(m.shahei);
}

struct Weights {
    uint32_t centre, h, w, d;
};

Weights weightsAt(uint32_t fx, uint32_t fy)
{
    const uint32_t wx = fx < 128 ? fx + 128 : 383 - fx, wy = fy < 128 ? fy + 128 : 383 - fy, p = wx * wy >> 8;
    return {p, wy - p, wx - p, 256 - wx - wy + p};
}

// One channel at a time.
uint32_t mix(const Weights &k, uint32_t centre, uint32_t h, uint32_t w, uint32_t d, bool four)
{
    uint32_t result = 0;
    for (int shift = 0; shift < (four ? 32 : 24); shift += 8) {
        const auto byte = [shift](uint32_t word) { return word >> shift & 255; };
        result |= (byte(centre) * k.centre + byte(h) * k.h + byte(w) * k.w + byte(d) * k.d) >> 8 << shift;
    }
    return result;
}

uint32_t mixAt(const Texture &t, int32_t u, int32_t v, bool four)
{
    const uint32_t fx = static_cast<uint32_t>(u) >> 8 & 255, fy = static_cast<uint32_t>(v) >> 8 & 255;
    const auto texel = [&](int column, int line) {
        return t
            .pixels[(static_cast<uint32_t>(line) & (t.height - 1)) * t.width + (static_cast<uint32_t>(column) & (t.width - 1))];
    };
    const int column = u >> 16, line = v >> 16, besides = fx < 128 ? column - 1 : column + 1,
              next = fy < 128 ? line - 1 : line + 1;
    return mix(weightsAt(fx, fy), texel(column, line), texel(besides, line), texel(column, next), texel(besides, next), four);
}

class Bilinear : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.multiFunc = watch<0>;
        // Texels whose channels are all different.
        rs.tex0 = rs.tex1 = texture(16, 16, [](uint32_t u, uint32_t v) { return 0x10203040 + 0x0D070503 * u + 0x05110B17 * v; });
    }

    // Every form of filter 1 that a blend has.
    static std::vector<Modes> forms(int blend, int multi)
    {
        std::vector<Modes> all;
        for (int shahei : shaheis) {
            if (blend == NINEFOLD_BLEND_COPY ? testsPriority(shahei) : marksPlane(shahei))
                continue;
            for (int rectOpt : rectOpts)
                all.push_back(
                    {.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = rectOpt, .shahei = shahei, .blend = blend, .multi = multi});
            for (int pers : {0, 1})
                all.push_back({.shape = NINEFOLD_SHAPE_TRIANGLE,
                               .pers = pers,
                               .filter = NINEFOLD_FILTER_BILINEAR,
                               .shahei = shahei,
                               .blend = blend,
                               .multi = multi});
        }
        return all;
    }

    // The same position everywhere on a pixel (or a triangle of a few).
    void point(const Modes &m, int32_t u, int32_t v, TexCoord *uv)
    {
        for (int k = 0; k < 4; ++k)
            uv[k] = {u, v};
        LineTableRecord &line = uv == rs.uv0 ? line0 : line1;
        line = {u, v, u, v};
        rs.lineTable0 = &line0, rs.lineTable1 = &line1;
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE) {
            triangle(0, 0, 2, 0, 0, 2);
            clip(0, 0, 1, 1);
        } else {
            corners(0, 0, 1, 1);
            clip(0, 0, static_cast<int>(width), static_cast<int>(height));
        }
    }

    LineTableRecord line0{}, line1{};
};

TEST_F(Bilinear, NextToACentreThatTexelHasAlmostAllTheWeight)
{
    // fx = fy = 128: wx = wy = 255, p = 254; 254 for the centre, 1 each beside and below, none for the diagonal.
    rs.tex0 = texture(4, 4, [](uint32_t u, uint32_t v) {
        const uint32_t values[2][2] = {{10, 255}, {255, 255}};
        return 0xFF000000 | (u < 2 && v < 2 ? values[v][u] : 90) * 0x010101;
    });
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE)) {
        if (isStippled(m))
            continue;
        wipe();
        point(m, 0x8000, 0x8000, rs.uv0);
        draw(m);
        EXPECT_EQ(at(0, 0), 0x0B0B0Bu) << m; // (10 * 254 + 255 + 255) / 256 = 11
    }
}

TEST_F(Bilinear, AtATexelsCornerAllFourHaveAQuarter)
{
    // fx = fy = 0: wx = wy = 128, p = 64. The neighbours lie to the left and above.
    rs.tex0 = texture(4, 4, {0xFF0A0000, 0xFF000B00, 0xFF0C0000, 0xFF0D0000, 0xFF000004, 0xFF100050, 0xFF200000, 0xFF300000});
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE)) {
        if (isStippled(m))
            continue;
        wipe();
        point(m, texels(1), texels(1), rs.uv0);
        draw(m);
        // Red (0x0A + 0x10) / 4, green 0x0B / 4, blue (4 + 0x50) / 4.
        EXPECT_EQ(at(0, 0), 0x060215u) << m;
    }
}

TEST_F(Bilinear, OnlyTheCentreIsTestedForZero)
{
    rs.tex0 = texture(4, 4, [](uint32_t u, uint32_t v) { return u == 1 && v == 1 ? 0 : 0xFFFFFFFF; });
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE)) {
        for (int32_t f : {0, 0x4000, 0x7F00, 0x8000, 0xC000, 0xFFFF}) {
            wipe();
            point(m, texels(1) + f, texels(1) + f, rs.uv0);
            draw(m);
            EXPECT_TRUE(untouched()) << m << " " << f;
            EXPECT_EQ(plane[0], 0) << m;
        }
    }
    // A set centre among zeros is darkened towards black: 0xF0 / 4.
    rs.tex0 = texture(4, 4, [](uint32_t u, uint32_t v) { return u == 1 && v == 1 ? 0xFFF0F0F0 : 0; });
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE)) {
        if (isStippled(m))
            continue;
        wipe();
        point(m, texels(1), texels(1), rs.uv0);
        draw(m);
        EXPECT_EQ(at(0, 0), 0x3C3C3Cu) << m;
    }
}

TEST_F(Bilinear, NeighboursWrapOnAllSides)
{
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE)) {
        if (isStippled(m))
            continue;
        for (int32_t u : {0, 0x7FFF, texels(15) + 0x8000, texels(15) + 0xFFFF}) {
            for (int32_t v : {0, 0x7FFF, texels(15) + 0x8000, texels(15) + 0xFFFF}) {
                wipe();
                point(m, u, v, rs.uv0);
                draw(m);
                EXPECT_EQ(at(0, 0), mixAt(*rs.tex0, u, v, false)) << m << " " << u << " " << v;
            }
        }
    }
    // By hand: at (0, 0) the four are (0, 0), (15, 0), (0, 15) and (15, 15).
    rs.tex0 = texture(
        16, 16, [](uint32_t u, uint32_t v) { return 0xFF000000 | (u == 15 ? 40u : 0) | (v == 15 ? 80u << 8 : 0) | 4 << 16; });
    wipe();
    point({.rectOpt = NINEFOLD_RECT_STRETCH}, 0, 0, rs.uv0);
    draw({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH});
    EXPECT_EQ(at(0, 0), 0x042814u);
}

TEST_F(Bilinear, AlphaSurvivesUnderTheAlphaBlendsOnly)
{
    rs.writeMask = 0xFFFFFFFF;
    for (int blend : blends) {
        for (int multi : {NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
            for (const Modes &m : forms(blend, multi)) {
                wipe();
                const int32_t u = texels(3) + 0x3000, v = texels(2) + 0xB000;
                point(m, u, v, rs.uv0);
                seenFirst = 0;
                draw(m);
                if (isStippled(m)) {
                    // One of the centre and its left neighbour (the row is that of the centre), with the alpha it has.
                    EXPECT_TRUE(seenFirst == rs.tex0->pixels[2 * 16 + 3] || seenFirst == rs.tex0->pixels[2 * 16 + 2]) << m;
                } else {
                    EXPECT_EQ(seenFirst, mixAt(*rs.tex0, u, v, isFour(blend))) << m;
                    EXPECT_EQ(seenFirst >> 24 != 0, isFour(blend)) << m;
                }
            }
        }
    }
}

TEST_F(Bilinear, CopiesWriteAlphaZeroEvenFromAnOpaqueTexture)
{
    rs.tex0 = texture(16, 16, [](uint32_t u, uint32_t v) { return 0xFF000000 | 0x0F0F0F * (u + v); });
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE)) {
        if (isStippled(m))
            continue;
        wipe();
        place(m, 0, 0, 16, 16);
        draw(m);
        for (int x = 0; x < 16; ++x)
            EXPECT_EQ(at(x, 3) >> 24, 0u) << m;
        EXPECT_NE(at(3, 3), 0u);
    }
}

TEST_F(Bilinear, BlendOneWeighsByTheMixedAlpha)
{
    // Alpha (0x80 + 0x40 + 0x20 + 0) / 4 = 0x38 = 56; white over black: 255 * 56 / 256 = 55.
    rs.tex0 = texture(2, 2, {0x00FFFFFF, 0x20FFFFFF, 0x40FFFFFF, 0x80FFFFFF});
    for (const Modes &m : forms(NINEFOLD_BLEND_ALPHA, NINEFOLD_MULTI_NONE)) {
        if (isStippled(m))
            continue;
        wipe();
        at(0, 0) = 0;
        point(m, texels(1), texels(1), rs.uv0);
        draw(m);
        EXPECT_EQ(at(0, 0), 0x373737u) << m;
    }
}

TEST_F(Bilinear, TheSecondTextureIsAlwaysMixedInFourChannels)
{
    rs.writeMask = 0xFFFFFFFF;
    rs.tex0 = solid(0xFF808080);
    for (int blend : blends) {
        for (const Modes &m : forms(blend, NINEFOLD_MULTI_TEXTURE)) {
            wipe();
            const int32_t u = texels(3) + 0x3000, v = texels(2) + 0xB000;
            point(m, 0x8000, 0x8000, rs.uv0);
            point(m, u, v, rs.uv1);
            seenSecond = 0;
            draw(m);
            EXPECT_EQ(seenSecond, mixAt(*rs.tex1, u, v, true)) << m;
            EXPECT_NE(seenSecond >> 24, 0u) << m;
        }
    }
}

TEST_F(Bilinear, AZeroCentreInTheSecondTextureLetsTheSourceGoOn)
{
    rs.tex0 = solid(0xFF808080);
    rs.tex1 = texture(4, 4, [](uint32_t u, uint32_t v) { return u == 1 && v == 1 ? 0 : 0xFFFFFFFF; });
    for (const Modes &m : forms(NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_TEXTURE)) {
        wipe();
        point(m, 0x8000, 0x8000, rs.uv0);
        point(m, texels(1) + 0x2000, texels(1) + 0xE000, rs.uv1);
        callCount = 0;
        draw(m);
        EXPECT_EQ(callCount, 0) << m;
        EXPECT_EQ(at(0, 0) & 0xFFFFFF, 0x808080u) << m;
        point(m, texels(2) + 0x2000, texels(1) + 0xE000, rs.uv1); // a zero neighbour does not
        wipe();
        draw(m);
        EXPECT_GT(callCount, 0) << m;
    }
}

TEST_F(Bilinear, UnitRectanglesKeepTheFractionsOfTheirStart)
{
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE}) {
        const Modes m{.filter = NINEFOLD_FILTER_BILINEAR, .shahei = shahei};
        for (const auto &[u, v] :
             {std::pair{0x34567, 0x5ABCD}, {-0x34567, -0x1234}, {texels(100) + 0x8001, texels(-77) + 0x7FFF}}) {
            rs.uv0[0] = {u, v};
            corners(3, 2, 40, 20);
            clip(8, 5, 30, 18);
            wipe();
            draw(m);
            for (int y = 5; y < 18; ++y)
                for (int x = 8; x < 30; ++x)
                    ASSERT_EQ(at(x, y), mixAt(*rs.tex0, u + texels(x - 3), v + texels(y - 2), false))
                        << m << " at " << x << ", " << y;
            EXPECT_TRUE(groundOutside(8, 5, 30, 18));
        }
    }
}

TEST_F(Bilinear, ReversedUnitRectanglesDrawTheSame)
{
    rs.uv0[0] = {0x34567, 0x5ABCD};
    corners(3, 2, 40, 20);
    draw({.filter = NINEFOLD_FILTER_BILINEAR});
    const State straight = state();
    clear();
    corners(40, 20, 3, 2);
    draw({.filter = NINEFOLD_FILTER_BILINEAR});
    EXPECT_EQ(state().pixels, straight.pixels);
}

TEST_F(Bilinear, RowsOfStretchedRectanglesFloor)
{
    const Modes m{.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH};
    for (int32_t v : {-0x8000, -1, -0x10001, -0x4000}) {
        clear();
        point(m, -0x8000, v, rs.uv0);
        draw(m);
        EXPECT_EQ(at(0, 0), mixAt(*rs.tex0, -0x8000, v, false)) << v;
    }
}

// All 256 by 256 fractions at once.
class FractionField : public Canvas {
protected:
    FractionField() : Canvas(256, 256) {}
};

TEST_F(FractionField, EveryPairOfFractionsIsMixedByItsWeights)
{
    rs.tex0 = rs.tex1 = texture(16, 16, [](uint32_t u, uint32_t v) { return 0x10203040 + 0x0D070503 * u + 0x05110B17 * v; });
    rs.multiFunc = [](uint32_t, uint32_t second) { return second; };
    rs.blendFunc = [](uint32_t, uint32_t source) { return source; };
    const int32_t u0 = texels(4) + 0x55, v0 = texels(7) + 0xAA; // what is below a 256th does not count
    std::array<std::vector<uint32_t>, 2> expected;
    for (int four : {0, 1})
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x)
                expected[size_t(four)].push_back(mixAt(*rs.tex0, u0 + x * 256, v0 + y * 256, four));
    for (TexCoord *uv : {rs.uv0, rs.uv1})
        uv[0] = uv[1] = uv[2] = uv[3] = {u0, v0};
    std::vector<LineTableRecord> table;
    for (int y = 0; y < 256; ++y)
        table.push_back({u0, v0 + y * 256, u0 + 256 * 256, v0 + y * 256});
    rs.lineTable0 = rs.lineTable1 = table.data();
    corners(0, 0, 256, 256);
    for (int multi :
         {NINEFOLD_MULTI_NONE, NINEFOLD_MULTI_TEXTURE}) { // the second texture shows through its operator, in four channels
        for (Modes m :
             {Modes{.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH},
              Modes{.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_CORNERS, .shahei = NINEFOLD_SHAHEI_PLANE},
              Modes{.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE},
              Modes{.filter = NINEFOLD_FILTER_LINE_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE},
              Modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR}}) {
            if (m.filter == NINEFOLD_FILTER_LINE_BILINEAR)
                CreateMipmapTexture(rs.tex0);
            m.multi = multi;
            for (TexCoord *uv : {rs.uv0, rs.uv1}) {
                uv[0] = {u0, v0};
                if (m.shape == NINEFOLD_SHAPE_TRIANGLE) {
                    uv[1] = {u0 + 512 * 256, v0}, uv[2] = {u0, v0 + 512 * 256};
                } else {
                    uv[1] = {u0 + 256 * 256, m.rectOpt == NINEFOLD_RECT_STRETCH ? v0 + 256 * 256 : v0};
                    uv[2] = {u0, v0 + 256 * 256}, uv[3] = {u0 + 256 * 256, v0 + 256 * 256};
                }
            }
            if (m.shape == NINEFOLD_SHAPE_TRIANGLE)
                triangle(0, 0, 512, 0, 0, 512);
            else
                corners(0, 0, 256, 256);
            wipe();
            draw(m);
            EXPECT_TRUE(state().pixels == expected[multi == NINEFOLD_MULTI_TEXTURE]) << m;
        }
    }
    // Four channels of tex0, seen through constant alpha of 255 over black: (c * 255) >> 8. Alpha is told apart by the operator.
    corners(0, 0, 256, 256);
    rs.uv0[0] = {u0, v0}, rs.uv0[1] = {u0 + 256 * 256, v0 + 256 * 256};
    static std::vector<uint32_t> seen;
    rs.multiFunc = [](uint32_t first, uint32_t) {
        seen.push_back(first);
        return first;
    };
    for (int blend : {NINEFOLD_BLEND_ALPHA, NINEFOLD_BLEND_CONST_ALPHA, NINEFOLD_BLEND_ALPHA_FAST}) {
        seen.clear();
        kernel({.filter = NINEFOLD_FILTER_BILINEAR,
                .rectOpt = NINEFOLD_RECT_STRETCH,
                .blend = blend,
                .multi = NINEFOLD_MULTI_COLOUR})();
        EXPECT_TRUE(seen == expected[1]) << blend;
    }
}

// The stippled choice.
class StippledChoice : public Bilinear {
protected:
    void SetUp() override
    {
        Bilinear::SetUp();
        for (long n = 0; n < 256; ++n) {
            SetPresetDrawMask(n);
            std::copy_n(rs.drawMask, 16, patterns[size_t(n)].begin());
        }
        std::fill_n(rs.drawMask, 16, uint16_t{0});
        CreateMipmapTexture(rs.tex0);
        rs.writeMask = 0xFFFFFFFF;
    }

    uint32_t expectedAt(const Texture &t, int32_t u, int32_t v, int x) const
    {
        const uint32_t fx = static_cast<uint32_t>(u) >> 8 & 255, fy = static_cast<uint32_t>(v) >> 8 & 255;
        const auto texel = [&](int column, int line) {
            return t.pixels[(static_cast<uint32_t>(line) & (t.height - 1)) * t.width +
                            (static_cast<uint32_t>(column) & (t.width - 1))];
        };
        const int column = u >> 16, line = fy < 128 ? (v >> 16) - 1 : v >> 16;
        const uint32_t n = fx < 128 ? fx + 128 : fx - 128;
        const bool set = patterns[n][x & 15] >> (x & 15) & 1;
        return fx < 128 ? texel(set ? column - 1 : column, line) : texel(set ? column : column + 1, line);
    }

    // The forms whose tex0 is stippled. Filter 4 is filter 1 on a level.
    static std::vector<Modes> stippledForms()
    {
        std::vector<Modes> all;
        for (int shahei :
             {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
            const int blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY;
            all.push_back(
                {.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_CORNERS, .shahei = shahei, .blend = blend});
            all.push_back({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = shahei, .blend = blend});
            all.push_back(
                {.filter = NINEFOLD_FILTER_LINE_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = shahei, .blend = blend});
        }
        return all;
    }

    std::array<std::array<uint16_t, 16>, 256> patterns;
};

TEST_F(StippledChoice, TakesThePairByTheFractions)
{
    // With n = 0 (a fraction of 128) every bit is set: the first of the pair. With n = 255 (127) none: the second.
    const auto texel = [&](uint32_t u, uint32_t v) { return rs.tex0->pixels[v * 16 + u]; };
    const struct {
        int32_t fx, fy;
        uint32_t expected;
    } cases[] = {
        {0x7F00, 0x7F00, texel(5, 6)}, // row above, centre column
        {0x7F00, 0x8000, texel(5, 7)}, // the centre
        {0x8000, 0x7F00, texel(5, 6)}, // row above, centre column
        {0x8000, 0x8000, texel(5, 7)}, // the centre
    };
    for (const Modes &m : stippledForms()) {
        for (const auto &c : cases) {
            wipe();
            point(m, texels(5) + c.fx, texels(7) + c.fy, rs.uv0);
            draw(m);
            EXPECT_EQ(at(0, 0), c.expected) << m << " " << c.fx << " " << c.fy;
        }
    }
    // The positions of the test, on the patterns' diagonal, are all clear from pattern 127 on: below a fraction of 128 the second
    // of the pair is always taken, at 255 too. In between both show.
    for (const Modes &m : stippledForms()) {
        for (const auto &[fx, least, most] :
             {std::array{0, 0, 0}, {0x4000, 0, 0}, {0x7F00, 0, 0}, {0xA000, 1, 15}, {0xC000, 1, 15}, {0xFF00, 16, 16}}) {
            wipe();
            corners(0, 0, 16, 1);
            for (TexCoord &uv : rs.uv0)
                uv = {texels(5) + fx, texels(7) + 0x9000};
            line0 = {texels(5) + fx, texels(7) + 0x9000, texels(5) + fx, texels(7) + 0x9000};
            rs.lineTable0 = &line0;
            draw(m);
            int right = 0;
            for (int x = 0; x < 16; ++x) {
                EXPECT_TRUE(at(x, 0) == texel(5, 7) || at(x, 0) == texel(6, 7)) << m;
                right += at(x, 0) == texel(6, 7);
            }
            EXPECT_GE(right, least) << m << " " << fx;
            EXPECT_LE(right, most) << m << " " << fx;
        }
    }
}

TEST_F(StippledChoice, TestsBitXOfRowXOfThePatternForEveryFraction)
{
    for (const Modes &m : stippledForms()) {
        for (int32_t fy : {0, 0x7F00, 0x8000, 0xFF00}) {
            for (int f = 0; f < 256; f += thin) {
                const int32_t u = texels(5) + f * 256 + 0x37, v = texels(7) + fy;
                wipe();
                corners(3, 1, 40, 2); // the bit starts at the left edge's column
                for (TexCoord &uv : rs.uv0)
                    uv = {u, v};
                line0 = {u, v, u, v};
                rs.lineTable0 = &line0;
                rs.clipLeft = f % 5 + 3;
                kernel(m)();
                for (int x = f % 5 + 3; x < 40; ++x)
                    ASSERT_EQ(at(x, 1), expectedAt(*rs.tex0, u, v, x)) << m << " fraction " << f << " at " << x;
            }
        }
    }
}

TEST_F(StippledChoice, TheDitherOfTwoColoursVariesInXOnly)
{
    rs.tex0 = texture(2, 2, {0xFF0000FF, 0xFFFF0000, 0xFF0000FF, 0xFFFF0000});
    CreateMipmapTexture(rs.tex0);
    for (const Modes &m : stippledForms()) {
        place(m, 0, 0, 64, 32);
        for (TexCoord &uv : rs.uv0)
            uv = {0xC000, 0x8000};
        for (LineTableRecord &line : lines)
            line = {0xC000, 0x8000, 0xC000, 0x8000};
        wipe();
        draw(m);
        int red = 0;
        for (int x = 0; x < 64; ++x) {
            red += at(x, 0) == 0xFFFF0000;
            EXPECT_EQ(at(x, 0), at(x & 15, 0)) << m;
            for (int y = 1; y < 32; ++y)
                ASSERT_EQ(at(x, y), at(x, 0)) << m << " at " << x << ", " << y;
        }
        EXPECT_GT(red, 0) << m;
        EXPECT_LT(red, 64) << m;
        // At a fraction of 128 the first of the pair in every position.
        for (TexCoord &uv : rs.uv0)
            uv = {0x8000, 0x8000};
        for (LineTableRecord &line : lines)
            line = {0x8000, 0x8000, 0x8000, 0x8000};
        wipe();
        draw(m);
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(at(x, 9), 0xFF0000FF) << m;
    }
}

TEST_F(StippledChoice, UnderThePlaneWalkTheSamePositionIsMixed)
{
    rs.tex0 = texture(2, 2, {0xFF0000FF, 0xFFFF0000, 0xFF0000FF, 0xFFFF0000});
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (int rectOpt : {NINEFOLD_RECT_CORNERS, NINEFOLD_RECT_TABLE}) {
            const Modes m{.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = rectOpt, .shahei = shahei};
            place(m, 0, 0, 64, 32);
            for (TexCoord &uv : rs.uv0)
                uv = {0xC000, 0x8000};
            for (LineTableRecord &line : lines)
                line = {0xC000, 0x8000, 0xC000, 0x8000};
            wipe();
            draw(m);
            // fx = 192: wx = 191, wy = 255, p = 190: blue 190 + 65 = 191 parts of both rows, red 65.
            for (int x = 0; x < 64; ++x)
                ASSERT_EQ(at(x, 5), 0x004000BEu) << m; // 255 * 65 / 256 = 64, 255 * 191 / 256 = 190
        }
    }
}

TEST_F(StippledChoice, AChosenZeroGoesOnAsZero)
{
    // Only the centre is tested: its right neighbour is 0 and is drawn as such.
    rs.tex0 = texture(4, 4, [](uint32_t u, uint32_t) { return u == 1 ? 0 : 0xFF111111 * (u + 1); });
    CreateMipmapTexture(rs.tex0);
    for (const Modes &m : stippledForms()) {
        corners(0, 0, 16, 1);
        for (TexCoord &uv : rs.uv0)
            uv = {0xC000, 0x8000};
        line0 = {0xC000, 0x8000, 0xC000, 0x8000};
        rs.lineTable0 = &line0;
        wipe();
        draw(m);
        int zeros = 0;
        for (int x = 0; x < 16; ++x) {
            EXPECT_TRUE(at(x, 0) == 0 || at(x, 0) == 0xFF111111) << m;
            zeros += at(x, 0) == 0;
        }
        EXPECT_GT(zeros, 0) << m;
        // And a zero centre stops the pixel whatever the pair.
        for (TexCoord &uv : rs.uv0)
            uv = {texels(1), 0x8000};
        line0 = {texels(1), 0x8000, texels(1), 0x8000};
        wipe();
        draw(m);
        EXPECT_TRUE(untouched()) << m;
    }
}

// Textures of one column, one row, or both, in the middle of pixels that must not be read.
class SmallTextures : public Canvas {
protected:
    void TearDown() override
    {
        for (const auto &[t, pixels] : own)
            t->pixels = pixels;
        Canvas::TearDown();
    }

    template <class PixelAt>
    Texture *enclosed(unsigned w, unsigned h, PixelAt &&pixelAt)
    {
        Texture *t = texture(w, h), *around = texture(64, 64, [](uint32_t, uint32_t) { return 0xFFEE55AA; });
        own.push_back({t, t->pixels});
        t->pixels = around->pixels + 64 * 32;
        for (uint32_t v = 0; v < h; ++v)
            for (uint32_t u = 0; u < w; ++u)
                t->pixels[v * w + u] = pixelAt(u, v);
        return t;
    }

    std::vector<std::pair<Texture *, uint32_t *>> own;
};

TEST_F(SmallTextures, MixOnlyTheirOwnTexels)
{
    Texture *one = enclosed(1, 1, [](uint32_t, uint32_t) { return 0x80402010; });
    Texture *column8 = enclosed(1, 8, [](uint32_t, uint32_t v) { return 0x80000000 + v * 0x101010; });
    Texture *row8 = enclosed(8, 1, [](uint32_t u, uint32_t) { return 0x80000000 + u * 0x101010 + 0x010101; });
    rs.multiFunc = [](uint32_t, uint32_t second) { return second; };
    for (Texture *t : {one, column8, row8}) {
        for (int multi : {NINEFOLD_MULTI_NONE, NINEFOLD_MULTI_TEXTURE}) {
            for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}) {
                std::vector<Modes> forms;
                for (int rectOpt : rectOpts)
                    forms.push_back({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = rectOpt, .shahei = shahei, .multi = multi});
                for (int pers : {0, 1})
                    forms.push_back({.shape = NINEFOLD_SHAPE_TRIANGLE,
                                     .pers = pers,
                                     .filter = NINEFOLD_FILTER_BILINEAR,
                                     .shahei = shahei,
                                     .multi = multi});
                for (const Modes &m : forms) {
                    for (int32_t offset : {0, 0x4000, 0x8000, 0xC000}) {
                        rs.tex0 = multi == NINEFOLD_MULTI_NONE ? t : one;
                        rs.tex1 = t;
                        place(m, 0, 0, 40, 20);
                        for (TexCoord *uv : {rs.uv0, rs.uv1})
                            for (int k = 0; k < 4; ++k)
                                uv[k].u += offset, uv[k].v += offset;
                        for (LineTableRecord &line : lines)
                            line = {line.startU + offset, line.startV + offset, line.endU + offset, line.endV + offset};
                        wipe();
                        draw(m);
                        for (int y = 0; y < 20; ++y) {
                            for (int x = 0; x < 40; ++x) {
                                if (multi == NINEFOLD_MULTI_NONE && isStippled(m)) { // a texel of this texture
                                    ASSERT_EQ(at(x, y) >> 24, 0x80u) << m;
                                    ASSERT_NE(at(x, y), 0xFFEE55AAu) << m;
                                } else {
                                    ASSERT_EQ(at(x, y),
                                              mixAt(*t, texels(x) + offset, texels(y) + offset, multi == NINEFOLD_MULTI_TEXTURE))
                                        << m << " " << t->width << " by " << t->height << " at " << x << ", " << y;
                                }
                            }
                        }
                    }
                }
            }
        }
    }
    // One texel is mixed to itself: the weights add up to 256.
    rs.tex0 = one;
    place({.rectOpt = NINEFOLD_RECT_STRETCH}, 0, 0, 40, 20);
    rs.uv0[1] = {0x12345, 0x23456};
    clear();
    draw({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH});
    for (int x = 0; x < 40; ++x)
        EXPECT_EQ(at(x, 11), 0x00402010u);
}

} // namespace
