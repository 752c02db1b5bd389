// Ways of moving through a source: unit scale, stretch, four corners, line tables, mosaic, bilinear, run-length maps.

#include "sheet.h"

#include <cmath>
#include <numbers>

namespace gallery {
namespace {

constexpr int width = 256, height = 192;
constexpr double pi = std::numbers::pi;

LineTableRecord segment(double u0, double v0, double u1, double v1)
{
    const TexCoord start = texel(u0, v0), end = texel(u1, v1);
    return {start.u, start.v, end.u, end.v};
}

constexpr LineTableRecord noRow{NINEFOLD_SKIP_ROW, 0, 0, 0};

// A rectangle over the whole canvas with the line table `rows`.
void drawRows(std::vector<LineTableRecord> &rows, const Modes &modes)
{
    corners(0, 0, width, int(rows.size()));
    rs.lineTable0 = rows.data();
    draw(modes);
}

// A rectangle over the whole canvas whose corners show these four texels of tex0: top left, top right, bottom left, bottom right.
void drawCorners(TexCoord topLeft, TexCoord topRight, TexCoord bottomLeft, TexCoord bottomRight, const Modes &modes)
{
    corners(0, 0, width, height);
    rs.uv0[0] = topLeft, rs.uv0[1] = topRight, rs.uv0[2] = bottomLeft, rs.uv0[3] = bottomRight;
    draw(modes);
}

} // namespace

void unitCopies(Sheet &sheet)
{
    const TexturePtr cat = load("cat"), coffee = load("coffee"), bricks = load("bricks"), gravel = load("gravel"),
                     cup = loadKeyed("cup"), horse = loadKeyed("horse");
    const Modes copy{};
    {
        Canvas canvas(width, height);
        rs.tex0 = coffee.get();
        corners(0, 0, width, height);
        draw(copy);
        sheet.add(canvas, "A photograph", copy);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = bricks.get();
        corners(0, 0, width, height);
        source(rs.uv0, -40, -100, 0, 0);
        draw(copy);
        sheet.add(canvas, "128 by 128 texels, repeated", copy);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, gravel.get());
        sprite(cup.get(), 8, 8);
        sprite(cup.get(), 64, 40);
        sprite(cup.get(), 124, 68);
        sheet.add(canvas, "Sprites with a colour key, over a stretched picture", copy);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.clipLeft = 48, rs.clipTop = 32, rs.clipRight = 208, rs.clipBottom = 160;
        rs.tex0 = cat.get();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, 0, 0);
        draw(copy);
        sheet.add(canvas, "The cat covers the canvas; the clip rectangle is inset", copy);
    }
    {
        const TexturePtr centred = loadAdjusted("horse", NINEFOLD_ALIGN_CENTRE, NINEFOLD_ALIGN_CENTRE),
                         bottomRight = loadAdjusted("horse", NINEFOLD_ALIGN_END, NINEFOLD_ALIGN_END);
        Canvas canvas(width, height);
        cover(canvas, gravel.get());
        sprite(centred.get(), 0, 32);
        sprite(bottomRight.get(), 128, 32);
        sheet.add(canvas, "128 by 105 pixels in a texture of 128 by 128: centred; at the bottom", copy);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, bricks.get());
        for (int step = 0; step < 5; ++step) {
            rs.originX = -60 + 60 * step;
            rs.originY = -20 + 30 * step;
            sprite(horse.get(), 0, 0);
        }
        sheet.add(canvas, "One sprite at five origins, cut at the edges", copy);
    }
}

void stretches(Sheet &sheet)
{
    const TexturePtr cat = load("cat"), bricks = load("bricks"), gravel = load("gravel");
    const Modes stretch{.rectOpt = NINEFOLD_RECT_STRETCH};
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        corners(0, 0, width, height);
        source(rs.uv0, 48, 32, 171, 128);
        draw(stretch);
        sheet.add(canvas, "Times 1.5", stretch);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        corners(0, 0, width, height);
        source(rs.uv0, 219, 32, -171, 128);
        draw(stretch);
        sheet.add(canvas, "The source given from right to left mirrors", stretch);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        corners(0, 0, width, height);
        source(rs.uv0, 48, 160, 171, -128);
        draw(stretch);
        sheet.add(canvas, "The source given from bottom to top turns it over", stretch);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        corners(width, height, 0, 0);
        source(rs.uv0, 219, 160, -171, -128);
        draw(stretch);
        sheet.add(canvas, "Vertices and source both reversed: the first picture again", stretch);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, gravel.get());
        rs.tex0 = cat.get();
        const int boxes[][4] = {{8, 8, 72, 184}, {80, 8, 248, 48}, {80, 56, 160, 116}, {168, 56, 248, 184}, {80, 124, 160, 184}};
        for (const int(&box)[4] : boxes) {
            corners(box[0], box[1], box[2], box[3]);
            source(rs.uv0, 0, 0, 256, 192);
            draw(stretch);
        }
        sheet.add(canvas, "The whole picture at five sizes", stretch);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = bricks.get();
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, 128 * 4, 128 * 3);
        draw(stretch);
        sheet.add(canvas, "Four by three tiles at half size", stretch);
    }
}

