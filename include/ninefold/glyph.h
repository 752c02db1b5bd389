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
 * NUL is a character like any other: the caller stops at the end of its string. A lead byte always takes the byte behind it.
 *
 * The glyph then stands at glyphX, glyphY, glyphWidth by glyphHeight pixels. With the pen at (x, y) on the base line it is
 * drawn as a unit-scale rectangle with its top left corner at (x + glyphOriginX, y - glyphOriginY), and the pen moves on by
 * glyphAdvance.
 *
 * Glyphs are packed in rows without margins, and nothing is remembered: every call rasterises anew. A glyph that does not fit
 * the row starts the next at fontLineBottom. The first glyph of a row does not count for the row's own lower edge, so the row
 * after may overlap a tall one. A full atlas leaves the metrics of the glyph that did not fit, and perhaps the cursor on a new
 * row. An empty glyph (a space, or any character where there is no font) sets pixel 0 of the atlas to 0.
 *
 * Mono glyphs (NINEFOLD_QUALITY_MONO) whose width modulo 32 is 1 to 7 come out sheared, below 8 as copies of their first row.
 *
 * Faces come from Windows, or elsewhere from fontconfig; where there is no face of that name another one is taken.
 */
NINEFOLD_API char *CreateFontTexture(char *text);

/* The same with a dark rim (fuchi: rim, border): the colour falls from light grey (252) inside the glyph to black at its
 * border, within the glyph's own box. An empty glyph leaves pixel 0 of the atlas alone and clears its own box: a pixel for a
 * space, none where there is no font. */
NINEFOLD_API char *CreateFontTextureFuchi(char *text);

#ifdef __cplusplus
}
#endif

#endif
