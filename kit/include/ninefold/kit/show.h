/* From a screen into a window's memory. */
#ifndef NINEFOLD_KIT_SHOW_H
#define NINEFOLD_KIT_SHOW_H

#include <ninefold/kit/screen.h>

/* clang-format off */

/* Pixel formats of windows. The alpha of a frame buffer means nothing: where a format has room for alpha it becomes 255, so that
 * also windows that look at it show the picture. Words are in the processor's byte order. X(NAME, value, word, meaning) */
#define NFK_FORMATS(X) \
    X(NFK_FORMAT_ARGB8888, 0, "argb8888", "32-bit words 0xFFRRGGBB, also for XRGB8888 and the bitmaps of Windows") \
    X(NFK_FORMAT_ABGR8888, 1, "abgr8888", "32-bit words 0xFFBBGGRR: bytes red, green, blue, 255") \
    X(NFK_FORMAT_RGBA8888, 2, "rgba8888", "32-bit words 0xRRGGBBFF") \
    X(NFK_FORMAT_BGRA8888, 3, "bgra8888", "32-bit words 0xBBGGRRFF") \
    X(NFK_FORMAT_RGB565,   4, "rgb565",   "16-bit words, red in the top 5 bits, green in 6, blue in 5") \
    X(NFK_FORMAT_RGB555,   5, "rgb555",   "16-bit words, the top bit clear, then 5 bits each") \
    X(NFK_FORMAT_RGB24,    6, "rgb24",    "bytes red, green, blue") \
    X(NFK_FORMAT_BGR24,    7, "bgr24",    "bytes blue, green, red")

/* clang-format on */
enum { NFK_FORMATS(NINEFOLD_ENUMERATOR) };

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes of a pixel: 2, 3 or 4; 0 for no NFK_FORMAT_..., which fails. */
NINEFOLD_KIT_API int32_t nfkFormatBytes(int32_t format);

/* Copies the visible part of a screen to `pixels`, the top left of memory of width by height pixels whose rows are `pitch`
 * bytes apart, as a locked window texture or surface has it. What is wider or higher than the other is cut at the right and at
 * the bottom; what the screen does not reach stays as it is. A negative pitch goes upwards: `pixels` is then the start of the
 * last row in memory. Fails where a row does not fit into the pitch, and where address or pitch is no multiple of the words of
 * the format. */
NINEFOLD_KIT_API int nfkShow(const NfkScreen *screen, void *pixels, int32_t pitch, int32_t width, int32_t height, int32_t format);

/* The same for a part of a texture, which must lie inside it: `pixels` is where the part's top left goes. */
NINEFOLD_KIT_API int nfkCopyOut(const Texture *texture, const NfkRect *part, void *pixels, int32_t pitch, int32_t format);

#ifdef __cplusplus
}
#endif

#endif
