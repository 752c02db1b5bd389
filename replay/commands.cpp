// The commands that read a capture: info, verify, frames, draw.
#include "command.h"

#include "kernels/sets.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>

namespace replay {

using namespace capture;
using Step = Player::Step;

namespace {

struct Totals {
    uint64_t draws = 0, pixels = 0, nanoseconds = 0;
};

// How a word of the frame buffer that a draw may have written is told: its place, and what it was and is.
std::string firstDifference(const Player &player, const Bytes &is, const Bytes &wanted)
{
    size_t at = 0;
    for (const Rows &one : player.rows()) {
        if (!one.written)
            continue;
        for (size_t row = 0; row < one.rows; ++row, at += one.rowBytes)
            for (size_t k = 0; k < one.rowBytes; k += one.element)
                if (!std::equal(is.begin() + ptrdiff_t(at + k), is.begin() + ptrdiff_t(at + k + one.element),
                                wanted.begin() + ptrdiff_t(at + k))) {
                    const auto value = [&](const Bytes &bytes) {
                        uint32_t word = 0;
                        for (size_t byte = one.element; byte-- > 0;)
                            word = word << 8 | bytes[at + k + byte];
                        return word;
                    };
                    char text[160];
                    const layer::Pixels &p = player.footprint().pixels;
                    std::snprintf(text, sizeof text, "first in row %d, %s %zu from column %d: %0*X instead of %0*X",
                                  p.top + int(row), one.element == 2 ? "word" : "pixel", k / one.element, p.left, 2 * one.element,
                                  value(is), 2 * one.element, value(wanted));
                    return text;
                }
    }
    return "";
}

// Adds 1 where a draw that was made changed a pixel of the frame buffer.
void countChanges(const Player &player, const Bytes &before, std::vector<uint8_t> &counts)
{
    counts.resize(std::min(size_t{rs.dstHeight} << rs.dstShift, size_t{1} << 26));
    size_t at = 0;
    for (const Rows &one : player.rows()) {
        if (!one.written)
            continue;
        for (size_t row = 0; row < one.rows; ++row, at += one.rowBytes)
            for (size_t k = 0; one.field == layer::Field::dstPixels && k < one.rowBytes; k += 4) {
                const uintptr_t pixel = one.row(row) + k;
                const size_t index = (pixel - uintptr_t(rs.dstPixels)) / 4;
                if (index < counts.size() && counts[index] < UINT8_MAX &&
                    std::memcmp(reinterpret_cast<const void *>(pixel), before.data() + at + k, 4) != 0)
                    ++counts[index];
            }
    }
}

// As large as the frame buffer's picture: how often pixels were changed, from black over red and yellow to white; and the planes that
// the draw reads.
void writePlanes(const Player &player, const Player::Picture &like, const std::vector<uint8_t> &counts, const std::string &stem)
{
    Player::Picture picture = like;
    const auto write = [&](const char *name, const auto &colour) {
        for (uint32_t y = 0; y < picture.height; ++y)
            for (uint32_t x = 0; x < picture.width; ++x)
                picture.pixels[size_t{y} * picture.width + x] = colour((size_t{y} << rs.dstShift) + x);
        writePicture(picture, stem + name);
    };
    write("-overdraw.png", [&](size_t index) {
        const uint32_t level = index < counts.size() ? std::min(48u * counts[index], 3u * 255) : 0;
        const uint32_t red = std::min(level, 255u), green = std::clamp(level, 255u, 510u) - 255,
                       blue = std::max(level, 510u) - 510;
        return red << 16 | green << 8 | blue;
    });
    // Planes as far as they were recorded.
    static const size_t plane = stateCell("shaheiPlane"), priorities = stateCell("zBuffer");
    const size_t size = size_t{picture.height} << rs.dstShift;
    for (const layer::MemoryUse &use : player.footprint().memory()) {
        if (use.field == layer::Field::shaheiPlane) {
            std::vector<uint8_t> bytes((size + 15) / 16 * 2);
            player.memory().read(player.state()[plane], bytes.size(), bytes.data());
            write("-plane.png", [&](size_t index) {
                const uint32_t word = bytes[index / 16 * 2] | uint32_t{bytes[index / 16 * 2 + 1]} << 8;
                return word >> (15 - index % 16) & 1 ? 0xFFFFFFu : 0;
            });
        } else if (use.field == layer::Field::zBuffer) {
            std::vector<uint8_t> bytes(size);
            player.memory().read(player.state()[priorities], bytes.size(), bytes.data());
            write("-priorities.png", [&](size_t index) { return bytes[index] * 0x10101u; });
        }
    }
}

} // namespace

int runInfo(const Arguments &arguments)
{
    const Opened opened(arguments.words[0]);
    Player &player = *opened.player;
    Progress progress("info", *opened.reader);
    std::map<std::string, Totals> kernels;
    Totals all;
    uint64_t refused = 0;
    uint64_t calls = 0;
    for (Step step; (step = player.next()) != Step::end;) {
        if (step != Step::draw)
            continue;
        progress.show(player);
        Totals &one = kernels[player.draw().name];
        uint64_t pixels = 0;
        if (player.prepare(true)) {
            const layer::Pixels &p = player.footprint().pixels;
            pixels = p.empty() ? 0 : uint64_t(int64_t{p.right} - p.left) * uint64_t(int64_t{p.bottom} - p.top);
            player.finish();
        } else {
            ++refused;
        }
        for (Totals *const sum : {&one, &all})
            ++sum->draws, sum->pixels += pixels, sum->nanoseconds += player.draw().nanoseconds;
        calls += player.draw().result.calls[0] + player.draw().result.calls[1];
    }
    std::printf("%s: %s bytes", opened.path.c_str(), grouped(opened.reader->size()).c_str());
    for (const auto &[key, value] : player.notes())
        std::printf(", %s %s", key.c_str(), value.c_str());
    std::printf("\n%s frames, %s draws, %s pixels in their reach, %.3f ms in kernels where it was recorded\n",
                grouped(player.frames()).c_str(), grouped(all.draws).c_str(), grouped(all.pixels).c_str(),
                double(all.nanoseconds) / 1e6);
    if (calls)
        std::printf("%s calls of the host's own operators\n", grouped(calls).c_str());
    if (refused)
        std::printf("%s draws that cannot be made again\n", grouped(refused).c_str());

    std::vector<std::pair<std::string, Totals>> list(kernels.begin(), kernels.end());
    std::stable_sort(list.begin(), list.end(),
                     [](const auto &a, const auto &b) { return a.second.nanoseconds > b.second.nanoseconds; });
    std::printf("\n%10s %14s %12s %10s  kernel or function\n", "draws", "pixels", "ms", "ns/draw");
    for (const auto &[name, totals] : list)
        std::printf("%10s %14s %12.3f %10.0f  %s\n", grouped(totals.draws).c_str(), grouped(totals.pixels).c_str(),
                    double(totals.nanoseconds) / 1e6, double(totals.nanoseconds) / double(totals.draws), name.c_str());

    std::printf("\ntextures\n");
    uint64_t bytes = 0;
    for (const auto &[address, texture] : player.textures()) {
        if (!texture.told)
            continue;
        const Texture &t = *texture.record;
        bytes += uint64_t{4} * t.width * t.height;
        std::printf("  %s, picture %u x %u%s%s%s\n", player.textureName(address).c_str(), t.origWidth, t.origHeight,
                    t.mipCount ? (", " + std::to_string(t.mipCount) + " levels").c_str() : "", t.runlengthMap ? ", run map" : "",
                    t.zeroPixelMap ? ", zero map" : "");
    }
    std::printf("  %s bytes of pixels\n", grouped(bytes).c_str());
    return opened.complaint();
}

namespace {

// `in`: what more there is to say of how it is drawn.
int verify(const Arguments &arguments, const Drawer &drawer, const std::string &in)
{
    const Opened opened(arguments.words[0]);
    Player &player = *opened.player;
    Progress progress("verify", *opened.reader);
    uint64_t refused = 0, unknown = 0, differentFrames = 0;
    std::string firstRefusal;
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step == Step::frame) {
            if (!refused && player.frameHash() != player.frame().hash && differentFrames++ == 0)
                std::printf("%s: the frame buffer at the end of frame %llu is not as recorded\n", opened.path.c_str(),
                            static_cast<unsigned long long>(player.frame().number));
            continue;
        }
        if (!player.prepare(arguments.has("unchecked"))) {
            if (refused++ == 0)
                firstRefusal = drawLabel(player.draw()) + ": " + player.refusal();
            continue;
        }
        unknown += !player.draw().hasResult;
        const Bytes before = player.save();
        player.make(drawer.library());
        const std::string differences = player.compare();
        if (!differences.empty()) {
            std::printf("%s: %s: %s%s\n", opened.path.c_str(), drawLabel(player.draw()).c_str(), differences.c_str(), in.c_str());
            const Bytes is = player.save();
            if (!drawer.library().isLinked()) {
                // The linked library, where it draws as recorded, knows which pixels are wrong.
                player.restore(before);
                player.make(Library::linked());
                if (player.compare().empty())
                    std::printf("%s\n", firstDifference(player, is, player.save()).c_str());
            }
            player.finish();
            return statusFound;
        }
        player.finish();
    }
    if (refused)
        std::printf("%s: %s draws were not made; first %s\n", opened.path.c_str(), grouped(refused).c_str(),
                    firstRefusal.c_str());
    const int status = opened.complaint();
    std::printf("%s: %s draws in %s frames %s%s\n", opened.path.c_str(), grouped(player.draws() - refused - unknown).c_str(),
                grouped(player.frames()).c_str(), differentFrames ? "as recorded but for what was told" : "as recorded",
                in.c_str());
    return refused || differentFrames ? statusFound : status;
}

} // namespace

