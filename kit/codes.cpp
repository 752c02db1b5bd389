// Draw codes in words. All values, words and rules come from the lists of the library.
#include <ninefold/kit/codes.h>

#include "codes.h"
#include "error.h"
#include "text_buffer.h"

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace ninefold;

namespace {

struct Value {
    uint8_t value;
    const char *name, *word, *meaning;
};

struct Axis {
    const char *name;
    uint8_t Axes::*field;
    const Value *values;
    size_t count;

    const Value *find(uint8_t value) const
    {
        const Value *const found = std::find_if(values, values + count, [value](const Value &v) { return v.value == value; });
        return found == values + count ? nullptr : found;
    }
};

#define VALUE(name, value, word, meaning) {value, #name, word, meaning},
constexpr Value shapes[] = {NINEFOLD_SHAPES(VALUE)}, rectOpts[] = {NINEFOLD_RECT_OPTS(VALUE)},
                filters[] = {NINEFOLD_FILTERS(VALUE)}, blends[] = {NINEFOLD_BLENDS(VALUE)}, shaheis[] = {NINEFOLD_SHAHEIS(VALUE)},
                multis[] = {NINEFOLD_MULTIS(VALUE)}, perspectives[] = {NINEFOLD_PERSPECTIVES(VALUE)},
                rules[] = {NINEFOLD_RULES(VALUE)}, prescales[] = {NINEFOLD_PRESCALES(VALUE)};
#undef VALUE

// In the order of the words of a name.
constexpr Axis axes[] = {
    {"shape", &Axes::shape, shapes, std::size(shapes)},
    {"rect option", &Axes::rectOpt, rectOpts, std::size(rectOpts)},
    {"filter", &Axes::filter, filters, std::size(filters)},
    {"blend", &Axes::blend, blends, std::size(blends)},
    {"Shahei", &Axes::shahei, shaheis, std::size(shaheis)},
    {"multi", &Axes::multi, multis, std::size(multis)},
    {"pers", &Axes::pers, perspectives, std::size(perspectives)},
    {"rule", &Axes::rule, rules, std::size(rules)},
    {"prescale", &Axes::prescale, prescales, std::size(prescales)},
};

struct Pairing {
    bool (*holds)(const Axes &);
    const char *words;
};
#define PAIRING(where, needs, words) {[](const Axes &a) { return !(where) || (needs); }, words},
constexpr Pairing pairings[] = {NINEFOLD_FAMILY_PAIRINGS(PAIRING) NINEFOLD_OTHER_PAIRINGS(PAIRING)};
#undef PAIRING

std::string hex(uint32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", code);
    return text;
}

// "0, 3, 4 or 5"
std::string listed(const std::vector<int> &values, const char *last)
{
    std::string text;
    for (size_t i = 0; i < values.size(); ++i)
        text += (i == 0 ? "" : i + 1 == values.size() ? last : ", ") + std::to_string(values[i]);
    return text;
}

// What else an axis could say under a rule that is broken: "with blend 0, or Shahei 0, 3, 4 or 5, this rule holds".
std::string remedies(const Pairing &pairing, const Axes &broken)
{
    std::string text;
    for (const Axis &axis : axes) {
        std::vector<int> allowed;
        for (size_t i = 0; i < axis.count; ++i) {
            Axes changed = broken;
            changed.*axis.field = axis.values[i].value;
            if (pairing.holds(changed))
                allowed.push_back(axis.values[i].value);
        }
        if (!allowed.empty())
            text += (text.empty() ? "" : "; ") + std::string(axis.name) + " " + listed(allowed, " or ");
    }
    return text;
}

std::vector<uint32_t> nearest(uint32_t code, size_t count)
{
    const Axes from = axesOf(code);
    std::vector<uint64_t> order; // differences, then the code
    order.reserve(recordCount);
    forEachCombination([&](const Axes &a) { order.push_back(uint64_t(differences(from, a)) << 32 | codeOf(a)); });
    count = std::min(count, order.size());
    std::partial_sort(order.begin(), order.begin() + std::ptrdiff_t(count), order.end());
    return {order.begin(), order.begin() + std::ptrdiff_t(count)};
}

// "blend 0 (copy) instead of 1", for each axis that differs.
std::string changes(const Axes &from, const Axes &to)
{
    std::string text;
    for (const Axis &axis : axes)
        if (const uint8_t value = to.*axis.field; value != from.*axis.field) {
            text += (text.empty() ? "" : ", ") + std::string(axis.name) + " " + std::to_string(value);
            if (const Value *known = axis.find(value); known && *known->word)
                text += std::string(" (") + known->word + ")";
            text += " instead of " + std::to_string(from.*axis.field);
        }
    return text;
}

// Each reason why a code does not exist, a sentence each.
std::vector<std::string> reasons(uint32_t code)
{
    std::vector<std::string> found;
    const Axes a = axesOf(code);
    for (const Axis &axis : axes)
        if (!axis.find(a.*axis.field)) {
            std::vector<int> values;
            for (size_t i = 0; i < axis.count; ++i)
                values.push_back(axis.values[i].value);
            std::sort(values.begin(), values.end());
            found.push_back(std::string(axis.name) + " " + std::to_string(a.*axis.field) + " is none; there are " +
                            listed(values, " and "));
        }
    // The bits that no axis has.
    if (code != codeOf(a))
        found.push_back("bits 2 to 7 of a draw code are 0x68 and bits 28 to 31 are 0; with the same axes it is " +
                        hex(codeOf(a)));
    if (found.empty())
        for (const Pairing &pairing : pairings)
            if (!pairing.holds(a))
                found.push_back(std::string(pairing.words) + " (" + remedies(pairing, a) + ")");
    return found;
}

std::string explanation(uint32_t code)
{
    const Axes a = axesOf(code);
    const bool there = nfk::codeExists(code);
    std::string text = nfk::nameOrNumber(code);
    if (nfk::valuesExist(code))
        text = hex(code) + " " + text;
    text += there ? "\n" : ": does not exist\n";
    for (const Axis &axis : axes) {
        const Value *const value = axis.find(a.*axis.field);
        text += std::string("  ") + axis.name + " " + std::to_string(a.*axis.field);
        text += value ? std::string(" ") + value->name + ": " + value->meaning + "\n" : ": no such value\n";
    }
    if (there)
        return text;
    text += "Why it does not exist:\n";
    for (const std::string &reason : reasons(code))
        text += "  " + reason + "\n";
    if (const uint32_t drawn = nfkDrawnCode(code))
        text += "SearchDrawFunc draws instead:\n  " + hex(drawn) + " " + nfk::nameOrNumber(drawn) + "\n";
    else
        text += "SearchDrawFunc gives null.\n";
    text += "The nearest that exist:\n";
    for (const uint32_t near : nearest(code, 5))
        text += "  " + hex(near) + " " + nfk::nameOrNumber(near) + ": " + changes(a, axesOf(near)) + "\n";
    return text;
}

} // namespace

