/* A host with one mistake, or with none: mistakes NAME wrong|right; mistakes alone lists the names, each with the number of its
 * rule. Before the call that is wrong it prints the number that this draw has, or for functions that of the draw before. */
#include <ninefold/debug.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { SIZE = 64 };
static int wrong; /* whether the mistake is made */
static unsigned long draws;
static Texture *screen, *picture, *other, *wide;
static uint16_t plane[SIZE * SIZE / 16];
static uint8_t priorities[SIZE * SIZE];
static LineTableRecord lines[SIZE];
static int32_t shifts[SIZE];

static void startUp(void) { MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable(); }

static Texture *makePicture(unsigned long size)
{
    Texture *const texture = CreateTexture(size, size);
    for (uint32_t k = 0; k < texture->width * texture->height; ++k)
        texture->pixels[k] = k % 7 ? 0x80000000 | 0x123457 * k : 0;
    return texture;
}

/* Everything as it should be: a picture of 32 x 32 texels stretched over 40 x 40 pixels. */
static void prepare(void)
{
    screen = CreateTexture(SIZE, SIZE), picture = makePicture(32), other = makePicture(32), wide = makePicture(SIZE);
    ClearTexture(screen);
    memset(priorities, 255, sizeof priorities);
    for (int k = 0; k < SIZE; ++k)
        lines[k].endU = 32 << 16;
    SetFrameBuffer(screen);
    rs.clipRight = rs.clipBottom = SIZE;
    rs.vertex[1].x = rs.vertex[1].y = rs.vertex[2].y = 40;
    rs.vertex[0].z = rs.vertex[1].z = rs.vertex[2].z = 100;
    for (int k = 0; k < 3; ++k) {
        TexCoord *const at = k == 0 ? rs.uv0 : k == 1 ? rs.uv1 : rs.uv2;
        at[1].u = at[1].v = at[2].v = at[3].u = at[3].v = 32 << 16;
    }
    rs.tex0 = picture;
    rs.blendAlpha = rs.blendAlphaRgb = 255;
    rs.prescale = rs.prescaleMulti = 256;
    rs.mosaicSize = rs.mosaicSize1 = 4;
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE);
    SetRectOptMode(NINEFOLD_RECT_STRETCH);
    SetMultiMode(NINEFOLD_MULTI_NONE);
}

static void draw(void)
{
    const DrawFunc kernel = SearchDrawFunc(CreateDrawCode());
    if (kernel)
        ++draws, kernel();
}

/* The draw that is wrong, if any is. */
static void look(void)
{
    printf("%lu\n", draws + 1);
    fflush(stdout);
    draw();
}
/* The same before a function that is none of a kernel. */
static void lookAtNext(void)
{
    printf("%lu\n", draws);
    fflush(stdout);
}

/* Start-up. */

static void noKernels(void)
{
    if (!wrong)
        startUp();
    prepare();
    lookAtNext(), draw();
}

static void noShifts(void)
{
    if (!wrong)
        MakeUVLShiftTable();
    MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
    prepare(), draw();
    SetShapeMode(NINEFOLD_SHAPE_TRIANGLE), SetPersMode(NINEFOLD_PERS_ON);
    look();
}

static void noStipples(void)
{
    if (!wrong)
        MakeDrawMaskTable();
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable();
    prepare(), draw();
    SetRectOptMode(NINEFOLD_RECT_CORNERS), SetFilterMode(NINEFOLD_FILTER_BILINEAR);
    look();
}

static void earlyFade(void)
{
    if (!wrong)
        startUp();
    prepare();
    lookAtNext(), SetPresetDrawMask(100);
}

/* Frame buffer and clip rectangle. */

static void noFrameBuffer(void)
{
    Texture *const none = CreateTexture(0x8000, 0x8000);
    draw();
    if (wrong)
        rs.dstPixels = none->pixels;
    look();
    DeleteTexture(none);
}

static void frameBufferDeleted(void)
{
    draw();
    Texture *const before = screen;
    screen = CreateTexture(SIZE, SIZE);
    if (!wrong)
        SetFrameBuffer(screen);
    DeleteTexture(before);
    look();
}

