/*
 * What holds before the start-up functions and the first calls: looked at in a copy of the built library, which brings its own,
 * untouched static storage.
 */
#include <ninefold/ninefold.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
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

    /* The copy's own function of this name. */
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
    OWN(SetPresetDrawMask)(259); // needs no table
    EXPECT_EQ(state->drawMask[1], 0xFFFF);

    OWN(MakeDrawMaskTable)();
    EXPECT_EQ(state->drawMask[1], 0);
    OWN(SetPresetDrawMask)(0);
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

}