bool nfk::valuesExist(uint32_t code)
{
    const Axes a = axesOf(code);
    return code == codeOf(a) &&
           std::all_of(std::begin(axes), std::end(axes), [&](const Axis &axis) { return axis.find(a.*axis.field); });
}

bool nfk::codeExists(uint32_t code) { return valuesExist(code) && exists(axesOf(code)); }

std::string nfk::nameOrNumber(uint32_t code) { return valuesExist(code) ? nameOf(axesOf(code)) : hex(code); }

std::string nfk::reasonAgainst(uint32_t code)
{
    const std::vector<std::string> found = reasons(code);
    return found.empty() ? "" : found.front();
}

int nfkCodeExists(uint32_t code) { return nfk::codeExists(code); }

uint32_t nfkDrawnCode(uint32_t code)
{
    if (nfk::codeExists(code))
        return code;
    switch (code & 3) {
    case NINEFOLD_SHAPE_LINE:
        return codeOf({NINEFOLD_SHAPE_LINE, NINEFOLD_PERS_OFF, NINEFOLD_RULE_OFF, NINEFOLD_PRESCALE_OFF, NINEFOLD_FILTER_FLAT,
                       NINEFOLD_RECT_NONE, NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE});
    case NINEFOLD_SHAPE_RECTANGLE:
        return codeOf({NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_PERS_OFF, NINEFOLD_RULE_OFF, NINEFOLD_PRESCALE_OFF,
                       NINEFOLD_FILTER_POINT, NINEFOLD_RECT_UNIT, NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY,
                       NINEFOLD_MULTI_NONE});
    case NINEFOLD_SHAPE_TRIANGLE:
        return codeOf({NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_PERS_OFF, NINEFOLD_RULE_OFF, NINEFOLD_PRESCALE_OFF,
                       NINEFOLD_FILTER_POINT, NINEFOLD_RECT_NONE, NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY,
                       NINEFOLD_MULTI_NONE});
    default: return 0;
    }
}

