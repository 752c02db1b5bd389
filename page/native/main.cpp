// page_draw PICTURES: draws states, which it reads a line each, and writes each frame to standard output, 256 by 192 words of
// ARGB, the lowest byte first. What the page draws is held against these.
#include "pictures.h"
#include "scene.h"

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
            "page_draw PICTURES: reads states of the page, a line each, and writes each frame as 256 x 192 words of ARGB.\n"
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
        page::State state;
        if (const std::string wrong = page::parse(line, state); !wrong.empty()) {
            std::fprintf(stderr, "page_draw: line %d: %s\n", number, wrong.c_str());
            return 1;
        }
        page::draw(state);
        std::fwrite(page::screenPixels(), 4, size_t{page::screenWidth} * page::screenHeight, stdout);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
