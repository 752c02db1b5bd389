// pixman: the compositor under cairo and the X server.
#include "../scene.h"

#include <pixman.h>

#include <memory>

namespace bench {

namespace {

using Image = std::shared_ptr<pixman_image_t>;

Image image(pixman_format_code_t format, const Surface& surface)
{
    return {pixman_image_create_bits(format, surface.width, surface.height, surface.pixels, surface.width * 4),
            pixman_image_unref};
}

pixman_transform_t matrix(const double (&m)[3][3])
{
    pixman_f_transform_t exact;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            exact.m[i][j] = m[i][j];
    pixman_transform_t fixed;
    pixman_transform_from_pixman_f_transform(&fixed, &exact);
    return fixed;
}

struct Operation {
    bool known;
    pixman_op_t op;
    const char* note;
};

Operation operationOf(const Work& work)
{
    switch (work.blend) {
    case 0:
        return work.content == Content::key ? Operation{true, PIXMAN_OP_OVER, "OVER, premultiplied alpha 0 or 255 for the key"}
                                            : Operation{true, PIXMAN_OP_SRC, "SRC, no transparent test"};
    case 1: return {true, PIXMAN_OP_OVER, "OVER, premultiplied source"};
    case 2: return {true, PIXMAN_OP_OVER, "OVER with a solid mask, no transparent test"};
    case 5: return {true, PIXMAN_OP_ADD, "ADD, no transparent test"};
    case 7: return {true, PIXMAN_OP_MULTIPLY, "MULTIPLY, opaque source"};
    case 9: return {true, PIXMAN_OP_SCREEN, "SCREEN, opaque source"};
    case 10: return {true, PIXMAN_OP_OVERLAY, "OVERLAY, opaque source"};
    default: return {};
    }
}

void make(const Work& work, Contenders& contenders)
{
    const Image target = image(PIXMAN_x8r8g8b8, frame());
    const Primitive* const primitives = work.primitives.data();
    if (work.kind == Kind::fill) {
        contenders.push_back(contender("pixman", Role::peer, "pixman_fill", work, [=, bits = frame()](size_t i) {
            const Vertex* const v = primitives[i].vertex;
            pixman_fill(bits.pixels, bits.width, 32, v[0].x, v[0].y, v[1].x - v[0].x, v[1].y - v[0].y, primitives[i].color[0]);
        }));
        return;
    }
    const Operation operation = operationOf(work);
    if (!operation.known)
        return;
    const bool opaque = work.blend == 2 || work.blend >= 7 || (work.blend == 0 && work.content != Content::key);
    const Image source = opaque ? image(PIXMAN_x8r8g8b8, straight(work.content, work.textureSize))
                                : image(PIXMAN_a8r8g8b8, premultiplied(work.content, work.textureSize));
    Image mask;
    if (work.blend == 2) {
        const pixman_color_t half{0, 0, 0, 0x8080};
        mask.reset(pixman_image_create_solid_fill(&half), pixman_image_unref);
    }
    const pixman_op_t op = operation.op;
    if (work.kind == Kind::blit) {
        pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_NORMAL);
        contenders.push_back(contender("pixman", Role::peer, operation.note, work, [=](size_t i) {
            const Vertex* const v = primitives[i].vertex;
            pixman_image_composite32(op, source.get(), mask.get(), target.get(), primitives[i].uv[0].u >> 16,
                                     primitives[i].uv[0].v >> 16, 0, 0, v[0].x, v[0].y, v[1].x - v[0].x, v[1].y - v[0].y);
        }));
    }
    if (work.kind == Kind::stretch || work.kind == Kind::corners) {
        // One matrix for the scale; the place in the source goes with the call, counted in pixels drawn.
        const Primitive& p = primitives[0];
        const double width = p.vertex[1].x - p.vertex[0].x, height = p.vertex[1].y - p.vertex[0].y;
        const auto texels = [](int32_t fixed) { return fixed / 65536.0; };
        double m[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 1}};
        if (work.kind == Kind::stretch) {
            m[0][0] = texels(p.uv[1].u - p.uv[0].u) / width;
            m[1][1] = texels(p.uv[1].v - p.uv[0].v) / height;
        } else {
            m[0][0] = texels(p.uv[1].u - p.uv[0].u) / width, m[0][1] = texels(p.uv[2].u - p.uv[0].u) / height;
            m[1][0] = texels(p.uv[1].v - p.uv[0].v) / width, m[1][1] = texels(p.uv[2].v - p.uv[0].v) / height;
            m[0][2] = texels(p.uv[0].u), m[1][2] = texels(p.uv[0].v);
        }
        const pixman_transform_t transform = matrix(m);
        pixman_image_set_transform(source.get(), &transform);
        pixman_image_set_filter(source.get(), work.bilinear ? PIXMAN_FILTER_BILINEAR : PIXMAN_FILTER_NEAREST, nullptr, 0);
        pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_NORMAL);
        std::vector<std::pair<int, int>> starts;
        for (const Primitive& each : work.primitives)
            starts.emplace_back(work.kind == Kind::stretch ? int(texels(each.uv[0].u) / m[0][0]) : 0,
                                work.kind == Kind::stretch ? int(texels(each.uv[0].v) / m[1][1]) : 0);
        contenders.push_back(contender("pixman", Role::peer, operation.note, work, [=](size_t i) {
            const Vertex* const v = primitives[i].vertex;
            pixman_image_composite32(op, source.get(), mask.get(), target.get(), starts[i].first, starts[i].second, 0, 0, v[0].x,
                                     v[0].y, v[1].x - v[0].x, v[1].y - v[0].y);
        }));
    }
}

const Peer registration("pixman", make);

} // namespace

} // namespace bench
