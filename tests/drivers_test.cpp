// Drivers of filters 2 and 5: texel density, the choice of a level for a primitive, and what triangles make of two levels.
#include "support/canvas.h"
#include "support/levels.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class Driver : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        base = rs.tex0 = levels::fill(texture(64, 64), levels::idAt);
        second = levels::fill(texture(64, 64), levels::otherIdAt);
        rs.tex1 = nullptr;
        rs.tex2 = solid(255);
        rs.multiFunc = watch<0x10000>;
        rs.writeMask = 0xFFFFFFFF;
        stale();
    }

    static void stale()
    {
        rs.mipFrac = 201, rs.mipFrac1 = 99, rs.mipRatio = 77;
        rs.mipTex = rs.mipTex1 = nullptr;
    }

    // Texels by which the rectangle's texture is wider and higher than the rectangle, from (8, 4).
    static void spread(int rectOpt, TexCoord *uv, int32_t acrossU, int32_t downV)
    {
        const int32_t u = 0x80000, v = 0x40000;
        uv[0] = {u, v};
        uv[1] = {u + acrossU, rectOpt == NINEFOLD_RECT_STRETCH ? v + downV : v};
        uv[2] = {u, v + downV};
        uv[3] = {u + acrossU, v + downV};
    }

    // What was chosen: the level whose alpha the pixel shows, -1 for the base drawn directly. Levels are told apart by what
    // filter 2 leaves in mipTex.
    int chosenLevel(const Modes &m)
    {
        stale();
        wipe();
        draw(m);
        if (!rs.mipTex)
            return -1;
        for (uint32_t l = 1; l < base->mipCount; ++l)
            if (rs.mipTex == base->mip[l])
                return static_cast<int>(l) - 1;
        ADD_FAILURE() << "mipTex is no level";
        return -2;
    }

    // After a draw from level 1 of tex0 and level 2 of tex1.
    void expectPutBack(const State &before, const Modes &m)
    {
        EXPECT_EQ(rs.tex0, base);
        EXPECT_EQ(rs.tex1, second);
        EXPECT_EQ(std::memcmp(rs.uv0, before.rs.uv0, sizeof rs.uv0), 0) << m;
        EXPECT_EQ(std::memcmp(rs.uv1, before.rs.uv1, sizeof rs.uv1), 0) << m;
        EXPECT_EQ(rs.mipTex, base->mip[2]);
        EXPECT_EQ(rs.mipTex1, second->mip[3]);
    }

    static std::vector<Modes> rectangleForms()
    {
        std::vector<Modes> all;
        for (int rectOpt : {NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS})
            for (int filter : {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR})
                for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE})
                    all.push_back({.filter = filter, .rectOpt = rectOpt, .shahei = shahei});
        return all;
    }

    static std::vector<Modes> triangleForms()
    {
        std::vector<Modes> all;
        for (int filter : {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR})
            for (int pers : {0, 1})
                for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE})
                    all.push_back({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers, .filter = filter, .shahei = shahei});
        return all;
    }

    Texture *base, *second;
};

class RectangleDriver : public Driver {};

TEST_F(RectangleDriver, TwoTexelsAPixelAreLevelOneAtFullWeight)
{
    corners(10, 10, 18, 14);
    for (const Modes &m : rectangleForms()) {
        spread(m.rectOpt, rs.uv0, texels(16), texels(8));
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 255);
        EXPECT_EQ(rs.mipTex, base->mip[2]);
        EXPECT_EQ(rs.mipRatio, 77) << "belongs to triangles";
        if (m.filter == NINEFOLD_FILTER_MIP && m.shahei == NINEFOLD_SHAHEI_NONE) {
            for (int y = 10; y < 14; ++y) // coordinates are halved: a texel of level 1 a pixel, from (4, 2)
                for (int x = 10; x < 18; ++x)
                    ASSERT_EQ(at(x, y), levels::idAt(1, uint32_t(x - 10 + 4), uint32_t(y - 10 + 2))) << m;
        }
    }
}

TEST_F(RectangleDriver, BelowTwoTexelsTheBaseIsDrawnDirectly)
{
    corners(10, 10, 18, 14);
    for (const Modes &m : rectangleForms()) {
        // 8 pixels wide, 4 high; a 16th of a texel short of two a pixel for whole-texel lengths.
        for (int32_t across : {texels(16) - 1, texels(15), texels(12), texels(8), texels(4), 0, -texels(15)}) {
            if (m.rectOpt == NINEFOLD_RECT_CORNERS && across == texels(16) - 1)
                across = texels(15) + 0xFFFF; // lengths are whole texels: 15
            spread(m.rectOpt, rs.uv0, across, texels(30));
            EXPECT_EQ(chosenLevel(m), -1) << m << " across " << across;
            EXPECT_EQ(rs.mipFrac, 201);
            const State mip = state();
            Modes direct = m;
            direct.filter = m.filter == NINEFOLD_FILTER_MIP ? 0 : 1;
            wipe();
            draw(direct);
            EXPECT_TRUE(state() == mip) << m << " is the plain filter's picture";
        }
        // Exactly two texels less one 16.16 unit, and two.
        spread(m.rectOpt, rs.uv0, texels(-16), texels(-8));
        EXPECT_EQ(chosenLevel(m), 1) << m;
    }
}

