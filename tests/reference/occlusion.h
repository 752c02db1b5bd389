// Occlusion triangles.
#pragma once

#include <string_view>

#include "shapes.h"

namespace reference {

// The occlusion fill of this name; false if there is none.
bool drawOcclusion(std::string_view name, RenderState &state);

} // namespace reference
