// Draw codes, as the kit's other parts ask for them.
#pragma once

#include "core/catalogue.h"

#include <string>

namespace nfk {

// Whether each of the nine values is one that its axis has, and the code has no bit besides.
bool valuesExist(uint32_t code);

bool codeExists(uint32_t code);

// The name of a code, or where a value belongs to no axis its number.
std::string nameOrNumber(uint32_t code);

// Why a code does not exist: the first rule that it breaks, in words. Empty where it does.
std::string reasonAgainst(uint32_t code);

} // namespace nfk
