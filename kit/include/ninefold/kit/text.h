/* Text in any language: fonts by name, paragraphs laid out, measured and drawn by kernels. */
#ifndef NINEFOLD_KIT_TEXT_H
#define NINEFOLD_KIT_TEXT_H

#include <ninefold/kit/api.h>

/* Where the lines of a text stand in its width. */
/* clang-format off */
#define NFK_ALIGNMENTS(X) \
    X(NFK_ALIGN_START,  0, "start",  "left, in paragraphs of right-to-left writing right") \
    X(NFK_ALIGN_LEFT,   1, "left",   "left") \
    X(NFK_ALIGN_CENTRE, 2, "centre", "the middle") \
    X(NFK_ALIGN_RIGHT,  3, "right",  "right")
/* clang-format on */

enum { NFK_ALIGNMENTS(NINEFOLD_ENUMERATOR) };

/* Limits; what lies beyond is refused. */
enum {
    NFK_FONT_MAX_PIXELS = 512, /* size of a font */
    NFK_TEXT_MAX_RIM = 64, /* width of a rim, pixels */
    NFK_TEXT_MAX_BYTES = 1 << 20, /* length of a text */
    NFK_TEXT_MAX_SIZE = 1 << 24, /* width and height of a text, and those of a style, pixels */
    NFK_TEXT_MAX_POSITION = 1 << 28 /* of a text, pixels either way */
};

/* A face of one size, the faces that help it out, and an atlas of the glyphs that were drawn with them. */
typedef struct NfkFont NfkFont;

/* A text laid out in a font: lines of glyphs. It keeps what it needs of the font, which may be closed before it. */
typedef struct NfkText NfkText;

typedef struct NfkFontInfo {
    const char *family, *style, *file; /* of the face that was really found, UTF-8; they live as long as the font */
    int32_t face; /* its number in the file */
    int32_t found; /* 1: it has the family name that was asked for; 0: it stands in for it */
    int32_t ascent, descent; /* above and below the base line, pixels, both positive */
    int32_t lineHeight; /* from base line to base line, pixels */
} NfkFontInfo;

/* How a text looks. All zeros is a text without colour, which draws nothing. */
typedef struct NfkTextStyle {
    uint32_t color; /* 0xAARRGGBB of the glyphs; alpha 255 is opaque, 0 leaves them out */
    uint32_t rimColor; /* the same of the rim, which lies under all glyphs */
    int32_t rim; /* how far the rim reaches out from the glyphs, pixels; 0: no rim */
    int32_t align; /* NFK_ALIGN_... */
    int32_t width; /* lines are wrapped to fit it, pixels; 0: they end only where the text says so */
    int32_t lineHeight; /* from base line to base line, pixels; 0: that of the font */
} NfkTextStyle;

/* All in pixels from the text's top left. */
typedef struct NfkTextSize {
    int32_t width; /* of the widest line, by the advances of its glyphs; spaces at which a line was wrapped do not count */
    int32_t height; /* all line heights together */
    int32_t lines, glyphs; /* how many */
    int32_t missing; /* characters that no font of the system has: drawn as an empty box */
    NfkRect ink; /* what drawing the whole text can change: the box of all pixels of glyphs and rim. Empty: width and height 0 */
} NfkTextSize;

typedef struct NfkTextLine {
    int32_t begin, end; /* its bytes in the text; the spaces or the line end that follow are outside */
    int32_t x, width; /* of its left edge, and of its advances rounded up, pixels */
    int32_t baseline; /* pixels below the text's top */
    int32_t rightToLeft; /* 1: its paragraph runs from right to left */
} NfkTextLine;

typedef struct NfkTextGlyph {
    uint32_t glyph; /* number in its face; 0: the box of a missing character */
    const char *family; /* of its face; lives as long as the text */
    int32_t line; /* number of its line, from 0 */
    int32_t byte; /* of the first character it stands for */
    int32_t x, y; /* where its origin is, 1/64 pixel from the text's top left, y down */
} NfkTextGlyph;

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Opens the face that fits `name` best, `pixels` high (the em, 1 to NFK_FONT_MAX_PIXELS). `name` is a family, or a family with
 * properties in fontconfig's way of writing: "DejaVu Sans:bold", "VL Gothic:lang=ja". Null or "" is the system's default. Where
 * there is no such family another face stands in, as nfkGetFontInfo says. Null, with a text, if the system has no font at all,
 * and for sizes out of range. A font is closed by nfkCloseFont.
 *
 * Characters that the face lacks come from the first other face that has them, in fontconfig's order for `name`; lang=... in it
 * decides which writing the signs come in that Chinese, Japanese and Korean share.
 */
