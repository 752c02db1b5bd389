/*
 * Names for every number of the interface: the values of the nine axes, of the operators, stipples, curves, glyph qualities and
 * alignments. Setters take them as plain numbers.
 *
 * Each list stands once, as X(NAME, value, word, meaning): NINEFOLD_FILTERS(X) and its like hand it to a macro of the host's,
 * for tables, menus and messages. `word` is what the readable name of a combination holds (rect.stretch.bilinear.alpha.z);
 * empty: the name leaves it out.
 */
#ifndef NINEFOLD_AXES_H
#define NINEFOLD_AXES_H

#define NINEFOLD_VERSION_MAJOR 1
#define NINEFOLD_VERSION_MINOR 0
#define NINEFOLD_VERSION_PATCH 0
/* One number that grows with each release. */
#define NINEFOLD_VERSION (NINEFOLD_VERSION_MAJOR * 10000 + NINEFOLD_VERSION_MINOR * 100 + NINEFOLD_VERSION_PATCH)

#define NINEFOLD_ENUMERATOR(name, value, word, meaning) name = value,

/* clang-format off */

/* SetShapeMode */
#define NINEFOLD_SHAPES(X) \
    X(NINEFOLD_SHAPE_LINE,      0, "line", "a line of single pixels") \
    X(NINEFOLD_SHAPE_RECTANGLE, 1, "rect", "a rectangle between two corners") \
    X(NINEFOLD_SHAPE_TRIANGLE,  2, "tri",  "a triangle")

/* SetPersMode */
#define NINEFOLD_PERSPECTIVES(X) \
    X(NINEFOLD_PERS_OFF, 0, "",     "texture positions linear on the screen") \
    X(NINEFOLD_PERS_ON,  1, "pers", "perspective, by vertex[].z (triangles)")

/* SetRuleAlphaMode */
#define NINEFOLD_RULES(X) \
    X(NINEFOLD_RULE_OFF, 0, "",     "drawn whole") \
    X(NINEFOLD_RULE_ON,  1, "rule", "wiped in by tex2 (rectangles, triangles)")

/* SetPrescaleMode */
#define NINEFOLD_PRESCALES(X) \
    X(NINEFOLD_PRESCALE_OFF, 0, "",         "the source as it is") \
    X(NINEFOLD_PRESCALE_ON,  1, "prescale", "the source scaled by rs.prescale: its alpha under blends 1, 2, 4, else its colour")

/* SetFilterMode */
#define NINEFOLD_FILTERS(X) \
    X(NINEFOLD_FILTER_POINT,         0, "point",        "the nearest texel") \
    X(NINEFOLD_FILTER_BILINEAR,      1, "bilinear",     "four texels mixed") \
    X(NINEFOLD_FILTER_MIP,           2, "mip",          "the nearest texels of two mip levels") \
    X(NINEFOLD_FILTER_LINE_POINT,    3, "linepoint",    "the nearest texel of a mip level for each line") \
    X(NINEFOLD_FILTER_LINE_BILINEAR, 4, "linebilinear", "four texels of a mip level for each line") \
    X(NINEFOLD_FILTER_MIP_BILINEAR,  5, "mipbilinear",  "four texels of each of two mip levels") \
    X(NINEFOLD_FILTER_FLAT,          6, "flat",         "color[0]") \
    X(NINEFOLD_FILTER_GOURAUD,       7, "gouraud",      "the colours of the vertices, running") \
    X(NINEFOLD_FILTER_MOSAIC,        8, "mosaic",       "blocks of one texel each")

/* SetRectOptMode. NINEFOLD_RECT_NONE is that of lines, triangles and colours. */
#define NINEFOLD_RECT_OPTS(X) \
    X(NINEFOLD_RECT_UNIT,       0, "unit",      "one texel a pixel") \
    X(NINEFOLD_RECT_STRETCH,    1, "stretch",   "stretched between two corners") \
    X(NINEFOLD_RECT_CORNERS,    2, "corners",   "a texture position at each of four corners") \
    X(NINEFOLD_RECT_TABLE,      3, "table",     "a texture segment for each row, from a line table") \
    X(NINEFOLD_RECT_RUNS,       5, "runs",      "one texel a pixel, by the run-length map") \
    X(NINEFOLD_RECT_PLANE_RUNS, 6, "planeruns", "one texel a pixel, by the zero-pixel map and the Shahei plane") \
    X(NINEFOLD_RECT_NONE,       7, "",          "no texture, or no rectangle")