uint32_t nfkCodeName(uint32_t code, char *buffer, uint32_t size)
{
    return nfk::guarded("nfkCodeName", [&] {
        if (!nfk::valuesExist(code)) {
            nfk::copyText("", buffer, size);
            nfk::fail("nfkCodeName: 0x%X is no draw code: %s", code, nfk::reasonAgainst(code).c_str());
            return 0u;
        }
        return nfk::copyText(nameOf(axesOf(code)), buffer, size);
    });
}

uint32_t nfkCodeOfName(const char *name)
{
    return nfk::guarded("nfkCodeOfName", [&]() -> uint32_t {
        if (!name)
            return nfk::fail("nfkCodeOfName: the name is null");
        Axes a{};
        const char *at = name;
        std::string expected; // the words that could have stood here, of axes whose word may be left out too
        for (const Axis &axis : axes) {
            const size_t length = std::string(at).find('.');
            const std::string word(at, length == std::string::npos ? std::strlen(at) : length);
            const Value *const begin = axis.values, *const end = begin + axis.count;
            const Value *found = word.empty() ? end : std::find_if(begin, end, [&](const Value &v) { return word == v.word; });
            if (found != end) {
                at += word.size() + (length == std::string::npos ? 0 : 1);
                expected.clear();
            } else {
                found = std::find_if(begin, end, [](const Value &v) { return !*v.word; });
                for (const Value *value = begin; value != end; ++value)
                    expected += (expected.empty() || !*value->word ? "" : ", ") + std::string(value->word);
            }
            if (found == end)
                return nfk::fail("nfkCodeOfName: '%.80s': '%.40s' is no word for its place; there are %s", name, word.c_str(),
                                 expected.c_str());
            a.*axis.field = found->value;
        }
        if (*at || (at > name && at[-1] == '.'))
            return nfk::fail(
                "nfkCodeOfName: '%.80s': no axis has '%.40s', or words stand in another order than shape, rect option, filter, "
                "blend, Shahei, multi, pers, rule, prescale",
                name, at);
        return codeOf(a);
    });
}

uint32_t nfkNearestCodes(uint32_t code, uint32_t *codes, uint32_t count)
{
    return nfk::guarded("nfkNearestCodes", [&]() -> uint32_t {
        if (!codes && count > 0)
            return nfk::fail("nfkNearestCodes: room for %u codes is asked for at a null address", count);
        const std::vector<uint32_t> found = nearest(code, count);
        std::copy(found.begin(), found.end(), codes);
        return uint32_t(found.size());
    });
}

uint32_t nfkExplainCode(uint32_t code, char *buffer, uint32_t size)
{
    return nfk::guarded("nfkExplainCode", [&] { return nfk::copyText(explanation(code), buffer, size); });
}
