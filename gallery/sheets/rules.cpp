// Transitions: pictures wiped in along a rule texture.

#include "sheet.h"

#include <cmath>
#include <numbers>

namespace gallery {
namespace {

constexpr int width = 256, height = 192;
constexpr double pi = std::numbers::pi;

// A rule texture made of Gouraud triangles around the middle of a canvas: rim and middle at the given values.
template <class Rim>
void paintRule(const Canvas &canvas, int segments, uint32_t middle, Rim &&rim)
{
    const auto grey = [](uint32_t value) { return 0xFF000000 | value * 0x10101u; };
    const double x = canvas.width / 2.0, y = canvas.height / 2.0, radius = std::hypot(x, y);
    for (int i = 0; i < segments; ++i) {
        const double from = 2 * pi * i / segments - pi / 2, to = 2 * pi * (i + 1) / segments - pi / 2;
        rs.color[0] = grey(middle);
        rs.color[1] = grey(rim(i));
        rs.color[2] = grey(rim(i + 1));
        triangle({x, y, 1, 0, 0}, {x + radius * 1.1 * std::cos(from), y + radius * 1.1 * std::sin(from), 1, 0, 0},
                 {x + radius * 1.1 * std::cos(to), y + radius * 1.1 * std::sin(to), 1, 0, 0},
                 {.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_GOURAUD});
    }
}

} // namespace

void wipes(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    Canvas rule(128, 128);
    paintRule(rule, 48, 255, [](int) { return 0u; });
    const char *names[] = {"linear", "fast", "slow"};
    for (const int curve : {NINEFOLD_CURVE_LINEAR, NINEFOLD_CURVE_FAST, NINEFOLD_CURVE_SLOW})
        for (int step = 0; step < 10; ++step) {
            Canvas canvas(128, 96);
            cover(canvas, coffee.get());
            rs.ruleWidth = 96;
            rs.ruleThreshold = 255 - (255 + rs.ruleWidth) * step / 9;
            rs.ruleCurve = curve;
            rs.tex0 = cat.get();
            rs.tex2 = rule.pixels();
            corners(0, 0, 128, 96);
            source(rs.uv0, 1, 1, 256, 192);
            source(rs.uv2, 0, 0, 128, 128);
            const Modes modes{.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH, .rule = NINEFOLD_RULE_ON};
            draw(modes);
            sheet.add(canvas, std::string(names[curve]) + ", threshold " + std::to_string(rs.ruleThreshold), modes);
        }
}

void wipeShapes(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat"), gravel = load("gravel"), horse = load("horse");
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 110, rs.ruleWidth = 40;
        rs.tex0 = cat.get();
        rs.tex2 = gravel.get();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width, height);
        source(rs.uv2, 0, 0, width, height);
        const Modes modes{.rule = NINEFOLD_RULE_ON};
        draw(modes);
        sheet.add(canvas, "A photograph of gravel as the rule", modes);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 100;
        rs.tex0 = cat.get();
        rs.tex2 = horse.get();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width, height);
        source(rs.uv2, 0, 0, horse->origWidth, horse->origHeight);
        const Modes modes{.rectOpt = NINEFOLD_RECT_STRETCH, .rule = NINEFOLD_RULE_ON};
        draw(modes);
        sheet.add(canvas, "A silhouette as the rule, without a soft edge", modes);
    }
    {
        Canvas clock(128, 128);
        // Each spoke has one value, so that the hand sweeps.
        for (int i = 0; i < 64; ++i) {
            const double from = 2 * pi * i / 64 - pi / 2, to = 2 * pi * (i + 1) / 64 - pi / 2;
            rs.color[0] = 0xFF000000 | uint32_t(255 - 4 * i) * 0x10101u;
            triangle({64, 64, 1, 0, 0}, {64 + 100 * std::cos(from), 64 + 100 * std::sin(from), 1, 0, 0},
                     {64 + 100 * std::cos(to), 64 + 100 * std::sin(to), 1, 0, 0},
                     {.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_FLAT});
        }
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 100, rs.ruleWidth = 30;
        rs.tex0 = cat.get();
        rs.tex2 = clock.pixels();
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR, .rule = NINEFOLD_RULE_ON};
        const Corner a{20, 10, 1, 0.5, 0.5}, b{236, 10, 1, 255.5, 0.5}, c{20, 182, 1, 0.5, 191.5}, d{236, 182, 1, 255.5, 191.5};
        rs.uv2[0] = texel(0, 0), rs.uv2[1] = texel(127, 0), rs.uv2[2] = texel(0, 127);
        triangle(a, b, c, modes);
        rs.uv2[0] = texel(127, 0), rs.uv2[1] = texel(127, 127), rs.uv2[2] = texel(0, 127);
        triangle(b, d, c, modes);
        sheet.add(canvas, "A sweeping hand over two triangles", modes);
    }
    {
        Canvas slope(32, 32);
        rs.color[0] = rs.color[2] = 0xFFFFFFFF;
        rs.color[1] = rs.color[3] = 0xFF000000;
        corners(0, 0, 32, 32);
        draw({.filter = NINEFOLD_FILTER_GOURAUD});
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 90, rs.ruleWidth = 60;
        rs.tex0 = cat.get();
        rs.tex2 = slope.pixels();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width, height);
        source(rs.uv2, 0, 0, 8 * 32, 32);
        const Modes modes{.blend = NINEFOLD_BLEND_SCREEN, .rule = NINEFOLD_RULE_ON};
        draw(modes);
        sheet.add(canvas, "Blinds: a small rule repeated eight times, under a screen blend", modes);
    }
}

