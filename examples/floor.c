/*
 * A floor in perspective with mip levels, pillars, and a horse that walks behind and before them. The arrow keys, or a click on the
 * floor, send the horse. No painter's order: pillars come first, the nearest before the others, and mark in the Shahei plane what
 * they cover, so that the floor draws no pixel twice; the priority plane then tells the horse what is nearer than it is.
 *
 *     cc floor.c $(pkg-config --cflags --libs ninefold-kit sdl2) -lm -o floor
 */
#include "window.h"

#include <math.h>

enum {
    WIDTH = 640,
    HEIGHT = 480,
    HORIZON = 150, /* row */
    LENS = 420, /* pixels a unit at depth 1 */
    EYE = 100, /* height of the eye over the floor, hundredths of a unit */
    TILES = 15, /* tiles of one unit: to either side, */
    ROWS = 22, /* and into the distance, */
    NEAREST = 1, /* from this depth */
    SLICES = 12 /* of a pillar */
};

static const double pi = 3.14159265358979;

typedef struct Place {
    double x, depth; /* on the floor, units: to the right of the eye, and away from it */
} Place;

static const Place pillars[] = {{-0.9, 2.2}, {1.4, 2.9}, {-2.6, 4.2}, {0.5, 5}, {3.6, 6}, {-1.2, 7.5}}; /* nearest first */
static const int pillarCount = sizeof pillars / sizeof *pillars;

static int32_t column(Place at) { return (int32_t)floor(WIDTH / 2.0 + LENS * at.x / at.depth); }
static int32_t row(double depth) { return (int32_t)floor(HORIZON + LENS * EYE / 100.0 / depth); }
/* What is nearer has the lower priority number; 255 is that of the empty plane. */
static uint32_t priority(double depth) { return (uint32_t)fmin(254, depth * 20); }

/* The floor's tiles, each of two triangles: a primitive chooses one pair of mip levels, so the tiles near and far have their own.
 * Positions of texels start anew with each tile, which keeps them small, as perspective wants them. */
static int drawFloor(Texture *bricks)
{
    static NfkMeshVertex vertices[4 * 2 * TILES * ROWS];
    static uint32_t indices[6 * 2 * TILES * ROWS];
    uint32_t count = 0;
    for (int away = 0; away < ROWS; ++away)
        for (int aside = -TILES; aside < TILES; ++aside, ++count) {
            const uint32_t i = 4 * count;
            for (uint32_t corner = 0; corner < 4; ++corner) {
                const double depth = NEAREST + away + (int)(corner >> 1);
                const Place at = {aside + (int)(corner & 1), depth};
                vertices[i + corner] = (NfkMeshVertex){.x = column(at),
                                                       .y = row(depth),
                                                       .z = (int32_t)(depth * 64),
                                                       .u = (int32_t)((corner & 1) * bricks->width << 16),
                                                       .v = (int32_t)((1 - (corner >> 1)) * bricks->height << 16)};
            }
            const uint32_t corners[] = {i, i + 1, i + 2, i + 1, i + 3, i + 2};
            memcpy(indices + 6 * count, corners, sizeof corners);
        }
    NfkOptions options = nfkOptions();
    options.blend = NINEFOLD_BLEND_COPY;
    options.shahei = NINEFOLD_SHAHEI_PLANE; /* only where no pillar stands */
    options.filter = NINEFOLD_FILTER_MIP_BILINEAR;
    options.perspective = 1;
    options.multi = NINEFOLD_MULTI_COLOUR; /* the picture is grey */
    options.multiOp = NINEFOLD_MULTI_OP_MUL2;
    options.color[0] = 0xFFEB825A;
    return nfkMesh(bricks, 4 * count, vertices, 6 * count, indices, &options);
}

/* A round pillar: slices of the stone, lit from the left. */
static int drawPillar(Texture *stone, Place at)
{
    NfkRect targets[SLICES], sources[SLICES];
    uint32_t colors[SLICES];
    const int32_t middle = column(at), bottom = row(at.depth), radius = (int32_t)(LENS * 0.28 / at.depth);
    const int32_t top = bottom - (int32_t)(LENS * 2.4 / at.depth);
    for (int i = 0; i < SLICES; ++i) {
        const double from = -cos(pi * i / SLICES), to = -cos(pi * (i + 1) / SLICES);
        const int32_t left = (int32_t)floor(middle + radius * from), right = (int32_t)floor(middle + radius * to);
        targets[i] = (NfkRect){left, top, right - left, bottom - top};
        sources[i] = (NfkRect){i * 64 / SLICES, 0, 64 / SLICES + 1, 128};
        const uint32_t light = (uint32_t)(255 * (0.25 + 0.75 * fmax(0, sin(pi * (i + 3.5) / SLICES))));
        colors[i] = 0xFF000000 | light << 16 | (light * 15 / 16) << 8 | light * 7 / 8;
    }
    NfkOptions options = nfkOptions();
    options.blend = NINEFOLD_BLEND_COPY; /* modes that mark the planes copy */
    options.shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY;
    options.zRef = priority(at.depth);
    options.filter = NINEFOLD_FILTER_BILINEAR;
    return nfkPictures(stone, SLICES, targets, sources, colors, &options);
}

