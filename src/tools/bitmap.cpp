// 24-bit bitmap files.
#include <ninefold/texture.h>

#include "core/platform.h"

#include <algorithm>

namespace {

constexpr uint64_t dataOffsetAt = 10;
constexpr uint64_t widthAt = 18;
constexpr uint64_t heightAt = 22;

// The bytes of a bitmap file, with zeros behind its end.
class Bytes {
public:
    explicit Bytes(const ninefold::FileBytes &file) : data(file.data.get()), size(file.size) {}

    uint32_t byte(uint64_t at) const { return at < size ? data[at] : 0; }
    uint32_t word(uint64_t at) const { return byte(at) | byte(at + 1) << 8 | byte(at + 2) << 16 | byte(at + 3) << 24; }
    uint32_t pixel(uint64_t at) const { return 0xFF000000 | byte(at) | byte(at + 1) << 8 | byte(at + 2) << 16; }

    // A row of pixels, blue, green and red bytes in the file.
    void readRow(uint64_t at, uint32_t *to, uint32_t count) const
    {
        const uint64_t whole = std::min<uint64_t>(count, (size - std::min<uint64_t>(at, size)) / 3);
        const uint8_t *from = data + (whole ? at : 0);
        uint32_t i = 0;
        for (; i < whole; ++i, from += 3)
            to[i] = 0xFF000000 | uint32_t{from[0]} | uint32_t{from[1]} << 8 | uint32_t{from[2]} << 16;
        for (; i < count; ++i)
            to[i] = pixel(at + uint64_t{3} * i);
    }

private:
    const uint8_t *data;
    uint64_t size;
};

// Where a picture of `size` stands in a texture of `room`.
uint32_t aligned(uint32_t alignment, uint32_t room, uint32_t size)
{
    switch (alignment) {
    case NINEFOLD_ALIGN_CENTRE: return (room >> 1) - size / 2;
    case NINEFOLD_ALIGN_END: return room - size;
    default: return 0;
    }
}

void store(long *out, uint32_t value)
{
    if (out)
        *out = static_cast<long>(value);
}

} // namespace

Texture *LoadTexture(char *path) { return LoadTextureAdjust(path, 0, 0, nullptr, nullptr, nullptr, nullptr); }

Texture *LoadTextureAdjust(char *path, unsigned long alignX, unsigned long alignY, long *outX, long *outY, long *outWidth,
                           long *outHeight)
{
    ninefold::FileBytes file;
    if (!ninefold::readFile(path, file))
        return nullptr;

    const Bytes bytes(file);
    const uint32_t width = bytes.word(widthAt);
    const uint32_t height = bytes.word(heightAt);
    Texture *texture = CreateTexture(width, height);
    if (!texture->pixels) { // negative sizes come here too
        DeleteTexture(texture);
        return nullptr;
    }
    ClearTexture(texture);

    const uint32_t x = aligned(static_cast<uint32_t>(alignX), texture->width, width);
    const uint32_t y = aligned(static_cast<uint32_t>(alignY), texture->height, height);
    store(outWidth, width);
    store(outHeight, height);
    store(outX, x);
    store(outY, y);

    const uint64_t pitch = (uint64_t{width} * 3 + 3) & ~uint64_t{3};
    uint64_t at = bytes.word(dataOffsetAt) + pitch * height; // the last row of the file is the top one
    for (uint32_t row = 0; row < height; ++row) {
        at -= pitch;
        bytes.readRow(at, texture->pixels + (size_t{y + row} << texture->log2Width) + x, width);
    }
    return texture;
}
