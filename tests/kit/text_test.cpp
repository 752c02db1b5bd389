// Text: order and shapes of glyphs in five writings, where lines end, what is measured against what is drawn, rims, fades, and
// the library's own glyphs by UTF-8.
#include <ninefold/kit.hpp>

#include <gtest/gtest.h>

#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

// fontconfig finds its own patterns by offsets, which look like leaks.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig"; }

namespace {

constexpr uint32_t ground = 0xFF204060;
constexpr int screenSize = 512;

struct Release {
    void operator()(Texture *texture) const { DeleteTexture(texture); }
    void operator()(NfkFont *font) const { nfkCloseFont(font); }
    void operator()(NfkText *text) const { nfkDeleteText(text); }
};
using TexturePtr = std::unique_ptr<Texture, Release>;
using FontPtr = std::unique_ptr<NfkFont, Release>;
using TextPtr = std::unique_ptr<NfkText, Release>;

constexpr NfkTextStyle white = {0xFFFFFFFF, 0, 0, NFK_ALIGN_START, 0, 0};

NfkTextStyle wrapped(int32_t width, int32_t align = NFK_ALIGN_START)
{
    NfkTextStyle style = white;
    style.width = width;
    style.align = align;
    return style;
}

NfkTextStyle rimmed(int32_t rim, uint32_t color = 0xFFFF0000)
{
    NfkTextStyle style = white;
    style.rim = rim;
    style.rimColor = color;
    return style;
}

// Pixels that are not the ground.
NfkRect changedBox(const Texture &screen)
{
    int left = screenSize, top = screenSize, right = 0, bottom = 0;
    for (int y = 0; y < screenSize; ++y)
        for (int x = 0; x < screenSize; ++x)
            if (screen.pixels[y * screenSize + x] != ground) {
                left = std::min(left, x), right = std::max(right, x + 1);
                top = std::min(top, y), bottom = std::max(bottom, y + 1);
            }
    return right ? NfkRect{left, top, right - left, bottom - top} : NfkRect{};
}

class KitText : public testing::Test {
protected:
    KitText()
    {
        MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
        SetFrameBuffer(screen.get());
        rs.clipLeft = rs.clipTop = rs.originX = rs.originY = 0;
        rs.clipRight = rs.clipBottom = screenSize;
        clear();
        EXPECT_TRUE(font) << nfkError();
    }

    void clear() { std::fill_n(screen->pixels, screenSize * screenSize, ground); }
    uint32_t at(int x, int y) const { return screen->pixels[y * screenSize + x]; }
    std::vector<uint32_t> pixels() const { return {screen->pixels, screen->pixels + screenSize * screenSize}; }

    TextPtr make(const std::string &utf8, const NfkTextStyle &style = white) const
    {
        TextPtr text(nfkMakeText(font.get(), utf8.c_str(), &style));
        EXPECT_TRUE(text) << nfkError();
        return text;
    }

    static NfkTextSize measure(const TextPtr &text)
    {
        NfkTextSize size{};
        EXPECT_TRUE(nfkMeasureText(text.get(), &size)) << nfkError();
        return size;
    }

    std::vector<NfkTextGlyph> glyphs(const std::string &utf8, const NfkTextStyle &style = white)
    {
        kept.push_back(make(utf8, style));
        const TextPtr &text = kept.back();
        std::vector<NfkTextGlyph> all(static_cast<size_t>(measure(text).glyphs));
        for (size_t i = 0; i < all.size(); ++i)
            EXPECT_TRUE(nfkGetTextGlyph(text.get(), static_cast<int32_t>(i), &all[i])) << nfkError();
        return all;
    }

    std::vector<uint32_t> numbers(const std::string &utf8)
    {
        std::vector<uint32_t> all;
        for (const NfkTextGlyph &glyph : glyphs(utf8))
            all.push_back(glyph.glyph);
        return all;
    }

    std::vector<int32_t> bytes(const std::string &utf8)
    {
        std::vector<int32_t> all;
        for (const NfkTextGlyph &glyph : glyphs(utf8))
            all.push_back(glyph.byte);
        return all;
    }

    static std::vector<NfkTextLine> lines(const TextPtr &text)
    {
        std::vector<NfkTextLine> all(static_cast<size_t>(measure(text).lines));
        for (size_t i = 0; i < all.size(); ++i)
            EXPECT_TRUE(nfkGetTextLine(text.get(), static_cast<int32_t>(i), &all[i])) << nfkError();
        return all;
    }

    std::vector<std::string> wrap(const std::string &utf8, int32_t width) const
    {
        std::vector<std::string> all;
        for (const NfkTextLine &line : lines(make(utf8, wrapped(width))))
            all.push_back(utf8.substr(static_cast<size_t>(line.begin), static_cast<size_t>(line.end - line.begin)));
        return all;
    }

    int32_t widthOf(const std::string &utf8) const { return measure(make(utf8)).width; }

    static int32_t caret(const TextPtr &text, int32_t byte)
    {
        NfkRect box{};
        EXPECT_TRUE(nfkGetTextCaret(text.get(), byte, &box)) << nfkError();
        return box.x;
    }

