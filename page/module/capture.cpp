// The inspector: a capture, drawn again step by step. A step is a draw or the end of a frame. Stepping back goes to the snapshot
// before, of which there is one every few dozen milliseconds of drawing, and on from there. What is called here has rs to itself:
// the page gives it an instance of the module of its own. Texts and pictures that are handed out stay until the next call.
#include "inspect.h"
#include "program.h"
#include "recording.h"
#include "report.h"

#include <ninefold/kit/codes.h>

#include <emscripten/emscripten.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace capture;
using debug::quoted;
using Step = Player::Step;

std::string number(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}
std::string number(uint64_t value) { return std::to_string(value); }
std::string truth(bool value) { return value ? "true" : "false"; }

// Nanoseconds of a draw that is made, by calls for so many milliseconds; memory is afterwards as before it. Browsers' clocks may tick
// in tenths of milliseconds only.
double measure(Player &player, const Bytes &saved, double least)
{
    if (player.footprint().pixels.empty())
        return 0;
    constexpr uint32_t most = 4000, batch = 4;
    const DrawFunc kernel = Library::linked().kernel(player.draw().id);
    const std::vector<Rows> &rows = player.rows();
    // What a plane hides once it is marked would be drawn in no time.
    const bool marks = std::any_of(rows.begin(), rows.end(),
                                   [](const Rows &one) { return one.written && one.field != layer::Field::dstPixels; });
    if (marks) // a difference of two times
        least *= 4;
    const auto run = [&](bool draws) {
        double begin = emscripten_get_now(), end = begin;
        while (begin == end)
            begin = emscripten_get_now();
        uint32_t count = 0;
        do {
            for (uint32_t k = 0; k < (count ? batch : 1); ++k, ++count) {
                if (marks)
                    player.restore(saved);
                if (draws)
                    kernel();
            }
            end = emscripten_get_now();
        } while (end - begin < least && count < most);
        return (end - begin) * 1e6 / count;
    };
    const double all = run(true), nanoseconds = marks ? std::max(0.0, all - run(false)) : all;
    player.restore(saved);
    return nanoseconds;
}

class Session {
public:
    explicit Session(Bytes bytes) : file(std::move(bytes)) {}

    // Empty, or what is wrong.
    std::string open()
    {
        std::string error;
        reader = Reader::open(std::span<const uint8_t>(file), error);
        if (!reader)
            return error;
        player = std::make_unique<Player>(*reader);
        done = 0;
        overdraw.clear(), previous.clear();
        if (checkpoints.empty())
            keep();
        return "";
    }

    // Draws for so many milliseconds; {"done", "steps", "part"}: of the file.
    std::string scan(double milliseconds)
    {
        const double until = emscripten_get_now() + milliseconds;
        while (!scanned && emscripten_get_now() < until) {
            if (advance(true))
                keepSometimes();
            else
                scanned = true;
        }
        problem = player->problem(), lost = player->lost();
        return "{\"done\":" + truth(scanned) + ",\"steps\":" + number(uint64_t{steps.size()}) +
               ",\"part\":" + number(100.0 * double(reader->position()) / double(file.size())) + "}";
    }

    std::string list() const
    {
        std::string text = "{\"problem\":" + quoted(problem) + ",\"lost\":" + number(lost) +
                           ",\"bytes\":" + number(uint64_t{file.size()}) + ",\"draws\":" + number(player->draws()) +
                           ",\"frames\":" + number(player->frames()) + ",\"notes\":{";
        for (const auto &[key, value] : player->notes())
            text += (text.back() == '{' ? "" : ",") + quoted(key) + ":" + quoted(value);
        text += "},\"names\":[";
        for (const std::string &name : names)
            text += (text.back() == '[' ? "" : ",") + quoted(name);
        // Index of the name, -1: a frame's end; frame; number; nanoseconds here and where it was recorded; 1: not as recorded,
        // 2: not made.
        text += "],\"steps\":[";
        for (const StepInfo &one : steps)
            text += std::string(text.back() == '[' ? "[" : ",[") + std::to_string(one.name) + "," + number(one.frame) + "," +
                    number(one.number) + "," + number(one.nanoseconds) + "," + number(one.recorded) + "," +
                    std::to_string(one.state) + "]";
        return text + "]}";
    }

