// For the pure functions of one pixel. Never emitted out of line, so that a unit compiled for a newer instruction set has no copy
// that the linker could pick for every machine.
#pragma once

#define NINEFOLD_INLINE [[gnu::always_inline]] constexpr
