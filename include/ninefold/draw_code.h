/* Draw codes: from modes to a kernel. */
#ifndef NINEFOLD_DRAW_CODE_H
#define NINEFOLD_DRAW_CODE_H

#include <ninefold/render_state.h>

/* Draws one primitive from rs. Checks nothing and reports nothing; an empty or clipped-away primitive simply returns. Stays valid
 * for the life of the library. */
typedef void (*DrawFunc)(void);

/* One entry of the kernel table. */
typedef struct DrawFuncRecord {
    struct DrawFuncRecord *next; /* next record of the same bucket */
    uint32_t code;               /* draw code */
    uint32_t hash;               /* CRC-32/BZIP2 of the code's bytes, least significant first; the bucket is hash & 0x7FFF */
    DrawFunc func;
} DrawFuncRecord;

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Packs nine axis values into a draw code, from the top bit down: pers, rule, prescale (a bit each), filter (4), rect option (3),
 * Shahei (3), blend (5), multi (2), shape | 0x68 (8). Rect option becomes 7 for lines, triangles and filters 6 and 7; multi
 * becomes 3 and pers 0 for lines and filters 6 and 7; pers is 0 for all but triangles. Nothing else is masked or checked: a
 * value too wide spills into the field to its left.
 */
NINEFOLD_API unsigned long CreateDrawCodeSub(long pers, long rule, long prescale, long filter, long rectOpt, long shahei, long blend,
                                             long multi, long shape);

/* The draw code of the modes in rs. */
NINEFOLD_API unsigned long CreateDrawCode(void);

/*
 * The kernel of a draw code. A code that no kernel has gets the default of its shape, with all other axes dropped: the flat line,
 * the unit-scale copy, the plain textured triangle. Null for an unknown code whose two low bits are 3, for code 0 before any other
 * look-up, and (the host's error) before MakeDrawFuncTable.
 */
NINEFOLD_API DrawFunc SearchDrawFunc(unsigned long code);

#ifdef __cplusplus
}
#endif

#endif
