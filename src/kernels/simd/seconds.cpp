// The second operand of the multi stage: a texel of tex1, or the running corner colours.
#include "kernels/simd/fetch.h"
#include "kernels/simd/tables.h"

#include <utility>

namespace ninefold::NINEFOLD_SET {
namespace {

template <Second s>
struct SecondOf;
template <>
struct SecondOf<Second::unit> : Unit<1, true> {
    using Unit::Unit;
};
template <>
struct SecondOf<Second::pointRow> : PointRow<1> {
    using PointRow::PointRow;
};
template <>
struct SecondOf<Second::point> : Point<FreePosition, 1> {
    using Point::Point;
};
template <>
struct SecondOf<Second::pointPers> : Point<PersPosition, 1> {
    using Point::Point;
};
template <>
struct SecondOf<Second::mosaicUnit> : MosaicUnit<1> {
    using MosaicUnit::MosaicUnit;
};
template <>
struct SecondOf<Second::mosaicRow> : MosaicRow<1> {
    using MosaicRow::MosaicRow;
};
template <>
struct SecondOf<Second::mosaic> : Mosaic<FreePosition, 1, false> {
    using Mosaic::Mosaic;
};
template <>
struct SecondOf<Second::mosaicTri> : Mosaic<FreePosition, 1, true> {
    using Mosaic::Mosaic;
};
template <>
struct SecondOf<Second::mosaicPers> : Mosaic<PersPosition, 1, true> {
    using Mosaic::Mosaic;
};
template <>
struct SecondOf<Second::bilinearRow> : Bilinear<RowPosition, 1, true> {
    using Bilinear::Bilinear;
};
template <>
struct SecondOf<Second::bilinear> : Bilinear<FreePosition, 1, true> {
    using Bilinear::Bilinear;
};
template <>
struct SecondOf<Second::bilinearPers> : Bilinear<PersPosition, 1, true> {
    using Bilinear::Bilinear;
};
template <>
struct SecondOf<Second::firstTexel> : FirstTexel<1> {
    using FirstTexel::FirstTexel;
};
template <>
struct SecondOf<Second::mipMixRow> : MipMix<LevelPairRow<1>, 1> {
    using MipMix::MipMix;
};
template <>
struct SecondOf<Second::mipMix> : MipMix<LevelPair<FreePosition, 1>, 1> {
    using MipMix::MipMix;
};
template <>
struct SecondOf<Second::mipPoint> : Point<FreePosition, 1> {
    using Point::Point;
};
template <>
struct SecondOf<Second::mipPointPers> : Point<PersPosition, 1> {
    using Point::Point;
};
template <>
struct SecondOf<Second::mipBilinearRow> : MipBilinear<RowPosition, 1, false> {
    using MipBilinear::MipBilinear;
};
template <>
struct SecondOf<Second::mipBilinear> : MipBilinear<FreePosition, 1, false> {
    using MipBilinear::MipBilinear;
};
template <>
struct SecondOf<Second::mipBilinearTri> : MipBilinear<FreePosition, 1, true> {
    using MipBilinear::MipBilinear;
};
template <>
struct SecondOf<Second::mipBilinearPers> : MipBilinear<PersPosition, 1, true> {
    using MipBilinear::MipBilinear;
};
template <>
struct SecondOf<Second::corners> : Corners {
    using Corners::Corners;
};

// Under filter 2 a zero in tex1 lets the unmixed texel go on.
constexpr bool unmixes(Second s)
{
    return s == Second::mipMixRow || s == Second::mipMix || s == Second::mipPoint || s == Second::mipPointPers;
}

template <Second s>
void second(const Span &span, int first, int n, Chunk &c)
{
    SecondOf<s> fetch(span, first);
    const u32 *direct = nullptr;
    if constexpr (hasDirect<SecondOf<s>>)
        direct = fetch.direct(n);
    c.second = direct ? direct : c.seconds;
    for (int begin = 0; begin < n; begin += 64) {
        u64 valid = 0;
        for (int k = begin; k < n && k < begin + 64; k += lanes, fetch.advance()) {
            V key;
            if (direct)
                key = load(direct + k);
            else
                store(c.seconds + k, fetch.get(n - k, key));
            if constexpr (s != Second::corners) {
                const M found = isNotZero(key);
                valid |= u64(bitsOf(found)) << (k & 63);
                if constexpr (unmixes(s))
                    store(c.words + k, select(found, load(c.words + k), load(c.other + k)));
            }
        }
        c.valid[begin / 64] = valid & c.live[begin / 64];
    }
}

template <size_t... index>
constexpr Seconds makeSeconds(std::index_sequence<index...>)
{
    return {{second<Second(index)>...}};
}

} // namespace

constinit const Seconds seconds = makeSeconds(std::make_index_sequence<size_t(Second::count)>());

} // namespace ninefold::NINEFOLD_SET
