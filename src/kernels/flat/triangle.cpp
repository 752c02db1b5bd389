// Triangles of colours alone.
#include "kernels/polygon/triangle.h"

NINEFOLD_TRIANGLE_MULTI(triangleFlat, none)
NINEFOLD_TRIANGLE_MULTI(triangleGouraud, none)
