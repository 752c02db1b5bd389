// What happens to one pixel: gates, planes, the second source, prescale and blend.
#include "support/canvas.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

bool inside(int left, int top, int right, int bottom, int x, int y) { return x >= left && x < right && y >= top && y < bottom; }

class PixelPath : public Canvas {
protected:
    static std::vector<Modes> texturedForms(int shahei, int blend = NINEFOLD_BLEND_COPY)
    {
        std::vector<Modes> forms = pointForms(shahei, blend);
        for (const Modes &m : mixingForms(shahei, blend))
            forms.push_back(m);
        return forms;
    }
};

class PlaneGate : public PixelPath {};

TEST_F(PlaneGate, AZeroTexelStaysFreeAndASecondDrawFillsIt)
{
    Texture *holed = texture(64, 32, [](uint32_t x, uint32_t y) { return (x == 5 || x == 20) && y == 3 ? 0 : idAt(x, y); });
    equipped(holed);
    Texture *whole = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0xFFABCDEF; }));
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (const Modes &m : texturedForms(shahei)) {
            wipe();
            place(m, 2, 1, 50, 30);
            rs.tex0 = holed;
            draw(m);
            const auto hole = [](int x, int y) { return (x == 5 || x == 20) && y == 3; };
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(taken(x, y), inside(2, 1, 50, 30, x, y) && !hole(x, y)) << m << " at " << x << ", " << y;
            const State first = state();
            rs.tex0 = whole;
            draw(m);
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    if (hole(x, y)) {
                        EXPECT_NE(at(x, y), ground) << m;
                        EXPECT_TRUE(taken(x, y)) << m;
                    } else {
                        ASSERT_EQ(at(x, y), first.pixels[static_cast<size_t>(y * 64 + x)]) << m << " at " << x << ", " << y;
                    }
                }
            }
        }
    }
}

TEST_F(PlaneGate, BitFifteenIsTheLeftmostPixel)
{
    rs.tex0 = equipped(index(64, 32));
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE)) {
        wipe();
        plane[4 * 1 + 1] = 0x8001; // row 1, pixels 16 and 31
        place(m, 0, 0, 64, 32);
        draw(m);
        EXPECT_EQ(at(15, 1), idAt(15, 1)) << m;
        EXPECT_EQ(at(16, 1), ground) << m;
        EXPECT_EQ(at(17, 1), idAt(17, 1)) << m;
        EXPECT_EQ(at(30, 1), idAt(30, 1)) << m;
        EXPECT_EQ(at(31, 1), ground) << m;
        EXPECT_EQ(at(32, 1), idAt(32, 1)) << m;
    }
}

TEST_F(PlaneGate, ModeTwoWritesZOnlyWhereItMarks)
{
    Texture *holed = texture(64, 32, [](uint32_t x, uint32_t y) { return (x + y) % 3 ? idAt(x, y) : 0; });
    rs.tex0 = equipped(holed);
    rs.zRef = 0x1AB; // the low byte counts
    stipple({0x0F0F, 0, 0, 0x8000, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0001});
    for (const Modes &m : texturedForms(NINEFOLD_SHAHEI_PLANE_PRIORITY)) {
        wipe();
        std::fill(z.begin(), z.end(), uint8_t{7});
        plane[4 * 5 + 1] = 0xF00F;
        const std::vector<uint16_t> before = plane;
        place(m, 3, 2, 60, 30);
        draw(m);
        int marked = 0;
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                const bool was = before[static_cast<size_t>(y * 4 + x / 16)] >> (15 - x % 16) & 1;
                const bool mask = rs.drawMask[y & 15] >> (15 - (x & 15)) & 1;
                const bool drawn = inside(3, 2, 60, 30, x, y) && !was && !mask && (x + y) % 3;
                ASSERT_EQ(taken(x, y), was || drawn) << m << " at " << x << ", " << y;
                ASSERT_EQ(zAt(x, y), drawn ? 0xAB : 7) << m << " at " << x << ", " << y;
                marked += drawn;
            }
        }
        EXPECT_GT(marked, 300);
    }
}

