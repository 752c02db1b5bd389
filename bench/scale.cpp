#include "scale.h"

#include "families.h"
#include "jobs.h"
#include "kernels/sets.h"
#include "report.h"
#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace bench {

namespace {

using ninefold::Axes;

struct Named {
    const char *name;
    Axes axes;
};

bool matches(const std::string &name, const std::vector<std::string> &filters)
{
    return filters.empty() || std::any_of(filters.begin(), filters.end(),
                                          [&](const std::string &filter) { return name.find(filter) != std::string::npos; });
}

Curve curveOf(const std::string &name, const Contenders &contenders, const std::vector<double> &units, const Effort &effort)
{
    Curve curve{name, {}};
    const std::vector<Measured> all = measure(contenders, effort);
    for (size_t i = 0; i < all.size(); ++i)
        curve.costs.push_back(all[i].median() / units[i]);
    return curve;
}

// One primitive from corner to corner.
std::vector<Named> kernelsBySize()
{
    Axes perspective = axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_POINT, copy),
         gated = axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, alpha),
         rule = axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, copy);
    perspective.pers = NINEFOLD_PERS_ON, gated.shahei = NINEFOLD_SHAHEI_PRIORITY_STIPPLE, rule.rule = NINEFOLD_RULE_ON;
    return {{"flat", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy)},
            {"unit.copy", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, copy)},
            {"unit.alpha", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, alpha)},
            {"unit.alpha.z+mask", gated},
            {"unit.copy.rule", rule},
            {"stretch.point.alpha", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, NINEFOLD_FILTER_POINT, alpha)},
            {"stretch.bilinear.alpha", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, NINEFOLD_FILTER_BILINEAR, alpha)},
            {"corners.point.alpha", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_CORNERS, NINEFOLD_FILTER_POINT, alpha)},
            {"gouraud", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_GOURAUD, copy)},
            {"triangle.flat", axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy)},
            {"triangle.point.copy", axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_POINT, copy)},
            {"triangle.bilinear.alpha", axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, alpha)},
            {"triangle.gouraud", axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_GOURAUD, copy)},
            {"triangle.perspective.point.copy", perspective}};
}

// What hosts draw many of, 32 pixels wide.
std::vector<Named> smallKernels()
{
    return {{"unit.copy", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, copy)},
            {"unit.alpha", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, alpha)},
            {"unit.alphafast", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, alphaFast)},
            {"stretch.bilinear.alpha", axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, NINEFOLD_FILTER_BILINEAR, alpha)},
            {"triangle.point.copy", axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_POINT, copy)},
            {"triangle.bilinear.alpha", axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, alpha)}};
}

