// Stipples: the table of fades, the patterns, and which of them draws a pixel.
#include <ninefold/render_state.h>

#include "core/startup.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <climits>
#include <cstring>
#include <vector>

namespace {

using Mask = std::array<uint16_t, 16>;

Mask current()
{
    Mask mask;
    std::copy_n(rs.drawMask, 16, mask.begin());
    return mask;
}

Mask preset(long index)
{
    SetPresetDrawMask(index);
    return current();
}

Mask rows(uint16_t even, uint16_t odd)
{
    Mask mask;
    for (size_t row = 0; row < 16; ++row)
        mask[row] = row % 2 ? odd : even;
    return mask;
}

int drawn(const Mask &mask)
{
    int count = 0;
    for (uint16_t row : mask)
        count += 16 - std::popcount(row);
    return count;
}

class DrawMask : public testing::Test {
protected:
    void SetUp() override
    {
        rs = RenderState{};
        MakeDrawMaskTable();
    }
    void TearDown() override { rs = RenderState{}; }
};

TEST_F(DrawMask, MakingTheTableLeavesEveryPixelDrawn)
{
    std::fill_n(rs.drawMask, 16, uint16_t{0x1234});
    MakeDrawMaskTable();
    EXPECT_EQ(current(), rows(0, 0));
}

TEST_F(DrawMask, PresetZeroDrawsNothing) { EXPECT_EQ(preset(NINEFOLD_STIPPLE_NOTHING), rows(0xFFFF, 0xFFFF)); }

TEST_F(DrawMask, PresetOneDrawsTwoPixels)
{
    Mask expected = rows(0xFFFF, 0xFFFF);
    expected[0] = 0xFFFE;
    expected[8] = 0xFEFF;
    EXPECT_EQ(preset(1), expected);
}

TEST_F(DrawMask, PresetThree)
{
    Mask expected = rows(0xFFFF, 0xFFFF);
    expected[0] = expected[8] = 0xFEFE;
    EXPECT_EQ(preset(3), expected);
}

TEST_F(DrawMask, Preset254LacksTheLastPixel)
{
    Mask expected = rows(0, 0);
    expected[0] = 0x8000;
    EXPECT_EQ(preset(254), expected);
}

TEST_F(DrawMask, QuartersArePatterns)
{
    EXPECT_EQ(preset(63), rows(0xAAAA, 0xFFFF));
    EXPECT_EQ(preset(127), rows(0xAAAA, 0x5555));
    EXPECT_EQ(preset(191), rows(0xAAAA, 0));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_FADE_LAST), rows(0, 0));
}

TEST_F(DrawMask, PresetsDrawOnePixelMoreEach)
{
    EXPECT_EQ(drawn(preset(NINEFOLD_STIPPLE_NOTHING)), 0); // none has one pixel
    Mask before = preset(1);
    for (long n = 1; n < 256; ++n) {
        const Mask mask = preset(n);
        EXPECT_EQ(drawn(mask), n + 1) << n;
        for (size_t row = 0; row < 16; ++row)
            EXPECT_EQ(mask[row] & ~before[row], 0) << "a pixel of the preset before is gone in " << n;
        before = mask;
    }
}

TEST_F(DrawMask, PixelsComeInTheOrderOfTheThreeLevels)
{
    // (bit, row) of the pixels that presets 2 up add
    const std::vector<std::pair<int, int>> first = {{0, 8},  {8, 0},   {4, 4},  {12, 12}, {4, 12}, {12, 4}, {0, 4},
                                                    {8, 12}, {0, 12},  {8, 4},  {4, 0},   {12, 8}, {4, 8},  {12, 0},
                                                    {2, 2},  {10, 10}, {2, 10}, {10, 2},  {6, 6}};
    Mask before = preset(1);
    for (size_t i = 0; i < first.size(); ++i) {
        Mask expected = before;
        expected[static_cast<size_t>(first[i].second)] ^= static_cast<uint16_t>(1u << first[i].first);
        before = preset(static_cast<long>(i) + 2);
        EXPECT_EQ(before, expected) << i + 2;
    }

    // The outer level: from presets 63, 127 and 191 on it moves by (1, 1), (0, 1) and (1, 0).
    const int at[3][2] = {{1, 1}, {0, 1}, {1, 0}};
    for (long step = 0; step < 3; ++step) {
        Mask expected = preset(64 * step + 63);
        expected[static_cast<size_t>(at[step][1])] ^= static_cast<uint16_t>(1u << at[step][0]);
        EXPECT_EQ(preset(64 * step + 64), expected) << step;
    }
}

