// Rotated and tapered quads, triangles, lines, colours.
#include "jobs.h"
#include "scalar.h"
#include "scene.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace bench {

namespace {

int32_t fixed(double value) { return int32_t(std::lround(value * 65536)); }

// The whole frame through a map, as one primitive with the four corners' places in the texture.
Job quadJob(const std::string &name, Kind kind, const ninefold::Axes &axes, Content content, const Map &map)
{
    Job job = rectangleJob(name, kind, axes, content, frameSize);
    Primitive &p = job.work.primitives[0];
    for (int corner = 0; corner < 4; ++corner) {
        const double x = corner & 1 ? frameSize : 0, y = corner & 2 ? frameSize : 0;
        const auto row = [&](int i) { return map.m[i][0] * x + map.m[i][1] * y + map.m[i][2]; };
        p.uv[corner] = {fixed(row(0) / row(2)), fixed(row(1) / row(2))};
        // Depths of the corners top left, bottom right (which are vertex[0] and vertex[1]), top right, bottom left.
        p.vertex[corner == 0 ? 0 : corner == 3 ? 1 : corner + 1].z = int32_t(std::lround(10000 / row(2)));
    }
    job.work.maps = {map};
    job.goal = 0.5;
    return job;
}

// Turned by 30 degrees about the middle, magnified until the frame lies inside the texture.
Map rotation()
{
    const double angle = 0.5235987755982988, scale = 1 / (std::cos(angle) + std::sin(angle)) - 0.002;
    const double c = std::cos(angle) * scale, s = std::sin(angle) * scale, middle = frameSize / 2.0;
    return {{{c, -s, middle - c * middle + s * middle}, {s, c, middle - s * middle - c * middle}, {0, 0, 1}}};
}

// A floor seen from above its near edge: depth along y alone, as a line table has it.
Map floorMap()
{
    const double places[3][3] = {{0, 0, 1}, {frameSize, 0, 1}, {0, frameSize, 1}};
    const double values[3][3] = {{10 * 0.4, 1000 * 0.4, 0.4}, {1014 * 0.4, 1000 * 0.4, 0.4}, {290, 300, 1}};
    return through(places, values);
}

// Depth along both axes. The texture's places and the weight 1 / depth at three corners.
Map perspectiveMap()
{
    const double places[3][3] = {{0, 0, 1}, {frameSize, 0, 1}, {0, frameSize, 1}};
    const double values[3][3] = {{20, 20, 1}, {600 * 0.8, 20 * 0.8, 0.8}, {20 * 0.7, 700 * 0.7, 0.7}};
    return through(places, values);
}

void addQuads(std::vector<Job> &jobs)
{
    const Map turned = rotation();
    const auto add = [&](const char *name, Kind kind, const ninefold::Axes &axes, Content content, const Map &map,
                         const char *note) {
        jobs.push_back(quadJob(name, kind, axes, content, map));
        jobs.back().note = note;
    };
    add("rotated.point.copy", Kind::corners, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_CORNERS, NINEFOLD_FILTER_POINT, copy),
        Content::opaque, turned, "");
    add("rotated.point.alpha", Kind::corners,
        axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_CORNERS, NINEFOLD_FILTER_POINT, alpha), Content::sprite, turned, "");
    // Four corners mix four texels only where they draw through the Shahei plane; elsewhere they choose one of two by a stipple.
    add("rotated.bilinear.copy", Kind::corners,
        axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, copy), Content::opaque, turned,
        "two triangles");
    add("rotated.bilinear.alpha", Kind::corners,
        axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, alpha), Content::sprite, turned,
        "two triangles");
    add("rotated.stippled.copy", Kind::corners,
        axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_CORNERS, NINEFOLD_FILTER_BILINEAR, copy), Content::opaque, turned,
        "one of two texels; peers mix four");
    add("rotated.stippled.alpha", Kind::corners,
        axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_CORNERS, NINEFOLD_FILTER_BILINEAR, alpha), Content::sprite, turned,
        "one of two texels; peers mix four");
    jobs[jobs.size() - 2].work.bilinear = jobs.back().work.bilinear = true;
    add("floor.point.copy", Kind::table, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_TABLE, NINEFOLD_FILTER_POINT, copy),
        Content::opaque, floorMap(), "a row each by a line table");

    ninefold::Axes axes = axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_POINT, copy);
    axes.pers = NINEFOLD_PERS_ON;
    add("perspective.point.copy", Kind::perspective, axes, Content::opaque, perspectiveMap(), "two triangles");
    axes.filter = NINEFOLD_FILTER_BILINEAR;
    add("perspective.bilinear.copy", Kind::perspective, axes, Content::opaque, perspectiveMap(), "two triangles");
}

