/* A host of the library and its kit that leaves status 42 if both do what they should. NO_RUNTIME: for a compiler that has no runtime
 * to link with. */
#include <ninefold/kit.h>

static int check(void)
{
    NfkScreen *screen = nfkCreateScreen(64, 48);
    if (!screen || rs.clipRight != 64 || rs.clipBottom != 48 || rs.frameBuffer->origHeight != 48) /* data of another DLL */
        return 1;
    const NfkRect all = {8, 8, 16, 16};
    if (!nfkFill(&all, 0xFF336699, 0) || rs.frameBuffer->pixels[8 * rs.dstPitch + 8] != 0xFF336699)
        return 2;
    rs.color[0] = 0xFF102030;
    rs.vertex[0].x = 30, rs.vertex[0].y = 2, rs.vertex[1].x = 40, rs.vertex[1].y = 10;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetFilterMode(NINEFOLD_FILTER_FLAT), SetRectOptMode(NINEFOLD_RECT_STRETCH);
    const DrawFunc kernel = SearchDrawFunc(CreateDrawCode());
    if (!kernel)
        return 3;
    kernel();
    if (rs.frameBuffer->pixels[9 * rs.dstPitch + 39] != 0xFF102030)
        return 4;
    if (nfkLoadPicture("nowhere.png", 0) || !nfkError()[0])
        return 5;
    return 42;
}

#if defined(NO_RUNTIME)
int start(void) { return check(); }
#else
int main(void) { return check(); }
#endif
