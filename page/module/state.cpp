#include "state.h"

#include "core/catalogue.h"

#include <ninefold/kit/codes.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace page {
namespace {

// A key whose value is a word or a number of a list.
struct Named {
    const char *word;
    int32_t value;
};
#define PAGE_NAMED(name, value, word, meaning) {word, value},
constexpr Named blendOperators[] = {NINEFOLD_BLEND_OPERATORS(PAGE_NAMED){PAGE_OWN_OPERATOR_WORD, ownOperator}},
                multiOps[] = {NINEFOLD_MULTI_OPS(PAGE_NAMED)}, banks[] = {NINEFOLD_MULTI_BANKS(PAGE_NAMED)},
                curves[] = {NINEFOLD_CURVES(PAGE_NAMED)};
#undef PAGE_NAMED

template <size_t n>
const char *wordOf(const Named (&list)[n], int32_t value)
{
    for (const Named &one : list)
        if (one.value == value)
            return one.word;
    return "?";
}

using Texts = std::string;

// Matches `value` with the words of a list, or says what there is.
template <class Value, size_t n>
Texts choose(std::string_view key, std::string_view value, const Choice (&choices)[n], Value &to)
{
    Texts words;
    for (size_t i = 0; i < n; ++i) {
        if (value == choices[i].word) {
            to = Value(i);
            return "";
        }
        words += (i ? ", " : "") + std::string(choices[i].word);
    }
    return std::string(key) + "=" + std::string(value) + " is unknown; there are " + words;
}
template <size_t n>
Texts choose(std::string_view key, std::string_view value, const Named (&choices)[n], int32_t &to)
{
    Texts words;
    for (const Named &choice : choices) {
        if (value == choice.word) {
            to = choice.value;
            return "";
        }
        words += (words.empty() ? "" : ", ") + std::string(choice.word);
    }
    return std::string(key) + "=" + std::string(value) + " is unknown; there are " + words;
}

Texts outside(std::string_view key, std::string_view value, int64_t least, int64_t most)
{
    return std::string(key) + "=" + std::string(value) + ": values are whole numbers from " + std::to_string(least) + " to " +
           std::to_string(most);
}

// A number at the start of `text`, decimal or 0x and hexadecimal; it is cut off, with the comma behind it.
bool takeNumber(std::string_view &text, int64_t &number)
{
    const size_t end = text.find(',');
    const std::string part(text.substr(0, end));
    char *rest = nullptr;
    number = std::strtoll(part.c_str(), &rest, part.rfind("0x", 0) == 0 ? 16 : 10);
    if (part.empty() || part.size() > 16 || *rest || part[0] == ' ' || part[0] == '+')
        return false;
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return true;
}

Texts setField(const FieldInfo &field, std::string_view value, State &state)
{
    auto *words = reinterpret_cast<uint32_t *>(reinterpret_cast<char *>(&state.fields) + field.offset);
    std::string_view left = value;
    for (size_t i = 0; !left.empty(); ++i) {
        int64_t number;
        if (i == field.words)
            return std::string(field.name) + "=" + std::string(value) + ": there are " + std::to_string(field.words) + " values";
        if (!takeNumber(left, number) || number < field.least || number > field.most)
            return outside(field.name, value, field.least, field.most);
        words[i] = uint32_t(number);
    }
    return "";
}

template <class Visitor>
Texts eachPair(std::string_view text, Visitor &&visit)
{
    while (!text.empty()) {
        const size_t end = text.find('&');
        const std::string_view pair = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (pair.empty())
            continue;
        const size_t equals = pair.find('=');
        if (equals == std::string_view::npos)
            return "'" + std::string(pair) + "' has no value; states are KEY=VALUE joined by '&'";
        if (Texts wrong = visit(pair.substr(0, equals), pair.substr(equals + 1)); !wrong.empty())
            return wrong;
    }
    return "";
}

// The choices; `known` is cleared where the key is none of them.
Texts setChoice(std::string_view key, std::string_view value, State &state, bool &known)
{
    known = true;
    if (key == "back")
        return choose(key, value, pictureChoices, state.back);
    if (key == "tex0")
        return choose(key, value, pictureChoices, state.tex0);
    if (key == "tex1")
        return choose(key, value, pictureChoices, state.tex1);
    if (key == "tex2")
        return choose(key, value, pictureChoices, state.tex2);
    if (key == "plane")
        return choose(key, value, planeChoices, state.plane);
    if (key == "priority")
        return choose(key, value, priorityChoices, state.priority);
    if (key == "table0")
        return choose(key, value, tableChoices, state.table0);
    if (key == "table1")
        return choose(key, value, tableChoices, state.table1);
    if (key == "shift")
        return choose(key, value, shiftChoices, state.shift);
    if (key == "operator")
        return choose(key, value, blendOperators, state.blendOperator);
    if (key == "multi")
        return choose(key, value, multiOps, state.multiOp);
    if (key == "bank")
        return choose(key, value, banks, state.bank);
    if (key == "curve")
        return choose(key, value, curves, state.curve);
    if (key == "stipple") {
        int64_t number;
        std::string_view left = value;
        if (!takeNumber(left, number) || !left.empty() || number < 0 || number > NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS)
            return outside(key, value, 0, NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS);
        state.stipple = int32_t(number);
        return "";
    }
    known = false;
    return "";
}

void placeTexels(TexCoord (&uv)[4], bool triangle, bool corners, uint32_t wide, uint32_t high)
{
    const auto w = int32_t(wide << 16), h = int32_t(high << 16);
    if (triangle)
        uv[0] = {w / 2, 0}, uv[1] = {0, h}, uv[2] = {w, h}, uv[3] = {0, 0};
    else if (corners)
        uv[0] = {0, 0}, uv[1] = {w, 0}, uv[2] = {w / 8, h}, uv[3] = {w - w / 8, h};
    else
        uv[0] = {0, 0}, uv[1] = {w, h}, uv[2] = uv[3] = {0, 0};
}

// What makes a picture of each combination. The pictures are chosen before the texels, which depend on their sizes.
void setDefaults(State &state)
{
    const ninefold::Axes a = ninefold::axesOf(state.code);
    state.back = Picture::COFFEE;
    state.tex0 = a.rectOpt == NINEFOLD_RECT_RUNS || a.rectOpt == NINEFOLD_RECT_PLANE_RUNS                        ? Picture::HORSE
                 : a.pers || a.filter == NINEFOLD_FILTER_LINE_POINT || a.filter == NINEFOLD_FILTER_LINE_BILINEAR ? Picture::BRICKS
                                                                                                                 : Picture::MATTE;
    state.tex1 = Picture::STARS;
    state.tex2 = Picture::RINGS;
    state.plane = Plane::DISC;
    state.priority = Priority::RAMP;
    state.table0 = state.table1 = Table::WAVE;
    state.shift = Shift::NONE;
    state.blendOperator = NINEFOLD_BLEND_XOR;
    state.multiOp = NINEFOLD_MULTI_OP_MUL2;
    state.bank = NINEFOLD_MULTI_BANK_PLAIN;
    state.curve = NINEFOLD_CURVE_LINEAR;
    state.stipple = ninefold::testsStipple(a.shahei) ? 127 : NINEFOLD_STIPPLE_ALL;
}

void setFieldDefaults(State &state)
{
    const ninefold::Axes a = ninefold::axesOf(state.code);
    RenderState &f = state.fields;
    f = RenderState{};
    const bool triangle = a.shape == NINEFOLD_SHAPE_TRIANGLE;
    if (triangle)
        f.vertex[0] = {128, 12, a.pers ? 900 : 256}, f.vertex[1] = {16, 176, 256}, f.vertex[2] = {240, 160, 300};
    else
        f.vertex[0] = {20, 16, 256}, f.vertex[1] = {236, 176, 256};
    f.vertex[3] = {0, 0, 256};
    f.clipRight = screenWidth, f.clipBottom = screenHeight;
    const uint32_t colors[] = {0xFF5020, 0x20C0FF, 0xFFE040, 0x6040FF};
    std::transform(std::begin(colors), std::end(colors), f.color,
                   [&](uint32_t colour) { return colour | (a.shape == NINEFOLD_SHAPE_LINE ? 0xFF000000 : 0xC0000000); });
    const bool corners = a.rectOpt == NINEFOLD_RECT_CORNERS;
    const auto texels = [&](TexCoord(&uv)[4], Picture picture, bool square, bool four) {
        const Texture *const texture = textureOf(picture);
        // Levels show where texels are closer than pixels.
        const uint32_t times = ninefold::readsLevels(a.filter) ? 4 : 1;
        if (!square && texture)
            placeTexels(uv, triangle, four, texture->origWidth * times, texture->origHeight * times);
        else
            placeTexels(uv, triangle, four, 256, 256);
    };
    texels(f.uv0, state.tex0, false, corners);
    texels(f.uv1, state.tex1, false, corners);
    texels(f.uv2, state.tex2, true, false);
    f.ruleThreshold = 96, f.ruleWidth = 64;
    f.blendAlpha = 160, f.blendAlphaRgb = 160;
    f.prescale = 160, f.prescaleMulti = 128;
    f.writeMask = 0xFF00FF00;
    f.zRef = 96;
    f.mosaicSize = f.mosaicSize1 = 8;
}

Texts validity(const State &state)
{
    const RenderState &f = state.fields;
    if (f.clipLeft > f.clipRight || f.clipTop > f.clipBottom)
        return "the clip rectangle is inside out: its right and bottom must not be less than its left and top";
    if (ninefold::axesOf(state.code).pers)
        for (int i = 0; i < 3; ++i) {
            if (f.vertex[i].z < 1)
                return "vertex[" + std::to_string(i) + "].z is " + std::to_string(f.vertex[i].z) +
                       "; depths of a perspective triangle are at least 1";
            for (const TexCoord &uv : {f.uv0[i], f.uv1[i]})
                if (uv.u < 0 || uv.v < 0)
                    return "texture positions under perspective must not be negative";
        }
    for (const Picture picture : {state.back, state.tex0, state.tex1, state.tex2})
        if (!textureOf(picture))
            return "the picture '" + std::string(pictureChoices[size_t(picture)].word) + "' is not there; drop a file first";
    return "";
}

} // namespace

