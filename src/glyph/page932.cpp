#include "glyph/page932.h"

#include "glyph/page932_rows.h"

#include <iterator>

namespace ninefold::glyph {
namespace {

constexpr uint32_t rowLength = 0xC0; // second bytes from 0x40 on
static_assert(std::size(rows932) == (31 + 16 + 3) * rowLength + 1);

} // namespace

char16_t utf16Of932(uint8_t byte)
{
    if (byte < 0x80)
        return byte;
    if (byte >= 0xA1 && byte <= 0xDF)
        return static_cast<char16_t>(0xFF61 + byte - 0xA1); // half-width katakana
    return undefined932;
}

char16_t utf16Of932(uint8_t lead, uint8_t second)
{
    if (!isLeadByte932(lead) || second < 0x40 || second == 0x7F || second > 0xFC)
        return undefined932;
    if (lead >= 0xF0 && lead <= 0xF9) // the private use area, in order
        return static_cast<char16_t>(0xE000 + (lead - 0xF0) * 188 + second - 0x40 - (second > 0x7F));
    const uint32_t row = lead <= 0x9F ? lead - 0x81 : lead <= 0xEF ? lead - 0xE0 + 31 : lead - 0xFA + 47;
    const char16_t character = rows932[row * rowLength + second - 0x40];
    return character == u'.' ? undefined932 : character;
}

char16_t drawnCharacter932(uint32_t code)
{
    const auto lead = static_cast<uint8_t>(code >> 8), last = static_cast<uint8_t>(code);
    const bool isPair = isLeadByte932(lead);
    const char16_t character = isPair ? utf16Of932(lead, last) : utf16Of932(last);
    return character == undefined932 && (isPair || isLeadByte932(last)) ? u'\u30FB' : character;
}

bool utf8Of932(const char *text, char *utf8)
{
    const auto put = [&](uint32_t byte) { *utf8++ = static_cast<char>(byte); };
    while (*text) {
        const auto first = static_cast<uint8_t>(*text++);
        char16_t character = utf16Of932(first);
        if (isLeadByte932(first) && *text)
            character = utf16Of932(first, static_cast<uint8_t>(*text++));
        if (character == undefined932)
            return false;
        if (character < 0x80) {
            put(character);
        } else {
            if (character < 0x800) {
                put(0xC0 | character >> 6);
            } else {
                put(0xE0 | character >> 12);
                put(0x80 | (character >> 6 & 0x3F));
            }
            put(0x80 | (character & 0x3F));
        }
    }
    *utf8 = 0;
    return true;
}

} // namespace ninefold::glyph
