// Error texts: kept for each thread.
#include <ninefold/kit.h>

#include <gtest/gtest.h>
#include <thread>

TEST(KitError, EmptyUntilSomethingFails) { EXPECT_STREQ(nfkError(), ""); }