TEST_F(PlaneGate, PixelsThatTheStippleHoldsBackStayFree)
{
    rs.tex0 = equipped(index(64, 32));
    std::fill_n(rs.drawMask, 16, uint16_t{0xAAAA});
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE)) {
        wipe();
        place(m, 0, 0, 64, 32);
        draw(m);
        EXPECT_EQ(plane[0], 0x5555) << m;
        EXPECT_EQ(row(0, 0, 4), (Pixels{ground, idAt(1, 0), ground, idAt(3, 0)})) << m;
    }
}

TEST_F(PlaneGate, ThirteenToEighteenTouchesTwoWordsAndRestoresTheRest)
{
    rs.tex0 = equipped(index(64, 32));
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (const Modes &m : pointForms(shahei)) {
            for (uint16_t first : {uint16_t{0}, uint16_t{0xFFFF}, uint16_t{0x5A51}}) {
                for (uint16_t second : {uint16_t{0}, uint16_t{0xFFFF}, uint16_t{0x4C33}}) {
                    wipe();
                    plane[8] = first, plane[9] = second;
                    place(m, 13, 2, 18, 3);
                    draw(m);
                    // Pixels 13 to 15 are the low three bits, 16 and 17 the high two.
                    EXPECT_EQ(plane[8], first | 0x0007) << m;
                    EXPECT_EQ(plane[9], second | 0xC000) << m;
                    for (int x = 0; x < 64; ++x) {
                        const bool free = x < 16 ? !(first >> (15 - x) & 1) : x < 32 && !(second >> (31 - x) & 1);
                        EXPECT_EQ(at(x, 2), x >= 13 && x < 18 && free ? idAt(uint32_t(x), 2) : ground) << m << " at " << x;
                    }
                }
            }
        }
    }
}

TEST_F(PlaneGate, ASpanInsideOneWordKeepsTheBitsOnBothSides)
{
    rs.tex0 = equipped(index(64, 32));
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE_PRIORITY)) {
        wipe();
        plane[4 * 2 + 1] = 0xA00A; // pixels 16, 18 and 28, 30 of row 2
        place(m, 19, 2, 27, 3);
        draw(m);
        EXPECT_EQ(plane[4 * 2 + 1], 0xBFEA) << m; // bits 12 down to 5
        EXPECT_EQ(drawnCount(), 8) << m;
    }
}

TEST_F(PlaneGate, TheWordBehindARectangleThatEndsOnAWordKeepsItsValue)
{
    rs.tex0 = equipped(index(64, 32));
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (const Modes &m : pointForms(shahei)) {
            for (uint16_t behind : {uint16_t{0}, uint16_t{0xFFFF}, uint16_t{0x1234}}) {
                wipe();
                plane[4 * 6 + 2] = behind;
                place(m, 20, 6, 32, 7);
                draw(m);
                EXPECT_EQ(plane[4 * 6 + 1], 0x0FFF) << m;
                EXPECT_EQ(plane[4 * 6 + 2], behind) << m;
                EXPECT_EQ(at(32, 6), ground) << m;
            }
        }
    }
}

TEST_F(PlaneGate, TheLastWordOfThePlaneIsNotPassed)
{
    // The word behind the last pixel of the last row lies beyond the plane: the sanitizers tell.
    rs.tex0 = equipped(index(64, 32));
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (const Modes &m : pointForms(shahei)) {
            wipe();
            place(m, 40, 30, 64, 32);
            draw(m);
            EXPECT_EQ(plane[4 * 30 + 3], 0xFFFF) << m;
            EXPECT_EQ(plane[4 * 31 + 3], 0xFFFF) << m;
        }
    }
}

TEST_F(PlaneGate, MarksAsAPixelByPixelWalkWould)
{
    std::mt19937 random(7);
    Texture *source = texture(64, 32, [&](uint32_t x, uint32_t y) { return random() % 4 ? idAt(x, y) : 0; });
    rs.tex0 = equipped(source);
    for (int round = 0; round < 40; ++round) {
        for (uint16_t &row : rs.drawMask)
            row = static_cast<uint16_t>(random() & random());
        std::vector<uint16_t> before(plane.size());
        for (uint16_t &word : before)
            word = static_cast<uint16_t>(round % 3 == 0 ? random() : random() & random() & random());
        const int left = static_cast<int>(random() % 64), right = left + 1 + static_cast<int>(random() % (64 - uint32_t(left)));
        for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE)) {
            clear();
            plane = before;
            rs.shaheiPlane = plane.data();
            place(m, left, 0, right, 32);
            draw(m);
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const bool was = before[static_cast<size_t>(y * 4 + x / 16)] >> (15 - x % 16) & 1;
                    const bool mask = rs.drawMask[y & 15] >> (15 - (x & 15)) & 1;
                    const uint32_t texel = source->pixels[y * 64 + x];
                    const bool drawn = inside(left, 0, right, 32, x, y) && !was && !mask && texel;
                    ASSERT_EQ(taken(x, y), was || drawn) << m << " at " << x << ", " << y;
                    ASSERT_EQ(at(x, y), drawn ? texel : ground) << m << " at " << x << ", " << y;
                }
            }
        }
    }
}

