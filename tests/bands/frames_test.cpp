// Random frames of 300 draws over the whole catalogue, on 1 to 8 threads and by every instruction set that runs here, against plain
// drawing: pixels, planes, what is left in rs, and the calls of host operators. NINEFOLD_SCENES frames.
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
#include <deque>
#include <memory>
#include <vector>

#if defined(__linux__)
#include <sched.h>
#endif

using namespace support;

namespace {

constexpr int32_t width = 512, height = 384, margin = 2 * width;
constexpr int partCount = 48, drawCount = 300;

// A frame buffer and its planes, with room for what run-length rectangles draw ahead of the first row.
struct Buffers {
    std::vector<uint32_t> pixels = std::vector<uint32_t>(margin + width * height + margin);
    std::vector<uint16_t> plane = std::vector<uint16_t>(width * height / 16 + 2 * margin);
    std::vector<uint8_t> priorities = std::vector<uint8_t>(margin + width * height + margin);
    Texture frame{};

    Buffers()
    {
        frame.width = width, frame.log2Width = 9;
        frame.height = height, frame.log2Height = 9;
        attach();
    }
    Buffers(const Buffers &other) : pixels(other.pixels), plane(other.plane), priorities(other.priorities), frame(other.frame)
    {
        attach();
    }
    ~Buffers() = default;
    Buffers &operator=(const Buffers &) = delete;
    void attach() { frame.pixels = pixels.data() + margin; }
    void restore(const Buffers &other)
    {
        std::copy(other.pixels.begin(), other.pixels.end(), pixels.begin());
        std::copy(other.plane.begin(), other.plane.end(), plane.begin());
        std::copy(other.priorities.begin(), other.priorities.end(), priorities.begin());
    }
    bool operator==(const Buffers &other) const
    {
        return pixels == other.pixels && plane == other.plane && priorities == other.priorities;
    }
    void fill(Random &random)
    {
        for (uint32_t &pixel : pixels)
            pixel = random.word();
        for (uint16_t &word : plane)
            word = random.percent(80) ? uint16_t(0) : uint16_t(random.word());
        for (uint8_t &priority : priorities)
            priority = uint8_t(random.below(100));
    }
};

// A scene of the differential, moved to some place in a larger frame buffer.
struct Part {
    World world;
    Scene scene;
    RenderState state;
    DrawFunc kernel;
};

class Frames : public testing::Test {
protected:
    Buffers buffers[2];
    std::vector<uint16_t> zeros = std::vector<uint16_t>(width * height / 16);
    std::vector<std::unique_ptr<Part>> parts;
    Texture source{}; // a part of the frame buffer

    void makeParts(Random &random)
    {
        parts.clear();
        const std::vector<Subject> &codes = catalogueSubjects(), &named = namedSubjects();
        while (parts.size() < partCount) {
            const Subject &subject =
                random.percent(10) ? named[random.below(uint32_t(named.size()))] : codes[random.below(uint32_t(codes.size()))];
            auto part = std::make_unique<Part>();
            part->scene = makeScene(subject, {Kind::plain, random.bits(), 0}, part->world);
            // Few with a host's own operator: every one of them ends a batch.
            const bool hosts = random.percent(15);
            for (int *which : {&part->scene.multiOperator, &part->scene.blendOperator})
                if (*which == watchingMulti || *which == watchingBlend || *which == hostMulti || *which == hostBlend)
                    *which = hosts ? hostMulti : random.between(libraryOperators, operatorCount - 1);
            if (part->scene.frameWidth > width || part->scene.frameHeight > height - 8)
                continue;
            part->state = bindScene(part->scene, part->world, true);
            part->kernel = subject.function ? subject.function : SearchDrawFunc(subject.code);
            if (Texture *const texture = part->state.tex0; texture && texture->zeroPixelMap) // it goes by the frame buffer
                texture->zeroPixelMap = zeros.data();
            parts.push_back(std::move(part));
        }
    }

