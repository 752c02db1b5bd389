// What the page lets its user choose from beside the lists of the library: pictures, contents of the planes, tables. Each list
// stands once, X(NAME, word, title): words stand in addresses and never change their meaning.
#pragma once

namespace page {

/* clang-format off */

// How a picture comes about: a file of gallery/pictures as it is; keyed, magenta made transparent; matte, with an elliptic
// alpha; or made by pictures.cpp. X(NAME, word, file, treatment, title)
#define PAGE_PICTURES(X) \
    X(COFFEE,   "coffee",   "coffee", plain,   "Coffee") \
    X(CAT,      "cat",      "cat",    plain,   "Cat") \
    X(MATTE,    "matte",    "cat",    matte,   "Cat, alpha from 255 in the middle to 1") \
    X(HORSE,    "horse",    "horse",  keyed,   "Horse, transparent around") \
    X(CUP,      "cup",      "cup",    keyed,   "Cup, transparent around") \
    X(STARS,    "stars",    "stars",  plain,   "Stars") \
    X(BRICKS,   "bricks",   "bricks", plain,   "Bricks") \
    X(GRAVEL,   "gravel",   "gravel", plain,   "Gravel") \
    X(RIGHT,    "right",    "",       right,   "Ramp to the right") \
    X(DIAGONAL, "diagonal", "",       diagonal,"Ramp along the diagonal") \
    X(RINGS,    "rings",    "",       rings,   "Rings") \
    X(NOISE,    "noise",    "",       noise,   "Noise") \
    X(CHESS,    "chess",    "",       chess,   "Chessboard, every other field transparent") \
    X(BLACK,    "black",    "",       black,   "Black") \
    X(WHITE,    "white",    "",       white,   "White") \
    X(DROPPED,  "dropped",  "",       dropped, "Your own: drop a file here")

// What the Shahei plane holds before the draw. X(NAME, word, title)
#define PAGE_PLANES(X) \
    X(CLEAR,  "clear",  "Clear") \
    X(DISC,   "disc",   "A disc is taken") \
    X(BARS,   "bars",   "Every other bar is taken") \
    X(RIGHT,  "right",  "The right half is taken")

// What the priority plane holds before the draw.
#define PAGE_PRIORITIES(X) \
    X(EMPTY,  "empty",  "255, empty") \
    X(RAMP,   "ramp",   "0 to 255 from left to right") \
    X(DISC,   "disc",   "A disc of 64 in 192") \
    X(LOWEST, "lowest", "0")

// Line tables: the segment of the source for each row.
#define PAGE_TABLES(X) \
    X(WAVE,   "wave",   "A wave") \
    X(LENS,   "lens",   "Wider in the middle") \
    X(SHEAR,  "shear",  "Sheared, every eighth row left out") \
    X(ROWS,   "rows",   "Row by row")

// Displacements of a triangle's spans.
#define PAGE_SHIFTS(X) \
    X(NONE,   "none",   "None") \
    X(WAVE,   "wave",   "A wave") \
    X(BEND,   "bend",   "A bend to the right")

// Fields of rs that a state holds, their least and greatest value, and how many of their words a kernel reads that needs `n` of a
// combination `a`: X(field, kind, least, most, words read). Ranges are those of render_state.h, narrowed to what the screen shows.
#define PAGE_FIELDS(X) \
    X(vertex,         corners, -4096,       4096,       a.shape == NINEFOLD_SHAPE_TRIANGLE ? 9 : 6) \
    X(clipLeft,       clip,    0,           256,        1) \
    X(clipTop,        clip,    0,           192,        1) \
    X(clipRight,      clip,    0,           256,        1) \
    X(clipBottom,     clip,    0,           192,        1) \
    X(color,          colour,  0,           0xFFFFFFFF, n.colours) \
    X(uv0,            texels,  -0x20000000, 0x20000000, n.tex0 ? 2 * n.positions : 0) \
    X(uv1,            texels,  -0x20000000, 0x20000000, n.tex1 ? 2 * n.positions : 0) \
    X(uv2,            texels,  -0x20000000, 0x20000000, n.ruleTest ? a.shape == NINEFOLD_SHAPE_TRIANGLE ? 6 : 4 : 0) \
    X(ruleThreshold,  number,  -256,        255,        n.ruleTest) \
    X(ruleWidth,      number,  0,           256,        n.ruleTest) \
    X(blendAlpha,     number,  0,           255,        a.blend == NINEFOLD_BLEND_CONST_ALPHA || (n.callsMulti && multiOp == NINEFOLD_MULTI_OP_CONST_ALPHA)) \
    X(blendAlphaRgb,  number,  0,           255,        n.callsMulti && multiOp == NINEFOLD_MULTI_OP_CONST_ALPHA_RGB) \
    X(prescale,       number,  0,           256,        a.prescale) \
    X(prescaleMulti,  number,  0,           256,        n.callsMulti && bank != 0) \
    X(writeMask,      bits,    0,           0xFFFFFFFF, a.blend == NINEFOLD_BLEND_MERGE || (n.callsMulti && multiOp == NINEFOLD_MULTI_OP_MERGE)) \
    X(zRef,           number,  0,           255,        n.readsZ || n.writesZ) \
    X(mosaicSize1,    number,  1,           64,         n.mosaic1) \
    X(mosaicSize,     number,  1,           64,         n.mosaic)

// Which of the glyph functions draws a text. X(NAME, word, function, title)
#define PAGE_STYLES(X) \
    X(PLAIN,  "plain",  CreateFontTexture,      "Plain") \
    X(RIMMED, "rimmed", CreateFontTextureFuchi, "Rimmed")

// Fields of rs that a text holds: X(field, least, most).
#define PAGE_TEXT_FIELDS(X) \
    X(fontHeight, -128, 128) \
    X(fontWeight, 100,  900) \
    X(fontItalic, 0,    1)

// A blend operator of the page's own, beside those of the library.
#define PAGE_OWN_OPERATOR_WORD "own"
#define PAGE_OWN_OPERATOR_MEANING "a host's own function: the average"

/* clang-format on */

#define PAGE_ENUMERATOR(name, ...) name,
enum class Picture { PAGE_PICTURES(PAGE_ENUMERATOR) count };
enum class Plane { PAGE_PLANES(PAGE_ENUMERATOR) count };
enum class Priority { PAGE_PRIORITIES(PAGE_ENUMERATOR) count };
enum class Table { PAGE_TABLES(PAGE_ENUMERATOR) count };
enum class Shift { PAGE_SHIFTS(PAGE_ENUMERATOR) count };
enum class Style { PAGE_STYLES(PAGE_ENUMERATOR) count };
#undef PAGE_ENUMERATOR

struct Choice {
    const char *word, *title;
};
#define PAGE_PICTURE(name, word, file, treatment, title) {word, title},
#define PAGE_CHOICE(name, word, title) {word, title},
#define PAGE_STYLE(name, word, function, title) {word, title},
constexpr Choice pictureChoices[] = {PAGE_PICTURES(PAGE_PICTURE)}, planeChoices[] = {PAGE_PLANES(PAGE_CHOICE)},
                 priorityChoices[] = {PAGE_PRIORITIES(PAGE_CHOICE)}, tableChoices[] = {PAGE_TABLES(PAGE_CHOICE)},
                 shiftChoices[] = {PAGE_SHIFTS(PAGE_CHOICE)}, styleChoices[] = {PAGE_STYLES(PAGE_STYLE)};
#undef PAGE_PICTURE
#undef PAGE_CHOICE
#undef PAGE_STYLE

} // namespace page
