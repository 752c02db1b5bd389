// The GDI source, with every call of its written down and passed on. This program brings that source itself, so the linker leaves
// the library's one out.
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <ninefold/ninefold.h>

namespace {

std::vector<std::string> calls;
LOGFONTA logFont;
MAT2 matrix;
HFONT font;
HDC context;
HGDIOBJ previous;

HFONT tracedCreateFontIndirectA(const LOGFONTA *wanted)
{
    calls.push_back("CreateFontIndirectA");
    logFont = *wanted;
    return font = CreateFontIndirectA(wanted);
}

HDC tracedGetDC(HWND window)
{
    calls.push_back(window ? "GetDC of a window" : "GetDC");
    return context = GetDC(window);
}

HGDIOBJ tracedSelectObject(HDC dc, HGDIOBJ object)
{
    EXPECT_EQ(dc, context);
    calls.push_back(object == font ? "SelectObject font" : object == previous ? "SelectObject previous" : "SelectObject");
    HGDIOBJ before = SelectObject(dc, object);
    if (object == font)
        previous = before;
    return before;
}

BOOL tracedIsDBCSLeadByte(BYTE byte)
{
    calls.push_back("IsDBCSLeadByte");
    return IsDBCSLeadByte(byte);
}

DWORD tracedGetGlyphOutlineA(HDC dc, UINT code, UINT format, GLYPHMETRICS *metrics, DWORD size, void *buffer,
                             const MAT2 *transform)
{
    EXPECT_EQ(dc, context);
    calls.push_back("GetGlyphOutlineA " + std::to_string(code) + " " + std::to_string(format) + (buffer ? " to a buffer" : "") +
                    (size ? " with a size" : ""));
    matrix = *transform;
    return GetGlyphOutlineA(dc, code, format, metrics, size, buffer, transform);
}

int tracedReleaseDC(HWND window, HDC dc)
{
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(dc, context);
    calls.push_back("ReleaseDC");
    const int released = ReleaseDC(window, dc);
    EXPECT_EQ(released, 1);
    return released;
}

BOOL tracedDeleteObject(HGDIOBJ object)
{
    EXPECT_EQ(object, font);
    calls.push_back("DeleteObject");
    const BOOL deleted = DeleteObject(object);
    EXPECT_TRUE(deleted);
    return deleted;
}

} // namespace

#define CreateFontIndirectA tracedCreateFontIndirectA
#define GetDC tracedGetDC
#define SelectObject tracedSelectObject
#define IsDBCSLeadByte tracedIsDBCSLeadByte
#define GetGlyphOutlineA tracedGetGlyphOutlineA
#define ReleaseDC tracedReleaseDC
#define DeleteObject tracedDeleteObject
#undef NINEFOLD_GLYPHS
#define NINEFOLD_GLYPHS 1
#include "glyph/gdi.cpp"

namespace {

class GlyphGdi : public testing::TestWithParam<char *(*)(char *)> {
protected:
    void SetUp() override
    {
        std::memset(static_cast<void *>(&rs), 0, sizeof rs);
        calls.clear();
        rs.tex0 = CreateTexture(64, 64);
        rs.fontName = name_;
        rs.fontHeight = -20;
        rs.fontWeight = 700;
        rs.fontItalic = 1;
        rs.fontQuality = NINEFOLD_QUALITY_GREY16;
    }
    void TearDown() override
    {
        DeleteTexture(rs.tex0);
        rs.tex0 = nullptr;
    }

    char name_[32] = "VL Gothic";
};

INSTANTIATE_TEST_SUITE_P(Both, GlyphGdi, testing::Values(CreateFontTexture, CreateFontTextureFuchi),
                         [](const auto &function) { return function.param == CreateFontTexture ? "plain" : "rimmed"; });

TEST_P(GlyphGdi, ReleasesTheContextFirst)
{
    char text[] = "\x88\xEA";
    ASSERT_EQ(GetParam()(text), text + 2);
    EXPECT_EQ(calls, (std::vector<std::string>{"CreateFontIndirectA", "GetDC", "SelectObject font", "IsDBCSLeadByte",
                                               "GetGlyphOutlineA 35050 5", "GetGlyphOutlineA 35050 5 to a buffer with a size",
                                               "SelectObject previous", "ReleaseDC", "DeleteObject"}));
    EXPECT_GT(rs.glyphWidth, 15);
}

TEST_P(GlyphGdi, ReleasesTheFontFirstWhenTheAtlasIsFull)
{
    char text[] = "\xB1";
    rs.fontCursorY = 63;
    ASSERT_EQ(GetParam()(text), nullptr);
    EXPECT_EQ(calls,
              (std::vector<std::string>{"CreateFontIndirectA", "GetDC", "SelectObject font", "IsDBCSLeadByte",
                                        "GetGlyphOutlineA 4294967217 5", "GetGlyphOutlineA 4294967217 5 to a buffer with a size",
                                        "SelectObject previous", "DeleteObject", "ReleaseDC"}));
}

TEST_P(GlyphGdi, DescribesTheFont)
{
    char text[] = "A";
    ASSERT_NE(GetParam()(text), nullptr);
    LOGFONTA expected{};
    expected.lfHeight = -20;
    expected.lfWeight = 700;
    expected.lfItalic = 1;
    expected.lfCharSet = 0x80;
    expected.lfOutPrecision = 7;
    expected.lfQuality = 2;
    expected.lfPitchAndFamily = 0x30;
    std::strcpy(expected.lfFaceName, "VL Gothic");
    EXPECT_EQ(std::memcmp(&logFont, &expected, sizeof expected), 0);
    const uint32_t identity[] = {0x10000, 0, 0, 0x10000};
    EXPECT_EQ(std::memcmp(&matrix, identity, sizeof identity), 0);
}

TEST_P(GlyphGdi, LeavesNoObjectBehind)
{
    char text[] = "A";
    const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int i = 0; i < 20000; ++i) { // more than a process may own
        rs.fontCursorX = rs.fontCursorY = rs.fontLineBottom = 0;
        if (i % 2)
            rs.fontCursorY = 63;
        ASSERT_EQ(GetParam()(text) == nullptr, i % 2 != 0);
        calls.clear();
    }
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), before);
    EXPECT_EQ(rs.glyphAdvance, 11);
}

} // namespace