void cornerQuads(Sheet &sheet)
{
    const TexturePtr cat = load("cat"), coffee = load("coffee"), stars = load("stars");
    const Modes quadPoint{.rectOpt = NINEFOLD_RECT_CORNERS},
        quadAlpha{.rectOpt = NINEFOLD_RECT_CORNERS, .blend = NINEFOLD_BLEND_ADD};
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        drawCorners(texel(96, 32), texel(160, 32), texel(0, 190), texel(255, 190), quadPoint);
        sheet.add(canvas, "A quad tapered towards its top: there 64 texels fill the width", quadPoint);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = coffee.get();
        const auto turned = [](double x, double y) {
            const double angle = pi / 5, scale = 0.62;
            return texel(128 + scale * (x * std::cos(angle) - y * std::sin(angle)),
                         96 + scale * (x * std::sin(angle) + y * std::cos(angle)));
        };
        drawCorners(turned(-128, -96), turned(128, -96), turned(-128, 96), turned(128, 96), quadPoint);
        sheet.add(canvas, "Turned by 36 degrees", quadPoint);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        drawCorners(texel(0, 0), texel(255, 0), texel(255, 190), texel(0, 190), quadPoint);
        sheet.add(canvas, "Bottom corners exchanged: a twist", quadPoint);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.tex0 = stars.get();
        drawCorners(texel(128, 96), texel(128, 96), texel(0, 190), texel(255, 190), quadAlpha);
        sheet.add(canvas, "Tapered to a point and added", quadAlpha);
    }
}

void lineTables(Sheet &sheet)
{
    const TexturePtr cat = load("cat"), coffee = load("coffee"), bricks = load("bricks"), stars = load("stars");
    const Modes table{.rectOpt = NINEFOLD_RECT_TABLE};
    std::vector<LineTableRecord> rows(height);
    {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        for (int y = 0; y < height; ++y) {
            const double shift = 10 * std::sin(y * 2 * pi / 48);
            rows[size_t(y)] = segment(shift, y, 256 + shift, y);
        }
        drawRows(rows, table);
        sheet.add(canvas, "A wave: each row starts where a sine says", table);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        rs.tex0 = bricks.get();
        const int horizon = 70;
        for (int y = 0; y < height; ++y) {
            const double depth = 1 / (y - horizon + 0.5), half = 9000 * depth;
            rows[size_t(y)] = y < horizon + 4 ? noRow : segment(64 - half, 6000 * depth, 64 + half, 6000 * depth);
        }
        drawRows(rows, table);
        sheet.add(canvas, "A floor in perspective; the rows of the sky are left out", table);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, coffee.get());
        rs.tex0 = cat.get();
        for (int y = 0; y < height; ++y)
            rows[size_t(y)] = y % 24 < 12 ? segment(0, y, 256, y) : noRow;
        drawRows(rows, table);
        sheet.add(canvas, "Every second group of twelve rows left out", table);
    }
    {
        Canvas canvas(width, height);
        rs.tex0 = coffee.get();
        for (int y = 0; y < height; ++y) {
            const double fromMiddle = (y - 95.5) / 96, half = 128 * (0.45 + 0.55 * fromMiddle * fromMiddle);
            rows[size_t(y)] = segment(128 - half, y, 128 + half, y);
        }
        drawRows(rows, table);
        sheet.add(canvas, "Rows magnified towards the middle", table);
    }
}

