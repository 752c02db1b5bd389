// A machine without a font. A program of its own, because fontconfig reads its configuration once.
#include <ninefold/ninefold.h>

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#endif

namespace {

#if defined(_WIN32)

TEST(GlyphNoFont, GlyphsAreEmpty) { GTEST_SKIP() << "GDI always has a font"; }

#else

TEST(GlyphNoFont, GlyphsAreEmpty)
{
    const auto config = std::filesystem::temp_directory_path() / ("ninefold-no-font-" + std::to_string(getpid()) + ".conf");
    std::ofstream(config) << "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig/>";
    setenv("FONTCONFIG_FILE", config.c_str(), 1);

    rs.tex0 = CreateTexture(32, 32);
    std::fill_n(rs.tex0->pixels, 32 * 32, 0x12345678);
    char name[] = "VL Gothic";
    rs.fontName = name;
    rs.fontHeight = 16;
    rs.fontQuality = NINEFOLD_QUALITY_GREY64;
    char text[] = "A\x88\xEA";
    EXPECT_EQ(CreateFontTextureFuchi(text), text + 1);
    EXPECT_EQ(CreateFontTexture(text + 1), text + 3);
    EXPECT_EQ(rs.glyphWidth, 0);
    EXPECT_EQ(rs.glyphHeight, 0);
    EXPECT_EQ(rs.glyphAdvance, 0);
    EXPECT_EQ(rs.tex0->pixels[0], 0u);
    EXPECT_EQ(rs.tex0->pixels[1], 0x12345678u);
    DeleteTexture(rs.tex0);
    std::filesystem::remove(config);
}

#endif

} // namespace
