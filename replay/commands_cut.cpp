// The commands that write captures: trim and minimise.
#include "command.h"

#include "knowledge.h"
#include "layer.h"
#include "recording.h"
#include "report.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <tuple>

#include <csignal>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace replay {

using namespace capture;
using Step = Player::Step;

int runTrim(const Arguments &arguments)
{
    if (arguments.has("frames") == arguments.has("draws"))
        fail(statusUsage, "trim needs either --frames A..B or --draws A..B");
    const bool byFrame = arguments.has("frames");
    const Range range = rangeOf(arguments.text(byFrame ? "frames" : "draws", ""), byFrame ? "--frames" : "--draws");
    const Opened opened(arguments.words[0]);
    const std::string &out = arguments.words[1];
    keep(opened.path, out);
    Player &player = *opened.player;
    Progress progress("trim", *opened.reader);
    uint64_t kept = 0, refused = 0, different = 0;
    bool records = false;
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        const uint64_t number = !byFrame              ? player.draw().number
                                : step == Step::frame ? player.frame().number
                                                      : player.draw().frame;
        if (number > range.last)
            break;
        if (step == Step::frame) {
            if (records)
                debug::recordFrame(player.frame().cut == Cut::buffer);
            continue;
        }
        const bool keeps = range.holds(number);
        if (keeps && !records) {
            startRecording(out, player);
            records = true;
        }
        if (!player.prepare(arguments.has("unchecked"))) {
            ++refused;
            continue;
        }
        player.make(Library::linked());
        kept += keeps;
        different += keeps && !player.compare().empty();
        player.finish();
    }
    const int status = opened.complaint();
    if (!records && status != statusGood)
        return status;
    if (!records)
        fail(statusUsage,
             opened.path + " ends before: it has " + counted(player.frames(), "frame") + ", " + counted(player.draws(), "draw"));
    endRecording(out);
    std::printf("%s: %s\n", out.c_str(), counted(kept, "draw").c_str());
    if (refused)
        std::printf("left out, as not to be made: %s\n", counted(refused, "draw").c_str());
    if (different)
        std::printf("%s not as recorded: the results in it are those of this program's library\n",
                    counted(different, "draw").c_str());
    return refused || different ? statusFound : status;
}

