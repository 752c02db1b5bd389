// What the atlas asks of a glyph rasteriser. One file a platform implements it: gdi.cpp, freetype.cpp, none.cpp.
#pragma once

#include <cstdint>

namespace ninefold::glyph {

struct FontDescription {
    int32_t height; // above 0: of the cell; below: of the em; pixels
    int32_t weight; // 400 normal, 700 bold
    uint8_t italic;
    char name[32]; // code page 932, NUL-terminated, zeros behind
};

enum class Format : uint32_t {
    Mono = 1, // bits, the leftmost on top, rows of whole 32-bit words
    Grey4 = 4, // bytes from 0 to 4, 16 or 64, rows padded to 4 bytes
    Grey16 = 5,
    Grey64 = 6,
};

struct Metrics {
    uint32_t width, height;
    int32_t originX, originY;
    int32_t advance;
};

// Which goes first when a source is closed. Only GDI can tell the difference.
enum class Release { ContextFirst, FontFirst };

class Source {
public:
    static constexpr uint32_t failed = 0xFFFFFFFF;

    virtual void open(const FontDescription &font) = 0;
    virtual bool isLeadByte(uint8_t byte) = 0;

    // Fills `metrics`, and `bitmap` if `size` is not 0. Returns the bytes of the whole bitmap, or `failed`, which leaves
    // `metrics` alone. `code` is a sign-extended byte, or a lead byte and a second one. `bitmap` must come cleared: padding is
    // not written.
    virtual uint32_t outline(uint32_t code, Format format, Metrics &metrics, uint32_t size, uint8_t *bitmap) = 0;

    virtual void close(Release order) = 0;

protected:
    ~Source() = default;
};

// The rasteriser of this platform.
Source &platformSource();

} // namespace ninefold::glyph
