// The kit for C++17: owning handles, and texture positions that do not narrow. Failures throw nfk::Error with the text of nfkError.
#ifndef NINEFOLD_KIT_HPP
#define NINEFOLD_KIT_HPP

#include <ninefold/kit.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace nfk {

struct Error : std::runtime_error {
    Error() : std::runtime_error(nfkError()) {}
};

// Passes on what a function of the kit returned, and throws where it failed.
template <class Result>
Result checked(Result result)
{
    if (!result)
        throw Error();
    return result;
}

// Names a texture that someone else owns. It goes where a `Texture *` is wanted, is compared with null, and cannot be deleted: a
// texture dies by DeleteTexture alone, and what `delete` would do to its memory is undefined. Sizes are int32_t, so that
// TexCoord{texture.width() << 16, texture.height() << 16} does not narrow.
class TextureRef {
public:
    TextureRef(::Texture *texture = nullptr) : texture_(texture) {}

    // The picture, as loaded or asked for, without the padding.
    int32_t width() const { return static_cast<int32_t>(texture_->origWidth); }
    int32_t height() const { return static_cast<int32_t>(texture_->origHeight); }
    // Powers of two: a row of pixels is paddedWidth() words.
    int32_t paddedWidth() const { return static_cast<int32_t>(texture_->width); }
    int32_t paddedHeight() const { return static_cast<int32_t>(texture_->height); }
    uint32_t *pixels() const { return texture_->pixels; }
    uint32_t *row(int32_t y) const { return texture_->pixels + (static_cast<size_t>(y) << texture_->log2Width); }
    // The texel position of the picture's far corner.
    TexCoord end() const { return {width() << 16, height() << 16}; }

    operator ::Texture *() const { return texture_; }
    // A second way to a pointer, so that `delete` does not know which is meant.
    operator const char *() const = delete;
    explicit operator bool() const { return texture_ != nullptr; }
    const ::Texture *operator->() const { return texture_; }

protected:
    ::Texture *texture_;
};

// Owns a texture. Moved, not copied.
class Texture : public TextureRef {
public:
    Texture() = default;
    // Takes over one from CreateTexture, LoadTexture, nfkTextureOver or the kit's loaders; throws where that is null.
    explicit Texture(::Texture *texture) : TextureRef(checked(texture)) {}
    // A cleared texture; throws where there is no memory for its pixels.
    Texture(int32_t width, int32_t height)
        : TextureRef(CreateTexture(static_cast<unsigned long>(width), static_cast<unsigned long>(height)))
    {
        if (!texture_->pixels) {
            reset();
            throw std::bad_alloc();
        }
        ClearTexture(texture_);
    }
    Texture(Texture &&other) noexcept : TextureRef(std::exchange(other.texture_, nullptr)) {}
    Texture &operator=(Texture &&other) noexcept
    {
        if (this != &other) {
            reset();
            texture_ = std::exchange(other.texture_, nullptr);
        }
        return *this;
    }
    ~Texture() { reset(); }

    void reset()
    {
        if (::Texture *const texture = std::exchange(texture_, nullptr))
            DeleteTexture(texture);
    }
    // Gives the texture up, for DeleteTexture.
    [[nodiscard]] ::Texture *release() { return std::exchange(texture_, nullptr); }
};

// Owns a screen, which is selected from the start.
class Screen {
public:
    Screen(int32_t width, int32_t height) : screen_(checked(nfkCreateScreen(width, height))) {}
    Screen(Screen &&other) noexcept : screen_(std::exchange(other.screen_, nullptr)) {}
    Screen &operator=(Screen &&other) noexcept
    {
        if (this != &other) {
            nfkReleaseScreen(screen_);
            screen_ = std::exchange(other.screen_, nullptr);
        }
        return *this;
    }
    ~Screen() { nfkReleaseScreen(screen_); }

    int32_t width() const { return screen_->width; }
    int32_t height() const { return screen_->height; }
    TextureRef texture() const { return screen_->texture; }
    NfkScreen *get() const { return screen_; }
    void resize(int32_t width, int32_t height) { checked(nfkResizeScreen(screen_, width, height)); }
    void select() { checked(nfkSelectScreen(screen_)); }
    void clear(uint32_t color = 0xFF000000) { checked(nfkClearScreen(screen_, color)); }
    // See nfkShow.
    void show(void *pixels, int32_t pitch, int32_t width, int32_t height, int32_t format) const
    {
        checked(nfkShow(screen_, pixels, pitch, width, height, format));
    }

private:
    NfkScreen *screen_;
};

// Owns a font.
class Font {
public:
    Font(const char *name, int32_t pixels) : Font(nfkOpenFont(name, pixels)) {}
    // Takes over one from nfkOpenFont or nfkOpenFontFile; throws where that is null.
    explicit Font(NfkFont *font) : font_(checked(font), nfkCloseFont) {}

    NfkFontInfo info() const
    {
        NfkFontInfo info;
        checked(nfkGetFontInfo(font_.get(), &info));
        return info;
    }
    void write(const char *utf8, int32_t x, int32_t y, const NfkTextStyle *style = nullptr)
    {
        checked(nfkWrite(font_.get(), utf8, x, y, style));
    }
    NfkFont *get() const { return font_.get(); }

private:
    std::unique_ptr<NfkFont, void (*)(NfkFont *)> font_;
};

// Owns a text.
class Text {
public:
    Text(const Font &font, const char *utf8, const NfkTextStyle *style = nullptr)
        : text_(checked(nfkMakeText(font.get(), utf8, style)), nfkDeleteText)
    {}

    NfkTextSize size() const
    {
        NfkTextSize size;
        checked(nfkMeasureText(text_.get(), &size));
        return size;
    }
    // See nfkDrawText.
    void draw(int32_t x, int32_t y, int32_t alpha = 255, int32_t bytes = -1)
    {
        checked(nfkDrawText(text_.get(), x, y, alpha, bytes));
    }
    NfkText *get() const { return text_.get(); }

private:
    std::unique_ptr<NfkText, void (*)(NfkText *)> text_;
};

} // namespace nfk

#endif
