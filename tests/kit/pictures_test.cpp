// Pictures: every format against what its own encoder was given, files that are cut, lie or are too large, the texture around a
// picture, and saving.
#include "pictures_files.h"

#include <ninefold/kit/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using files::Bytes;
using files::Picture;

struct Release {
    void operator()(Texture *texture) const { DeleteTexture(texture); }
};
using TexturePtr = std::unique_ptr<Texture, Release>;

TexturePtr load(const Bytes &bytes, uint32_t extras = 0)
{
    return TexturePtr(nfkLoadPictureMemory(bytes.data(), bytes.size(), "test", extras));
}

uint32_t texel(const TexturePtr &texture, uint32_t x, uint32_t y)
{
    return texture->pixels[(size_t{y} << texture->log2Width) + x];
}

uint32_t keyed(uint32_t pixel) { return pixel >> 24 ? pixel : 0; }

// The picture in the texture's corner and zeros around it.
void expectPicture(const TexturePtr &texture, const Picture &picture)
{
    ASSERT_TRUE(texture) << nfkError();
    ASSERT_EQ(texture->origWidth, picture.width);
    ASSERT_EQ(texture->origHeight, picture.height);
    for (uint32_t y = 0; y < texture->height; ++y)
        for (uint32_t x = 0; x < texture->width; ++x) {
            const bool inside = x < picture.width && y < picture.height;
            ASSERT_EQ(texel(texture, x, y), inside ? keyed(picture.at(x, y)) : 0) << x << ", " << y;
        }
}

void expectNear(const TexturePtr &texture, const Picture &picture, int most)
{
    ASSERT_TRUE(texture) << nfkError();
    ASSERT_EQ(texture->origWidth, picture.width);
    ASSERT_EQ(texture->origHeight, picture.height);
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x)
            for (int shift = 0; shift < 32; shift += 8) {
                const int got = texel(texture, x, y) >> shift & 255, wanted = picture.at(x, y) >> shift & 255;
                ASSERT_LE(std::abs(got - wanted), most) << x << ", " << y << ", bit " << shift;
            }
}

void expectRefused(const Bytes &bytes, const std::string &reason)
{
    const TexturePtr texture = load(bytes);
    EXPECT_FALSE(texture) << reason;
    const std::string text = nfkError();
    EXPECT_NE(text.find("test"), std::string::npos) << text;
    EXPECT_NE(text.find(reason), std::string::npos) << text << " has not: " << reason;
}

// Loads every beginning of a file that loads whole.
void expectNoBeginningLoads(const Bytes &file)
{
    ASSERT_TRUE(load(file)) << nfkError();
    for (size_t size = 0; size < file.size(); ++size) {
        const Bytes cut(file.begin(), file.begin() + static_cast<ptrdiff_t>(size)); // of its own, so that sanitizers see its end
        ASSERT_FALSE(load(cut)) << size << " of " << file.size() << " bytes";
        ASSERT_EQ(std::string(nfkError()).rfind("nfkLoadPictureMemory: test", 0), 0u) << nfkError();
    }
}

Picture opaque(uint32_t width, uint32_t height)
{
    Picture picture = files::colourful(width, height);
    for (uint32_t &pixel : picture.pixels)
        pixel |= 0xFF000000;
    return picture;
}

// No steps for a lossy coder to blur.
Picture smooth(uint32_t width, uint32_t height)
{
    Picture picture{width, height};
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            picture.at(x, y) = 0xFF000000 | (80 + x * 2) << 16 | (60 + y * 2) << 8 | (200 - x);
    return picture;
}

Bytes rgb(const Picture &picture)
{
    Bytes bytes;
    for (const uint32_t pixel : picture.pixels)
        for (int shift : {16, 8, 0})
            bytes.push_back(static_cast<uint8_t>(pixel >> shift));
    return bytes;
}

constexpr uint32_t sizes[][2] = {{1, 1}, {3, 5}, {16, 16}, {17, 9}, {33, 64}};

TEST(KitPng, ColourWithAlpha)
{
    for (const auto &[width, height] : sizes) {
        const Picture picture = files::colourful(width, height);
        expectPicture(load(files::png(picture)), picture);
        expectPicture(load(files::png(picture, PNG_INTERLACE_ADAM7)), picture);
    }
}