TEST_F(RectangleDriver, TheSmallerDensityDecides)
{
    corners(10, 10, 18, 14);
    for (const Modes &m : rectangleForms()) {
        spread(m.rectOpt, rs.uv0, texels(40), texels(4)); // five across, one down
        EXPECT_EQ(chosenLevel(m), -1) << m;
        spread(m.rectOpt, rs.uv0, texels(40), texels(9)); // 2.25 down
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 223) << m; // 255 - (0x24000 >> 9 & 255)
        spread(m.rectOpt, rs.uv0, texels(20), texels(-19)); // 2.5 and 4.75
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 191) << m;
    }
}

TEST_F(RectangleDriver, OctavesStartAtPowersOfTwoAndTheWeightFallsInside)
{
    corners(0, 0, 1, 1);
    const struct {
        int32_t density;
        int level, frac;
    } cases[] = {{0x20000, 1, 255}, {0x30000, 1, 127}, {0x3FFFF, 1, 0},  {0x40000, 2, 255},
                 {0x7FFFF, 2, 0},   {0x80000, 3, 255}, {0xC8000, 3, 111}};
    for (const Modes &m : rectangleForms()) {
        for (const auto &c : cases) {
            if (m.rectOpt == NINEFOLD_RECT_CORNERS && c.density & 0xFFFF)
                continue; // whole texels only
            spread(m.rectOpt, rs.uv0, c.density, texels(60));
            EXPECT_EQ(chosenLevel(m), c.level) << m << std::hex << c.density;
            EXPECT_EQ(rs.mipFrac, c.frac) << m << std::hex << c.density;
        }
    }
}

TEST_F(RectangleDriver, TheClampShiftsCoordinatesByTheClampedLevelAndKeepsTheWeight)
{
    base = rs.tex0 = levels::fill(texture(8, 4), levels::idAt); // 3 levels
    corners(10, 10, 12, 12);
    for (const Modes &m : rectangleForms()) {
        spread(m.rectOpt, rs.uv0, texels(72), texels(80)); // 36 a pixel: level 5
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 223) << m; // 255 - (0x240000 >> 13 & 255)
        EXPECT_EQ(rs.mipTex, base->mip[2]);
        if (m.filter == NINEFOLD_FILTER_MIP && m.shahei == NINEFOLD_SHAHEI_NONE) {
            EXPECT_EQ(at(11, 11), levels::idAt(1, (4 + 18) & 3, (2 + 20) & 1)) << m;
        }
    }
}

TEST_F(RectangleDriver, TheLevelIsComparedWithOneLessThanTheCountUnsigned)
{
    // One less than no level at all is above every level: nothing is clamped.
    corners(10, 10, 12, 12);
    const uint32_t count = base->mipCount;
    for (const Modes &m : rectangleForms()) {
        for (int level = 1; level < 5; ++level) {
            spread(m.rectOpt, rs.uv0, texels(2 << level), texels(3 << level));
            stale();
            wipe();
            base->mipCount = 0;
            draw(m);
            base->mipCount = count;
            EXPECT_EQ(rs.mipTex, base->mip[level + 1]) << m;
            EXPECT_EQ(rs.mipFrac, 255) << m;
        }
    }
}

TEST_F(RectangleDriver, NoSizeDrawsNothingAndChangesNoField)
{
    rs.tex1 = second;
    for (const Modes &m : rectangleForms()) {
        for (const auto &[x, y] : {std::pair{10, 18}, {18, 10}, {10, 10}}) {
            corners(10, 10, x, y);
            spread(m.rectOpt, rs.uv0, texels(40), texels(40));
            EXPECT_EQ(chosenLevel(m), -1) << m;
            EXPECT_EQ(rs.mipFrac, 201);
            EXPECT_EQ(rs.mipFrac1, 99);
            EXPECT_EQ(rs.mipTex1, nullptr);
            EXPECT_TRUE(untouched());
        }
    }
}

TEST_F(RectangleDriver, MeasuresWithoutOriginAndClip)
{
    rs.originX = 3, rs.originY = -2;
    corners(10, 10, 18, 14);
    clip(12, 5, 15, 10);
    for (const Modes &m : rectangleForms()) {
        spread(m.rectOpt, rs.uv0, texels(16), texels(8));
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 255) << m;
    }
}

TEST_F(RectangleDriver, ReversedVerticesHaveTheSameDensity)
{
    for (const Modes &m : rectangleForms()) {
        corners(18, 14, 10, 10);
        spread(m.rectOpt, rs.uv0, texels(24), texels(12));
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 127) << m;
    }
}

