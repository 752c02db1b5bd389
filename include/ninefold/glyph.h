/* Glyphs into an atlas. */
#ifndef NINEFOLD_GLYPH_H
#define NINEFOLD_GLYPH_H

#include <ninefold/render_state.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Rasterises the character at `text` (code page 932: one byte, or a lead byte and a second) with the font of rs.font... into the
 * atlas rs.tex0, at the cursor rs.fontCursorX, rs.fontCursorY, and leaves its place and metrics in rs.glyph.... Pixels are white
 * with alpha coverage; transparent ones are 0. Returns the next character, or null if `text` is null or the atlas is full. A
 * NUL is a character like any other.
 */
NINEFOLD_API char *CreateFontTexture(char *text);

/* The same with a dark rim: the colour falls from light grey inside the glyph to black at its border, within the glyph's own box. */
NINEFOLD_API char *CreateFontTextureFuchi(char *text);

#ifdef __cplusplus
}
#endif

#endif
