// What a rectangle by line table carries from row to row, worked out without drawing. Both copies of the kernels have it: the
// recorder leaves behind in rs what a draw would, and a band begins as the rows above it would have left it.
#pragma once

#include "kernels/rect/rect.h"

#include <type_traits>

namespace ninefold {

struct CarriedRows {
    bool levels, next, marks, second; // as in bands::Draw

    // Goes through `rows` rows from the first one of the box on. Returns how many of them are left out.
    uint32_t pass(const Box &box, uint32_t rows) const
    {
        uint32_t skipped = 0;
        for (uint32_t k = 0; k < rows; ++k)
            if (const uint32_t row = box.dy + k; rs.lineTable0[row].startU == NINEFOLD_SKIP_ROW)
                ++skipped;
            else if (levels)
                takeLevels(box, row);
        return skipped;
    }

private:
    template <Levels wanted, bool marked>
    void take(const Box &box, uint32_t row) const
    {
        constexpr Frame frame{.walk = Walk::table, .levels = wanted, .multi = Multi::texture, .marks = marked};
        Sampled unused;
        takeLineLevel<frame, 0>(rs.lineTable0[row], box, unused);
        if (second)
            takeLineLevel<frame, 1>(rs.lineTable1[row], box, unused);
    }
    void takeLevels(const Box &box, uint32_t row) const
    {
        if (next)
            marks ? take<Levels::lineNext, true>(box, row) : take<Levels::lineNext, false>(box, row);
        else
            marks ? take<Levels::line, true>(box, row) : take<Levels::line, false>(box, row);
    }
};

} // namespace ninefold
