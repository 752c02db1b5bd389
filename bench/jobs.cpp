#include "jobs.h"

#include "scene.h"

namespace bench {

ninefold::Axes axesOf(int shape, int rectOpt, int filter, Blend blend)
{
    ninefold::Axes axes{};
    axes.shape = uint8_t(shape), axes.rectOpt = uint8_t(rectOpt), axes.filter = uint8_t(filter), axes.blend = blend,
    axes.multi = NINEFOLD_MULTI_NONE;
    return axes;
}

std::vector<Primitive> rectangles(int count, int width, int height, int textureSize, double scale, int grid)
{
    std::vector<Primitive> all;
    const auto place = [](int room) { return room > 1 ? random(room) : 0; };
    const int sourceWidth = int(width * scale + 1), sourceHeight = int(height * scale + 1);
    for (int i = 0; i < count; ++i) {
        Primitive p{};
        p.vertex[0] = {place(frameSize - width), place(frameSize - height), 0};
        p.vertex[1] = {p.vertex[0].x + width, p.vertex[0].y + height, 0};
        const auto texel = [=](int size) { return grid > 1 ? random(textureSize / grid) * grid : place(textureSize - size); };
        p.uv[0] = {texel(sourceWidth) << 16, texel(sourceHeight) << 16};
        p.uv[1] = {p.uv[0].u + int32_t(width * scale * 65536), p.uv[0].v + int32_t(height * scale * 65536)};
        for (uint32_t &colour : p.color)
            colour = 0xFF000000 | uint32_t(random(1 << 24));
        all.push_back(p);
    }
    return all;
}

Job rectangleJob(const std::string &name, Kind kind, const ninefold::Axes &axes, Content content, int size, double scale)
{
    Job job;
    job.name = name + "/" + std::to_string(size) + "x" + std::to_string(size);
    job.axes = axes;
    Work &work = job.work;
    work.kind = kind;
    work.blend = Blend(axes.blend);
    work.bilinear = axes.filter == NINEFOLD_FILTER_BILINEAR;
    work.content = content;
    work.textureSize = size < frameSize ? smallTexture : scale > 1 ? 2 * frameSize : frameSize;
    work.primitives = rectangles(size < frameSize ? smallPrimitives : 1, size, size, work.textureSize, scale);
    if (kind == Kind::stretch)
        for (const Primitive &p : work.primitives) {
            const double u = p.uv[0].u / 65536.0, v = p.uv[0].v / 65536.0, x = p.vertex[0].x, y = p.vertex[0].y;
            work.maps.push_back({{{scale, 0, u - scale * x}, {0, scale, v - scale * y}, {0, 0, 1}}});
        }
    job.pixels = double(size) * size;
    job.perCall = size < frameSize;
    job.scalarGoal = size == 8 ? 0.6 : 1;
    return job;
}

std::vector<Job> allJobs()
{
    std::vector<Job> jobs;
    addSpriteJobs(jobs);
    addShapeJobs(jobs);
    addOwnJobs(jobs);
    addGlyphJobs(jobs);
#if defined(BENCH_TWIN)
    addTwinJobs(jobs);
#endif
    return jobs;
}

} // namespace bench
