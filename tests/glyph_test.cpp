// Packing, expansion and rim over a scripted glyph source, by hand and against the reference.
#include "glyph/atlas.h"
#include "reference/glyph.h"
#include "support/canvas.h"

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <ninefold/glyph.h>

#ifdef __linux__
#include <sys/resource.h>
#endif

using namespace ninefold::glyph;

namespace {

// Answers what it is told to and keeps a log of what it is asked.
class ScriptedSource final : public Source {
public:
    reference::ServedGlyph glyph;
    bool failSize = false, failBitmap = false;
    uint32_t claimed = 0; // bytes, if not those of the glyph
    std::function<bool(uint8_t)> lead = [](uint8_t) { return false; };

    std::vector<std::string> log;
    FontDescription font{};
    uint32_t code = 0;
    Format format{};

    void open(const FontDescription &description) override
    {
        font = description;
        log.push_back("open");
    }

    bool isLeadByte(uint8_t byte) override
    {
        log.push_back("lead? " + std::to_string(byte));
        return lead(byte);
    }

    uint32_t outline(uint32_t wanted, Format wantedFormat, Metrics &metrics, uint32_t size, uint8_t *bitmap) override
    {
        const bool first = log.back().starts_with("lead");
        log.push_back("outline " + std::to_string(size));
        if (!first) {
            EXPECT_EQ(wanted, code);
            EXPECT_EQ(wantedFormat, format);
        }
        code = wanted;
        format = wantedFormat;
        if (first ? failSize : failBitmap)
            return failed;
        metrics = {glyph.width, glyph.height, glyph.originX, glyph.originY, glyph.advance};
        for (uint32_t i = 0; i < size; ++i) {
            EXPECT_EQ(bitmap[i], 0) << "GDI leaves padding as it was, so the buffer must come clear";
            bitmap[i] = glyph.bytes[i];
        }
        return claimed ? claimed : static_cast<uint32_t>(glyph.bytes.size());
    }

    void close(Release order) override
    {
        log.push_back(order == Release::ContextFirst ? "close context font" : "close font context");
    }
};

constexpr uint32_t paint = 0xDEADBEEF;
constexpr size_t margin = 64;

class Glyph : public testing::Test {
protected:
    void SetUp() override
    {
        std::memset(static_cast<void *>(&rs), 0, sizeof rs);
        rs.fontName = name_;
        makeAtlas(64, 32);
    }
    void TearDown() override { rs.tex0 = nullptr; }

    void makeAtlas(uint32_t width, uint32_t height)
    {
        words_.assign(width * height + 2 * margin, paint);
        atlas_.pixels = words_.data() + margin;
        atlas_.width = width;
        atlas_.height = height;
        rs.tex0 = &atlas_;
    }

    std::vector<uint32_t> pixels() const { return {words_.begin() + margin, words_.end() - margin}; }
    uint32_t pixel(uint32_t x, uint32_t y) const { return words_[margin + y * atlas_.width + x]; }
    bool marginsIntact() const
    {
        for (size_t i = 0; i < margin; ++i)
            if (words_[i] != paint || words_[words_.size() - 1 - i] != paint)
                return false;
        return true;
    }

    // A box of `value`s in the rows of the quality's format.
    void serve(uint32_t width, uint32_t height, uint8_t value = 0xFF)
    {
        const uint32_t pitch = rs.fontQuality == NINEFOLD_QUALITY_MONO ? (width + 31) / 32 * 4 : (width + 3) / 4 * 4;
        source_.glyph = {width, height, 0, 0, static_cast<int32_t>(width), std::vector<uint8_t>(pitch * height, value)};
    }
    void serveEmpty(uint32_t width = 1, uint32_t height = 1) { source_.glyph = {width, height, 0, 0, 5, {}}; }

    bool draw(Style style = Style::Plain)
    {
        source_.log.clear();
        char text[] = "A";
        return drawCharacter(text, style, source_) != nullptr;
    }

