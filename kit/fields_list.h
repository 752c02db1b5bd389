// Written by scripts/fields from include/ninefold/: the fields of the public records,
// X(record, name, type, kind, count, meaning).
#pragma once

/* clang-format off */

#define NFK_FIELDS_Texture(X) \
    X(Texture, pixels, "uint32_t *", NFK_KIND_POINTER, 1, "width * height words, row after row, 16-byte aligned") \
    X(Texture, width, "uint32_t", NFK_KIND_UNSIGNED, 1, "pixels, a power of two, at least 1") \
    X(Texture, height, "uint32_t", NFK_KIND_UNSIGNED, 1, "rows, a power of two, at least 1") \
    X(Texture, log2Width, "uint32_t", NFK_KIND_UNSIGNED, 1, "width == 1 << log2Width") \
    X(Texture, log2Height, "uint32_t", NFK_KIND_UNSIGNED, 1, "height == 1 << log2Height") \
    X(Texture, mip, "Texture *", NFK_KIND_POINTER, 16, "mip chain; mip[0] is the texture itself once a chain exists") \
    X(Texture, mipCount, "uint32_t", NFK_KIND_UNSIGNED, 1, "entries of mip in use; 0: no chain") \
    X(Texture, runlengthMap, "int8_t *", NFK_KIND_POINTER, 1, "see CreateRunlengthMap; null: none") \
    X(Texture, zeroPixelMap, "uint16_t *", NFK_KIND_POINTER, 1, "see CreateZeroPixelMap; null: none") \
    X(Texture, flags, "uint32_t", NFK_KIND_UNSIGNED, 1, "NINEFOLD_TEXTURE_...; see DeleteTexture") \
    X(Texture, refCount, "int32_t", NFK_KIND_SIGNED, 1, "see DeleteTexture; 0 after creation") \
    X(Texture, origWidth, "uint32_t", NFK_KIND_UNSIGNED, 1, "width as asked for, before rounding; for the host only") \
    X(Texture, origHeight, "uint32_t", NFK_KIND_UNSIGNED, 1, "height as asked for; the same")

#define NFK_FIELDS_Vertex(X) \
    X(Vertex, x, "int32_t", NFK_KIND_SIGNED, 1, "Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.") \
    X(Vertex, y, "int32_t", NFK_KIND_SIGNED, 1, "Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.") \
    X(Vertex, z, "int32_t", NFK_KIND_SIGNED, 1, "Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.")

#define NFK_FIELDS_TexCoord(X) \
    X(TexCoord, u, "int32_t", NFK_KIND_SIGNED, 1, "A texel position in signed 16.16 fixed point. It wraps around the texture in both directions; under perspective it must not be negative, and comes out the finer the smaller the three coordinates are (best below 256 texels).") \
    X(TexCoord, v, "int32_t", NFK_KIND_SIGNED, 1, "A texel position in signed 16.16 fixed point. It wraps around the texture in both directions; under perspective it must not be negative, and comes out the finer the smaller the three coordinates are (best below 256 texels).")

#define NFK_FIELDS_LineTableRecord(X) \
    X(LineTableRecord, startU, "int32_t", NFK_KIND_SIGNED, 1, "One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).") \
    X(LineTableRecord, startV, "int32_t", NFK_KIND_SIGNED, 1, "One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).") \
    X(LineTableRecord, endU, "int32_t", NFK_KIND_SIGNED, 1, "One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).") \
    X(LineTableRecord, endV, "int32_t", NFK_KIND_SIGNED, 1, "One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).")

