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
    std::printf("%s: %s", opened.path.c_str(), counted(opened.reader->size(), "byte").c_str());
    for (const auto &[key, value] : player.notes())
        std::printf(", %s %s", key.c_str(), value.c_str());
    std::printf("\n%s, %s, %s in their reach, %.3f ms in kernels where it was recorded\n",
                counted(player.frames(), "frame").c_str(), counted(all.draws, "draw").c_str(),
                counted(all.pixels, "pixel").c_str(), double(all.nanoseconds) / 1e6);
    if (calls)
        std::printf("%s of the host's own operators\n", counted(calls, "call").c_str());
    if (refused)
        std::printf("%s that cannot be made again\n", counted(refused, "draw").c_str());

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
        std::printf("%s: %s not made; first %s\n", opened.path.c_str(), counted(refused, "draw").c_str(), firstRefusal.c_str());
    const int status = opened.complaint();
    std::printf("%s: %s in %s %s%s\n", opened.path.c_str(), counted(player.draws() - refused - unknown, "draw").c_str(),
                counted(player.frames(), "frame").c_str(), differentFrames ? "as recorded but for what was told" : "as recorded",
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
             opened.path + " has " + counted(player.frames(), "frame") + ", none of number " + std::to_string(wanted.first));
    std::printf("%s: %s in %s", opened.path.c_str(), counted(written, "frame").c_str(), directory.c_str());
    std::printf(different ? ", %s of them not as recorded\n" : "\n", grouped(different).c_str());
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
    Overdraw overdraw; // of this frame
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step != Step::draw) {
            overdraw.clear();
            continue;
        }
        if (player.draw().number < wanted) {
            if (player.prepare(arguments.has("unchecked"))) {
                const Bytes before = arguments.has("png") ? player.save() : Bytes();
                player.make(drawer.library());
                if (arguments.has("png"))
                    overdraw.add(player, before);
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
        uint64_t changed;
        const Player::Picture difference = differenceOf(before, after, changed);
        std::printf("%s changed. %s.\n", counted(changed, "pixel").c_str(),
                    !player.draw().hasResult ? "The capture ends in this draw: it has no result to compare with"
                    : differences.empty()    ? "The result is as recorded"
                                             : ("Not as recorded: " + differences).c_str());
        if (arguments.has("png") && !before.pixels.empty()) {
            const std::string stem = arguments.text("png", ".") + "/draw-" + std::to_string(wanted);
            makeDirectory(arguments.text("png", "."));
            writePicture(before, stem + "-before.png");
            writePicture(after, stem + "-after.png");
            writePicture(difference, stem + "-difference.png");
            overdraw.add(player, saved);
            writePicture(overdraw.picture(player, before), stem + "-overdraw.png");
            for (const auto &[field, name] :
                 {std::pair{layer::Field::shaheiPlane, "-plane.png"}, std::pair{layer::Field::zBuffer, "-priorities.png"}})
                if (const Player::Picture plane = planeOf(player, field, before); !plane.pixels.empty())
                    writePicture(plane, stem + name);
        }
        player.finish();
        return differences.empty() ? statusGood : statusFound;
    }
    return opened.complaintOfNone(wanted);
}

} // namespace replay
