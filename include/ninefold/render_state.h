/* The render state `rs`: the only channel between the host and the kernels. */
#ifndef NINEFOLD_RENDER_STATE_H
#define NINEFOLD_RENDER_STATE_H

#include <ninefold/texture.h>

/*
 * Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in
 * 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective
 * triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about
 * 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.
 */
typedef struct Vertex {
    int32_t x, y, z;
} Vertex;

/* A texel position in signed 16.16 fixed point. It wraps around the texture in both directions; under perspective it must not be
 * negative, and comes out the finer the smaller the three coordinates are (best below 256 texels). */
typedef struct TexCoord {
    int32_t u, v;
} TexCoord;

/* One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to
 * NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say). */
typedef struct LineTableRecord {
    int32_t startU, startV, endU, endV;
} LineTableRecord;

#define NINEFOLD_SKIP_ROW 0x7FFF0000

/* A pixel operator: blendFunc gets (frame-buffer pixel, source), multiFunc gets (source, second source). */
typedef uint32_t (*PixelOperator)(uint32_t first, uint32_t second);

/*
 * What the host fills before it calls a kernel. All fields start at 0. Unless a field names a setter the host stores into it
 * directly. Nothing here is checked by a kernel: pointers, sizes and divisors must be right. Pointers are borrowed: nothing is
 * counted or freed.
 */
