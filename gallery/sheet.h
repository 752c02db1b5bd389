// Sheets: what the gallery is made of. Each is a grid of pictures of one size, written as one PNG file, with a caption for each
// picture on the page.
#pragma once

#include "host.h"

#include <span>
#include <string>
#include <vector>

namespace gallery {

class Sheet;

struct SheetInfo {
    const char *name; // of the file and on the command line
    int columns, rows, cellWidth, cellHeight;
    void (*fill)(Sheet &);
    const char *title;
    const char *text; // what to look for

    int width() const;
    int height() const;
};

// Every sheet, in the order of the page.
std::span<const SheetInfo> allSheets();

class Sheet {
public:
    explicit Sheet(const SheetInfo &sheetInfo);

    // Puts the next picture on the sheet: what is shown, and how it was drawn.
    void add(const Canvas &canvas, const std::string &caption, const Modes &modes);
    void add(const Canvas &canvas, const std::string &caption, const std::string &how = {});

    bool full() const { return captions_.size() == size_t(info.columns) * size_t(info.rows); }
    void writePng(const std::string &path) const; // throws std::runtime_error
    std::string html() const; // its section of the page

    const SheetInfo &info;

private:
    struct Caption {
        std::string text, how;
        uint32_t code; // 0: drawn by a function with a name of its own, or not at all
    };
    void place(const Canvas &canvas, Caption caption);

    std::vector<uint8_t> rgb_;
    std::vector<Caption> captions_;
};

// The sheets' bodies, in sheets/.
void poster(Sheet &);
void unitCopies(Sheet &);
void stretches(Sheet &);
void cornerQuads(Sheet &);
void lineTables(Sheet &);
void mosaics(Sheet &);
void filters(Sheet &);
void runLengths(Sheet &);
void blends(Sheet &);
void multiOperators(Sheet &);
void multiColours(Sheet &);
void prescales(Sheet &);
void stipples(Sheet &);
void shaheiPlane(Sheet &);
void priorityPlane(Sheet &);
void occlusion(Sheet &);
void meshes(Sheet &);
void scanShifts(Sheet &);
void lines(Sheet &);
void wipes(Sheet &);
void wipeShapes(Sheet &);
void ruleRectangles(Sheet &);
void perspective(Sheet &);
void mipFloors(Sheet &);
void mipLines(Sheet &);
void glyphs(Sheet &);

} // namespace gallery
