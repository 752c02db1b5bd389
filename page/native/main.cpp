// page_draw PICTURES: draws states, which it reads a line each, and writes each frame to standard output, 256 by 192 words of
// ARGB, the lowest byte first. A line that begins with "text?" is a text: behind its frame comes its atlas, 256 by 256 words. What
// the page draws is held against these.
#include "pictures.h"
#include "scene.h"
#include "text.h"

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

bool give(const std::string &folder, const char *file)
{
    std::string path = folder + "/" + file + ".bmp";
    Texture *const texture = LoadTexture(path.data());
    if (!texture || !texture->pixels) {
        std::fprintf(stderr, "page_draw: cannot load %s\n", path.c_str());
        return false;
    }
    std::vector<uint32_t> pixels;
    for (uint32_t y = 0; y < texture->origHeight; ++y)
        pixels.insert(pixels.end(), texture->pixels + (size_t(y) << texture->log2Width),
                      texture->pixels + (size_t(y) << texture->log2Width) + texture->origWidth);
    page::giveFile(file, pixels.data(), texture->origWidth, texture->origHeight);
    DeleteTexture(texture);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2 || std::string(argv[1]).rfind("--", 0) == 0) {
        std::fputs(
            "page_draw PICTURES: reads states of the page, a line each, and writes each frame as 256 x 192 words of ARGB;\n"
            "of a line 'text?STATE', a text, also the atlas, 256 x 256 words.\n"
            "PICTURES is the folder of the bitmaps. Example: echo name=rect.unit.point.copy | page_draw gallery/pictures\n",
            argc == 2 ? stdout : stderr);
        return argc == 2 ? 0 : 2;
    }
    for (size_t i = 0; i < size_t(page::Picture::count); ++i)
        if (const char *const file = page::fileOf(page::Picture(i)); *file && !give(argv[1], file))
            return 1;
    int number = 0;
    for (std::string line; std::getline(std::cin, line);) {
        ++number;
        constexpr std::string_view mark = "text?";
        const bool isText = line.rfind(mark, 0) == 0;
        page::State state;
        page::Text text;
        const std::string wrong = isText ? page::parse(line.substr(mark.size()), text) : page::parse(line, state);
        if (!wrong.empty()) {
            std::fprintf(stderr, "page_draw: line %d: %s\n", number, wrong.c_str());
            return 1;
        }
        if (isText)
            page::draw(text);
        else
            page::draw(state);
        std::fwrite(page::screenPixels(), 4, size_t{page::screenWidth} * page::screenHeight, stdout);
        if (isText)
            std::fwrite(page::atlasPixels(), 4, size_t{page::atlasSide} * page::atlasSide, stdout);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