// A frame buffer narrower than a word: several of its rows lie in one.
class NarrowFrame : public Canvas {
protected:
    NarrowFrame() : Canvas(8, 8) {}
};

TEST_F(NarrowFrame, ARectangleWalksTheWordOfItsFirstRowOnEveryRow)
{
    rs.tex0 = index(8, 8);
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        for (int rectOpt : rectOpts) {
            const Modes m{.rectOpt = rectOpt, .shahei = shahei};
            wipe();
            place(m, 1, 2, 7, 6);
            plane[1] = 0x2000; // rows 2 and 3; pixel 2
            draw(m);
            // The first row takes the bits; the others find them taken.
            EXPECT_EQ(row(2, 0, 8), (Pixels{ground, idAt(1, 2), ground, idAt(3, 2), idAt(4, 2), idAt(5, 2), idAt(6, 2), ground}))
                << m;
            EXPECT_EQ(drawnCount(), 5) << m;
            EXPECT_EQ(plane, (std::vector<uint16_t>{0, 0x7E00, 0, 0})) << m;
        }
    }
}

TEST_F(NarrowFrame, ATriangleFindsTheWordOfEachRow)
{
    rs.tex0 = index(8, 8);
    const Modes m{.shape = NINEFOLD_SHAPE_TRIANGLE, .shahei = NINEFOLD_SHAHEI_PLANE};
    triangle(0, 1, 8, 1, 0, 9); // row 1 + k has 8 - k pixels
    rs.uv0[0] = {0, texels(1)}, rs.uv0[1] = {texels(8), texels(1)}, rs.uv0[2] = {0, texels(9)};
    draw(m);
    // Rows 2 and 3 share a word, rows 4 and 5, rows 6 and 7: the lower of each pair finds its pixels taken.
    EXPECT_EQ(row(1, 0, 8),
              (Pixels{idAt(0, 1), idAt(1, 1), idAt(2, 1), idAt(3, 1), idAt(4, 1), idAt(5, 1), idAt(6, 1), idAt(7, 1)}));
    EXPECT_EQ(row(2, 0, 8), (Pixels{idAt(0, 2), idAt(1, 2), idAt(2, 2), idAt(3, 2), idAt(4, 2), idAt(5, 2), idAt(6, 2), ground}));
    EXPECT_EQ(row(3, 0, 8), Pixels(8, ground));
    EXPECT_EQ(row(4, 0, 6), (Pixels{idAt(0, 4), idAt(1, 4), idAt(2, 4), idAt(3, 4), idAt(4, 4), ground}));
    EXPECT_EQ(row(5, 0, 8), Pixels(8, ground));
    EXPECT_EQ(plane, (std::vector<uint16_t>{0xFF00, 0xFE00, 0xF800, 0xE000}));
}

TEST_F(NarrowFrame, ALineFindsTheWordOfEachPixel)
{
    for (int shahei : {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY}) {
        wipe();
        rs.color[0] = 0xFF00FF00;
        corners(3, 1, 3, 7); // (3, 1) to (3, 6)
        draw({.shape = NINEFOLD_SHAPE_LINE, .filter = NINEFOLD_FILTER_FLAT, .shahei = shahei});
        EXPECT_EQ(column(3, 0, 8), (Pixels{ground, 0xFF00FF00, 0xFF00FF00, ground, 0xFF00FF00, ground, 0xFF00FF00, ground}));
        EXPECT_EQ(plane, (std::vector<uint16_t>{0x1000, 0x1000, 0x1000, 0x1000}));
    }
}

