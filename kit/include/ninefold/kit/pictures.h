/* Pictures: PNG, JPEG, WebP and BMP files into textures, textures into PNG files. */
#ifndef NINEFOLD_KIT_PICTURES_H
#define NINEFOLD_KIT_PICTURES_H

#include <ninefold/kit/api.h>

#include <stddef.h>

/* What a loaded picture gets besides its pixels, bits that may be added up. */
/* clang-format off */
#define NFK_PICTURE_EXTRAS(X) \
    X(NFK_PICTURE_EDGE,      1, "edge",  "its outermost pixels, repeated all around") \
    X(NFK_PICTURE_MIP_CHAIN, 2, "mip",   "its mip chain, as by CreateMipmapTexture") \
    X(NFK_PICTURE_RUN_MAP,   4, "runs",  "its run-length map, as by CreateRunlengthMap") \
    X(NFK_PICTURE_ZERO_MAP,  8, "zeros", "its zero-pixel map, as by CreateZeroPixelMap")
/* clang-format on */

enum { NFK_PICTURE_EXTRAS(NINEFOLD_ENUMERATOR) };

/* Limits. What is larger is refused before memory is taken for it. */
enum {
    NFK_PICTURE_MAX_SIDE = 16384, /* width and height, pixels */
    NFK_PICTURE_MAX_PIXELS = 1 << 26, /* of the texture, whose sides are powers of two: 256 MiB */
    NFK_PICTURE_MAX_FILE = 1 << 28 /* bytes */
};

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Loads a picture into a new texture, its top left pixel at (0, 0); origWidth and origHeight hold its size. Alpha is straight,
 * that is, colours are not multiplied by it; pixels with alpha 0 become the word 0, files without alpha give alpha 255. Channels
 * come as the file has them: colour profiles, gamma and the orientation that cameras note down have no effect. The area outside
 * the picture is 0.
 *
 *   PNG   every kind; 16-bit channels are rounded to 8
 *   JPEG  baseline, progressive, grey and CMYK (as inks on white)
 *   WebP  still pictures, with and without loss and alpha
 *   BMP   8 bits with a palette, 24 and 32 bits, uncompressed, either way up. The fourth byte of a 32-bit pixel is its alpha,
 *         unless it is 0 in all of them or the file's masks leave it out
 *
 * The bytes decide what a file is; its name has no say. `extras` is a sum of NFK_PICTURE_...
 *
 * With NFK_PICTURE_EDGE the left half of what remains of each row repeats its last pixel, the right half its first one, which is
 * to the left of it when the texture wraps; the rows likewise. Bilinear stretches and mip levels then find the picture's own
 * colours beyond its edge instead of transparent black. There is always at least one column and one row on each side, so a
 * picture of 256 by 256 takes a texture of 512 by 512.
 *
 * Null, with a text in nfkError that names the file and the reason, for files that are cut short, damaged, of another kind or
 * above the limits, and when memory runs out. `path` goes to the system as it is; a null path is refused. The host releases the
 * texture by DeleteTexture.
 */
NINEFOLD_KIT_API Texture *nfkLoadPicture(const char *path, uint32_t extras);

/* The same from `size` bytes in memory, which are not needed afterwards. `name` stands for the file in error texts; null:
 * "memory". */
NINEFOLD_KIT_API Texture *nfkLoadPictureMemory(const void *bytes, size_t size, const char *name, uint32_t extras);

/*
 * Writes the texture's picture, origWidth by origHeight pixels from its top left (no more than the texture has), as a PNG file of
 * 8 bits a channel. With `alpha` 0 alpha is left out: what a frame buffer wants, whose alpha means nothing. Otherwise it is
 * written as straight alpha. Returns 1, or 0 with a text in nfkError; a file that could not be written whole is removed.
 */
NINEFOLD_KIT_API int nfkSavePicture(const Texture *texture, const char *path, int alpha);

#ifdef __cplusplus
}
#endif

#endif
