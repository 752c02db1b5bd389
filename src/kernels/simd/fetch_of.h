// The fetch that serves each name.
#pragma once

#include "kernels/simd/fetch.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <Fetch f>
struct FetchOf;
template <>
struct FetchOf<Fetch::unit> : Unit<0, true> {
    using Unit::Unit;
};
template <>
struct FetchOf<Fetch::unitMapped> : Unit<0, false, true> {
    using Unit::Unit;
};
template <>
struct FetchOf<Fetch::run> : Run {
    using Run::Run;
};
template <>
struct FetchOf<Fetch::pointRow> : PointRow<0> {
    using PointRow::PointRow;
};
template <>
struct FetchOf<Fetch::point> : Point<FreePosition, 0> {
    using Point::Point;
};
template <>
struct FetchOf<Fetch::pointPers> : Point<PersPosition, 0> {
    using Point::Point;
};
template <>
struct FetchOf<Fetch::mosaicUnit> : MosaicUnit<0> {
    using MosaicUnit::MosaicUnit;
};
template <>
struct FetchOf<Fetch::mosaicRow> : MosaicRow<0> {
    using MosaicRow::MosaicRow;
};
template <>
struct FetchOf<Fetch::mosaic> : Mosaic<FreePosition, 0, false> {
    using Mosaic::Mosaic;
};
template <>
struct FetchOf<Fetch::mosaicPers> : Mosaic<PersPosition, 0, true> {
    using Mosaic::Mosaic;
};
template <>
struct FetchOf<Fetch::bilinearRow3> : Bilinear<RowPosition, 0, false> {
    using Bilinear::Bilinear;
};
template <>
struct FetchOf<Fetch::bilinearRow4> : Bilinear<RowPosition, 0, true> {
    using Bilinear::Bilinear;
};
template <>
struct FetchOf<Fetch::bilinear3> : Bilinear<FreePosition, 0, false> {
    using Bilinear::Bilinear;
};
template <>
struct FetchOf<Fetch::bilinear4> : Bilinear<FreePosition, 0, true> {
    using Bilinear::Bilinear;
};
template <>
struct FetchOf<Fetch::bilinearPers3> : Bilinear<PersPosition, 0, false> {
    using Bilinear::Bilinear;
};
template <>
struct FetchOf<Fetch::bilinearPers4> : Bilinear<PersPosition, 0, true> {
    using Bilinear::Bilinear;
};
template <>
struct FetchOf<Fetch::stipple> : Stipple {
    using Stipple::Stipple;
};
template <>
struct FetchOf<Fetch::flat> : Flat {
    using Flat::Flat;
};
template <>
struct FetchOf<Fetch::gouraud> : Gouraud {
    using Gouraud::Gouraud;
};
template <>
struct FetchOf<Fetch::firstTexel> : FirstTexel<0> {
    using FirstTexel::FirstTexel;
};
template <>
struct FetchOf<Fetch::mipMixRow> : MipMix<LevelPairRow<0>, 0> {
    using MipMix::MipMix;
};
template <>
struct FetchOf<Fetch::mipMix> : MipMix<LevelPair<FreePosition, 0>, 0> {
    using MipMix::MipMix;
};
template <>
struct FetchOf<Fetch::mipMixPers> : MipMix<LevelPair<PersPosition, 0>, 0> {
    using MipMix::MipMix;
};
template <>
struct FetchOf<Fetch::mipNextRow> : MipNext<LevelPairRow<0>> {
    using MipNext::MipNext;
};
template <>
struct FetchOf<Fetch::mipNext> : MipNext<LevelPair<FreePosition, 0>> {
    using MipNext::MipNext;
};
template <>
struct FetchOf<Fetch::mipNextPers> : MipNext<LevelPair<PersPosition, 0>> {
    using MipNext::MipNext;
};
template <>
struct FetchOf<Fetch::mipBilinearRow> : MipBilinear<RowPosition, 0, false> {
    using MipBilinear::MipBilinear;
};
template <>
struct FetchOf<Fetch::mipBilinear> : MipBilinear<FreePosition, 0, false> {
    using MipBilinear::MipBilinear;
};
template <>
struct FetchOf<Fetch::mipBilinearTri> : MipBilinear<FreePosition, 0, true> {
    using MipBilinear::MipBilinear;
};
template <>
struct FetchOf<Fetch::mipBilinearPers> : MipBilinear<PersPosition, 0, true> {
    using MipBilinear::MipBilinear;
};

} // namespace
} // namespace ninefold::NINEFOLD_SET
