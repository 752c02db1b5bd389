// The parts that exist, the grid that they are made from, and the table of them that each instruction set has. Frames and kernels
// name a part by its index here; each index is undone beside where it is made.
#pragma once

#include "core/catalogue.h"
#include "kernels/span.h"
#include "ops/list.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace ninefold {

// How the position in a texture moves along a row, and in which unit.
enum class Motion : uint8_t {
    unit, // whole texels, one a pixel
    row, // 16.16 texels, the texture row is the same for the whole span
    free, // 16.16 texels
    pers, // coordinate / depth, to be divided by 1 / depth
    count
};

// What is made of the texels there.
enum class Reading : uint8_t {
    point,
    mapped, // without a transparent test; the zero-pixel map takes part in the plane gate
    run, // read on from Span::run without wrap or test
    slip, // the same, moving only on pixels that pass the rule test
    mosaic,
    mix3, // four-texel mix of three channels, alpha 0
    mix4, // of four channels
    stipple, // one of two texels, by the column's threshold
    firstTexel, // the first texel of the level
    mipMix, // texel of the level mixed with one of the next, by mipFrac
    mipNext, // the next level's texel where the level has one
    mipBilinear, // four-texel mixes of both levels mixed; the next level's taps halve every position
    flat, // color[0]
    gouraud, // running colours that leak
    corners, // running colours that stay in their bytes
    count
};

struct Sample {
    Motion motion;
    Reading reading;
    bool triangle = false; // in the form of triangles, where that differs
    constexpr bool operator==(const Sample &) const = default;
};

enum class Rule : uint8_t { none, row, free, count }; // how the position in the rule texture moves
enum class Gate : uint8_t { none, plane, z, mask, zMask, count }; // which pixels may be drawn
enum class Marks : uint8_t { none, plane, planeZ, count }; // what is marked beside the frame buffer
enum class Multi : uint8_t { texture, corners, colour, none, count }; // as on the axis

// The index of the grid point (a, b, ...), each below its extent, and back.
template <int... extent>
struct Grid {
    static constexpr int size = (extent * ... * 1);
    static constexpr int index(auto... at)
    {
        int i = 0;
        ((i = i * extent + int(at)), ...);
        return i;
    }
    // The coordinate of this number.
    template <class T>
    static constexpr T at(int index, size_t number)
    {
        constexpr int extents[] = {extent...};
        for (size_t k = sizeof...(extent) - 1; k > number; --k)
            index /= extents[k];
        return T(index % extents[number]);
    }
};

// An entry for each index: what `at` gives for it.
template <class Entry, int count, class At>
consteval std::array<Entry, size_t(count)> arrayOf(At at)
{
    return [&]<int... index>(std::integer_sequence<int, index...>)
    {
        return std::array<Entry, size_t(count)>{at.template operator()<index>()...};
    }
    (std::make_integer_sequence<int, count>());
}

// Fronts, within those of a reading.
struct FrontKey {
    Sample sample;
    Rule rule;
    Gate gate;
    using Layout = Grid<int(Motion::count), 2, int(Rule::count), int(Gate::count)>;
    constexpr int index() const { return Layout::index(sample.motion, sample.triangle, rule, gate); }
    static constexpr FrontKey of(Reading reading, int index)
    {
        return {{Layout::at<Motion>(index, 0), reading, Layout::at<bool>(index, 1)},
                Layout::at<Rule>(index, 2),
                Layout::at<Gate>(index, 3)};
    }
    static constexpr int count = Layout::size;
};

// What refuses pixels: the last two digits of a front's index.
using AlikeKey = Grid<int(Rule::count), int(Gate::count)>;

// Seconds, within those of a reading. unmixes: a zero in tex1 lets the unmixed texel go on.
struct SecondKey {
    Sample sample;
    bool unmixes;
    using Layout = Grid<int(Motion::count), 2, 2>;
    constexpr int index() const { return Layout::index(sample.motion, sample.triangle, unmixes); }
    static constexpr SecondKey of(Reading reading, int index)
    {
        return {{Layout::at<Motion>(index, 0), reading, Layout::at<bool>(index, 1)}, Layout::at<bool>(index, 2)};
    }
    static constexpr int count = Layout::size;
};

constexpr int blendCount = NINEFOLD_BLEND_CUSTOM + 1;

struct BackKey {
    Marks marks;
    uint8_t blend;
    bool prescale, soft; // soft: with the soft edge of a rule
    using Layout = Grid<int(Marks::count), blendCount, 2, 2>;
    constexpr int index() const { return Layout::index(marks, blend, prescale, soft); }
    static constexpr BackKey of(int index)
    {
        return {Layout::at<Marks>(index, 0), Layout::at<uint8_t>(index, 1), Layout::at<bool>(index, 2),
                Layout::at<bool>(index, 3)};
    }
    static constexpr int count = Layout::size;
};

