// UTF-8, read one character at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nfk {

constexpr char32_t replacement = 0xFFFD;

// The character at `at`, which moves on behind it. A byte that begins no character is U+FFFD, and so are all bytes together of a
// character that breaks off, up to the one that does not belong to it.
inline char32_t nextCharacter(std::string_view text, size_t &at)
{
    const auto byte = [&](size_t i) { return i < text.size() ? static_cast<uint8_t>(text[i]) : uint8_t{0}; };
    const uint8_t first = byte(at++);
    if (first < 0x80)
        return first;
    const int more = first >= 0xC2 && first <= 0xDF ? 1 : (first & 0xF0) == 0xE0 ? 2 : first >= 0xF0 && first <= 0xF4 ? 3 : 0;
    if (more == 0)
        return replacement;
    // The second byte rules out longer forms than needed, surrogates, and what is beyond U+10FFFF.
    uint8_t least = 0x80, most = 0xBF;
    if (first == 0xE0)
        least = 0xA0;
    else if (first == 0xED)
        most = 0x9F;
    else if (first == 0xF0)
        least = 0x90;
    else if (first == 0xF4)
        most = 0x8F;
    char32_t character = first & (0x3F >> more);
    for (int i = 0; i < more; ++i) {
        const uint8_t next = byte(at);
        if (next < least || next > most)
            return replacement;
        least = 0x80, most = 0xBF;
        character = character << 6 | (next & 0x3F);
        ++at;
    }
    return character;
}

} // namespace nfk
