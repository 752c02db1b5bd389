// A frame buffer with its planes, and the little that a test needs to draw on them and to look at them.
#pragma once

#include <ninefold/ninefold.h>

#include "core/catalogue.h"
#include "kernels/sets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <vector>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_UNDEFINED__)
#define NINEFOLD_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define NINEFOLD_SANITIZED 1
#endif
#endif

namespace canvas {

// Exhaustive loops take steps of this size when they are instrumented.
#if defined(NINEFOLD_SANITIZED) || !defined(__OPTIMIZE__)
constexpr int thin = 16;
#else
constexpr int thin = 1;
#endif

// A row of pixels; failures print it in hex.
struct Pixels : std::vector<uint32_t> {
    using vector::vector;
};

inline void PrintTo(const Pixels &pixels, std::ostream *out)
{
    for (uint32_t pixel : pixels) {
        char text[10];
        std::snprintf(text, sizeof text, " %08X", pixel);
        *out << text;
    }
}

// A value for each axis. These of the unit-scale copy to begin with.
struct Modes {
    int shape = NINEFOLD_SHAPE_RECTANGLE, pers = 0, rule = 0, prescale = 0, filter = 0, rectOpt = 0, shahei = 0, blend = 0,
        multi = 3;

    uint32_t code() const
    {
        return static_cast<uint32_t>(CreateDrawCodeSub(pers, rule, prescale, filter, rectOpt, shahei, blend, multi, shape));
    }
};

inline void PrintTo(const Modes &m, std::ostream *out)
{
    *out << "shape " << m.shape << " pers " << m.pers << " rule " << m.rule << " prescale " << m.prescale << " filter "
         << m.filter << " rectOpt " << m.rectOpt << " shahei " << m.shahei << " blend " << m.blend << " multi " << m.multi;
}

inline std::ostream &operator<<(std::ostream &out, const Modes &m)
{
    PrintTo(m, &out);
    return out;
}

// The values of an axis by number; those rect options that go with any textured filter.
#define NINEFOLD_VALUE(name, value, word, meaning) name,
constexpr int shaheis[] = {NINEFOLD_SHAHEIS(NINEFOLD_VALUE)};
constexpr int blends[] = {NINEFOLD_BLENDS(NINEFOLD_VALUE)};
constexpr int multis[] = {NINEFOLD_MULTIS(NINEFOLD_VALUE)};
#undef NINEFOLD_VALUE
constexpr int rectOpts[] = {NINEFOLD_RECT_UNIT, NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS, NINEFOLD_RECT_TABLE};

using ninefold::hasColoursOnly;
using ninefold::marksPlane;
using ninefold::readsLevels;
using ninefold::testsPriority;

// Whole texels in 16.16.
constexpr int32_t texels(int n) { return n * 0x10000; }

// What index textures hold: never 0, alpha 255, and the position can be read off.
constexpr uint32_t idAt(uint32_t u, uint32_t v) { return 0xFF000000u | v << 12 | u; }

constexpr uint32_t ground = 0x11223344;

// A host's own operator: keeps what it was given last, and gives the first operand plus something that shows.
inline uint32_t seenFirst, seenSecond;
inline int callCount;
template <uint32_t plus>
uint32_t watch(uint32_t first, uint32_t second)
{
    seenFirst = first, seenSecond = second;
    ++callCount;
    return first + plus;
}

class Canvas : public testing::Test {
protected:
    explicit Canvas(unsigned frameWidth = 64, unsigned frameHeight = 32) : width(frameWidth), height(frameHeight) {}

    void SetUp() override
    {
        MakeUVLShiftTable();
        MakeShaheiRunlengthTbl();
        MakeDrawFuncTable();
        rs = RenderState{};
        MakeDrawMaskTable();
        SetFrameBuffer(frame = texture(width, height));
        plane.assign((size_t{width} * height + 15) / 16, 0);
        z.assign(size_t{width} * height, 0);
        rs.shaheiPlane = plane.data();
        rs.zBuffer = z.data();
        rs.clipRight = static_cast<int32_t>(width);
        rs.clipBottom = static_cast<int32_t>(height);
        rs.prescale = rs.prescaleMulti = 256;
        rs.mosaicSize = rs.mosaicSize1 = 1;
        rs.blendFunc = [](uint32_t, uint32_t source) { return source; };
        SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
        clear();
    }