namespace {

enum class Verdict : uint8_t { same, differs, crashes, tells };

volatile std::sig_atomic_t isStopped; // by the user: what there is so far is written

// Does something that may crash, in a process of its own where there are such.
Verdict judge(const std::function<bool()> &differs)
{
#ifdef _WIN32
    return differs() ? Verdict::differs : Verdict::same;
#else
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
        fail(statusFile, "cannot start a process");
    if (child == 0) {
        for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
            std::signal(signal, SIG_DFL);
        std::signal(SIGINT, SIG_IGN); // the program around waits for it
        alarm(20); // what does not end counts as a crash
        _exit(differs() ? 1 : 0);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            fail(statusFile, "cannot wait for a process");
    return !WIFEXITED(status) ? Verdict::crashes : WEXITSTATUS(status) == 1 ? Verdict::differs : Verdict::same;
#endif
}

// One draw that fails: a library makes it otherwise than the linked one or crashes in it, or the twin tells something of it.
class Case {
public:
    Case(Player &is, Library &wanted, Verdict how, Progress *shown = nullptr)
        : player(is), other(wanted), verdict(how), progress(shown)
    {}
    Case(Player &is, const std::string &wanted, Progress *shown = nullptr)
        : player(is), other(Library::linked()), rule(wanted), verdict(Verdict::tells), progress(shown)
    {}

    // Whether it fails still, in the way that it first did. Once the user has stopped the work nothing does.
    bool fails()
    {
        if (isStopped)
            return false;
        ++tries;
        if (progress)
            progress->show(doing + ", " + grouped(tries) + " attempts; Ctrl-C writes what there is");
        if (verdict == Verdict::tells)
            return tells();
        if (!player.prepare())
            return false;
        const bool does = judge([&] { return differs(); }) == verdict;
        player.finish();
        return does;
    }
    bool tells()
    {
        debug::nextFrame(); // some rules look once in a frame
        if (player.prepare())
            player.finish();
        const std::vector<std::string> &met = Player::findings();
        return std::find(met.begin(), met.end(), rule) != met.end();
    }
    // In this process. Afterwards memory is as before.
    bool differs()
    {
        const Bytes before = player.save();
        player.make(Library::linked());
        const Bytes wanted = player.save();
        const Result result = player.now();
        const std::vector<uint64_t> state = numbers();
        player.restore(before);
        player.make(other);
        const bool same = player.save() == wanted && numbers() == state && player.now().digest[0] == result.digest[0] &&
                          player.now().digest[1] == result.digest[1];
        player.restore(before);
        return !same;
    }

    Player &player;
    Library &other;
    const std::string rule;
    const Verdict verdict;
    std::string doing;
    uint64_t tries = 0;

private:
    Progress *progress;

    static std::vector<uint64_t> numbers()
    {
        std::vector<uint64_t> values;
        for (const Cell &cell : stateCells())
            if (cell.kind == Cell::Kind::number)
                values.push_back(readCell(cell, &rs));
        return values;
    }
};

// The first draw that fails, made in a process of its own. Its number; where there is none 0, and in status what follows from the
// file, of which everything is said.
uint64_t findFailure(const std::string &path, Library &other, Verdict &verdict, int &status)
{
    const auto scan = [&](const std::function<void(uint64_t)> &doing) {
        const Opened opened(path);
        Player &player = *opened.player;
        Case one(player, other, Verdict::differs);
        for (Step step; (step = player.next()) != Step::end;) {
            if (step == Step::frame || !player.prepare())
                continue;
            doing(player.draw().number);
            if (one.differs())
                return int(statusFound);
            player.make(Library::linked());
            player.finish();
        }
        return opened.complaint();
    };
    uint64_t last = 0;
#ifdef _WIN32
    verdict = Verdict::differs;
    status = scan([&](uint64_t number) { last = number; });
    return status == statusFound ? last : 0;
#else
    int pipes[2];
    if (pipe(pipes) != 0)
        fail(statusFile, "cannot make a pipe");
    const pid_t child = fork();
    if (child == 0) {
        close(pipes[0]);
        const int found = scan([&](uint64_t number) {
            if (write(pipes[1], &number, sizeof number) != ssize_t(sizeof number))
                _exit(statusFile);
        });
        _exit(found);
    }
    close(pipes[1]);
    for (uint64_t number; read(pipes[0], &number, sizeof number) == ssize_t(sizeof number);)
        last = number;
    close(pipes[0]);
    int ended = 0;
    if (child < 0 || waitpid(child, &ended, 0) < 0)
        fail(statusFile, "cannot start a process");
    verdict = WIFEXITED(ended) ? Verdict::differs : Verdict::crashes;
    status = WIFEXITED(ended) ? WEXITSTATUS(ended) : int(statusFound);
    return status == statusFound ? last : 0;
#endif
}

// The clip rectangle, halved from each side as long as it still fails.
void shrinkClip(Case &one)
{
    Player &player = one.player;
    static constexpr const char *names[] = {"clipLeft", "clipTop", "clipRight", "clipBottom"};
    size_t cell[4];
    for (int side = 0; side < 4; ++side)
        cell[side] = stateCell(names[side]);
    if (!player.prepare(true))
        return;
    const layer::Pixels p = player.footprint().pixels;
    player.finish();
    int64_t at[4] = {p.left, p.top, p.right, p.bottom};
    const auto put = [&](const int64_t(&to)[4]) {
        for (int side = 0; side < 4; ++side)
            player.change(cell[side], uint64_t(to[side]));
    };
    int64_t old[4];
    for (int side = 0; side < 4; ++side)
        old[side] = int64_t(player.state()[cell[side]]);
    put(at);
    if (!one.fails())
        std::memcpy(at, old, sizeof at), put(at);
    for (bool shrinks = true; shrinks;) {
        shrinks = false;
        for (int side = 0; side < 4; ++side) {
            const int64_t size = std::abs(at[(side + 2) % 4] - at[side]);
            for (int64_t step = size / 2; step > 0; step /= 2) {
                int64_t tried[4];
                std::memcpy(tried, at, sizeof at);
                tried[side] += side < 2 ? step : -step;
                put(tried);
                if (!one.fails())
                    continue;
                std::memcpy(at, tried, sizeof at);
                shrinks = true;
                break;
            }
        }
    }
    put(at);
}

// Numbers of rs that are as good as 0, or half as large: rectangles become smaller, positions in textures come nearer to their corner.
void shrinkState(Case &one)
{
    for (size_t k = 0; k < stateCells().size(); ++k) {
        const Cell &cell = stateCells()[k];
        uint64_t value = one.player.state()[k];
        if (!value || cell.kind != Cell::Kind::number || cell.name.compare(0, 3, "dst") == 0 ||
            cell.name.compare(0, 4, "clip") == 0)
            continue;
        one.player.change(k, 0);
        if (one.fails())
            continue;
        for (;;) {
            const uint64_t half = cell.isSigned ? uint64_t(int64_t(value) / 2) : value / 2;
            one.player.change(k, half);
            if (half == 0 || !one.fails())
                break;
            value = half;
        }
        one.player.change(k, value);
    }
}

// Textures cut down to their upper left part, by halves, where they have neither levels nor maps, which would have to fit.
void shrinkTextures(Case &one)
{
    Player &player = one.player;
    if (!player.prepare(true))
        return;
    std::map<Texture *, uint64_t> textures; // and the addresses of their pixels
    for (const layer::TextureUse &use : player.footprint().textures())
        if (use.fetched)
            for (const auto &[address, held] : player.textures())
                if (held.record.get() == use.texture)
                    textures.emplace(held.record.get(), held.cells[textureCell("pixels")]);
    player.finish();
    for (const auto &[texture, address] : textures)
        for (const bool wide : {true, false})
            for (;;) {
                uint32_t &log2 = wide ? texture->log2Width : texture->log2Height;
                if (!log2 || texture->mipCount > 1 || texture->runlengthMap || texture->zeroPixelMap)
                    break;
                const uint32_t width = texture->width, height = texture->height;
                const auto original = std::pair{texture->origWidth, texture->origHeight};
                auto *const pixels = reinterpret_cast<uint32_t *>(player.memory().at(address));
                if (!pixels)
                    break;
                const std::vector<uint32_t> saved(pixels, pixels + size_t{width} * height);
                --log2;
                texture->width = 1u << texture->log2Width, texture->height = 1u << texture->log2Height;
                texture->origWidth = std::min(texture->origWidth, texture->width);
                texture->origHeight = std::min(texture->origHeight, texture->height);
                for (size_t row = 0; row < texture->height; ++row)
                    std::copy_n(saved.data() + row * width, texture->width, pixels + row * texture->width);
                if (one.fails())
                    continue;
                ++log2;
                texture->width = width, texture->height = height;
                std::tie(texture->origWidth, texture->origHeight) = original;
                std::copy(saved.begin(), saved.end(), pixels);
                break;
            }
}

// Memory that is as good as zeros, in ever smaller parts. Of textures half a texel is none, so parts are whole elements.
void shrinkMemory(Case &one)
{
    Player &player = one.player;
    if (!player.prepare(true))
        return;
    const std::vector<Rows> all = player.rows();
    player.finish();
    for (const Rows &rows : all) {
        std::vector<std::pair<uintptr_t, size_t>> parts; // of bytes
        for (size_t row = 0; row < rows.rows; ++row)
            parts.emplace_back(rows.row(row), rows.rowBytes);
        constexpr size_t mostTries = 400;
        const uint64_t start = one.tries;
        const auto clear = [&](size_t first, size_t end, bool whole, size_t from, size_t to) {
            Bytes saved;
            bool any = false;
            for (size_t k = first; k < end; ++k) {
                auto *const bytes = reinterpret_cast<uint8_t *>(parts[k].first) + (whole ? 0 : from);
                const size_t size = whole ? parts[k].second : to - from;
                any |= std::any_of(bytes, bytes + size, [](uint8_t byte) { return byte != 0; });
                saved.insert(saved.end(), bytes, bytes + size);
                std::memset(bytes, 0, size);
            }
            if (!any || one.fails())
                return true;
            const uint8_t *back = saved.data();
            for (size_t k = first; k < end; ++k) {
                const size_t size = whole ? parts[k].second : to - from;
                std::memcpy(reinterpret_cast<uint8_t *>(parts[k].first) + (whole ? 0 : from), back, size);
                back += size;
            }
            return false;
        };
        // Rows, then parts of a row.
        const std::function<void(size_t, size_t)> halveRows = [&](size_t first, size_t end) {
            if (first >= end || one.tries - start > mostTries || clear(first, end, true, 0, 0))
                return;
            if (end - first == 1) {
                const std::function<void(size_t, size_t)> halve = [&](size_t from, size_t to) {
                    if (from >= to || one.tries - start > mostTries || clear(first, end, false, from, to))
                        return;
                    const size_t middle = from + (to - from) / 2 / rows.element * rows.element;
                    if (middle > from)
                        halve(from, middle), halve(middle, to);
                };
                return halve(0, rows.rowBytes);
            }
            const size_t middle = first + (end - first) / 2;
            halveRows(first, middle), halveRows(middle, end);
        };
        halveRows(0, parts.size());
    }
}

} // namespace

namespace {

// The name of a rule that is given by its name or its number, as NF-0107.
std::string ruleOf(const std::string &text)
{
    for (const debug::Rule &rule : debug::rules)
        if (text == rule.name || text == debug::ruleLabel(rule)) {
            if (!rule.breaks)
                fail(statusUsage, "the rule " + text + " is not one of draws, which is all that a capture holds");
            return rule.name;
        }
    fail(statusUsage, "no rule '" + text + "'; ninefold-debug --rules names them");
}

// Goes on to the first draw of which the twin tells it; false where there is none.
bool findTelling(Player &player, const std::string &rule, Progress &progress)
{
    Case one(player, rule);
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step == Step::frame)
            continue;
        if (one.tells())
            return true;
        if (player.prepare()) {
            player.make(Library::linked());
            player.finish();
        }
    }
    return false;
}

