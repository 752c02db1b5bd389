// From the axes of a kernel to its frame and parts. All of it is worked out by the compiler: a kernel holds the result as
// constants.
#pragma once

#include "core/catalogue.h"
#include "kernels/parts.h"

namespace ninefold {

// What happens before and around the pixels of a row.
enum class Frame : uint8_t {
    rectUnit, // whole texels
    rectUnit16, // 16.16 positions that step by one texel
    rectRuns, // the texture's run-length map
    rectMapped, // the texture's zero-pixel map beside the Shahei plane
    rectStretch,
    rectStretchLevels, // with the next mip level beside each texture; so in the others
    rectCorners,
    rectCornersLevels,
    rectTable,
    rectTableLevel, // a mip level for each line
    rectTableLevels,
    rectFlat,
    rectGouraud,
    triangle,
    triangleLevels,
    trianglePers,
    trianglePersLevels,
    triangleFlat,
    triangleGouraud,
};

// The multi stage. "Unused": the operator is called and its result dropped.
enum class Multi : uint8_t { second, corners, colour, none, secondUnused, cornersUnused, colourUnused };

struct Plan {
    Frame frame;
    Multi multi;
    Fetch fetch;
    Rule rule;
    Gate gate;
    Second second;
    bool prescale;
    uint8_t blend;
    Marks marks;

