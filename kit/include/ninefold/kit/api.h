/* How the kit's names are exported, what its records share, and the text of the last error. */
#ifndef NINEFOLD_KIT_API_H
#define NINEFOLD_KIT_API_H

#include <ninefold/ninefold.h>

/* A Windows program that links the kit statically defines NINEFOLD_STATIC, as for the library. */
#if defined(_WIN32)
#if defined(NINEFOLD_KIT_BUILD)
#define NINEFOLD_KIT_API __declspec(dllexport)
#elif defined(NINEFOLD_STATIC)
#define NINEFOLD_KIT_API
#else
#define NINEFOLD_KIT_API __declspec(dllimport)
#endif
#else
#define NINEFOLD_KIT_API __attribute__((visibility("default")))
#endif

/* A position, pixels or texels. */
typedef struct NfkPoint {
    int32_t x, y;
} NfkPoint;

/* A rectangle of pixels or texels: right and bottom edge, x + width and y + height, are outside. */
typedef struct NfkRect {
    int32_t x, y, width, height;
} NfkRect;

#ifdef __cplusplus
extern "C" {
#endif

/* What the last function of the kit that failed on this thread has to say, in English and UTF-8, without a line's end: it names
 * the function, the value and the remedy. "" before the first failure. A success does not clear it. The text stays as it is until
 * the thread's next failure. */
NINEFOLD_KIT_API const char *nfkError(void);

#ifdef __cplusplus
}
#endif

#endif