TEST(KitPng, OpaqueBlackIsDrawn)
{
    Picture picture{2, 1};
    picture.pixels = {0xFF000000, 0x00FFFFFF};
    const TexturePtr texture = load(files::png(picture));
    ASSERT_TRUE(texture);
    EXPECT_EQ(texel(texture, 0, 0), 0xFF000000);
    EXPECT_EQ(texel(texture, 1, 0), 0u);
}

TEST(KitPng, Grey)
{
    for (const int depth : {1, 2, 4, 8, 16}) {
        constexpr uint32_t width = 21, height = 5;
        const uint32_t most = (1u << depth) - 1;
        const auto sample = [&](uint32_t x, uint32_t y) { return (x * 3001 + y * 517) & most; };
        const Bytes file = files::png(width, height, {PNG_COLOR_TYPE_GRAY, depth}, [&](uint32_t y) {
            Bytes row((width * static_cast<uint32_t>(depth) + 7) / 8);
            for (uint32_t x = 0; x < width; ++x) {
                if (depth == 16) {
                    row[2 * x] = static_cast<uint8_t>(sample(x, y) >> 8);
                    row[2 * x + 1] = static_cast<uint8_t>(sample(x, y));
                } else {
                    const uint32_t bit = x * static_cast<uint32_t>(depth);
                    row[bit / 8] =
                        static_cast<uint8_t>(row[bit / 8] | sample(x, y) << (8 - static_cast<uint32_t>(depth) - bit % 8));
                }
            }
            return row;
        });
        Picture wanted{width, height};
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                wanted.at(x, y) = 0xFF000000 | (sample(x, y) * 255 * 2 + most) / (most * 2) * 0x10101;
        SCOPED_TRACE(depth);
        expectPicture(load(file), wanted);
    }
}

TEST(KitPng, GreyWithAlphaAndColourKeys)
{
    const Bytes greyAlpha = files::png(2, 1, {PNG_COLOR_TYPE_GRAY_ALPHA, 8}, [](uint32_t) { return Bytes{10, 128, 20, 0}; });
    Picture wanted{2, 1};
    wanted.pixels = {0x800A0A0A, 0};
    expectPicture(load(greyAlpha), wanted);

    const Bytes keyedColour = files::png(
        2, 1, {PNG_COLOR_TYPE_RGB, 8}, [](uint32_t) { return Bytes{1, 2, 3, 4, 5, 6}; },
        [](png_structp png, png_infop info) {
            png_color_16 key{};
            key.red = 4, key.green = 5, key.blue = 6;
            png_set_tRNS(png, info, nullptr, 0, &key);
        });
    wanted.pixels = {0xFF010203, 0};
    expectPicture(load(keyedColour), wanted);
}

TEST(KitPng, SixteenBitsRound)
{
    const Bytes file = files::png(2, 1, {PNG_COLOR_TYPE_RGB_ALPHA, 16}, [](uint32_t) {
        return Bytes{0xFF, 0xFF, 0x12, 0x34, 0x80, 0xFF, 0xFF, 0xFF, 0x00, 0x80, 0x00, 0x7F, 0x01, 0x81, 0x80, 0x80};
    });
    Picture wanted{2, 1};
    wanted.pixels = {0xFFFF1280, 0x80000001};
    expectNear(load(file), wanted, 1);
}

TEST(KitPng, PaletteWithAlpha)
{
    for (const int depth : {2, 4, 8}) {
        const Bytes file = files::png(
            4, 2, {PNG_COLOR_TYPE_PALETTE, depth},
            [&](uint32_t y) {
                Bytes row((4 * static_cast<size_t>(depth) + 7) / 8);
                for (uint32_t x = 0; x < 4; ++x) {
                    const uint32_t bit = x * static_cast<uint32_t>(depth), index = (x + y) % 4;
                    row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | index << (8 - static_cast<uint32_t>(depth) - bit % 8));
                }
                return row;
            },
            [](png_structp png, png_infop info) {
                const png_color palette[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {0, 0, 0}};
                const png_byte alpha[] = {255, 100, 0};
                png_set_PLTE(png, info, palette, 4);
                png_set_tRNS(png, info, alpha, 3, nullptr);
            });
        const uint32_t colours[] = {0xFFFF0000, 0x6400FF00, 0, 0xFF000000};
        Picture wanted{4, 2};
        for (uint32_t y = 0; y < 2; ++y)
            for (uint32_t x = 0; x < 4; ++x)
                wanted.at(x, y) = colours[(x + y) % 4];
        expectPicture(load(file), wanted);
    }
}

