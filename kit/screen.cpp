// Start, screens, and textures over the host's own pixels.
#include <ninefold/kit/screen.h>

#include "error.h"
#include "screen.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#if defined(__linux__)
#include <dlfcn.h>
#include <link.h>
#endif

namespace {

constexpr int32_t largestSide = 0x8000;

#if defined(__linux__)

// The soname of a loaded file; empty where it has none.
std::string sonameOf(const link_map *file)
{
    const char *strings = nullptr;
    ElfW(Xword) offset = 0;
    for (const ElfW(Dyn) *entry = file->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_STRTAB) {
            // Some loaders have put the address of the table in place of its offset, some have not.
            const ElfW(Addr) table = entry->d_un.d_ptr;
            strings = reinterpret_cast<const char *>(table < file->l_addr ? table + file->l_addr : table);
        } else if (entry->d_tag == DT_SONAME)
            offset = entry->d_un.d_val;
    }
    return strings && offset ? strings + offset : "";
}

// The file that a function of the library comes from. A program at a fixed address that takes the function's address stands in
// front of it; then its name finds it.
const link_map *libraryFile()
{
    link_map *file = nullptr;
    Dl_info info;
    if (dladdr1(reinterpret_cast<void *>(&SearchDrawFunc), &info, reinterpret_cast<void **>(&file), RTLD_DL_LINKMAP) && file &&
        !sonameOf(file).empty())
        return file;
    void *const symbol = dlsym(RTLD_DEFAULT, "SearchDrawFunc");
    return symbol && dladdr1(symbol, &info, reinterpret_cast<void **>(&file), RTLD_DL_LINKMAP) ? file : nullptr;
}

bool versionFits()
{
    const std::string wanted = "libninefold.so." + std::to_string(NINEFOLD_VERSION_MAJOR);
    const link_map *const file = libraryFile();
    const std::string soname = file ? sonameOf(file) : "";
    // Without the library's name it is part of the program, or of a library that was linked with it.
    if (soname.rfind("libninefold.so", 0) != 0 || soname == wanted)
        return true;
    return nfk::fail(
        "nfkStart: the program loaded %s, which is %s; this kit was built for %s: install that, or the kit of the other",
        file->l_name, soname.c_str(), wanted.c_str());
}

#else

bool versionFits() { return true; }

#endif

bool sizeFits(const char *function, int32_t width, int32_t height)
{
    if (width >= 1 && width <= largestSide && height >= 1 && height <= largestSide)
        return true;
    return nfk::fail("%s: %d x %d is no size for a screen; width and height are 1 to %d pixels", function, width, height,
                     largestSide);
}

struct Free {
    void operator()(void *memory) const { std::free(memory); }
    void operator()(Texture *texture) const { DeleteTexture(texture); }
};

// All that a screen owns.
struct Parts {
    std::unique_ptr<Texture, Free> texture;
    std::unique_ptr<uint16_t, Free> shaheiPlane;
    std::unique_ptr<uint8_t, Free> zBuffer;
};

bool make(Parts &parts, const char *function, int32_t width, int32_t height)
{
    // In frame buffers narrower than 16 pixels rows would share words of the Shahei plane.
    const uint32_t paddedWidth = std::bit_ceil(uint32_t(std::max(width, 16))), paddedHeight = std::bit_ceil(uint32_t(height));
    const size_t pixels = size_t{paddedWidth} * paddedHeight;
    parts.texture.reset(CreateTexture(paddedWidth, paddedHeight));
    parts.shaheiPlane.reset(static_cast<uint16_t *>(std::malloc(pixels / 8)));
    parts.zBuffer.reset(static_cast<uint8_t *>(std::malloc(pixels)));
    if (!parts.texture->pixels || !parts.shaheiPlane || !parts.zBuffer)
        return nfk::fail(
            "%s: no memory for a screen of %d x %d, which takes %.0f MiB: %u x %u pixels of 4 bytes and their planes", function,
            width, height, double(pixels) * 5.125 / 0x100000, paddedWidth, paddedHeight);
    parts.texture->origWidth = uint32_t(width);
    parts.texture->origHeight = uint32_t(height);
    return true;
}

bool isSelected(const NfkScreen *screen) { return rs.frameBuffer == screen->texture; }

void fill(NfkScreen *screen, int32_t width, int32_t height, Parts &parts)
{
    *screen = {width, height, parts.texture.release(), parts.shaheiPlane.release(), parts.zBuffer.release()};
    nfkClearScreen(screen, 0xFF000000);
}

} // namespace

bool nfk::started;