    std::string show(size_t index)
    {
        leave();
        if (index >= steps.size() || !go(index) || player->next() == Step::end)
            return "{\"error\":\"the capture has no such step\"}";
        ++done;
        now = {};
        now.shown = true;
        now.isFrame = steps[index].name < 0;
        if (now.isFrame) {
            now.after = player->framePicture();
            return tellFrame();
        }
        now.cells = player->state(), now.id = player->draw().id;
        make("");
        return tell();
    }

    // Of the draw that is shown: "CELL=VALUE" and "name=NAME", joined by '&'. Empty: as it was.
    std::string edit(const std::string &edits)
    {
        if (!now.shown || now.isFrame)
            return "{\"error\":\"no draw is shown\"}";
        undo();
        const std::string wrong = make(edits);
        if (wrong.empty())
            return tell();
        make(now.edits);
        return "{\"error\":" + quoted(wrong) + "}";
    }

    Player::Picture view(const std::string &what)
    {
        if (what == "before")
            return now.before;
        if (what == "after")
            return now.after;
        if (what == "difference")
            return now.difference;
        if (!now.made)
            return {};
        if (what == "overdraw") {
            Overdraw with = overdraw;
            with.add(*player, now.saved);
            return with.picture(*player, now.after);
        }
        if (what == "plane")
            return planeOf(*player, layer::Field::shaheiPlane, now.after);
        if (what == "priorities")
            return planeOf(*player, layer::Field::zBuffer, now.after);
        // The index of a texture of the footprint.
        const size_t index = size_t(std::strtoul(what.c_str(), nullptr, 10));
        const std::span<const layer::TextureUse> uses = player->footprint().textures();
        if (index >= uses.size() || !uses[index].fetched)
            return {};
        return player->texturePicture(uses[index].texture);
    }

    // A C program of the draw as it is shown; empty where there is none.
    std::string program(const std::string &name)
    {
        if (!now.made || player->footprint().pixels.empty())
            return "";
        undo();
        prepare(now.edits);
        char *text = nullptr;
        size_t size = 0;
        std::FILE *const out = open_memstream(&text, &size);
        now.differences = writeProgram(out, *player, name);
        std::fclose(out);
        std::string result(text, size);
        std::free(text);
        return result;
    }

    // A capture of the draw as it is shown alone.
    Bytes trim()
    {
        Bytes bytes;
        if (!now.made)
            return bytes;
        const std::string edits = now.edits;
        undo();
        const char *const path = "/trim.nfc";
        const bool records = recordTo(path, *player);
        prepare(edits);
        player->make(Library::linked());
        undo();
        if (records && debug::stopRecording())
            if (std::FILE *const in = std::fopen(path, "rb")) {
                uint8_t part[4096];
                for (size_t had; (had = std::fread(part, 1, sizeof part, in)) > 0;)
                    bytes.insert(bytes.end(), part, part + had);
                std::fclose(in);
            }
        std::remove(path);
        make(edits);
        return bytes;
    }

private:
    struct StepInfo {
        int32_t name;
        uint64_t frame, number;
        double nanoseconds;
        uint64_t recorded;
        int state;
    };
    struct Checkpoint {
        size_t step;
        Player::Snapshot snapshot;
        Overdraw overdraw;
        std::vector<uint64_t> previous;
        size_t bytes() const { return snapshot.bytes() + overdraw.bytes(); }
    };
    // The draw that is shown: it is made, and not finished.
    struct Now {
        bool shown = false, isFrame = false, made = false;
        std::string edits, differences;
        std::vector<uint64_t> cells; // as recorded
        layer::Id id = 0;
        Bytes saved;
        Player::Picture before, after, difference;
        uint64_t changed = 0;
        double nanoseconds = 0;
    };
    static constexpr double spacing = 40; // milliseconds between checkpoints
    static constexpr size_t mostBytes = size_t{256} << 20; // of checkpoints

