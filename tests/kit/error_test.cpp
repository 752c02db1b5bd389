// Error texts: what they hold, how long, and that each thread has its own.
#include <ninefold/kit.h>

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>

TEST(Error, EmptyUntilSomethingFails)
{
    EXPECT_STREQ(nfkError(), "");
    EXPECT_EQ(nfkCodeOfName("rect.stretch.point.copy"), 0x40369u);
    EXPECT_STREQ(nfkError(), "");
}

TEST(Error, StaysUntilTheNext)
{
    EXPECT_EQ(nfkCodeOfName("nothing"), 0u);
    const std::string first = nfkError();
    EXPECT_NE(first.find("'nothing'"), std::string::npos) << first;
    EXPECT_EQ(nfkCodeOfName("rect.stretch.point.copy"), 0x40369u);
    EXPECT_EQ(nfkError(), first);
    // Also of its own text.
    EXPECT_EQ(nfkCodeOfName(nfkError()), 0u);
    EXPECT_NE(std::string(nfkError()).find(first.substr(0, 40)), std::string::npos) << nfkError();
}

TEST(Error, EachThreadHasItsOwn)
{
    EXPECT_EQ(nfkCodeOfName("nothing"), 0u);
    const std::string here = nfkError();
    std::thread([] {
        EXPECT_STREQ(nfkError(), "");
        EXPECT_EQ(nfkCodeOfName("else"), 0u);
        EXPECT_NE(std::string(nfkError()).find("'else'"), std::string::npos);
    }).join();
    EXPECT_EQ(nfkError(), here);
}
