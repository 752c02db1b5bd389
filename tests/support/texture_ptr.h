// Textures that tests own.
#pragma once

#include <ninefold/texture.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <vector>

struct TextureDeleter {
    void operator()(Texture *texture) const { DeleteTexture(texture); }
};

using TexturePtr = std::unique_ptr<Texture, TextureDeleter>;

// A texture with all pixels 0.
inline TexturePtr makeTexture(unsigned long width, unsigned long height)
{
    TexturePtr texture(CreateTexture(width, height));
    ClearTexture(texture.get());
    return texture;
}

// A texture that starts with `pixels`.
inline TexturePtr makeTexture(unsigned long width, unsigned long height, std::initializer_list<uint32_t> pixels)
{
    TexturePtr texture = makeTexture(width, height);
    std::copy(pixels.begin(), pixels.end(), texture->pixels);
    return texture;
}

inline std::vector<uint32_t> pixelsOf(const Texture &texture)
{
    return {texture.pixels, texture.pixels + size_t{texture.width} * texture.height};
}

inline std::vector<uint32_t> pixelsOf(const TexturePtr &texture) { return pixelsOf(*texture); }