    // One frame, which follows from the numbers.
    void draw(Random random)
    {
        Buffers *target = &buffers[0];
        // Everything side by side, or most of it over one another.
        const int32_t columns = random.percent(50) ? width : 96, rows = columns == width ? height : 64;
        for (int number = 0; number < drawCount; ++number) {
            const Part &part = *parts[random.below(partCount)];
            const int32_t dx = random.between(0, std::min(columns, width - int32_t(part.scene.frameWidth)));
            const int32_t dy = random.between(4, std::min(rows, height - int32_t(part.scene.frameHeight)));
            RenderState state;
            std::memcpy(&state, &part.state, sizeof state);
            if (random.percent(1))
                target = &buffers[target == buffers];
            state.dstPixels = target->frame.pixels;
            state.dstShift = 9, state.dstPitch = width, state.dstHeight = height;
            state.frameBuffer = &target->frame;
            state.shaheiPlane = target->plane.data() + margin, state.zBuffer = target->priorities.data() + margin;
            state.originX += dx, state.originY += dy;
            state.clipLeft += dx, state.clipRight += dx, state.clipTop += dy, state.clipBottom += dy;
            if (state.scanShift)
                state.scanShift -= dy;
            if (random.percent(50) && rs.mipTex && rs.mipTex1) // as the draw before has left them
                state.mipTex = rs.mipTex, state.mipTex1 = rs.mipTex1, state.mipFrac = rs.mipFrac, state.mipFrac1 = rs.mipFrac1;
            const ninefold::Axes axes = part.scene.axes;
            if (random.percent(2) && state.tex0 && !ninefold::readsLevels(axes.filter) && axes.rectOpt != NINEFOLD_RECT_RUNS &&
                axes.rectOpt != NINEFOLD_RECT_PLANE_RUNS) {
                source = target->frame;
                source.pixels += random.between(0, 127) * width + random.between(0, 100);
                source.height = 256, source.log2Height = 8;
                state.tex0 = &source;
            }
            std::memcpy(&rs, &state, sizeof rs);
            part.kernel();
            if (random.percent(1))
                CopyTexture(&buffers[0].frame, &buffers[1].frame, random.between(0, 200), random.between(0, 200), 0, 0, 30, 30);
        }
    }
};

TEST_F(Frames, ThreadsDrawAsOne)
{
    startLibrary();
    bands::Recorder &recorder = bands::recorder();
    Random random(seedWanted());
    for (uint16_t &word : zeros)
        word = uint16_t(random.word() & random.word());
    const uint32_t frames = scenesWanted(32);
    int failed = 0;
    for (uint32_t number = 0; number < frames; ++number) {
        if (number % 4 == 0)
            makeParts(random);
        ninefold::useSet(ninefold::usableSets() - 1 - int(number / 16 % uint32_t(ninefold::usableSets())));
        buffers[0].fill(random), buffers[1].fill(random);
        const std::vector<Buffers> before(buffers, buffers + 2);
        const Random numbers(random.bits());
        recorder.stop();
        rs = RenderState{};
        calls = {};
        draw(numbers);
        const std::vector<Buffers> plain(buffers, buffers + 2);
        RenderState end;
        std::memcpy(&end, &rs, sizeof rs);
        const Calls plainCalls = calls;

        buffers[0].restore(before[0]), buffers[1].restore(before[1]);
        const int threads = recorder.start(1 + int(number % 8));
        recorder.recordAll(true);
        if (number % 16 >= 8)
            recorder.worthSharing = 20e3, recorder.leastCost = 300;
        rs = RenderState{};
        calls = {};
        draw(numbers);
        recorder.flush();
        const bool sameFields = std::all_of(fields().begin(), fields().end(), [&](const Field &field) {
            return std::memcmp(reinterpret_cast<const char *>(&rs) + field.offset,
                               reinterpret_cast<const char *>(&end) + field.offset, field.size) == 0;
        });
        if ((!sameFields || calls != plainCalls || !(buffers[0] == plain[0]) || !(buffers[1] == plain[1])) && ++failed <= 10)
            ADD_FAILURE() << "frame " << number << " on " << threads << " threads: fields " << sameFields << ", calls "
                          << (calls == plainCalls) << ", buffers " << (buffers[0] == plain[0]) << " " << (buffers[1] == plain[1]);
    }
    std::printf("%u frames, %llu draws recorded, %llu whole, %llu flushes, %llu of them shared\n", frames,
                static_cast<unsigned long long>(recorder.counts[0]), static_cast<unsigned long long>(recorder.counts[1]),
                static_cast<unsigned long long>(recorder.counts[2]), static_cast<unsigned long long>(recorder.counts[3]));
    EXPECT_GT(recorder.counts[3], frames / 2);
    recorder.recordAll(false);
    recorder.stop();
}

// A host's frames, some of which recording pays for and some not: pixels are the same, and of the tables that change while a frame
// is drawn at once the next one knows.
TEST_F(Frames, FramesThatDoNotPayAreDrawnAtOnce)
{
    startLibrary();
    bands::Recorder &recorder = bands::recorder();
    Texture *const frame = CreateTexture(width, height), *const picture = CreateTexture(64, 64);
    for (uint32_t k = 0; k < 64 * 64; ++k)
        picture->pixels[k] = k * 0x9E3779B1u;
    SetFrameBuffer(frame);
    rs.clipRight = width, rs.clipBottom = height;
    rs.tex0 = picture;
    const auto kernel = [](int rectOpt) {
        return SearchDrawFunc(CreateDrawCodeSub(0, 0, 0, NINEFOLD_FILTER_POINT, rectOpt, NINEFOLD_SHAHEI_STIPPLE,
                                                NINEFOLD_BLEND_ADD, NINEFOLD_MULTI_NONE, NINEFOLD_SHAPE_RECTANGLE));
    };
    const DrawFunc unit = kernel(NINEFOLD_RECT_UNIT), stretch = kernel(NINEFOLD_RECT_STRETCH);
    // Every third frame begins with something large.
    const auto draw = [&](int number) {
        Random random(uint64_t(number) + 1);
        SetPresetDrawMask(number % 256);
        if (number % 3 == 0) {
            rs.vertex[0] = {0, 0, 0}, rs.vertex[1] = {width, height, 0};
            rs.uv0[0] = {0, 0}, rs.uv0[1] = {64 << 16, 64 << 16};
            stretch();
        }
        for (int k = 0; k < 200; ++k) {
            rs.vertex[0] = {random.between(0, width - 8), random.between(0, height - 8), 0};
            rs.vertex[1] = {rs.vertex[0].x + 1 + k % 4, rs.vertex[0].y + 1 + k % 4, 0};
            rs.uv0[0] = {0, 0};
            unit();
        }
        if (number % 7 == 6)
            MakeDrawMaskTable(), CopyTexture(frame, picture, random.between(0, 400), 0, 0, 0, 64, 64);
    };
    constexpr int frames = 60;
    const auto sums = [&](auto &&end) {
        std::vector<uint64_t> list;
        ClearTexture(frame);
        for (int number = 0; number < frames; ++number) {
            draw(number);
            end(number);
            uint64_t sum = 0;
            for (size_t k = 0; k < size_t{width} * height; ++k)
                sum = (sum ^ frame->pixels[k]) * 0x100000001B3u;
            list.push_back(sum);
        }
        return list;
    };
    recorder.stop();
    const std::vector<uint64_t> plain = sums([](int) {});
    for (const int threads : {1, 2, 3}) {
        if (recorder.start(threads) != threads)
            break; // there are as few processors
        const uint64_t recorded = recorder.counts[0];
        std::vector<int> atOnce;
        EXPECT_EQ(sums([&](int number) {
                      if (recorder.atOnce && number % 3)
                          atOnce.push_back(number);
                      recorder.endFrame();
                      EXPECT_FALSE(recorder.atOnce);
                  }),
                  plain);
        // Of the 40 small ones the 1st, 3rd, 7th, 15th and 31st are looked at, and none is worth it.
        EXPECT_EQ(atOnce.size(), 35u) << threads << " threads";
        if (threads > 1) {
            EXPECT_GT(recorder.counts[0], recorded);
        }
    }
    recorder.stop();
    DeleteTexture(picture);
}

// More threads than processors would wait for each other.
TEST_F(Frames, NoMoreThreadsThanProcessors)
{
    startLibrary();
    bands::Recorder &recorder = bands::recorder();
    const int processors = recorder.start(0);
    EXPECT_EQ(recorder.start(processors + 3), processors);
    recorder.recordAll(true); // as tests want it
    EXPECT_EQ(recorder.workers.count(), processors + 3);
    recorder.recordAll(false);
    EXPECT_EQ(recorder.workers.count(), processors);
#if defined(__linux__)
    cpu_set_t all, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    EXPECT_EQ(processors, CPU_COUNT(&all));
    CPU_ZERO(&one);
    for (size_t k = 0; k < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++k)
        if (CPU_ISSET(k, &all))
            CPU_SET(k, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(recorder.start(8), 1);
    EXPECT_EQ(recorder.start(0), 1);
    ASSERT_EQ(sched_setaffinity(0, sizeof all, &all), 0);
#endif
    EXPECT_EQ(recorder.start(0), processors);
    recorder.stop();
}

using Way = bands::Experience::Way;

// Draws frames with such times; returns the ways.
std::vector<Way> ways(bands::Experience &experience, uint32_t key, int count, float recorded, float atOnce)
{
    std::vector<Way> list;
    for (int k = 0; k < count; ++k) {
        list.push_back(experience.begin(key));
        experience.end(list.back() == Way::recorded ? recorded : atOnce, true, true);
    }
    return list;
}

TEST(Experience, TheShorterWayIsTaken)
{
    bands::Experience experience;
    std::vector<Way> list = ways(experience, 7, 7, 200, 100);
    EXPECT_EQ(std::count(list.begin(), list.end(), Way::recorded), 4) << "three in a row are tried";
    list = ways(experience, 7, 300, 200, 100);
    EXPECT_LE(std::count(list.begin(), list.end(), Way::recorded), 20);
    EXPECT_GE(std::count(list.begin(), list.end(), Way::recorded), 6);
    // It turns.
    list = ways(experience, 7, 2000, 100, 300);
    EXPECT_LE(std::count(list.begin() + 1100, list.end(), Way::atOnce), 3) << "what is much longer is seldom tried";
    list = ways(experience, 8, 1000, 100, 120);
    EXPECT_GE(std::count(list.begin(), list.end(), Way::atOnce), 30);
    EXPECT_LE(std::count(list.begin(), list.end(), Way::atOnce), 70);
    EXPECT_TRUE(experience.expectsThreads());
}

// Other programs come to use the processors, and go.
TEST(Experience, WhatBecomesLongerThanDrawingAtOnceIsGivenUpSoon)
{
    bands::Experience experience;
    std::vector<Way> list = ways(experience, 7, 500, 60, 100);
    EXPECT_GE(std::count(list.begin(), list.end(), Way::recorded), 450);
    for (int turn = 0; turn < 3; ++turn) {
        list = ways(experience, 7, 200, 160, 100);
        EXPECT_LE(std::count(list.begin(), list.end(), Way::recorded), 20) << turn;
        list = ways(experience, 7, 2000, 60, 100);
        EXPECT_GE(std::count(list.begin() + 1100, list.end(), Way::recorded), 850) << turn;
    }
}

// Of frames whose times vary by more than what they differ a trial of two may say anything.
TEST(Experience, LuckDoesNotLast)
{
    double drawn = 0, plain = 0;
    for (uint64_t seed = 1; seed <= 50; ++seed) {
        bands::Experience experience;
        Random random(seed);
        for (int k = 0; k < 1000; ++k) {
            const bool recorded = experience.begin(7) == Way::recorded;
            const auto noise = [&] { return float(random.between(10, 190)) + (random.below(50) == 0 ? 500.0F : 0.0F); };
            const float atOnce = noise(), time = recorded ? 1.3F * noise() : atOnce;
            experience.end(time, recorded, recorded);
            drawn += double(time), plain += double(atOnce);
        }
    }
    EXPECT_LT(drawn, 1.035 * plain);
}

TEST(Experience, WhatIsNotWorthRecordingIsTriedMoreAndMoreSeldom)
{
    bands::Experience experience;
    std::vector<int> tried;
    for (int k = 0; k < 200; ++k)
        if (experience.begin(7) == Way::recorded) {
            experience.end(100, false, false);
            tried.push_back(k);
        } else {
            experience.end(100, false, false);
        }
    EXPECT_EQ(tried, (std::vector<int>{0, 2, 6, 14, 30, 62, 126, 190}));
}

} // namespace
