#include "glyph/atlas.h"

#include <ninefold/glyph.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ninefold::glyph {
namespace {

FontDescription describeFont()
{
    FontDescription font{};
    font.height = rs.fontHeight;
    font.weight = rs.fontWeight;
    font.italic = static_cast<uint8_t>(rs.fontItalic);
    if (rs.fontName)
        std::strncpy(font.name, rs.fontName, sizeof font.name - 1);
    return font;
}

Format formatOf(uint32_t quality)
{
    switch (quality) {
    case NINEFOLD_QUALITY_GREY4: return Format::Grey4;
    case NINEFOLD_QUALITY_GREY16: return Format::Grey16;
    case NINEFOLD_QUALITY_GREY64: return Format::Grey64;
    default: return Format::Mono;
    }
}

// A bitmap as the source delivered it. Bytes past its end read as 0: its size need not match its box.
class Coverage {
public:
    Coverage(const uint8_t *bytes, uint32_t size, uint32_t width, uint32_t quality)
        : bytes_(bytes), size_(size), quality_(quality),
          // The mono stride falls a word short when width modulo 32 is 1 to 7: such glyphs come out sheared. Hosts know them so.
          stride_(((quality == NINEFOLD_QUALITY_MONO ? width >> 3 : width) + 3) & ~3u),
          // Quality above the last is given mono bits, and reads them as grey of one level.
          levelBits_(quality <= NINEFOLD_QUALITY_GREY64 ? quality * 2 : 0)
    {}

    // Of a pixel; 255 is full. Greater values keep their low byte when they become an alpha.
    uint32_t at(uint32_t col, uint32_t row) const
    {
        if (quality_ == NINEFOLD_QUALITY_MONO)
            return (byteAt(row * stride_ + col / 8) >> (7 - (col & 7)) & 1) * 255;
        return level(byteAt(row * stride_ + col));
    }
    uint32_t level(uint32_t byte) const { return byte * 255 >> levelBits_; }
    // The bytes of a row's `width` pixels where all of them are there, one a pixel, or null.
    const uint8_t *greyRow(uint32_t row, uint32_t width) const
    {
        const uint64_t first = uint64_t{row} * stride_;
        return quality_ != NINEFOLD_QUALITY_MONO && first + width <= size_ ? bytes_ + first : nullptr;
    }

private:
    uint32_t byteAt(uint32_t index) const { return index < size_ ? bytes_[index] : 0; }

    const uint8_t *bytes_;
    uint32_t size_, quality_, stride_, levelBits_;
};

// The place of a glyph in the atlas. A glyph wider than the atlas runs on into the rows below; what would lie behind the last
// pixel is dropped and reads as 0.
class Box {
public:
    Box(const Texture &atlas, uint32_t x, uint32_t y, uint32_t boxWidth, uint32_t boxHeight)
        : width(boxWidth), height(boxHeight), pixels_(atlas.pixels), count_(atlas.width * atlas.height), pitch_(atlas.width),
          first_(y * atlas.width + x)
    {}

    uint32_t read(uint32_t col, uint32_t row) const
    {
        const uint32_t index = first_ + row * pitch_ + col;
        return index < count_ ? pixels_[index] : 0;
    }

    void write(uint32_t col, uint32_t row, uint32_t pixel)
    {
        const uint32_t index = first_ + row * pitch_ + col;
        if (index < count_)
            pixels_[index] = pixel;
    }

    // A row's pixels, null where some would lie behind the last one.
    uint32_t *rowAt(uint32_t row)
    {
        const uint64_t first = first_ + uint64_t{row} * pitch_;
        return first + width <= count_ ? pixels_ + first : nullptr;
    }

