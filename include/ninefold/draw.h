/* What draws without a draw code: kernels with a name of their own, occlusion triangles, rule rectangles. */
#ifndef NINEFOLD_DRAW_H
#define NINEFOLD_DRAW_H

#include <ninefold/render_state.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Kernels of the table, exported by name: codes 0x188369, 0xFDA768, 0x81C036A. */
NINEFOLD_API void DrawRectTexRunlen_TEST(void);
NINEFOLD_API void DrawLineTest(void);
NINEFOLD_API void DrawPolygon_PERS_TEST(void);

/*
 * Occlusion triangles: fill vertex[0..2] in shaheiPlane (bits), zBuffer (bytes) or both, right and bottom edges left out. Edges
 * truncate where textured triangles round, so the two do not cover quite the same pixels; scanShift plays no part. The plane of a
 * function must be there.
 *
 * When a part of the triangle starts above clipTop it jumps by clipLeft - row rows, not by clipTop - row. The jump may be
 * negative: then the fill moves up and grows by as many rows. Keep clipLeft equal to clipTop, or let no triangle reach above
 * clipTop, or leave room in the planes above and below the clip rectangle.
 */
NINEFOLD_API void DrawShaheiPolygonSet(void);
NINEFOLD_API void DrawShaheiPolygonFlip(void);
NINEFOLD_API void DrawShaheiPolygonReset(void);
NINEFOLD_API void DrawZbufferPolygon(void); /* writes zRef, which must be 0 to 255 */
NINEFOLD_API void DrawZbufferPolygon0xff(void);
NINEFOLD_API void DrawZbufferPolygonFlip(void);
NINEFOLD_API void DrawZbufferPolygonClear(void);
NINEFOLD_API void DrawShaheiZbufferPolygonMask(void); /* bits set, bytes 0 */
NINEFOLD_API void DrawShaheiZbufferPolygonUnmask(void); /* bits clear, bytes 255 */
NINEFOLD_API void DrawShaheiZbufferPolygonFlip(void); /* both complemented */

/*
 * Rule rectangles: stretched and four-corner rectangles with a rule, for which there is no draw code. Modes have no effect on
 * them.
 *
 * The first two copy tex0 (uv0[0..1]) wiped in by ruleThreshold, ruleWidth and ruleCurve, without planes or a transparent test:
 * the rule value is the low byte of a tex1 texel at uv1[0..1] (not of tex2), or a gradient of the low bytes of color[0..3],
 * which follow the vertices. Every pixel of the rectangle is written, also with its own value.
 */
NINEFOLD_API void DrawRectTexRule(void);
NINEFOLD_API void DrawRectGradRule(void);

/* A four-corner rectangle with rule texture (tex2, uv2[0..1]), Shahei plane, draw mask and screen blend, sampled bilinearly at
 * uv0[0..3] from tex0 and from mipTex at half the coordinates, mixed by mipFrac: the host sets all three. */
NINEFOLD_API void DrawRectGradRule_GEN_RULE_TEST(void);

/* The same, with the mip level chosen from the smaller of the texel steps between uv0[0] and uv0[1] along x and y; below two
 * texels a pixel it samples tex0 bilinearly instead. A level is chosen for tex1 and uv1 too, though they are not drawn: both
 * textures must have a mip chain. tex0, tex1 and their coordinates are put back; mipTex, mipTex1, mipFrac and mipFrac1 keep
 * what was chosen. */
NINEFOLD_API void DrawRectGradRule_GEN_RULE_MIPMAP_TEST(void);

#ifdef __cplusplus
}
#endif

#endif
