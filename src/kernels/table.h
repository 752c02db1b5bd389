// The kernels of the catalogue, made in families that share their frames: kernels.cpp is compiled once for each.
#pragma once

#include "core/catalogue.h"

#include <ninefold/draw_code.h>

namespace ninefold {

enum class Family : uint8_t { lines, unit, stretch, corners, table, colours, affine, pers, count };

constexpr Family familyOf(const Axes &a)
{
    if (a.shape == NINEFOLD_SHAPE_LINE)
        return Family::lines;
    if (a.shape == NINEFOLD_SHAPE_TRIANGLE)
        return a.pers ? Family::pers : Family::affine;
    switch (a.rectOpt) {
    case NINEFOLD_RECT_STRETCH: return Family::stretch;
    case NINEFOLD_RECT_CORNERS: return Family::corners;
    case NINEFOLD_RECT_TABLE: return Family::table;
    case NINEFOLD_RECT_NONE: return Family::colours;
    default: return Family::unit;
    }
}

// Those of a family, in table order.
template <Family family>
struct KernelsOf {
    static const DrawFunc *const first;
};

} // namespace ninefold
