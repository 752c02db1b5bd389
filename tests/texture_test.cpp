// Textures: sizes, reference counts, copies and replaced colours; and the setters that store a field.
#include <ninefold/render_state.h>

#include "core/startup.h"
#include "support/texture_ptr.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <climits>
#include <cstring>
#include <numeric>

namespace {

using Pixels = std::vector<uint32_t>;

// A texture whose pixel at index i is i + 1.
TexturePtr numbered(unsigned long width, unsigned long height)
{
    TexturePtr texture(CreateTexture(width, height));
    std::iota(texture->pixels, texture->pixels + texture->width * texture->height, 1u);
    return texture;
}

// A texture object that writes down its end.
struct Witness : Texture {
    Witness(std::vector<int> &list, int number) : Texture(), deaths(list), name(number) {}
    ~Witness() override { deaths.push_back(name); }
    Witness(const Witness &) = delete;
    Witness &operator=(const Witness &) = delete;

    std::vector<int> &deaths;
    int name;
};

TEST(CreateTexture, RoundsSizesUpToPowersOfTwo)
{
    const struct {
        unsigned long asked;
        uint32_t size, exponent;
    } cases[] = {{0, 1, 0},          {1, 1, 0},          {2, 2, 1},          {3, 4, 2},        {4, 4, 2},
                 {5, 8, 3},          {7, 8, 3},          {8, 8, 3},          {9, 16, 4},       {255, 256, 8},
                 {256, 256, 8},      {257, 512, 9},      {1023, 1024, 10},   {1024, 1024, 10}, {1025, 2048, 11},
                 {65535, 65536, 16}, {65536, 65536, 16}, {65537, 131072, 17}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.asked);
        TexturePtr wide(CreateTexture(c.asked, 2));
        EXPECT_EQ(wide->width, c.size);
        EXPECT_EQ(wide->log2Width, c.exponent);
        EXPECT_EQ(wide->origWidth, c.asked);
        EXPECT_EQ(wide->height, 2u);
        TexturePtr high(CreateTexture(2, c.asked));
        EXPECT_EQ(high->height, c.size);
        EXPECT_EQ(high->log2Height, c.exponent);
        EXPECT_EQ(high->origHeight, c.asked);
        EXPECT_EQ(high->width, 2u);
    }
}

TEST(CreateTexture, ZeroSizeGivesOnePixel)
{
    TexturePtr texture(CreateTexture(0, 0));
    EXPECT_EQ(texture->width, 1u);
    EXPECT_EQ(texture->height, 1u);
    EXPECT_EQ(texture->log2Width, 0u);
    EXPECT_EQ(texture->log2Height, 0u);
    EXPECT_EQ(texture->origWidth, 0u);
    EXPECT_EQ(texture->origHeight, 0u);
    ASSERT_NE(texture->pixels, nullptr);
    texture->pixels[0] = 5;
}

TEST(CreateTexture, ScreenSize)
{
    TexturePtr texture(CreateTexture(640, 480));
    EXPECT_EQ(texture->width, 1024u);
    EXPECT_EQ(texture->height, 512u);
    EXPECT_EQ(texture->log2Width, 10u);
    EXPECT_EQ(texture->log2Height, 9u);
    EXPECT_EQ(texture->origWidth, 640u);
    EXPECT_EQ(texture->origHeight, 480u);
}

TEST(CreateTexture, StartsWithoutChainMapsFlagsAndReferences)
{
    TexturePtr texture(CreateTexture(4, 4));
    EXPECT_EQ(texture->mipCount, 0u);
    for (const Texture *level : texture->mip)
        EXPECT_EQ(level, nullptr);
    EXPECT_EQ(texture->runlengthMap, nullptr);
    EXPECT_EQ(texture->zeroPixelMap, nullptr);
    EXPECT_EQ(texture->flags, 0u);
    EXPECT_EQ(texture->refCount, 0);
}

TEST(CreateTexture, PixelsAreAligned)
{
    for (unsigned long size : {1, 2, 3, 5, 17, 64, 300}) {
        TexturePtr texture(CreateTexture(size, 1));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(texture->pixels) % 16, 0u) << size;
    }
}

