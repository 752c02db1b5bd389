// Every contender held to x86-64-v3, so that one without AVX-512 is not measured beside one with it.
#pragma once

namespace bench {

// Starts the program anew with the variables that hold those libraries that read them when they are loaded. Returns where that
// has been done already, or where the system refuses; the latter is told.
void holdToV3(char **argv);

bool isHeldToV3();
bool hasMoreThanV3(); // the processor: otherwise there is nothing to hold

} // namespace bench
