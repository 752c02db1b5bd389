// Triangles and lines: meshes, displaced rows, fans.

#include "sheet.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace gallery {
namespace {

constexpr int width = 256, height = 192;
constexpr double pi = std::numbers::pi;

struct Place {
    double x, y;
};
using Bend = std::function<Place(double u, double v)>;

Place waves(double u, double v)
{
    return {24 + u * 0.81 + 9 * std::sin(v / 192 * 2 * pi), 18 + v * 0.81 + 11 * std::sin(u / 256 * 3 * pi)};
}
Place flat(double u, double v) { return {u, v}; }

// The grid of a picture of 256 by 192 texels, 32 apart, bent; `cell` draws each of its triangles.
template <class Cell>
void mesh(const Bend &bend, Cell &&cell)
{
    const auto corner = [&](int column, int row) {
        const double u = 32 * column, v = 32 * row;
        const Place p = bend(u, v);
        // Half a texel inside, where a bilinear filter stays within the picture.
        return Corner{p.x, p.y, 1, std::clamp(u, 0.5, 255.5), std::clamp(v, 0.5, 191.5)};
    };
    for (int row = 0; row < 6; ++row)
        for (int column = 0; column < 8; ++column) {
            const Corner a = corner(column, row), b = corner(column + 1, row), c = corner(column, row + 1),
                         d = corner(column + 1, row + 1);
            cell(a, b, c);
            cell(b, d, c);
        }
}

// The mean colour of a picture around a texel.
uint32_t colourNear(const Texture &picture, double u, double v, int radius)
{
    int sum[3] = {}, count = 0;
    for (int y = int(v) - radius; y <= int(v) + radius; ++y)
        for (int x = int(u) - radius; x <= int(u) + radius; ++x) {
            const int column = std::clamp(x, 0, int(picture.origWidth) - 1), row = std::clamp(y, 0, int(picture.origHeight) - 1);
            const uint32_t word = picture.pixels[(size_t(row) << picture.log2Width) + size_t(column)];
            for (int channel = 0; channel < 3; ++channel)
                sum[channel] += int(word >> (16 - 8 * channel) & 255);
            ++count;
        }
    return argb({sum[0] / count, sum[1] / count, sum[2] / count});
}

// Light on the waves: the steeper a fold runs up, the brighter.
uint32_t lightAt(double u)
{
    const int level = int(std::lround(170 + 85 * std::cos(u / 256 * 3 * pi)));
    return argb({level, level, level});
}

} // namespace

void meshes(Sheet &sheet)
{
    const TexturePtr cat = load("cat"), gravel = load("gravel");
    const auto bent = [&](const Modes &modes, const char *caption) {
        Canvas canvas(width, height);
        cover(canvas, gravel.get());
        rs.tex0 = cat.get();
        mesh(waves, [&](const Corner &a, const Corner &b, const Corner &c) { triangle(a, b, c, modes); });
        sheet.add(canvas, caption, modes);
    };
    bent({.shape = NINEFOLD_SHAPE_TRIANGLE}, "96 triangles, nearest");
    bent({.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR}, "The same, bilinear");
    {
        Canvas canvas(width, height);
        cover(canvas, gravel.get());
        SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL);
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR, .multi = NINEFOLD_MULTI_CORNERS};
        rs.tex0 = cat.get();
        mesh(waves, [&](const Corner &a, const Corner &b, const Corner &c) {
            rs.color[0] = lightAt(a.u), rs.color[1] = lightAt(b.u), rs.color[2] = lightAt(c.u);
            triangle(a, b, c, modes);
        });
        sheet.add(canvas, "Lit by colours at the vertices", modes);
    }
    {
        Canvas canvas(width, height);
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_GOURAUD};
        mesh(flat, [&](const Corner &a, const Corner &b, const Corner &c) {
            const Corner *corners[] = {&a, &b, &c};
            for (int i = 0; i < 3; ++i)
                rs.color[i] = colourNear(*cat, corners[i]->u, corners[i]->v, 6);
            triangle(a, b, c, modes);
        });
        sheet.add(canvas, "Colours of the photograph at 63 vertices", modes);
    }
    {
        Canvas canvas(width, height);
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_FLAT};
        mesh(flat, [&](const Corner &a, const Corner &b, const Corner &c) {
            rs.color[0] = colourNear(*cat, (a.u + b.u + c.u) / 3, (a.v + b.v + c.v) / 3, 8);
            triangle(a, b, c, modes);
        });
        sheet.add(canvas, "One colour a triangle", modes);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, cat.get());
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_GOURAUD, .blend = NINEFOLD_BLEND_ALPHA};
        for (int i = 0; i < 24; ++i) {
            const double from = 2 * pi * i / 24, to = 2 * pi * (i + 1) / 24;
            rs.color[0] = argb({255, 230, 120}, 255);
            rs.color[1] = rs.color[2] = argb({255, 80, 20}, 0);
            triangle({96, 74, 1, 0, 0}, {96 + 90 * std::cos(from), 74 + 90 * std::sin(from), 1, 0, 0},
                     {96 + 90 * std::cos(to), 74 + 90 * std::sin(to), 1, 0, 0}, modes);
        }
        sheet.add(canvas, "A glow: alpha from full to none", modes);
    }
}

