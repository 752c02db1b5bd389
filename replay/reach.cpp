#include "reach.h"

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

} // namespace capture
