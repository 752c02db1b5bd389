#include "fields.h"

namespace support {

const std::vector<Field> &fields()
{
#define FIELD(name, kind)                                                                                                        \
    {                                                                                                                            \
#name, offsetof(RenderState, name), sizeof(RenderState::name), FieldKind::kind                                           \
    }
    static const std::vector<Field> all = {
        FIELD(dstPixels, pointer),
        FIELD(dstShift, plain),
        FIELD(dstPitch, plain),
        FIELD(dstHeight, plain),
        FIELD(reserved, plain),
        FIELD(originX, plain),
        FIELD(originY, plain),
        FIELD(clipLeft, plain),
        FIELD(clipTop, plain),
        FIELD(clipRight, plain),
        FIELD(clipBottom, plain),
        FIELD(frameBuffer, texture),
        FIELD(shaheiPlane, pointer),
        FIELD(zBuffer, pointer),
        FIELD(zRef, plain),
        FIELD(color, plain),
        FIELD(vertex, plain),
        FIELD(uv0, plain),
        FIELD(tex0, texture),
        FIELD(uv1, plain),
        FIELD(tex1, texture),
        FIELD(uv2, plain),
        FIELD(tex2, texture),
        FIELD(lineTable0, pointer),
        FIELD(lineTable1, pointer),
        FIELD(blendAlpha, plain),
        FIELD(blendAlphaRgb, plain),
        FIELD(prescale, plain),
        FIELD(prescaleMulti, plain),
        FIELD(scanShift, pointer),
        FIELD(writeMask, plain),
        FIELD(blendFunc, pointer),
        FIELD(multiFunc, pointer),
        FIELD(drawMask, plain),
        FIELD(ruleThreshold, plain),
        FIELD(ruleWidth, plain),
        FIELD(ruleCurve, plain),
        FIELD(prescaleMode, plain),
        FIELD(prescaleMultiMode, plain),
        FIELD(filterMode, plain),
        FIELD(rectOptMode, plain),
        FIELD(shaheiMode, plain),
        FIELD(blendMode, plain),
        FIELD(blendModeMulti, plain),
        FIELD(multiMode, plain),
        FIELD(shapeMode, plain),
        FIELD(ruleAlphaMode, plain),
        FIELD(persMode, plain),
        FIELD(mipFrac, plain),
        FIELD(mipFrac1, plain),
        FIELD(mipTex, texture),
        FIELD(mipTex1, texture),
        FIELD(mipRatio, plain),
        FIELD(fontName, pointer),
        FIELD(fontHeight, plain),
        FIELD(fontWeight, plain),
        FIELD(fontQuality, plain),
        FIELD(fontItalic, plain),
        FIELD(fontCursorX, plain),
        FIELD(fontCursorY, plain),
        FIELD(fontLineBottom, plain),
        FIELD(glyphCode, plain),
        FIELD(glyphWidth, plain),
        FIELD(glyphHeight, plain),
        FIELD(glyphX, plain),
        FIELD(glyphY, plain),
        FIELD(glyphOriginX, plain),
        FIELD(glyphOriginY, plain),
        FIELD(glyphAdvance, plain),
        FIELD(mosaicSize1, plain),
        FIELD(mosaicSize, plain),
    };
#undef FIELD
    return all;
}

} // namespace support
