#include "sheet.h"

#include <png.h>

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace gallery {
namespace {

constexpr int gap = 8;
constexpr uint8_t paper = 0xE8;

std::string escaped(const std::string &text)
{
    std::string result;
    for (char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '"')
            result += "&quot;";
        else
            result += c;
    }
    return result;
}

constexpr SheetInfo sheets[] = {
    {"poster", 1, 1, 512, 256, poster, "Together",
     "Photographs, a floor in perspective with mip levels, a cube, a sprite with a colour key, light added by lines and "
     "triangles, text."},
    {"unit", 3, 2, 256, 192, unitCopies, "Unit copies",
     "Whole texels, one a pixel. The word 0 is no pixel; textures repeat without end; the clip rectangle never moves a picture."},
    {"stretch", 3, 2, 256, 192, stretches, "Stretched rectangles",
     "Two opposite corners of the source laid over two opposite corners of the rectangle. Only the source's order mirrors."},
    {"corners", 4, 1, 256, 192, cornerQuads, "Four-corner rectangles",
     "Any quadrilateral of the source, its corners laid over a rectangle."},
    {"linetable", 4, 1, 256, 192, lineTables, "Line tables",
     "Every row of the rectangle has its own segment of the source, or none."},
    {"mosaic", 4, 2, 256, 192, mosaics, "Mosaic", "Source positions quantised to blocks of texels."},
    {"filters", 2, 2, 256, 192, filters, "Nearest and bilinear at four times", "The same 64 by 48 texels in each picture."},
    {"runlength", 4, 1, 256, 192, runLengths, "Run-length rectangles", "Transparent stretches skipped through maps made ahead."},
    {"blends", 5, 4, 256, 192, blends, "Blends",
     "The twelve blends over the same two pictures; the last one calls a function: six of the library's, one of this program's."},
    {"multi", 6, 6, 128, 96, multiOperators, "Multi operators",
     "A photograph combined with a second texture before the blend. First three rows: first bank; then the second bank, with the "
     "second "
     "texture scaled to half."},
    {"colours", 4, 1, 256, 192, multiColours, "Corner colours and one colour",
     "The second source is four colours at the corners, or one."},
    {"prescale", 5, 3, 128, 96, prescales, "Prescale",
     "The source scaled by 0, 64, 128, 192 and 256: colour, or under an alpha blend opacity."},
    {"stipple", 6, 3, 128, 96, stipples, "Stipples",
     "Draw masks: twelve steps of the table of 256, and the six presets behind it."},
    {"shahei", 4, 1, 256, 192, shaheiPlane, "The Shahei plane",
     "A bit a pixel: front objects are drawn first and take their pixels, what is drawn later goes around them."},
    {"priority", 4, 1, 256, 192, priorityPlane, "The priority plane",
     "A byte a pixel: opaque objects write theirs, blended ones are drawn only where the byte is not below their own."},
    {"occlusion", 3, 2, 256, 192, occlusion, "Occlusion triangles",
     "Triangles drawn into the planes rather than the frame buffer."},
    {"meshes", 3, 2, 256, 192, meshes, "Triangle meshes", "A photograph on a bent grid of triangles; and its colours alone."},
    {"scanshift", 3, 1, 256, 192, scanShifts, "Rows displaced",
     "Spans of triangles moved sideways by a table with an entry for each row."},
    {"lines", 3, 1, 256, 192, lines, "Lines", "Fans of lines: flat, from colour to colour, clipped and gated."},
    {"wipes", 10, 3, 128, 96, wipes, "A wipe in ten steps",
     "One photograph wiped in over another along a rule texture with a soft edge. Rows: linear curve, fast curve, slow curve."},
    {"rules", 4, 1, 256, 192, wipeShapes, "Rule textures",
     "Any picture can be the rule; the shape it is laid over can be any rectangle or triangle."},
    {"rulerects", 4, 1, 256, 192, ruleRectangles, "Rule rectangles", "The four exported functions."},
    {"perspective", 4, 2, 256, 192, perspective, "Perspective", "Above affine triangles, below the same in perspective."},
    {"mipfloors", 4, 2, 256, 192, mipFloors, "Minification",
     "A floor in strips of perspective triangles, and bricks shrunk to a fifth, with filters 0, 1, 2 and 5."},
    {"miplines", 3, 2, 256, 192, mipLines, "A mip level for every row", "The same floor by one line table."},
    {"glyphs", 4, 4, 256, 192, glyphs, "Glyphs",
     "Text rasterised into an atlas and drawn as rectangles. Columns: mono, 4, 16 and 64 grey levels. Rows: plain, plain italic, "
     "rimmed, "
     "rimmed italic. Mono rows are read by a formula that shears some widths and repeats the first row of narrow glyphs."},
};

} // namespace

