// The library's own contenders: one for each instruction set that the machine has, and the scalar loop in its place.
#include "hold.h"
#include "kernels/sets.h"
#include "scene.h"

#include <algorithm>
#include <cstring>

namespace bench {

namespace {

bool isTriangle(Kind kind) { return kind == Kind::triangle || kind == Kind::flatTriangle || kind == Kind::gouraudTriangle; }

// A map that has depth along y alone has straight rows at an even pace, which is what a line table holds.
void fillTable(std::vector<LineTableRecord> &table, const Map &map)
{
    const auto fixed = [&](int i, int x, int y) {
        const double weight = map.m[2][0] * x + map.m[2][1] * y + map.m[2][2];
        return int32_t((map.m[i][0] * x + map.m[i][1] * y + map.m[i][2]) / weight * 65536);
    };
    for (int y = 0; y < frameSize; ++y)
        table[size_t(y)] = {fixed(0, 0, y), fixed(1, 0, y), fixed(0, frameSize, y), fixed(1, frameSize, y)};
}

// Calls a kernel with what a host stores for each primitive of that kind, and nothing more.
Contender storesOf(std::string name, Role role, const Work &work, bool triangles, DrawFunc kernel)
{
    const Primitive *const primitives = work.primitives.data();
    const auto make = [&](auto store) {
        return contender(std::move(name), role, "", work, [=](size_t i) {
            store(primitives[i]);
            kernel();
        });
    };
    // A rectangle by its four corners as two triangles, the rule texture upright at one texel a pixel.
    const auto halves = [&] {
        return contender(std::move(name), role, "", work, [=](size_t i) {
            const Primitive &p = primitives[i];
            const Vertex corner[4] = {p.vertex[0],
                                      {p.vertex[1].x, p.vertex[0].y, p.vertex[2].z},
                                      {p.vertex[0].x, p.vertex[1].y, p.vertex[3].z},
                                      p.vertex[1]};
            for (int first : {0, 1}) {
                const int order[3] = {first, first ? 3 : 1, 2};
                for (int v = 0; v < 3; ++v) {
                    rs.vertex[v] = corner[order[v]], rs.uv0[v] = p.uv[order[v]];
                    rs.uv2[v] = {rs.vertex[v].x << 16, rs.vertex[v].y << 16};
                }
                kernel();
            }
        });
    };
    const auto corners = [](const Primitive &p) { rs.vertex[0] = p.vertex[0], rs.vertex[1] = p.vertex[1]; };
    switch (work.kind) {
    case Kind::fill:
    case Kind::line: return make([=](const Primitive &p) { corners(p), rs.color[0] = p.color[0]; });
    case Kind::blit: return make([=](const Primitive &p) { corners(p), rs.uv0[0] = p.uv[0]; });
    case Kind::stretch: return make([=](const Primitive &p) { corners(p), rs.uv0[0] = p.uv[0], rs.uv0[1] = p.uv[1]; });
    case Kind::corners:
        if (triangles)
            return halves();
        return make([=](const Primitive &p) { corners(p), std::memcpy(rs.uv0, p.uv, sizeof rs.uv0); });
    case Kind::perspective: return halves();
    case Kind::triangle:
        return make([](const Primitive &p) {
            for (int v = 0; v < 3; ++v)
                rs.vertex[v] = p.vertex[v], rs.uv0[v] = p.uv[v];
        });
    case Kind::flatTriangle:
        return make([](const Primitive &p) {
            std::memcpy(rs.vertex, p.vertex, 3 * sizeof(Vertex));
            rs.color[0] = p.color[0];
        });
    case Kind::gouraudTriangle:
        return make([](const Primitive &p) {
            for (int v = 0; v < 3; ++v)
                rs.vertex[v] = p.vertex[v], rs.color[v] = p.color[v];
        });
    case Kind::gouraudRect: return make([=](const Primitive &p) { corners(p), std::memcpy(rs.color, p.color, sizeof rs.color); });
    default: return make(corners);
    }
}

Contender caller(std::string name, Role role, const Job &job, DrawFunc kernel, int set, std::function<void()> setup)
{
    Contender made = storesOf(std::move(name), role, job.work, job.axes.shape == NINEFOLD_SHAPE_TRIANGLE, kernel);
    made.prepare = [work = &job.work, set, setup = std::move(setup)] {
        prepareState(*work);
        if (setup)
            setup();
        ninefold::useSet(set);
    };
    return made;
}

} // namespace

void prepareState(const Work &work)
{
    static std::vector<uint16_t> plane(frameSize * frameSize / 16 + 64);
    static std::vector<uint8_t> zBuffer(frameSize * frameSize, 128);
    static std::vector<LineTableRecord> table(frameSize);
    SetFrameBuffer(frameBuffer());
    rs.clipLeft = rs.clipTop = 0;
    rs.clipRight = rs.clipBottom = frameSize;
    rs.tex0 = rs.tex1 = texture(work.content, work.textureSize);
    rs.lineTable0 = rs.lineTable1 = table.data();
    if (work.kind == Kind::table)
        fillTable(table, work.maps[0]);
    rs.shaheiPlane = plane.data();
    rs.zBuffer = zBuffer.data();
    rs.zRef = 100;
    rs.blendAlpha = 128;
    rs.blendAlphaRgb = 100;
    rs.writeMask = 0x00FFFF00;
    rs.prescale = rs.prescaleMulti = 200;
    rs.mosaicSize = rs.mosaicSize1 = 4;
    rs.scanShift = nullptr;
    if (!work.primitives.empty()) {
        const Primitive &p = work.primitives[0];
        std::memcpy(rs.vertex, p.vertex, sizeof rs.vertex);
        std::memcpy(rs.uv0, p.uv, sizeof rs.uv0);
        std::memcpy(rs.uv1, p.uv, sizeof rs.uv1);
        std::memcpy(rs.color, p.color, sizeof rs.color);
    }
}

void addOurs(const Job &job, Contenders &contenders)
{
    const DrawFunc kernel = job.kernel                   ? job.kernel
                            : ninefold::exists(job.axes) ? SearchDrawFunc(ninefold::codeOf(job.axes))
                                                         : nullptr;
    for (int set = 0; kernel && set < ninefold::setCount; ++set) {
        if (set > bestSet() || !ninefold::useSet(set))
            continue;
        contenders.push_back(caller(std::string("ninefold/") + ninefold::setNames[set], Role::ours, job, kernel, set, job.setup));
        contenders.back().note = job.note;
    }
    if (job.scalar)
        contenders.push_back(caller("scalar", Role::scalar, job, job.scalar, 0, job.setup));
}

int bestSet()
{
    static const int best = [] {
        int set = ninefold::usableSets() - 1;
        while (isHeldToV3() && set > 0 && std::strcmp(ninefold::setNames[set], "v4") == 0)
            --set;
        return set;
    }();
    return best;
}

Contender kernelAs(std::string name, Role role, const Job &job, const ninefold::Axes &axes, std::function<void()> setup)
{
    return caller(std::move(name), role, job, SearchDrawFunc(ninefold::codeOf(axes)), bestSet(), std::move(setup));
}

Contenders contendersOf(const Job &job)
{
    Contenders contenders;
    if (!job.work.primitives.empty())
        addMemcpy(job, contenders);
    addOurs(job, contenders);
    if (!job.ownOnly)
        for (const auto &[name, make] : peers())
            if (!isLeftOut(name.c_str()) && (!job.work.mipmapped || name == "osmesa")) // the others have no mip levels
                make(job.work, contenders);
    if (job.more)
        job.more(contenders);
    return contenders;
}

void addMemcpy(const Job &job, Contenders &contenders)
{
    const Work &work = job.work;
    const Surface target = frame(), source = straight(work.content, work.textureSize);
    struct Block {
        uint32_t *to;
        size_t bytes, rows;
        const uint32_t *from;
    };
    // Rectangles as they are, by rows; of other shapes half of the box; lines stretched out.
    std::vector<Block> blocks;
    for (const Primitive &p : work.primitives) {
        const bool line = work.kind == Kind::line;
        const int points = isTriangle(work.kind) ? 3 : 2;
        int left = frameSize, top = frameSize, right = 0, bottom = 0;
        for (int v = 0; v < points; ++v) {
            left = std::min(left, p.vertex[v].x), right = std::max(right, p.vertex[v].x);
            top = std::min(top, p.vertex[v].y), bottom = std::max(bottom, p.vertex[v].y);
        }
        int width = right - left, rows = points == 3 ? (bottom - top + 1) / 2 : bottom - top;
        if (line)
            width = std::max(width, rows), rows = 1, left = std::min(left, frameSize - width);
        uint32_t *const to = target.pixels + top * frameSize + left;
        const uint32_t *const from = source.pixels + (work.kind == Kind::blit ? p.texelV() * source.width + p.texelU() : 0);
        blocks.push_back(width == frameSize ? Block{to, size_t(width * rows) * 4, 1, from}
                                            : Block{to, size_t(width) * 4, size_t(rows), from});
    }
    contenders.push_back(contender("memcpy", Role::memcpy, "", work, [=](size_t i) {
        const Block &block = blocks[i];
        uint32_t *to = block.to;
        const uint32_t *from = block.from;
        for (size_t row = 0; row < block.rows; ++row, to += frameSize, from += source.width)
            std::memcpy(to, from, block.bytes);
    }));
}

} // namespace bench
