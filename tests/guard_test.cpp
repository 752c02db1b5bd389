// Every buffer begins, or ends, at a page without access; often the frame buffer and the planes have no other memory than what
// lies between the first and the last pixel of the clip rectangle.
#include "support/sweep.h"

#include <gtest/gtest.h>

using namespace support;

TEST(Guard, NothingIsTouchedBesideTheBuffers)
{
    const std::vector<Subject> subjects = sharedCatalogue();
    const SweepResult result = sweep(subjects, {.kind = Kind::guard, .scenes = scenesWanted(8), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text << tableByAxis(subjects, result.failed);
}

TEST(Guard, NamedFunctions)
{
    const SweepResult result =
        sweep(namedSubjects(), {.kind = Kind::guard, .scenes = 30 * scenesWanted(8), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text;
}
