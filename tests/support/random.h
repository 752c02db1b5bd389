// Numbers that are the same on every platform: scenes are made with them. A fuzzer hands in the bytes that they are made of; when
// those are used up, numbers follow from the seed again.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

namespace support {

class Random {
public:
    explicit Random(uint64_t seed, std::span<const uint8_t> given = {}) : state(seed), bytes(given) {}

    uint64_t bits()
    {
        uint64_t z = state += 0x9E3779B97F4A7C15;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        return z ^ z >> 31;
    }

    uint32_t word() { return !bytes.empty() ? fromBytes(4) : static_cast<uint32_t>(bits() >> 32); }

    // 0 to count - 1
    uint32_t below(uint32_t count)
    {
        if (!bytes.empty())
            return count == 0 ? 0 : fromBytes(count <= 0x100 ? 1 : count <= 0x10000 ? 2 : 4) % count;
        return static_cast<uint32_t>((bits() >> 32) * count >> 32);
    }

    // low to high, both included
    int32_t between(int32_t low, int32_t high)
    {
        return low + static_cast<int32_t>(below(static_cast<uint32_t>(high - low) + 1));
    }

    bool percent(uint32_t share) { return below(100) < share; }

    template <class T>
    T pick(std::initializer_list<T> values)
    {
        return values.begin()[below(static_cast<uint32_t>(values.size()))];
    }

private:
    uint64_t state;
    std::span<const uint8_t> bytes;

    uint32_t fromBytes(int count)
    {
        uint32_t value = 0;
        for (; count > 0 && !bytes.empty(); --count, bytes = bytes.subspan(1))
            value = value << 8 | bytes.front();
        return value;
    }
};

} // namespace support
