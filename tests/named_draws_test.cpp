// The exported functions that draw without a draw code, and the kernels with a name, against the reference.
#include "support/sweep.h"

#include <gtest/gtest.h>

using namespace support;

TEST(NamedDraws, DrawAsTheReferenceDoes)
{
    ASSERT_EQ(namedSubjects().size(), 17u);
    for (const Kind kind : {Kind::plain, Kind::big}) {
        const SweepResult result = sweep(namedSubjects(), {.kind = kind, .scenes = 100 * scenesWanted(8), .seed = seedWanted()});
        EXPECT_TRUE(result.failed.empty()) << result.text;
    }
}
