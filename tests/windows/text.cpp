// Text by the kit on Windows: a font of the system's folder is found by name, and what it draws is where it says.
#include <ninefold/kit.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

using Font = std::unique_ptr<NfkFont, void (*)(NfkFont *)>;
using Text = std::unique_ptr<NfkText, void (*)(NfkText *)>;

class WindowsText : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(screen) << nfkError();
        ASSERT_TRUE(font) << nfkError();
    }
    Text make(const char *text, int32_t width = 0)
    {
        NfkTextStyle style{};
        style.color = 0xFFFFFFFF;
        style.width = width;
        return {nfkMakeText(font.get(), text, &style), nfkDeleteText};
    }
    const std::unique_ptr<NfkScreen, void (*)(NfkScreen *)> screen{nfkCreateScreen(200, 100), nfkReleaseScreen};
    const Font font{nfkOpenFont("", 16), nfkCloseFont};
};

TEST_F(WindowsText, TheSystemHasAFont)
{
    NfkFontInfo info;
    ASSERT_TRUE(nfkGetFontInfo(font.get(), &info)) << nfkError();
    EXPECT_GT(info.ascent, 0);
    RecordProperty("font", info.file);
    const Font again(nfkOpenFontFile(info.file, info.face, 24), nfkCloseFont);
    EXPECT_TRUE(again) << nfkError();
    EXPECT_FALSE(nfkOpenFontFile("nowhere.ttf", 0, 24));
    EXPECT_NE(std::string(nfkError()).find("nowhere.ttf"), std::string::npos);
}

TEST_F(WindowsText, DrawsWithinItsInk)
{
    const Text text = make("Hello");
    ASSERT_TRUE(text) << nfkError();
    NfkTextSize size;
    ASSERT_TRUE(nfkMeasureText(text.get(), &size)) << nfkError();
    EXPECT_EQ(size.lines, 1);
    EXPECT_EQ(size.glyphs, 5);
    EXPECT_EQ(size.missing, 0);
    ASSERT_GT(size.ink.width, 0);
    ASSERT_TRUE(nfkDrawText(text.get(), 20, 30, 255, -1)) << nfkError();
    uint32_t drawn = 0;
    for (int32_t y = 0; y < 100; ++y)
        for (int32_t x = 0; x < 200; ++x) {
            if (!(rs.frameBuffer->pixels[uint32_t(y) * rs.dstPitch + uint32_t(x)] & 0xFFFFFF))
                continue;
            ++drawn;
            EXPECT_TRUE(x >= 20 + size.ink.x && x < 20 + size.ink.x + size.ink.width && y >= 30 + size.ink.y &&
                        y < 30 + size.ink.y + size.ink.height)
                << x << ", " << y;
        }
    EXPECT_GT(drawn, 20u);
}

TEST_F(WindowsText, WrapsAtSpaces)
{
    const Text text = make("one two three four five six", 80);
    ASSERT_TRUE(text) << nfkError();
    NfkTextSize size;
    ASSERT_TRUE(nfkMeasureText(text.get(), &size));
    EXPECT_GT(size.lines, 1);
    EXPECT_LE(size.width, 80);
}

} // namespace
