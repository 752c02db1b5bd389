// Instantiates the rectangle frames: all multi stages, with and without rule and marks.
#pragma once

#include "kernels/rect/rect.h"

namespace ninefold {

template <Frame frame, Multi multi, bool rule, bool marks>
void drawFrame(PartIds ids)
{
    drawRect<frame, multi, rule, marks>(ids);
}

} // namespace ninefold

#define NINEFOLD_RECT_MULTI(frame, multi, marks)                                                                                 \
    template void ninefold::drawFrame<ninefold::Frame::frame, ninefold::Multi::multi, false, marks>(ninefold::PartIds);          \
    template void ninefold::drawFrame<ninefold::Frame::frame, ninefold::Multi::multi, true, marks>(ninefold::PartIds);

#define NINEFOLD_RECT_MARKS(frame, marks)                                                                                        \
    NINEFOLD_RECT_MULTI(frame, second, marks)                                                                                    \
    NINEFOLD_RECT_MULTI(frame, corners, marks)                                                                                   \
    NINEFOLD_RECT_MULTI(frame, colour, marks)                                                                                    \
    NINEFOLD_RECT_MULTI(frame, none, marks)

#define NINEFOLD_RECT(frame)                                                                                                     \
    NINEFOLD_RECT_MARKS(frame, false)                                                                                            \
    NINEFOLD_RECT_MARKS(frame, true)
