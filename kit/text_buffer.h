// Texts into buffers of the host's.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace nfk {

// Copies `text` to `buffer`, cut to its size; the length of the whole.
inline uint32_t copyText(const std::string &text, char *buffer, uint32_t size)
{
    if (buffer && size > 0) {
        const size_t length = text.size() < size ? text.size() : size - 1;
        std::memcpy(buffer, text.data(), length);
        buffer[length] = 0;
    }
    return uint32_t(text.size());
}

} // namespace nfk
