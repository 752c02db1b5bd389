#include "tape.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace capture {
namespace {

constexpr size_t stateWords = sizeof(RenderState) / 4;
static_assert(sizeof(RenderState) % 4 == 0);
using State = std::array<uint32_t, stateWords>;

// The operators that stand for the host's.
struct Speaker {
    const uint32_t *next, *end;
    uint32_t speak() { return next < end ? *next++ : 0; }
};
Speaker speakers[2]; // of multiFunc and blendFunc
uint32_t speakMulti(uint32_t, uint32_t) { return speakers[0].speak(); }
uint32_t speakBlend(uint32_t, uint32_t) { return speakers[1].speak(); }

// rs of a library, as it was before, after all.
class Kept {
public:
    explicit Kept(RenderState &of) : state(of) { std::memcpy(saved, &of, sizeof saved); }
    ~Kept() { std::memcpy(static_cast<void *>(&state), saved, sizeof saved); }
    Kept(const Kept &) = delete;
    Kept &operator=(const Kept &) = delete;

private:
    RenderState &state;
    alignas(RenderState) unsigned char saved[sizeof(RenderState)];
};

size_t operatorOffset(int which)
{
    static const size_t offsets[2] = {stateCells()[stateCell("multiFunc")].offset, stateCells()[stateCell("blendFunc")].offset};
    return offsets[which];
}

// rs without operators, which each library has its own of.
State stateNow()
{
    State state;
    std::memcpy(state.data(), &rs, sizeof state);
    for (const int which : {0, 1})
        std::memset(reinterpret_cast<unsigned char *>(state.data()) + operatorOffset(which), 0, sizeof(PixelOperator));
    return state;
}

} // namespace

struct Tape::Reading {
    State state{};
    std::map<const Texture *, std::vector<uint8_t>> records;
    std::vector<Patch> patches;
};

// Twice: the first time only for the memory that it takes, so that none moves afterwards.
std::unique_ptr<Tape> Tape::read(const Open &open, bool unchecked, const Watch &watch, std::string &error, uint64_t memoryLimit)
{
    const std::unique_ptr<Reader> first = open(error);
    if (!first)
        return nullptr;
    Player sizes(*first, memoryLimit);
    for (Player::Step step; (step = sizes.next()) != Player::Step::end;) {
        if (watch)
            watch(sizes);
        if (step == Player::Step::draw && sizes.prepare(unchecked))
            sizes.finish();
    }

    std::unique_ptr<Tape> tape(new Tape);
    tape->reader = open(error);
    if (!tape->reader)
        return nullptr;
    tape->source = std::make_unique<Player>(*tape->reader, memoryLimit);
    Player &player = *tape->source;
    if (!player.reserve(sizes.memory())) {
        error = "there is not enough memory";
        return nullptr;
    }
    Reading reading;
    tape->reading = &reading;
    player.wrote = [&](const MemoryWrite &write) { tape->addPatch(write); };
    for (Player::Step step; (step = player.next()) != Player::Step::end;) {
        if (watch)
            watch(player);
        if (step == Player::Step::frame)
            tape->endFrame();
        else
            tape->takeDraw(unchecked);
        const uint64_t size = tape->bytes.size() + tape->steps.size() * sizeof(Step) +
                              (tape->words.size() + tape->left.size()) * sizeof(Word) + tape->written.size() * sizeof(Rows);
        if (tape->isTooLarge || size > sizeLimit) {
            error =
                "there are too many draws or pictures to hold all of them at once; ninefold-replay trim --frames A..B takes some "
                "of the frames";
            return nullptr;
        }
    }
    if (tape->steps.size() > (tape->frameList.empty() ? 0 : tape->frameList.back()))
        tape->endFrame();
    player.wrote = nullptr;
    tape->reading = nullptr;
    return tape;
}

std::unique_ptr<Tape> Tape::read(const std::string &path, bool unchecked, const Watch &watch, std::string &error)
{
    bool opened = false;
    std::unique_ptr<Tape> tape = read(
        [&](std::string &why) {
            std::unique_ptr<Reader> from = Reader::open(path, why);
            opened = from != nullptr;
            return from;
        },
        unchecked, watch, error);
    if (!tape && opened)
        error = path + ": " + error;
    return tape;
}

