// A camera at the origin looking along z, y down, and what stands before it.
#pragma once

#include "host.h"

#include <array>

namespace gallery {

struct Point {
    double x, y, z;
};

struct View {
    double centreX, centreY, focal;
    Corner project(Point p, double u, double v) const;
};

// A floor `below` the eye across the clip rectangle, from row `top` to row `bottom` of the screen in strips of equal height, two
// triangles each; tex0 repeats once a unit. Strips let a filter with mip levels choose one for each.
void floorStrips(const View &view, double below, int top, int bottom, int strips, const Modes &modes);

// A cube of the given half size: turned about its vertical axis, then tilted. Opposite faces share a picture.
void cube(const View &view, Point middle, double half, double turn, double tilt, const std::array<Texture *, 3> &pictures,
          const Modes &modes);

} // namespace gallery