class ZTest : public PixelPath {};

TEST_F(ZTest, PassesWhereThePlaneIsNotBelowTheLowByteOfZRef)
{
    rs.tex0 = equipped(index(64, 32));
    rs.writeMask = 0xFFFFFFFF;
    const uint8_t bytes[] = {0, 4, 5, 6, 127, 128, 255};
    const struct {
        uint32_t zRef;
        uint8_t reference;
    } references[] = {{5, 5}, {0x105, 5}, {0, 0}, {0x80, 0x80}, {0xFFFFFFFF, 255}, {0x8000, 0}};
    for (int shahei : {NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        for (const Modes &m : pointForms(shahei, NINEFOLD_BLEND_MERGE)) { // all bits from the source
            for (const auto &r : references) {
                wipe();
                for (size_t k = 0; k < z.size(); ++k)
                    z[k] = bytes[k % 7];
                const std::vector<uint8_t> before = z;
                rs.zRef = r.zRef;
                place(m, 1, 0, 40, 8);
                draw(m);
                for (int y = 0; y < 8; ++y)
                    for (int x = 0; x < 64; ++x)
                        ASSERT_EQ(at(x, y),
                                  inside(1, 0, 40, 8, x, y) && zAt(x, y) >= r.reference ? idAt(uint32_t(x), uint32_t(y)) : ground)
                            << m << " zRef " << r.zRef << " at " << x << ", " << y;
                EXPECT_EQ(z, before) << "is read only";
            }
        }
    }
}

TEST_F(ZTest, ModeFiveTestsTheStippleToo)
{
    rs.tex0 = equipped(index(64, 32));
    rs.writeMask = 0xFFFFFFFF;
    std::fill_n(rs.drawMask, 16, uint16_t{0x3333}); // pixels 2, 3 of four
    rs.zRef = 5;
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PRIORITY_STIPPLE, NINEFOLD_BLEND_MERGE)) {
        wipe();
        for (size_t k = 0; k < z.size(); ++k)
            z[k] = k & 1 ? 5 : 4;
        place(m, 0, 0, 64, 1);
        draw(m);
        // Odd pixels pass the plane, 0 and 1 of each four the stipple.
        EXPECT_EQ(row(0, 0, 8), (Pixels{ground, idAt(1, 0), ground, ground, ground, idAt(5, 0), ground, ground})) << m;
    }
}

class Stipple : public PixelPath {};

