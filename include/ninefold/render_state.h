/* The render state `rs`: the only channel between the host and the kernels. */
#ifndef NINEFOLD_RENDER_STATE_H
#define NINEFOLD_RENDER_STATE_H

#include <ninefold/texture.h>

/* Whole pixels relative to the origin. z is the depth of a perspective triangle: above 0, larger is farther. */
typedef struct Vertex {
    int32_t x, y, z;
} Vertex;

/* A texel position in signed 16.16 fixed point. */
typedef struct TexCoord {
    int32_t u, v;
} TexCoord;

/* One row of a line table (rect option 3): the source segment of the row in 16.16 texels, end exclusive. startU equal to
 * NINEFOLD_SKIP_ROW leaves the row out. */
typedef struct LineTableRecord {
    int32_t startU, startV, endU, endV;
} LineTableRecord;

#define NINEFOLD_SKIP_ROW 0x7FFF0000

/* A pixel operator: blendFunc gets (frame-buffer pixel, source), multiFunc gets (source, second source). */
typedef uint32_t (*PixelOperator)(uint32_t first, uint32_t second);

/*
 * What the host fills before it calls a kernel. All fields start at 0. Unless a field names a setter the host stores into it
 * directly. Nothing here is checked by a kernel: pointers, sizes and divisors must be right.
 */
typedef struct RenderState {
    /* frame buffer, set by SetFrameBuffer */
    uint32_t *dstPixels; /* its first pixel */
    uint32_t dstShift;   /* its log2Width: row y starts at y << dstShift */
    uint32_t dstPitch;   /* its width, pixels; rows of the planes have dstPitch >> 4 words, dstPitch bytes */
    uint32_t dstHeight;  /* its rows; no kernel reads it */
    uint32_t reserved[4];

    int32_t originX, originY; /* added to every vertex, pixels */
    /* clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive; must lie inside the frame
     * buffer */
    int32_t clipLeft, clipTop, clipRight, clipBottom;
    Texture *frameBuffer; /* set by SetFrameBuffer */

    /* planes, laid out as the frame buffer */
    uint16_t *shaheiPlane; /* one bit a pixel, bit 15 of a word leftmost; set: taken, not to be drawn */
    uint8_t *zBuffer;      /* one priority byte a pixel */
    uint32_t zRef;         /* the primitive's priority; kernels use its low byte */

    uint32_t color[4];  /* ARGB: [0] the flat colour and that of multi 2; all four the corner colours of filter 7 and multi 1 */
    Vertex vertex[4];   /* a rectangle has opposite corners in [0], [1]; a line its ends there; a triangle uses [0..2] */
    TexCoord uv0[4];    /* coordinates of tex0 */
    Texture *tex0;      /* main source; the atlas of the glyph functions */
    TexCoord uv1[4];    /* coordinates of tex1 */
    Texture *tex1;      /* second source of multi 0; drivers of filters 2 and 5 walk its chain whenever it is not null */
    TexCoord uv2[4];    /* coordinates of tex2; rectangles read [0..1], triangles [0..2] */
    Texture *tex2;      /* rule texture: the low byte of a texel is the rule value */
    LineTableRecord *lineTable0; /* a record for each row of the unclipped rectangle, for tex0 */
    LineTableRecord *lineTable1; /* the same for tex1 */

    /* Factors. Outside their range the arithmetic goes on in wrapping 32-bit words and channels spill into each other. */
    uint32_t blendAlpha;    /* 0 to 255: blend 2 and multi operator 2 */
    uint32_t blendAlphaRgb; /* 0 to 255: multi operator 3 */
    uint32_t prescale;      /* 0 to 256, where 256 is one: the prescale axis */
    uint32_t prescaleMulti; /* 0 to 256: second bank of multi operators */
    int32_t *scanShift;     /* per frame-buffer row displacement of a triangle's span, pixels; null: none */
    uint32_t writeMask;     /* blend 11, multi operator 11: set bits come from the source */

    /*
     * Operators. blendFunc is set by SetBlendMode(14..19) or by the host for blend 12, multiFunc by SetBlendModeMulti (or by the
     * host). A host's own operator is called once for each pixel that reaches its stage, left to right. It may keep state of its
     * own but must not touch the frame buffer, the planes or rs.
     */
    PixelOperator blendFunc;
    PixelOperator multiFunc;

    uint16_t drawMask[16]; /* stipple: row y & 15, bit 15 - (x & 15) of the absolute position; set: not drawn */

    int32_t ruleThreshold; /* a rule value must exceed this for its pixel to be drawn */
    int32_t ruleWidth;     /* width of the soft edge in rule values; 0 or less: hard */
    int32_t ruleCurve;     /* 1: rises fast, 2: rises slowly, other: linear */

    /* axes, each stored as given by the setter of its name */
    int32_t prescaleMode;
    int32_t prescaleMultiMode;
    int32_t filterMode;
    int32_t rectOptMode;
    int32_t shaheiMode;
    int32_t blendMode; /* as derived by SetBlendMode */
    int32_t blendModeMulti;
    int32_t multiMode;
    int32_t shapeMode;
    int32_t ruleAlphaMode;
    int32_t persMode;

    /* Scratch of the mip filters, left behind by the last draw. Weights are 0 to 255. */
    int32_t mipFrac;   /* weight of the chosen level of tex0 against mipTex */
    int32_t mipFrac1;  /* the same for tex1 */
    Texture *mipTex;   /* the level below the chosen one of tex0 */
    Texture *mipTex1;  /* the same for tex1 */
    int32_t mipRatio;  /* texel density of the last driven triangle, 16.16 */

    /* glyph functions */
    char *fontName;      /* face name; with its NUL at most 32 bytes */
    int32_t fontHeight;  /* cell height in pixels; negative: em height */
    int32_t fontWeight;  /* 400 normal, 700 bold */
    int32_t fontQuality; /* 0 mono; 1, 2, 3: 4, 16, 64 grey levels */
    uint32_t fontItalic; /* low byte */
    uint32_t fontCursorX, fontCursorY; /* where the next glyph goes in the atlas; the host zeroes them for a new atlas */
    uint32_t fontLineBottom;           /* lowest edge so far of the atlas row; likewise */
    uint32_t glyphCode;                /* of the last glyph: its character code, */
    int32_t glyphWidth, glyphHeight;   /* size of its bitmap, pixels, */
    int32_t glyphX, glyphY;            /* place in the atlas, */
    int32_t glyphOriginX, glyphOriginY; /* offset of the bitmap from the pen on the base line, y up, */
    int32_t glyphAdvance;               /* pen advance */

    int32_t mosaicSize1; /* filter 8, at least 1: block width in rect option 0, columns of tex1 in rect options 1, 2, 3 */
    int32_t mosaicSize;  /* filter 8, at least 1: block height in rect option 0, both axes of tex0 elsewhere */
} RenderState;

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32) && !defined(NINEFOLD_BUILD) && !defined(NINEFOLD_STATIC)
__declspec(dllimport) extern RenderState rs;
#else
NINEFOLD_API extern RenderState rs;
#endif

