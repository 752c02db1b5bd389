// SDL2: surface blits and the software renderer.
#include "../scene.h"

#include <SDL.h>

#include <memory>

namespace bench {

namespace {

using SurfacePointer = std::shared_ptr<SDL_Surface>;

SurfacePointer wrap(const Surface &surface, SDL_PixelFormatEnum format)
{
    return {SDL_CreateRGBSurfaceWithFormatFrom(surface.pixels, surface.width, surface.height, 32, surface.width * 4, format),
            SDL_FreeSurface};
}

struct Operation {
    bool known;
    SDL_BlendMode mode;
    const char *note;
};

Operation operationOf(const Work &work)
{
    switch (work.blend) {
    case copy: return {true, SDL_BLENDMODE_NONE, work.content == Content::key ? "colour key" : "no transparent test"};
    case alpha:
    case alphaFast: return {true, SDL_BLENDMODE_BLEND, ""};
    case constAlpha: return {true, SDL_BLENDMODE_BLEND, "no transparent test"};
    case add: return {true, SDL_BLENDMODE_ADD, "source times its alpha"};
    case multiply: return {true, SDL_BLENDMODE_MOD, "no transparent test"};
    default: return {};
    }
}

SDL_Rect rectOf(const Primitive &p) { return {p.vertex[0].x, p.vertex[0].y, p.width(), p.height()}; }

SDL_Color colourOf(uint32_t c) { return {uint8_t(c >> 16), uint8_t(c >> 8), uint8_t(c), uint8_t(c >> 24)}; }

// What the software renderer can: triangles, textured without filter or of colours, and lines. It queues; the queue is drawn at
// the end of a turn.
void makeRenderer(const Work &work, const SurfacePointer &target, Contenders &contenders)
{
    const std::shared_ptr<SDL_Renderer> renderer(SDL_CreateSoftwareRenderer(target.get()), SDL_DestroyRenderer);
    const auto flush = [=, keep = target] { SDL_RenderFlush(renderer.get()); };
    const Primitive *const primitives = work.primitives.data();
    if (work.kind == Kind::line) {
        contenders.push_back(contender(
            "sdl", Role::peer, "queued", work,
            [=](size_t i) {
                const Primitive &p = primitives[i];
                const SDL_Color c = colourOf(p.color[0]);
                SDL_SetRenderDrawColor(renderer.get(), c.r, c.g, c.b, c.a);
                SDL_RenderDrawLine(renderer.get(), p.vertex[0].x, p.vertex[0].y, p.vertex[1].x, p.vertex[1].y);
            },
            flush));
        return;
    }
    std::shared_ptr<SDL_Texture> texture;
    const bool textured = work.kind == Kind::triangle;
    if (textured) {
        const SurfacePointer source = wrap(straight(work.content, work.textureSize),
                                           work.weighsByAlpha() ? SDL_PIXELFORMAT_ARGB8888 : SDL_PIXELFORMAT_RGB888);
        texture = {SDL_CreateTextureFromSurface(renderer.get(), source.get()), SDL_DestroyTexture};
        SDL_SetTextureBlendMode(texture.get(), operationOf(work).mode);
    }
    std::vector<SDL_Vertex> vertices;
    for (const Primitive &p : work.primitives) {
        SDL_Vertex corner[4]{};
        const bool rectangle = work.kind == Kind::gouraudRect;
        for (int v = 0; v < (rectangle ? 4 : 3); ++v) {
            const Vertex place = rectangle ? Vertex{p.vertex[v & 1].x, p.vertex[v >> 1].y, 0} : p.vertex[v];
            corner[v].position = {float(place.x), float(place.y)};
            corner[v].color =
                textured ? SDL_Color{255, 255, 255, 255} : colourOf(p.color[work.kind == Kind::flatTriangle ? 0 : v]);
            const float size = 65536.0f * float(work.textureSize);
            corner[v].tex_coord = {float(p.uv[v].u) / size, float(p.uv[v].v) / size};
        }
        for (int v : {0, 1, 2})
            vertices.push_back(corner[v]);
        for (int v : {1, 3, 2})
            if (rectangle)
                vertices.push_back(corner[v]);
    }
    const int count = work.kind == Kind::gouraudRect ? 6 : 3;
    contenders.push_back(contender(
        "sdl", Role::peer, count == 6 ? "queued; two triangles" : "queued", work,
        [=](size_t i) { SDL_RenderGeometry(renderer.get(), texture.get(), &vertices[i * size_t(count)], count, nullptr, 0); },
        flush));
}

void make(const Work &work, Contenders &contenders)
{
    const SurfacePointer target = wrap(frame(), SDL_PIXELFORMAT_RGB888);
    const Primitive *const primitives = work.primitives.data();
    if (work.kind == Kind::fill) {
        contenders.push_back(contender("sdl", Role::peer, "SDL_FillRect", work, [=](size_t i) {
            const SDL_Rect rect = rectOf(primitives[i]);
            SDL_FillRect(target.get(), &rect, primitives[i].color[0]);
        }));
        return;
    }
    const Operation operation = operationOf(work);
    if (!operation.known)
        return;
    const bool colours = work.kind == Kind::flatTriangle || work.kind == Kind::gouraudTriangle || work.kind == Kind::gouraudRect;
    // Its textured triangles overflow where they are large.
    const bool textured = work.kind == Kind::triangle && !work.bilinear && work.primitives.size() > 1;
    if (colours || textured || work.kind == Kind::line) {
        makeRenderer(work, target, contenders);
        return;
    }
    if (work.kind == Kind::blit || work.kind == Kind::stretch) {
        const bool withAlpha = work.weighsByAlpha() || work.blend == add || work.blend == multiply;
        const bool keyed = work.blend == copy && work.content == Content::key;
        const SurfacePointer source =
            wrap(straight(work.content, work.textureSize), withAlpha ? SDL_PIXELFORMAT_ARGB8888 : SDL_PIXELFORMAT_RGB888);
        SDL_SetSurfaceBlendMode(source.get(), operation.mode);
        if (keyed)
            SDL_SetColorKey(source.get(), SDL_TRUE, 0);
        if (work.blend == constAlpha)
            SDL_SetSurfaceAlphaMod(source.get(), 128);
        if (work.kind == Kind::blit) {
            contenders.push_back(contender("sdl", Role::peer, operation.note, work, [=](size_t i) {
                const Primitive &p = primitives[i];
                const SDL_Rect from{p.texelU(), p.texelV(), p.width(), p.height()};
                SDL_Rect to = rectOf(p);
                SDL_BlitSurface(source.get(), &from, target.get(), &to);
            }));
        } else if (!work.bilinear) {
            contenders.push_back(contender("sdl", Role::peer, operation.note, work, [=](size_t i) {
                const Primitive &p = primitives[i];
                const SDL_Rect from{p.texelU(), p.texelV(), p.sourceWidth(), p.sourceHeight()};
                SDL_Rect to = rectOf(p);
                SDL_BlitScaled(source.get(), &from, target.get(), &to);
            }));
        } else if (work.blend == copy) {
            contenders.push_back(contender("sdl", Role::peer, operation.note, work, [=](size_t i) {
                const Primitive &p = primitives[i];
                const SDL_Rect from{p.texelU(), p.texelV(), p.sourceWidth(), p.sourceHeight()}, to = rectOf(p);
                SDL_SoftStretchLinear(source.get(), &from, target.get(), &to);
            }));
        }
    }
}

const Peer registration("sdl", make);

} // namespace

} // namespace bench