    Bytes file;
    std::unique_ptr<Reader> reader;
    std::unique_ptr<Player> player;
    std::vector<StepInfo> steps;
    std::vector<std::string> names;
    std::map<std::string, int32_t> nameIndices;
    std::vector<Checkpoint> checkpoints; // by their steps
    size_t done = 0; // steps
    Overdraw overdraw; // of the frame so far
    std::vector<uint64_t> previous; // cells of the draw before
    double lastKept = 0, cost = 0;
    bool scanned = false;
    std::string problem;
    uint64_t lost = 0;
    Now now;

    // ---- steps ----

    // One step further; false at the end.
    bool advance(bool scans)
    {
        const Step step = player->next();
        if (step == Step::end)
            return false;
        ++done;
        StepInfo info{-1, player->frame().number, player->frame().number, 0, 0, 0};
        if (step == Step::frame) {
            overdraw.clear();
            info.state = scans && player->frameHash() != player->frame().hash;
        } else {
            const DrawEvent &draw = player->draw();
            const auto [name, isNew] = nameIndices.emplace(draw.name, int32_t(names.size()));
            if (isNew)
                names.push_back(draw.name);
            info = {name->second, draw.frame, draw.number, 0, draw.nanoseconds, 2};
            if (player->prepare()) {
                const Bytes saved = player->save();
                player->make(Library::linked());
                info.state = scans && !player->compare().empty();
                if (scans) {
                    info.nanoseconds = measure(*player, saved, 0.15);
                    player->make(Library::linked());
                }
                overdraw.add(*player, saved);
                player->finish();
            }
            previous = player->state();
        }
        if (scans)
            steps.push_back(info);
        return true;
    }

    // To behind so many steps.
    bool go(size_t index)
    {
        auto from = std::upper_bound(checkpoints.begin(), checkpoints.end(), index,
                                     [](size_t step, const Checkpoint &one) { return step < one.step; });
        const Checkpoint *const nearest = from == checkpoints.begin() ? nullptr : &*std::prev(from);
        if (done > index || (nearest && nearest->step > done)) {
            if (nearest && player->restore(nearest->snapshot))
                done = nearest->step, overdraw = nearest->overdraw, previous = nearest->previous;
            else
                open();
        }
        lastKept = emscripten_get_now();
        while (done < index && advance(false))
            keepSometimes();
        return done == index;
    }

    void keepSometimes()
    {
        if (emscripten_get_now() - lastKept > std::max(spacing, 5 * cost))
            keep();
    }

    void keep()
    {
        const double began = emscripten_get_now();
        auto at = std::lower_bound(checkpoints.begin(), checkpoints.end(), done,
                                   [](const Checkpoint &one, size_t step) { return one.step < step; });
        if (at != checkpoints.end() && at->step == done)
            return;
        std::optional<Player::Snapshot> taken = player->snapshot(at == checkpoints.begin() ? nullptr : &std::prev(at)->snapshot);
        if (!taken)
            return;
        checkpoints.insert(at, {done, std::move(*taken), overdraw, previous});
        size_t bytes = 0;
        for (const Checkpoint &one : checkpoints)
            bytes += one.bytes();
        // Every other one goes; the first stays.
        if (bytes > mostBytes) {
            size_t kept = 0;
            for (size_t k = 0; k < checkpoints.size(); k += 2)
                std::swap(checkpoints[kept++], checkpoints[k]);
            checkpoints.resize(kept);
        }
        lastKept = emscripten_get_now();
        cost = lastKept - began;
    }

    // ---- the draw that is shown ----

