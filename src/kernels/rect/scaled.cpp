// Stretched and four-corner rectangles.
#include "kernels/rect/instantiate.h"

NINEFOLD_RECT(rectStretch)
NINEFOLD_RECT(rectStretchLevels)
NINEFOLD_RECT(rectCorners)
NINEFOLD_RECT(rectCornersLevels)
