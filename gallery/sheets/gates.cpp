// Which pixels may be drawn: stipples, the Shahei plane, the priority plane.

#include "sheet.h"

#include <cmath>
#include <numbers>

namespace gallery {
namespace {

constexpr int width = 256, height = 192;

void occlude(void (*fill)(), Vertex a, Vertex b, Vertex c)
{
    rs.vertex[0] = a, rs.vertex[1] = b, rs.vertex[2] = c;
    fill();
}

// A star of `points` triangles around a middle, by any of the occlusion fills.
void star(void (*fill)(), int x, int y, int points, double inner, double outer, double turn = 0)
{
    // Even places are tips, odd ones notches; neighbours share a place to the pixel.
    const auto place = [&](int i) {
        const double angle = turn + std::numbers::pi * (i % (2 * points)) / points, radius = i % 2 ? inner : outer;
        return at(x + int(std::lround(radius * std::cos(angle))), y + int(std::lround(radius * std::sin(angle))));
    };
    for (int i = 0; i < 2 * points; ++i)
        occlude(fill, place(i), place(i + 1), at(x, y));
}

} // namespace

void stipples(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat");
    const auto stippled = [&](long index, const std::string &caption) {
        Canvas canvas(128, 96);
        cover(canvas, coffee.get());
        SetPresetDrawMask(index);
        rs.tex0 = cat.get();
        corners(0, 0, 128, 96);
        source(rs.uv0, 1, 1, 256, 192);
        const Modes modes{
            .filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH, .shahei = NINEFOLD_SHAHEI_STIPPLE};
        draw(modes);
        sheet.add(canvas, caption, modes);
    };
    for (const long index : {0, 7, 15, 31, 63, 95, 111, 127, 159, 191, 223, 255})
        stippled(index, std::to_string(index) + (index ? ": " + std::to_string(index + 1) + " of 256 pixels" : ": none"));
    stippled(NINEFOLD_STIPPLE_ALL, "256: all");
    stippled(NINEFOLD_STIPPLE_CHESSBOARD, "257: checkerboard");
    stippled(NINEFOLD_STIPPLE_ODD_COLUMNS, "258: odd columns");
    stippled(NINEFOLD_STIPPLE_EVEN_ROWS, "259: even rows");
    stippled(NINEFOLD_STIPPLE_ODD_COLUMNS_EVEN_ROWS, "260: odd columns of even rows");
    stippled(NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS, "261: odd rows and odd columns");
}

void shaheiPlane(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat"), horse = loadKeyed("horse"), cup = loadKeyed("cup");
    const Modes plane{.shahei = NINEFOLD_SHAHEI_PLANE};
    Canvas canvas(width, height);
    sprite(cup.get(), 16, 30, plane);
    sprite(horse.get(), 100, 60, plane); // behind the cup, since drawn later
    sheet.add(canvas, "A cup, then a horse: the horse goes behind", plane);
    {
        Canvas picture(width, height);
        picture.paintShahei(canvas);
        sheet.add(picture, "The plane now: taken pixels white");
    }
    canvas.use();
    rs.clipLeft = 8, rs.clipTop = 8, rs.clipRight = width - 8, rs.clipBottom = height - 8;
    sprite(cat.get(), 0, 0, plane);
    sheet.add(canvas, "A photograph fills what is free", plane);
    canvas.paintShahei(canvas);
    sheet.add(canvas, "The plane after it");
}

void priorityPlane(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), horse = loadKeyed("horse"), cup = loadKeyed("cup"), stars = load("stars");
    const Modes write{.shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY},
        test{.filter = NINEFOLD_FILTER_FLAT, .shahei = NINEFOLD_SHAHEI_PRIORITY, .blend = NINEFOLD_BLEND_CONST_ALPHA},
        add{.rectOpt = NINEFOLD_RECT_STRETCH, .shahei = NINEFOLD_SHAHEI_PRIORITY, .blend = NINEFOLD_BLEND_ADD};
    Canvas canvas(width, height);
    canvas.fillPriority(255);
    rs.zRef = 50;
    sprite(cup.get(), 16, 30, write);
    rs.zRef = 150;
    sprite(horse.get(), 100, 60, write);
    rs.zRef = 250;
    sprite(coffee.get(), 0, 0, write);
    sheet.add(canvas, "A cup of priority 50, a horse of 150, a background of 250", write);
    {
        Canvas picture(width, height);
        picture.paintPriorities(canvas);
        sheet.add(picture, "The priorities as grey");
    }
    canvas.use();
    rs.zRef = 100;
    rs.blendAlpha = 150;
    rs.color[0] = argb({60, 120, 255});
    corners(0, 70, width, 130);
    draw(test);
    sheet.add(canvas, "A veil of priority 100: before the horse, behind the cup", test);
    rs.zRef = 200;
    rs.tex0 = stars.get();
    corners(0, 0, width, height);
    source(rs.uv0, 0, 0, 256, 192);
    draw(add);
    sheet.add(canvas, "Stars of priority 200 added: behind both", add);
}