    char name_[32] = "Some Face";
    ScriptedSource source_;
    Texture atlas_{};
    std::vector<uint32_t> words_;
};

// Both functions pack alike.
class GlyphOfStyle : public Glyph, public testing::WithParamInterface<Style> {};
INSTANTIATE_TEST_SUITE_P(Both, GlyphOfStyle, testing::Values(Style::Plain, Style::Rimmed),
                         [](const auto &style) { return style.param == Style::Plain ? "plain" : "rimmed"; });

TEST_P(GlyphOfStyle, NullTextDoesNothing)
{
    rs.fontCursorX = 3;
    const RenderState before = rs;
    EXPECT_EQ(drawCharacter(nullptr, GetParam(), source_), nullptr);
    EXPECT_TRUE(source_.log.empty());
    EXPECT_EQ(std::memcmp(&before, &rs, sizeof rs), 0);
    EXPECT_EQ(CreateFontTexture(nullptr), nullptr);
    EXPECT_EQ(CreateFontTextureFuchi(nullptr), nullptr);
}

TEST_P(GlyphOfStyle, DescribesTheFontAnewForEachGlyph)
{
    serve(1, 1);
    rs.fontHeight = -24;
    rs.fontWeight = 700;
    rs.fontItalic = 0xABCDEF01;
    draw(GetParam());
    EXPECT_EQ(source_.font.height, -24);
    EXPECT_EQ(source_.font.weight, 700);
    EXPECT_EQ(source_.font.italic, 1);
    EXPECT_STREQ(source_.font.name, "Some Face");
    for (size_t i = sizeof "Some Face"; i < sizeof source_.font.name; ++i)
        EXPECT_EQ(source_.font.name[i], 0);
    rs.fontHeight = 10;
    rs.fontItalic = 0x100;
    draw(GetParam());
    EXPECT_EQ(source_.font.height, 10);
    EXPECT_EQ(source_.font.italic, 0);
}

TEST_F(Glyph, NameMayBeMissingOrTooLong)
{
    serve(1, 1);
    rs.fontName = nullptr;
    draw();
    EXPECT_STREQ(source_.font.name, "");
    char longName[] = "0123456789012345678901234567890123456789";
    rs.fontName = longName;
    draw();
    EXPECT_STREQ(source_.font.name, "0123456789012345678901234567890");
}

TEST_P(GlyphOfStyle, CodesAndSteps)
{
    serve(1, 1);
    source_.lead = [](uint8_t byte) { return byte == 0x88 || byte == 0x41; };
    const struct {
        const char *text;
        uint32_t code;
        int length;
    } cases[] = {
        {"B", 0x42, 1},          {"", 0, 1}, // a NUL is a character
        {"\x7F", 0x7F, 1},       {"\x80", 0xFFFFFF80, 1}, // single bytes are signed
        {"\xB1", 0xFFFFFFB1, 1}, {"\xFF", 0xFFFFFFFF, 1},
        {"\x88\xEA", 0x88EA, 2}, // both bytes of a pair are unsigned
        {"\x41\x80", 0x4180, 2}, // the source says what a lead byte is
        {"\x88", 0x8800, 2},
    };
    for (const auto &expected : cases) {
        char text[4] = {};
        std::strcpy(text, expected.text);
        rs.fontCursorX = rs.fontCursorY = 0;
        EXPECT_EQ(drawCharacter(text, GetParam(), source_), text + expected.length);
        EXPECT_EQ(rs.glyphCode, expected.code);
        EXPECT_EQ(source_.code, expected.code);
        const auto character = reference::characterAt(text, source_.lead);
        EXPECT_EQ(character.code, expected.code);
        EXPECT_EQ(character.length, expected.length);
    }
}

TEST_P(GlyphOfStyle, FormatByQuality)
{
    serve(1, 1);
    const std::pair<int32_t, Format> cases[] = {{0, Format::Mono},   {1, Format::Grey4}, {2, Format::Grey16},
                                                {3, Format::Grey64}, {4, Format::Mono},  {-1, Format::Mono}};
    for (const auto &[quality, format] : cases) {
        rs.fontQuality = quality;
        draw(GetParam());
        EXPECT_EQ(source_.format, format) << quality;
    }
}

TEST_P(GlyphOfStyle, CallsOfAGlyphThatFits)
{
    serve(3, 2);
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(source_.log, (std::vector<std::string>{"open", "lead? 65", "outline 0", "outline 8", "close context font"}));
}

TEST_P(GlyphOfStyle, CallsOfAGlyphThatDoesNot)
{
    serve(3, 33);
    ASSERT_FALSE(draw(GetParam()));
    EXPECT_EQ(source_.log, (std::vector<std::string>{"open", "lead? 65", "outline 0", "outline 132", "close font context"}));
}

TEST_P(GlyphOfStyle, EmptyGlyphsAreAskedForTwiceToo)
{
    serveEmpty();
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(source_.log, (std::vector<std::string>{"open", "lead? 65", "outline 0", "outline 0", "close context font"}));
}

TEST_P(GlyphOfStyle, LeavesMetricsAndPlace)
{
    serve(5, 7);
    source_.glyph.originX = -2;
    source_.glyph.originY = 9;
    source_.glyph.advance = -3;
    rs.fontCursorX = 11;
    rs.fontCursorY = 4;
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphWidth, 5);
    EXPECT_EQ(rs.glyphHeight, 7);
    EXPECT_EQ(rs.glyphOriginX, -2);
    EXPECT_EQ(rs.glyphOriginY, 9);
    EXPECT_EQ(rs.glyphAdvance, -3);
    EXPECT_EQ(rs.glyphX, 11);
    EXPECT_EQ(rs.glyphY, 4);
    EXPECT_EQ(rs.fontCursorX, 16u);
    EXPECT_EQ(rs.fontCursorY, 4u);
    EXPECT_EQ(rs.fontLineBottom, 11u);
}

