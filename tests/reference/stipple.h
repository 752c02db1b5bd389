// The 256 stipples of a dissolve.
#pragma once

namespace reference {

// Whether stipple `number` (0 to 255) suppresses the pixel at (15 - bit, row) of its cell.
bool stippleBit(int number, int row, int bit);

} // namespace reference
