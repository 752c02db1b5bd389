/*
 * A scene of a visual novel, as a host of ordinary cost: 60 frames of 1280 by 720 pixels.
 *
 *     novel DIRECTORY PICTURE...
 *
 * Makes each picture a photograph of the screen's size, written to DIRECTORY as PNG; cross-fades them, with sprites before them and
 * a shaded box. Prints the seconds that the frames took.
 */
#include <ninefold/debug.h>
#include <ninefold/kit.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

enum { width = 1280, height = 720, frames = 60, most = 8 };

/* The picture enlarged to the screen's size, with the grain that a camera leaves. */
static Texture *photograph(const char *path, const char *directory, int index)
{
    Texture *const small = nfkLoadPicture(path, 0), *const large = CreateTexture(width, height);
    uint32_t state = (uint32_t)index + 1;
    char name[1000];
    int x, y, c;
    if (!small)
        return NULL;
    for (y = 0; y < height; ++y)
        for (x = 0; x < width; ++x) {
            const uint32_t u = (uint32_t)x * (small->origWidth - 1) * 256 / width,
                           v = (uint32_t)y * (small->origHeight - 1) * 256 / height;
            const uint32_t *const texel = small->pixels + (((size_t)(v >> 8)) << small->log2Width) + (u >> 8);
            uint32_t pixel = 0xFF000000;
            for (c = 0; c < 24; c += 8) {
                const int fu = (int)(u & 255), fv = (int)(v & 255);
                const int top = (int)(texel[0] >> c & 255) * (256 - fu) + (int)(texel[1] >> c & 255) * fu;
                const int bottom =
                    (int)(texel[small->width] >> c & 255) * (256 - fu) + (int)(texel[small->width + 1] >> c & 255) * fu;
                int value = (top * (256 - fv) + bottom * fv) >> 16;
                state = state * 1664525 + 1013904223;
                value += (int)(state >> 30) - (int)(state >> 28 & 3);
                pixel |= (uint32_t)(value < 0 ? 0 : value > 255 ? 255 : value) << c;
            }
            large->pixels[((size_t)y << large->log2Width) + (size_t)x] = pixel;
        }
    for (y = 0; y < height; ++y)
        memset(large->pixels + ((size_t)y << large->log2Width) + width, 0, 4 * (large->width - width));
    memset(large->pixels + ((size_t)height << large->log2Width), 0, (size_t)4 * large->width * (large->height - height));
    snprintf(name, sizeof name, "%s/photograph-%d.png", directory, index);
    DeleteTexture(small);
    return nfkSavePicture(large, name, 0) ? large : NULL;
}

static double now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + 1e-9 * (double)t.tv_nsec;
}

/* What a window's system does with a frame: every pixel is read and written once. */
static void show(const NfkScreen *screen, uint32_t *window)
{
    nfkShow(screen, window, width * 4, width, height, NFK_FORMAT_ARGB8888);
}

int main(int argc, char **argv)
{
    NfkScreen *const screen = nfkCreateScreen(width, height);
    static uint32_t window[width * height];
    Texture *photos[most], *sprite;
    const int count = argc - 2 < most ? argc - 2 : most;
    int frame, k;
    double start;
    if (count < 1 || !screen)
        return fprintf(stderr, "usage: novel DIRECTORY PICTURE...\n"), 2;
    for (k = 0; k < count; ++k)
        if (!(photos[k] = photograph(argv[2 + k], argv[1], k)))
            return fprintf(stderr, "%s\n", nfkError()), 1;
    sprite = CreateTexture(256, 512);
    for (k = 0; k < 256 * 512; ++k) {
        const int x = k % 256 - 128, y = k / 256 - 256, d = 65536 - 4 * x * x - y * y;
        sprite->pixels[k] = d > 0 ? (uint32_t)(d > 8192 ? 255 : d / 32) << 24 | (0x4080C0u + (uint32_t)(k & 31)) : 0;
    }
    start = now();
    for (frame = 0; frame < frames; ++frame) {
        const NfkRect all = {0, 0, width, height};
        const int from = frame / 20 % count, to = (from + 1) % count;
        NfkRect body = {200 + frame * 4, 190, 256, 512};
        nfkPicture(photos[from], &all, NULL, NULL);
        if (frame % 20 >= 10) {
            SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetFilterMode(NINEFOLD_FILTER_POINT), SetRectOptMode(NINEFOLD_RECT_UNIT);
            SetShaheiMode(NINEFOLD_SHAHEI_NONE), SetBlendMode(NINEFOLD_BLEND_CONST_ALPHA), SetMultiMode(NINEFOLD_MULTI_NONE);
            SetPersMode(0), SetRuleAlphaMode(0), SetPrescaleMode(0);
            rs.tex0 = photos[to], rs.blendAlpha = (uint32_t)(frame % 10) * 25;
            rs.vertex[0].x = rs.vertex[0].y = 0, rs.vertex[1].x = width, rs.vertex[1].y = height;
            rs.uv0[0].u = rs.uv0[0].v = 0;
            SearchDrawFunc(CreateDrawCode())();
        }
        nfkPicture(sprite, &body, NULL, NULL);
        body.x = 900 - frame * 3;
        nfkPicture(sprite, &body, NULL, NULL);
        for (k = 0; k < 40; ++k) { /* as many letters */
            NfkRect letter = {100 + 24 * k, 600 + k % 3, 20, 24}, part = {8 * (k % 10), 100, 20, 24};
            nfkPicture(sprite, &letter, &part, NULL);
        }
        show(screen, window);
        NinefoldDebugFrame();
    }
    printf("%.3f\n", now() - start);
    return 0;
}
