// From a screen into a window's memory. Compiled so that loops over pixels become vectors.
#include <ninefold/kit/show.h>

#include "error.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr uint32_t swapRedAndBlue(uint32_t pixel) { return (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16; }

template <class Word, class Convert>
void words(void *to, const uint32_t *from, int32_t count, Convert convert)
{
    Word *const out = static_cast<Word *>(to);
    for (int32_t i = 0; i < count; ++i)
        out[i] = Word(convert(from[i]));
}

// `order` puts the byte that comes first at the bottom.
template <class Order>
void bytes(void *to, const uint32_t *from, int32_t count, Order order)
{
    auto *out = static_cast<uint8_t *>(to);
    for (int32_t i = 0; i < count; ++i, out += 3) {
        const uint32_t pixel = order(from[i]);
        out[0] = uint8_t(pixel), out[1] = uint8_t(pixel >> 8), out[2] = uint8_t(pixel >> 16);
    }
}

void row(int32_t format, void *to, const uint32_t *from, int32_t count)
{
    switch (format) {
    case NFK_FORMAT_ARGB8888: return words<uint32_t>(to, from, count, [](uint32_t p) { return p | 0xFF000000; });
    case NFK_FORMAT_ABGR8888: return words<uint32_t>(to, from, count, [](uint32_t p) { return swapRedAndBlue(p) | 0xFF000000; });
    case NFK_FORMAT_RGBA8888: return words<uint32_t>(to, from, count, [](uint32_t p) { return p << 8 | 0xFF; });
    case NFK_FORMAT_BGRA8888: return words<uint32_t>(to, from, count, [](uint32_t p) { return swapRedAndBlue(p) << 8 | 0xFF; });
    case NFK_FORMAT_RGB565:
        return words<uint16_t>(to, from, count,
                               [](uint32_t p) { return (p >> 8 & 0xF800) | (p >> 5 & 0x07E0) | (p >> 3 & 0x1F); });
    case NFK_FORMAT_RGB555:
        return words<uint16_t>(to, from, count,
                               [](uint32_t p) { return (p >> 9 & 0x7C00) | (p >> 6 & 0x03E0) | (p >> 3 & 0x1F); });
    case NFK_FORMAT_RGB24: return bytes(to, from, count, swapRedAndBlue);
    default: return bytes(to, from, count, [](uint32_t p) { return p; });
    }
}

int32_t bytesOf(int32_t format)
{
    switch (format) {
    case NFK_FORMAT_ARGB8888:
    case NFK_FORMAT_ABGR8888:
    case NFK_FORMAT_RGBA8888:
    case NFK_FORMAT_BGRA8888: return 4;
    case NFK_FORMAT_RGB565:
    case NFK_FORMAT_RGB555: return 2;
    case NFK_FORMAT_RGB24:
    case NFK_FORMAT_BGR24: return 3;
    default: return 0;
    }
}

bool copy(const char *function, const Texture *texture, const NfkRect &part, void *pixels, int32_t pitch, int32_t format)
{
    const int32_t size = bytesOf(format), word = size == 3 ? 1 : size;
    if (!pixels)
        return nfk::fail("%s: the memory is null", function);
    if (size == 0)
        return nfk::fail("%s: format %d is none; kit/show.h has NFK_FORMAT_...", function, format);
    if (std::abs(int64_t{pitch}) < int64_t{part.width} * size)
        return nfk::fail("%s: the pitch is %d bytes; %d pixels of %d bytes take %lld", function, pitch, part.width, size,
                         static_cast<long long>(part.width) * size);
    if (pitch % word || reinterpret_cast<uintptr_t>(pixels) % uint32_t(word))
        return nfk::fail("%s: the memory at %p with a pitch of %d is not aligned to the %d bytes of a pixel", function, pixels,
                         pitch, word);
    const uint32_t *from = texture->pixels + (size_t(part.y) << texture->log2Width) + part.x;
    auto *to = static_cast<uint8_t *>(pixels);
    for (int32_t y = 0; y < part.height; ++y, from += texture->width, to += pitch)
        row(format, to, from, part.width);
    return true;
}

} // namespace

int32_t nfkFormatBytes(int32_t format)
{
    const int32_t size = bytesOf(format);
    return size ? size : nfk::fail("nfkFormatBytes: format %d is none; kit/show.h has NFK_FORMAT_...", format);
}

int nfkShow(const NfkScreen *screen, void *pixels, int32_t pitch, int32_t width, int32_t height, int32_t format)
{
    if (!screen)
        return nfk::fail("nfkShow: the screen is null");
    if (width < 1 || height < 1)
        return nfk::fail("nfkShow: the memory's size is %d x %d; both are at least 1", width, height);
    const NfkRect part = {0, 0, std::min(width, screen->width), std::min(height, screen->height)};
    return copy("nfkShow", screen->texture, part, pixels, pitch, format);
}

int nfkCopyOut(const Texture *texture, const NfkRect *part, void *pixels, int32_t pitch, int32_t format)
{
    if (!texture || !texture->pixels || !part)
        return nfk::fail("nfkCopyOut: the texture or the part is null, or the texture has no pixels");
    if (part->x < 0 || part->y < 0 || part->width < 1 || part->height < 1 ||
        int64_t{part->x} + part->width > int64_t{texture->width} || int64_t{part->y} + part->height > int64_t{texture->height})
        return nfk::fail("nfkCopyOut: the part %d, %d, %d x %d does not lie inside the texture of %u x %u", part->x, part->y,
                         part->width, part->height, texture->width, texture->height);
    return copy("nfkCopyOut", texture, *part, pixels, pitch, format);
}
