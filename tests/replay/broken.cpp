// A build of the library with a mistake: after blend add a blue channel is never full. With NINEFOLD_BROKEN=crash such a draw ends
// the program instead.
#include "footprint.h"

#include <cstdlib>

bool layer::before(Call &call)
{
    if (isRecord(call.id) && ninefold::axesOf(codeOf(call.id)).blend == NINEFOLD_BLEND_ADD && std::getenv("NINEFOLD_BROKEN"))
        std::abort();
    return true;
}

void layer::after(Call &call)
{
    if (!isRecord(call.id) || ninefold::axesOf(codeOf(call.id)).blend != NINEFOLD_BLEND_ADD)
        return;
    static Footprint reach;
    findFootprint(call.id, nullptr, reach);
    const Pixels &p = reach.pixels;
    for (ptrdiff_t y = p.top; y < p.bottom; ++y)
        for (ptrdiff_t x = p.left; x < p.right; ++x)
            if (uint32_t &pixel = rs.dstPixels[(y << rs.dstShift) + x]; (pixel & 0xFF) == 0xFF)
                --pixel;
}
