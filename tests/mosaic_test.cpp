// Mosaic sampling (filter 8).
#include "support/canvas.h"

#include <gtest/gtest.h>

#include <random>

using namespace canvas;

namespace {

int q(int x, int size) { return x / size * size; }

class Mosaic : public Canvas {
protected:
    // Every form, with the texel for pixel mapping of `place`.
    static std::vector<Modes> forms(int multi = NINEFOLD_MULTI_NONE)
    {
        std::vector<Modes> all;
        for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_STIPPLE}) {
            for (int rectOpt : rectOpts)
                all.push_back({.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = rectOpt, .shahei = shahei, .multi = multi});
            for (int pers : {0, 1})
                all.push_back({.shape = NINEFOLD_SHAPE_TRIANGLE,
                               .pers = pers,
                               .filter = NINEFOLD_FILTER_MOSAIC,
                               .shahei = shahei,
                               .multi = multi});
        }
        return all;
    }

    static bool isUnit(const Modes &m) { return m.shape == NINEFOLD_SHAPE_RECTANGLE && m.rectOpt == NINEFOLD_RECT_UNIT; }

    // Moves every position of tex0 (or tex1) by whole texels.
    void shiftSource(const Modes &m, int du, int dv, bool second = false)
    {
        TexCoord *uv = second ? rs.uv1 : rs.uv0;
        for (int k = 0; k < 4; ++k)
            uv[k].u += texels(du), uv[k].v += texels(dv);
        if (m.rectOpt != NINEFOLD_RECT_TABLE)
            return;
        moved = lines;
        for (LineTableRecord &line : moved)
            line = {line.startU + texels(du), line.startV + texels(dv), line.endU + texels(du), line.endV + texels(dv)};
        (second ? rs.lineTable1 : rs.lineTable0) = moved.data();
    }

    std::vector<LineTableRecord> moved;
};

TEST_F(Mosaic, BlocksOfOneTexelArePointSampling)
{
    rs.tex0 = texture(64, 32, [](uint32_t u, uint32_t v) { return (u * 7 + v) % 9 ? idAt(u, v) : 0; });
    rs.tex1 = texture(32, 16, [](uint32_t u, uint32_t v) { return (u + v) % 5 ? 0x5000 + 64 * v + u : 0; });
    for (int multi : {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_NONE}) {
        for (Modes m : forms(multi)) {
            place(m, 2, 1, 60, 30);
            for (TexCoord *uv : {rs.uv0, rs.uv1})
                for (int k = 0; k < 4; ++k)
                    uv[k].u = uv[k].u / 3 * 2 + 0x4567, uv[k].v = uv[k].v / 2 + 0x3456;
            for (LineTableRecord &line : lines)
                line = {line.startU / 3, line.startV / 2 - 0x9999, line.endU / 3 * 2, line.endV / 2 + 0x3333};
            wipe();
            draw(m);
            const State blocks = state();
            EXPECT_GT(drawnCount(), 500);
            wipe();
            m.filter = NINEFOLD_FILTER_POINT;
            draw(m);
            EXPECT_TRUE(state() == blocks) << m;
        }
    }
}

TEST_F(Mosaic, UnitRectanglesHaveBlocksOfSize1BySize)
{
    rs.tex0 = rs.tex1 = index(64, 32);
    rs.mosaicSize = 4, rs.mosaicSize1 = 8;
    for (const Modes &m : forms()) {
        if (!isUnit(m))
            continue;
        wipe();
        place(m, 0, 0, 64, 32);
        draw(m);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 64; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(x / 8 * 8), uint32_t(y / 4 * 4))) << m;
    }
}

TEST_F(Mosaic, OtherFormsHaveSquareBlocksWhateverSize1Is)
{
    rs.tex0 = index(64, 32);
    rs.mosaicSize = 4;
    for (int size1 : {1, 8, 1000}) {
        rs.mosaicSize1 = size1;
        for (const Modes &m : forms()) {
            if (isUnit(m))
                continue;
            wipe();
            place(m, 0, 0, 64, 32);
            draw(m);
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(at(x, y), idAt(uint32_t(x / 4 * 4), uint32_t(y / 4 * 4))) << m;
        }
    }
}

