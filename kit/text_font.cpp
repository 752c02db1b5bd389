#include "text_font.h"

#include "error.h"

#include <hb-ft.h>

#include <algorithm>

namespace nfk::text {
namespace {

Library openLibrary()
{
    static std::weak_ptr<FT_LibraryRec_> shared;
    if (Library library = shared.lock())
        return library;
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        return nullptr;
    Library owner(library, FT_Done_FreeType);
    shared = owner;
    return owner;
}

const char *stringOf(FcPattern *pattern, const char *property, int n = 0)
{
    FcChar8 *value = nullptr;
    return FcPatternGetString(pattern, property, n, &value) == FcResultMatch ? reinterpret_cast<const char *>(value) : nullptr;
}

bool isFamilyOf(FcPattern *pattern, const char *family)
{
    for (int n = 0; const char *name = stringOf(pattern, FC_FAMILY, n); ++n)
        if (FcStrCmpIgnoreCase(reinterpret_cast<const FcChar8 *>(name), reinterpret_cast<const FcChar8 *>(family)) == 0)
            return true;
    return false;
}

bool isSize(const char *function, int32_t pixels)
{
    return (pixels >= 1 && pixels <= NFK_FONT_MAX_PIXELS) ||
           fail("%s: %d pixels: a font has 1 to %d", function, int(pixels), NFK_FONT_MAX_PIXELS);
}

// 26.6 to whole pixels.
int32_t up(FT_Pos value) { return static_cast<int32_t>((value + 63) >> 6); }

} // namespace

// ---- faces ----

Face::Face(Library library, const char *path, int place, uint32_t count, FT_Face opened)
    : file(path), family(opened->family_name ? opened->family_name : ""), style(opened->style_name ? opened->style_name : ""),
      index(place), number(count), face(opened), shaper(hb_ft_font_create_referenced(opened)), library_(std::move(library))
{
    hb_ft_font_set_load_flags(shaper, glyphLoadFlags);
}

Face::~Face()
{
    hb_font_destroy(shaper);
    FT_Done_Face(face);
}

std::unique_ptr<Face> Face::open(const Library &library, const char *file, int index, int32_t pixels, uint32_t number)
{
    FT_Face face = nullptr;
    if (FT_New_Face(library.get(), file, index, &face) != 0)
        return nullptr;
    if (!FT_IS_SCALABLE(face) || FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(pixels)) != 0) {
        FT_Done_Face(face);
        return nullptr;
    }
    return std::unique_ptr<Face>(new Face(library, file, index, number, face));
}

bool Face::hasAll(std::span<const char32_t> characters) const
{
    return std::all_of(characters.begin(), characters.end(), [&](char32_t character) { return has(character); });
}

// ---- fonts ----

std::shared_ptr<Font> Font::byName(const char *function, const char *name, int32_t pixels)
{
    if (!isSize(function, pixels))
        return nullptr;
    name = name ? name : "";
    Library library = openLibrary();
    if (!library)
        return fail("%s: FreeType cannot start", function), nullptr;
    Pattern pattern(FcNameParse(reinterpret_cast<const FcChar8 *>(name)));
    if (!pattern)
        return fail("%s: '%s' is no name of a font", function, name), nullptr;
    const char *asked = stringOf(pattern.get(), FC_FAMILY);
    const std::string family = asked ? asked : "";
    FcPatternDel(pattern.get(), FC_PIXEL_SIZE);
    FcPatternAddDouble(pattern.get(), FC_PIXEL_SIZE, pixels);

    std::shared_ptr<Font> font(new Font(std::move(library), pixels));
    if (const char *language = stringOf(pattern.get(), FC_LANG))
        font->language_ = hb_language_from_string(language, -1);
    if (!font->sort(std::move(pattern)))
        return fail("%s: '%s': the system has no font at all; fontconfig looks for them", function, name), nullptr;
    for (size_t i = 0; i < font->candidates_.size(); ++i) {
        if (font->candidate(i)) {
            font->found_ = family.empty() || isFamilyOf(font->sorted_->fonts[i], family.c_str());
            return font;
        }
    }
    return fail("%s: '%s': the system has no font that can be scaled; fontconfig looks for them", function, name), nullptr;
}

