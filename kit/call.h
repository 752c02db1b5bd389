// The one way from the kit's draws to the kernels.
#pragma once

#include <ninefold/kit/draws.h>

namespace nfk {

extern NfkCaller caller; // by nfkSetCaller, never null

// Calls a kernel with rs as it is; code 0 for one that has no code.
inline void call(uint32_t code, DrawFunc kernel) { caller(code, kernel); }

// The kernel of a code, looked up once and kept. Fails, and returns null, where there is none or the library was not started.
DrawFunc kernelOf(const char *function, uint32_t code);

} // namespace nfk
