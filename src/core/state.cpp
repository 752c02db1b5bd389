// The render state, its setters, and the table of perspective shifts.
#include <ninefold/render_state.h>

#include "core/startup.h"

#include <bit>

RenderState rs;

namespace ninefold {

int32_t uvlShift[256];

} // namespace ninefold

void MakeUVLShiftTable(void)
{
    for (uint32_t i = 0; i < 256; ++i)
        ninefold::uvlShift[i] = 7 - static_cast<int32_t>(std::bit_width(i & 0x7F));
}

Texture *SetFrameBuffer(Texture *texture)
{
    Texture *previous = rs.frameBuffer;
    rs.frameBuffer = texture;
    rs.dstPixels = texture->pixels;
    rs.dstShift = texture->log2Width;
    rs.dstPitch = texture->width;
    rs.dstHeight = texture->height;
    return previous;
}

void SetShapeMode(long shape) { rs.shapeMode = static_cast<int32_t>(shape); }

void SetPrescaleMode(long prescale) { rs.prescaleMode = static_cast<int32_t>(prescale); }

void SetRuleAlphaMode(long rule) { rs.ruleAlphaMode = static_cast<int32_t>(rule); }

void SetFilterMode(long filter) { rs.filterMode = static_cast<int32_t>(filter); }

void SetRectOptMode(long rectOpt) { rs.rectOptMode = static_cast<int32_t>(rectOpt); }

void SetShaheiMode(long shahei) { rs.shaheiMode = static_cast<int32_t>(shahei); }

void SetMultiMode(long multi) { rs.multiMode = static_cast<int32_t>(multi); }

void SetPersMode(long pers) { rs.persMode = static_cast<int32_t>(pers); }
