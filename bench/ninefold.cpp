// The library's own contenders: one for each instruction set that the machine has, and the scalar loop in its place.
#include "kernels/parts.h"
#include "scene.h"

#include <cstring>

namespace bench {

namespace {

constexpr const char* setNames[] = {"v1", "v3", "v4"};

std::vector<LineTableRecord> floorTable()
{
    std::vector<LineTableRecord> table;
    for (int y = 0; y < frameSize; ++y) {
        const double depth = 4096.0 / (y + 1024);
        const int32_t half = int32_t(frameSize / 4 * depth * 65536), v = int32_t(512 * depth * 65536);
        table.push_back({(frameSize / 2 << 16) - half, v, (frameSize / 2 << 16) + half, v});
    }
    return table;
}

// Calls a kernel with what a host stores for each primitive of that kind, and nothing more.
Contender caller(std::string name, Role role, const Work& work, DrawFunc kernel)
{
    const auto* const primitives = work.primitives.data();
    const auto make = [&](auto store) {
        return contender(std::move(name), role, "", work, [=](size_t i) {
            store(primitives[i]);
            kernel();
        });
    };
    const auto corners = [](const Primitive& p) { rs.vertex[0] = p.vertex[0], rs.vertex[1] = p.vertex[1]; };
    switch (work.kind) {
    case Kind::fill:
    case Kind::line:
        return make([=](const Primitive& p) { corners(p), rs.color[0] = p.color[0]; });
    case Kind::blit: return make([=](const Primitive& p) { corners(p), rs.uv0[0] = p.uv[0]; });
    case Kind::stretch: return make([=](const Primitive& p) { corners(p), rs.uv0[0] = p.uv[0], rs.uv0[1] = p.uv[1]; });
    case Kind::corners: return make([=](const Primitive& p) { corners(p), std::memcpy(rs.uv0, p.uv, sizeof rs.uv0); });
    case Kind::triangle:
    case Kind::perspective:
        return make([](const Primitive& p) {
            for (int v = 0; v < 3; ++v)
                rs.vertex[v] = p.vertex[v], rs.uv0[v] = p.uv[v];
        });
    case Kind::flatTriangle:
        return make([](const Primitive& p) {
            std::memcpy(rs.vertex, p.vertex, 3 * sizeof(Vertex));
            rs.color[0] = p.color[0];
        });
    case Kind::gouraudTriangle:
        return make([](const Primitive& p) {
            for (int v = 0; v < 3; ++v)
                rs.vertex[v] = p.vertex[v], rs.color[v] = p.color[v];
        });
    case Kind::gouraudRect: return make([=](const Primitive& p) { corners(p), std::memcpy(rs.color, p.color, sizeof rs.color); });
    default: return make(corners);
    }
}

} // namespace

void prepareState(const Work& work)
{
    static std::vector<uint16_t> plane(frameSize * frameSize / 16 + 64);
    static std::vector<uint8_t> zBuffer(frameSize * frameSize, 128);
    static std::vector<LineTableRecord> table = floorTable();
    SetFrameBuffer(frameBuffer());
    rs.clipLeft = rs.clipTop = 0;
    rs.clipRight = rs.clipBottom = frameSize;
    rs.tex0 = texture(work.content, work.textureSize);
    rs.lineTable0 = table.data();
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
        std::memcpy(rs.vertex, work.primitives[0].vertex, sizeof rs.vertex);
        std::memcpy(rs.uv0, work.primitives[0].uv, sizeof rs.uv0);
        std::memcpy(rs.color, work.primitives[0].color, sizeof rs.color);
    }
}

void addOurs(const Job& job, Contenders& contenders)
{
    const Work* const work = &job.work;
    if (ninefold::exists(job.axes)) {
        const DrawFunc kernel = SearchDrawFunc(ninefold::codeOf(job.axes));
        for (int set = 0; set < ninefold::setCount; ++set) {
            if (!ninefold::useSet(set))
                continue;
            Contender ours = caller(std::string("ninefold/") + setNames[set], Role::ours, *work, kernel);
            ours.prepare = [work, set] { prepareState(*work), ninefold::useSet(set); };
            contenders.push_back(std::move(ours));
        }
    }
    if (job.scalar) {
        Contender scalar = caller("scalar", Role::scalar, *work, job.scalar);
        scalar.prepare = [work] { prepareState(*work); };
        contenders.push_back(std::move(scalar));
    }
}

void addMemcpy(const Job& job, Contenders& contenders)
{
    const Work& work = job.work;
    const Surface target = frame(), source = straight(work.content, work.textureSize);
    const double bytes = job.memcpyBytes > 0 ? job.memcpyBytes : job.pixels * 4;
    // Rows as wide as the box (half of it for triangles, the whole length for lines), as many as make the bytes.
    size_t width = size_t(work.kind == Kind::line ? job.pixels : work.width) * 4;
    size_t rows = size_t(bytes / double(width) + 0.5);
    if (rows < 1)
        rows = 1, width = size_t(bytes);
    if (width == frameSize * 4)
        width *= rows, rows = 1;
    const auto* const primitives = work.primitives.data();
    const bool single = work.primitives.size() < 2, wide = width >= frameSize * 4;
    contenders.push_back(contender("memcpy", Role::memcpy, "", work, [=](size_t i) {
        size_t x = 0, y = 0;
        if (!single) {
            x = std::min(size_t(primitives[i].vertex[0].x), frameSize - width / 4);
            y = std::min(size_t(primitives[i].vertex[0].y), frameSize - rows);
        }
        uint32_t* to = target.pixels + y * frameSize + x;
        const uint32_t* from = source.pixels;
        const size_t step = wide ? 0 : size_t(source.width);
        for (size_t row = 0; row < rows; ++row, to += frameSize, from += step)
            std::memcpy(to, from, width);
    }));
}

} // namespace bench