TEST_F(Stipple, ShowsPartsOfTheSamePicture)
{
    rs.tex0 = equipped(index(64, 32));
    rs.zRef = 0;
    rs.writeMask = 0xFFFFFFFF;
    std::mt19937 random(3);
    for (uint16_t &row : rs.drawMask)
        row = static_cast<uint16_t>(random());
    for (int shahei :
         {NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        for (const Modes &m :
             pointForms(shahei, shahei == NINEFOLD_SHAHEI_PRIORITY_STIPPLE ? NINEFOLD_BLEND_MERGE : NINEFOLD_BLEND_COPY)) {
            wipe();
            place(m, 3, 1, 61, 31);
            draw(m);
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const bool passes = !(rs.drawMask[y & 15] >> (15 - (x & 15)) & 1) && inside(3, 1, 61, 31, x, y);
                    ASSERT_EQ(at(x, y), passes ? idAt(uint32_t(x), uint32_t(y)) : ground) << m << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST_F(Stipple, StandsStillOnTheScreen)
{
    rs.tex0 = equipped(index(64, 32));
    stipple({0x8000, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0002});
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_STIPPLE)) {
        for (int left : {0, 5, 16}) {
            for (int top : {0, 15}) {
                clear();
                place(m, left, top, left + 40, top + 2);
                rs.clipLeft = left + 1; // the clip changes nothing either
                draw(m);
                for (int y = top; y < top + 2; ++y)
                    for (int x = left + 1; x < left + 40; ++x)
                        ASSERT_EQ(at(x, y) == ground, (y % 16 == 0 && x % 16 == 0) || (y % 16 == 15 && x % 16 == 14))
                            << m << x << " " << y;
            }
        }
    }
}

class SecondSource : public PixelPath {};

TEST_F(SecondSource, AZeroInTheSecondTextureLeavesTheTexelAsItIs)
{
    rs.tex0 = equipped(index(64, 32));
    Texture *holed = texture(64, 32, [](uint32_t x, uint32_t y) { return x % 4 ? 0x00800000 + 64 * y + x : 0; });
    rs.tex1 = equipped(holed);
    static int calls;
    rs.multiFunc = [](uint32_t, uint32_t second) {
        ++calls;
        return second ? second | 0xFF000000 : 0xDEADBEEF;
    };
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}) {
        for (const Modes &m : pointForms(shahei, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_TEXTURE)) {
            wipe();
            place(m, 2, 3, 60, 28);
            int covered = 0;
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    covered += inside(2, 3, 60, 28, x, y) && x % 4;
            underEverySet([&] {
                calls = 0;
                kernel(m)();
                EXPECT_EQ(calls, covered) << m;
            });
            for (int y = 0; y < 32; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const uint32_t mixed = x % 4 ? 0xFF800000 + 64 * uint32_t(y) + uint32_t(x) : idAt(uint32_t(x), uint32_t(y));
                    ASSERT_EQ(at(x, y), inside(2, 3, 60, 28, x, y) ? mixed : ground) << m << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST_F(SecondSource, ColoursOfZeroAreOperandsLikeAnyOther)
{
    rs.tex0 = equipped(index(64, 32));
    rs.multiFunc = [](uint32_t, uint32_t second) { return second == 0 ? 0x12345678u : 0xBADu; };
    for (int multi : {NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
        for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, multi)) {
            if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
                continue;
            clear();
            place(m, 0, 0, 20, 20);
            draw(m);
            EXPECT_EQ(at(3, 3), 0x12345678u) << m;
        }
    }
}

TEST_F(SecondSource, ASourceThatTheOperatorTurnsIntoZeroIsWrittenAndMarked)
{
    rs.tex0 = equipped(index(64, 32));
    rs.tex1 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 1; }));
    rs.multiFunc = [](uint32_t, uint32_t) { return 0u; };
    for (int multi : {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR}) {
        for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE, NINEFOLD_BLEND_COPY, multi)) {
            wipe();
            place(m, 0, 0, 16, 16);
            draw(m);
            EXPECT_EQ(at(3, 3), 0u) << m;
            EXPECT_TRUE(taken(3, 3)) << m;
        }
    }
}

TEST_F(SecondSource, TheOneColourIsTheFirstUnderEveryCorner)
{
    rs.tex0 = equipped(index(64, 32));
    rs.color[0] = 0x00112233, rs.color[1] = 0x00445566, rs.color[2] = 0x00778899, rs.color[3] = 0x00AABBCC;
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_COLOUR)) {
        clear();
        place(m, 0, 0, 20, 20);
        std::swap(rs.vertex[0], rs.vertex[1]); // not sorted with the vertices
        std::swap(rs.uv0[0], rs.uv0[1]);
        draw(m);
        EXPECT_EQ(at(2, 2), 0xFF112233u) << m;
        EXPECT_EQ(at(15, 1), 0xFF112233u) << m;
    }
}

// Corner colours: 0 and 100 across the top, 200 and 40 across the bottom, on a rectangle of 7 by 3. Down the edges the steps are
// 200 * 65536 / 3 = 4369066 (left) and -60 * 65536 / 3 = -1310720 (right).
class CornerColours : public PixelPath {
protected:
    void SetUp() override
    {
        PixelPath::SetUp();
        rs.tex0 = equipped(index(64, 32));
        rs.color[0] = 0, rs.color[1] = 100, rs.color[2] = 200, rs.color[3] = 40;
        SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND); // the colour with the texel's alpha
    }

    static uint32_t blue(int64_t value) { return 0xFF000000 | static_cast<uint32_t>(value >> 16); }

    // The colours of row `line` of seven pixels, for corners c0 to c3.
    static Pixels expected(int64_t c0, int64_t c1, int64_t c2, int64_t c3, int line)
    {
        const int64_t left = (c0 << 16) + ((c2 - c0) * 65536) / 3 * line, right = (c1 << 16) + ((c3 - c1) * 65536) / 3 * line;
        const int64_t step = (right - left) / 7;
        Pixels pixels;
        for (int k = 0; k < 7; ++k)
            pixels.push_back(blue(left + step * k));
        return pixels;
    }
};