TEST_F(DrawMask, WholeOrder)
{
    const int middle[16][2] = {{0, 0}, {4, 4}, {0, 4}, {4, 0}, {2, 2}, {6, 6}, {2, 6}, {6, 2},
                               {0, 2}, {4, 6}, {0, 6}, {4, 2}, {2, 0}, {6, 4}, {2, 4}, {6, 0}};
    Mask expected = rows(0xFFFF, 0xFFFF);
    for (int n = 0; n < 256; ++n) {
        const int quarter = n / 64, inner = n % 4;
        const int *mid = middle[n / 4 % 16];
        const int bit = (quarter == 1 || quarter == 3) + mid[0] + 8 * (inner == 1 || inner == 3);
        const int row = (quarter == 1 || quarter == 2) + mid[1] + 8 * (inner == 1 || inner == 2);
        expected[static_cast<size_t>(row)] &= static_cast<uint16_t>(~(1u << bit));
        if (n > 0) {
            EXPECT_EQ(preset(n), expected) << n;
        }
    }
}

TEST_F(DrawMask, FixedPatterns)
{
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ALL), rows(0, 0));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ALL), preset(NINEFOLD_STIPPLE_FADE_LAST));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_CHESSBOARD), rows(0xAAAA, 0x5555));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_CHESSBOARD), preset(127));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ODD_COLUMNS), rows(0xAAAA, 0xAAAA));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_EVEN_ROWS), rows(0, 0xFFFF));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ODD_COLUMNS_EVEN_ROWS), rows(0xAAAA, 0xFFFF));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ODD_COLUMNS_EVEN_ROWS), preset(63));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS), rows(0xAAAA, 0));
    EXPECT_EQ(preset(NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS), preset(191));
}

TEST_F(DrawMask, IndexAboveTheLastChangesNothing)
{
    SetPresetDrawMask(1);
    const Mask before = current();
    for (long index : {262l, 263l, 1000l, long{INT_MAX}})
        EXPECT_EQ(preset(index), before) << index;
}

TEST_F(DrawMask, PresetTouchesTheMaskOnly)
{
    for (long index : {0l, 1l, 100l, 255l, 256l, 257l, 261l, 262l}) {
        std::memset(&rs, 0x5A, sizeof rs);
        RenderState expected;
        std::memcpy(&expected, &rs, sizeof rs);
        SetPresetDrawMask(index);
        std::memcpy(expected.drawMask, rs.drawMask, sizeof rs.drawMask);
        EXPECT_EQ(std::memcmp(&rs, &expected, sizeof rs), 0) << index;
    }
}

TEST_F(DrawMask, LowWordOfTheIndexCounts)
{
    if constexpr (sizeof(long) > 4) {
        EXPECT_EQ(preset((1l << 16 << 16) + NINEFOLD_STIPPLE_ODD_COLUMNS), rows(0xAAAA, 0xAAAA));
    }
}

TEST_F(DrawMask, MakingTheTableAgainChangesNothing)
{
    uint16_t before[256][16];
    std::memcpy(before, ninefold::stipples, sizeof before);
    SetPresetDrawMask(NINEFOLD_STIPPLE_NOTHING);
    MakeDrawMaskTable();
    EXPECT_EQ(std::memcmp(before, ninefold::stipples, sizeof before), 0);
    EXPECT_EQ(current(), rows(0, 0));
}

} // namespace