TEST(CreateTexture, StoreWhoseByteCountOverflowsIsLeftOut)
{
    const std::pair<unsigned long, unsigned long> sizes[] = {
        {32768, 32768}, {65536, 65536}, {0x40000000, 1}, {1, 0x80000000}, {0xFFFFFFFF, 0xFFFFFFFF}};
    for (const auto &[width, height] : sizes) {
        TexturePtr texture(CreateTexture(width, height));
        EXPECT_EQ(texture->pixels, nullptr) << width << " by " << height;
        EXPECT_EQ(texture->origWidth, width);
        EXPECT_EQ(texture->origHeight, height);
    }
}

TEST(CreateTexture, LowWordOfSizesCounts)
{
    if constexpr (sizeof(unsigned long) > 4) {
        TexturePtr texture(CreateTexture((1ul << 16 << 16) + 3, (5ul << 16 << 16) + 2));
        EXPECT_EQ(texture->width, 4u);
        EXPECT_EQ(texture->height, 2u);
        EXPECT_EQ(texture->origWidth, 3u);
        EXPECT_EQ(texture->origHeight, 2u);
    }
}

TEST(DeleteTexture, FirstReferenceChangesNothing)
{
    for (int references = 0; references <= 4; ++references) {
        std::vector<int> deaths;
        Texture *texture = new Witness(deaths, 1);
        for (int i = 0; i < references; ++i)
            AddRefTexture(texture);
        EXPECT_EQ(texture->refCount, references);

        int deletes = 0;
        while (deaths.empty()) {
            DeleteTexture(texture);
            ++deletes;
        }
        EXPECT_EQ(deletes, references == 0 ? 1 : references) << references << " references";
    }
}

TEST(DeleteTexture, FreesLevelsInAscendingOrderThenTheTexture)
{
    std::vector<int> deaths;
    Texture *texture = new Witness(deaths, 0);
    texture->mip[0] = texture;
    for (int level = 1; level < 4; ++level)
        texture->mip[level] = new Witness(deaths, level);
    texture->mipCount = 4;
    DeleteTexture(texture);
    EXPECT_EQ(deaths, (std::vector{1, 2, 3, 0}));
}

TEST(DeleteTexture, LevelHeldTwiceSurvives)
{
    std::vector<int> deaths;
    Texture *texture = new Witness(deaths, 0);
    Texture *level = new Witness(deaths, 1);
    AddRefTexture(level);
    AddRefTexture(level);
    texture->mip[0] = texture;
    texture->mip[1] = level;
    texture->mipCount = 2;
    DeleteTexture(texture);
    EXPECT_EQ(deaths, std::vector{0});
    DeleteTexture(level);
    EXPECT_EQ(deaths, (std::vector{0, 1}));
}

TEST(DeleteTexture, FreesMapsAndPixels) // seen by the leak check
{
    Texture *texture = makeTexture(8, 8).release();
    CreateRunlengthMap(texture);
    CreateZeroPixelMap(texture);
    CreateMipmapTexture(texture);
    texture->flags = ~1u;
    DeleteTexture(texture);
}

TEST(DeleteTexture, HostPixelsStay)
{
    std::vector<int> deaths;
    TexturePtr model = makeTexture(2, 1, {7, 8});
    Texture *texture = new Witness(deaths, 1);
    texture->width = 2;
    texture->height = 1;
    texture->log2Width = 1;
    texture->pixels = model->pixels;
    texture->flags = NINEFOLD_TEXTURE_HOST_PIXELS;
    CreateRunlengthMap(texture);
    CreateZeroPixelMap(texture);
    texture->mip[0] = texture;
    texture->mip[1] = new Witness(deaths, 2);
    texture->mipCount = 2;
    DeleteTexture(texture);
    EXPECT_EQ(deaths, (std::vector{2, 1})); // all the rest goes; the maps are seen by the leak check
    EXPECT_EQ(pixelsOf(model), (Pixels{7, 8}));
}

