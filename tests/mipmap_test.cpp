// Mip chains: how levels are averaged, made and released.
#include "support/texture_ptr.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// Level 1 of a 2 by 2 texture.
uint32_t averageOf(uint32_t p0, uint32_t p1, uint32_t p2, uint32_t p3)
{
    TexturePtr texture = makeTexture(2, 2, {p0, p1, p2, p3});
    CreateMipmapTexture(texture.get());
    return texture->mip[1]->pixels[0];
}

uint32_t averageByChannel(uint32_t p0, uint32_t p1, uint32_t p2, uint32_t p3)
{
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t sum = (p0 >> shift & 255) + (p1 >> shift & 255) + (p2 >> shift & 255) + (p3 >> shift & 255);
        result |= sum / 4 << shift;
    }
    return result;
}

TEST(CreateMipmapTexture, OnePixelHasOnlyTheBaseLevel)
{
    TexturePtr texture = makeTexture(1, 1, {5});
    CreateMipmapTexture(texture.get());
    EXPECT_EQ(texture->mipCount, 1u);
    EXPECT_EQ(texture->mip[0], texture.get());
    EXPECT_EQ(texture->mip[1], nullptr);
}

TEST(CreateMipmapTexture, TwoByTwoHasTwoLevels)
{
    TexturePtr texture = makeTexture(2, 2);
    CreateMipmapTexture(texture.get());
    ASSERT_EQ(texture->mipCount, 2u);
    EXPECT_EQ(texture->mip[1]->width, 1u);
    EXPECT_EQ(texture->mip[1]->height, 1u);
}

TEST(CreateMipmapTexture, ChainEndsAtTheSmallerDimension)
{
    for (bool tall : {false, true}) {
        TexturePtr texture = tall ? makeTexture(64, 256) : makeTexture(256, 64);
        CreateMipmapTexture(texture.get());
        ASSERT_EQ(texture->mipCount, 7u);
        for (uint32_t i = 1; i < 7; ++i) {
            const Texture &level = *texture->mip[i];
            EXPECT_EQ(level.width, texture->width >> i);
            EXPECT_EQ(level.height, texture->height >> i);
        }
        EXPECT_EQ(texture->mip[7], nullptr);
    }
    TexturePtr line = makeTexture(1, 64);
    CreateMipmapTexture(line.get());
    EXPECT_EQ(line->mipCount, 1u);
}

TEST(CreateMipmapTexture, LevelsArePlainTextures)
{
    TexturePtr texture = makeTexture(8, 4);
    CreateMipmapTexture(texture.get());
    const Texture &level = *texture->mip[1];
    EXPECT_EQ(level.origWidth, 4u);
    EXPECT_EQ(level.origHeight, 2u);
    EXPECT_EQ(level.log2Width, 2u);
    EXPECT_EQ(level.log2Height, 1u);
    EXPECT_EQ(level.refCount, 0);
    EXPECT_EQ(level.mipCount, 0u);
    EXPECT_EQ(level.mip[0], nullptr);
    EXPECT_EQ(level.runlengthMap, nullptr);
    EXPECT_EQ(level.zeroPixelMap, nullptr);
}

TEST(CreateMipmapTexture, AverageTruncates)
{
    EXPECT_EQ(averageOf(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFEFEFEFE), 0xFEFEFEFE);
    EXPECT_EQ(averageOf(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF), 0xFFFFFFFF);
    EXPECT_EQ(averageOf(0x04000000, 0, 0, 0), 0x01000000u);
    EXPECT_EQ(averageOf(0x00000003, 0, 0, 0), 0u);
}

TEST(CreateMipmapTexture, ZeroPixelsCountAsBlack) { EXPECT_EQ(averageOf(0, 0xFF808080, 0, 0), 0x3F202020u); }

