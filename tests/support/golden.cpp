#include "golden.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace support {

uint32_t goldenSum(Comparer &comparer, const Subject &subject, int set)
{
    uint32_t sum = 0;
    for (uint32_t number = 0; number < goldenScenes; ++number) {
        const SceneId id{Kind::small, 1, number};
        const uint32_t one = set < 0 ? comparer.referenceSum(subject, id) : comparer.librarySum(subject, id, set);
        sum = (sum << 5 | sum >> 27) ^ one;
    }
    return sum;
}

std::string goldenPath() { return NINEFOLD_TEST_DIR "/golden/sums.txt"; }

// Lines of a record's number and sixteen sums from there on; then lines of a function's name and its sum.
std::vector<uint32_t> readGolden(const std::string &path)
{
    std::vector<uint32_t> sums;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string first, word;
        words >> first;
        if (first.empty() || first[0] == '#')
            continue;
        while (words >> word)
            sums.push_back(static_cast<uint32_t>(std::stoul(word, nullptr, 16)));
    }
    return sums;
}

bool writeGolden(const std::string &path, const std::vector<uint32_t> &sums)
{
    std::ofstream file(path);
    file << "# Record number, sums of sixteen records from there on; written by the tool golden.\n";
    char part[16];
    const size_t codes = catalogueSubjects().size();
    for (size_t i = 0; i < sums.size(); ++i) {
        if (i >= codes) {
            file << namedSubjects()[i - codes].exported << ' ';
        } else if (i % 16 == 0) {
            std::snprintf(part, sizeof part, "%05u ", static_cast<unsigned>(i));
            file << part;
        }
        std::snprintf(part, sizeof part, "%08x", sums[i]);
        file << part << (i >= codes || i % 16 == 15 || i + 1 == codes ? '\n' : ' ');
    }
    return static_cast<bool>(file.flush());
}

} // namespace support
