// Every code and every function that draws, in the scenes of the differential: cut into bands in any order, and one band alone
// while all other rows hold something else. NINEFOLD_SCENES scenes of each, NINEFOLD_SHARE of the codes.
#include "recorder.h"

#include "kernels/sets.h"
#include "support/fields.h"
#include "support/host.h"
#include "support/random.h"
#include "support/scene.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

using namespace support;

namespace {

Random cuts(1);

// Bands between random rows, in any order.
void drawInAnyOrder(const bands::Batch &batch)
{
    std::vector<int32_t> borders{batch.firstRow(), batch.endRow()};
    for (uint32_t k = cuts.between(1, 6); k > 0; --k)
        borders.push_back(cuts.between(batch.firstRow(), batch.endRow()));
    std::sort(borders.begin(), borders.end());
    std::vector<size_t> order(borders.size() - 1);
    for (size_t k = 0; k < order.size(); ++k)
        order[k] = k;
    for (size_t k = order.size(); k > 1; --k)
        std::swap(order[k - 1], order[cuts.below(uint32_t(k))]);
    for (const size_t k : order)
        if (borders[k] < borders[k + 1])
            batch.drawRows(borders[k], borders[k + 1]);
}

// What is drawn into.
class Memory {
public:
    Memory(const Scene &drawn, const World &itsWorld) : scene(drawn), world(itsWorld) {}

    std::vector<std::byte> bytes() const
    {
        std::vector<std::byte> all;
        forEachWindow(
            [&](std::byte *begin, const Window &window) { all.insert(all.end(), begin, begin + (window.end - window.begin)); });
        return all;
    }
    void set(const std::vector<std::byte> &all) const
    {
        const std::byte *from = all.data();
        forEachWindow([&](std::byte *begin, const Window &window) {
            std::memcpy(begin, from, window.end - window.begin);
            from += window.end - window.begin;
        });
    }

