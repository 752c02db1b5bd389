// The library's functions as lists, for whatever is made once for each of them.
#pragma once

#include <ninefold/ninefold.h>

/* clang-format off */

// Those that draw from rs alone: X(name).
#define NINEFOLD_NAMED_DRAWS(X) \
    X(DrawRectTexRunlen_TEST) X(DrawLineTest) X(DrawPolygon_PERS_TEST) \
    X(DrawShaheiPolygonSet) X(DrawShaheiPolygonFlip) X(DrawShaheiPolygonReset) \
    X(DrawZbufferPolygon) X(DrawZbufferPolygon0xff) X(DrawZbufferPolygonFlip) X(DrawZbufferPolygonClear) \
    X(DrawShaheiZbufferPolygonMask) X(DrawShaheiZbufferPolygonUnmask) X(DrawShaheiZbufferPolygonFlip) \
    X(DrawRectTexRule) X(DrawRectGradRule) X(DrawRectGradRule_GEN_RULE_TEST) X(DrawRectGradRule_GEN_RULE_MIPMAP_TEST)

// The others: X(result, name, parameters, arguments).
#define NINEFOLD_FUNCTIONS(X) \
    X(void, MakeUVLShiftTable, (), ()) \
    X(void, MakeShaheiRunlengthTbl, (), ()) \
    X(void, MakeDrawFuncTable, (), ()) \
    X(void, MakeDrawMaskTable, (), ()) \
    X(Texture *, SetFrameBuffer, (Texture *texture), (texture)) \
    X(void, SetShapeMode, (long mode), (mode)) \
    X(void, SetPrescaleMode, (long mode), (mode)) \
    X(void, SetRuleAlphaMode, (long mode), (mode)) \
    X(void, SetFilterMode, (long mode), (mode)) \
    X(void, SetRectOptMode, (long mode), (mode)) \
    X(void, SetShaheiMode, (long mode), (mode)) \
    X(void, SetMultiMode, (long mode), (mode)) \
    X(void, SetPersMode, (long mode), (mode)) \
    X(void, SetBlendMode, (long mode), (mode)) \
    X(void, SetBlendModeMulti, (long value), (value)) \
    X(void, SetPrescaleMultiMode, (long mode), (mode)) \
    X(void, SetPresetDrawMask, (long index), (index)) \
    X(char **, GetShaheiTable, (), ()) \
    X(unsigned long, CreateDrawCodeSub, (long pers, long rule, long prescale, long filter, long rectOpt, long shahei, \
                                         long blend, long multi, long shape), \
      (pers, rule, prescale, filter, rectOpt, shahei, blend, multi, shape)) \
    X(unsigned long, CreateDrawCode, (), ()) \
    X(DrawFunc, SearchDrawFunc, (unsigned long code), (code)) \
    X(Texture *, CreateTexture, (unsigned long width, unsigned long height), (width, height)) \
    X(void, AddRefTexture, (Texture *texture), (texture)) \
    X(void, DeleteTexture, (Texture *texture), (texture)) \
    X(void, ClearTexture, (Texture *texture), (texture)) \
    X(void, CopyTexture, (Texture *dst, Texture *src, long dstX, long dstY, long srcX, long srcY, long width, long height), \
      (dst, src, dstX, dstY, srcX, srcY, width, height)) \
    X(void, SetClearPixel, (Texture *texture, unsigned long color), (texture, color)) \
    X(void, ReplacePixel, (Texture *texture, unsigned long newColor, unsigned long oldColor), (texture, newColor, oldColor)) \
    X(Texture *, LoadTexture, (char *path), (path)) \
    X(Texture *, LoadTextureAdjust, (char *path, unsigned long alignX, unsigned long alignY, long *outX, long *outY, \
                                     long *outWidth, long *outHeight), \
      (path, alignX, alignY, outX, outY, outWidth, outHeight)) \
    X(void, CreateMipmapTexture, (Texture *texture), (texture)) \
    X(void, DeleteMipmapTexture, (Texture *texture), (texture)) \
    X(void, CreateRunlengthMap, (Texture *texture), (texture)) \
    X(void, CreateZeroPixelMap, (Texture *texture), (texture)) \
    X(char *, CreateFontTexture, (char *text), (text)) \
    X(char *, CreateFontTextureFuchi, (char *text), (text))

/* clang-format on */
