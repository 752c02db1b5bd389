// Does every contender draw what is meant?
#pragma once

#include "bench.h"

#include <filesystem>

namespace bench {

// Draws each job once by every contender on smooth pictures and compares with the library's; writes the frames as PPM files if
// `pictures` is not empty. Returns the number of contenders that draw nothing or something else.
int checkContenders(const std::vector<Job> &jobs, const std::filesystem::path &pictures);

} // namespace bench
