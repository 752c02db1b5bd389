// Start, screens, and textures over the host's own pixels.
#include <ninefold/kit.h>

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Every pixel of the visible part can be drawn and tested in every mode that has to do with planes.
void drawEverywhere(const NfkScreen *screen)
{
    const NfkRect all = {-50, -50, screen->width + 100, screen->height + 100};
    NfkOptions options = nfkOptions();
    options.blend = NINEFOLD_BLEND_COPY;
    options.shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY;
    options.zRef = 7;
    ASSERT_EQ(nfkFill(&all, 0xFF123456, &options), 1) << nfkError();
    for (uint32_t y = 0; y < screen->texture->height; ++y)
        for (uint32_t x = 0; x < screen->texture->width; ++x) {
            const size_t i = size_t(y) * screen->texture->width + x;
            const bool visible = x < uint32_t(screen->width) && y < uint32_t(screen->height);
            ASSERT_EQ(screen->texture->pixels[i], visible ? 0xFF123456 : 0xFF000000) << x << ", " << y;
            ASSERT_EQ(screen->zBuffer[i], visible ? 7 : 255);
            ASSERT_EQ(screen->shaheiPlane[i / 16] >> (15 - i % 16) & 1, visible);
        }
}

} // namespace

TEST(Screen, HasPlanesOfThePaddedSizeAndIsSelected)
{
    for (const auto &[width, height] : {std::pair{1, 1}, {3, 40}, {16, 16}, {17, 9}, {640, 360}}) {
        NfkScreen *const screen = nfkCreateScreen(width, height);
        ASSERT_NE(screen, nullptr) << nfkError();
        EXPECT_EQ(screen->width, width);
        EXPECT_EQ(screen->height, height);
        EXPECT_EQ(rs.frameBuffer, screen->texture);
        EXPECT_EQ(rs.dstPixels, screen->texture->pixels);
        EXPECT_EQ(rs.shaheiPlane, screen->shaheiPlane);
        EXPECT_EQ(rs.zBuffer, screen->zBuffer);
        drawEverywhere(screen);
        nfkReleaseScreen(screen);
    }
}

TEST(Screen, ClearFreesThePlanes)
{
    NfkScreen *const screen = nfkCreateScreen(20, 10);
    drawEverywhere(screen);
    ASSERT_EQ(nfkClearScreen(screen, 0xFF000000), 1);
    drawEverywhere(screen);
    nfkReleaseScreen(screen);
}

TEST(Screen, ResizeKeepsItSelected)
{
    NfkScreen *const screen = nfkCreateScreen(20, 10);
    ASSERT_EQ(nfkResizeScreen(screen, 100, 30), 1) << nfkError();
    drawEverywhere(screen);
    const NfkScreen before = *screen;
    for (const auto &[width, height] : {std::pair{0, 5}, {5, -1}, {32769, 5}, {32768, 32768}}) {
        EXPECT_EQ(nfkResizeScreen(screen, width, height), 0);
        EXPECT_NE(std::string(nfkError()).find("nfkResizeScreen"), std::string::npos) << nfkError();
        EXPECT_EQ(std::memcmp(&before, screen, sizeof before), 0);
    }
    nfkReleaseScreen(screen);
}

TEST(Screen, SeveralTakeTurns)
{
    NfkScreen *const first = nfkCreateScreen(20, 10), *const second = nfkCreateScreen(33, 50);
    EXPECT_EQ(rs.frameBuffer, second->texture);
    ASSERT_EQ(nfkSelectScreen(first), 1);
    drawEverywhere(first);
    // One that is not selected leaves rs alone.
    ASSERT_EQ(nfkResizeScreen(second, 60, 60), 1);
    EXPECT_EQ(rs.frameBuffer, first->texture);
    nfkReleaseScreen(second);
    EXPECT_EQ(rs.frameBuffer, first->texture);
    nfkReleaseScreen(first);
    EXPECT_EQ(rs.frameBuffer, nullptr);
    // Nothing is drawn on no screen, neither by the kit nor by hand.
    const NfkRect rect = {0, 0, 5, 5};
    EXPECT_EQ(nfkFill(&rect, 0xFFFFFFFF, nullptr), 0);
    EXPECT_NE(std::string(nfkError()).find("nfkSelectScreen"), std::string::npos) << nfkError();
    rs.vertex[1] = {5, 5, 0};
    SearchDrawFunc(nfkCodeOfName("rect.flat.copy"))();
    nfkReleaseScreen(nullptr);
    EXPECT_EQ(nfkSelectScreen(nullptr), 0);
}

TEST(Screen, TooLargeForMemoryIsRefused)
{
    EXPECT_EQ(nfkCreateScreen(32768, 32768), nullptr);
    EXPECT_NE(std::string(nfkError()).find("32768 x 32768"), std::string::npos) << nfkError();
}

TEST(TextureOver, DrawsTheHostsPixels)
{
    std::vector<uint32_t> pixels(8 * 4);
    for (uint32_t i = 0; i < pixels.size(); ++i)
        pixels[i] = 0xFF000000 + i;
    Texture *const texture = nfkTextureOver(pixels.data(), 8, 4);
    ASSERT_NE(texture, nullptr) << nfkError();
    NfkScreen *const screen = nfkCreateScreen(8, 4);
    ASSERT_EQ(nfkSprite(texture, 0, 0, nullptr, nullptr), 1) << nfkError();
    for (uint32_t y = 0; y < 4; ++y)
        for (uint32_t x = 0; x < 8; ++x)
            EXPECT_EQ(screen->texture->pixels[y * screen->texture->width + x], pixels[y * 8 + x]);
    CreateMipmapTexture(texture);
    CreateRunlengthMap(texture);
    DeleteTexture(texture);
    EXPECT_EQ(pixels[5], 0xFF000005);
    nfkReleaseScreen(screen);
}

TEST(TextureOver, SaysWhyNot)
{
    std::vector<uint32_t> pixels(64);
    const auto refused = [](Texture *texture, const char *text) {
        EXPECT_EQ(texture, nullptr);
        EXPECT_NE(std::string(nfkError()).find(text), std::string::npos) << nfkError();
    };
    refused(nfkTextureOver(pixels.data(), 10, 4), "10 x 4: a texture's width and height are powers of two");
    refused(nfkTextureOver(pixels.data(), 0, 4), "powers of two");
    refused(nfkTextureOver(pixels.data(), 8, -8), "powers of two");
    refused(nfkTextureOver(pixels.data(), 1 << 20, 1 << 20), "less than 4 GiB");
    refused(nfkTextureOver(nullptr, 8, 8), "null");
    refused(nfkTextureOver(reinterpret_cast<uint32_t *>(reinterpret_cast<char *>(pixels.data()) + 1), 8, 4), "multiple of 4");
}