TEST_F(CornerColours, RunDownTheEdgesAndAcrossEachRowWithTruncatedSteps)
{
    EXPECT_EQ(expected(0, 100, 200, 40, 0),
              (Pixels{0xFF000000, 0xFF00000E, 0xFF00001C, 0xFF00002A, 0xFF000039, 0xFF000047, 0xFF000055}));
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_CORNERS)) {
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        clear();
        place(m, 10, 5, 17, 8);
        draw(m);
        for (int line = 0; line < 3; ++line)
            EXPECT_EQ(row(5 + line, 10, 17), expected(0, 100, 200, 40, line)) << m << " row " << line;
        // What the clip leaves does not change.
        clear();
        clip(13, 6, 16, 8);
        draw(m);
        for (int line = 1; line < 3; ++line) {
            const Pixels whole = expected(0, 100, 200, 40, line);
            EXPECT_EQ(row(5 + line, 12, 17), (Pixels{ground, whole[3], whole[4], whole[5], ground})) << m;
        }
    }
}

TEST_F(CornerColours, FollowReversedCornersInRectOptionsOneTwoThreeOnly)
{
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_CORNERS)) {
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        const bool follow = m.rectOpt >= NINEFOLD_RECT_STRETCH && m.rectOpt <= NINEFOLD_RECT_TABLE;
        for (int flip = 1; flip < 4; ++flip) {
            clear();
            place(m, 10, 5, 17, 8);
            corners(flip & 1 ? 17 : 10, flip & 2 ? 8 : 5, flip & 1 ? 10 : 17, flip & 2 ? 5 : 8);
            draw(m);
            int64_t c[] = {0, 100, 200, 40};
            if (follow && flip & 1)
                std::swap(c[0], c[1]), std::swap(c[2], c[3]);
            if (follow && flip & 2)
                std::swap(c[0], c[2]), std::swap(c[1], c[3]);
            for (int line = 0; line < 3; ++line)
                EXPECT_EQ(row(5 + line, 10, 17), expected(c[0], c[1], c[2], c[3], line))
                    << m << " flip " << flip << " row " << line;
        }
    }
}

TEST_F(CornerColours, ChannelsThatLeaveTheirRangeStayInTheirByte)
{
    // Corners 2^32 - 3 columns apart: the width wraps to -3, and steps are minus a third. Up to column 0 there are 2^31 of them,
    // which comes to 0 for even steps: blue goes down by 10 a pixel from 0, red from 200.
    rs.tex0 = solid(0xFFFFFFFF);
    rs.color[0] = rs.color[2] = 0x00C80000, rs.color[1] = rs.color[3] = 0x00E6001E; // red 200 to 230, blue 0 to 30
    rs.multiFunc = [](uint32_t, uint32_t second) { return second; };
    for (int rectOpt : {NINEFOLD_RECT_UNIT, NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS}) {
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}) {
            const Modes m{.rectOpt = rectOpt, .shahei = shahei, .multi = NINEFOLD_MULTI_CORNERS};
            wipe();
            rs.vertex[0] = {INT32_MIN, 3, 0}, rs.vertex[1] = {INT32_MAX - 2, 5, 0};
            draw(m);
            for (int y = 3; y < 5; ++y)
                for (uint32_t x = 0; x < 64; ++x)
                    ASSERT_EQ(at(int(x), y), ((200 - 10 * x) & 255) << 16 | ((0 - 10 * x) & 255)) << m << " at " << x;
        }
    }
}

TEST_F(CornerColours, HaveFourChannelsInTheirPlaces)
{
    rs.color[0] = 0x10203040, rs.color[1] = 0x90203040, rs.color[2] = 0x10A03040, rs.color[3] = 0x90A03040;
    rs.multiFunc = [](uint32_t, uint32_t second) { return second; };
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_CORNERS)) {
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        clear();
        place(m, 0, 0, 8, 8);
        draw(m);
        // Alpha by 16 a pixel to the right, red by 16 a row down.
        EXPECT_EQ(row(0, 0, 3), (Pixels{0x10203040, 0x20203040, 0x30203040})) << m;
        EXPECT_EQ(row(5, 5, 8), (Pixels{0x60703040, 0x70703040, 0x80703040})) << m;
    }
}

