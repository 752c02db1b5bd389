// From a draw code to its kernel: a function that hands its parts to its frame, and no more.
#pragma once

#include "kernels/plan.h"
#include "kernels/polygon/drivers.h"

#include <ninefold/draw.h>

namespace ninefold {

// What draws: line/line.h, rect/rect.h and polygon/triangle.h have the texts.
template <Axes a>
void drawLine();
template <Frame f>
void drawRect(PartIds ids);
template <Frame f>
void drawTriangle(PartIds ids);

template <void (*frame)(PartIds), uint64_t ids>
void kernel()
{
    frame(std::bit_cast<PartIds>(ids));
}

template <Driver driver, DrawFunc mipKernel, DrawFunc directKernel>
void forward()
{
    driver(mipKernel, directKernel);
}

inline void drawNothing() {}

// The kernel that draws a combination by itself; for driven ones the kernel that draws from mip levels.
template <uint32_t code>
constexpr DrawFunc ownKernel()
{
    constexpr Axes a = withoutIdlePrescale(axesOf(code));
    if constexpr (a.shape == NINEFOLD_SHAPE_LINE) {
        return drawLine<a>;
    } else {
        constexpr Plan p = planOf(a);
        constexpr uint64_t ids = std::bit_cast<uint64_t>(partIds(p));
        if constexpr (p.frame.triangle)
            return kernel<drawTriangle<p.frame>, ids>;
        else
            return kernel<drawRect<p.frame>, ids>;
    }
}

// The kernel that the table names for a code of the catalogue.
template <uint32_t code>
constexpr DrawFunc kernelOf()
{
    constexpr Axes a = axesOf(code);
    constexpr Driver driver = a.shape == NINEFOLD_SHAPE_TRIANGLE   ? drawMipPolygon
                              : a.rectOpt == NINEFOLD_RECT_STRETCH ? drawMipStretch
                                                                   : drawMipCorners;
    if constexpr (code == codeOf(namedRuns))
        return DrawRectTexRunlen_TEST;
    else if constexpr (code == codeOf(namedLine))
        return DrawLineTest;
    else if constexpr (code == codeOf(namedPers))
        return DrawPolygon_PERS_TEST;
    else if constexpr (isEmpty(a))
        return drawNothing;
    else if constexpr (isDriven(a))
        return forward<driver, ownKernel<code>(), ownKernel<codeOf(directOf(a))>()>;
    else
        return ownKernel<code>();
}

} // namespace ninefold
