// From a draw code to its kernel: a function that hands its parts to its frame, and no more.
#pragma once

#include "kernels/flat/line.h"
#include "kernels/frame.h"
#include "kernels/polygon/drivers.h"

#include <ninefold/draw.h>

namespace ninefold {

using FrameFunction = void (*)(PartIds);

template <FrameFunction frame, uint64_t ids>
void kernel()
{
    frame(PartIds{ids});
}

template <Driver driver, DrawFunc mipKernel, DrawFunc directKernel>
void forward()
{
    driver(mipKernel, directKernel);
}

inline void drawNothing() {}

constexpr Plan planOfCode(uint32_t code) { return planOf(axesOf(code)); }

template <uint32_t code>
constexpr FrameFunction frameOf()
{
    constexpr Plan p = planOfCode(code);
    return drawFrame<p.frame, p.multi, p.rule != Rule::none, p.marksPlane()>;
}

// The kernel that draws a combination by itself; for driven ones the kernel that draws from mip levels.
template <uint32_t code>
constexpr DrawFunc ownKernel()
{
    constexpr Axes a = axesOf(code);
    if constexpr (a.shape == 0) // constant alpha does not read what prescale changes
        return drawLine < a.filter == 7, a.shahei, a.blend, a.prescale && a.blend != 2 > ;
    else
        return kernel<frameOf<code>(), partIds(planOfCode(code)).word>;
}

// The kernel that the table names for a code of the catalogue.
template <uint32_t code>
constexpr DrawFunc kernelOf()
{
    constexpr Axes a = axesOf(code);
    constexpr Driver driver = a.shape == 2 ? drawMipPolygon : a.rectOpt == 1 ? drawMipStretch : drawMipCorners;
    if constexpr (code == 0x188369)
        return DrawRectTexRunlen_TEST;
    else if constexpr (code == 0xFDA768)
        return DrawLineTest;
    else if constexpr (code == 0x81C036A)
        return DrawPolygon_PERS_TEST;
    else if constexpr (isEmpty(a))
        return drawNothing;
    else if constexpr (isDriven(a))
        return forward<driver, ownKernel<code>(), ownKernel<codeOf(directOf(a))>()>;
    else
        return ownKernel<code>();
}

} // namespace ninefold
