/* Glyphs per second: the library, which finds its font anew for each, against FreeType alone with a face held open. Wants
 * VL Gothic. */
#include <ninefold/ninefold.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <utility>

#if !defined(_WIN32)
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#endif

namespace {

/* "Text 123", then kana and kanji: nihongo no moji wo kaku. Both code tables hold the same characters. */
char text[] = "Text 123\x93\xFA\x96\x7B\x8C\xEA\x82\xCC\x95\xB6\x8E\x9A\x82\xF0\x8F\x91\x82\xAD";
constexpr unsigned long unicode[] = {'T',    'e',    'x',    't',    ' ',    '1',    '2',    '3',   0x65E5,
                                     0x672C, 0x8A9E, 0x306E, 0x6587, 0x5B57, 0x3092, 0x66F8, 0x304F};

struct Font {
    int height, weight, italic, quality;
};

Font fontOf(const benchmark::State &state)
{
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2)),
            static_cast<int>(state.range(3))};
}

void drawText(benchmark::State &state, char *(*draw)(char *))
{
    char name[32] = "VL Gothic";
    std::memset(static_cast<void *>(&rs), 0, sizeof rs);
    rs.tex0 = CreateTexture(1024, 1024);
    const Font font = fontOf(state);
    rs.fontName = name;
    rs.fontHeight = -font.height;
    rs.fontWeight = font.weight;
    rs.fontItalic = static_cast<uint32_t>(font.italic);
    rs.fontQuality = font.quality;
    for (auto _ : state) {
        rs.fontCursorX = rs.fontCursorY = rs.fontLineBottom = 0;
        for (char *next = text; next && *next;)
            next = draw(next);
    }
    if (rs.glyphWidth == 0)
        state.SkipWithError("no font");
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(std::size(unicode)));
    DeleteTexture(rs.tex0);
}

void plain(benchmark::State &state)
{
    drawText(state, CreateFontTexture);
}

void rimmed(benchmark::State &state)
{
    drawText(state, CreateFontTextureFuchi);
}

#if !defined(_WIN32)

/* The face, its size and the target are set once; emboldening and slant are left out. */
void freetype(benchmark::State &state)
{
    FcPattern *wanted = FcNameParse(reinterpret_cast<const FcChar8 *>("VL Gothic"));
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result;
    FcPattern *found = FcFontMatch(nullptr, wanted, &result);
    FcChar8 *file = nullptr;
    FT_Library library;
    FT_Face face;
    if (!found || FcPatternGetString(found, FC_FILE, 0, &file) != FcResultMatch || FT_Init_FreeType(&library) != 0 ||
        FT_New_Face(library, reinterpret_cast<const char *>(file), 0, &face) != 0) {
        state.SkipWithError("no font");
        return;
    }
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(state.range(0)));
    const bool mono = state.range(1) == 0;
    for (auto _ : state) {
        for (const unsigned long character : unicode) {
            FT_Load_Char(face, character, mono ? FT_LOAD_TARGET_MONO : FT_LOAD_TARGET_NORMAL);
            FT_Render_Glyph(face->glyph, mono ? FT_RENDER_MODE_MONO : FT_RENDER_MODE_NORMAL);
            benchmark::DoNotOptimize(face->glyph->bitmap.buffer);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(std::size(unicode)));
    FT_Done_FreeType(library);
    FcPatternDestroy(found);
    FcPatternDestroy(wanted);
}

BENCHMARK(freetype)->ArgNames({"em", "quality"})->ArgsProduct({{16, 32}, {0, 3}});

#endif

void fonts(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgNames({"em", "weight", "italic", "quality"});
    benchmark->ArgsProduct({{16, 32}, {400}, {0}, {0, 3}});
    benchmark->Args({32, 700, 1, 3});
}

BENCHMARK(plain)->Apply(fonts);
BENCHMARK(rimmed)->Apply(fonts);

}
