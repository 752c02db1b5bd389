// The pieces of a set's table, each made by a unit of its own.
#pragma once

#include "kernels/parts.h"

namespace ninefold::NINEFOLD_SET {

struct Fronts {
    Front at[frontCount];
};
struct Seconds {
    Mid at[int(Second::count)];
};
struct Backs {
    Back at[2][backCount];
};
struct Operators {
    RowOperator at[2][ops::opCount];
};
struct Blocks {
    Block at[blockCount];
};
struct FusedSpans {
    FusedSpan at[spanCount];
};
struct MultiSpans {
    FusedSpan at[multiSpanCount];
};
extern const Fronts fronts;
extern const Seconds seconds;
extern const Backs backs;
extern const Operators operators;
extern const Blocks blocks;
extern const FusedSpans fusedSpans;
extern const MultiSpans multiSpans;
// Calls the host's own operator for each picked pixel, left to right.
void hostOperator(PixelOperator, uint32_t *out, const uint32_t *first, const uint32_t *second, int secondMask,
                  const uint64_t *pick, int n);

} // namespace ninefold::NINEFOLD_SET