    const TexturePtr screen{CreateTexture(screenSize, screenSize)};
    const FontPtr font{nfkOpenFont("DejaVu Sans", 24)};
    std::vector<TextPtr> kept;
};

// ---- glyphs ----

TEST_F(KitText, AccentsAreOneGlyphHoweverWritten)
{
    EXPECT_EQ(numbers("\u00E9"), numbers("e\u0301"));
    EXPECT_EQ(numbers("\u00E9").size(), 1u);
    EXPECT_NE(numbers("\u00E9"), numbers("e"));
    EXPECT_EQ(bytes("na\u00EFve"), (std::vector<int32_t>{0, 1, 2, 4, 5}));
}

TEST_F(KitText, ArabicRunsTheOtherWayWithinLatin)
{
    // a, space, three Arabic letters of two bytes, space, b: seen from the left the Arabic ones come last to first.
    EXPECT_EQ(bytes("a \u0628\u062A\u062B b"), (std::vector<int32_t>{0, 1, 6, 4, 2, 8, 9}));
    // In a paragraph that begins with Arabic all else is the other way round, numbers are not.
    EXPECT_EQ(bytes("\u0628 12 \u062A"), (std::vector<int32_t>{6, 5, 3, 4, 2, 0}));
    // Brackets are mirrored: what opens in the text looks like an opening one.
    EXPECT_EQ(numbers("\u0628(\u062A)").front(), numbers("(").front());
}

TEST_F(KitText, ArabicLettersJoin)
{
    const uint32_t alone = numbers("\u0647")[0];
    std::set<uint32_t> forms(std::initializer_list<uint32_t>{alone});
    for (const uint32_t glyph : numbers("\u0647\u0647\u0647"))
        forms.insert(glyph);
    EXPECT_EQ(forms.size(), 4u) << "initial, medial, final and isolated";
    EXPECT_EQ(numbers("\u0644\u0627").size(), 1u) << "lam and alef are a ligature";
}

TEST_F(KitText, DevanagariIsReorderedAndJoined)
{
    // The vowel sign i stands before the consonant that it follows in the text.
    const std::vector<uint32_t> syllable = numbers("\u0939\u093F"), letter = numbers("\u0939");
    ASSERT_EQ(syllable.size(), 2u);
    EXPECT_EQ(syllable[1], letter[0]);
    // ka, virama, ssa become one sign.
    const std::vector<uint32_t> conjunct = numbers("\u0915\u094D\u0937");
    ASSERT_EQ(conjunct.size(), 1u);
    EXPECT_NE(conjunct[0], 0u);
    EXPECT_EQ(std::string(glyphs("\u0939")[0].family), "Lohit Devanagari");
}

TEST_F(KitText, ThaiMarksStandOverTheirLetter)
{
    const auto all = glyphs("\u0E01\u0E35\u0E48"); // ko kai, sara ii, mai ek
    ASSERT_EQ(all.size(), 3u);
    for (const NfkTextGlyph &glyph : all) {
        EXPECT_NE(glyph.glyph, 0u);
        EXPECT_EQ(glyph.byte, 0);
        EXPECT_STREQ(glyph.family, all[0].family);
    }
    EXPECT_EQ(widthOf("\u0E01\u0E35\u0E48"), widthOf("\u0E01"));
}

TEST_F(KitText, OtherFacesHelpOut)
{
    NfkFontInfo info;
    ASSERT_TRUE(nfkGetFontInfo(font.get(), &info));
    const auto all = glyphs("a\u65E5\u3002a");
    ASSERT_EQ(all.size(), 4u);
    EXPECT_STREQ(all[0].family, info.family);
    EXPECT_STRNE(all[1].family, info.family);
    EXPECT_STREQ(all[2].family, all[1].family) << "punctuation stays in the face before it";
    EXPECT_STREQ(all[3].family, info.family);
    EXPECT_EQ(measure(make("a\u65E5\u0939\u0E01\u0628")).missing, 0);
    for (const NfkTextGlyph &glyph : all)
        EXPECT_NE(glyph.glyph, 0u);

    const TextPtr none = make("a\U0010FF00"); // private use
    EXPECT_EQ(measure(none).missing, 1);
    NfkTextGlyph box;
    ASSERT_TRUE(nfkGetTextGlyph(none.get(), 1, &box));
    EXPECT_EQ(box.glyph, 0u);
    EXPECT_STREQ(box.family, info.family);
}

TEST_F(KitText, BrokenUtf8IsReplaced)
{
    // Each with the number of replacement characters it should give.
    const std::pair<const char *, size_t> broken[] = {
        {"\xFF", 1},
        {"\x80", 1},
        {"\xC0\xAF", 2}, // longer than needed
        {"\xE0\x80\x80", 3},
        {"\xED\xA0\x80", 3}, // a surrogate
        {"\xF4\x90\x80\x80", 4}, // beyond U+10FFFF
        {"\xE6\x97", 1}, // breaks off
        {"\xF0\x9F\x98", 1},
        {"\xE6\xE6\x97\xA5", 2}, // breaks off, then U+65E5
        {"\xC3(", 2}, // breaks off, then a bracket
    };
    const uint32_t replacement = numbers("\uFFFD")[0];
    ASSERT_NE(replacement, 0u);
    for (const auto &[text, count] : broken) {
        const std::vector<uint32_t> got = numbers(text);
        ASSERT_EQ(got.size(), count) << testing::PrintToString(std::string(text));
        EXPECT_EQ(got[0], replacement);
    }
}

TEST_F(KitText, ControlsShowNothing)
{
    EXPECT_EQ(widthOf("a\tb"), widthOf("a b"));
    EXPECT_EQ(widthOf("a\x01\x1F\x7F\u0080z"), widthOf("az"));
    EXPECT_EQ(widthOf("a\u200Bz"), widthOf("az"));
}

// ---- lines ----

using Strings = std::vector<std::string>;

TEST_F(KitText, LatinWrapsAtSpaces)
{
    EXPECT_EQ(wrap("one two  three", widthOf("one two")), (Strings{"one two", "three"}));
    EXPECT_EQ(wrap("one two  three", widthOf("one two") - 1), (Strings{"one", "two", "three"}));
    EXPECT_EQ(wrap("one two", 0), (Strings{"one two"}));
    EXPECT_EQ(wrap("well-known", widthOf("well-kno")), (Strings{"well-", "known"}));
    EXPECT_EQ(wrap("a\u00A0b c", widthOf("a b")), (Strings{"a\u00A0b", "c"})) << "no break there";
}

TEST_F(KitText, LongWordsBreakBetweenCharacters)
{
    const Strings parts = wrap("aaaaaaaaaa", widthOf("aaaa"));
    EXPECT_EQ(parts, (Strings{"aaaa", "aaaa", "aa"}));
    EXPECT_EQ(wrap("ab", 1), (Strings{"a", "b"}));
    EXPECT_EQ(wrap("e\u0301e\u0301", 1), (Strings{"e\u0301", "e\u0301"})) << "marks stay";
}

TEST_F(KitText, LineEndsOfAnyKind)
{
    EXPECT_EQ(wrap("a\nb\r\nc\rd\u2028e\u2029f\u0085g", 0), (Strings{"a", "b", "c", "d", "e", "f", "g"}));
    EXPECT_EQ(wrap("a\n\nb\n", 0), (Strings{"a", "", "b", ""}));
    EXPECT_EQ(wrap("", 0), (Strings{""}));
    EXPECT_EQ(wrap("\n", 100), (Strings{"", ""}));
    EXPECT_EQ(wrap("   ", 1), (Strings{""})) << "spaces hang over";
    EXPECT_EQ(wrap("a  ", widthOf("a ")), (Strings{"a"}));
    EXPECT_EQ(wrap("a  ", widthOf("a  ")), (Strings{"a  "}));
}

TEST_F(KitText, JapaneseWrapsAnywhereButBeforeStopsAndBehindBrackets)
{
    const std::string stop = "\u65E5\u672C\u8A9E\u3002\u6587"; // the fourth is a full stop
    EXPECT_EQ(wrap(stop, widthOf("\u65E5\u672C\u8A9E")), (Strings{"\u65E5\u672C", "\u8A9E\u3002\u6587"}));
    const std::string bracket = "\u65E5\u672C\u300C\u8A9E\u300D";
    EXPECT_EQ(wrap(bracket, widthOf("\u65E5\u672C\u300C")), (Strings{"\u65E5\u672C", "\u300C\u8A9E\u300D"}));
}

TEST_F(KitText, ThaiWrapsBetweenWords)
{
    const Strings words = {"\u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35", "\u0E0A\u0E32\u0E27",
                           "\u0E42\u0E25\u0E01"}; // hello, people, world
    const std::string text = words[0] + words[1] + words[2];
    EXPECT_EQ(wrap(text, widthOf(words[0])), words);
    EXPECT_EQ(wrap(text, widthOf(words[0] + words[1]) + 1), (Strings{words[0] + words[1], words[2]}));
}

TEST_F(KitText, ArabicAndDevanagariWrapAtSpaces)
{
    const std::string arabic = "\u0627\u0644\u0633\u0644\u0627\u0645", hindi = "\u0928\u092E\u0938\u094D\u0924\u0947";
    EXPECT_EQ(wrap(arabic + " " + arabic, widthOf(arabic) + 2), (Strings{arabic, arabic}));
    EXPECT_EQ(wrap(hindi + " " + hindi, widthOf(hindi) + 2), (Strings{hindi, hindi}));
}

TEST_F(KitText, SoftHyphensShowWhereALineEnds)
{
    const std::string text = "dictio\u00ADnary";
    EXPECT_EQ(widthOf(text), widthOf("dictionary"));
    const TextPtr two = make(text, wrapped(widthOf("dictio-")));
    const auto parts = lines(two);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0].width, widthOf("dictio-"));
    // Where the hyphen itself has no room the word breaks elsewhere.
    for (const NfkTextLine &line : lines(make(text, wrapped(widthOf("dictio-") - 1))))
        EXPECT_LE(line.width, widthOf("dictio-") - 1);
}

