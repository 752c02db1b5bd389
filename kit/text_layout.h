// From UTF-8 to lines of glyphs: paragraphs, directions, faces, shapes, line breaks, alignment.
#pragma once

#include "text_font.h"

#include <string_view>

namespace nfk::text {

// A glyph of a line, 26.6 from the text's top left, y down.
struct PlacedGlyph {
    Face *face;
    uint32_t glyph;
    int32_t x, y, advance;
    int32_t byte; // of the first character of its cluster
};

struct Line {
    int32_t begin, end; // bytes
    int32_t x, width; // pixels, 26.6
    int32_t baseline; // pixels
    int32_t firstGlyph, glyphCount;
    int32_t firstCaret, caretCount;
    bool rightToLeft;
};

// Where a caret stands before a character.
struct Caret {
    int32_t byte, x; // 26.6 from the text's left
};

struct Layout {
    std::vector<Line> lines;
    std::vector<PlacedGlyph> glyphs;
    std::vector<Caret> carets; // line by line, by byte within each; the last of a line is behind it
    int32_t width, lineHeight; // pixels
    int32_t missing;
};

// May throw std::bad_alloc.
Layout layOut(Font &font, std::string_view utf8, const NfkTextStyle &style);

} // namespace nfk::text
