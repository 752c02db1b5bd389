// The kernels of lines.
#pragma once

#include <cstdint>

namespace ninefold {

// Draws the line of rs. Its arguments are axes of the catalogue.
template <bool gouraud, uint8_t shahei, uint8_t blend, bool prescale>
void drawLine();

} // namespace ninefold
