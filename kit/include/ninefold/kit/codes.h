/* Draw codes in words: does one exist, how is it called, why not, and what instead. */
#ifndef NINEFOLD_KIT_CODES_H
#define NINEFOLD_KIT_CODES_H

#include <ninefold/kit/api.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Texts go into a buffer of the host's of `size` bytes, NUL included, cut where it is too small; null with size 0 is allowed. The
 * result of these functions is the length of the whole text without its NUL. */

/* 1 where a kernel has exactly this code, else 0, which is no failure: nfkError keeps its text. Works before nfkStart. */
NINEFOLD_KIT_API int nfkCodeExists(uint32_t code);

/* The code whose kernel SearchDrawFunc gives for `code`: itself where it exists, else the default of its shape. 0 where there is
 * none (the two low bits are 3). Code 0 counts as one that was not the first to be looked up. */
NINEFOLD_KIT_API uint32_t nfkDrawnCode(uint32_t code);

/* The readable name: words of axes.h joined by full stops: shape, rect option, filter, blend, Shahei mode, multi, pers, rule,
 * prescale, each left out where its word is empty, as rect.stretch.bilinear.alpha.z. Also of a combination that does not exist.
 * 0, and the buffer empty, where a value of the code belongs to no axis. */
NINEFOLD_KIT_API uint32_t nfkCodeName(uint32_t code, char *buffer, uint32_t size);

/* The code of a name, as nfkCodeName writes it, also of a combination that does not exist. 0 where it is no name. */
NINEFOLD_KIT_API uint32_t nfkCodeOfName(const char *name);

/* The up to `count` codes that exist and differ from `code` in the fewest axes, nearest first, the lower code first among equals.
 * Returns how many it wrote. */
NINEFOLD_KIT_API uint32_t nfkNearestCodes(uint32_t code, uint32_t *codes, uint32_t count);

/* Several lines on one code: its name, each axis with its value, the value's name and meaning. Where the code does not exist,
 * also why: each rule that it breaks, what SearchDrawFunc draws instead, and the nearest codes that exist. */
NINEFOLD_KIT_API uint32_t nfkExplainCode(uint32_t code, char *buffer, uint32_t size);

#ifdef __cplusplus
}
#endif

#endif