TEST_P(GlyphOfStyle, ExactlyTheRestOfTheRowStays)
{
    rs.fontCursorX = 60;
    serve(4, 3);
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphX, 60);
    EXPECT_EQ(rs.glyphY, 0);
    EXPECT_EQ(rs.fontCursorX, 64u);
    EXPECT_NE(pixel(63, 2), paint);
    EXPECT_EQ(pixel(0, 1), paint);
}

TEST_P(GlyphOfStyle, OnePixelMoreWraps)
{
    rs.fontCursorX = 60;
    rs.fontLineBottom = 2;
    serve(5, 3);
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphX, 0);
    EXPECT_EQ(rs.glyphY, 3); // below its own height, as if it had stood on the old row
    EXPECT_EQ(rs.fontCursorX, 5u);
    EXPECT_EQ(rs.fontCursorY, 3u);
    EXPECT_EQ(rs.fontLineBottom, 3u);
}

TEST_P(GlyphOfStyle, FirstGlyphOfARowDoesNotRaiseItsBottom)
{
    rs.fontCursorX = 60;
    rs.fontCursorY = 0;
    rs.fontLineBottom = 10;
    serve(8, 9);
    ASSERT_TRUE(draw(GetParam())); // at (0, 10) to (8, 19)
    EXPECT_EQ(rs.fontCursorY, 10u);
    EXPECT_EQ(rs.fontLineBottom, 10u);
    serve(2, 4);
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.fontLineBottom, 14u);
    rs.fontCursorX = 63;
    ASSERT_TRUE(draw(GetParam())); // the next row begins inside the tall glyph
    EXPECT_EQ(rs.glyphY, 14);
}

TEST_P(GlyphOfStyle, BottomRowFitsExactly)
{
    rs.fontCursorY = 29;
    serve(4, 3);
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphY, 29);
    EXPECT_TRUE(marginsIntact());
}

