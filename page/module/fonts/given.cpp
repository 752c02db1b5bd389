#include "given.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SYSTEM_H

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <vector>

namespace {

struct Given {
    std::string name;
    std::vector<uint8_t> bytes;
};

// Fonts stay: the library keeps faces of them open.
std::deque<Given> &given()
{
    static auto *const fonts = new std::deque<Given>;
    return *fonts;
}

Given *named(const std::string &name)
{
    const auto found = std::find_if(given().begin(), given().end(), [&name](const Given &font) { return font.name == name; });
    return found == given().end() ? nullptr : &*found;
}

} // namespace

// ---- the page ----

bool page::giveFont(const uint8_t *bytes, uint32_t size, std::string &name)
{
    FT_Library library;
    FT_Face face;
    if (FT_Init_FreeType(&library) != 0)
        return false;
    const bool opened = FT_New_Memory_Face(library, bytes, FT_Long(size), 0, &face) == 0;
    const bool takes = opened && FT_IS_SCALABLE(face) && face->units_per_EM != 0;
    if (takes) {
        name = face->family_name ? face->family_name : "font";
        if (face->style_name && (face->style_flags & (FT_STYLE_FLAG_BOLD | FT_STYLE_FLAG_ITALIC)))
            name += std::string(" ") + face->style_name;
        std::replace_if(
            name.begin(), name.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
        name.resize(std::min<size_t>(name.size(), 28));
        const std::string first = name;
        for (int number = 2; named(name); ++number)
            name = first + " " + std::to_string(number);
        given().push_back({name, {bytes, bytes + size}});
    }
    FT_Done_FreeType(library);
    return takes;
}

// ---- fontconfig ----

struct FcPattern {
    std::vector<std::string> families;
    std::string file;
};
struct FcObjectSet {};

FcPattern *FcPatternCreate() { return new FcPattern; }
void FcPatternDestroy(FcPattern *pattern) { delete pattern; }

FcBool FcPatternAddString(FcPattern *pattern, const char *object, const FcChar8 *text)
{
    if (std::string(object) == FC_FAMILY)
        pattern->families.emplace_back(reinterpret_cast<const char *>(text));
    return FcTrue;
}
FcBool FcPatternAddInteger(FcPattern *, const char *, int) { return FcTrue; }
FcBool FcPatternAddBool(FcPattern *, const char *, FcBool) { return FcTrue; }

FcResult FcPatternGetString(const FcPattern *pattern, const char *object, int, FcChar8 **text)
{
    const std::string &value = std::string(object) == FC_FILE ? pattern->file : pattern->families.at(0);
    *text = reinterpret_cast<FcChar8 *>(const_cast<char *>(value.c_str()));
    return FcResultMatch;
}
FcResult FcPatternGetInteger(const FcPattern *, const char *, int, int *value)
{
    *value = 0;
    return FcResultMatch;
}

FcBool FcConfigSubstitute(FcConfig *, FcPattern *, FcMatchKind) { return FcTrue; }
void FcDefaultSubstitute(FcPattern *) {}

// A font of one of the names, else the first that was given.
FcPattern *FcFontMatch(FcConfig *, FcPattern *pattern, FcResult *result)
{
    const Given *found = nullptr;
    for (const std::string &family : pattern->families)
        found = found ? found : named(family);
    if (!found && !given().empty())
        found = &given().front();
    *result = found ? FcResultMatch : FcResultNoMatch;
    return found ? new FcPattern{{found->name}, found->name} : nullptr;
}

FcObjectSet *FcObjectSetBuild(const char *, ...) { return new FcObjectSet; }
void FcObjectSetDestroy(FcObjectSet *objects) { delete objects; }
FcFontSet *FcFontList(FcConfig *, FcPattern *pattern, FcObjectSet *)
{
    return new FcFontSet{!pattern->families.empty() && named(pattern->families[0]) ? 1 : 0};
}
void FcFontSetDestroy(FcFontSet *fonts) { delete fonts; }

// ---- FreeType's own seam: memory, and files, which are the fonts by their names ----

extern "C" FT_Memory FT_New_Memory();
extern "C" void FT_Done_Memory(FT_Memory memory);
extern "C" FT_Error FT_Stream_Open(FT_Stream stream, const char *name);

FT_Memory FT_New_Memory()
{
    static FT_MemoryRec_ memory = {nullptr, [](FT_Memory, long size) { return std::malloc(size_t(size)); },
                                   [](FT_Memory, void *block) { std::free(block); },
                                   [](FT_Memory, long, long size, void *block) { return std::realloc(block, size_t(size)); }};
    return &memory;
}
void FT_Done_Memory(FT_Memory) {}

FT_Error FT_Stream_Open(FT_Stream stream, const char *name)
{
    Given *const font = named(name);
    if (!font)
        return FT_Err_Cannot_Open_Resource;
    stream->base = font->bytes.data();
    stream->size = static_cast<unsigned long>(font->bytes.size());
    return FT_Err_Ok;
}