// As the header shows it: nothing is allocated that DeleteTexture would not free.
TEST(DeleteTexture, ARecordWithoutPixelsOfItsOwnTakesTheHosts)
{
    std::vector<uint32_t> pixels(1024 * 512 + 1, 5);
    Texture *view = CreateTexture(0x8000, 0x8000);
    ASSERT_EQ(view->pixels, nullptr);
    view->pixels = pixels.data();
    view->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
    view->log2Width = 10, view->width = 1024;
    view->log2Height = 9, view->height = 512;
    ClearTexture(view);
    CreateMipmapTexture(view);
    EXPECT_EQ(view->mipCount, 10u);
    DeleteTexture(view);
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0u), 1024 * 512);
    EXPECT_EQ(pixels.back(), 5u);
}

TEST(ClearTexture, ClearsTheSpareAreaToo)
{
    TexturePtr texture = numbered(3, 3);
    ClearTexture(texture.get());
    EXPECT_EQ(pixelsOf(texture), Pixels(16, 0));
}

TEST(CopyTexture, WritesTheFirstTexture)
{
    TexturePtr dst = makeTexture(4, 2);
    TexturePtr src = numbered(2, 2);
    CopyTexture(dst.get(), src.get(), 1, 0, 0, 0, 2, 2);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0, 1, 2, 0, 0, 3, 4, 0}));
    EXPECT_EQ(pixelsOf(src), (Pixels{1, 2, 3, 4}));
}

TEST(CopyTexture, OffsetsWrapOnce)
{
    TexturePtr dst = makeTexture(4, 2);
    TexturePtr src = numbered(4, 2);
    CopyTexture(dst.get(), src.get(), 4, 2, 0, 0, 1, 1); // the width and the height: column 0, row 0
    EXPECT_EQ(pixelsOf(dst), (Pixels{1, 0, 0, 0, 0, 0, 0, 0}));
    CopyTexture(dst.get(), src.get(), 1, 0, -1, -1, 1, 1); // last column and row
    EXPECT_EQ(pixelsOf(dst), (Pixels{1, 8, 0, 0, 0, 0, 0, 0}));
    CopyTexture(dst.get(), src.get(), -2, -1, 5, 3, 1, 1);
    EXPECT_EQ(pixelsOf(dst), (Pixels{1, 8, 0, 0, 0, 0, 6, 0}));
}

TEST(CopyTexture, EachOffsetWrapsInItsOwnTexture)
{
    TexturePtr dst = makeTexture(8, 4);
    TexturePtr src = numbered(4, 2);
    CopyTexture(dst.get(), src.get(), 13, 7, 6, 3, 1, 1);
    for (uint32_t i = 0; i < 32; ++i)
        EXPECT_EQ(dst->pixels[i], i == 3 * 8 + 5 ? 7u : 0u) << i; // row 1, column 2 of the source
    ClearTexture(src.get());
    CopyTexture(src.get(), dst.get(), 6, 3, 13, 7, 1, 1);
    EXPECT_EQ(pixelsOf(src), (Pixels{0, 0, 0, 0, 0, 0, 7, 0}));
}

TEST(CopyTexture, ClipsToTheSource)
{
    TexturePtr dst = makeTexture(8, 1);
    TexturePtr src = numbered(8, 1);
    CopyTexture(dst.get(), src.get(), 0, 0, 3, 0, 100, 1); // 5 columns, no wrapped remainder
    EXPECT_EQ(pixelsOf(dst), (Pixels{4, 5, 6, 7, 8, 0, 0, 0}));

    TexturePtr high = makeTexture(1, 8);
    TexturePtr column = numbered(1, 8);
    CopyTexture(high.get(), column.get(), 0, 0, 0, 5, 1, 100);
    EXPECT_EQ(pixelsOf(high), (Pixels{6, 7, 8, 0, 0, 0, 0, 0}));
}

TEST(CopyTexture, ClipsToTheDestination)
{
    TexturePtr dst = makeTexture(4, 4);
    TexturePtr src = numbered(8, 8);
    CopyTexture(dst.get(), src.get(), 2, 3, 0, 0, 8, 8);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2}));
}

TEST(CopyTexture, HugeSizesAreClippedToo)
{
    TexturePtr dst = makeTexture(4, 2);
    TexturePtr src = numbered(4, 2);
    CopyTexture(dst.get(), src.get(), 1, 1, 2, 0, INT_MAX, INT_MAX);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0, 0, 0, 0, 0, 3, 4, 0}));
}

