#include "world.h"

#include <new>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace support {

namespace {

constexpr size_t gap = 0x10000; // a multiple of every page size in use

std::byte *reserve(size_t size)
{
#ifdef _WIN32
    void *memory = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
#else
    void *memory = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        memory = nullptr;
#endif
    if (memory == nullptr)
        throw std::bad_alloc();
    return static_cast<std::byte *>(memory);
}

void open(std::byte *memory, size_t size)
{
#ifdef _WIN32
    const bool done = VirtualAlloc(memory, size, MEM_COMMIT, PAGE_READWRITE) != nullptr;
#else
    const bool done = mprotect(memory, size, PROT_READ | PROT_WRITE) == 0;
#endif
    if (!done)
        throw std::bad_alloc();
}

} // namespace

World::World(bool large) : textures(textureLimit)
{
    const auto bytes = large ? largeSlotBytes : slotBytes;
    size = gap;
    for (int slot = 0; slot < slotCount; ++slot)
        size += bytes(slot) + gap;
    memory = reserve(size);
    std::byte *next = memory + gap;
    for (int slot = 0; slot < slotCount; ++slot) {
        slots[slot] = next;
        open(next, bytes(slot));
        next += bytes(slot) + gap;
    }
}

World::~World()
{
#ifdef _WIN32
    VirtualFree(memory, 0, MEM_RELEASE);
#else
    munmap(memory, size);
#endif
}

} // namespace support
