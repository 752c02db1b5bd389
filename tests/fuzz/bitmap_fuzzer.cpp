// Bitmap files from arbitrary bytes: the loaders must stay inside the file and the texture, and agree with each other.
// `make fuzz ARGS=bitmap` searches; in the tests it goes over the files in bitmaps/ and random ones.
#include <ninefold/texture.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

struct ScratchFile {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("ninefold_fuzz_" + std::to_string(std::random_device()()))).string();

    ~ScratchFile() { std::remove(path.c_str()); }

    void write(const uint8_t *data, size_t size) const
    {
        FILE *file = std::fopen(path.c_str(), "wb");
        require(file && std::fwrite(data, 1, size, file) == size);
        std::fclose(file);
    }
};

// A size field, zero where the file has ended.
uint32_t field(const uint8_t *data, size_t size, size_t at)
{
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
        value |= at + i < size ? uint32_t{data[at + i]} << 8 * i : 0;
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ScratchFile file;

    // Pictures that are only large cost time and show nothing; those too large to exist are welcome.
    const uint64_t width = field(data, size, 18), height = field(data, size, 22);
    const uint64_t area = (width + 1) * (height + 1);
    if (area > 1u << 20 && area <= 1u << 31 && width < 1u << 31 && height < 1u << 31)
        return 0;

    file.write(data, size);
    std::string path = file.path;
    long x = -1, y = -1, outWidth = -1, outHeight = -1;
    const unsigned long alignX = size % 4, alignY = size / 4 % 4;
    Texture *placed = LoadTextureAdjust(path.data(), alignX, alignY, &x, &y, &outWidth, &outHeight);
    Texture *plain = LoadTexture(path.data());
    require((placed != nullptr) == (plain != nullptr));
    if (!placed) {
        require(x == -1 && y == -1 && outWidth == -1 && outHeight == -1);
        return 0;
    }

    require(outWidth == static_cast<long>(width) && outHeight == static_cast<long>(height));
    for (uint32_t row = 0; row < placed->height; ++row) {
        for (uint32_t column = 0; column < placed->width; ++column) {
            const long fromX = column - x, fromY = row - y;
            const bool inside = fromX >= 0 && fromX < outWidth && fromY >= 0 && fromY < outHeight;
            const uint32_t pixel = placed->pixels[(row << placed->log2Width) + column];
            require(inside ? pixel >> 24 == 255 && pixel == plain->pixels[(fromY << plain->log2Width) + fromX] : pixel == 0);
        }
    }
    DeleteTexture(placed);
    DeleteTexture(plain);
    return 0;
}
