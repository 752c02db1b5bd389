/* Start, screens, and textures over the host's own pixels. */
#ifndef NINEFOLD_KIT_SCREEN_H
#define NINEFOLD_KIT_SCREEN_H

#include <ninefold/kit/api.h>

/* A frame buffer with its two planes. The host reads the fields and changes what they point at, but not the fields. */
typedef struct NfkScreen {
    int32_t width, height; /* the visible part, pixels: columns and rows from the top left of the texture */
    Texture *texture; /* frame buffer: sizes padded to powers of two, at least 16 wide; owned by the screen */
    uint16_t *shaheiPlane; /* a bit for each pixel of `texture` */
    uint8_t *zBuffer; /* a byte for each pixel of `texture` */
} NfkScreen;

#ifdef __cplusplus
extern "C" {
#endif

/* Calls the library's four start-up functions; again does nothing. Fails, and starts nothing, where the library that the program
 * loaded is of another major version than that which the kit was built for: it reads the soname of the loaded file, which its
 * system must show (Linux). A library linked statically is that of the build, and passes. */
NINEFOLD_KIT_API int nfkStart(void);

/* A screen of width by height pixels, 1 to 32768 each, cleared to 0xFF000000 and selected. Starts the library where nfkStart has
 * not been called. Null on failure. */
NINEFOLD_KIT_API NfkScreen *nfkCreateScreen(int32_t width, int32_t height);

/* Gives a screen another size; it is cleared as a new one. One that was selected stays so. Textures and planes are new:
 * pointers to the old ones end. On failure the screen is as it was. */
NINEFOLD_KIT_API int nfkResizeScreen(NfkScreen *screen, int32_t width, int32_t height);

/* Makes `screen` what is drawn on: frame buffer, clip rectangle (all of the visible part) and both planes of rs. */
NINEFOLD_KIT_API int nfkSelectScreen(const NfkScreen *screen);

/* Fills the texture with `color`, and frees every pixel of both planes: bits clear, bytes 255. */
NINEFOLD_KIT_API int nfkClearScreen(NfkScreen *screen, uint32_t color);

/* Frees a screen and all that is its own; null does nothing. Where it was selected, rs is left without frame buffer and planes
 * and with an empty clip rectangle, in which nothing draws. */
NINEFOLD_KIT_API void nfkReleaseScreen(NfkScreen *screen);

/* A texture over pixels of the host's own: width * height words, row after row without gaps, both powers of two. DeleteTexture
 * ends it and leaves the pixels, which must live as long. Null on failure. */
NINEFOLD_KIT_API Texture *nfkTextureOver(uint32_t *pixels, int32_t width, int32_t height);

#ifdef __cplusplus
}
#endif

#endif
