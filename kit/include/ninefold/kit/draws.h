/*
 * The common draws, each in one call. A draw sets in rs what it needs, calls the kernel, and leaves every field of rs as it found
 * it but the scratch fields of the mip filters (mipFrac to mipRatio), which kernels write. Screen, clip rectangle, origin,
 * planes, line tables and scanShift are those of rs; the modes in rs have no say: NfkOptions has them.
 *
 * The bits are those of the same kernel called by hand. A kernel is looked up at the first draw that needs it and kept; that one
 * look-up also changes which code SearchDrawFunc remembers as its last, which nothing shows but its speed.
 *
 * All functions return 1, or 0 where they draw nothing because something is wrong: a combination that does not exist, a texture,
 * chain, plane or operator that is missing, a value out of its range. An array is looked through before its first element is
 * drawn.
 *
 * Positions and sizes are pixels and below 2^29 in size; with rs.originX and originY added positions must be below 2^30. A
 * negative width or height is what it is to the kernel: the corners are exchanged and the picture is mirrored.
 */
#ifndef NINEFOLD_KIT_DRAWS_H
#define NINEFOLD_KIT_DRAWS_H

#include <ninefold/kit/api.h>

/* What a draw does besides its position and source. nfkOptions() has the defaults, which stand in brackets. */
typedef struct NfkOptions {
    int32_t blend; /* NINEFOLD_BLEND_..., 14 to 19 included [NINEFOLD_BLEND_ALPHA_FAST] */
    int32_t filter; /* NINEFOLD_FILTER_..., of textures [NINEFOLD_FILTER_POINT] */
    int32_t shahei; /* NINEFOLD_SHAHEI_... [NINEFOLD_SHAHEI_NONE] */
    int32_t multi; /* NINEFOLD_MULTI_... [NINEFOLD_MULTI_NONE] */
    int32_t multiOp; /* NINEFOLD_MULTI_OP_...; -1: multiFunc of rs [NINEFOLD_MULTI_OP_MUL] */
    int32_t stipple; /* NINEFOLD_STIPPLE_..., 0 to 261; -1: drawMask of rs [-1] */
    int32_t perspective; /* of meshes: not 0 for perspective by their z [0] */
    int32_t ruleCurve; /* NINEFOLD_CURVE_..., of transitions [NINEFOLD_CURVE_LINEAR] */
    uint32_t blendAlpha; /* 0 to 255, NINEFOLD_BLEND_CONST_ALPHA and that multi operator [255] */
    uint32_t blendAlphaRgb; /* 0 to 255, NINEFOLD_MULTI_OP_CONST_ALPHA_RGB [255] */
    uint32_t prescale; /* 0 to 256: scales the source's alpha under blends 1, 2 and 4, else its colour; 256: without [256] */
    uint32_t prescaleMulti; /* 0 to 256: scales the second operand of the multi stage; 256: without [256] */
    uint32_t zRef; /* priority, 0 to 255 [0] */
    uint32_t writeMask; /* NINEFOLD_BLEND_MERGE and NINEFOLD_MULTI_OP_MERGE [0xFFFFFFFF] */
    uint32_t color[4]; /* NINEFOLD_MULTI_COLOUR reads [0], NINEFOLD_MULTI_CORNERS all four; meshes bring their own [0xFFFFFFFF] */
    int32_t mosaicSize1, mosaicSize; /* NINEFOLD_FILTER_MOSAIC, at least 1 [1, 1] */
    Texture *tex1; /* NINEFOLD_MULTI_TEXTURE [null] */
    NfkRect source1; /* the part of tex1; width 0: the whole picture [0, 0, 0, 0] */
    PixelOperator blendFunc; /* NINEFOLD_BLEND_CUSTOM [null] */
} NfkOptions;

/* Where a turned picture goes: its pivot, a position within the source, lies at x, y of the screen. */
typedef struct NfkTurn {
    float x, y; /* pixels */
    float pivotX, pivotY; /* texels from the top left of the source */
    float angle; /* degrees, clockwise */
    float scaleX, scaleY; /* 1: a pixel for each texel; negative ones mirror */
} NfkTurn;

/* A vertex of a mesh. */
typedef struct NfkMeshVertex {
    int32_t x, y; /* pixels */
    int32_t z; /* depth under perspective, at least 1; else not looked at */
    int32_t u, v; /* texel position, 16.16 */
    uint32_t color; /* without a texture, and NINEFOLD_MULTI_CORNERS */
} NfkMeshVertex;

