// The interface of text: arguments, and what a layout tells about itself.
#include "text.h"

#include "error.h"

#include <algorithm>
#include <cstring>

namespace nfk::text {
namespace {

constexpr NfkTextStyle plain = {0xFFFFFFFF, 0, 0, NFK_ALIGN_START, 0, 0};

bool isStyle(const char *function, const NfkTextStyle &style)
{
    if (style.rim < 0 || style.rim > NFK_TEXT_MAX_RIM)
        return fail("%s: rim %d: it is 0 to %d pixels", function, int(style.rim), NFK_TEXT_MAX_RIM);
    if (style.width < 0 || style.width > NFK_TEXT_MAX_SIZE)
        return fail("%s: width %d: it is 0 to %d pixels", function, int(style.width), NFK_TEXT_MAX_SIZE);
    if (style.lineHeight < 0 || style.lineHeight > NFK_TEXT_MAX_SIZE)
        return fail("%s: line height %d: it is 0 to %d pixels", function, int(style.lineHeight), NFK_TEXT_MAX_SIZE);
    switch (style.align) {
#define NFK_CASE(name, value, word, meaning) case name:
        NFK_ALIGNMENTS(NFK_CASE)
#undef NFK_CASE
        return true;
    default: return fail("%s: alignment %d: there is no such NFK_ALIGN_...", function, int(style.align));
    }
}

std::unique_ptr<NfkText> make(const char *function, NfkFont *font, const char *utf8, const NfkTextStyle *style)
{
    if (!font || !utf8)
        return fail("%s: the %s is null", function, font ? "text" : "font"), nullptr;
    const NfkTextStyle &used = style ? *style : plain;
    if (!isStyle(function, used))
        return nullptr;
    const size_t length = strnlen(utf8, size_t{NFK_TEXT_MAX_BYTES} + 1);
    if (length > NFK_TEXT_MAX_BYTES)
        return fail("%s: the text is longer than %d bytes: divide it", function, NFK_TEXT_MAX_BYTES), nullptr;
    return std::make_unique<NfkText>(font->font, layOut(*font->font, {utf8, length}, used), used, static_cast<int32_t>(length));
}

template <class Element>
const Element *elementOf(const char *function, const char *kind, const std::vector<Element> &elements, int32_t at)
{
    if (at >= 0 && static_cast<size_t>(at) < elements.size())
        return &elements[static_cast<size_t>(at)];
    return fail("%s: %s %d: the text has %llu", function, kind, int(at), static_cast<unsigned long long>(elements.size())),
           nullptr;
}

bool areThere(const char *function, const void *text, const void *out)
{
    return (text && out) || fail("%s: the %s is null", function, text ? "room for the result" : "text");
}

} // namespace
} // namespace nfk::text

using nfk::fail;
using nfk::guarded;

NfkText *nfkMakeText(NfkFont *font, const char *utf8, const NfkTextStyle *style)
{
    return guarded("nfkMakeText", [&] { return nfk::text::make("nfkMakeText", font, utf8, style).release(); });
}

void nfkDeleteText(NfkText *text) { delete text; }

int nfkMeasureText(NfkText *text, NfkTextSize *size)
{
    return guarded("nfkMeasureText", [&]() -> int {
        if (!nfk::text::areThere("nfkMeasureText", text, size))
            return 0;
        std::vector<nfk::text::Stamp> stamps;
        if (!nfk::text::gather("nfkMeasureText", *text, -1, stamps))
            return 0;
        const nfk::text::Layout &layout = text->layout;
        const auto lines = static_cast<int32_t>(layout.lines.size());
        *size = {layout.width,   layout.lineHeight * lines, lines, static_cast<int32_t>(layout.glyphs.size()),
                 layout.missing, nfk::text::boxOf(stamps)};
        return 1;
    });
}

int nfkGetTextLine(const NfkText *text, int32_t line, NfkTextLine *out)
{
    if (!nfk::text::areThere("nfkGetTextLine", text, out))
        return 0;
    const nfk::text::Line *found = nfk::text::elementOf("nfkGetTextLine", "line", text->layout.lines, line);
    if (!found)
        return 0;
    *out = {found->begin, found->end, found->x >> 6, (found->width + 63) >> 6, found->baseline, found->rightToLeft};
    return 1;
}

int nfkGetTextGlyph(const NfkText *text, int32_t glyph, NfkTextGlyph *out)
{
    if (!nfk::text::areThere("nfkGetTextGlyph", text, out))
        return 0;
    const nfk::text::PlacedGlyph *found = nfk::text::elementOf("nfkGetTextGlyph", "glyph", text->layout.glyphs, glyph);
    if (!found)
        return 0;
    const auto &lines = text->layout.lines;
    const auto after = std::upper_bound(lines.begin(), lines.end(), glyph,
                                        [](int32_t number, const nfk::text::Line &line) { return number < line.firstGlyph; });
    *out = {found->glyph, found->face->family.c_str(), static_cast<int32_t>(after - lines.begin()) - 1, found->byte, found->x,
            found->y};
    return 1;
}

int nfkGetTextCaret(const NfkText *text, int32_t byte, NfkRect *out)
{
    if (!nfk::text::areThere("nfkGetTextCaret", text, out))
        return 0;
    if (byte < 0 || byte > text->length)
        return fail("nfkGetTextCaret: byte %d: the text has %d", int(byte), int(text->length));
    // The last line that begins at or before the byte, and its last caret that does; hanging spaces have that of the line's end.
    const nfk::text::Layout &layout = text->layout;
    const auto line = std::upper_bound(layout.lines.begin(), layout.lines.end(), byte,
                                       [](int32_t at, const nfk::text::Line &one) { return at < one.begin; }) -
                      1;
    const auto first = layout.carets.begin() + line->firstCaret;
    const auto caret = std::upper_bound(first, first + line->caretCount, byte,
                                        [](int32_t at, const nfk::text::Caret &one) { return at < one.byte; }) -
                       1;
    *out = {caret->x >> 6, static_cast<int32_t>(line - layout.lines.begin()) * layout.lineHeight, 0, layout.lineHeight};
    return 1;
}

int nfkDrawText(NfkText *text, int32_t x, int32_t y, int32_t alpha, int32_t bytes)
{
    return guarded("nfkDrawText", [&]() -> int {
        if (!text)
            return fail("nfkDrawText: the text is null");
        return nfk::text::draw("nfkDrawText", *text, x, y, alpha, bytes);
    });
}

int nfkWrite(NfkFont *font, const char *utf8, int32_t x, int32_t y, const NfkTextStyle *style)
{
    return guarded("nfkWrite", [&]() -> int {
        const std::unique_ptr<NfkText> text = nfk::text::make("nfkWrite", font, utf8, style);
        return text && nfk::text::draw("nfkWrite", *text, x, y, 255, -1);
    });
}
