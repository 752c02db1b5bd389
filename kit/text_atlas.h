// The atlas of a font: glyphs rasterised once, kept in a texture that grows.
#pragma once

#include <ninefold/texture.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace nfk::text {

class Face;

// Shapes fit the rows of pixels but not the columns: glyphs stand where the advances of the design put them.
constexpr FT_Int32 glyphLoadFlags = FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_LIGHT;

// A glyph's pixels in the atlas, without empty rows and columns around them. Its origin, in whole pixels, is `left` and `top`
// from their top left corner, y down. Width 0: no pixels.
struct Slot {
    int32_t x = 0, y = 0, width = 0, height = 0;
    int32_t left = 0, top = 0;
};

// The sides of the largest atlas.
constexpr uint32_t maxAtlasSide = 4096;
// Glyphs come at quarters of a pixel along the line.
constexpr int32_t phases = 4;

class Atlas {
public:
    enum class Result { Kept, Cleared, Failed };

    // Finds or draws a glyph, `phase` quarters of a pixel to the right and with a rim so wide (0: the glyph itself). Cleared:
    // there was no room left, so that older slots are void, and the glyph is the first of an empty atlas. Failed: it is larger
    // than any atlas, or FreeType cannot draw it. May throw std::bad_alloc.
    Result find(const Face &face, uint32_t index, int32_t phase, int32_t rim, Slot &slot);

    Texture *texture() const { return texture_.get(); }

private:
    struct Release {
        void operator()(Texture *texture) const { DeleteTexture(texture); }
    };
    struct Shelf {
        int32_t y, height, used;
    };

    bool place(Slot &slot);
    bool grow();
    void clear();

    std::unique_ptr<Texture, Release> texture_;
    std::vector<Shelf> shelves_;
    std::unordered_map<uint64_t, Slot> slots_;
};

} // namespace nfk::text
