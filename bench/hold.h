// Every contender held to x86-64-v3, so that one without AVX-512 is not measured beside one with it.
#pragma once

#include <cstring>

namespace bench {

// Starts the program anew with the variables that hold those libraries that read them when they are loaded. Returns only where
// that has been done already.
void holdToV3(char **argv);

bool isHeldToV3();
bool hasMoreThanV3(); // the processor: otherwise there is nothing to hold

// The peer whose only switch goes below v3.
constexpr char notHoldable[] = "osmesa";
inline bool isLeftOut(const char *peer) { return isHeldToV3() && hasMoreThanV3() && std::strcmp(peer, notHoldable) == 0; }

} // namespace bench
