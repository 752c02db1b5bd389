// What happens to the colour of a pixel: blends, multi operators, corner colours, prescale.

#include "sheet.h"

#include <algorithm>

namespace gallery {
namespace {

// A blend of this program's own: the brighter of each channel.
uint32_t lighten(uint32_t destination, uint32_t picture)
{
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8)
        result |= std::max(destination >> shift & 255, picture >> shift & 255) << shift;
    return result;
}

} // namespace

void blends(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    addMatte(*cat);
    const auto blended = [&](long blend, const char *caption, PixelOperator own = nullptr) {
        Canvas canvas(256, 192);
        cover(canvas, coffee.get());
        rs.blendAlpha = 128;
        rs.writeMask = 0x00F0C0E0;
        rs.blendFunc = own;
        const Modes modes{.blend = blend};
        sprite(cat.get(), 0, 0, modes);
        sheet.add(canvas, caption, modes);
    };
    {
        Canvas canvas(256, 192);
        cover(canvas, coffee.get());
        sheet.add(canvas, "The destination");
    }
    blended(0, "Copy: the source as it is, with alpha fading towards its corners");
    blended(1, "Alpha");
    blended(2, "Constant alpha 128: the source's alpha is not read");
    blended(4, "Alpha, exact at both ends");
    blended(5, "Add");
    blended(6, "Subtract");
    blended(7, "Multiply");
    blended(8, "Multiply by two");
    blended(9, "Screen");
    blended(10, "Overlay");
    blended(11, "Merge: bits by writeMask 0xF0C0E0");
    blended(12, "This program's own operator: the brighter of each channel", lighten);
    blended(14, "Luma of the source");
    blended(15, "Luma of the destination");
    blended(16, "Exclusive or");
    blended(17, "And");
    blended(18, "Or");
    blended(19, "Destination: nothing changes");
    blended(13, "Mode 13 is copy again");
}

void multiOperators(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    addMatte(*cat);
    for (const int bank : {0, 1})
        for (const int value : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 18, 19}) {
            Canvas canvas(128, 96);
            SetPrescaleMultiMode(bank);
            SetBlendModeMulti(value);
            rs.prescaleMulti = 128;
            rs.blendAlpha = 160;
            rs.blendAlphaRgb = 80;
            rs.writeMask = 0x00F0C0E0;
            rs.tex0 = coffee.get();
            rs.tex1 = cat.get();
            corners(0, 0, 128, 96);
            source(rs.uv0, 1, 1, 256, 192);
            source(rs.uv1, 1, 1, 256, 192);
            const Modes modes{.filter = 1, .rectOpt = 1, .multi = 0};
            draw(modes);
            sheet.add(canvas, std::to_string(value) + ": " + multiOperatorName(value), modes);
        }
}

void multiColours(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), bricks = load("bricks");
    const auto coloured = [&](long multi, long op, Texture *picture, std::initializer_list<Colour> colours, const char *caption) {
        Canvas canvas(256, 192);
        SetBlendModeMulti(op);
        std::transform(colours.begin(), colours.end(), rs.color, [](Colour c) { return argb(c); });
        const Modes modes{.rectOpt = 1, .multi = multi};
        rs.tex0 = picture;
        corners(0, 0, 256, 192);
        source(rs.uv0, 0, 0, 256, 192);
        draw(modes);
        sheet.add(canvas, caption, modes);
    };
    coloured(1, 7, coffee.get(), {{255, 255, 255}, {255, 120, 40}, {60, 60, 220}, {20, 10, 40}},
             "Multiplied by white, orange, blue and dark corners");
    coloured(1, 10, bricks.get(), {{220, 60, 30}, {230, 190, 60}, {40, 90, 200}, {60, 170, 90}},
             "Grey bricks, overlaid with four colours");
    coloured(2, 8, bricks.get(), {{230, 120, 80}}, "Grey bricks times two times brick red");
    coloured(2, 9, coffee.get(), {{20, 60, 140}}, "Screened with blue");
}

void prescales(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    addMatte(*cat);
    for (const auto &[blend, caption] : {std::pair{0L, "Colour dimmed"}, {5L, "Less and less added"}, {1L, "Opacity"}})
        for (const uint32_t factor : {0u, 64u, 128u, 192u, 256u}) {
            Canvas canvas(128, 96);
            cover(canvas, coffee.get());
            rs.prescale = factor;
            rs.tex0 = cat.get();
            corners(16, 8, 112, 88);
            source(rs.uv0, 1.3, 1.2, 256, 192);
            const Modes modes{.filter = 1, .rectOpt = 1, .blend = blend, .prescale = 1};
            draw(modes);
            sheet.add(canvas, std::string(caption) + ", " + std::to_string(factor), modes);
        }
}

} // namespace gallery
