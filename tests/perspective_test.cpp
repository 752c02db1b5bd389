// Perspective triangles (pers 1).
#include "support/canvas.h"
#include "support/levels.h"
#include "support/trapezoid.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

int shiftOf(int32_t coordinate)
{
    if (coordinate < 0)
        return 0;
    int shift = 0;
    while (shift < 7 && !((coordinate >> 24) << shift & 64))
        ++shift;
    return shift;
}

// The binary fraction of a / w, 32 bits of it.
int32_t fraction(uint32_t a, uint32_t w) { return static_cast<int32_t>((uint64_t{a % w} << 32) / w); }

class Perspective : public Canvas {
protected:
    explicit Perspective(unsigned w = 64, unsigned h = 32) : Canvas(w, h) {}

    struct Scene {
        int shiftU0, shiftV0, shiftU1, shiftV1;
        trapezoid::Picture pixels; // u0, v0, u1, v1 over depth, 1 / depth, u2, v2
    };

    // What rs holds, walked in plain integers.
    Scene walk() const
    {
        const auto least = [](const TexCoord *uv, int32_t TexCoord::*c) {
            return std::min({shiftOf(uv[0].*c), shiftOf(uv[1].*c), shiftOf(uv[2].*c)});
        };
        Scene s{least(rs.uv0, &TexCoord::u),
                least(rs.uv0, &TexCoord::v),
                least(rs.uv1, &TexCoord::u),
                least(rs.uv1, &TexCoord::v),
                {}};
        const auto over = [](int32_t c, int shift, int32_t depth) {
            return int64_t{static_cast<int32_t>(static_cast<uint32_t>(c) << shift)} / depth;
        };
        std::array<trapezoid::Corner, 3> corners;
        for (size_t k = 0; k < 3; ++k) {
            const Vertex &v = rs.vertex[k];
            corners[k] = {v.x + rs.originX,
                          v.y + rs.originY,
                          {over(rs.uv0[k].u, s.shiftU0, v.z), over(rs.uv0[k].v, s.shiftV0, v.z),
                           over(rs.uv1[k].u, s.shiftU1, v.z), over(rs.uv1[k].v, s.shiftV1, v.z), 0x7FFFFFFF / v.z, rs.uv2[k].u,
                           rs.uv2[k].v}};
        }
        s.pixels = trapezoid::draw(corners, 0x8000, {rs.clipLeft, rs.clipTop, rs.clipRight, rs.clipBottom});
        return s;
    }

    static int32_t coordinate(int64_t a, int64_t w, int shift)
    {
        return fraction(static_cast<uint32_t>(a), static_cast<uint32_t>(w)) >> (shift + 1);
    }
};

TEST_F(Perspective, TheShiftTableBringsTheHighestOfSevenBitsToTheTop)
{
    EXPECT_EQ(shiftOf(0), 7);
    EXPECT_EQ(shiftOf(texels(255)), 7);
    EXPECT_EQ(shiftOf(texels(256)), 6);
    EXPECT_EQ(shiftOf(texels(511)), 6);
    EXPECT_EQ(shiftOf(texels(512)), 5);
    EXPECT_EQ(shiftOf(texels(16383)), 1);
    EXPECT_EQ(shiftOf(texels(16384)), 0);
    EXPECT_EQ(shiftOf(-1), 0);
}

TEST_F(Perspective, AtDepthOneTheTextureLiesAsWithoutPerspective)
{
    rs.tex0 = index(64, 32);
    triangle(3, 1, 60, 9, 20, 31);
    rs.uv0[0] = {texels(3), texels(1)}, rs.uv0[1] = {texels(60), texels(9)}, rs.uv0[2] = {texels(20), texels(31)};
    for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC}) {
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = filter});
        const State affine = state();
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON, .filter = filter});
        int different = 0;
        for (size_t k = 0; k < affine.pixels.size(); ++k) {
            ASSERT_EQ(at(int(k % 64), int(k / 64)) == ground, affine.pixels[k] == ground);
            different += at(int(k % 64), int(k / 64)) != affine.pixels[k];
        }
        // Steps truncate at another place, which shows at a few borders of texels.
        EXPECT_LT(different, 20);
    }
    // Positions that divide evenly are the same to the bit.
    place({.shape = NINEFOLD_SHAPE_TRIANGLE}, 2, 3, 50, 30);
    clear();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
    for (int y = 3; y < 30; ++y)
        for (int x = 2; x < 50; ++x)
            ASSERT_EQ(at(x, y), idAt(uint32_t(x), uint32_t(y)));
}

