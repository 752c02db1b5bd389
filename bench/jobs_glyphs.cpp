// Glyphs into an atlas, against FreeType alone.
#include "jobs.h"
#include "scene.h"

#include <cstring>
#include <memory>

#if BENCH_GLYPHS
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#endif

namespace bench {

#if BENCH_GLYPHS

namespace {

constexpr char fontName[] = "VL Gothic";
// A line of Latin letters, digits, kana and kanji in both codings.
constexpr char text[] = "Text 123\x93\xFA\x96\x7B\x8C\xEA\x82\xCC\x95\xB6\x8E\x9A\x82\xF0\x8F\x91\x82\xAD";
constexpr FT_ULong characters[] = {'T',    'e',    'x',    't',    ' ',    '1',    '2',    '3',   0x65E5,
                                   0x672C, 0x8A9E, 0x306E, 0x6587, 0x5B57, 0x3092, 0x66F8, 0x304F};

struct Font {
    const char *name;
    int em, weight, quality;
    bool italic;
};

Texture *atlas()
{
    static Texture *const made = CreateTexture(1024, 1024);
    return made;
}

void prepareFont(const Font &font)
{
    static char name[sizeof fontName];
    std::memcpy(name, fontName, sizeof fontName);
    rs.tex0 = atlas();
    rs.fontName = name;
    rs.fontHeight = -font.em;
    rs.fontWeight = font.weight;
    rs.fontQuality = font.quality;
    rs.fontItalic = font.italic;
}

void drawText(char *(*draw)(char *))
{
    static char line[sizeof text];
    std::memcpy(line, text, sizeof text);
    rs.fontCursorX = rs.fontCursorY = rs.fontLineBottom = 0;
    for (char *next = line; next && *next;)
        next = draw(next);
}

// A face that stays open, at its size.
struct Face {
    FT_Library library = nullptr;
    FT_Face face = nullptr;

    Face()
    {
        FcPattern *const wanted = FcNameParse(reinterpret_cast<const FcChar8 *>(fontName));
        FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
        FcDefaultSubstitute(wanted);
        FcResult result;
        FcPattern *const found = FcFontMatch(nullptr, wanted, &result);
        FcChar8 *file = nullptr;
        if (found && FcPatternGetString(found, FC_FILE, 0, &file) == FcResultMatch && !FT_Init_FreeType(&library))
            FT_New_Face(library, reinterpret_cast<const char *>(file), 0, &face);
        if (found)
            FcPatternDestroy(found);
        FcPatternDestroy(wanted);
    }
    Face(const Face &) = delete;
    Face &operator=(const Face &) = delete;
    ~Face() { FT_Done_FreeType(library); }
};

// White with the coverage as alpha, row by row.
void expand(const FT_Bitmap &bitmap, uint32_t *to)
{
    for (unsigned y = 0; y < bitmap.rows; ++y, to += atlas()->width) {
        const uint8_t *const row = bitmap.buffer + long(y) * bitmap.pitch;
        for (unsigned x = 0; x < bitmap.width; ++x) {
            const uint32_t alpha =
                bitmap.pixel_mode == FT_PIXEL_MODE_MONO ? (row[x >> 3] >> (7 - (x & 7)) & 1 ? 255 : 0) : row[x];
            to[x] = alpha ? alpha << 24 | 0xFFFFFF : 0;
        }
    }
}

void draw(FT_Face face, const Font &font, FT_ULong character, unsigned &x)
{
    const bool mono = font.quality == NINEFOLD_QUALITY_MONO;
    FT_Load_Char(face, character, mono ? FT_LOAD_TARGET_MONO : FT_LOAD_TARGET_NORMAL);
    FT_GlyphSlot slot = face->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE && font.weight > 550)
        FT_Outline_Embolden(&slot->outline, font.em * 64 / 24);
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE && font.italic) {
        const FT_Matrix slant{0x10000, 0x4000, 0, 0x10000};
        FT_Outline_Transform(&slot->outline, &slant);
    }
    FT_Render_Glyph(slot, mono ? FT_RENDER_MODE_MONO : FT_RENDER_MODE_NORMAL);
    expand(slot->bitmap, atlas()->pixels + x);
    x += slot->bitmap.width;
}

void addFreeType(const Font &font, bool rimmed, Contenders &contenders)
{
    const auto held = std::make_shared<Face>();
    if (!held->face)
        return;
    FT_Set_Pixel_Sizes(held->face, 0, FT_UInt(font.em));
    contenders.push_back(
        {"freetype", rimmed ? Role::less : Role::peer, rimmed ? "face held open; no rim" : "face held open", {}, [=](long calls) {
             for (long i = 0; i < calls; ++i) {
                 unsigned x = 0;
                 for (const FT_ULong character : characters)
                     draw(held->face, font, character, x);
             }
         }});
}

} // namespace

void addGlyphJobs(std::vector<Job> &jobs)
{
    constexpr Font fonts[] = {{"16px.mono", 16, 400, NINEFOLD_QUALITY_MONO, false},
                              {"16px.grey", 16, 400, NINEFOLD_QUALITY_GREY64, false},
                              {"32px.grey", 32, 400, NINEFOLD_QUALITY_GREY64, false},
                              {"32px.grey.bold.italic", 32, 700, NINEFOLD_QUALITY_GREY64, true}};
    for (const Font &font : fonts)
        for (const bool rimmed : {false, true}) {
            Job job;
            job.name = std::string(rimmed ? "glyphs.rimmed/" : "glyphs.plain/") + font.name;
            job.unit = "glyph";
            job.goal = 1.05; // the rasteriser is the peer's own; the rest is a look-up of the face and the copy into the atlas
            job.pixels = double(std::size(characters));
            job.more = [font, rimmed](Contenders &contenders) {
                contenders.push_back({"ninefold/v1", Role::ours, "finds its face anew for each glyph",
                                      [font] { prepareFont(font); },
                                      [rimmed](long calls) {
                                          for (long i = 0; i < calls; ++i)
                                              drawText(rimmed ? CreateFontTextureFuchi : CreateFontTexture);
                                      }});
                addFreeType(font, rimmed, contenders);
            };
            jobs.push_back(job);
        }
}

#else

void addGlyphJobs(std::vector<Job> &) {}

#endif

} // namespace bench
