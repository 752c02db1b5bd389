#include "program.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace capture {
namespace {

// Memory of the draw that lies together.
struct Piece {
    uintptr_t begin, end;
    int index;
};

// What the program hashes rows by: FNV-1a.
uint64_t rowHash(const uint8_t *bytes, size_t size)
{
    uint64_t hash = 0xCBF29CE484222325;
    for (size_t k = 0; k < size; ++k)
        hash = (hash ^ bytes[k]) * 0x100000001B3;
    return hash;
}

class Program {
public:
    Program(std::FILE *to, Player &draws) : out(to), player(draws) {}

    void write(const std::string &source)
    {
        const DrawEvent &draw = player.draw();
        for (const Rows &rows : player.rows())
            pieces.push_back({rows.begin & ~uintptr_t{15}, (rows.end() + 15) & ~uintptr_t{15}, 0});
        std::sort(pieces.begin(), pieces.end(), [](const Piece &a, const Piece &b) { return a.begin < b.begin; });
        std::vector<Piece> joined;
        for (const Piece &piece : pieces)
            if (!joined.empty() && piece.begin <= joined.back().end)
                joined.back().end = std::max(joined.back().end, piece.end);
            else
                joined.push_back(piece);
        pieces = joined;

        std::fprintf(
            out,
            "/* Draw %" PRIu64 " of %s: %s.\n *\n *     cc draw.c $(pkg-config --cflags --libs ninefold) -o draw\n *\n * Ends "
            "with 0 where the result is as it was, with 1 where it differs. */\n#include <ninefold/ninefold.h>\n\n#include "
            "<stdio.h>\n#include <stdlib.h>\n#include <string.h>\n\n",
            draw.number, source.c_str(), draw.name.c_str());
        int index = 0;
        for (Piece &piece : pieces) {
            piece.index = index++;
            writePiece(piece);
        }
        writeWords();
        std::fputs("/* The memory as it is drawn in: what is not told is 0. */\nstatic void put(uint32_t *to, const uint32_t "
                   "(*runs)[2], const uint32_t *words, size_t count)\n{\n    size_t k;\n    for (k = 0; k < count; words += "
                   "runs[k++][1])\n        memcpy(to + runs[k][0], words, 4 * runs[k][1]);\n}\n\n",
                   out);
        writeCheck();
        std::fputs("int main(void)\n{\n    int different = 0;\n", out);
        for (const Piece &piece : pieces)
            std::fprintf(out, "    uint32_t *const memory%d = calloc(%zu + 64, 4);\n", piece.index,
                         (piece.end - piece.begin) / 4);
        writeTextureRecords();
        std::fputs("\n    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable(), MakeDrawMaskTable();\n", out);
        for (const Piece &piece : pieces)
            std::fprintf(out, "    put(memory%d, runs%d, words%d, sizeof runs%d / sizeof *runs%d);\n", piece.index, piece.index,
                         piece.index, piece.index, piece.index);
        writeTextures();
        writeState();
        if (layer::isRecord(draw.id))
            std::fprintf(out, "    SearchDrawFunc(0x%X)();\n", layer::codeOf(draw.id));
        else
            std::fprintf(out, "    %s();\n", draw.name.c_str());
    }

    // After the draw was made: what it came to.
    void writeResult()
    {
        for (const Rows &rows : player.rows()) {
            if (!rows.written)
                continue;
            std::fprintf(out, "    {\n        static const unsigned long long wanted[] = {");
            for (size_t row = 0; row < rows.rows; ++row)
                std::fprintf(out, "%s0x%" PRIX64 ",", row % 6 ? " " : "\n            ",
                             rowHash(reinterpret_cast<const uint8_t *>(rows.row(row)), rows.rowBytes));
            std::fprintf(out, "\n        };\n        different += check(\"%s\", %s, %zu, %zu, %zu, %d, wanted);\n    }\n",
                         layer::fieldName(rows.field), place(rows.begin, "const unsigned char").c_str(), rows.rowBytes, rows.rows,
                         rows.stride, rows.field == layer::Field::dstPixels ? player.footprint().pixels.top : 0);
        }
        std::fputs("    puts(different ? \"differs\" : \"as it was\");\n    return different != 0;\n}\n", out);
    }

private:
    std::FILE *out;
    Player &player;
    std::vector<Piece> pieces;
    std::vector<const Texture *> records;

    // An address as the program has it.
    std::string place(uintptr_t address, const char *type) const
    {
        for (const Piece &piece : pieces)
            if (address >= piece.begin && address < piece.end)
                return std::string("(") + type + " *)((char *)memory" + std::to_string(piece.index) + " + " +
                       std::to_string(address - piece.begin) + ")";
        return "0";
    }