Chart bySize(const std::vector<std::string> &filters, const Effort &effort)
{
    Chart chart{"Pixels of one primitive", "pixels across, as many down", "ns per pixel", {}, {}};
    // As large as the frame buffer of all jobs, or as the primitive.
    std::vector<Texture *> frames;
    std::vector<double> areas;
    for (int size = 8; size <= 4096; size *= 2) {
        chart.places.push_back(size);
        areas.push_back(double(size) * size);
        frames.push_back(size <= frameSize ? frameBuffer() : CreateTexture(unsigned(size), unsigned(size)));
        if (size > frameSize)
            ClearTexture(frames.back());
    }
    std::vector<uint8_t> priorities(size_t(areas.back()), 128);
    const auto prepare = [&](const Axes &axes, size_t place) {
        prepareFor(axes);
        SetFrameBuffer(frames[place]);
        SetPresetDrawMask(127);
        const int size = int(chart.places[place]);
        rs.clipRight = rs.clipBottom = size;
        rs.zBuffer = priorities.data();
        // 0.75 texels a pixel at every size; the texture wraps.
        const int32_t across = size * 49152, whole = size << 16;
        const bool triangle = axes.shape == NINEFOLD_SHAPE_TRIANGLE;
        rs.vertex[0] = {0, 0, 1000}, rs.vertex[2] = {size / 5, size, 2000};
        rs.vertex[1] = triangle ? Vertex{size, size / 4, 1400} : Vertex{size, size, 0};
        rs.uv0[0] = {0, 0}, rs.uv0[1] = {across, axes.rectOpt == NINEFOLD_RECT_STRETCH ? across : 0}, rs.uv0[2] = {0, across};
        rs.uv0[3] = {across, across};
        rs.uv2[0] = {0, 0}, rs.uv2[1] = {whole, whole}, rs.uv2[2] = {0, whole};
        ninefold::useSet(bestSet());
    };
    for (const Named &kernel : kernelsBySize()) {
        if (!matches(kernel.name, filters))
            continue;
        Contenders contenders;
        std::vector<double> units = areas;
        for (size_t i = 0; i < frames.size(); ++i) {
            contenders.push_back({kernel.name, Role::ours, "", [&prepare, axes = kernel.axes, i] { prepare(axes, i); },
                                  [draw = SearchDrawFunc(ninefold::codeOf(kernel.axes))](long calls) {
                                      for (long n = 0; n < calls; ++n)
                                          draw();
                                  }});
            units[i] *= kernel.axes.shape == NINEFOLD_SHAPE_TRIANGLE ? 0.475 : 1;
        }
        chart.curves.push_back(curveOf(kernel.name, contenders, units, effort));
    }
    Contenders contenders;
    for (size_t i = 0; i < frames.size(); ++i)
        contenders.push_back({"memcpy", Role::memcpy, "", {}, [&, i](long calls) {
                                  const Surface source = straight(Content::sprite, 256);
                                  const size_t size = size_t(chart.places[i]);
                                  for (long n = 0; n < calls; ++n)
                                      for (size_t y = 0; y < size; ++y)
                                          for (size_t x = 0; x < size; x += 256)
                                              std::memcpy(frames[i]->pixels + y * frames[i]->width + x,
                                                          source.pixels + y % 256 * 256, std::min<size_t>(size, 256) * 4);
                              }});
    chart.curves.push_back(curveOf("memcpy", contenders, areas, effort));
    for (Texture *frame : frames)
        if (frame != frameBuffer())
            DeleteTexture(frame);
    SetFrameBuffer(frameBuffer());
    return chart;
}

struct Placed {
    int x, y, u, v;
    const Texture *texture;
};

constexpr int smallSize = 32;

// Stores what a host stores for a primitive and draws it.
void drawPlaced(const Axes &axes, DrawFunc draw, const Placed &p)
{
    const bool triangle = axes.shape == NINEFOLD_SHAPE_TRIANGLE;
    rs.tex0 = const_cast<Texture *>(p.texture);
    rs.vertex[0] = {p.x, p.y, 0};
    rs.vertex[1] = {p.x + smallSize, p.y + (triangle ? 7 : smallSize), 0};
    rs.uv0[0] = {p.u << 16, p.v << 16};
    rs.uv0[1] = {(p.u + 24) << 16, (p.v + (triangle ? 5 : 24)) << 16};
    if (triangle) {
        rs.vertex[2] = {p.x + 6, p.y + smallSize, 0};
        rs.uv0[2] = {(p.u + 5) << 16, (p.v + 24) << 16};
    }
    draw();
}

