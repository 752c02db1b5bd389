// Glyphs by Windows GDI. No object of GDI lives from one glyph to the next.
#if NINEFOLD_GLYPHS && defined(_WIN32)

#include "glyph/source.h"

#include <algorithm>
#include <iterator>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace ninefold::glyph {
namespace {

static_assert(Source::failed == GDI_ERROR);
static_assert(static_cast<UINT>(Format::Mono) == GGO_BITMAP && static_cast<UINT>(Format::Grey4) == GGO_GRAY2_BITMAP);
static_assert(static_cast<UINT>(Format::Grey16) == GGO_GRAY4_BITMAP && static_cast<UINT>(Format::Grey64) == GGO_GRAY8_BITMAP);
static_assert(sizeof FontDescription::name == LF_FACESIZE);

class GdiSource final : public Source {
public:
    void open(const FontDescription &description) override
    {
        LOGFONTA logFont{};
        logFont.lfHeight = description.height;
        logFont.lfWeight = description.weight;
        logFont.lfItalic = description.italic;
        logFont.lfCharSet = SHIFTJIS_CHARSET;
        logFont.lfOutPrecision = OUT_TT_ONLY_PRECIS;
        logFont.lfClipPrecision = CLIP_DEFAULT_PRECIS;
        logFont.lfQuality = PROOF_QUALITY;
        logFont.lfPitchAndFamily = DEFAULT_PITCH | FF_MODERN;
        std::copy(std::begin(description.name), std::end(description.name), logFont.lfFaceName);
        font_ = CreateFontIndirectA(&logFont);
        context_ = GetDC(nullptr);
        previous_ = SelectObject(context_, font_);
    }

    bool isLeadByte(uint8_t byte) override { return IsDBCSLeadByte(byte) != FALSE; }

    uint32_t outline(uint32_t code, Format format, Metrics &metrics, uint32_t size, uint8_t *bitmap) override
    {
        const MAT2 identity{{0, 1}, {0, 0}, {0, 0}, {0, 1}};
        GLYPHMETRICS box{};
        const DWORD bytes = GetGlyphOutlineA(context_, code, static_cast<UINT>(format), &box, size, bitmap, &identity);
        if (bytes != GDI_ERROR)
            metrics = {box.gmBlackBoxX, box.gmBlackBoxY, box.gmptGlyphOrigin.x, box.gmptGlyphOrigin.y, box.gmCellIncX};
        return bytes;
    }

    void close(Release order) override
    {
        SelectObject(context_, previous_);
        if (order == Release::FontFirst)
            DeleteObject(font_);
        ReleaseDC(nullptr, context_);
        if (order == Release::ContextFirst)
            DeleteObject(font_);
    }

private:
    HFONT font_ = nullptr;
    HDC context_ = nullptr;
    HGDIOBJ previous_ = nullptr;
};

constinit GdiSource source;

} // namespace

Source &platformSource() { return source; }

} // namespace ninefold::glyph

#endif
