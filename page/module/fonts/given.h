// The fonts of the page: files that its scripts hand in.
#pragma once

#include <cstdint>
#include <string>

namespace page {

// Takes a copy of a font file. `name` becomes what rs.fontName calls it: family and style, at most 31 bytes, with a number behind
// it where there is such a font already. False where FreeType finds no scalable font in the file.
bool giveFont(const uint8_t *bytes, uint32_t size, std::string &name);

} // namespace page