    // Runs of words, without long stretches of zeros.
    void writePiece(const Piece &piece)
    {
        constexpr size_t gap = 4;
        const size_t count = (piece.end - piece.begin) / 4;
        std::vector<uint32_t> words(count);
        std::memcpy(words.data(), reinterpret_cast<const void *>(piece.begin), 4 * count);
        std::vector<std::pair<size_t, size_t>> runs; // begin, end
        for (size_t k = 0; k < count; ++k)
            if (words[k]) {
                if (runs.empty() || k > runs.back().second + gap)
                    runs.emplace_back(k, k);
                runs.back().second = k + 1;
            }
        if (runs.empty())
            runs.emplace_back(0, 1);
        std::fprintf(out, "static const uint32_t words%d[] = {", piece.index);
        size_t column = 0;
        for (const auto &[begin, end] : runs)
            for (size_t k = begin; k < end; ++k)
                std::fprintf(out, "%s0x%X,", column++ % 12 ? " " : "\n    ", words[k]);
        std::fprintf(out, "\n};\nstatic const uint32_t runs%d[][2] = {", piece.index);
        column = 0;
        for (const auto &[begin, end] : runs)
            std::fprintf(out, "%s{%zu, %zu},", column++ % 8 ? " " : "\n    ", begin, end - begin);
        std::fputs("\n};\n\n", out);
    }

    // The host's operators, as what they returned.
    void writeWords()
    {
        static constexpr const char *names[] = {"multiFunc", "blendFunc"};
        for (int which = 0; which < 2; ++which) {
            const std::vector<uint32_t> &words = player.draw().words[which];
            if (!speaks(names[which]))
                continue;
            std::fprintf(out, "/* What the host's %s returned, call by call. */\nstatic const uint32_t %sWords[] = {0",
                         names[which], names[which]);
            for (size_t k = 0; k < words.size(); ++k)
                std::fprintf(out, "%s0x%X", k % 12 ? ", " : ",\n    ", words[k]);
            std::fprintf(out,
                         "};\nstatic uint32_t %s(uint32_t first, uint32_t second)\n{\n    static size_t call;\n    (void)first, "
                         "(void)second;\n    return %sWords[call + 1 < sizeof %sWords / 4 ? ++call : 0];\n}\n\n",
                         names[which], names[which], names[which]);
        }
    }

    // Whether the kernel calls this operator, and it is the host's.
    bool speaks(const std::string &name) const
    {
        const layer::Needs &needs = layer::needsOf(player.draw().id);
        return Operators::isHost(player.state()[stateCell(name.c_str())]) &&
               (name == "multiFunc" ? needs.callsMulti : needs.callsBlend);
    }

    void writeCheck()
    {
        std::fputs(
            "static int check(const char *name, const unsigned char *memory, size_t bytes, size_t rows, size_t stride, int "
            "top, const unsigned long long *wanted)\n{\n    size_t row, k;\n    for (row = 0; row < rows; ++row) {\n        "
            "unsigned long long hash = 0xCBF29CE484222325;\n        for (k = 0; k < bytes; ++k)\n            hash = (hash ^ "
            "memory[row * stride + k]) * 0x100000001B3;\n        if (hash != wanted[row])\n            return printf(\"%s "
            "differs in row %d\\n\", name, top + (int)row), 1;\n    }\n    return 0;\n}\n\n",
            out);
    }

    size_t recordOf(const Texture *texture)
    {
        const auto found = std::find(records.begin(), records.end(), texture);
        if (found != records.end())
            return size_t(found - records.begin());
        records.push_back(texture);
        return records.size() - 1;
    }

    void writeTextureRecords()
    {
        for (const layer::TextureUse &use : player.footprint().textures())
            if (use.texture)
                recordOf(use.texture);
        if (rs.frameBuffer)
            recordOf(rs.frameBuffer);
        // Levels that a chain names must be told apart, also where nothing is fetched from them.
        // The list grows on the way.
        for (size_t k = 0; k < records.size(); ++k) // NOLINT(modernize-loop-convert)
            for (uint32_t level = 0; level < records[k]->mipCount && level < std::size(records[k]->mip); ++level)
                if (records[k]->mip[level])
                    recordOf(records[k]->mip[level]);
        for (size_t k = 0; k < records.size(); ++k)
            std::fprintf(out, "    static Texture texture%zu;\n", k);
    }

