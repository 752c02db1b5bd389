#include "text_layout.h"

#include "text_breaks.h"
#include "utf8.h"

#include <fribidi.h>

#include <algorithm>
#include <new>
#include <numeric>
#include <stdexcept>

namespace nfk::text {
namespace {

static_assert(sizeof(char32_t) == sizeof(FriBidiChar));

constexpr char32_t softHyphen = 0xAD, invisible = 0x2060;

bool endsParagraph(char32_t character)
{
    return (character >= '\n' && character <= '\r') || character == 0x85 || character == 0x2028 || character == 0x2029;
}

// What is drawn for a character: a space for a tab, nothing for other controls.
char32_t drawnFor(char32_t character)
{
    if (character == '\t')
        return ' ';
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) ? invisible : character;
}

hb_unicode_general_category_t categoryOf(char32_t character)
{
    return hb_unicode_general_category(hb_unicode_funcs_get_default(), character);
}

bool isVariation(char32_t character)
{
    return (character >= 0xFE00 && character <= 0xFE0F) || (character >= 0xE0100 && character <= 0xE01EF);
}

bool isMark(char32_t character)
{
    if (isVariation(character))
        return false;
    switch (categoryOf(character)) {
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK: return true;
    default: return false;
    }
}

// Characters that show by their effect on others, or not at all: joiners, direction marks.
bool isFormat(char32_t character)
{
    return categoryOf(character) == HB_UNICODE_GENERAL_CATEGORY_FORMAT || isVariation(character);
}

// Those that belong to the words around them.
bool isSpaceOrPunctuation(char32_t character)
{
    switch (categoryOf(character)) {
    case HB_UNICODE_GENERAL_CATEGORY_CONNECT_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_DASH_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_CLOSE_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_FINAL_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_INITIAL_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_OPEN_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_SPACE_SEPARATOR: return true;
    default: return false;
    }
}

bool isSpace(char32_t character)
{
    return categoryOf(character) == HB_UNICODE_GENERAL_CATEGORY_SPACE_SEPARATOR && character != 0xA0 && character != 0x202F;
}

// ---- one paragraph ----

// A stretch of one direction, script and face.
struct Item {
    size_t begin, end;
    FriBidiLevel level;
    hb_script_t script;
    Face *face;

    bool rightToLeft() const { return level & 1; }
};

class Paragraph {
public:
    Paragraph(Font &font, std::vector<char32_t> characters, std::vector<int32_t> bytes)
        : font_(font), text_(std::move(characters)), bytes_(std::move(bytes)), buffer_(hb_buffer_create(), hb_buffer_destroy)
    {
        findDirections();
        findScripts();
        findFaces();
        findItems();
        findAdvances();
        breaks_ = lineBreaks(text_, font.language());
    }

    bool rightToLeft() const { return FRIBIDI_IS_RTL(direction_); }
    int32_t missing() const { return missing_; }

    // Adds the paragraph's lines; limit 26.6, 0 for none. Their x is 0 still, and glyphs and carets count from there.
    void addLines(Layout &layout, int32_t limit)
    {
        size_t begin = 0;
        do {
            size_t end = limit > 0 ? endOfLine(begin, limit) : text_.size();
            bool hangs = end < text_.size();
            for (;;) {
                const size_t glyphs = layout.glyphs.size(), carets = layout.carets.size();
                addLine(layout, begin, end, hangs);
                if (limit == 0 || layout.lines.back().width <= limit)
                    break;
                size_t earlier = end;
                if (!hangs && isSpace(text_[end - 1])) {
                    hangs = true;
                } else {
                    // Shapes can change where a line ends, and its width with them: then it ends earlier.
                    earlier = breakBefore(begin, end - 1);
                    if (earlier == begin)
                        earlier = clusterBefore(begin, end - 1);
                    if (earlier == begin)
                        break;
                    hangs = true;
                }
                layout.lines.pop_back();
                layout.glyphs.resize(glyphs);
                layout.carets.resize(carets);
                end = earlier;
            }
            begin = end;
        } while (begin < text_.size());
    }

private:
    void findDirections()
    {
        const auto count = static_cast<FriBidiStrIndex>(text_.size());
        types_.resize(text_.size());
        levels_.resize(text_.size());
        if (text_.empty())
            return;
        std::vector<FriBidiBracketType> brackets(text_.size());
        const auto *characters = reinterpret_cast<const FriBidiChar *>(text_.data());
        fribidi_get_bidi_types(characters, count, types_.data());
        fribidi_get_bracket_types(characters, count, types_.data(), brackets.data());
        if (fribidi_get_par_embedding_levels_ex(types_.data(), brackets.data(), count, &direction_, levels_.data()) == 0)
            throw std::bad_alloc();
    }

