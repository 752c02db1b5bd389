#include "cells.h"

#include <ninefold/kit/state.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace capture {
namespace {

// What the glyph functions alone work with; the name is the host's memory.
bool isOfGlyphs(const char *name) { return std::strncmp(name, "font", 4) == 0 || std::strncmp(name, "glyph", 5) == 0; }

void addField(std::vector<Cell> &cells, const std::string &prefix, uint32_t base, const NfkField &field)
{
    for (uint32_t k = 0; k < field.count; ++k) {
        const std::string name = prefix + field.name + (field.count > 1 ? "[" + std::to_string(k) + "]" : "");
        const uint32_t offset = base + field.offset + k * field.size;
        if (field.kind == NFK_KIND_RECORD) {
            uint32_t count = 0;
            const NfkField *const parts = nfkFields(field.type, &count);
            for (uint32_t part = 0; part < count; ++part)
                addField(cells, name + ".", offset, parts[part]);
            continue;
        }
        const Cell::Kind kind = field.kind == NFK_KIND_FUNCTION             ? Cell::Kind::operation
                                : field.kind != NFK_KIND_POINTER            ? Cell::Kind::number
                                : std::strcmp(field.type, "Texture *") == 0 ? Cell::Kind::texture
                                                                            : Cell::Kind::address;
        cells.push_back({name, kind, field.kind == NFK_KIND_SIGNED, uint8_t(field.size), uint16_t(offset)});
    }
}

std::vector<Cell> cellsOf(const char *record)
{
    std::vector<Cell> cells;
    uint32_t count = 0;
    const NfkField *const fields = nfkFields(record, &count);
    for (uint32_t k = 0; k < count; ++k)
        if (!isOfGlyphs(fields[k].name))
            addField(cells, "", 0, fields[k]);
    return cells;
}

size_t indexOf(std::span<const Cell> cells, const char *name)
{
    const auto found = std::find_if(cells.begin(), cells.end(), [&](const Cell &cell) { return cell.name == name; });
    if (found == cells.end())
        std::abort();
    return size_t(found - cells.begin());
}

const char *wordOf(uint64_t number, bool blend)
{
#define NINEFOLD_WORD(name, value, word, meaning)                                                                                \
    if (number == uint64_t(value))                                                                                               \
        return word;
    if (blend) {
        NINEFOLD_BLEND_OPERATORS(NINEFOLD_WORD)
    } else {
        NINEFOLD_MULTI_OPS(NINEFOLD_WORD)
    }
#undef NINEFOLD_WORD
    return nullptr;
}

// Part of the format: 0x100 + value, in the second bank 0x140 + value, of SetBlendModeMulti; 0x200 + value of SetBlendMode.
constexpr uint64_t multiNumber = 0x100, bankStep = 0x40, blendNumber = 0x200;

} // namespace

std::span<const Cell> stateCells()
{
    static const auto *const cells = new std::vector<Cell>(cellsOf("RenderState"));
    return *cells;
}
std::span<const Cell> textureCells()
{
    static const auto *const cells = new std::vector<Cell>(cellsOf("Texture"));
    return *cells;
}
size_t stateCell(const char *name) { return indexOf(stateCells(), name); }
size_t textureCell(const char *name) { return indexOf(textureCells(), name); }

uint64_t readCell(const Cell &cell, const void *record)
{
    const auto *const at = static_cast<const uint8_t *>(record) + cell.offset;
    const auto load = [&](auto value) {
        std::memcpy(&value, at, sizeof value);
        return value;
    };
    switch (cell.size) {
    case 2: return load(uint16_t{});
    case 4: return cell.isSigned ? uint64_t(int64_t{load(int32_t{})}) : load(uint32_t{});
    case 8: return load(uint64_t{});
    default: return 0;
    }
}

void writeCell(const Cell &cell, void *record, uint64_t value)
{
    auto *const at = static_cast<uint8_t *>(record) + cell.offset;
    const auto store = [&](auto word) { std::memcpy(at, &word, sizeof word); };
    switch (cell.size) {
    case 2: return store(uint16_t(value));
    case 4: return store(uint32_t(value));
    case 8: return store(value);
    default: return;
    }
}

std::span<const int16_t> stateCellAt()
{
    static const auto *const map = [] {
        auto *const made = new std::vector<int16_t>(sizeof(RenderState), int16_t{-1});
        for (size_t k = 0; k < stateCells().size(); ++k)
            std::fill_n(made->begin() + stateCells()[k].offset, stateCells()[k].size, int16_t(k));
        return made;
    }();
    return *map;
}

Operators::Operators(const Setters &set)
{
    RenderState &state = *set.state;
    alignas(RenderState) unsigned char saved[sizeof(RenderState)];
    std::memcpy(saved, &state, sizeof saved);
    for (int bank = 0; bank < 2; ++bank)
        for (int value = 0; value <= NINEFOLD_MULTI_OP_FIRST; ++value)
            if (wordOf(uint64_t(value), false)) {
                set.bank(bank);
                set.multi(value);
                own.emplace_back(multiNumber + bankStep * uint64_t(bank) + uint64_t(value), state.multiFunc);
            }
    for (int value = NINEFOLD_BLEND_LUMA_SRC; value <= NINEFOLD_BLEND_DST + 1; ++value) {
        set.blend(value);
        own.emplace_back(blendNumber + uint64_t(value), state.blendFunc);
    }
    std::memcpy(&state, saved, sizeof saved);
}

uint64_t Operators::numberOf(PixelOperator function)
{
    if (!function)
        return 0;
    for (const auto &[number, pointer] : own)
        if (pointer == function)
            return number;
    const auto known = std::find(hosts.begin(), hosts.end(), function);
    if (known != hosts.end())
        return hostOperator + uint64_t(known - hosts.begin());
    hosts.push_back(function);
    return hostOperator + hosts.size() - 1;
}

PixelOperator Operators::of(uint64_t number) const
{
    for (const auto &[own_number, pointer] : own)
        if (own_number == number)
            return pointer;
    return nullptr;
}

std::string Operators::name(uint64_t number)
{
    if (number == 0)
        return "null";
    if (isHost(number))
        return "the host's own, number " + std::to_string(number - hostOperator + 1);
    const bool blend = number >= blendNumber, scaled = !blend && number >= multiNumber + bankStep;
    const char *const word = wordOf(number - (blend ? blendNumber : scaled ? multiNumber + bankStep : multiNumber), blend);
    return std::string(blend ? "blend " : "multi ") + (word ? word : blend ? "copy" : "?") + (scaled ? ", scaled" : "");
}

} // namespace capture
