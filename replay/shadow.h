// What replay's memory will hold at each address of the host's: zeros at first, then what the capture's events and its draws leave.
#pragma once

#include "reach.h"

#include <memory>
#include <unordered_map>

namespace capture {

class Shadow {
public:
    // A part of rows: rows from top to bottom, bytes of each from left to right, ends exclusive.
    struct Box {
        size_t left = 0, right = 0, top = 0, bottom = 0;
        bool empty() const { return top >= bottom; }
    };
    // Where the host's memory differs, in whole elements.
    Box compare(const Rows &rows);
    // Takes the host's memory over.
    void take(const Rows &rows, const Box &box);
    // Other bytes than the host's.
    void store(uintptr_t address, const uint8_t *from, size_t size);
    const uint8_t *read(uintptr_t address) { return page(address / pageSize) + address % pageSize; }
    void copy(uintptr_t address, size_t size, uint8_t *to);
    static size_t readable(uintptr_t address) { return pageSize - address % pageSize; } // bytes from there that read() gives

private:
    static constexpr uintptr_t pageSize = 0x10000;
    std::unordered_map<uintptr_t, std::unique_ptr<uint8_t[]>> pages;
    uintptr_t lastNumber = ~uintptr_t{0};
    uint8_t *last = nullptr;

    uint8_t *page(uintptr_t number);
};

} // namespace capture
