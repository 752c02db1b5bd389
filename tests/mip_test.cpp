// Mip-mapped sampling: the level of each line (rect option 3), and what filters 2 to 5 make of the levels in rectangles.
#include "support/canvas.h"
#include "support/levels.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class Mip : public Canvas {
protected:
    Mip() : Canvas(128, 8) {}

    void SetUp() override
    {
        Canvas::SetUp();
        base = rs.tex0 = levels::fill(texture(128, 64), levels::idAt);
        second = rs.tex1 = levels::fill(texture(64, 64), levels::otherIdAt);
        rs.lineTable0 = &line0;
        rs.lineTable1 = &line1;
        rs.writeMask = 0xFFFFFFFF;
        rs.mipFrac = 201, rs.mipFrac1 = 99;
        rs.mipTex = rs.mipTex1 = nullptr;
        rs.multiFunc = watch<0x10000>;
        rs.color[0] = 0x00334455;
    }

    static Modes lineForm(int filter, int shahei = NINEFOLD_SHAHEI_NONE, int multi = NINEFOLD_MULTI_NONE, int rule = 0)
    {
        return {.rule = rule,
                .filter = filter,
                .rectOpt = NINEFOLD_RECT_TABLE,
                .shahei = shahei,
                .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY,
                .multi = multi};
    }

    // One row of `pixels`, its segment `u` texels wide and `v` high from a start.
    void segment(int pixels, int u, int v, int32_t startU = 0x2468, int32_t startV = 0x1357)
    {
        corners(0, 0, pixels, 1);
        line0 = {startU, startV, startU + texels(u), startV + texels(v)};
    }

    // Makes lines read `level` of tex0: as many texels a pixel.
    Texture *base, *second;
    LineTableRecord line0{}, line1{};
};

class LineLevel : public Mip {
protected:
    // Draws with filter 3 and expects this level.
    void expectLevel(int pixels, int u, int v, int level)
    {
        const int32_t startU = line0.startU, startV = line0.startV;
        const int32_t du = (line0.endU - startU) / pixels >> level, dv = (line0.endV - startV) / pixels >> level;
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE}) {
            wipe();
            draw(lineForm(NINEFOLD_FILTER_LINE_POINT, shahei));
            for (int x = 0; x < pixels; ++x)
                ASSERT_EQ(at(x, 0), levels::point(*base->mip[level], (startU >> level) + du * x, (startV >> level) + dv * x))
                    << u << " by " << v << " texels over " << pixels << " pixels, at " << x;
        }
    }
};

TEST_F(LineLevel, IsZeroAtOneTexelAPixelAndOneFromTwoOn)
{
    segment(100, 100, 0);
    expectLevel(100, 100, 0, 0); // step 0x10000
    segment(49, 100, 0);
    expectLevel(49, 100, 0, 1); // 0x640000 / 49 = 0x20A72
    segment(50, 100, 0);
    expectLevel(50, 100, 0, 1); // 0x20000
    segment(51, 100, 0);
    expectLevel(51, 100, 0, 0);
    segment(25, 100, 0);
    expectLevel(25, 100, 0, 2);
    segment(26, 100, 0);
    expectLevel(26, 100, 0, 1);
}

TEST_F(LineLevel, IsZeroUnderMagnification)
{
    segment(100, 10, 3);
    expectLevel(100, 10, 3, 0);
    segment(100, 0, 0);
    expectLevel(100, 0, 0, 0);
}

TEST_F(LineLevel, GoesByTheLengthOfTheSegmentTruncated)
{
    segment(5, 6, 8); // length 10
    expectLevel(5, 6, 8, 1);
    segment(5, -8, -6);
    expectLevel(5, -8, -6, 1);
    segment(5, 0, -10);
    expectLevel(5, 0, -10, 1);
    segment(5, 7, 7); // length 9.899, truncated to 9: 1.8 texels a pixel
    expectLevel(5, 7, 7, 0);
}

TEST_F(LineLevel, DifferencesAreTakenInWholeTexelsTowardZero)
{
    // 9.99 texels over 5 pixels count as 9.
    segment(5, 0, 0);
    line0.endU = line0.startU + texels(10) - 1;
    expectLevel(5, 10, 0, 0);
    line0.endU = line0.startU - texels(10) + 1;
    expectLevel(5, -10, 0, 0);
    line0.endU = line0.startU - texels(10);
    expectLevel(5, -10, 0, 1);
}

TEST_F(LineLevel, IsAtMostTheLastButOne)
{
    Texture *short3 = levels::fill(texture(8, 4), levels::idAt);
    ASSERT_EQ(short3->mipCount, 3u);
    base = rs.tex0 = short3;
    segment(2, 70, 0); // 35 texels a pixel: level 5
    expectLevel(2, 70, 0, 1);
    segment(2, 9, 0); // 4.5: level 2 is the last
    expectLevel(2, 9, 0, 1);
    Texture *short2 = levels::fill(texture(2, 2), levels::idAt);
    ASSERT_EQ(short2->mipCount, 2u);
    base = rs.tex0 = short2;
    segment(2, 70, 0);
    expectLevel(2, 70, 0, 0);
}