TEST_P(GlyphOfStyle, FullAtlasKeepsPixelsAndPlace)
{
    rs.fontCursorX = 62;
    rs.fontCursorY = 20;
    rs.fontLineBottom = 28;
    rs.glyphX = 7;
    rs.glyphY = 8;
    serve(3, 5);
    source_.glyph.originX = 1;
    source_.glyph.originY = 2;
    source_.glyph.advance = 6;
    const auto before = pixels();
    ASSERT_FALSE(draw(GetParam()));
    EXPECT_EQ(pixels(), before);
    EXPECT_EQ(rs.glyphX, 7);
    EXPECT_EQ(rs.glyphY, 8);
    EXPECT_EQ(rs.glyphCode, static_cast<uint32_t>('A'));
    EXPECT_EQ(rs.glyphWidth, 3);
    EXPECT_EQ(rs.glyphHeight, 5);
    EXPECT_EQ(rs.glyphOriginX, 1);
    EXPECT_EQ(rs.glyphOriginY, 2);
    EXPECT_EQ(rs.glyphAdvance, 6);
    EXPECT_EQ(rs.fontLineBottom, 28u);
    EXPECT_EQ(rs.fontCursorX, 0u); // it had moved to a new row before
    EXPECT_EQ(rs.fontCursorY, 28u);
    serve(3, 4);
    EXPECT_TRUE(draw(GetParam())); // a shorter glyph still fits
    EXPECT_EQ(rs.glyphY, 28);
}

TEST_P(GlyphOfStyle, FullAtlasWithoutWrapLeavesTheCursor)
{
    rs.fontCursorX = 5;
    rs.fontCursorY = 30;
    serve(3, 3);
    ASSERT_FALSE(draw(GetParam()));
    EXPECT_EQ(rs.fontCursorX, 5u);
    EXPECT_EQ(rs.fontCursorY, 30u);
    EXPECT_EQ(rs.fontLineBottom, 33u); // raised all the same: the next wrap starts there
}

TEST_P(GlyphOfStyle, CursorsCompareUnsigned)
{
    serve(3, 2);
    rs.fontCursorX = 0x80000000; // far right, not left
    rs.fontLineBottom = 6;
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphX, 0);
    EXPECT_EQ(rs.glyphY, 6);

    rs.fontCursorY = 0x80000000;
    ASSERT_FALSE(draw(GetParam()));
    EXPECT_EQ(rs.fontLineBottom, 0x80000002u);
}

TEST_P(GlyphOfStyle, CursorSumsWrap)
{
    serve(3, 2);
    rs.fontCursorX = 0xFFFFFFFF; // one left of the atlas
    rs.fontCursorY = 1;
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphX, -1);
    EXPECT_NE(pixel(63, 0), paint);
    EXPECT_NE(pixel(1, 1), paint);
    EXPECT_EQ(pixel(2, 1), paint);
    EXPECT_EQ(rs.fontCursorX, 2u);
}

TEST_P(GlyphOfStyle, WiderThanTheAtlasStaysInsideIt)
{
    makeAtlas(16, 8);
    serve(40, 4);
    ASSERT_TRUE(draw(GetParam())); // on a new row, below its own height; its last row runs past the end
    EXPECT_EQ(rs.glyphY, 4);
    EXPECT_EQ(rs.fontCursorX, 40u);
    EXPECT_TRUE(marginsIntact());
}

TEST_F(Glyph, EmptyGlyphClearsTheFirstPixelOfTheAtlas)
{
    rs.fontCursorX = 20;
    serveEmpty();
    ASSERT_TRUE(draw());
    EXPECT_EQ(pixel(0, 0), 0u);
    auto rest = pixels();
    rest[0] = paint;
    EXPECT_EQ(rest, std::vector<uint32_t>(64 * 32, paint));
    EXPECT_EQ(rs.fontCursorX, 21u);
    EXPECT_EQ(rs.glyphAdvance, 5);
}

