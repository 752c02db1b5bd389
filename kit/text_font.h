// Fonts: a face that was asked for, and the faces that help out where it lacks a character.
#pragma once

#include "text_atlas.h"

#include <ninefold/kit/text.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include <fontconfig/fontconfig.h>
#include <hb.h>

#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace nfk::text {

using Library = std::shared_ptr<FT_LibraryRec_>;

// A face of one size. `number` tells the faces of a font apart.
class Face {
public:
    // Null where the file has no such face, or none that can be scaled.
    static std::unique_ptr<Face> open(const Library &library, const char *file, int index, int32_t pixels, uint32_t number);
    ~Face();
    Face(const Face &) = delete;
    Face &operator=(const Face &) = delete;

    bool has(char32_t character) const { return FT_Get_Char_Index(face, character) != 0; }
    bool hasAll(std::span<const char32_t> characters) const;

    const std::string file, family, style;
    const int index;
    const uint32_t number;
    FT_FaceRec *const face;
    hb_font_t *const shaper;

private:
    Face(Library library, const char *path, int place, uint32_t count, FT_Face opened);

    const Library library_; // outlives the face
};

class Font {
public:
    // Null, with a text, if there is no font.
    static std::shared_ptr<Font> byName(const char *function, const char *name, int32_t pixels);
    static std::shared_ptr<Font> byFile(const char *function, const char *file, int index, int32_t pixels);

    Face &primary() { return *faces_.front(); }
    const Face &primary() const { return *faces_.front(); }
    bool found() const { return found_; }
    hb_language_t language() const { return language_; }

    // The face for a character and the marks on it: one with all of them if there is one, else one with the character, else the
    // primary face, whose missing-glyph box then stands for it.
    Face &faceFor(std::span<const char32_t> cluster);

    int32_t ascent() const, descent() const, lineHeight() const;

    Atlas &atlas() { return atlas_; }
    const Atlas &atlas() const { return atlas_; }

private:
    struct PatternRelease {
        void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
        void operator()(FcFontSet *set) const { FcFontSetDestroy(set); }
    };
    using Pattern = std::unique_ptr<FcPattern, PatternRelease>;

    Font(Library library, int32_t pixels) : library_(std::move(library)), pixels_(pixels) {}
    bool sort(Pattern pattern);
    Face *candidate(size_t at);

    const Library library_;
    const int32_t pixels_;
    bool found_ = false;
    hb_language_t language_ = HB_LANGUAGE_INVALID;
    std::vector<std::unique_ptr<Face>> faces_; // open ones, the primary one first
    // All faces of the system, best first, and which of them are open.
    std::unique_ptr<FcFontSet, PatternRelease> sorted_;
    struct Candidate {
        Face *face = nullptr;
        bool tried = false;
    };
    std::vector<Candidate> candidates_;
    std::unordered_map<char32_t, Face *> known_; // of single characters
    Atlas atlas_;
};

} // namespace nfk::text

struct NfkFont {
    std::shared_ptr<nfk::text::Font> font;
};