// Cuts the draw down, and writes it as a capture of its own.
int minimise(Case &one, const std::string &path, const std::string &out, const std::function<bool(Player &)> &shows)
{
    Player &player = one.player;
    std::printf("%s: %s %s\n", path.c_str(), drawLabel(player.draw()).c_str(),
                one.verdict == Verdict::tells     ? ("breaks the rule " + one.rule).c_str()
                : one.verdict == Verdict::crashes ? "crashes"
                                                  : "comes out otherwise");
    std::fflush(stdout);
    if (!one.fails())
        fail(statusFile, "it does not fail again when it is made alone");
    const auto before = std::signal(SIGINT, [](int) { isStopped = 1; });
    struct Part {
        const char *name;
        void (*shrink)(Case &);
    };
    for (const auto &[doing, shrink] :
         {Part{"clip rectangle", shrinkClip}, {"state", shrinkState}, {"textures", shrinkTextures}, {"memory", shrinkMemory}}) {
        one.doing = std::string("minimise: ") + doing;
        shrink(one);
    }
    const bool wasStopped = isStopped;
    isStopped = 0;
    std::signal(SIGINT, before);

    startRecording(out, player);
    if (!player.prepare(one.verdict == Verdict::tells))
        fail(statusFile, player.refusal());
    // A draw with an error is not made: the capture ends in it.
    debug::settings().severity = NINEFOLD_DEBUG_ERROR;
    const std::vector<std::string> &met = Player::findings();
    const bool isError = std::any_of(met.begin(), met.end(), [](const std::string &name) {
        return debug::rules[debug::ruleNamed(name)].severity == NINEFOLD_DEBUG_ERROR;
    });
    if (!isError)
        player.make(Library::linked()), player.finish();
    endRecording(out);
    if (isError)
        player.finish();
    debug::settings().severity = one.verdict == Verdict::tells ? NINEFOLD_DEBUG_HINT : NINEFOLD_DEBUG_ERROR;
    const Opened made(out);
    if (made.player->next() != Step::draw || !shows(*made.player))
        fail(statusFile, out + " does not show it any more");
    std::printf("%s: one draw, %s, after %s%s\n", out.c_str(), counted(made.reader->size(), "byte").c_str(),
                counted(one.tries, "attempt").c_str(), wasStopped ? "; stopped" : "");
    return statusFound;
}

} // namespace