TEST_F(RectangleDriver, PutsEverythingBackAlsoWhenNothingIsDrawn)
{
    rs.tex1 = second;
    corners(10, 10, 18, 14);
    for (bool clippedAway : {false, true}) {
        for (const Modes &m : rectangleForms()) {
            clip(clippedAway ? 30 : 0, 0, 64, 32);
            spread(m.rectOpt, rs.uv0, texels(16) + 3, texels(8) + 5);
            spread(m.rectOpt, rs.uv1, texels(32) + 7, texels(17) + 9);
            const State before = state();
            wipe();
            draw(m);
            EXPECT_EQ(untouched(), clippedAway) << m;
            expectPutBack(before, m);
        }
    }
}

TEST_F(RectangleDriver, ASecondTextureThatIsSetIsWalkedUnderEveryMulti)
{
    rs.tex1 = second;
    corners(10, 10, 18, 14);
    for (Modes m : rectangleForms()) {
        for (int multi : multis) {
            m.multi = multi;
            spread(m.rectOpt, rs.uv0, texels(16), texels(8));
            spread(m.rectOpt, rs.uv1, texels(48), texels(24)); // 6 texels: level 2, 255 - (0x60000 >> 10 & 255)
            EXPECT_EQ(chosenLevel(m), 1) << m;
            EXPECT_EQ(rs.mipTex1, second->mip[3]) << m;
            EXPECT_EQ(rs.mipFrac1, 127) << m;
            // There is no short way for it, but below one texel the weight stays.
            spread(m.rectOpt, rs.uv1, texels(4), texels(2));
            EXPECT_EQ(chosenLevel(m), 1) << m;
            EXPECT_EQ(rs.mipTex1, second->mip[1]) << m;
            EXPECT_EQ(rs.mipFrac1, 99) << m;
            // And at one texel it is that of level 0.
            spread(m.rectOpt, rs.uv1, texels(8), texels(4));
            EXPECT_EQ(chosenLevel(m), 1) << m;
            EXPECT_EQ(rs.mipTex1, second->mip[1]) << m;
            EXPECT_EQ(rs.mipFrac1, 255) << m;
            // The short way of tex0 does not look at it: it may be without a chain.
            rs.tex1 = texture(4, 4, [](uint32_t, uint32_t) { return 0xFF00FF00; });
            spread(m.rectOpt, rs.uv0, texels(8), texels(4));
            EXPECT_EQ(chosenLevel(m), -1) << m;
            EXPECT_EQ(rs.mipFrac1, 99) << m;
            rs.tex1 = second;
        }
    }
}

TEST_F(RectangleDriver, ALeftOverSecondTextureWithoutAChainDrawsAsNone)
{
    const auto draws = [&](const Modes &m, Texture *left) {
        rs.tex1 = left;
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.tex1, left);
        return state().pixels;
    };
    Texture *const plain = texture(4, 4, [](uint32_t, uint32_t) { return 0xFF00FF00; });
    Texture *const had = equipped(texture(16, 16, [](uint32_t, uint32_t) { return 0xFF0000FF; }));
    DeleteMipmapTexture(had);
    corners(10, 10, 18, 14);
    for (const Modes &m : rectangleForms()) {
        ASSERT_EQ(m.multi, NINEFOLD_MULTI_NONE);
        spread(m.rectOpt, rs.uv0, texels(16), texels(8));
        const auto none = draws(m, nullptr);
        EXPECT_FALSE(untouched()) << m;
        for (int across : {0, 8, 48, 1024}) { // levels up to 7
            spread(m.rectOpt, rs.uv1, texels(across), texels(across / 2));
            EXPECT_EQ(draws(m, plain), none) << m << " " << across;
            EXPECT_EQ(draws(m, had), none) << m << " " << across;
        }
    }
}

TEST_F(RectangleDriver, FourCornersGoByWholeTexelLengthsOfTwoEdges)
{
    corners(10, 10, 15, 15);
    for (int filter : {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR}) {
        const Modes m{.filter = filter, .rectOpt = NINEFOLD_RECT_CORNERS};
        // 6 by 8 texels along the top, 8 by 6 down the left: length 10 both, 2 a pixel.
        rs.uv0[0] = {0, 0};
        rs.uv0[1] = {texels(6), texels(8)};
        rs.uv0[2] = {texels(-8), texels(6)};
        rs.uv0[3] = {12345, 54321}; // does not count
        EXPECT_EQ(chosenLevel(m), 1);
        EXPECT_EQ(rs.mipFrac, 255);
        rs.uv0[1].u -= 1; // 5 by 8: 9.43, truncated
        EXPECT_EQ(chosenLevel(m), -1);
        rs.uv0[1] = {texels(-6) - 0xFFFF, texels(-8) - 0xFFFF}; // truncated towards zero
        EXPECT_EQ(chosenLevel(m), 1);
        EXPECT_EQ(rs.mipFrac, 255);
    }
}