TEST_F(Perspective, TheMiddleOfAnEdgeIsNearerToTheFarEnd)
{
    rs.tex0 = index(64, 64);
    // A column 16 rows high: depths 1 and 3, v 0 and 48 texels (and a quarter). At row 8, 1/z is (1 + 1/3) / 2 = 2/3, v/z is
    // (0 + 16) / 2 = 8: v is 12, not 24. At row 12: 1/z = 1/2, v/z = 12: 24.
    triangle(0, 0, 32, 0, 0, 16);
    rs.vertex[0].z = rs.vertex[1].z = 1, rs.vertex[2].z = 3;
    rs.uv0[0] = {texels(5), texels(0) + 0x4000}, rs.uv0[1] = {texels(5), texels(0) + 0x4000},
    rs.uv0[2] = {texels(5), texels(48) + 0x4000};
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
    EXPECT_EQ(at(0, 0), idAt(5, 0));
    EXPECT_EQ(at(0, 4), idAt(5, 5)); // 1/z = 5/6, v/z = 4.2: 5.05
    EXPECT_EQ(at(0, 8), idAt(5, 12));
    EXPECT_EQ(at(0, 12), idAt(5, 24));
    EXPECT_EQ(at(7, 12), idAt(5, 24)); // along the row the depth is the same
    clear();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_OFF});
    EXPECT_EQ(at(0, 8), idAt(5, 24));
}

TEST_F(Perspective, LargerDepthsAreCoarser)
{
    // u = 5.5 texels: at depth 100,000 with a shift of 7, 461 * 2^32 / 21474 >> 8 is 5.4957. At 1,000,000: 46 * 2^32 / 2147 >> 8
    // = 5.485; at 100,000,000: 0 / 21.
    rs.tex0 = texture(64, 1, [](uint32_t u, uint32_t) { return 0xFF000000 + u; });
    const struct {
        int32_t depth;
        uint32_t shift;
        uint32_t expected;
    } cases[] = {{1, 0, 5}, {1000, 0, 5}, {100000, 0, 5}, {1000000, 0, 5}, {100000000, 0, 0}};
    for (const auto &c : cases) {
        triangle(0, 0, 8, 0, 0, 8);
        for (int k = 0; k < 3; ++k)
            rs.vertex[k].z = c.depth, rs.uv0[k] = {0x58000, 0};
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
        EXPECT_EQ(at(2, 3), 0xFF000000 + c.expected) << c.depth;
    }
}

TEST_F(Perspective, OneShiftServesAllThreeVertices)
{
    // Without shift at depth 100,000 u = 5.5 is 4.57 texels (3 * 2^32 / 21474 >> 1); with a shift of 7, 5.49. One vertex at 16384
    // texels, or a negative one, takes the shift from all; v keeps its own.
    rs.tex0 = texture(16, 16, [](uint32_t u, uint32_t v) { return 0xFF000000 + 256 * v + u; });
    for (const auto &[other, expected] :
         {std::pair{0x58000, 5u}, {texels(255), 5u}, {texels(16384), 4u}, {-1, 4u}, {INT32_MIN, 4u}}) {
        for (bool inU : {true, false}) {
            triangle(0, 0, 8, 0, 0, 8);
            for (int k = 0; k < 3; ++k)
                rs.vertex[k].z = 100000, rs.uv0[k] = {0x58000, 0x58000};
            (inU ? rs.uv0[2].u : rs.uv0[2].v) = other; // the lower vertex: the first row does not show it
            clear();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
            EXPECT_EQ(at(0, 0), 0xFF000000 + (inU ? 5 * 256 + expected : expected * 256 + 5)) << other;
        }
    }
}

