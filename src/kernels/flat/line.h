#pragma once

#include "kernels/plan.h"

namespace ninefold {

// The frame of lines. It gates and marks by itself; the parts that `ids` names do neither.
template <bool gouraud, Gate gate, Marks marks>
void drawLine(PartIds ids);

} // namespace ninefold