TEST_F(KitText, NoLineIsWiderThanTheWidth)
{
    const std::string text =
        "Mixed \u0627\u0644\u0633\u0644\u0627\u0645 \u0639\u0644\u064A\u0643\u0645 text AVAVAV "
        "\u0928\u092E\u0938\u094D\u0924\u0947 "
        "\u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35\u0E0A\u0E32\u0E27\u0E42\u0E25\u0E01 \u65E5\u672C\u8A9E\u306E\u6587\u7AE0";
    for (int32_t width = 60; width < 600; width += 7) {
        const TextPtr laid = make(text, wrapped(width));
        int32_t next = 0;
        for (const NfkTextLine &line : lines(laid)) {
            EXPECT_LE(line.width, width);
            EXPECT_GE(line.begin, next);
            EXPECT_EQ(text.substr(static_cast<size_t>(next), static_cast<size_t>(line.begin - next)).find_first_not_of(' '),
                      std::string::npos)
                << "only spaces go";
            next = line.end;
        }
        EXPECT_EQ(next, static_cast<int32_t>(text.size()));
    }
}

TEST_F(KitText, Alignment)
{
    const int32_t width = widthOf("word");
    const auto xOf = [&](int32_t align, const char *utf8) { return lines(make(utf8, wrapped(200, align)))[0].x; };
    EXPECT_EQ(xOf(NFK_ALIGN_LEFT, "word"), 0);
    EXPECT_EQ(xOf(NFK_ALIGN_START, "word"), 0);
    EXPECT_NEAR(xOf(NFK_ALIGN_RIGHT, "word"), 200 - width, 1);
    EXPECT_NEAR(xOf(NFK_ALIGN_CENTRE, "word"), (200 - width) / 2, 1);
    EXPECT_GT(xOf(NFK_ALIGN_START, "\u0628"), 150);
    EXPECT_EQ(xOf(NFK_ALIGN_LEFT, "\u0628"), 0);
    // Without a width the widest line is the room.
    NfkTextStyle right = white;
    right.align = NFK_ALIGN_RIGHT;
    const auto both = lines(make("wide line\nword", right));
    EXPECT_EQ(both[0].x, 0);
    EXPECT_NEAR(both[1].x, both[0].width - width, 1);
}