void ruleRectangles(Sheet &sheet)
{
    const TexturePtr coffee = loadMipped("coffee"), cat = loadMipped("cat"), gravel = load("gravel"),
                     bricks = loadMipped("bricks");
    Canvas rule(128, 128);
    paintRule(rule, 48, 255, [](int) { return 0u; });
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 100, rs.ruleWidth = 60;
        rs.tex0 = cat.get();
        rs.tex1 = gravel.get();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width, height);
        source(rs.uv1, 0, 0, 128, 96);
        DrawRectTexRule();
        sheet.add(canvas, "The rule is the second texture, magnified", "DrawRectTexRule");
    }
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 90, rs.ruleWidth = 80, rs.ruleCurve = NINEFOLD_CURVE_SLOW;
        rs.color[0] = 255, rs.color[1] = 100, rs.color[2] = 140, rs.color[3] = 0;
        rs.tex0 = cat.get();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width, height);
        DrawRectGradRule();
        sheet.add(canvas, "The rule is a gradient of four corner values", "DrawRectGradRule");
    }
    const auto screened = [&](Texture *picture, double scale, void (*function)(), const char *caption, const char *name) {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.ruleThreshold = 90, rs.ruleWidth = 60;
        rs.tex0 = picture;
        rs.tex1 = picture;
        rs.tex2 = rule.pixels();
        rs.mipTex = picture->mip[1];
        rs.mipFrac = 255;
        corners(0, 0, width, height);
        rs.uv0[0] = texel(0, 0), rs.uv0[1] = texel(width * scale, 0), rs.uv0[2] = texel(0, height * scale),
        rs.uv0[3] = texel(width * scale, height * scale);
        std::copy(rs.uv0, rs.uv0 + 4, rs.uv1);
        source(rs.uv2, 0, 0, 128, 128);
        function();
        sheet.add(canvas, caption, name);
    };
    screened(cat.get(), 1, DrawRectGradRule_GEN_RULE_TEST, "Screened through a round rule", "DrawRectGradRule_GEN_RULE_TEST");
    screened(bricks.get(), 5, DrawRectGradRule_GEN_RULE_MIPMAP_TEST,
             "The same with bricks shrunk to a fifth, on the level chosen for it", "DrawRectGradRule_GEN_RULE_MIPMAP_TEST");
}

} // namespace gallery
