// From the axes of a kernel to its frame and parts. All of it is worked out by the compiler: a kernel holds the result as
// constants.
#pragma once

#include "core/catalogue.h"
#include "kernels/parts.h"

#include <bit>

namespace ninefold {

// How texture positions go from row to row.
enum class Walk : uint8_t {
    none, // colours alone
    unit, // rectangles: whole texels, one a pixel
    unit16, // 16.16 positions that step by one texel
    stretch,
    corners,
    table,
    affine, // triangles
    pers,
};
// Maps of the texture's pixels by which a unit-scale rectangle is drawn: its runs, or its zeros beside the Shahei plane.
enum class Map : uint8_t { none, runs, zeros };
// line: a level is chosen for each line. Next: with the level below it.
enum class Levels : uint8_t { one, next, line, lineNext };

// What happens before and around the pixels of a row: the frame is a function for each combination of these.
struct Frame {
    bool triangle = false;
    Walk walk = Walk::none;
    Map map = Map::none;
    Levels levels = Levels::one;
    bool gouraud = false; // the source are running colours
    Multi multi = Multi::none;
    bool rule = false, marks = false;

    constexpr bool colours() const { return gouraud || multi == Multi::corners; }
    constexpr bool second() const { return multi == Multi::texture; }
    constexpr bool hasNext() const { return levels == Levels::next; }
    constexpr bool hasLineLevels() const { return levels == Levels::line || levels == Levels::lineNext; }
    // Rows are alike, so that one function may draw them all; under a rule, as far as the rule lets them through.
    constexpr bool drawsBlocks() const
    {
        return !triangle && map != Map::zeros && !(map == Map::runs && rule) && !gouraud && walk != Walk::corners &&
               walk != Walk::table;
    }
};

struct Plan {
    Frame frame;
    Sample sample[2]; // of tex0; of tex1 or the corner colours, where there is such a stage
    bool unmixes; // a zero in tex1 lets the unmixed texel go on
    bool dropsMulti; // the operator is called and its result dropped
    Rule rule;
    Gate gate;
    bool prescale;
    uint8_t blend;
    Marks marks;

    constexpr FrontKey front() const { return {sample[0], rule, gate}; }
    constexpr SecondKey second() const { return {sample[1], unmixes}; }
    constexpr BackKey back() const { return {marks, blend, prescale, rule != Rule::none}; }
    // The same parts with neither plane gate nor marks, for the walk that does both itself.
    constexpr FrontKey ungatedFront() const { return {sample[0], rule, Gate::none}; }
    constexpr BackKey unmarkedBack() const { return {Marks::none, blend, prescale, rule != Rule::none}; }
    constexpr bool makesSecond() const { return frame.multi == Multi::texture || frame.multi == Multi::corners; }
};

// How a frame is told its parts. A kernel passes it in one register.
struct PartIds {
    uint8_t reading, secondReading;
    // Index + 1 of the block or span that does all of it, 0: none; with a multi stage, of the one of operator 0. A kernel with a
    // rule has instead that for the pixels that the rule lets through whole.
    uint16_t entry;
    uint8_t front, second, back; // indices of their keys
    uint8_t flags;
    enum : uint8_t { hasRule = 1, isBlock = 2, isCustom = 4, marks = 8, marksAll = 16, dropsMulti = 32 };

