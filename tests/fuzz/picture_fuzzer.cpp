// Picture files from arbitrary bytes: the loader must stay inside the file and the texture, say why it refuses, and load the same
// bytes to the same pixels. `make fuzz ARGS=picture` searches; in the tests it goes over the files in pictures/ and random ones.
#include <ninefold/kit.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte chooses the extras, and with its high bits a format whose signature the rest then begins with.
    const uint32_t extras = data[0] & 15;
    std::vector<uint8_t> file(data + 1, data + size);
    constexpr const char *signatures[] = {"\x89PNG\r\n\x1A\n", "\xFF\xD8\xFF", "RIFF----WEBP", "BM"};
    if (data[0] & 64) {
        const char *signature = signatures[data[0] >> 4 & 3];
        for (size_t i = 0; i < std::min(file.size(), std::strlen(signature)); ++i)
            file[i] = signature[i] == '-' ? file[i] : static_cast<uint8_t>(signature[i]);
    }

    Texture *texture = nfkLoadPictureMemory(file.data(), file.size(), "input", extras);
    if (!texture) {
        require(std::strncmp(nfkError(), "nfkLoadPictureMemory: input", 27) == 0);
        return 0;
    }
    const uint32_t width = texture->origWidth, height = texture->origHeight;
    require(width >= 1 && width <= texture->width && height >= 1 && height <= texture->height);
    require(uint64_t{texture->width} * texture->height <= NFK_PICTURE_MAX_PIXELS);
    const bool repeats = extras & NFK_PICTURE_EDGE;
    for (uint32_t y = 0; y < texture->height; ++y) {
        const uint32_t *row = texture->pixels + (size_t{y} << texture->log2Width);
        for (uint32_t x = 0; x < texture->width; ++x)
            require((x < width && y < height) || repeats ? row[x] == 0 || row[x] >> 24 : row[x] == 0);
    }
    require((texture->mipCount != 0) == ((extras & NFK_PICTURE_MIP_CHAIN) != 0));

    Texture *again = nfkLoadPictureMemory(file.data(), file.size(), "input", extras);
    require(again && again->width == texture->width && again->height == texture->height);
    require(std::equal(texture->pixels, texture->pixels + size_t{texture->width} * texture->height, again->pixels));
    DeleteTexture(again);
    DeleteTexture(texture);
    return 0;
}