TEST_F(Glyph, EmptyGlyphWithRimWritesItsBox)
{
    rs.fontCursorX = 20;
    serveEmpty(2, 1);
    ASSERT_TRUE(draw(Style::Rimmed));
    auto rest = pixels();
    EXPECT_EQ(rest[20], 0u);
    EXPECT_EQ(rest[21], 0u);
    rest[20] = rest[21] = paint;
    EXPECT_EQ(rest, std::vector<uint32_t>(64 * 32, paint));
}

TEST_P(GlyphOfStyle, SourceThatFailsAtOnceGivesNothing)
{
    serve(3, 2);
    source_.failSize = source_.failBitmap = true;
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(source_.log, (std::vector<std::string>{"open", "lead? 65", "outline 0", "outline 0", "close context font"}));
    EXPECT_EQ(rs.glyphWidth, 0);
    EXPECT_EQ(rs.glyphHeight, 0);
    EXPECT_EQ(rs.fontCursorX, 0u);
    EXPECT_EQ(pixel(0, 0), GetParam() == Style::Plain ? 0u : paint);
    EXPECT_EQ(pixel(1, 0), paint);
}

TEST_P(GlyphOfStyle, SourceThatFailsAtTheBitmapKeepsTheMetrics)
{
    serve(3, 2);
    source_.failBitmap = true;
    rs.fontCursorX = 8;
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(rs.glyphWidth, 3);
    EXPECT_EQ(rs.glyphHeight, 2);
    EXPECT_EQ(rs.fontCursorX, 11u);
    EXPECT_EQ(pixel(0, 0), GetParam() == Style::Plain ? 0u : paint);
    EXPECT_EQ(pixel(8, 0), GetParam() == Style::Plain ? paint : 0u);
}

TEST_P(GlyphOfStyle, BitmapWithoutMemoryKeepsTheMetrics)
{
#if defined(__linux__) && !defined(NINEFOLD_SANITIZED)
    serve(3, 2);
    source_.claimed = 0xFFFFFFF0;
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    const rlimit little{rlim_t{2} << 30, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &little), 0);
    const bool drawn = draw(GetParam());
    setrlimit(RLIMIT_AS, &before);
    ASSERT_TRUE(drawn);
    EXPECT_EQ(source_.log.back(), "close context font");
    EXPECT_EQ(rs.glyphWidth, 3);
    EXPECT_EQ(rs.glyphHeight, 2);
    EXPECT_EQ(rs.fontCursorX, 3u);
#else
    GTEST_SKIP() << "memory cannot be made scarce here";
#endif
}

TEST_F(Glyph, GreyLevels)
{
    const struct {
        int32_t quality;
        uint8_t level;
        uint32_t plain, rimmed;
    } cases[] = {
        {1, 0, 0, 0},
        {1, 1, 0x3FFFFFFF, 0x3F000000},
        {1, 3, 0xBFFFFFFF, 0xBF000000},
        {1, 4, 0xFFFFFFFF, 0xFF000000},
        {2, 8, 0x7FFFFFFF, 0x7F000000},
        {2, 16, 0xFFFFFFFF, 0xFF000000},
        {3, 0, 0, 0},
        {3, 1, 0x03FFFFFF, 0x03000000},
        {3, 32, 0x7FFFFFFF, 0x7F000000},
        {3, 64, 0xFFFFFFFF, 0xFF000000},
        {1, 5, 0x3EFFFFFF, 0x3E000000}, // beyond the levels: not clamped, the low byte of 318 counts
        {4, 1, 0xFFFFFFFF, 0xFF000000}, // mono bits read as grey of one level
        {4, 2, 0xFEFFFFFF, 0xFE000000},
        {-1, 0x80, 0x80FFFFFF, 0x80000000},
    };
    for (const auto &expected : cases) {
        rs.fontQuality = expected.quality;
        for (const Style style : {Style::Plain, Style::Rimmed}) {
            rs.fontCursorX = rs.fontCursorY = 0;
            source_.glyph = {1, 1, 0, 0, 1, {expected.level, 0, 0, 0}};
            ASSERT_TRUE(draw(style));
            // A lone pixel is too dark for a colour.
            EXPECT_EQ(pixel(0, 0), style == Style::Plain ? expected.plain : expected.rimmed)
                << "quality " << expected.quality << ", level " << int{expected.level};
        }
    }
}