TEST_F(LineLevel, IsZeroBeyondTheLastOctave)
{
    // 16384 texels on a pixel: the upper bound of that octave, 0x10000 << 15, is negative.
    segment(1, 16384, 0);
    expectLevel(1, 16384, 0, 0);
    // One less is in the octave below, and the chain's end.
    segment(1, 16383, 0);
    expectLevel(1, 16383, 0, 5);
}

TEST_F(LineLevel, OfANegativeStepIsTheSixteenth)
{
    // 28672 texels both ways are 40548 long, and 40548 << 16 is negative: not below 0x10000 << 15, and below 0x10000 << 16, which
    // is 0.
    line0 = {-0x60000000, -0x60000000, 0x10000000, 0x10000000};
    corners(0, 0, 1, 1);
    expectLevel(1, 28672, 28672, 5); // the chain's last but one
    draw(lineForm(NINEFOLD_FILTER_MIP, NINEFOLD_SHAHEI_PLANE));
    EXPECT_EQ(rs.mipFrac, 195); // 0x9E640000 >> 23 & 255 = 60
}

TEST_F(LineLevel, TheClippedStartIsTheShiftedStartPlusShiftedSteps)
{
    segment(49, 100, 37, 0x123457, 0x345679);
    const int32_t du = texels(100) / 49 >> 1, dv = texels(37) / 49 >> 1;
    for (int filter : {NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_MIP}) {
        clear();
        clip(7, 0, 40, 1);
        draw(lineForm(filter));
        for (int x = 7; x < 40; ++x)
            ASSERT_EQ(at(x, 0), levels::point(*base->mip[1], (0x123457 >> 1) + du * x, (0x345679 >> 1) + dv * x)) << x;
        EXPECT_TRUE(groundOutside(7, 0, 40, 1));
    }
    // Negative steps are shifted with their sign: (-100 texels / 49) >> 1 floors.
    segment(49, -100, -37, 0x723457, 0x545679);
    const int32_t back = -texels(100) / 49 >> 1, up = -texels(37) / 49 >> 1;
    clear();
    draw(lineForm(NINEFOLD_FILTER_LINE_POINT));
    for (int x = 7; x < 40; ++x)
        ASSERT_EQ(at(x, 0), levels::point(*base->mip[1], (0x723457 >> 1) + back * x, (0x545679 >> 1) + up * x)) << x;
}

TEST_F(LineLevel, EachRowChoosesItsOwn)
{
    std::vector<LineTableRecord> table;
    for (int level = 0; level < 6; ++level)
        table.push_back({0x2468, 0x1357, 0x2468 + texels(8 << level), 0x1357});
    rs.lineTable0 = table.data();
    corners(0, 0, 8, 6);
    for (int filter : {NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_MIP}) {
        clear();
        draw(lineForm(filter));
        for (int level = 0; level < 6; ++level)
            for (int x = 0; x < 8; ++x)
                ASSERT_EQ(at(x, level), levels::point(*base->mip[level], (0x2468 >> level) + texels(x), 0x1357 >> level))
                    << level;
    }
}

class LineScratch : public Mip {
protected:
    struct Scratch {
        int32_t frac, frac1;
        const Texture *tex, *tex1;
        bool operator==(const Scratch &) const = default;
        friend void PrintTo(const Scratch &s, std::ostream *out)
        {
            *out << s.frac << " " << s.frac1 << " " << s.tex << " " << s.tex1;
        }
    };

    Scratch after(const Modes &m)
    {
        rs.mipFrac = 201, rs.mipFrac1 = 99;
        rs.mipTex = rs.mipTex1 = nullptr;
        wipe();
        draw(m);
        return {rs.mipFrac, rs.mipFrac1, rs.mipTex, rs.mipTex1};
    }
};

TEST_F(LineScratch, EveryFilterAndModeLeavesWhatItShould)
{
    // tex0: 100 texels over 49 pixels, 0x20A72, level 1: 255 - (0x20A72 >> 9 & 255) = 250.
    // tex1: 49 * 6 texels over 49 pixels, 0x60000, level 2: 255 - (0x60000 >> 10 & 255) = 127.
    segment(49, 100, 0);
    line1 = {0, 0, texels(49 * 6), 0};
    for (int filter :
         {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP_BILINEAR}) {
        for (int shahei : shaheis) {
            for (int multi : multis) {
                for (int rule : {0, 1}) {
                    rs.tex2 = solid(255);
                    const Modes m = lineForm(filter, shahei, multi, rule);
                    const bool levelsToo = filter == NINEFOLD_FILTER_MIP || filter == NINEFOLD_FILTER_MIP_BILINEAR,
                               walk = marksPlane(shahei);
                    const Scratch expected{walk ? 250 : 201, multi == NINEFOLD_MULTI_TEXTURE ? 127 : 99,
                                           levelsToo ? base->mip[2] : nullptr,
                                           levelsToo && multi == NINEFOLD_MULTI_TEXTURE ? second->mip[3] : nullptr};
                    EXPECT_EQ(after(m), expected) << m;
                }
            }
        }
    }
}