TEST(CreateMipmapTexture, EveryLevelIsTheBoxOfTheOneAbove)
{
    std::mt19937 random(7);
    TexturePtr texture = makeTexture(64, 16);
    for (uint32_t i = 0; i < 64 * 16; ++i)
        texture->pixels[i] = static_cast<uint32_t>(random());
    CreateMipmapTexture(texture.get());
    ASSERT_EQ(texture->mipCount, 5u);
    for (uint32_t i = 1; i < 5; ++i) {
        const Texture &above = *texture->mip[i - 1];
        const Texture &level = *texture->mip[i];
        for (uint32_t y = 0; y < level.height; ++y) {
            for (uint32_t x = 0; x < level.width; ++x) {
                const uint32_t *p = above.pixels + 2 * y * above.width + 2 * x;
                ASSERT_EQ(level.pixels[y * level.width + x], averageByChannel(p[0], p[1], p[above.width], p[above.width + 1]));
            }
        }
    }
}

TEST(CreateMipmapTexture, WholeChainIsNotRefreshed)
{
    TexturePtr texture = makeTexture(2, 2, {8, 8, 8, 8});
    CreateMipmapTexture(texture.get());
    const Texture *level = texture->mip[1];
    texture->pixels[0] = 0;
    CreateMipmapTexture(texture.get());
    EXPECT_EQ(texture->mipCount, 2u);
    EXPECT_EQ(texture->mip[1], level);
    EXPECT_EQ(level->pixels[0], 8u);

    DeleteMipmapTexture(texture.get());
    CreateMipmapTexture(texture.get());
    EXPECT_EQ(texture->mip[1]->pixels[0], 6u);
}

TEST(CreateMipmapTexture, ShortenedChainIsContinued)
{
    TexturePtr texture = makeTexture(4, 4);
    CreateMipmapTexture(texture.get());
    DeleteTexture(texture->mip[2]);
    texture->mipCount = 2;
    Texture *kept = texture->mip[1];
    kept->pixels[0] = kept->pixels[1] = kept->pixels[2] = kept->pixels[3] = 12;
    CreateMipmapTexture(texture.get());
    EXPECT_EQ(texture->mipCount, 3u);
    EXPECT_EQ(texture->mip[1], kept);
    EXPECT_EQ(texture->mip[2]->pixels[0], 12u);
}

TEST(DeleteMipmapTexture, WithoutAChainCountStaysZero)
{
    TexturePtr texture = makeTexture(4, 4);
    DeleteMipmapTexture(texture.get());
    EXPECT_EQ(texture->mipCount, 0u);

    TexturePtr single = makeTexture(1, 1);
    CreateMipmapTexture(single.get());
    DeleteMipmapTexture(single.get());
    EXPECT_EQ(single->mipCount, 0u);
}

TEST(DeleteMipmapTexture, EntriesStayButAreNotReleasedAgain)
{
    TexturePtr texture = makeTexture(4, 4);
    CreateMipmapTexture(texture.get());
    Texture *level = texture->mip[1]; // held, so that its releases can be counted
    const Texture *released = texture->mip[2];
    for (int references = 0; references < 3; ++references)
        AddRefTexture(level);
    DeleteMipmapTexture(texture.get());
    EXPECT_EQ(level->refCount, 2);
    EXPECT_EQ(texture->mipCount, 0u);
    EXPECT_EQ(texture->mip[0], texture.get());
    EXPECT_EQ(texture->mip[1], level);
    EXPECT_EQ(texture->mip[2], released); // dangling
    texture.reset();
    EXPECT_EQ(level->refCount, 2);
    DeleteTexture(level);
    DeleteTexture(level);
}

TEST(DeleteMipmapTexture, LevelHeldTwiceSurvives)
{
    TexturePtr texture = makeTexture(2, 2, {4, 4, 4, 4});
    CreateMipmapTexture(texture.get());
    Texture *level = texture->mip[1];
    AddRefTexture(level);
    AddRefTexture(level);
    DeleteMipmapTexture(texture.get());
    EXPECT_EQ(level->refCount, 1);
    EXPECT_EQ(level->pixels[0], 4u);
    DeleteTexture(level);
}

} // namespace
