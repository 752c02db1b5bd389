// Where a line may end.
#pragma once

#include <hb.h>

#include <span>
#include <vector>

namespace nfk::text {

// For each character of a paragraph whether a line may end behind it.
std::vector<char> lineBreaks(std::span<const char32_t> paragraph, hb_language_t language);

} // namespace nfk::text
