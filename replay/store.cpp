#include "store.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace capture {

namespace {

// Memory around a block that nothing of it lies in. Addresses keep their place within a line.
constexpr uint64_t room = 256, line = 64;

constexpr uint64_t partSize = 1 << 16; // of images
size_t partCount(uint64_t size) { return size_t((size + partSize - 1) / partSize); }
size_t sizeOfPart(uint64_t size, size_t part) { return size_t(std::min(partSize, size - part * partSize)); }

bool isZero(const uint8_t *bytes, size_t size) { return bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0; }

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

bool Store::make(uint64_t begin, uint64_t size, Block &block)
{
    block.size = size;
    block.storage.reset(new (std::nothrow) uint8_t[size_t(size + 2 * room + line)]());
    uint8_t *const from = block.storage.get() + room;
    block.bytes = from + ((begin - uintptr_t(from)) & (line - 1));
    return block.storage != nullptr;
}

Store::Image Store::image(const Image *earlier) const
{
    Image image;
    for (const auto &[begin, block] : blocks) {
        Image::Block &taken = image.blocks[begin];
        taken.size = block.size;
        const Image::Block *known = nullptr;
        if (earlier)
            if (const auto found = earlier->blocks.find(begin);
                found != earlier->blocks.end() && found->second.size == block.size)
                known = &found->second;
        for (size_t part = 0; part < partCount(block.size); ++part) {
            const uint8_t *const bytes = block.bytes + part * partSize;
            const size_t size = sizeOfPart(block.size, part);
            const Image::Part *const like = known ? &known->parts[part] : nullptr;
            if (like && (*like ? std::memcmp(like->get(), bytes, size) == 0 : isZero(bytes, size))) {
                taken.parts.push_back(*like);
            } else if (isZero(bytes, size)) {
                taken.parts.emplace_back();
            } else {
                const std::shared_ptr<uint8_t[]> copy(new uint8_t[size]);
                std::memcpy(copy.get(), bytes, size);
                taken.parts.push_back(copy);
                image.own += size;
            }
        }
    }
    return image;
}

bool Store::restore(const Image &image)
{
    std::erase_if(blocks, [&](const auto &one) {
        const auto found = image.blocks.find(one.first);
        return found == image.blocks.end() || found->second.size != one.second.size;
    });
    total = 0;
    for (const auto &[begin, taken] : image.blocks) {
        Block &block = blocks[begin];
        if (!block.storage && !make(begin, taken.size, block)) {
            blocks.erase(begin);
            return false;
        }
        total += taken.size;
        for (size_t part = 0; part < taken.parts.size(); ++part) {
            uint8_t *const to = block.bytes + part * partSize;
            if (const uint8_t *const from = taken.parts[part].get())
                std::memcpy(to, from, sizeOfPart(taken.size, part));
            else
                std::memset(to, 0, sizeOfPart(taken.size, part));
        }
    }
    return true;
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
    Block made;
    if (!make(begin, end - begin, made))
        return false;
    for (auto block = first; block != last; ++block)
        std::memcpy(made.bytes + (block->first - begin), block->second.bytes, size_t(block->second.size));
    total += made.size - had;
    blocks.erase(first, last);
    blocks.emplace(begin, std::move(made));
    return true;
}

} // namespace capture
