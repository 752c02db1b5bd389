#include "scene.h"

#include <cmath>

namespace gallery {

namespace {

// Only the ratios of the depths count. As whole numbers small ones round, and large ones leave few bits of a quotient.
constexpr double depthScale = 256;

} // namespace

Corner View::project(Point p, double u, double v) const
{
    return {centreX + focal * p.x / p.z, centreY + focal * p.y / p.z, p.z * depthScale, u, v};
}

void floorStrips(const View &view, double below, int top, int bottom, int strips, const Modes &modes)
{
    const double texels = rs.tex0->origWidth, farthest = view.focal * below / (top - view.centreY);
    const double middle = std::ceil((rs.clipRight - rs.clipLeft) / view.focal * farthest);
    const auto corner = [&](int x, int y) {
        const double depth = view.focal * below / (y - view.centreY);
        // Coordinates in perspective must not be negative; large ones are coarser.
        const double across = (x - view.centreX) / view.focal * depth + middle, along = farthest - depth;
        return Corner{double(x), double(y), depth * depthScale, across * texels, along * texels};
    };
    for (int i = 0; i < strips; ++i) {
        const int y0 = top + (bottom - top) * i / strips, y1 = top + (bottom - top) * (i + 1) / strips;
        quad(corner(rs.clipLeft, y0), corner(rs.clipRight, y0), corner(rs.clipLeft, y1), corner(rs.clipRight, y1), modes);
    }
}

void cube(const View &view, Point middle, double half, double turn, double tilt, const std::array<Texture *, 3> &pictures,
          const Modes &modes)
{
    const auto placed = [&](Point p) {
        const Point turned{p.x * std::cos(turn) + p.z * std::sin(turn), p.y, p.z * std::cos(turn) - p.x * std::sin(turn)};
        return Point{middle.x + half * turned.x, middle.y + half * (turned.y * std::cos(tilt) - turned.z * std::sin(tilt)),
                     middle.z + half * (turned.z * std::cos(tilt) + turned.y * std::sin(tilt))};
    };
    // Top left, top right, bottom left, bottom right, seen from outside.
    static constexpr Point faces[6][4] = {
        {{-1, -1, -1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, -1}}, {{1, -1, 1}, {-1, -1, 1}, {1, 1, 1}, {-1, 1, 1}},
        {{1, -1, -1}, {1, -1, 1}, {1, 1, -1}, {1, 1, 1}},     {{-1, -1, 1}, {-1, -1, -1}, {-1, 1, 1}, {-1, 1, -1}},
        {{-1, -1, 1}, {1, -1, 1}, {-1, -1, -1}, {1, -1, -1}}, {{-1, 1, -1}, {1, 1, -1}, {-1, 1, 1}, {1, 1, 1}}};
    for (int i = 0; i < 6; ++i) {
        Texture *picture = pictures[size_t(i / 2)];
        // Half a texel inside, where a bilinear filter stays within the picture.
        const double left = 0.5, top = 0.5, right = picture->origWidth - 0.5, bottom = picture->origHeight - 0.5;
        const Corner a = view.project(placed(faces[i][0]), left, top), b = view.project(placed(faces[i][1]), right, top),
                     c = view.project(placed(faces[i][2]), left, bottom), d = view.project(placed(faces[i][3]), right, bottom);
        // Faces turned away run the other way round on the screen.
        if ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x) <= 0)
            continue;
        rs.tex0 = picture;
        quad(a, b, c, d, modes);
    }
}

} // namespace gallery