/* SetShaheiMode. Shahei means occlusion: the plane's bits and the priorities say which pixels are taken. */
#define NINEFOLD_SHAHEIS(X) \
    X(NINEFOLD_SHAHEI_NONE,             0, "",        "every pixel") \
    X(NINEFOLD_SHAHEI_PLANE,            1, "plane",   "where plane and stipple are clear; drawn pixels are marked") \
    X(NINEFOLD_SHAHEI_PLANE_PRIORITY,   2, "plane+z", "where plane and stipple are clear; drawn pixels are marked, zRef goes to zBuffer") \
    X(NINEFOLD_SHAHEI_PRIORITY,         3, "z",       "where the priority is not below zRef") \
    X(NINEFOLD_SHAHEI_STIPPLE,          4, "mask",    "where the stipple is clear") \
    X(NINEFOLD_SHAHEI_PRIORITY_STIPPLE, 5, "z+mask",  "where the stipple is clear and the priority is not below zRef")

/* SetBlendMode; its comment has the formulas. */
#define NINEFOLD_BLENDS(X) \
    X(NINEFOLD_BLEND_COPY,        0, "copy",       "the source") \
    X(NINEFOLD_BLEND_ALPHA,       1, "alpha",      "weighed by the source's alpha") \
    X(NINEFOLD_BLEND_CONST_ALPHA, 2, "constalpha", "weighed by blendAlpha") \
    X(NINEFOLD_BLEND_ALPHA_FAST,  4, "alphafast",  "weighed by the source's alpha, exact where it is 0 or 255") \
    X(NINEFOLD_BLEND_ADD,         5, "add",        "the sum, up to 255") \
    X(NINEFOLD_BLEND_SUB,         6, "sub",        "the difference, down to 0") \
    X(NINEFOLD_BLEND_MUL,         7, "mul",        "the product") \
    X(NINEFOLD_BLEND_MUL2,        8, "mul2",       "twice the product, up to 255") \
    X(NINEFOLD_BLEND_SCREEN,      9, "screen",     "the product of the complements, complemented") \
    X(NINEFOLD_BLEND_OVERLAY,    10, "overlay",    "product or screen, as the destination is dark or light") \
    X(NINEFOLD_BLEND_MERGE,      11, "merge",      "bits chosen by writeMask") \
    X(NINEFOLD_BLEND_CUSTOM,     12, "custom",     "blendFunc")

/* What else SetBlendMode takes: blend 12 with an operator of the library in blendFunc. */
#define NINEFOLD_BLEND_OPERATORS(X) \
    X(NINEFOLD_BLEND_LUMA_SRC, 14, "lumasrc", "luma of the source") \
    X(NINEFOLD_BLEND_LUMA_DST, 15, "lumadst", "luma of the destination") \
    X(NINEFOLD_BLEND_XOR,      16, "xor",     "exclusive or") \
    X(NINEFOLD_BLEND_AND,      17, "and",     "and") \
    X(NINEFOLD_BLEND_OR,       18, "or",      "or") \
    X(NINEFOLD_BLEND_DST,      19, "dst",     "the destination")

/* SetMultiMode */
#define NINEFOLD_MULTIS(X) \
    X(NINEFOLD_MULTI_TEXTURE, 0, "tex1",    "tex1 through multiFunc") \
    X(NINEFOLD_MULTI_CORNERS, 1, "corners", "the corner colours through multiFunc") \
    X(NINEFOLD_MULTI_COLOUR,  2, "colour",  "color[0] through multiFunc") \
    X(NINEFOLD_MULTI_NONE,    3, "",        "the source alone")

