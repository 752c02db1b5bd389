// Runs a fuzzer without the means of clang: over the files of a directory and over pseudo-random bytes.
//
//     NAME_corpus DIRECTORY COUNT
#include "support/random.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int count, char **arguments)
{
    if (count != 3)
        return 2;
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(arguments[1]))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<uint8_t> bytes;
    for (const auto &file : files) {
        std::ifstream stream(file, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(stream), {});
        std::printf("%s, %zu bytes\n", file.filename().string().c_str(), bytes.size());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    support::Random random(1);
    const int inputs = std::atoi(arguments[2]);
    for (int i = 0; i < inputs; ++i) {
        bytes.resize(random.below(400));
        for (uint8_t &byte : bytes)
            byte = static_cast<uint8_t>(random.word());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu files, %d random inputs\n", files.size(), inputs);
    return files.empty() ? 1 : 0;
}