TEST_F(Perspective, TheLargestCoordinateSetsTheShiftInSevenSteps)
{
    // At depth 100,000 a shift of s leaves steps of 1.5 / 2^s texels: a u is looked for whose texel the next shift would miss.
    rs.tex0 = texture(1024, 1, [](uint32_t u, uint32_t) { return 0xFF000000 + u; });
    const auto texelAt = [](int32_t u, int shift) {
        const int32_t over = static_cast<int32_t>(static_cast<uint32_t>(u) << shift) / 100000;
        return coordinate(over, 0x7FFFFFFF / 100000, shift) >> 16;
    };
    const std::pair<int32_t, int> cases[] = {
        {texels(256) - 1, 7},  {texels(256), 6},      {texels(512) - 1, 6},   {texels(512), 5},      {texels(1024) - 1, 5},
        {texels(1024), 4},     {texels(2048) - 1, 4}, {texels(2048), 3},      {texels(4096) - 1, 3}, {texels(4096), 2},
        {texels(8192) - 1, 2}, {texels(8192), 1},     {texels(16384) - 1, 1}, {texels(16384), 0},    {-1, 0}};
    for (const auto &[largest, shift] : cases) {
        for (int other : {shift - 1, shift + 1}) {
            if (other < 0 || other > 7)
                continue;
            int32_t u = texels(1);
            while (u < texels(255) && texelAt(u, shift) == texelAt(u, other))
                u += 997;
            ASSERT_LT(u, texels(255)) << shift;
            triangle(0, 0, 8, 0, 0, 8);
            for (int k = 0; k < 3; ++k)
                rs.vertex[k].z = 100000, rs.uv0[k] = {u, 0};
            rs.uv0[2].u = largest; // the lower vertex: the first pixel does not show it
            clear();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
            EXPECT_EQ(at(0, 0), 0xFF000000 + static_cast<uint32_t>(texelAt(u, shift))) << largest << " not " << other;
        }
    }
}

TEST_F(Perspective, NegativeCoordinatesAreReadAsLargeUnsignedOnes)
{
    // u = -1 texel at depth 1: 0xFFFF0000 mod 0x7FFFFFFF = 0x7FFF0001; times 2^32 over 0x7FFFFFFF is 0xFFFE0003.fff...:
    // 0xFFFE0003 or 4, halved -0xFFFF: texel -1.
    rs.tex0 = index(64, 32);
    EXPECT_EQ(0xFFFF0000u % 0x7FFFFFFF, 0x7FFF0001u);
    triangle(0, 0, 8, 0, 0, 8);
    for (int k = 0; k < 3; ++k)
        rs.uv0[k] = {texels(-1), texels(3)};
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
    EXPECT_EQ(at(0, 0), idAt(63, 3));
    // u = -4 texels at depth 40,000: 4294967290 mod 53687 is 7290; times 2^32 over 53687, halved, that is 4449.47 texels.
    for (int k = 0; k < 3; ++k)
        rs.vertex[k].z = 40000, rs.uv0[k] = {texels(-4), texels(3) + 0x8000};
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
    EXPECT_EQ(at(0, 0), idAt(33, 3));
}