TEST_F(RectangleDriver, AbsoluteValuesAndComparisonsWrap)
{
    // The difference -2^31 over one pixel stays negative, is the smaller, passes the unsigned threshold and fits the sixteenth
    // octave.
    corners(0, 0, 1, 1);
    rs.uv0[0] = {0, 0};
    rs.uv0[1] = {INT32_MIN, texels(40)};
    EXPECT_EQ(chosenLevel({.filter = NINEFOLD_FILTER_MIP, .rectOpt = NINEFOLD_RECT_STRETCH}), 5);
    EXPECT_EQ(rs.mipFrac, 255);
    // Above the last octave no level fits: level 0 and the old weight, but not the short way.
    rs.uv0[1] = {0x40000000, 0x50000000};
    EXPECT_EQ(chosenLevel({.filter = NINEFOLD_FILTER_MIP, .rectOpt = NINEFOLD_RECT_STRETCH}), 0);
    EXPECT_EQ(rs.mipFrac, 201);
    // A length of 40548 texels turns negative when it is shifted; divided by 1 and made absolute it is 0x619C0000.
    rs.uv0[0] = {0, 0};
    rs.uv0[1] = {0x70000000, 0x70000000};
    rs.uv0[2] = {0x7FFF0000, 0x7FFF0000}; // 46339: 0x4AFD0000
    EXPECT_EQ(chosenLevel({.filter = NINEFOLD_FILTER_MIP, .rectOpt = NINEFOLD_RECT_CORNERS}), 0);
    EXPECT_EQ(rs.mipFrac, 201);
}

class TriangleDriver : public Driver {
protected:
    // Legs of `leg` pixels, and so many texels along each.
    static void place(int leg, int32_t length, TexCoord *uv = rs.uv0)
    {
        triangle(10, 10, 10 + leg, 10, 10, 10 + leg);
        uv[0] = {0x80000, 0x40000};
        uv[1] = {0x80000 + length, 0x40000};
        uv[2] = {0x80000, 0x40000 + length};
    }
};

TEST_F(TriangleDriver, UpToOneTexelTheBaseIsDrawnDirectly)
{
    for (const Modes &m : triangleForms()) {
        for (int32_t length : {texels(8), texels(8) + 0xFFFF, texels(5), 0}) { // whole texels count
            place(8, length);
            EXPECT_EQ(chosenLevel(m), -1) << m << " " << length;
            EXPECT_EQ(rs.mipFrac, 201);
            const State mip = state();
            Modes direct = m;
            direct.filter = m.filter == NINEFOLD_FILTER_MIP ? 0 : 1;
            wipe();
            draw(direct);
            EXPECT_EQ(state().pixels, mip.pixels) << m;
        }
        place(8, texels(9)); // one and an eighth
        EXPECT_EQ(chosenLevel(m), 0) << m;
        EXPECT_EQ(rs.mipFrac, 223) << m; // 255 - (0x12000 >> 8 & 255)
        EXPECT_EQ(rs.mipTex, base->mip[1]);
    }
}

TEST_F(TriangleDriver, OneAndAHalfTexelsTakeLevelZeroWhereARectangleGoesDirect)
{
    for (const Modes &m : triangleForms()) {
        place(8, texels(12));
        EXPECT_EQ(chosenLevel(m), 0) << m;
        EXPECT_EQ(rs.mipFrac, 127);
        EXPECT_EQ(rs.mipRatio, 0x18000);
    }
    corners(10, 10, 18, 18);
    for (const Modes &m : rectangleForms()) {
        spread(m.rectOpt, rs.uv0, texels(12), texels(12));
        EXPECT_EQ(chosenLevel(m), -1) << m;
    }
}

TEST_F(TriangleDriver, TheDensityIsThatOfTheAreasAndIsKept)
{
    for (const Modes &m : triangleForms()) {
        // 64 square pixels; a texture triangle of 8 by 32 texels: roots 8 and 16.
        triangle(10, 10, 18, 10, 10, 18);
        rs.uv0[0] = {0, 0}, rs.uv0[1] = {texels(8), 0}, rs.uv0[2] = {0, texels(32)};
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipRatio, 0x20000);
        EXPECT_EQ(rs.mipFrac, 255);
        // Turned around it is the same.
        rs.uv0[0] = {0, 0}, rs.uv0[1] = {0, texels(8)}, rs.uv0[2] = {texels(32), 0};
        EXPECT_EQ(chosenLevel(m), 1) << m;
        // Roots are truncated: 7 by 9 pixels are 7, 20 by 20 texels 20: 0x140000 / 7.
        triangle(10, 10, 17, 10, 10, 19);
        rs.uv0[0] = {0, 0}, rs.uv0[1] = {texels(20), 0}, rs.uv0[2] = {0, texels(20)};
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipRatio, 0x140000 / 7);
        // It is kept on the short way, too.
        rs.uv0[1] = {texels(2), 0}, rs.uv0[2] = {0, texels(2)};
        EXPECT_EQ(chosenLevel(m), -1) << m;
        EXPECT_EQ(rs.mipRatio, 0x20000 / 7);
    }
}

