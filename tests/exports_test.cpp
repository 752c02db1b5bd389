// What prepares drawing, against the reference.
#include "support/exports.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

TEST(Exports, PrepareAsTheReferenceDoes)
{
    EXPECT_EQ(support::checkExports(support::seedWanted(), 40 * support::scenesWanted(8)), "");
}
