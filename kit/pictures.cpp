// Pictures: what kind a file is, and how a decoded one becomes a texture.
#include "pictures_canvas.h"

#include "error.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace nfk::pictures {

static_assert(std::endian::native == std::endian::little, "decoders write blue, green, red and alpha bytes as one word");

Canvas::~Canvas()
{
    if (texture_)
        DeleteTexture(texture_);
}

bool Canvas::refuse(const char *format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(reason_, sizeof reason_, format, arguments);
    va_end(arguments);
    return false;
}

bool Canvas::start(uint64_t width, uint64_t height) noexcept
{
    if (width == 0 || height == 0)
        return refuse("its size is %llu by %llu pixels", static_cast<unsigned long long>(width),
                      static_cast<unsigned long long>(height));
    const uint64_t edge = extras_ & NFK_PICTURE_EDGE ? 2 : 0; // a pixel on each side
    if (width > NFK_PICTURE_MAX_SIDE || height > NFK_PICTURE_MAX_SIDE ||
        std::bit_ceil(width + edge) * std::bit_ceil(height + edge) > NFK_PICTURE_MAX_PIXELS)
        return refuse(
            "%llu by %llu pixels are more than the limit: sides of up to %d, and %d pixels once the sides are rounded up to "
            "powers of two",
            static_cast<unsigned long long>(width), static_cast<unsigned long long>(height), NFK_PICTURE_MAX_SIDE,
            NFK_PICTURE_MAX_PIXELS);
    try {
        texture_ = CreateTexture(static_cast<unsigned long>(width + edge), static_cast<unsigned long>(height + edge));
    } catch (const std::bad_alloc &) {
    }
    if (!texture_ || !texture_->pixels)
        return refuse("there is no memory for %llu by %llu pixels", static_cast<unsigned long long>(width),
                      static_cast<unsigned long long>(height));
    texture_->origWidth = static_cast<uint32_t>(width);
    texture_->origHeight = static_cast<uint32_t>(height);
    return true;
}

void Canvas::fillOutside()
{
    const uint32_t width = texture_->origWidth, height = texture_->origHeight;
    const uint32_t allColumns = texture_->width, allRows = texture_->height;
    const bool repeats = extras_ & NFK_PICTURE_EDGE;
    // Where the repetition of the last pixel ends and that of the first one begins.
    const uint32_t middleColumn = width + (allColumns - width) / 2, middleRow = height + (allRows - height) / 2;
    for (uint32_t y = 0; y < height; ++y) {
        uint32_t *line = row(y);
        std::fill(line + width, line + middleColumn, repeats ? line[width - 1] : 0);
        std::fill(line + middleColumn, line + allColumns, repeats ? line[0] : 0);
    }
    for (uint32_t y = height; y < allRows; ++y) {
        if (repeats)
            std::copy_n(row(y < middleRow ? height - 1 : 0), allColumns, row(y));
        else
            std::fill_n(row(y), allColumns, 0);
    }
}

Texture *Canvas::finish()
{
    for (uint32_t y = 0; y < texture_->origHeight; ++y) {
        uint32_t *line = row(y);
        for (uint32_t x = 0; x < texture_->origWidth; ++x)
            line[x] = line[x] >> 24 ? line[x] : 0;
    }
    fillOutside();
    try {
        if (extras_ & NFK_PICTURE_MIP_CHAIN) {
            // The library takes it for granted that there is memory for the chain: a third of the pixels, asked for here as a
            // whole.
            std::unique_ptr<void, void (*)(void *)> room(std::malloc(size_t{texture_->width} * texture_->height / 3 * 4 + 65536),
                                                         std::free);
            if (!room)
                throw std::bad_alloc();
            room.reset();
            CreateMipmapTexture(texture_);
        }
        if (extras_ & NFK_PICTURE_RUN_MAP)
            CreateRunlengthMap(texture_);
        if (extras_ & NFK_PICTURE_ZERO_MAP)
            CreateZeroPixelMap(texture_);
    } catch (const std::bad_alloc &) {
        refuse("there is no memory for its mip chain or maps");
        return nullptr;
    }
    return std::exchange(texture_, nullptr);
}

