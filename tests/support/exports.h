// What prepares drawing, against the reference: mip levels, run maps, stipples, run lists, operators and the look-up.
#ifndef SUPPORT_EXPORTS_H
#define SUPPORT_EXPORTS_H

#include <cstdint>
#include <string>

namespace support {

// Once what can be tried whole, and `rounds` times what goes by textures, words and factors. What differs; empty if nothing.
std::string checkExports(uint64_t seed, uint32_t rounds);

} // namespace support

#endif
