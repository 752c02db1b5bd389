/* The host of blends.nfc: ninefold-debug --capture blends.nfc ./blends. Rectangles of a copy, an alpha blend, a host's own operator
 * and an addition, and a triangle in perspective. */
#include <ninefold/debug.h>

static uint32_t mean(uint32_t first, uint32_t second) { return (first & second) + ((first ^ second) >> 1 & 0x7F7F7F7F); }

int main(void)
{
    Texture *const screen = CreateTexture(64, 48), *const picture = CreateTexture(16, 16);
    int k;
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable(), MakeDrawMaskTable();
    for (k = 0; k < 64 * 64; ++k)
        screen->pixels[k] = 0xFF000000 | (uint32_t)(k * 4 & 255) << 16 | (uint32_t)(k / 16 & 255);
    for (k = 0; k < 256; ++k)
        picture->pixels[k] = k % 16 ? (uint32_t)(k * 0x01020304 | 0x40000080) : 0;
    SetFrameBuffer(screen), rs.clipRight = 64, rs.clipBottom = 48;
    rs.tex0 = picture;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetRectOptMode(NINEFOLD_RECT_UNIT), SetMultiMode(NINEFOLD_MULTI_NONE);
    rs.blendFunc = mean;
    for (k = 0; k < 4; ++k) {
        static const int blends[] = {NINEFOLD_BLEND_COPY, NINEFOLD_BLEND_ALPHA, NINEFOLD_BLEND_CUSTOM, NINEFOLD_BLEND_ADD};
        rs.blendMode = blends[k];
        rs.vertex[0].x = 12 * k, rs.vertex[0].y = 5 * k, rs.vertex[1].x = 12 * k + 16, rs.vertex[1].y = 5 * k + 16;
        if (k == 3) /* over the blue side */
            rs.vertex[0].x = 0, rs.vertex[0].y = 0, rs.vertex[1].x = 64, rs.vertex[1].y = 48;
        SearchDrawFunc(CreateDrawCode())();
    }
    SetBlendMode(NINEFOLD_BLEND_COPY), SetShapeMode(NINEFOLD_SHAPE_TRIANGLE), SetPersMode(NINEFOLD_PERS_ON);
    rs.vertex[2].x = 5, rs.vertex[2].y = 40, rs.vertex[0].z = 300, rs.vertex[1].z = 500, rs.vertex[2].z = 400;
    rs.uv0[1].u = 16 << 16, rs.uv0[2].v = 16 << 16;
    SearchDrawFunc(CreateDrawCode())();
    NinefoldDebugFrame();
    return 0;
}
