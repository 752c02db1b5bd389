#ifndef NINEFOLD_OPS_INLINE_H
#define NINEFOLD_OPS_INLINE_H

// For the pure functions of one pixel. Never emitted out of line, so that a unit compiled for a newer instruction set has no copy
// that the linker could pick for every machine.
#define NINEFOLD_INLINE [[gnu::always_inline]] constexpr

#endif
