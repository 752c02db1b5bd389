// Code page 932 against the GNU C library's converter, which defines the same characters. Other converters define some more.
#include "glyph/page932.h"

#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#if defined(__GLIBC__)
#include <iconv.h>
#endif

using namespace ninefold::glyph;

namespace {

constexpr char16_t middleDot = 0x30FB;

std::optional<std::string> utf8Of(const std::string &text)
{
    const size_t most = 3 * text.size() + 1;
    std::string utf8(most + 1, '~');
    const bool isDefined = utf8Of932(text.c_str(), utf8.data());
    EXPECT_EQ(utf8[most], '~') << "written behind the end";
    if (!isDefined)
        return std::nullopt;
    return utf8.c_str();
}

TEST(Page932, SingleBytes)
{
    EXPECT_EQ(utf16Of932(0), 0);
    EXPECT_EQ(utf16Of932('\\'), u'\\');
    EXPECT_EQ(utf16Of932('~'), u'~');
    EXPECT_EQ(utf16Of932(0x7F), 0x7F);
    EXPECT_EQ(utf16Of932(0xA1), 0xFF61);
    EXPECT_EQ(utf16Of932(0xDF), 0xFF9F);
    for (const uint8_t byte : {0x80, 0x81, 0x9F, 0xA0, 0xE0, 0xFC, 0xFD, 0xFE, 0xFF})
        EXPECT_EQ(utf16Of932(byte), undefined932) << int{byte};
}

TEST(Page932, FirstAndLastOfEachRange)
{
    EXPECT_EQ(utf16Of932(0x81, 0x40), 0x3000); // ideographic space
    EXPECT_EQ(utf16Of932(0x81, 0x5F), 0xFF3C);
    EXPECT_EQ(utf16Of932(0x81, 0x7E), 0x00D7);
    EXPECT_EQ(utf16Of932(0x81, 0x80), 0x00F7);
    EXPECT_EQ(utf16Of932(0x81, 0xFC), 0x25EF);
    EXPECT_EQ(utf16Of932(0x82, 0xA0), 0x3042); // hiragana A
    EXPECT_EQ(utf16Of932(0x88, 0xEA), 0x4E00); // kanji one
    EXPECT_EQ(utf16Of932(0x9F, 0xFC), 0x6ECC);
    EXPECT_EQ(utf16Of932(0xE0, 0x40), 0x6F3E);
    EXPECT_EQ(utf16Of932(0xEA, 0xA4), 0x7199);
    EXPECT_EQ(utf16Of932(0xEE, 0xFC), 0xFF02);
    EXPECT_EQ(utf16Of932(0xF0, 0x40), 0xE000);
    EXPECT_EQ(utf16Of932(0xF0, 0x7E), 0xE03E);
    EXPECT_EQ(utf16Of932(0xF0, 0x80), 0xE03F);
    EXPECT_EQ(utf16Of932(0xF9, 0xFC), 0xE757);
    EXPECT_EQ(utf16Of932(0xFA, 0x40), 0x2170);
    EXPECT_EQ(utf16Of932(0xFC, 0x4B), 0x9ED1);
    for (const uint32_t code : {0x813F, 0x817F, 0x81AD, 0x81FD, 0x8540, 0xEAA5, 0xEF40, 0xF03F, 0xF07F, 0xF9FD, 0xFC4C, 0xFCFC,
                                0xFD40, 0xFFFF, 0x8041, 0xA041, 0x0041})
        EXPECT_EQ(utf16Of932(static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code)), undefined932) << std::hex << code;
}

TEST(Page932, WhatIsDrawn)
{
    EXPECT_EQ(drawnCharacter932('A'), u'A');
    EXPECT_EQ(drawnCharacter932(0xB1), 0xFF71);
    EXPECT_EQ(drawnCharacter932(0xFFFFFFB1), 0xFF71);
    EXPECT_EQ(drawnCharacter932(0x82A0), 0x3042);
    for (const uint32_t code : {0x8145u, 0x8540u, 0x8100u, 0x81FFu, 0xFCFCu, 0x81u, 0xFFFFFF81u})
        EXPECT_EQ(drawnCharacter932(code), middleDot) << std::hex << code;
    for (const uint32_t code : {0x80u, 0xFFFFFF80u, 0xFFFFFFA0u, 0xFFFFFFFFu})
        EXPECT_EQ(drawnCharacter932(code), undefined932) << std::hex << code;
}

