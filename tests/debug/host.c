/* A host with debug.h: what the calls say, and one mistake that nothing else would show. host twin|plain */
#include <ninefold/debug.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static unsigned seen;
static void see(const NinefoldFinding *finding, void *context)
{
    ++*(unsigned *)context;
    if (finding->rule != 303 || strcmp(finding->name, "memory-small") != 0)
        printf("unexpected: NF-%04u %s: %s\n", finding->rule, finding->name, finding->text);
}

#define EXPECT(condition)                                                                                                        \
    if (!(condition))                                                                                                            \
    return printf("line %d: %s does not hold\n", __LINE__, #condition), 1

int main(int count, char **arguments)
{
    static uint16_t plane[64 * 48 / 16 + 64 * 16 / 16]; /* larger than what is labelled, so that nothing is overwritten */
    const int twin = count > 1 && strcmp(arguments[1], "twin") == 0;
    EXPECT((NinefoldDebug() != NULL) == twin);
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();

    Texture *screen = CreateTexture(64, 48), *picture = CreateTexture(64, 64);
    memset(picture->pixels, 255, 64 * 64 * 4);
    ClearTexture(screen);
    EXPECT(screen->height == 64);
    EXPECT(NinefoldDebugLabelTexture(screen, "screen") == twin);
    EXPECT(NinefoldDebugSetCallback(see, &seen) == twin);
    EXPECT(NinefoldDebugLabelMemory(plane, 64 * 48 / 8, "plane of the window's size") == twin);
    SetFrameBuffer(screen);
    rs.clipRight = rs.clipBottom = 64;
    rs.shaheiPlane = plane;
    rs.tex0 = picture;
    rs.vertex[1].x = 64, rs.vertex[1].y = 48;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetMultiMode(NINEFOLD_MULTI_NONE), SetShaheiMode(NINEFOLD_SHAHEI_PLANE);
    SearchDrawFunc(CreateDrawCode())();
    EXPECT(seen == 0);
    rs.vertex[1].y = 49;
    SearchDrawFunc(CreateDrawCode())();
    EXPECT(screen->pixels[48 * 64] == 0xFFFFFFFF); /* drawn all the same */
    EXPECT(seen == (unsigned)twin);
    EXPECT(NinefoldDebugFindings(NINEFOLD_DEBUG_ERROR) == (unsigned)twin);
    EXPECT(NinefoldDebugForgetMemory(plane) == twin);
    EXPECT(NinefoldDebugFrame() == twin);
    EXPECT(NinefoldDebugSetSeverity(NINEFOLD_DEBUG_ERROR) == twin);
    EXPECT(NinefoldDebugSetAction(NINEFOLD_DEBUG_SKIP) == twin);
    DeleteTexture(picture);
    return 0;
}
