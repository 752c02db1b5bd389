// Glyphs by FreeType, of faces that fontconfig finds: bit for bit those of GetGlyphOutlineA in 64-bit Wine 8, which hints with
// FreeType too. What looks arbitrary here (em of a cell, clip, emboldening, slant, advance) is what it does.
//
// fontconfig gets the name, regular or bold, and the slant. Where it has no face of that name it falls back to a monospaced one
// that covers Japanese, then to any. Without any face every glyph is empty.
#if NINEFOLD_GLYPHS && !defined(_WIN32)

#include "glyph/page932.h"
#include "glyph/source.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_BITMAP_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace ninefold::glyph {
namespace {

// In 1/64 pixel, y up.
struct Bounds {
    FT_Pos left, bottom, right, top;
};

FT_Pos floorPixel(FT_Pos position) { return position & ~FT_Pos{63}; }

FT_Pos ceilPixel(FT_Pos position) { return floorPixel(position + 63); }

// A face as a font description asks for it.
class Font {
public:
    bool isOf(const FontDescription &font) const
    {
        return font.weight == description_.weight && font.italic == description_.italic &&
               std::memcmp(font.name, description_.name, sizeof font.name) == 0;
    }

    bool exists() const { return face_ != nullptr; }
    FT_Face face() const { return face_; }