TEST(Page932, Names)
{
    EXPECT_EQ(utf8Of(""), "");
    EXPECT_EQ(utf8Of("VL Gothic"), "VL Gothic");
    EXPECT_EQ(utf8Of("\x82\x6C\x83\x93 \xB1\x83\xBF"), "\xEF\xBC\xAD\xE3\x83\xB3 \xEF\xBD\xB1\xCE\xB1");
    EXPECT_EQ(utf8Of("cut\x82"), std::nullopt);
    EXPECT_EQ(utf8Of("\x85\x40"), std::nullopt);
    EXPECT_EQ(utf8Of("\xFF\xFE"), std::nullopt);
}

#if defined(__GLIBC__)

class Converter {
public:
    explicit Converter(const char *encoding) : descriptor_(iconv_open(encoding, "CP932")) {}
    ~Converter()
    {
        if (exists())
            iconv_close(descriptor_);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool exists() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    // Nothing if a part of the text is undefined.
    std::optional<std::string> operator()(std::string text) const
    {
        iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        std::string converted(4 * text.size(), '\0');
        char *in = text.data(), *out = converted.data();
        size_t inBytes = text.size(), outBytes = converted.size();
        if (iconv(descriptor_, &in, &inBytes, &out, &outBytes) == static_cast<size_t>(-1))
            return std::nullopt;
        converted.resize(converted.size() - outBytes);
        return converted;
    }

private:
    iconv_t descriptor_;
};

class Page932AsConverted : public testing::Test {
protected:
    void SetUp() override
    {
        if (!utf16_.exists() || !utf8_.exists())
            GTEST_SKIP() << "iconv has no code page 932 here";
    }

    char16_t utf16Of(const std::string &character) const
    {
        const std::optional<std::string> utf16 = utf16_(character);
        if (!utf16)
            return undefined932;
        EXPECT_EQ(utf16->size(), 2u);
        return static_cast<char16_t>(static_cast<uint8_t>((*utf16)[0]) << 8 | static_cast<uint8_t>((*utf16)[1]));
    }

    const Converter utf16_{"UTF-16BE"}, utf8_{"UTF-8"};
};

TEST_F(Page932AsConverted, EveryCode)
{
    char16_t singles[0x100];
    for (uint32_t byte = 0; byte < 0x100; ++byte) {
        singles[byte] = utf16Of({static_cast<char>(byte)});
        EXPECT_EQ(utf16Of932(static_cast<uint8_t>(byte)), singles[byte]) << std::hex << byte;
    }
    int defined = 0;
    for (uint32_t code = 0; code < 0x10000; ++code) {
        const auto lead = static_cast<uint8_t>(code >> 8), last = static_cast<uint8_t>(code);
        // Other bytes than lead bytes are characters by themselves, whatever follows.
        const bool isPair = isLeadByte932(lead);
        const char16_t pair = isPair ? utf16Of({static_cast<char>(lead), static_cast<char>(last)}) : undefined932;
        EXPECT_EQ(utf16Of932(lead, last), pair) << std::hex << code;
        defined += pair != undefined932;

        char16_t drawn = isPair ? pair : singles[last];
        if (drawn == undefined932 && (isPair || isLeadByte932(last)))
            drawn = middleDot;
        EXPECT_EQ(drawnCharacter932(code), drawn) << std::hex << code;
        if (code >= 0x80 && code < 0x100) {
            EXPECT_EQ(drawnCharacter932(0xFFFFFF00 | code), drawn) << std::hex << code;
        }
    }
    EXPECT_GT(defined, 9000);
}

TEST_F(Page932AsConverted, NamesOfOneOrTwoBytes)
{
    for (uint32_t code = 1; code < 0x10000; ++code) {
        const char first = static_cast<char>(code >> 8), last = static_cast<char>(code);
        if (last == 0)
            continue;
        const std::string name = first ? std::string{first, last} : std::string{last};
        EXPECT_EQ(utf8Of(name), utf8_(name)) << std::hex << code;
    }
}

TEST_F(Page932AsConverted, LongNames)
{
    std::mt19937 random(932);
    int defined = 0;
    constexpr int names = 20000;
    for (int i = 0; i < names; ++i) {
        std::string name;
        const size_t length = 1 + random() % 31;
        while (name.size() < length) {
            // Among many pairs of the page now and then any byte.
            if (random() % 32 == 0) {
                name += static_cast<char>(1 + random() % 0xFF);
            } else {
                name += static_cast<char>(0x89 + random() % 0x0F);
                name += static_cast<char>(0x40 + random() % 0x3F);
            }
        }
        name.resize(length);
        const std::optional<std::string> expected = utf8_(name);
        EXPECT_EQ(utf8Of(name), expected) << testing::PrintToString(name);
        defined += expected.has_value();
    }
    EXPECT_GT(defined, names / 10);
    EXPECT_LT(defined, names * 9 / 10);
}

#else

TEST(Page932AsConverted, EveryCode) { GTEST_SKIP() << "not the GNU C library"; }

#endif

} // namespace
