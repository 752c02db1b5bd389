// Drawing: glyph by glyph out of the atlas, or as one picture where something shines through.
#include "call.h"
#include "error.h"
#include "text.h"

#include <algorithm>
#include <bit>

namespace nfk::text {
namespace {

uint32_t alphaOf(uint32_t color) { return color >> 24; }

uint32_t textCode(int32_t prescale, int32_t multi)
{
    return static_cast<uint32_t>(CreateDrawCodeSub(NINEFOLD_PERS_OFF, NINEFOLD_RULE_OFF, prescale, NINEFOLD_FILTER_POINT,
                                                   NINEFOLD_RECT_UNIT, NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_ALPHA_FAST, multi,
                                                   NINEFOLD_SHAPE_RECTANGLE));
}

// rs as it was, however the draw ends.
class Restored {
public:
    Restored() : saved_(rs) {}
    ~Restored() { rs = saved_; }
    Restored(const Restored &) = delete;
    Restored &operator=(const Restored &) = delete;

private:
    const RenderState saved_;
};

void drawPart(uint32_t code, DrawFunc kernel, int32_t x, int32_t y, int32_t u, int32_t v, int32_t width, int32_t height)
{
    rs.vertex[0] = {x, y, 0};
    rs.vertex[1] = {x + width, y + height, 0};
    rs.uv0[0] = {u << 16, v << 16};
    call(code, kernel);
}

// The atlas is white: the multi stage puts a colour in its place and keeps the coverage as alpha, to the bit.
bool drawStamps(const char *function, const NfkText &text, int32_t x, int32_t y, const std::vector<Stamp> &stamps)
{
    const uint32_t code = textCode(NINEFOLD_PRESCALE_OFF, NINEFOLD_MULTI_COLOUR);
    const DrawFunc kernel = kernelOf(function, code);
    if (!kernel)
        return false;
    const Restored restored;
    rs.tex0 = text.font->atlas().texture();
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    for (const Stamp &stamp : stamps) {
        rs.color[0] = stamp.rim ? text.style.rimColor : text.style.color;
        drawPart(code, kernel, x + stamp.x, y + stamp.y, stamp.slot.x, stamp.slot.y, stamp.slot.width, stamp.slot.height);
    }
    return true;
}

// ---- the text as one picture ----

// Coverage of one pass over the box. Where glyphs meet they add up as surfaces do, so that joined letters have no seams.
std::vector<uint8_t> coverageOf(const Texture &atlas, const std::vector<Stamp> &stamps, const NfkRect &box, bool rim)
{
    std::vector<uint8_t> coverage(static_cast<size_t>(box.width) * static_cast<size_t>(box.height));
    for (const Stamp &stamp : stamps) {
        if (stamp.rim != rim)
            continue;
        for (int32_t row = 0; row < stamp.slot.height; ++row) {
            const uint32_t *from = atlas.pixels + (static_cast<size_t>(stamp.slot.y + row) << atlas.log2Width) + stamp.slot.x;
            uint8_t *to =
                coverage.data() + static_cast<size_t>(stamp.y + row - box.y) * static_cast<size_t>(box.width) + (stamp.x - box.x);
            for (int32_t column = 0; column < stamp.slot.width; ++column) {
                const uint32_t more = from[column] >> 24, had = to[column];
                to[column] = static_cast<uint8_t>(had + (more * (255 - had) + 127) / 255);
            }
        }
    }
    return coverage;
}

// A colour over another, straight alpha; 0 where nothing is.
uint32_t over(uint32_t upper, uint32_t upperAlpha, uint32_t lower, uint32_t lowerAlpha)
{
    const uint32_t below = (lowerAlpha * (255 - upperAlpha) + 127) / 255, alpha = upperAlpha + below;
    if (alpha == 0)
        return 0;
    uint32_t color = alpha;
    for (int shift = 16; shift >= 0; shift -= 8)
        color = color << 8 | ((upper >> shift & 255) * upperAlpha + (lower >> shift & 255) * below + alpha / 2) / alpha;
    return color;
}

bool makeLayer(const char *function, NfkText &text, const std::vector<Stamp> &stamps, int32_t bytes)
{
    if (text.layer && text.layerBytes == bytes)
        return true;
    const NfkRect box = boxOf(stamps);
    const uint64_t pixels = std::bit_ceil(uint64_t(box.width)) * std::bit_ceil(uint64_t(box.height));
    if (pixels > uint64_t{maxAtlasSide} * maxAtlasSide)
        return fail("%s: %d by %d pixels are too many for a text that shines through", function, box.width, box.height);
    std::unique_ptr<Texture, TextureRelease> layer(
        CreateTexture(static_cast<unsigned long>(box.width), static_cast<unsigned long>(box.height)));
    if (!layer->pixels)
        throw std::bad_alloc();
    const Texture &atlas = *text.font->atlas().texture();
    const std::vector<uint8_t> glyphs = coverageOf(atlas, stamps, box, false), rims = coverageOf(atlas, stamps, box, true);
    ClearTexture(layer.get());
    const uint8_t *glyph = glyphs.data(), *rim = rims.data();
    for (int32_t y = 0; y < box.height; ++y) {
        uint32_t *to = layer->pixels + (static_cast<size_t>(y) << layer->log2Width);
        for (int32_t x = 0; x < box.width; ++x)
            *to++ = over(text.style.color, (*glyph++ * alphaOf(text.style.color) + 127) / 255, text.style.rimColor,
                         (*rim++ * alphaOf(text.style.rimColor) + 127) / 255);
    }
    text.layer = std::move(layer);
    text.layerBox = box;
    text.layerBytes = bytes;
    return true;
}

bool drawLayer(const char *function, const NfkText &text, int32_t x, int32_t y, int32_t alpha)
{
    const bool fades = alpha < 255;
    const uint32_t code = textCode(fades ? NINEFOLD_PRESCALE_ON : NINEFOLD_PRESCALE_OFF, NINEFOLD_MULTI_NONE);
    const DrawFunc kernel = kernelOf(function, code);
    if (!kernel)
        return false;
    const Restored restored;
    rs.tex0 = text.layer.get();
    rs.prescale = static_cast<uint32_t>(alpha + (alpha >> 7)); // 255 stands for 256, which is one
    drawPart(code, kernel, x + text.layerBox.x, y + text.layerBox.y, 0, 0, text.layerBox.width, text.layerBox.height);
    return true;
}

} // namespace

bool gather(const char *function, const NfkText &text, int32_t bytes, std::vector<Stamp> &stamps)
{
    Atlas &atlas = text.font->atlas();
    // A second time where the atlas was begun again on the way, which voids what was found before.
    for (int turn = 0; turn < 2; ++turn) {
        stamps.clear();
        bool whole = true;
        for (const bool rim : {true, false}) {
            if (alphaOf(rim ? text.style.rimColor : text.style.color) == 0 || (rim && text.style.rim == 0))
                continue;
            for (const PlacedGlyph &glyph : text.layout.glyphs) {
                if (bytes >= 0 && glyph.byte >= bytes)
                    continue;
                const int32_t x = glyph.x + 32 / phases; // to the nearest phase
                Slot slot;
                const auto result =
                    atlas.find(*glyph.face, glyph.glyph, (x & 63) / (64 / phases), rim ? text.style.rim : 0, slot);
                if (result == Atlas::Result::Failed)
                    return fail("%s: glyph %u of %s cannot be drawn in this size", function, glyph.glyph,
                                glyph.face->family.c_str());
                whole &= result == Atlas::Result::Kept || stamps.empty();
                if (slot.width > 0)
                    stamps.push_back({slot, (x >> 6) + slot.left, ((glyph.y + 32) >> 6) + slot.top, rim});
            }
        }
        if (whole)
            return true;
    }
    return fail("%s: the text's glyphs do not fit an atlas of %u by %u pixels: divide the text, or take a smaller font", function,
                maxAtlasSide, maxAtlasSide);
}

NfkRect boxOf(const std::vector<Stamp> &stamps)
{
    if (stamps.empty())
        return {};
    int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;
    for (const Stamp &stamp : stamps) {
        left = std::min(left, stamp.x);
        top = std::min(top, stamp.y);
        right = std::max(right, stamp.x + stamp.slot.width);
        bottom = std::max(bottom, stamp.y + stamp.slot.height);
    }
    return {left, top, right - left, bottom - top};
}

bool draw(const char *function, NfkText &text, int32_t x, int32_t y, int32_t alpha, int32_t bytes)
{
    if (!rs.dstPixels)
        return fail("%s: there is no frame buffer: make a screen, or call SetFrameBuffer", function);
    if (std::abs(int64_t{x}) > NFK_TEXT_MAX_POSITION || std::abs(int64_t{y}) > NFK_TEXT_MAX_POSITION)
        return fail("%s: position %d, %d: it must be within %d pixels", function, int(x), int(y), NFK_TEXT_MAX_POSITION);
    if (alpha < 0 || alpha > 255)
        return fail("%s: alpha %d: it is 0 to 255", function, int(alpha));
    if (alpha == 0)
        return true;
    std::vector<Stamp> stamps;
    if (!gather(function, text, bytes, stamps))
        return false;
    if (stamps.empty())
        return true;
    const bool opaque = alpha == 255 && std::all_of(stamps.begin(), stamps.end(), [&](const Stamp &stamp) {
                            return alphaOf(stamp.rim ? text.style.rimColor : text.style.color) == 255;
                        });
    if (opaque)
        return drawStamps(function, text, x, y, stamps);
    return makeLayer(function, text, stamps, bytes) && drawLayer(function, text, x, y, alpha);
}

} // namespace nfk::text
