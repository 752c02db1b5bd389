// The instruction sets that this build has parts for, lowest first, and the one that draws.
#pragma once

namespace ninefold {

extern const int setCount;
extern const char *const setNames[];
int usableSets(); // how many of them, from the first on, this processor runs; asking it is slow
bool useSet(int index); // false, and no change, where the processor cannot run it

} // namespace ninefold
