// The draw mask and prescale as kernels apply them.
#include <ninefold/ninefold.h>

#include "support/texture_ptr.h"

#include <gtest/gtest.h>

namespace {

constexpr int size = 64;
constexpr uint32_t background = 0x11223344;

class PixelStages : public testing::Test {
protected:
    void SetUp() override
    {
        MakeUVLShiftTable();
        MakeShaheiRunlengthTbl();
        MakeDrawFuncTable();
        rs = RenderState{};
        MakeDrawMaskTable();
        SetFrameBuffer(target.get());
        rs.clipRight = rs.clipBottom = size;
        SetShapeMode(NINEFOLD_SHAPE_RECTANGLE);
        SetMultiMode(NINEFOLD_MULTI_NONE);
        fillBackground();
    }

    void TearDown() override { rs = RenderState{}; }

    void fillBackground() { std::fill_n(target->pixels, size * size, background); }

    void draw(int left, int top, int right, int bottom)
    {
        rs.vertex[0] = {left, top, 0};
        rs.vertex[1] = {right, bottom, 0};
        SearchDrawFunc(CreateDrawCode())();
    }

    uint32_t at(int x, int y) const { return target->pixels[y * size + x]; }

    const TexturePtr target = makeTexture(size, size);
};

// Fills and tiles that a draw mask of Shahei mode 4 gates.
class MaskedRectangle : public PixelStages, public testing::WithParamInterface<int> {
protected:
    void SetUp() override
    {
        PixelStages::SetUp();
        SetFilterMode(GetParam());
        SetShaheiMode(NINEFOLD_SHAHEI_STIPPLE);
        rs.color[0] = 0xFFABCDEF;
        rs.tex0 = source.get();
        std::fill_n(source->pixels, 16, 0xFFABCDEF);
    }

    const TexturePtr source = makeTexture(4, 4);
};

TEST_P(MaskedRectangle, PresetZeroDrawsNothing)
{
    SetPresetDrawMask(NINEFOLD_STIPPLE_NOTHING);
    draw(3, 5, 61, 60);
    for (int i = 0; i < size * size; ++i)
        ASSERT_EQ(target->pixels[i], background) << i;
}

TEST_P(MaskedRectangle, PresetOneDrawsTwoPixelsOfEveryCellWhereverTheRectangleLies)
{
    SetPresetDrawMask(1);
    const int corners[][4] = {{0, 0, 64, 64}, {1, 1, 63, 63}, {7, 8, 8, 9}, {15, 0, 16, 1}, {14, 3, 40, 49}, {16, 16, 32, 32}};
    for (const auto &c : corners) {
        fillBackground();
        draw(c[0], c[1], c[2], c[3]);
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const bool inside = x >= c[0] && x < c[2] && y >= c[1] && y < c[3];
                const bool passes = (x % 16 == 15 && y % 16 == 0) || (x % 16 == 7 && y % 16 == 8);
                ASSERT_EQ(at(x, y), inside && passes ? 0xFFABCDEF : background) << x << " " << y;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Filters, MaskedRectangle, testing::Values(0, 6));

TEST_F(PixelStages, PrescaleZeroUnderCopyWritesAlphaOnly)
{
    TexturePtr source = makeTexture(4, 1, {0xFF123456, 0x80FFFFFF, 0, 0x00FFFFFF});
    rs.tex0 = source.get();
    SetPrescaleMode(NINEFOLD_PRESCALE_ON);
    rs.prescale = 0;
    draw(0, 0, 4, 1);
    EXPECT_EQ(at(0, 0), 0xFF000000u);
    EXPECT_EQ(at(1, 0), 0x80000000u);
    EXPECT_EQ(at(2, 0), background); // the transparent test comes first
    EXPECT_EQ(at(3, 0), 0u); // so that prescale may write a 0
}

TEST_F(PixelStages, PrescaleChangesNothingUnderConstantAlpha)
{
    TexturePtr source = makeTexture(4, 1, {0xFF123456, 0x80FFFFFF, 0x01020304, 0x00FFFFFF});
    rs.tex0 = source.get();
    rs.blendAlpha = 99;
    SetBlendMode(NINEFOLD_BLEND_CONST_ALPHA);
    draw(0, 0, 4, 1);
    const std::vector<uint32_t> plain(target->pixels, target->pixels + 4);
    for (uint32_t factor : {0u, 128u, 256u}) {
        fillBackground();
        SetPrescaleMode(NINEFOLD_PRESCALE_ON);
        rs.prescale = factor;
        draw(0, 0, 4, 1);
        EXPECT_EQ(std::vector<uint32_t>(target->pixels, target->pixels + 4), plain) << factor;
    }
}

TEST_F(PixelStages, PrescaleFadesUnderAlphaBlends)
{
    TexturePtr source = makeTexture(1, 1, {0xFFFFFFFF});
    rs.tex0 = source.get();
    SetPrescaleMode(NINEFOLD_PRESCALE_ON);
    rs.prescale = 128; // alpha 255 to 127
    for (long blend : {NINEFOLD_BLEND_ALPHA, NINEFOLD_BLEND_ALPHA_FAST}) {
        target->pixels[0] = 0xFF000000;
        SetBlendMode(blend);
        draw(0, 0, 1, 1);
        EXPECT_EQ(at(0, 0), 0x007E7E7Eu) << blend; // 255 * 127 / 256
    }
}

TEST_F(PixelStages, OperatorChangesUnderAHeldKernel)
{
    TexturePtr source = makeTexture(1, 1, {0x80102030});
    rs.tex0 = source.get();
    rs.color[0] = 0x00010101;
    SetMultiMode(NINEFOLD_MULTI_COLOUR);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_XOR);
    rs.vertex[1] = {1, 1, 0};
    const DrawFunc kernel = SearchDrawFunc(CreateDrawCode());
    kernel();
    EXPECT_EQ(at(0, 0), 0x80112131u);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    kernel();
    EXPECT_EQ(at(0, 0), 0x80010101u);
    rs.prescaleMulti = 0;
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    kernel();
    EXPECT_EQ(at(0, 0), 0x80000000u);
}

} // namespace
