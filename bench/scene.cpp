#include "scene.h"

#include <cmath>
#include <map>
#include <random>
#include <tuple>

namespace bench {

namespace {

bool smooth = false;

std::mt19937 &state()
{
    static std::mt19937 generator;
    return generator;
}

uint32_t noisePixel(std::mt19937 &generator, Content content)
{
    const uint32_t colour = generator() & 0xFFFFFF;
    const uint32_t dice = generator() % 100, alpha = generator() & 255;
    switch (content) {
    case Content::key: return dice < 30 ? 0 : 0xFF000000 | colour;
    case Content::sprite: return dice < 30 ? 0 : (dice < 40 ? 0xFF : dice < 50 ? 0 : alpha) << 24 | colour;
    case Content::sparse:
    case Content::soft: return (1 + alpha % 254) << 24 | colour;
    default: return 0xFF000000 | colour;
    }
}

uint32_t smoothPixel(int x, int y, int size, Content content)
{
    const double turn = 6.283185307179586 / size;
    const auto wave = [](double angle) { return uint32_t(128 + 100 * std::sin(angle)); };
    const uint32_t alpha = content == Content::opaque || content == Content::key ? 255 : wave(turn * (x + y));
    return alpha << 24 | wave(turn * x) << 16 | wave(turn * 2 * y) << 8 | wave(turn * (x - y));
}

uint32_t premultiply(uint32_t pixel)
{
    const uint32_t alpha = pixel >> 24;
    const auto channel = [=](int shift) { return ((pixel >> shift & 255) * alpha + 127) / 255 << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

// Holes of 20 to 100 pixels between islands that take 30 % in all, with the alphas of soft.
void punch(Texture *texture, std::mt19937 &generator)
{
    for (uint32_t i = 0; i < texture->width * texture->height;) {
        const uint32_t island = 10 + generator() % 32, hole = 20 + generator() % 80;
        for (uint32_t end = i + island + hole; i < end && i < texture->width * texture->height; ++i)
            if (i + hole >= end)
                texture->pixels[i] = 0;
    }
}

Texture *variant(Content content, int size, bool premultiplied)
{
    static std::map<std::tuple<Content, int, bool>, Texture *> made;
    Texture *&texture = made[{content, size, premultiplied}];
    if (texture)
        return texture;
    texture = CreateTexture(unsigned(size), unsigned(size));
    const size_t words = size_t(size) * unsigned(size);
    if (!premultiplied) {
        std::mt19937 generator(uint32_t(content) * 7919 + uint32_t(size));
        for (size_t i = 0; i < words; ++i)
            texture->pixels[i] =
                smooth ? smoothPixel(int(i) % size, int(i) / size, size, content) : noisePixel(generator, content);
        if (content == Content::sparse)
            punch(texture, generator);
        CreateMipmapTexture(texture);
        CreateRunlengthMap(texture);
        CreateZeroPixelMap(texture);
        return texture;
    }
    const Texture *source = variant(content, size, false);
    for (size_t i = 0; i < words; ++i)
        texture->pixels[i] = premultiply(source->pixels[i]);
    return texture;
}

Surface surface(Texture *texture) { return {texture->pixels, int(texture->width), int(texture->height)}; }

} // namespace

void useSmoothPictures() { smooth = true; }

Texture *frameBuffer()
{
    static Texture *const buffer = CreateTexture(frameSize, frameSize);
    return buffer;
}

Surface frame() { return surface(frameBuffer()); }

void fillFrame()
{
    std::mt19937 generator(1);
    for (size_t i = 0; i < size_t(frameSize) * frameSize; ++i)
        frameBuffer()->pixels[i] = smooth ? 0xFF406080 : 0xFF000000 | uint32_t(generator());
}

Texture *texture(Content content, int size) { return variant(content, size, false); }
Surface straight(Content content, int size) { return surface(variant(content, size, false)); }
Surface premultiplied(Content content, int size) { return surface(variant(content, size, true)); }

Texture *ruleTexture(int value)
{
    static std::map<int, Texture *> made;
    Texture *&texture = made[value];
    if (!texture) {
        texture = CreateTexture(frameSize, frameSize);
        for (size_t i = 0; i < size_t(frameSize) * frameSize; ++i)
            texture->pixels[i] = uint32_t(value);
    }
    return texture;
}

void seed() { state().seed(9); }
int random(int bound) { return int(state()() % unsigned(bound)); }

} // namespace bench