    // Spaces, digits, marks and the like belong to the script before them, at the beginning to the one behind.
    void findScripts()
    {
        scripts_.resize(text_.size());
        hb_unicode_funcs_t *functions = hb_unicode_funcs_get_default();
        hb_script_t last = HB_SCRIPT_COMMON;
        for (size_t i = 0; i < text_.size(); ++i) {
            const hb_script_t script = hb_unicode_script(functions, text_[i]);
            if (script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED) {
                if (last == HB_SCRIPT_COMMON)
                    std::fill_n(scripts_.begin(), i, script);
                last = script;
            }
            scripts_[i] = last;
        }
    }

    // A character and the marks on it come from one face. Spaces and punctuation stay in the face of what is before them.
    void findFaces()
    {
        faces_.resize(text_.size());
        Face *current = &font_.primary();
        for (size_t begin = 0; begin < text_.size();) {
            size_t end = begin + 1;
            while (end < text_.size() && isMark(text_[end]))
                ++end;
            const std::span<const char32_t> cluster(text_.data() + begin, end - begin);
            if (!isFormat(cluster[0]) && !(isSpaceOrPunctuation(cluster[0]) && current->hasAll(cluster))) {
                current = &font_.faceFor(cluster);
                missing_ += !current->has(cluster[0]);
            }
            std::fill(faces_.begin() + static_cast<ptrdiff_t>(begin), faces_.begin() + static_cast<ptrdiff_t>(end), current);
            begin = end;
        }
    }

    void findItems()
    {
        for (size_t i = 0; i < text_.size(); ++i) {
            if (i > 0 && levels_[i] == levels_[i - 1] && scripts_[i] == scripts_[i - 1] && faces_[i] == faces_[i - 1])
                items_.back().end = i + 1;
            else
                items_.push_back({i, i + 1, levels_[i], scripts_[i], faces_[i]});
        }
    }

    // Leaves the glyphs of a part of an item in the buffer, from left to right.
    std::span<const hb_glyph_info_t> shape(const Item &item, size_t begin, size_t end)
    {
        hb_buffer_t *buffer = buffer_.get();
        hb_buffer_clear_contents(buffer);
        hb_buffer_add_utf32(buffer, reinterpret_cast<const uint32_t *>(text_.data()), static_cast<int>(text_.size()),
                            static_cast<unsigned>(begin), static_cast<int>(end - begin));
        hb_buffer_set_direction(buffer, item.rightToLeft() ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer, item.script);
        hb_buffer_set_language(buffer, font_.language() ? font_.language() : hb_language_get_default());
        hb_shape(item.face->shaper, buffer, nullptr, 0);
        if (!hb_buffer_allocation_successful(buffer))
            throw std::bad_alloc();
        unsigned count;
        const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(buffer, &count);
        return {infos, count};
    }

    const hb_glyph_position_t *positions() const { return hb_buffer_get_glyph_positions(buffer_.get(), nullptr); }

    // The advance of each cluster, at its first character, as long as no line ends.
    void findAdvances()
    {
        advances_.resize(text_.size());
        beginsCluster_.resize(text_.size());
        for (const Item &item : items_) {
            const auto infos = shape(item, item.begin, item.end);
            for (size_t i = 0; i < infos.size(); ++i) {
                advances_[infos[i].cluster] += positions()[i].x_advance;
                beginsCluster_[infos[i].cluster] = 1;
            }
        }
    }

    // The last place up to `end` where a line that begins at `begin` may end; `begin` if there is none.
    size_t breakBefore(size_t begin, size_t end) const
    {
        while (end > begin && !breaks_[end - 1])
            --end;
        return end;
    }

    // The last beginning of a cluster up to `end`; `begin` if there is none.
    size_t clusterBefore(size_t begin, size_t end) const
    {
        while (end > begin && !beginsCluster_[end])
            --end;
        return end;
    }

    size_t endOfLine(size_t begin, int32_t limit) const
    {
        int64_t width = 0;
        for (size_t i = begin; i < text_.size(); ++i) {
            width += advances_[i];
            if (isSpace(text_[i]) || width <= limit)
                continue;
            if (const size_t end = breakBefore(begin, i); end > begin)
                return end;
            // A word that is too long: at least one cluster of it.
            size_t end = clusterBefore(begin, i);
            if (end > begin)
                return end;
            for (end = begin + 1; end < text_.size() && !beginsCluster_[end];)
                ++end;
            return end;
        }
        return text_.size();
    }

