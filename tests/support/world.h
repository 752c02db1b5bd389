// The memory of one scene. Every buffer that a draw may touch has a slot of its own, and there is no access to the pages on
// either side of a slot. Two worlds have the same layout: the library draws in one, the reference in the other.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <ninefold/texture.h>

namespace support {

constexpr int levelLimit = 16;

enum Slot : int {
    noSlot = -1,
    frameSlot,
    planeSlot, // Shahei plane
    prioritySlot, // zBuffer
    lines0Slot,
    lines1Slot,
    shiftsSlot, // scanShift
    runsSlot, // maps of tex0
    zerosSlot,
    ruleSlot,
    stale0Slot,
    stale1Slot,
    tex0Slot, // and its levels
    tex1Slot = tex0Slot + levelLimit, // and its levels
    slotCount = tex1Slot + levelLimit
};

// What lies around a buffer in its slot is compared too. For the frame buffer and the planes there is room for a source that
// hangs over their ends.
constexpr uint32_t slotBytes(int slot)
{
    switch (slot) {
    case frameSlot: return 0xA0000;
    case planeSlot: return 0x20000;
    case prioritySlot: return 0x40000;
    case lines0Slot:
    case lines1Slot:
    case shiftsSlot: return 0x10000;
    default: return 0x50000;
    }
}

// The same where frame buffers and textures go up to 4096 by 4096; a level has a quarter of the pixels of the one above it.
constexpr uint32_t largeSlotBytes(int slot)
{
    constexpr uint32_t pixels = 0x1000000, room = 0x10000;
    switch (slot) {
    case frameSlot: return 4 * pixels + room;
    case planeSlot:
    case zerosSlot: return pixels / 8 + room;
    case prioritySlot:
    case runsSlot: return pixels + room;
    case lines0Slot:
    case lines1Slot: return 0x80000;
    case shiftsSlot: return 0x10000;
    default: {
        const int level = slot < tex0Slot ? 0 : (slot - tex0Slot) % levelLimit;
        return (4 * pixels >> std::min(2 * level, 10)) + room;
    }
    }
}

// A byte position in a slot. It may lie outside of it where only what is reached from it lies inside.
struct Place {
    int slot = noSlot;
    int64_t offset = 0;
};

class World {
public:
    static constexpr int textureLimit = 2 * levelLimit + 4;

    explicit World(bool large = false);
    ~World();
    World(const World &) = delete;
    World &operator=(const World &) = delete;

    std::byte *begin(int slot) const { return slots[slot]; }

    template <class T>
    T *at(Place place) const
    {
        if (place.slot == noSlot)
            return nullptr;
        return reinterpret_cast<T *>(reinterpret_cast<uintptr_t>(slots[place.slot]) + static_cast<uintptr_t>(place.offset));
    }

    // Whether an address lies in the memory, guard pages included.
    bool holds(const void *address) const
    {
        const uintptr_t distance = reinterpret_cast<uintptr_t>(address) - reinterpret_cast<uintptr_t>(memory);
        return distance < size;
    }

    std::byte *memory = nullptr;
    std::vector<Texture> textures; // the records that rs points to

private:
    std::byte *slots[slotCount] = {};
    size_t size = 0;
};

} // namespace support
