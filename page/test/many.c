/* A host of 10,000 draws in 100 frames, to be captured: sprites that move over a cleared screen, by several kernels, some under a
 * Shahei plane and with priorities. */
#include <ninefold/debug.h>
#include <string.h>

enum { width = 320, height = 240, frames = 100, draws = 100 };

static uint16_t plane[512 * height / 16];
static uint8_t priorities[512 * height];

int main(void)
{
    Texture *const screen = CreateTexture(width, height), *const sprite = CreateTexture(32, 32);
    uint32_t random = 1;
    int frame, draw, k;
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable(), MakeDrawMaskTable();
    for (k = 0; k < 32 * 32; ++k)
        sprite->pixels[k] =
            (k % 32 - 16) * (k % 32 - 16) + (k / 32 - 16) * (k / 32 - 16) < 256 ? 0x80FF4000u + (uint32_t)k * 0x40 : 0;
    SetFrameBuffer(screen), rs.clipRight = width, rs.clipBottom = height;
    rs.tex0 = sprite, rs.shaheiPlane = plane, rs.zBuffer = priorities;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetMultiMode(NINEFOLD_MULTI_NONE);
    for (frame = 0; frame < frames; ++frame) {
        for (k = 0; k < 512 * height; ++k)
            screen->pixels[k] = 0xFF000000u + (uint32_t)frame * 2;
        memset(plane, 0, sizeof plane), memset(priorities, 255, sizeof priorities);
        for (draw = 0; draw < draws; ++draw) {
            static const int blends[] = {NINEFOLD_BLEND_COPY, NINEFOLD_BLEND_ALPHA_FAST, NINEFOLD_BLEND_ADD};
            const int32_t x = (int32_t)((random = random * 1664525 + 1013904223) >> 8) % width,
                          y = (int32_t)((random = random * 1664525 + 1013904223) >> 8) % height, size = 32 + draw % 4 * 8;
            const int stretches = draw % 2;
            SetRectOptMode(stretches ? NINEFOLD_RECT_STRETCH : NINEFOLD_RECT_UNIT);
            SetFilterMode(stretches ? NINEFOLD_FILTER_BILINEAR : NINEFOLD_FILTER_POINT);
            SetBlendMode(draw % 10 == 9 ? NINEFOLD_BLEND_COPY : blends[draw % 3]);
            SetShaheiMode(draw % 10 == 9 ? NINEFOLD_SHAHEI_PLANE_PRIORITY : NINEFOLD_SHAHEI_NONE);
            rs.zRef = draw, rs.uv0[1].u = rs.uv0[1].v = 32 << 16;
            rs.vertex[0].x = x, rs.vertex[0].y = y, rs.vertex[1].x = x + (stretches ? size : 32),
            rs.vertex[1].y = y + (stretches ? size : 32);
            SearchDrawFunc(CreateDrawCode())();
        }
        NinefoldDebugFrame();
    }
    return 0;
}
