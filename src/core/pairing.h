// Which values of the nine axes go together. Each rule stands once, with its words; what exists follows from the lists, and so do
// messages on what does not.
#pragma once

#include <ninefold/axes.h>

#include <cstdint>

namespace ninefold {

// One combination. Values are those of the mode setters, named in ninefold/axes.h.
struct Axes {
    uint8_t shape;
    uint8_t pers;
    uint8_t rule;
    uint8_t prescale;
    uint8_t filter;
    uint8_t rectOpt;
    uint8_t shahei;
    uint8_t blend; // 0 to 12 without 3
    uint8_t multi;

    constexpr bool operator==(const Axes &) const = default;
};

// What several values of an axis have in common. Colours: no texture, so no multi stage and no rect option.
constexpr bool hasColoursOnly(int filter) { return filter == NINEFOLD_FILTER_FLAT || filter == NINEFOLD_FILTER_GOURAUD; }
constexpr bool readsLevels(int filter)
{
    return filter == NINEFOLD_FILTER_MIP || filter == NINEFOLD_FILTER_MIP_BILINEAR || filter == NINEFOLD_FILTER_LINE_POINT ||
           filter == NINEFOLD_FILTER_LINE_BILINEAR;
}
constexpr bool marksPlane(int shahei) { return shahei == NINEFOLD_SHAHEI_PLANE || shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY; }
constexpr bool testsPriority(int shahei)
{
    return shahei == NINEFOLD_SHAHEI_PRIORITY || shahei == NINEFOLD_SHAHEI_PRIORITY_STIPPLE;
}
constexpr bool testsStipple(int shahei)
{
    return shahei == NINEFOLD_SHAHEI_STIPPLE || shahei == NINEFOLD_SHAHEI_PRIORITY_STIPPLE;
}

// X(where, needs, words): of a combination `a`, where the first holds the second must. Words name values without NINEFOLD_.

/* clang-format off */

// Shape, pers, rule, prescale, filter and rect option.
#define NINEFOLD_FAMILY_PAIRINGS(X) \
    X(a.shape == NINEFOLD_SHAPE_LINE, hasColoursOnly(a.filter), \
      "SHAPE_LINE has no texture and goes with FILTER_FLAT and FILTER_GOURAUD only") \
    X(a.shape == NINEFOLD_SHAPE_LINE, !a.rule, "SHAPE_LINE goes with RULE_OFF only") \
    X(a.shape != NINEFOLD_SHAPE_TRIANGLE, !a.pers, "PERS_ON goes with SHAPE_TRIANGLE only") \
    X(a.shape == NINEFOLD_SHAPE_TRIANGLE && hasColoursOnly(a.filter), !a.prescale, \
      "FILTER_FLAT and FILTER_GOURAUD go on triangles with PRESCALE_OFF only") \
    X(a.shape != NINEFOLD_SHAPE_RECTANGLE, a.rectOpt == NINEFOLD_RECT_NONE, "lines and triangles go with RECT_NONE only") \
    X(a.shape == NINEFOLD_SHAPE_RECTANGLE && hasColoursOnly(a.filter), a.rectOpt == NINEFOLD_RECT_NONE, \
      "FILTER_FLAT and FILTER_GOURAUD have no texture and go with RECT_NONE only") \
    X(a.shape == NINEFOLD_SHAPE_RECTANGLE && a.rectOpt == NINEFOLD_RECT_NONE, hasColoursOnly(a.filter), \
      "RECT_NONE goes on rectangles with FILTER_FLAT and FILTER_GOURAUD only") \
    X(a.shape == NINEFOLD_SHAPE_RECTANGLE && a.rectOpt == NINEFOLD_RECT_UNIT, !readsLevels(a.filter), \
      "RECT_UNIT has one texel a pixel and no mip filter") \
    X(a.shape == NINEFOLD_SHAPE_RECTANGLE && (a.rectOpt == NINEFOLD_RECT_RUNS || a.rectOpt == NINEFOLD_RECT_PLANE_RUNS), \
      a.filter == NINEFOLD_FILTER_POINT, "RECT_RUNS and RECT_PLANE_RUNS go with FILTER_POINT only")

// The rest. The plane is for opaque work, the priority test for what is blended over it.
#define NINEFOLD_OTHER_PAIRINGS(X) \
    X(a.rectOpt == NINEFOLD_RECT_RUNS, !marksPlane(a.shahei), \
      "RECT_RUNS does not go with SHAHEI_PLANE and SHAHEI_PLANE_PRIORITY") \
    X(a.rectOpt == NINEFOLD_RECT_PLANE_RUNS, marksPlane(a.shahei), \
      "RECT_PLANE_RUNS goes with SHAHEI_PLANE and SHAHEI_PLANE_PRIORITY only") \
    X(marksPlane(a.shahei), a.blend == NINEFOLD_BLEND_COPY, \
      "SHAHEI_PLANE and SHAHEI_PLANE_PRIORITY mark pixels and go with BLEND_COPY only") \
    X(testsPriority(a.shahei), a.blend != NINEFOLD_BLEND_COPY, \
      "SHAHEI_PRIORITY and SHAHEI_PRIORITY_STIPPLE go with every blend but BLEND_COPY") \
    X(hasColoursOnly(a.filter), a.multi == NINEFOLD_MULTI_NONE, \
      "FILTER_FLAT and FILTER_GOURAUD have no multi stage and go with MULTI_NONE only")

/* clang-format on */

#define NINEFOLD_PAIRING_HOLDS(where, needs, words) (!(where) || (needs)) &&

// Whether shape, pers, rule, prescale, filter and rect option go together; Shahei mode, blend and multi are not looked at.
constexpr bool familyExists(const Axes &a)
{
    return NINEFOLD_FAMILY_PAIRINGS(NINEFOLD_PAIRING_HOLDS) a.shape <= NINEFOLD_SHAPE_TRIANGLE;
}

// Of a family that does: whether Shahei mode, blend and multi go with it and with each other.
constexpr bool memberExists(const Axes &a)
{
    return NINEFOLD_OTHER_PAIRINGS(NINEFOLD_PAIRING_HOLDS) a.multi <= NINEFOLD_MULTI_NONE;
}

// The words of the first rule that a combination breaks; null where there is none.
constexpr const char *brokenPairing(const Axes &a)
{
#define NINEFOLD_PAIRING_BROKEN(where, needs, words)                                                                             \
    if ((where) && !(needs))                                                                                                     \
        return words;
    NINEFOLD_FAMILY_PAIRINGS(NINEFOLD_PAIRING_BROKEN)
    NINEFOLD_OTHER_PAIRINGS(NINEFOLD_PAIRING_BROKEN)
#undef NINEFOLD_PAIRING_BROKEN
    return nullptr;
}

// How many of the nine values differ.
constexpr int differences(const Axes &a, const Axes &b)
{
    return (a.shape != b.shape) + (a.pers != b.pers) + (a.rule != b.rule) + (a.prescale != b.prescale) + (a.filter != b.filter) +
           (a.rectOpt != b.rectOpt) + (a.shahei != b.shahei) + (a.blend != b.blend) + (a.multi != b.multi);
}

// Of values that the axes have.
constexpr bool exists(const Axes &a) { return familyExists(a) && memberExists(a); }

#undef NINEFOLD_PAIRING_HOLDS

} // namespace ninefold
