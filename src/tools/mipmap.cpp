// Mip chains.
#include <ninefold/texture.h>

#include <cstddef>

namespace {

// (c0 + c1 + c2 + c3) >> 2 of each channel. The two sums hold two channels each, 10 bits in 16.
uint32_t average(uint32_t p0, uint32_t p1, uint32_t p2, uint32_t p3)
{
    constexpr uint32_t mask = 0xFF00FF;
    const uint32_t redBlue = (p0 & mask) + (p1 & mask) + (p2 & mask) + (p3 & mask);
    const uint32_t alphaGreen = (p0 >> 8 & mask) + (p1 >> 8 & mask) + (p2 >> 8 & mask) + (p3 >> 8 & mask);
    return (redBlue >> 2 & mask) | (alphaGreen << 6 & ~mask);
}

void fillLevel(Texture *level, const Texture *above)
{
    uint32_t *to = level->pixels;
    for (uint32_t y = 0; y < level->height; ++y) {
        const uint32_t *upper = above->pixels + (size_t{2 * y} << above->log2Width);
        const uint32_t *lower = upper + above->width;
        for (uint32_t x = 0; x < level->width; ++x, upper += 2, lower += 2)
            *to++ = average(upper[0], upper[1], lower[0], lower[1]);
    }
}

} // namespace

void CreateMipmapTexture(Texture *texture)
{
    if (texture->mipCount == 0) {
        texture->mip[0] = texture;
        texture->mipCount = 1;
    }
    for (;;) {
        const uint32_t width = texture->width >> texture->mipCount;
        const uint32_t height = texture->height >> texture->mipCount;
        if (width == 0 || height == 0)
            return;
        Texture *above = texture->mip[texture->mipCount - 1];
        Texture *level = CreateTexture(width, height);
        texture->mip[texture->mipCount++] = level;
        fillLevel(level, above);
    }
}

void DeleteMipmapTexture(Texture *texture)
{
    for (uint32_t level = 1; level < texture->mipCount; ++level)
        DeleteTexture(texture->mip[level]);
    texture->mipCount = 0;
}
