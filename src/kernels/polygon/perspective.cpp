// Textured triangles in perspective.
#include "kernels/polygon/triangle.h"

NINEFOLD_TRIANGLE(trianglePers)
NINEFOLD_TRIANGLE(trianglePersLevels)
NINEFOLD_TRIANGLE_UNUSED(trianglePersLevels)