TEST_F(LineScratch, WeightsStayWhereTheSearchFindsNoLevel)
{
    segment(100, 50, 0); // half a texel a pixel
    line1 = {0, 0, texels(50), 0};
    for (int filter :
         {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP_BILINEAR}) {
        const bool levelsToo = filter == NINEFOLD_FILTER_MIP || filter == NINEFOLD_FILTER_MIP_BILINEAR;
        EXPECT_EQ(after(lineForm(filter, NINEFOLD_SHAHEI_PLANE, NINEFOLD_MULTI_TEXTURE)),
                  (Scratch{201, 99, levelsToo ? base->mip[1] : nullptr, levelsToo ? second->mip[1] : nullptr}))
            << filter;
    }
    // And beyond the last octave.
    segment(1, 16384, 0);
    line1 = {0, 0, texels(20000), 0};
    EXPECT_EQ(after(lineForm(NINEFOLD_FILTER_MIP, NINEFOLD_SHAHEI_PLANE, NINEFOLD_MULTI_TEXTURE)),
              (Scratch{201, 99, base->mip[1], second->mip[1]}));
}

TEST_F(LineScratch, TheClampChangesTheLevelNotTheWeight)
{
    rs.tex0 = levels::fill(texture(8, 4), levels::idAt); // three levels
    segment(2, 70, 0); // 35 texels: level 5, 255 - (0x230000 >> 13 & 255) = 255 - 24
    EXPECT_EQ(after(lineForm(NINEFOLD_FILTER_MIP, NINEFOLD_SHAHEI_PLANE)), (Scratch{231, 99, rs.tex0->mip[2], nullptr}));
}

TEST_F(LineScratch, RowsThatAreLeftOutDoNotTouchIt)
{
    const LineTableRecord table[] = {{NINEFOLD_SKIP_ROW, 0, texels(400), 0}, {NINEFOLD_SKIP_ROW, 0, texels(400), 0}};
    rs.lineTable0 = const_cast<LineTableRecord *>(table);
    std::vector<LineTableRecord> second2(2, {0, 0, texels(400), 0});
    rs.lineTable1 = second2.data();
    corners(0, 0, 49, 2);
    for (int filter :
         {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP_BILINEAR})
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE})
            EXPECT_EQ(after(lineForm(filter, shahei, NINEFOLD_MULTI_TEXTURE)), (Scratch{201, 99, nullptr, nullptr})) << filter;
    // The last drawn row leaves its own behind.
    std::vector<LineTableRecord> mixed = {{0, 0, texels(100), 0}, {NINEFOLD_SKIP_ROW, 0, texels(400), 0}};
    rs.lineTable0 = mixed.data();
    EXPECT_EQ(after(lineForm(NINEFOLD_FILTER_MIP, NINEFOLD_SHAHEI_PLANE)), (Scratch{250, 99, base->mip[2], nullptr}));
}

TEST_F(LineScratch, RectanglesThatAreClippedAwayDoNotTouchIt)
{
    segment(49, 100, 0);
    clip(60, 0, 100, 8);
    for (int filter :
         {NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_LINE_POINT, NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP_BILINEAR})
        EXPECT_EQ(after(lineForm(filter, NINEFOLD_SHAHEI_PLANE, NINEFOLD_MULTI_TEXTURE)), (Scratch{201, 99, nullptr, nullptr}))
            << filter;
}

// What each filter makes of the level in rect option 3. Positions are those of level 1 and start between its texels.
class LineForms : public Mip {
protected:
    static constexpr int32_t startU = 0x53468, startV = 0x6B357;

    void SetUp() override
    {
        Mip::SetUp();
        rs.tex2 = solid(255);
        segment(8, 16, 0, startU, startV); // exactly two texels a pixel: mipFrac would be 255
        segment(8, 20, 0, startU, startV); // 2.5: 0x28000 >> 9 & 255 = 64, 191
        line1 = {startV, startU, startV + texels(24), startU}; // 3: 127
    }

    // Level positions at pixel x.
    static int32_t u(int x) { return (startU >> 1) + (texels(20) / 8 >> 1) * x; }
    static int32_t v() { return startV >> 1; }
    static int32_t u1(int x) { return (startV >> 1) + (texels(3) >> 1) * x; }
    static int32_t v1() { return startU >> 1; }

    static constexpr uint32_t lineFrac = 191, lineFrac1 = 127, staleFrac = 201;
    uint32_t fracOf(const Modes &m) const { return marksPlane(m.shahei) ? lineFrac : staleFrac; }

    void prepare()
    {
        rs.mipFrac = staleFrac, rs.mipFrac1 = 99;
        rs.mipTex = rs.mipTex1 = nullptr;
        callCount = 0;
        wipe();
    }
};

