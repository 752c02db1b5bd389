// Code page 932, in which texts and names of fonts are. It is here as data: many systems' converters lack it, and others differ
// in what they take as undefined.
#pragma once

#include <cstdint>

namespace ninefold::glyph {

constexpr bool isLeadByte932(uint8_t byte) { return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC); }

// The replacement character, which the page itself does not have.
constexpr char16_t undefined932 = 0xFFFD;

// The UTF-16 of a character of one byte, of two; undefined932 if the page has none.
char16_t utf16Of932(uint8_t byte);
char16_t utf16Of932(uint8_t lead, uint8_t second);

// The UTF-16 to draw for a glyph code: a byte, sign-extended or not, or a lead byte and a second one. The katakana middle dot is
// the page's own stand-in for pairs that it does not define, and for lead bytes alone; other bytes may be undefined932.
char16_t drawnCharacter932(uint32_t code);

// Writes `text` in UTF-8, at most 3 bytes for each of its own and a NUL. Returns false, with `utf8` unspecified, if a part of it
// is undefined.
bool utf8Of932(const char *text, char *utf8);

} // namespace ninefold::glyph
