#include "shadow.h"

#include <algorithm>
#include <cstring>

namespace capture {

uint8_t *Shadow::page(uintptr_t number)
{
    if (number == lastNumber)
        return last;
    std::unique_ptr<uint8_t[]> &found = pages[number];
    if (!found)
        found = std::make_unique<uint8_t[]>(pageSize);
    lastNumber = number;
    return last = found.get();
}

void Shadow::copy(uintptr_t address, size_t size, uint8_t *to)
{
    for (size_t at = 0; at < size;) {
        const size_t part = std::min(size - at, readable(address + at));
        std::memcpy(to + at, read(address + at), part);
        at += part;
    }
}

Shadow::Box Shadow::compare(const Rows &rows)
{
    Box box{rows.rowBytes, 0, rows.rows, 0};
    for (size_t row = 0; row < rows.rows; ++row) {
        size_t first = rows.rowBytes, end = 0;
        for (size_t at = 0; at < rows.rowBytes;) {
            const uintptr_t address = rows.row(row) + at;
            const size_t size = std::min(rows.rowBytes - at, readable(address));
            const auto *const host = reinterpret_cast<const uint8_t *>(address);
            const uint8_t *const held = read(address);
            if (std::memcmp(host, held, size) != 0) {
                size_t low = 0, high = size;
                while (host[low] == held[low])
                    ++low;
                while (host[high - 1] == held[high - 1])
                    --high;
                first = std::min(first, at + low);
                end = at + high;
            }
            at += size;
        }
        if (first >= end)
            continue;
        box.left = std::min(box.left, first / rows.element * rows.element);
        box.right = std::max(box.right, std::min(rows.rowBytes, (end + rows.element - 1) / rows.element * rows.element));
        box.top = std::min(box.top, row);
        box.bottom = row + 1;
    }
    return box;
}

void Shadow::take(const Rows &rows, const Box &box)
{
    for (size_t row = box.top; row < box.bottom; ++row)
        store(rows.row(row) + box.left, reinterpret_cast<const uint8_t *>(rows.row(row) + box.left), box.right - box.left);
}

void Shadow::store(uintptr_t address, const uint8_t *from, size_t size)
{
    for (size_t at = 0; at < size;) {
        const size_t part = std::min(size - at, readable(address + at));
        std::memcpy(page((address + at) / pageSize) + (address + at) % pageSize, from + at, part);
        at += part;
    }
}

} // namespace capture