TEST_F(Glyph, MonoRows)
{
    // 12 pixels: a word a row, leftmost bit on top.
    source_.glyph = {12, 2, 0, 0, 12, {0x80, 0x10, 0xFF, 0xFF, 0x41, 0x20, 0, 0}};
    ASSERT_TRUE(draw());
    for (uint32_t x = 0; x < 12; ++x) {
        EXPECT_EQ(pixel(x, 0), x == 0 || x == 11 ? 0xFFFFFFFF : 0u) << x;
        EXPECT_EQ(pixel(x, 1), x == 1 || x == 7 || x == 10 ? 0xFFFFFFFF : 0u) << x;
    }
    EXPECT_EQ(pixel(12, 0), paint);
}

TEST_F(Glyph, NarrowMonoGlyphsRepeatTheirFirstRow)
{
    source_.glyph = {7, 3, 0, 0, 7, {0xA2, 0, 0, 0, 0xFF, 0, 0, 0, 0x01, 0, 0, 0}};
    ASSERT_TRUE(draw());
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 7; ++x)
            EXPECT_EQ(pixel(x, y), x == 0 || x == 2 || x == 6 ? 0xFFFFFFFF : 0u) << x << ' ' << y;
}

TEST_F(Glyph, SomeMonoWidthsShear)
{
    // 33 pixels take two words a row, but rows are read one word apart: the second row comes out of the padding of the first.
    source_.glyph = {33, 2, 0, 0, 33, {0xFF, 0, 0, 0, 0x80, 0, 0, 0, 0x0F, 0, 0, 0, 0, 0, 0, 0}};
    ASSERT_TRUE(draw());
    EXPECT_EQ(pixel(32, 0), 0xFFFFFFFF);
    EXPECT_EQ(pixel(0, 1), 0xFFFFFFFF);
    for (uint32_t x = 1; x < 33; ++x)
        EXPECT_EQ(pixel(x, 1), 0u) << x;
}

TEST_P(GlyphOfStyle, QualityAboveThreeReadsPastItsBitmap)
{
    rs.fontQuality = 7;
    // 9 bits in a word; read as 9 bytes, rows 12 bytes apart.
    source_.glyph = {9, 2, 0, 0, 9, {1, 0, 0, 1, 1, 0, 0, 1}};
    ASSERT_TRUE(draw(GetParam()));
    for (uint32_t x = 0; x < 9; ++x) {
        EXPECT_EQ(pixel(x, 0) >> 24, x == 0 || x == 3 || x == 4 || x == 7 ? 0xFFu : 0u) << x;
        EXPECT_EQ(pixel(x, 1), 0u) << x;
    }
}

TEST_P(GlyphOfStyle, TransparentPixelsReplaceWhatStoodThere)
{
    serve(10, 3, 0);
    ASSERT_TRUE(draw(GetParam()));
    EXPECT_EQ(pixel(9, 2), 0u);
    EXPECT_EQ(pixel(10, 2), paint);
    EXPECT_EQ(pixel(9, 3), paint);
}

TEST_F(Glyph, SolidBoxIsLightGreyInside)
{
    serve(9, 5);
    ASSERT_TRUE(draw(Style::Rimmed));
    for (uint32_t y = 0; y < 5; ++y) {
        for (uint32_t x = 0; x < 9; ++x) {
            const bool border = x == 0 || x == 8 || y == 0 || y == 4;
            EXPECT_EQ(pixel(x, y) >> 24, 0xFFu);
            if (border)
                EXPECT_LT(pixel(x, y) & 0xFF, 252u) << x << ' ' << y;
            else
                EXPECT_EQ(pixel(x, y), 0xFFFCFCFC) << x << ' ' << y;
        }
    }
}

