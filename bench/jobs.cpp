// The rows of the report.
#include "scalar.h"
#include "scene.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

using ninefold::Axes;

enum Blend { copy = 0, alpha = 1, constAlpha = 2, alphaFast = 4, add = 5, sub = 6, mul = 7, mul2 = 8, screen = 9, overlay = 10, merge = 11 };

constexpr int smallTexture = 256;
constexpr int smallPrimitives = 64; // drawing positions of small primitives, in turn

Axes rectangle(int rectOpt, int filter, int blend)
{
    Axes axes{};
    axes.shape = 1, axes.filter = uint8_t(filter), axes.rectOpt = uint8_t(rectOpt), axes.blend = uint8_t(blend), axes.multi = 3;
    return axes;
}

std::string boxName(int width, int height) { return std::to_string(width) + "x" + std::to_string(height); }

Primitive box(int x, int y, int width, int height)
{
    Primitive p{};
    p.vertex[0] = {x, y, 0}, p.vertex[1] = {x + width, y + height, 0};
    p.color[0] = 0xFF336699;
    return p;
}

// One primitive over the whole frame, or 64 boxes at random places with sources at random places.
std::vector<Primitive> boxes(int width, int height, int textureSize, double scale)
{
    std::vector<Primitive> all;
    const bool whole = width == frameSize && height == frameSize;
    const int sourceWidth = int(width * scale), sourceHeight = int(height * scale);
    for (int i = 0; i < (whole ? 1 : smallPrimitives); ++i) {
        Primitive p = whole ? box(0, 0, width, height)
                            : box(random(frameSize - width), random(frameSize - height), width, height);
        const int room = std::max(textureSize - std::max(sourceWidth, sourceHeight) - 1, 1);
        const int u = whole ? 0 : random(room), v = whole ? 0 : random(room);
        p.uv[0] = {u << 16, v << 16};
        p.uv[1] = {p.uv[0].u + int32_t(width * scale * 65536), p.uv[0].v + int32_t(height * scale * 65536)};
        all.push_back(p);
    }
    return all;
}

Job rectangleJob(const std::string& name, Kind kind, int rectOpt, int filter, int blend, Content content, int size, double scale)
{
    Job job;
    job.name = name + "/" + boxName(size, size);
    job.work.kind = kind;
    job.work.blend = blend;
    job.work.bilinear = filter == 1;
    job.work.content = content;
    job.work.textureSize = size < frameSize ? smallTexture : scale > 1 ? 2 * frameSize : frameSize;
    job.work.width = job.work.height = size;
    job.work.primitives = boxes(size, size, job.work.textureSize, scale);
    job.pixels = double(size) * size;
    job.perCall = size < frameSize;
    job.scalarGoal = size == 8 ? 0.6 : 1;
    job.axes = rectangle(rectOpt, filter, blend);
    return job;
}

struct BlendRow {
    const char* name;
    Blend blend;
    Content content;
    double goal;
    DrawFunc scalar;
};

constexpr BlendRow blendRows[] = {
    {"copy", copy, Content::key, 1, scalar::unitCopy},
    {"alpha", alpha, Content::sprite, 1, scalar::unitAlpha},
    {"alpha.soft", alpha, Content::soft, 1, scalar::unitAlpha},
    {"constalpha", constAlpha, Content::opaque, 1, scalar::unitConstAlpha},
    {"alphafast", alphaFast, Content::sprite, 1, nullptr},
    {"add", add, Content::opaque, 1, scalar::unitAdd},
    {"sub", sub, Content::opaque, 1, nullptr},
    {"mul", mul, Content::opaque, 1, scalar::unitMul},
    {"mul2", mul2, Content::opaque, 1, nullptr},
    {"screen", screen, Content::opaque, 0.5, scalar::unitScreen},
    {"overlay", overlay, Content::opaque, 0.5, scalar::unitOverlay},
    {"merge", merge, Content::opaque, 1, nullptr},
};

void addSprites(std::vector<Job>& jobs)
{
    Job fill = rectangleJob("fill", Kind::fill, 7, 6, copy, Content::opaque, frameSize, 1);
    fill.scalar = scalar::flatRect;
    jobs.push_back(fill);
    for (int size : {frameSize, 8, 16, 32})
        for (const BlendRow& row : blendRows) {
            if (size < frameSize && row.blend == alpha && row.content == Content::soft)
                continue;
            Job job = rectangleJob(std::string("unit.") + row.name, Kind::blit, 0, 0, row.blend, row.content, size, 1);
            job.goal = row.goal;
            job.scalar = row.scalar;
            jobs.push_back(job);
        }
}

void addStretches(std::vector<Job>& jobs)
{
    constexpr struct { const char* name; double factor; } scales[] = {{"x1.5", 1.5}, {"x0.7", 0.7}, {"x4", 4}};
    for (const auto& scale : scales)
        for (int filter : {0, 1})
            for (Blend blend : {copy, alpha})
                for (int size : {frameSize, 8, 16, 32}) {
                    if ((filter == 0 || size < frameSize) && scale.factor != 1.5)
                        continue;
                    const std::string name = std::string(filter ? "bilinear." : "point.") + (blend == copy ? "copy." : "alpha.");
                    Job job = rectangleJob(name + scale.name, Kind::stretch, 1, filter, blend,
                                           blend == copy ? Content::opaque : Content::sprite, size, 1 / scale.factor);
                    job.scalar = filter ? blend == copy ? scalar::bilinearCopy : scalar::bilinearAlpha
                                 : blend == copy ? scalar::pointCopy
                                                 : scalar::pointAlpha;
                    jobs.push_back(job);
                }
}

} // namespace

std::vector<Job> allJobs()
{
    std::vector<Job> jobs;
    seed();
    addSprites(jobs);
    addStretches(jobs);
    return jobs;
}

} // namespace bench