    void writeTextures()
    {
        for (size_t k = 0; k < records.size(); ++k) {
            const Texture &t = *records[k];
            const auto pointer = [&](const char *name, const void *address, const char *type) {
                const std::string at = place(uintptr_t(address), type);
                if (address && at != "0")
                    std::fprintf(out, "    texture%zu.%s = %s;\n", k, name, at.c_str());
            };
            pointer("pixels", t.pixels, "uint32_t");
            pointer("runlengthMap", t.runlengthMap, "int8_t");
            pointer("zeroPixelMap", t.zeroPixelMap, "uint16_t");
            std::fprintf(out,
                         "    texture%zu.width = %u, texture%zu.height = %u, texture%zu.log2Width = %u, texture%zu.log2Height = "
                         "%u;\n    texture%zu.mipCount = %u;\n",
                         k, t.width, k, t.height, k, t.log2Width, k, t.log2Height, k, t.mipCount);
            for (uint32_t level = 0; level < t.mipCount && level < std::size(t.mip); ++level)
                if (t.mip[level])
                    std::fprintf(out, "    texture%zu.mip[%u] = &texture%zu;\n", k, level, recordOf(t.mip[level]));
        }
    }

    void writeState()
    {
        const std::span<const Cell> cells = stateCells();
        for (size_t k = 0; k < cells.size(); ++k) {
            const uint64_t value = player.state()[k];
            if (cells[k].kind != Cell::Kind::operation || !value)
                continue;
            const char *const name = cells[k].name.c_str();
            if (Operators::isHost(value) && !speaks(name))
                continue;
            if (Operators::isHost(value))
                std::fprintf(out, "    const PixelOperator %sSet = %s; /* by its words */\n", name, name);
            else if (value >= 0x200)
                std::fprintf(out, "    const PixelOperator %sSet = (SetBlendMode(%d), rs.blendFunc);\n", name,
                             int(value - 0x200));
            else
                std::fprintf(out,
                             "    const PixelOperator %sSet = (SetPrescaleMultiMode(%d), SetBlendModeMulti(%d), rs.multiFunc);\n",
                             name, value >= 0x140 ? 1 : 0, int(value - (value >= 0x140 ? 0x140 : 0x100)));
        }
        for (const Cell &cell : cells)
            if (const uint64_t value = player.state()[size_t(&cell - cells.data())];
                cell.kind == Cell::Kind::operation && value && (!Operators::isHost(value) || speaks(cell.name)))
                std::fprintf(out, "    rs.%s = %sSet;\n", cell.name.c_str(), cell.name.c_str());
        for (size_t k = 0; k < cells.size(); ++k) {
            const Cell &cell = cells[k];
            const uint64_t value = player.state()[k];
            // The setters above have touched modes.
            if (!value && (cell.kind != Cell::Kind::number || cell.name.find("Mode") == std::string::npos))
                continue;
            if (cell.kind == Cell::Kind::number) {
                std::fprintf(out, cell.isSigned ? "    rs.%s = %" PRId64 ";\n" : "    rs.%s = 0x%" PRIX64 ";\n",
                             cell.name.c_str(), value);
            } else if (cell.kind == Cell::Kind::texture) {
                const Texture *texture;
                std::memcpy(&texture, reinterpret_cast<const unsigned char *>(&rs) + cell.offset, sizeof texture);
                const auto found = std::find(records.begin(), records.end(), texture);
                if (found != records.end())
                    std::fprintf(out, "    rs.%s = &texture%zu;\n", cell.name.c_str(), size_t(found - records.begin()));
            } else if (cell.kind == Cell::Kind::address) {
                writeAddress(cell);
            }
        }
    }

    // Fields may point before the memory that is reached from them.
    void writeAddress(const Cell &cell)
    {
        uintptr_t address;
        std::memcpy(&address, reinterpret_cast<const unsigned char *>(&rs) + cell.offset, sizeof address);
        for (const Rows &rows : player.rows()) {
            if (cell.name != layer::fieldName(rows.field))
                continue;
            for (const Piece &piece : pieces)
                if (rows.begin >= piece.begin && rows.begin < piece.end) {
                    std::fprintf(out, "    rs.%s = (void *)((char *)memory%d - (%" PRId64 "));\n", cell.name.c_str(), piece.index,
                                 int64_t(piece.begin) - int64_t(address));
                    return;
                }
        }
    }
};

} // namespace

std::string writeProgram(std::FILE *out, Player &player, const std::string &source)
{
    Program program(out, player);
    program.write(source);
    player.make(Library::linked());
    program.writeResult();
    return player.compare();
}

} // namespace capture
