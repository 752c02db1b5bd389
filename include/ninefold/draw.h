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
 * Occlusion triangles: fill vertex[0..2] in shaheiPlane (bits), zBuffer (bytes) or both. Edges truncate (textured triangles
 * round), scanShift plays no part. When a part of the triangle starts above clipTop it jumps by clipLeft - row rows, not by
 * clipTop - row: keep clipLeft equal to clipTop, or leave room in the planes above and below the clip rectangle.
 */
NINEFOLD_API void DrawShaheiPolygonSet(void);
NINEFOLD_API void DrawShaheiPolygonFlip(void);
NINEFOLD_API void DrawShaheiPolygonReset(void);
NINEFOLD_API void DrawZbufferPolygon(void); /* writes zRef, which must be 0 to 255 */
NINEFOLD_API void DrawZbufferPolygon0xff(void);
NINEFOLD_API void DrawZbufferPolygonFlip(void);
NINEFOLD_API void DrawZbufferPolygonClear(void);
NINEFOLD_API void DrawShaheiZbufferPolygonMask(void);   /* bits set, bytes 0 */
NINEFOLD_API void DrawShaheiZbufferPolygonUnmask(void); /* bits clear, bytes 255 */
NINEFOLD_API void DrawShaheiZbufferPolygonFlip(void);   /* both complemented */

/*
 * Rule rectangles. The first two draw tex0 (uv0[0..1], stretched) wiped in by ruleThreshold, ruleWidth and ruleCurve, without a
 * transparent test: the rule value is the low byte of a tex1 texel at uv1[0..1], or a gradient of the low bytes of color[0..3],
 * which follow the vertices.
 */
NINEFOLD_API void DrawRectTexRule(void);
NINEFOLD_API void DrawRectGradRule(void);

/* A four-corner rectangle with rule texture, Shahei plane, draw mask and screen blend, sampled from tex0 and mipTex, mixed by mipFrac,
 * all three as they stand. */
NINEFOLD_API void DrawRectGradRule_GEN_RULE_TEST(void);

/* The same, with the mip level chosen from uv0[0..1]; below two texels a pixel it samples tex0 bilinearly instead. tex0 and tex1 must
 * both have a mip chain. */
NINEFOLD_API void DrawRectGradRule_GEN_RULE_MIPMAP_TEST(void);

#ifdef __cplusplus
}
#endif

#endif
