// Fills of one colour: the shortest kernels there are, which write rows by overlapping stores.
#include "support/canvas.h"

#include <gtest/gtest.h>

using namespace canvas;

namespace {

class Fill : public Canvas {
protected:
    Fill() : Canvas(1024, 4) {}

    void expectFilled(const Modes &m, int left, int right)
    {
        for (int y = 1; y < 3; ++y)
            for (int x = left; x < right; ++x)
                ASSERT_EQ(at(x, y), 0xFFABCDEFu) << left << " to " << right << ", column " << x << ", row " << y << ", " << m;
        ASSERT_TRUE(groundOutside(left, 1, right, 3)) << left << " to " << right << ", " << m;
    }
};

// Some widths around 512 are there, too, from where on x86 fills by an instruction of its own.
TEST_F(Fill, TakesItsColumnsAndNoOthersAtEveryWidthAndPlace)
{
    rs.color[0] = 0xFFABCDEF;
    const Modes rectangle{.shape = NINEFOLD_SHAPE_RECTANGLE, .filter = NINEFOLD_FILTER_FLAT, .rectOpt = NINEFOLD_RECT_NONE};
    const Modes cut{.shape = NINEFOLD_SHAPE_TRIANGLE, .filter = NINEFOLD_FILTER_FLAT, .rectOpt = NINEFOLD_RECT_NONE};
    for (int columns = 1; columns < 516; columns = columns == 70 ? 509 : columns + 1)
        for (int left = 16; left < 33; ++left)
            for (const Modes &m : {rectangle, cut}) {
                place(m, left, 1, left + columns, 3);
                clear();
                underEverySet([&] {
                    clear();
                    kernel(m)();
                    expectFilled(m, left, left + columns);
                });
                if (HasFatalFailure())
                    return;
            }
}

} // namespace
