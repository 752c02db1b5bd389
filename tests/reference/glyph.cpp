#include "glyph.h"

namespace reference {
namespace {

// Levels of full coverage by quality; whatever is not 0 to 3 delivers mono bits.
uint64_t fullLevel(uint32_t quality)
{
    switch (quality) {
    case 1: return 4;
    case 2: return 16;
    case 3: return 64;
    default: return 1;
    }
}

uint64_t byteAt(const ServedGlyph &glyph, uint64_t index) { return index < glyph.bytes.size() ? glyph.bytes[index] : 0; }

// Coverage of one pixel before it is cut to a byte.
uint64_t coverage(const ServedGlyph &glyph, uint32_t quality, uint64_t col, uint64_t row)
{
    if (quality == 0) {
        // The bitmap is one string of bits, a row starting every rowBits of them.
        const uint64_t rowBits = (uint64_t{glyph.width} / 8 + 3) / 4 * 32;
        const uint64_t bit = row * rowBits + col;
        const uint64_t weight = 128 >> bit % 8;
        return byteAt(glyph, bit / 8) / weight % 2 == 1 ? 255 : 0;
    }
    const uint64_t rowBytes = (uint64_t{glyph.width} + 3) / 4 * 4;
    return byteAt(glyph, row * rowBytes + col) * 255 / fullLevel(quality);
}

uint32_t plainPixel(uint64_t alpha) { return alpha == 0 ? 0 : static_cast<uint32_t>(alpha % 256 * 0x1000000 + 0xffffff); }

uint32_t rimPixel(uint64_t alpha) { return alpha == 255 ? 0xffffffff : static_cast<uint32_t>(alpha % 256 * 0x1000000); }

uint32_t *wordAt(GlyphState &state, int64_t col, int64_t row)
{
    const uint32_t x = static_cast<uint32_t>(state.x) + static_cast<uint32_t>(col);
    const uint32_t y = static_cast<uint32_t>(state.y) + static_cast<uint32_t>(row);
    const uint32_t index = y * state.atlasWidth + x;
    return index < state.atlas.size() ? &state.atlas[index] : nullptr;
}

void darken(GlyphState &state, int64_t col, int64_t row, int64_t width, int64_t height)
{
    uint32_t *pixel = wordAt(state, col, row);
    if (!pixel || *pixel < 0x1000000)
        return;
    const uint64_t alpha = *pixel / 0x1000000;
    uint64_t sum = 0;
    for (int64_t y = row - 1; y <= row + 1; ++y) {
        for (int64_t x = col - 1; x <= col + 1; ++x) {
            const bool centre = x == col && y == row;
            const bool inside = x >= 0 && x < width && y >= 0 && y < height;
            if (centre) {
                sum += alpha * 0x10000;
            } else if (inside) {
                const uint32_t *neighbour = wordAt(state, x, y);
                sum += neighbour ? *neighbour / 0x100 : 0;
            }
        }
    }
    uint64_t grey = sum / (9 * 0x10000);
    for (int squaring = 0; squaring < 2; ++squaring)
        grey = grey * grey / 256;
    *pixel = static_cast<uint32_t>(alpha * 0x1000000 + grey * 0x10101);
}

} // namespace

Character characterAt(const char *text, const std::function<bool(uint8_t)> &isLead)
{
    const auto first = static_cast<uint8_t>(text[0]);
    if (isLead(first))
        return {first * 256u + static_cast<uint8_t>(text[1]), 2};
    return {first < 128 ? first : 0xffffff00u + first, 1};
}

bool placeGlyph(GlyphState &state, const ServedGlyph &glyph, bool rim)
{
    state.originX = glyph.originX;
    state.originY = glyph.originY;
    state.advance = glyph.advance;
    state.width = static_cast<int32_t>(glyph.width);
    state.height = static_cast<int32_t>(glyph.height);

    // The line's bottom is taken where the cursor was, also for a glyph that then starts a new line.
    const uint32_t bottom = state.cursorY + glyph.height;
    if (bottom > state.lineBottom)
        state.lineBottom = bottom;
    if (static_cast<uint32_t>(state.cursorX + glyph.width) > state.atlasWidth) {
        state.cursorX = 0;
        state.cursorY = state.lineBottom;
    }
    if (static_cast<uint32_t>(state.cursorY + glyph.height) > state.atlasHeight)
        return false;
    state.x = static_cast<int32_t>(state.cursorX);
    state.y = static_cast<int32_t>(state.cursorY);

    if (glyph.bytes.empty() && !rim) {
        state.atlas[0] = 0;
    } else {
        for (uint32_t row = 0; row < glyph.height; ++row) {
            for (uint32_t col = 0; col < glyph.width; ++col) {
                const uint64_t alpha = coverage(glyph, state.quality, col, row);
                if (uint32_t *pixel = wordAt(state, col, row))
                    *pixel = rim ? rimPixel(alpha) : plainPixel(alpha);
            }
        }
    }
    if (rim) {
        for (uint32_t row = 0; row < glyph.height; ++row)
            for (uint32_t col = 0; col < glyph.width; ++col)
                darken(state, col, row, glyph.width, glyph.height);
    }
    state.cursorX += glyph.width;
    return true;
}

} // namespace reference
