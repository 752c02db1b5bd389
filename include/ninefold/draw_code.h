/*
 * Draw codes: from modes to a kernel. Nine axes (shape, perspective, rule, prescale, filter, rect option, Shahei mode, blend,
 * multi) have a value each, which axes.h names and explains; a combination of nine values has a number, its draw code, and a
 * kernel, the function that draws it. There are 30,912. Below, names stand without their NINEFOLD_.
 *
 * What goes together:
 *   - SHAHEI_PLANE, SHAHEI_PLANE_PRIORITY: with BLEND_COPY only. SHAHEI_PRIORITY, SHAHEI_PRIORITY_STIPPLE: with every blend but
 *     BLEND_COPY.
 *   - Colours, FILTER_FLAT and FILTER_GOURAUD: with MULTI_NONE and RECT_NONE only; on triangles without prescale.
 *   - Lines: colours, without rule and perspective.
 *   - Rectangles, without perspective: FILTER_POINT, FILTER_BILINEAR and FILTER_MOSAIC with RECT_UNIT, RECT_STRETCH, RECT_CORNERS
 *     and RECT_TABLE; the four mip filters with the last three of them; FILTER_POINT alone with RECT_RUNS, but not under the two
 *     plane modes, and with RECT_PLANE_RUNS, under the plane modes only.
 *   - Triangles: RECT_NONE, all filters.
 *   - FILTER_LINE_POINT and FILTER_LINE_BILINEAR draw nothing outside RECT_TABLE.
 *
 * Mip filters choose one pair of levels for the whole primitive, by its mean density of texels; under RECT_TABLE one for each
 * row. A floor that runs far into the distance is drawn as tiles or strips, so that each has levels of its own.
 *
 * Some kernels want more than their modes say; all of it is their definition, not an accident ("plane modes" are SHAHEI_PLANE and
 * SHAHEI_PLANE_PRIORITY):
 *   - FILTER_BILINEAR mixes four texels, but under RECT_CORNERS and RECT_TABLE outside the plane modes it chooses one of two by a
 *     stipple. A mix has alpha 0 except under BLEND_ALPHA, BLEND_CONST_ALPHA and BLEND_ALPHA_FAST. The transparent test looks at
 *     the nearest texel alone.
 *   - FILTER_MIP mixes its two levels only on the way to multiFunc; with MULTI_NONE it draws texels of one level. On triangles
 *     without rule the mix itself is drawn: the operator is called and its result dropped.
 *   - FILTER_MIP_BILINEAR under RECT_TABLE, and under RECT_CORNERS when minified, outside the plane modes reads the first
 *     texel of its level everywhere; at negative positions it reads some texel of the level, and which one is open.
 *   - RECT_RUNS with a rule and SHAHEI_NONE: a pixel that the rule holds back does not move the source on, up to the stretch's
 *     end.
 *   - RECT_TABLE: on rows that are left out the stipple row, the plane row and the rule row stand still.
 *   - Rectangles of colours with a rule under the plane modes mark every pixel that the plane and the stipple leave free, also
 *     those that the rule holds back.
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
 * Shahei (3), blend (5), multi (2), shape | 0x68 (8). Rect option becomes RECT_NONE for lines, triangles and rectangles of
 * colours; multi becomes MULTI_NONE and pers 0 for lines and colours; pers is 0 for all but triangles. Nothing else is masked
 * or checked: a value too wide spills into the field to its left, and the code then names some other combination or none.
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
