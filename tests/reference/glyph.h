// Slow model of the atlas: where a glyph goes, which pixels it becomes, and its rim. Knows no rasteriser: what the glyph service
// would have answered is handed in.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace reference {

struct Character {
    uint32_t code;
    int length; // bytes of the text it takes
};

Character characterAt(const char *text, const std::function<bool(uint8_t)> &isLead);

struct ServedGlyph {
    uint32_t width = 0, height = 0;
    int32_t originX = 0, originY = 0, advance = 0;
    std::vector<uint8_t> bytes; // empty: the service has no bitmap
};

// The glyph fields of the render state, and the atlas.
struct GlyphState {
    uint32_t quality = 0;
    uint32_t cursorX = 0, cursorY = 0, lineBottom = 0;
    int32_t width = 0, height = 0, x = 0, y = 0, originX = 0, originY = 0, advance = 0;
    uint32_t atlasWidth = 0, atlasHeight = 0;
    std::vector<uint32_t> atlas;
};

// False when the atlas has no room. Bytes past the bitmap read as 0; words past the atlas are dropped, and read as 0.
bool placeGlyph(GlyphState &state, const ServedGlyph &glyph, bool rim);

} // namespace reference
