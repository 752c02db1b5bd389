// Real text through the platform's rasteriser. Wants VL Gothic, VL PGothic and DejaVu Sans (packages fonts-vlgothic and
// fonts-dejavu-core).
#include "glyph/source.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>
#include <ninefold/ninefold.h>

// fontconfig finds its own patterns by offsets, which look like leaks.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig"; }

using namespace ninefold::glyph;

namespace {

struct Drawn {
    uint32_t size = 0;
    Metrics metrics{};
    std::vector<uint8_t> bytes;

    bool operator==(const Drawn &other) const
    {
        return size == other.size && bytes == other.bytes && std::memcmp(&metrics, &other.metrics, sizeof metrics) == 0;
    }
    bool bit(uint32_t x, uint32_t y) const
    {
        const uint32_t pitch = (metrics.width + 31) / 32 * 4;
        return bytes[y * pitch + x / 8] >> (7 - x % 8) & 1;
    }
    uint8_t highest() const { return bytes.empty() ? 0 : *std::max_element(bytes.begin(), bytes.end()); }
};

struct Face {
    const char *name = "VL Gothic";
    int32_t height = -24;
    int32_t weight = 400;
    uint8_t italic = 0;
};

Drawn drawGlyph(uint32_t code, Format format = Format::Grey64, const Face &face = {})
{
    FontDescription font{face.height, face.weight, face.italic, {}};
    std::strncpy(font.name, face.name, sizeof font.name - 1);
    Source &source = platformSource();
    source.open(font);
    Drawn drawn;
    drawn.size = source.outline(code, format, drawn.metrics, 0, nullptr);
    if (drawn.size != Source::failed) {
        drawn.bytes.resize(drawn.size);
        EXPECT_EQ(source.outline(code, format, drawn.metrics, drawn.size, drawn.bytes.data()), drawn.size);
    }
    source.close(Release::ContextFirst);
    return drawn;
}

constexpr uint32_t kanaA = 0x82A0, kanjiOne = 0x88EA, kanjiCountry = 0x8D91, fullWidthSpace = 0x8140, middleDot = 0x8145;
constexpr uint32_t halfWidthKanaA = 0xFFFFFFB1;

TEST(GlyphText, LeadBytesAreThoseOfCodePage932)
{
    for (uint32_t byte = 0; byte < 256; ++byte) {
        const bool lead = (byte >= 0x81 && byte < 0xA0) || (byte >= 0xE0 && byte < 0xFD);
        EXPECT_EQ(platformSource().isLeadByte(static_cast<uint8_t>(byte)), lead) << byte;
    }
}

TEST(GlyphText, FullWidthIsTwiceHalfWidth)
{
    ASSERT_EQ(drawGlyph('A').metrics.advance, 12) << "is VL Gothic installed?";
    for (const uint32_t code : {uint32_t{' '}, uint32_t{'W'}, uint32_t{'i'}, halfWidthKanaA})
        EXPECT_EQ(drawGlyph(code).metrics.advance, 12) << code;
    for (const uint32_t code : {kanaA, kanjiOne, kanjiCountry, fullWidthSpace})
        EXPECT_EQ(drawGlyph(code).metrics.advance, 24) << code;
}

#if !defined(_WIN32) // GDI has limits of its own
TEST(GlyphText, GlyphsOfMoreThan32767PixelsAreNotDrawn)
{
    for (const int32_t height : {-40000, -65535})
        EXPECT_EQ(drawGlyph(kanjiCountry, Format::Grey64, {.height = height}).size, Source::failed) << height;
    EXPECT_GT(drawGlyph('W', Format::Mono, {.height = -2000}).size, 0u);
}
#endif

TEST(GlyphText, ProportionalFaceIsAnother)
{
    const Face proportional{.name = "VL PGothic"};
    EXPECT_LT(drawGlyph('i', Format::Grey64, proportional).metrics.advance,
              drawGlyph('W', Format::Grey64, proportional).metrics.advance);
}

TEST(GlyphText, KanjiOneIsAHorizontalBar)
{
    const Drawn bar = drawGlyph(kanjiOne, Format::Mono);
    ASSERT_GT(bar.metrics.width, 18u);
    ASSERT_LT(bar.metrics.height, 6u);
    for (uint32_t x = 2; x < bar.metrics.width - 2; ++x)
        EXPECT_TRUE(bar.bit(x, bar.metrics.height / 2)) << x;
}

TEST(GlyphText, KanjiCountryIsAFrame)
{
    const Drawn frame = drawGlyph(kanjiCountry, Format::Mono);
    const uint32_t right = frame.metrics.width - 1;
    ASSERT_GT(frame.metrics.width, 18u);
    ASSERT_GT(frame.metrics.height, 18u);
    for (uint32_t y = 3; y < frame.metrics.height - 3; ++y) {
        EXPECT_TRUE(frame.bit(0, y) || frame.bit(1, y)) << y;
        EXPECT_TRUE(frame.bit(right, y) || frame.bit(right - 1, y)) << y;
    }
}

TEST(GlyphText, RowsAndLevelsOfTheFormats)
{
    for (const uint32_t code : {uint32_t{'g'}, kanaA, kanjiCountry}) {
        const Drawn mono = drawGlyph(code, Format::Mono);
        EXPECT_EQ(mono.size, (mono.metrics.width + 31) / 32 * 4 * mono.metrics.height);
        for (uint32_t y = 0; y < mono.metrics.height; ++y)
            for (uint32_t x = mono.metrics.width; x < (mono.metrics.width + 31) / 32 * 32; ++x)
                EXPECT_FALSE(mono.bit(x, y));
        for (const auto &[format, levels] : {std::pair{Format::Grey4, 4}, {Format::Grey16, 16}, {Format::Grey64, 64}}) {
            const Drawn grey = drawGlyph(code, format);
            EXPECT_EQ(grey.size, (grey.metrics.width + 3) / 4 * 4 * grey.metrics.height);
            EXPECT_EQ(grey.highest(), levels);
        }
    }
}

TEST(GlyphText, CoarserLevelsAreTheFineOnesCut)
{
    const Drawn fine = drawGlyph(kanaA, Format::Grey64), coarse = drawGlyph(kanaA, Format::Grey4);
    ASSERT_EQ(fine.size, coarse.size);
    for (uint32_t i = 0; i < fine.size; ++i) {
        // 5 levels of 51 and a bit steps against 65 of 3 and a bit.
        EXPECT_NEAR(coarse.bytes[i] * 51.2, fine.bytes[i] * 3.94, 51.2) << i;
    }
}

TEST(GlyphText, SpacesAreEmptyPixels)
{
    for (const uint32_t code : {uint32_t{' '}, fullWidthSpace}) {
        const Drawn space = drawGlyph(code);
        EXPECT_EQ(space.size, 0u);
        EXPECT_EQ(space.metrics.width, 1u);
        EXPECT_EQ(space.metrics.height, 1u);
    }
}

TEST(GlyphText, MissingGlyphs)
{
    const Drawn box = drawGlyph(0);
    EXPECT_GT(box.size, 0u);
    for (const uint32_t code : {0xFFFFFF80, 0xFFFFFFA0, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF})
        EXPECT_EQ(drawGlyph(code), box) << code;
    // What the code page does not define is a middle dot there.
    const Drawn dot = drawGlyph(middleDot);
    EXPECT_NE(dot, box);
    for (const uint32_t code : {0x8100u, 0x8540u, 0x8246u, 0xFCFCu, 0xFFFFFF81u})
        EXPECT_EQ(drawGlyph(code), dot) << code;
}

TEST(GlyphText, SingleBytesAreLowBytes) { EXPECT_EQ(drawGlyph(0xFFFFFFB1), drawGlyph(0xB1)); }

TEST(GlyphText, OneFontServesManyGlyphs)
{
    const FontDescription font{-24, 400, 0, "VL Gothic"};
    Source &source = platformSource();
    std::vector<uint8_t> bitmaps[3];
    const uint32_t codes[] = {kanaA, kanjiOne, kanaA};
    source.open(font);
    for (int i = 0; i < 3; ++i) {
        Metrics metrics{};
        bitmaps[i].resize(source.outline(codes[i], Format::Grey64, metrics, 0, nullptr));
        source.outline(codes[i], Format::Grey64, metrics, static_cast<uint32_t>(bitmaps[i].size()), bitmaps[i].data());
    }
    source.close(Release::ContextFirst);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(bitmaps[i], drawGlyph(codes[i]).bytes) << i;
}

TEST(GlyphText, ManyFontsTakeTurns)
{
    std::vector<Drawn> drawn;
    for (int round = 0; round < 3; ++round) {
        for (int32_t i = 0; i < 12; ++i) {
            const Face face{.name = i % 2 ? "VL Gothic" : "VL PGothic", .height = -10 - i, .weight = 400 + i};
            const Drawn now = drawGlyph('i', Format::Grey64, face);
            if (round == 0)
                drawn.push_back(now);
            EXPECT_EQ(now, drawn[static_cast<size_t>(i)]);
        }
    }
    EXPECT_NE(drawn[0].metrics.advance, drawn[11].metrics.advance);
}

TEST(GlyphText, HeightIsOfTheCellOrOfTheEm)
{
    const Drawn em = drawGlyph(kanjiCountry, Format::Grey64, {.height = -24}),
                cell = drawGlyph(kanjiCountry, Format::Grey64, {.height = 24});
    EXPECT_LT(cell.metrics.height, em.metrics.height);
    EXPECT_EQ(drawGlyph(kanaA, Format::Mono, {.height = 0}), drawGlyph(kanaA, Format::Mono, {.height = 16}));
    EXPECT_EQ(drawGlyph('A', Format::Mono, {.height = -200}).metrics.advance, 100);
}

TEST(GlyphText, BoldIsWider)
{
    const Drawn regular = drawGlyph('l', Format::Mono), bold = drawGlyph('l', Format::Mono, {.weight = 700});
    EXPECT_EQ(bold.metrics.advance, regular.metrics.advance + 1);
    EXPECT_GT(bold.metrics.width, regular.metrics.width);
    EXPECT_EQ(drawGlyph('l', Format::Mono, {.weight = 550}), regular);
    EXPECT_EQ(drawGlyph('l', Format::Mono, {.weight = 551}), bold);
}

#if !defined(_WIN32) // GDI does not give a Western face to the Japanese character set
TEST(GlyphText, BoldFaceIsTakenWhereThereIsOne)
{
    const auto advance = [](int32_t weight) {
        return drawGlyph('A', Format::Grey64, {.name = "DejaVu Sans", .height = -100, .weight = weight}).metrics.advance;
    };
    EXPECT_EQ(advance(400), 68);
    EXPECT_EQ(advance(700), 77); // an emboldened one would have 69
}
#endif

TEST(GlyphText, ItalicLeansToTheRight)
{
    const Drawn upright = drawGlyph('l', Format::Mono), italic = drawGlyph('l', Format::Mono, {.italic = 1});
    EXPECT_GT(italic.metrics.width, upright.metrics.width + 2);
    EXPECT_EQ(italic.metrics.advance, upright.metrics.advance);
    EXPECT_EQ(drawGlyph('l', Format::Mono, {.italic = 255}), italic);
    uint32_t left = 0;
    while (!italic.bit(left, 0))
        ++left;
    EXPECT_GT(left, 2u) << "the top of the stem";
}

TEST(GlyphText, TheCharacterSetIsJapaneseWhateverTheFontIs)
{
    for (const char *name : {"VL Gothic", "VL PGothic", ""}) {
        for (const int32_t height : {-24, 24, 0}) {
            for (const int32_t weight : {0, 400, 700}) {
                for (const uint8_t italic : {0, 1, 255}) {
                    const Face face{.name = name, .height = height, .weight = weight, .italic = italic};
                    for (const Format format : {Format::Mono, Format::Grey4, Format::Grey16, Format::Grey64}) {
                        const Drawn kana = drawGlyph(kanaA, format, face);
                        EXPECT_GT(kana.size, 0u) << name << ' ' << height << ' ' << weight << ' ' << int{italic};
                        EXPECT_NE(kana, drawGlyph(0, format, face)) << "the box of missing glyphs: " << name;
                        EXPECT_NE(kana, drawGlyph(kanjiOne, format, face)) << name;
                        EXPECT_NE(kana, drawGlyph(0x82A2, format, face)) << name; // the next kana
                    }
                    EXPECT_TRUE(platformSource().isLeadByte(0x82));
                    EXPECT_FALSE(platformSource().isLeadByte(0xB1));
                }
            }
        }
    }
}

TEST(GlyphText, UnknownFaceFallsBack)
{
    for (const char *name : {"", "No Face Has This Name", "\x88\xEA", "\xFF\xFE"}) {
        const Drawn kana = drawGlyph(kanaA, Format::Grey64, {.name = name});
        EXPECT_GT(kana.size, 0u) << name;
        EXPECT_FALSE(kana == drawGlyph(kanjiOne, Format::Grey64, {.name = name})) << "the fallback knows Japanese";
    }
}

TEST(GlyphText, HostileSettingsAreHarmless)
{
    for (const int32_t height : {INT32_MIN, INT32_MAX, -0x10000, -40000, 0x7FFF, 1, -1}) {
        for (const int32_t weight : {INT32_MIN, -1, 0, 1000, INT32_MAX}) {
            for (const Format format : {Format::Mono, Format::Grey16}) {
                FontDescription font{height, weight, 1, "VL Gothic"};
                Source &source = platformSource();
                source.open(font);
                Metrics metrics{};
                const uint32_t size = source.outline(kanaA, format, metrics, 0, nullptr);
                EXPECT_TRUE(size == Source::failed || size <= 0x7FFFFFFF);
                source.close(Release::FontFirst);
            }
        }
    }
    EXPECT_GT(drawGlyph(kanaA).size, 0u);
}

// The exported functions, over a whole text.
class GlyphAtlas : public testing::Test {
protected:
    void SetUp() override
    {
        std::memset(static_cast<void *>(&rs), 0, sizeof rs);
        rs.tex0 = CreateTexture(256, 128);
        std::fill_n(rs.tex0->pixels, 256 * 128, 0x12345678);
        rs.fontName = name_;
        rs.fontHeight = -20;
        rs.fontWeight = 400;
        rs.fontQuality = NINEFOLD_QUALITY_GREY64;
    }
    void TearDown() override
    {
        DeleteTexture(rs.tex0);
        rs.tex0 = nullptr;
    }

