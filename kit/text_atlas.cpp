#include "text_atlas.h"

#include "text_font.h"

#include FT_STROKER_H

#include <algorithm>
#include <new>

namespace nfk::text {
namespace {

struct GlyphRelease {
    void operator()(FT_Glyph glyph) const { FT_Done_Glyph(glyph); }
};
using Glyph = std::unique_ptr<FT_GlyphRec_, GlyphRelease>;

// The outline grown by `rim` pixels on its outside. False if FreeType cannot.
bool growOutline(FT_Library library, Glyph &glyph, int32_t rim)
{
    FT_Stroker stroker = nullptr;
    if (FT_Stroker_New(library, &stroker) != 0)
        return false;
    FT_Stroker_Set(stroker, FT_Fixed{rim} * 64, FT_STROKER_LINECAP_ROUND, FT_STROKER_LINEJOIN_ROUND, 0);
    FT_Glyph outline = glyph.release();
    const bool grown = FT_Glyph_StrokeBorder(&outline, stroker, false, true) == 0;
    glyph.reset(outline);
    FT_Stroker_Done(stroker);
    return grown;
}

// An 8-bit coverage bitmap, or null: the glyph has no outline or FreeType gives up. `empty` tells the two apart.
Glyph rasterise(const Face &face, uint32_t index, int32_t phase, int32_t rim, bool &empty)
{
    empty = false;
    if (FT_Load_Glyph(face.face, index, glyphLoadFlags) != 0)
        return nullptr;
    if (face.face->glyph->format != FT_GLYPH_FORMAT_OUTLINE || face.face->glyph->outline.n_points == 0) {
        empty = true;
        return nullptr;
    }
    FT_Glyph loaded = nullptr;
    if (FT_Get_Glyph(face.face->glyph, &loaded) != 0)
        return nullptr;
    Glyph glyph(loaded);
    if (rim > 0 && !growOutline(face.face->glyph->library, glyph, rim))
        return nullptr;
    FT_Vector origin = {phase * 64 / phases, 0};
    FT_Glyph bitmap = glyph.release();
    const bool drawn = FT_Glyph_To_Bitmap(&bitmap, FT_RENDER_MODE_NORMAL, &origin, true) == 0;
    glyph.reset(bitmap);
    if (!drawn)
        return nullptr;
    return glyph;
}

struct Box {
    int32_t left, top, right, bottom;
};

// The part of a bitmap that is not empty.
Box inkOf(const FT_Bitmap &bitmap)
{
    Box box{static_cast<int32_t>(bitmap.width), static_cast<int32_t>(bitmap.rows), 0, 0};
    for (int32_t y = 0; y < static_cast<int32_t>(bitmap.rows); ++y) {
        const uint8_t *row = bitmap.buffer + y * bitmap.pitch;
        for (int32_t x = 0; x < static_cast<int32_t>(bitmap.width); ++x) {
            if (!row[x])
                continue;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), y + 1};
        }
    }
    return box;
}

} // namespace

Atlas::Result Atlas::find(const Face &face, uint32_t index, int32_t phase, int32_t rim, Slot &slot)
{
    const uint64_t key = uint64_t{index} | uint64_t{face.number} << 32 | uint64_t(phase) << 52 | uint64_t(rim) << 54;
    static_assert(phases <= 4 && NFK_TEXT_MAX_RIM < 1 << 10);
    if (const auto known = slots_.find(key); known != slots_.end()) {
        slot = known->second;
        return Result::Kept;
    }

    slot = {};
    Result result = Result::Kept;
    bool empty;
    const Glyph glyph = rasterise(face, index, phase, rim, empty);
    if (!glyph && !empty)
        return Result::Failed;
    if (glyph) {
        const auto &drawn = *reinterpret_cast<FT_BitmapGlyph>(glyph.get());
        const Box box = inkOf(drawn.bitmap);
        if (box.right > box.left) {
            slot.width = box.right - box.left;
            slot.height = box.bottom - box.top;
            slot.left = drawn.left + box.left;
            slot.top = box.top - drawn.top;
            if (uint32_t(slot.width) > maxAtlasSide || uint32_t(slot.height) > maxAtlasSide)
                return Result::Failed;
            if (!place(slot)) {
                clear();
                result = Result::Cleared;
                if (!place(slot))
                    return Result::Failed;
            }
            for (int32_t y = 0; y < slot.height; ++y) {
                const uint8_t *from = drawn.bitmap.buffer + (box.top + y) * drawn.bitmap.pitch + box.left;
                uint32_t *to = texture_->pixels + (static_cast<size_t>(slot.y + y) << texture_->log2Width) + slot.x;
                for (int32_t x = 0; x < slot.width; ++x)
                    to[x] = from[x] ? uint32_t{from[x]} << 24 | 0xFFFFFF : 0;
            }
        }
    }
    slots_.emplace(key, slot);
    return result;
}

// On the lowest shelf that is high enough without wasting much, else on a new one.
bool Atlas::place(Slot &slot)
{
    const auto fits = [&] {
        const auto width = static_cast<int32_t>(texture_->width), height = static_cast<int32_t>(texture_->height);
        Shelf *best = nullptr;
        for (Shelf &shelf : shelves_)
            if (shelf.height >= slot.height && shelf.height <= slot.height * 3 / 2 + 4 && shelf.used + slot.width <= width &&
                (!best || shelf.height < best->height))
                best = &shelf;
        const int32_t bottom = shelves_.empty() ? 0 : shelves_.back().y + shelves_.back().height;
        if (!best) {
            if (bottom + slot.height > height || slot.width > width)
                return false;
            best = &shelves_.emplace_back(Shelf{bottom, slot.height, 0});
        }
        slot.x = best->used;
        slot.y = best->y;
        best->used += slot.width;
        return true;
    };
    if (!texture_ && !grow())
        return false;
    while (!fits())
        if (!grow())
            return false;
    return true;
}

// Twice the size, with what is there; false if it is as large as it gets.
bool Atlas::grow()
{
    uint32_t width = 256, height = 256;
    if (texture_) {
        width = texture_->width, height = texture_->height;
        if (width >= maxAtlasSide && height >= maxAtlasSide)
            return false;
        (width <= height ? width : height) *= 2;
    }
    std::unique_ptr<Texture, Release> next(CreateTexture(width, height));
    if (!next->pixels)
        throw std::bad_alloc();
    ClearTexture(next.get());
    if (texture_)
        CopyTexture(next.get(), texture_.get(), 0, 0, 0, 0, static_cast<long>(texture_->width),
                    static_cast<long>(texture_->height));
    texture_ = std::move(next);
    return true;
}

void Atlas::clear()
{
    ClearTexture(texture_.get());
    shelves_.clear();
    slots_.clear();
}

} // namespace nfk::text