TEST_F(LineForms, FilterThreeIsAPointSampleOfTheLevel)
{
    for (int shahei : shaheis) {
        for (int rule : {0, 1}) {
            prepare();
            draw(lineForm(NINEFOLD_FILTER_LINE_POINT, shahei, NINEFOLD_MULTI_NONE, rule));
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(at(x, 0), levels::point(*base->mip[1], u(x), v())) << shahei << " " << rule;
        }
    }
}

TEST_F(LineForms, FilterThreeSamplesTheSecondTextureOnItsOwnLevel)
{
    rs.multiFunc = [](uint32_t, uint32_t s) { return s; };
    for (int shahei : shaheis) {
        prepare();
        draw(lineForm(NINEFOLD_FILTER_LINE_POINT, shahei, NINEFOLD_MULTI_TEXTURE));
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(at(x, 0), levels::point(*second->mip[1], u1(x), v1())) << shahei;
    }
}

TEST_F(LineForms, FilterFourMixesTheLevelUnderThePlaneWalkAndChoosesOtherwise)
{
    for (int shahei : shaheis) {
        prepare();
        draw(lineForm(NINEFOLD_FILTER_LINE_BILINEAR, shahei));
        for (int x = 0; x < 8; ++x) {
            if (marksPlane(shahei)) {
                EXPECT_EQ(at(x, 0), levels::bilinear(*base->mip[1], u(x), v(), false)) << shahei;
                continue;
            }
            // One of two texels of the nearer row, as they are.
            const Texture &level = *base->mip[1];
            const bool left = (u(x) >> 8 & 255) < 128, above = (v() >> 8 & 255) < 128;
            const int column = u(x) >> 16, line = (v() >> 16) - above;
            const uint32_t a = levels::texel(level, left ? column - 1 : column, line),
                           b = levels::texel(level, left ? column : column + 1, line);
            EXPECT_TRUE(at(x, 0) == a || at(x, 0) == b) << shahei << " at " << x;
        }
    }
}

TEST_F(LineForms, FilterFourMixesTheSecondTextureInEveryMode)
{
    rs.multiFunc = [](uint32_t, uint32_t s) { return s; };
    for (int shahei : shaheis) {
        prepare();
        draw(lineForm(NINEFOLD_FILTER_LINE_BILINEAR, shahei, NINEFOLD_MULTI_TEXTURE));
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(at(x, 0), levels::bilinear(*second->mip[1], u1(x), v1(), true)) << shahei;
    }
}

TEST_F(LineForms, FilterTwoWithoutAnOperatorIsThePointSampleButUnderThePlaneWalk)
{
    for (int shahei : shaheis) {
        for (int rule : {0, 1}) {
            prepare();
            draw(lineForm(NINEFOLD_FILTER_MIP, shahei, NINEFOLD_MULTI_NONE, rule));
            const bool next = (marksPlane(shahei)) && !rule;
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(at(x, 0),
                          next ? levels::texel(*base->mip[2], u(x) >> 17, v() >> 17) : levels::point(*base->mip[1], u(x), v()))
                    << shahei << " rule " << rule;
            if (shahei == NINEFOLD_SHAHEI_NONE) {
                const State two = state();
                prepare();
                draw(lineForm(NINEFOLD_FILTER_LINE_POINT, shahei, NINEFOLD_MULTI_NONE, rule));
                EXPECT_EQ(two.pixels, state().pixels) << "draws as filter 3";
            }
        }
    }
}

TEST_F(LineForms, FilterTwoTestsTheLevelForZeroAndStoresTheNextLevelsZero)
{
    levels::fill(base, [](uint32_t l, uint32_t tu, uint32_t tv) {
        return l == 2 ? 0u : (l == 1 && tu % 4 == 1 ? 0 : levels::idAt(l, tu, tv));
    });
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        prepare();
        rs.zRef = 0x5A;
        draw(lineForm(NINEFOLD_FILTER_MIP, shahei));
        for (int x = 0; x < 8; ++x) {
            const bool hole = (u(x) >> 16) % 4 == 1;
            EXPECT_EQ(at(x, 0), hole ? ground : 0u) << x;
            EXPECT_EQ(taken(x, 0), !hole) << x;
            EXPECT_EQ(zAt(x, 0), !hole && shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x5A : 0) << x;
        }
    }
}

