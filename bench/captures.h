// Captures of real programs, as far as the library that draws them again is there.
#pragma once

#include "../replay/captures.h"

#include <string>

namespace bench {

// The capture's draws, to be made by the library that this program is linked with. Null, and why, where there are none.
capture::Draws *openCapture(const std::string &path, std::string &error);

} // namespace bench
