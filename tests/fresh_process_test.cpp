// What holds before the start-up functions and the first calls: looked at in a copy of the built library, which brings its own,
// untouched static storage.
#include <ninefold/ninefold.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

namespace fs = std::filesystem;

class FreshLibrary : public testing::Test {
protected:
    FreshLibrary()
    {
        // Loaders tell libraries apart by their file.
        copy = fs::temp_directory_path() /
               ("ninefold_" + std::to_string(std::random_device()()) + "_" + fs::path(NINEFOLD_LIBRARY_PATH).filename().string());
        fs::copy_file(NINEFOLD_LIBRARY_PATH, copy);
#if defined(_WIN32)
        handle = LoadLibraryW(copy.c_str());
#else
        handle = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
    }

    void SetUp() override
    {
        ASSERT_NE(handle, nullptr) << "cannot load " << copy;
        state = static_cast<RenderState *>(symbol("rs"));
        ASSERT_NE(state, nullptr);
        ASSERT_NE(state, &::rs);
    }

    ~FreshLibrary() override
    {
        if (handle) {
#if defined(_WIN32)
            FreeLibrary(handle);
#else
            dlclose(handle);
#endif
        }
        std::error_code ignored;
        fs::remove(copy, ignored);
    }

    void *symbol(const char *name) const
    {
#if defined(_WIN32)
        return reinterpret_cast<void *>(GetProcAddress(handle, name));
#else
        return dlsym(handle, name);
#endif
    }

    // The copy's own function of this name.
    template <class Function>
    Function *own(Function &, const char *name) const
    {
        void *address = symbol(name);
        if (!address)
            throw std::runtime_error(std::string("not exported: ") + name);
        return reinterpret_cast<Function *>(address);
    }

    RenderState *state = nullptr;

private:
    fs::path copy;
#if defined(_WIN32)
    HMODULE handle = nullptr;
#else
    void *handle = nullptr;
#endif
};

#define OWN(function) own(function, #function)

TEST_F(FreshLibrary, RenderStateStartsAtZero)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(state);
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof *state, [](unsigned char byte) { return byte == 0; }));
}

TEST_F(FreshLibrary, FirstFrameBufferReplacesNull)
{
    Texture *first = OWN(CreateTexture)(16, 8);
    Texture *second = OWN(CreateTexture)(16, 8);
    EXPECT_EQ(OWN(SetFrameBuffer)(first), nullptr);
    EXPECT_EQ(state->dstPixels, first->pixels);
    EXPECT_EQ(OWN(SetFrameBuffer)(second), first);
    OWN(DeleteTexture)(first);
    OWN(DeleteTexture)(second);
}

TEST_F(FreshLibrary, OperatorsAreNullUntilSelected)
{
    OWN(SetBlendMode)(12);
    EXPECT_EQ(state->blendFunc, nullptr);
    EXPECT_EQ(state->multiFunc, nullptr);
    OWN(SetPrescaleMultiMode)(0);
    EXPECT_NE(state->multiFunc, nullptr);
    OWN(SetBlendMode)(14);
    EXPECT_NE(state->blendFunc, nullptr);
}

TEST_F(FreshLibrary, PresetDrawMasksLetAllThroughBeforeTheirTableIsMade)
{
    for (long index : {0l, 5l, 255l}) {
        std::fill_n(state->drawMask, 16, uint16_t{0xFFFF});
        OWN(SetPresetDrawMask)(index);
        for (uint16_t row : state->drawMask)
            EXPECT_EQ(row, 0) << index;
    }
    OWN(SetPresetDrawMask)(NINEFOLD_STIPPLE_EVEN_ROWS); // needs no table
    EXPECT_EQ(state->drawMask[1], 0xFFFF);

    OWN(MakeDrawMaskTable)();
    EXPECT_EQ(state->drawMask[1], 0);
    OWN(SetPresetDrawMask)(NINEFOLD_STIPPLE_NOTHING);
    EXPECT_EQ(state->drawMask[0], 0xFFFF);
}

TEST_F(FreshLibrary, RunListsAreNullBeforeTheirTableIsMade)
{
    char **table = OWN(GetShaheiTable)();
    for (int word = 0; word < 65536; ++word)
        ASSERT_EQ(table[word], nullptr);
    OWN(MakeShaheiRunlengthTbl)();
    EXPECT_EQ(static_cast<signed char>(*table[0xFFFF]), -16);
}