TEST_F(LineForms, FilterTwoMixesLevelsForItsOperator)
{
    for (int multi : {NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
        for (int shahei : shaheis) {
            for (int rule : {0, 1}) {
                const Modes m = lineForm(NINEFOLD_FILTER_MIP, shahei, multi, rule);
                prepare();
                std::fill_n(rs.color, 4, 0x00334455u);
                draw(m);
                for (int x = 0; x < 8; ++x) {
                    const uint32_t texel = levels::point(*base->mip[1], u(x), v()),
                                   below = levels::texel(*base->mip[2], u(x) >> 17, v() >> 17);
                    EXPECT_EQ(at(x, 0), levels::mix3(texel, below, fracOf(m)) + 0x10000) << m << " at " << x;
                }
                EXPECT_EQ(seenSecond, 0x00334455u) << m;
            }
        }
    }
}

TEST_F(LineForms, FilterTwoMixesLevelsOfBothTexturesAndUnmixesWhereTheSecondIsZero)
{
    levels::fill(second,
                 [](uint32_t l, uint32_t tu, uint32_t tv) { return l == 1 && tu % 4 == 1 ? 0 : levels::idAt(l, tv, tu); });
    for (int shahei : shaheis) {
        for (int rule : {0, 1}) {
            const Modes m = lineForm(NINEFOLD_FILTER_MIP, shahei, NINEFOLD_MULTI_TEXTURE, rule);
            prepare();
            rs.multiFunc = [](uint32_t f, uint32_t s) { return f * 3 + s; };
            draw(m);
            for (int x = 0; x < 8; ++x) {
                const uint32_t texel = levels::point(*base->mip[1], u(x), v()),
                               below = levels::texel(*base->mip[2], u(x) >> 17, v() >> 17);
                const uint32_t texel1 = levels::point(*second->mip[1], u1(x), v1()),
                               below1 = levels::texel(*second->mip[2], u1(x) >> 17, v1() >> 17);
                const uint32_t first = levels::mix3(texel, below, fracOf(m)), other = levels::mix3(texel1, below1, lineFrac1);
                EXPECT_EQ(at(x, 0), texel1 ? first * 3 + other : texel) << m << " at " << x;
            }
        }
    }
}

TEST_F(LineForms, FilterTwosMixByHand)
{
    // (0xC8 * 201 + 0x64 * 54) / 256 = 178 = 0xB2 in each channel, alpha 0.
    levels::fill(base, [](uint32_t l, uint32_t, uint32_t) { return l == 1 ? 0xFFC8C8C8 : l == 2 ? 0xFF646464 : 0xFF000000; });
    prepare();
    rs.multiFunc = [](uint32_t f, uint32_t) { return f; };
    draw(lineForm(NINEFOLD_FILTER_MIP, NINEFOLD_SHAHEI_NONE, NINEFOLD_MULTI_COLOUR));
    EXPECT_EQ(at(0, 0), 0x00B2B2B2u);
    // A white of both levels fades by a step: 255 * 255 / 256.
    levels::fill(base, [](uint32_t, uint32_t, uint32_t) { return 0xFFFFFFFF; });
    draw(lineForm(NINEFOLD_FILTER_MIP, NINEFOLD_SHAHEI_NONE, NINEFOLD_MULTI_COLOUR));
    EXPECT_EQ(at(0, 0), 0x00FEFEFEu);
}

TEST_F(LineForms, FilterFiveReadsTheLevelsFirstTexelOutsideThePlaneWalk)
{
    for (int shahei :
         {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        for (int rule : {0, 1}) {
            prepare();
            draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, shahei, NINEFOLD_MULTI_NONE, rule));
            EXPECT_EQ(row(0, 0, 8), Pixels(8, base->mip[1]->pixels[0])) << shahei; // alpha and all
            prepare();
            rs.multiFunc = watch<0x10000>;
            draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, shahei, NINEFOLD_MULTI_TEXTURE, rule));
            EXPECT_EQ(seenFirst, base->mip[1]->pixels[0]);
            EXPECT_EQ(seenSecond, second->mip[1]->pixels[0]);
            for (int multi : {NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
                prepare();
                draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, shahei, multi, rule));
                EXPECT_EQ(seenFirst, base->mip[1]->pixels[0]) << multi;
            }
        }
    }
    // It is tested for zero like any texel, in both textures.
    second->mip[1]->pixels[0] = 0;
    prepare();
    draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_SHAHEI_NONE, NINEFOLD_MULTI_TEXTURE));
    EXPECT_EQ(callCount, 0);
    EXPECT_EQ(at(3, 0), base->mip[1]->pixels[0]);
    base->mip[1]->pixels[0] = 0;
    prepare();
    draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_SHAHEI_NONE));
    EXPECT_TRUE(untouched());
}

TEST_F(LineForms, FilterFiveWithNegativePositionsReadsTheLevelOnly)
{
    // What comes out is open, but it is of the level.
    for (int32_t start : {-0x53468, -0x7FFF0000}) {
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_STIPPLE}) {
            prepare();
            line0 = {start, start, start + texels(20), start + texels(3)};
            draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, shahei, NINEFOLD_MULTI_NONE));
            const Texture &level = *base->mip[1];
            for (int x = 0; x < 8; ++x)
                EXPECT_NE(std::find(level.pixels, level.pixels + level.width * level.height, at(x, 0)),
                          level.pixels + level.width * level.height);
        }
    }
}

TEST_F(LineForms, FilterFiveMixesFourTexelsOfBothLevelsUnderThePlaneWalk)
{
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (int rule : {0, 1}) {
            prepare();
            draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, shahei, NINEFOLD_MULTI_NONE, rule));
            for (int x = 0; x < 8; ++x) {
                const uint32_t upper = levels::bilinear(*base->mip[1], u(x), v(), false),
                               lower = levels::bilinearBelow(*base->mip[2], u(x), v(), false);
                EXPECT_EQ(at(x, 0), levels::mix3(upper, lower, lineFrac)) << x;
            }
        }
    }
}