TEST_F(TriangleDriver, TrianglesWithoutAreaOrOutsideDrawNothingAndChangeNoField)
{
    rs.tex1 = second;
    for (const Modes &m : triangleForms()) {
        const int placements[][6] = {
            {10, 10, 10, 15, 10, 20}, // collinear
            {10, 10, 14, 14, 18, 18}, // on a diagonal
            {0, 0, 8, 0, 0, -8}, // above the clip: ends at row 0, and only rows before that are its own
            {10, 32, 18, 32, 10, 40}, {10, 12, 18, 12, 40, 12},
        };
        for (const auto &p : placements) {
            triangle(p[0], p[1], p[2], p[3], p[4], p[5]);
            rs.uv0[0] = {0, 0}, rs.uv0[1] = {texels(40), 0}, rs.uv0[2] = {0, texels(40)};
            if (p[5] == -8)
                rs.clipTop = 1;
            EXPECT_EQ(chosenLevel(m), -1) << m;
            rs.clipTop = 0;
            EXPECT_EQ(rs.mipFrac, 201);
            EXPECT_EQ(rs.mipFrac1, 99);
            EXPECT_EQ(rs.mipRatio, 77);
            EXPECT_TRUE(untouched());
        }
    }
}

TEST_F(TriangleDriver, ANegativeDensityGoesDirect)
{
    // An area of 2 * 32767 * 32767 square texels: root 46339, 0xB5030000 on a pixel. The comparison is signed.
    triangle(10, 10, 11, 10, 10, 11);
    rs.uv0[0] = {0, 0};
    rs.uv0[1] = {0x7FFF0000, -0x7FFF0000};
    rs.uv0[2] = {0x7FFF0000, 0x7FFF0000};
    EXPECT_EQ(chosenLevel({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_MIP}), -1);
    EXPECT_EQ(static_cast<uint32_t>(rs.mipRatio), 0xB5030000u);
}

TEST_F(TriangleDriver, AnAreaOfMinus2To31HasARootLikeAnyOther)
{
    // 65536 rows, the middle 32768 columns to the left: -2^31 square pixels, root 46340. The texture's is 32767, 0x7FFF0000 /
    // 46340 texels a pixel.
    triangle(40000, 0, 40000 - 32768, 1, 40000, 65536);
    rs.uv0[0] = {0, 0}, rs.uv0[1] = {0x7FFF0000, 0}, rs.uv0[2] = {0, 0x7FFF0000};
    for (const Modes &m : triangleForms()) {
        EXPECT_EQ(chosenLevel(m), -1) << m;
        EXPECT_EQ(rs.mipRatio, 0x7FFF0000 / 46340) << m;
    }
}

TEST_F(TriangleDriver, LevelClampAndShiftOfCoordinates)
{
    base = rs.tex0 = levels::fill(texture(8, 4), levels::idAt); // 3 levels
    for (const Modes &m : triangleForms()) {
        place(4, texels(144)); // 36 a pixel: level 5
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.mipFrac, 223) << m;
        if (m.filter == NINEFOLD_FILTER_MIP) { // without an operator and rule: the next level's texel
            EXPECT_EQ(at(11, 10), levels::idAt(2, ((4 + 18) / 2) & 1, 0)) << m;
        }
    }
}

TEST_F(TriangleDriver, PutsEverythingBackAndLeavesTheFourthCoordinateAlone)
{
    rs.tex1 = second;
    for (bool clippedAway : {false, true}) {
        for (const Modes &m : triangleForms()) {
            clip(clippedAway ? 40 : 0, 0, 64, 32);
            place(8, texels(24) + 3);
            place(8, texels(48) + 5, rs.uv1);
            rs.uv0[3] = {-12345, 54321}, rs.uv1[3] = {-777, 888};
            const State before = state();
            wipe();
            draw(m);
            EXPECT_EQ(untouched(), clippedAway) << m;
            expectPutBack(before, m);
            EXPECT_EQ(rs.mipRatio, 0x30000) << "that of tex0";
        }
    }
}

TEST_F(TriangleDriver, ASecondTextureThatIsSetIsWalkedUnderEveryMulti)
{
    rs.tex1 = second;
    for (Modes m : triangleForms()) {
        for (int multi : multis) {
            m.multi = multi;
            place(8, texels(24));
            place(8, texels(48), rs.uv1);
            EXPECT_EQ(chosenLevel(m), 1) << m;
            EXPECT_EQ(rs.mipTex1, second->mip[3]) << m;
            EXPECT_EQ(rs.mipFrac1, 127) << m;
            place(8, texels(4), rs.uv1);
            EXPECT_EQ(chosenLevel(m), 1) << m;
            EXPECT_EQ(rs.mipTex1, second->mip[1]) << m;
            EXPECT_EQ(rs.mipFrac1, 99) << m;
        }
    }
}