    // `hangs`: spaces at its end do not count, as they do where a line is wrapped or they find no room.
    void addLine(Layout &layout, size_t begin, size_t end, bool hangs)
    {
        size_t visible = end;
        if (hangs)
            while (visible > begin && isSpace(text_[visible - 1]))
                --visible;
        const bool hyphen = end < text_.size() && visible > begin && text_[visible - 1] == softHyphen;
        if (hyphen)
            text_[visible - 1] = '-';

        Line line{};
        line.begin = bytes_[begin];
        line.end = bytes_[visible];
        line.rightToLeft = rightToLeft();
        line.firstGlyph = static_cast<int32_t>(layout.glyphs.size());
        line.firstCaret = static_cast<int32_t>(layout.carets.size());
        layout.carets.resize(layout.carets.size() + (visible - begin) + 1);
        Caret *carets = layout.carets.data() + line.firstCaret;
        for (size_t i = begin; i <= visible; ++i)
            carets[i - begin] = {bytes_[i], 0};

        int32_t pen = 0;
        for (const Item &part : visualOrder(begin, visible))
            addPart(layout, part, pen, carets - begin);
        carets[visible - begin].x = rightToLeft() ? 0 : pen;
        line.width = pen;
        line.glyphCount = static_cast<int32_t>(layout.glyphs.size()) - line.firstGlyph;
        line.caretCount = static_cast<int32_t>(visible - begin) + 1;
        layout.lines.push_back(line);
        if (hyphen)
            text_[visible - 1] = softHyphen;
    }

    // The items of a line from left to right.
    std::vector<Item> visualOrder(size_t begin, size_t end)
    {
        std::vector<Item> parts;
        if (begin == end)
            return parts;
        const auto count = static_cast<FriBidiStrIndex>(end - begin);
        const auto levelsAt = levels_.begin() + static_cast<ptrdiff_t>(begin);
        std::vector<FriBidiLevel> levels(levelsAt, levelsAt + count);
        std::vector<FriBidiStrIndex> order(end - begin);
        std::iota(order.begin(), order.end(), 0);
        // Marks stay behind their characters: shaping wants them there.
        if (fribidi_reorder_line(FRIBIDI_FLAGS_DEFAULT & ~FRIBIDI_FLAG_REORDER_NSM, types_.data() + begin, count, 0, direction_,
                                 levels.data(), nullptr, order.data()) == 0)
            throw std::bad_alloc();
        for (const FriBidiStrIndex at : order) {
            const size_t i = begin + static_cast<size_t>(at);
            const FriBidiLevel level = levels[static_cast<size_t>(at)];
            const bool joins = !parts.empty() && level == parts.back().level && scripts_[i] == parts.back().script &&
                               faces_[i] == parts.back().face;
            if (joins && i == parts.back().end)
                ++parts.back().end;
            else if (joins && i + 1 == parts.back().begin)
                --parts.back().begin;
            else
                parts.push_back({i, i + 1, level, scripts_[i], faces_[i]});
        }
        return parts;
    }

    // `carets` are by character.
    void addPart(Layout &layout, const Item &part, int32_t &pen, Caret *carets)
    {
        const auto infos = shape(part, part.begin, part.end);
        for (size_t i = 0; i < infos.size(); ++i) {
            const hb_glyph_position_t &position = positions()[i];
            layout.glyphs.push_back({part.face, infos[i].codepoint, pen + position.x_offset, -position.y_offset,
                                     position.x_advance, bytes_[infos[i].cluster]});
            // All glyphs of a cluster, then its characters share what they take up.
            const int32_t left = clusterLeft_ = i > 0 && infos[i].cluster == infos[i - 1].cluster ? clusterLeft_ : pen;
            pen += position.x_advance;
            if (pen > NFK_TEXT_MAX_SIZE * 64 || pen < -NFK_TEXT_MAX_SIZE * 64)
                throw std::length_error("a line is wider than 16777216 pixels: give the style a width");
            if (i + 1 < infos.size() && infos[i + 1].cluster == infos[i].cluster)
                continue;
            const size_t first = infos[i].cluster;
            size_t last = part.end;
            if (part.rightToLeft() ? i > 0 : i + 1 < infos.size())
                last = std::min(last, nextCluster(infos, i, part.rightToLeft()));
            const auto count = static_cast<int64_t>(last - first);
            for (size_t k = first; k < last; ++k) {
                const auto share = static_cast<int32_t>(int64_t{pen - left} * static_cast<int64_t>(k - first) / count);
                carets[k].x = part.rightToLeft() ? pen - share : left + share;
            }
        }
    }

