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

// What a filter expects for a sample, by the decoded ones to its left, above it, and above the left one.
template <int filter>
uint8_t expected(uint8_t left, uint8_t up, uint8_t corner)
{
    if constexpr (filter == 1)
        return left;
    else if constexpr (filter == 2)
        return up;
    else if constexpr (filter == 3)
        return uint8_t((left + up) / 2);
    else if constexpr (filter == 4)
        return paeth(left, up, corner);
    else
        return 0;
}

// Rows have a sample of 0 before their first.
template <int filter>
uint32_t apply(const uint8_t *row, const uint8_t *above, size_t width, uint8_t *residual)
{
    uint32_t sum = 0;
    for (size_t x = 0; x < width; ++x) {
        residual[x] = uint8_t(row[x] - expected<filter>(row[ptrdiff_t(x) - 1], above[x], above[ptrdiff_t(x) - 1]));
        sum += uint32_t(std::abs(int8_t(residual[x])));
    }
    return sum;
}
constexpr decltype(&apply<0>) filters[] = {apply<0>, apply<1>, apply<2>, apply<3>, apply<4>};

template <int filter>
void undo(const uint8_t *residual, const uint8_t *above, size_t width, uint8_t *row)
{
    for (size_t x = 0; x < width; ++x)
        row[x] = uint8_t(residual[x] + expected<filter>(row[ptrdiff_t(x) - 1], above[x], above[ptrdiff_t(x) - 1]));
}
constexpr decltype(&undo<0>) undoers[] = {undo<0>, undo<1>, undo<2>, undo<3>, undo<4>};

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
    Bytes row(width + 1), above(width + 1), tried[filterCount];
    for (Bytes &residual : tried)
        residual.resize(width);
    for (int plane = 0; plane < 4; ++plane) {
        std::fill(above.begin(), above.end(), uint8_t{0});
        for (uint32_t y = 0; y < rows; ++y) {
            splitRow(from + size_t{y} * rowBytes, width, plane, row.data() + 1);
            int best = 0;
            uint32_t least = UINT32_MAX;
            for (int filter = 0; filter < filterCount && least; ++filter) {
                const uint32_t sum = filters[filter](row.data() + 1, above.data() + 1, width, tried[filter].data());
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
    Bytes row(width + 1), above(width + 1);
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
            undoers[filter](next, above.data() + 1, width, row.data() + 1);
            next += width;
            for (size_t x = 0; x < width; ++x)
                pixels[4 * x + channel[plane]] = uint8_t(row[x + 1] + (lessGreen ? pixels[4 * x + 1] : 0));
            row.swap(above);
        }
    }
    return true;
}

} // namespace capture