TEST_F(TriangleDriver, ALeftOverSecondTextureWithoutAChainDrawsAsNone)
{
    const auto draws = [&](const Modes &m, Texture *left) {
        rs.tex1 = left;
        EXPECT_EQ(chosenLevel(m), 1) << m;
        EXPECT_EQ(rs.tex1, left);
        return state().pixels;
    };
    Texture *const plain = texture(4, 4, [](uint32_t, uint32_t) { return 0xFF00FF00; });
    Texture *const had = equipped(texture(16, 16, [](uint32_t, uint32_t) { return 0xFF0000FF; }));
    DeleteMipmapTexture(had);
    for (const Modes &m : triangleForms()) {
        ASSERT_EQ(m.multi, NINEFOLD_MULTI_NONE);
        place(8, texels(24));
        const auto none = draws(m, nullptr);
        EXPECT_FALSE(untouched()) << m;
        for (int across : {0, 8, 48, 1024}) { // levels up to 7
            place(8, texels(across), rs.uv1);
            EXPECT_EQ(draws(m, plain), none) << m << " " << across;
            EXPECT_EQ(draws(m, had), none) << m << " " << across;
        }
    }
}

TEST_F(TriangleDriver, VerticesMayComeInAnyOrder)
{
    for (const Modes &m : triangleForms()) {
        const int orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
        std::vector<uint32_t> first;
        for (const auto &order : orders) {
            place(8, texels(24));
            Vertex v[3];
            TexCoord uv[3];
            for (int k = 0; k < 3; ++k)
                v[k] = rs.vertex[order[k]], uv[k] = rs.uv0[order[k]];
            std::copy_n(v, 3, rs.vertex);
            std::copy_n(uv, 3, rs.uv0);
            EXPECT_EQ(chosenLevel(m), 1) << m;
            EXPECT_EQ(rs.mipRatio, 0x30000) << m;
            if (first.empty())
                first = state().pixels;
            EXPECT_EQ(state().pixels, first) << m;
        }
    }
}

// What a triangle shows on level 1 of both textures. Three texels a pixel in tex0: 1.5 on level 1, weight 127. In tex1 2.5: 1.25
// on level 1, weight 191.
class TriangleForms : public Driver {
protected:
    static constexpr int32_t startU = 0x53468, startV = 0x6B356, startU1 = 0x2DBCC, startV1 = 0x1A210;
    static constexpr uint32_t frac = 127, frac1 = 191;

    static int32_t u(int x) { return startU / 2 + 0x18000 * x; }
    static int32_t v(int y) { return startV / 2 + 0x18000 * y; }
    static int32_t u1(int x) { return startU1 / 2 + 0x14000 * x; }
    static int32_t v1(int y) { return startV1 / 2 + 0x14000 * y; }

    void SetUp() override
    {
        Driver::SetUp();
        rs.tex1 = second;
        triangle(0, 0, 8, 0, 0, 8);
        clip(0, 0, 4, 4);
        rs.uv0[0] = {startU, startV}, rs.uv0[1] = {startU + texels(24), startV}, rs.uv0[2] = {startU, startV + texels(24)};
        rs.uv1[0] = {startU1, startV1}, rs.uv1[1] = {startU1 + texels(20), startV1}, rs.uv1[2] = {startU1, startV1 + texels(20)};
        std::fill_n(rs.color, 4, 0x00334455u);
    }

    uint32_t texelAt(int x, int y) const { return levels::point(*base->mip[1], u(x), v(y)); }
    uint32_t belowAt(int x, int y) const { return levels::texel(*base->mip[2], u(x) >> 17, v(y) >> 17); }
    uint32_t mixAt(int x, int y) const { return levels::mix3(texelAt(x, y), belowAt(x, y), frac); }
    uint32_t bilinearMixAt(int x, int y) const
    {
        return levels::mix3(levels::bilinear(*base->mip[1], u(x), v(y), false),
                            levels::bilinearBelowInTriangles(*base->mip[2], u(x), v(y), false), frac);
    }
    uint32_t secondMixAt(int x, int y) const
    {
        return levels::mix4(levels::bilinear(*second->mip[1], u1(x), v1(y), true),
                            levels::bilinearBelowInTriangles(*second->mip[2], u1(x), v1(y), true), frac1);
    }

    template <class Visitor>
    void forEachForm(int filter, std::initializer_list<int> multis, std::initializer_list<int> rules, Visitor &&visit)
    {
        for (int pers : {0, 1})
            for (int shahei : shaheis)
                for (int rule : rules)
                    for (int multi : multis) {
                        const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE,
                                      .pers = pers,
                                      .rule = rule,
                                      .filter = filter,
                                      .shahei = shahei,
                                      .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY,
                                      .multi = multi};
                        stale();
                        wipe();
                        callCount = 0;
                        visit(m);
                    }
    }

    template <class Expected>
    void expectPicture(const Modes &m, Expected &&expected)
    {
        SCOPED_TRACE(testing::PrintToString(m));
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                ASSERT_EQ(at(x, y), expected(x, y)) << x << ", " << y;
    }
};

TEST_F(TriangleForms, FilterTwoAloneShowsTheNextLevelWithItsOwnAlpha)
{
    forEachForm(2, {3}, {0}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return belowAt(x, y); });
    });
}

