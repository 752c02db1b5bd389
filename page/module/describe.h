// What the page knows of the library, as JSON for its scripts: all of it from the library's lists, its plans and the kit.
#pragma once

#include "state.h"
#include "text.h"

#include <string>

namespace page {

// The axes with their values, the other lists, and the fields of a state. Never changes.
std::string describe();

// Of a state: its name and code, what each value of each axis would lead to, the fields that the kernel reads, the C lines.
std::string describeState(const State &state);

// Of a text: its glyphs, whether the atlas was full, the C lines.
std::string describeText(const Text &text, const DrawnText &drawn);

// The families, combinations that differ in Shahei mode, blend and multi alone: the name of the first member of each.
std::string describeFamilies();

// The names of the members of the family that a code belongs to.
std::string describeMembers(uint32_t code);

} // namespace page