NINEFOLD_KIT_API NfkFont *nfkOpenFont(const char *name, int32_t pixels);

/* The same with a face of a font file, counted from 0; it must be scalable. Others help out as for the family it names. */
NINEFOLD_KIT_API NfkFont *nfkOpenFontFile(const char *path, int32_t face, int32_t pixels);

/* Null does nothing. */
NINEFOLD_KIT_API void nfkCloseFont(NfkFont *font);

/* Returns 1, or 0 with a text if an argument is null. */
NINEFOLD_KIT_API int nfkGetFontInfo(const NfkFont *font, NfkFontInfo *info);

/* The texture that the font's glyphs lie in, white with alpha coverage: null before the first is drawn or measured. It is the
 * font's, and any later text may put another in its place. */
NINEFOLD_KIT_API Texture *nfkGetFontAtlas(const NfkFont *font);

/*
 * Lays out `utf8` (to its NUL; bytes that are not UTF-8 become U+FFFD each, or each broken character). Paragraphs end at line
 * ends of any kind; each has the direction of its first letter, and mixes right-to-left and left-to-right writing by the rules of
 * Unicode. Lines are wrapped by the rules of Unicode, within Thai text between words; on Windows by simpler ones, at spaces,
 * hyphens and ideographs, within Thai text at its spaces only. A word too long for the width is broken between characters. A tab is a space; other control characters are left out. A line end at the end of the text begins another,
 * empty line. `style` null: opaque white, no rim, no wrapping. Null, with a text, for null, for values out of range, and when
 * memory runs out.
 */
NINEFOLD_KIT_API NfkText *nfkMakeText(NfkFont *font, const char *utf8, const NfkTextStyle *style);

/* Null does nothing. */
NINEFOLD_KIT_API void nfkDeleteText(NfkText *text);

/* Each of these returns 1, or 0 with a text: an argument is null, or there is no such line, glyph or byte. */
NINEFOLD_KIT_API int nfkMeasureText(NfkText *text, NfkTextSize *size);
NINEFOLD_KIT_API int nfkGetTextLine(const NfkText *text, int32_t line, NfkTextLine *out);
/* Glyphs count line by line, from left to right within each. */
NINEFOLD_KIT_API int nfkGetTextGlyph(const NfkText *text, int32_t glyph, NfkTextGlyph *out);

/* Where a caret stands before byte `byte` of the text (its length: after all): x and y are those of its top, the width is 0, the
 * height a line's. Within a ligature its width is shared out among its characters; within a character it stands before it. */
NINEFOLD_KIT_API int nfkGetTextCaret(const NfkText *text, int32_t byte, NfkRect *out);

/*
 * Draws a text with its top left at (x, y), relative to the origin of rs like any vertex, onto the frame buffer and within the
 * clip rectangle of rs, by blend NINEFOLD_BLEND_ALPHA_FAST; planes have no say. `alpha`, 0 to 255, fades all of it as one
 * picture. `bytes` says how much of the text appears, for text that writes itself: what stands for its first `bytes` bytes;
 * negative: all of it. Lines do not move meanwhile. rs is left as it was. Returns 1, or 0 with a text: no frame buffer, an
 * argument out of range, a glyph too large for an atlas, no memory.
 */
NINEFOLD_KIT_API int nfkDrawText(NfkText *text, int32_t x, int32_t y, int32_t alpha, int32_t bytes);

/* All in one: nfkMakeText, nfkDrawText with alpha 255, nfkDeleteText. The glyphs stay in the font's atlas. */
NINEFOLD_KIT_API int nfkWrite(NfkFont *font, const char *utf8, int32_t x, int32_t y, const NfkTextStyle *style);

/*
 * CreateFontTexture and CreateFontTextureFuchi for the UTF-8 character at `utf8`: they see the same character in code page 932,
 * and do with rs what they always do. Of several codes of one character the lowest is taken. Returns the next character. Null,
 * with a text and rs as it was, if code page 932 has no such character, if `utf8` or rs.tex0 is null; null, with a text and rs as
 * the library left it, if the atlas is full. A NUL is a character like any other.
 */
NINEFOLD_KIT_API const char *nfkCreateFontTexture(const char *utf8);
NINEFOLD_KIT_API const char *nfkCreateFontTextureFuchi(const char *utf8);

/* Writes `utf8` in code page 932 with a NUL, as rs.fontName wants it, into `size` bytes. Returns 1, or 0 with a text if the page
 * lacks a character or the room is too small. */
NINEFOLD_KIT_API int nfkEncodePage932(const char *utf8, char *out, uint32_t size);

#ifdef __cplusplus
}
#endif

#endif