TEST_F(KitText, LineHeights)
{
    NfkFontInfo info;
    ASSERT_TRUE(nfkGetFontInfo(font.get(), &info));
    const auto usual = lines(make("a\nb"));
    EXPECT_EQ(usual[0].baseline, info.ascent);
    EXPECT_EQ(usual[1].baseline - usual[0].baseline, info.lineHeight);
    NfkTextStyle style = white;
    style.lineHeight = 50;
    const TextPtr wide = make("a\nb\nc", style);
    EXPECT_EQ(lines(wide)[2].baseline - lines(wide)[1].baseline, 50);
    EXPECT_EQ(measure(wide).height, 150);
    EXPECT_EQ(measure(make("a\nb")).height, 2 * info.lineHeight);
}

TEST_F(KitText, Carets)
{
    const std::string latin = "plain";
    const TextPtr text = make(latin);
    EXPECT_EQ(caret(text, 0), 0);
    for (int32_t byte = 1; byte <= 5; ++byte) {
        EXPECT_GT(caret(text, byte), caret(text, byte - 1));
        EXPECT_NEAR(caret(text, byte), widthOf(latin.substr(0, static_cast<size_t>(byte))), 1);
    }
    // From the right in Arabic, and within a ligature in the middle of it.
    const TextPtr arabic = make("\u0628\u0644\u0627");
    EXPECT_NEAR(caret(arabic, 0), measure(arabic).width, 1);
    EXPECT_GT(caret(arabic, 0), caret(arabic, 2));
    EXPECT_GT(caret(arabic, 2), caret(arabic, 4));
    EXPECT_GT(caret(arabic, 4), caret(arabic, 6));
    EXPECT_EQ(caret(arabic, 6), 0);
    EXPECT_EQ(caret(arabic, 3), caret(arabic, 2)) << "within a character it stands before it";
    // On the line that begins there.
    const TextPtr two = make("one two", wrapped(widthOf("one")));
    NfkRect box;
    ASSERT_TRUE(nfkGetTextCaret(two.get(), 4, &box));
    EXPECT_EQ(box.x, 0);
    EXPECT_EQ(box.y, box.height);
    EXPECT_FALSE(nfkGetTextCaret(two.get(), 8, &box));
    EXPECT_FALSE(nfkGetTextCaret(two.get(), -1, &box));
}

// ---- drawing ----

const char *const paragraph =
    "Ma\u00DFe, na\u00EFve f\u00E9es: \u0627\u0644\u0633\u0644\u0627\u0645 (12) "
    "\u0928\u092E\u0938\u094D\u0924\u0947, \u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35 \u65E5\u672C\u8A9E\u3067\u3059\u3002";

TEST_F(KitText, InkIsWhatDrawingChanges)
{
    for (const int32_t rim : {0, 1, 5}) {
        for (const int32_t alpha : {255, 90}) {
            for (const int32_t align : {NFK_ALIGN_START, NFK_ALIGN_CENTRE, NFK_ALIGN_RIGHT}) {
                NfkTextStyle style = rimmed(rim);
                style.width = 260, style.align = align;
                const TextPtr text = make(paragraph, style);
                clear();
                ASSERT_TRUE(nfkDrawText(text.get(), 40, 30, alpha, -1)) << nfkError();
                const NfkRect ink = measure(text).ink, changed = changedBox(*screen);
                // A pixel of next to no coverage may stay what it was under a fade.
                const int most = alpha == 255 && rim == 0 ? 0 : 1;
                EXPECT_NEAR(changed.x, 40 + ink.x, most);
                EXPECT_NEAR(changed.y, 30 + ink.y, most);
                EXPECT_NEAR(changed.x + changed.width, 40 + ink.x + ink.width, most);
                EXPECT_NEAR(changed.y + changed.height, 30 + ink.y + ink.height, most);
            }
        }
    }
}

TEST_F(KitText, ColoursAreExactWhereGlyphsCover)
{
    NfkTextStyle style = white;
    style.color = 0xFF13579B;
    ASSERT_TRUE(nfkWrite(font.get(), "\u2588\u2588", 10, 10, &style)) << nfkError(); // full blocks
    EXPECT_EQ(at(20, 25), 0xFF13579B);
    EXPECT_EQ(at(5, 25), ground);
}

TEST_F(KitText, RimReachesOutsideTheGlyphs)
{
    const NfkRect plain = measure(make("Rim")).ink;
    for (const int32_t rim : {1, 2, 6}) {
        const TextPtr text = make("Rim", rimmed(rim));
        const NfkRect ink = measure(text).ink;
        EXPECT_NEAR(ink.x, plain.x - rim, 1);
        EXPECT_NEAR(ink.y, plain.y - rim, 1);
        EXPECT_NEAR(ink.width, plain.width + 2 * rim, 2);
        EXPECT_NEAR(ink.height, plain.height + 2 * rim, 2);
    }
    // All that the plain text covers fully is the same with a rim; what the rim covers fully beside it is the rim's colour.
    ASSERT_TRUE(nfkWrite(font.get(), "Rim", 50, 50, nullptr));
    const std::vector<uint32_t> without = pixels();
    clear();
    const NfkTextStyle style = rimmed(4);
    ASSERT_TRUE(nfkWrite(font.get(), "Rim", 50, 50, &style));
    const std::vector<uint32_t> with = pixels();
    int full = 0, red = 0;
    for (size_t i = 0; i < with.size(); ++i) {
        if (without[i] == 0xFFFFFFFF) {
            ++full;
            EXPECT_EQ(with[i], 0xFFFFFFFF);
        }
        if (without[i] == ground && with[i] == 0xFFFF0000)
            ++red;
    }
    EXPECT_GT(full, 50);
    EXPECT_GT(red, 100);
}