int nfkStart(void)
{
    return nfk::guarded("nfkStart", [] {
        if (nfk::started)
            return 1;
        if (!versionFits())
            return 0;
        MakeUVLShiftTable();
        MakeShaheiRunlengthTbl();
        MakeDrawMaskTable();
        MakeDrawFuncTable();
        nfk::started = true;
        return 1;
    });
}

NfkScreen *nfkCreateScreen(int32_t width, int32_t height)
{
    return nfk::guarded("nfkCreateScreen", [&]() -> NfkScreen * {
        Parts parts;
        if (!nfkStart() || !sizeFits("nfkCreateScreen", width, height) || !make(parts, "nfkCreateScreen", width, height))
            return nullptr;
        auto *const screen = new NfkScreen;
        fill(screen, width, height, parts);
        nfkSelectScreen(screen);
        return screen;
    });
}

int nfkResizeScreen(NfkScreen *screen, int32_t width, int32_t height)
{
    return nfk::guarded("nfkResizeScreen", [&]() -> int {
        if (!screen)
            return nfk::fail("nfkResizeScreen: the screen is null");
        Parts parts;
        if (!sizeFits("nfkResizeScreen", width, height) || !make(parts, "nfkResizeScreen", width, height))
            return 0;
        const bool selected = isSelected(screen);
        const Parts old{std::unique_ptr<Texture, Free>(screen->texture), std::unique_ptr<uint16_t, Free>(screen->shaheiPlane),
                        std::unique_ptr<uint8_t, Free>(screen->zBuffer)};
        fill(screen, width, height, parts);
        return selected ? nfkSelectScreen(screen) : 1;
    });
}

int nfkSelectScreen(const NfkScreen *screen)
{
    if (!screen)
        return nfk::fail("nfkSelectScreen: the screen is null");
    SetFrameBuffer(screen->texture);
    rs.clipLeft = rs.clipTop = 0;
    rs.clipRight = screen->width;
    rs.clipBottom = screen->height;
    rs.shaheiPlane = screen->shaheiPlane;
    rs.zBuffer = screen->zBuffer;
    return 1;
}

int nfkClearScreen(NfkScreen *screen, uint32_t color)
{
    if (!screen)
        return nfk::fail("nfkClearScreen: the screen is null");
    const size_t pixels = size_t{screen->texture->width} * screen->texture->height;
    std::fill_n(screen->texture->pixels, pixels, color);
    std::memset(screen->shaheiPlane, 0, pixels / 8);
    std::memset(screen->zBuffer, 255, pixels);
    return 1;
}

void nfkReleaseScreen(NfkScreen *screen)
{
    if (!screen)
        return;
    if (isSelected(screen)) {
        rs.frameBuffer = nullptr;
        rs.dstPixels = nullptr;
        rs.dstShift = rs.dstPitch = rs.dstHeight = 0;
        rs.clipLeft = rs.clipTop = rs.clipRight = rs.clipBottom = 0;
        rs.shaheiPlane = nullptr;
        rs.zBuffer = nullptr;
    }
    DeleteTexture(screen->texture);
    std::free(screen->shaheiPlane);
    std::free(screen->zBuffer);
    delete screen;
}

Texture *nfkTextureOver(uint32_t *pixels, int32_t width, int32_t height)
{
    return nfk::guarded("nfkTextureOver", [&]() -> Texture * {
        constexpr uint32_t large = 0x8000; // a record of 4 GiB comes without pixels of its own
        const char *wrong = nullptr;
        if (!pixels)
            return nfk::fail("nfkTextureOver: the pixels are null"), nullptr;
        if (reinterpret_cast<uintptr_t>(pixels) % sizeof *pixels)
            return nfk::fail("nfkTextureOver: the pixels are at %p; a pixel's address is a multiple of 4",
                             static_cast<void *>(pixels)),
                   nullptr;
        for (const int32_t size : {width, height})
            if (size < 1 || !std::has_single_bit(uint32_t(size)))
                wrong = "a texture's width and height are powers of two: copy the pixels into CreateTexture's, or pad their rows";
        if (!wrong && uint64_t(width) * uint64_t(height) >= uint64_t{1} << 30)
            wrong = "a texture has less than 4 GiB";
        if (wrong)
            return nfk::fail("nfkTextureOver: %d x %d: %s", width, height, wrong), nullptr;
        Texture *const texture = CreateTexture(large, large);
        texture->pixels = pixels;
        texture->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
        texture->width = texture->origWidth = uint32_t(width);
        texture->height = texture->origHeight = uint32_t(height);
        texture->log2Width = uint32_t(std::countr_zero(uint32_t(width)));
        texture->log2Height = uint32_t(std::countr_zero(uint32_t(height)));
        return texture;
    });
}
