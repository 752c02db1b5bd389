/* What a look costs: nanoseconds a draw of 8 x 8 pixels, the best of many rounds. Run by itself and by ninefold-debug, it times
 * the library and the twin. */
#include <ninefold/ninefold.h>

#include <stdio.h>
#include <string.h>
#include <time.h>

static double now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec * 1e9 + (double)t.tv_nsec;
}

static const struct Job {
    const char *name;
    long shape, filter, rectOpt, shahei, blend, multi;
} jobs[] = {
    {"flat rectangle", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_FILTER_FLAT, NINEFOLD_RECT_NONE, 0, NINEFOLD_BLEND_COPY,
     NINEFOLD_MULTI_NONE},
    {"sprite, copied", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_FILTER_POINT, NINEFOLD_RECT_UNIT, 0, NINEFOLD_BLEND_COPY,
     NINEFOLD_MULTI_NONE},
    {"sprite, blended", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_FILTER_POINT, NINEFOLD_RECT_UNIT, 0, NINEFOLD_BLEND_ALPHA,
     NINEFOLD_MULTI_NONE},
    {"sprite, priorities", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_FILTER_POINT, NINEFOLD_RECT_UNIT, NINEFOLD_SHAHEI_PRIORITY,
     NINEFOLD_BLEND_ALPHA, NINEFOLD_MULTI_NONE},
    {"stretched, bilinear", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_FILTER_BILINEAR, NINEFOLD_RECT_STRETCH, 0, NINEFOLD_BLEND_ALPHA,
     NINEFOLD_MULTI_NONE},
    {"two textures", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_FILTER_POINT, NINEFOLD_RECT_STRETCH, 0, NINEFOLD_BLEND_ALPHA,
     NINEFOLD_MULTI_TEXTURE},
    {"triangle", NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_FILTER_POINT, NINEFOLD_RECT_NONE, 0, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE},
};

static uint8_t priorities[256 * 256];

int main(void)
{
    enum { ROUNDS = 60, DRAWS = 4000 };
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
    Texture *const screen = CreateTexture(256, 256), *const picture = CreateTexture(64, 64),
                   *const second = CreateTexture(64, 64);
    memset(priorities, 255, sizeof priorities);
    ClearTexture(screen);
    for (uint32_t k = 0; k < 64 * 64; ++k)
        picture->pixels[k] = second->pixels[k] = 0x80000000 | k * 0x123457;
    SetFrameBuffer(screen);
    rs.clipRight = rs.clipBottom = 256;
    rs.tex0 = picture, rs.tex1 = second, rs.zBuffer = priorities;
    rs.color[0] = 0xFF80C0E0;
    rs.vertex[1].x = rs.vertex[1].y = rs.vertex[2].y = 8;
    for (int k = 1; k < 4; ++k)
        rs.uv0[k].u = rs.uv0[k].v = rs.uv1[k].u = rs.uv1[k].v = 11 << 16;
    rs.uv0[2].u = 0;
    for (size_t k = 0; k < sizeof jobs / sizeof *jobs; ++k) {
        const struct Job *const job = jobs + k;
        SetShapeMode(job->shape), SetFilterMode(job->filter), SetRectOptMode(job->rectOpt), SetShaheiMode(job->shahei);
        SetBlendMode(job->blend), SetMultiMode(job->multi), SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
        const DrawFunc draw = SearchDrawFunc(CreateDrawCode());
        double best = 1e30;
        for (int round = 0; round < ROUNDS; ++round) {
            const double begin = now();
            for (int n = 0; n < DRAWS; ++n) {
                rs.originX = n * 8 & 248, rs.originY = n / 4 & 240;
                draw();
            }
            const double took = (now() - begin) / DRAWS;
            best = took < best ? took : best;
        }
        printf("%-20s %8.1f ns\n", job->name, best);
    }
    return 0;
}