    char name_[32] = "VL Gothic";
};

// Latin, full-width katakana, a kanji whose second byte is a backslash, half-width kana: "A", "カ", "ソ", "表", "ｱ".
char text[] = "A\x83\x4A\x83\x5C\x95\x5C\xB1";

TEST_F(GlyphAtlas, WalksAText)
{
    const uint32_t codes[] = {'A', 0x834A, 0x835C, 0x955C, 0xFFFFFFB1};
    char *next = text;
    int32_t x = 0;
    for (const uint32_t code : codes) {
        next = CreateFontTexture(next);
        ASSERT_NE(next, nullptr);
        EXPECT_EQ(rs.glyphCode, code);
        EXPECT_EQ(rs.glyphX, x);
        EXPECT_EQ(rs.glyphY, 0);
        x += rs.glyphWidth;
        // The atlas has the source's bytes, scaled.
        const Drawn drawn = drawGlyph(code, Format::Grey64, {.height = -20});
        ASSERT_EQ(static_cast<uint32_t>(rs.glyphWidth), drawn.metrics.width);
        ASSERT_EQ(static_cast<uint32_t>(rs.glyphHeight), drawn.metrics.height);
        EXPECT_EQ(rs.glyphOriginX, drawn.metrics.originX);
        EXPECT_EQ(rs.glyphOriginY, drawn.metrics.originY);
        EXPECT_EQ(rs.glyphAdvance, drawn.metrics.advance);
        for (uint32_t row = 0; row < drawn.metrics.height; ++row) {
            for (uint32_t col = 0; col < drawn.metrics.width; ++col) {
                const uint32_t pixel = rs.tex0->pixels[row * 256 + static_cast<uint32_t>(rs.glyphX) + col];
                const uint32_t level = drawn.bytes[row * ((drawn.metrics.width + 3) & ~3u) + col];
                ASSERT_EQ(pixel, level ? level * 255 / 64 << 24 | 0xFFFFFF : 0);
            }
        }
    }
    EXPECT_EQ(next, text + sizeof text - 1);
    EXPECT_EQ(rs.tex0->pixels[rs.fontCursorX], 0x12345678u);
}

TEST_F(GlyphAtlas, RimKeepsTheShapeAndDarkensIt)
{
    char *plain = CreateFontTexture(text + 5);
    const auto left = static_cast<uint32_t>(rs.glyphX), width = static_cast<uint32_t>(rs.glyphWidth);
    char *rimmed = CreateFontTextureFuchi(text + 5);
    EXPECT_EQ(plain, rimmed);
    ASSERT_EQ(static_cast<uint32_t>(rs.glyphWidth), width);
    ASSERT_EQ(static_cast<uint32_t>(rs.glyphX), left + width);
    for (int32_t row = 0; row < rs.glyphHeight; ++row) {
        for (uint32_t col = 0; col < width; ++col) {
            const uint32_t *pixel = rs.tex0->pixels + row * 256 + left + col;
            EXPECT_EQ(pixel[0] >> 24, pixel[width] >> 24);
            EXPECT_LE(pixel[width] & 0xFF, 252u);
        }
    }
}

TEST_F(GlyphAtlas, FillsRowsUntilItIsFull)
{
    char character[] = "\x8D\x91";
    int placed = 0;
    int32_t lastY = 0, rows = 1;
    while (CreateFontTexture(character)) {
        ++placed;
        rows += rs.glyphY != lastY;
        lastY = rs.glyphY;
        ASSERT_LE(rs.glyphX + rs.glyphWidth, 256);
        ASSERT_LE(rs.glyphY + rs.glyphHeight, 128);
        ASSERT_LT(placed, 1000);
    }
    EXPECT_EQ(rows, 128 / rs.glyphHeight);
    EXPECT_EQ(placed, rows * (256 / rs.glyphWidth));
}

TEST_F(GlyphAtlas, SpaceClearsTheFirstPixel)
{
    char space[] = " ";
    ASSERT_TRUE(CreateFontTexture(space));
    EXPECT_EQ(rs.tex0->pixels[0], 0u);
    EXPECT_EQ(rs.glyphAdvance, 10);
    EXPECT_EQ(rs.fontCursorX, 1u);
}

} // namespace