TEST_F(KitText, FadesAsOnePicture)
{
    // Letters so close that their rims overlap: half of it must look the same in all places that are fully rim.
    const NfkTextStyle style = rimmed(6);
    const TextPtr text = make("illil", style);
    ASSERT_TRUE(nfkDrawText(text.get(), 60, 60, 255, -1));
    const std::vector<uint32_t> opaque = pixels();
    std::set<uint32_t> rims, glyphs;
    clear();
    ASSERT_TRUE(nfkDrawText(text.get(), 60, 60, 128, -1));
    for (size_t i = 0; i < opaque.size(); ++i) {
        if (opaque[i] == 0xFFFF0000)
            rims.insert(screen->pixels[i]);
        else if (opaque[i] == 0xFFFFFFFF)
            glyphs.insert(screen->pixels[i]);
        else if (opaque[i] == ground) {
            ASSERT_EQ(screen->pixels[i], ground);
        }
    }
    ASSERT_EQ(rims.size(), 1u);
    ASSERT_EQ(glyphs.size(), 1u);
    EXPECT_NEAR(*rims.begin() >> 16 & 255, (0x20 + 0xFF) / 2, 2);
    EXPECT_NEAR(*rims.begin() & 255, 0x60 / 2, 2);
    EXPECT_NEAR(*glyphs.begin() & 255, (0x60 + 0xFF) / 2, 2);

    clear();
    ASSERT_TRUE(nfkDrawText(text.get(), 60, 60, 0, -1));
    EXPECT_EQ(changedBox(*screen).width, 0);

    // Opaque as a picture is opaque glyph by glyph, but for the edges.
    NfkTextStyle almost = style;
    almost.color = 0xFEFFFFFF;
    clear();
    ASSERT_TRUE(nfkWrite(font.get(), "illil", 60, 60, &almost));
    for (size_t i = 0; i < opaque.size(); ++i)
        for (int shift = 0; shift < 24; shift += 8)
            ASSERT_NEAR(screen->pixels[i] >> shift & 255, opaque[i] >> shift & 255, 12) << i;
}

TEST_F(KitText, AppearsByAndBy)
{
    const TextPtr text = make("Hello there", rimmed(2));
    ASSERT_TRUE(nfkDrawText(text.get(), 20, 20, 255, 5));
    const std::vector<uint32_t> part = pixels();
    clear();
    const NfkTextStyle style = rimmed(2);
    ASSERT_TRUE(nfkWrite(font.get(), "Hello", 20, 20, &style));
    EXPECT_EQ(part, pixels());
    clear();
    ASSERT_TRUE(nfkDrawText(text.get(), 20, 20, 255, 0));
    EXPECT_EQ(changedBox(*screen).width, 0);
    // A faded part is not kept for the next one.
    for (const int32_t bytes : {3, 11}) {
        clear();
        ASSERT_TRUE(nfkDrawText(text.get(), 20, 20, 100, bytes));
        EXPECT_LT(std::abs(changedBox(*screen).width - widthOf(std::string("Hello there").substr(0, static_cast<size_t>(bytes)))),
                  8);
    }
}

TEST_F(KitText, LeavesTheRenderStateAlone)
{
    std::memset(&rs.vertex, 0x11, sizeof rs.vertex);
    rs.color[0] = 7, rs.prescale = 9, rs.blendModeMulti = 5, rs.prescaleMultiMode = 1;
    SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
    const TextPtr text = make(paragraph, rimmed(2));
    RenderState before, after;
    for (const int32_t alpha : {255, 100}) {
        std::memcpy(&before, &rs, sizeof rs);
        ASSERT_TRUE(nfkDrawText(text.get(), 3, 4, alpha, -1)) << nfkError();
        std::memcpy(&after, &rs, sizeof rs);
        EXPECT_EQ(std::memcmp(&before, &after, sizeof rs), 0);
    }
}

TEST_F(KitText, HeedsOriginAndClip)
{
    const TextPtr text = make("Clipped", rimmed(1));
    ASSERT_TRUE(nfkDrawText(text.get(), 100, 100, 255, -1));
    std::vector<uint32_t> whole = pixels();
    clear();
    rs.originX = 60, rs.originY = 70;
    rs.clipLeft = 120, rs.clipTop = 110, rs.clipRight = 150, rs.clipBottom = 120;
    ASSERT_TRUE(nfkDrawText(text.get(), 40, 30, 255, -1));
    for (int y = 0; y < screenSize; ++y)
        for (int x = 0; x < screenSize; ++x)
            ASSERT_EQ(at(x, y),
                      x >= 120 && x < 150 && y >= 110 && y < 120 ? whole[static_cast<size_t>(y * screenSize + x)] : ground);
}

int calls;

TEST_F(KitText, GoesThroughTheKitsCaller)
{
    calls = 0;
    nfkSetCaller([](uint32_t code, DrawFunc kernel) { calls += code != 0 && kernel == SearchDrawFunc(code); });
    ASSERT_TRUE(nfkWrite(font.get(), "abc", 10, 10, nullptr));
    EXPECT_EQ(calls, 3);
    nfkSetCaller(nullptr);
    EXPECT_EQ(changedBox(*screen).width, 0);
}

