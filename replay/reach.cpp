#include "reach.h"

#include <algorithm>
#include <cstring>

namespace capture {

uint32_t moveBack(const layer::Footprint &footprint, const layer::Needs &needs)
{
    if (needs.map != ninefold::Map::runs || footprint.pixels.empty())
        return 0;
    constexpr int longest = -128;
    for (const layer::MemoryUse &use : footprint.memory())
        if (use.field == layer::Field::runlengthMap && use.begin && std::memchr(use.begin, longest, use.size))
            return uint32_t(footprint.pixels.right - footprint.pixels.left) + 128;
    return 0;
}

void findRows(const layer::Footprint &footprint, uint32_t back, std::vector<Rows> &rows)
{
    using layer::Field;
    rows.clear();
    for (const layer::TextureUse &use : footprint.textures())
        if (use.fetched && use.texture) {
            const Texture &t = *use.texture;
            rows.push_back({use.field, false, true, uintptr_t(t.pixels), size_t{4} * t.width, t.height, size_t{4} * t.width, 4});
        }
    const layer::Pixels &p = footprint.pixels;
    const auto width = size_t(p.right - p.left), height = size_t(p.bottom - p.top);
    const uint32_t shift = rs.dstShift;
    for (const layer::MemoryUse &use : footprint.memory()) {
        const auto begin = uintptr_t(use.begin);
        Rows one{use.field, use.written, use.field == Field::dstPixels, begin, use.size, 1, use.size, 1};
        const bool framed = use.field == Field::dstPixels || use.field == Field::zBuffer;
        one.element = use.field == Field::dstPixels                                         ? 4
                      : use.field == Field::shaheiPlane || use.field == Field::zeroPixelMap ? 2
                                                                                            : 1;
        if (framed && back) {
            one.begin -= uintptr_t(back) * one.element;
            one.rowBytes = one.stride += size_t(back) * one.element;
        } else if (framed) {
            one.rowBytes = width * one.element, one.rows = height, one.stride = size_t(one.element) << shift;
        } else if (use.field == Field::shaheiPlane && shift >= 4) {
            const ptrdiff_t first = ((ptrdiff_t(p.top) << shift) + p.left) >> 4,
                            last = ((ptrdiff_t(p.top) << shift) + p.right + 15) >> 4;
            one.rowBytes = size_t(last - first) * 2, one.rows = height, one.stride = size_t{2} << (shift - 4);
        }
        if (one.rowBytes && one.rows)
            rows.push_back(one);
    }
}

Rows partRead(const Rows &source, const layer::Footprint &footprint, const layer::Needs &needs)
{
    using ninefold::Walk;
    Rows part = source;
    part.rows = 0;
    const bool first = source.field == layer::Field::tex0, second = source.field == layer::Field::tex1;
    const layer::Pixels &p = footprint.pixels;
    if ((!first && !second) || footprint.chooses || p.empty())
        return part;
    const TexCoord *const uv = first ? rs.uv0 : rs.uv1;
    const int64_t width = int64_t{p.right} - p.left, height = int64_t{p.bottom} - p.top;
    const int64_t columns = int64_t(source.stride / 4), rows = int64_t(source.rows);
    int64_t left = uv[0].u >> 16, top = uv[0].v >> 16, right = left, bottom = top;
    switch (needs.walk) {
    case Walk::unit:
    case Walk::unit16:
        left += footprint.columnsCut, top += footprint.rowsCut;
        right = left + width, bottom = top + height;
        break;
    case Walk::stretch:
    case Walk::corners:
    case Walk::affine:
        for (int k = 0; k < needs.positions; ++k) {
            left = std::min<int64_t>(left, uv[k].u >> 16), right = std::max<int64_t>(right, uv[k].u >> 16);
            top = std::min<int64_t>(top, uv[k].v >> 16), bottom = std::max<int64_t>(bottom, uv[k].v >> 16);
        }
        left -= 1, top -= 1, right += 2, bottom += 2; // neighbours of a filter
        break;
    default: return part;
    }
    if ((right - left) * (bottom - top) > 4 * width * height)
        return part;
    // What goes around an edge is looked at from edge to edge.
    const auto wrap = [](int64_t &from, int64_t &to, int64_t size) {
        const int64_t length = to - from;
        from &= size - 1, to = from + length;
        if (to > size)
            from = 0, to = size;
    };
    wrap(left, right, columns), wrap(top, bottom, rows);
    part.begin += uintptr_t(top * columns + left) * 4;
    part.rowBytes = size_t(right - left) * 4, part.rows = size_t(bottom - top);
    return part;
}

} // namespace capture
