// Picture files made by the formats' own encoders, from pictures of 0xAARRGGBB words.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <jpeglib.h>
#include <png.h>
#include <webp/encode.h>

namespace files {

using Bytes = std::vector<uint8_t>;

struct Picture {
    uint32_t width, height;
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{width} * height);

    uint32_t &at(uint32_t x, uint32_t y) { return pixels[size_t{y} * width + x]; }
    uint32_t at(uint32_t x, uint32_t y) const { return pixels[size_t{y} * width + x]; }
};

// Every pixel another one, runs of alpha from 0 to 255, and an opaque black.
inline Picture colourful(uint32_t width, uint32_t height)
{
    Picture picture{width, height};
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            picture.at(x, y) = (x * 37 + y * 11) << 24 | (x * 5 & 255) << 16 | (y * 9 & 255) << 8 | ((x + y) * 3 & 255);
    picture.at(width - 1, 0) = 0xFF000000;
    return picture;
}

// A PNG file of any kind: rows of samples as the file holds them, before filters and compression.
struct PngKind {
    int type, depth, interlace = PNG_INTERLACE_NONE;
};

template <class RowOf, class Prepare>
Bytes png(uint32_t width, uint32_t height, PngKind kind, RowOf rowOf, Prepare prepare)
{
    Bytes out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &out,
        [](png_structp writer, png_bytep from, png_size_t count) {
            auto *bytes = static_cast<Bytes *>(png_get_io_ptr(writer));
            bytes->insert(bytes->end(), from, from + count);
        },
        nullptr);
    png_set_IHDR(png, info, width, height, kind.depth, kind.type, kind.interlace, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    prepare(png, info);
    png_write_info(png, info);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass)
        for (uint32_t y = 0; y < height; ++y) {
            Bytes row = rowOf(y);
            png_write_row(png, row.data());
        }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

template <class RowOf>
Bytes png(uint32_t width, uint32_t height, PngKind kind, RowOf rowOf)
{
    return png(width, height, kind, rowOf, [](png_structp, png_infop) {});
}

inline Bytes png(const Picture &picture, int interlace = PNG_INTERLACE_NONE)
{
    return png(picture.width, picture.height, {PNG_COLOR_TYPE_RGB_ALPHA, 8, interlace}, [&](uint32_t y) {
        Bytes row;
        for (uint32_t x = 0; x < picture.width; ++x)
            for (int shift : {16, 8, 0, 24})
                row.push_back(static_cast<uint8_t>(picture.at(x, y) >> shift));
        return row;
    });
}

// `components` samples a pixel in the given space, row by row.
inline Bytes jpeg(uint32_t width, uint32_t height, const Bytes &samples, int components, J_COLOR_SPACE space, bool progressive,
                  bool adobe = true)
{
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &buffer, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = components;
    jpeg.in_color_space = space;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 95, TRUE);
    if (progressive)
        jpeg_simple_progression(&jpeg);
    jpeg.write_Adobe_marker = adobe && components == 4;
    jpeg_start_compress(&jpeg, TRUE);
    for (uint32_t y = 0; y < height; ++y) {
        auto *row = const_cast<uint8_t *>(samples.data() + size_t{y} * width * static_cast<uint32_t>(components));
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    Bytes out(buffer, buffer + size);
    std::free(buffer);
    return out;
}

inline Bytes webp(const Picture &picture, bool lossless)
{
    uint8_t *buffer = nullptr;
    const auto *from = reinterpret_cast<const uint8_t *>(picture.pixels.data());
    const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    const size_t size = lossless ? WebPEncodeLosslessBGRA(from, width, height, width * 4, &buffer)
                                 : WebPEncodeBGRA(from, width, height, width * 4, 90, &buffer);
    Bytes out(buffer, buffer + size);
    WebPFree(buffer);
    return out;
}

inline void put(Bytes &bytes, uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
}

struct BmpKind {
    int bits; // 8, 24, 32
    bool topDown = false;
    uint32_t headerSize = 40;
    bool masks = false; // of red, green, blue and alpha bytes in this order, instead of blue first
};

// Bits 8: the pixels are indices, the palette is `palette`.
inline Bytes bmp(const Picture &picture, BmpKind kind, const std::vector<uint32_t> &palette = {})
{
    Bytes out{'B', 'M'};
    const uint32_t pixelsAt = 14 + kind.headerSize + static_cast<uint32_t>(palette.size()) * 4;
    put(out, 0, 4), put(out, 0, 4), put(out, pixelsAt, 4);
    put(out, kind.headerSize, 4), put(out, picture.width, 4);
    put(out, kind.topDown ? 0 - picture.height : picture.height, 4);
    put(out, 1, 2), put(out, static_cast<uint32_t>(kind.bits), 2), put(out, kind.masks ? 3 : 0, 4);
    put(out, 0, 4), put(out, 0, 4), put(out, 0, 4), put(out, static_cast<uint32_t>(palette.size()), 4), put(out, 0, 4);
    if (kind.masks)
        put(out, 0xFF, 4), put(out, 0xFF00, 4), put(out, 0xFF0000, 4), put(out, 0xFF000000, 4);
    out.resize(14 + kind.headerSize);
    for (const uint32_t colour : palette)
        put(out, colour & 0xFFFFFF, 4);
    for (uint32_t line = 0; line < picture.height; ++line) {
        const uint32_t y = kind.topDown ? line : picture.height - 1 - line;
        for (uint32_t x = 0; x < picture.width; ++x) {
            uint32_t pixel = picture.at(x, y);
            if (kind.masks)
                pixel = (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16;
            put(out, pixel, kind.bits / 8);
        }
        while ((out.size() - pixelsAt) % 4 != 0)
            out.push_back(0xEE);
    }
    return out;
}

} // namespace files