TEST(KitPng, GammaIsNotApplied)
{
    const Bytes file = files::png(
        1, 1, {PNG_COLOR_TYPE_RGB, 8},
        [](uint32_t) {
            return Bytes{100, 101, 102};
        },
        [](png_structp png, png_infop info) { png_set_gAMA(png, info, 1.0); });
    Picture wanted{1, 1};
    wanted.pixels = {0xFF646566};
    expectPicture(load(file), wanted);
}

TEST(KitPng, NoBeginningLoads) { expectNoBeginningLoads(files::png(files::colourful(9, 7), PNG_INTERLACE_ADAM7)); }

TEST(KitPng, DamageIsNoticed)
{
    const Bytes file = files::png(files::colourful(40, 40));
    for (size_t at = 8; at < file.size() - 12; at += 3) {
        Bytes damaged = file;
        damaged[at] = static_cast<uint8_t>(damaged[at] ^ 0x10);
        EXPECT_FALSE(load(damaged)) << at;
    }
}

TEST(KitJpeg, BaselineProgressiveAndGrey)
{
    for (const auto &[width, height] : sizes) {
        const Picture picture = smooth(width, height);
        for (const bool progressive : {false, true})
            expectNear(load(files::jpeg(width, height, rgb(picture), 3, JCS_RGB, progressive)), picture, 14);
        Picture grey = picture;
        Bytes samples;
        for (uint32_t &pixel : grey.pixels) {
            samples.push_back(static_cast<uint8_t>(pixel >> 8));
            pixel = 0xFF000000 | (pixel >> 8 & 255) * 0x10101;
        }
        expectNear(load(files::jpeg(width, height, samples, 1, JCS_GRAYSCALE, false)), grey, 8);
    }
}

TEST(KitJpeg, InksBecomeColours)
{
    // Cyan, magenta, yellow and black, none of it 0; programs that leave Adobe's marker turn the values over.
    const uint8_t inks[][4] = {{0, 0, 0, 0}, {255, 0, 0, 0}, {0, 255, 255, 0}, {0, 0, 0, 255}, {0, 100, 200, 50}};
    for (const bool adobe : {false, true}) {
        for (const auto &ink : inks) {
            Bytes samples;
            for (int i = 0; i < 64; ++i)
                for (const uint8_t value : ink)
                    samples.push_back(static_cast<uint8_t>(adobe ? 255 - value : value));
            Picture wanted{8, 8};
            uint32_t colour = 255;
            for (int i = 0; i < 3; ++i)
                colour = colour << 8 | (255u - ink[i]) * (255u - ink[3]) / 255;
            std::fill(wanted.pixels.begin(), wanted.pixels.end(), colour);
            for (const bool progressive : {false, true})
                expectNear(load(files::jpeg(8, 8, samples, 4, JCS_CMYK, progressive, adobe)), wanted, 4);
        }
    }
}

TEST(KitJpeg, NoBeginningLoads)
{
    const Picture picture = smooth(20, 12);
    for (const bool progressive : {false, true})
        expectNoBeginningLoads(files::jpeg(20, 12, rgb(picture), 3, JCS_RGB, progressive));
}

TEST(KitJpeg, MissingDataIsNotMadeUp)
{
    // Noise, so that there is much of it; the end of the file stays.
    Picture noise = opaque(64, 64);
    uint32_t state = 1;
    for (uint32_t &pixel : noise.pixels)
        pixel = state = state * 1664525 + 1013904223;
    for (const bool progressive : {false, true}) {
        Bytes file = files::jpeg(64, 64, rgb(noise), 3, JCS_RGB, progressive);
        ASSERT_TRUE(load(file)) << nfkError();
        const auto end = file.end() - 2;
        file.erase(end - 300, end);
        expectRefused(file, "premature end");
    }
}

TEST(KitWebp, WithoutLoss)
{
    for (const auto &[width, height] : sizes) {
        const Picture picture = files::colourful(width, height);
        expectPicture(load(files::webp(picture, true)), picture);
    }
}

TEST(KitWebp, WithLossAndAlpha)
{
    Picture picture = smooth(64, 48);
    expectNear(load(files::webp(picture, false)), picture, 16);
    for (uint32_t &pixel : picture.pixels)
        pixel = (pixel & 0xFFFFFF) | 0x80000000;
    expectNear(load(files::webp(picture, false)), picture, 16);
}