namespace {

struct Kind {
    const char *name;
    bool (*decode)(Bytes, Canvas &);
    bool (*matches)(Bytes);
};

bool begins(Bytes file, size_t at, std::string_view signature)
{
    return file.size >= at + signature.size() && std::memcmp(file.data + at, signature.data(), signature.size()) == 0;
}

constexpr Kind kinds[] = {
    {"PNG", decodePng, [](Bytes file) { return begins(file, 0, "\x89PNG\r\n\x1A\n"); }},
    {"JPEG", decodeJpeg, [](Bytes file) { return begins(file, 0, "\xFF\xD8\xFF"); }},
    {"WebP", decodeWebp, [](Bytes file) { return begins(file, 0, "RIFF") && begins(file, 8, "WEBP"); }},
    {"BMP", decodeBmp, [](Bytes file) { return begins(file, 0, "BM"); }},
};

Texture *load(const char *function, Bytes file, const char *name, uint32_t extras)
{
    const auto kind = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind &one) { return one.matches(file); });
    if (kind == std::end(kinds)) {
        fail("%s: %s: %s", function, name, file.size == 0 ? "it is empty" : "it is not a PNG, JPEG, WebP or BMP file");
        return nullptr;
    }
    Canvas canvas(extras);
    Texture *texture = kind->decode(file, canvas) ? canvas.finish() : nullptr;
    if (!texture)
        fail("%s: %s (%s): %s", function, name, kind->name, canvas.reason());
    return texture;
}

using File = std::unique_ptr<FILE, int (*)(FILE *)>;

// False with a text if there is no such file, or too much of it.
bool readFile(const char *function, const char *path, std::vector<uint8_t> &bytes)
{
    const File file(std::fopen(path, "rb"), std::fclose);
    if (!file)
        return fail("%s: %s: %s", function, path, std::strerror(errno));
    constexpr size_t step = size_t{1} << 18;
    for (size_t size = 0;;) {
        bytes.resize(size + std::max(step, size / 2));
        const size_t count = std::fread(bytes.data() + size, 1, bytes.size() - size, file.get());
        size += count;
        if (std::ferror(file.get()))
            return fail("%s: %s: %s", function, path, std::strerror(errno));
        if (size > NFK_PICTURE_MAX_FILE)
            return fail("%s: %s: it is larger than %d bytes", function, path, NFK_PICTURE_MAX_FILE);
        if (count == 0) {
            bytes.resize(size);
            return true;
        }
    }
}

bool areExtras(const char *function, uint32_t extras)
{
    constexpr uint32_t all = 0
#define NFK_BIT(name, value, word, meaning) | value
        NFK_PICTURE_EXTRAS(NFK_BIT)
#undef NFK_BIT
        ;
    return !(extras & ~all) || fail("%s: extras %#x: only NFK_PICTURE_... up to %#x are known", function, extras, all);
}

} // namespace
} // namespace nfk::pictures

using namespace nfk::pictures;
using nfk::fail;
using nfk::guarded;

Texture *nfkLoadPictureMemory(const void *bytes, size_t size, const char *name, uint32_t extras)
{
    return guarded("nfkLoadPictureMemory", [&]() -> Texture * {
        name = name ? name : "memory";
        if (!areExtras("nfkLoadPictureMemory", extras))
            return nullptr;
        if (!bytes && size != 0)
            return fail("nfkLoadPictureMemory: %s: its bytes are null", name), nullptr;
        if (size > NFK_PICTURE_MAX_FILE)
            return fail("nfkLoadPictureMemory: %s: it is larger than %d bytes", name, NFK_PICTURE_MAX_FILE), nullptr;
        return load("nfkLoadPictureMemory", {static_cast<const uint8_t *>(bytes), size}, name, extras);
    });
}

Texture *nfkLoadPicture(const char *path, uint32_t extras)
{
    return guarded("nfkLoadPicture", [&]() -> Texture * {
        if (!path)
            return fail("nfkLoadPicture: the path is null"), nullptr;
        if (!areExtras("nfkLoadPicture", extras))
            return nullptr;
        std::vector<uint8_t> bytes;
        if (!readFile("nfkLoadPicture", path, bytes))
            return nullptr;
        return load("nfkLoadPicture", {bytes.data(), bytes.size()}, path, extras);
    });
}

int nfkSavePicture(const Texture *texture, const char *path, int alpha)
{
    return guarded("nfkSavePicture", [&]() -> int {
        if (!texture || !path || !texture->pixels)
            return fail("nfkSavePicture: %s null", !texture ? "the texture is"
                                                   : !path  ? "the path is"
                                                            : "the texture's pixels are");
        std::string reason;
        File file(std::fopen(path, "wb"), std::fclose);
        if (!file)
            return fail("nfkSavePicture: %s: %s", path, std::strerror(errno));
        bool whole = encodePng(file.get(), texture->pixels, texture->width, std::min(texture->origWidth, texture->width),
                               std::min(texture->origHeight, texture->height), alpha != 0, reason);
        if (std::fclose(file.release()) != 0 && whole) {
            whole = false;
            reason = std::strerror(errno);
        }
        if (whole)
            return 1;
        struct stat status;
        if (stat(path, &status) == 0 && S_ISREG(status.st_mode))
            std::remove(path);
        return fail("nfkSavePicture: %s: %s", path, reason.c_str());
    });
}
