#include "scene.h"

#include <cmath>

namespace gallery {

Corner View::project(Point p, double u, double v) const
{
    // Only the ratios of the depths count; as whole numbers they should be neither small nor huge.
    return {centreX + focal * p.x / p.z, centreY + focal * p.y / p.z, p.z * 256, u, v};
}

void floorStrips(const View& view, double below, double near, double far, int strips, const Modes& modes)
{
    const double texels = rs.tex0->origWidth, half = 8;
    for (int i = 0; i < strips; ++i) {
        const auto depth = [&](int k) { return 1 / (1 / far + (1 / near - 1 / far) * k / strips); };
        const double back = depth(i), front = depth(i + 1);
        // Coordinates in perspective must not be negative.
        quad(view.project({-half, below, back}, 0, (far - back) * texels), view.project({half, below, back}, 2 * half * texels, (far - back) * texels),
             view.project({-half, below, front}, 0, (far - front) * texels),
             view.project({half, below, front}, 2 * half * texels, (far - front) * texels), modes);
    }
}

void cube(const View& view, Point middle, double half, double turn, double tilt, const std::array<Texture*, 3>& pictures, const Modes& modes)
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
        Texture* picture = pictures[size_t(i / 2)];
        const double right = picture->origWidth - 1, bottom = picture->origHeight - 1;
        const Corner a = view.project(placed(faces[i][0]), 0, 0), b = view.project(placed(faces[i][1]), right, 0),
                     c = view.project(placed(faces[i][2]), 0, bottom), d = view.project(placed(faces[i][3]), right, bottom);
        // Faces turned away run the other way round on the screen.
        if ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x) <= 0)
            continue;
        rs.tex0 = picture;
        quad(a, b, c, d, modes);
    }
}

} // namespace gallery
