// What prepares a texture ahead of drawing.

#include "reference.h"

namespace reference {

void fillMipLevel(const Texture &source, Texture &level)
{
    for (uint32_t y = 0; y < level.height; ++y)
        for (uint32_t x = 0; x < level.width; ++x) {
            const uint32_t right = (2 * x + 1) & (source.width - 1);
            const uint32_t below = (2 * y + 1) & (source.height - 1);
            const uint32_t *const upperRow = source.pixels + (2 * y << source.log2Width);
            const uint32_t *const lowerRow = source.pixels + (below << source.log2Width);
            uint32_t result = 0;
            for (uint32_t shift = 0; shift < 32; shift += 8) {
                const uint32_t sum = (upperRow[2 * x] >> shift & 255) + (upperRow[right] >> shift & 255) +
                                     (lowerRow[2 * x] >> shift & 255) + (lowerRow[right] >> shift & 255);
                result |= sum / 4 << shift;
            }
            level.pixels[(y << level.log2Width) + x] = result;
        }
}

std::vector<int8_t> runLengthMap(const Texture &texture)
{
    std::vector<int8_t> map;
    for (uint32_t y = 0; y < texture.height; ++y)
        for (uint32_t x = 0; x < texture.width; ++x) {
            const uint32_t *const pixels = texture.pixels + (y << texture.log2Width);
            const bool zero = pixels[x] == 0;
            const uint32_t limit = zero ? 128 : 127;
            int count = 0;
            for (uint32_t end = x; end < texture.width && end < x + limit && (pixels[end] == 0) == zero; ++end)
                ++count;
            map.push_back(static_cast<int8_t>(zero ? -count : count));
        }
    return map;
}

std::vector<uint16_t> zeroPixelMap(const Texture &texture)
{
    std::vector<uint16_t> map(texture.width * texture.height);
    for (uint32_t index = 0; index < texture.width * texture.height; ++index)
        if (texture.pixels[index] == 0) {
            const uint32_t x = index & (texture.width - 1);
            map[index >> 4] = static_cast<uint16_t>(map[index >> 4] | 0x8000u >> (x & 15));
        }
    return map;
}

std::vector<int8_t> runList(uint16_t word)
{
    std::vector<int8_t> list;
    for (int bit = 15; bit >= 0;) {
        const int value = word >> bit & 1;
        int count = 0;
        for (; bit >= 0 && (word >> bit & 1) == value; --bit)
            ++count;
        list.push_back(static_cast<int8_t>(value != 0 ? -count : count));
    }
    return list;
}

} // namespace reference
