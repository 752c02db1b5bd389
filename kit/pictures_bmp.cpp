// BMP files: 8 bits with a palette, 24 and 32 bits, uncompressed.
#include "pictures_canvas.h"

#include <algorithm>
#include <bit>

namespace nfk::pictures {
namespace {

constexpr uint32_t fileHeaderSize = 14;
constexpr uint32_t uncompressed = 0, byMasks = 3;

class Reader {
public:
    explicit Reader(Bytes file) : file_(file) {}

    bool has(uint64_t at, uint64_t count) const { return at <= file_.size && count <= file_.size - at; }
    const uint8_t *at(uint64_t position) const { return file_.data + position; }
    uint32_t half(uint64_t position) const { return uint32_t{file_.data[position]} | uint32_t{file_.data[position + 1]} << 8; }
    uint32_t word(uint64_t position) const { return half(position) | half(position + 2) << 16; }
    uint64_t size() const { return file_.size; }

private:
    Bytes file_;
};

// One channel of a pixel of 32 bits: eight bits somewhere in it, or none.
struct Channel {
    explicit Channel(uint32_t mask)
        : shift(mask ? std::countr_zero(mask) : 0), present(mask != 0), good(!mask || mask >> shift == 255)
    {}

    uint32_t of(uint32_t pixel, uint32_t otherwise) const { return present ? pixel >> shift & 255 : otherwise; }

    int shift;
    bool present, good;
};

struct Header {
    uint32_t size, width, height, bits, compression, colours, pixelsAt;
    bool topDown;
};

bool readHeader(const Reader &file, Canvas &canvas, Header &header)
{
    if (!file.has(0, fileHeaderSize + 4))
        return canvas.refuse("it ends within its header");
    header.pixelsAt = file.word(10);
    header.size = file.word(14);
    if (header.size < 40)
        return canvas.refuse("its header has %u bytes; those of 40 and more are read", header.size);
    if (!file.has(fileHeaderSize, header.size))
        return canvas.refuse("it ends within its header");
    header.width = file.word(18);
    header.height = file.word(22);
    header.topDown = header.height >> 31;
    if (header.topDown)
        header.height = 0 - header.height;
    header.bits = file.half(28);
    header.compression = file.word(30);
    header.colours = file.word(46);
    if (header.width >> 31)
        return canvas.refuse("its width is negative");
    if (header.bits != 8 && header.bits != 24 && header.bits != 32)
        return canvas.refuse("it has %u bits a pixel; 8, 24 and 32 are read", header.bits);
    if (header.compression != uncompressed && !(header.compression == byMasks && header.bits == 32))
        return canvas.refuse("it is compressed (%u); uncompressed files are read", header.compression);
    return true;
}

bool readPalette(const Reader &file, Canvas &canvas, const Header &header, uint32_t palette[256], uint32_t &count)
{
    count = header.colours ? header.colours : 256;
    if (count > 256)
        return canvas.refuse("its palette has %u colours; there can be 256", count);
    const uint64_t at = uint64_t{fileHeaderSize} + header.size;
    if (!file.has(at, uint64_t{count} * 4))
        return canvas.refuse("it ends within its palette");
    for (uint32_t i = 0; i < count; ++i)
        palette[i] = 0xFF000000 | file.word(at + uint64_t{i} * 4);
    return true;
}

bool readIndexed(const Reader &file, Canvas &canvas, const Header &header, auto &&rowAt)
{
    uint32_t palette[256], count;
    if (!readPalette(file, canvas, header, palette, count))
        return false;
    for (uint32_t y = 0; y < header.height; ++y) {
        const uint8_t *from = rowAt(y);
        uint32_t *to = canvas.row(y);
        for (uint32_t x = 0; x < header.width; ++x) {
            if (from[x] >= count)
                return canvas.refuse("a pixel has colour %u of a palette of %u", from[x], count);
            to[x] = palette[from[x]];
        }
    }
    return true;
}

bool readTrueColour(const Reader &file, Canvas &canvas, const Header &header, auto &&rowAt)
{
    uint32_t masks[4] = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    if (header.compression == byMasks) {
        // Within the longer headers, behind the shortest one. Alpha has a mask from 56 bytes on.
        const bool hasAlpha = header.size >= 56;
        if (!file.has(54, hasAlpha ? 16 : 12))
            return canvas.refuse("it ends within its masks");
        for (uint32_t i = 0; i < 4; ++i)
            masks[i] = i < 3 || hasAlpha ? file.word(54 + 4 * i) : 0;
    }
    const Channel red(masks[0]), green(masks[1]), blue(masks[2]), alpha(masks[3]);
    if (!red.good || !green.good || !blue.good || !alpha.good)
        return canvas.refuse("its channels are not of 8 bits each");
    const bool knownAlpha = header.compression == byMasks;
    uint32_t anyAlpha = 0;
    for (uint32_t y = 0; y < header.height; ++y) {
        const uint8_t *from = rowAt(y);
        uint32_t *to = canvas.row(y);
        for (uint32_t x = 0; x < header.width; ++x, from += 4) {
            const uint32_t pixel = uint32_t{from[0]} | uint32_t{from[1]} << 8 | uint32_t{from[2]} << 16 | uint32_t{from[3]} << 24;
            to[x] = alpha.of(pixel, 255) << 24 | red.of(pixel, 0) << 16 | green.of(pixel, 0) << 8 | blue.of(pixel, 0);
            anyAlpha |= to[x] >> 24;
        }
    }
    // Most programs leave the fourth byte at 0.
    for (uint32_t y = 0; !knownAlpha && anyAlpha == 0 && y < header.height; ++y) {
        uint32_t *to = canvas.row(y);
        std::transform(to, to + header.width, to, [](uint32_t pixel) { return pixel | 0xFF000000; });
    }
    return true;
}

bool readColour(Canvas &canvas, const Header &header, auto &&rowAt)
{
    for (uint32_t y = 0; y < header.height; ++y) {
        const uint8_t *from = rowAt(y);
        uint32_t *to = canvas.row(y);
        for (uint32_t x = 0; x < header.width; ++x, from += 3)
            to[x] = 0xFF000000 | uint32_t{from[0]} | uint32_t{from[1]} << 8 | uint32_t{from[2]} << 16;
    }
    return true;
}

} // namespace

bool decodeBmp(Bytes file, Canvas &canvas)
{
    const Reader reader(file);
    Header header{};
    if (!readHeader(reader, canvas, header))
        return false;
    // Against the file first: it is cheaper than pixels for a size that is a lie.
    const uint64_t pitch = (uint64_t{header.width} * header.bits / 8 + 3) & ~uint64_t{3};
    if (header.height != 0 && (header.pixelsAt > reader.size() || pitch > (reader.size() - header.pixelsAt) / header.height))
        return canvas.refuse("it has %llu bytes, too few for %u by %u pixels", static_cast<unsigned long long>(reader.size()),
                             header.width, header.height);
    if (!canvas.start(header.width, header.height))
        return false;
    const auto rowAt = [&](uint32_t y) {
        return reader.at(header.pixelsAt + pitch * (header.topDown ? y : header.height - 1 - y));
    };
    return header.bits == 8    ? readIndexed(reader, canvas, header, rowAt)
           : header.bits == 32 ? readTrueColour(reader, canvas, header, rowAt)
                               : readColour(canvas, header, rowAt);
}

} // namespace nfk::pictures
