// Text on the screen by the library's glyph functions. As text of its own a state of it is KEY=VALUE joined by '&', values
// percent-encoded as in addresses:
//
//     text=Hello%20there&style=rimmed&fontHeight=40
#pragma once

#include "choices.h"
#include "state.h"

#include <ninefold/ninefold.h>

#include <string>
#include <string_view>
#include <vector>

namespace page {

constexpr uint32_t atlasSide = 256;
constexpr size_t longest = 400; // bytes of a text

struct Text {
    std::string text; // UTF-8; a line feed begins a line
    std::string font; // rs.fontName
    Style style;
    Picture back;
    int32_t fontHeight, fontWeight, fontItalic, fontQuality;
    uint32_t colour;
};

// A glyph that was drawn: its character in code page 932, what the glyph function told, and the pen that it was drawn at.
struct Glyph {
    uint32_t code;
    int32_t x, y, width, height, originX, originY, advance;
    int32_t penX, penY;
};

struct DrawnText {
    std::vector<Glyph> glyphs;
    bool full; // the atlas took no more
};

struct Quality {
    const char *word, *meaning, *name;
    int32_t value;
};
#define PAGE_QUALITY(name, value, word, meaning) {word, meaning, #name, value},
inline constexpr Quality qualities[] = {NINEFOLD_QUALITIES(PAGE_QUALITY)};
#undef PAGE_QUALITY

struct StyleInfo {
    char *(*create)(char *);
    const char *function;
};
#define PAGE_STYLE(name, word, function, title) {function, #function},
inline constexpr StyleInfo styles[] = {PAGE_STYLES(PAGE_STYLE)};
#undef PAGE_STYLE

struct TextField {
    const char *name;
    int32_t Text::*field;
    int32_t least, most;
};
#define PAGE_FIELD(field, least, most) {#field, &Text::field, least, most},
inline constexpr TextField textFields[] = {PAGE_TEXT_FIELDS(PAGE_FIELD)};
#undef PAGE_FIELD

// Reads a state. Otherwise the result says which key is wrong and what it may be; empty: all is well.
std::string parse(std::string_view state, Text &text);

// By what its glyphs are drawn: white ones as they are, others multiplied by the colour.
State drawingState(const Text &text);

// All of it: the screen before, the atlas, and each glyph on the screen.
DrawnText draw(const Text &text);
const uint32_t *atlasPixels(); // atlasSide by atlasSide

} // namespace page
