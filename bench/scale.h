// How cost grows with what is drawn.
#pragma once

#include "timing.h"

#include <filesystem>

namespace bench {

// Times some kernels from 8 by 8 to 4096 by 4096 pixels, drawing 1 to 100,000 primitives, and taking 1 to 64 textures in turn, with
// memcpy beside; prints tables and writes the curves to a page.
int timeScale(const std::vector<std::string> &filters, const Effort &effort, const std::filesystem::path &page);

} // namespace bench