TEST_F(CornerColours, WalkOnUnderThePlaneWalk)
{
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_CORNERS)) {
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        wipe();
        plane[4 * 6] = 0x0030; // row 6, pixels 10 and 11
        place(m, 10, 5, 17, 8);
        draw(m);
        Pixels second = expected(0, 100, 200, 40, 1);
        second[0] = second[1] = ground;
        EXPECT_EQ(row(5, 10, 17), expected(0, 100, 200, 40, 0)) << m;
        EXPECT_EQ(row(6, 10, 17), second) << m;
        EXPECT_EQ(row(7, 10, 17), expected(0, 100, 200, 40, 2)) << m;
    }
}

// Each blend of source C0A06020 over 11223344, plain and after prescale by a half: under 1, 2, 4 that makes the source 60A06020,
// under the others C0503010.
class Prescale : public PixelPath {};

TEST_F(Prescale, FadesAlphaUnderAlphaBlendsAndDimsColourUnderTheOthers)
{
    const struct {
        int blend;
        uint32_t plain, halved;
    } cases[] = {
        {0, 0xC0A06020, 0xC0503010}, {1, 0x00805428, 0x00514336},  {2, 0x00534435, 0x00534435},  {4, 0x00805428, 0x00514336},
        {5, 0x01C39364, 0x01736354}, {6, 0x4F010024, 0x4F000234},  {7, 0x00151308, 0x000A0904},  {8, 0x002A2610, 0x00141208},
        {9, 0xFFAD815D, 0xFF685B51}, {10, 0x002A2610, 0x00141208}, {11, 0x11A03320, 0x11503310}, {12, 0xD1825364, 0xD1720354},
    };
    rs.tex0 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0xC0A06020; }));
    std::fill_n(rs.color, 4, 0xC0A06020);
    rs.blendAlpha = 100;
    rs.writeMask = 0x00FF00FF;
    rs.prescale = 128;
    for (bool host : {false, true}) {
        if (host)
            rs.blendFunc = [](uint32_t destination, uint32_t source) { return destination ^ source; };
        else
            SetBlendMode(NINEFOLD_BLEND_XOR); // the library's own xor
        for (const auto &c : cases) {
            for (int shahei :
                 {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
                if (c.blend == NINEFOLD_BLEND_COPY && (testsPriority(shahei)))
                    continue;
                std::vector<Modes> forms = pointForms(shahei, c.blend);
                for (const Modes &m : colourForms(shahei, c.blend))
                    forms.push_back(m);
                for (Modes m : forms) {
                    for (int prescale : {0, 1}) {
                        if (prescale && m.shape == NINEFOLD_SHAPE_TRIANGLE && m.filter >= NINEFOLD_FILTER_FLAT &&
                            m.filter <= NINEFOLD_FILTER_GOURAUD)
                            continue;
                        m.prescale = prescale;
                        clear();
                        place(m, 1, 1, 30, 30);
                        draw(m);
                        EXPECT_EQ(at(2, 2), prescale ? c.halved : c.plain) << m;
                        EXPECT_EQ(at(5, 5), prescale ? c.halved : c.plain) << m;
                    }
                }
            }
        }
    }
}

TEST_F(Prescale, LeavesTheColourToTheAlphaBlend)
{
    // Alpha 200 * 64 / 256 = 50; red (200 * 50 + 0x22 * 205) / 256 = 66, green (100 * 50 + 0x33 * 205) / 256 = 60, blue as red
    // from 0.
    rs.tex0 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0xC8C86400; }));
    rs.prescale = 64;
    for (Modes m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_ALPHA)) {
        m.prescale = NINEFOLD_PRESCALE_ON;
        clear();
        place(m, 0, 0, 8, 8);
        draw(m);
        EXPECT_EQ(at(1, 1), 0x00423C36u) << m;
    }
}

