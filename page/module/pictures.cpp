#include "pictures.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace page {
namespace {

enum class Treatment { plain, keyed, matte, right, diagonal, rings, noise, chess, black, white, dropped };

struct Made {
    const char *file;
    Treatment treatment;
    Texture *texture;
};
#define PAGE_PICTURE(name, word, file, treatment, title) {file, Treatment::treatment, nullptr},
Made pictures[] = {PAGE_PICTURES(PAGE_PICTURE)};
#undef PAGE_PICTURE

constexpr uint32_t keyColour = 0xFFFF00FF;
constexpr uint32_t side = 256; // of what is made here

uint32_t root(uint32_t square)
{
    uint32_t result = 0;
    for (uint32_t bit = 1u << 15; bit; bit >>= 1)
        if ((result | bit) * (result | bit) <= square)
            result |= bit;
    return result;
}

uint32_t grey(uint32_t value) { return 0xFF000000 | std::min(value, 255u) * 0x10101; }

uint32_t wordAt(Treatment treatment, uint32_t x, uint32_t y)
{
    switch (treatment) {
    case Treatment::right: return grey(x);
    case Treatment::diagonal: return grey((x + y) / 2);
    case Treatment::rings: {
        const int32_t dx = int32_t(x) * 2 - 255, dy = int32_t(y) * 2 - 255;
        const uint32_t place = root(uint32_t(dx * dx + dy * dy)) * 2 & 511;
        return grey(place < 256 ? place : 511 - place);
    }
    case Treatment::noise: {
        uint32_t hash = x * 0x9E3779B1u ^ y * 0x85EBCA77u;
        hash = (hash ^ hash >> 15) * 0xC2B2AE3Du;
        return grey(hash >> 24);
    }
    case Treatment::chess: return (x / 32 + y / 32) & 1 ? 0 : 0xFF000000 | (255 - x) << 16 | y << 8 | x;
    case Treatment::white: return 0xFFFFFFFF;
    default: return 0xFF000000;
    }
}

// Opaque within, down to alpha 1 at the ellipse's edge and outside.
void addMatte(Texture &picture)
{
    const auto width = int32_t(picture.origWidth), height = int32_t(picture.origHeight);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            const int32_t dx = (2 * x - width) * 1024 / width, dy = (2 * y - height) * 1024 / height;
            const auto distance = int32_t(root(uint32_t(dx * dx + dy * dy)));
            uint32_t &word = picture.pixels[(size_t(y) << picture.log2Width) + size_t(x)];
            word = (word & 0xFFFFFF) | uint32_t(1 + std::clamp((1075 - distance) * 254 / 460, 0, 254)) << 24;
        }
}

Texture *copyOf(const uint32_t *pixels, uint32_t width, uint32_t height)
{
    Texture *const texture = CreateTexture(width, height);
    ClearTexture(texture);
    for (uint32_t y = 0; y < height; ++y)
        std::memcpy(texture->pixels + (size_t(y) << texture->log2Width), pixels + size_t(y) * width, size_t(width) * 4);
    return texture;
}

void give(Made &picture, const uint32_t *pixels, uint32_t width, uint32_t height)
{
    if (picture.texture)
        DeleteTexture(picture.texture);
    picture.texture = copyOf(pixels, width, height);
    if (picture.treatment == Treatment::keyed)
        SetClearPixel(picture.texture, keyColour);
    if (picture.treatment == Treatment::matte)
        addMatte(*picture.texture);
}

// -64 to 64 and back, once every 64 rows: two parabolas.
int32_t wave(int32_t row)
{
    const int32_t place = row & 63, half = place & 31;
    const int32_t height = half * (32 - half) / 4;
    return place < 32 ? height : -height;
}

} // namespace

const char *fileOf(Picture picture) { return pictures[size_t(picture)].file; }

Texture *textureOf(Picture picture)
{
    Made &made = pictures[size_t(picture)];
    if (!made.texture && !*made.file && made.treatment != Treatment::dropped) {
        made.texture = CreateTexture(side, side);
        for (uint32_t y = 0; y < side; ++y)
            for (uint32_t x = 0; x < side; ++x)
                made.texture->pixels[y * side + x] = wordAt(made.treatment, x, y);
    }
    return made.texture;
}

void giveFile(const char *file, const uint32_t *pixels, uint32_t width, uint32_t height)
{
    for (Made &picture : pictures)
        if (*file && std::strcmp(picture.file, file) == 0)
            give(picture, pixels, width, height);
}

void giveDropped(const uint32_t *pixels, uint32_t width, uint32_t height)
{
    give(pictures[size_t(Picture::DROPPED)], pixels, width, height);
}

void fillPlane(Plane content, uint16_t *plane)
{
    for (int y = 0; y < bufferHeight; ++y)
        for (int word = 0; word < screenWidth / 16; ++word) {
            uint16_t bits = 0;
            for (int bit = 0; bit < 16; ++bit) {
                const int x = word * 16 + bit, dx = x - screenWidth / 2, dy = y - screenHeight / 2;
                const bool taken = content == Plane::DISC    ? dx * dx + dy * dy < 60 * 60
                                   : content == Plane::BARS  ? x / 12 % 2 == 1
                                   : content == Plane::RIGHT ? x >= screenWidth / 2
                                                             : false;
                bits = uint16_t(bits | int(taken) << (15 - bit));
            }
            plane[y * (screenWidth / 16) + word] = bits;
        }
}

void fillPriority(Priority content, uint8_t *priorities)
{
    for (int y = 0; y < bufferHeight; ++y)
        for (int x = 0; x < screenWidth; ++x) {
            const int dx = x - screenWidth / 2, dy = y - screenHeight / 2;
            priorities[y * screenWidth + x] = uint8_t(content == Priority::RAMP     ? x
                                                      : content == Priority::DISC   ? dx * dx + dy * dy < 60 * 60 ? 64 : 192
                                                      : content == Priority::LOWEST ? 0
                                                                                    : 255);
        }
}

void fillTable(Table content, const Texture &picture, LineTableRecord *rows, int count)
{
    const auto width = int32_t(picture.origWidth) << 16, height = int32_t(picture.origHeight);
    for (int row = 0; row < count; ++row) {
        const int32_t v = int32_t(int64_t(row % std::max(height, 1)) << 16);
        int32_t start = 0, end = width;
        switch (content) {
        case Table::WAVE: start += wave(row) * 0x4000, end += wave(row) * 0x4000; break;
        case Table::LENS: {
            const int32_t inset = width / 256 * (64 - std::abs(wave(row / 2)));
            start += inset, end -= inset;
            break;
        }
        case Table::SHEAR:
            start += row * 0x8000, end += row * 0x8000;
            if (row % 8 == 7)
                start = NINEFOLD_SKIP_ROW;
            break;
        default: break;
        }
        rows[row] = {start, v, end, v};
    }
}

void fillShift(Shift content, int32_t *rows)
{
    for (int row = 0; row < bufferHeight; ++row)
        rows[row] = content == Shift::WAVE ? wave(row) / 4 : row * row / 1024;
}

} // namespace page
