#include "pools.h"

#include <vector>

#include "random.h"

namespace support {

static std::vector<uint32_t> makePool(int pool)
{
    Random random(0x9001 + static_cast<uint64_t>(pool));
    std::vector<uint32_t> words(poolWords);
    uint32_t left = 0;
    bool empty = false;
    uint32_t colour = 0;
    for (uint32_t &word : words) {
        const uint32_t noise = random.word();
        switch (pool) {
        case noisePool: word = random.percent(30) ? 0 : noise; break;
        case solidPool: word = noise | (noise == 0); break;
        case extremePool: {
            static constexpr uint8_t edges[8] = {0x00, 0x01, 0x02, 0x7F, 0x80, 0x81, 0xFE, 0xFF};
            word = 0;
            for (int shift = 0; shift < 32; shift += 8)
                word |= static_cast<uint32_t>(edges[noise >> shift & 7]) << shift;
            if (random.percent(20))
                word = 0;
            break;
        }
        case alphaPool:
            word = random.percent(10)   ? 0
                   : random.percent(40) ? noise | 0xFF000000
                   : random.percent(50) ? noise & 0xFFFFFF
                                        : noise;
            break;
        case spritePool:
            if (left == 0) {
                left = random.pick<uint32_t>({1, 3, 7, 8, 9, 15, 16, 17, 24, 33, 48});
                colour = random.word() % 4;
            }
            --left;
            word = colour == 0 ? 0 : colour == 1 ? noise & 0xFFFFFF : colour == 2 ? noise | 0xFF000000 : noise;
            break;
        default: // runs, of noise or of one colour
            if (left == 0) {
                left = random.pick<uint32_t>(
                    {1, 2, 3, 5, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 126, 127, 128, 129, 255, 256, 257, 300});
                empty = !empty;
                colour = noise | 1;
            }
            --left;
            word = empty ? 0 : pool == runPool ? noise | 1 : colour;
            break;
        }
    }
    return words;
}

const std::byte *poolBytes(Pool pool)
{
    static const std::vector<uint32_t> pools[poolCount] = {makePool(0), makePool(1), makePool(2), makePool(3),
                                                           makePool(4), makePool(5), makePool(6)};
    return reinterpret_cast<const std::byte *>(pools[pool].data());
}

} // namespace support