/* What every draw of the kit goes through: it gets the draw code (0 for kernels that have none) and the kernel, and calls the
 * kernel with rs as it is, or does not. */
typedef void (*NfkCaller)(uint32_t code, DrawFunc kernel);

#ifdef __cplusplus
extern "C" {
#endif

/* The defaults. A null pointer where a draw takes options means these. */
NINEFOLD_KIT_API NfkOptions nfkOptions(void);

/* Puts `caller` between the kit's draws and the kernels and returns the one before; null: the first, which calls the kernel. */
NINEFOLD_KIT_API NfkCaller nfkSetCaller(NfkCaller caller);

/* A `source` is a part of the texture in texels, less than 32768 wide and high; null: the whole picture, origWidth by
 * origHeight. */

/* A sprite: a texel a pixel, the source's top left at x, y. */
NINEFOLD_KIT_API int nfkSprite(Texture *texture, int32_t x, int32_t y, const NfkRect *source, const NfkOptions *options);

/* A picture stretched over `target`. */
NINEFOLD_KIT_API int nfkPicture(Texture *texture, const NfkRect *target, const NfkRect *source, const NfkOptions *options);

/* A picture turned and scaled: two triangles, with corners rounded to whole pixels. */
NINEFOLD_KIT_API int nfkTurned(Texture *texture, const NfkTurn *turn, const NfkRect *source, const NfkOptions *options);

/* `count` sprites and stretched pictures of one texture, in this order. `sources` may be null: the whole picture each time.
 * `colors` may be null; else the colour of each goes through options->multiOp (NINEFOLD_MULTI_COLOUR; multi must be that or
 * NINEFOLD_MULTI_NONE), and its alpha through the prescale axis, where 255 counts as 256, times options->prescale: 0xFFFFFFFF
 * leaves a sprite nearly as it is, 0x80FF0000 makes it red and half transparent. */
NINEFOLD_KIT_API int nfkSprites(Texture *texture, uint32_t count, const NfkPoint *positions, const NfkRect *sources,
                                const uint32_t *colors, const NfkOptions *options);
NINEFOLD_KIT_API int nfkPictures(Texture *texture, uint32_t count, const NfkRect *targets, const NfkRect *sources,
                                 const uint32_t *colors, const NfkOptions *options);

/* A picture over what is on the screen, wiped in along `rule`: dark texels (by their low byte) come last. `t` is the time, 0
 * (nothing is drawn) to 1 (all of it); `width` that of the soft edge, 0 (hard) to 255 rule values. The rule's whole picture is
 * stretched over the target. `target` may be null: the source's size at 0, 0. */
NINEFOLD_KIT_API int nfkTransition(Texture *texture, const NfkRect *target, const NfkRect *source, Texture *rule, float t,
                                   int32_t width, const NfkOptions *options);

/* Lines of single pixels, the last of which is not drawn; colours with alpha, weighed by the blend. `ends` holds two positions
 * a line. */
NINEFOLD_KIT_API int nfkLine(int32_t x0, int32_t y0, int32_t x1, int32_t y1, uint32_t color, const NfkOptions *options);
NINEFOLD_KIT_API int nfkLines(uint32_t count, const NfkPoint *ends, const uint32_t *colors, const NfkOptions *options);

/* Rectangles of one colour, and of four that run into each other: top left, top right, bottom left, bottom right. */
NINEFOLD_KIT_API int nfkFill(const NfkRect *target, uint32_t color, const NfkOptions *options);
NINEFOLD_KIT_API int nfkFills(uint32_t count, const NfkRect *targets, const uint32_t *colors, const NfkOptions *options);
NINEFOLD_KIT_API int nfkGradient(const NfkRect *target, const uint32_t colors[4], const NfkOptions *options);

/* Triangles, three indices each; null indices: the vertices as they come. `texture` null: the colours of the vertices,
 * running. The second texture of NINEFOLD_MULTI_TEXTURE is read at the same positions as the first. */
NINEFOLD_KIT_API int nfkMesh(Texture *texture, uint32_t vertexCount, const NfkMeshVertex *vertices, uint32_t indexCount,
                             const uint32_t *indices, const NfkOptions *options);

#ifdef __cplusplus
}
#endif

#endif
