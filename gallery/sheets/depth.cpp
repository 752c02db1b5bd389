// Perspective and mip levels.

#include "scene.h"
#include "sheet.h"

#include <numbers>

namespace gallery {
namespace {

constexpr int width = 256, height = 192;

const View view{128, 96, 220};

} // namespace

void perspective(Sheet &sheet)
{
    const TexturePtr cat = load("cat"), coffee = load("coffee"), stars = load("stars"), bricks = load("bricks");
    for (const long pers : {0, 1}) {
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_BILINEAR, .pers = pers};
        {
            Canvas canvas(width, height);
            cover(canvas, stars.get());
            rs.tex0 = bricks.get();
            floorStrips({128, 40, 220}, 0.8, 70, height, 1, modes);
            sheet.add(canvas, "A floor of two triangles", modes);
        }
        for (const double turn : {0.35, 0.75, 1.15}) {
            Canvas canvas(width, height);
            cover(canvas, stars.get());
            cube(view, {0, 0.02, 3.1}, 0.72, turn, 0.45, {coffee.get(), cat.get(), bricks.get()}, modes);
            sheet.add(canvas, "A cube with a photograph on each face", modes);
        }
    }
}

void mipFloors(Sheet &sheet)
{
    const TexturePtr bricks = loadMipped("bricks"), stars = load("stars");
    const char *names[] = {
        "0: nearest", "1: bilinear", "2: nearest in the level below the chosen one", "", "", "5: two bilinear levels mixed"};
    for (const long filter :
         {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_BILINEAR, NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR}) {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        rs.tex0 = bricks.get();
        const Modes modes{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = filter, .pers = NINEFOLD_PERS_ON};
        floorStrips({128, 46, 220}, 0.6, 56, height, 34, modes);
        sheet.add(canvas, std::string("Filter ") + names[filter], modes);
    }
    names[2] = "2: nearest in the chosen level";
    for (const long filter :
         {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_BILINEAR, NINEFOLD_FILTER_MIP, NINEFOLD_FILTER_MIP_BILINEAR}) {
        Canvas canvas(width, height);
        rs.tex0 = bricks.get();
        const Modes modes{.filter = filter, .rectOpt = NINEFOLD_RECT_STRETCH};
        corners(0, 0, width, height);
        source(rs.uv0, 0, 0, width * 5, height * 5);
        draw(modes);
        sheet.add(canvas, std::string("Filter ") + names[filter], modes);
    }
}

void mipLines(Sheet &sheet)
{
    const TexturePtr bricks = loadMipped("bricks"), stars = load("stars");
    const int horizon = 44;
    const auto lined = [&](const char *caption, const Modes &modes) {
        Canvas canvas(width, height);
        cover(canvas, stars.get());
        std::vector<LineTableRecord> rows(size_t(height - horizon));
        for (int y = 0; y < height - horizon; ++y) {
            const double distance = 6000 / (y + 1.5), half = distance * 1.6;
            const TexCoord start = texel(64 - half, distance), end = texel(64 + half, distance);
            rows[size_t(y)] = {start.u, start.v, end.u, end.v};
        }
        rs.tex0 = bricks.get();
        rs.lineTable0 = rows.data();
        corners(0, horizon, width, height);
        draw(modes);
        sheet.add(canvas, caption, modes);
    };
    lined("Filter 0: the base texture", {.filter = NINEFOLD_FILTER_POINT, .rectOpt = NINEFOLD_RECT_TABLE});
    lined("Filter 3: the row's level", {.filter = NINEFOLD_FILTER_LINE_POINT, .rectOpt = NINEFOLD_RECT_TABLE});
    lined("Filter 2 with the plane: the level below it",
          {.filter = NINEFOLD_FILTER_MIP, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE});
    lined("Filter 1 with the plane: four texels of the base texture",
          {.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE});
    lined("Filter 4 with the plane: four texels of the row's level",
          {.filter = NINEFOLD_FILTER_LINE_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE});
    lined("Filter 5 with the plane: two levels mixed",
          {.filter = NINEFOLD_FILTER_MIP_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE});
}

} // namespace gallery
