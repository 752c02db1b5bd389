#include "describe.h"

#include "codes.h"
#include "footprint.h"
#include "report.h"

#include "core/catalogue.h"

#include <ninefold/kit/codes.h>
#include <ninefold/kit/state.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace page {
namespace {

using debug::quoted;
using ninefold::Axes;

struct Value {
    int32_t value;
    const char *name, *word, *meaning;
};
#define PAGE_VALUE(name, value, word, meaning) {value, #name, word, meaning},
constexpr Value shapes[] = {NINEFOLD_SHAPES(PAGE_VALUE)}, perspectives[] = {NINEFOLD_PERSPECTIVES(PAGE_VALUE)},
                rules[] = {NINEFOLD_RULES(PAGE_VALUE)}, prescales[] = {NINEFOLD_PRESCALES(PAGE_VALUE)},
                filters[] = {NINEFOLD_FILTERS(PAGE_VALUE)}, rectOpts[] = {NINEFOLD_RECT_OPTS(PAGE_VALUE)},
                shaheis[] = {NINEFOLD_SHAHEIS(PAGE_VALUE)}, blends[] = {NINEFOLD_BLENDS(PAGE_VALUE)},
                multis[] = {NINEFOLD_MULTIS(PAGE_VALUE)}, multiOps[] = {NINEFOLD_MULTI_OPS(PAGE_VALUE)},
                banks[] = {NINEFOLD_MULTI_BANKS(PAGE_VALUE)}, curves[] = {NINEFOLD_CURVES(PAGE_VALUE)},
                stipples[] = {NINEFOLD_STIPPLES(PAGE_VALUE)},
                operators[] = {NINEFOLD_BLEND_OPERATORS(PAGE_VALUE){ownOperator, "average", PAGE_OWN_OPERATOR_WORD,
                                                                    PAGE_OWN_OPERATOR_MEANING}};
#undef PAGE_VALUE

template <class T>
struct List {
    const T *first;
    size_t count;
    template <size_t n>
    constexpr List(const T (&values)[n]) : first(values), count(n)
    {}
    const T *begin() const { return first; }
    const T *end() const { return first + count; }
};

struct Axis {
    const char *key, *setter;
    uint8_t Axes::*field;
    List<Value> values;
};
// In the order of the words of a name.
const Axis axes[] = {
    {"shape", "SetShapeMode", &Axes::shape, shapes},
    {"rectOpt", "SetRectOptMode", &Axes::rectOpt, rectOpts},
    {"filter", "SetFilterMode", &Axes::filter, filters},
    {"blend", "SetBlendMode", &Axes::blend, blends},
    {"shahei", "SetShaheiMode", &Axes::shahei, shaheis},
    {"multi", "SetMultiMode", &Axes::multi, multis},
    {"pers", "SetPersMode", &Axes::pers, perspectives},
    {"rule", "SetRuleAlphaMode", &Axes::rule, rules},
    {"prescale", "SetPrescaleMode", &Axes::prescale, prescales},
};

const char *nameIn(List<Value> values, int32_t value)
{
    const Value *const found = std::find_if(values.begin(), values.end(), [value](const Value &v) { return v.value == value; });
    return found == values.end() ? "?" : found->name;
}

// JSON: members and elements, separated.
class Json {
public:
    explicit Json(char open) : text_(1, open) {}
    Json &raw(const std::string &value)
    {
        if (text_.size() > 1)
            text_ += ',';
        text_ += value;
        return *this;
    }
    Json &member(const char *name, const std::string &value) { return raw(quoted(name) + ":" + value); }
    Json &text(const char *name, const std::string &value) { return member(name, quoted(value)); }
    Json &number(const char *name, int64_t value) { return member(name, std::to_string(value)); }
    std::string end() const { return text_ + (text_[0] == '{' ? '}' : ']'); }

private:
    std::string text_;
};

std::string hex(uint32_t value, const char *format = "0x%X")
{
    char text[16];
    std::snprintf(text, sizeof text, format, unsigned(value));
    return text;
}

std::string jsonOf(List<Value> values)
{
    Json list('[');
    for (const Value &value : values)
        list.raw(Json('{')
                     .number("value", value.value)
                     .text("name", value.name)
                     .text("word", value.word)
                     .text("meaning", value.meaning)
                     .end());
    return list.end();
}

std::string jsonOf(List<Choice> choices)
{
    Json list('[');
    for (const Choice &choice : choices)
        list.raw(Json('{').text("word", choice.word).text("title", choice.title).end());
    return list.end();
}

const char *meaningOf(const char *field)
{
    uint32_t count;
    const NfkField *const fields = nfkFields("RenderState", &count);
    for (uint32_t i = 0; i < count; ++i)
        if (std::strcmp(fields[i].name, field) == 0)
            return fields[i].meaning;
    return "";
}

// The combination with this value of the axis that differs in the fewest others.
Axes nearest(const Axes &from, const Axis &axis, uint8_t value)
{
    Axes best{};
    int fewest = 100;
    ninefold::forEachCombination([&](const Axes &a) {
        if (a.*axis.field != value)
            return;
        if (const int others = ninefold::differences(a, from); others < fewest)
            fewest = others, best = a;
    });
    return best;
}

// How many words of a field the kernel reads.
size_t wordsRead(const FieldInfo &wanted, const layer::Needs &n, const Axes &a, const State &state)
{
    const int32_t multiOp = state.multiOp, bank = state.bank;
    (void)n, (void)multiOp, (void)bank;
#define PAGE_FIELD(field, kind, least, most, reads)                                                                              \
    if (std::strcmp(wanted.name, #field) == 0)                                                                                   \
        return size_t(reads);
    PAGE_FIELDS(PAGE_FIELD)
#undef PAGE_FIELD
    return 0;
}

// The keys of the choices that matter to the kernel.
std::string choicesRead(const layer::Needs &n)
{
    Json keys('[');
    const auto add = [&keys](const char *key, bool read) {
        if (read)
            keys.raw(quoted(key));
    };
    add("back", true);
    add("tex0", n.tex0);
    add("tex1", n.tex1);
    add("tex2", n.tex2);
    add("plane", n.readsPlane);
    add("priority", n.readsZ || n.writesZ);
    add("table0", n.lineTable0);
    add("table1", n.lineTable1);
    add("shift", n.scanShift);
    add("operator", n.callsBlend);
    add("multi", n.callsMulti);
    add("bank", n.callsMulti);
    add("curve", n.ruleTest);
    add("stipple", n.drawMask || n.stippleSteps);
    return keys.end();
}

// 16.16 as a host writes it.
std::string fixed(uint32_t word)
{
    const auto value = int32_t(word);
    if (value % 0x10000 == 0)
        return value == 0 ? "0" : std::to_string(value / 0x10000) + " * 0x10000";
    return std::to_string(value);
}

std::string linesOf(const State &state, const layer::Needs &n)
{
    const Axes a = ninefold::axesOf(state.code);
    std::string text;
    for (const Axis &axis : axes) {
        const bool operatorOfLibrary = axis.field == &Axes::blend && a.blend == NINEFOLD_BLEND_CUSTOM && state.blendOperator >= 0;
        text += std::string(axis.setter) + "(" +
                (operatorOfLibrary ? nameIn(operators, state.blendOperator) : nameIn(axis.values, a.*axis.field)) + ");\n";
    }
    if (n.callsBlend && state.blendOperator == ownOperator)
        text += "rs.blendFunc = average; /* uint32_t average(uint32_t destination, uint32_t source) */\n";
    if (n.callsMulti)
        text += std::string("SetPrescaleMultiMode(") + nameIn(banks, state.bank) + ");\nSetBlendModeMulti(" +
                nameIn(multiOps, state.multiOp) + ");\n";
    if (n.drawMask || n.stippleSteps) {
        const char *const name = nameIn(stipples, state.stipple);
        text += "SetPresetDrawMask(" + (*name == '?' ? std::to_string(state.stipple) : std::string(name)) + ");\n";
    }
    text += '\n';
    const auto texture = [&](const char *field, bool read, Picture picture) {
        if (read)
            text += std::string("rs.") + field + " = " + pictureChoices[size_t(picture)].word + ";\n";
    };
    texture("tex0", n.tex0, state.tex0);
    texture("tex1", n.tex1, state.tex1);
    texture("tex2", n.tex2, state.tex2);
    if (n.readsPlane)
        text += "rs.shaheiPlane = plane;\n";
    if (n.readsZ || n.writesZ)
        text += "rs.zBuffer = priorities;\n";
    if (n.lineTable0)
        text += std::string("rs.lineTable0 = ") + tableChoices[size_t(state.table0)].word + ";\n";
    if (n.lineTable1)
        text += std::string("rs.lineTable1 = ") + tableChoices[size_t(state.table1)].word + ";\n";
    if (n.scanShift)
        text += "rs.scanShift = " + (state.shift == Shift::NONE ? "NULL" : std::string(shiftChoices[size_t(state.shift)].word)) +
                ";\n";
    if (n.ruleTest)
        text += std::string("rs.ruleCurve = ") + nameIn(curves, state.curve) + ";\n";
    for (const FieldInfo &field : stateFields) {
        const size_t count = wordsRead(field, n, a, state);
        const uint32_t *const words = wordsOf(state, field);
        const std::string name = std::string("rs.") + field.name;
        if (std::strcmp(field.name, "vertex") == 0) {
            for (size_t i = 0; i < count; i += 3)
                text += name + "[" + std::to_string(i / 3) + "] = (Vertex){" + std::to_string(int32_t(words[i])) + ", " +
                        std::to_string(int32_t(words[i + 1])) + ", " + std::to_string(int32_t(words[i + 2])) + "};\n";
        } else if (std::strncmp(field.name, "uv", 2) == 0) {
            for (size_t i = 0; i < count; i += 2)
                text += name + "[" + std::to_string(i / 2) + "] = (TexCoord){" + fixed(words[i]) + ", " + fixed(words[i + 1]) +
                        "};\n";
        } else {
            for (size_t i = 0; i < count; ++i)
                text += name + (field.words > 1 ? "[" + std::to_string(i) + "]" : "") + " = " +
                        (field.most == 0xFFFFFFFF ? hex(words[i], "0x%08X") : std::to_string(int32_t(words[i]))) + ";\n";
        }
    }
    return text + "\nDrawFunc kernel = SearchDrawFunc(CreateDrawCode()); /* " + hex(state.code) + " */\nkernel();\n";
}

const Quality &qualityOf(int32_t value)
{
    return *std::find_if(std::begin(qualities), std::end(qualities), [value](const Quality &one) { return one.value == value; });
}

// What the controls of a text have to know.
std::string describeTexts()
{
    Text first;
    parse("", first);
    Json qualityList('['), fields('[');
    for (const Quality &quality : qualities)
        qualityList.raw(Json('{').text("word", quality.word).text("title", quality.meaning).end());
    for (const TextField &field : textFields)
        fields.raw(Json('{')
                       .text("name", field.name)
                       .number("least", field.least)
                       .number("most", field.most)
                       .number("first", first.*field.field)
                       .text("meaning", meaningOf(field.name))
                       .end());
    return Json('{')
        .number("atlasSide", atlasSide)
        .number("longest", int64_t(longest))
        .text("back", pictureChoices[size_t(first.back)].word)
        .text("quality", qualityOf(first.fontQuality).word)
        .member("styles", jsonOf(styleChoices))
        .member("qualities", qualityList.end())
        .member("fields", fields.end())
        .end();
}

} // namespace

std::string describe()
{
    Json axisList('[');
    for (const Axis &axis : axes)
        axisList.raw(Json('{').text("key", axis.key).text("setter", axis.setter).member("values", jsonOf(axis.values)).end());
    Json fields('[');
#define PAGE_FIELD(field, kind, least, most, reads)                                                                              \
    fields.raw(Json('{')                                                                                                         \
                   .text("name", #field)                                                                                         \
                   .text("kind", #kind)                                                                                          \
                   .number("words", sizeof(RenderState::field) / 4)                                                              \
                   .number("least", least)                                                                                       \
                   .number("most", most)                                                                                         \
                   .text("meaning", meaningOf(#field))                                                                           \
                   .end());
    PAGE_FIELDS(PAGE_FIELD)
#undef PAGE_FIELD
    const std::string pictures = jsonOf(pictureChoices);
    const std::string choices = Json('{')
                                    .member("back", pictures)
                                    .member("tex0", pictures)
                                    .member("tex1", pictures)
                                    .member("tex2", pictures)
                                    .member("plane", jsonOf(planeChoices))
                                    .member("priority", jsonOf(priorityChoices))
                                    .member("table0", jsonOf(tableChoices))
                                    .member("table1", jsonOf(tableChoices))
                                    .member("shift", jsonOf(shiftChoices))
                                    .end();
    const std::string lists = Json('{')
                                  .member("operator", jsonOf(operators))
                                  .member("multi", jsonOf(multiOps))
                                  .member("bank", jsonOf(banks))
                                  .member("curve", jsonOf(curves))
                                  .member("stipple", jsonOf(stipples))
                                  .end();
    return Json('{')
        .number("version", NINEFOLD_VERSION)
        .number("codes", int64_t(ninefold::recordCount))
        .number("width", screenWidth)
        .number("height", screenHeight)
        .member("axes", axisList.end())
        .member("choices", choices)
        .member("lists", lists)
        .member("fields", fields.end())
        .member("text", describeTexts())
        .end();
}

std::string describeState(const State &state)
{
    const Axes a = ninefold::axesOf(state.code);
    const layer::Needs &n = layer::needsOf(layer::Id(layer::recordOf(state.code)));
    Json axisList('[');
    for (const Axis &axis : axes) {
        Json values('[');
        for (const Value &value : axis.values) {
            Axes changed = a;
            changed.*axis.field = uint8_t(value.value);
            const uint32_t code = ninefold::codeOf(changed);
            Json one('{');
            one.number("value", value.value);
            if (nfk::codeExists(code))
                one.text("leads", ninefold::nameOf(changed));
            else
                one.text("why", nfk::reasonAgainst(code))
                    .text("leads", ninefold::nameOf(nearest(changed, axis, uint8_t(value.value))));
            values.raw(one.end());
        }
        axisList.raw(Json('{').number("value", a.*axis.field).member("values", values.end()).end());
    }
    Json reads('{');
    for (const FieldInfo &field : stateFields)
        if (const size_t count = wordsRead(field, n, a, state))
            reads.number(field.name, int64_t(count));
    return Json('{')
        .text("name", ninefold::nameOf(a))
        .text("code", hex(state.code))
        .text("state", print(state))
        .member("axes", axisList.end())
        .member("reads", reads.end())
        .member("choices", choicesRead(n))
        .member("draws", n.shape == layer::Shape::nothing ? "false" : "true")
        .text("c", linesOf(state, n))
        .end();
}

std::string describeFamilies()
{
    Json list('[');
    ninefold::forEachFamily([&](Axes family) {
        family.blend = NINEFOLD_BLEND_COPY, family.multi = NINEFOLD_MULTI_NONE;
        for (const uint8_t shahei : ninefold::axis::shaheis)
            if (family.shahei = shahei; ninefold::exists(family)) {
                list.raw(quoted(ninefold::nameOf(family)));
                break;
            }
    });
    return list.end();
}

std::string describeMembers(uint32_t code)
{
    const Axes wanted = ninefold::axesOf(code);
    Json list('[');
    ninefold::forEachCombination([&](const Axes &a) {
        Axes same = wanted;
        same.shahei = a.shahei, same.blend = a.blend, same.multi = a.multi;
        if (same == a)
            list.raw(quoted(ninefold::nameOf(a)));
    });
    return list.end();
}

std::string describeText(const Text &text, const DrawnText &drawn)
{
    Json glyphs('[');
    for (const Glyph &glyph : drawn.glyphs) {
        Json one('{');
        one.text("code", hex(glyph.code));
        one.number("x", glyph.x).number("y", glyph.y).number("width", glyph.width).number("height", glyph.height);
        one.number("originX", glyph.originX).number("originY", glyph.originY).number("advance", glyph.advance);
        glyphs.raw(one.number("penX", glyph.penX).number("penY", glyph.penY).end());
    }
    std::string lines = "rs.fontName = " + (text.font.empty() ? "NULL" : quoted(text.font)) + ";\n";
    for (const TextField &field : textFields)
        lines += std::string("rs.") + field.name + " = " + std::to_string(text.*field.field) + ";\n";
    lines += std::string("rs.fontQuality = ") + qualityOf(text.fontQuality).name +
             ";\n"
             "rs.tex0 = atlas;\n"
             "rs.fontCursorX = rs.fontCursorY = rs.fontLineBottom = 0;\n";
    if (text.colour != 0xFFFFFFFF)
        lines += "rs.color[0] = " + hex(text.colour, "0x%08X") + ";\n";
    lines += "\nDrawFunc kernel = SearchDrawFunc(" + hex(drawingState(text).code) + "); /* " +
             ninefold::nameOf(ninefold::axesOf(drawingState(text).code)) +
             " */\n"
             "for (char *next = text; *next;) {\n"
             "    next = " +
             styles[size_t(text.style)].function +
             "(next); /* null: the atlas is full */\n"
             "    rs.vertex[0] = (Vertex){x + rs.glyphOriginX, y - rs.glyphOriginY, 0};\n"
             "    rs.vertex[1] = (Vertex){rs.vertex[0].x + rs.glyphWidth, rs.vertex[0].y + rs.glyphHeight, 0};\n"
             "    rs.uv0[0] = (TexCoord){rs.glyphX * 0x10000, rs.glyphY * 0x10000};\n"
             "    kernel();\n"
             "    x += rs.glyphAdvance;\n"
             "}\n";
    return Json('{').member("glyphs", glyphs.end()).member("full", drawn.full ? "true" : "false").text("c", lines).end();
}

} // namespace page