/* Its shadow and the horse, drawn where nothing nearer is; looking to the left it is mirrored by a negative width. */
static int drawHorse(Texture *horse, Place at, int left)
{
    NfkOptions options = nfkOptions();
    options.shahei = NINEFOLD_SHAHEI_PRIORITY;
    options.zRef = priority(at.depth);

    NfkMeshVertex shadow[25];
    uint32_t fan[24 * 3];
    const int32_t middle = column(at), bottom = row(at.depth);
    shadow[24] = (NfkMeshVertex){.x = middle, .y = bottom, .color = 0xB0000000};
    for (uint32_t i = 0; i < 24; ++i) {
        const double angle = 2 * pi * i / 24;
        shadow[i] = (NfkMeshVertex){.x = middle + (int32_t)(LENS * 0.4 * cos(angle) / at.depth),
                                    .y = bottom + (int32_t)(LENS * 0.1 * sin(angle) / at.depth)};
        const uint32_t triangle[] = {24, i, (i + 1) % 24};
        memcpy(fan + 3 * i, triangle, sizeof triangle);
    }
    const int32_t width = (int32_t)(LENS * 0.9 / at.depth),
                  height = width * (int32_t)horse->origHeight / (int32_t)horse->origWidth;
    const NfkRect target = {left ? middle + width / 2 : middle - width / 2, bottom - height, left ? -width : width, height};
    return nfkMesh(NULL, 25, shadow, 24 * 3, fan, &options) && nfkPicture(horse, &target, NULL, &options);
}

int main(int argc, char **argv)
{
    Window window;
    SDL_Event event;
    if (!openWindow(&window, "floor", WIDTH, HEIGHT, argc, argv))
        return window.status;
    Texture *bricks = loadPicture(&window, "bricks", NFK_PICTURE_MIP_CHAIN, 0);
    Texture *stone = loadPicture(&window, "gravel", 0, 0);
    Texture *stars = loadPicture(&window, "stars", NFK_PICTURE_EDGE, 0);
    Texture *horse = loadPicture(&window, "horse", 0, 1);

    Place at = {-3.1, 2.9}, goal = {2.2, 3.4};
    int left = 0;
    while (beginFrame(&window)) {
        while (nextEvent(&window, &event)) {
            if (event.type == SDL_MOUSEBUTTONDOWN && event.button.y > HORIZON + 30) {
                goal.depth = LENS * EYE / 100.0 / (event.button.y - HORIZON);
                goal.x = (event.button.x - WIDTH / 2.0) * goal.depth / LENS;
            } else if (event.type == SDL_KEYDOWN) {
                const SDL_Keycode key = event.key.keysym.sym;
                goal.x += 0.4 * ((key == SDLK_RIGHT) - (key == SDLK_LEFT));
                goal.depth += 0.4 * ((key == SDLK_UP) - (key == SDLK_DOWN));
            }
            goal.depth = fmin(fmax(goal.depth, 1.6), 12);
        }
        const double x = goal.x - at.x, depth = goal.depth - at.depth, distance = hypot(x, depth), pace = 0.025;
        if (distance > pace) {
            at.x += pace * x / distance, at.depth += pace * depth / distance;
            left = x < 0;
        }

        nfkClearScreen(window.screen, 0xFF000000);
        for (int i = 0; i < pillarCount; ++i)
            check(&window, drawPillar(stone, pillars[i]));
        check(&window, drawFloor(bricks));

        NfkOptions sky = nfkOptions();
        sky.blend = NINEFOLD_BLEND_COPY;
        sky.shahei = NINEFOLD_SHAHEI_PLANE;
        sky.filter = NINEFOLD_FILTER_BILINEAR;
        const NfkRect above = {0, 0, WIDTH, row(NEAREST + ROWS)};
        check(&window, nfkPicture(stars, &above, NULL, &sky));

        /* The distance fades into the dark, but not the pillars, whose priorities are below this one. */
        NfkOptions haze = nfkOptions();
        haze.shahei = NINEFOLD_SHAHEI_PRIORITY;
        haze.zRef = 255;
        const NfkRect far = {0, above.height, WIDTH, 90};
        const uint32_t dark[] = {0xFF080810, 0xFF080810, 0x00080810, 0x00080810};
        check(&window, nfkGradient(&far, dark, &haze));

        check(&window, drawHorse(horse, at, left));
    }

    DeleteTexture(bricks), DeleteTexture(stone), DeleteTexture(stars), DeleteTexture(horse);
    return closeWindow(&window);
}
