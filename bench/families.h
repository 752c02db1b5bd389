// The whole catalogue, not only the hot part of it.
#pragma once

#include "timing.h"

#include <filesystem>

namespace bench {

// Times every code whose name contains one of the filters on 64 by 64 pixels in the best set; prints the families and the twenty
// codes that are slowest against the median of theirs, and writes all to a CSV file.
int timeFamilies(const std::vector<std::string> &filters, const Effort &effort, const std::filesystem::path &csv);

// Fills rs with what any code needs to draw 64 by 64 pixels, everything that tests pixels letting some through.
void prepareFor(const ninefold::Axes &axes);

} // namespace bench
