// What differs between platforms: aligned memory and reading a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace ninefold {

// `bytes` of memory aligned to a cache line, as allocated; null on failure.
void *allocateAligned(size_t bytes);
void freeAligned(void *memory);

struct FileBytes {
    std::unique_ptr<uint8_t[]> data;
    size_t size = 0;
};

// Reads the whole file, which others may have open for whatever they like. False if it cannot be opened; a read error leaves the
// bytes up to it.
bool readFile(const char *path, FileBytes &bytes);

} // namespace ninefold
