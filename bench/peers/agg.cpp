// Anti-Grain Geometry, without its anti-aliasing where it lets that off.
#include "../scene.h"

#include <agg_image_accessors.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_base.h>
#include <agg_renderer_primitives.h>
#include <agg_renderer_scanline.h>
#include <agg_rendering_buffer.h>
#include <agg_scanline_bin.h>
#include <agg_span_allocator.h>
#include <agg_span_gouraud_rgba.h>
#include <agg_span_image_filter_rgba.h>
#include <agg_span_interpolator_linear.h>

#include <memory>

namespace bench {

namespace {

using Format = agg::pixfmt_bgra32_pre;
using Renderer = agg::renderer_base<Format>;
using Composite = agg::comp_op_adaptor_rgba_pre<agg::rgba8, agg::order_bgra>;
using CompositeFormat = agg::pixfmt_custom_blend_rgba<Composite, agg::rendering_buffer>;
using CompositeRenderer = agg::renderer_base<CompositeFormat>;
using Interpolator = agg::span_interpolator_linear<>;

agg::rendering_buffer bufferOf(const Surface &surface)
{
    return {reinterpret_cast<agg::int8u *>(surface.pixels), unsigned(surface.width), unsigned(surface.height), surface.width * 4};
}

agg::rgba8 colourOf(uint32_t c) { return {c >> 16 & 255, c >> 8 & 255, c & 255, c >> 24}; }

struct Canvas {
    agg::rendering_buffer target = bufferOf(frame()), source;
    Format format{target}, sourceFormat{source};
    CompositeFormat compositeFormat{target};
    Renderer renderer{format};
    CompositeRenderer composite{compositeFormat};
    agg::rasterizer_scanline_aa<> rasterizer;
    agg::scanline_bin scanline;
    agg::span_allocator<agg::rgba8> allocator;
    agg::renderer_primitives<Renderer> primitives{renderer};

    explicit Canvas(const Work &work)
        : source(bufferOf(work.weighsByAlpha() || work.content == Content::key ? premultiplied(work.content, work.textureSize)
                                                                               : straight(work.content, work.textureSize)))
    {}

    void polygon(const Vertex *v, int count)
    {
        rasterizer.reset();
        rasterizer.move_to_d(v[0].x, v[0].y);
        for (int i = 1; i < count; ++i)
            rasterizer.line_to_d(v[i].x, v[i].y);
    }
    template <class Span>
    void fill(Span &span)
    {
        agg::render_scanlines_bin(rasterizer, scanline, renderer, allocator, span);
    }
};

void make(const Work &work, Contenders &contenders)
{
    const auto canvas = std::make_shared<Canvas>(work);
    const Primitive *const primitives = work.primitives.data();
    const auto add = [&](const char *note, auto draw) {
        contenders.push_back(contender("agg", Role::peer, note, work, [=](size_t i) { draw(*canvas, primitives[i], i); }));
    };
    switch (work.kind) {
    case Kind::fill:
        add("copy_bar", [](Canvas &c, const Primitive &p, size_t) {
            c.renderer.copy_bar(p.vertex[0].x, p.vertex[0].y, p.vertex[1].x - 1, p.vertex[1].y - 1, colourOf(p.color[0]));
        });
        return;
    case Kind::line:
        add("renderer_primitives", [](Canvas &c, const Primitive &p, size_t) {
            using Primitives = agg::renderer_primitives<Renderer>;
            c.primitives.line_color(colourOf(p.color[0]));
            c.primitives.line(Primitives::coord(p.vertex[0].x), Primitives::coord(p.vertex[0].y),
                              Primitives::coord(p.vertex[1].x), Primitives::coord(p.vertex[1].y));
        });
        return;
    case Kind::flatTriangle:
        add("binary scanlines", [](Canvas &c, const Primitive &p, size_t) {
            c.polygon(p.vertex, 3);
            agg::render_scanlines_bin_solid(c.rasterizer, c.scanline, c.renderer, colourOf(p.color[0]));
        });
        return;
    case Kind::gouraudTriangle:
        add("binary scanlines", [](Canvas &c, const Primitive &p, size_t) {
            const Vertex *const v = p.vertex;
            agg::span_gouraud_rgba<agg::rgba8> span(colourOf(p.color[0]), colourOf(p.color[1]), colourOf(p.color[2]), v[0].x,
                                                    v[0].y, v[1].x, v[1].y, v[2].x, v[2].y);
            c.polygon(v, 3);
            c.fill(span);
        });
        return;
    default: break;
    }
    if (work.kind == Kind::blit) {
        const auto composite = [&](agg::comp_op_e op) {
            add("no transparent test", [op](Canvas &c, const Primitive &p, size_t) {
                c.compositeFormat.comp_op(op);
                const agg::rect_i from(p.texelU(), p.texelV(), p.texelU() + p.width() - 1, p.texelV() + p.height() - 1);
                c.composite.blend_from(c.sourceFormat, &from, p.vertex[0].x - from.x1, p.vertex[0].y - from.y1);
            });
        };
        switch (work.blend) {
        case copy:
        case alpha:
        case alphaFast:
            add("premultiplied source", [](Canvas &c, const Primitive &p, size_t) {
                const agg::rect_i from(p.texelU(), p.texelV(), p.texelU() + p.width() - 1, p.texelV() + p.height() - 1);
                c.renderer.blend_from(c.sourceFormat, &from, p.vertex[0].x - from.x1, p.vertex[0].y - from.y1);
            });
            break;
        case constAlpha:
            add("no transparent test", [](Canvas &c, const Primitive &p, size_t) {
                const agg::rect_i from(p.texelU(), p.texelV(), p.texelU() + p.width() - 1, p.texelV() + p.height() - 1);
                c.renderer.blend_from(c.sourceFormat, &from, p.vertex[0].x - from.x1, p.vertex[0].y - from.y1, 128);
            });
            break;
        case Blend::add: composite(agg::comp_op_plus); break;
        case multiply: composite(agg::comp_op_multiply); break;
        case screen: composite(agg::comp_op_screen); break;
        case overlay: composite(agg::comp_op_overlay); break;
        default: break;
        }
    }
    if ((work.kind == Kind::stretch || work.kind == Kind::corners || work.kind == Kind::triangle) &&
        (work.blend == copy || work.weighsByAlpha())) {
        const auto transforms = std::make_shared<std::vector<agg::trans_affine>>();
        for (const Map &map : work.maps) {
            const auto &m = map.m;
            transforms->emplace_back(m[0][0], m[1][0], m[0][1], m[1][1], m[0][2], m[1][2]);
        }
        add("binary scanlines; premultiplied source",
            [transforms, bilinear = work.bilinear, triangle = work.kind == Kind::triangle](Canvas &c, const Primitive &p,
                                                                                           size_t i) {
                using Accessor = agg::image_accessor_clone<Format>;
                Interpolator interpolator((*transforms)[i]);
                Accessor accessor(c.sourceFormat);
                const Vertex box[4] = {
                    p.vertex[0], {p.vertex[1].x, p.vertex[0].y, 0}, p.vertex[1], {p.vertex[0].x, p.vertex[1].y, 0}};
                c.polygon(triangle ? p.vertex : box, triangle ? 3 : 4);
                if (bilinear) {
                    agg::span_image_filter_rgba_bilinear<Accessor, Interpolator> span(accessor, interpolator);
                    c.fill(span);
                } else {
                    agg::span_image_filter_rgba_nn<Accessor, Interpolator> span(accessor, interpolator);
                    c.fill(span);
                }
            });
    }
}

const Peer registration("agg", make);

} // namespace

} // namespace bench
