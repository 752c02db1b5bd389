// Maps of transparent pixels, and the run lists of plane words.
#include <ninefold/render_state.h>

#include "core/startup.h"

#include <algorithm>
#include <cstring>

namespace ninefold {

int8_t runBytes[557056];
int8_t *runLists[65536];

} // namespace ninefold

void CreateRunlengthMap(Texture *texture)
{
    delete[] texture->runlengthMap;
    texture->runlengthMap = nullptr; // should the next line throw
    texture->runlengthMap = new int8_t[size_t{texture->width} * texture->height];

    const uint32_t *pixel = texture->pixels;
    int8_t *entry = texture->runlengthMap;
    for (uint32_t y = 0; y < texture->height; ++y, pixel += texture->width, entry += texture->width) {
        int run = 0;
        for (uint32_t x = texture->width; x-- > 0;) {
            if (pixel[x] == 0)
                run = run < 0 ? std::max(run - 1, -128) : -1;
            else
                run = run > 0 ? std::min(run + 1, 127) : 1;
            entry[x] = static_cast<int8_t>(run);
        }
    }
}

void CreateZeroPixelMap(Texture *texture)
{
    delete[] texture->zeroPixelMap;
    texture->zeroPixelMap = nullptr; // should the next line throw
    const size_t count = size_t{texture->width} * texture->height;
    texture->zeroPixelMap = new uint16_t[count](); // a word a pixel: sixteen times the use, but what hosts may rely on

    const uint32_t columnMask = std::min(texture->width, 16u) - 1;
    for (size_t index = 0; index < count; ++index) {
        if (texture->pixels[index] == 0)
            texture->zeroPixelMap[index >> 4] |= static_cast<uint16_t>(0x8000 >> (index & columnMask));
    }
}

void MakeShaheiRunlengthTbl(void)
{
    // The list of a word is that of its high byte, then that of its low byte, the runs in the middle joined where they are alike.
    struct {
        int8_t runs[8];
        int count;
    } bytes[256];
    for (int byte = 0; byte < 256; ++byte) {
        auto &list = bytes[byte];
        list.count = 0;
        for (int bit = 7; bit >= 0; --bit) {
            const int8_t one = byte >> bit & 1 ? -1 : 1;
            if (list.count > 0 && (list.runs[list.count - 1] < 0) == (one < 0))
                list.runs[list.count - 1] = static_cast<int8_t>(list.runs[list.count - 1] + one);
            else
                list.runs[list.count++] = one;
        }
    }
    int8_t *next = ninefold::runBytes;
    for (uint32_t word = 0; word < 65536; ++word) {
        const auto &high = bytes[word >> 8], &low = bytes[word & 255];
        ninefold::runLists[word] = next;
        const bool joined = !((word >> 8 ^ word >> 7) & 1);
        const int middle = high.count - joined, count = middle + low.count;
        // Whole words are written; what is too much goes when the next list is written, but for the last ones.
        int8_t rest[16];
        int8_t *const list = next + sizeof rest <= ninefold::runBytes + sizeof ninefold::runBytes ? next : rest;
        std::memcpy(list, high.runs, 8);
        std::memcpy(list + middle, low.runs, 8);
        if (joined)
            list[middle] = static_cast<int8_t>(high.runs[middle] + low.runs[0]);
        if (list == rest)
            std::memcpy(next, rest, static_cast<size_t>(count));
        next += count;
    }
}

char **GetShaheiTable(void) { return reinterpret_cast<char **>(ninefold::runLists); }
