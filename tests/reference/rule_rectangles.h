// The exported rule rectangles.
#pragma once

#include <string_view>

#include <ninefold/render_state.h>

namespace reference {

// The rule rectangle of this name; false if there is none.
bool drawRuleRectangle(std::string_view name, RenderState &state);

} // namespace reference
