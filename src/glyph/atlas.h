// Text into an atlas: reads a character, has it rasterised, finds its place and writes its pixels.
#pragma once

#include "glyph/source.h"

namespace ninefold::glyph {

enum class Style { Plain, Rimmed };

// Draws the character at `text` into rs.tex0. Returns the next character, or null when `text` is null or the atlas is full.
char *drawCharacter(char *text, Style style, Source &source);

} // namespace ninefold::glyph
