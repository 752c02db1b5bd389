// The library against sums that are checked in: they pin the pixels of every platform and compiler.
#include "kernels/sets.h"
#include "support/golden.h"
#include "support/sweep.h"
#include "support/workers.h"

#include <gtest/gtest.h>

#include <memory>

using namespace support;

TEST(Golden, EveryCodeGivesItsSum)
{
    const std::vector<uint32_t> sums = readGolden(goldenPath());
    std::vector<Subject> subjects = catalogueSubjects();
    subjects.insert(subjects.end(), namedSubjects().begin(), namedSubjects().end());
    ASSERT_EQ(sums.size(), subjects.size());

    std::vector<size_t> indices;
    for (size_t index = 0; index < subjects.size(); ++index)
        if (inShare(index) || subjects[index].exported != nullptr)
            indices.push_back(index);

    Workers workers(indices.size(), processCount());
    std::unique_ptr<Comparer> comparer;
    const auto job = [&](size_t number) {
        const size_t index = indices[number];
        bool right = true;
        for (int set = 0; set < ninefold::usableSets(); ++set) {
            workers.doing(0, set);
            const uint32_t sum = goldenSum(*comparer, subjects[index], set);
            if (sum == sums[index])
                continue;
            right = false;
            char text[256];
            std::snprintf(text, sizeof text, "%s, code %X, set %s: sum %08x, golden %08x%s\n", subjects[index].name().c_str(),
                          subjects[index].code, ninefold::setNames[set], sum, sums[index],
                          goldenSum(*comparer, subjects[index], -1) == sums[index] ? "" : " (and not the reference's either)");
            workers.report(text);
        }
        return right;
    };
    const auto describe = [&](size_t number, uint32_t, int set) {
        return subjects[indices[number]].name() + ", set " + (set < 0 ? "none" : ninefold::setNames[set]);
    };
    workers.run([&comparer] { comparer = std::make_unique<Comparer>(); }, job, describe);
    EXPECT_EQ(workers.failures(), 0u) << workers.reports();
}