int runVerify(const Arguments &arguments)
{
    if (arguments.has("sets") + arguments.has("threads") + (arguments.has("sets") && arguments.has("lib")) > 1)
        fail(statusUsage, "--sets goes neither with --threads nor with --lib");
    if (arguments.has("threads"))
        return runThreads(arguments, false);
    const Drawer drawer(arguments);
    if (!arguments.has("sets"))
        return verify(arguments, drawer, "");
    int status = statusGood;
    const int sets = ninefold::usableSets();
    for (int set = 0; set < sets && status == statusGood; ++set) {
        ninefold::useSet(set);
        status = verify(arguments, drawer, std::string(", instruction set ") + ninefold::setNames[set]);
    }
    ninefold::useSet(sets - 1);
    return status;
}

int runFrames(const Arguments &arguments)
{
    const Opened opened(arguments.words[0]);
    const Drawer drawer(arguments);
    Player &player = *opened.player;
    Progress progress("frames", *opened.reader);
    const std::string directory = arguments.text("png", ".");
    const Range wanted = arguments.has("frames") ? rangeOf(arguments.text("frames", ""), "--frames") : Range{1, UINT64_MAX};
    makeDirectory(directory);
    uint64_t written = 0, different = 0;
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (player.frames() > wanted.last)
            break;
        if (step == Step::draw) {
            if (player.prepare(arguments.has("unchecked"))) {
                player.make(drawer.library());
                player.finish();
            }
            continue;
        }
        const Player::Picture picture = wanted.holds(player.frame().number) ? player.framePicture() : Player::Picture{};
        if (picture.pixels.empty())
            continue;
        char name[40];
        std::snprintf(name, sizeof name, "/frame-%04llu.png", static_cast<unsigned long long>(player.frame().number));
        writePicture(picture, directory + name);
        ++written;
        different += player.frameHash() != player.frame().hash;
    }
    const int status = opened.complaint();
    if (player.frames() < wanted.first && status == statusGood)
        fail(statusUsage,
             opened.path + " has " + grouped(player.frames()) + " frames, none of number " + std::to_string(wanted.first));
    std::printf("%s: %s frames in %s", opened.path.c_str(), grouped(written).c_str(), directory.c_str());
    std::printf(different ? ", of which %s are not as recorded\n" : "\n", grouped(different).c_str());
    return different ? statusFound : status;
}

