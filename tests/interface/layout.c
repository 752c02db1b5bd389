/* Field order and offsets of the public records, on 64-bit and on 32-bit targets. Valid as C and as C++. */
#include <ninefold/ninefold.h>

#include <stddef.h>

#ifdef __cplusplus
#pragma GCC diagnostic ignored                                                                                                   \
    "-Winvalid-offsetof" /* Texture has a virtual table; every compiler we build with lays it out first */
#define CHECK(condition) static_assert(condition, #condition)
#else
#define CHECK(condition) _Static_assert(condition, #condition)
#endif

#if UINTPTR_MAX == UINT64_MAX
#define PICK(wide, narrow) wide
#else
#define PICK(wide, narrow) narrow
#endif

#define FIELD(record, field, wide, narrow) CHECK(offsetof(record, field) == PICK(wide, narrow))
#define SIZE(record, wide, narrow) CHECK(sizeof(record) == PICK(wide, narrow))

FIELD(Vertex, x, 0, 0);
FIELD(Vertex, y, 4, 4);
FIELD(Vertex, z, 8, 8);
SIZE(Vertex, 12, 12);

FIELD(TexCoord, u, 0, 0);
FIELD(TexCoord, v, 4, 4);
SIZE(TexCoord, 8, 8);

FIELD(LineTableRecord, startU, 0, 0);
FIELD(LineTableRecord, startV, 4, 4);
FIELD(LineTableRecord, endU, 8, 8);
FIELD(LineTableRecord, endV, 12, 12);
SIZE(LineTableRecord, 16, 16);

FIELD(DrawFuncRecord, next, 0, 0);
FIELD(DrawFuncRecord, code, 8, 4);
FIELD(DrawFuncRecord, hash, 12, 8);
FIELD(DrawFuncRecord, func, 16, 12);
SIZE(DrawFuncRecord, 24, 16);

FIELD(Texture, pixels, 8, 4);
FIELD(Texture, width, 16, 8);
FIELD(Texture, height, 20, 12);
FIELD(Texture, log2Width, 24, 16);
FIELD(Texture, log2Height, 28, 20);
FIELD(Texture, mip, 32, 24);
FIELD(Texture, mipCount, 160, 88);
FIELD(Texture, runlengthMap, 168, 92);
FIELD(Texture, zeroPixelMap, 176, 96);
FIELD(Texture, flags, 184, 100);
FIELD(Texture, refCount, 188, 104);
FIELD(Texture, origWidth, 192, 108);
FIELD(Texture, origHeight, 196, 112);
SIZE(Texture, 200, 116);

FIELD(RenderState, dstPixels, 0, 0);
FIELD(RenderState, dstShift, 8, 4);
FIELD(RenderState, dstPitch, 12, 8);
FIELD(RenderState, dstHeight, 16, 12);
FIELD(RenderState, reserved, 20, 16);
FIELD(RenderState, originX, 36, 32);
FIELD(RenderState, originY, 40, 36);
FIELD(RenderState, clipLeft, 44, 40);
FIELD(RenderState, clipTop, 48, 44);
FIELD(RenderState, clipRight, 52, 48);
FIELD(RenderState, clipBottom, 56, 52);
FIELD(RenderState, frameBuffer, 64, 56);
FIELD(RenderState, shaheiPlane, 72, 60);
FIELD(RenderState, zBuffer, 80, 64);
FIELD(RenderState, zRef, 88, 68);
FIELD(RenderState, color, 92, 72);
FIELD(RenderState, vertex, 108, 88);
FIELD(RenderState, uv0, 156, 136);
FIELD(RenderState, tex0, 192, 168);
FIELD(RenderState, uv1, 200, 172);
FIELD(RenderState, tex1, 232, 204);
FIELD(RenderState, uv2, 240, 208);
FIELD(RenderState, tex2, 272, 240);
FIELD(RenderState, lineTable0, 280, 244);
FIELD(RenderState, lineTable1, 288, 248);
FIELD(RenderState, blendAlpha, 296, 252);
FIELD(RenderState, blendAlphaRgb, 300, 256);
FIELD(RenderState, prescale, 304, 260);
FIELD(RenderState, prescaleMulti, 308, 264);
FIELD(RenderState, scanShift, 312, 268);
FIELD(RenderState, writeMask, 320, 272);
FIELD(RenderState, blendFunc, 328, 276);
FIELD(RenderState, multiFunc, 336, 280);
FIELD(RenderState, drawMask, 344, 284);
FIELD(RenderState, ruleThreshold, 376, 316);
FIELD(RenderState, ruleWidth, 380, 320);
FIELD(RenderState, ruleCurve, 384, 324);
FIELD(RenderState, prescaleMode, 388, 328);
FIELD(RenderState, prescaleMultiMode, 392, 332);
FIELD(RenderState, filterMode, 396, 336);
FIELD(RenderState, rectOptMode, 400, 340);
FIELD(RenderState, shaheiMode, 404, 344);
FIELD(RenderState, blendMode, 408, 348);
FIELD(RenderState, blendModeMulti, 412, 352);
FIELD(RenderState, multiMode, 416, 356);
FIELD(RenderState, shapeMode, 420, 360);
FIELD(RenderState, ruleAlphaMode, 424, 364);
FIELD(RenderState, persMode, 428, 368);
FIELD(RenderState, mipFrac, 432, 372);
FIELD(RenderState, mipFrac1, 436, 376);
FIELD(RenderState, mipTex, 440, 380);
FIELD(RenderState, mipTex1, 448, 384);
FIELD(RenderState, mipRatio, 456, 388);
FIELD(RenderState, fontName, 464, 392);
FIELD(RenderState, fontHeight, 472, 396);
FIELD(RenderState, fontWeight, 476, 400);
FIELD(RenderState, fontQuality, 480, 404);
FIELD(RenderState, fontItalic, 484, 408);
FIELD(RenderState, fontCursorX, 488, 412);
FIELD(RenderState, fontCursorY, 492, 416);
FIELD(RenderState, fontLineBottom, 496, 420);
FIELD(RenderState, glyphCode, 500, 424);
FIELD(RenderState, glyphWidth, 504, 428);
FIELD(RenderState, glyphHeight, 508, 432);
FIELD(RenderState, glyphX, 512, 436);
FIELD(RenderState, glyphY, 516, 440);
FIELD(RenderState, glyphOriginX, 520, 444);
FIELD(RenderState, glyphOriginY, 524, 448);
FIELD(RenderState, glyphAdvance, 528, 452);
FIELD(RenderState, mosaicSize1, 532, 456);
FIELD(RenderState, mosaicSize, 536, 460);
SIZE(RenderState, 544, 464);

