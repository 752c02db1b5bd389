// Numbers from the command line and the environment. What is no whole number in its range ends the program with a message: a
// sweep of no scenes would find nothing wrong.
#pragma once

#include <cstdint>

namespace support {

uint64_t numberFrom(const char *text, const char *name, uint64_t least, uint64_t most, int base = 10);

// Of an environment variable; `otherwise` where it is not set.
uint64_t numberOfVariable(const char *name, uint64_t otherwise, uint64_t least, uint64_t most);

} // namespace support