    // Empty, or which edit is wrong.
    std::string change(const std::string &edits)
    {
        for (size_t at = 0; at < edits.size();) {
            const size_t end = std::min(edits.find('&', at), edits.size()), equals = edits.find('=', at);
            if (equals >= end)
                return "'" + edits.substr(at, end - at) + "' has no value";
            const std::string key = edits.substr(at, equals - at), value = edits.substr(equals + 1, end - equals - 1);
            at = end + 1;
            if (key == "name") {
                const uint32_t code = nfkCodeOfName(value.c_str());
                const int record = code && nfkCodeExists(code) ? layer::recordOf(code) : -1;
                if (record < 0)
                    return "there is no combination '" + value + "'";
                player->change(layer::Id(record));
                continue;
            }
            const std::span<const Cell> cells = stateCells();
            const auto cell = std::find_if(cells.begin(), cells.end(), [&](const Cell &one) { return one.name == key; });
            if (cell == cells.end() || cell->kind != Cell::Kind::number)
                return "rs." + key + " is no field that can be edited";
            char *rest = nullptr;
            const bool hex = value.compare(0, 2, "0x") == 0;
            const long long wanted = std::strtoll(value.c_str(), &rest, hex ? 16 : 10);
            const int64_t most = cell->isSigned && !hex ? INT32_MAX : (int64_t{1} << 8 * std::min<int>(cell->size, 4)) - 1;
            const int64_t least = cell->isSigned ? INT32_MIN : 0;
            if (value.empty() || *rest || wanted < least || wanted > most)
                return "rs." + key + " is '" + value + "'; it is a whole number from " + std::to_string(least) + " to " +
                       std::to_string(most);
            player->change(size_t(cell - cells.begin()), cell->isSigned ? uint64_t(int64_t{int32_t(wanted)}) : uint64_t(wanted));
        }
        return "";
    }

    // The draw is ready to be made.
    std::string prepare(const std::string &edits)
    {
        const std::string wrong = change(edits);
        if (wrong.empty() && player->prepare()) {
            now.made = true;
            now.saved = player->save();
        }
        return wrong;
    }

    std::string make(const std::string &edits)
    {
        const std::string wrong = prepare(edits);
        if (!wrong.empty()) {
            undo();
            return wrong;
        }
        now.edits = edits;
        now.before = now.after = player->drawPicture();
        now.differences.clear();
        now.nanoseconds = 0;
        if (now.made) {
            player->make(Library::linked());
            now.nanoseconds = measure(*player, now.saved, 1.5);
            player->make(Library::linked());
            now.differences = player->compare();
            now.after = player->drawPicture();
        }
        now.difference = differenceOf(now.before, now.after, now.changed);
        return "";
    }

    // Memory and state are as before the draw.
    void undo()
    {
        if (now.made) {
            player->finish();
            player->restore(now.saved);
        }
        now.made = false;
        for (size_t k = 0; k < now.cells.size(); ++k)
            player->change(k, now.cells[k]);
        if (player->draw().known)
            player->change(now.id);
    }

    // The steps go on from the draw as it was recorded.
    void leave()
    {
        if (now.shown && now.isFrame)
            overdraw.clear();
        else if (now.shown) {
            if (!now.edits.empty()) {
                undo();
                prepare("");
                if (now.made)
                    player->make(Library::linked());
            }
            if (now.made) {
                overdraw.add(*player, now.saved);
                player->finish();
            }
            previous = now.cells;
        }
        now = {};
    }

    // ---- in words ----

    std::string tellFrame() const
    {
        const FrameEvent &frame = player->frame();
        return "{\"frame\":" + number(frame.number) + ",\"cut\":" + quoted(cutName(frame.cut)) +
               ",\"asRecorded\":" + truth(player->frameHash() == frame.hash) +
               ",\"views\":[\"after\"],\"textures\":[],\"cells\":[]}";
    }

