// pixman: the compositor under cairo and the X server.
#include "../scene.h"

#include <pixman.h>

#include <memory>

namespace bench {

namespace {

using Image = std::shared_ptr<pixman_image_t>;

Image image(pixman_format_code_t format, const Surface &surface)
{
    return {pixman_image_create_bits(format, surface.width, surface.height, surface.pixels, surface.width * 4),
            pixman_image_unref};
}

pixman_transform_t transformOf(const Map &map)
{
    pixman_f_transform_t exact;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            exact.m[i][j] = map.m[i][j] / map.m[2][2];
    pixman_transform_t fixed;
    pixman_transform_from_pixman_f_transform(&fixed, &exact);
    return fixed;
}

struct Operation {
    bool known;
    pixman_op_t op;
    const char *note;
};

Operation operationOf(const Work &work)
{
    switch (work.blend) {
    case copy:
        return work.content == Content::key ? Operation{true, PIXMAN_OP_OVER, "OVER, premultiplied alpha 0 or 255 for the key"}
                                            : Operation{true, PIXMAN_OP_SRC, "SRC, no transparent test"};
    case alpha:
    case alphaFast: return {true, PIXMAN_OP_OVER, "OVER, premultiplied source"};
    case constAlpha: return {true, PIXMAN_OP_OVER, "OVER with a solid mask, no transparent test"};
    case add: return {true, PIXMAN_OP_ADD, "ADD, no transparent test"};
    case multiply: return {true, PIXMAN_OP_MULTIPLY, "MULTIPLY, opaque source"};
    case screen: return {true, PIXMAN_OP_SCREEN, "SCREEN, opaque source"};
    case overlay: return {true, PIXMAN_OP_OVERLAY, "OVERLAY, opaque source"};
    default: return {};
    }
}

void make(const Work &work, Contenders &contenders)
{
    const Image target = image(PIXMAN_x8r8g8b8, frame());
    const Primitive *const primitives = work.primitives.data();
    if (work.kind == Kind::fill) {
        contenders.push_back(contender("pixman", Role::peer, "pixman_fill", work, [=, bits = frame()](size_t i) {
            const Primitive &p = primitives[i];
            pixman_fill(bits.pixels, bits.width, 32, p.vertex[0].x, p.vertex[0].y, p.width(), p.height(), p.color[0]);
        }));
        return;
    }
    if (work.kind == Kind::flatTriangle) {
        std::vector<pixman_triangle_t> triangles;
        std::vector<Image> colours;
        const auto point = [](const Vertex &v) {
            return pixman_point_fixed_t{pixman_int_to_fixed(v.x), pixman_int_to_fixed(v.y)};
        };
        for (const Primitive &p : work.primitives) {
            triangles.push_back({point(p.vertex[0]), point(p.vertex[1]), point(p.vertex[2])});
            const auto channel = [c = p.color[0]](int shift) { return uint16_t((c >> shift & 255) * 257); };
            const pixman_color_t colour{channel(16), channel(8), channel(0), 0xFFFF};
            colours.emplace_back(pixman_image_create_solid_fill(&colour), pixman_image_unref);
        }
        contenders.push_back(contender("pixman", Role::peer, "through a bit mask", work, [=](size_t i) {
            pixman_composite_triangles(PIXMAN_OP_OVER, colours[i].get(), target.get(), PIXMAN_a1, 0, 0, 0, 0, 1, &triangles[i]);
        }));
        return;
    }
    const Operation operation = operationOf(work);
    if (!operation.known)
        return;
    const bool opaque =
        work.blend == constAlpha || work.blend >= multiply || (work.blend == copy && work.content != Content::key);
    const Image source = opaque ? image(PIXMAN_x8r8g8b8, straight(work.content, work.textureSize))
                                : image(PIXMAN_a8r8g8b8, premultiplied(work.content, work.textureSize));
    Image mask;
    if (work.blend == constAlpha) {
        const pixman_color_t half{0, 0, 0, 0x8080};
        mask.reset(pixman_image_create_solid_fill(&half), pixman_image_unref);
    }
    const pixman_op_t op = operation.op;
    if (work.kind == Kind::blit) {
        pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_NORMAL);
        contenders.push_back(contender("pixman", Role::peer, operation.note, work, [=](size_t i) {
            const Primitive &p = primitives[i];
            pixman_image_composite32(op, source.get(), mask.get(), target.get(), p.texelU(), p.texelV(), 0, 0, p.vertex[0].x,
                                     p.vertex[0].y, p.width(), p.height());
        }));
    }
    const bool mapped = work.kind == Kind::corners || work.kind == Kind::table || work.kind == Kind::perspective;
    if (work.kind == Kind::stretch || mapped) {
        // One matrix for the scale; the place in the source goes with the call, counted in pixels drawn.
        Map map = work.maps[0];
        if (!mapped)
            map.m[0][2] = map.m[1][2] = 0;
        const pixman_transform_t transform = transformOf(map);
        pixman_image_set_transform(source.get(), &transform);
        pixman_image_set_filter(source.get(), work.bilinear ? PIXMAN_FILTER_BILINEAR : PIXMAN_FILTER_NEAREST, nullptr, 0);
        pixman_image_set_repeat(source.get(), mapped ? PIXMAN_REPEAT_PAD : PIXMAN_REPEAT_NORMAL);
        std::vector<std::pair<int, int>> starts;
        for (const Primitive &p : work.primitives)
            starts.emplace_back(mapped ? 0 : int(p.texelU() / map.m[0][0]), mapped ? 0 : int(p.texelV() / map.m[1][1]));
        contenders.push_back(contender("pixman", Role::peer, operation.note, work, [=](size_t i) {
            const Primitive &p = primitives[i];
            pixman_image_composite32(op, source.get(), mask.get(), target.get(), starts[i].first, starts[i].second, 0, 0,
                                     p.vertex[0].x, p.vertex[0].y, p.width(), p.height());
        }));
    }
}

const Peer registration("pixman", make);

} // namespace

} // namespace bench