double areaOf(const Primitive &p)
{
    const Vertex *v = p.vertex;
    return std::abs(double(v[1].x - v[0].x) * (v[2].y - v[0].y) - double(v[2].x - v[0].x) * (v[1].y - v[0].y)) / 2;
}

// Even triangles, turned at random, whose circle has a radius from `least` to `most`; or one over half of the frame.
std::vector<Primitive> triangles(bool large, double least, double most, int textureSize, int count = smallPrimitives)
{
    std::vector<Primitive> all;
    for (int i = 0; i < (large ? 1 : count); ++i) {
        Primitive p{};
        if (large) {
            p.vertex[0] = {10, 5, 0}, p.vertex[1] = {1015, 240, 0}, p.vertex[2] = {230, 1018, 0};
        } else {
            const double radius = least + (most - least) * random(1000) / 1000, turn = random(1000) * 6.283185307179586 / 1000;
            const int margin = int(most) + 2;
            const int x = margin + random(frameSize - 2 * margin), y = margin + random(frameSize - 2 * margin);
            for (int v = 0; v < 3; ++v) {
                const double angle = turn + v * 6.283185307179586 / 3;
                p.vertex[v] = {int32_t(std::lround(x + radius * std::cos(angle))),
                               int32_t(std::lround(y + radius * std::sin(angle))), 0};
            }
        }
        // The texture is turned a little against the frame, 0.75 texels a pixel.
        const int u = large ? 60 : 20 + random(textureSize / 2), v = large ? 5 : 20 + random(textureSize / 2);
        for (int k = 0; k < 3; ++k) {
            const double dx = p.vertex[k].x - (large ? 0 : p.vertex[0].x - 20),
                         dy = p.vertex[k].y - (large ? 0 : p.vertex[0].y - 20);
            p.uv[k] = {fixed(u + 0.74 * dx + 0.1 * dy), fixed(v - 0.1 * dx + 0.74 * dy + (large ? 110 : 0))};
            p.color[k] = 0xFF000000 | uint32_t(random(1 << 24));
        }
        all.push_back(p);
    }
    return all;
}

Map mapOf(const Primitive &p)
{
    double places[3][3], values[3][3];
    for (int i = 0; i < 3; ++i) {
        places[i][0] = p.vertex[i].x, places[i][1] = p.vertex[i].y, places[i][2] = 1;
        values[i][0] = p.uv[i].u / 65536.0, values[i][1] = p.uv[i].v / 65536.0, values[i][2] = 1;
    }
    return through(places, values);
}

void addTriangles(std::vector<Job> &jobs)
{
    struct Size {
        const char *name;
        double least, most;
    };
    constexpr Size sizes[] = {{"large", 0, 0}, {"30px", 16, 18}, {"5to50px", 3, 29}, {"cold", 16, 18}};
    struct Row {
        const char *name;
        Kind kind;
        int filter;
        Blend blend;
        DrawFunc scalar;
    };
    constexpr Row rows[] = {
        {"triangle.point.copy", Kind::triangle, NINEFOLD_FILTER_POINT, copy, scalar::triangleCopy},
        {"triangle.point.alpha", Kind::triangle, NINEFOLD_FILTER_POINT, alpha, scalar::triangleAlpha},
        {"triangle.bilinear.copy", Kind::triangle, NINEFOLD_FILTER_BILINEAR, copy, scalar::triangleBilinearCopy},
        {"triangle.bilinear.alpha", Kind::triangle, NINEFOLD_FILTER_BILINEAR, alpha, scalar::triangleBilinearAlpha},
        {"triangle.gouraud", Kind::gouraudTriangle, NINEFOLD_FILTER_GOURAUD, copy, scalar::gouraudTriangle},
        {"triangle.flat", Kind::flatTriangle, NINEFOLD_FILTER_FLAT, copy, scalar::flatTriangle},
    };
    for (const Size &size : sizes)
        for (const Row &row : rows) {
            const bool large = size.most == 0, cold = std::strcmp(size.name, "cold") == 0;
            if (cold && row.kind != Kind::triangle)
                continue;
            seed();
            Job job;
            job.name = cold ? std::string("cold.") + row.name + "/30px" : std::string(row.name) + "/" + size.name;
            job.cold = cold;
            job.axes = axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, row.filter, row.blend);
            job.scalar = row.scalar;
            job.goal = row.kind == Kind::flatTriangle ? 1 : 0.5; // peers fill as fast as memory goes
            job.perCall = !large;
            Work &work = job.work;
            work.kind = row.kind;
            work.blend = row.blend;
            work.bilinear = row.filter == NINEFOLD_FILTER_BILINEAR;
            work.content = row.blend == alpha ? Content::sprite : Content::opaque;
            work.textureSize = large ? frameSize : cold ? coldTexture : smallTexture;
            work.primitives = triangles(large, size.least, size.most, work.textureSize, cold ? coldPrimitives : smallPrimitives);
            for (const Primitive &p : work.primitives) {
                work.maps.push_back(mapOf(p));
                job.pixels += areaOf(p) / double(work.primitives.size());
            }
            jobs.push_back(job);
        }
}