    const uint32_t width, height;

private:
    uint32_t *pixels_;
    uint32_t count_, pitch_, first_;
};

// Transparent pixels are written too: a glyph replaces what stood in its place.
template <uint32_t (*pixelOf)(uint32_t alpha)>
void expand(Box &box, const Coverage &coverage)
{
    for (uint32_t row = 0; row < box.height; ++row) {
        uint32_t *const pixels = box.rowAt(row);
        const uint8_t *const grey = coverage.greyRow(row, box.width);
        if (pixels && grey)
            for (uint32_t col = 0; col < box.width; ++col)
                pixels[col] = pixelOf(coverage.level(grey[col]));
        else
            for (uint32_t col = 0; col < box.width; ++col)
                box.write(col, row, pixelOf(coverage.at(col, row)));
    }
}

uint32_t plainPixel(uint32_t alpha) { return alpha ? alpha << 24 | 0xffffff : 0; }

// Colour is left to the rim pass, but full pixels start white: their colour is a fraction in the sums of their neighbours.
uint32_t unrimmedPixel(uint32_t alpha) { return alpha == 255 ? 0xffffffff : alpha << 24; }

// Gives each pixel a grey that falls with the alpha of its surroundings inside the box. Works in place, in raster order: the
// pixels above and to the left bring their new colours into the sum.
void darkenRim(Box &box)
{
    // Outside the box, also at -1, there is nothing.
    const auto weight = [&](uint32_t col, uint32_t row) {
        return col < box.width && row < box.height ? box.read(col, row) >> 8 : 0;
    };
    for (uint32_t row = 0; row < box.height; ++row) {
        for (uint32_t col = 0; col < box.width; ++col) {
            const uint32_t alpha = box.read(col, row) >> 24;
            if (alpha == 0)
                continue;
            const uint32_t above = weight(col - 1, row - 1) + weight(col, row - 1) + weight(col + 1, row - 1);
            const uint32_t beside = weight(col - 1, row) + (alpha << 16) + weight(col + 1, row);
            const uint32_t below = weight(col - 1, row + 1) + weight(col, row + 1) + weight(col + 1, row + 1);
            uint32_t grey = (above + beside + below) / 0x90000;
            grey = grey * grey >> 8;
            grey = grey * grey >> 8;
            box.write(col, row, alpha << 24 | grey * 0x10101);
        }
    }
}

} // namespace

char *drawCharacter(char *text, Style style, Source &source)
{
    if (!text)
        return nullptr;
    source.open(describeFont());

    const auto first = static_cast<uint8_t>(text[0]);
    char *next = text + 1;
    rs.glyphCode = static_cast<uint32_t>(static_cast<int8_t>(first));
    if (source.isLeadByte(first)) {
        rs.glyphCode = static_cast<uint32_t>(first << 8 | static_cast<uint8_t>(text[1]));
        next = text + 2;
    }

    const auto quality = static_cast<uint32_t>(rs.fontQuality);
    const Format format = formatOf(quality);
    Metrics metrics{};
    uint32_t size = source.outline(rs.glyphCode, format, metrics, 0, nullptr);
    if (size == Source::failed)
        size = 0;
    auto *bitmap = static_cast<uint8_t *>(std::calloc(size, 1)); // cleared, because padding can be read
    if (!bitmap)
        size = 0;
    if (source.outline(rs.glyphCode, format, metrics, size, bitmap) == Source::failed)
        size = 0;

    rs.glyphOriginX = metrics.originX;
    rs.glyphOriginY = metrics.originY;
    rs.glyphAdvance = metrics.advance;
    rs.glyphWidth = static_cast<int32_t>(metrics.width);
    rs.glyphHeight = static_cast<int32_t>(metrics.height);

    // The line's bottom counts before the wrap: the first glyph of a new line raises it only as if it stood on the old one.
    Texture &atlas = *rs.tex0;
    rs.fontLineBottom = std::max(rs.fontLineBottom, metrics.height + rs.fontCursorY);
    if (metrics.width + rs.fontCursorX > atlas.width) {
        rs.fontCursorX = 0;
        rs.fontCursorY = rs.fontLineBottom;
    }
    if (metrics.height + rs.fontCursorY > atlas.height) {
        std::free(bitmap);
        source.close(Release::FontFirst);
        return nullptr;
    }
    rs.glyphX = static_cast<int32_t>(rs.fontCursorX);
    rs.glyphY = static_cast<int32_t>(rs.fontCursorY);

    const Coverage coverage(bitmap, size, metrics.width, quality);
    Box box(atlas, rs.fontCursorX, rs.fontCursorY, metrics.width, metrics.height);
    if (style == Style::Rimmed) {
        expand<unrimmedPixel>(box, coverage);
        darkenRim(box);
    } else if (size == 0) {
        atlas.pixels[0] = 0; // what hosts see an empty glyph do
    } else {
        expand<plainPixel>(box, coverage);
    }

    rs.fontCursorX += metrics.width;
    std::free(bitmap);
    source.close(Release::ContextFirst);
    return next;
}

} // namespace ninefold::glyph

char *CreateFontTexture(char *text)
{
    using namespace ninefold::glyph;
    return drawCharacter(text, Style::Plain, platformSource());
}

char *CreateFontTextureFuchi(char *text)
{
    using namespace ninefold::glyph;
    return drawCharacter(text, Style::Rimmed, platformSource());
}
