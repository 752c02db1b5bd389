// Text in Latin, kana and kanji: plain and rimmed, upright and italic, in four qualities.

#include "sheet.h"
#include "text.h"

namespace gallery {

void glyphs(Sheet &sheet)
{
    const TexturePtr coffee = load("coffee");
    const Bytes latin = "Ninefold, gjQ&@";
    const Bytes kana = "\x82\xA2\x82\xEB\x82\xCD\x82\xC9\x82\xD9\x82\xD6\x82\xC6"; // i ro ha ni ho he to
    const Bytes kanji = "\x8C\xF5\x82\xC6\x89\x65\x82\xCC\x8A\x47"; // light, and, shadow, of, picture
    const char *qualities[] = {"mono", "4 levels", "16 levels", "64 levels"};
    for (const bool rimmed : {false, true})
        for (const bool italic : {false, true})
            for (const int quality :
                 {NINEFOLD_QUALITY_MONO, NINEFOLD_QUALITY_GREY4, NINEFOLD_QUALITY_GREY16, NINEFOLD_QUALITY_GREY64}) {
                Canvas canvas(256, 192);
                cover(canvas, coffee.get());
                Text text(256, 256);
                const Modes modes{.blend = NINEFOLD_BLEND_ALPHA_FAST};
                Font font{-26, 700, quality, italic, rimmed};
                text.write(font, latin, 10, 30, modes);
                font.height = -34;
                text.write(font, kana, 10, 68, modes);
                font.height = -46;
                text.write(font, kanji, 10, 118, modes);
                // Below them a part of the atlas.
                rs.color[0] = argb({20, 30, 50});
                corners(0, 132, 256, 192);
                draw({.filter = NINEFOLD_FILTER_FLAT});
                rs.tex0 = text.atlas();
                source(rs.uv0, 0, 0, 0, 0);
                draw(modes);
                const std::string caption = std::string(qualities[quality]) + (italic ? ", italic" : "") +
                                            (rimmed ? ", rimmed" : "") +
                                            (text.anyInk() ? "; below, the atlas" : "; no font was found");
                sheet.add(canvas, caption, modes);
            }
}

} // namespace gallery