TEST(CopyTexture, SizesBelowOneCopyNothing)
{
    TexturePtr dst = makeTexture(4, 4);
    TexturePtr src = numbered(4, 4);
    for (long size : {0l, -1l, -100l, long{INT_MIN}}) {
        CopyTexture(dst.get(), src.get(), 0, 0, 0, 0, size, 4);
        CopyTexture(dst.get(), src.get(), 0, 0, 0, 0, 4, size);
        CopyTexture(dst.get(), src.get(), 0, 0, 0, 0, size, size);
    }
    EXPECT_EQ(pixelsOf(dst), Pixels(16, 0));
}

TEST(CopyTexture, LowWordsOfItsNumbersCount)
{
    if constexpr (sizeof(long) > 4) {
        const long high = 5l << 16 << 16;
        TexturePtr dst = makeTexture(4, 2);
        TexturePtr src = numbered(4, 2);
        CopyTexture(dst.get(), src.get(), high + 1, high + 1, high + 2, high, high + 2, high + 1);
        EXPECT_EQ(pixelsOf(dst), (Pixels{0, 0, 0, 0, 0, 3, 4, 0}));
        // Below 0 in the low word: nothing is copied.
        CopyTexture(dst.get(), src.get(), 0, 0, 0, 0, high + 0xFFFFFFFF, 2);
        CopyTexture(dst.get(), src.get(), 0, 0, 0, 0, 4, high + 0x80000000);
        EXPECT_EQ(pixelsOf(dst), (Pixels{0, 0, 0, 0, 0, 3, 4, 0}));
    }
}

TEST(CopyTexture, OverlapRepeatsWhatWasJustWritten)
{
    TexturePtr row = numbered(8, 1);
    CopyTexture(row.get(), row.get(), 1, 0, 0, 0, 7, 1);
    EXPECT_EQ(pixelsOf(row), Pixels(8, 1));

    TexturePtr long_ = numbered(64, 1);
    CopyTexture(long_.get(), long_.get(), 3, 0, 0, 0, 61, 1);
    for (uint32_t x = 0; x < 64; ++x)
        ASSERT_EQ(long_->pixels[x], x % 3 + 1) << x;

    TexturePtr left = numbered(8, 1);
    CopyTexture(left.get(), left.get(), 0, 0, 1, 0, 7, 1);
    EXPECT_EQ(pixelsOf(left), (Pixels{2, 3, 4, 5, 6, 7, 8, 8}));

    TexturePtr rows = numbered(2, 4);
    CopyTexture(rows.get(), rows.get(), 0, 1, 0, 0, 2, 3);
    EXPECT_EQ(pixelsOf(rows), (Pixels{1, 2, 1, 2, 1, 2, 1, 2}));
}

TEST(ReplacePixel, NewComesBeforeOld)
{
    TexturePtr texture = makeTexture(4, 1, {1, 2, 3, 2});
    ReplacePixel(texture.get(), 1, 2);
    EXPECT_EQ(pixelsOf(texture), (Pixels{1, 1, 3, 1}));
}

TEST(ReplacePixel, AlphaCountsAndTheSpareAreaBelongs)
{
    TexturePtr texture = makeTexture(3, 1, {0xFF123456, 0x00123456, 0xFF123457, 0xFF123456});
    ReplacePixel(texture.get(), 9, 0xFF123456);
    EXPECT_EQ(pixelsOf(texture), (Pixels{9, 0x00123456, 0xFF123457, 9}));
}

TEST(SetClearPixel, MakesAColourTransparent)
{
    TexturePtr texture = makeTexture(3, 1, {0xFFFF00FF, 0x00FF00FF, 5, 0xFFFF00FF});
    SetClearPixel(texture.get(), 0xFFFF00FF);
    EXPECT_EQ(pixelsOf(texture), (Pixels{0, 0x00FF00FF, 5, 0}));
}

TEST(SetClearPixel, ZeroChangesNothing)
{
    TexturePtr texture = makeTexture(4, 1, {0, 1, 0xFF000000, 0});
    SetClearPixel(texture.get(), 0);
    EXPECT_EQ(pixelsOf(texture), (Pixels{0, 1, 0xFF000000, 0}));
}

