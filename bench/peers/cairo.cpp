// cairo: paths and patterns on image surfaces.
#include "../scene.h"

#include <cairo.h>

#include <memory>

namespace bench {

namespace {

using SurfacePointer = std::shared_ptr<cairo_surface_t>;
using Context = std::shared_ptr<cairo_t>;
using Pattern = std::shared_ptr<cairo_pattern_t>;

SurfacePointer wrap(const Surface &surface, cairo_format_t format)
{
    return {cairo_image_surface_create_for_data(reinterpret_cast<unsigned char *>(surface.pixels), format, surface.width,
                                                surface.height, surface.width * 4),
            cairo_surface_destroy};
}

struct Operation {
    bool known;
    cairo_operator_t op;
    const char *note;
};

Operation operationOf(const Work &work)
{
    switch (work.blend) {
    case copy:
        return work.content == Content::key
                   ? Operation{true, CAIRO_OPERATOR_OVER, "OVER, premultiplied alpha 0 or 255 for the key"}
                   : Operation{true, CAIRO_OPERATOR_SOURCE, "no transparent test"};
    case alpha:
    case alphaFast: return {true, CAIRO_OPERATOR_OVER, "premultiplied source"};
    case constAlpha: return {true, CAIRO_OPERATOR_OVER, "no transparent test"};
    case add: return {true, CAIRO_OPERATOR_ADD, "no transparent test"};
    case multiply: return {true, CAIRO_OPERATOR_MULTIPLY, "no transparent test"};
    case screen: return {true, CAIRO_OPERATOR_SCREEN, "no transparent test"};
    case overlay: return {true, CAIRO_OPERATOR_OVERLAY, "no transparent test"};
    default: return {};
    }
}

double channel(uint32_t colour, int shift) { return (colour >> shift & 255) / 255.0; }
void setColour(cairo_t *context, uint32_t c) { cairo_set_source_rgb(context, channel(c, 16), channel(c, 8), channel(c, 0)); }

void trianglePath(cairo_t *context, const Vertex *v)
{
    cairo_move_to(context, v[0].x, v[0].y);
    cairo_line_to(context, v[1].x, v[1].y);
    cairo_line_to(context, v[2].x, v[2].y);
    cairo_close_path(context);
}

void make(const Work &work, Contenders &contenders)
{
    const SurfacePointer target = wrap(frame(), CAIRO_FORMAT_RGB24);
    const Context context(cairo_create(target.get()), cairo_destroy);
    cairo_t *const c = context.get();
    cairo_set_antialias(c, CAIRO_ANTIALIAS_NONE);
    const Primitive *const primitives = work.primitives.data();
    const auto add = [&](const char *note, auto draw) {
        contenders.push_back(contender(
            "cairo", Role::peer, note, work, [=, keep = std::pair(target, context)](size_t i) { draw(i); },
            [=, keep = target] { cairo_surface_flush(keep.get()); }));
        contenders.back().prepare = [=, keep = target] { cairo_surface_mark_dirty(keep.get()); };
    };
    const auto rectangle = [=](const Primitive &p) { cairo_rectangle(c, p.vertex[0].x, p.vertex[0].y, p.width(), p.height()); };
    switch (work.kind) {
    case Kind::fill:
        add("", [=](size_t i) {
            setColour(c, primitives[i].color[0]);
            rectangle(primitives[i]);
            cairo_fill(c);
        });
        return;
    case Kind::line:
        cairo_set_line_width(c, 1);
        add("stroke of width 1", [=](size_t i) {
            const Vertex *const v = primitives[i].vertex;
            setColour(c, primitives[i].color[0]);
            cairo_move_to(c, v[0].x + 0.5, v[0].y + 0.5);
            cairo_line_to(c, v[1].x + 0.5, v[1].y + 0.5);
            cairo_stroke(c);
        });
        return;
    case Kind::flatTriangle:
        add("", [=](size_t i) {
            setColour(c, primitives[i].color[0]);
            trianglePath(c, primitives[i].vertex);
            cairo_fill(c);
        });
        return;
    case Kind::gouraudTriangle:
        add("mesh pattern", [=](size_t i) {
            const Primitive &p = primitives[i];
            cairo_pattern_t *const mesh = cairo_pattern_create_mesh();
            cairo_mesh_pattern_begin_patch(mesh);
            cairo_mesh_pattern_move_to(mesh, p.vertex[0].x, p.vertex[0].y);
            cairo_mesh_pattern_line_to(mesh, p.vertex[1].x, p.vertex[1].y);
            cairo_mesh_pattern_line_to(mesh, p.vertex[2].x, p.vertex[2].y);
            for (unsigned v = 0; v < 3; ++v)
                cairo_mesh_pattern_set_corner_color_rgb(mesh, v, channel(p.color[v], 16), channel(p.color[v], 8),
                                                        channel(p.color[v], 0));
            cairo_mesh_pattern_end_patch(mesh);
            cairo_set_source(c, mesh);
            cairo_pattern_destroy(mesh);
            trianglePath(c, p.vertex);
            cairo_fill(c);
        });
        return;
    default: break;
    }
    const Operation operation = operationOf(work);
    if (!operation.known || work.kind == Kind::table || work.kind >= Kind::perspective)
        return;
    const bool withAlpha = work.weighsByAlpha() || (work.blend == copy && work.content == Content::key);
    const SurfacePointer source = withAlpha ? wrap(premultiplied(work.content, work.textureSize), CAIRO_FORMAT_ARGB32)
                                            : wrap(straight(work.content, work.textureSize), CAIRO_FORMAT_RGB24);
    cairo_set_operator(c, operation.op);
    std::vector<Pattern> patterns;
    for (const Map &map : work.maps) {
        Pattern pattern(cairo_pattern_create_for_surface(source.get()), cairo_pattern_destroy);
        const auto &m = map.m;
        const cairo_matrix_t matrix{m[0][0], m[1][0], m[0][1], m[1][1], m[0][2], m[1][2]};
        cairo_pattern_set_matrix(pattern.get(), &matrix);
        cairo_pattern_set_filter(pattern.get(), work.bilinear ? CAIRO_FILTER_BILINEAR : CAIRO_FILTER_NEAREST);
        cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
        patterns.push_back(std::move(pattern));
    }
    const bool constant = work.blend == constAlpha;
    switch (work.kind) {
    case Kind::blit:
        add(operation.note, [=](size_t i) {
            const Primitive &p = primitives[i];
            cairo_set_source_surface(c, source.get(), p.vertex[0].x - p.texelU(), p.vertex[0].y - p.texelV());
            cairo_pattern_set_filter(cairo_get_source(c), CAIRO_FILTER_NEAREST);
            rectangle(p);
            if (constant) {
                cairo_save(c);
                cairo_clip(c);
                cairo_paint_with_alpha(c, 128 / 255.0);
                cairo_restore(c);
            } else {
                cairo_fill(c);
            }
        });
        break;
    case Kind::stretch:
    case Kind::corners:
        add(operation.note, [=](size_t i) {
            cairo_set_source(c, patterns[i].get());
            rectangle(primitives[i]);
            cairo_fill(c);
        });
        break;
    case Kind::triangle:
        add(operation.note, [=](size_t i) {
            cairo_set_source(c, patterns[i].get());
            trianglePath(c, primitives[i].vertex);
            cairo_fill(c);
        });
        break;
    default: break;
    }
}

const Peer registration("cairo", make);

} // namespace

} // namespace bench
