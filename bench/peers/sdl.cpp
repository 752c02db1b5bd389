// SDL2: surface blits and the software renderer.
#include "../scene.h"

#include <SDL.h>

#include <memory>

namespace bench {

namespace {

using SurfacePointer = std::shared_ptr<SDL_Surface>;

SurfacePointer wrap(const Surface& surface, SDL_PixelFormatEnum format)
{
    return {SDL_CreateRGBSurfaceWithFormatFrom(surface.pixels, surface.width, surface.height, 32, surface.width * 4, format),
            SDL_FreeSurface};
}

struct Operation {
    bool known;
    SDL_BlendMode mode;
    const char* note;
};

Operation operationOf(const Work& work)
{
    switch (work.blend) {
    case 0: return {true, SDL_BLENDMODE_NONE, work.content == Content::key ? "colour key" : "no transparent test"};
    case 1: return {true, SDL_BLENDMODE_BLEND, ""};
    case 2: return {true, SDL_BLENDMODE_BLEND, "no transparent test"};
    case 5: return {true, SDL_BLENDMODE_ADD, "source times its alpha"};
    case 7: return {true, SDL_BLENDMODE_MOD, "no transparent test"};
    default: return {};
    }
}

SDL_Rect rectOf(const Primitive& p)
{
    return {p.vertex[0].x, p.vertex[0].y, p.vertex[1].x - p.vertex[0].x, p.vertex[1].y - p.vertex[0].y};
}

// Whole texels of the source rectangle; parts of texels are lost.
SDL_Rect sourceOf(const Primitive& p, bool stretched)
{
    const SDL_Rect drawn = rectOf(p);
    SDL_Rect source{p.uv[0].u >> 16, p.uv[0].v >> 16, drawn.w, drawn.h};
    if (stretched)
        source.w = (p.uv[1].u - p.uv[0].u + 0x8000) >> 16, source.h = (p.uv[1].v - p.uv[0].v + 0x8000) >> 16;
    return source;
}

void make(const Work& work, Contenders& contenders)
{
    const SurfacePointer target = wrap(frame(), SDL_PIXELFORMAT_RGB888);
    const Primitive* const primitives = work.primitives.data();
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
    if (work.kind == Kind::blit || work.kind == Kind::stretch) {
        const bool withAlpha = work.blend == 1 || work.blend == 5 || work.blend == 7;
        const bool keyed = work.blend == 0 && work.content == Content::key;
        const SurfacePointer source =
            wrap(straight(work.content, work.textureSize), withAlpha ? SDL_PIXELFORMAT_ARGB8888 : SDL_PIXELFORMAT_RGB888);
        SDL_SetSurfaceBlendMode(source.get(), operation.mode);
        if (keyed)
            SDL_SetColorKey(source.get(), SDL_TRUE, 0);
        if (work.blend == 2)
            SDL_SetSurfaceAlphaMod(source.get(), 128);
        if (work.kind == Kind::blit) {
            contenders.push_back(contender("sdl", Role::peer, operation.note, work, [=](size_t i) {
                const SDL_Rect from = sourceOf(primitives[i], false);
                SDL_Rect to = rectOf(primitives[i]);
                SDL_BlitSurface(source.get(), &from, target.get(), &to);
            }));
        } else if (!work.bilinear) {
            contenders.push_back(contender("sdl", Role::peer, operation.note, work, [=](size_t i) {
                const SDL_Rect from = sourceOf(primitives[i], true);
                SDL_Rect to = rectOf(primitives[i]);
                SDL_BlitScaled(source.get(), &from, target.get(), &to);
            }));
        } else if (work.blend == 0) {
            contenders.push_back(contender("sdl", Role::peer, operation.note, work, [=](size_t i) {
                const SDL_Rect from = sourceOf(primitives[i], true), to = rectOf(primitives[i]);
                SDL_SoftStretchLinear(source.get(), &from, target.get(), &to);
            }));
        }
    }
}

const Peer registration("sdl", make);

} // namespace

} // namespace bench