static void clipTooTall(void)
{
    draw(), draw();
    rs.clipBottom = SIZE + (wrong ? 8 : 0);
    look();
}

static void clipLeftEmpty(void)
{
    draw();
    rs.clipRight = wrong ? 0 : SIZE;
    look();
}

static void coordinatesShifted(void)
{
    draw();
    rs.vertex[1].x = wrong ? 0x4000 << 16 : 0x4000;
    look();
}

/* Textures. */

static void nullTexture(void)
{
    draw();
    rs.tex0 = wrong ? NULL : other;
    look();
}

static void deletedTexture(void)
{
    draw();
    DeleteTexture(picture);
    if (!wrong)
        rs.tex0 = other;
    look();
}

static void deletedSecond(void)
{
    SetMultiMode(NINEFOLD_MULTI_TEXTURE), SetBlendModeMulti(NINEFOLD_MULTI_OP_ALPHA);
    rs.tex1 = other;
    draw(), draw();
    DeleteTexture(other);
    if (!wrong)
        rs.tex1 = wide;
    look();
}

static void secondLeftOver(void)
{
    CreateMipmapTexture(picture);
    SetFilterMode(NINEFOLD_FILTER_MIP);
    rs.vertex[1].x = rs.vertex[1].y = 8;
    rs.tex1 = other;
    draw();
    DeleteTexture(other);
    if (!wrong)
        rs.tex1 = NULL;
    look();
}

static void notPowerOfTwo(void)
{
    draw();
    if (wrong)
        picture->width = 30;
    look();
}

static void hostPixels(void)
{
    static uint32_t own[32 * 32];
    uint32_t *const before = picture->pixels;
    draw();
    picture->pixels = own;
    if (!wrong)
        picture->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
    look();
    picture->pixels = before, picture->flags = 0;
}

static void deletedTwice(void)
{
    draw();
    DeleteTexture(other);
    lookAtNext(), DeleteTexture(wrong ? other : wide);
}

static void texelsNotShifted(void)
{
    draw();
    rs.uv0[1].u = rs.uv0[1].v = wrong ? 32 : 32 << 16;
    look();
}

static void premultiplied(void)
{
    SetBlendMode(NINEFOLD_BLEND_ALPHA);
    draw();
    for (int k = 0; k < 32 * 32; ++k)
        other->pixels[k] = wrong ? 0x60402010 : 0x60FF2010;
    rs.tex0 = other;
    look();
}

static void ontoItself(void)
{
    draw();
    rs.tex0 = wrong ? screen : other;
    look();
}

/* Chains and maps. */

static void noChain(void)
{
    SetFilterMode(NINEFOLD_FILTER_MIP);
    draw();
    if (!wrong)
        CreateMipmapTexture(picture);
    rs.vertex[1].x = rs.vertex[1].y = 8;
    look();
}

static void staleChain(void)
{
    SetFilterMode(NINEFOLD_FILTER_MIP);
    rs.vertex[1].x = rs.vertex[1].y = 8;
    CreateMipmapTexture(picture);
    draw();
    memset(picture->pixels, 255, 32 * 32 * 4);
    if (!wrong)
        DeleteMipmapTexture(picture), CreateMipmapTexture(picture);
    SetFrameBuffer(screen); /* the next frame */
    look();
}

static void noRuns(void)
{
    draw();
    SetRectOptMode(NINEFOLD_RECT_RUNS);
    if (!wrong)
        CreateRunlengthMap(picture);
    look();
}

static void staleRuns(void)
{
    SetRectOptMode(NINEFOLD_RECT_RUNS), CreateRunlengthMap(picture);
    draw();
    SetClearPixel(picture, picture->pixels[5]);
    if (!wrong)
        CreateRunlengthMap(picture);
    look();
}

static void longHole(void)
{
    Texture *const sprite = makePicture(256);
    draw();
    SetRectOptMode(wrong ? NINEFOLD_RECT_RUNS : NINEFOLD_RECT_UNIT);
    memset(sprite->pixels, 0, 128 * 4);
    CreateRunlengthMap(sprite);
    rs.tex0 = sprite;
    look();
}

