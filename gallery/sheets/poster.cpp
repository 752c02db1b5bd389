// One picture of many means; the README shows it.

#include "scene.h"
#include "sheet.h"
#include "text.h"

#include <cmath>
#include <numbers>

namespace gallery {

void poster(Sheet &sheet)
{
    constexpr int width = 512, height = 256;
    const TexturePtr stars = load("stars"), coffee = load("coffee"), cat = load("cat"), cup = loadKeyed("cup"),
                     bricks = loadMipped("bricks");
    const View view{256, 92, 400};
    Canvas canvas(width, height);

    // Sky: the photograph repeated at its own size.
    rs.tex0 = stars.get();
    corners(0, 0, width, 130);
    draw({});

    // Floor: perspective and mip levels, brick red.
    SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL2);
    rs.color[0] = argb({235, 130, 90});
    rs.tex0 = bricks.get();
    floorStrips(view, 0.62, 104, height, 76,
                {.shape = NINEFOLD_SHAPE_TRIANGLE,
                 .filter = NINEFOLD_FILTER_MIP_BILINEAR,
                 .multi = NINEFOLD_MULTI_COLOUR,
                 .pers = NINEFOLD_PERS_ON});
    // It fades into the dark towards the horizon.
    rs.color[0] = rs.color[1] = argb({5, 5, 12}, 255);
    rs.color[2] = rs.color[3] = argb({5, 5, 12}, 0);
    corners(0, 104, width, 190);
    draw({.filter = NINEFOLD_FILTER_GOURAUD, .blend = NINEFOLD_BLEND_ALPHA});

    // Light behind the cube.
    for (int i = 0; i < 40; ++i) {
        const double from = 2 * std::numbers::pi * i / 40, to = 2 * std::numbers::pi * (i + 1) / 40;
        rs.color[0] = argb({110, 90, 60});
        rs.color[1] = rs.color[2] = argb({0, 0, 0});
        triangle({256, 110, 1, 0, 0}, {256 + 170 * std::cos(from), 110 + 130 * std::sin(from), 1, 0, 0},
                 {256 + 170 * std::cos(to), 110 + 130 * std::sin(to), 1, 0, 0},
                 {.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_GOURAUD, .blend = NINEFOLD_BLEND_SCREEN});
    }
    cube(view, {0, 0.08, 3.2}, 0.5, 0.65, 0.4, {coffee.get(), cat.get(), cat.get()},
         {.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR, .pers = NINEFOLD_PERS_ON});

    // A sprite and its shadow.
    rs.color[0] = argb({0, 0, 0});
    rs.blendAlpha = 130;
    for (int i = 0; i < 40; ++i) {
        const double from = 2 * std::numbers::pi * i / 40, to = 2 * std::numbers::pi * (i + 1) / 40;
        triangle({92, 224, 1, 0, 0}, {92 + 74 * std::cos(from), 224 + 22 * std::sin(from), 1, 0, 0},
                 {92 + 74 * std::cos(to), 224 + 22 * std::sin(to), 1, 0, 0},
                 {.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_FLAT, .blend = NINEFOLD_BLEND_CONST_ALPHA});
    }
    sprite(cup.get(), 24, 118);

    // The cat wiped in along a gradient, in its own corner.
    Canvas slope(64, 64);
    rs.color[0] = 0xFF000000, rs.color[1] = 0xFF808080, rs.color[2] = 0xFF808080, rs.color[3] = 0xFFFFFFFF;
    corners(0, 0, 64, 64);
    draw({.filter = NINEFOLD_FILTER_GOURAUD});
    canvas.use();
    rs.tex0 = cat.get();
    rs.tex2 = slope.pixels();
    rs.ruleThreshold = 50, rs.ruleWidth = 80;
    corners(352, 128, 512, 248);
    source(rs.uv0, 0.8, 0.8, 256, 192);
    source(rs.uv2, 0, 0, 64, 64);
    draw({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH, .rule = NINEFOLD_RULE_ON});

    Text text(256, 128);
    text.write({.height = -60, .weight = 700, .rimmed = true}, "Ninefold", 14, 62, {.blend = NINEFOLD_BLEND_ALPHA_FAST});
    sheet.add(canvas, "Everything at once", "a hundred triangles and rectangles of eleven draw codes");
}

} // namespace gallery
