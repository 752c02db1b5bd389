#include <ninefold/render_state.h>

#include "core/tables.h"

#include <algorithm>

namespace ninefold {

int8_t runBytes[557056];
int8_t *runLists[65536];

}

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
    int8_t *next = ninefold::runBytes;
    for (uint32_t word = 0; word < 65536; ++word) {
        ninefold::runLists[word] = next;
        int run = 0;
        for (int bit = 15; bit >= 0; --bit) {
            const bool set = word >> bit & 1;
            if (run != 0 && set != (run < 0)) {
                *next++ = static_cast<int8_t>(run);
                run = 0;
            }
            run += set ? -1 : 1;
        }
        *next++ = static_cast<int8_t>(run);
    }
}

char **GetShaheiTable(void)
{
    return reinterpret_cast<char **>(ninefold::runLists);
}