TEST_F(Glyph, LoneDotIsBlack)
{
    source_.glyph = {9, 3, 0, 0, 9, {0, 0, 0, 0, 0x10, 0, 0, 0, 0, 0, 0, 0}};
    ASSERT_TRUE(draw(Style::Rimmed));
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 9; ++x)
            EXPECT_EQ(pixel(x, y), x == 3 && y == 1 ? 0xFF000000 : 0u);
}

TEST_F(Glyph, FourFullNeighboursMakeADarkRim)
{
    source_.glyph = {9, 3, 0, 0, 9, {0x10, 0, 0, 0, 0x38, 0, 0, 0, 0x10, 0, 0, 0}};
    ASSERT_TRUE(draw(Style::Rimmed));
    EXPECT_EQ(pixel(3, 1), 0xFF171717);
}

TEST_F(Glyph, NeighboursOutsideTheBoxCountAsNothing)
{
    serve(8, 8);
    ASSERT_TRUE(draw(Style::Rimmed));
    const auto alone = pixels();
    std::fill(words_.begin() + margin, words_.end() - margin, 0xFFFFFFFF);
    rs.fontCursorX = rs.fontCursorY = 0;
    ASSERT_TRUE(draw(Style::Rimmed));
    for (uint32_t y = 0; y < 8; ++y)
        for (uint32_t x = 0; x < 8; ++x)
            EXPECT_EQ(pixel(x, y), alone[y * 64 + x]) << x << ' ' << y;
}

TEST_F(Glyph, PartlyCoveredPixelsKeepTheirAlphaAndDarken)
{
    rs.fontQuality = NINEFOLD_QUALITY_GREY64;
    serve(3, 3, 64);
    source_.glyph.bytes[5] = 32; // the centre
    ASSERT_TRUE(draw(Style::Rimmed));
    EXPECT_EQ(pixel(1, 1) >> 24, 127u);
    EXPECT_GT(pixel(1, 1) & 0xFF, 0u);
    EXPECT_LT(pixel(1, 1) & 0xFF, 252u);
}

TEST_F(Glyph, RimWorksInPlace)
{
    // Pixels done before have lost colour, a fraction of their weight, which decides a few sums.
    rs.fontQuality = NINEFOLD_QUALITY_GREY64;
    std::mt19937 random(1);
    bool differs = false;
    for (int round = 0; round < 200 && !differs; ++round) {
        rs.fontCursorX = rs.fontCursorY = 0;
        serve(6, 6);
        for (auto &byte : source_.glyph.bytes)
            byte = random() % 3 ? 64 : static_cast<uint8_t>(random() % 65);
        ASSERT_TRUE(draw(Style::Rimmed));
        // The same sums, all taken over the first pass.
        const auto firstPass = [&](int x, int y) -> uint32_t {
            if (x < 0 || y < 0 || x > 5 || y > 5)
                return 0;
            const uint32_t alpha = source_.glyph.bytes[static_cast<size_t>(y * 8 + x)] * 255u / 64;
            return alpha == 255 ? 0xFFFFFFFF : alpha << 24;
        };
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < 6; ++x) {
                uint32_t sum = firstPass(x, y) >> 24 << 16;
                for (int i = 0; i < 9; ++i)
                    if (i != 4)
                        sum += firstPass(x + i % 3 - 1, y + i / 3 - 1) >> 8;
                const uint32_t grey = sum / 0x90000, once = grey * grey >> 8;
                differs |= firstPass(x, y) != 0 &&
                           (pixel(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) & 0xFF) != once * once >> 8;
            }
        }
    }
    EXPECT_TRUE(differs) << "a rim computed from a copy would pass unseen";
}