static void narrowZeros(void)
{
    draw();
    SetRectOptMode(NINEFOLD_RECT_PLANE_RUNS), SetShaheiMode(NINEFOLD_SHAHEI_PLANE);
    rs.shaheiPlane = plane;
    rs.tex0 = wrong ? other : wide;
    rs.vertex[1].y = 16; /* so that the map is long enough */
    CreateZeroPixelMap(rs.tex0);
    look();
}

/* Planes and tables. */

static void noPlane(void)
{
    draw();
    SetShaheiMode(NINEFOLD_SHAHEI_PLANE);
    rs.shaheiPlane = wrong ? NULL : plane;
    look();
}

static void planeOfTheWindow(void)
{
    /* The window is 40 x 40, its frame buffer 64 x 64. */
    NinefoldDebugLabelMemory(plane, (wrong ? 40 * 40 : SIZE * SIZE) / 8, "plane");
    SetShaheiMode(NINEFOLD_SHAHEI_PLANE);
    rs.shaheiPlane = plane;
    rs.vertex[1].y = 20;
    draw(), draw();
    rs.vertex[0].y = 20, rs.vertex[1].y = 40;
    look();
}

static void noPriorities(void)
{
    draw();
    SetShaheiMode(NINEFOLD_SHAHEI_PRIORITY), SetBlendMode(NINEFOLD_BLEND_ALPHA);
    rs.zBuffer = wrong ? NULL : priorities;
    look();
}

static void prioritiesOfZero(void)
{
    draw();
    SetShaheiMode(NINEFOLD_SHAHEI_PRIORITY), SetBlendMode(NINEFOLD_BLEND_ALPHA);
    rs.zBuffer = priorities, rs.zRef = 1;
    if (wrong)
        memset(priorities, 0, sizeof priorities);
    look();
}

static void noLineTable(void)
{
    draw();
    SetRectOptMode(NINEFOLD_RECT_TABLE);
    rs.lineTable0 = wrong ? NULL : lines;
    look();
}

static void shortLineTable(void)
{
    /* The rows above the clip rectangle have records too. */
    NinefoldDebugLabelMemory(lines, sizeof *lines * 40, "lines");
    SetRectOptMode(NINEFOLD_RECT_TABLE);
    rs.lineTable0 = lines;
    draw();
    rs.originY = -8;
    rs.vertex[1].y = wrong ? 48 : 40;
    look();
}

static void shortShifts(void)
{
    NinefoldDebugLabelMemory(shifts, (wrong ? 20 : SIZE) * sizeof *shifts, "wave");
    SetShapeMode(NINEFOLD_SHAPE_TRIANGLE);
    draw();
    rs.scanShift = shifts;
    look();
}

/* Factors, operators, modes. */

static void constantAlpha(void)
{
    draw();
    SetBlendMode(NINEFOLD_BLEND_CONST_ALPHA);
    rs.blendAlpha = wrong ? 256 : 255;
    look();
}

static void depthOfZero(void)
{
    SetShapeMode(NINEFOLD_SHAPE_TRIANGLE), SetPersMode(NINEFOLD_PERS_ON);
    draw();
    rs.vertex[2].z = wrong ? 0 : 1;
    look();
}

static void mosaicOfZero(void)
{
    SetFilterMode(NINEFOLD_FILTER_MOSAIC);
    draw();
    rs.mosaicSize = wrong ? 0 : 1;
    look();
}

static void noOperator(void)
{
    draw();
    SetMultiMode(NINEFOLD_MULTI_COLOUR);
    if (!wrong)
        SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
    look();
}

static void multiModeForgotten(void)
{
    SetShaheiMode(NINEFOLD_SHAHEI_NONE), SetMultiMode(wrong ? 0 : NINEFOLD_MULTI_NONE);
    look();
}

static void unknownCombination(void)
{
    draw();
    SetShaheiMode(NINEFOLD_SHAHEI_PLANE);
    rs.shaheiPlane = plane;
    if (wrong)
        SetBlendMode(NINEFOLD_BLEND_ALPHA);
    lookAtNext(), draw();
}

