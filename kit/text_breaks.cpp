#include "text_breaks.h"

#if NFK_LINE_BREAKS

#include <linebreak.h>
#include <thai/thbrk.h>
#include <thai/thwbrk.h>

#include <memory>
#include <string>

namespace nfk::text {
namespace {

bool isThai(char32_t character) { return character >= 0x0E00 && character <= 0x0E7F; }

// Thai has no spaces between words: a dictionary knows them.
void addThaiBreaks(std::span<const char32_t> run, char *breaks)
{
    static const std::unique_ptr<ThBrk, void (*)(ThBrk *)> dictionary(th_brk_new(nullptr), th_brk_delete);
    if (!dictionary)
        return;
    const std::wstring words(run.begin(), run.end());
    std::vector<int> positions(run.size());
    const int count = th_brk_wc_find_breaks(dictionary.get(), words.c_str(), positions.data(), positions.size());
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<size_t>(positions[static_cast<size_t>(i)]);
        if (at > 0 && at < run.size())
            breaks[at - 1] = 1;
    }
}

} // namespace

std::vector<char> lineBreaks(std::span<const char32_t> paragraph, hb_language_t language)
{
    std::vector<char> breaks(paragraph.size());
    static const bool ready = (init_linebreak(), true);
    static_cast<void>(ready);
    const std::vector<utf32_t> characters(paragraph.begin(), paragraph.end());
    set_linebreaks_utf32(characters.data(), characters.size(), language ? hb_language_to_string(language) : nullptr,
                         breaks.data());
    for (char &value : breaks)
        value = value == LINEBREAK_ALLOWBREAK || value == LINEBREAK_MUSTBREAK;
    for (size_t begin = 0; begin < paragraph.size();) {
        size_t end = begin;
        while (end < paragraph.size() && isThai(paragraph[end]))
            ++end;
        if (end > begin)
            addThaiBreaks(paragraph.subspan(begin, end - begin), breaks.data() + begin);
        begin = end + 1;
    }
    return breaks;
}

} // namespace nfk::text

#else // simpler rules, the same for all languages; Thai breaks at its spaces only

#include <algorithm>
#include <string_view>

namespace nfk::text {
namespace {

constexpr std::u32string_view spaces = U" \t\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2008\x2009\x200A\x200B\x205F\x3000";
constexpr std::u32string_view hyphens = U"-\xAD\x2010\x2012\x2013\x2014";
// What begins no line and what ends none, beside what Unicode has for closing and opening brackets.
constexpr std::u32string_view neverFirst =
    U"!,.:;?%/\x00B0\x2026\x2030\x2032\x2033"
    U"\x3001\x3002\x3005\x301C\x303B\x3041\x3043\x3045\x3047\x3049\x3063\x3083\x3085\x3087\x308E\x3095\x3096\x309B\x309C\x309D"
    U"\x309E"
    U"\x30A0\x30A1\x30A3\x30A5\x30A7\x30A9\x30C3\x30E3\x30E5\x30E7\x30EE\x30F5\x30F6\x30FB\x30FC\x30FD\x30FE"
    U"\xFF01\xFF05\xFF0C\xFF0E\xFF1A\xFF1B\xFF1F\xFF61\xFF64";
constexpr std::u32string_view neverLast = U"$\x00A3\x00A5\x20AC\xFF04\xFFE1\xFFE5";
constexpr std::u32string_view joiners = U"\x00A0\x200D\x2007\x202F\x2060\xFEFF";

bool isIn(std::u32string_view characters, char32_t character) { return characters.find(character) != std::u32string_view::npos; }

// Lines may end on either side of it: ideographs, kana, hangul.
bool isIdeograph(char32_t character)
{
    constexpr std::pair<char32_t, char32_t> ranges[] = {
        {0x2E80, 0x31FF}, {0x3200, 0x4DBF},   {0x4E00, 0xA4CF},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},  {0xFF01, 0xFF60},
        {0xFFE0, 0xFFE6}, {0x1B000, 0x1B16F}, {0x1F300, 0x1F64F}, {0x1F680, 0x1FAFF}, {0x20000, 0x3FFFD}};
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [&](const auto &range) { return character >= range.first && character <= range.second; });
}

bool mayBreak(char32_t before, char32_t after)
{
    hb_unicode_funcs_t *const functions = hb_unicode_funcs_get_default();
    const hb_unicode_general_category_t first = hb_unicode_general_category(functions, before);
    const hb_unicode_general_category_t second = hb_unicode_general_category(functions, after);
    if (isIn(spaces, after) || isIn(joiners, before) || isIn(joiners, after))
        return false;
    if (second == HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK || second == HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK ||
        second == HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK)
        return false;
    if (isIn(neverFirst, after) || second == HB_UNICODE_GENERAL_CATEGORY_CLOSE_PUNCTUATION ||
        second == HB_UNICODE_GENERAL_CATEGORY_FINAL_PUNCTUATION)
        return false;
    if (isIn(spaces, before))
        return true;
    if (isIn(neverLast, before) || first == HB_UNICODE_GENERAL_CATEGORY_OPEN_PUNCTUATION ||
        first == HB_UNICODE_GENERAL_CATEGORY_INITIAL_PUNCTUATION)
        return false;
    if (isIn(hyphens, before))
        return second != HB_UNICODE_GENERAL_CATEGORY_DECIMAL_NUMBER && !isIn(hyphens, after);
    return isIdeograph(before) || isIdeograph(after);
}

} // namespace

std::vector<char> lineBreaks(std::span<const char32_t> paragraph, hb_language_t)
{
    std::vector<char> breaks(paragraph.size(), 1);
    for (size_t i = 0; i + 1 < paragraph.size(); ++i)
        breaks[i] = mayBreak(paragraph[i], paragraph[i + 1]);
    return breaks;
}

} // namespace nfk::text

#endif
