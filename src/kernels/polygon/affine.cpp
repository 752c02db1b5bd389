// Textured triangles, affine.
#include "kernels/polygon/triangle.h"

NINEFOLD_TRIANGLE(triangle)
NINEFOLD_TRIANGLE(triangleLevels)
NINEFOLD_TRIANGLE_UNUSED(triangleLevels)
