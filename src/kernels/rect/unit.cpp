// Unit-scale rectangles: one texel a pixel, also by the texture's maps.
#include "kernels/rect/instantiate.h"

NINEFOLD_RECT(rectUnit)
NINEFOLD_RECT(rectUnit16)
NINEFOLD_RECT_MARKS(rectRuns, false)
NINEFOLD_RECT_MARKS(rectMapped, true)