TEST_F(Mosaic, AStretchByTwoMakesBlocksOfFourFillEightPixels)
{
    rs.tex0 = index(64, 32);
    rs.mosaicSize = 4;
    corners(3, 2, 51, 26);
    rs.uv0[0] = {0, 0};
    rs.uv0[1] = {texels(24), texels(12)};
    draw({.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_STRETCH});
    for (int y = 2; y < 26; ++y)
        for (int x = 3; x < 51; ++x)
            ASSERT_EQ(at(x, y), idAt(uint32_t((x - 3) / 8 * 4), uint32_t((y - 2) / 8 * 4)));
}

TEST_F(Mosaic, BlocksAreAlignedToTheTexture)
{
    rs.tex0 = index(64, 32);
    rs.mosaicSize = 5, rs.mosaicSize1 = 5;
    for (const Modes &m : forms()) {
        wipe();
        place(m, 7, 3, 50, 28);
        shiftSource(m, 2, 1);
        rs.clipLeft = 9;
        draw(m);
        for (int y = 3; y < 28; ++y)
            for (int x = 9; x < 50; ++x)
                ASSERT_EQ(at(x, y), idAt(uint32_t(q(x + 2, 5)), uint32_t(q(y + 1, 5)))) << m;
    }
}

TEST_F(Mosaic, TheFirstTexelOfABlockDecidesWhetherItIsDrawn)
{
    rs.tex0 = texture(64, 32, [](uint32_t u, uint32_t v) {
        const bool firstOfHole = u == 8 && v == 4, insideOther = u == 17 && v == 5;
        return firstOfHole || insideOther ? 0 : idAt(u, v);
    });
    rs.mosaicSize = rs.mosaicSize1 = 4;
    for (const Modes &m : forms()) {
        wipe();
        place(m, 0, 0, 32, 16);
        draw(m);
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 32; ++x) {
                const bool hole = x / 4 == 2 && y / 4 == 1;
                ASSERT_EQ(at(x, y), hole ? ground : idAt(uint32_t(x / 4 * 4), uint32_t(y / 4 * 4))) << m;
                if (m.shahei == NINEFOLD_SHAHEI_PLANE) {
                    ASSERT_EQ(taken(x, y), !hole) << m;
                }
            }
        }
    }
}

TEST_F(Mosaic, QuantisesBeforeTheWrapButColumnsOfUnitRectanglesAfterIt)
{
    // Blocks of 3 in a texture of 8: before the wrap the blocks go on from repeat to repeat, after it they start anew.
    rs.tex0 = index(8, 8);
    rs.mosaicSize = rs.mosaicSize1 = 3;
    for (const Modes &m : forms()) {
        wipe();
        place(m, 0, 0, 20, 20);
        draw(m);
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 20; ++x) {
                const int column = isUnit(m) ? q(x & 7, 3) : q(x, 3) & 7;
                const int line = isUnit(m) ? q(y & 7, 3) : q(y, 3) & 7;
                ASSERT_EQ(at(x, y), idAt(uint32_t(column), uint32_t(line))) << m << " at " << x << ", " << y;
            }
        }
    }
    // By hand: 8 is in the block of 6, or the first of the next repeat.
    EXPECT_EQ(q(8, 3) & 7, 6);
    EXPECT_EQ(q(8 & 7, 3), 0);
}

TEST_F(Mosaic, NegativePositionsGoUpToTheBlockNearerToZero)
{
    rs.tex0 = index(64, 32);
    rs.mosaicSize = rs.mosaicSize1 = 5;
    for (const Modes &m : forms()) {
        if (m.pers)
            continue; // has no negative coordinates
        wipe();
        place(m, 0, 0, 20, 20);
        shiftSource(m, -10, -10);
        draw(m);
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 20; ++x) {
                const int column = isUnit(m) ? q((x - 10) & 63, 5) : q(x - 10, 5) & 63;
                const int line = isUnit(m) ? q((y - 10) & 31, 5) : q(y - 10, 5) & 31;
                ASSERT_EQ(at(x, y), idAt(uint32_t(column), uint32_t(line))) << m << " at " << x << ", " << y;
            }
        }
        if (!isUnit(m)) {
            EXPECT_EQ(at(9, 10), idAt(0, 0)) << m; // -1 is in the block of 0
            EXPECT_EQ(at(5, 10), idAt(59, 0)) << m; // -5 in the block of -5
            EXPECT_EQ(at(4, 10), idAt(59, 0)) << m; // and so is -6
        }
    }
}