TEST_F(Perspective, EveryPixelIsDividedExactly)
{
    rs.tex0 = texture(64, 64, [](uint32_t u, uint32_t v) { return 0xFF000000 | v << 8 | u; });
    rs.tex1 = texture(32, 32, [](uint32_t u, uint32_t v) { return 0x00800000 | v << 8 | u; });
    rs.tex2 = texture(16, 16, [](uint32_t u, uint32_t v) { return (u ^ v) & 1 ? 255u : 0u; });
    rs.ruleThreshold = 10;
    rs.multiFunc = [](uint32_t first, uint32_t second) { return first * 0x10001 + second; };
    std::mt19937 random(41);
    for (int round = 0; round < 240; ++round) {
        const int depths[] = {1, 10, 1000, 100000, 10000000};
        for (int k = 0; k < 3; ++k) {
            rs.vertex[k] = {static_cast<int>(random() % 90) - 13, static_cast<int>(random() % 50) - 9,
                            1 + static_cast<int>(random() % static_cast<unsigned>(depths[round % 5]))};
            const auto any = [&] {
                const int32_t value = static_cast<int32_t>(random() & 0x7FFFFFFF) >> (round / 5 % 10);
                return round % 7 == 3 ? value - 0x3FFFFFFF : value;
            };
            rs.uv0[k] = {any(), any()};
            rs.uv1[k] = {any(), any()};
            rs.uv2[k] = {any(), any()};
        }
        if (rs.vertex[0].y == rs.vertex[1].y && rs.vertex[0].x == rs.vertex[1].x)
            continue;
        rs.originX = round % 3, rs.originY = -(round % 2);
        clip(round % 5, round % 4, 64 - round % 6, 32 - round % 3);
        const Scene s = walk();
        const int multi = round % 2 ? 0 : 3, rule = round % 3 == 0;
        clear();
        draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON, .rule = rule, .multi = multi});
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 64; ++x) {
                uint32_t expected = ground;
                if (const auto pixel = s.pixels.find({x, y}); pixel != s.pixels.end()) {
                    const auto &a = pixel->second;
                    const int32_t ru = static_cast<int32_t>(a[5]), rv = static_cast<int32_t>(a[6]);
                    if (!rule || (((ru / 65536) ^ (rv / 65536)) & 1)) {
                        expected = levels::point(*rs.tex0, coordinate(a[0], a[4], s.shiftU0), coordinate(a[1], a[4], s.shiftV0));
                        if (multi == NINEFOLD_MULTI_TEXTURE)
                            expected = expected * 0x10001 + levels::point(*rs.tex1, coordinate(a[2], a[4], s.shiftU1),
                                                                          coordinate(a[3], a[4], s.shiftV1));
                    }
                }
                ASSERT_EQ(at(x, y), expected) << "round " << round << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(Perspective, OtherFiltersSampleAtTheSameCoordinates)
{
    rs.tex0 = levels::fill(texture(64, 64), levels::idAt);
    rs.mosaicSize = 5;
    triangle(2, 1, 61, 6, 25, 31);
    rs.vertex[0].z = 3, rs.vertex[1].z = 5, rs.vertex[2].z = 2;
    rs.uv0[0] = {texels(2), texels(1)}, rs.uv0[1] = {texels(41), texels(6)}, rs.uv0[2] = {texels(25), texels(31)};
    const Scene s = walk();
    for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_BILINEAR, NINEFOLD_FILTER_MIP,
                       NINEFOLD_FILTER_MIP_BILINEAR}) { // up to one texel a pixel 2 and 5 are 0 and 1
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}) {
            wipe();
            draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON, .filter = filter, .shahei = shahei});
            for (const auto &[place, a] : s.pixels) {
                const int32_t u = coordinate(a[0], a[4], s.shiftU0), v = coordinate(a[1], a[4], s.shiftV0);
                const uint32_t expected = filter == NINEFOLD_FILTER_MOSAIC
                                              ? levels::texel(*rs.tex0, (u >> 16) / 5 * 5, (v >> 16) / 5 * 5)
                                          : filter == NINEFOLD_FILTER_BILINEAR || filter == NINEFOLD_FILTER_MIP_BILINEAR
                                              ? levels::bilinear(*rs.tex0, u, v, false)
                                              : levels::point(*rs.tex0, u, v);
                ASSERT_EQ(at(place.first, place.second), expected) << filter << " at " << place.first << ", " << place.second;
            }
        }
    }
}

TEST_F(Perspective, RulesAndColoursAreLinearOnTheScreen)
{
    rs.tex0 = index(64, 64);
    rs.tex2 = texture(16, 16, [](uint32_t u, uint32_t) { return u & 1 ? 255u : 0u; });
    triangle(0, 0, 32, 0, 0, 32);
    rs.vertex[1].z = 4, rs.vertex[2].z = 9;
    rs.uv0[0] = {0, 0}, rs.uv0[1] = {texels(32), 0}, rs.uv0[2] = {0, texels(32)};
    rs.uv2[0] = {0, 0}, rs.uv2[1] = {texels(16), 0}, rs.uv2[2] = {0, texels(16)};
    rs.color[0] = 0, rs.color[1] = 0x80, rs.color[2] = 0x8000;
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON, .rule = NINEFOLD_RULE_ON, .multi = NINEFOLD_MULTI_CORNERS});
    // Two pixels of each rule column; four of blue a pixel to the right, four of green a row down.
    for (uint32_t y = 0; y < 32; ++y)
        for (uint32_t x = 0; x < 32 - y; ++x)
            ASSERT_EQ(at(int(x), int(y)), x / 2 % 2 ? 0xFF000000 + y * 4 * 256 + x * 4 : ground) << x << ", " << y;
    // The texture is not: at the middle of the top row, depths 1 and 4, u is not 16 but (0 + 8/2) / (1 + 1/4) * 2 = 6.4.
    clear();
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
    EXPECT_EQ(at(16, 0), idAt(6, 0));
}

