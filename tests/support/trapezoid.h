// The spans of a triangle once more, row by row in plain integers, with whatever attributes its vertices carry.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace trapezoid {

struct Corner {
    int x, y;
    std::vector<int64_t> attributes; // 16.16 words
};

struct Clip {
    int left, top, right, bottom;
};

// Attributes by drawn pixel.
using Picture = std::map<std::pair<int, int>, std::vector<int64_t>>;

struct Side {
    int64_t x, stepX;
    std::vector<int64_t> value, step;

    Side(const Corner &from, const Corner &to, int64_t bias)
        : x((int64_t{from.x} << 16) + bias), stepX((int64_t{to.x - from.x} * 65536) / (to.y - from.y)), value(from.attributes)
    {
        for (size_t k = 0; k < value.size(); ++k)
            step.push_back((to.attributes[k] - from.attributes[k]) / (to.y - from.y));
    }
    void down()
    {
        x += stepX;
        for (size_t k = 0; k < value.size(); ++k)
            value[k] += step[k];
    }
};

inline int column(int64_t x) { return static_cast<int>(x >= 0 ? x / 65536 : -((-x + 65535) / 65536)); }

// bias: 0x8000 for textured triangles, 0 for those of colours alone. The shift of a row is added to both of its ends.
inline Picture draw(std::array<Corner, 3> corners, int64_t bias, const Clip &clip, const std::function<int(int)> &shift = {})
{
    Picture picture;
    std::stable_sort(corners.begin(), corners.end(),
                     [](const Corner &a, const Corner &b) { return a.y != b.y ? a.y < b.y : a.x < b.x; });
    const auto &[top, mid, bot] = corners;
    if (top.y == bot.y)
        return picture;
    const auto rows = [&](Side &left, Side &right, int from, int to) {
        for (int y = from; y < to; ++y, left.down(), right.down()) {
            int l = column(left.x), r = column(right.x);
            const int width = r - l, moved = shift && y >= clip.top && y < clip.bottom ? shift(y) : 0;
            l += moved, r += moved;
            if (y < clip.top || y >= clip.bottom)
                continue;
            for (int x = std::max(l, clip.left); x < std::min(r, clip.right); ++x) {
                std::vector<int64_t> values;
                for (size_t k = 0; k < left.value.size(); ++k)
                    values.push_back(left.value[k] + (right.value[k] - left.value[k]) / width * (x - l));
                picture[{x, y}] = values;
            }
        }
    };
    const int64_t cross = int64_t{mid.x - top.x} * (bot.y - top.y) - int64_t{bot.x - top.x} * (mid.y - top.y);
    if (top.y == mid.y) {
        Side left(top, bot, bias), right(mid, bot, bias);
        rows(left, right, top.y, bot.y);
    } else if (mid.y == bot.y) {
        Side left(top, mid, bias), right(top, bot, bias);
        rows(left, right, top.y, bot.y);
    } else {
        Side shortEdge(top, mid, bias), longEdge(top, bot, bias);
        Side &left = cross < 0 ? shortEdge : longEdge, &right = cross < 0 ? longEdge : shortEdge;
        rows(left, right, top.y, mid.y);
        shortEdge = Side(mid, bot, bias);
        rows(left, right, mid.y, bot.y);
    }
    return picture;
}

} // namespace trapezoid