std::string parse(std::string_view text, State &state)
{
    std::string name;
    eachPair(text, [&](std::string_view key, std::string_view value) -> Texts {
        if (key == "name")
            name = value;
        return "";
    });
    if (name.empty())
        return "name is missing: the words of a combination, such as rect.stretch.bilinear.alpha";
    state.code = nfkCodeOfName(name.c_str());
    if (!state.code)
        return "name=" + name + " is none";
    if (!nfkCodeExists(state.code))
        return "name=" + name + ": there is no kernel for it";
    setDefaults(state);
    Texts wrong = eachPair(text, [&](std::string_view key, std::string_view value) {
        bool known;
        return setChoice(key, value, state, known);
    });
    if (!wrong.empty())
        return wrong;
    setFieldDefaults(state);
    wrong = eachPair(text, [&](std::string_view key, std::string_view value) -> Texts {
        State scratch;
        bool known = key == "name";
        if (!known)
            setChoice(key, value, scratch, known);
        if (known)
            return "";
        for (const FieldInfo &field : stateFields)
            if (key == field.name)
                return setField(field, value, state);
        return "there is no key '" + std::string(key) + "'";
    });
    return wrong.empty() ? validity(state) : wrong;
}

std::string print(const State &state)
{
    std::string text = "name=" + ninefold::nameOf(ninefold::axesOf(state.code));
    const auto add = [&text](const char *key, const std::string &value) { text += std::string("&") + key + "=" + value; };
    add("back", pictureChoices[size_t(state.back)].word);
    add("tex0", pictureChoices[size_t(state.tex0)].word);
    add("tex1", pictureChoices[size_t(state.tex1)].word);
    add("tex2", pictureChoices[size_t(state.tex2)].word);
    add("plane", planeChoices[size_t(state.plane)].word);
    add("priority", priorityChoices[size_t(state.priority)].word);
    add("table0", tableChoices[size_t(state.table0)].word);
    add("table1", tableChoices[size_t(state.table1)].word);
    add("shift", shiftChoices[size_t(state.shift)].word);
    add("operator", wordOf(blendOperators, state.blendOperator));
    add("multi", wordOf(multiOps, state.multiOp));
    add("bank", wordOf(banks, state.bank));
    add("curve", wordOf(curves, state.curve));
    add("stipple", std::to_string(state.stipple));
    for (const FieldInfo &field : stateFields) {
        std::string value;
        for (size_t i = 0; i < field.words; ++i) {
            const uint32_t word = wordsOf(state, field)[i];
            value += (i ? "," : "") + (field.least < 0 ? std::to_string(int32_t(word)) : std::to_string(word));
        }
        add(field.name, value);
    }
    return text;
}

} // namespace page