TEST_F(LineForms, FilterFivesSecondOperandKeepsFourChannels)
{
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (int rule : {0, 1}) {
            prepare();
            rs.multiFunc = [](uint32_t, uint32_t s) { return s; };
            draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, shahei, NINEFOLD_MULTI_TEXTURE, rule));
            for (int x = 0; x < 8; ++x) {
                const uint32_t upper = levels::bilinear(*second->mip[1], u1(x), v1(), true);
                const uint32_t lower = levels::bilinearBelow(*second->mip[2], u1(x), v1(), true);
                EXPECT_EQ(at(x, 0), levels::mix4(upper, lower, lineFrac1)) << x;
            }
        }
    }
    // A zero centre in tex1 lets the mix of tex0 go on.
    levels::fill(second, [](uint32_t l, uint32_t, uint32_t) { return l == 1 ? 0 : 0xFFFFFFFF; });
    prepare();
    rs.multiFunc = watch<0x10000>;
    draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_SHAHEI_PLANE, NINEFOLD_MULTI_TEXTURE));
    EXPECT_EQ(callCount, 0);
    EXPECT_EQ(at(2, 0), levels::mix3(levels::bilinear(*base->mip[1], u(2), v(), false),
                                     levels::bilinearBelow(*base->mip[2], u(2), v(), false), lineFrac));
}

TEST_F(LineForms, FilterFivesFourChannelMixByHand)
{
    // All channels 255 in both levels, weights 127 and 128: alpha, red and green add up before they are cut, 255 * 255 / 256 =
    // 254; blue is cut first, 255 * 127 / 256 + 255 * 128 / 256 = 126 + 127.
    levels::fill(second, [](uint32_t, uint32_t, uint32_t) { return 0xFFFFFFFF; });
    prepare();
    rs.multiFunc = [](uint32_t, uint32_t s) { return s; };
    draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_SHAHEI_PLANE, NINEFOLD_MULTI_TEXTURE));
    EXPECT_EQ(at(0, 0), 0xFEFEFEFDu);
}

TEST_F(LineForms, FilterFiveTestsTheCentreOfTheLevelOnly)
{
    levels::fill(base, [](uint32_t l, uint32_t tu, uint32_t tv) {
        return l == 2 || (l == 1 && tu % 4 == 1) ? 0 : levels::idAt(l, tu, tv);
    });
    prepare();
    draw(lineForm(NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_SHAHEI_PLANE));
    for (int x = 0; x < 8; ++x) {
        const bool hole = (u(x) >> 16) % 4 == 1;
        EXPECT_EQ(at(x, 0) == ground, hole) << x;
        EXPECT_EQ(taken(x, 0), !hole) << x;
    }
}

// The kernels behind the drivers of rect options 1 and 2, on level 1 of both textures.
class RectangleForms : public Mip {
protected:
    void SetUp() override
    {
        Mip::SetUp();
        rs.tex2 = solid(255);
        // 3 texels a pixel both ways: level 1, weight 255 - (0x30000 >> 9 & 255) = 127; in tex1 2.5: 191.
        corners(0, 0, 8, 4);
    }

    static constexpr int32_t startU = 0x53468, startV = 0x6B357, startU1 = 0x2DBCD, startV1 = 0x1A211;
    static constexpr uint32_t frac = 127, frac1 = 191;

    static void spread(int rectOpt, TexCoord *uv, TexCoord start, int32_t acrossU, int32_t downV)
    {
        uv[0] = start;
        uv[1] = {start.u + acrossU, rectOpt == NINEFOLD_RECT_STRETCH ? start.v + downV : start.v};
        uv[2] = {start.u, start.v + downV};
        uv[3] = {start.u + acrossU, start.v + downV};
    }

    void prepare(const Modes &m)
    {
        spread(m.rectOpt, rs.uv0, {startU, startV}, texels(24), texels(12));
        spread(m.rectOpt, rs.uv1, {startU1, startV1}, texels(20), texels(10));
        rs.mipFrac = 33, rs.mipFrac1 = 44;
        rs.mipTex = rs.mipTex1 = nullptr;
        callCount = 0;
        wipe();
    }

    // Coordinates are halved before they are divided by the size.
    static int32_t u(int x) { return (startU >> 1) + (((startU + texels(24)) >> 1) - (startU >> 1)) / 8 * x; }
    static int32_t v(int y) { return (startV >> 1) + (((startV + texels(12)) >> 1) - (startV >> 1)) / 4 * y; }
    static int32_t u1(int x) { return (startU1 >> 1) + (((startU1 + texels(20)) >> 1) - (startU1 >> 1)) / 8 * x; }
    static int32_t v1(int y) { return (startV1 >> 1) + (((startV1 + texels(10)) >> 1) - (startV1 >> 1)) / 4 * y; }