TEST_F(TriangleForms, FilterTwoAloneTestsTheLevelForZeroAndDrawsTheNextLevelsZero)
{
    levels::fill(base, [](uint32_t l, uint32_t tu, uint32_t tv) {
        return l == 2 || (l == 1 && tu % 4 == 2) ? 0 : levels::idAt(l, tu, tv);
    });
    forEachForm(2, {3}, {0}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int) { return (u(x) >> 16) % 4 == 2 ? ground : 0u; });
    });
}

TEST_F(TriangleForms, FilterTwoAloneWithARuleShowsTheLevel)
{
    forEachForm(2, {3}, {1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return texelAt(x, y); });
    });
}

TEST_F(TriangleForms, FilterTwoWithAnOperatorAndNoRuleCallsItAndShowsTheMix)
{
    forEachForm(2, {0, 1, 2}, {0}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return mixAt(x, y); }); // alpha 0
        EXPECT_EQ(callCount, 16 * ninefold::usableSets()) << m;
        EXPECT_EQ(seenFirst, mixAt(3, 3)) << m;
        EXPECT_EQ(seenSecond, m.multi == NINEFOLD_MULTI_TEXTURE ? levels::point(*second->mip[1], u1(3), v1(3)) : 0x00334455u)
            << m;
    });
}

TEST_F(TriangleForms, FilterTwosDroppedOperatorIsCalledUnderEveryBlend)
{
    static std::string order;
    for (int blend : blends) {
        for (int multi : {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
            const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_MIP, .blend = blend, .multi = multi};
            wipe();
            order.clear();
            rs.multiFunc = [](uint32_t, uint32_t) {
                order += 'm';
                return 0u;
            };
            rs.blendFunc = [](uint32_t, uint32_t source) {
                order += 'b';
                return source;
            };
            kernel(m)();
            std::string expected;
            for (int k = 0; k < 16; ++k)
                expected += blend == NINEFOLD_BLEND_CUSTOM ? "mb" : "m";
            EXPECT_EQ(order, expected) << m;
            if (blend == NINEFOLD_BLEND_COPY || blend == NINEFOLD_BLEND_MERGE || blend == NINEFOLD_BLEND_CUSTOM) {
                expectPicture(m, [&](int x, int y) { return mixAt(x, y); });
            }
        }
    }
}

TEST_F(TriangleForms, FilterTwosDroppedOperatorIsNotCalledForAZeroSecondTexelButTheMixStays)
{
    levels::fill(second, [](uint32_t l, uint32_t, uint32_t) { return l == 1 ? 0 : 0xFFFFFFFF; });
    forEachForm(2, {0}, {0}, [&](const Modes &m) {
        draw(m);
        EXPECT_EQ(callCount, 0) << m;
        expectPicture(m, [&](int x, int y) { return mixAt(x, y); });
    });
}

TEST_F(TriangleForms, FilterTwosMixHasAlphaZeroWhichAlphaBlendsShow)
{
    // Blend 1 with a source alpha of 0 stores (d * 255) / 256: 21, 32, 43.
    for (int multi : {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
        wipe();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_MIP, .blend = NINEFOLD_BLEND_ALPHA, .multi = multi});
        EXPECT_EQ(row(0, 0, 4), Pixels(4, 0x00213243));
        wipe();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE,
              .filter = NINEFOLD_FILTER_MIP,
              .blend = NINEFOLD_BLEND_ALPHA_FAST,
              .multi = multi}); // the destination as it is
        EXPECT_EQ(row(0, 0, 4), Pixels(4, ground));
    }
}

TEST_F(TriangleForms, FilterTwoWithASecondTextureAndARule)
{
    levels::fill(second,
                 [](uint32_t l, uint32_t tu, uint32_t tv) { return l == 1 && tu % 4 == 2 ? 0 : levels::idAt(l, tv, tu); });
    rs.multiFunc = [](uint32_t f, uint32_t s) { return f * 3 + s; };
    forEachForm(2, {0}, {1}, [&](const Modes &m) {
        draw(m);
        // The second operand is the level's texel alone; where it is 0 the unmixed texel goes on.
        expectPicture(m, [&](int x, int y) {
            const uint32_t texel1 = levels::point(*second->mip[1], u1(x), v1(y));
            return texel1 ? mixAt(x, y) * 3 + texel1 : texelAt(x, y);
        });
    });
}

TEST_F(TriangleForms, FilterTwoWithAColourAndARuleShowsTheOperatorsResult)
{
    forEachForm(2, {1, 2}, {1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return mixAt(x, y) + 0x10000; });
        EXPECT_EQ(seenSecond, 0x00334455u) << m;
    });
}

TEST_F(TriangleForms, FilterFiveMixesFourTexelsOfBothLevels)
{
    forEachForm(5, {3}, {0, 1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return bilinearMixAt(x, y); });
    });
    // The taps differ from the rectangles'.
    EXPECT_NE(levels::bilinearBelowInTriangles(*base->mip[2], u(1), v(2), false),
              levels::bilinearBelow(*base->mip[2], u(1), v(2), false));
}

