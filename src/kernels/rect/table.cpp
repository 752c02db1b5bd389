// Line-table rectangles.
#include "kernels/rect/instantiate.h"

NINEFOLD_RECT(rectTable)
NINEFOLD_RECT(rectTableLevel)
NINEFOLD_RECT(rectTableLevels)