std::shared_ptr<Font> Font::byFile(const char *function, const char *file, int index, int32_t pixels)
{
    if (!file)
        return fail("%s: the path is null", function), nullptr;
    if (!isSize(function, pixels))
        return nullptr;
    Library library = openLibrary();
    if (!library)
        return fail("%s: FreeType cannot start", function), nullptr;
    std::shared_ptr<Font> font(new Font(library, pixels));
    std::unique_ptr<Face> face = index < 0 ? nullptr : Face::open(library, file, index, pixels, 0);
    if (!face)
        return fail("%s: %s, face %d: there is no such file, no such face in it, or it cannot be scaled", function, file, index),
               nullptr;
    Pattern pattern(FcPatternCreate());
    if (!pattern)
        throw std::bad_alloc();
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8 *>(face->family.c_str()));
    font->found_ = true;
    font->faces_.push_back(std::move(face));
    font->sort(std::move(pattern)); // where there is none, none helps out
    return font;
}

bool Font::sort(Pattern pattern)
{
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result;
    sorted_.reset(FcFontSort(nullptr, pattern.get(), FcTrue, nullptr, &result));
    if (!sorted_ || sorted_->nfont == 0)
        return false;
    candidates_.resize(static_cast<size_t>(sorted_->nfont));
    return true;
}

Face *Font::candidate(size_t at)
{
    Candidate &candidate = candidates_[at];
    if (!candidate.tried) {
        candidate.tried = true;
        int index = 0;
        const char *file = stringOf(sorted_->fonts[at], FC_FILE);
        FcPatternGetInteger(sorted_->fonts[at], FC_INDEX, 0, &index);
        if (std::unique_ptr<Face> face =
                file ? Face::open(library_, file, index, pixels_, static_cast<uint32_t>(faces_.size())) : nullptr) {
            candidate.face = face.get();
            faces_.push_back(std::move(face));
        }
    }
    return candidate.face;
}

Face &Font::faceFor(std::span<const char32_t> cluster)
{
    if (primary().hasAll(cluster))
        return primary();
    if (cluster.size() == 1)
        if (const auto known = known_.find(cluster[0]); known != known_.end())
            return *known->second;

    Face *withBase = primary().has(cluster[0]) ? &primary() : nullptr;
    Face *best = nullptr;
    for (size_t i = 0; i < candidates_.size() && !best; ++i) {
        FcCharSet *set = nullptr;
        if (FcPatternGetCharSet(sorted_->fonts[i], FC_CHARSET, 0, &set) != FcResultMatch || !FcCharSetHasChar(set, cluster[0]))
            continue;
        Face *face = candidate(i);
        if (!face || !face->has(cluster[0]))
            continue;
        if (face->hasAll(cluster))
            best = face;
        else if (!withBase)
            withBase = face;
    }
    Face &face = best ? *best : withBase ? *withBase : primary();
    if (cluster.size() == 1)
        known_[cluster[0]] = &face;
    return face;
}

int32_t Font::ascent() const { return up(primary().face->size->metrics.ascender); }
int32_t Font::descent() const { return up(-primary().face->size->metrics.descender); }
int32_t Font::lineHeight() const { return std::max({1, up(primary().face->size->metrics.height), ascent() + descent()}); }

} // namespace nfk::text

// ---- interface ----

namespace {

NfkFont *owned(std::shared_ptr<nfk::text::Font> font) { return font ? new NfkFont{std::move(font)} : nullptr; }

} // namespace

NfkFont *nfkOpenFont(const char *name, int32_t pixels)
{
    return nfk::guarded("nfkOpenFont", [&] { return owned(nfk::text::Font::byName("nfkOpenFont", name, pixels)); });
}

NfkFont *nfkOpenFontFile(const char *path, int32_t face, int32_t pixels)
{
    return nfk::guarded("nfkOpenFontFile", [&] { return owned(nfk::text::Font::byFile("nfkOpenFontFile", path, face, pixels)); });
}

void nfkCloseFont(NfkFont *font) { delete font; }

int nfkGetFontInfo(const NfkFont *font, NfkFontInfo *info)
{
    if (!font || !info)
        return nfk::fail("nfkGetFontInfo: %s is null", font ? "the room for the result" : "the font");
    const nfk::text::Font &own = *font->font;
    const nfk::text::Face &face = own.primary();
    *info = {face.family.c_str(), face.style.c_str(), face.file.c_str(), face.index,
             own.found(),         own.ascent(),       own.descent(),     own.lineHeight()};
    return 1;
}

Texture *nfkGetFontAtlas(const NfkFont *font)
{
    if (!font)
        return nfk::fail("nfkGetFontAtlas: the font is null"), nullptr;
    return font->font->atlas().texture();
}
