// Rectangles of colours alone.
#include "kernels/rect/instantiate.h"

NINEFOLD_RECT_MULTI(rectFlat, none, false)
NINEFOLD_RECT_MULTI(rectFlat, none, true)
NINEFOLD_RECT_MULTI(rectGouraud, none, false)
NINEFOLD_RECT_MULTI(rectGouraud, none, true)