TEST_F(Perspective, IsTheKernelExportedByName)
{
    rs.tex0 = index(64, 64);
    triangle(2, 1, 61, 6, 25, 31);
    rs.vertex[1].z = 4, rs.vertex[2].z = 9;
    rs.uv0[1] = {texels(32), 0}, rs.uv0[2] = {0, texels(32)};
    draw({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON});
    const State expected = state();
    clear();
    DrawPolygon_PERS_TEST();
    EXPECT_TRUE(state() == expected);
    EXPECT_FALSE(untouched());
}

// The quotient at its borders. In the first row of a triangle whose depths are all z, the reciprocal is 0x7FFFFFFF / z everywhere
// and the dividend falls by 1 a pixel when u falls by z; a lower vertex at 16384 texels keeps the shift at 0. Texel borders stand
// where the quotient passes a multiple of 2^17.
class Quotient : public Perspective {
protected:
    Quotient() : Perspective(64, 1) {}

    void SetUp() override
    {
        Perspective::SetUp();
        rs.tex0 = texture(65536, 1, [](uint32_t u, uint32_t) { return 0x80000000 | u; });
        triangle(0, 0, 64, 0, 0, 64);
    }

    // Dividends a, a - 1, ... a - 63 (a at least 63) over 0x7FFFFFFF / depth.
    void expectRow(int64_t a, int32_t depth, DrawFunc func)
    {
        for (int k = 0; k < 3; ++k)
            rs.vertex[k].z = depth;
        rs.uv0[0].u = static_cast<int32_t>(a * depth);
        rs.uv0[1].u = static_cast<int32_t>((a - 64) * depth);
        rs.uv0[2].u = texels(16384);
        func();
        const uint32_t w = static_cast<uint32_t>(0x7FFFFFFF / depth);
        for (int x = 0; x < 64; ++x) {
            const uint32_t expected =
                0x80000000 |
                (static_cast<uint32_t>(fraction(static_cast<uint32_t>(a) - static_cast<uint32_t>(x), w) >> 17) & 65535);
            ASSERT_EQ(at(x, 0), expected) << "dividend " << a - x << " over " << w;
        }
    }

    template <class Body>
    void underSets(Body &&body)
    {
        for (int set = 0; set < ninefold::usableSets() && !HasFatalFailure(); ++set) {
            SCOPED_TRACE(ninefold::setNames[set]);
            ASSERT_TRUE(ninefold::useSet(set));
            body(kernel({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = NINEFOLD_PERS_ON}));
        }
    }
};

TEST_F(Quotient, IsExactAroundEveryKindOfTexelBorder)
{
    underSets([&](DrawFunc func) {
        std::mt19937_64 random(43);
        for (int round = 0; round < 40000 / thin && !HasFatalFailure(); ++round) {
            const int32_t depth = 1 + static_cast<int32_t>(random() % (uint64_t{1} << (round % 24)));
            const uint64_t w = static_cast<uint64_t>(0x7FFFFFFF / depth);
            if (w < 200)
                continue;
            // The least dividend whose quotient reaches a border, in a lane that changes.
            const uint64_t border = (random() & 0x7FFF) << 17;
            int64_t a = static_cast<int64_t>(((border * w) + 0xFFFFFFFF) >> 32) + round % 40;
            a = std::clamp<int64_t>(a, 64, static_cast<int64_t>(w));
            expectRow(a, depth, func);
        }
    });
}

TEST_F(Quotient, IsExactWhereTheDividendIsNextToTheDivisor)
{
    underSets([&](DrawFunc func) {
        for (int32_t depth :
             {1, 2, 3, 5, 7, 10, 255, 256, 257, 1000, 32767, 32768, 65535, 65536, 100003, 1 << 20, (1 << 20) + 7, 5000000})
            for (int64_t offset : {0, 1, 2, 17, 63})
                if (0x7FFFFFFF / depth - offset >= 64 && (int64_t{0x7FFFFFFF} / depth - offset) * depth <= 0x7FFFFFFF)
                    expectRow(0x7FFFFFFF / depth - offset, depth, func);
    });
    // (w - 1) * 2^32 / w is 2^32 - 3 for w = 2^31 - 1: -3, halved -2.
    EXPECT_EQ(fraction(0x7FFFFFFE, 0x7FFFFFFF), -3);
}

