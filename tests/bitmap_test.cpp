// Bitmap files: where the picture is placed, and files that are cut short or lie about their size.
#include "support/texture_ptr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<uint8_t>;
using Pixels = std::vector<uint32_t>;

void putWord(Bytes &bytes, size_t at, uint32_t value)
{
    for (size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<uint8_t>(value >> 8 * i);
}

constexpr uint32_t headerSize = 54;

// A header as painting programs write it.
Bytes header(uint32_t width, uint32_t height, uint32_t dataOffset = headerSize)
{
    Bytes bytes(headerSize);
    bytes[0] = 'B';
    bytes[1] = 'M';
    putWord(bytes, 10, dataOffset);
    putWord(bytes, 14, 40);
    putWord(bytes, 18, width);
    putWord(bytes, 22, height);
    bytes[26] = 1;
    bytes[28] = 24;
    return bytes;
}

size_t pitchOf(uint32_t width) { return (width * 3 + 3) / 4 * 4; }

// The colour of column x in row y of the picture, rows from the top.
uint32_t colorAt(uint32_t x, uint32_t y) { return 0xFF000000 | (x + 1) << 16 | (y + 1) << 8 | (x * 16 + y + 0x80); }

// A file whose pixels are colorAt and whose padding is 0xEE.
Bytes bitmap(uint32_t width, uint32_t height, uint32_t dataOffset = headerSize)
{
    Bytes bytes = header(width, height, dataOffset);
    bytes.resize(dataOffset + pitchOf(width) * height, 0xEE);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            uint8_t *to = &bytes[dataOffset + (height - 1 - y) * pitchOf(width) + x * 3];
            const uint32_t color = colorAt(x, y);
            to[0] = static_cast<uint8_t>(color);
            to[1] = static_cast<uint8_t>(color >> 8);
            to[2] = static_cast<uint8_t>(color >> 16);
        }
    }
    return bytes;
}

struct Placed {
    TexturePtr texture;
    long x = -77, y = -77, width = -77, height = -77;

    bool untouched() const { return x == -77 && y == -77 && width == -77 && height == -77; }
};

class BitmapFile : public testing::Test {
protected:
    BitmapFile() : path(fs::temp_directory_path() / ("ninefold_" + std::to_string(std::random_device()()) + ".bmp")) {}
    ~BitmapFile() override
    {
        std::error_code ignored;
        fs::remove(path, ignored);
    }

    void write(const Bytes &bytes) const
    {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char *>(bytes.data()), static_cast<long>(bytes.size()));
        ASSERT_EQ(fs::file_size(path), bytes.size());
    }

    TexturePtr load() const { return TexturePtr(LoadTexture(path.string().data())); }
    TexturePtr load(const Bytes &bytes) const
    {
        write(bytes);
        return load();
    }

    Placed loadAdjusted(unsigned long alignX, unsigned long alignY) const
    {
        Placed placed;
        placed.texture.reset(
            LoadTextureAdjust(path.string().data(), alignX, alignY, &placed.x, &placed.y, &placed.width, &placed.height));
        return placed;
    }

    const fs::path path;
};

// The whole texture that a picture of colorAt at (left, top) must give.
Pixels expectedPixels(uint32_t texWidth, uint32_t texHeight, uint32_t left, uint32_t top, uint32_t width, uint32_t height)
{
    Pixels pixels(size_t{texWidth} * texHeight);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x)
            pixels[(top + y) * texWidth + left + x] = colorAt(x, y);
    }
    return pixels;
}

TEST_F(BitmapFile, RowsArePaddedToFourBytes)
{
    const Bytes bytes = bitmap(3, 2);
    ASSERT_EQ(bytes.size(), headerSize + 2 * 12u); // 9 up to 12
    TexturePtr texture = load(bytes);
    EXPECT_EQ(texture->width, 4u);
    EXPECT_EQ(texture->height, 2u);
    EXPECT_EQ(texture->origWidth, 3u);
    EXPECT_EQ(texture->origHeight, 2u);
    EXPECT_EQ(pixelsOf(texture), expectedPixels(4, 2, 0, 0, 3, 2));
}

TEST_F(BitmapFile, RowsOfFourPixelsNeedNoPadding)
{
    const Bytes bytes = bitmap(4, 4);
    ASSERT_EQ(bytes.size(), headerSize + 4 * 12u);
    EXPECT_EQ(pixelsOf(load(bytes)), expectedPixels(4, 4, 0, 0, 4, 4));
}

TEST_F(BitmapFile, AllSizesUpToAFewPixels)
{
    for (uint32_t width = 1; width <= 9; ++width) {
        for (uint32_t height = 1; height <= 5; ++height) {
            TexturePtr texture = load(bitmap(width, height));
            EXPECT_EQ(pixelsOf(texture), expectedPixels(texture->width, texture->height, 0, 0, width, height))
                << width << " " << height;
        }
    }
}