static void modesAfterwards(void)
{
    draw();
    SetFilterMode(NINEFOLD_FILTER_BILINEAR);
    const DrawFunc kernel = SearchDrawFunc(CreateDrawCode());
    if (wrong)
        SetBlendMode(NINEFOLD_BLEND_ALPHA);
    printf("%lu\n", ++draws);
    fflush(stdout);
    kernel();
}

static void wrongStipple(void)
{
    draw();
    lookAtNext(), SetPresetDrawMask(wrong ? 262 : 261);
}

static void noAtlas(void)
{
    char text[] = "a";
    draw();
    rs.fontHeight = 16;
    rs.tex0 = wrong ? NULL : CreateTexture(SIZE, SIZE);
    lookAtNext(), CreateFontTexture(text);
}

static const struct Mistake {
    const char *name;
    unsigned rule;
    void (*run)(void);
    int bare; /* calls start-up and prepare() itself */
} mistakes[] = {
    {"no-kernels", 703, noKernels, 1},
    {"no-shifts", 701, noShifts, 1},
    {"no-stipples", 702, noStipples, 1},
    {"early-fade", 706, earlyFade, 1},
    {"no-frame-buffer", 101, noFrameBuffer, 0},
    {"frame-buffer-deleted", 102, frameBufferDeleted, 0},
    {"clip-too-tall", 107, clipTooTall, 0},
    {"clip-left-empty", 106, clipLeftEmpty, 0},
    {"coordinates-shifted", 109, coordinatesShifted, 0},
    {"null-texture", 201, nullTexture, 0},
    {"deleted-texture", 202, deletedTexture, 0},
    {"deleted-second", 202, deletedSecond, 0},
    {"second-left-over", 207, secondLeftOver, 0},
    {"not-power-of-two", 205, notPowerOfTwo, 0},
    {"host-pixels", 206, hostPixels, 0},
    {"deleted-twice", 1001, deletedTwice, 0},
    {"texels-not-shifted", 801, texelsNotShifted, 0},
    {"premultiplied", 802, premultiplied, 0},
    {"onto-itself", 803, ontoItself, 0},
    {"no-chain", 210, noChain, 0},
    {"stale-chain", 212, staleChain, 0},
    {"no-runs", 213, noRuns, 0},
    {"stale-runs", 214, staleRuns, 0},
    {"long-hole", 218, longHole, 0},
    {"narrow-zeros", 216, narrowZeros, 0},
    {"no-plane", 301, noPlane, 0},
    {"plane-of-the-window", 303, planeOfTheWindow, 0},
    {"no-priorities", 302, noPriorities, 0},
    {"priorities-of-zero", 305, prioritiesOfZero, 0},
    {"no-line-table", 401, noLineTable, 0},
    {"short-line-table", 303, shortLineTable, 0},
    {"short-shifts", 303, shortShifts, 0},
    {"constant-alpha", 501, constantAlpha, 0},
    {"depth-of-zero", 505, depthOfZero, 0},
    {"mosaic-of-zero", 507, mosaicOfZero, 0},
    {"no-operator", 602, noOperator, 0},
    {"multi-mode-forgotten", 602, multiModeForgotten, 0},
    {"unknown-combination", 704, unknownCombination, 0},
    {"modes-afterwards", 707, modesAfterwards, 0},
    {"wrong-stipple", 705, wrongStipple, 0},
    {"no-atlas", 901, noAtlas, 0},
};

int main(int count, char **arguments)
{
    for (size_t k = 0; k < sizeof mistakes / sizeof *mistakes; ++k)
        if (count == 1) {
            printf("%s NF-%04u\n", mistakes[k].name, mistakes[k].rule);
        } else if (count == 3 && strcmp(arguments[1], mistakes[k].name) == 0) {
            wrong = strcmp(arguments[2], "wrong") == 0;
            if (!mistakes[k].bare)
                startUp(), prepare();
            mistakes[k].run();
            return 0;
        }
    return count == 1 ? 0 : 2;
}