/* What an offset does not show: the element types. */
#define ELEMENT(record, field, bytes) CHECK(sizeof(*((record *)0)->field) == (bytes))
ELEMENT(Texture, pixels, 4);
ELEMENT(Texture, mip, sizeof(void *));
ELEMENT(Texture, runlengthMap, 1);
ELEMENT(Texture, zeroPixelMap, 2);
ELEMENT(RenderState, dstPixels, 4);
ELEMENT(RenderState, shaheiPlane, 2);
ELEMENT(RenderState, zBuffer, 1);
ELEMENT(RenderState, color, 4);
ELEMENT(RenderState, scanShift, 4);
ELEMENT(RenderState, drawMask, 2);

/* The numbers that the names of axes.h stand for: hosts pass them, and may have stored them. */
CHECK(NINEFOLD_SHAPE_LINE == 0);
CHECK(NINEFOLD_SHAPE_RECTANGLE == 1);
CHECK(NINEFOLD_SHAPE_TRIANGLE == 2);
CHECK(NINEFOLD_PERS_OFF == 0);
CHECK(NINEFOLD_PERS_ON == 1);
CHECK(NINEFOLD_RULE_OFF == 0);
CHECK(NINEFOLD_RULE_ON == 1);
CHECK(NINEFOLD_PRESCALE_OFF == 0);
CHECK(NINEFOLD_PRESCALE_ON == 1);
CHECK(NINEFOLD_FILTER_POINT == 0);
CHECK(NINEFOLD_FILTER_BILINEAR == 1);
CHECK(NINEFOLD_FILTER_MIP == 2);
CHECK(NINEFOLD_FILTER_LINE_POINT == 3);
CHECK(NINEFOLD_FILTER_LINE_BILINEAR == 4);
CHECK(NINEFOLD_FILTER_MIP_BILINEAR == 5);
CHECK(NINEFOLD_FILTER_FLAT == 6);
CHECK(NINEFOLD_FILTER_GOURAUD == 7);
CHECK(NINEFOLD_FILTER_MOSAIC == 8);
CHECK(NINEFOLD_RECT_UNIT == 0);
CHECK(NINEFOLD_RECT_STRETCH == 1);
CHECK(NINEFOLD_RECT_CORNERS == 2);
CHECK(NINEFOLD_RECT_TABLE == 3);
CHECK(NINEFOLD_RECT_RUNS == 5);
CHECK(NINEFOLD_RECT_PLANE_RUNS == 6);
CHECK(NINEFOLD_RECT_NONE == 7);
CHECK(NINEFOLD_SHAHEI_NONE == 0);
CHECK(NINEFOLD_SHAHEI_PLANE == 1);
CHECK(NINEFOLD_SHAHEI_PLANE_PRIORITY == 2);
CHECK(NINEFOLD_SHAHEI_PRIORITY == 3);
CHECK(NINEFOLD_SHAHEI_STIPPLE == 4);
CHECK(NINEFOLD_SHAHEI_PRIORITY_STIPPLE == 5);
CHECK(NINEFOLD_BLEND_COPY == 0);
CHECK(NINEFOLD_BLEND_ALPHA == 1);
CHECK(NINEFOLD_BLEND_CONST_ALPHA == 2);
CHECK(NINEFOLD_BLEND_ALPHA_FAST == 4);
CHECK(NINEFOLD_BLEND_ADD == 5);
CHECK(NINEFOLD_BLEND_SUB == 6);
CHECK(NINEFOLD_BLEND_MUL == 7);
CHECK(NINEFOLD_BLEND_MUL2 == 8);
CHECK(NINEFOLD_BLEND_SCREEN == 9);
CHECK(NINEFOLD_BLEND_OVERLAY == 10);
CHECK(NINEFOLD_BLEND_MERGE == 11);
CHECK(NINEFOLD_BLEND_CUSTOM == 12);
CHECK(NINEFOLD_BLEND_LUMA_SRC == 14);
CHECK(NINEFOLD_BLEND_LUMA_DST == 15);
CHECK(NINEFOLD_BLEND_XOR == 16);
CHECK(NINEFOLD_BLEND_AND == 17);
CHECK(NINEFOLD_BLEND_OR == 18);
CHECK(NINEFOLD_BLEND_DST == 19);
CHECK(NINEFOLD_MULTI_TEXTURE == 0);
CHECK(NINEFOLD_MULTI_CORNERS == 1);
CHECK(NINEFOLD_MULTI_COLOUR == 2);
CHECK(NINEFOLD_MULTI_NONE == 3);
CHECK(NINEFOLD_MULTI_OP_SECOND == 0);
CHECK(NINEFOLD_MULTI_OP_ALPHA == 1);
CHECK(NINEFOLD_MULTI_OP_CONST_ALPHA == 2);
CHECK(NINEFOLD_MULTI_OP_CONST_ALPHA_RGB == 3);
CHECK(NINEFOLD_MULTI_OP_ALPHA_FAST == 4);
CHECK(NINEFOLD_MULTI_OP_ADD == 5);
CHECK(NINEFOLD_MULTI_OP_SUB == 6);
CHECK(NINEFOLD_MULTI_OP_MUL == 7);
CHECK(NINEFOLD_MULTI_OP_MUL2 == 8);
CHECK(NINEFOLD_MULTI_OP_SCREEN == 9);
CHECK(NINEFOLD_MULTI_OP_OVERLAY == 10);
CHECK(NINEFOLD_MULTI_OP_MERGE == 11);
CHECK(NINEFOLD_MULTI_OP_LUMA_SECOND == 14);
CHECK(NINEFOLD_MULTI_OP_LUMA_FIRST == 15);
CHECK(NINEFOLD_MULTI_OP_XOR == 16);
CHECK(NINEFOLD_MULTI_OP_AND == 17);
CHECK(NINEFOLD_MULTI_OP_OR == 18);
CHECK(NINEFOLD_MULTI_OP_FIRST == 19);
CHECK(NINEFOLD_MULTI_BANK_PLAIN == 0);
CHECK(NINEFOLD_MULTI_BANK_SCALED == 1);
CHECK(NINEFOLD_STIPPLE_NOTHING == 0);
CHECK(NINEFOLD_STIPPLE_FADE_LAST == 255);
CHECK(NINEFOLD_STIPPLE_ALL == 256);
CHECK(NINEFOLD_STIPPLE_CHESSBOARD == 257);
CHECK(NINEFOLD_STIPPLE_ODD_COLUMNS == 258);
CHECK(NINEFOLD_STIPPLE_EVEN_ROWS == 259);
CHECK(NINEFOLD_STIPPLE_ODD_COLUMNS_EVEN_ROWS == 260);
CHECK(NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS == 261);
CHECK(NINEFOLD_CURVE_LINEAR == 0);
CHECK(NINEFOLD_CURVE_FAST == 1);
CHECK(NINEFOLD_CURVE_SLOW == 2);
CHECK(NINEFOLD_QUALITY_MONO == 0);
CHECK(NINEFOLD_QUALITY_GREY4 == 1);
CHECK(NINEFOLD_QUALITY_GREY16 == 2);
CHECK(NINEFOLD_QUALITY_GREY64 == 3);
CHECK(NINEFOLD_ALIGN_START == 0);
CHECK(NINEFOLD_ALIGN_CENTRE == 1);
CHECK(NINEFOLD_ALIGN_END == 2);
CHECK(NINEFOLD_TEXTURE_HOST_PIXELS == 1);
