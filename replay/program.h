// A C program that makes one draw, without capture and player.
#pragma once

#include "player.h"

#include <cstdio>

namespace capture {

// For a draw that is prepared and reaches pixels; makes it. `source`: the capture's name. The result is that of compare().
std::string writeProgram(std::FILE *out, Player &player, const std::string &source);

} // namespace capture
