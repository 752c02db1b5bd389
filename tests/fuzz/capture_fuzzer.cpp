// Captures from arbitrary events: player and tape must stay inside the file and their own memory, and draw nothing that is undefined.
// Bytes that begin as a capture file does are taken as one, others as the events of one, behind the names of the cells. `make fuzz
// ARGS=capture` searches; in the tests it goes over the events in captures/ and random ones.
#include "player.h"
#include "tape.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint64_t memoryLimit = uint64_t{1} << 25;

void play(std::span<const uint8_t> file)
{
    std::string error;
    const std::unique_ptr<capture::Reader> reader = capture::Reader::open(file, error);
    if (!reader)
        return;
    capture::Player player(*reader, memoryLimit);
    uint64_t pixels = 0; // a draw of many pixels is slow, not wrong
    for (capture::Player::Step step; (step = player.next()) != capture::Player::Step::end;) {
        if (step == capture::Player::Step::frame) {
            player.framePicture();
            continue;
        }
        player.drawPicture();
        if (!player.prepare())
            continue;
        const layer::Pixels &p = player.footprint().pixels;
        pixels += p.empty() ? 0 : uint64_t(int64_t{p.right} - p.left) * uint64_t(int64_t{p.bottom} - p.top);
        if (pixels < 10000000) {
            player.make(capture::Library::linked());
            player.compare();
        }
        player.finish();
    }
    if (pixels >= 10000000)
        return;
    // On tape the same comes out as the player drew, again and again.
    const std::unique_ptr<capture::Tape> tape = capture::Tape::read(
        [&](std::string &why) { return capture::Reader::open(file, why); }, false, nullptr, error, memoryLimit);
    for (int turn = 0; tape && turn < 2; ++turn)
        if (const std::string wrong = tape->verify(capture::Library::linked(), nullptr); !wrong.empty()) {
            std::fprintf(stderr, "%s\n", wrong.c_str());
            std::abort();
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size >= sizeof capture::magic && std::memcmp(data, capture::magic, sizeof capture::magic) == 0) {
        play({data, size});
        return 0;
    }
    capture::Out cells;
    for (const std::span<const capture::Cell> list : {capture::stateCells(), capture::textureCells()}) {
        cells.number(list.size());
        for (const capture::Cell &cell : list)
            cells.text(cell.name);
    }
    capture::Out events;
    events.byte(uint8_t(capture::EventType::cells));
    events.number(cells.bytes.size());
    events.bytes.insert(events.bytes.end(), cells.bytes.begin(), cells.bytes.end());
    events.bytes.insert(events.bytes.end(), data, data + size);
    play(capture::fileOf(events.bytes));
    return 0;
}