TEST_F(FreshLibrary, StartUpLeavesTheRestOfTheStateAlone)
{
    OWN(MakeShaheiRunlengthTbl)();
    OWN(MakeDrawMaskTable)();
    OWN(MakeUVLShiftTable)();
    const auto *bytes = reinterpret_cast<const unsigned char *>(state);
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof *state, [](unsigned char byte) { return byte == 0; }));
}

TEST_F(FreshLibrary, LookUpsBeforeTheTableIsMadeGiveNullAndLeaveTheCache)
{
    const auto search = OWN(SearchDrawFunc);
    // Known codes, misses of every shape, the defaults themselves, no shape at all.
    for (unsigned long code : {0x40769ul, 0x1C0368ul, 0x1C0369ul, 0x1C0F6Aul, 0xDC0368ul, 0x369ul, 0x1C036Aul, 0x6Bul, 0ul, 1ul})
        for (int repeat = 0; repeat < 2; ++repeat)
            EXPECT_EQ(search(code), nullptr) << std::hex << code;
    OWN(MakeDrawFuncTable)();
    EXPECT_EQ(search(0), nullptr) << "nothing was found yet that could have taken the place of code 0";
    EXPECT_NE(search(0x40769), nullptr);
}

TEST_F(FreshLibrary, CodeZeroIsNullUntilSomethingIsFound)
{
    const auto search = OWN(SearchDrawFunc);
    OWN(MakeDrawFuncTable)();
    EXPECT_EQ(search(0), nullptr);
    EXPECT_EQ(search(0), nullptr);
    EXPECT_EQ(search(0x6B), nullptr); // low bits 3: leaves the cache
    EXPECT_EQ(search(0), nullptr);
    const DrawFunc unitCopy = search(0x369);
    EXPECT_NE(unitCopy, nullptr);
    EXPECT_NE(search(0), unitCopy);
    EXPECT_EQ(search(0), search(0xDC0368)) << "now a miss of a line";
}

TEST_F(FreshLibrary, AMissIsEnoughForCodeZeroToBeNoLongerCached)
{
    const auto search = OWN(SearchDrawFunc);
    OWN(MakeDrawFuncTable)();
    const DrawFunc unitCopy = search(0x100369); // no such rect option
    EXPECT_NE(unitCopy, nullptr);
    EXPECT_EQ(search(0), search(0xDC0368));
    EXPECT_EQ(unitCopy, search(0x369));
}

TEST_F(FreshLibrary, NamedKernelsStandInTheTable)
{
    const auto search = OWN(SearchDrawFunc);
    OWN(MakeDrawFuncTable)();
    EXPECT_EQ(search(0x188369), OWN(DrawRectTexRunlen_TEST));
    EXPECT_EQ(search(0xFDA768), OWN(DrawLineTest));
    EXPECT_EQ(search(0x81C036A), OWN(DrawPolygon_PERS_TEST));
}

// u = 5.5 texels at depth 100,000, on all vertices. Without shifts u / z is 0x58000 / 100000 = 3 and 1 / z is 0x7FFFFFFF / 100000
// = 21474: the quotient 3 * 2^32 / 21474 = 600023, halved, is 4.57 texels. Shifted left by 7 it is 461 * 2^32 / 21474, shifted
// back by 8: 5.49.
TEST_F(FreshLibrary, PerspectiveWithoutShiftTableIsCoarserButSound)
{
    OWN(MakeDrawFuncTable)();
    Texture *frame = OWN(CreateTexture)(8, 8), *source = OWN(CreateTexture)(8, 1);
    OWN(ClearTexture)(frame);
    for (uint32_t u = 0; u < 8; ++u)
        source->pixels[u] = 0xFF000000 + u;
    OWN(SetFrameBuffer)(frame);
    state->clipRight = state->clipBottom = 8;
    state->tex0 = source;
    state->vertex[0] = {0, 0, 100000};
    state->vertex[1] = {8, 0, 100000};
    state->vertex[2] = {0, 8, 100000};
    for (int k = 0; k < 3; ++k)
        state->uv0[k] = {0x58000, 0};
    const DrawFunc kernel = OWN(SearchDrawFunc)(0x81C036A);
    kernel();
    EXPECT_EQ(frame->pixels[0], 0xFF000004u);
    EXPECT_EQ(frame->pixels[8 * 3 + 3], 0xFF000004u);
    OWN(MakeUVLShiftTable)();
    kernel();
    EXPECT_EQ(frame->pixels[0], 0xFF000005u);
    EXPECT_EQ(frame->pixels[8 * 3 + 3], 0xFF000005u);
    OWN(DeleteTexture)(frame);
    OWN(DeleteTexture)(source);
}

} // namespace
