#include "stipple.h"

#include "reference.h"

namespace reference {

namespace {

// When each position of the cell is cleared, counted from 0: a quarter of the cell after the other, each spread evenly.
struct Order {
    int rank[16][16] = {};

    constexpr Order()
    {
        constexpr int outer[4][2] = {{0, 0}, {1, 1}, {0, 1}, {1, 0}};
        constexpr int middle[16][2] = {{0, 0}, {4, 4}, {0, 4}, {4, 0}, {2, 2}, {6, 6}, {2, 6}, {6, 2},
                                       {0, 2}, {4, 6}, {0, 6}, {4, 2}, {2, 0}, {6, 4}, {2, 4}, {6, 0}};
        constexpr int inner[4][2] = {{0, 0}, {8, 8}, {0, 8}, {8, 0}};
        for (int count = 0; count < 256; ++count) {
            const int bit = outer[count / 64][0] + middle[count / 4 % 16][0] + inner[count % 4][0];
            const int row = outer[count / 64][1] + middle[count / 4 % 16][1] + inner[count % 4][1];
            rank[row][bit] = count;
        }
    }
};

constexpr Order order;

} // namespace

// Stipple 0 is the invisible end of a fade: it lacks the one position that the count would give it.
bool stippleBit(int number, int row, int bit) { return number == 0 || order.rank[row][bit] > number; }

std::array<uint16_t, 16> stipple(int index)
{
    static constexpr uint16_t pairs[6][2] = {{0, 0},      {0xAAAA, 0x5555}, {0xAAAA, 0xAAAA},
                                             {0, 0xFFFF}, {0xAAAA, 0xFFFF}, {0xAAAA, 0}};
    std::array<uint16_t, 16> rows{};
    int row = 0;
    for (uint16_t &bits : rows) {
        if (index > 255)
            bits = pairs[index - 256][row & 1];
        else
            for (int bit = 0; bit < 16; ++bit)
                bits = static_cast<uint16_t>(bits | (stippleBit(index, row, bit) ? 1u << bit : 0));
        ++row;
    }
    return rows;
}

} // namespace reference
