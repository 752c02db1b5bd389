// golden --write: draws the fixed scenes with the reference and writes their sums to tests/golden/. To be run when scenes change,
// never to make a test pass.
#include "support/golden.h"

#include <cstdio>
#include <cstring>

using namespace support;

int main(int count, char **arguments)
{
    if (count != 2 || std::strcmp(arguments[1], "--write") != 0) {
        std::puts("golden --write");
        return 2;
    }
    Comparer comparer;
    std::vector<uint32_t> sums;
    for (const auto *subjects : {&catalogueSubjects(), &namedSubjects()})
        for (const Subject &subject : *subjects)
            sums.push_back(goldenSum(comparer, subject, -1));
    if (!writeGolden(goldenPath(), sums)) {
        std::perror(goldenPath().c_str());
        return 1;
    }
    std::printf("%zu sums\n", sums.size());
    return 0;
}
