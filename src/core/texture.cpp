// Textures: their memory, and copies within and between them.
#include <ninefold/texture.h>

#include "core/platform.h"

#include <algorithm>
#include <bit>

Texture::~Texture() = default;

namespace {

// The exponent of the power of two that `size` rounds up to.
uint32_t sizeExponent(uint32_t size) { return size == 0 ? 0 : static_cast<uint32_t>(std::bit_width(size - 1)); }

size_t pixelCount(const Texture *texture) { return size_t{texture->width} * texture->height; }

} // namespace

Texture *CreateTexture(unsigned long width, unsigned long height)
{
    auto *texture = new Texture();
    texture->origWidth = static_cast<uint32_t>(width);
    texture->origHeight = static_cast<uint32_t>(height);
    texture->log2Width = sizeExponent(texture->origWidth);
    texture->log2Height = sizeExponent(texture->origHeight);
    texture->width = static_cast<uint32_t>(uint64_t{1} << texture->log2Width);
    texture->height = static_cast<uint32_t>(uint64_t{1} << texture->log2Height);

    // A store of 4 GiB and up is one that cannot be allocated: its byte count does not fit 32 bits.
    const uint32_t log2Bytes = texture->log2Width + texture->log2Height + 2;
    if (log2Bytes < 32)
        texture->pixels = static_cast<uint32_t *>(ninefold::allocateAligned(size_t{1} << log2Bytes));
    return texture;
}

void AddRefTexture(Texture *texture) { ++texture->refCount; }

void DeleteTexture(Texture *texture)
{
    if (--texture->refCount > 0)
        return;

    delete[] texture->runlengthMap;
    delete[] texture->zeroPixelMap;
    if ((texture->flags & NINEFOLD_TEXTURE_HOST_PIXELS) == 0)
        ninefold::freeAligned(texture->pixels);
    DeleteMipmapTexture(texture);
    delete texture;
}

void ClearTexture(Texture *texture) { std::fill_n(texture->pixels, pixelCount(texture), 0); }

void CopyTexture(Texture *dst, Texture *src, long dstX, long dstY, long srcX, long srcY, long width, long height)
{
    // The offsets come to lie in their textures, so that none of the differences below can overflow.
    const uint32_t toX = static_cast<uint32_t>(dstX) & (dst->width - 1);
    const uint32_t toY = static_cast<uint32_t>(dstY) & (dst->height - 1);
    const uint32_t fromX = static_cast<uint32_t>(srcX) & (src->width - 1);
    const uint32_t fromY = static_cast<uint32_t>(srcY) & (src->height - 1);

    const auto clip = [](long size, uint32_t dstRest, uint32_t srcRest) {
        return std::min({static_cast<int32_t>(size), static_cast<int32_t>(dstRest), static_cast<int32_t>(srcRest)});
    };
    const int32_t columns = clip(width, dst->width - toX, src->width - fromX);
    const int32_t rows = clip(height, dst->height - toY, src->height - fromY);

    for (int32_t row = 0; row < rows; ++row) {
        const uint32_t line = static_cast<uint32_t>(row);
        const uint32_t *from = src->pixels + ((size_t{fromY} + line) << src->log2Width) + fromX;
        uint32_t *to = dst->pixels + ((size_t{toY} + line) << dst->log2Width) + toX;
        // Pixel by pixel, no memmove: a block that overlaps its source to the right repeats what it has just written.
        for (int32_t i = 0; i < columns; ++i)
            to[i] = from[i];
    }
}

void SetClearPixel(Texture *texture, unsigned long color) { ReplacePixel(texture, 0, color); }

void ReplacePixel(Texture *texture, unsigned long newColor, unsigned long oldColor)
{
    std::replace(texture->pixels, texture->pixels + pixelCount(texture), static_cast<uint32_t>(oldColor),
                 static_cast<uint32_t>(newColor));
}