TEST_F(BitmapFile, FileIsReadFromTheBottomUp)
{
    Bytes bytes = header(2, 3);
    for (uint8_t row = 1; row <= 3; ++row) // of the file
        bytes.insert(bytes.end(), {row, 0, 0, row, 0, 0, 0xEE, 0xEE});
    TexturePtr texture = load(bytes);
    const Pixels pixels = pixelsOf(texture);
    EXPECT_EQ(pixels[0], 0xFF000003u); // the top row is the last of the file
    EXPECT_EQ(pixels[2 * 2], 0xFF000001u); // the bottom row the first
}

TEST_F(BitmapFile, BytesAreBlueGreenRed)
{
    Bytes bytes = header(1, 1);
    bytes.insert(bytes.end(), {0x12, 0x34, 0x56, 0});
    EXPECT_EQ(pixelsOf(load(bytes)), Pixels{0xFF563412});
}

TEST_F(BitmapFile, BlackIsDrawn)
{
    Bytes bytes = header(3, 1);
    bytes.resize(headerSize + 12);
    EXPECT_EQ(pixelsOf(load(bytes)), (Pixels{0xFF000000, 0xFF000000, 0xFF000000, 0}));
}

TEST_F(BitmapFile, PixelDataMayStartAnywhere)
{
    EXPECT_EQ(pixelsOf(load(bitmap(5, 2, 1000))), expectedPixels(8, 2, 0, 0, 5, 2));
    EXPECT_EQ(pixelsOf(load(bitmap(2, 2, 57))), expectedPixels(2, 2, 0, 0, 2, 2));
}

TEST_F(BitmapFile, SignatureDepthAndCompressionAreNotLookedAt)
{
    Bytes bytes = bitmap(3, 3);
    bytes[0] = 'X';
    bytes[1] = 0;
    bytes[28] = 8;
    bytes[30] = 1;
    EXPECT_EQ(pixelsOf(load(bytes)), expectedPixels(4, 4, 0, 0, 3, 3));
}

TEST_F(BitmapFile, CentredPictures)
{
    write(bitmap(3, 3));
    Placed placed = loadAdjusted(NINEFOLD_ALIGN_CENTRE, NINEFOLD_ALIGN_CENTRE);
    EXPECT_EQ(placed.x, 1); // 2 - 1
    EXPECT_EQ(placed.y, 1);
    EXPECT_EQ(placed.width, 3);
    EXPECT_EQ(placed.height, 3);
    EXPECT_EQ(pixelsOf(placed.texture), expectedPixels(4, 4, 1, 1, 3, 3));

    write(bitmap(6, 5));
    placed = loadAdjusted(NINEFOLD_ALIGN_CENTRE, NINEFOLD_ALIGN_CENTRE);
    EXPECT_EQ(placed.x, 1); // 4 - 3
    EXPECT_EQ(placed.y, 2); // 4 - 2
    EXPECT_EQ(pixelsOf(placed.texture), expectedPixels(8, 8, 1, 2, 6, 5));

    write(bitmap(1, 4));
    placed = loadAdjusted(NINEFOLD_ALIGN_CENTRE, NINEFOLD_ALIGN_CENTRE);
    EXPECT_EQ(placed.x, 0);
    EXPECT_EQ(placed.y, 0);
    EXPECT_EQ(pixelsOf(placed.texture), expectedPixels(1, 4, 0, 0, 1, 4));
}

TEST_F(BitmapFile, PicturesAtTheRightAndBottomEdge)
{
    write(bitmap(5, 3));
    Placed placed = loadAdjusted(NINEFOLD_ALIGN_END, NINEFOLD_ALIGN_START);
    EXPECT_EQ(placed.texture->width, 8u);
    EXPECT_EQ(placed.x, 3);
    EXPECT_EQ(placed.y, 0);
    EXPECT_EQ(pixelsOf(placed.texture), expectedPixels(8, 4, 3, 0, 5, 3));

    placed = loadAdjusted(NINEFOLD_ALIGN_START, NINEFOLD_ALIGN_END);
    EXPECT_EQ(placed.x, 0);
    EXPECT_EQ(placed.y, 1);
    EXPECT_EQ(pixelsOf(placed.texture), expectedPixels(8, 4, 0, 1, 5, 3));

    placed = loadAdjusted(NINEFOLD_ALIGN_END, NINEFOLD_ALIGN_CENTRE);
    EXPECT_EQ(placed.x, 3);
    EXPECT_EQ(placed.y, 1);
}