TEST(KitWebp, NoBeginningLoads)
{
    expectNoBeginningLoads(files::webp(files::colourful(12, 9), true));
    expectNoBeginningLoads(files::webp(smooth(24, 20), false));
    expectNoBeginningLoads(files::webp(files::colourful(24, 20), false));
}

TEST(KitBmp, TrueColour)
{
    for (const auto &[width, height] : sizes) {
        for (const bool topDown : {false, true}) {
            const Picture picture = files::colourful(width, height);
            expectPicture(load(files::bmp(opaque(width, height), {24, topDown})), opaque(width, height));
            expectPicture(load(files::bmp(picture, {32, topDown})), picture);
            for (const uint32_t header : {56u, 108u, 124u})
                expectPicture(load(files::bmp(picture, {32, topDown, header, true})), picture);
        }
    }
}

TEST(KitBmp, FourthBytesOfZeroAreOpaque)
{
    Picture picture = opaque(5, 3), none = picture;
    for (uint32_t &pixel : none.pixels)
        pixel &= 0xFFFFFF;
    expectPicture(load(files::bmp(none, {32})), picture);
    // Masks say that they are alpha.
    const TexturePtr clear = load(files::bmp(none, {32, false, 108, true}));
    ASSERT_TRUE(clear);
    EXPECT_TRUE(std::all_of(clear->pixels, clear->pixels + 8 * 4, [](uint32_t pixel) { return pixel == 0; }));
}

TEST(KitBmp, Palette)
{
    const std::vector<uint32_t> palette = {0xFF000000, 0xFF112233, 0xFFFFFFFF};
    Picture indices{7, 4}, wanted{7, 4};
    for (size_t i = 0; i < indices.pixels.size(); ++i) {
        indices.pixels[i] = i % 3;
        wanted.pixels[i] = palette[i % 3];
    }
    expectPicture(load(files::bmp(indices, {8}, palette)), wanted);
    indices.pixels[9] = 3;
    expectRefused(files::bmp(indices, {8}, palette), "colour 3 of a palette of 3");
}

TEST(KitBmp, NoBeginningLoads)
{
    // The last row's padding counts too.
    expectNoBeginningLoads(files::bmp(opaque(5, 3), {24}));
    expectNoBeginningLoads(files::bmp(files::colourful(5, 3), {32, true, 108, true}));
    expectNoBeginningLoads(files::bmp({2, 2}, {8}, {1, 2}));
}

TEST(KitBmp, OtherKindsAreNamed)
{
    const auto changed = [](size_t at, uint8_t value) {
        Bytes file = files::bmp(opaque(4, 4), {24});
        file[at] = value;
        return file;
    };
    expectRefused(changed(28, 4), "4 bits a pixel");
    expectRefused(changed(28, 16), "16 bits a pixel");
    expectRefused(changed(30, 1), "compressed (1)");
    expectRefused(changed(14, 12), "header has 12 bytes");
    expectRefused(changed(21, 0x80), "width is negative");
    expectRefused(changed(18, 0), "0 by 4");
    expectRefused(changed(13, 0x80), "too few");
}

TEST(KitPictures, HugeSizesAreRefused)
{
    // A header that is right in itself, with next to nothing behind it.
    Bytes png = files::png(Picture{1, 1});
    const auto size = [&](uint32_t width, uint32_t height) {
        png_byte header[17] = {'I', 'H', 'D', 'R'};
        png_save_uint_32(header + 4, width);
        png_save_uint_32(header + 8, height);
        std::memcpy(header + 12, &png[24], 5);
        uint32_t crc = ~0u;
        for (const uint8_t byte : header) {
            crc ^= byte;
            for (int bit = 0; bit < 8; ++bit)
                crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
        }
        std::memcpy(&png[12], header, 17);
        png_save_uint_32(&png[29], ~crc);
        return png;
    };
    expectRefused(size(NFK_PICTURE_MAX_SIDE + 1, 1), "limit");
    expectRefused(size(1, NFK_PICTURE_MAX_SIDE + 1), "limit");
    expectRefused(size(8193, 8192), "limit"); // 16384 by 8192
    // On 32 bits libpng refuses it first, whose rows do not fit a size_t there.
    expectRefused(size(0x7FFFFFFF, 0x7FFFFFFF), sizeof(size_t) == 8 ? "limit" : "IHDR");
    expectRefused(size(1, 2), ""); // the checksum is right: the size was what it looked at above

    Bytes jpeg = files::jpeg(8, 8, Bytes(8 * 8 * 3), 3, JCS_RGB, false);
    const uint8_t frame[] = {0xFF, 0xC0};
    const auto at = std::search(jpeg.begin(), jpeg.end(), std::begin(frame), std::end(frame)) - jpeg.begin();
    for (int i = 5; i < 9; ++i)
        jpeg[static_cast<size_t>(at + i)] = 0x7F;
    expectRefused(jpeg, "limit");

    const Bytes bmp = files::bmp(Picture{16384, 1}, {8}, {0});
    EXPECT_TRUE(load(bmp)) << nfkError();
    expectRefused(files::bmp(Picture{16385, 1}, {8}, {0}), "limit");
}

