// What holds for every kernel of the catalogue alike.
#include "support/furnished.h"

#include <gtest/gtest.h>

using namespace canvas;
using ninefold::Axes;
using ninefold::nameOf;

namespace {

class EveryKernel : public Furnished {
protected:
    // Each kernel draws the same once more after change(axes, kernel, what there was before it drew).
    template <class Change>
    void expectTheSameAfter(Change &&change)
    {
        forEachKernel([&](const Axes &a, DrawFunc func) {
            placeLargely(a.shape);
            const State before = state();
            func();
            const State expected = state();
            restore(before);
            change(a, func, before);
            func();
            ASSERT_TRUE(state().looksLike(expected)) << nameOf(a);
            restore(before);
        });
    }
};

TEST_F(EveryKernel, DrawsTheSameUnderEveryInstructionSetAndWhateverTheModesSay)
{
    std::vector<uint64_t> sums;
    for (int set = 0; set < ninefold::usableSets(); ++set) {
        ASSERT_TRUE(ninefold::useSet(set));
        size_t k = 0;
        forEachKernel([&](const Axes &a, DrawFunc func) {
            placeLargely(a.shape);
            const State before = state();
            if (set)
                scrambleModes();
            func();
            for (int32_t *mode :
                 {&rs.prescaleMode, &rs.prescaleMultiMode, &rs.filterMode, &rs.rectOptMode, &rs.shaheiMode, &rs.blendMode,
                  &rs.blendModeMulti, &rs.multiMode, &rs.shapeMode, &rs.ruleAlphaMode, &rs.persMode})
                *mode = 0; // takes no part in the comparison
            const uint64_t sum = state().sum();
            restore(before);
            if (set == 0)
                sums.push_back(sum);
            else
                ASSERT_EQ(sum, sums[k]) << nameOf(a) << " under " << ninefold::setNames[set];
            ++k;
        });
    }
}

TEST_F(EveryKernel, LeavesTheRenderStateAsItWasButForMipScratch)
{
    forEachKernel([&](const Axes &a, DrawFunc func) {
        placeLargely(a.shape);
        const State before = state();
        func();
        State after = state();
        const bool mip = readsLevels(a.filter);
        if (mip) {
            clearScratch(after.rs);
            RenderState expected;
            std::memcpy(&expected, &before.rs, sizeof expected);
            clearScratch(expected);
            ASSERT_EQ(std::memcmp(&after.rs, &expected, sizeof expected), 0) << nameOf(a);
        } else {
            ASSERT_EQ(std::memcmp(&after.rs, &before.rs, sizeof before.rs), 0) << nameOf(a);
        }
        restore(before);
    });
}

TEST_F(EveryKernel, WritesNothingOutsideTheClipRectangleAndTheSameAsUnclippedInside)
{
    int k = 0;
    forEachKernel([&](const Axes &a, DrawFunc func) {
        // The rule slip of run-length rectangles counts from the first pixel that is drawn.
        const bool slips = a.rectOpt == NINEFOLD_RECT_RUNS && a.rule && a.shahei == NINEFOLD_SHAHEI_NONE;
        ++k;
        const bool flippedX = k & 1, flippedY = k & 2;
        placeLargely(a.shape, flippedX, flippedY);
        const State before = state();
        // Behind a row that is left out the planes lag: what belongs to the last row would lie outside.
        table0[14].startU = marksPlane(a.shahei) ? 0 : NINEFOLD_SKIP_ROW;
        func();
        const State whole = state();
        restore(before);
        const int left = slips ? 3 : 11, top = 6, right = 45 + k % 16, bottom = 27;
        clip(left, top, right, bottom);
        func();
        const State cut = state();
        for (int y = 0; y < static_cast<int>(height); ++y) {
            for (int x = 0; x < static_cast<int>(width); ++x) {
                const size_t i = static_cast<size_t>(y) * width + static_cast<size_t>(x);
                const State &expected = x >= left && x < right && y >= top && y < bottom ? whole : before;
                const int bit = 15 - (x & 15);
                ASSERT_EQ(cut.pixels[i], expected.pixels[i]) << nameOf(a) << " at " << x << ", " << y;
                ASSERT_EQ(cut.z[i], expected.z[i]) << nameOf(a) << " z at " << x << ", " << y;
                ASSERT_EQ(cut.plane[i / 16] >> bit & 1, expected.plane[i / 16] >> bit & 1)
                    << nameOf(a) << " plane at " << x << ", " << y;
            }
        }
        restore(before);
    });
}

TEST_F(EveryKernel, WritesPlanesOnlyInTheirModes)
{
    forEachKernel([&](const Axes &a, DrawFunc func) {
        placeLargely(a.shape);
        const State before = state();
        func();
        const State after = state();
        const bool empty = (a.filter == NINEFOLD_FILTER_LINE_POINT || a.filter == NINEFOLD_FILTER_LINE_BILINEAR) &&
                           a.rectOpt != NINEFOLD_RECT_TABLE;
        ASSERT_EQ(after.plane != before.plane, (marksPlane(a.shahei)) && !empty) << nameOf(a);
        ASSERT_EQ(after.z != before.z, a.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY && !empty) << nameOf(a);
        ASSERT_TRUE(after.pixels == before.pixels || !empty) << nameOf(a);
        ASSERT_TRUE(after.pixels != before.pixels || empty || a.blend != NINEFOLD_BLEND_COPY) << nameOf(a);
        restore(before);
    });
}

TEST_F(EveryKernel, EmptyAndClippedAwayRectanglesTouchNothing)
{
    clip(8, 6, 40, 24);
    const int placements[][4] = {
        {20, 10, 20, 20}, // no width
        {10, 15, 30, 15}, // no height
        {40, 10, 50, 20}, // left edge at the clip's right
        {2, 10, 8, 20}, // right edge at the clip's left
        {10, 24, 20, 30}, // top at the clip's bottom
        {10, 2, 20, 6}, // bottom at the clip's top
        {-5, -5, -5, 60}, {60, 7, 60, 7}, {-9, 9, -3, 12},
    };
    const State before = state();
    forEachKernel([&](const Axes &a, DrawFunc func) {
        if (a.shape != NINEFOLD_SHAPE_RECTANGLE)
            return;
        for (const auto &p : placements) {
            for (int flip = 0; flip < 4; ++flip) {
                corners(p[flip & 1 ? 2 : 0], p[flip & 2 ? 3 : 1], p[flip & 1 ? 0 : 2], p[flip & 2 ? 1 : 3]);
                func();
            }
        }
        State after = state();
        std::memcpy(after.rs.vertex, before.rs.vertex, sizeof after.rs.vertex);
        // A driver measures before the kernel that it calls looks at the clip.
        if (a.filter == NINEFOLD_FILTER_MIP || a.filter == NINEFOLD_FILTER_MIP_BILINEAR) {
            RenderState expected = before.rs;
            clearScratch(expected);
            clearScratch(after.rs);
            ASSERT_EQ(std::memcmp(&after.rs, &expected, sizeof expected), 0) << nameOf(a);
            after.rs = before.rs;
        }
        ASSERT_TRUE(after.looksLike(before)) << nameOf(a);
        restore(before);
    });
}

TEST_F(EveryKernel, TrianglesWithoutARowInsideTheClipTouchNoPlane)
{
    clip(8, 6, 40, 24);
    const int placements[][6] = {
        {10, 15, 20, 15, 30, 15}, {30, 15, 10, 15, 20, 15}, {7, 9, 7, 9, 7, 9}, // on one row
        {10, 1, 20, 2, 15, 5}, // above the clip
        {10, 1, 20, 2, 15, 6}, // its last row is the one above
        {10, 24, 20, 25, 15, 30}, // starts at the clip's bottom
        {0, 8, 4, 8, 0, 20}, // left
        {44, 8, 60, 8, 60, 20}, // right
        {20, 8, 20, 14, 20, 20}, // no area and no width
    };
    rs.scanShift = nullptr;
    const State before = state();
    forEachKernel([&](const Axes &a, DrawFunc func) {
        if (a.shape != NINEFOLD_SHAPE_TRIANGLE)
            return;
        for (const auto &p : placements) {
            triangle(p[0], p[1], p[2], p[3], p[4], p[5]);
            func();
        }
        const State after = state();
        ASSERT_TRUE(after.looksLike(before)) << nameOf(a);
        restore(before);
    });
}

TEST_F(EveryKernel, AddsTheOriginToItsVerticesOnly)
{
    expectTheSameAfter([](const Axes &, DrawFunc, const State &) {
        rs.originX = -20, rs.originY = 7;
        for (Vertex &v : rs.vertex)
            v.x += 20, v.y -= 7;
    });
}

TEST_F(EveryKernel, ReadsOnlyTheVerticesOfItsShape)
{
    expectTheSameAfter([](const Axes &a, DrawFunc, const State &) {
        rs.vertex[3] = {-77, 1000, -5};
        if (a.shape != NINEFOLD_SHAPE_TRIANGLE)
            rs.vertex[2] = {12, -345, 0};
        if (!a.pers)
            for (Vertex &v : rs.vertex)
                v.z = 0;
        // Nor the coordinates that belong to other corners.
        rs.uv2[3] = {0x123456, 0x654321};
        if (a.shape == NINEFOLD_SHAPE_RECTANGLE)
            rs.uv2[2] = {-1, -1};
        if (a.shape == NINEFOLD_SHAPE_TRIANGLE)
            rs.uv0[3] = rs.uv1[3] = {0x7654321, -0x7654321}, rs.color[3] = ~rs.color[3];
        if (a.shape == NINEFOLD_SHAPE_RECTANGLE && a.rectOpt == NINEFOLD_RECT_STRETCH)
            rs.uv0[2] = rs.uv0[3] = rs.uv1[2] = rs.uv1[3] = {-1, 0x7FFFFFFF};
        if (a.shape == NINEFOLD_SHAPE_RECTANGLE && (a.rectOpt == NINEFOLD_RECT_UNIT || a.rectOpt >= NINEFOLD_RECT_RUNS))
            for (int k = 1; k < 4; ++k)
                rs.uv0[k] = rs.uv1[k] = {-1, 0x7FFFFFFF};
        if (a.shape == NINEFOLD_SHAPE_LINE)
            rs.color[2] = rs.color[3] = 0;
    });
}

TEST_F(EveryKernel, CanBeKeptAndCalledAgain)
{
    expectTheSameAfter([&](const Axes &a, DrawFunc func, const State &before) {
        // Another primitive in between leaves nothing in the kernel.
        placeLargely(a.shape, true, true);
        rs.color[0] ^= 0xFFFFFF;
        func();
        restore(before);
    });
}

} // namespace
