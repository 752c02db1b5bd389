#pragma once

#include <cstdint>

namespace ninefold {

// The kernel of a line. Axes are those of the catalogue.
template <bool gouraud, uint8_t shahei, uint8_t blend, bool prescale>
void drawLine();

} // namespace ninefold