typedef struct RenderState {
    /* frame buffer, set by SetFrameBuffer */
    uint32_t *dstPixels; /* its first pixel */
    uint32_t dstShift; /* its log2Width: row y starts at y << dstShift */
    uint32_t dstPitch; /* its width, pixels; rows of the planes have dstPitch >> 4 words, dstPitch bytes */
    uint32_t dstHeight; /* its rows; no kernel reads it */
    uint32_t reserved[4]; /* neither read nor written */

    int32_t originX, originY; /* added to every vertex, pixels */
    /* clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame
     * buffer (SetFrameBuffer leaves it alone) and must not be inside out. */
    int32_t clipLeft, clipTop, clipRight, clipBottom;
    Texture *frameBuffer; /* set by SetFrameBuffer */

    /* Planes, laid out as the frame buffer: width * height bits and bytes. Shahei means occlusion: a set bit of the Shahei plane
     * hides its pixel. In frame buffers narrower than 16 pixels rows share words of that plane. */
    uint16_t *shaheiPlane; /* one bit a pixel, bit 15 of a word leftmost; set: taken, not to be drawn */
    uint8_t *zBuffer; /* one priority byte a pixel; drawn where it is not below zRef */
    uint32_t zRef; /* the primitive's priority; kernels use its low byte */

    /* ARGB: [0] the flat colour and that of NINEFOLD_MULTI_COLOUR; all four the corner colours of NINEFOLD_FILTER_GOURAUD and
     * NINEFOLD_MULTI_CORNERS */
    uint32_t color[4];
    /* A rectangle has opposite corners in [0], [1], a line its ends there, a triangle uses [0..2]; [3] is never read. Texture
     * positions belong to their vertices: corners that are exchanged alone mirror a stretched or four-corner picture, together
     * with their positions they leave it as it is. */
    Vertex vertex[4];
    /* Coordinates of tex0. Rectangles: unit scale reads [0] (whole texels only, except under the bilinear filter); stretched
     * [0], [1]; four corners top left, top right, bottom left, bottom right. Triangles [0..2]. */
    TexCoord uv0[4];
    Texture *tex0; /* main source; the atlas of the glyph functions */
    TexCoord uv1[4]; /* coordinates of tex1, in the same way */
    /* Second source of NINEFOLD_MULTI_TEXTURE; its zeros leave the first as it is. NINEFOLD_FILTER_MIP and
     * NINEFOLD_FILTER_MIP_BILINEAR (stretched and four-corner rectangles, triangles) choose its level whenever it is not null,
     * also where the multi stage does not draw it. There one without a chain (mipCount 0) is as good as null, but one that was
     * deleted is still read: set tex1 to null before its texture goes. */
    Texture *tex1;
    /* Coordinates of tex2, linear on the screen also under perspective. Rectangles read [0..1], triangles [0..2]. */
    TexCoord uv2[4];
    Texture *tex2; /* rule texture: the low byte of a texel is the rule value */
    LineTableRecord *lineTable0; /* a record for each row of the unclipped rectangle from its top, for tex0 */
    LineTableRecord *lineTable1; /* the same for tex1 */

    /* Factors. Outside their range the arithmetic goes on in wrapping 32-bit words and channels spill into each other. */
    uint32_t blendAlpha; /* 0 to 255: constant alpha, blend and multi operator */
    uint32_t blendAlphaRgb; /* 0 to 255: NINEFOLD_MULTI_OP_CONST_ALPHA_RGB */
    uint32_t prescale; /* 0 to 256, where 256 is one: the prescale axis */
    uint32_t prescaleMulti; /* 0 to 256: second bank of multi operators */
    int32_t *scanShift; /* by frame-buffer row (inside the clip): displacement of a triangle's span, pixels; null: none */
    uint32_t writeMask; /* merge, blend and multi operator: set bits come from the source */

    /*
     * Operators; null until set, and called without a test by NINEFOLD_BLEND_CUSTOM and all multi modes but NINEFOLD_MULTI_NONE.
     * blendFunc is set by SetBlendMode(NINEFOLD_BLEND_LUMA_SRC...) or by the host for NINEFOLD_BLEND_CUSTOM, multiFunc by
     * SetBlendModeMulti or by the host. A new pointer takes effect at the next call of any kernel.
     *
     * A host's own operator is called once for each pixel that reaches its stage, left to right; where both are the host's own
     * the calls alternate pixel by pixel. It may look at the frame buffer, zBuffer and rs, and finds the frame buffer as the
     * pixels before left it: all stages of one pixel come before the next. The words of the Shahei plane of the row in flight are
     * the library's own. It must change nothing that the draw works from: no texture, table or plane, not the frame buffer, and
     * of rs nothing but the mode fields, font... and glyph..., which no kernel reads. It must not draw.
     */
    PixelOperator blendFunc;
    PixelOperator multiFunc;

    uint16_t drawMask[16]; /* stipple: row y & 15, bit 15 - (x & 15) of the absolute position; set: not drawn */

    /*
     * The rule test of rule value m, 0 to 255: nothing is drawn where m <= ruleThreshold, everything where m >= ruleThreshold +
     * ruleWidth. Between them old and new pixel are mixed by w = ((m - ruleThreshold) << 8) / ruleWidth, which
     * NINEFOLD_CURVE_FAST makes 255 - ((255 - w) * (255 - w) >> 8) and NINEFOLD_CURVE_SLOW w * w >> 8:
     * (new * w + old * (255 - w)) >> 8, alpha 0. A threshold that goes from 255 down to -ruleWidth wipes a picture in.
     */
    int32_t ruleThreshold;
    int32_t ruleWidth; /* 0 or less: a hard edge */
    int32_t ruleCurve; /* NINEFOLD_CURVE_...; any other value is linear */

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

    /* Scratch of the mip filters, left behind by the last draw. Weights are 0 to 255. A draw whose texel density is below one,
     * or beyond the last octave, leaves weights as they were and may read them. */
    int32_t mipFrac; /* weight of the chosen level of tex0 against mipTex; under a line table only the plane modes write it */
    int32_t mipFrac1; /* the same for tex1 */
    Texture *mipTex; /* the next smaller level after the chosen one of tex0 */
    Texture *mipTex1; /* the same for tex1 */
    int32_t mipRatio; /* texel density of the last driven triangle, 16.16 */

    /* glyph functions */
    char *fontName; /* face name, code page 932; with its NUL at most 32 bytes; null or empty: any face */
    int32_t fontHeight; /* cell height in pixels; negative: em height; 0: a height of the rasteriser's choice */
    int32_t fontWeight; /* 400 normal, 700 bold */
    int32_t fontQuality; /* NINEFOLD_QUALITY_...; other values garble glyphs */
    uint32_t fontItalic; /* low byte */
    uint32_t fontCursorX, fontCursorY; /* where the next glyph goes in the atlas, pixels; the host zeroes them for a new atlas */
    uint32_t fontLineBottom; /* lowest edge so far of the atlas row; likewise */
    uint32_t glyphCode; /* of the last glyph: its character code, */
    int32_t glyphWidth, glyphHeight; /* size of its bitmap, pixels, */
    int32_t glyphX, glyphY; /* place in the atlas, */
    int32_t glyphOriginX, glyphOriginY; /* offset of the bitmap from the pen on the base line, y up, */
    int32_t glyphAdvance; /* pen advance */

    /* Mosaic: block sizes in texels, at least 1. Blocks start at multiples in the texture and show their first texel. */
    int32_t mosaicSize1; /* block width at unit scale; elsewhere the columns of tex1 */
    int32_t mosaicSize; /* block height at unit scale; elsewhere both axes of tex0 and the rows of tex1 */
} RenderState;

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32) && !defined(NINEFOLD_BUILD) && !defined(NINEFOLD_STATIC)
__declspec(dllimport) extern RenderState rs;
#else
NINEFOLD_API extern RenderState rs;
#endif

/* Start-up: call the four Make... functions once, in any order, before the first draw. To call one again does what the
 * first call did. They return nothing and cannot fail. There is nothing to shut down. */
NINEFOLD_API void MakeUVLShiftTable(void); /* without it perspective triangles lose precision */
NINEFOLD_API void MakeShaheiRunlengthTbl(void); /* fills the table of GetShaheiTable */
NINEFOLD_API void MakeDrawFuncTable(void); /* without it SearchDrawFunc finds nothing; chooses the instruction set too */
NINEFOLD_API void MakeDrawMaskTable(void); /* without it the stipples 0 to 255 suppress nothing; leaves drawMask all zero */

