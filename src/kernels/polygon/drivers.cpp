#include "kernels/polygon/drivers.h"

#include "kernels/polygon/triangle.h"

#include <algorithm>
#include <cmath>

namespace ninefold {
namespace {

int32_t difference(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }
int32_t wholeTexels(int32_t a, int32_t b) { return difference(a, b) / 65536; }
int32_t magnitude(uint32_t a) { return int32_t(int32_t(a) < 0 ? 0 - a : a); }

// Puts a mip level in the place of a texture and its coordinates for the time of one kernel call.
template <int t>
class LevelInPlace {
public:
    LevelInPlace(int cornerCount, int32_t density) : base(Fields::texture()), corners(cornerCount)
    {
        const uint32_t level = levelOf(*base, density, Fields::frac());
        Fields::next() = base->mip[level + 1];
        Fields::texture() = base->mip[level];
        for (int k = 0; k < corners; ++k) {
            TexCoord &uv = Fields::uv()[k];
            saved[k] = uv;
            uv = {uv.u >> level, uv.v >> level};
        }
    }
    ~LevelInPlace()
    {
        Fields::texture() = base;
        std::copy_n(saved, corners, Fields::uv());
    }
    LevelInPlace(const LevelInPlace &) = delete;
    LevelInPlace &operator=(const LevelInPlace &) = delete;

private:
    using Fields = FieldsOf<t>;
    Texture *base;
    int corners;
    TexCoord saved[4];
};

// A tex1 that is set has its level chosen too, whether or not the kernel reads it.
template <class Density>
void drawFromLevels(DrawFunc mipKernel, int corners, int32_t density0, Density &&densityOf)
{
    const LevelInPlace<0> level0(corners, density0);
    if (!rs.tex1)
        return mipKernel();
    const LevelInPlace<1> level1(corners, densityOf(rs.uv1));
    mipKernel();
}

template <class Density>
void driveRect(DrawFunc mipKernel, DrawFunc directKernel, Density &&densityOf)
{
    const uint32_t dx = uint32_t(rs.vertex[1].x) - uint32_t(rs.vertex[0].x);
    const uint32_t dy = uint32_t(rs.vertex[1].y) - uint32_t(rs.vertex[0].y);
    if (dx == 0 || dy == 0)
        return;
    const auto smaller = [&](const TexCoord *uv) {
        const int32_t a = densityOf(uv, 1, dx), b = densityOf(uv, 2, dy);
        return a < b ? a : b;
    };
    const int32_t density = smaller(rs.uv0);
    if ((uint32_t(density) & 0xFFFF0000u) <= 0x10000u)
        directKernel();
    else
        drawFromLevels(mipKernel, 4, density, smaller);
}

} // namespace

void drawMipStretch(DrawFunc mipKernel, DrawFunc directKernel)
{
    driveRect(mipKernel, directKernel, [](const TexCoord *uv, int edge, uint32_t size) {
        return magnitude(divided(uint32_t(edge == 1 ? difference(uv[1].u, uv[0].u) : difference(uv[1].v, uv[0].v)), size));
    });
}

void drawMipCorners(DrawFunc mipKernel, DrawFunc directKernel)
{
    driveRect(mipKernel, directKernel, [](const TexCoord *uv, int corner, uint32_t size) {
        const int32_t du = wholeTexels(uv[corner].u, uv[0].u), dv = wholeTexels(uv[corner].v, uv[0].v);
        const int32_t length = int32_t(std::sqrt(double(du) * double(du) + double(int32_t(uint32_t(dv) * uint32_t(dv)))));
        return magnitude(divided(uint32_t(length) << 16, size));
    });
}

void drawMipPolygon(DrawFunc mipKernel, DrawFunc directKernel)
{
    Order o;
    if (!o.make())
        return;
    const uint32_t size = uint32_t(int32_t(std::sqrt(std::fabs(double(o.cross())))));
    if (size == 0)
        return;
    const auto densityOf = [&](const TexCoord *uv) {
        const TexCoord &t = uv[o.top], &m = uv[o.mid], &b = uv[o.bot];
        const int32_t area = int32_t(uint32_t(wholeTexels(b.v, t.v)) * uint32_t(wholeTexels(m.u, t.u)) -
                                     uint32_t(wholeTexels(b.u, t.u)) * uint32_t(wholeTexels(m.v, t.v)));
        return int32_t((uint32_t(int32_t(std::sqrt(std::fabs(double(area))))) << 16) / size);
    };
    const int32_t density = densityOf(rs.uv0);
    rs.mipRatio = density;
    if (density <= 0x10000)
        directKernel();
    else
        drawFromLevels(mipKernel, 3, density, densityOf);
}

} // namespace ninefold
