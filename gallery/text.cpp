#include "text.h"

#include <algorithm>
#include <stdexcept>

namespace gallery {

Text::Text(int atlasWidth, int atlasHeight)
    : atlas_(CreateTexture(static_cast<unsigned long>(atlasWidth), static_cast<unsigned long>(atlasHeight)))
{
    ClearTexture(atlas_.get());
}

int Text::write(const Font &font, Bytes bytes, int x, int y, const Modes &modes)
{
    // A face with Latin and Japanese; where it is missing the library takes another.
    static char face[] = "VL Gothic";
    rs.fontName = face;
    rs.fontHeight = font.height;
    rs.fontWeight = font.weight;
    rs.fontQuality = font.quality;
    rs.fontItalic = font.italic;
    rs.tex0 = atlas_.get();
    rs.fontCursorX = cursorX_, rs.fontCursorY = cursorY_, rs.fontLineBottom = lineBottom_;
    for (char *next = bytes.data(); *next;) {
        next = font.rimmed ? CreateFontTextureFuchi(next) : CreateFontTexture(next);
        if (!next)
            throw std::runtime_error("the glyph atlas is full");
        corners(x + rs.glyphOriginX, y - rs.glyphOriginY, x + rs.glyphOriginX + rs.glyphWidth,
                y - rs.glyphOriginY + rs.glyphHeight);
        source(rs.uv0, rs.glyphX, rs.glyphY, rs.glyphWidth, rs.glyphHeight);
        draw(modes);
        x += rs.glyphAdvance;
    }
    cursorX_ = rs.fontCursorX, cursorY_ = rs.fontCursorY, lineBottom_ = rs.fontLineBottom;
    return x;
}

bool Text::anyInk() const
{
    const size_t count = size_t(atlas_->width) * atlas_->height;
    return std::any_of(atlas_->pixels, atlas_->pixels + count, [](uint32_t word) { return word != 0; });
}

} // namespace gallery
