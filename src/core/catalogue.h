// The catalogue: the combinations of the nine axes that exist (pairing.h), in their order, with code and name. Nothing else in the
// library says what exists; counts, tables, names and kernels follow from here.
#pragma once

#include "core/pairing.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace ninefold {

// The values of each axis in table order, outermost axis first.
namespace axis {
constexpr uint8_t shapes[] = {NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_SHAPE_LINE};
constexpr uint8_t perspectives[] = {NINEFOLD_PERS_OFF, NINEFOLD_PERS_ON};
constexpr uint8_t rules[] = {NINEFOLD_RULE_OFF, NINEFOLD_RULE_ON};
constexpr uint8_t prescales[] = {NINEFOLD_PRESCALE_OFF, NINEFOLD_PRESCALE_ON};
constexpr uint8_t filters[] = {NINEFOLD_FILTER_POINT,        NINEFOLD_FILTER_MOSAIC,        NINEFOLD_FILTER_BILINEAR,
                               NINEFOLD_FILTER_LINE_POINT,   NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP,
                               NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_FILTER_FLAT,          NINEFOLD_FILTER_GOURAUD};
constexpr uint8_t rectOpts[] = {NINEFOLD_RECT_UNIT,    NINEFOLD_RECT_RUNS,  NINEFOLD_RECT_PLANE_RUNS, NINEFOLD_RECT_STRETCH,
                                NINEFOLD_RECT_CORNERS, NINEFOLD_RECT_TABLE, NINEFOLD_RECT_NONE};
constexpr uint8_t shaheis[] = {NINEFOLD_SHAHEI_NONE,           NINEFOLD_SHAHEI_STIPPLE,  NINEFOLD_SHAHEI_PLANE,
                               NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_PRIORITY_STIPPLE};
#define NINEFOLD_VALUE(name, value, word, meaning) name,
constexpr uint8_t blends[] = {NINEFOLD_BLENDS(NINEFOLD_VALUE)};
constexpr uint8_t multis[] = {NINEFOLD_MULTIS(NINEFOLD_VALUE)};
#undef NINEFOLD_VALUE
} // namespace axis

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
constexpr void forEachFamily(Visitor &&visit)
{
    for (uint8_t shape : axis::shapes)
        for (uint8_t pers : axis::perspectives)
            for (uint8_t rule : axis::rules)
                for (uint8_t prescale : axis::prescales)
                    for (uint8_t filter : axis::filters)
                        for (uint8_t rectOpt : axis::rectOpts)
                            if (const Axes a{shape, pers, rule, prescale, filter, rectOpt, 0, 0, 0}; familyExists(a))
                                visit(a);
}

template <class Visitor>
constexpr void forEachCombination(Visitor &&visit)
{
    forEachFamily([&](Axes a) {
        for (uint8_t shahei : axis::shaheis)
            for (uint8_t blend : axis::blends)
                for (uint8_t multi : axis::multis) {
                    a.shahei = shahei, a.blend = blend, a.multi = multi;
                    if (memberExists(a))
                        visit(a);
                }
    });
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