TEST_F(KitText, TheAtlasGrowsAndIsKept)
{
    EXPECT_FALSE(nfkGetFontAtlas(font.get()));
    ASSERT_TRUE(nfkWrite(font.get(), "abc", 10, 10, nullptr));
    const Texture *first = nfkGetFontAtlas(font.get());
    ASSERT_TRUE(first);
    const uint32_t width = first->width;
    const std::vector<uint32_t> once(first->pixels, first->pixels + size_t{first->width} * first->height);
    ASSERT_TRUE(nfkWrite(font.get(), "cab", 10, 50, nullptr));
    ASSERT_EQ(nfkGetFontAtlas(font.get()), first);
    const std::vector<uint32_t> again(first->pixels, first->pixels + size_t{first->width} * first->height);
    // The same letters at other quarters of a pixel may have been added, nothing is moved.
    for (size_t i = 0; i < once.size(); ++i)
        ASSERT_TRUE(once[i] == 0 || once[i] == again[i]);
    const NfkTextStyle style = rimmed(20);
    ASSERT_TRUE(nfkWrite(font.get(), "The quick brown fox jumps over the lazy dog", 0, 0, &style));
    const Texture *later = nfkGetFontAtlas(font.get());
    EXPECT_GT(later->width, width);
    for (uint32_t y = 0; y < 64; ++y)
        for (uint32_t x = 0; x < width; ++x)
            if (const uint32_t pixel = once[y * width + x]; pixel != 0) {
                ASSERT_EQ(later->pixels[y * later->width + x], pixel);
            }
}

TEST_F(KitText, AFullAtlasBeginsAgain)
{
    // Signs of 400 pixels: a hundred or so fill the largest atlas.
    const auto signs = [](int from, int count) {
        std::string text;
        for (int i = from; i < from + count; ++i) {
            const int sign = 0x4E00 + i * 3;
            text += {static_cast<char>(0xE0 | sign >> 12), static_cast<char>(0x80 | (sign >> 6 & 63)),
                     static_cast<char>(0x80 | (sign & 63))};
        }
        return text;
    };
    const auto open = [] { return FontPtr(nfkOpenFont("VL Gothic", 400)); };
    const FontPtr large = open();
    for (const int from : {0, 40, 80, 120}) {
        clear();
        ASSERT_TRUE(nfkWrite(large.get(), signs(from, 40).c_str(), -400 * 20, 0, nullptr)) << nfkError();
        const std::vector<uint32_t> reused = pixels();
        clear();
        ASSERT_TRUE(nfkWrite(open().get(), signs(from, 40).c_str(), -400 * 20, 0, nullptr)) << nfkError();
        ASSERT_EQ(reused, pixels()) << from;
        EXPECT_GT(changedBox(*screen).width, 0);
    }
    EXPECT_LE(nfkGetFontAtlas(large.get())->width, 4096u);
    EXPECT_FALSE(nfkWrite(large.get(), signs(0, 400).c_str(), 0, 0, nullptr));
    EXPECT_NE(std::string(nfkError()).find("do not fit an atlas"), std::string::npos) << nfkError();
}

// ---- fonts and refusals ----

TEST_F(KitText, FontsSayWhatWasFound)
{
    NfkFontInfo info;
    ASSERT_TRUE(nfkGetFontInfo(font.get(), &info));
    EXPECT_STREQ(info.family, "DejaVu Sans");
    EXPECT_STREQ(info.style, "Book");
    EXPECT_EQ(info.found, 1);
    EXPECT_GE(info.lineHeight, info.ascent + info.descent);
    EXPECT_GT(info.ascent, info.descent);

    const FontPtr bold(nfkOpenFont("dejavu sans:bold", 24));
    NfkFontInfo other;
    ASSERT_TRUE(nfkGetFontInfo(bold.get(), &other)) << nfkError();
    EXPECT_EQ(other.found, 1);
    EXPECT_STREQ(other.style, "Bold");

    const FontPtr absent(nfkOpenFont("No Such Family At All", 24));
    ASSERT_TRUE(nfkGetFontInfo(absent.get(), &other)) << nfkError();
    EXPECT_EQ(other.found, 0);
    EXPECT_STRNE(other.family, "");

    const FontPtr file(nfkOpenFontFile(info.file, info.face, 24));
    ASSERT_TRUE(nfkGetFontInfo(file.get(), &other)) << nfkError();
    EXPECT_STREQ(other.file, info.file);
    EXPECT_EQ(other.lineHeight, info.lineHeight);
    const FontPtr fallback(nfkOpenFontFile(info.file, 0, 16));
    TextPtr text(nfkMakeText(fallback.get(), "\u65E5", nullptr));
    EXPECT_EQ(measure(text).missing, 0) << "faces help out here too";

    const FontPtr any(nfkOpenFont(nullptr, 24));
    EXPECT_TRUE(any) << nfkError();
}

TEST_F(KitText, TextsOutliveTheirFont)
{
    FontPtr own(nfkOpenFont("DejaVu Sans", 20));
    const TextPtr text(nfkMakeText(own.get(), "still here", nullptr));
    own.reset();
    ASSERT_TRUE(nfkDrawText(text.get(), 10, 10, 255, -1)) << nfkError();
    EXPECT_GT(changedBox(*screen).width, 50);
}

