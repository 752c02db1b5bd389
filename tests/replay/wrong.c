/* A host that makes two mistakes: draw 3 has a clip rectangle beyond the frame buffer, draw 5 a blend factor above 255. */
#include <ninefold/debug.h>

int main(void)
{
    Texture *const screen = CreateTexture(256, 256), *const picture = CreateTexture(128, 64);
    uint32_t k, state = 1;
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable(), MakeDrawMaskTable();
    ClearTexture(screen);
    for (k = 0; k < 128 * 64; ++k)
        picture->pixels[k] = (state = state * 1664525 + 1013904223) | 0xFF000000;
    SetFrameBuffer(screen);
    rs.tex0 = picture, rs.blendAlpha = 100;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetRectOptMode(NINEFOLD_RECT_UNIT), SetMultiMode(NINEFOLD_MULTI_NONE);
    for (k = 1; k <= 6; ++k) {
        SetBlendMode(k % 2 ? NINEFOLD_BLEND_CONST_ALPHA : NINEFOLD_BLEND_COPY);
        rs.clipRight = k == 3 ? 300 : 256, rs.clipBottom = 256;
        rs.blendAlpha = k == 5 ? 300 : 100;
        rs.vertex[0].x = 20 + (int32_t)k, rs.vertex[0].y = 30, rs.vertex[1].x = 120 + (int32_t)k, rs.vertex[1].y = 90;
        if (k == 3)
            rs.vertex[0].x += 160, rs.vertex[1].x += 160;
        SearchDrawFunc(CreateDrawCode())();
        NinefoldDebugFrame();
    }
    return 0;
}