    template <class Expected>
    void expectPicture(const Modes &m, Expected &&expected)
    {
        SCOPED_TRACE(testing::PrintToString(m));
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 8; ++x)
                ASSERT_EQ(at(x, y), expected(x, y)) << x << ", " << y;
    }

    template <class Visitor>
    void forEachForm(int filter, std::initializer_list<int> multis, Visitor &&visit)
    {
        for (int rectOpt : {NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS})
            for (int shahei : shaheis)
                for (int rule : {0, 1})
                    for (int multi : multis) {
                        const Modes m{.rule = rule,
                                      .filter = filter,
                                      .rectOpt = rectOpt,
                                      .shahei = shahei,
                                      .blend = testsPriority(shahei) ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY,
                                      .multi = multi};
                        prepare(m);
                        visit(m, marksPlane(shahei));
                    }
    }

    uint32_t texelAt(int x, int y) const { return levels::point(*base->mip[1], u(x), v(y)); }
    uint32_t belowAt(int x, int y) const { return levels::texel(*base->mip[2], u(x) >> 17, v(y) >> 17); }
};

TEST_F(RectangleForms, FilterTwoWithoutAnOperatorIsThePointSampleButUnderThePlaneWalk)
{
    forEachForm(2, {3}, [&](const Modes &m, bool walk) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return walk && !m.rule ? belowAt(x, y) : texelAt(x, y); });
    });
}

TEST_F(RectangleForms, FilterTwoTestsTheLevelForZeroAndStoresTheNextLevelsZero)
{
    levels::fill(base, [](uint32_t l, uint32_t tu, uint32_t tv) {
        return l == 2 ? 0u : (l == 1 && tu % 4 == 1 ? 0 : levels::idAt(l, tu, tv));
    });
    forEachForm(2, {3}, [&](const Modes &m, bool walk) {
        rs.zRef = m.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? 0x5A : 0;
        draw(m);
        const bool next = walk && !m.rule;
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 8; ++x) {
                const bool hole = (u(x) >> 16) % 4 == 1;
                ASSERT_EQ(at(x, y), hole ? ground : next ? 0u : texelAt(x, y)) << m << " at " << x;
                ASSERT_EQ(taken(x, y), walk && !hole) << m << " at " << x;
                ASSERT_EQ(zAt(x, y), m.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY && !hole ? 0x5A : 0) << m << " at " << x;
            }
        }
    });
}

TEST_F(RectangleForms, FilterTwoMixesLevelsForItsOperator)
{
    std::fill_n(rs.color, 4, 0x00334455u);
    forEachForm(2, {1, 2}, [&](const Modes &m, bool) {
        draw(m);
        expectPicture(m, [&](int x, int y) { return levels::mix3(texelAt(x, y), belowAt(x, y), frac) + 0x10000; });
    });
}

TEST_F(RectangleForms, FilterTwosSecondOperandIsMixedInThreeChannelsAndAZeroUnmixes)
{
    levels::fill(second,
                 [](uint32_t l, uint32_t tu, uint32_t tv) { return l == 1 && tu % 4 == 1 ? 0 : levels::idAt(l, tv, tu); });
    rs.multiFunc = [](uint32_t f, uint32_t s) { return f * 3 + s; };
    forEachForm(2, {0}, [&](const Modes &m, bool) {
        draw(m);
        expectPicture(m, [&](int x, int y) {
            const uint32_t texel1 = levels::point(*second->mip[1], u1(x), v1(y)),
                           below1 = levels::texel(*second->mip[2], u1(x) >> 17, v1(y) >> 17);
            return texel1 ? levels::mix3(texelAt(x, y), belowAt(x, y), frac) * 3 + levels::mix3(texel1, below1, frac1)
                          : texelAt(x, y);
        });
    });
}

TEST_F(RectangleForms, FilterTwosRowsTruncateInTheStretchForTheLevelAndFloorBelow)
{
    // A single row at -0.5 of level 1: truncated to row 0; in the next level, -1 >> 17 is row -1.
    for (int rectOpt : {NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS}) {
        for (int multi : {NINEFOLD_MULTI_NONE, NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_TEXTURE}) {
            for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE}) {
                const Modes m{.filter = NINEFOLD_FILTER_MIP, .rectOpt = rectOpt, .shahei = shahei, .multi = multi};
                prepare(m);
                corners(0, 0, 8, 1);
                spread(rectOpt, rs.uv0, {startU, -0x10000}, texels(24), texels(2));
                spread(rectOpt, rs.uv1, {startU, -0x10000}, texels(24), texels(2));
                rs.multiFunc = [](uint32_t f, uint32_t s) {
                    seenFirst = f, seenSecond = s;
                    return f;
                };
                draw(m);
                // 2 texels a pixel down, 3 across: level 1, weight 255 - 0.
                const int line = rectOpt == NINEFOLD_RECT_STRETCH ? 0 : -1;
                const uint32_t texel = levels::texel(*base->mip[1], u(7) >> 16, line),
                               below = levels::texel(*base->mip[2], u(7) >> 17, -1);
                EXPECT_EQ(at(7, 0), multi != NINEFOLD_MULTI_NONE ? levels::mix3(texel, below, 255) : shahei ? below : texel) << m;
                if (multi == NINEFOLD_MULTI_TEXTURE) {
                    const uint32_t texel1 = levels::texel(*second->mip[1], u(7) >> 16, line),
                                   below1 = levels::texel(*second->mip[2], u(7) >> 17, -1);
                    EXPECT_EQ(seenSecond, levels::mix3(texel1, below1, 255)) << m;
                }
            }
        }
    }
}

