/* Sources that share memory with what is drawn into: pixels come out as if drawn one at a time, left to right, top to bottom. */
#include "support/sweep.h"

#include <gtest/gtest.h>

using namespace support;

TEST(Overlap, SourcesOverTheFrameBufferAndThePlanes)
{
    const std::vector<Subject> subjects = sharedCatalogue();
    const SweepResult result = sweep(subjects, {.kind = Kind::overlap, .scenes = scenesWanted(8), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text << tableByAxis(subjects, result.failed);
}

TEST(Overlap, NamedFunctions)
{
    const SweepResult result =
        sweep(namedSubjects(), {.kind = Kind::overlap, .scenes = 30 * scenesWanted(8), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text;
}
