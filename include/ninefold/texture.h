/* Pixel surfaces: the Texture record, and the functions that make, copy, load and prepare one. */
#ifndef NINEFOLD_TEXTURE_H
#define NINEFOLD_TEXTURE_H

#include <ninefold/api.h>
#include <ninefold/axes.h>

/*
 * A pixel surface in main memory. Frame buffers, sources, rule textures, mip levels and glyph atlases are all Textures.
 *
 * A pixel is one 32-bit word 0xAARRGGBB. The word 0 means "no pixel": kernels skip it as a source. Any other word is drawn,
 * also one with alpha 0. Width and height are powers of two and the pitch is exactly `width`, so a coordinate wraps by
 * `value & (width - 1)` and row y starts at `y << log2Width`.
 *
 * Texture objects come from CreateTexture, LoadTexture or LoadTextureAdjust and go through DeleteTexture.
 */
#ifdef __cplusplus
struct Texture {
    virtual ~Texture();
#else
typedef struct Texture Texture;
struct Texture {
    void *vtable; /* the platform's virtual table of the C++ class */
#endif
    uint32_t *pixels; /* width * height words, row after row, 16-byte aligned */
    uint32_t width; /* pixels, a power of two, at least 1 */
    uint32_t height; /* rows, a power of two, at least 1 */
    uint32_t log2Width; /* width == 1 << log2Width */
    uint32_t log2Height; /* height == 1 << log2Height */
    Texture *mip[16]; /* mip chain; mip[0] is the texture itself once a chain exists */
    uint32_t mipCount; /* entries of mip in use; 0: no chain */
    int8_t *runlengthMap; /* see CreateRunlengthMap; null: none */
    uint16_t *zeroPixelMap; /* see CreateZeroPixelMap; null: none */
    uint32_t flags; /* NINEFOLD_TEXTURE_...; see DeleteTexture */
    int32_t refCount; /* see DeleteTexture; 0 after creation */
    uint32_t origWidth; /* width as asked for, before rounding; for the host only */
    uint32_t origHeight; /* height as asked for; the same */
};

#ifdef __cplusplus
extern "C" {
#endif

/* A new texture. Both sizes (pixels) round up to powers of two; 0 gives 1. The pixels are left as allocated. Throws
 * std::bad_alloc when the record cannot be allocated; where the pixels cannot be (4 GiB and more never can), `pixels` is null. */
NINEFOLD_API Texture *CreateTexture(unsigned long width, unsigned long height);

/* Adds 1 to refCount. Because creation leaves 0, the first call changes nothing: a texture dies at its nth DeleteTexture
 * after n AddRefTexture calls, and at its first after none. */
NINEFOLD_API void AddRefTexture(Texture *texture);

/* Subtracts 1 from refCount and, if that leaves 0 or less, frees the maps, the pixels (unless `flags` has
 * NINEFOLD_TEXTURE_HOST_PIXELS), mip levels 1 and up, and the record.
 *
 * With that flag a texture can show pixels of the host's, such as those of a window. A record of 4 GiB comes without any of its
 * own:
 *
 *     Texture *view = CreateTexture(0x8000, 0x8000);
 *     view->pixels = windowPixels;
 *     view->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
 *     view->log2Width = 10, view->width = 1024;
 *     view->log2Height = 9, view->height = 512;
 *
 * Rows must follow one another without gaps, and both sizes be powers of two. The host frees its pixels after DeleteTexture. */
NINEFOLD_API void DeleteTexture(Texture *texture);

/* Sets all width * height words to 0, the transparent pixel. */
NINEFOLD_API void ClearTexture(Texture *texture);

/* Copies a block of pixels from `src` to `dst`. The four offsets wrap once into their texture, then the block is clipped to
 * both textures; a width or height below 1 copies nothing. Zeros are copied like any other word. Rows go top to bottom and
 * pixels left to right, also when both are one texture: a block that overlaps its source to the right or below repeats what was
 * just written. */
NINEFOLD_API void CopyTexture(Texture *dst, Texture *src, long dstX, long dstY, long srcX, long srcY, long width, long height);

/* Every word equal to `color` becomes 0, the transparent pixel: a colour key. Alpha takes part in the comparison, and is 255 in
 * loaded pictures. */
NINEFOLD_API void SetClearPixel(Texture *texture, unsigned long color);

/* Every word equal to `oldColor` becomes `newColor`. Mind the order: new before old. */
NINEFOLD_API void ReplacePixel(Texture *texture, unsigned long newColor, unsigned long oldColor);

/*
 * Loads an uncompressed 24-bit Windows bitmap into a new texture, top row first, every pixel with alpha 255; the area outside
 * the picture is the word 0. origWidth and origHeight hold the picture's size. The signature, depth and compression in the
 * header are not looked at. Null when the file cannot be opened, when its width or height is negative or more than any pixel
 * store can hold, or when there is no memory for its pixels; throws std::bad_alloc where there is none for the file itself. Bytes
 * that the file lacks read as 0. `path` goes to the system as it is.
 */
NINEFOLD_API Texture *LoadTexture(char *path);

/*
 * As LoadTexture, with the picture placed inside the power-of-two texture: `alignX` and `alignY` are NINEFOLD_ALIGN_...;
 * any other value is NINEFOLD_ALIGN_START. The out-parameters, each of which may be null, receive the position
 * of the picture's top-left pixel and its size as read from the file (pixels); when the result is null they are not written.
 */
NINEFOLD_API Texture *LoadTextureAdjust(char *path, unsigned long alignX, unsigned long alignY, long *outX, long *outY,
                                        long *outWidth, long *outHeight);

/* Gives a texture its chain of half-size levels (a truncating 2 by 2 box over all four channels), down to where the smaller
 * dimension is 1. Does nothing when the chain is already whole: after changing the pixels call DeleteMipmapTexture first.
 * Transparent pixels count as black with alpha 0. The mip filters need a chain of at least two levels, so a texture of at least
 * 2 by 2. There must be memory for it: a third more than the pixels have. */
NINEFOLD_API void CreateMipmapTexture(Texture *texture);

/* Releases mip levels 1 and up and sets mipCount to 0. DeleteTexture does the same. */
NINEFOLD_API void DeleteMipmapTexture(Texture *texture);

/* Makes the run-length map that NINEFOLD_RECT_RUNS reads: one signed byte a pixel, n for n non-zero pixels from here to the right
 * within the row, -n for n zero pixels, limited to 127 and -128. Replaces an older map. Nothing keeps it current. Throws
 * std::bad_alloc without memory for it, and leaves no map.
 *
 * Mind holes of 128 zero pixels and more: at one, that rect option goes on 128 pixels further left instead of right, also to the
 * left of the clip rectangle, and draws on from there. A sprite with such a hole needs 128 pixels of frame buffer before it (one
 * with several, as many as it is wide), or is drawn with NINEFOLD_RECT_UNIT. */
NINEFOLD_API void CreateRunlengthMap(Texture *texture);

/* Makes the zero-pixel map that NINEFOLD_RECT_PLANE_RUNS reads: 16-bit words, bit 15 leftmost, a set bit for a pixel whose
 * word is 0. The word of a pixel is its index divided by 16, its bit 15 - (x & 15), so rows of textures narrower than 16 share
 * bits. Replaces an older map. Nothing keeps it current. Throws as CreateRunlengthMap does. That rect option reads it at the
 * frame-buffer position of the pixel, whatever uv0 says: the texture must be as wide as the frame buffer, reach as far down as
 * what is drawn, and lie on it position for position. */
NINEFOLD_API void CreateZeroPixelMap(Texture *texture);

#ifdef __cplusplus
}
#endif

#endif