    // Replaces what it was before.
    void find(const FontDescription &font, FT_Library library)
    {
        if (face_)
            FT_Done_Face(face_);
        *this = {};
        description_ = font;

        char family[3 * sizeof font.name];
        if (!utf8Of932(font.name, family))
            std::memcpy(family, font.name, sizeof font.name); // then it may be UTF-8 already
        FcPattern *wanted = FcPatternCreate();
        if (!wanted)
            return;
        if (*family)
            FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family));
        FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8 *>("monospace"));
        FcPatternAddString(wanted, FC_LANG, reinterpret_cast<const FcChar8 *>("ja"));
        FcPatternAddInteger(wanted, FC_WEIGHT, wantsBold() ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(wanted, FC_SLANT, font.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(wanted, FC_SCALABLE, FcTrue);
        FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
        FcDefaultSubstitute(wanted);
        FcResult result;
        if (FcPattern *found = FcFontMatch(nullptr, wanted, &result)) {
            FcChar8 *file;
            int index;
            if (FcPatternGetString(found, FC_FILE, 0, &file) == FcResultMatch &&
                FcPatternGetInteger(found, FC_INDEX, 0, &index) == FcResultMatch)
                openFace(library, reinterpret_cast<const char *>(file), index);
            FcPatternDestroy(found);
        }
        FcPatternDestroy(wanted);
    }

    void setHeight(int32_t height)
    {
        if (sized_ && height == description_.height)
            return;
        description_.height = height;
        if (height == 0)
            height = 16;
        const FT_Long em = face_->units_per_EM;
        FT_Long ppem = -FT_Long{height};
        if (height > 0) {
            const FT_Long cell = ascent() + descent();
            ppem = FT_MulDiv(em, height, cell);
            if (ppem > 1 && FT_MulDiv(cell, ppem, em) > height)
                --ppem;
        }
        scale_ = FT_MulDiv(ppem, 0x10000, em);
        emboldening_ = FT_MulDiv(ppem, 64, 24);
        sized_ = FT_Set_Pixel_Sizes(face_, 0, static_cast<FT_UInt>(ppem)) == 0;
    }

    // Leaves the glyph in the face's slot, moved so that the box begins at the origin.
    bool load(FT_UInt index, Format format, FT_Library library, Bounds &box, int32_t &advance)
    {
        if (!sized_)
            return false;
        const bool mono = format == Format::Mono;
        FT_Int32 flags = FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | (mono ? FT_LOAD_TARGET_MONO : FT_LOAD_TARGET_NORMAL);
        if (!mono || slants_)
            flags |= FT_LOAD_NO_BITMAP;
        if (FT_Load_Glyph(face_, index, flags) != 0 && FT_Load_Glyph(face_, index, flags | FT_LOAD_NO_HINTING) != 0)
            return false;

        const FT_Glyph_Metrics &metrics = face_->glyph->metrics;
        box = {metrics.horiBearingX, metrics.horiBearingY - metrics.height, metrics.horiBearingX + metrics.width,
               metrics.horiBearingY};
        advance = advanceOf(metrics.horiAdvance);
        if (emboldens_)
            embolden(library, box);
        box.top = std::min<FT_Pos>(box.top, pixels(ascent()) * 64);
        box.bottom = std::max<FT_Pos>(box.bottom, -pixels(descent()) * 64);
        if (slants_)
            slant(box);
        box = {floorPixel(box.left), floorPixel(box.bottom), ceilPixel(box.right), ceilPixel(box.top)};
        FT_Outline_Translate(&face_->glyph->outline, -box.left, -box.bottom);
        return true;
    }

private:
    bool wantsBold() const { return description_.weight > 550; }

    void openFace(FT_Library library, const char *file, int index)
    {
        if (FT_New_Face(library, file, index, &face_) != 0) {
            face_ = nullptr;
        } else if (!FT_IS_SCALABLE(face_) || face_->units_per_EM == 0) {
            FT_Done_Face(face_);
            face_ = nullptr;
        } else {
            os2_ = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face_, FT_SFNT_OS2));
            hhea_ = static_cast<const TT_HoriHeader *>(FT_Get_Sfnt_Table(face_, FT_SFNT_HHEA));
            emboldens_ = wantsBold() && !(face_->style_flags & FT_STYLE_FLAG_BOLD);
            slants_ = description_.italic && !(face_->style_flags & FT_STYLE_FLAG_ITALIC);
        }
    }

    // What the cell has above and below the base line, in units of the design.
    bool hasWinCell() const { return os2_ && (os2_->usWinAscent != 0 || os2_->usWinDescent != 0); }
    FT_Long ascent() const { return hasWinCell() ? os2_->usWinAscent : hhea_ ? hhea_->Ascender : face_->ascender; }
    FT_Long descent() const
    {
        if (hasWinCell())
            return std::abs(static_cast<FT_Short>(os2_->usWinDescent));
        return -(hhea_ ? hhea_->Descender : face_->descender);
    }

    // From units of the design, rounded.
    FT_Long pixels(FT_Long units) const { return FT_MulFix(units, scale_); }

    void embolden(FT_Library library, Bounds &box)
    {
        FT_GlyphSlot slot = face_->glyph;
        if (slot->format == FT_GLYPH_FORMAT_OUTLINE && FT_Outline_Embolden(&slot->outline, emboldening_) == 0) {
            FT_BBox bounds;
            FT_Outline_Get_CBox(&slot->outline, &bounds);
            box = {bounds.xMin, bounds.yMin, bounds.xMax, bounds.yMax};
            return;
        }
        if (box.right > box.left)
            box.right += 64;
        if (slot->format == FT_GLYPH_FORMAT_BITMAP && FT_GlyphSlot_Own_Bitmap(slot) == 0)
            FT_Bitmap_Embolden(library, &slot->bitmap, 64, 0);
    }

    void slant(Bounds &box)
    {
        const FT_Matrix matrix = {0x10000, 0x4000, 0, 0x10000};
        FT_Outline_Transform(&face_->glyph->outline, &matrix);
        // Clipped boxes may be upside down: those turn over.
        FT_Vector corners[] = {{box.left, box.bottom}, {box.left, box.top}, {box.right, box.bottom}, {box.right, box.top}};
        for (FT_Vector &corner : corners)
            FT_Vector_Transform(&corner, &matrix);
        const auto [left, right] = std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
        const auto [bottom, top] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
        box = {left, bottom, right, top};
    }

    int32_t advanceOf(FT_Pos hinted) const
    {
        if (os2_ && (FT_IS_FIXED_WIDTH(face_) || os2_->panose[3] == 9)) {
            // A full-width glyph is exactly two half-width ones.
            const FT_Long average = pixels(os2_->xAvgCharWidth);
            if (average > 0 && (hinted + 63) >> 6 == pixels(2 * FT_Long{os2_->xAvgCharWidth}))
                hinted = 2 * average * 64;
        }
        if (emboldens_)
            hinted += 64;
        return static_cast<int16_t>(hinted >> 6);
    }

    FontDescription description_{};
    FT_Face face_ = nullptr;
    const TT_OS2 *os2_ = nullptr;
    const TT_HoriHeader *hhea_ = nullptr;
    bool emboldens_ = false, slants_ = false; // what the face lacks
    bool sized_ = false; // for the description's height
    FT_Fixed scale_ = 0; // pixels per unit, 16.16
    FT_Pos emboldening_ = 0;
};

