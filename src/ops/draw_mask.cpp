// Stipples: the 256 steps of a fade, and the patterns behind them.
#include <ninefold/render_state.h>

#include "core/startup.h"

#include <algorithm>
#include <iterator>

namespace ninefold {

uint16_t stipples[256][16];
uint32_t stippleSteps[32];

namespace {

// A place in a 16 by 16 mask, or a distance between two.
struct Place {
    uint8_t bit, row;
};

// The order in which the places of the mask are cleared: each level goes over what the one before left out, farthest first.
constexpr Place outer[] = {{0, 0}, {1, 1}, {0, 1}, {1, 0}};
constexpr Place middle[] = {{0, 0}, {4, 4}, {0, 4}, {4, 0}, {2, 2}, {6, 6}, {2, 6}, {6, 2},
                            {0, 2}, {4, 6}, {0, 6}, {4, 2}, {2, 0}, {6, 4}, {2, 4}, {6, 0}};
constexpr Place inner[] = {{0, 0}, {8, 8}, {0, 8}, {8, 0}};

struct RowPair {
    uint16_t even, odd;
};

constexpr RowPair patterns[] = {
    {0x0000, 0x0000}, // 256: everything
    {0xAAAA, 0x5555}, // 257: checkerboard
    {0xAAAA, 0xAAAA}, // 258: odd columns
    {0x0000, 0xFFFF}, // 259: even rows
    {0xAAAA, 0xFFFF}, // 260: odd columns of even rows
    {0xAAAA, 0x0000}, // 261: odd rows, and odd columns of even rows
};

} // namespace
} // namespace ninefold

using namespace ninefold;

void MakeDrawMaskTable(void)
{
    auto &mask = rs.drawMask;
    std::fill_n(mask, 16, uint16_t{0xFFFF});

    size_t count = 0;
    for (const Place &a : outer) {
        for (const Place &b : middle) {
            for (const Place &c : inner) {
                uint16_t &row = mask[a.row + b.row + c.row];
                row = static_cast<uint16_t>(row & ~(1u << (a.bit + b.bit + c.bit)));
                std::copy_n(mask, 16, stipples[count++]);
            }
        }
    }
    // The invisible end of a fade takes the place of the one stipple with a single pixel.
    std::fill_n(stipples[0], 16, uint16_t{0xFFFF});

    // Once cleared, a place stays clear in all later records.
    for (int x = 0; x < 32; ++x) {
        stippleSteps[x] = 0;
        while (stippleSteps[x] < 256 && stipples[stippleSteps[x]][x & 15] >> (x & 15) & 1)
            ++stippleSteps[x];
    }
}

void SetPresetDrawMask(long index)
{
    const uint32_t preset = static_cast<uint32_t>(index);
    if (preset < 256) {
        std::copy_n(stipples[preset], 16, rs.drawMask);
    } else if (preset < 256 + std::size(patterns)) {
        const RowPair &pattern = patterns[preset - 256];
        for (int row = 0; row < 16; ++row)
            rs.drawMask[row] = row & 1 ? pattern.odd : pattern.even;
    }
}