    constexpr bool is(uint8_t flag) const { return flags & flag; }
};

// A rule rectangle of colours alone marks the whole of its run, also what the rule holds back.
constexpr bool marksRun(Reading reading, Rule rule, bool marks)
{
    return marks && rule == Rule::row && (reading == Reading::flat || reading == Reading::gouraud);
}

constexpr int entryOf(const Plan &p)
{
    const bool rule = p.rule != Rule::none;
    if (p.marks != Marks::none || (rule && (p.gate != Gate::none || p.blend == NINEFOLD_BLEND_CUSTOM)))
        return 0;
    const FusedKey key{p.sample[0], p.prescale, p.gate, p.blend};
    if (p.frame.multi == Multi::none)
        return (p.frame.drawsBlocks() ? Blocks::index(key) : Spans::index(key)) + 1;
    const bool fused = !rule && !p.prescale && p.sample[0] == Sample{Motion::unit, Reading::point} && p.gate == Gate::none;
    return fused && p.blend <= NINEFOLD_BLEND_ALPHA ? MultiSpanKey{p.frame.multi, p.blend, 0}.index() + 1 : 0;
}

constexpr PartIds partIds(const Plan &p)
{
    const bool marks = p.marks != Marks::none;
    const int flags = (p.rule != Rule::none ? PartIds::hasRule : 0) | (p.frame.drawsBlocks() ? PartIds::isBlock : 0) |
                      (p.blend == NINEFOLD_BLEND_CUSTOM ? PartIds::isCustom : 0) | (marks ? PartIds::marks : 0) |
                      (marksRun(p.sample[0].reading, p.rule, marks) ? PartIds::marksAll : 0) |
                      (p.dropsMulti ? PartIds::dropsMulti : 0);
    return {uint8_t(p.sample[0].reading), uint8_t(p.sample[1].reading), uint16_t(entryOf(p)), uint8_t(p.front().index()),
            uint8_t(p.second().index()),  uint8_t(p.back().index()),    uint8_t(flags)};
}
static_assert(FrontKey::count <= 256 && SecondKey::count <= 256 && BackKey::count <= 256 && sizeof(PartIds) == 8);

// Constant alpha does not read what prescale changes: with and without it are one kernel.
constexpr Axes withoutIdlePrescale(Axes a)
{
    a.prescale &= a.blend != NINEFOLD_BLEND_CONST_ALPHA;
    return a;
}

// The kernels that have a name of their own.
constexpr Axes namedRuns = axesOf(0x188369), namedLine = axesOf(0xFDA768), namedPers = axesOf(0x81C036A);

// Filters 2 and 5 under rect options 1, 2 and in triangles stand behind a driver, which calls one of two kernels.
constexpr bool isDriven(const Axes &a)
{
    return (a.filter == NINEFOLD_FILTER_MIP || a.filter == NINEFOLD_FILTER_MIP_BILINEAR) &&
           (a.shape == NINEFOLD_SHAPE_TRIANGLE || a.rectOpt == NINEFOLD_RECT_STRETCH || a.rectOpt == NINEFOLD_RECT_CORNERS);
}
// Per-line mip forms outside line tables have a kernel that does nothing.
constexpr bool isEmpty(const Axes &a)
{
    return (a.filter == NINEFOLD_FILTER_LINE_POINT || a.filter == NINEFOLD_FILTER_LINE_BILINEAR) &&
           a.rectOpt != NINEFOLD_RECT_TABLE;
}

// The kernel that a driver calls when few texels fall on a pixel.
constexpr Axes directOf(Axes a)
{
    a.filter = a.filter == NINEFOLD_FILTER_MIP ? NINEFOLD_FILTER_POINT : NINEFOLD_FILTER_BILINEAR;
    return a;
}

constexpr bool usesNextLevel(Reading r) { return r == Reading::mipMix || r == Reading::mipNext || r == Reading::mipBilinear; }

constexpr void planRect(const Axes &a, Plan &p)
{
    using enum Reading;
    const bool plane = p.marks != Marks::none, multi = a.multi != NINEFOLD_MULTI_NONE;
    const Reading mix = ops::weighsByAlpha(a.blend) ? mix4 : mix3;
    p.rule = a.rule ? Rule::row : Rule::none;
    p.frame.map = a.rectOpt == NINEFOLD_RECT_RUNS ? Map::runs : a.rectOpt == NINEFOLD_RECT_PLANE_RUNS ? Map::zeros : Map::none;
    Motion motion = Motion::free;
    switch (a.rectOpt) {
    case NINEFOLD_RECT_RUNS:
    case NINEFOLD_RECT_PLANE_RUNS:
    case NINEFOLD_RECT_UNIT: p.frame.walk = Walk::unit, motion = Motion::unit; break;
    case NINEFOLD_RECT_STRETCH: p.frame.walk = Walk::stretch, motion = Motion::row; break;
    case NINEFOLD_RECT_CORNERS: p.frame.walk = Walk::corners; break;
    case NINEFOLD_RECT_TABLE: p.frame.walk = Walk::table; break;
    default: p.frame.walk = Walk::none; break;
    }
    // Where the row stands still the plain forms serve; elsewhere only the plane walk does without their shortcuts.
    const bool plain = motion != Motion::free || plane;
    Reading tex0 = point, tex1 = point;
    switch (a.filter) {
    case NINEFOLD_FILTER_MIP:
        if (multi)
            tex0 = tex1 = mipMix, p.unmixes = true;
        else if (plane && !a.rule)
            tex0 = mipNext;
        break;
    case NINEFOLD_FILTER_MOSAIC: tex0 = tex1 = mosaic; break;
    case NINEFOLD_FILTER_BILINEAR:
    case NINEFOLD_FILTER_LINE_BILINEAR:
        if (motion == Motion::unit) // from 16.16 positions
            p.frame.walk = Walk::unit16, motion = Motion::row;
        tex0 = plain ? mix : stipple, tex1 = mix4;
        break;
    case NINEFOLD_FILTER_MIP_BILINEAR: tex0 = tex1 = plain ? mipBilinear : Reading::firstTexel; break;
    case NINEFOLD_FILTER_FLAT: tex0 = flat; break;
    case NINEFOLD_FILTER_GOURAUD: tex0 = gouraud; break;
    }
    if (p.frame.map == Map::runs)
        tex0 = a.rule && a.shahei == NINEFOLD_SHAHEI_NONE ? slip : run;
    if (p.frame.map == Map::zeros)
        tex0 = mapped;
    p.sample[0] = {motion, tex0}, p.sample[1] = {motion, tex1};
    if (p.frame.walk == Walk::table)
        p.frame.levels = a.filter == NINEFOLD_FILTER_MIP || a.filter == NINEFOLD_FILTER_MIP_BILINEAR           ? Levels::lineNext
                         : a.filter == NINEFOLD_FILTER_LINE_POINT || a.filter == NINEFOLD_FILTER_LINE_BILINEAR ? Levels::line
                                                                                                               : Levels::one;
    else if (usesNextLevel(tex0))
        p.frame.levels = Levels::next;
}

constexpr void planTriangle(const Axes &a, Plan &p)
{
    using enum Reading;
    const bool multi = a.multi != NINEFOLD_MULTI_NONE;
    const Motion motion = a.pers && !hasColoursOnly(a.filter) ? Motion::pers : Motion::free;
    p.rule = a.rule ? Rule::free : Rule::none;
    p.frame.triangle = true;
    p.frame.walk = a.pers ? Walk::pers : Walk::affine;
    Reading tex0 = point, tex1 = point;
    switch (a.filter) {
    case NINEFOLD_FILTER_MIP:
        if (multi) {
            tex0 = mipMix;
            p.unmixes = a.rule;
            p.dropsMulti = !a.rule; // the mix goes on whatever the operator says
        } else if (!a.rule) {
            tex0 = mipNext;
        }
        break;
    case NINEFOLD_FILTER_MOSAIC: tex0 = tex1 = mosaic; break;
    case NINEFOLD_FILTER_BILINEAR: tex0 = ops::weighsByAlpha(a.blend) ? mix4 : mix3, tex1 = mix4; break;
    case NINEFOLD_FILTER_MIP_BILINEAR: tex0 = tex1 = mipBilinear; break;
    case NINEFOLD_FILTER_FLAT: tex0 = flat, p.frame.walk = Walk::none; break;
    case NINEFOLD_FILTER_GOURAUD: tex0 = gouraud, p.frame.walk = Walk::none; break;
    }
    p.sample[0] = {motion, tex0, tex0 == mipBilinear};
    p.sample[1] = {motion, tex1, tex1 == mipBilinear || tex1 == mosaic};
    if (usesNextLevel(tex0))
        p.frame.levels = Levels::next;
}

// The kernel of a rectangle or triangle; for driven ones the kernel that draws from mip levels. Lines have no parts.
constexpr Plan planOf(Axes a)
{
    a = withoutIdlePrescale(a);
    constexpr Gate gates[] = {Gate::none, Gate::plane, Gate::plane, Gate::z, Gate::mask, Gate::zMask};
    Plan p{};
    p.frame.multi = Multi(a.multi);
    p.gate = gates[a.shahei];
    p.marks = a.shahei == NINEFOLD_SHAHEI_PLANE            ? Marks::plane
              : a.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY ? Marks::planeZ
                                                           : Marks::none;
    p.blend = a.blend;
    p.prescale = a.prescale;
    if (a.shape == NINEFOLD_SHAPE_RECTANGLE)
        planRect(a, p);
    else
        planTriangle(a, p);
    p.frame.gouraud = p.sample[0].reading == Reading::gouraud;
    p.frame.rule = a.rule, p.frame.marks = p.marks != Marks::none;
    if (p.frame.multi == Multi::corners)
        p.sample[1] = {Motion::free, Reading::corners}, p.unmixes = false;
    else if (p.frame.multi != Multi::texture)
        p.sample[1] = {}, p.unmixes = false;
    return p;
}

// Screen on a four-corner rule rectangle in Shahei mode 1: kernels that only the exported rule rectangles reach.
constexpr Axes ruleRectangle(uint8_t filter)
{
    return {NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_PERS_OFF,     NINEFOLD_RULE_ON,      NINEFOLD_PRESCALE_OFF, filter,
            NINEFOLD_RECT_CORNERS,    NINEFOLD_SHAHEI_PLANE, NINEFOLD_BLEND_SCREEN, NINEFOLD_MULTI_NONE};
}

// Which parts some kernel needs.
struct UsedParts {
    bool front[int(Reading::count)][FrontKey::count], second[int(Reading::count)][SecondKey::count], back[BackKey::count],
        block[Blocks::count], span[Spans::count];
};
constexpr UsedParts usedParts()
{
    UsedParts used{};
    const auto use = [&used](const Axes &a) {
        const Plan p = planOf(a);
        bool(&front)[FrontKey::count] = used.front[int(p.sample[0].reading)];
        front[p.front().index()] = used.back[p.back().index()] = used.back[p.unmarkedBack().index()] = true;
        if (p.marks != Marks::none)
            front[p.ungatedFront().index()] = true;
        if (p.makesSecond())
            used.second[int(p.sample[1].reading)][p.second().index()] = true;
        if (const int entry = entryOf(p); entry && p.frame.multi == Multi::none)
            (p.frame.drawsBlocks() ? used.block : used.span)[entry - 1] = true;
    };
    forEachFamily([&use](Axes a) {
        if (a.shape == NINEFOLD_SHAPE_LINE || isEmpty(a))
            return;
        for (uint8_t shahei : axis::shaheis)
            for (uint8_t blend : axis::blends) {
                a.shahei = shahei, a.blend = blend, a.multi = NINEFOLD_MULTI_NONE;
                if (!exists(a))
                    continue;
                use(a);
                // Behind the multi stage stand the same backs; with it fronts and seconds differ by the first two kinds.
                const bool newFront =
                    blend == NINEFOLD_BLEND_COPY || blend == NINEFOLD_BLEND_ALPHA || blend == NINEFOLD_BLEND_ADD;
                for (uint8_t multi : {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_CORNERS})
                    if (a.multi = multi; newFront && exists(a))
                        use(a);
            }
    });
    use(ruleRectangle(NINEFOLD_FILTER_BILINEAR));
    use(ruleRectangle(NINEFOLD_FILTER_MIP_BILINEAR));
    return used;
}

} // namespace ninefold
