// The records of the library as lists of numbers, the same on every machine: what captures tell of rs and of textures.
#pragma once

#include <ninefold/render_state.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace capture {

struct Cell {
    enum class Kind : uint8_t { number, address, texture, operation };
    std::string name; // "vertex[1].x"
    Kind kind;
    bool isSigned;
    uint8_t size; // bytes in the record
    uint16_t offset;
};

// rs but for the glyph functions' fields, which no kernel reads, and a texture's record, in the order of the header.
std::span<const Cell> stateCells();
std::span<const Cell> textureCells();
// The index of a cell; there must be one.
size_t stateCell(const char *name);
size_t textureCell(const char *name);

// The number in a record; pointers as addresses.
uint64_t readCell(const Cell &cell, const void *record);
void writeCell(const Cell &cell, void *record, uint64_t value);

// The cell that covers each byte of a record, or -1.
std::span<const int16_t> stateCellAt();

// Numbers for operators: 0 is null, those of the library have one each, hostOperator and up are the host's own, in the order in
// which they are met.
class Operators {
public:
    struct Setters {
        RenderState *state;
        decltype(&SetBlendMode) blend;
        decltype(&SetBlendModeMulti) multi;
        decltype(&SetPrescaleMultiMode) bank;
    };
    static constexpr uint64_t hostOperator = 0x1000;
    static bool isHost(uint64_t number) { return number >= hostOperator; }

    // Asks the setters for their operators; the state is afterwards as before.
    explicit Operators(const Setters &set);

    uint64_t numberOf(PixelOperator function); // a new one becomes a host's
    PixelOperator of(uint64_t number) const; // null for a host's
    static std::string name(uint64_t number);

private:
    std::vector<std::pair<uint64_t, PixelOperator>> own;
    std::vector<PixelOperator> hosts;
};

} // namespace capture