TEST_F(BitmapFile, OtherAlignmentsAreTheLeftAndTop)
{
    write(bitmap(5, 3));
    for (unsigned long align : {0ul, 3ul, 7ul, 0xFFFFFFFFul}) {
        Placed placed = loadAdjusted(align, align);
        EXPECT_EQ(placed.x, 0) << align;
        EXPECT_EQ(placed.y, 0) << align;
        EXPECT_EQ(pixelsOf(placed.texture), expectedPixels(8, 4, 0, 0, 5, 3));
    }
    if constexpr (sizeof(long) > 4) {
        EXPECT_EQ(loadAdjusted((1ul << 16 << 16) + 2, 0).x, 3); // the low word counts
    }
}

TEST_F(BitmapFile, OutParametersMayBeNull)
{
    write(bitmap(5, 3));
    TexturePtr texture(
        LoadTextureAdjust(path.string().data(), NINEFOLD_ALIGN_END, NINEFOLD_ALIGN_END, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(pixelsOf(texture), expectedPixels(8, 4, 3, 1, 5, 3));

    long y = 0, width = 0;
    texture.reset(LoadTextureAdjust(path.string().data(), NINEFOLD_ALIGN_END, NINEFOLD_ALIGN_END, nullptr, &y, &width, nullptr));
    EXPECT_EQ(y, 1);
    EXPECT_EQ(width, 5);
}

TEST_F(BitmapFile, MissingFileGivesNull)
{
    EXPECT_EQ(load(), nullptr);
    const Placed placed = loadAdjusted(NINEFOLD_ALIGN_CENTRE, NINEFOLD_ALIGN_CENTRE);
    EXPECT_EQ(placed.texture, nullptr);
    EXPECT_TRUE(placed.untouched());
}

TEST_F(BitmapFile, DirectoryGivesNull) { EXPECT_EQ(LoadTexture(fs::temp_directory_path().string().data()), nullptr); }

TEST_F(BitmapFile, EmptyFileIsOneClearPixel)
{
    write({});
    const Placed placed = loadAdjusted(NINEFOLD_ALIGN_START, NINEFOLD_ALIGN_START);
    ASSERT_NE(placed.texture, nullptr);
    EXPECT_EQ(placed.texture->origWidth, 0u);
    EXPECT_EQ(placed.width, 0);
    EXPECT_EQ(placed.height, 0);
    EXPECT_EQ(pixelsOf(placed.texture), Pixels{0});
}

TEST_F(BitmapFile, FileThatEndsBeforeItsSizeReadsAsZeros)
{
    char longer[] = "/sys/devices/system/cpu/possible"; // a page by its size, a few bytes to be read
    std::error_code error;
    if (fs::file_size(longer, error) < 64 || error)
        GTEST_SKIP() << "there is no such file here";
    Texture *const texture = LoadTexture(longer);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->origWidth, 0u);
    EXPECT_EQ(texture->origHeight, 0u);
    EXPECT_EQ(texture->pixels[0], 0u);
    DeleteTexture(texture);
}

TEST_F(BitmapFile, SizeZeroCopiesNothing)
{
    Bytes bytes = header(0, 3);
    bytes.resize(200, 0xEE);
    TexturePtr texture = load(bytes);
    EXPECT_EQ(texture->width, 1u);
    EXPECT_EQ(texture->height, 4u);
    EXPECT_EQ(pixelsOf(texture), Pixels(4, 0));

    bytes = header(3, 0);
    bytes.resize(200, 0xEE);
    texture = load(bytes);
    EXPECT_EQ(texture->width, 4u);
    EXPECT_EQ(texture->height, 1u);
    EXPECT_EQ(pixelsOf(texture), Pixels(4, 0));
}

TEST_F(BitmapFile, TruncatedHeadersReadAsZero)
{
    const Bytes whole = bitmap(300, 5);
    for (size_t size = 0; size < headerSize; ++size) {
        TexturePtr texture = load({whole.begin(), whole.begin() + static_cast<long>(size)});
        ASSERT_NE(texture, nullptr) << size;
        EXPECT_EQ(texture->origWidth, size < 19 ? 0u : size < 20 ? 300u % 256 : 300u) << size;
        EXPECT_EQ(texture->origHeight, size < 23 ? 0u : 5u) << size;
    }
}

TEST_F(BitmapFile, MissingPixelBytesReadAsZero)
{
    const Bytes whole = bitmap(3, 3);
    const Pixels full = expectedPixels(4, 4, 0, 0, 3, 3);
    for (size_t size = headerSize; size <= whole.size(); ++size) {
        TexturePtr texture = load({whole.begin(), whole.begin() + static_cast<long>(size)});
        Pixels expected = full;
        for (uint32_t y = 0; y < 3; ++y) {
            for (uint32_t x = 0; x < 3; ++x) {
                for (uint32_t byte = 0; byte < 3; ++byte) {
                    if (headerSize + (2 - y) * 12 + x * 3 + byte >= size)
                        expected[y * 4 + x] &= ~(0xFFu << 8 * byte);
                }
            }
        }
        EXPECT_EQ(pixelsOf(texture), expected) << size;
    }
}

TEST_F(BitmapFile, DataOffsetBeyondTheFile)
{
    for (uint32_t offset : {54u + 36u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u, 0xFFFFFFFFu}) {
        Bytes bytes = bitmap(3, 3);
        putWord(bytes, 10, offset);
        Pixels expected = expectedPixels(4, 4, 0, 0, 3, 3);
        for (uint32_t &pixel : expected)
            pixel &= 0xFF000000;
        EXPECT_EQ(pixelsOf(load(bytes)), expected) << offset;
    }
}

TEST_F(BitmapFile, DataOffsetInsideTheHeader)
{
    Bytes bytes = header(1, 1, 0);
    EXPECT_EQ(pixelsOf(load(bytes)), Pixels{0xFF004D42}); // B, M and a zero
}

TEST_F(BitmapFile, ForeignFileIsReadAsItIs)
{
    Bytes bytes(64, 'a');
    putWord(bytes, 18, 2);
    putWord(bytes, 22, 1);
    putWord(bytes, 10, 60);
    EXPECT_EQ(pixelsOf(load(bytes)), (Pixels{0xFF616161, 0xFF000061}));

    const std::string text = "Just some words, more than a header is long, so that all of its fields are letters.";
    write({text.begin(), text.end()});
    EXPECT_EQ(load(), nullptr); // letters make sizes that cannot be
}

TEST_F(BitmapFile, SizesThatCannotBeGiveNull)
{
    const std::pair<uint32_t, uint32_t> sizes[] = {
        {32768, 32768},  {32769, 16384},  {65536, 65536},           {0x7FFFFFFF, 1},         {1, 0x7FFFFFFF}, {0x40000000, 1},
        {1, 0x20000001}, {0x55555556, 1}, {0x80000000, 1},          {1, 0x80000000},         {0xFFFFFFFF, 4}, {4, 0xFFFFFFFC},
        {0, 0xFFFFFFFF}, {0xFFFFFFFF, 0}, {0x80000000, 0x80000000}, {0xFFFFFFFF, 0xFFFFFFFF}};
    for (const auto &[width, height] : sizes) {
        Bytes bytes = header(width, height);
        bytes.resize(400, 0xEE);
        write(bytes);
        const Placed placed = loadAdjusted(NINEFOLD_ALIGN_CENTRE, NINEFOLD_ALIGN_END);
        EXPECT_EQ(placed.texture, nullptr) << width << " by " << height;
        EXPECT_TRUE(placed.untouched());
        EXPECT_EQ(load(), nullptr);
    }
}

TEST_F(BitmapFile, LargePictureOfAShortFile)
{
    Bytes bytes = header(4096, 3);
    bytes.insert(bytes.end(), {1, 2, 3});
    TexturePtr texture = load(bytes);
    Pixels expected(4096 * 4, 0xFF000000);
    std::fill(expected.begin() + 4096 * 3, expected.end(), 0);
    expected[4096 * 2] = 0xFF030201; // first pixel of the bottom row
    EXPECT_EQ(pixelsOf(texture), expected);
}

TEST_F(BitmapFile, SpareAreaIsTransparent)
{
    TexturePtr texture = load(bitmap(5, 5));
    for (uint32_t y = 0; y < 8; ++y) {
        for (uint32_t x = 0; x < 8; ++x)
            EXPECT_EQ(texture->pixels[y * 8 + x] == 0, x >= 5 || y >= 5);
    }
}

// The number of the next file to be opened: the lowest that is free.
int nextHandle(const fs::path &path)
{
    FILE *file = std::fopen(path.string().c_str(), "rb");
#if defined(_WIN32)
    const int handle = _fileno(file);
#else
    const int handle = fileno(file);
#endif
    std::fclose(file);
    return handle;
}

TEST_F(BitmapFile, IsClosedAfterwards)
{
    write(bitmap(5, 5));
    const int before = nextHandle(path);
    EXPECT_NE(load(), nullptr);
    EXPECT_EQ(nextHandle(path), before);

    write(header(0xFFFFFFFF, 1));
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(nextHandle(path), before);
    EXPECT_EQ(LoadTexture(fs::temp_directory_path().string().data()), nullptr);
    EXPECT_EQ(nextHandle(path), before);
}

TEST_F(BitmapFile, IsSharedWithWriters)
{
    write(bitmap(5, 5));
    const std::ofstream writer(path, std::ios::binary | std::ios::in);
    ASSERT_TRUE(writer.is_open());
    EXPECT_EQ(pixelsOf(load()), expectedPixels(8, 8, 0, 0, 5, 5));
}

} // namespace
