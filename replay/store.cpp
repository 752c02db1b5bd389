#include "store.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace capture {

namespace {

// Memory around a block that nothing of it lies in. Addresses keep their place within a line.
constexpr uint64_t room = 256, line = 64;

} // namespace

std::map<uint64_t, Store::Block>::const_iterator Store::find(uint64_t address) const
{
    auto behind = blocks.upper_bound(address);
    if (behind == blocks.begin())
        return blocks.end();
    --behind;
    return address - behind->first < behind->second.size ? behind : blocks.end();
}

uint8_t *Store::at(uint64_t address) const
{
    const auto found = find(address);
    return found == blocks.end() ? nullptr : found->second.bytes + (address - found->first);
}

void Store::read(uint64_t address, uint64_t size, uint8_t *to) const
{
    std::memset(to, 0, size_t(size));
    const uint64_t end = address + size;
    auto block = blocks.upper_bound(address);
    if (block != blocks.begin())
        --block;
    for (; block != blocks.end() && block->first < end; ++block) {
        const uint64_t from = std::max(address, block->first), until = std::min(end, block->first + block->second.size);
        if (from < until)
            std::memcpy(to + (from - address), block->second.bytes + (from - block->first), size_t(until - from));
    }
}

std::vector<std::pair<uint64_t, uint64_t>> Store::ranges() const
{
    std::vector<std::pair<uint64_t, uint64_t>> all;
    for (const auto &[begin, block] : blocks)
        all.emplace_back(begin, block.size);
    return all;
}

void Store::clear()
{
    for (const auto &one : blocks)
        std::memset(one.second.bytes, 0, size_t(one.second.size));
}

uint64_t Store::addressOf(const void *memory) const
{
    for (const auto &[begin, block] : blocks)
        if (const uint64_t distance = uintptr_t(memory) - uintptr_t(block.bytes); distance < block.size)
            return begin + distance;
    return 0;
}

bool Store::ensure(uint64_t begin, uint64_t size)
{
    if (size == 0)
        return true;
    uint64_t end = begin + size;
    if (end < begin || size > limit)
        return false;
    if (const auto found = find(begin); found != blocks.end() && end - found->first <= found->second.size)
        return true;
    auto first = blocks.lower_bound(begin);
    if (first != blocks.begin() && std::prev(first)->first + std::prev(first)->second.size > begin)
        --first;
    auto last = first;
    uint64_t had = 0;
    for (; last != blocks.end() && last->first < end; ++last) {
        begin = std::min(begin, last->first);
        end = std::max(end, last->first + last->second.size);
        had += last->second.size;
    }
    if (total - had + (end - begin) > limit)
        return false;
    Block made{end - begin, nullptr, nullptr};
    made.storage.reset(new (std::nothrow) uint8_t[size_t(made.size + 2 * room + line)]());
    if (!made.storage)
        return false;
    uint8_t *const from = made.storage.get() + room;
    made.bytes = from + ((begin - uintptr_t(from)) & (line - 1));
    for (auto block = first; block != last; ++block)
        std::memcpy(made.bytes + (block->first - begin), block->second.bytes, size_t(block->second.size));
    total += made.size - had;
    blocks.erase(first, last);
    blocks.emplace(begin, std::move(made));
    return true;
}

} // namespace capture
