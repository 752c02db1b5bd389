#include "inspect.h"

#include "recording.h"
#include "report.h"

#include <ninefold/kit/codes.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace capture {
namespace {

template <class Colour>
Player::Picture painted(const Player::Picture &like, uint32_t shift, const Colour &colour)
{
    Player::Picture picture = like;
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x)
            picture.pixels[size_t{y} * picture.width + x] = colour((size_t{y} << shift) + x);
    return picture;
}

uint64_t cellValue(const Player &player, const char *name) { return player.state()[stateCell(name)]; }

} // namespace

std::string drawLabel(const DrawEvent &draw)
{
    return "draw " + std::to_string(draw.number) + " of frame " + std::to_string(draw.frame) + ", " + draw.name;
}

std::string codeInWords(const DrawEvent &draw)
{
    if (!draw.known || !layer::isRecord(draw.id))
        return "";
    char text[4000];
    nfkExplainCode(layer::codeOf(draw.id), text, sizeof text);
    std::string words = text;
    if (!words.empty() && words.back() != '\n')
        words += '\n';
    return words;
}

std::string numberInWords(const Cell &cell, uint64_t value)
{
    char text[60];
    std::snprintf(text, sizeof text, cell.isSigned ? "%lld" : "%llu (0x%llX)", static_cast<unsigned long long>(value),
                  static_cast<unsigned long long>(value));
    return text;
}

std::vector<CellInWords> stateInWords(const Player &player, const std::vector<uint64_t> &previous)
{
    std::vector<CellInWords> all;
    const std::span<const Cell> cells = stateCells();
    for (size_t k = 0; k < cells.size(); ++k) {
        const uint64_t value = player.state()[k];
        CellInWords one{k, value, "", previous.size() == cells.size() && previous[k] != value};
        char text[60];
        switch (cells[k].kind) {
        case Cell::Kind::texture: one.text = player.textureName(value); break;
        case Cell::Kind::operation: one.text = Operators::name(value); break;
        case Cell::Kind::address:
            std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
            one.text = value ? text : "null";
            if (const auto label = player.labels().find(value); label != player.labels().end())
                one.text += ", \"" + label->second + "\"";
            break;
        default: one.text = numberInWords(cells[k], value);
        }
        all.push_back(std::move(one));
    }
    return all;
}

void Overdraw::add(const Player &player, const Bytes &before)
{
    std::vector<uint8_t> &of = counts[cellValue(player, "dstPixels")];
    of.resize(std::min(size_t{rs.dstHeight} << rs.dstShift, size_t{1} << 26));
    size_t at = 0;
    for (const Rows &one : player.rows()) {
        if (!one.written)
            continue;
        for (size_t row = 0; row < one.rows; ++row, at += one.rowBytes)
            for (size_t k = 0; one.field == layer::Field::dstPixels && k < one.rowBytes; k += 4) {
                const uintptr_t pixel = one.row(row) + k;
                const size_t index = (pixel - uintptr_t(rs.dstPixels)) / 4;
                if (index < of.size() && of[index] < UINT8_MAX &&
                    std::memcmp(reinterpret_cast<const void *>(pixel), before.data() + at + k, 4) != 0)
                    ++of[index];
            }
    }
}

Player::Picture Overdraw::picture(const Player &player, const Player::Picture &like) const
{
    static const std::vector<uint8_t> none;
    const auto found = counts.find(cellValue(player, "dstPixels"));
    const std::vector<uint8_t> &of = found == counts.end() ? none : found->second;
    return painted(like, uint32_t(cellValue(player, "dstShift")), [&](size_t index) {
        const uint32_t level = index < of.size() ? std::min(48u * of[index], 3u * 255) : 0;
        const uint32_t red = std::min(level, 255u), green = std::clamp(level, 255u, 510u) - 255,
                       blue = std::max(level, 510u) - 510;
        return red << 16 | green << 8 | blue;
    });
}

size_t Overdraw::bytes() const
{
    size_t bytes = 0;
    for (const auto &[address, of] : counts)
        bytes += of.size();
    return bytes;
}

Player::Picture differenceOf(const Player::Picture &before, const Player::Picture &after, uint64_t &changed)
{
    changed = 0;
    Player::Picture difference = after;
    for (size_t k = 0; k < after.pixels.size(); ++k) {
        changed += after.pixels[k] != before.pixels[k];
        if (after.pixels[k] == before.pixels[k])
            difference.pixels[k] = ((after.pixels[k] >> 8 & 0xFF) / 4 + 16) * 0x10101;
    }
    return difference;
}

Player::Picture planeOf(const Player &player, layer::Field field, const Player::Picture &like)
{
    const std::span<const layer::MemoryUse> uses = player.footprint().memory();
    if (std::none_of(uses.begin(), uses.end(), [&](const layer::MemoryUse &use) { return use.field == field; }))
        return {};
    const auto shift = uint32_t(cellValue(player, "dstShift"));
    const size_t size = size_t{like.height} << shift;
    const bool bits = field == layer::Field::shaheiPlane;
    std::vector<uint8_t> bytes(bits ? (size + 15) / 16 * 2 : size);
    player.memory().read(cellValue(player, layer::fieldName(field)), bytes.size(), bytes.data());
    return painted(like, shift, [&](size_t index) {
        if (!bits)
            return bytes[index] * 0x10101u;
        const uint32_t word = bytes[index / 16 * 2] | uint32_t{bytes[index / 16 * 2 + 1]} << 8;
        return word >> (15 - index % 16) & 1 ? 0xFFFFFFu : 0;
    });
}

bool recordTo(const std::string &path, const Player &player)
{
    debug::Settings &s = debug::settings();
    s.capture = path;
    s.captureTextures = 1; // memory of ours moves
    s.captureLevel = 9;
    if (!debug::startRecording())
        return false;
    for (const auto &[address, texture] : player.textures())
        if (const auto label = player.labels().find(address); label != player.labels().end())
            debug::recordLabel(texture.record.get(), label->second.c_str());
    return true;
}

} // namespace capture
