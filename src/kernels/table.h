// The kernels of the catalogue, made in units of equal weight.
#pragma once

#include "core/catalogue.h"

#include <ninefold/draw_code.h>

namespace ninefold {

constexpr size_t tableUnits = 8;
constexpr size_t unitSize = recordCount / tableUnits;
static_assert(unitSize * tableUnits == recordCount);

struct TableUnit {
    DrawFunc at[unitSize];
};

// Kernels unit * unitSize and up, in table order.
template <size_t unit>
const TableUnit &kernelsOf();

} // namespace ninefold
