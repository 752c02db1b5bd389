#include "scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
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
    case Content::holes10:
    case Content::holes30:
    case Content::holes50:
    case Content::holes70:
    case Content::holes90:
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

// How much of a pixel a disc covers that lies about the middle of its cell and fills two thirds of it, with a rim of three pixels.
double discCoverage(int x, int y, int cell)
{
    const double middle = cell / 2.0, radius = 0.46 * cell;
    const double distance = std::hypot(x % cell + 0.5 - middle, y % cell + 0.5 - middle);
    return std::clamp((radius + 1.5 - distance) / 3, 0.0, 1.0);
}

// Columns of discs of which every other one is shifted by half, so that their gaps do not meet in a row.
uint32_t discAlpha(int x, int y, Content content)
{
    constexpr int column = 112;
    return uint32_t(255 * (content == Content::discs32   ? discCoverage(x, y, 32)
                           : content == Content::discs64 ? discCoverage(x, y, 64)
                                                         : discCoverage(x, y + x / column % 2 * (column / 2), column)));
}

// The gallery's, beside the program as it was built or installed.
std::filesystem::path pictures()
{
    const std::filesystem::path here = std::filesystem::canonical("/proc/self/exe").parent_path();
    for (const char *const place : {BENCH_PLACES})
        if (std::filesystem::exists(here / place))
            return here / place;
    std::fputs("ninefold-bench: cannot find the gallery's pictures; install them with it\n", stderr);
    std::exit(1);
}

// A picture of the gallery at half its size in the middle of a cell, where the magenta around its object is no part of it.
void cutOut(const char *name, Texture *texture, int left, int top)
{
    constexpr uint32_t ground = 0xFFFF00FF;
    constexpr int cell = 64;
    std::string path = (pictures() / (std::string(name) + ".bmp")).string();
    Texture *const picture = LoadTexture(path.data());
    if (!picture) {
        std::fprintf(stderr, "ninefold-bench: cannot read %s\n", path.c_str());
        std::exit(1);
    }
    const int width = int(picture->origWidth) / 2, height = int(picture->origHeight) / 2;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint32_t covered = 0, sums[3] = {};
            for (int i = 0; i < 4; ++i) {
                const uint32_t pixel = picture->pixels[size_t(2 * y + i / 2) * picture->width + size_t(2 * x + i % 2)];
                if (pixel == ground)
                    continue;
                ++covered;
                for (int channel = 0; channel < 3; ++channel)
                    sums[channel] += pixel >> (8 * channel) & 255;
            }
            uint32_t &to =
                texture->pixels[size_t(top + (cell - height) / 2 + y) * texture->width + size_t(left + (cell - width) / 2 + x)];
            to = 0;
            if (covered)
                to = covered * 255 / 4 << 24 | sums[2] / covered << 16 | sums[1] / covered << 8 | sums[0] / covered;
        }
    DeleteTexture(picture);
}

void cutOutAll(Texture *texture)
{
    ClearTexture(texture);
    for (int y = 0; y < int(texture->height); y += 64)
        for (int x = 0; x < int(texture->width); x += 64)
            cutOut((x ^ y) & 64 ? "horse" : "cup", texture, x, y);
}

uint32_t premultiply(uint32_t pixel)
{
    const uint32_t alpha = pixel >> 24;
    const auto channel = [=](int shift) { return ((pixel >> shift & 255) * alpha + 127) / 255 << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

// Holes of 20 to 100 pixels between islands that leave them that share of the whole.
void punch(Texture *texture, uint32_t percent, std::mt19937 &generator)
{
    for (uint32_t i = 0; i < texture->width * texture->height;) {
        const uint32_t hole = 20 + generator() % 80, mean = 60 * (100 - percent) / percent;
        const uint32_t island = 1 + mean / 2 + generator() % (mean + 1);
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
        const bool rounds = content == Content::discs || content == Content::discs32 || content == Content::discs64;
        for (size_t i = 0; i < words; ++i) {
            const int x = int(i) % size, y = int(i) / size;
            uint32_t pixel = smooth ? smoothPixel(x, y, size, content) : noisePixel(generator, content);
            if (rounds) {
                const uint32_t alpha = discAlpha(x, y, content);
                pixel = alpha ? alpha << 24 | (pixel & 0xFFFFFF) : 0;
            }
            texture->pixels[i] = pixel;
        }
        if (content == Content::cutouts)
            cutOutAll(texture);
        if (content >= Content::holes10 && content <= Content::holes90)
            punch(texture, 10 + 20 * (uint32_t(content) - uint32_t(Content::holes10)), generator);
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
    static const std::vector<uint32_t> picture = [] {
        std::mt19937 generator(1);
        std::vector<uint32_t> made(size_t(frameSize) * frameSize);
        for (uint32_t &pixel : made)
            pixel = smooth ? 0xFF406080 : 0xFF000000 | uint32_t(generator());
        return made;
    }();
    std::copy(picture.begin(), picture.end(), frameBuffer()->pixels);
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
