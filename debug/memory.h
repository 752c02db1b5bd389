// Whether memory is there, asked of the system without touching it. The one file that knows about systems, with backtrace.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace debug {

// Whether all `size` bytes from `begin` on can be read, or written. Answers are remembered for some draws. True where the system
// cannot be asked.
bool isReadable(const void *begin, size_t size);
bool isWritable(const void *begin, size_t size);
bool isCode(const void *address);

// Ages what is remembered. Called once a draw, and, with `now`, where memory was freed.
void ageMemory(bool now = false);

// The callers of the library, innermost first; empty where the platform has no way to tell.
std::vector<std::string> hostStack();

} // namespace debug
