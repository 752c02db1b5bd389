// A picture on its way from a file into a texture. Decoders ask for room once they know the size, then fill the rows.
#pragma once

#include <ninefold/kit/pictures.h>

#include <cstdint>
#include <string>

namespace nfk::pictures {

struct Bytes {
    const uint8_t *data;
    size_t size;
};

class Canvas {
public:
    explicit Canvas(uint32_t extras) : extras_(extras) {}
    ~Canvas();
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    // Makes room for a picture; false, with the reason, if there is none. Throws nothing: C libraries are on the stack.
    bool start(uint64_t width, uint64_t height) noexcept;

    // A row of 0xAARRGGBB words.
    uint32_t *row(uint32_t y) { return texture_->pixels + (size_t{y} << texture_->log2Width); }
    uint32_t pitch() const { return texture_->width; }

    // Keeps the reason; returns false, for decoders to return.
    bool refuse(const char *format, ...) noexcept __attribute__((format(printf, 2, 3)));
    const char *reason() const { return reason_; }

    // Cleans up transparent pixels, fills the area outside, makes what else was asked for, and hands the texture over. Null, with
    // the reason, if memory runs out.
    Texture *finish();

private:
    void fillOutside();

    const uint32_t extras_;
    Texture *texture_ = nullptr;
    char reason_[256] = "it is damaged";
};

// Each returns false with a reason, and leaves no resource of its library behind either way.
bool decodePng(Bytes file, Canvas &canvas);
bool decodeJpeg(Bytes file, Canvas &canvas);
bool decodeWebp(Bytes file, Canvas &canvas);
bool decodeBmp(Bytes file, Canvas &canvas);

// Rows of `width` pixels, `pitch` words apart. False with a reason.
bool encodePng(FILE *file, const uint32_t *pixels, size_t pitch, uint32_t width, uint32_t height, bool alpha,
               std::string &reason);

} // namespace nfk::pictures
