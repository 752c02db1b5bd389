// check DIR: reads "name width height title" lines, as gallery --list prints, and looks at DIR/name.png of each: it must have
// that size and not be blank. Exits with 1 at the first that fails.

#include <png.h>

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

bool check(const std::string &path, unsigned width, unsigned height)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), image.message);
        return false;
    }
    if (image.width != width || image.height != height) {
        std::fprintf(stderr, "%s: %u x %u instead of %u x %u\n", path.c_str(), unsigned(image.width), unsigned(image.height),
                     width, height);
        png_image_free(&image);
        return false;
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> rgb(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr)) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), image.message);
        return false;
    }
    std::set<uint32_t> colours;
    for (size_t i = 0; i + 2 < rgb.size(); i += 3)
        colours.insert(uint32_t(rgb[i]) << 16 | uint32_t(rgb[i + 1]) << 8 | rgb[i + 2]);
    if (colours.size() < 100) {
        std::fprintf(stderr, "%s: only %zu colours\n", path.c_str(), colours.size());
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    int count = 0;
    for (std::string line; std::getline(std::cin, line); ++count) {
        std::istringstream fields(line);
        std::string name;
        unsigned width = 0, height = 0;
        if (!(fields >> name >> width >> height) || !check(std::string(argv[1]) + "/" + name + ".png", width, height))
            return 1;
    }
    std::printf("%d sheets\n", count);
    return count ? 0 : 1;
}