void occlusion(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), cat = load("cat"), stars = load("stars"), bricks = load("bricks");
    const Modes plane{.shahei = NINEFOLD_SHAHEI_PLANE},
        behind{.shahei = NINEFOLD_SHAHEI_PRIORITY, .blend = NINEFOLD_BLEND_CONST_ALPHA};
    {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        star(DrawShaheiPolygonSet, 128, 96, 5, 40, 90, -std::numbers::pi / 2);
        sprite(cat.get(), 0, 0, plane);
        sheet.add(canvas, "DrawShaheiPolygonSet: a star that is not drawn into", plane);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        occlude(DrawShaheiPolygonSet, at(0, 0), at(width, 0), at(0, height));
        occlude(DrawShaheiPolygonSet, at(width, 0), at(width, height), at(0, height));
        star(DrawShaheiPolygonReset, 128, 96, 5, 40, 90, -std::numbers::pi / 2);
        sprite(cat.get(), 0, 0, plane);
        sheet.add(canvas, "DrawShaheiPolygonReset on a full plane: only the star is drawn", plane);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        for (const int radius : {90, 66, 42})
            star(DrawShaheiPolygonFlip, 128, 96, 8, radius * 0.7, radius, 0.2);
        sprite(cat.get(), 0, 0, plane);
        sheet.add(canvas, "DrawShaheiPolygonFlip three times: rings", plane);
    }
    {
        Canvas canvas(width, height);
        canvas.fillPriority(0);
        rs.zRef = 200;
        star(DrawZbufferPolygon, 90, 96, 6, 45, 85);
        star(DrawZbufferPolygon0xff, 190, 96, 6, 25, 55);
        canvas.paintPriorities(canvas);
        sheet.add(canvas, "Priorities 200 and 255 on a plane of 0", "DrawZbufferPolygon, DrawZbufferPolygon0xff");
        cover(canvas, bricks.get());
        rs.blendAlpha = 255;
        rs.zRef = 150;
        sprite(coffee.get(), 0, 0, behind);
        rs.zRef = 220;
        rs.blendAlpha = 160;
        sprite(stars.get(), 0, 0, behind);
        sheet.add(canvas, "A picture of priority 150 passes in both, one of 220 only in the right one", behind);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, bricks.get());
        const Modes opaque{.shahei = NINEFOLD_SHAHEI_PLANE},
            blended{.shahei = NINEFOLD_SHAHEI_PRIORITY, .blend = NINEFOLD_BLEND_SCREEN};
        star(DrawShaheiZbufferPolygonMask, 128, 96, 7, 50, 90);
        sprite(coffee.get(), 0, 0, opaque);
        rs.zRef = 1;
        sprite(stars.get(), 0, 0, blended);
        sheet.add(canvas, "DrawShaheiZbufferPolygonMask: closed to opaque and blended drawing alike", blended);
    }
}

} // namespace gallery
