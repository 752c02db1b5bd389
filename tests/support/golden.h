// Sums that are checked in: one for each code and each named function, over fixed small scenes, as the reference draws them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check.h"

namespace support {

constexpr uint32_t goldenScenes = 4;

// The sum of a subject: by the reference with set -1, else by the library with this instruction set.
uint32_t goldenSum(Comparer &comparer, const Subject &subject, int set);

// In the order of catalogueSubjects() and then of namedSubjects(). Empty if the file cannot be read.
std::vector<uint32_t> readGolden(const std::string &path);
bool writeGolden(const std::string &path, const std::vector<uint32_t> &sums);
std::string goldenPath();

} // namespace support
