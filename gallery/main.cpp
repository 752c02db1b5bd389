// gallery: draws sheets of pictures through the library and puts them on one page.

#include "sheet.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace gallery;

constexpr const char *usage = "usage: ninefold-gallery [--out DIR] [--pictures DIR] [NAME...]\n"
                              "       ninefold-gallery --list\n"
                              "Draws the named sheets, or all, as pictures and a page with a caption for each of them.\n\n"
                              "  --out DIR       write NAME.png and index.html there (gallery)\n"
                              "  --pictures DIR  read the source pictures there (those of the gallery)\n"
                              "  --list          print the name, size in pixels and title of every sheet\n"
                              "  --help          print this\n"
                              "  --version       print the version\n\n"
                              "Exit status: 0, 1 where a file cannot be read or written, 2 for wrong options.\n";

struct Options {
    std::string out = "gallery";
    std::string pictures;
    bool list = false, help = false, version = false;
    std::vector<const SheetInfo *> sheets;
};

struct UsageError : std::runtime_error {
    using runtime_error::runtime_error;
};

const SheetInfo &sheetNamed(const std::string &name)
{
    for (const SheetInfo &info : allSheets())
        if (name == info.name)
            return info;
    throw UsageError("no sheet '" + name + "'; --list names them all");
}

Options parse(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string whole = argv[i];
        const size_t equals = std::min(whole.find('='), whole.size());
        const std::string argument = whole.substr(0, equals);
        if (argument == "--out" || argument == "--pictures") {
            const std::string value = equals < whole.size() ? whole.substr(equals + 1) : ++i < argc ? argv[i] : "";
            if (value.empty())
                throw UsageError(argument + " needs a folder");
            (argument == "--out" ? options.out : options.pictures) = value;
        } else if (whole == "--list") {
            options.list = true;
        } else if (whole == "--help" || whole == "-h") {
            options.help = true;
        } else if (whole == "--version") {
            options.version = true;
        } else if (whole.rfind('-', 0) == 0) {
            throw UsageError("no option '" + whole + "'");
        } else {
            options.sheets.push_back(&sheetNamed(whole));
        }
    }
    if (options.sheets.empty())
        for (const SheetInfo &info : allSheets())
            options.sheets.push_back(&info);
    return options;
}

// The gallery's own, beside the program as it was built or installed.
std::string ownPictures(const char *self)
{
    namespace fs = std::filesystem;
    std::error_code ignored;
    const fs::path link = fs::read_symlink("/proc/self/exe", ignored);
    const fs::path here = (link.empty() ? fs::absolute(self, ignored) : link).parent_path();
    for (const char *const place : {GALLERY_PLACES})
        if (const fs::path folder = here / place; fs::exists(folder, ignored))
            return fs::canonical(folder, ignored).string();
    throw std::runtime_error("cannot find the source pictures; name their folder by --pictures");
}

constexpr const char *pageHead = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<title>Ninefold gallery</title>
<style>
body { font: 14px/1.4 sans-serif; margin: 2em; color: #222; background: #f4f4f4; }
nav a { margin-right: 0.8em; }
.sheet { display: flex; flex-wrap: wrap; gap: 12px; }
figure { margin: 0; }
figcaption { font-size: 11px; padding: 4px 0 8px; }
code { color: #06c; }
</style>
<h1>Ninefold gallery</h1>
)";

void run(const Options &options, const char *self)
{
    std::filesystem::create_directories(options.out);
    setPictureFolder(options.pictures.empty() ? ownPictures(self) : options.pictures);
    nfk::checked(nfkStart());

    std::string page = pageHead, sections;
    page += "<nav>";
    for (const SheetInfo *info : options.sheets) {
        Sheet sheet(*info);
        info->fill(sheet);
        if (!sheet.full())
            throw std::logic_error(std::string("sheet ") + info->name + " has empty cells");
        sheet.writePng(options.out + "/" + info->name + ".png");
        page += std::string("<a href=\"#") + info->name + "\">" + info->title + "</a>";
        sections += sheet.html();
    }
    page += "</nav>\n" + sections + "</html>\n";

    const std::string path = options.out + "/index.html";
    std::ofstream file(path, std::ios::binary);
    file << page;
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path);
    std::printf("%zu sheets, %s\n", options.sheets.size(), path.c_str());
}

} // namespace

int main(int argc, char **argv)
{
    try {
        const Options options = parse(argc, argv);
        if (options.help)
            std::fputs(usage, stdout);
        else if (options.version)
            std::printf("ninefold-gallery %d.%d.%d\n", NINEFOLD_VERSION_MAJOR, NINEFOLD_VERSION_MINOR, NINEFOLD_VERSION_PATCH);
        else if (options.list)
            for (const SheetInfo &info : allSheets())
                std::printf("%s %d %d %s\n", info.name, info.width(), info.height(), info.title);
        else
            run(options, argv[0]);
        return 0;
    } catch (const UsageError &error) {
        std::fprintf(stderr, "ninefold-gallery: %s\n%s", error.what(), usage);
        return 2;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ninefold-gallery: %s\n", error.what());
        return 1;
    }
}
