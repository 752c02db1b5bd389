// Text: glyphs rasterised into an atlas, then drawn out of it.
#pragma once

#include "host.h"

namespace gallery {

struct Font {
    int32_t height = -24; // em height in pixels
    int32_t weight = 400; // 700 is bold
    int32_t quality = 3; // 0 mono, 1 to 3: 4, 16, 64 grey levels
    bool italic = false;
    bool rimmed = false;
};

// Characters of code page 932.
using Bytes = std::string;

class Text {
public:
    Text(int atlasWidth, int atlasHeight);

    // Draws with the pen starting at (x, y) on the base line; returns where it stops. Each character is laid into the atlas anew.
    int write(const Font &font, Bytes bytes, int x, int y, const Modes &modes);

    Texture *atlas() const { return atlas_.get(); }
    bool anyInk() const; // false where the system has no font at all

private:
    TexturePtr atlas_;
    uint32_t cursorX_ = 0, cursorY_ = 0, lineBottom_ = 0;
};

} // namespace gallery
