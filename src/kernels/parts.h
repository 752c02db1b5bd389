// The parts that exist, and the table of them that each instruction set exports. Frames and kernels name a part by its index
// here.
#pragma once

#include "kernels/span.h"
#include "ops/operators.h"

#include <cstddef>
#include <cstdint>

namespace ninefold {

// How a front gets its source. "Row": the texture row is the same for the whole span.
enum class Fetch : uint8_t {
    unit, // whole texels, one a pixel, wrapped
    unitMapped, // the same without a transparent test; the zero-pixel map takes part in the plane gate
    run, // read on from Span::run without wrap or test
    runSlip, // the same, moving only on pixels that pass the rule test
    pointRow,
    point,
    pointPers,
    mosaicUnit,
    mosaicRow,
    mosaic,
    mosaicPers,
    bilinearRow3, // four-texel mix of three channels, alpha 0
    bilinearRow4, // of four channels
    bilinear3,
    bilinear4,
    bilinearPers3,
    bilinearPers4,
    stipple, // one of two texels, by the column's threshold
    flat, // color[0]
    gouraud, // running colours
    firstTexel, // the first texel of the level
    mipMixRow, // texel of the level mixed with one of the next, by mipFrac
    mipMix,
    mipMixPers,
    mipNextRow, // the next level's texel where the level has one
    mipNext,
    mipNextPers,
    mipBilinearRow, // four-texel mixes of both levels mixed; the next level's taps halve every position
    mipBilinear,
    mipBilinearTri, // the same with the triangle's taps
    mipBilinearPers,
    count
};

// Where the rule value comes from.
enum class Rule : uint8_t { none, row, free, count };

// Which pixels may be drawn.
enum class Gate : uint8_t { none, plane, z, mask, zMask, count };

// How the second operand of the multi stage is made.
enum class Second : uint8_t {
    unit,
    pointRow,
    point,
    pointPers,
    mosaicUnit,
    mosaicRow,
    mosaic,
    mosaicTri, // the same with the triangle's rows
    mosaicPers,
    bilinearRow,
    bilinear,
    bilinearPers,
    firstTexel,
    mipMixRow, // puts the unmixed texel back where tex1 has a zero; so do the next three
    mipMix,
    mipPoint,
    mipPointPers,
    mipBilinearRow,
    mipBilinear,
    mipBilinearTri,
    mipBilinearPers,
    corners, // running colours
    count
};

// What a back marks beside the frame buffer.
enum class Marks : uint8_t { none, plane, planeZ, count };

constexpr int blendCount = 13;

constexpr int frontIndex(Fetch f, Rule r, Gate g) { return (int(f) * int(Rule::count) + int(r)) * int(Gate::count) + int(g); }
constexpr int frontCount = frontIndex(Fetch::count, Rule::none, Gate::none);

constexpr int backIndex(bool prescale, int blend, bool soft, Marks m)
{
    return ((int(m) * blendCount + blend) * 2 + prescale) * 2 + soft;
}
constexpr int backCount = int(Marks::count) * blendCount * 4;

// Fused entries: gate to write in one function, without rule and marks. A block draws the rows of a rectangle whose rows are
// alike, a span one row. Kernels with a rule use them for the pixels that it lets through whole. Prescale has blocks only, and of
// custom blends there is one, for a host's own operator at unit scale.
struct Rows {
    int count, columns;
    uint32_t pitch; // of the frame buffer, pixels
    uint32_t stepV; // of v0, row by row; unit-scale fetches step by a texel
    uint32_t maskRow; // number of the first drawMask row
};
using Block = void (*)(const Span &, const Rows &);
using FusedSpan = void (*)(const Span &, int first, int n);

struct FusedFetch {
    Fetch fetch;
    bool prescale = false;
};
constexpr FusedFetch blockFetches[] = {{Fetch::unit},
                                       {Fetch::pointRow},
                                       {Fetch::bilinearRow3},
                                       {Fetch::bilinearRow4},
                                       {Fetch::flat},
                                       {Fetch::unit, true},
                                       {Fetch::pointRow, true},
                                       {Fetch::bilinearRow3, true},
                                       {Fetch::bilinearRow4, true},
                                       {Fetch::mipBilinearRow}};
constexpr FusedFetch spanFetches[] = {{Fetch::run},           {Fetch::point},        {Fetch::bilinear3}, {Fetch::bilinear4},
                                      {Fetch::flat},          {Fetch::gouraud},      {Fetch::stipple},   {Fetch::pointPers},
                                      {Fetch::bilinearPers3}, {Fetch::bilinearPers4}};
constexpr int fusedIndexAt(int fetch, Gate g, int blend) { return (fetch * int(Gate::count) + int(g)) * blendCount + blend + 1; }
constexpr int blockCount = fusedIndexAt(sizeof blockFetches / sizeof *blockFetches, Gate::none, -1);
constexpr int spanCount = fusedIndexAt(sizeof spanFetches / sizeof *spanFetches, Gate::none, -1);

// 0: there is none.
template <size_t n>
constexpr int fusedIndex(const FusedFetch (&fetches)[n], Fetch f, bool prescale, Gate g, int blend)
{
    // Gates of their own only where fetches are cheap.
    const bool gates = !prescale && (f == Fetch::unit || f == Fetch::pointRow || f == Fetch::point || f == Fetch::run);
    const bool custom = !prescale && f == Fetch::unit && g == Gate::none;
    for (size_t k = 0; k < n; ++k)
        if (fetches[k].fetch == f && fetches[k].prescale == prescale && (blend != 12 || custom) && (g == Gate::none || gates))
            return fusedIndexAt(int(k), g, blend);
    return 0;
}

// Fused spans with a multi stage: unit scale, ungated, blends 0 and 1, every operator of the library.
constexpr int multiBlends = 2;
constexpr int multiSpanIndex(int multi, int blend) { return (multi * multiBlends + blend) * ops::opCount; } // of operator 0
constexpr int multiSpanCount = multiSpanIndex(3, 0);

// What an instruction set exports. Entries that no kernel needs are null.
struct InstructionSet {
    int lanes;
    const Front *fronts; // by frontIndex
    const Mid *seconds; // by Second
    // [1]: for factors beyond what 16-bit products hold
    const Back *backs[2]; // by backIndex
    const RowOperator *operators[2]; // by ops::Op
    RowOperator hostOperator;
    const Block *blocks; // by fusedIndex of blockFetches, less 1
    const FusedSpan *spans; // by fusedIndex of spanFetches, less 1
    const FusedSpan *multiSpans; // by multiSpanIndex and operator
    Alike alike[int(Rule::count)][int(Gate::count)]; // null: there is nothing to refuse, or no run of it to be expected
};

// The set in use, and those with which rows of up to 8 and of up to 4 pixels are drawn: idle lanes are not free where texels are
// gathered. All start at the lowest set; MakeDrawFuncTable raises them to what the processor has.
struct ActiveSets {
    const InstructionSet *any, *upTo8, *upTo4;
};
extern ActiveSets activeSets;

} // namespace ninefold