TEST_F(TriangleForms, FilterFivesFourthTapMovesAWholeTexelOfTheLevelBelow)
{
    // At fractions of 64 the weights are 192 * 192 / 256 = 144, 48, 48, 16. The level below is red in one row each: v / 2 is in
    // row 8, one texel up is row 7, half a texel up is row 8 again.
    for (Texture *t : {base->mip[1], base->mip[2]})
        std::fill_n(t->pixels, t->width * t->height, 0xFF000000u);
    std::fill_n(base->mip[2]->pixels + 7 * 16, 16, 0xFFFF0000u);
    rs.tex1 = nullptr;
    rs.uv0[0] = {2 * 0x54000, 2 * 0x114000};
    rs.uv0[1] = {2 * 0x54000 + texels(24), 2 * 0x114000}, rs.uv0[2] = {2 * 0x54000, 2 * 0x114000 + texels(24)};
    for (int pers : {0, 1}) {
        wipe();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers, .filter = NINEFOLD_FILTER_MIP_BILINEAR});
        // Tap 4 alone: 255 * 16 / 256 = 15; then 15 * 128 / 256 = 7.
        EXPECT_EQ(at(0, 0), 0x00070000u);
    }
    // v = 17.25 on level 1 and 8.6 below; half a texel up is 8.1.
    EXPECT_EQ((0x114000 - 0x10000) / 2 >> 16, 8);
}

TEST_F(TriangleForms, FilterFivesOperatorCounts)
{
    forEachForm(5, {1, 2}, {0, 1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return bilinearMixAt(x, y) + 0x10000; });
        EXPECT_EQ(seenSecond, 0x00334455u) << m;
    });
    rs.multiFunc = [](uint32_t f, uint32_t s) { return f * 3 + s; };
    forEachForm(5, {0}, {0, 1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return bilinearMixAt(x, y) * 3 + secondMixAt(x, y); });
    });
}

TEST_F(TriangleForms, FilterFivesZeroCentreInTheSecondTextureLetsTheMixGoOn)
{
    levels::fill(second, [](uint32_t l, uint32_t, uint32_t) { return l == 1 ? 0 : 0xFFFFFFFF; });
    forEachForm(5, {0}, {0, 1}, [&](const Modes &m) {
        draw(m);
        EXPECT_EQ(callCount, 0) << m;
        expectPicture(m, [&](int x, int y) { return bilinearMixAt(x, y); });
    });
}

TEST_F(TriangleForms, AStaleWeightIsReadWhereTheSearchFindsNone)
{
    // tex1 below one texel a pixel: level 0, and the weight that an earlier primitive left.
    rs.uv1[1] = {startU1 + texels(4), startV1}, rs.uv1[2] = {startU1, startV1 + texels(4)};
    rs.multiFunc = [](uint32_t, uint32_t s) { return s; };
    for (int32_t left : {0, 31, 255}) {
        wipe();
        rs.mipFrac1 = left;
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_MIP_BILINEAR, .multi = NINEFOLD_MULTI_TEXTURE});
        const int32_t pu = startU1 + 0x8000, pv = startV1 + 0x8000 * 2;
        EXPECT_EQ(at(1, 2),
                  levels::mix4(levels::bilinear(*second, pu, pv, true),
                               levels::bilinearBelowInTriangles(*second->mip[1], pu, pv, true), static_cast<uint32_t>(left)))
            << left;
    }
}

TEST_F(TriangleForms, RuleTextureAndItsCoordinatesStayAsTheyAre)
{
    rs.tex2 = texture(8, 8, [](uint32_t tu, uint32_t) { return tu == 2 ? 255u : 0u; });
    rs.uv2[0] = {0, 0}, rs.uv2[1] = {texels(8), 0}, rs.uv2[2] = {0, texels(8)};
    forEachForm(5, {3}, {1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return x == 2 ? bilinearMixAt(x, y) : ground; });
    });
    forEachForm(2, {3}, {1}, [&](const Modes &m) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return x == 2 ? texelAt(x, y) : ground; });
    });
}

TEST_F(TriangleForms, UnderThePlaneWalkOnlyDrawnPixelsAreMarked)
{
    levels::fill(base, [](uint32_t l, uint32_t tu, uint32_t tv) { return l == 1 && tu % 4 == 2 ? 0 : levels::idAt(l, tu, tv); });
    for (int filter : {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR}) {
        for (int multi : {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_NONE}) {
            for (int rule : {0, 1}) {
                const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE,
                              .rule = rule,
                              .filter = filter,
                              .shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY,
                              .multi = multi};
                wipe();
                rs.zRef = 8;
                draw(m);
                for (int x = 0; x < 4; ++x) {
                    const bool hole = (u(x) >> 16) % 4 == 2;
                    EXPECT_EQ(taken(x, 1), !hole) << m;
                    EXPECT_EQ(zAt(x, 1), hole ? 0 : 8) << m;
                    EXPECT_EQ(at(x, 1) == ground, hole) << m;
                }
            }
        }
    }
}

} // namespace
