// The catalogue: which combinations of the nine axes exist, in which order, under which code and name. Nothing else in the
// library says what exists; counts, tables, names and kernels follow from here.
#pragma once

#include <ninefold/axes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace ninefold {

// One combination. Values are those of the mode setters.
struct Axes {
    uint8_t shape; // 0 line, 1 rectangle, 2 triangle
    uint8_t pers; // 1: perspective, triangles only
    uint8_t rule; // 1: rule test and soft edge
    uint8_t prescale; // 1: source scaled ahead of the blend
    uint8_t filter; // 0 point, 1 bilinear, 2 to 5 mip forms, 6 flat, 7 Gouraud, 8 mosaic
    uint8_t rectOpt; // 0 unit, 1 stretch, 2 corners, 3 line table, 5 runs, 6 runs through the Shahei plane, 7 none
    uint8_t shahei; // 0 none, 1 plane, 2 plane and Z write, 3 Z test, 4 stipple, 5 Z test and stipple
    uint8_t blend; // 0 to 12 without 3
    uint8_t multi; // 0 second texture, 1 corner colours, 2 one colour, 3 none

    constexpr bool operator==(const Axes &) const = default;
};

// The values of each axis in table order, outermost axis first.
namespace axis {
constexpr uint8_t shapes[] = {2, 1, 0};
constexpr uint8_t flags[] = {0, 1}; // pers, rule, prescale
constexpr uint8_t filters[] = {0, 8, 1, 3, 4, 2, 5, 6, 7};
constexpr uint8_t rectOpts[] = {0, 5, 6, 1, 2, 3, 7};
constexpr uint8_t shaheis[] = {0, 4, 1, 2, 3, 5};
constexpr uint8_t blends[] = {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12};
constexpr uint8_t multis[] = {0, 1, 2, 3};
} // namespace axis

// The plane is for opaque work, the Z test for what is blended over it.
constexpr bool pairExists(const Axes &a)
{
    const bool plane = a.shahei == 1 || a.shahei == 2, zTest = a.shahei == 3 || a.shahei == 5;
    return (!plane || a.blend == 0) && (!zTest || a.blend != 0);
}

constexpr bool multiExists(const Axes &a) { return a.multi == 3 || (a.filter != 6 && a.filter != 7); }

// Whether shape, pers, rule, prescale, filter and rect option go together; Shahei mode, blend and multi are not looked at.
constexpr bool familyExists(const Axes &a)
{
    const bool colours = a.filter == 6 || a.filter == 7, mip = a.filter >= 2 && a.filter <= 5;
    if (a.shape == 0)
        return colours && a.rectOpt == 7 && !a.rule && !a.pers;
    if (a.shape == 2)
        return a.rectOpt == 7 && !(colours && a.prescale);
    if (a.pers || (a.rectOpt == 7) != colours)
        return false;
    return a.rectOpt == 0 ? !mip : a.rectOpt == 5 || a.rectOpt == 6 ? a.filter == 0 : true;
}

constexpr bool exists(const Axes &a)
{
    const bool plane = a.shahei == 1 || a.shahei == 2;
    return familyExists(a) && pairExists(a) && multiExists(a) && !(a.rectOpt == 5 && plane) && !(a.rectOpt == 6 && !plane);
}

constexpr uint32_t codeOf(const Axes &a)
{
    uint32_t code = a.pers;
    code = code << 1 | a.rule;
    code = code << 1 | a.prescale;
    code = code << 4 | a.filter;
    code = code << 3 | a.rectOpt;
    code = code << 3 | a.shahei;
    code = code << 5 | a.blend;
    code = code << 2 | a.multi;
    return code << 8 | a.shape | 0x68;
}

constexpr Axes axesOf(uint32_t code)
{
    const auto field = [code](int shift, uint32_t mask) { return uint8_t(code >> shift & mask); };
    return {field(0, 3),  field(27, 1), field(26, 1),  field(25, 1), field(21, 15),
            field(18, 7), field(15, 7), field(10, 31), field(8, 3)};
}

// CRC-32/BZIP2 over the four bytes of a code, least significant first: polynomial 0x04C11DB7, most significant bit first.
constexpr uint32_t crcEntry(uint32_t byte)
{
    uint32_t crc = byte << 24;
    for (int bit = 0; bit < 8; ++bit)
        crc = crc << 1 ^ (crc >> 31 ? 0x04C11DB7u : 0u);
    return crc;
}

template <class Visitor>
constexpr void forEachCombination(Visitor &&visit)
{
    for (uint8_t shape : axis::shapes)
        for (uint8_t pers : axis::flags)
            for (uint8_t rule : axis::flags)
                for (uint8_t prescale : axis::flags)
                    for (uint8_t filter : axis::filters)
                        for (uint8_t rectOpt : axis::rectOpts) {
                            Axes a{shape, pers, rule, prescale, filter, rectOpt, 0, 0, 0};
                            if (!familyExists(a))
                                continue;
                            for (uint8_t shahei : axis::shaheis)
                                for (uint8_t blend : axis::blends)
                                    for (uint8_t multi : axis::multis) {
                                        a.shahei = shahei, a.blend = blend, a.multi = multi;
                                        if (exists(a))
                                            visit(a);
                                    }
                        }
}

constexpr size_t recordCount = 30912;

// All codes in table order.
constexpr std::array<uint32_t, recordCount> makeCodes()
{
    std::array<uint32_t, recordCount> codes{};
    size_t n = 0;
    forEachCombination([&](const Axes &a) { codes[n++] = codeOf(a); });
    if (n != recordCount)
        throw "the catalogue does not have its number of records";
    return codes;
}

// The words of an axis: those of the list in ninefold/axes.h.
struct Word {
    int value;
    const char *text;
};
template <size_t n>
constexpr const char *wordOf(const Word (&words)[n], int value)
{
    for (const Word &word : words)
        if (word.value == value)
            return word.text;
    return "?";
}

// The readable name of a combination, the same in tests, benchmark, gallery and messages: shape, source, filter, blend, then what
// else is on. For example rect.stretch.bilinear.alpha.z+mask.tex1.rule.prescale.
inline std::string nameOf(const Axes &a)
{
#define NINEFOLD_WORD(name, value, word, meaning) {value, word},
    static constexpr Word shapes[] = {NINEFOLD_SHAPES(NINEFOLD_WORD)}, rectOpts[] = {NINEFOLD_RECT_OPTS(NINEFOLD_WORD)},
                          filters[] = {NINEFOLD_FILTERS(NINEFOLD_WORD)}, blends[] = {NINEFOLD_BLENDS(NINEFOLD_WORD)},
                          shaheis[] = {NINEFOLD_SHAHEIS(NINEFOLD_WORD)}, multis[] = {NINEFOLD_MULTIS(NINEFOLD_WORD)},
                          perspectives[] = {NINEFOLD_PERSPECTIVES(NINEFOLD_WORD)}, rules[] = {NINEFOLD_RULES(NINEFOLD_WORD)},
                          prescales[] = {NINEFOLD_PRESCALES(NINEFOLD_WORD)};
#undef NINEFOLD_WORD
    std::string name = wordOf(shapes, a.shape);
    for (const std::string word :
         {wordOf(rectOpts, a.rectOpt), wordOf(filters, a.filter), wordOf(blends, a.blend), wordOf(shaheis, a.shahei),
          wordOf(multis, a.multi), wordOf(perspectives, a.pers), wordOf(rules, a.rule), wordOf(prescales, a.prescale)})
        if (!word.empty())
            name += "." + word;
    return name;
}

} // namespace ninefold