TEST_F(KitText, RefusalsHaveATextAndDrawNothing)
{
    const auto refused = [](bool done, const char *word) {
        EXPECT_FALSE(done) << word;
        EXPECT_NE(std::string(nfkError()).find(word), std::string::npos) << nfkError() << " has not: " << word;
    };
    refused(nfkOpenFont("DejaVu Sans", 0) != nullptr, "0 pixels");
    refused(nfkOpenFont("DejaVu Sans", 513) != nullptr, "513 pixels");
    refused(nfkOpenFontFile("/no/such/file.ttf", 0, 20) != nullptr, "/no/such/file.ttf");
    refused(nfkOpenFontFile(nullptr, 0, 20) != nullptr, "null");
    refused(nfkMakeText(nullptr, "a", nullptr) != nullptr, "font is null");
    refused(nfkMakeText(font.get(), nullptr, nullptr) != nullptr, "text is null");
    const auto styled = [&](auto change) {
        NfkTextStyle style = white;
        change(style);
        return nfkMakeText(font.get(), "a", &style) != nullptr;
    };
    refused(styled([](NfkTextStyle &style) { style.rim = 65; }), "rim 65");
    refused(styled([](NfkTextStyle &style) { style.rim = -1; }), "rim -1");
    refused(styled([](NfkTextStyle &style) { style.width = -1; }), "width -1");
    refused(styled([](NfkTextStyle &style) { style.align = 4; }), "alignment 4");
    refused(styled([](NfkTextStyle &style) { style.lineHeight = INT32_MAX; }), "line height");
    refused(nfkMakeText(font.get(), std::string(NFK_TEXT_MAX_BYTES + 1, 'a').c_str(), nullptr) != nullptr, "longer than");
    const TextPtr text = make("a");
    refused(nfkDrawText(text.get(), 0, 0, 256, -1), "alpha 256");
    refused(nfkDrawText(text.get(), INT32_MIN, 0, 255, -1), "position");
    refused(nfkDrawText(nullptr, 0, 0, 255, -1), "null");
    NfkTextGlyph glyph;
    refused(nfkGetTextGlyph(text.get(), 1, &glyph), "glyph 1");
    NfkTextLine line;
    refused(nfkGetTextLine(text.get(), -1, &line), "line -1");
    refused(nfkMeasureText(text.get(), nullptr), "null");
    uint32_t *const frame = rs.dstPixels;
    rs.dstPixels = nullptr;
    refused(nfkDrawText(text.get(), 0, 0, 255, -1), "frame buffer");
    rs.dstPixels = frame;
    EXPECT_EQ(changedBox(*screen).width, 0);
    nfkCloseFont(nullptr), nfkDeleteText(nullptr);
}

TEST_F(KitText, LongTextsStayInTheirLimits)
{
    // A megabyte of one line is wider than positions can be, with a width it is a paragraph.
    const FontPtr large(nfkOpenFont("DejaVu Sans", 512));
    const std::string text(NFK_TEXT_MAX_BYTES, 'm');
    EXPECT_FALSE(nfkMakeText(large.get(), text.c_str(), nullptr));
    EXPECT_NE(std::string(nfkError()).find("wider than"), std::string::npos) << nfkError();
    EXPECT_FALSE(nfkMakeText(large.get(), std::string(NFK_TEXT_MAX_BYTES, '\n').c_str(), nullptr));
    EXPECT_NE(std::string(nfkError()).find("higher than"), std::string::npos) << nfkError();
    const TextPtr wrappedText = make(text.substr(0, 1 << 16), wrapped(10000));
    EXPECT_GT(measure(wrappedText).lines, 100);
}

// Characters of many writings, marks, joiners, direction marks and broken bytes in any order: nothing is lost, nothing overlaps
// its limits, and every byte has a caret.
TEST_F(KitText, AnyBytesAreText)
{
    const char *const parts[] = {"a",      "V ",           "\u0628",      "\u0644\u0627", "\u0939\u093F", "\u094D", "\u0E01",
                                 "\u0E35", "\u65E5",       "\u3002",      "\u0301",       "\u200D",       "\u200C", "\u202E",
                                 "\u202C", "\u2067",       "\u2069",      "\u00AD",       "\U0001F600",   "\uFE0F", "\n",
                                 "\xFF",   "\xE6",         "(",           "12",           "\t",           "   ",    "-",
                                 "\u05D0", "\u1100\u1161", "\u0F40\u0F90"};
    uint32_t state = 7;
    const auto below = [&](uint32_t count) {
        state = state * 1664525 + 1013904223;
        return (state >> 8) % count;
    };
    for (int round = 0; round < 1500; ++round) {
        std::string utf8;
        for (uint32_t i = below(30); i > 0; --i)
            utf8 += parts[below(std::size(parts))];
        NfkTextStyle style = wrapped(static_cast<int32_t>(below(4) ? below(200) : 0), static_cast<int32_t>(below(4)));
        SCOPED_TRACE(testing::PrintToString(utf8) + " in " + std::to_string(style.width));
        const TextPtr text = make(utf8, style);
        ASSERT_TRUE(text);
        const NfkTextSize size = measure(text);
        int32_t next = 0;
        for (const NfkTextLine &line : lines(text)) {
            ASSERT_GE(line.begin, next);
            ASSERT_LE(line.begin, line.end);
            ASSERT_LE(line.width, size.width);
            next = line.end;
        }
        ASSERT_LE(next, static_cast<int32_t>(utf8.size()));
        for (int32_t byte = 0; byte <= static_cast<int32_t>(utf8.size()); ++byte) {
            NfkRect box;
            ASSERT_TRUE(nfkGetTextCaret(text.get(), byte, &box));
            ASSERT_LT(box.y, size.height);
        }
        if (round % 10 == 0) {
            ASSERT_TRUE(nfkDrawText(text.get(), 20, 20, 255, -1)) << nfkError();
        }
    }
}