class FreeTypeSource final : public Source {
public:
    void open(const FontDescription &description) override
    {
        loaded_ = false;
        font_ = nullptr;
        if (!library_ && FT_Init_FreeType(&library_) != 0) {
            library_ = nullptr;
            return;
        }
        font_ = std::find_if(fonts_, fonts_ + fontCount_, [&](const Font &font) { return font.isOf(description); });
        if (font_ == fonts_ + fontCount_) {
            if (fontCount_ < std::size(fonts_))
                ++fontCount_;
            else
                font_ = &fonts_[nextFont_++ % std::size(fonts_)];
            font_->find(description, library_);
        }
        if (font_->exists())
            font_->setHeight(description.height);
        else
            font_ = nullptr;
    }

    bool isLeadByte(uint8_t byte) override { return isLeadByte932(byte); }

    uint32_t outline(uint32_t code, Format format, Metrics &metrics, uint32_t size, uint8_t *bitmap) override
    {
        if (!font_) {
            metrics = {};
            return 0;
        }
        // The size is asked for first, then the bitmap: the glyph stays loaded in between.
        if (!loaded_ || code != code_ || format != format_) {
            loaded_ = font_->load(glyphIndex(code), format, library_, box_, advance_);
            code_ = code;
            format_ = format;
        }
        if (!loaded_)
            return failed;

        const FT_Pos width = (box_.right - box_.left) >> 6;
        const FT_Pos height = (box_.top - box_.bottom) >> 6;
        const FT_Pos pitch = format == Format::Mono ? (width + 31) >> 5 << 2 : (width + 3) & ~FT_Pos{3};
        uint32_t bytes = 0;
        if (width > 0 && height > 0) {
            if (width > 0x7FFF || height > 0x7FFF)
                return failed; // more than FreeType rasterises
            bytes = static_cast<uint32_t>(pitch * height);
            if (size != 0 && (size < bytes || !render(format, width, height, pitch, bitmap)))
                return failed;
        }
        metrics.width = static_cast<uint32_t>(std::max<FT_Pos>(width, 1));
        metrics.height = static_cast<uint32_t>(std::max<FT_Pos>(height, 1));
        metrics.originX = static_cast<int32_t>(box_.left >> 6);
        metrics.originY = static_cast<int32_t>(box_.top >> 6);
        metrics.advance = advance_;
        return bytes;
    }

    // Fonts stay open: finding and opening one takes as long as a thousand glyphs.
    void close(Release) override {}

private:
    // 0, the box of a missing glyph, for what the page or the face lacks.
    FT_UInt glyphIndex(uint32_t code)
    {
        const char16_t character = drawnCharacter932(code);
        return character == undefined932 ? 0 : FT_Get_Char_Index(font_->face(), character);
    }

    bool render(Format format, FT_Pos width, FT_Pos height, FT_Pos pitch, uint8_t *bitmap)
    {
        FT_GlyphSlot slot = font_->face()->glyph;
        if (slot->format == FT_GLYPH_FORMAT_BITMAP) {
            const FT_Bitmap &strike = slot->bitmap;
            const auto row = static_cast<size_t>(std::min<FT_Pos>(pitch, std::abs(strike.pitch)));
            for (FT_Pos y = 0; y < std::min<FT_Pos>(height, strike.rows); ++y)
                std::memcpy(bitmap + y * pitch, strike.buffer + y * strike.pitch, row);
            return true;
        }
        FT_Bitmap target{};
        target.rows = static_cast<unsigned>(height);
        target.width = static_cast<unsigned>(width);
        target.pitch = static_cast<int>(pitch);
        target.buffer = bitmap;
        target.num_grays = 256;
        target.pixel_mode = format == Format::Mono ? FT_PIXEL_MODE_MONO : FT_PIXEL_MODE_GRAY;
        if (FT_Outline_Get_Bitmap(library_, &slot->outline, &target) != 0)
            return false;
        if (format != Format::Mono) {
            const uint32_t levels = format == Format::Grey4 ? 4 : format == Format::Grey16 ? 16 : 64;
            std::transform(bitmap, bitmap + pitch * height, bitmap,
                           [=](uint8_t value) { return static_cast<uint8_t>(value * (levels + 1) / 256); });
        }
        return true;
    }

    FT_Library library_ = nullptr;
    Font fonts_[8]; // the last ones asked for
    size_t fontCount_ = 0, nextFont_ = 0;
    Font *font_ = nullptr; // one of them; null if no face could be opened

    // the glyph in the slot of the font's face
    bool loaded_ = false;
    uint32_t code_ = 0;
    Format format_ = Format::Mono;
    Bounds box_{};
    int32_t advance_ = 0;
};

constinit FreeTypeSource source;

} // namespace

Source &platformSource() { return source; }

} // namespace ninefold::glyph

#endif