// Against the same triangles without perspective: for eight pixels of some sixty instructions of their own, a division and a
// multiplication for each of u and v and the next weight are about ten more, 1.2; the set-up has a division for each corner and six
// slopes more, a third of a small triangle's cost.
void addPerspectiveTriangles(std::vector<Job> &jobs)
{
    for (const int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_BILINEAR}) {
        seed();
        Job job;
        job.name =
            filter == NINEFOLD_FILTER_POINT ? "triangle.perspective.point.copy/30px" : "triangle.perspective.bilinear.copy/30px";
        job.axes = axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, filter, copy);
        auto plain = std::make_shared<Job>();
        plain->axes = job.axes;
        job.axes.pers = NINEFOLD_PERS_ON;
        job.perCall = true;
        job.ownOnly = true;
        job.goal = 1.6;
        job.work.kind = Kind::triangle;
        job.work.content = Content::opaque;
        job.work.textureSize = smallTexture;
        job.work.primitives = triangles(false, 16, 18, smallTexture);
        for (Primitive &p : job.work.primitives) {
            p.vertex[0].z = 1000, p.vertex[1].z = 1400, p.vertex[2].z = 2000;
            job.pixels += areaOf(p) / smallPrimitives;
        }
        plain->work = job.work;
        job.more = [plain](Contenders &contenders) {
            contenders.push_back(kernelAs("affine", Role::yardstick, *plain, plain->axes, {}));
        };
        jobs.push_back(job);
    }
}

void addColours(std::vector<Job> &jobs)
{
    for (int size : {8, 16, 32}) {
        seed();
        Job flat =
            rectangleJob("fill", Kind::fill, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy),
                         Content::opaque, size);
        flat.scalar = scalar::flatRect;
        jobs.push_back(flat);
    }
    for (int size : {frameSize, 32}) {
        seed();
        Job gouraud = rectangleJob("gouraud", Kind::gouraudRect,
                                   axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_GOURAUD, copy),
                                   Content::opaque, size);
        gouraud.goal = 0.5;
        // Colours of a plane, which peers draw alike as two triangles.
        for (Primitive &p : gouraud.work.primitives)
            p.color[0] = 0xFF204060, p.color[1] = 0xFFE05080, p.color[2] = 0xFF30D070, p.color[3] = 0xFFF0E090;
        jobs.push_back(gouraud);
    }
}

void addLines(std::vector<Job> &jobs)
{
    struct Length {
        const char *name;
        int least, most;
    };
    for (const Length &length : {Length{"11px", 11, 11}, {"470px", 470, 470}, {"3to30px", 3, 30}}) {
        seed();
        Job job;
        job.name = std::string("line/") + length.name;
        job.axes = axesOf(NINEFOLD_SHAPE_LINE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy);
        job.scalar = scalar::flatLine;
        job.goal = 0.5;
        job.perCall = true;
        job.work.kind = Kind::line;
        job.work.content = Content::opaque;
        job.work.textureSize = smallTexture;
        for (int i = 0; i < smallPrimitives; ++i) {
            const int major = length.least + random(length.most - length.least + 1), minor = random(2 * major + 1) - major;
            const bool steep = random(2), back = random(2);
            const int dx = steep ? minor : back ? -major : major, dy = !steep ? minor : back ? -major : major;
            Primitive p{};
            const auto place = [](int d) { return std::max(0, -d) + random(frameSize - std::abs(d)); };
            p.vertex[0] = {place(dx), place(dy), 0};
            p.vertex[1] = {p.vertex[0].x + dx, p.vertex[0].y + dy, 0};
            p.color[0] = 0xFF000000 | uint32_t(random(1 << 24));
            job.work.primitives.push_back(p);
            job.pixels += double(major) / smallPrimitives;
        }
        jobs.push_back(job);
    }
}

} // namespace

void addShapeJobs(std::vector<Job> &jobs)
{
    addQuads(jobs);
    addTriangles(jobs);
    addPerspectiveTriangles(jobs);
    addColours(jobs);
    addLines(jobs);
}

} // namespace bench