void Tape::addStep(bool draws)
{
    patches.insert(patches.end(), reading->patches.begin(), reading->patches.end());
    reading->patches.clear();
    Step step{};
    step.draws = draws;
    step.patches = patches.size(), step.words = words.size(), step.left = left.size(), step.written = written.size();
    steps.push_back(step);
}

void Tape::takeRecord(const Texture *record)
{
    if (!record)
        return;
    std::vector<uint8_t> &held = reading->records[record];
    const auto *const now = reinterpret_cast<const uint8_t *>(record);
    if (held.size() == sizeof *record && std::equal(held.begin(), held.end(), now))
        return;
    held.assign(now, now + sizeof *record);
    addPatch({const_cast<uint8_t *>(now), now, nullptr, sizeof *record, 1, sizeof *record, 1});
}

void Tape::takeDraw(bool unchecked)
{
    Player &player = *source;
    const DrawEvent &draw = player.draw();
    const auto label = [&] {
        return "draw " + std::to_string(draw.number) + " of frame " + std::to_string(draw.frame) + ", " + draw.name + ": ";
    };
    if (!player.prepare(unchecked)) {
        if (refusedCount++ == 0)
            firstRefusal = label() + player.refusal();
        return;
    }
    const layer::Pixels &p = player.footprint().pixels;
    if (p.empty()) { // nothing to be made: what it left in rs is in the state of the next one
        player.make(Library::linked());
        player.finish();
        ++emptyCount;
        return;
    }
    for (const layer::TextureUse &use : player.footprint().textures())
        takeRecord(use.texture);
    takeRecord(rs.frameBuffer);
    const auto changes = [&](std::vector<Word> &list, const State &to) {
        for (uint32_t k = 0; k < stateWords; ++k)
            if (reading->state[k] != to[k])
                list.push_back({k, to[k]});
        reading->state = to;
    };
    changes(words, stateNow());
    player.make(Library::linked());
    if (std::string differs = player.compare(); !differs.empty() && firstDifference.empty())
        firstDifference = label() + differs;
    changes(left, stateNow());
    for (const Rows &rows : player.rows())
        if (rows.written)
            written.push_back(rows);
    addStep(true);
    Step &step = steps.back();
    step.id = draw.id, step.number = draw.number, step.frame = draw.frame;
    static const size_t cells[2] = {stateCell("multiFunc"), stateCell("blendFunc")};
    for (const int which : {0, 1})
        step.operators[which] = player.state()[cells[which]];
    step.speech = said.size();
    if (Operators::isHost(step.operators[0]) || Operators::isHost(step.operators[1]))
        said.push_back({{draw.words[0], draw.words[1]}});
    ++drawCount;
    pixelCount += uint64_t(int64_t{p.right} - p.left) * uint64_t(int64_t{p.bottom} - p.top);
    player.finish();
}

void Tape::endFrame()
{
    if (!reading->patches.empty())
        addStep(false);
    for (size_t k = frameList.empty() ? 0 : frameList.back(); k < steps.size(); ++k)
        steps[k].hash = hashOf(k);
    frameList.push_back(steps.size());
}

uint64_t Tape::hashOf(size_t step) const
{
    RowHash hash;
    for (size_t k = step ? steps[step - 1].written : 0; k < steps[step].written; ++k)
        for (size_t row = 0; row < written[k].rows; ++row)
            hash.add(reinterpret_cast<const void *>(written[k].row(row)), written[k].rowBytes);
    return hash.value();
}

void Tape::addPatch(const MemoryWrite &write)
{
    const auto add = [&](const uint8_t *from, size_t size) {
        const size_t at = bytes.size();
        bytes.insert(bytes.end(), from, from + size);
        return at;
    };
    if (isTooLarge || bytes.size() + write.rows * (write.rowBytes + write.bitBytes()) > sizeLimit) {
        isTooLarge = true; // many events may repeat one content
        return;
    }
    const size_t from = add(write.from, write.rows * write.rowBytes);
    reading->patches.push_back({write, from, write.bits ? add(write.bits, write.rows * write.bitBytes()) : 0});
}

void Tape::write(size_t begin, size_t end) const
{
    for (size_t k = begin; k < end; ++k) {
        MemoryWrite write = patches[k].write;
        write.from = bytes.data() + patches[k].from;
        if (write.bits)
            write.bits = bytes.data() + patches[k].bits;
        write.write();
    }
}

