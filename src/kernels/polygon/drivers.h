// Drivers of filters 2 and 5: measure how many texels fall on a pixel, and draw with the kernel for it.
#pragma once

#include <ninefold/draw_code.h>

namespace ninefold {

using Driver = void (*)(DrawFunc mipKernel, DrawFunc directKernel);

// Below two texels a pixel (triangles: up to one) they call directKernel. Otherwise they put a mip level in the place of each
// texture and its coordinates, call mipKernel and put rs back, but for mipFrac, mipTex and their like.
void drawMipStretch(DrawFunc mipKernel, DrawFunc directKernel); // rect option 1
void drawMipCorners(DrawFunc mipKernel, DrawFunc directKernel); // rect option 2
void drawMipPolygon(DrawFunc mipKernel, DrawFunc directKernel);

} // namespace ninefold
