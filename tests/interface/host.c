/*
 * A host, and whether it and the library mean the same `rs`. Built in three ways: linked as usual; linked at a fixed address, where the
 * linker moves `rs` into the program; and, with HOST_LOADS, loading the library (its path is the argument) at run time. Valid as C and
 * as C++.
 */
#include <ninefold/ninefold.h>

#include <stdio.h>

#ifdef HOST_LOADS
#include <dlfcn.h>
#define REACH(name) ((__typeof__(&name))find(#name))
static void *library;
static void *find(const char *name)
{
    void *symbol = dlsym(library, name);
    if (!symbol)
        printf("%s is not exported\n", name);
    return symbol;
}
#else
#define REACH(name) (&name)
#endif

#define CHECK(condition)                                                                                                         \
    do {                                                                                                                         \
        if (!(condition)) {                                                                                                      \
            printf("line %d: %s\n", __LINE__, #condition);                                                                       \
            return 1;                                                                                                            \
        }                                                                                                                        \
    } while (0)

int main(int count, char **arguments)
{
#ifdef HOST_LOADS
    CHECK(count == 2);
    library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    CHECK(library);
#else
    (void)count;
    (void)arguments;
#endif
    RenderState *state = REACH(rs);
    CHECK(state->shapeMode == 0 && !state->frameBuffer);

    /* the library writes, the host reads */
    REACH(SetShapeMode)(NINEFOLD_SHAPE_RECTANGLE);
    CHECK(state->shapeMode == 1);
    REACH(SetBlendMode)(NINEFOLD_BLEND_ADD);
    CHECK(state->blendMode == 5);
    REACH(SetBlendModeMulti)(NINEFOLD_MULTI_OP_ADD);
    CHECK(state->blendModeMulti == 5 && state->multiFunc);

    /* the host writes, the library reads */
    state->filterMode = NINEFOLD_FILTER_BILINEAR;
    state->rectOptMode = NINEFOLD_RECT_STRETCH;
    state->multiMode = NINEFOLD_MULTI_COLOUR;
    CHECK(REACH(CreateDrawCode)() == 0x241669);

    /* both, through a kernel: a flat rectangle */
    Texture *frame = REACH(CreateTexture)(16, 16);
    Texture *other = REACH(CreateTexture)(1, 1);
    REACH(ClearTexture)(frame);
    REACH(SetFrameBuffer)(other);
    CHECK(REACH(SetFrameBuffer)(frame) == other);
    CHECK(state->frameBuffer == frame && state->dstPixels == frame->pixels && state->dstShift == 4 && state->dstPitch == 16);
    state->clipRight = state->clipBottom = 16;
    state->color[0] = 0xFF123456;
    state->vertex[0].x = 3;
    state->vertex[0].y = 5;
    state->vertex[1].x = 4;
    state->vertex[1].y = 7;
    REACH(SetFilterMode)(NINEFOLD_FILTER_FLAT);
    REACH(SetBlendMode)(NINEFOLD_BLEND_COPY);
    CHECK(REACH(CreateDrawCode)() == 0xDC0369);
    REACH(MakeDrawFuncTable)();
    DrawFunc draw = REACH(SearchDrawFunc)(REACH(CreateDrawCode)());
    CHECK(draw);
    draw();
    int drawn = 0;
    for (int i = 0; i < 16 * 16; i++)
        drawn += frame->pixels[i] != 0;
    CHECK(drawn == 2 && frame->pixels[5 * 16 + 3] == 0xFF123456 && frame->pixels[6 * 16 + 3] == 0xFF123456);

    REACH(DeleteTexture)(frame);
    REACH(DeleteTexture)(other);
    return 0;
}
