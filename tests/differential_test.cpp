// Every kernel against the reference, with every instruction set of this machine.
#include "kernels/sets.h"
#include "support/check.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

using namespace support;

namespace {

TEST(Differential, EveryCodeDrawsAsTheReferenceDoes)
{
    const std::vector<Subject> subjects = sharedCatalogue();
    const SweepResult result = sweep(subjects, {.scenes = scenesWanted(24), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text << tableByAxis(subjects, result.failed);
    std::printf("differential: %llu scenes of %zu codes with %d instruction sets in %.1f s\n",
                static_cast<unsigned long long>(result.scenes), subjects.size(), ninefold::usableSets(), result.seconds);
}

TEST(Differential, CountsRecordsAndKernels)
{
    EXPECT_EQ(catalogueSubjects().size(), 30912u);
    std::printf("budget: records %zu\nbudget: kernels %zu\n", catalogueSubjects().size(), distinctKernels());
}

} // namespace