TEST(SetClearPixel, LowWordsOfColoursCount)
{
    if constexpr (sizeof(long) > 4) {
        const unsigned long high = 7ul << 16 << 16;
        TexturePtr texture = makeTexture(4, 1, {7, 0xFFFF00FF, 5, 7});
        SetClearPixel(texture.get(), high + 0xFFFF00FF);
        EXPECT_EQ(pixelsOf(texture), (Pixels{7, 0, 5, 7}));
        ReplacePixel(texture.get(), high + 9, high + 7);
        EXPECT_EQ(pixelsOf(texture), (Pixels{9, 0, 5, 9}));
    }
}

TEST(SetFrameBuffer, FillsTheTargetFieldsAndReturnsTheOneBefore)
{
    rs = RenderState{};
    TexturePtr first = makeTexture(40, 20); // the fields are those of the whole texture
    TexturePtr second = makeTexture(8, 16);
    EXPECT_EQ(SetFrameBuffer(first.get()), nullptr);
    EXPECT_EQ(rs.frameBuffer, first.get());
    EXPECT_EQ(rs.dstPixels, first->pixels);
    EXPECT_EQ(rs.dstShift, 6u);
    EXPECT_EQ(rs.dstPitch, 64u);
    EXPECT_EQ(rs.dstHeight, 32u);
    EXPECT_EQ(SetFrameBuffer(second.get()), first.get());
    EXPECT_EQ(rs.dstPixels, second->pixels);
    EXPECT_EQ(rs.dstShift, 3u);
    EXPECT_EQ(rs.dstPitch, 8u);
    EXPECT_EQ(rs.dstHeight, 16u);
    EXPECT_EQ(first->refCount, 0);
    EXPECT_EQ(second->refCount, 0);
    rs = RenderState{};
}

TEST(ModeSetters, StoreAnyValueInTheirFieldAlone)
{
    const struct {
        void (*set)(long);
        int32_t RenderState::*field;
    } setters[] = {
        {SetShapeMode, &RenderState::shapeMode},         {SetPrescaleMode, &RenderState::prescaleMode},
        {SetRuleAlphaMode, &RenderState::ruleAlphaMode}, {SetFilterMode, &RenderState::filterMode},
        {SetRectOptMode, &RenderState::rectOptMode},     {SetShaheiMode, &RenderState::shaheiMode},
        {SetMultiMode, &RenderState::multiMode},         {SetPersMode, &RenderState::persMode},
    };
    for (const auto &setter : setters) {
        for (long value : {1l, 0l, -1l, 99l, long{INT_MAX}, long{INT_MIN}}) {
            std::memset(&rs, 0x5A, sizeof rs);
            RenderState expected;
            std::memcpy(&expected, &rs, sizeof rs);
            expected.*setter.field = static_cast<int32_t>(value);
            setter.set(value);
            EXPECT_EQ(std::memcmp(&rs, &expected, sizeof rs), 0) << &setter - setters << " " << value;
        }
        if constexpr (sizeof(long) > 4) {
            setter.set((3l << 16 << 16) + 6);
            EXPECT_EQ(rs.*setter.field, 6);
        }
    }
    rs = RenderState{};
}

TEST(UvlShiftTable, BringsTheHighestOfSevenBitsToBitSix)
{
    MakeUVLShiftTable();
    EXPECT_EQ(ninefold::uvlShift[0x40], 0);
    EXPECT_EQ(ninefold::uvlShift[1], 6);
    EXPECT_EQ(ninefold::uvlShift[0], 7);
    EXPECT_EQ(ninefold::uvlShift[0x80], 7);
    EXPECT_EQ(ninefold::uvlShift[0xC0], 0);
    for (int i = 0; i < 256; ++i) {
        int shift = 0;
        while (shift < 7 && !(i << shift & 0x40))
            ++shift;
        EXPECT_EQ(ninefold::uvlShift[i], shift) << i;
    }
}

TEST(UvlShiftTable, CanBeMadeAgain)
{
    MakeUVLShiftTable();
    const std::vector<int32_t> once(ninefold::uvlShift, ninefold::uvlShift + 256);
    MakeUVLShiftTable();
    EXPECT_EQ(once, std::vector<int32_t>(ninefold::uvlShift, ninefold::uvlShift + 256));
}

} // namespace