void scanShifts(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), stars = load("stars");
    const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR};
    std::vector<int32_t> shifts(height);
    const auto displaced = [&](const char *caption, double (*shift)(int)) {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        for (int y = 0; y < height; ++y)
            shifts[size_t(y)] = int32_t(std::lround(shift(y)));
        rs.scanShift = shifts.data();
        rs.tex0 = coffee.get();
        quad({24, 10, 1, 0.5, 0.5}, {232, 10, 1, 255.5, 0.5}, {24, 182, 1, 0.5, 191.5}, {232, 182, 1, 255.5, 191.5}, modes);
        sheet.add(canvas, caption, modes);
    };
    displaced("No displacement", [](int) { return 0.0; });
    displaced("A wave", [](int y) { return 14 * std::sin(y * 2 * pi / 64); });
    displaced("Bands that slide apart", [](int y) { return (y / 16 % 2 ? 1.0 : -1.0) * y / 6; });
}

void lines(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee"), stars = load("stars"), cat = load("cat"), cup = loadKeyed("cup");
    const auto fan = [&](int x, int y, int count, double radius, const Modes &modes, auto &&colourOf) {
        for (int i = 0; i < count; ++i) {
            const double angle = 2 * pi * i / count;
            rs.vertex[0] = at(x, y);
            rs.vertex[1] = at(x + int(std::lround(radius * std::cos(angle))), y + int(std::lround(radius * std::sin(angle))));
            colourOf(i);
            draw(modes);
        }
    };
    {
        Canvas canvas(width, height);
        const Modes modes{.shape = NINEFOLD_SHAPE_LINE, .filter = NINEFOLD_FILTER_FLAT};
        fan(128, 96, 180, 200, modes, [&](int i) {
            const double angle = 2 * pi * i / 180;
            rs.color[0] = colourNear(*coffee, 128 + 70 * std::cos(angle), 96 + 70 * std::sin(angle), 1);
        });
        sheet.add(canvas, "180 flat lines, cut by the clip rectangle; colours from a photograph", modes);
    }
    {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        const Modes modes{.shape = NINEFOLD_SHAPE_LINE, .filter = NINEFOLD_FILTER_GOURAUD, .blend = NINEFOLD_BLEND_ADD};
        fan(153, 71, 72, 90, modes, [&](int i) {
            rs.color[0] = argb({200, 160, 110});
            rs.color[1] = argb(i % 2 ? Colour{0, 0, 60} : Colour{40, 0, 0});
        });
        sheet.add(canvas, "From colour to colour, added", modes);
    }
    {
        Canvas canvas(width, height);
        const Modes plane{.shahei = NINEFOLD_SHAHEI_PLANE},
            modes{.shape = NINEFOLD_SHAPE_LINE, .filter = NINEFOLD_FILTER_GOURAUD, .shahei = NINEFOLD_SHAHEI_PLANE};
        sprite(cup.get(), 64, 40, plane);
        fan(128, 96, 120, 150, modes, [&](int) {
            rs.color[0] = argb({255, 240, 200});
            rs.color[1] = argb({40, 60, 120});
        });
        rs.tex0 = cat.get();
        sprite(cat.get(), 0, 0, plane);
        sheet.add(canvas, "Behind a cup, before a photograph, by the Shahei plane", modes);
    }
}

} // namespace gallery