    void TearDown() override
    {
        for (Texture *t : textures)
            DeleteTexture(t);
        textures.clear();
        rs = RenderState{};
        ninefold::useSet(ninefold::usableSets() - 1);
    }

    void clear() { std::fill_n(frame->pixels, size_t{width} * height, ground); }

    // The planes, too.
    void wipe()
    {
        clear();
        std::fill(plane.begin(), plane.end(), uint16_t{0});
        std::fill(z.begin(), z.end(), uint8_t{0});
    }

    // Textures live as long as the test.
    Texture *texture(unsigned w, unsigned h)
    {
        Texture *t = CreateTexture(w, h);
        ClearTexture(t);
        textures.push_back(t);
        return t;
    }

    template <class PixelAt>
    Texture *texture(unsigned w, unsigned h, PixelAt &&pixelAt)
    {
        Texture *t = texture(w, h);
        for (uint32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x)
                t->pixels[(y << t->log2Width) + x] = pixelAt(x, y);
        return t;
    }

    Texture *texture(unsigned w, unsigned h, std::initializer_list<uint32_t> pixels)
    {
        Texture *t = texture(w, h);
        std::copy(pixels.begin(), pixels.end(), t->pixels);
        return t;
    }

    Texture *solid(uint32_t colour) { return texture(1, 1, {colour}); }

    Texture *index(unsigned w, unsigned h) { return texture(w, h, idAt); }

    static void corners(int x0, int y0, int x1, int y1)
    {
        rs.vertex[0] = {x0, y0, 0};
        rs.vertex[1] = {x1, y1, 0};
    }

    static void triangle(int x0, int y0, int x1, int y1, int x2, int y2)
    {
        rs.vertex[0] = {x0, y0, 1};
        rs.vertex[1] = {x1, y1, 1};
        rs.vertex[2] = {x2, y2, 1};
    }

    static void clip(int left, int top, int right, int bottom)
    {
        rs.clipLeft = left, rs.clipTop = top, rs.clipRight = right, rs.clipBottom = bottom;
    }

    static void stipple(std::initializer_list<uint16_t> rows) { std::copy(rows.begin(), rows.end(), rs.drawMask); }

    // A chain and both maps, so that every filter and rect option can read the texture. The zero-pixel map is read by the frame
    // buffer's words: use it with a texture of the frame buffer's size.
    static Texture *equipped(Texture *t)
    {
        CreateMipmapTexture(t);
        CreateRunlengthMap(t);
        CreateZeroPixelMap(t);
        return t;
    }

    // Lays every texture over the frame buffer texel for pixel, and the shape over this rectangle: a triangle with legs of one
    // length whose diagonal passes the rectangle by, cut out by the clip.
    void place(const Modes &m, int left, int top, int right, int bottom)
    {
        int right2 = right, bottom2 = bottom;
        clip(0, 0, static_cast<int>(width), static_cast<int>(height));
        if (m.shape == NINEFOLD_SHAPE_TRIANGLE) {
            const int leg = right - left + bottom - top;
            right2 = left + leg, bottom2 = top + leg;
            triangle(left, top, right2, top, left, bottom2);
            clip(left, top, right, bottom);
        } else {
            corners(left, top, right, bottom);
        }
        const TexCoord topLeft{texels(left), texels(top)}, topRight{texels(right2), texels(top)},
            bottomLeft{texels(left), texels(bottom2)}, bottomRight{texels(right2), texels(bottom2)};
        for (TexCoord *uv : {rs.uv0, rs.uv1}) {
            uv[0] = topLeft;
            uv[1] = m.shape == NINEFOLD_SHAPE_RECTANGLE && m.rectOpt == NINEFOLD_RECT_STRETCH ? bottomRight : topRight;
            uv[2] = bottomLeft;
            uv[3] = bottomRight;
        }
        rs.uv2[0] = topLeft;
        rs.uv2[1] = m.shape == NINEFOLD_SHAPE_RECTANGLE ? bottomRight : topRight;
        rs.uv2[2] = bottomLeft;
        lines.clear();
        for (int y = top; y < bottom; ++y)
            lines.push_back({texels(left), texels(y), texels(right), texels(y)});
        rs.lineTable0 = rs.lineTable1 = lines.data();
    }