// Fused entries: gate to write in one function, without rule and marks. A block draws the rows of a rectangle whose rows are
// alike, a span one row. Kernels with a rule use them for the pixels that it lets through whole. Prescale has blocks only, and of
// custom blends there is one, for a host's own operator at unit scale.
struct Rows {
    int count, columns;
    uint32_t pitch; // of the frame buffer, pixels
    uint32_t stepV; // of tex[0].v, row by row; unit-scale fetches step by a texel
    uint32_t maskRow; // number of the first drawMask row
};
using Block = void (*)(const Span &, const Rows &);
using FusedSpan = void (*)(const Span &, int first, int n);

struct FusedKey {
    Sample sample;
    bool prescale;
    Gate gate;
    uint8_t blend;
};
struct FusedFetch {
    Sample sample;
    bool prescale = false;
};
constexpr FusedFetch blockFetches[] = {
    {{Motion::unit, Reading::point}},      {{Motion::row, Reading::point}},      {{Motion::row, Reading::mix3}},
    {{Motion::row, Reading::mix4}},        {{Motion::free, Reading::flat}},      {{Motion::unit, Reading::point}, true},
    {{Motion::row, Reading::point}, true}, {{Motion::row, Reading::mix3}, true}, {{Motion::row, Reading::mix4}, true},
    {{Motion::row, Reading::mipBilinear}}, {{Motion::unit, Reading::run}},
};
constexpr FusedFetch spanFetches[] = {
    {{Motion::unit, Reading::run}},     {{Motion::free, Reading::point}}, {{Motion::free, Reading::mix3}},
    {{Motion::free, Reading::mix4}},    {{Motion::free, Reading::flat}},  {{Motion::free, Reading::gouraud}},
    {{Motion::free, Reading::stipple}}, {{Motion::pers, Reading::point}}, {{Motion::pers, Reading::mix3}},
    {{Motion::pers, Reading::mix4}},
};

template <const auto &fetches>
struct FusedEntries {
    using Layout = Grid<int(sizeof fetches / sizeof *fetches), int(Gate::count), blendCount>;
    static constexpr int count = Layout::size;
    static constexpr FusedKey of(int index)
    {
        const FusedFetch &f = fetches[Layout::template at<size_t>(index, 0)];
        return {f.sample, f.prescale, Layout::template at<Gate>(index, 1), Layout::template at<uint8_t>(index, 2)};
    }
    // -1: there is none.
    static constexpr int index(const FusedKey &key)
    {
        // Gates of their own only where fetches are cheap.
        const bool cheap = !key.prescale && (key.sample.reading == Reading::point || key.sample.reading == Reading::run) &&
                           key.sample.motion != Motion::pers;
        const bool host = !key.prescale && key.sample == Sample{Motion::unit, Reading::point} && key.gate == Gate::none;
        for (size_t k = 0; k < sizeof fetches / sizeof *fetches; ++k)
            if (fetches[k].sample == key.sample && fetches[k].prescale == key.prescale &&
                (key.blend != NINEFOLD_BLEND_CUSTOM || host) && (key.gate == Gate::none || cheap))
                return Layout::index(k, key.gate, key.blend);
        return -1;
    }
};
using Blocks = FusedEntries<blockFetches>;
using Spans = FusedEntries<spanFetches>;

// Fused spans with a multi stage: unit scale, ungated, blends 0 and 1, every operator of the library.
struct MultiSpanKey {
    Multi multi;
    uint8_t blend;
    int op;
    using Layout = Grid<int(Multi::none), NINEFOLD_BLEND_ALPHA + 1, ops::opCount>;
    constexpr int index() const { return Layout::index(multi, blend, op); }
    static constexpr MultiSpanKey of(int index)
    {
        return {Layout::at<Multi>(index, 0), Layout::at<uint8_t>(index, 1), Layout::at<int>(index, 2)};
    }
    static constexpr int count = Layout::size;
};

// The parts compiled for an instruction set. Entries that no kernel needs are null.
struct InstructionSet {
    int lanes;
    const Front *fronts[int(Reading::count)]; // by reading, then FrontKey
    const Second *seconds[int(Reading::count)]; // by reading, then SecondKey
    // [1]: for factors beyond what 16-bit products hold
    const Back *backs[2]; // by BackKey
    const RowOperator *operators[2]; // by index of operator
    const Block *blocks; // by index of Blocks
    const FusedSpan *spans; // by index of Spans
    const FusedSpan *multiSpans; // by MultiSpanKey
    Alike alike[AlikeKey::size]; // null: there is nothing to refuse, or no run of it to be expected
};

// Those of hosts' own operators draw pixel by pixel and are compiled once, for every machine.
extern const std::array<HostBack, BackKey::count> hostBacks;

// The set in use, and those with which rows of up to 8 and of up to 4 pixels are drawn: idle lanes are not free where texels are
// gathered. All start at the lowest set; MakeDrawFuncTable raises them to what the processor has.
struct ActiveSets {
    const InstructionSet *any, *upTo8, *upTo4;
};
extern ActiveSets activeSets;

} // namespace ninefold
