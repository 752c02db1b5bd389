// A text as a host holds it.
#pragma once

#include "text_layout.h"

namespace nfk::text {

// What is drawn of a text: its glyphs' rims, then the glyphs, at whole pixels from its top left.
struct Stamp {
    Slot slot;
    int32_t x, y;
    bool rim;
};

struct TextureRelease {
    void operator()(Texture *texture) const { DeleteTexture(texture); }
};

} // namespace nfk::text

struct NfkText {
    NfkText(std::shared_ptr<nfk::text::Font> itsFont, nfk::text::Layout itsLayout, const NfkTextStyle &itsStyle,
            int32_t itsLength)
        : font(std::move(itsFont)), layout(std::move(itsLayout)), style(itsStyle), length(itsLength)
    {}

    // In this order, because the layout points to faces of the font.
    std::shared_ptr<nfk::text::Font> font;
    nfk::text::Layout layout;
    const NfkTextStyle style;
    const int32_t length; // bytes

    // The text as one picture, for a fade; the part of it that it shows, and where it stands.
    std::unique_ptr<Texture, nfk::text::TextureRelease> layer;
    int32_t layerBytes = 0;
    NfkRect layerBox{};
};

namespace nfk::text {

// The stamps of a text's first bytes, all of them in the font's atlas. False with a text.
bool gather(const char *function, const NfkText &text, int32_t bytes, std::vector<Stamp> &stamps);

// The box of all stamps.
NfkRect boxOf(const std::vector<Stamp> &stamps);

bool draw(const char *function, NfkText &text, int32_t x, int32_t y, int32_t alpha, int32_t bytes);

} // namespace nfk::text