int SheetInfo::width() const { return columns * (cellWidth + gap) + gap; }
int SheetInfo::height() const { return rows * (cellHeight + gap) + gap; }

std::span<const SheetInfo> allSheets() { return sheets; }

Sheet::Sheet(const SheetInfo &sheetInfo) : info(sheetInfo), rgb_(size_t(info.width()) * size_t(info.height()) * 3, paper) {}

void Sheet::add(const Canvas &canvas, const std::string &caption, const Modes &modes)
{
    place(canvas, {caption, describe(modes), codeOf(modes)});
}

void Sheet::add(const Canvas &canvas, const std::string &caption, const std::string &how) { place(canvas, {caption, how, 0}); }

void Sheet::place(const Canvas &canvas, Caption caption)
{
    if (full() || canvas.width != info.cellWidth || canvas.height != info.cellHeight)
        throw std::logic_error(std::string("sheet ") + info.name + " has no cell for " + caption.text);
    const int index = int(captions_.size());
    const int left = gap + index % info.columns * (info.cellWidth + gap),
              top = gap + index / info.columns * (info.cellHeight + gap);
    for (int y = 0; y < canvas.height; ++y) {
        uint8_t *to = rgb_.data() + (size_t(top + y) * size_t(info.width()) + size_t(left)) * 3;
        // Most blends leave a constant in the alpha byte: only the colour is a picture.
        for (int x = 0; x < canvas.width; ++x) {
            const uint32_t pixel = canvas.pixel(x, y);
            *to++ = uint8_t(pixel >> 16);
            *to++ = uint8_t(pixel >> 8);
            *to++ = uint8_t(pixel);
        }
    }
    captions_.push_back(std::move(caption));
}

void Sheet::writePng(const std::string &path) const
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(info.width());
    image.height = png_uint_32(info.height());
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&image, path.c_str(), 0, rgb_.data(), 0, nullptr)) {
        const std::string reason = image.message;
        png_image_free(&image);
        throw std::runtime_error("cannot write " + path + ": " + reason);
    }
}

std::string Sheet::html() const
{
    const std::string name = info.name;
    std::string text = "<section id=\"" + name + "\">\n<h2>" + info.title + "</h2>\n<p>" + info.text + " <a href=\"" + name +
                       ".png\">" + name + ".png</a></p>\n<div class=\"sheet\">\n";
    for (size_t i = 0; i < captions_.size(); ++i) {
        const int left = gap + int(i) % info.columns * (info.cellWidth + gap),
                  top = gap + int(i) / info.columns * (info.cellHeight + gap);
        char buffer[200];
        std::snprintf(buffer, sizeof buffer,
                      "<figure style=\"width:%dpx\"><div style=\"height:%dpx;background:url(%s.png) -%dpx -%dpx\"></div>",
                      info.cellWidth, info.cellHeight, info.name, left, top);
        text += buffer;
        text += "<figcaption><b>" + escaped(captions_[i].text) + "</b>";
        if (!captions_[i].how.empty())
            text += "<br>" + escaped(captions_[i].how);
        if (captions_[i].code) {
            std::snprintf(buffer, sizeof buffer, " <code>0x%X</code>", unsigned(captions_[i].code));
            text += buffer;
        }
        text += "</figcaption></figure>\n";
    }
    return text + "</div>\n</section>\n";
}

} // namespace gallery
