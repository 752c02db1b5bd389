// Blend2D: loops compiled at run time. No Debian package has it.
#include "../hold.h"
#include "../scene.h"

#include <blend2d/blend2d.h>

#include <memory>

namespace bench {

namespace {

BLImage wrap(const Surface &surface, BLFormat format)
{
    BLImage image;
    image.create_from_data(surface.width, surface.height, format, surface.pixels, surface.width * 4);
    return image;
}

struct Operation {
    bool known;
    BLCompOp op;
    const char *note;
};

Operation operationOf(const Work &work)
{
    switch (work.blend) {
    case copy:
        return work.content == Content::key
                   ? Operation{true, BL_COMP_OP_SRC_OVER, "SRC_OVER, premultiplied alpha 0 or 255 for the key"}
                   : Operation{true, BL_COMP_OP_SRC_COPY, "no transparent test"};
    case alpha:
    case alphaFast: return {true, BL_COMP_OP_SRC_OVER, "premultiplied source"};
    case constAlpha: return {true, BL_COMP_OP_SRC_OVER, "no transparent test"};
    case add: return {true, BL_COMP_OP_PLUS, "no transparent test"};
    case subtract: return {true, BL_COMP_OP_MINUS, "no transparent test"};
    case multiply: return {true, BL_COMP_OP_MULTIPLY, "no transparent test"};
    case screen: return {true, BL_COMP_OP_SCREEN, "no transparent test"};
    case overlay: return {true, BL_COMP_OP_OVERLAY, "no transparent test"};
    default: return {};
    }
}

// From the texture to the frame.
BLMatrix2D matrixOf(const Map &map)
{
    const Map back = inverse(map);
    const auto &m = back.m;
    return {m[0][0], m[1][0], m[0][1], m[1][1], m[0][2], m[1][2]};
}

// A context for each turn, as a user would have it for each frame. One that is held to other features than the machine's compiles
// its loops for itself and forgets them at its end: it stays open.
struct Canvas {
    BLImage target = wrap(frame(), BL_FORMAT_XRGB32);
    BLContextCreateInfo info{};
    BLContext held;

    Canvas()
    {
        if (!isHeldToV3())
            return;
        info.flags = BL_CONTEXT_CREATE_FLAG_ISOLATED_JIT_RUNTIME | BL_CONTEXT_CREATE_FLAG_OVERRIDE_CPU_FEATURES;
        info.cpu_features = BL_RUNTIME_CPU_FEATURE_X86_SSE2 | BL_RUNTIME_CPU_FEATURE_X86_SSE3 | BL_RUNTIME_CPU_FEATURE_X86_SSSE3 |
                            BL_RUNTIME_CPU_FEATURE_X86_SSE4_1 | BL_RUNTIME_CPU_FEATURE_X86_SSE4_2 |
                            BL_RUNTIME_CPU_FEATURE_X86_AVX | BL_RUNTIME_CPU_FEATURE_X86_AVX2;
        held.begin(target, info);
    }

    template <class Use>
    void with(Use use)
    {
        if (isHeldToV3()) {
            use(held);
            held.flush(BL_CONTEXT_FLUSH_SYNC);
        } else {
            BLContext context(target);
            use(context);
            context.end();
        }
    }
};

BLTriangle triangleOf(const Primitive &p)
{
    const Vertex *const v = p.vertex;
    return BLTriangle(v[0].x, v[0].y, v[1].x, v[1].y, v[2].x, v[2].y);
}

void make(const Work &work, Contenders &contenders)
{
    const auto canvas = std::make_shared<Canvas>();
    const Operation operation = operationOf(work);
    const bool opaque = !work.weighsByAlpha() && !(work.blend == copy && work.content == Content::key);
    const auto add = [&](const char *note, auto draw) {
        const long mask = long(work.primitives.size()) - 1;
        contenders.push_back(contender("blend2d", Role::peer, note, work, [](size_t) {}));
        contenders.back().run = [=, primitives = work.primitives.data(), op = operation.op, bilinear = work.bilinear,
                                 constant = work.blend == constAlpha](long calls) {
            canvas->with([&](BLContext &c) {
                c.set_comp_op(op);
                c.set_pattern_quality(bilinear ? BL_PATTERN_QUALITY_BILINEAR : BL_PATTERN_QUALITY_NEAREST);
                if (constant)
                    c.set_global_alpha(128 / 255.0);
                for (long i = 0; i < calls; ++i)
                    draw(c, primitives[i & mask], size_t(i & mask));
            });
        };
    };
    switch (work.kind) {
    case Kind::fill:
        add("", [](BLContext &c, const Primitive &p, size_t) {
            c.fill_rect(BLRectI(p.vertex[0].x, p.vertex[0].y, p.width(), p.height()), BLRgba32(p.color[0]));
        });
        return;
    case Kind::flatTriangle:
        add("anti-aliased",
            [](BLContext &c, const Primitive &p, size_t) { c.fill_triangle(triangleOf(p), BLRgba32(p.color[0])); });
        return;
    default: break;
    }
    if (!operation.known)
        return;
    const BLImage source = opaque ? wrap(straight(work.content, work.textureSize), BL_FORMAT_XRGB32)
                                  : wrap(premultiplied(work.content, work.textureSize), BL_FORMAT_PRGB32);
    std::vector<BLPattern> patterns;
    if (work.kind == Kind::corners || work.kind == Kind::triangle)
        for (const Map &map : work.maps)
            patterns.emplace_back(source, BL_EXTEND_MODE_REPEAT, matrixOf(map));
    switch (work.kind) {
    case Kind::blit:
        add(operation.note, [=](BLContext &c, const Primitive &p, size_t) {
            c.blit_image(BLPointI(p.vertex[0].x, p.vertex[0].y), source, BLRectI(p.texelU(), p.texelV(), p.width(), p.height()));
        });
        break;
    case Kind::stretch:
        add(operation.note, [=](BLContext &c, const Primitive &p, size_t) {
            c.blit_image(BLRectI(p.vertex[0].x, p.vertex[0].y, p.width(), p.height()), source,
                         BLRectI(p.texelU(), p.texelV(), p.sourceWidth(), p.sourceHeight()));
        });
        break;
    case Kind::corners:
        add(operation.note, [=](BLContext &c, const Primitive &p, size_t i) {
            c.fill_rect(BLRectI(p.vertex[0].x, p.vertex[0].y, p.width(), p.height()), patterns[i]);
        });
        break;
    case Kind::triangle:
        add("anti-aliased", [=](BLContext &c, const Primitive &p, size_t i) { c.fill_triangle(triangleOf(p), patterns[i]); });
        contenders.back().tolerance = 6; // a rim of half covered pixels about each
        break;
    default: break;
    }
}

const Peer registration("blend2d", make);

} // namespace

} // namespace bench
