#include "text_breaks.h"

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