TEST(KitPictures, OtherFilesAreRefused)
{
    expectRefused({}, "empty");
    expectRefused({'G', 'I', 'F', '8', '9', 'a'}, "not a PNG");
    expectRefused({'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E'}, "not a PNG");
    EXPECT_FALSE(nfkLoadPictureMemory(nullptr, 4, "nothing", 0));
    EXPECT_NE(std::string(nfkError()).find("nothing: its bytes are null"), std::string::npos) << nfkError();
    EXPECT_FALSE(nfkLoadPicture(nullptr, 0));
    const Bytes file = files::png(Picture{1, 1});
    EXPECT_FALSE(load(file, 16));
    EXPECT_NE(std::string(nfkError()).find("0x10"), std::string::npos) << nfkError();
}

// What lies around a picture, by walking outwards from it with wrapping.
TEST(KitPictures, EdgeRepeatsOnEverySide)
{
    for (const auto &[width, height] : sizes) {
        const Picture picture = files::colourful(width, height);
        const TexturePtr texture = load(files::png(picture), NFK_PICTURE_EDGE);
        ASSERT_TRUE(texture) << nfkError();
        EXPECT_EQ(texture->origWidth, width);
        EXPECT_EQ(texture->origHeight, height);
        EXPECT_GE(texture->width, width + 2);
        EXPECT_GE(texture->height, height + 2);
        const int right = static_cast<int>(texture->width - width) / 2, left = static_cast<int>(texture->width - width) - right;
        const int below = static_cast<int>(texture->height - height) / 2,
                  above = static_cast<int>(texture->height - height) - below;
        const int w = static_cast<int>(width), h = static_cast<int>(height);
        for (int y = -above; y < h + below; ++y)
            for (int x = -left; x < w + right; ++x) {
                const uint32_t nearest = keyed(
                    picture.at(static_cast<uint32_t>(std::clamp(x, 0, w - 1)), static_cast<uint32_t>(std::clamp(y, 0, h - 1))));
                ASSERT_EQ(texel(texture, static_cast<uint32_t>(x) & (texture->width - 1),
                                static_cast<uint32_t>(y) & (texture->height - 1)),
                          nearest)
                    << x << ", " << y;
            }
    }
}

// The reason for the edge: the last column of a stretched picture of one colour.
TEST(KitPictures, EdgeKeepsDarkLinesOut)
{
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
    Picture white{24, 24};
    std::fill(white.pixels.begin(), white.pixels.end(), 0xFFFFFFFF);
    const TexturePtr screen(CreateTexture(128, 128));
    SetFrameBuffer(screen.get());
    rs.clipRight = rs.clipBottom = 128;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetRectOptMode(NINEFOLD_RECT_STRETCH), SetFilterMode(NINEFOLD_FILTER_BILINEAR);
    SetMultiMode(NINEFOLD_MULTI_NONE), SetBlendMode(NINEFOLD_BLEND_COPY);
    rs.uv0[1] = {24 << 16, 24 << 16};
    rs.vertex[1] = {100, 100, 0};
    const auto darkest = [&](uint32_t extras) {
        const TexturePtr picture = load(files::png(white), extras);
        rs.tex0 = picture.get();
        std::fill_n(screen->pixels, 128 * 128, 0xFFFFFFFF);
        SearchDrawFunc(CreateDrawCode())();
        uint32_t least = 255;
        for (int i = 0; i < 128 * 128; ++i)
            least = std::min(least, screen->pixels[i] >> 8 & 255);
        return least;
    };
    EXPECT_LT(darkest(0), 128u);
    EXPECT_GE(darkest(NFK_PICTURE_EDGE), 252u);
}