TEST_F(Quotient, IsExactForSmallDivisors)
{
    // One pixel, its dividend and divisor those of the first vertex alone.
    clip(0, 0, 1, 1);
    underSets([&](DrawFunc func) {
        for (uint32_t w = 1; w < 400; ++w) {
            const int32_t depth = static_cast<int32_t>(0x7FFFFFFFu / w);
            ASSERT_EQ(0x7FFFFFFFu / static_cast<uint32_t>(depth), w);
            for (uint32_t a = 0; a <= w && int64_t{a} * depth <= 0x7FFFFFFF; a += w < 40 || a < 3 || a > w - 4 ? 1 : 1 + w / 23) {
                for (int k = 0; k < 3; ++k)
                    rs.vertex[k].z = depth, rs.uv0[k] = {static_cast<int32_t>(a) * depth, 0};
                rs.uv0[2].u = texels(16384);
                func();
                ASSERT_EQ(at(0, 0), 0x80000000 | (static_cast<uint32_t>(fraction(a, w) >> 17) & 65535)) << a << " over " << w;
            }
        }
    });
    // By hand: 0 over 1; 1 over 2 is the sign bit, halved 0xC000.... 1 over 3 is 0x55555555.
    EXPECT_EQ(fraction(1, 1), 0);
    EXPECT_EQ(static_cast<uint32_t>(fraction(1, 2)), 0x80000000u);
    EXPECT_EQ(fraction(1, 3), 0x55555555);
}

TEST_F(Quotient, IsThatOfTheRemainderForDividendsAboveTheDivisor)
{
    // Negative coordinates, one pixel each.
    clip(0, 0, 1, 1);
    underSets([&](DrawFunc func) {
        std::mt19937 random(47);
        for (int round = 0; round < 20000 / thin; ++round) {
            const int32_t depth = 1 + static_cast<int32_t>(random() % (1u << (round % 25)));
            const int32_t u = -static_cast<int32_t>(random() >> (1 + round % 31)) - 1;
            for (int k = 0; k < 3; ++k)
                rs.vertex[k].z = depth, rs.uv0[k] = {u, 0};
            func();
            const uint32_t a = static_cast<uint32_t>(u / depth), w = static_cast<uint32_t>(0x7FFFFFFF / depth);
            ASSERT_EQ(at(0, 0), 0x80000000 | (static_cast<uint32_t>(fraction(a, w) >> 17) & 65535)) << a << " over " << w;
        }
    });
}

TEST_F(Quotient, RandomDividendsAndDivisorsInEveryLane)
{
    underSets([&](DrawFunc func) {
        std::mt19937 random(53);
        for (int round = 0; round < 6000 / thin; ++round) {
            // Both run along the row.
            for (int k = 0; k < 3; ++k) {
                rs.vertex[k].z = 1 + static_cast<int32_t>(random() % (1u << (round % 26)));
                rs.uv0[k] = {static_cast<int32_t>(random() & 0x7FFFFFFF), 0};
            }
            rs.uv0[2].u = texels(20000);
            const int64_t a0 = rs.uv0[0].u / rs.vertex[0].z, a1 = rs.uv0[1].u / rs.vertex[1].z;
            const int64_t w0 = 0x7FFFFFFF / rs.vertex[0].z, w1 = 0x7FFFFFFF / rs.vertex[1].z;
            func();
            for (int x = 0; x < 64; ++x) {
                const uint32_t a = static_cast<uint32_t>(a0 + (a1 - a0) / 64 * x),
                               w = static_cast<uint32_t>(w0 + (w1 - w0) / 64 * x);
                ASSERT_EQ(at(x, 0), 0x80000000 | (static_cast<uint32_t>(fraction(a, w) >> 17) & 65535)) << a << " over " << w;
            }
        }
    });
}

} // namespace