TEST_F(Prescale, ComesAfterTheSecondSourceAndBeforeTheBlend)
{
    rs.tex0 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0xFF804020; }));
    rs.color[0] = 0x00010203;
    rs.prescale = 128;
    static uint32_t seen[2], blended[2];
    rs.multiFunc = [](uint32_t first, uint32_t second) {
        seen[0] = first, seen[1] = second;
        return 0xAA604020u;
    };
    rs.blendFunc = [](uint32_t destination, uint32_t source) {
        blended[0] = destination, blended[1] = source;
        return 0x5A5A5A5Au;
    };
    for (Modes m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_COLOUR)) {
        if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        m.prescale = NINEFOLD_PRESCALE_ON;
        clear();
        place(m, 0, 0, 8, 8);
        draw(m);
        EXPECT_EQ(seen[0], 0xFF804020u) << m;
        EXPECT_EQ(seen[1], 0x00010203u) << m;
        EXPECT_EQ(blended[0], ground) << m;
        EXPECT_EQ(blended[1], 0xAA302010u) << m;
        EXPECT_EQ(at(1, 1), 0x5A5A5A5Au) << m;
    }
}

TEST_F(Prescale, UnderConstantAlphaDrawsLikeItsPartnerWithoutForEveryForm)
{
    rs.tex0 = equipped(index(64, 32));
    rs.blendAlpha = 77;
    rs.prescale = 13;
    for (int shahei :
         {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        for (Modes m : pointForms(shahei, NINEFOLD_BLEND_CONST_ALPHA)) {
            clear();
            place(m, 0, 0, 40, 20);
            draw(m);
            const State plain = state();
            clear();
            m.prescale = NINEFOLD_PRESCALE_ON;
            draw(m);
            EXPECT_TRUE(state() == plain) << m;
        }
    }
}

TEST_F(Prescale, FactorsAbove256SpillAsThePackedArithmeticDoes)
{
    // Blue 0xFF * 0x1FF is 0x1FD01, whose top bit goes into red's half: 0x01 * 0x1FF + 1 is 0x200. Green 0x20 * 0x1FF is 0x3FE0.
    rs.tex0 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0x800120FF; }));
    rs.prescale = 0x1FF;
    for (Modes m : pointForms()) {
        m.prescale = NINEFOLD_PRESCALE_ON;
        clear();
        place(m, 0, 0, 8, 8);
        draw(m);
        EXPECT_EQ(at(1, 1), 0x80023FFDu) << m;
    }
}

TEST_F(PixelPath, ConstantAlphaBeyond255GoesOnInWrappingWords)
{
    // For 256: W = -1, red and blue 0xA00020 * 256 - 0x220044 = 0x9FDE1FBC (wrapped), green 0x6000 * 256 - 0x3300 = 0x5FCD00.
    const struct {
        uint32_t alpha, result;
    } cases[] = {{255, 0x009F5F1F}, {256, 0x009F5F1F}, {300, 0x00B56719}, {0x12345, 0x007D654E}, {0x80000001, 0x00223243}};
    rs.tex0 = equipped(texture(64, 32, [](uint32_t, uint32_t) { return 0xC0A06020; }));
    std::fill_n(rs.color, 4, 0xC0A06020);
    for (int shahei :
         {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        std::vector<Modes> forms = pointForms(shahei, NINEFOLD_BLEND_CONST_ALPHA);
        for (const Modes &m : colourForms(shahei, NINEFOLD_BLEND_CONST_ALPHA))
            forms.push_back(m);
        for (const Modes &m : forms) {
            for (const auto &c : cases) {
                rs.blendAlpha = c.alpha;
                clear();
                place(m, 1, 1, 30, 30);
                draw(m);
                EXPECT_EQ(at(2, 2), c.result) << m << std::hex << c.alpha;
                EXPECT_EQ(at(5, 5), c.result) << m << std::hex << c.alpha;
            }
        }
    }
}

TEST_F(PixelPath, TheMapsAloneDecideInRunLengthForms)
{
    // A texel that becomes 0 after the maps were made is drawn as it is.
    rs.tex0 = equipped(index(64, 32));
    rs.tex0->pixels[64 * 2 + 3] = 0;
    for (const Modes &m :
         {Modes{.rectOpt = NINEFOLD_RECT_RUNS}, Modes{.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE},
          Modes{.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY}}) {
        wipe();
        place(m, 0, 0, 8, 8);
        draw(m);
        EXPECT_EQ(at(3, 2), 0u) << m;
        EXPECT_EQ(at(4, 2), idAt(4, 2)) << m;
    }
}

} // namespace
