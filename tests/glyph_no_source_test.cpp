// A library built without a glyph source. This program brings that source itself, so the linker leaves the platform's one out.
#undef NINEFOLD_GLYPHS
#define NINEFOLD_GLYPHS 0
#include "glyph/none.cpp"

#include <gtest/gtest.h>
#include <ninefold/ninefold.h>

namespace {

TEST(GlyphNoSource, EveryGlyphIsEmpty)
{
    rs.tex0 = CreateTexture(16, 16);
    std::fill_n(rs.tex0->pixels, 16 * 16, 0x12345678);
    char name[] = "VL Gothic";
    rs.fontName = name;
    rs.fontHeight = 16;
    char text[] = "A\x88\xEA";
    for (const auto function : {CreateFontTextureFuchi, CreateFontTexture}) {
        rs.glyphWidth = rs.glyphHeight = rs.glyphOriginX = rs.glyphOriginY = rs.glyphAdvance = 9;
        EXPECT_EQ(function(text), text + 1);
        EXPECT_EQ(function(text + 1), text + 3);
        EXPECT_EQ(rs.glyphCode, 0x88EAu);
        EXPECT_EQ(rs.glyphWidth, 0);
        EXPECT_EQ(rs.glyphHeight, 0);
        EXPECT_EQ(rs.glyphOriginX, 0);
        EXPECT_EQ(rs.glyphOriginY, 0);
        EXPECT_EQ(rs.glyphAdvance, 0);
        EXPECT_EQ(rs.fontCursorX, 0u);
        EXPECT_EQ(rs.tex0->pixels[0], function == CreateFontTexture ? 0 : 0x12345678u);
        EXPECT_EQ(rs.tex0->pixels[1], 0x12345678u);
    }
    DeleteTexture(rs.tex0);
    rs.tex0 = nullptr;
}

} // namespace