TEST_F(Mosaic, StretchedRowsTruncateBeforeTheyAreQuantised)
{
    rs.tex0 = index(64, 32);
    rs.mosaicSize = 2;
    // -1.5 texels: row -1 by truncation, block 0; the floor would be -2.
    rs.uv0[0] = {0, -0x18000};
    rs.uv0[1] = {texels(1), -0x18000};
    corners(0, 0, 1, 1);
    draw({.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_STRETCH});
    EXPECT_EQ(at(0, 0), idAt(0, 0));
    rs.uv0[1] = {texels(1), -0x18000};
    rs.uv0[2] = rs.uv0[0], rs.uv0[3] = rs.uv0[1];
    draw({.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_CORNERS});
    EXPECT_EQ(at(0, 0), idAt(0, 30));
}

// tex1, 8 by 8, with blocks of 3 high (mosaicSize) and 5 wide (mosaicSize1): columns wrap before they are quantised everywhere;
// rows in unit rectangles and triangles too, in the other rectangles after.
TEST_F(Mosaic, TheSecondTextureTakesColumnsBySize1AndWrapsThemFirst)
{
    rs.tex0 = solid(0xFF000000);
    rs.tex1 = texture(8, 8, [](uint32_t u, uint32_t v) { return 0x800000 + v * 0x1000 + u; });
    rs.mosaicSize = 3, rs.mosaicSize1 = 5;
    for (const Modes &m : forms(NINEFOLD_MULTI_TEXTURE)) {
        for (int offset : {0, -10}) {
            if (offset && m.pers)
                continue;
            wipe();
            place(m, 0, 0, 20, 20);
            if (m.rectOpt == NINEFOLD_RECT_TABLE && offset)
                rs.lineTable0 = lines.data();
            shiftSource(m, offset, offset, true);
            draw(m);
            const bool rowsWrapFirst = isUnit(m) || m.shape == NINEFOLD_SHAPE_TRIANGLE;
            for (int y = 0; y < 20; ++y) {
                for (int x = 0; x < 20; ++x) {
                    const int column = q((x + offset) & 7, 5);
                    const int line = rowsWrapFirst ? q((y + offset) & 7, 3) : q(y + offset, 3) & 7;
                    ASSERT_EQ(at(x, y), 0xFF800000 + uint32_t(line) * 0x1000 + uint32_t(column)) << m << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST_F(Mosaic, SkippedPixelsMoveTheUnquantisedPosition)
{
    rs.tex0 = index(64, 32);
    rs.mosaicSize = rs.mosaicSize1 = 4;
    for (const Modes &m : forms()) {
        if (m.shahei != NINEFOLD_SHAHEI_PLANE)
            continue;
        wipe();
        plane[4 * 2] = 0x5F31;
        plane[4 * 2 + 1] = 0x8001;
        place(m, 1, 2, 30, 3);
        draw(m);
        for (int x = 1; x < 30; ++x) {
            const bool free = !((x < 16 ? 0x5F31 >> (15 - x) : 0x8001 >> (31 - x)) & 1);
            EXPECT_EQ(at(x, 2), free ? idAt(uint32_t(x / 4 * 4), 0) : ground) << m << " at " << x;
        }
    }
}

// Every position of a 65,536 wide texture for many sizes: the quotient must be exact for each.
class MosaicQuotient : public Canvas {
protected:
    MosaicQuotient() : Canvas(65536, 1) {}

    static std::vector<int> sizes()
    {
        std::vector<int> all;
        std::mt19937 random(5);
        for (int size = 1; size <= 2048; size += size < 256 ? 1 : 2 * thin)
            all.push_back(size);
        for (int size = 2049; size < 65536; size += 1 + static_cast<int>(random() % (100u * thin)))
            all.push_back(size);
        for (int power = 11; power < 31; ++power)
            for (int near : {-1, 0, 1})
                all.push_back((1 << power) + near);
        for (int size : {65535, 65536, 65537, 100000, 16777216, 16777217, 33554431, 2147483647})
            all.push_back(size);
        return all;
    }
};

TEST_F(MosaicQuotient, IsExactForColumnsFrom0To65535)
{
    rs.tex0 = texture(65536, 1, [](uint32_t u, uint32_t) { return u + 1; });
    corners(0, 0, 65536, 1);
    for (int set = 0; set < ninefold::usableSets(); ++set) {
        ASSERT_TRUE(ninefold::useSet(set));
        const DrawFunc func = kernel({.filter = NINEFOLD_FILTER_MOSAIC});
        for (int size : sizes()) {
            rs.mosaicSize1 = size;
            func();
            for (int64_t first = 0; first < 65536; first += size) {
                const uint32_t *begin = frame->pixels + first, *end = frame->pixels + std::min<int64_t>(first + size, 65536);
                ASSERT_TRUE(std::all_of(begin, end, [&](uint32_t pixel) { return pixel == uint32_t(first) + 1; }))
                    << "size " << size << " block " << first << " " << ninefold::setNames[set];
            }
        }
    }
}

TEST_F(MosaicQuotient, IsExactForPositionsFromMinus32768To32767)
{
    Texture *acrossU = texture(65536, 1, [](uint32_t u, uint32_t) { return u + 1; });
    Texture *acrossV = texture(1, 65536, [](uint32_t, uint32_t v) { return v + 1; });
    int n = 0;
    for (int set = 0; set < ninefold::usableSets(); ++set) {
        ASSERT_TRUE(ninefold::useSet(set));
        const DrawFunc func = kernel({.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_TABLE});
        for (int size : sizes()) {
            rs.mosaicSize = size;
            const bool alongU = ++n % 2;
            rs.tex0 = alongU ? acrossU : acrossV;
            for (int start = -32768; start < 32768; start += 16384) { // a segment holds less than 32768 texels
                LineTableRecord line{};
                (alongU ? line.startU : line.startV) = texels(start);
                (alongU ? line.endU : line.endV) = static_cast<int32_t>((static_cast<uint32_t>(start) + 16384) << 16);
                rs.lineTable0 = &line;
                corners(0, 0, 16384, 1);
                func();
                int wrong = 0;
                for (int x = 0; x < 16384; ++x)
                    wrong += frame->pixels[x] != (static_cast<uint32_t>(q(start + x, size)) & 65535) + 1;
                ASSERT_EQ(wrong, 0) << "size " << size << " from position " << start << " " << ninefold::setNames[set];
            }
        }
    }
}

TEST_F(MosaicQuotient, IsExactForTheRowsOfEveryForm)
{
    // Rows are quantised once a row in rect options 0 and 1.
    Texture *tall = texture(1, 65536, [](uint32_t, uint32_t v) { return v + 1; });
    rs.tex0 = tall;
    corners(0, 0, 1, 1);
    const DrawFunc unit = kernel({.filter = NINEFOLD_FILTER_MOSAIC}),
                   stretch = kernel({.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_STRETCH});
    std::mt19937 random(9);
    for (int size : sizes()) {
        rs.mosaicSize = size;
        for (int k = 0; k < 8; ++k) {
            const int v = static_cast<int>(random() % 65536) - 32768;
            for (int near : {v, q(v, size), q(v, size) - 1, q(v, size) + 1}) {
                if (near < -32768 || near > 32767)
                    continue;
                rs.uv0[0] = {0, texels(near)};
                rs.uv0[1] = {texels(1), texels(near)};
                unit();
                ASSERT_EQ(frame->pixels[0], static_cast<uint32_t>(q(near & 65535, size)) + 1) << size << " " << near;
                stretch();
                ASSERT_EQ(frame->pixels[0], (static_cast<uint32_t>(q(near, size)) & 65535) + 1) << size << " " << near;
            }
        }
    }
}

} // namespace