int runMinimise(const Arguments &arguments)
{
    if (arguments.has("lib") == arguments.has("twin"))
        fail(statusUsage, "minimise needs either --lib PATH, the build that draws otherwise or crashes, or --twin RULE");
    const std::string &path = arguments.words[0], &out = arguments.words[1];
    keep(path, out);
    if (arguments.has("twin")) {
        const std::string rule = ruleOf(arguments.text("twin", ""));
        const Opened opened(path);
        Progress progress("minimise", *opened.reader);
        debug::settings().severity = NINEFOLD_DEBUG_HINT;
        if (!findTelling(*opened.player, rule, progress)) {
            const int status = opened.complaint();
            std::printf("%s: no draw breaks the rule %s\n", path.c_str(), rule.c_str());
            return status;
        }
        Case one(*opened.player, rule, &progress);
        return minimise(one, path, out, [&](Player &player) { return Case(player, rule).fails(); });
    }
    const Drawer drawer(arguments);
    Verdict verdict = Verdict::differs;
    const Opened opened(path);
    int status = statusGood;
    const uint64_t wanted = findFailure(path, drawer.library(), verdict, status);
    if (!wanted) {
        std::printf("%s: both libraries draw the same\n", path.c_str());
        return status;
    }
    Player &player = *opened.player;
    Progress progress("minimise", *opened.reader);
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step == Step::frame)
            continue;
        if (player.draw().number == wanted)
            break;
        if (player.prepare()) {
            player.make(Library::linked());
            player.finish();
        }
    }
    Case one(player, drawer.library(), verdict, &progress);
    return minimise(one, path, out, [&](Player &is) { return Case(is, drawer.library(), verdict).fails(); });
}

} // namespace replay