/* Makes `texture` the frame buffer (no reference is taken, null is not handled) and returns the one before, null at first. The
 * clip rectangle and the planes stay as they are: set them to match. */
NINEFOLD_API Texture *SetFrameBuffer(Texture *texture);

/* Mode setters. Values (axes.h names them all) are stored as they are; they take effect at the next CreateDrawCode. All start
 * at 0, which for the multi mode is a second texture: a host without one sets NINEFOLD_MULTI_NONE. */
NINEFOLD_API void SetShapeMode(long shape);
NINEFOLD_API void SetPrescaleMode(long prescale);
NINEFOLD_API void SetRuleAlphaMode(long rule);
NINEFOLD_API void SetFilterMode(long filter);
NINEFOLD_API void SetRectOptMode(long rectOpt);
NINEFOLD_API void SetShaheiMode(long shahei);
NINEFOLD_API void SetMultiMode(long multi);
NINEFOLD_API void SetPersMode(long pers);

/*
 * Sets blendMode and, for 13 and up, blendFunc: 13 and 20 up give blend 0 (source); 14 to 19 give blend 12 with luma of source,
 * luma of destination, xor, and, or, destination. 12 keeps the host's blendFunc. Every other value, 3 and negatives included, is
 * stored as it is; no kernel has 3 or a negative blend.
 *
 * With d and s one channel of destination and source, A the source's alpha, all truncated; the last column is the alpha that is
 * left:
 *    0 copy               s                                              that of the source
 *    1 alpha              (s * A + d * (255 - A)) >> 8                   0
 *    2 constant alpha     the same with blendAlpha for A                 0
 *    4 early outs         1, but A = 255 gives the source, A = 0 the     255 or that of the destination, else 0
 *                         destination, exactly
 *    5 add                d + s up to 255; red and green come out odd    1
 *    6 subtract           d - s down to 0; low bits lost                 the difference, wrapped
 *    7 multiply           (d * s) >> 8                                   0
 *    8 multiply by two    twice that, up to 255; the top bit of a        1 where red's product is 128 or more, else 0
 *                         product goes to bit 0 of the channel above
 *    9 screen             255 - (((255 - d) * (255 - s)) >> 8)           255
 *   10 overlay            d < 128: ((d * s) >> 8) * 2, else              0
 *                         255 - (((255 - d) * (255 - s)) >> 8) * 2
 *   11 merge              bit by bit: writeMask from s, the rest of d    likewise
 *   12                    blendFunc(destination, source)                 whatever it gives
 * The weights of blends 1 and 2 add up to 255 but the sum is divided by 256, so they lose a little light wherever they draw:
 * opaque white over any colour gives FE in each channel. For sprites with opaque parts take NINEFOLD_BLEND_ALPHA_FAST, which
 * keeps opaque pixels exact and leaves the destination alone under alpha 0.
 *
 * The alpha of a frame buffer means nothing after a blend: windows and files want the pixel format without alpha. The bits are
 * those of packed arithmetic: src/ops/blend.h defines them.
 */
NINEFOLD_API void SetBlendMode(long mode);

/*
 * Stores `value` in blendModeMulti and points multiFunc at that operator, in the bank that prescaleMultiMode selects. Values
 * outside 0 to 19, and 12 and 13, act as 0. Takes effect at once, also for kernels that the host already holds.
 *
 * 0 second, 1, 2, 4 to 11 the blends of these numbers with the first operand as destination, 3 constant alpha by blendAlphaRgb,
 * 14 luma of second, 15 luma of first, 16 xor, 17 and, 18 or, 19 first. The result keeps the alpha of the first operand, except
 * that value 2 of the first bank leaves alpha 0 and 11 goes by writeMask.
 */
NINEFOLD_API void SetBlendModeMulti(long value);

/* Selects the bank of multi operators and re-selects multiFunc in it. 0: first; else: second, which scales the second operand by
 * prescaleMulti: its alpha for values 1 and 4, its colour for the others; 2, 3, 15 and 19 have nothing to scale. */
NINEFOLD_API void SetPrescaleMultiMode(long mode);

/* Copies a stipple to drawMask. 0 draws nothing, n (1 to 255) draws n + 1 pixels of each 16 by 16 cell; 256 all, 257
 * checkerboard, 258 odd columns, 259 even rows, 260 odd columns of even rows, 261 all odd rows and odd columns. Above 261: no
 * change. Must not be negative. 1 to 255 come from MakeDrawMaskTable. */
NINEFOLD_API void SetPresetDrawMask(long index);

/* 65,536 pointers, one for each plane word: its run list of signed bytes, read from bit 15 down, n for n clear bits, -n for n
 * set bits; their sizes add up to 16, and no end is marked. The pointers are null before MakeShaheiRunlengthTbl. */
NINEFOLD_API char **GetShaheiTable(void);

#ifdef __cplusplus
}
#endif

#endif