    // The first character of the cluster that follows that of glyph i in the text.
    static size_t nextCluster(std::span<const hb_glyph_info_t> infos, size_t i, bool rightToLeft)
    {
        const uint32_t own = infos[i].cluster;
        while (infos[i].cluster == own) {
            if (rightToLeft ? i == 0 : i + 1 == infos.size())
                return SIZE_MAX;
            i += rightToLeft ? size_t(-1) : 1;
        }
        return infos[i].cluster;
    }

    Font &font_;
    std::vector<char32_t> text_;
    const std::vector<int32_t> bytes_; // where each character begins, and the end
    const std::unique_ptr<hb_buffer_t, void (*)(hb_buffer_t *)> buffer_;
    FriBidiParType direction_ = FRIBIDI_PAR_ON;
    std::vector<FriBidiCharType> types_;
    std::vector<FriBidiLevel> levels_;
    std::vector<hb_script_t> scripts_;
    std::vector<Face *> faces_;
    std::vector<Item> items_;
    std::vector<int64_t> advances_;
    std::vector<char> beginsCluster_, breaks_;
    int32_t missing_ = 0, clusterLeft_ = 0;
};

int32_t offsetOf(const Line &line, const NfkTextStyle &style, int32_t room)
{
    const bool right = style.align == NFK_ALIGN_RIGHT || (style.align == NFK_ALIGN_START && line.rightToLeft);
    const int32_t rest = room - line.width;
    // Whole pixels, also where a line is wider than its room.
    return right ? rest & ~63 : style.align == NFK_ALIGN_CENTRE ? (rest >> 1) & ~63 : 0;
}

} // namespace

Layout layOut(Font &font, std::string_view utf8, const NfkTextStyle &style)
{
    Layout layout{};
    const int32_t limit = style.width * 64;
    for (size_t at = 0;;) {
        std::vector<char32_t> characters;
        std::vector<int32_t> bytes;
        bool ended = true;
        while (at < utf8.size()) {
            const size_t begin = at;
            const char32_t character = nextCharacter(utf8, at);
            if (endsParagraph(character)) {
                at += character == '\r' && at < utf8.size() && utf8[at] == '\n';
                bytes.push_back(static_cast<int32_t>(begin));
                ended = false;
                break;
            }
            characters.push_back(drawnFor(character));
            bytes.push_back(static_cast<int32_t>(begin));
        }
        if (ended)
            bytes.push_back(static_cast<int32_t>(utf8.size()));
        Paragraph paragraph(font, std::move(characters), std::move(bytes));
        paragraph.addLines(layout, limit);
        layout.missing += paragraph.missing();
        if (ended)
            break;
    }

    int32_t widest = 0;
    for (const Line &line : layout.lines)
        widest = std::max(widest, line.width);
    layout.width = (widest + 63) >> 6;
    layout.lineHeight = style.lineHeight ? style.lineHeight : font.lineHeight();
    if (layout.lines.size() * uint64_t(layout.lineHeight) > NFK_TEXT_MAX_SIZE)
        throw std::length_error("the text is higher than 16777216 pixels");
    const int32_t room = limit > 0 ? limit : layout.width * 64;
    // What a line height of the host's has more than the face goes above and below in equal parts.
    int32_t baseline = (layout.lineHeight - font.ascent() - font.descent()) / 2 + font.ascent();
    if (!style.lineHeight)
        baseline = font.ascent();
    for (Line &line : layout.lines) {
        line.x = offsetOf(line, style, room);
        line.baseline = baseline;
        for (int32_t i = 0; i < line.glyphCount; ++i) {
            PlacedGlyph &glyph = layout.glyphs[static_cast<size_t>(line.firstGlyph + i)];
            glyph.x += line.x;
            glyph.y += baseline * 64;
        }
        for (int32_t i = 0; i < line.caretCount; ++i)
            layout.carets[static_cast<size_t>(line.firstCaret + i)].x += line.x;
        baseline += layout.lineHeight;
    }
    return layout;
}

} // namespace nfk::text
