// Rectangles from a texture, at unit scale and stretched.
#include "jobs.h"
#include "scalar.h"
#include "scene.h"

namespace bench {

namespace {

struct UnitRow {
    const char *name;
    Blend blend;
    Content content;
    double goal;
    DrawFunc scalar;
};

constexpr UnitRow unitRows[] = {
    {"copy", copy, Content::key, 1, scalar::unitCopy},
    {"alpha", alpha, Content::sprite, 1, scalar::unitAlpha},
    {"alpha.soft", alpha, Content::soft, 1, scalar::unitAlpha},
    {"constalpha", constAlpha, Content::opaque, 1.1, scalar::unitConstAlpha},
    {"alphafast", alphaFast, Content::sprite, 1, scalar::unitAlphaFast},
    {"add", add, Content::opaque, 1, scalar::unitAdd},
    {"sub", subtract, Content::opaque, 1, nullptr},
    {"mul", multiply, Content::opaque, 1.1, scalar::unitMul},
    {"mul2", multiply2, Content::opaque, 1, nullptr},
    {"screen", screen, Content::opaque, 0.5, scalar::unitScreen},
    {"overlay", overlay, Content::opaque, 0.5, scalar::unitOverlay},
    {"merge", merge, Content::opaque, 1, nullptr},
};

struct StretchRow {
    const char *name;
    int filter;
    Blend blend;
    double magnification;
    DrawFunc scalar;
    bool small; // also as sprites
};

constexpr StretchRow stretchRows[] = {
    {"point.copy.x1.5", NINEFOLD_FILTER_POINT, copy, 1.5, scalar::pointCopy, true},
    {"point.alpha.x1.5", NINEFOLD_FILTER_POINT, alpha, 1.5, scalar::pointAlpha, true},
    {"bilinear.copy.x1.5", NINEFOLD_FILTER_BILINEAR, copy, 1.5, scalar::bilinearCopy, true},
    {"bilinear.alpha.x1.5", NINEFOLD_FILTER_BILINEAR, alpha, 1.5, scalar::bilinearAlpha, true},
    {"bilinear.copy.x0.7", NINEFOLD_FILTER_BILINEAR, copy, 0.7, scalar::bilinearCopy, false},
    {"bilinear.alpha.x0.7", NINEFOLD_FILTER_BILINEAR, alpha, 0.7, scalar::bilinearAlpha, false},
    {"bilinear.copy.x4", NINEFOLD_FILTER_BILINEAR, copy, 4, scalar::bilinearCopy, false},
    {"bilinear.alpha.x4", NINEFOLD_FILTER_BILINEAR, alpha, 4, scalar::bilinearAlpha, false},
};

// Boxes as letters have them, out of an atlas.
Job glyphJob(bool cold)
{
    Job job = rectangleJob("unit.alpha", Kind::blit,
                           axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, alpha), Content::soft, 16);
    job.name = cold ? "cold.unit.alpha/glyphs" : "unit.alpha/glyphs";
    job.cold = cold;
    job.pixels = 0;
    if (cold)
        job.work.textureSize = coldTexture, job.work.primitives.resize(coldPrimitives);
    for (Primitive &p : job.work.primitives) {
        const int width = 4 + random(11), height = 8 + random(11);
        p = rectangles(1, width, height, job.work.textureSize, 1)[0];
        job.pixels += double(width) * height / double(job.work.primitives.size());
    }
    job.scalar = scalar::unitAlpha;
    return job;
}

// Sprites as games have them, empty around, opaque within and soft at the rim; by their run-length map too.
void addShapedSprites(std::vector<Job> &jobs)
{
    struct Row {
        const char *name;
        Content content;
        int size, count;
    };
    constexpr Row rows[] = {{"discs", Content::discs, frameSize, 1},
                            {"discs", Content::discs32, 32, 2048},
                            {"discs", Content::discs64, 64, 512},
                            {"cutouts", Content::cutouts, 64, 512}};
    for (const Row &row : rows)
        for (const int rectOpt : {NINEFOLD_RECT_UNIT, NINEFOLD_RECT_RUNS})
            for (const Blend blend : {alpha, alphaFast}) {
                seed();
                Job job = rectangleJob(std::string(row.name) + (rectOpt == NINEFOLD_RECT_RUNS ? ".runs" : "") +
                                           (blend == alpha ? ".alpha" : ".alphafast"),
                                       Kind::blit, axesOf(NINEFOLD_SHAPE_RECTANGLE, rectOpt, NINEFOLD_FILTER_POINT, blend),
                                       row.content, row.size);
                if (row.count > 1)
                    job.work.primitives = rectangles(row.count, row.size, row.size, job.work.textureSize, 1, row.size);
                job.scalar = blend == alpha ? scalar::unitAlpha : scalar::unitAlphaFast;
                job.note = rectOpt == NINEFOLD_RECT_RUNS ? "by the run-length map" : "";
                jobs.push_back(job);
            }
}

void addColdSprites(std::vector<Job> &jobs)
{
    for (const Blend blend : {copy, alpha, alphaFast}) {
        seed();
        Job job = rectangleJob(std::string("cold.unit.") + (blend == copy    ? "copy"
                                                            : blend == alpha ? "alpha"
                                                                             : "alphafast"),
                               Kind::blit, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, blend),
                               blend == copy ? Content::key : Content::discs32, 32);
        job.cold = true;
        job.work.textureSize = coldTexture;
        job.work.primitives = rectangles(coldPrimitives, 32, 32, coldTexture, 1, 32);
        job.scalar = blend == copy ? scalar::unitCopy : blend == alpha ? scalar::unitAlpha : scalar::unitAlphaFast;
        jobs.push_back(job);
    }
    jobs.push_back(glyphJob(true));
}

} // namespace

void addSpriteJobs(std::vector<Job> &jobs)
{
    Job fill = rectangleJob("fill", Kind::fill, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy),
                            Content::opaque, frameSize);
    fill.scalar = scalar::flatRect;
    jobs.push_back(fill);
    for (int size : {frameSize, 8, 16, 32})
        for (const UnitRow &row : unitRows) {
            seed();
            Job job = rectangleJob(std::string("unit.") + row.name, Kind::blit,
                                   axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, row.blend),
                                   row.content, size);
            job.goal = row.goal;
            // libyuv has one function for each of these and needs no call through rs: what is left of a call at such sizes.
            if (size < 32 && job.goal == 1)
                job.goal = 1.1;
            job.scalar = row.scalar;
            jobs.push_back(job);
        }
    addShapedSprites(jobs);
    jobs.push_back(glyphJob(false));
    addColdSprites(jobs);
    for (int size : {frameSize, 8, 16, 32})
        for (const StretchRow &row : stretchRows) {
            if (size < frameSize && !row.small)
                continue;
            seed();
            Job job = rectangleJob(row.name, Kind::stretch,
                                   axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, row.filter, row.blend),
                                   row.blend == copy ? Content::opaque : Content::sprite, size, 1 / row.magnification);
            job.scalar = row.scalar;
            jobs.push_back(job);
        }
}

} // namespace bench