/* SetBlendModeMulti; its comment says more. */
#define NINEFOLD_MULTI_OPS(X) \
    X(NINEFOLD_MULTI_OP_SECOND,          0, "second",        "the second operand") \
    X(NINEFOLD_MULTI_OP_ALPHA,           1, "alpha",         "weighed by the second operand's alpha") \
    X(NINEFOLD_MULTI_OP_CONST_ALPHA,     2, "constalpha",    "weighed by blendAlpha") \
    X(NINEFOLD_MULTI_OP_CONST_ALPHA_RGB, 3, "constalphargb", "weighed by blendAlphaRgb") \
    X(NINEFOLD_MULTI_OP_ALPHA_FAST,      4, "alphafast",     "weighed by the second operand's alpha, exact where it is 0 or 255") \
    X(NINEFOLD_MULTI_OP_ADD,             5, "add",           "the sum, up to 255") \
    X(NINEFOLD_MULTI_OP_SUB,             6, "sub",           "the difference, down to 0") \
    X(NINEFOLD_MULTI_OP_MUL,             7, "mul",           "the product") \
    X(NINEFOLD_MULTI_OP_MUL2,            8, "mul2",          "twice the product, up to 255") \
    X(NINEFOLD_MULTI_OP_SCREEN,          9, "screen",        "the product of the complements, complemented") \
    X(NINEFOLD_MULTI_OP_OVERLAY,        10, "overlay",       "product or screen, as the first operand is dark or light") \
    X(NINEFOLD_MULTI_OP_MERGE,          11, "merge",         "bits chosen by writeMask") \
    X(NINEFOLD_MULTI_OP_LUMA_SECOND,    14, "lumasecond",    "luma of the second operand") \
    X(NINEFOLD_MULTI_OP_LUMA_FIRST,     15, "lumafirst",     "luma of the first operand") \
    X(NINEFOLD_MULTI_OP_XOR,            16, "xor",           "exclusive or") \
    X(NINEFOLD_MULTI_OP_AND,            17, "and",           "and") \
    X(NINEFOLD_MULTI_OP_OR,             18, "or",            "or") \
    X(NINEFOLD_MULTI_OP_FIRST,          19, "first",         "the first operand")

/* SetPrescaleMultiMode */
#define NINEFOLD_MULTI_BANKS(X) \
    X(NINEFOLD_MULTI_BANK_PLAIN,  0, "plain",  "the second operand as it is") \
    X(NINEFOLD_MULTI_BANK_SCALED, 1, "scaled", "the second operand scaled by prescaleMulti")

/* SetPresetDrawMask. Between the first two lies a fade: n draws n + 1 pixels of each 16 by 16 cell. */
#define NINEFOLD_STIPPLES(X) \
    X(NINEFOLD_STIPPLE_NOTHING,                   0, "nothing",                "no pixel") \
    X(NINEFOLD_STIPPLE_FADE_LAST,               255, "fadelast",               "the last step of the fade: every pixel") \
    X(NINEFOLD_STIPPLE_ALL,                     256, "all",                    "every pixel") \
    X(NINEFOLD_STIPPLE_CHESSBOARD,              257, "chessboard",             "alternate pixels") \
    X(NINEFOLD_STIPPLE_ODD_COLUMNS,             258, "oddcolumns",             "odd columns") \
    X(NINEFOLD_STIPPLE_EVEN_ROWS,               259, "evenrows",               "even rows") \
    X(NINEFOLD_STIPPLE_ODD_COLUMNS_EVEN_ROWS,   260, "oddcolumnsofevenrows",   "odd columns of even rows") \
    X(NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS,    261, "oddcolumnsandrows",      "all odd rows, and odd columns")

/* rs.ruleCurve */
#define NINEFOLD_CURVES(X) \
    X(NINEFOLD_CURVE_LINEAR, 0, "linear", "even") \
    X(NINEFOLD_CURVE_FAST,   1, "fast",   "rises fast") \
    X(NINEFOLD_CURVE_SLOW,   2, "slow",   "rises slowly")

/* rs.fontQuality */
#define NINEFOLD_QUALITIES(X) \
    X(NINEFOLD_QUALITY_MONO,   0, "mono",   "black and white") \
    X(NINEFOLD_QUALITY_GREY4,  1, "grey4",  "4 grey levels") \
    X(NINEFOLD_QUALITY_GREY16, 2, "grey16", "16 grey levels") \
    X(NINEFOLD_QUALITY_GREY64, 3, "grey64", "64 grey levels")

/* LoadTextureAdjust, for either direction */
#define NINEFOLD_ALIGNMENTS(X) \
    X(NINEFOLD_ALIGN_START,  0, "start",  "left or top") \
    X(NINEFOLD_ALIGN_CENTRE, 1, "centre", "the middle") \
    X(NINEFOLD_ALIGN_END,    2, "end",    "right or bottom")

/* Texture::flags, bits */
#define NINEFOLD_TEXTURE_FLAGS(X) \
    X(NINEFOLD_TEXTURE_HOST_PIXELS, 1, "hostpixels", "the pixels belong to the host: DeleteTexture leaves them alone")

/* clang-format on */

enum { NINEFOLD_SHAPES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_PERSPECTIVES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_RULES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_PRESCALES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_FILTERS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_RECT_OPTS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_SHAHEIS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_BLENDS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_BLEND_OPERATORS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_MULTIS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_MULTI_OPS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_MULTI_BANKS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_STIPPLES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_CURVES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_QUALITIES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_ALIGNMENTS(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_TEXTURE_FLAGS(NINEFOLD_ENUMERATOR) };

#endif
