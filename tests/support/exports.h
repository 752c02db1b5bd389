// What prepares drawing, against the reference: mip levels, run maps, stipples, run lists, operators and the look-up.
#pragma once

#include <cstdint>
#include <string>

namespace support {

// Once what can be tried whole, and `rounds` times what goes by textures, words and factors. What differs; empty if nothing.
std::string checkExports(uint64_t seed, uint32_t rounds);

} // namespace support