    // The rows from top to bottom - 1 of `inside`, around them what is in `outside`.
    std::vector<std::byte> joined(const std::vector<std::byte> &inside, std::vector<std::byte> outside, int32_t top,
                                  int32_t bottom) const
    {
        size_t first = 0;
        forEachWindow([&](std::byte *, const Window &window) {
            const bool pixels = window.slot == frameSlot, plane = window.slot == planeSlot;
            const Place &base = pixels ? scene.pixels : plane ? scene.plane : scene.priority;
            const auto offset = [&](int64_t row) {
                const int64_t pixel = row * scene.frameWidth, place = base.offset + (pixels  ? 4 * pixel
                                                                                     : plane ? pixel / 8
                                                                                             : pixel);
                return ptrdiff_t(first) + std::clamp<int64_t>(place, window.begin, window.end) - window.begin;
            };
            std::copy(inside.begin() + offset(top), inside.begin() + offset(bottom), outside.begin() + offset(top));
            first += window.end - window.begin;
        });
        return outside;
    }

private:
    const Scene &scene;
    const World &world;
    template <class Body>
    void forEachWindow(Body &&body) const
    {
        for (int k = 0; k < scene.written; ++k) {
            const Window &window = scene.windows[size_t(k)];
            body(world.begin(window.slot) + window.begin, window);
        }
    }
};

bool sameFields(const RenderState &a, const RenderState &b)
{
    return std::all_of(fields().begin(), fields().end(), [&](const Field &field) {
        return std::memcmp(reinterpret_cast<const char *>(&a) + field.offset, reinterpret_cast<const char *>(&b) + field.offset,
                           field.size) == 0;
    });
}

void useSet(int set)
{
    ninefold::useSet(set);
    bands::recorder().start(1);
}

struct Result {
    uint64_t scenes = 0, cut = 0, alone = 0;
    std::string failures;
    int failed = 0;
    void fail(const std::string &text)
    {
        if (++failed <= 20)
            failures += text + "\n";
    }
};

void checkScene(const Subject &subject, SceneId id, World &world, Result &result)
{
    bands::Recorder &recorder = bands::recorder();
    const Scene scene = makeScene(subject, id, world);
    Scene bound = scene;
    for (int *which : {&bound.multiOperator, &bound.blendOperator}) // those that watch need the reference to tell where
        *which = *which == watchingMulti ? hostMulti : *which == watchingBlend ? hostBlend : *which;
    const RenderState start = bindScene(bound, world, true);
    const Memory memory(scene, world);
    const std::vector<std::byte> before = memory.bytes();
    const DrawFunc kernel = subject.function ? subject.function : SearchDrawFunc(subject.code);
    const std::string where =
        subject.name() + " " + kindName(id.kind) + " seed " + std::to_string(id.seed) + " scene " + std::to_string(id.number);
    ++result.scenes;

    recorder.stop();
    std::memcpy(&rs, &start, sizeof rs);
    calls = {};
    for (int draw = 0; draw < scene.draws; ++draw)
        kernel();
    const std::vector<std::byte> plain = memory.bytes();
    RenderState end;
    std::memcpy(&end, &rs, sizeof rs);
    const Calls plainCalls = calls;

    memory.set(before);
    recorder.start(1);
    recorder.divide = drawInAnyOrder;
    const uint64_t whole = recorder.counts[1];
    std::memcpy(&rs, &start, sizeof rs);
    calls = {};
    for (int draw = 0; draw < scene.draws; ++draw)
        kernel();
    if (!sameFields(rs, end))
        result.fail(where + ": other scratch fields");
    recorder.flush();
    if (memory.bytes() != plain)
        result.fail(where + ": other pixels");
    if (calls != plainCalls)
        result.fail(where + ": other calls of operators");
    const bool cut = recorder.counts[1] == whole;
    result.cut += cut;

    if (cut && scene.draws == 1 && start.clipBottom > start.clipTop) {
        ++result.alone;
        memory.set(before);
        std::memcpy(&rs, &start, sizeof rs);
        recorder.divide = [](const bands::Batch &) {};
        const int32_t top = cuts.between(start.clipTop, start.clipBottom - 1), bottom = cuts.between(top + 1, start.clipBottom);
        static int32_t rows[2];
        rows[0] = top, rows[1] = bottom;
        kernel();
        std::vector<std::byte> noise = before;
        const auto key = std::byte(1 + cuts.below(255));
        for (size_t k = 0; k < noise.size(); ++k)
            noise[k] ^= key ^ std::byte(k & 0x80);
        noise = memory.joined(noise, before, 0, int32_t(scene.frameHeight)); // a source may lie before and behind
        memory.set(memory.joined(before, noise, top, bottom));
        recorder.divide = [](const bands::Batch &batch) { batch.drawRows(rows[0], rows[1]); };
        recorder.flush();
        if (memory.bytes() != memory.joined(plain, noise, top, bottom))
            result.fail(where + ": one band alone");
    }
}

class Scenes : public testing::TestWithParam<Kind> {};

TEST_P(Scenes, BandsDrawAsTheWhole)
{
    startLibrary();
    World world;
    Result result;
    std::vector<Subject> subjects = sharedCatalogue();
    subjects.insert(subjects.end(), namedSubjects().begin(), namedSubjects().end());
    const uint32_t scenes = scenesWanted(1);
    bands::recorder().recordAll(true);
    for (const Subject &subject : subjects)
        for (uint32_t number = 0; number < scenes * (subject.exported ? 20 : 1); ++number) {
            if (cuts.below(64) == 0)
                useSet(int(cuts.below(uint32_t(ninefold::usableSets()))));
            checkScene(subject, {GetParam(), seedWanted(), number}, world, result);
        }
    EXPECT_EQ(result.failed, 0) << result.failures;
    EXPECT_GT(result.alone, 0u);
    std::printf("%s: %llu scenes, %llu cut, %llu with one band alone\n", kindName(GetParam()),
                static_cast<unsigned long long>(result.scenes), static_cast<unsigned long long>(result.cut),
                static_cast<unsigned long long>(result.alone));
    bands::recorder().divide = nullptr;
    bands::recorder().stop();
}

INSTANTIATE_TEST_SUITE_P(Kinds, Scenes, testing::Values(Kind::plain, Kind::big, Kind::overlap, Kind::guard),
                         [](const auto &kind) { return std::string(kindName(kind.param)); });

} // namespace
