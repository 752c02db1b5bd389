/*
 * Draw codes: from modes to a kernel. There is a kernel for each of 30,912 combinations of nine axes:
 *
 *   shape       0 line, 1 rectangle, 2 triangle
 *   pers        0; 1 perspective, by vertex[].z (triangles)
 *   rule        0; 1 wiped in by tex2 (rectangles, triangles)
 *   prescale    0; 1 source scaled by rs.prescale ahead of the blend: its alpha under blends 1, 2, 4, its colour under the others
 *   filter      0 nearest, 1 bilinear, 2 nearest and 5 bilinear on two mip levels, 3 nearest and 4 bilinear on a mip level for
 *               each line, 6 flat color[0], 7 Gouraud, 8 mosaic
 *   rect option 0 unit scale, 1 stretched, 2 four corners, 3 line table, 5 unit scale by the run-length map, 6 unit scale by the
 *               zero-pixel map and the Shahei plane, 7 none
 *   Shahei      0 none, 1 plane and stipple, drawn pixels marked, 2 the same and zBuffer written, 3 priority test, 4 stipple,
 *               5 priority test and stipple
 *   blend       0 copy, 1 alpha, 2 constant alpha, 4 alpha with early outs, 5 add, 6 subtract, 7 multiply, 8 multiply by two,
 *               9 screen, 10 overlay, 11 merge, 12 blendFunc (see SetBlendMode)
 *   multi       0 tex1, 1 corner colours, 2 color[0], each through multiFunc before the blend; 3 none
 *
 * What goes together:
 *   - Shahei modes 1, 2 with blend 0 only, 3, 5 with all blends but 0.
 *   - Lines: filters 6, 7, no rule. Filters 6, 7 anywhere: multi 3; on triangles no prescale either.
 *   - Rectangles: filters 0, 1, 8 with rect options 0 to 3; filter 0 also with 5 (Shahei modes 0, 3, 4, 5) and 6 (1, 2);
 *     filters 2 to 5 with rect options 1, 2, 3. Filters 3 and 4 draw nothing outside rect option 3.
 *   - Triangles: all filters; 3 and 4 draw nothing.
 *
 * Some kernels want more than their modes say; all of it is their definition, not an accident:
 *   - Filter 1 mixes four texels, but under rect options 2, 3 with Shahei modes 0, 3, 4, 5 it chooses one of two by a stipple.
 *     A mix has alpha 0 except under blends 1, 2, 4. The transparent test looks at the nearest texel alone.
 *   - Filter 2 mixes its two levels only on the way to multiFunc; with multi 3 it draws texels of one level. On triangles
 *     without rule the mix itself is drawn: the operator is called and its result dropped.
 *   - Filter 5 under rect option 3, and under rect option 2 when minified, with Shahei modes 0, 3, 4, 5 reads the first texel
 *     of its level everywhere; at negative positions it reads some texel of the level, and which one is open.
 *   - Rect option 5 with rule 1 and Shahei mode 0: a pixel that the rule holds back does not move the source on, up to the
 *     stretch's end.
 *   - Rect option 3: on rows that are left out the stipple row, the plane row and the rule row stand still.
 *   - Rectangles of filters 6, 7 with rule 1 and Shahei modes 1, 2 mark every pixel that the plane and the stipple leave free,
 *     also those that the rule holds back.
 */
#ifndef NINEFOLD_DRAW_CODE_H
#define NINEFOLD_DRAW_CODE_H

#include <ninefold/render_state.h>

/*
 * Draws one primitive from rs: half open, so the right and bottom edges are not drawn, nor the end point of a line that ends
 * inside the clip rectangle. Reports nothing; an empty or clipped-away primitive simply returns. Stays valid for the life of the
 * library, and the host may call it again with other contents of rs.
 *
 * Checks nothing. What its axes name must be there: textures with their chains and maps, planes, line tables with a record for
 * each row down to the last that is drawn, operators, divisors above 0. The clip rectangle must lie inside the frame buffer;
 * one that is inside out is the host's error. Within rs a kernel writes the scratch fields of the mip filters and nothing else.
 *
 * Textures may share memory with the frame buffer and the planes: pixels are then drawn as if one at a time, left to right, each
 * seeing what those before it left. Line tables, maps and other tables must not overlap what is written.
 *
 * Coordinates, steps and colours are 32-bit integers that wrap. Slopes are truncated quotients over the unclipped size, so a clip
 * never moves or rescales a picture, and the end coordinate is that of the pixel after the last.
 */
typedef void (*DrawFunc)(void);

/* One entry of the kernel table. */
typedef struct DrawFuncRecord {
    struct DrawFuncRecord *next; /* next record of the same bucket */
    uint32_t code; /* draw code */
    uint32_t hash; /* CRC-32/BZIP2 of the code's bytes, least significant first; the bucket is hash & 0x7FFF */
    DrawFunc func;
} DrawFuncRecord;

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Packs nine axis values into a draw code, from bit 27 down: pers, rule, prescale (a bit each), filter (4), rect option (3),
 * Shahei (3), blend (5), multi (2), shape | 0x68 (8). Rect option becomes 7 for lines, triangles and filters 6 and 7; multi
 * becomes 3 and pers 0 for lines and filters 6 and 7; pers is 0 for all but triangles. Nothing else is masked or checked: a
 * value too wide spills into the field to its left, and the code then names some other combination or none.
 */
NINEFOLD_API unsigned long CreateDrawCodeSub(long pers, long rule, long prescale, long filter, long rectOpt, long shahei,
                                             long blend, long multi, long shape);

/* The draw code of the modes in rs. */
NINEFOLD_API unsigned long CreateDrawCode(void);

/*
 * The kernel of a draw code. A code that no kernel has gets the default of its shape, with all other axes dropped and nothing
 * said: the flat line (0xDC0368), the unit-scale copy (0x369), the plain textured triangle (0x1C036A). Null for an unknown code
 * whose two low bits are 3, for code 0 before any other look-up, and (the host's error) before MakeDrawFuncTable. The last code
 * is remembered, so that looking up the same one again costs next to nothing.
 */
NINEFOLD_API DrawFunc SearchDrawFunc(unsigned long code);

#ifdef __cplusplus
}
#endif

#endif