    // Forms that sample a texel as it is, under `place` and with equipped textures.
    static std::vector<Modes> pointForms(int shahei = NINEFOLD_SHAHEI_NONE, int blend = NINEFOLD_BLEND_COPY,
                                         int multi = NINEFOLD_MULTI_NONE)
    {
        const bool walk = marksPlane(shahei);
        std::vector<Modes> forms;
        const auto add = [&](Modes m) {
            m.shahei = shahei, m.blend = blend, m.multi = multi;
            forms.push_back(m);
        };
        for (int rectOpt : rectOpts)
            for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC})
                add({.filter = filter, .rectOpt = rectOpt});
        add({.rectOpt = walk ? 6 : 5});
        for (int rectOpt : {NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS})
            add({.filter = NINEFOLD_FILTER_MIP, .rectOpt = rectOpt});
        add({.filter = NINEFOLD_FILTER_LINE_POINT, .rectOpt = NINEFOLD_RECT_TABLE});
        for (int filter : {NINEFOLD_FILTER_POINT, NINEFOLD_FILTER_MOSAIC, NINEFOLD_FILTER_MIP})
            for (int pers : {0, 1})
                add({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers, .filter = filter});
        return forms;
    }

    // And those that mix texels.
    static std::vector<Modes> mixingForms(int shahei = NINEFOLD_SHAHEI_NONE, int blend = NINEFOLD_BLEND_COPY,
                                          int multi = NINEFOLD_MULTI_NONE)
    {
        std::vector<Modes> forms;
        const auto add = [&](Modes m) {
            m.shahei = shahei, m.blend = blend, m.multi = multi;
            forms.push_back(m);
        };
        for (int rectOpt : rectOpts)
            add({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = rectOpt});
        for (int rectOpt : {NINEFOLD_RECT_STRETCH, NINEFOLD_RECT_CORNERS})
            add({.filter = NINEFOLD_FILTER_MIP_BILINEAR, .rectOpt = rectOpt});
        for (int filter : {NINEFOLD_FILTER_LINE_BILINEAR, NINEFOLD_FILTER_MIP})
            add({.filter = filter, .rectOpt = NINEFOLD_RECT_TABLE});
        if (marksPlane(shahei))
            add({.filter = NINEFOLD_FILTER_MIP_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE});
        for (int filter : {NINEFOLD_FILTER_BILINEAR, NINEFOLD_FILTER_MIP_BILINEAR})
            for (int pers : {0, 1})
                add({.shape = NINEFOLD_SHAPE_TRIANGLE, .pers = pers, .filter = filter});
        return forms;
    }

    // Colours alone.
    static std::vector<Modes> colourForms(int shahei = NINEFOLD_SHAHEI_NONE, int blend = NINEFOLD_BLEND_COPY)
    {
        std::vector<Modes> forms;
        for (int shape : {NINEFOLD_SHAPE_LINE, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_SHAPE_TRIANGLE})
            for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD})
                forms.push_back({.shape = shape, .filter = filter, .shahei = shahei, .blend = blend});
        return forms;
    }

    // The kernel of exactly these modes, never a default.
    static DrawFunc kernel(const Modes &m)
    {
        const uint32_t code = m.code(), defaults[] = {0xDC0368, 0x369, 0x1C036A};
        const DrawFunc found = SearchDrawFunc(code), fallback = SearchDrawFunc(defaults[m.shape]);
        if (code != defaults[m.shape] && found == fallback) {
            ADD_FAILURE() << "no kernel for " << m;
            return [] {};
        }
        return found;
    }

    // Everything that a kernel may write.
    struct State {
        std::vector<uint32_t> pixels;
        std::vector<uint16_t> plane;
        std::vector<uint8_t> z;
        RenderState rs;

        bool looksLike(const State &other) const { return pixels == other.pixels && plane == other.plane && z == other.z; }
        bool operator==(const State &other) const
        {
            return looksLike(other) && std::memcmp(&rs, &other.rs, sizeof(RenderState)) == 0;
        }

        uint64_t sum() const
        {
            uint64_t total = 14695981039346656037u;
            const auto add = [&total](uint64_t word) { total = (total ^ word) * 1099511628211u; };
            std::for_each(pixels.begin(), pixels.end(), add);
            std::for_each(plane.begin(), plane.end(), add);
            std::for_each(z.begin(), z.end(), add);
            std::for_each(reinterpret_cast<const unsigned char *>(&rs), reinterpret_cast<const unsigned char *>(&rs + 1), add);
            return total;
        }
    };

    State state() const
    {
        State s{{frame->pixels, frame->pixels + size_t{width} * height}, plane, z, {}};
        std::memcpy(&s.rs, &rs, sizeof(RenderState));
        return s;
    }

    void restore(const State &s)
    {
        std::copy(s.pixels.begin(), s.pixels.end(), frame->pixels);
        std::copy(s.plane.begin(), s.plane.end(), plane.begin());
        std::copy(s.z.begin(), s.z.end(), z.begin());
        std::memcpy(&rs, &s.rs, sizeof(RenderState));
    }

    // How many instruction sets this machine has. Asking the processor is slow.
    // Runs `body` from the same state under each instruction set that the machine has. All must leave the same behind.
    template <class Body>
    void underEverySet(Body &&body)
    {
        const State before = state();
        State first;
        for (int set = 0; set < ninefold::usableSets(); ++set) {
            SCOPED_TRACE(ninefold::setNames[set]);
            ASSERT_TRUE(ninefold::useSet(set));
            if (set == 0) {
                body();
                first = state();
                continue;
            }
            restore(before);
            body();
            EXPECT_TRUE(state() == first) << "draws something else than " << ninefold::setNames[0];
        }
    }

    void draw(const Modes &m)
    {
        SCOPED_TRACE(testing::PrintToString(m));
        underEverySet([&] { kernel(m)(); });
    }

    uint32_t &at(int x, int y) const { return frame->pixels[size_t{width} * static_cast<size_t>(y) + static_cast<size_t>(x)]; }

    uint8_t &zAt(int x, int y) { return z[size_t{width} * static_cast<size_t>(y) + static_cast<size_t>(x)]; }

    bool taken(int x, int y) const
    {
        const size_t i = size_t{width} * static_cast<size_t>(y) + static_cast<size_t>(x);
        return plane[i / 16] >> (15 - (x & 15)) & 1;
    }

    // Pixels left to right - 1.
    Pixels row(int y, int left, int right) const
    {
        Pixels pixels;
        for (int x = left; x < right; ++x)
            pixels.push_back(at(x, y));
        return pixels;
    }

    // Pixels top to bottom - 1.
    Pixels column(int x, int top, int bottom) const
    {
        Pixels pixels;
        for (int y = top; y < bottom; ++y)
            pixels.push_back(at(x, y));
        return pixels;
    }

    bool untouched() const
    {
        return std::all_of(frame->pixels, frame->pixels + size_t{width} * height, [](uint32_t pixel) { return pixel == ground; });
    }

    // How many pixels are not the ground's.
    int drawnCount() const
    {
        return static_cast<int>(size_t{width} * height -
                                static_cast<size_t>(std::count(frame->pixels, frame->pixels + size_t{width} * height, ground)));
    }

    // Nothing but the ground outside this rectangle.
    bool groundOutside(int left, int top, int right, int bottom) const
    {
        for (int y = 0; y < static_cast<int>(height); ++y)
            for (int x = 0; x < static_cast<int>(width); ++x)
                if ((x < left || x >= right || y < top || y >= bottom) && at(x, y) != ground)
                    return false;
        return true;
    }

    const unsigned width, height;
    Texture *frame = nullptr;
    std::vector<uint16_t> plane;
    std::vector<uint8_t> z;
    std::vector<LineTableRecord> lines; // of `place`

private:
    std::vector<Texture *> textures;
};

} // namespace canvas
