// The host's side of the library: pictures, a frame buffer to draw on, and one call for one primitive.
#pragma once

#include <ninefold/kit.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace gallery {

struct Releaser {
    void operator()(Texture *texture) const { DeleteTexture(texture); }
};
using TexturePtr = std::unique_ptr<Texture, Releaser>;

// Where the bitmaps are. Loading throws std::runtime_error where it fails.
void setPictureFolder(std::string folder);
TexturePtr load(const std::string &name);
TexturePtr loadKeyed(const std::string &name); // with the key colour, magenta, made transparent
TexturePtr loadAdjusted(const std::string &name, unsigned long alignX, unsigned long alignY);
TexturePtr loadMipped(const std::string &name);

// Gives a picture's pixels an elliptic matte: opaque inside, fading out to alpha 1 at the edge.
void addMatte(Texture &picture);

// Values of the nine axes, as the mode setters take them: blend may also be 14 to 19.
struct Modes {
    long shape = NINEFOLD_SHAPE_RECTANGLE;
    long filter = NINEFOLD_FILTER_POINT;
    long rectOpt = NINEFOLD_RECT_UNIT;
    long shahei = NINEFOLD_SHAHEI_NONE;
    long blend = NINEFOLD_BLEND_COPY;
    long multi = NINEFOLD_MULTI_NONE;
    long rule = 0;
    long prescale = 0;
    long pers = 0;
};

struct Colour {
    int red, green, blue;
};
inline uint32_t argb(Colour c, int alpha = 255)
{
    return uint32_t(alpha) << 24 | uint32_t(c.red) << 16 | uint32_t(c.green) << 8 | uint32_t(c.blue);
}

// A frame buffer with both planes. Making one clears rs and points it there: one is drawn to at a time.
class Canvas {
public:
    Canvas(int width, int height);
    void use(); // points a cleared rs here again

    const int width, height;
    Texture *pixels() const { return screen_.texture(); }
    uint32_t pixel(int x, int y) const { return pixels()->pixels[index(x, y)]; }
    bool taken(int x, int y) const; // its bit in the Shahei plane
    uint8_t priority(int x, int y) const; // its byte in the priority plane
    void fillPriority(uint8_t value);

    // Paints what a plane holds: taken pixels white; priorities as grey.
    void paintShahei(const Canvas &from);
    void paintPriorities(const Canvas &from);

private:
    uint32_t &word(int x, int y) { return pixels()->pixels[index(x, y)]; }
    size_t index(int x, int y) const { return (size_t(y) << pixels()->log2Width) + size_t(x); }

    nfk::Screen screen_;
};

// A position in texels.
TexCoord texel(double u, double v);
inline Vertex at(int x, int y, int z = 1) { return {x, y, z}; }

// rs.vertex[0..1], half open.
void corners(int x0, int y0, int x1, int y1);
// rs.uv0[0..1] (or uv1, uv2) for the part (u, v) to (u + width, v + height) of a texture.
void source(TexCoord (&uv)[4], double u, double v, double width, double height);

// Makes the draw code of the modes, looks its kernel up and calls it. Throws where the table has no kernel for the code.
void draw(const Modes &modes);
uint32_t codeOf(const Modes &modes);

// Fills the clip rectangle's area of `canvas` with the whole picture, sampled at the centres of the pixels.
void cover(const Canvas &canvas, Texture *picture);

// A sprite at unit scale, its texture's top left corner at (x, y).
void sprite(Texture *picture, int x, int y, const Modes &modes = {});

// A triangle corner: place on the screen, depth, texel.
struct Corner {
    double x, y, z, u, v;
};
void triangle(const Corner &a, const Corner &b, const Corner &c, const Modes &modes);
// Two triangles: a, b along the top, c, d along the bottom.
void quad(const Corner &a, const Corner &b, const Corner &c, const Corner &d, const Modes &modes);

// The axes in words, with the multi operator in force.
std::string describe(const Modes &modes);
const char *multiOperatorName(int32_t value);

} // namespace gallery