    constexpr bool marksPlane() const { return marks != Marks::none; }
};

// How a frame is told its parts, in one word.
struct PartIds {
    uint64_t word;
    constexpr uint32_t front() const { return uint32_t(word) & 511; }
    constexpr uint32_t second() const { return uint32_t(word) >> 9 & 31; }
    constexpr uint32_t back() const { return uint32_t(word) >> 14 & 255; }
    constexpr Marks marks() const { return Marks(word >> 22 & 3); }
    constexpr bool custom() const { return word >> 24 & 1; } // blend 12
    constexpr bool marksRun() const { return word >> 25 & 1; } // marks what the gate leaves, drawn or not
    // Block or span that does all of it, 0: none; with a multi stage, the one of operator 0.
    constexpr uint32_t fused() const { return hasRule() ? 0 : entry(); }
    // A kernel with a rule has instead the block or span for pixels that the rule lets through whole.
    constexpr uint32_t plain() const { return hasRule() ? entry() : 0; }
    constexpr uint32_t entry() const { return uint32_t(word >> 32); }
    constexpr bool hasRule() const { return word >> 26 & 1; }
    constexpr bool isBlock() const { return word >> 27 & 1; }
    // The same parts with neither plane gate nor marks, for the walk that does both itself.
    constexpr uint32_t frontUngated() const { return front() - uint32_t(Gate::plane); }
    constexpr uint32_t backUnmarked() const { return back() - uint32_t(marks()) * blendCount * 4; }
};

// A rule rectangle of colours alone marks the whole of its run, also what the rule holds back.
constexpr bool marksRun(const Plan &p)
{
    return p.marksPlane() && p.rule == Rule::row && (p.fetch == Fetch::flat || p.fetch == Fetch::gouraud);
}

constexpr bool drawsBlocks(Frame f)
{
    return f == Frame::rectUnit || f == Frame::rectUnit16 || f == Frame::rectStretch || f == Frame::rectStretchLevels ||
           f == Frame::rectFlat;
}

constexpr int fusedIndex(const Plan &p)
{
    if (p.marksPlane() || (p.rule != Rule::none && (p.gate != Gate::none || p.blend == 12)))
        return 0;
    if (p.multi != Multi::none)
        return p.rule == Rule::none && !p.prescale && p.multi < Multi::none && p.fetch == Fetch::unit && p.gate == Gate::none &&
                       p.blend < multiBlends
                   ? multiSpanIndex(int(p.multi), p.blend) + 1
                   : 0;
    return drawsBlocks(p.frame) ? fusedIndex(blockFetches, p.fetch, p.prescale, p.gate, p.blend)
                                : fusedIndex(spanFetches, p.fetch, p.prescale, p.gate, p.blend);
}

static_assert(frontCount <= 512 && int(Second::count) <= 32 && backCount <= 256 && int(Marks::count) <= 4);
constexpr PartIds partIds(const Plan &p)
{
    return {uint64_t(fusedIndex(p)) << 32 | uint32_t(frontIndex(p.fetch, p.rule, p.gate)) | uint32_t(p.second) << 9 |
            uint32_t(backIndex(p.prescale, p.blend, p.rule != Rule::none, p.marks)) << 14 | uint32_t(p.marks) << 22 |
            uint32_t(p.blend == 12) << 24 | uint32_t(marksRun(p)) << 25 | uint32_t(p.rule != Rule::none) << 26 |
            uint32_t(drawsBlocks(p.frame)) << 27};
}

// Filters 2 and 5 under rect options 1, 2 and in triangles stand behind a driver, which calls one of two kernels.
constexpr bool isDriven(const Axes &a)
{
    return (a.filter == 2 || a.filter == 5) && (a.shape == 2 || (a.shape == 1 && (a.rectOpt == 1 || a.rectOpt == 2)));
}
// Per-line mip forms outside line tables have a kernel that does nothing.
constexpr bool isEmpty(const Axes &a) { return (a.filter == 3 || a.filter == 4) && a.rectOpt != 3; }

// The kernel that a driver calls when few texels fall on a pixel.
constexpr Axes directOf(Axes a)
{
    a.filter = a.filter == 2 ? 0 : 1;
    return a;
}

constexpr bool usesNextLevel(Fetch f) { return f >= Fetch::mipMixRow; }

constexpr Plan planOfRect(const Axes &a, Plan p)
{
    const bool plane = p.marksPlane(), four = a.blend == 1 || a.blend == 2 || a.blend == 4;
    p.rule = a.rule ? Rule::row : Rule::none;
    switch (a.rectOpt) {
    case 0: p.frame = a.filter == 1 ? Frame::rectUnit16 : Frame::rectUnit; break;
    case 1: p.frame = Frame::rectStretch; break;
    case 2: p.frame = Frame::rectCorners; break;
    case 3:
        p.frame = a.filter == 2 || a.filter == 5   ? Frame::rectTableLevels
                  : a.filter == 3 || a.filter == 4 ? Frame::rectTableLevel
                                                   : Frame::rectTable;
        break;
    case 5: p.frame = Frame::rectRuns; break;
    case 6: p.frame = Frame::rectMapped; break;
    default: p.frame = a.filter == 6 ? Frame::rectFlat : Frame::rectGouraud; break;
    }
    const bool fixedRow = a.rectOpt == 0 || a.rectOpt == 1;
    switch (a.filter) {
    case 2:
        if (a.multi != 3) {
            p.fetch = fixedRow ? Fetch::mipMixRow : Fetch::mipMix;
            p.second = fixedRow ? Second::mipMixRow : Second::mipMix;
            break;
        }
        if (plane && !a.rule) {
            p.fetch = fixedRow ? Fetch::mipNextRow : Fetch::mipNext;
            break;
        }
        [[fallthrough]];
    case 0:
    case 3:
        switch (a.rectOpt) {
        case 0: p.fetch = Fetch::unit, p.second = Second::unit; break;
        case 5: p.fetch = a.rule && a.shahei == 0 ? Fetch::runSlip : Fetch::run, p.second = Second::unit; break;
        case 6: p.fetch = Fetch::unitMapped, p.second = Second::unit; break;
        case 1: p.fetch = Fetch::pointRow, p.second = Second::pointRow; break;
        default: p.fetch = Fetch::point, p.second = Second::point; break;
        }
        break;
    case 8:
        p.fetch = a.rectOpt == 0 ? Fetch::mosaicUnit : fixedRow ? Fetch::mosaicRow : Fetch::mosaic;
        p.second = a.rectOpt == 0 ? Second::mosaicUnit : fixedRow ? Second::mosaicRow : Second::mosaic;
        break;
    case 1:
    case 4:
        p.fetch = fixedRow ? (four ? Fetch::bilinearRow4 : Fetch::bilinearRow3)
                  : plane  ? (four ? Fetch::bilinear4 : Fetch::bilinear3)
                           : Fetch::stipple;
        p.second = fixedRow ? Second::bilinearRow : Second::bilinear;
        break;
    case 5:
        p.fetch = fixedRow ? Fetch::mipBilinearRow : plane ? Fetch::mipBilinear : Fetch::firstTexel;
        p.second = fixedRow ? Second::mipBilinearRow : plane ? Second::mipBilinear : Second::firstTexel;
        break;
    case 6: p.fetch = Fetch::flat; break;
    default: p.fetch = Fetch::gouraud; break;
    }
    if (usesNextLevel(p.fetch) && a.rectOpt != 3)
        p.frame = a.rectOpt == 1 ? Frame::rectStretchLevels : Frame::rectCornersLevels;
    return p;
}

constexpr Plan planOfTriangle(const Axes &a, Plan p)
{
    const bool pers = a.pers, four = a.blend == 1 || a.blend == 2 || a.blend == 4;
    p.rule = a.rule ? Rule::free : Rule::none;
    p.frame = pers ? Frame::trianglePers : Frame::triangle;
    switch (a.filter) {
    case 2:
        if (a.multi != 3) {
            p.fetch = pers ? Fetch::mipMixPers : Fetch::mipMix;
            if (a.rule) {
                p.second = pers ? Second::mipPointPers : Second::mipPoint;
            } else { // the mix goes on whatever the operator says
                p.second = pers ? Second::pointPers : Second::point;
                p.multi = Multi(a.multi + int(Multi::secondUnused));
            }
            break;
        }
        if (!a.rule) {
            p.fetch = pers ? Fetch::mipNextPers : Fetch::mipNext;
            break;
        }
        [[fallthrough]];
    case 0:
        p.fetch = pers ? Fetch::pointPers : Fetch::point;
        p.second = pers ? Second::pointPers : Second::point;
        break;
    case 8:
        p.fetch = pers ? Fetch::mosaicPers : Fetch::mosaic;
        p.second = pers ? Second::mosaicPers : Second::mosaicTri;
        break;
    case 1:
        p.fetch = pers ? (four ? Fetch::bilinearPers4 : Fetch::bilinearPers3) : (four ? Fetch::bilinear4 : Fetch::bilinear3);
        p.second = pers ? Second::bilinearPers : Second::bilinear;
        break;
    case 5:
        p.fetch = pers ? Fetch::mipBilinearPers : Fetch::mipBilinearTri;
        p.second = pers ? Second::mipBilinearPers : Second::mipBilinearTri;
        break;
    case 6: p.fetch = Fetch::flat, p.frame = Frame::triangleFlat; break;
    default: p.fetch = Fetch::gouraud, p.frame = Frame::triangleGouraud; break;
    }
    if (usesNextLevel(p.fetch))
        p.frame = pers ? Frame::trianglePersLevels : Frame::triangleLevels;
    return p;
}

// The kernel of a rectangle or triangle; for driven ones the kernel that draws from mip levels. Lines have no parts.
constexpr Plan planOf(const Axes &a)
{
    constexpr Gate gates[] = {Gate::none, Gate::plane, Gate::plane, Gate::z, Gate::mask, Gate::zMask};
    Plan p{};
    p.multi = Multi(a.multi);
    p.gate = gates[a.shahei];
    p.marks = a.shahei == 1 ? Marks::plane : a.shahei == 2 ? Marks::planeZ : Marks::none;
    p.blend = a.blend;
    p.prescale = a.prescale && a.blend != 2; // constant alpha does not read what prescale changes
    p = a.shape == 1 ? planOfRect(a, p) : planOfTriangle(a, p);
    p.second = p.multi == Multi::corners || p.multi == Multi::cornersUnused ? Second::corners
               : p.multi == Multi::second || p.multi == Multi::secondUnused ? p.second
                                                                            : Second{};
    return p;
}

// Screen on a four-corner rule rectangle in Shahei mode 1: kernels that only the exported rule rectangles reach.
constexpr Axes ruleRectangle(uint8_t filter) { return {1, 0, 1, 0, filter, 2, 1, 9, 3}; }

// Which parts some kernel needs.
struct UsedParts {
    bool front[frontCount], back[backCount], block[blockCount], span[spanCount];
};
constexpr UsedParts usedParts()
{
    UsedParts used{};
    const auto use = [&used](const Axes &a) {
        if (a.shape == 0 || isEmpty(a))
            return;
        const Plan p = planOf(a);
        const PartIds ids = partIds(p);
        used.front[ids.front()] = used.back[ids.back()] = true;
        if (ids.entry() && p.multi == Multi::none)
            (drawsBlocks(p.frame) ? used.block : used.span)[ids.entry() - 1] = true;
        if (ids.marks() != Marks::none)
            used.front[ids.frontUngated()] = used.back[ids.backUnmarked()] = true;
    };
    forEachCombination(use);
    use(ruleRectangle(1));
    use(ruleRectangle(5));
    return used;
}

} // namespace ninefold
