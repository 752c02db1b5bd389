// What people are shown of a draw: its state in words, pictures of what it reads and leaves.
#pragma once

#include "player.h"

#include <map>
#include <string>
#include <vector>

namespace capture {

std::string drawLabel(const DrawEvent &draw); // "draw 12 of frame 3, rect.unit.point.copy"
std::string codeInWords(const DrawEvent &draw); // lines; empty for functions

std::string numberInWords(const Cell &cell, uint64_t value); // "-7", or "4278190335 (0xFF0000FF)" where it has no sign

struct CellInWords {
    size_t cell; // of stateCells()
    uint64_t value;
    std::string text;
    bool isNew; // since the draw before
};
// All cells of rs. `previous`: those of the draw before, or empty.
std::vector<CellInWords> stateInWords(const Player &player, const std::vector<uint64_t> &previous);

// How often draws changed each pixel, by the address of the frame buffer's first one.
class Overdraw {
public:
    void clear() { counts.clear(); }
    // After a draw was made; `before` is what save() gave before it.
    void add(const Player &player, const Bytes &before);
    // From black over red and yellow to white, as large as `like`, for the frame buffer of the player's draw.
    Player::Picture picture(const Player &player, const Player::Picture &like) const;
    size_t bytes() const;

private:
    std::map<uint64_t, std::vector<uint8_t>> counts;
};

// `after` where it is another than `before`; the rest as its grey, darker. `changed`: pixels.
Player::Picture differenceOf(const Player::Picture &before, const Player::Picture &after, uint64_t &changed);

// The Shahei plane (white: the bit is set) or the priorities as grey, as large as `like`; empty where the draw works with none. As
// far as they were recorded.
Player::Picture planeOf(const Player &player, layer::Field field, const Player::Picture &like);

// Draws from now on go to a new capture, until debug::stopRecording. False, with a message, where it cannot be written.
bool recordTo(const std::string &path, const Player &player);

} // namespace capture
