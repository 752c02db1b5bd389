// How contents that are pixels are stored.
#include "format.h"

#include <algorithm>
#include <cstdlib>

namespace capture {
namespace {

constexpr int filterCount = 5;

uint8_t paeth(int left, int above, int corner)
{
    const int toLeft = std::abs(above - corner), toAbove = std::abs(left - corner),
              toCorner = std::abs(left + above - 2 * corner);
    return uint8_t(toLeft <= toAbove && toLeft <= toCorner ? left : toAbove <= toCorner ? above : corner);
}

// What a filter expects for column x. `row` is decoded up to there, `above` all of the row above.
uint8_t expected(int filter, const uint8_t *row, const uint8_t *above, size_t x)
{
    const int left = x ? row[x - 1] : 0, up = above[x], corner = x ? above[x - 1] : 0;
    switch (filter) {
    case 1: return uint8_t(left);
    case 2: return uint8_t(up);
    case 3: return uint8_t((left + up) / 2);
    case 4: return paeth(left, up, corner);
    default: return 0;
    }
}

// One plane of one row of pixels: blue, green, red, alpha in memory.
void splitRow(const uint8_t *pixels, size_t width, int plane, uint8_t *to)
{
    static constexpr int channel[] = {1, 2, 0, 3};
    const int c = channel[plane];
    const bool lessGreen = plane == 1 || plane == 2;
    for (size_t x = 0; x < width; ++x)
        to[x] = uint8_t(pixels[4 * x + size_t(c)] - (lessGreen ? pixels[4 * x + 1] : 0));
}

} // namespace

size_t encodedPictureSize(uint32_t rowBytes, uint32_t rows) { return size_t{rowBytes} * rows + size_t{4} * rows; }

void encodePicture(uint32_t rowBytes, uint32_t rows, const uint8_t *from, Bytes &to)
{
    const size_t width = rowBytes / 4;
    to.clear();
    to.reserve(encodedPictureSize(rowBytes, rows));
    Bytes row(width), above(width), tried[filterCount];
    for (Bytes &residual : tried)
        residual.resize(width);
    for (int plane = 0; plane < 4; ++plane) {
        std::fill(above.begin(), above.end(), uint8_t{0});
        for (uint32_t y = 0; y < rows; ++y) {
            splitRow(from + size_t{y} * rowBytes, width, plane, row.data());
            int best = 0;
            uint64_t least = UINT64_MAX;
            for (int filter = 0; filter < filterCount; ++filter) {
                uint64_t sum = 0;
                uint8_t *const residual = tried[filter].data();
                for (size_t x = 0; x < width; ++x) {
                    residual[x] = uint8_t(row[x] - expected(filter, row.data(), above.data(), x));
                    sum += uint64_t(std::abs(int8_t(residual[x])));
                }
                if (sum < least)
                    least = sum, best = filter;
            }
            to.push_back(uint8_t(best));
            to.insert(to.end(), tried[best].begin(), tried[best].end());
            row.swap(above);
        }
    }
}

bool decodePicture(uint32_t rowBytes, uint32_t rows, std::span<const uint8_t> from, Bytes &to)
{
    const size_t width = rowBytes / 4;
    if (rowBytes % 4 || from.size() != encodedPictureSize(rowBytes, rows))
        return false;
    to.assign(size_t{rowBytes} * rows, 0);
    Bytes row(width), above(width);
    const uint8_t *next = from.data();
    static constexpr size_t channel[] = {1, 2, 0, 3};
    for (size_t plane = 0; plane < 4; ++plane) {
        std::fill(above.begin(), above.end(), uint8_t{0});
        for (uint32_t y = 0; y < rows; ++y) {
            const int filter = *next++;
            if (filter >= filterCount)
                return false;
            uint8_t *const pixels = to.data() + size_t{y} * rowBytes;
            const bool lessGreen = plane == 1 || plane == 2;
            for (size_t x = 0; x < width; ++x) {
                row[x] = uint8_t(*next++ + expected(filter, row.data(), above.data(), x));
                pixels[4 * x + channel[plane]] = uint8_t(row[x] + (lessGreen ? pixels[4 * x + 1] : 0));
            }
            row.swap(above);
        }
    }
    return true;
}

} // namespace capture
