// Run-length maps, zero-pixel maps and the run lists of plane words.
#include <ninefold/render_state.h>

#include "core/startup.h"
#include "support/texture_ptr.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Runs = std::vector<int>;

Runs runsOf(const TexturePtr &texture)
{
    return {texture->runlengthMap, texture->runlengthMap + texture->width * texture->height};
}

Runs listOf(uint32_t word)
{
    Runs runs;
    const int8_t *next = reinterpret_cast<int8_t **>(GetShaheiTable())[word];
    for (int sum = 0; sum < 16; sum += std::abs(runs.back()))
        runs.push_back(*next++);
    return runs;
}

TEST(RunlengthMap, ZeroRow)
{
    TexturePtr texture = makeTexture(4, 1);
    CreateRunlengthMap(texture.get());
    EXPECT_EQ(runsOf(texture), (Runs{-4, -3, -2, -1}));
}

TEST(RunlengthMap, BothKinds)
{
    TexturePtr texture = makeTexture(4, 1, {0, 5, 5, 0});
    CreateRunlengthMap(texture.get());
    EXPECT_EQ(runsOf(texture), (Runs{-1, 2, 1, -1}));
}

TEST(RunlengthMap, RunsEndWithTheRow)
{
    TexturePtr texture = makeTexture(2, 3, {1, 1, 1, 0, 0, 1});
    CreateRunlengthMap(texture.get());
    EXPECT_EQ(runsOf(texture), (Runs{2, 1, 1, -1, -1, 1, -2, -1}));
}

TEST(RunlengthMap, ZeroRunsStopAtMinus128)
{
    TexturePtr texture = makeTexture(256, 1);
    texture->pixels[200] = 1;
    CreateRunlengthMap(texture.get());
    for (int x = 0; x < 200; ++x)
        EXPECT_EQ(texture->runlengthMap[x], std::max(x - 200, -128)) << x;
}

TEST(RunlengthMap, OtherRunsStopAt127)
{
    TexturePtr texture = makeTexture(512, 1);
    std::fill_n(texture->pixels, 300, 0xFF000000);
    CreateRunlengthMap(texture.get());
    for (int x = 0; x < 300; ++x)
        EXPECT_EQ(texture->runlengthMap[x], std::min(300 - x, 127)) << x;
}

TEST(RunlengthMap, WidthOneHasRunsOfOne)
{
    TexturePtr texture = makeTexture(1, 4, {0, 3, 3, 0});
    CreateRunlengthMap(texture.get());
    EXPECT_EQ(runsOf(texture), (Runs{-1, 1, 1, -1}));
}

TEST(RunlengthMap, WholeWordDecides)
{
    TexturePtr texture = makeTexture(4, 1, {0x00000001, 0x01000000, 0, 0x00FF0000});
    CreateRunlengthMap(texture.get());
    EXPECT_EQ(runsOf(texture), (Runs{2, 1, -1, 1}));
}

TEST(RunlengthMap, IsReplacedNotKeptCurrent)
{
    TexturePtr texture = makeTexture(2, 1);
    CreateRunlengthMap(texture.get());
    texture->pixels[0] = 1;
    EXPECT_EQ(runsOf(texture), (Runs{-2, -1}));
    CreateRunlengthMap(texture.get());
    EXPECT_EQ(runsOf(texture), (Runs{1, -1}));
}

TEST(ZeroPixelMap, LeftmostPixelIsBit15)
{
    TexturePtr texture = makeTexture(16, 1);
    std::fill_n(texture->pixels + 1, 15, 1u);
    CreateZeroPixelMap(texture.get());
    EXPECT_EQ(texture->zeroPixelMap[0], 0x8000);
}

TEST(ZeroPixelMap, NarrowRowsShareTheHighBits)
{
    TexturePtr texture = makeTexture(8, 2);
    std::fill_n(texture->pixels, 16, 1u);
    texture->pixels[8 + 3] = 0;
    CreateZeroPixelMap(texture.get());
    EXPECT_EQ(texture->zeroPixelMap[0], 0x1000);

    ClearTexture(texture.get());
    CreateZeroPixelMap(texture.get());
    EXPECT_EQ(texture->zeroPixelMap[0], 0xFF00);
}

