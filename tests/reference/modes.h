// A draw code taken apart.
#pragma once

#include <cstdint>

namespace reference {

enum : int { line = 0, rectangle = 1, triangle = 2 };

struct Modes {
    int shape = 0;
    int multi = 0;
    int blend = 0;
    int shahei = 0;
    int option = 0; // of a rectangle
    int filter = 0;
    bool prescale = false;
    bool rule = false;
    bool pers = false;

    static Modes of(uint32_t code);
    uint32_t code() const;

    // the plane is walked word by word
    bool plane() const { return shahei == 1 || shahei == 2; }
    bool zTest() const { return shahei == 3 || shahei == 5; }
    bool stippled() const { return shahei == 4 || shahei == 5; }
    bool textured() const { return filter != 6 && filter != 7; }
    // maps have removed the zeros of the source, or there is no source texture
    bool zeroIsDrawn() const { return !textured() || (shape == rectangle && (option == 5 || option == 6)); }
    // blends that weigh by the alpha of the source
    bool alphaBlend() const { return blend == 1 || blend == 2 || blend == 4; }
    bool hasColours() const { return multi == 1 || filter == 7; }
};

} // namespace reference
