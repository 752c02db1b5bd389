// Draw codes in words, against the library's own table.
#include <ninefold/kit.h>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

std::string nameOf(uint32_t code)
{
    char buffer[128];
    return nfkCodeName(code, buffer, sizeof buffer) ? buffer : "";
}

std::string explained(uint32_t code)
{
    std::string text(nfkExplainCode(code, nullptr, 0), 0);
    EXPECT_EQ(nfkExplainCode(code, text.data(), uint32_t(text.size() + 1)), text.size());
    return text;
}

// Whether the library has a kernel of its own for a code: one other than what it gives for codes that certainly do not exist. No
// other code has the kernel of a default.
struct Defaults {
    DrawFunc of[4];
    Defaults()
    {
        nfkStart();
        for (uint32_t shape = 0; shape < 4; ++shape)
            of[shape] = SearchDrawFunc(0xF0000000u | shape);
    }
};

bool libraryHas(uint32_t code)
{
    static const Defaults defaults;
    const DrawFunc kernel = SearchDrawFunc(code);
    return kernel && kernel != defaults.of[code & 3];
}

bool isDefault(uint32_t code) { return code == nfkDrawnCode(0xF0000000u | (code & 3)); }

void check(uint32_t code)
{
    const bool there = nfkCodeExists(code);
    if (isDefault(code))
        ASSERT_TRUE(there);
    else
        ASSERT_EQ(there, libraryHas(code)) << std::hex << code;
    const uint32_t drawn = nfkDrawnCode(code);
    ASSERT_EQ(drawn == code, there) << std::hex << code;
    ASSERT_EQ(SearchDrawFunc(code), drawn ? SearchDrawFunc(drawn) : nullptr) << std::hex << code;
}

} // namespace

TEST(Codes, EveryCodeOfARectangleTriangleLineAndOfNoShape)
{
    // Every value of the bits that axes have.
    for (uint32_t shape = 0; shape < 4; ++shape)
        for (uint32_t high = shape; high < 1u << 20; ++high) {
            check(high << 8 | 0x68 | shape);
            if (HasFatalFailure())
                return;
        }
}

TEST(Codes, RandomWordsAreNeverWrongAndNeverCrash)
{
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        const uint32_t code = random();
        check(i % 2 ? code : (code & 0xFFFFF03) | 0x68);
        if (HasFatalFailure())
            return;
    }
    char small[40];
    for (int i = 0; i < 400; ++i) {
        const uint32_t code = random() & (i % 2 ? ~0u : 0xFFFFF6B);
        const std::string text = explained(code);
        ASSERT_FALSE(text.empty());
        const uint32_t size = random() % 40;
        std::memset(small, 'x', sizeof small);
        ASSERT_EQ(nfkExplainCode(code, small, size), text.size());
        ASSERT_EQ(size > 0 ? text.substr(0, size - 1) : "",
                  std::string(small, size > 0 ? std::min(text.size(), size_t{size - 1}) : 0));
        if (size > 0) {
            ASSERT_EQ(small[std::min(text.size(), size_t{size - 1})], 0);
        }
        for (uint32_t at = size; at < sizeof small; ++at)
            ASSERT_EQ(small[at], 'x');
    }
}

TEST(Codes, ThereAreAsManyAsTheLibraryHas)
{
    size_t count = 0;
    for (uint32_t high = 0; high < 1u << 20; ++high)
        for (uint32_t shape = 0; shape < 4; ++shape)
            count += nfkCodeExists(high << 8 | 0x68 | shape);
    EXPECT_EQ(count, 30912u);
}

TEST(Codes, NamesGoThereAndBack)
{
    EXPECT_EQ(nameOf(0x40769), "rect.stretch.point.alpha");
    size_t names = 0;
    for (uint32_t high = 0; high < 1u << 20; high += 3)
        for (uint32_t shape = 0; shape < 3; ++shape) {
            const uint32_t code = high << 8 | 0x68 | shape;
            const std::string name = nameOf(code);
            if (name.empty())
                continue;
            ++names;
            ASSERT_EQ(nfkCodeOfName(name.c_str()), code) << name;
        }
    EXPECT_GT(names, 10000u);
}

TEST(Codes, WhatIsNoName)
{
    for (const char *name : {"", "rect", "rect.stretch", "rect.stretch.bilinear", "rect.stretch.bilinear.alpha.",
                             "square.stretch.point.copy", "rect.point.stretch.copy", "rect.stretch.point.copy.z.z",
                             ".rect.stretch.point.copy", "rect..point.copy", "rect.stretch.point.copy.tex1.z"}) {
        EXPECT_EQ(nfkCodeOfName(name), 0u) << name;
        EXPECT_NE(std::string(nfkError()).find("nfkCodeOfName"), std::string::npos);
    }
    EXPECT_EQ(nfkCodeOfName(nullptr), 0u);
    EXPECT_EQ(nfkCodeOfName("rect.stretch.point.copy"), 0x40369u);
    EXPECT_STREQ(nameOf(0x369 | 9u << 21).c_str(), "") << "no filter 9";
    EXPECT_NE(std::string(nfkError()).find("filter 9 is none"), std::string::npos) << nfkError();
}

TEST(Codes, ExplanationSaysWhy)
{
    const uint32_t code = nfkCodeOfName("rect.stretch.point.alpha.plane+z");
    ASSERT_NE(code, 0u);
    EXPECT_FALSE(nfkCodeExists(code));
    const std::string text = explained(code);
    for (const char *part :
         {"rect.stretch.point.alpha.plane+z: does not exist", "NINEFOLD_BLEND_ALPHA: weighed by the source's alpha",
          "SHAHEI_PLANE and SHAHEI_PLANE_PRIORITY mark pixels and go with BLEND_COPY only", "blend 0; Shahei 0, 3, 4 or 5",
          "0x369 rect.unit.point.copy", "blend 0 (copy) instead of 1", "Shahei 0 instead of 2"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    EXPECT_EQ(explained(0x369).find("exist"), std::string::npos);
}

TEST(Codes, NearestDifferInTheFewestAxes)
{
    uint32_t found[64];
    // A code that exists is its own nearest.
    ASSERT_EQ(nfkNearestCodes(0x369, found, 1), 1u);
    EXPECT_EQ(found[0], 0x369u);
    const uint32_t code = nfkCodeOfName("rect.stretch.point.alpha.plane+z");
    ASSERT_EQ(nfkNearestCodes(code, found, 64), 64u);
    // One axis away: blend 0, and Shahei 0, 3, 4 and 5.
    std::vector<std::string> names;
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(nfkCodeExists(found[i]));
        names.push_back(nameOf(found[i]));
    }
    for (const char *name : {"rect.stretch.point.copy.plane+z", "rect.stretch.point.alpha", "rect.stretch.point.alpha.z",
                             "rect.stretch.point.alpha.mask", "rect.stretch.point.alpha.z+mask"})
        EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
    EXPECT_EQ(nfkNearestCodes(code, nullptr, 0), 0u);
    EXPECT_EQ(nfkNearestCodes(code, nullptr, 1), 0u);
}
