#include "text.h"

#include "pictures.h"
#include "scene.h"
#include "state.h"

#include "core/catalogue.h"

#include <ninefold/kit/api.h>
#include <ninefold/kit/text.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace page {
namespace {

constexpr int32_t margin = 8;

std::string decoded(std::string_view text)
{
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const std::string digits(text.substr(std::min(i + 1, text.size()), 2));
        char *rest = nullptr;
        const long byte = std::strtol(digits.c_str(), &rest, 16);
        if (text[i] == '%' && rest == digits.c_str() + 2) {
            result += char(byte);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

// The place of `word` in a list whose elements have one, or what there is.
template <class List>
std::string choose(const std::string &key, const std::string &word, const List &list, size_t &at)
{
    std::string words;
    at = 0;
    for (const auto &one : list) {
        if (word == one.word)
            return "";
        words += (words.empty() ? "" : ", ") + std::string(one.word);
        ++at;
    }
    return key + "=" + word + " is unknown; there are " + words;
}

std::string number(const std::string &key, const std::string &value, int64_t least, int64_t most, int64_t &to)
{
    char *rest = nullptr;
    to = std::strtoll(value.c_str(), &rest, value.rfind("0x", 0) == 0 ? 16 : 10);
    if (value.empty() || *rest || to < least || to > most)
        return key + "=" + value + ": values are whole numbers from " + std::to_string(least) + " to " + std::to_string(most);
    return "";
}

std::string set(const std::string &key, const std::string &value, Text &text)
{
    size_t at;
    int64_t value64 = 0;
    std::string wrong;
    if (key == "text") {
        text.text = value;
        return value.size() > longest ? "the text has more than " + std::to_string(longest) + " bytes" : "";
    }
    if (key == "font") {
        text.font = value;
        return value.size() > 31 ? "font=" + value + " has more than 31 bytes" : "";
    }
    if (key == "style") {
        if (wrong = choose(key, value, styleChoices, at); wrong.empty())
            text.style = Style(at);
        return wrong;
    }
    if (key == "back") {
        if (wrong = choose(key, value, pictureChoices, at); wrong.empty())
            text.back = Picture(at);
        return wrong.empty() && !textureOf(text.back) ? "the picture '" + value + "' is not there; drop a file first" : wrong;
    }
    if (key == "fontQuality") {
        if (wrong = choose(key, value, qualities, at); wrong.empty())
            text.fontQuality = qualities[at].value;
        return wrong;
    }
    if (key == "color") {
        wrong = number(key, value, 0, 0xFFFFFFFF, value64);
        text.colour = uint32_t(value64);
        return wrong;
    }
    for (const TextField &field : textFields)
        if (key == field.name) {
            wrong = number(key, value, field.least, field.most, value64);
            text.*field.field = int32_t(value64);
            return wrong;
        }
    return "there is no key '" + key + "'";
}

Texture *atlas()
{
    static Texture *const one = CreateTexture(atlasSide, atlasSide);
    return one;
}

} // namespace

State drawingState(const Text &text)
{
    State state;
    parse(text.colour == 0xFFFFFFFF ? "name=rect.unit.point.alphafast" : "name=rect.unit.point.alphafast.colour&multi=mul",
          state);
    state.back = text.back;
    return state;
}

std::string parse(std::string_view state, Text &text)
{
    text = {"", "", Style::PLAIN, Picture::COFFEE, 32, 400, 0, NINEFOLD_QUALITY_GREY64, 0xFFFFFFFF};
    while (!state.empty()) {
        const size_t end = state.find('&');
        const std::string_view pair = state.substr(0, end);
        state = end == std::string_view::npos ? std::string_view() : state.substr(end + 1);
        const size_t equals = pair.find('=');
        if (pair.empty())
            continue;
        if (equals == std::string_view::npos)
            return "'" + std::string(pair) + "' has no value; a text is KEY=VALUE joined by '&'";
        std::string wrong = set(std::string(pair.substr(0, equals)), decoded(pair.substr(equals + 1)), text);
        if (!wrong.empty())
            return wrong;
    }
    std::vector<char> bytes(longest + 1);
    return nfkEncodePage932(text.text.c_str(), bytes.data(), uint32_t(bytes.size())) ? "" : nfkError();
}

DrawnText draw(const Text &text)
{
    std::vector<char> bytes(longest + 1);
    nfkEncodePage932(text.text.c_str(), bytes.data(), uint32_t(bytes.size()));
    std::string font = text.font;

    const State state = drawingState(text);
    clearScreen(state);
    setState(state);
    ClearTexture(atlas());
    rs.tex0 = atlas();
    rs.color[0] = text.colour;
    rs.fontName = font.data();
    rs.fontHeight = text.fontHeight;
    rs.fontWeight = text.fontWeight;
    rs.fontItalic = uint32_t(text.fontItalic);
    rs.fontQuality = text.fontQuality;
    rs.fontCursorX = rs.fontCursorY = rs.fontLineBottom = 0;

    const DrawFunc kernel = SearchDrawFunc(state.code);
    DrawnText drawn{{}, false};
    std::vector<int32_t> feeds; // line feeds before each glyph
    int32_t feedsNow = 0;
    for (char *next = bytes.data(); *next;) {
        if (*next == '\n') {
            ++feedsNow, ++next;
            continue;
        }
        next = styles[size_t(text.style)].create(next);
        if (!next) {
            drawn.full = true;
            break;
        }
        const uint32_t code = rs.glyphCode < 0x10000 ? rs.glyphCode : rs.glyphCode & 0xFF; // single bytes are sign-extended
        drawn.glyphs.push_back(
            {code, rs.glyphX, rs.glyphY, rs.glyphWidth, rs.glyphHeight, rs.glyphOriginX, rs.glyphOriginY, rs.glyphAdvance, 0, 0});
        feeds.push_back(feedsNow);
        feedsNow = 0;
    }

    // A word goes to the next line as a whole where it fits there.
    const int32_t size = std::abs(text.fontHeight ? text.fontHeight : 16), line = text.fontHeight < 0 ? size * 5 / 4 : size;
    constexpr int32_t right = screenWidth - margin;
    int32_t x = margin, y = margin + line * 4 / 5; // the pen, on the base line
    for (size_t i = 0; i < drawn.glyphs.size(); ++i) {
        Glyph &glyph = drawn.glyphs[i];
        int32_t word = glyph.advance;
        if (i && drawn.glyphs[i - 1].code == ' ')
            for (size_t k = i + 1; k < drawn.glyphs.size() && drawn.glyphs[k].code != ' ' && !feeds[k]; ++k)
                word += drawn.glyphs[k].advance;
        const bool wraps =
            glyph.code != ' ' && x > margin && (x + glyph.advance > right || (x + word > right && margin + word <= right));
        if (feeds[i] || wraps)
            x = margin, y += line * std::max(feeds[i], 1);
        glyph.penX = x, glyph.penY = y;
        rs.vertex[0] = {x + glyph.originX, y - glyph.originY, 0};
        rs.vertex[1] = {rs.vertex[0].x + glyph.width, rs.vertex[0].y + glyph.height, 0};
        rs.uv0[0] = {glyph.x * 0x10000, glyph.y * 0x10000};
        kernel();
        x += glyph.advance;
    }
    rs.fontName = nullptr;
    return drawn;
}

const uint32_t *atlasPixels() { return atlas()->pixels; }

} // namespace page