    std::string tell() const
    {
        const DrawEvent &draw = player->draw();
        const bool isKernel = draw.known && layer::isRecord(draw.id);
        std::string text = "{\"draw\":" + number(draw.number) + ",\"frame\":" + number(draw.frame) +
                           ",\"name\":" + quoted(draw.name) + ",\"kernel\":" + truth(isKernel) +
                           ",\"words\":" + quoted(codeInWords(draw)) +
                           ",\"refusal\":" + quoted(now.made ? "" : player->refusal()) +
                           ",\"edited\":" + truth(!now.edits.empty()) + ",\"hasResult\":" + truth(draw.hasResult) +
                           ",\"differences\":" + quoted(now.differences) + ",\"changed\":" + number(now.changed) +
                           ",\"nanoseconds\":" + number(now.nanoseconds) + ",\"recorded\":" + number(draw.nanoseconds);
        std::string views = ",\"views\":[\"after\",\"before\",\"difference\"", textures = ",\"textures\":[";
        if (now.made) {
            const layer::Pixels &p = player->footprint().pixels;
            if (!p.empty())
                text += ",\"reach\":[" + std::to_string(p.left) + "," + std::to_string(p.top) + "," + std::to_string(p.right) +
                        "," + std::to_string(p.bottom) + "]";
            views += ",\"overdraw\"";
            for (const layer::MemoryUse &use : player->footprint().memory())
                if (use.field == layer::Field::shaheiPlane || use.field == layer::Field::zBuffer)
                    views += use.field == layer::Field::shaheiPlane ? ",\"plane\"" : ",\"priorities\"";
            size_t index = 0;
            for (const layer::TextureUse &use : player->footprint().textures()) {
                if (use.fetched)
                    textures += std::string(textures.back() == '[' ? "" : ",") + "{\"index\":" + number(uint64_t{index}) +
                                ",\"field\":" + quoted(layer::fieldName(use.field)) + ",\"level\":" + std::to_string(use.level) +
                                ",\"name\":" + quoted(player->textureName(player->addressOf(use.texture))) + "}";
                ++index;
            }
        }
        text += views + "]" + textures + "],\"cells\":[";
        for (const CellInWords &one : stateInWords(*player, previous)) {
            const Cell &cell = stateCells()[one.cell];
            const bool isNumber = cell.kind == Cell::Kind::number;
            text += std::string(text.back() == '[' ? "" : ",") + "{\"name\":" + quoted(cell.name) +
                    ",\"text\":" + quoted(one.text) + ",\"zero\":" + truth(one.value == 0) + ",\"isNew\":" + truth(one.isNew) +
                    ",\"number\":" + truth(isNumber) +
                    ",\"value\":" + quoted(cell.isSigned ? std::to_string(int64_t(one.value)) : std::to_string(one.value)) +
                    ",\"was\":" +
                    quoted(one.cell < previous.size()
                               ? cell.isSigned ? std::to_string(int64_t(previous[one.cell])) : std::to_string(previous[one.cell])
                               : "") +
                    ",\"edited\":" + truth(now.cells[one.cell] != one.value) + "}";
        }
        return text + "]}";
    }
};

std::unique_ptr<Session> session;
std::string result;
Player::Picture picture;
Bytes bytes;

const char *give(std::string text)
{
    result = std::move(text);
    return result.c_str();
}

} // namespace

extern "C" {

// Takes a copy of a file. Empty, or why it cannot be opened.
EMSCRIPTEN_KEEPALIVE const char *captureOpen(const uint8_t *from, uint32_t size)
{
    session = std::make_unique<Session>(Bytes(from, from + size));
    std::string wrong = session->open();
    if (!wrong.empty())
        session.reset();
    return give(std::move(wrong));
}

EMSCRIPTEN_KEEPALIVE const char *captureScan(double milliseconds) { return give(session->scan(milliseconds)); }
EMSCRIPTEN_KEEPALIVE const char *captureList(void) { return give(session->list()); }
EMSCRIPTEN_KEEPALIVE const char *captureShow(uint32_t step) { return give(session->show(step)); }
EMSCRIPTEN_KEEPALIVE const char *captureEdit(const char *edits) { return give(session->edit(edits)); }
EMSCRIPTEN_KEEPALIVE const char *captureProgram(const char *name) { return give(session->program(name)); }

// A picture of the step that is shown, words row by row: before, after, difference, overdraw, plane, priorities, or a texture's
// index.
EMSCRIPTEN_KEEPALIVE const uint32_t *captureView(const char *what)
{
    picture = session->view(what);
    return picture.pixels.data();
}
EMSCRIPTEN_KEEPALIVE uint32_t captureWidth(void) { return picture.width; }
EMSCRIPTEN_KEEPALIVE uint32_t captureHeight(void) { return picture.height; }

// The draw that is shown as a capture of its own; its bytes, 0: there is none.
EMSCRIPTEN_KEEPALIVE uint32_t captureTrim(void)
{
    bytes = session->trim();
    return uint32_t(bytes.size());
}
EMSCRIPTEN_KEEPALIVE const uint8_t *captureBytes(void) { return bytes.data(); }

EMSCRIPTEN_KEEPALIVE void captureClose(void) { session.reset(); }

} // extern "C"