TEST(ZeroPixelMap, BitOfEveryPixel)
{
    std::mt19937 random(3);
    for (uint32_t width : {1u, 2u, 4u, 8u, 16u, 32u, 128u}) {
        SCOPED_TRACE(width);
        TexturePtr texture = makeTexture(width, 32);
        for (uint32_t i = 0; i < width * 32; ++i)
            texture->pixels[i] = random() % 2;
        CreateZeroPixelMap(texture.get());

        std::vector<uint16_t> expected(width * 32); // the store has a word a pixel, the rest of it clear
        for (uint32_t y = 0; y < 32; ++y) {
            for (uint32_t x = 0; x < width; ++x) {
                const uint32_t index = y * width + x;
                if (texture->pixels[index] == 0)
                    expected[index / 16] |= static_cast<uint16_t>(1u << (15 - x % 16));
            }
        }
        EXPECT_EQ(std::vector<uint16_t>(texture->zeroPixelMap, texture->zeroPixelMap + width * 32), expected);
    }
}

TEST(ZeroPixelMap, WholeWordDecidesAndOldBitsGo)
{
    TexturePtr texture = makeTexture(16, 1);
    CreateZeroPixelMap(texture.get());
    EXPECT_EQ(texture->zeroPixelMap[0], 0xFFFF);
    texture->pixels[0] = 0x00000001;
    texture->pixels[1] = 0x01000000;
    CreateZeroPixelMap(texture.get());
    EXPECT_EQ(texture->zeroPixelMap[0], 0x3FFF);
}

TEST(ShaheiTable, KnownLists)
{
    MakeShaheiRunlengthTbl();
    EXPECT_EQ(listOf(0), Runs{16});
    EXPECT_EQ(listOf(0xFFFF), Runs{-16});
    EXPECT_EQ(listOf(0x8000), (Runs{-1, 15}));
    EXPECT_EQ(listOf(1), (Runs{15, -1}));
    EXPECT_EQ(listOf(0xAAAA), (Runs{-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1}));
}

TEST(ShaheiTable, ListsStandBackToBack)
{
    MakeShaheiRunlengthTbl();
    char **table = GetShaheiTable();
    EXPECT_EQ(table, reinterpret_cast<char **>(ninefold::runLists));
    EXPECT_EQ(table[1] - table[0], 1);
    EXPECT_EQ(table[2] - table[1], 2);
    const char *expected = reinterpret_cast<char *>(ninefold::runBytes);
    for (uint32_t word = 0; word < 65536; ++word) {
        ASSERT_EQ(table[word], expected) << word;
        expected += listOf(word).size();
    }
    EXPECT_EQ(expected, reinterpret_cast<char *>(std::end(ninefold::runBytes)));
}

TEST(ShaheiTable, LastListIsTheLastByte)
{
    MakeShaheiRunlengthTbl();
    EXPECT_EQ(ninefold::runLists[0xFFFF], std::end(ninefold::runBytes) - 1);
    EXPECT_EQ(std::end(ninefold::runBytes)[-1], -16);
}

TEST(ShaheiTable, ListsDescribeTheirWords)
{
    MakeShaheiRunlengthTbl();
    for (uint32_t word = 0; word < 65536; ++word) {
        uint32_t read = 0;
        int last = 0;
        for (int run : listOf(word)) {
            ASSERT_NE(run, 0);
            ASSERT_LE(run * last, 0) << "one stretch in two pieces in the list of " << word;
            for (int i = 0; i < std::abs(run); ++i)
                read = read << 1 | (run < 0);
            last = run;
        }
        ASSERT_EQ(read, word);
    }
}

TEST(ShaheiTable, CanBeMadeAgain)
{
    MakeShaheiRunlengthTbl();
    const std::vector<int8_t> bytes(std::begin(ninefold::runBytes), std::end(ninefold::runBytes));
    const std::vector<int8_t *> lists(std::begin(ninefold::runLists), std::end(ninefold::runLists));
    MakeShaheiRunlengthTbl();
    EXPECT_EQ(bytes, std::vector<int8_t>(std::begin(ninefold::runBytes), std::end(ninefold::runBytes)));
    EXPECT_EQ(lists, std::vector<int8_t *>(std::begin(ninefold::runLists), std::end(ninefold::runLists)));
}

} // namespace
