/* A host in C11, run under the plain library and under bands: bands_host plain|bands. Prints a sum of what it drew. */
#include <ninefold/bands.h>

#include <inttypes.h>
#include <stdio.h>
#include <string.h>

static int failures;
#define EXPECT(condition) ((condition) ? (void)0 : (++failures, (void)printf("line %d: " #condition "\n", __LINE__)))

static uint32_t halve(uint32_t old, uint32_t source) { return ((old >> 1) & 0x7F7F7F7F) + ((source >> 1) & 0x7F7F7F7F); }

int main(int count, char **arguments)
{
    const int bands = count > 1 && strcmp(arguments[1], "bands") == 0;
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();

    EXPECT((NinefoldBands() != NULL) == bands);
    const int processors = NinefoldBandsStart(0);
    EXPECT(bands ? processors >= 1 : processors == 0);
    EXPECT(NinefoldBandsStart(100000) == processors);
    EXPECT(NinefoldBandsStart(1) == bands);
    EXPECT(NinefoldBandsDeclarePure(halve) == bands);
    EXPECT(NinefoldBandsFlush() == bands);
    EXPECT(NinefoldBandsRecordAll(1) == bands);
    if (bands) {
        EXPECT(NinefoldBands()->size == sizeof(NinefoldBandsCalls));
        EXPECT(NinefoldBandsStart(0) == processors);
        EXPECT(NinefoldBandsStart(processors + 2) == processors + 2); /* where everything is recorded */
        EXPECT(NinefoldBandsStart(3) == 3);
    }

    Texture *const frame = CreateTexture(1024, 1024), *const picture = CreateTexture(256, 256);
    for (uint32_t k = 0; k < 256 * 256; ++k)
        picture->pixels[k] = k * 0x9E3779B1u;
    SetFrameBuffer(frame);
    ClearTexture(frame);
    rs.clipRight = rs.clipBottom = 1024;
    rs.tex0 = picture;
    SetMultiMode(NINEFOLD_MULTI_NONE);
    SetRectOptMode(NINEFOLD_RECT_STRETCH);
    SetFilterMode(NINEFOLD_FILTER_BILINEAR);
    rs.uv0[1].u = rs.uv0[1].v = 256 << 16;
    for (int k = 0; k < 100; ++k) {
        static const int blends[] = {NINEFOLD_BLEND_ALPHA, NINEFOLD_BLEND_ADD, NINEFOLD_BLEND_CUSTOM};
        SetBlendMode(blends[k % 3]);
        rs.blendFunc = halve;
        rs.vertex[0].x = 7 * k, rs.vertex[0].y = 1000 - 9 * k;
        rs.vertex[1].x = 300 + 7 * k, rs.vertex[1].y = 20 + 3 * k;
        SearchDrawFunc(CreateDrawCode())();
    }
    rs.tex0 = NULL;
    CopyTexture(frame, picture, 10, 10, 0, 0, 50, 50);
    EXPECT(NinefoldBandsFlush() == bands);
    EXPECT(NinefoldBandsCount(NINEFOLD_BANDS_RECORDED) == (bands ? 100 : 0));
    EXPECT(NinefoldBandsCount(NINEFOLD_BANDS_WHOLE) == 0);
    EXPECT(NinefoldBandsCount(NINEFOLD_BANDS_FLUSHES) == (bands ? 1 : 0));
    EXPECT(NinefoldBandsCount(NINEFOLD_BANDS_SHARED) == (bands ? 1 : 0));
    EXPECT(NinefoldBandsCount(99) == 0);
    EXPECT(NinefoldBandsStop() == bands);
    EXPECT(NinefoldBandsStop() == bands);

    uint64_t sum = 0;
    for (uint32_t k = 0; k < 1024 * 1024; ++k)
        sum = (sum ^ frame->pixels[k]) * 0x100000001B3u;
    printf("%016" PRIx64 "\n", sum);
    return failures != 0;
}