TEST_F(RectangleForms, FilterFiveMixesFourTexelsOfBothLevelsButInFourCornerRectanglesWithoutThePlane)
{
    forEachForm(5, {3, 2}, [&](const Modes &m, bool walk) {
        const bool firstTexel = m.rectOpt == NINEFOLD_RECT_CORNERS && !walk;
        draw(m);
        expectPicture(m, [&](int x, int y) {
            const uint32_t upper = levels::bilinear(*base->mip[1], u(x), v(y), false),
                           lower = levels::bilinearBelow(*base->mip[2], u(x), v(y), false);
            return (firstTexel ? base->mip[1]->pixels[0] : levels::mix3(upper, lower, frac)) +
                   (m.multi == NINEFOLD_MULTI_COLOUR ? 0x10000 : 0);
        });
    });
}

TEST_F(RectangleForms, FilterFivesSecondOperandKeepsFourChannels)
{
    rs.multiFunc = [](uint32_t, uint32_t s) { return s; };
    forEachForm(5, {0}, [&](const Modes &m, bool walk) {
        const bool firstTexel = m.rectOpt == NINEFOLD_RECT_CORNERS && !walk;
        draw(m);
        expectPicture(m, [&](int x, int y) {
            const uint32_t upper = levels::bilinear(*second->mip[1], u1(x), v1(y), true),
                           lower = levels::bilinearBelow(*second->mip[2], u1(x), v1(y), true);
            return firstTexel ? second->mip[1]->pixels[0] : levels::mix4(upper, lower, frac1);
        });
    });
}

TEST_F(RectangleForms, FilterFiveInFourCornersReadsNoNextLevelAndNoWeight)
{
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_STIPPLE}) {
        const Modes m{.filter = NINEFOLD_FILTER_MIP_BILINEAR,
                      .rectOpt = NINEFOLD_RECT_CORNERS,
                      .shahei = shahei,
                      .multi = NINEFOLD_MULTI_TEXTURE};
        prepare(m);
        rs.multiFunc = [](uint32_t f, uint32_t s) { return f ^ s; };
        draw(m);
        const State expected = state();
        for (Texture *t : {base->mip[2], second->mip[2]})
            std::fill_n(t->pixels, t->width * t->height, 0x12345678u);
        wipe();
        draw(m);
        EXPECT_EQ(state().pixels, expected.pixels);
        EXPECT_EQ(at(5, 3), base->mip[1]->pixels[0] ^ second->mip[1]->pixels[0]);
    }
}

TEST_F(RectangleForms, FilterFivesZeroCentreInTheSecondTextureLetsTheMixGoOn)
{
    levels::fill(second, [](uint32_t l, uint32_t, uint32_t) { return l == 1 ? 0 : 0xFFFFFFFF; });
    const Modes m{.filter = NINEFOLD_FILTER_MIP_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH, .multi = NINEFOLD_MULTI_TEXTURE};
    prepare(m);
    rs.multiFunc = watch<0x10000>;
    draw(m);
    EXPECT_EQ(callCount, 0);
    expectPicture(m, [&](int x, int y) {
        return levels::mix3(levels::bilinear(*base->mip[1], u(x), v(y), false),
                            levels::bilinearBelow(*base->mip[2], u(x), v(y), false), frac);
    });
}

TEST_F(RectangleForms, FilterFiveHalvesNegativePositionsTowardZero)
{
    struct Form {
        int rectOpt, shahei;
    };
    for (const Form form : {Form{1, 0}, Form{1, 1}, Form{2, 1}}) {
        // -1 is the last that is halved to 0
        for (const TexCoord start : {TexCoord{-texels(12) + 0x1234, -texels(6) + 0x4321}, TexCoord{-2, -2}}) {
            const Modes m{.filter = NINEFOLD_FILTER_MIP_BILINEAR, .rectOpt = form.rectOpt, .shahei = form.shahei};
            prepare(m);
            spread(form.rectOpt, rs.uv0, start, texels(24), texels(12));
            draw(m);
            expectPicture(m, [&](int x, int y) {
                const int32_t pu = (start.u >> 1) + texels(12) / 8 * x, pv = (start.v >> 1) + texels(6) / 4 * y;
                return levels::mix3(levels::bilinear(*base->mip[1], pu, pv, false),
                                    levels::bilinearBelow(*base->mip[2], pu, pv, false), frac);
            });
        }
    }
}

} // namespace