TEST_F(KitText, Handles)
{
    nfk::Font own("DejaVu Sans", 24);
    EXPECT_STREQ(own.info().family, "DejaVu Sans");
    nfk::Text text(own, "handled");
    EXPECT_EQ(text.size().width, widthOf("handled"));
    nfk::Text moved = std::move(text);
    moved.draw(10, 10);
    const std::vector<uint32_t> drawn = pixels();
    clear();
    own.write("handled", 10, 10);
    EXPECT_EQ(drawn, pixels());
    EXPECT_THROW(nfk::Font("DejaVu Sans", 0), nfk::Error);
    EXPECT_THROW(nfk::Text(own, nullptr), nfk::Error);
    EXPECT_THROW(moved.draw(0, 0, 300), nfk::Error);
}

// ---- the library's own glyphs ----

std::string utf8Of(iconv_t converter, std::string bytes)
{
    char out[16];
    char *from = bytes.data(), *to = out;
    size_t fromLeft = bytes.size(), toLeft = sizeof out;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    return iconv(converter, &from, &fromLeft, &to, &toLeft) == 0 ? std::string(out, to) : std::string();
}

TEST(KitPage932, EveryCharacterIsTheLibrarys)
{
    const iconv_t converter = iconv_open("UTF-8", "CP932");
    ASSERT_NE(converter, reinterpret_cast<iconv_t>(-1));
    const TexturePtr own(CreateTexture(64, 64)), theirs(CreateTexture(64, 64));
    static char face[] = "VL Gothic";
    rs.fontName = face;
    rs.fontHeight = -12, rs.fontWeight = 400, rs.fontQuality = NINEFOLD_QUALITY_GREY64, rs.fontItalic = 0;
    int characters = 0, doubles = 0;
    const auto compare = [&](const std::string &bytes, bool fuchi) {
        const std::string utf8 = utf8Of(converter, bytes);
        if (utf8.empty())
            return;
        ++characters;
        const auto begin = [](Texture *atlas) {
            ClearTexture(atlas);
            rs.tex0 = atlas;
            rs.fontCursorX = 3, rs.fontCursorY = rs.fontLineBottom = 5;
        };
        std::string text = bytes;
        begin(theirs.get());
        ASSERT_TRUE(fuchi ? CreateFontTextureFuchi(text.data()) : CreateFontTexture(text.data()));
        RenderState expected;
        std::memcpy(&expected, &rs, sizeof rs);
        begin(own.get());
        const char *next = fuchi ? nfkCreateFontTextureFuchi(utf8.c_str()) : nfkCreateFontTexture(utf8.c_str());
        ASSERT_TRUE(next) << nfkError();
        ASSERT_EQ(next, utf8.c_str() + utf8.size());
        expected.tex0 = own.get();
        if (expected.glyphCode != rs.glyphCode) {
            ++doubles;
            ASSERT_LT(rs.glyphCode, expected.glyphCode);
            expected.glyphCode = rs.glyphCode;
        }
        ASSERT_EQ(std::memcmp(&expected, &rs, sizeof rs), 0) << utf8;
        ASSERT_TRUE(std::equal(own->pixels, own->pixels + 64 * 64, theirs->pixels)) << utf8;
    };
    for (int lead = 1; lead < 256; ++lead) {
        if ((lead < 0x80 || (lead >= 0xA1 && lead <= 0xDF)))
            compare(std::string(1, static_cast<char>(lead)), lead % 2);
        else
            for (int second = 0x40; second < 0xFD; ++second)
                compare({static_cast<char>(lead), static_cast<char>(second)}, second % 2);
        if (HasFatalFailure())
            break;
    }
    iconv_close(converter);
    EXPECT_GT(characters, 9000);
    EXPECT_GT(doubles, 100);
}

TEST(KitPage932, Refusals)
{
    const TexturePtr atlas(CreateTexture(16, 16));
    rs.tex0 = atlas.get();
    rs.fontCursorX = rs.fontCursorY = rs.fontLineBottom = 0;
    RenderState before;
    std::memcpy(&before, &rs, sizeof rs);
    EXPECT_FALSE(nfkCreateFontTexture("\u00E9"));
    EXPECT_NE(std::string(nfkError()).find("U+00E9"), std::string::npos) << nfkError();
    EXPECT_FALSE(nfkCreateFontTexture("\xFF"));
    EXPECT_FALSE(nfkCreateFontTexture("\U00020000"));
    EXPECT_FALSE(nfkCreateFontTexture(nullptr));
    EXPECT_EQ(std::memcmp(&before, &rs, sizeof rs), 0);
    rs.fontHeight = -40;
    EXPECT_FALSE(nfkCreateFontTexture("W"));
    EXPECT_NE(std::string(nfkError()).find("full"), std::string::npos) << nfkError();
    rs.tex0 = nullptr;
    EXPECT_FALSE(nfkCreateFontTextureFuchi("a"));
    EXPECT_NE(std::string(nfkError()).find("tex0"), std::string::npos) << nfkError();
}

TEST(KitPage932, Names)
{
    char out[16];
    ASSERT_TRUE(nfkEncodePage932("VL \u30B4\u30B7\u30C3\u30AF", out, sizeof out)) << nfkError();
    EXPECT_STREQ(out, "VL \x83\x53\x83\x56\x83\x62\x83\x4E");
    ASSERT_TRUE(nfkEncodePage932("abc", out, 4));
    EXPECT_STREQ(out, "abc");
    EXPECT_FALSE(nfkEncodePage932("abc", out, 3));
    EXPECT_FALSE(nfkEncodePage932("", out, 0));
    EXPECT_FALSE(nfkEncodePage932("\u00E9", out, sizeof out));
    EXPECT_FALSE(nfkEncodePage932(nullptr, out, sizeof out));
}

} // namespace