TEST(KitPictures, ExtrasAreTheLibrarys)
{
    const Picture picture = files::colourful(13, 6);
    const TexturePtr plain = load(files::png(picture));
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->mipCount, 0u);
    EXPECT_FALSE(plain->runlengthMap);
    EXPECT_FALSE(plain->zeroPixelMap);
    const TexturePtr full = load(files::png(picture), NFK_PICTURE_MIP_CHAIN | NFK_PICTURE_RUN_MAP | NFK_PICTURE_ZERO_MAP);
    ASSERT_TRUE(full) << nfkError();
    CreateMipmapTexture(plain.get());
    CreateRunlengthMap(plain.get());
    CreateZeroPixelMap(plain.get());
    ASSERT_EQ(full->mipCount, plain->mipCount);
    for (uint32_t level = 0; level < full->mipCount; ++level)
        EXPECT_TRUE(
            std::equal(full->mip[level]->pixels, full->mip[level]->pixels + (128 >> 2 * level), plain->mip[level]->pixels));
    EXPECT_TRUE(std::equal(full->runlengthMap, full->runlengthMap + 128, plain->runlengthMap));
    EXPECT_TRUE(std::equal(full->zeroPixelMap, full->zeroPixelMap + 8, plain->zeroPixelMap));
}

class Saved : public testing::Test {
protected:
    const std::string path = (fs::temp_directory_path() / ("nfk_pictures_" + std::to_string(::getpid()) + ".png")).string();
    ~Saved() override { fs::remove(path); }
};

TEST_F(Saved, RoundTrip)
{
    for (const auto &[width, height] : sizes) {
        const Picture picture = files::colourful(width, height);
        const TexturePtr texture = load(files::png(picture));
        ASSERT_TRUE(nfkSavePicture(texture.get(), path.c_str(), 1)) << nfkError();
        expectPicture(TexturePtr(nfkLoadPicture(path.c_str(), 0)), picture);
        ASSERT_TRUE(nfkSavePicture(texture.get(), path.c_str(), 0)) << nfkError();
        Picture flat = picture;
        for (uint32_t &pixel : flat.pixels)
            pixel = keyed(pixel) | 0xFF000000;
        expectPicture(TexturePtr(nfkLoadPicture(path.c_str(), 0)), flat);
    }
}

TEST_F(Saved, FailuresHaveATextAndLeaveNoFile)
{
    const TexturePtr texture(CreateTexture(256, 256));
    EXPECT_FALSE(nfkSavePicture(texture.get(), "/nowhere/at/all.png", 0));
    EXPECT_NE(std::string(nfkError()).find("/nowhere/at/all.png: No such file"), std::string::npos) << nfkError();
    EXPECT_FALSE(nfkSavePicture(nullptr, path.c_str(), 0));
    EXPECT_FALSE(fs::exists(path));
    if (fs::exists("/dev/full")) {
        EXPECT_FALSE(nfkSavePicture(texture.get(), "/dev/full", 0));
        EXPECT_NE(std::string(nfkError()).find("No space"), std::string::npos) << nfkError();
        EXPECT_TRUE(fs::exists("/dev/full"));
    }
}

TEST_F(Saved, LoadingNamesTheFile)
{
    EXPECT_FALSE(nfkLoadPicture(path.c_str(), 0));
    EXPECT_EQ(std::string(nfkError()), "nfkLoadPicture: " + path + ": No such file or directory");
    EXPECT_FALSE(nfkLoadPicture("/", 0));
#if defined(_WIN32)
    EXPECT_NE(std::string(nfkError()).find("/: Permission denied"), std::string::npos) << nfkError();
#else
    EXPECT_NE(std::string(nfkError()).find("directory"), std::string::npos) << nfkError();
#endif
    std::ofstream(path, std::ios::binary) << "\x89PNG\r\n\x1A\n";
    EXPECT_FALSE(nfkLoadPicture(path.c_str(), 0));
    EXPECT_NE(std::string(nfkError()).find("(PNG): it is cut short"), std::string::npos) << nfkError();
}

} // namespace
