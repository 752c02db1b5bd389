// Where lines end where the kit is built without libunibreak and libthai. Linked with the file of the kit itself.
#include "text_breaks.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The text with a bar wherever a line may end before its end.
std::u32string broken(std::u32string_view text)
{
    const std::vector<char> breaks = nfk::text::lineBreaks(text, HB_LANGUAGE_INVALID);
    EXPECT_EQ(breaks.size(), text.size());
    std::u32string result;
    for (size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (i + 1 < text.size() && breaks[i])
            result += U'|';
    }
    EXPECT_TRUE(text.empty() || breaks.back());
    return result;
}

TEST(PlainBreaks, LinesEndBehindSpaces)
{
    EXPECT_EQ(broken(U""), U"");
    EXPECT_EQ(broken(U"one two"), U"one |two");
    EXPECT_EQ(broken(U"one  two "), U"one  |two ");
    EXPECT_EQ(broken(U"no\x00A0line no\x2060 end"), U"no\x00A0line |no\x2060 |end");
    EXPECT_EQ(broken(U"soft\x00ADhyphen, zero\x200Bwidth"), U"soft\x00AD|hyphen, |zero\x200B|width");
}

TEST(PlainBreaks, HyphensEndLinesButNotBeforeNumbers)
{
    EXPECT_EQ(broken(U"well-known"), U"well-|known");
    EXPECT_EQ(broken(U"-5 --help"), U"-5 |--|help");
}

TEST(PlainBreaks, PunctuationStaysWithItsWord)
{
    EXPECT_EQ(broken(U"(one) \x201Ctwo\x201D three !"), U"(one) |\x201Ctwo\x201D |three !");
}

TEST(PlainBreaks, IdeographsBreakOnEitherSide)
{
    EXPECT_EQ(broken(U"漢字かな"), U"漢|字|か|な");
    EXPECT_EQ(broken(U"漢a字"), U"漢|a|字");
    EXPECT_EQ(broken(U"한글"), U"한|글");
}

TEST(PlainBreaks, JapanesePunctuationAndSmallKana)
{
    EXPECT_EQ(broken(U"「はい。」と"), U"「は|い。」|と");
    EXPECT_EQ(broken(U"ちょっとー"), U"ちょっ|とー");
}

TEST(PlainBreaks, MarksStayWithWhatTheyAreOn) { EXPECT_EQ(broken(U"か\x3099漢\x0301 e\x0301"), U"か\x3099|漢\x0301 |e\x0301"); }

} // namespace