void Tape::setOperators(const Step &step, Library &library) const
{
    RenderState &state = library.state();
    const auto of = [&](int which, PixelOperator speaks) {
        const uint64_t number = step.operators[which];
        if (!Operators::isHost(number))
            return library.operators().of(number);
        const std::vector<uint32_t> &list = said[step.speech].words[which];
        speakers[which] = {list.data(), list.data() + list.size()};
        return speaks;
    };
    state.multiFunc = of(0, speakMulti);
    state.blendFunc = of(1, speakBlend);
}

void Tape::play(Library &library, const std::function<void()> &flush, double (*clock)(), std::vector<double> &frameSeconds)
{
    RenderState &state = library.state();
    const Kept kept(state);
    source->clearMemory();
    std::memset(static_cast<void *>(&state), 0, sizeof state);
    std::vector<DrawFunc> kernels;
    std::vector<bool> newOperators; // looking them up is no work of a host's
    for (size_t k = 0; k < steps.size(); ++k) {
        const Step &step = steps[k];
        kernels.push_back(step.draws ? library.kernel(step.id) : nullptr);
        const bool speaks = Operators::isHost(step.operators[0]) || Operators::isHost(step.operators[1]);
        newOperators.push_back(step.draws && (k == 0 || speaks || !steps[k - 1].draws ||
                                              !std::equal(step.operators, step.operators + 2, steps[k - 1].operators)));
    }
    frameSeconds.assign(frameList.size(), 0);
    auto *const stateOf = reinterpret_cast<unsigned char *>(&state);
    const Word *word = words.data();
    size_t patch = 0, at = 0;
    for (size_t frame = 0; frame < frameList.size(); ++frame) {
        double start = clock();
        const auto interrupt = [&](auto &&doing) {
            if (flush)
                flush();
            frameSeconds[frame] += clock() - start;
            doing();
            start = clock();
        };
        for (; at < frameList[frame]; ++at) {
            const Step &step = steps[at];
            if (step.patches != patch || newOperators[at])
                interrupt([&] {
                    write(patch, step.patches);
                    if (newOperators[at])
                        setOperators(step, library);
                });
            patch = step.patches;
            if (!step.draws)
                continue;
            for (const Word *const end = words.data() + step.words; word != end; ++word)
                std::memcpy(stateOf + size_t{4} * word->index, &word->value, 4);
            kernels[at]();
        }
        interrupt([] {});
    }
}

std::string Tape::verify(Library &library, const std::function<void()> &flush)
{
    RenderState &state = library.state();
    const Kept kept(state);
    source->clearMemory();
    State wanted{};
    size_t patch = 0, word = 0, leftWord = 0, at = 0;
    const auto label = [&](const Step &step) {
        return "draw " + std::to_string(step.number) + " of frame " + std::to_string(step.frame) + ", " + layer::nameOf(step.id) +
               ": ";
    };
    for (const size_t frameEnd : frameList) {
        const size_t first = at;
        for (; at < frameEnd; ++at) {
            const Step &step = steps[at];
            if (step.patches != patch) {
                if (flush)
                    flush();
                write(patch, step.patches);
                patch = step.patches;
            }
            if (!step.draws)
                continue;
            for (; word < step.words; ++word)
                wanted[words[word].index] = words[word].value;
            std::memcpy(static_cast<void *>(&state), wanted.data(), sizeof wanted);
            setOperators(step, library);
            library.kernel(step.id)();
            for (; leftWord < step.left; ++leftWord)
                wanted[left[leftWord].index] = left[leftWord].value;
            for (const Cell &cell : stateCells()) {
                if (cell.kind != Cell::Kind::number && cell.kind != Cell::Kind::texture)
                    continue;
                const uint64_t is = readCell(cell, &state), should = readCell(cell, wanted.data());
                if (is == should)
                    continue;
                const std::string place = label(step) + "rs." + cell.name + " is ";
                if (flush)
                    flush();
                return cell.kind == Cell::Kind::texture
                           ? place + "another texture"
                           : place + std::to_string(int64_t(is)) + " instead of " + std::to_string(int64_t(should));
            }
        }
        if (flush)
            flush();
        for (size_t k = first; k < frameEnd; ++k)
            if (steps[k].draws && hashOf(k) != steps[k].hash)
                return label(steps[k]) + "what it may write is not as recorded at the end of the frame";
    }
    return "";
}

} // namespace capture
