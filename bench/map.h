// Plane maps, from a place in the frame buffer to one in a texture, both in pixels.
#pragma once

namespace bench {

struct Map {
    double m[3][3]; // the place (x, y, 1) times this, divided by its third component
};

inline Map inverse(const Map &map)
{
    const auto &a = map.m;
    Map result;
    double determinant = 0;
    for (int i = 0; i < 3; ++i)
        determinant += a[0][i] * (a[1][(i + 1) % 3] * a[2][(i + 2) % 3] - a[1][(i + 2) % 3] * a[2][(i + 1) % 3]);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            result.m[j][i] = (a[(i + 1) % 3][(j + 1) % 3] * a[(i + 2) % 3][(j + 2) % 3] -
                              a[(i + 1) % 3][(j + 2) % 3] * a[(i + 2) % 3][(j + 1) % 3]) /
                             determinant;
    return result;
}

// The map that takes three places to three values each, given as rows (x, y, 1) and rows (a, b, c).
inline Map through(const double (&places)[3][3], const double (&values)[3][3])
{
    Map p;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            p.m[i][j] = places[i][j];
    const Map q = inverse(p);
    Map result{};
    for (int k = 0; k < 3; ++k)
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                result.m[k][i] += q.m[i][j] * values[j][k];
    return result;
}

} // namespace bench