/* Start-up: call the four Make... functions once, in any order, before the first draw. All but MakeDrawMaskTable may run again.
 * They return nothing and cannot fail. */
NINEFOLD_API void MakeUVLShiftTable(void);       /* without it perspective triangles lose precision */
NINEFOLD_API void MakeShaheiRunlengthTbl(void);  /* fills the table of GetShaheiTable */
NINEFOLD_API void MakeDrawFuncTable(void);       /* without it SearchDrawFunc finds nothing */
NINEFOLD_API void MakeDrawMaskTable(void);       /* without it the stipples 0 to 255 suppress nothing; leaves drawMask all zero */

/* Makes `texture` the frame buffer (no reference is taken, null is not handled) and returns the one before, null at first. */
NINEFOLD_API Texture *SetFrameBuffer(Texture *texture);

/* Mode setters. Values are stored as they are; they take effect at the next CreateDrawCode. */
NINEFOLD_API void SetShapeMode(long shape);
NINEFOLD_API void SetPrescaleMode(long prescale);
NINEFOLD_API void SetRuleAlphaMode(long rule);
NINEFOLD_API void SetFilterMode(long filter);
NINEFOLD_API void SetRectOptMode(long rectOpt);
NINEFOLD_API void SetShaheiMode(long shahei);
NINEFOLD_API void SetMultiMode(long multi);
NINEFOLD_API void SetPersMode(long pers);

/* Sets blendMode and, for 13 and up, blendFunc: 13 and 20 up give blend 0 (source); 14 to 19 give blend 12 with luma of source,
 * luma of destination, xor, and, or, destination. 12 keeps the host's blendFunc. Every other value, 3 and negatives included, is
 * stored as it is. */
NINEFOLD_API void SetBlendMode(long mode);

/* Stores `value` in blendModeMulti and points multiFunc at that operator, in the bank that prescaleMultiMode selects. Values
 * outside 0 to 19, and 12 and 13, act as 0. Takes effect at once, also for kernels that the host already holds. */
NINEFOLD_API void SetBlendModeMulti(long value);

/* Selects the bank of multi operators (0: first; else: second, which scales the second operand by prescaleMulti) and
 * re-selects multiFunc in it. */
NINEFOLD_API void SetPrescaleMultiMode(long mode);

/* Copies a stipple to drawMask. 0 draws nothing, n (1 to 255) draws n + 1 pixels of each 16 by 16 cell; 256 all, 257 checkerboard,
 * 258 odd columns, 259 even rows, 260 odd columns of even rows, 261 odd rows and odd columns. Above 261: no change. Must not be
 * negative. */
NINEFOLD_API void SetPresetDrawMask(long index);

/* 65,536 pointers, one a word: the run list of that word read from bit 15 down, n for n clear bits, -n for n set bits, adding up to
 * 16. */
NINEFOLD_API char **GetShaheiTable(void);

#ifdef __cplusplus
}
#endif

#endif