void mosaics(Sheet &sheet)
{
    const TexturePtr cat = load("cat");
    for (const int size : {2, 4, 7, 16, 32}) {
        Canvas canvas(width, height);
        const Modes mosaic{.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_STRETCH};
        rs.tex0 = cat.get();
        rs.mosaicSize = size;
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width, height);
        draw(mosaic);
        sheet.add(canvas, "Blocks of " + std::to_string(size), mosaic);
    }
    {
        Canvas canvas(width, height);
        const Modes mosaic{.filter = NINEFOLD_FILTER_MOSAIC};
        rs.tex0 = cat.get();
        rs.mosaicSize = 4, rs.mosaicSize1 = 24;
        corners(0, 0, width, height);
        draw(mosaic);
        sheet.add(canvas, "Blocks 24 wide and 4 high", mosaic);
    }
    {
        Canvas canvas(width, height);
        const Modes mosaic{.filter = NINEFOLD_FILTER_MOSAIC, .rectOpt = NINEFOLD_RECT_CORNERS};
        rs.tex0 = cat.get();
        rs.mosaicSize = 8;
        drawCorners(texel(60, 10), texel(220, 60), texel(10, 120), texel(180, 180), mosaic);
        sheet.add(canvas, "Blocks are aligned to the texture: they turn with it", mosaic);
    }
    {
        Canvas canvas(width, height);
        const Modes mosaic{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_MOSAIC};
        rs.tex0 = cat.get();
        rs.mosaicSize = 12;
        quad({40, 6, 1, 0, 0}, {220, 20, 1, 255, 0}, {6, 180, 1, 0, 191}, {250, 186, 1, 255, 191}, mosaic);
        sheet.add(canvas, "Blocks of 12 on two triangles", mosaic);
    }
}

void filters(Sheet &sheet)
{
    const TexturePtr cat = load("cat");
    // An eye, sampled at the centres of the pixels.
    const double u = 64, v = 50, step = 0.25;
    const auto draws = [&](const Modes &modes, const char *caption) {
        Canvas canvas(width, height);
        rs.tex0 = cat.get();
        if (modes.rectOpt == NINEFOLD_RECT_CORNERS)
            drawCorners(texel(u + step / 2, v + step / 2), texel(u + 64 + step / 2, v + step / 2),
                        texel(u + step / 2, v + 48 + step / 2), texel(u + 64 + step / 2, v + 48 + step / 2), modes);
        else {
            corners(0, 0, width, height);
            source(rs.uv0, u + step / 2, v + step / 2, 64, 48);
            draw(modes);
        }
        sheet.add(canvas, caption, modes);
    };
    draws({.filter = NINEFOLD_FILTER_POINT, .rectOpt = NINEFOLD_RECT_STRETCH}, "Nearest");
    draws({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH}, "Bilinear: four texels mixed");
    draws({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_CORNERS},
          "Bilinear in four corners and line tables: one of two texels, chosen by a stipple");
    draws({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_CORNERS, .shahei = NINEFOLD_SHAHEI_PLANE},
          "... but with the Shahei plane four texels are mixed");
}

void runLengths(Sheet &sheet)
{
    const TexturePtr gravel = load("gravel"), coffee = load("coffee"), cat = load("cat");
    const TexturePtr cup = loadKeyed("cup");
    CreateRunlengthMap(cup.get());
    // Its spare rows below the picture are holes of 128 pixels, which step back: leave them out.
    const auto runs = [&](int x, int y, const Modes &modes) {
        rs.tex0 = cup.get();
        corners(x, y, x + 128, y + int(cup->origHeight));
        source(rs.uv0, 0, 0, 0, 0);
        draw(modes);
    };
    {
        Canvas canvas(width, height);
        const Modes modes{.rectOpt = NINEFOLD_RECT_RUNS};
        cover(canvas, gravel.get());
        runs(8, 8, modes);
        runs(64, 40, modes);
        runs(124, 68, modes);
        sheet.add(canvas, "Sprites through their run-length map", modes);
    }
    {
        Canvas canvas(width, height);
        const Modes modes{.rectOpt = NINEFOLD_RECT_RUNS, .blend = NINEFOLD_BLEND_CONST_ALPHA};
        cover(canvas, coffee.get());
        rs.blendAlpha = 140;
        runs(64, 40, modes);
        sheet.add(canvas, "Half transparent", modes);
    }
    // The zero-pixel map lies on the frame buffer position for position: a layer of the canvas's own width.
    TexturePtr layer(CreateTexture(width, height));
    ClearTexture(layer.get());
    for (const auto &[x, y] : {std::pair{0, 14}, {128, 60}})
        CopyTexture(layer.get(), cup.get(), x, y, 0, 0, 128, 118);
    CreateZeroPixelMap(layer.get());
    const Modes mapped{.rectOpt = NINEFOLD_RECT_PLANE_RUNS, .shahei = NINEFOLD_SHAHEI_PLANE};
    Canvas canvas(width, height);
    rs.tex0 = layer.get();
    corners(0, 0, width, height);
    draw(mapped);
    sheet.add(canvas, "A layer through its zero-pixel map: drawn pixels are marked as taken", mapped);
    const Modes behind{.shahei = NINEFOLD_SHAHEI_PLANE};
    rs.tex0 = cat.get();
    draw(behind);
    sheet.add(canvas, "The background, drawn afterwards, goes around them", behind);
}

} // namespace gallery
