#include "fonts.h"

#include "memory.h"

#include "glyph/page932.h"
#include "glyph/source.h"

#include <ninefold/ninefold.h>

#include <map>

#if NINEFOLD_GLYPHS && !defined(_WIN32)
#include <fontconfig/fontconfig.h>
#endif

namespace debug {

#if NINEFOLD_GLYPHS && !defined(_WIN32)
namespace {

const FcChar8 *fcString(const char *text) { return reinterpret_cast<const FcChar8 *>(text); }

// The file and the family that are taken for the name, or for none.
struct Match {
    std::string file, family;
};
Match matchOf(const char *name)
{
    Match match;
    FcPattern *const wanted = FcPatternCreate();
    if (name)
        FcPatternAddString(wanted, FC_FAMILY, fcString(name));
    FcPatternAddString(wanted, FC_FAMILY, fcString("monospace"));
    FcPatternAddString(wanted, FC_LANG, fcString("ja"));
    FcPatternAddBool(wanted, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result;
    if (FcPattern *const found = FcFontMatch(nullptr, wanted, &result)) {
        FcChar8 *text;
        if (FcPatternGetString(found, FC_FILE, 0, &text) == FcResultMatch)
            match.file = reinterpret_cast<const char *>(text);
        if (FcPatternGetString(found, FC_FAMILY, 0, &text) == FcResultMatch)
            match.family = reinterpret_cast<const char *>(text);
        FcPatternDestroy(found);
    }
    FcPatternDestroy(wanted);
    return match;
}

bool isListed(const char *name)
{
    FcPattern *const wanted = FcPatternCreate();
    FcPatternAddString(wanted, FC_FAMILY, fcString(name));
    FcObjectSet *const fields = FcObjectSetBuild(FC_FAMILY, nullptr);
    FcFontSet *const fonts = FcFontList(nullptr, wanted, fields);
    const bool listed = fonts && fonts->nfont > 0;
    if (fonts)
        FcFontSetDestroy(fonts);
    FcObjectSetDestroy(fields);
    FcPatternDestroy(wanted);
    return listed;
}

Face ask(const std::string &name)
{
    char family[3 * sizeof ninefold::glyph::FontDescription::name];
    const std::string utf8 = ninefold::glyph::utf8Of932(name.c_str(), family) ? family : name;
    // The first three are kinds of faces.
    if (utf8 == "monospace" || utf8 == "sans-serif" || utf8 == "serif" || isListed(utf8.c_str()))
        return {true, utf8, ""};
    // A name that changes what is taken is one that the configuration knows.
    const Match match = matchOf(utf8.c_str()), without = matchOf(nullptr);
    return {!match.file.empty() && match.file != without.file, utf8, match.family};
}

} // namespace

const Face &wantedFace()
{
    static const Face any{true, "", ""};
    if (!rs.fontName || !isReadable(rs.fontName, 1))
        return any;
    std::string name;
    while (name.size() + 1 < sizeof ninefold::glyph::FontDescription::name && rs.fontName[name.size()])
        name += rs.fontName[name.size()];
    if (name.empty())
        return any;
    static auto *const faces = new std::map<std::string, Face>;
    auto known = faces->find(name);
    if (known == faces->end())
        known = faces->emplace(name, ask(name)).first;
    return known->second;
}
#else
const Face &wantedFace()
{
    static const Face any{true, "", ""};
    return any;
}
#endif

} // namespace debug