TEST_F(Glyph, AgreesWithTheReference)
{
    std::mt19937 random(20);
    const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
    const auto pick = [&](std::initializer_list<uint32_t> values) {
        return values.begin()[below(static_cast<uint32_t>(values.size()))];
    };
    int full = 0, empty = 0, wide = 0;
    for (int round = 0; round < 20000; ++round) {
        makeAtlas(1u << below(8), 1u << below(8));
        rs.fontQuality = static_cast<int32_t>(pick({0, 0, 0, 1, 2, 3, 3, 4, 5, 0xFFFFFFFF}));
        for (auto &word : words_)
            word = pick({paint, 0, static_cast<uint32_t>(random()), 0xFFFFFFFF});
        std::fill(words_.begin(), words_.begin() + margin, paint);
        std::fill(words_.end() - margin, words_.end(), paint);

        reference::GlyphState state;
        state.quality = static_cast<uint32_t>(rs.fontQuality);
        state.atlasWidth = atlas_.width;
        state.atlasHeight = atlas_.height;
        state.atlas = pixels();
        rs.fontCursorX = state.cursorX = below(8) ? below(atlas_.width) : static_cast<uint32_t>(random());
        rs.fontCursorY = state.cursorY = below(8) ? below(atlas_.height) : static_cast<uint32_t>(random());
        rs.fontLineBottom = state.lineBottom = below(8) ? below(atlas_.height + 1) : static_cast<uint32_t>(random());
        rs.glyphX = state.x = static_cast<int32_t>(below(100));
        rs.glyphY = state.y = static_cast<int32_t>(below(100));

        for (int glyph = 0; glyph < 6; ++glyph) {
            auto &served = source_.glyph;
            serve(below(4) ? below(20) : below(100), below(20));
            if (below(5) == 0)
                served.width = atlas_.width - state.cursorX + below(2); // on and over the edges
            if (below(5) == 0)
                served.height = atlas_.height - state.cursorY + below(2);
            if (served.width > 300 || served.height > 300)
                serve(3, 3);
            if (below(8) == 0)
                served.bytes.clear();
            else if (below(4) == 0)
                served.bytes.resize(below(200));
            else
                serve(served.width, served.height);
            const uint32_t levels = rs.fontQuality == NINEFOLD_QUALITY_GREY4    ? 5
                                    : rs.fontQuality == NINEFOLD_QUALITY_GREY16 ? 17
                                    : rs.fontQuality == NINEFOLD_QUALITY_GREY64 ? 65
                                                                                : 256;
            const uint32_t solid = levels == 256 ? 0xFF : levels - 1;
            const uint32_t style = below(4); // noise, mostly solid, over the levels, sparse
            for (auto &byte : served.bytes) {
                byte = static_cast<uint8_t>(style == 0   ? below(levels)
                                            : style == 1 ? (below(8) ? solid : below(levels))
                                            : style == 2 ? random()
                                                         : (below(8) ? 0 : solid));
            }
            served.originX = static_cast<int32_t>(random());
            served.originY = static_cast<int32_t>(random());
            served.advance = static_cast<int16_t>(random());

            const Style rim = below(2) ? Style::Rimmed : Style::Plain;
            const bool placed = reference::placeGlyph(state, served, rim == Style::Rimmed);
            ASSERT_EQ(draw(rim), placed) << round;
            ASSERT_EQ(pixels(), state.atlas) << round;
            ASSERT_TRUE(marginsIntact()) << round;
            ASSERT_EQ(rs.fontCursorX, state.cursorX);
            ASSERT_EQ(rs.fontCursorY, state.cursorY);
            ASSERT_EQ(rs.fontLineBottom, state.lineBottom);
            ASSERT_EQ(rs.glyphWidth, state.width);
            ASSERT_EQ(rs.glyphHeight, state.height);
            ASSERT_EQ(rs.glyphX, state.x);
            ASSERT_EQ(rs.glyphY, state.y);
            ASSERT_EQ(rs.glyphOriginX, state.originX);
            ASSERT_EQ(rs.glyphOriginY, state.originY);
            ASSERT_EQ(rs.glyphAdvance, state.advance);
            full += !placed;
            empty += served.bytes.empty();
            wide += placed && served.width > atlas_.width;
        }
    }
    EXPECT_GT(full, 1000);
    EXPECT_GT(empty, 1000);
    EXPECT_GT(wide, 1000);
}

} // namespace