// All places of the chart take their primitives from `lists`, whole lists at a time.
void addSmallCurves(Chart &chart, const std::vector<std::vector<Placed>> &lists, const std::vector<std::string> &filters,
                    const Effort &effort)
{
    static Work work;
    work.textureSize = smallTexture;
    const auto add = [&](const std::string &name, Role role, auto draw) {
        Contenders contenders;
        for (const std::vector<Placed> &list : lists) {
            contenders.push_back({name, role, "",
                                  [] {
                                      prepareState(work);
                                      ninefold::useSet(bestSet());
                                  },
                                  [&list, draw](long calls) {
                                      for (long n = 0; n < calls; ++n)
                                          for (const Placed &p : list)
                                              draw(p);
                                  }});
        }
        std::vector<double> units;
        for (const std::vector<Placed> &list : lists)
            units.push_back(double(list.size()));
        chart.curves.push_back(curveOf(name, contenders, units, effort));
    };
    for (const Named &kernel : smallKernels())
        if (matches(kernel.name, filters))
            add(kernel.name, Role::ours,
                [axes = kernel.axes, draw = SearchDrawFunc(ninefold::codeOf(kernel.axes))](const Placed &p) {
                    drawPlaced(axes, draw, p);
                });
    add("memcpy", Role::memcpy, [](const Placed &p) {
        for (int row = 0; row < smallSize; ++row)
            std::memcpy(frameBuffer()->pixels + size_t(p.y + row) * frameSize + size_t(p.x),
                        p.texture->pixels + size_t(p.v + row) * p.texture->width + size_t(p.u), smallSize * 4);
    });
}

std::vector<Placed> placesOf(size_t count, const std::vector<const Texture *> &textures)
{
    seed();
    std::vector<Placed> list;
    for (size_t i = 0; i < count; ++i)
        list.push_back({random(frameSize - smallSize), random(frameSize - smallSize),
                        random(smallTexture / smallSize) * smallSize, random(smallTexture / smallSize) * smallSize,
                        textures[i % textures.size()]});
    return list;
}

Chart byCount(const std::vector<std::string> &filters, const Effort &effort)
{
    Chart chart{"Primitives of 32 by 32 at random places, from one texture", "primitives", "ns per primitive", {}, {}};
    std::vector<std::vector<Placed>> lists;
    for (size_t count = 1; count <= 100000; count *= 10) {
        chart.places.push_back(double(count));
        lists.push_back(placesOf(count, {texture(Content::discs32, smallTexture)}));
    }
    addSmallCurves(chart, lists, filters, effort);
    return chart;
}

Chart byTextures(const std::vector<std::string> &filters, const Effort &effort)
{
    Chart chart{"Textures of 256 by 256 in turn, 4096 primitives of 32 by 32", "textures", "ns per primitive", {}, {}};
    std::vector<Texture *> made;
    std::vector<const Texture *> textures;
    std::vector<std::vector<Placed>> lists;
    const Surface picture = straight(Content::discs32, smallTexture);
    for (size_t count = 1; count <= 64; count *= 2) {
        while (made.size() < count) {
            made.push_back(CreateTexture(smallTexture, smallTexture));
            std::copy(picture.pixels, picture.pixels + smallTexture * smallTexture, made.back()->pixels);
        }
        textures.assign(made.begin(), made.end());
        chart.places.push_back(double(count));
        lists.push_back(placesOf(4096, textures));
    }
    addSmallCurves(chart, lists, filters, effort);
    for (Texture *each : made)
        DeleteTexture(each);
    return chart;
}

} // namespace

int timeScale(const std::vector<std::string> &filters, const Effort &effort, const std::filesystem::path &page)
{
    const auto named = [&](const std::vector<Named> &kernels) {
        return std::any_of(kernels.begin(), kernels.end(), [&](const Named &kernel) { return matches(kernel.name, filters); });
    };
    if (!named(kernelsBySize()) && !named(smallKernels())) {
        std::fprintf(stderr, "bench: no kernel of --scale has a name that contains that; there are:");
        for (const auto &kernels : {kernelsBySize(), smallKernels()})
            for (const Named &kernel : kernels)
                std::fprintf(stderr, " %s", kernel.name);
        std::fprintf(stderr, "\n");
        return 2;
    }
    std::vector<Chart> charts;
    for (const auto make : {bySize, byCount, byTextures}) {
        charts.push_back(make(filters, effort));
        printChart(charts.back());
    }
    writePage(charts, page);
    std::printf("written: %s\n", page.c_str());
    return 0;
}

} // namespace bench