#define NFK_FIELDS_RenderState(X) \
    X(RenderState, dstPixels, "uint32_t *", NFK_KIND_POINTER, 1, "its first pixel") \
    X(RenderState, dstShift, "uint32_t", NFK_KIND_UNSIGNED, 1, "its log2Width: row y starts at y << dstShift") \
    X(RenderState, dstPitch, "uint32_t", NFK_KIND_UNSIGNED, 1, "its width, pixels; rows of the planes have dstPitch >> 4 words, dstPitch bytes") \
    X(RenderState, dstHeight, "uint32_t", NFK_KIND_UNSIGNED, 1, "its rows; no kernel reads it") \
    X(RenderState, reserved, "uint32_t", NFK_KIND_UNSIGNED, 4, "neither read nor written") \
    X(RenderState, originX, "int32_t", NFK_KIND_SIGNED, 1, "added to every vertex, pixels") \
    X(RenderState, originY, "int32_t", NFK_KIND_SIGNED, 1, "added to every vertex, pixels") \
    X(RenderState, clipLeft, "int32_t", NFK_KIND_SIGNED, 1, "clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.") \
    X(RenderState, clipTop, "int32_t", NFK_KIND_SIGNED, 1, "clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.") \
    X(RenderState, clipRight, "int32_t", NFK_KIND_SIGNED, 1, "clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.") \
    X(RenderState, clipBottom, "int32_t", NFK_KIND_SIGNED, 1, "clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.") \
    X(RenderState, frameBuffer, "Texture *", NFK_KIND_POINTER, 1, "set by SetFrameBuffer") \
    X(RenderState, shaheiPlane, "uint16_t *", NFK_KIND_POINTER, 1, "one bit a pixel, bit 15 of a word leftmost; set: taken, not to be drawn") \
    X(RenderState, zBuffer, "uint8_t *", NFK_KIND_POINTER, 1, "one priority byte a pixel; drawn where it is not below zRef") \
    X(RenderState, zRef, "uint32_t", NFK_KIND_UNSIGNED, 1, "the primitive's priority; kernels use its low byte") \
    X(RenderState, color, "uint32_t", NFK_KIND_UNSIGNED, 4, "ARGB: [0] the flat colour and that of NINEFOLD_MULTI_COLOUR; all four the corner colours of NINEFOLD_FILTER_GOURAUD and NINEFOLD_MULTI_CORNERS") \
    X(RenderState, vertex, "Vertex", NFK_KIND_RECORD, 4, "A rectangle has opposite corners in [0], [1], a line its ends there, a triangle uses [0..2]; [3] is never read. Texture positions belong to their vertices: corners that are exchanged alone mirror a stretched or four-corner picture, together with their positions they leave it as it is.") \
    X(RenderState, uv0, "TexCoord", NFK_KIND_RECORD, 4, "Coordinates of tex0. Rectangles: unit scale reads [0] (whole texels only, except under the bilinear filter); stretched [0], [1]; four corners top left, top right, bottom left, bottom right. Triangles [0..2].") \
    X(RenderState, tex0, "Texture *", NFK_KIND_POINTER, 1, "main source; the atlas of the glyph functions") \
    X(RenderState, uv1, "TexCoord", NFK_KIND_RECORD, 4, "coordinates of tex1, in the same way") \
    X(RenderState, tex1, "Texture *", NFK_KIND_POINTER, 1, "Second source of NINEFOLD_MULTI_TEXTURE; its zeros leave the first as it is. NINEFOLD_FILTER_MIP and NINEFOLD_FILTER_MIP_BILINEAR (stretched and four-corner rectangles, triangles) choose its level whenever it is not null, also where the multi stage does not draw it. There one without a chain (mipCount 0) is as good as null, but one that was deleted is still read: set tex1 to null before its texture goes.") \
    X(RenderState, uv2, "TexCoord", NFK_KIND_RECORD, 4, "Coordinates of tex2, linear on the screen also under perspective. Rectangles read [0..1], triangles [0..2].") \
    X(RenderState, tex2, "Texture *", NFK_KIND_POINTER, 1, "rule texture: the low byte of a texel is the rule value") \
    X(RenderState, lineTable0, "LineTableRecord *", NFK_KIND_POINTER, 1, "a record for each row of the unclipped rectangle from its top, for tex0") \
    X(RenderState, lineTable1, "LineTableRecord *", NFK_KIND_POINTER, 1, "the same for tex1") \
    X(RenderState, blendAlpha, "uint32_t", NFK_KIND_UNSIGNED, 1, "0 to 255: constant alpha, blend and multi operator") \
    X(RenderState, blendAlphaRgb, "uint32_t", NFK_KIND_UNSIGNED, 1, "0 to 255: NINEFOLD_MULTI_OP_CONST_ALPHA_RGB") \
    X(RenderState, prescale, "uint32_t", NFK_KIND_UNSIGNED, 1, "0 to 256, where 256 is one: the prescale axis") \
    X(RenderState, prescaleMulti, "uint32_t", NFK_KIND_UNSIGNED, 1, "0 to 256: second bank of multi operators") \
    X(RenderState, scanShift, "int32_t *", NFK_KIND_POINTER, 1, "by frame-buffer row (inside the clip): displacement of a triangle's span, pixels; null: none") \
    X(RenderState, writeMask, "uint32_t", NFK_KIND_UNSIGNED, 1, "merge, blend and multi operator: set bits come from the source") \
    X(RenderState, blendFunc, "PixelOperator", NFK_KIND_FUNCTION, 1, "Operators; null until set, and called without a test by NINEFOLD_BLEND_CUSTOM and all multi modes but NINEFOLD_MULTI_NONE. blendFunc is set by SetBlendMode(NINEFOLD_BLEND_LUMA_SRC...) or by the host for NINEFOLD_BLEND_CUSTOM, multiFunc by SetBlendModeMulti or by the host. A new pointer takes effect at the next call of any kernel. A host's own operator is called once for each pixel that reaches its stage, left to right; where both are the host's own the calls alternate pixel by pixel. It may look at the frame buffer, zBuffer and rs, and finds the frame buffer as the pixels before left it: all stages of one pixel come before the next. The words of the Shahei plane of the row in flight are the library's own. It must change nothing that the draw works from: no texture, table or plane, not the frame buffer, and of rs nothing but the mode fields, font... and glyph..., which no kernel reads. It must not draw.") \
    X(RenderState, multiFunc, "PixelOperator", NFK_KIND_FUNCTION, 1, "Operators; null until set, and called without a test by NINEFOLD_BLEND_CUSTOM and all multi modes but NINEFOLD_MULTI_NONE. blendFunc is set by SetBlendMode(NINEFOLD_BLEND_LUMA_SRC...) or by the host for NINEFOLD_BLEND_CUSTOM, multiFunc by SetBlendModeMulti or by the host. A new pointer takes effect at the next call of any kernel. A host's own operator is called once for each pixel that reaches its stage, left to right; where both are the host's own the calls alternate pixel by pixel. It may look at the frame buffer, zBuffer and rs, and finds the frame buffer as the pixels before left it: all stages of one pixel come before the next. The words of the Shahei plane of the row in flight are the library's own. It must change nothing that the draw works from: no texture, table or plane, not the frame buffer, and of rs nothing but the mode fields, font... and glyph..., which no kernel reads. It must not draw.") \
    X(RenderState, drawMask, "uint16_t", NFK_KIND_UNSIGNED, 16, "stipple: row y & 15, bit 15 - (x & 15) of the absolute position; set: not drawn") \
    X(RenderState, ruleThreshold, "int32_t", NFK_KIND_SIGNED, 1, "The rule test of rule value m, 0 to 255: nothing is drawn where m <= ruleThreshold, everything where m >= ruleThreshold + ruleWidth. Between them old and new pixel are mixed by w = ((m - ruleThreshold) << 8) / ruleWidth, which NINEFOLD_CURVE_FAST makes 255 - ((255 - w) * (255 - w) >> 8) and NINEFOLD_CURVE_SLOW w * w >> 8: (new * w + old * (255 - w)) >> 8, alpha 0. A threshold that goes from 255 down to -ruleWidth wipes a picture in.") \
    X(RenderState, ruleWidth, "int32_t", NFK_KIND_SIGNED, 1, "0 or less: a hard edge") \
    X(RenderState, ruleCurve, "int32_t", NFK_KIND_SIGNED, 1, "NINEFOLD_CURVE_...; any other value is linear") \
    X(RenderState, prescaleMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, prescaleMultiMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, filterMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, rectOptMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, shaheiMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, blendMode, "int32_t", NFK_KIND_SIGNED, 1, "as derived by SetBlendMode") \
    X(RenderState, blendModeMulti, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, multiMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, shapeMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, ruleAlphaMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, persMode, "int32_t", NFK_KIND_SIGNED, 1, "axes, each stored as given by the setter of its name") \
    X(RenderState, mipFrac, "int32_t", NFK_KIND_SIGNED, 1, "weight of the chosen level of tex0 against mipTex; under a line table only the plane modes write it") \
    X(RenderState, mipFrac1, "int32_t", NFK_KIND_SIGNED, 1, "the same for tex1") \
    X(RenderState, mipTex, "Texture *", NFK_KIND_POINTER, 1, "the next smaller level after the chosen one of tex0") \
    X(RenderState, mipTex1, "Texture *", NFK_KIND_POINTER, 1, "the same for tex1") \
    X(RenderState, mipRatio, "int32_t", NFK_KIND_SIGNED, 1, "texel density of the last driven triangle, 16.16") \
    X(RenderState, fontName, "char *", NFK_KIND_POINTER, 1, "face name, code page 932; with its NUL at most 32 bytes; null or empty: any face") \
    X(RenderState, fontHeight, "int32_t", NFK_KIND_SIGNED, 1, "cell height in pixels; negative: em height; 0: a height of the rasteriser's choice") \
    X(RenderState, fontWeight, "int32_t", NFK_KIND_SIGNED, 1, "400 normal, 700 bold") \
    X(RenderState, fontQuality, "int32_t", NFK_KIND_SIGNED, 1, "NINEFOLD_QUALITY_...; other values garble glyphs") \
    X(RenderState, fontItalic, "uint32_t", NFK_KIND_UNSIGNED, 1, "low byte") \
    X(RenderState, fontCursorX, "uint32_t", NFK_KIND_UNSIGNED, 1, "where the next glyph goes in the atlas, pixels; the host zeroes them for a new atlas") \
    X(RenderState, fontCursorY, "uint32_t", NFK_KIND_UNSIGNED, 1, "where the next glyph goes in the atlas, pixels; the host zeroes them for a new atlas") \
    X(RenderState, fontLineBottom, "uint32_t", NFK_KIND_UNSIGNED, 1, "lowest edge so far of the atlas row; likewise") \
    X(RenderState, glyphCode, "uint32_t", NFK_KIND_UNSIGNED, 1, "of the last glyph: its character code,") \
    X(RenderState, glyphWidth, "int32_t", NFK_KIND_SIGNED, 1, "size of its bitmap, pixels,") \
    X(RenderState, glyphHeight, "int32_t", NFK_KIND_SIGNED, 1, "size of its bitmap, pixels,") \
    X(RenderState, glyphX, "int32_t", NFK_KIND_SIGNED, 1, "place in the atlas,") \
    X(RenderState, glyphY, "int32_t", NFK_KIND_SIGNED, 1, "place in the atlas,") \
    X(RenderState, glyphOriginX, "int32_t", NFK_KIND_SIGNED, 1, "offset of the bitmap from the pen on the base line, y up,") \
    X(RenderState, glyphOriginY, "int32_t", NFK_KIND_SIGNED, 1, "offset of the bitmap from the pen on the base line, y up,") \
    X(RenderState, glyphAdvance, "int32_t", NFK_KIND_SIGNED, 1, "pen advance") \
    X(RenderState, mosaicSize1, "int32_t", NFK_KIND_SIGNED, 1, "block width at unit scale; elsewhere the columns of tex1") \
    X(RenderState, mosaicSize, "int32_t", NFK_KIND_SIGNED, 1, "block height at unit scale; elsewhere both axes of tex0 and the rows of tex1")

#define NFK_RECORDS(X) \
    X(Texture) \
    X(Vertex) \
    X(TexCoord) \
    X(LineTableRecord) \
    X(RenderState)

/* clang-format on */
