// Copies to a window's memory, pixel by pixel against formulas of the test's own, and what stays as it was.
#include <ninefold/kit.h>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

struct Held {
    NfkScreen *screen;
    explicit Held(int32_t width, int32_t height) : screen(nfkCreateScreen(width, height))
    {
        std::mt19937 random(7);
        for (uint32_t i = 0; i < screen->texture->width * screen->texture->height; ++i)
            screen->texture->pixels[i] = random();
    }
    ~Held() { nfkReleaseScreen(screen); }
    uint32_t at(int32_t x, int32_t y) const { return screen->texture->pixels[size_t(y) * screen->texture->width + size_t(x)]; }
};

// The bytes of a pixel in each format, on a machine whose words start with their low byte.
std::vector<uint8_t> expected(uint32_t pixel, int32_t format)
{
    const auto r = uint8_t(pixel >> 16), g = uint8_t(pixel >> 8), b = uint8_t(pixel);
    const auto word16 = [](int value) { return std::vector<uint8_t>{uint8_t(value), uint8_t(value >> 8)}; };
    switch (format) {
    case NFK_FORMAT_ARGB8888: return {b, g, r, 255};
    case NFK_FORMAT_ABGR8888: return {r, g, b, 255};
    case NFK_FORMAT_RGBA8888: return {255, b, g, r};
    case NFK_FORMAT_BGRA8888: return {255, r, g, b};
    case NFK_FORMAT_RGB565: return word16(r / 8 * 2048 + g / 4 * 32 + b / 8);
    case NFK_FORMAT_RGB555: return word16(r / 8 * 1024 + g / 8 * 32 + b / 8);
    case NFK_FORMAT_RGB24: return {r, g, b};
    default: return {b, g, r};
    }
}

#define FORMAT(name, value, word, meaning) value,
constexpr int32_t formats[] = {NFK_FORMATS(FORMAT)};
#undef FORMAT

} // namespace

TEST(Show, EveryFormatAndSize)
{
    const Held held(70, 5);
    for (const int32_t format : formats) {
        const int32_t bytes = nfkFormatBytes(format);
        for (int32_t width = 1; width < 80; ++width)
            for (const int32_t height : {1, 4, 5, 7}) {
                const int32_t pitch = width * bytes + 12 * bytes;
                std::vector<uint8_t> memory(size_t(pitch) * size_t(height) + 4, 0xAB), wanted = memory;
                for (int32_t y = 0; y < std::min(height, 5); ++y)
                    for (int32_t x = 0; x < std::min(width, 70); ++x) {
                        const std::vector<uint8_t> pixel = expected(held.at(x, y), format);
                        ASSERT_EQ(pixel.size(), size_t(bytes));
                        std::copy(pixel.begin(), pixel.end(), wanted.begin() + y * pitch + x * bytes);
                    }
                ASSERT_EQ(nfkShow(held.screen, memory.data(), pitch, width, height, format), 1);
                ASSERT_EQ(memory, wanted) << format << ": " << width << " x " << height;
            }
    }
}

TEST(Show, UpwardsAndParts)
{
    const Held held(40, 8);
    std::vector<uint32_t> memory(10 * 6, 1);
    const NfkRect part = {3, 2, 10, 6};
    ASSERT_EQ(nfkCopyOut(held.screen->texture, &part, &memory[50], -40, NFK_FORMAT_ARGB8888), 1);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 10; ++x)
            ASSERT_EQ(memory[size_t(50 - y * 10 + x)], held.at(3 + x, 2 + y) | 0xFF000000);
}

TEST(Show, RefusesWhatDoesNotFit)
{
    const Held held(40, 8);
    std::vector<uint32_t> memory(64 * 8, 1);
    const std::vector<uint32_t> before = memory;
    const auto refused = [&](int result, const char *text) {
        EXPECT_EQ(result, 0);
        EXPECT_NE(std::string(nfkError()).find(text), std::string::npos) << nfkError();
    };
    refused(nfkShow(nullptr, memory.data(), 256, 40, 8, NFK_FORMAT_ARGB8888), "screen is null");
    refused(nfkShow(held.screen, nullptr, 256, 40, 8, NFK_FORMAT_ARGB8888), "memory is null");
    refused(nfkShow(held.screen, memory.data(), 159, 40, 8, NFK_FORMAT_ARGB8888), "40 pixels of 4 bytes take 160");
    refused(nfkShow(held.screen, memory.data(), -159, 40, 8, NFK_FORMAT_ARGB8888), "take 160");
    refused(nfkShow(held.screen, memory.data(), 162, 40, 8, NFK_FORMAT_ARGB8888), "not aligned");
    refused(nfkShow(held.screen, memory.data(), 256, 0, 8, NFK_FORMAT_ARGB8888), "0 x 8");
    refused(nfkShow(held.screen, memory.data(), 256, 40, 8, 8), "format 8");
    const NfkRect outside = {60, 0, 5, 5};
    refused(nfkCopyOut(held.screen->texture, &outside, memory.data(), 256, 0), "64 x 8");
    EXPECT_EQ(memory, before);
}
