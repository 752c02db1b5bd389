// PNG files, by libpng. Its errors come back by longjmp: what they jump over has no destructors.
#include "pictures_canvas.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

namespace nfk::pictures {
namespace {

constexpr png_alloc_size_t maxChunk = 8 << 20; // bytes of an unpacked text or profile, which nothing here looks at
constexpr png_uint_32 maxChunks = 100;

void onWarning(png_structp, png_const_charp) {}

struct Decoder {
    Bytes rest;
    Canvas &canvas;
    png_structp png = nullptr;
    png_infop info = nullptr;
};

[[noreturn]] void onReadError(png_structp png, png_const_charp text)
{
    static_cast<Decoder *>(png_get_error_ptr(png))->canvas.refuse("%s", text);
    png_longjmp(png, 1);
}

void onRead(png_structp png, png_bytep to, png_size_t count)
{
    Bytes &rest = static_cast<Decoder *>(png_get_io_ptr(png))->rest;
    if (count > rest.size)
        png_error(png, "it is cut short");
    std::memcpy(to, rest.data, count);
    rest.data += count;
    rest.size -= count;
}

bool run(Decoder &decoder)
{
    png_structp png = decoder.png;
    png_set_read_fn(png, &decoder, onRead);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // the canvas has its own, and a text for them
    png_set_chunk_malloc_max(png, maxChunk);
    png_set_chunk_cache_max(png, maxChunks);
    png_read_info(png, decoder.info);
    const png_uint_32 width = png_get_image_width(png, decoder.info), height = png_get_image_height(png, decoder.info);
    if (!decoder.canvas.start(width, height))
        return false;
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 255, PNG_FILLER_AFTER);
    png_set_bgr(png);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, decoder.info);
    if (png_get_rowbytes(png, decoder.info) != size_t{width} * 4)
        return decoder.canvas.refuse("it cannot be turned into four channels of 8 bits");
    for (int pass = 0; pass < passes; ++pass)
        for (png_uint_32 y = 0; y < height; ++y)
            png_read_row(png, reinterpret_cast<png_bytep>(decoder.canvas.row(y)), nullptr);
    png_read_end(png, nullptr);
    return true;
}

bool guarded(Decoder &decoder)
{
    if (setjmp(png_jmpbuf(decoder.png)))
        return false;
    return run(decoder);
}

struct Encoder {
    std::string &reason;
    png_structp png = nullptr;
    png_infop info = nullptr;
};

[[noreturn]] void onWriteError(png_structp png, png_const_charp text)
{
    try {
        static_cast<Encoder *>(png_get_error_ptr(png))->reason = text;
    } catch (const std::bad_alloc &) { // no reason, then
    }
    png_longjmp(png, 1);
}

void onWrite(png_structp png, png_bytep from, png_size_t count)
{
    if (std::fwrite(from, 1, count, static_cast<FILE *>(png_get_io_ptr(png))) != count)
        png_error(png, std::strerror(errno));
}

struct Source {
    const uint32_t *pixels;
    size_t pitch;
    uint32_t width, height;
    bool alpha;
    uint8_t *line; // room for one row
};

void write(Encoder &encoder, FILE *file, const Source &source)
{
    png_structp png = encoder.png;
    png_set_write_fn(png, file, onWrite, [](png_structp) {});
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, encoder.info, source.width, source.height, 8, source.alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, encoder.info);
    for (uint32_t y = 0; y < source.height; ++y) {
        const uint32_t *from = source.pixels + source.pitch * y;
        uint8_t *to = source.line;
        for (uint32_t x = 0; x < source.width; ++x) {
            for (int shift = 16; shift >= 0; shift -= 8)
                *to++ = static_cast<uint8_t>(from[x] >> shift);
            if (source.alpha)
                *to++ = static_cast<uint8_t>(from[x] >> 24);
        }
        png_write_row(png, source.line);
    }
    png_write_end(png, nullptr);
}

bool guarded(Encoder &encoder, FILE *file, const Source &source)
{
    if (setjmp(png_jmpbuf(encoder.png)))
        return false;
    write(encoder, file, source);
    return true;
}

} // namespace

bool decodePng(Bytes file, Canvas &canvas)
{
    Decoder decoder{file, canvas};
    decoder.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &decoder, onReadError, onWarning);
    decoder.info = decoder.png ? png_create_info_struct(decoder.png) : nullptr;
    const bool whole = decoder.info ? guarded(decoder) : canvas.refuse("libpng cannot start");
    png_destroy_read_struct(&decoder.png, &decoder.info, nullptr);
    return whole;
}

bool encodePng(FILE *file, const uint32_t *pixels, size_t pitch, uint32_t width, uint32_t height, bool alpha, std::string &reason)
{
    std::vector<uint8_t> line(size_t{width} * 4);
    Encoder encoder{reason};
    reason = "libpng cannot start";
    encoder.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &encoder, onWriteError, onWarning);
    encoder.info = encoder.png ? png_create_info_struct(encoder.png) : nullptr;
    const bool whole = encoder.info && guarded(encoder, file, {pixels, pitch, width, height, alpha, line.data()});
    png_destroy_write_struct(&encoder.png, &encoder.info);
    return whole;
}

} // namespace nfk::pictures