int runDraw(const Arguments &arguments)
{
    const Opened opened(arguments.words[0]);
    const Drawer drawer(arguments);
    const uint64_t wanted = numberOf(arguments.words[1], "the number of the draw", 1, UINT64_MAX);
    Player &player = *opened.player;
    Progress progress("draw", *opened.reader);
    std::vector<uint64_t> previous;
    std::map<uint32_t *, std::vector<uint8_t>> changes; // how often this frame changed each pixel, by frame buffer
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step != Step::draw) {
            changes.clear();
            continue;
        }
        if (player.draw().number < wanted) {
            if (player.prepare(arguments.has("unchecked"))) {
                const Bytes before = arguments.has("png") ? player.save() : Bytes();
                player.make(drawer.library());
                if (arguments.has("png"))
                    countChanges(player, before, changes[rs.dstPixels]);
                player.finish();
            }
            previous = player.state();
            continue;
        }
        printState(player, previous);
        if (!player.prepare(arguments.has("unchecked"))) {
            std::printf("\nThe draw was not made: %s\n", player.refusal().c_str());
            return statusFound;
        }
        const layer::Pixels p = player.footprint().pixels;
        if (p.empty())
            std::printf("\nIt reaches no pixel.\n");
        else
            std::printf("\nIt reaches pixels %d to %d of rows %d to %d.\n", p.left, p.right - 1, p.top, p.bottom - 1);
        const Player::Picture before = player.drawPicture();
        const Bytes saved = player.save();
        player.make(drawer.library());
        const std::string differences = player.compare();
        const Player::Picture after = player.drawPicture();
        uint64_t changed = 0;
        Player::Picture difference = after;
        for (size_t k = 0; k < after.pixels.size(); ++k) {
            changed += after.pixels[k] != before.pixels[k];
            // What is as before is shown as its grey, darker.
            if (after.pixels[k] == before.pixels[k])
                difference.pixels[k] = ((after.pixels[k] >> 8 & 0xFF) / 4 + 16) * 0x10101;
        }
        std::printf("%s pixels changed. %s.\n", grouped(changed).c_str(),
                    !player.draw().hasResult ? "The capture ends in this draw: it has no result to compare with"
                    : differences.empty()    ? "The result is as recorded"
                                             : ("Not as recorded: " + differences).c_str());
        if (arguments.has("png") && !before.pixels.empty()) {
            const std::string stem = arguments.text("png", ".") + "/draw-" + std::to_string(wanted);
            makeDirectory(arguments.text("png", "."));
            writePicture(before, stem + "-before.png");
            writePicture(after, stem + "-after.png");
            writePicture(difference, stem + "-difference.png");
            std::vector<uint8_t> &counts = changes[rs.dstPixels];
            countChanges(player, saved, counts);
            writePlanes(player, before, counts, stem);
        }
        player.finish();
        return differences.empty() ? statusGood : statusFound;
    }
    return opened.complaintOfNone(wanted);
}

} // namespace replay
