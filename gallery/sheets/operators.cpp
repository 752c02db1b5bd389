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
    blended(NINEFOLD_BLEND_COPY, "Copy: the source as it is, with alpha fading towards its corners");
    blended(NINEFOLD_BLEND_ALPHA, "Alpha");
    blended(NINEFOLD_BLEND_CONST_ALPHA, "Constant alpha 128: the source's alpha is not read");
    blended(NINEFOLD_BLEND_ALPHA_FAST, "Alpha, exact at both ends");
    blended(NINEFOLD_BLEND_ADD, "Add");
    blended(NINEFOLD_BLEND_SUB, "Subtract");
    blended(NINEFOLD_BLEND_MUL, "Multiply");
    blended(NINEFOLD_BLEND_MUL2, "Multiply by two");
    blended(NINEFOLD_BLEND_SCREEN, "Screen");
    blended(NINEFOLD_BLEND_OVERLAY, "Overlay");
    blended(NINEFOLD_BLEND_MERGE, "Merge: bits by writeMask 0xF0C0E0");
    blended(NINEFOLD_BLEND_CUSTOM, "This program's own operator: the brighter of each channel", lighten);
    blended(NINEFOLD_BLEND_LUMA_SRC, "Luma of the source");
    blended(NINEFOLD_BLEND_LUMA_DST, "Luma of the destination");
    blended(NINEFOLD_BLEND_XOR, "Exclusive or");
    blended(NINEFOLD_BLEND_AND, "And");
    blended(NINEFOLD_BLEND_OR, "Or");
    blended(NINEFOLD_BLEND_DST, "Destination: nothing changes");
    blended(13, "Mode 13 is copy again");
}

void multiOperators(Sheet &sheet)
{
#define VALUE(name, value, word, meaning) name,
    static constexpr int operators[] = {NINEFOLD_MULTI_OPS(VALUE)};
#undef VALUE
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    addMatte(*cat);
    for (const int bank : {NINEFOLD_MULTI_BANK_PLAIN, NINEFOLD_MULTI_BANK_SCALED})
        for (const int value : operators) {
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
            const Modes modes{
                .filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH, .multi = NINEFOLD_MULTI_TEXTURE};
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
        const Modes modes{.rectOpt = NINEFOLD_RECT_STRETCH, .multi = multi};
        rs.tex0 = picture;
        corners(0, 0, 256, 192);
        source(rs.uv0, 0, 0, 256, 192);
        draw(modes);
        sheet.add(canvas, caption, modes);
    };
    coloured(NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_OP_MUL, coffee.get(),
             {{255, 255, 255}, {255, 120, 40}, {60, 60, 220}, {20, 10, 40}},
             "Multiplied by white, orange, blue and dark corners");
    coloured(NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_OP_OVERLAY, bricks.get(),
             {{220, 60, 30}, {230, 190, 60}, {40, 90, 200}, {60, 170, 90}}, "Grey bricks, overlaid with four colours");
    coloured(NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_OP_MUL2, bricks.get(), {{230, 120, 80}},
             "Grey bricks times two times brick red");
    coloured(NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_OP_SCREEN, coffee.get(), {{20, 60, 140}}, "Screened with blue");
}

void prescales(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    addMatte(*cat);
    for (const auto &[blend, caption] : {std::pair{long{NINEFOLD_BLEND_COPY}, "Colour dimmed"},
                                         {NINEFOLD_BLEND_ADD, "Less and less added"},
                                         {NINEFOLD_BLEND_ALPHA, "Opacity"}})
        for (const uint32_t factor : {0u, 64u, 128u, 192u, 256u}) {
            Canvas canvas(128, 96);
            cover(canvas, coffee.get());
            rs.prescale = factor;
            rs.tex0 = cat.get();
            corners(16, 8, 112, 88);
            source(rs.uv0, 1.3, 1.2, 256, 192);
            const Modes modes{.filter = NINEFOLD_FILTER_BILINEAR,
                              .rectOpt = NINEFOLD_RECT_STRETCH,
                              .blend = blend,
                              .prescale = NINEFOLD_PRESCALE_ON};
            draw(modes);
            sheet.add(canvas, std::string(caption) + ", " + std::to_string(factor), modes);
        }
}

} // namespace gallery
