// The memory that a capture is drawn in: blocks at addresses of the recorded host, each in memory of our own. Bytes are 0 until an
// event or a draw changes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace capture {

class Store {
public:
    // Of all blocks. What would go beyond is refused.
    static constexpr uint64_t usualLimit = sizeof(void *) == 8 ? uint64_t{1} << 31 : uint64_t{1} << 29;
    explicit Store(uint64_t largest = usualLimit) : limit(largest) {}

    // Makes all of a range one block. Blocks that it meets become part of it and move. False beyond the limit, or without memory.
    bool ensure(uint64_t begin, uint64_t size);
    // Of an address inside a block, else null.
    uint8_t *at(uint64_t address) const;
    // Copies bytes out; what no block holds is 0.
    void read(uint64_t address, uint64_t size, uint8_t *to) const;
    // Addresses and sizes of the blocks.
    std::vector<std::pair<uint64_t, uint64_t>> ranges() const;
    // Fills all of it with 0.
    void clear();
    // All that it holds at some time. Parts that are as in an earlier image share that one's memory.
    class Image {
    public:
        size_t bytes() const { return own; } // of parts that it shares with no earlier image

    private:
        friend class Store;
        using Part = std::shared_ptr<const uint8_t[]>; // null: zeros
        struct Block {
            uint64_t size;
            std::vector<Part> parts;
        };
        std::map<uint64_t, Block> blocks;
        size_t own = 0;
    };
    Image image(const Image *earlier) const;
    bool restore(const Image &image); // false without memory

    // The recorded address of memory that at() gave.
    uint64_t addressOf(const void *memory) const;

private:
    struct Block {
        uint64_t size;
        std::unique_ptr<uint8_t[]> storage;
        uint8_t *bytes;
    };
    std::map<uint64_t, Block> blocks;
    uint64_t total = 0, limit;

    std::map<uint64_t, Block>::const_iterator find(uint64_t address) const;
    static bool make(uint64_t begin, uint64_t size, Block &block);
};

} // namespace capture
