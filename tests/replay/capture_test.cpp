// Capture files: what is in them comes out again, and what strangers do to them ends in a message.
#include "player.h"
#include "recording.h"
#include "report.h"
#include "tape.h"

#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

using namespace capture;

namespace {

std::string scratch(const char *name)
{
    return (std::filesystem::temp_directory_path() /
            (std::to_string(std::filesystem::hash_value(std::filesystem::current_path())) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name() + name))
        .string();
}

Bytes contentsOf(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(stream), {});
}

// What a replay of bytes comes to.
struct Outcome {
    std::string refused; // the file as a whole
    uint64_t draws = 0, frames = 0, different = 0, notMade = 0;
    std::string problem, refusal;
    std::vector<uint64_t> starts; // of chunks
};

// A player has rs to itself.
class Saved {
public:
    Saved() { std::memcpy(state, &rs, sizeof rs); }
    ~Saved() { std::memcpy(static_cast<void *>(&rs), state, sizeof rs); }
    Saved(const Saved &) = delete;
    Saved &operator=(const Saved &) = delete;

private:
    alignas(RenderState) unsigned char state[sizeof(RenderState)];
};

Outcome replay(const Bytes &bytes)
{
    const Saved saved;
    Outcome outcome;
    const std::unique_ptr<Reader> reader = Reader::open(std::span<const uint8_t>(bytes), outcome.refused);
    if (!reader)
        return outcome;
    Player player(*reader);
    for (Player::Step step; (step = player.next()) != Player::Step::end;) {
        if (step == Player::Step::frame) {
            outcome.different += player.frameHash() != player.frame().hash;
            continue;
        }
        if (!player.prepare()) {
            ++outcome.notMade;
            outcome.refusal = player.refusal();
            continue;
        }
        player.make(Library::linked());
        if (const std::string words = player.compare(); !words.empty())
            ++outcome.different, outcome.refusal = words;
        player.finish();
    }
    outcome.draws = player.draws(), outcome.frames = player.frames(), outcome.problem = player.problem();
    outcome.starts = reader->chunkStarts();
    return outcome;
}

uint32_t hostAdd(uint32_t first, uint32_t second) { return first + second; }

class Captured : public ::testing::Test {
protected:
    static constexpr int frames = 5, sprites = 6;
    Texture *screen = nullptr, *sprite = nullptr, *second = nullptr;
    std::string path;
    Bytes file;

    void SetUp() override
    {
        MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable(), MakeDrawMaskTable();
        debug::settings().summary = false;
        debug::settings().action = NINEFOLD_DEBUG_DRAW;
        std::memset(static_cast<void *>(&rs), 0, sizeof rs);
        screen = CreateTexture(100, 80), sprite = CreateTexture(32, 32), second = CreateTexture(16, 16);
        support::Random random(1);
        for (int k = 0; k < 32 * 32; ++k)
            sprite->pixels[k] = random.word();
        for (int k = 0; k < 16 * 16; ++k)
            second->pixels[k] = random.word();
        ClearTexture(screen);
        SetFrameBuffer(screen);
        rs.clipRight = 100, rs.clipBottom = 80;
        SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetRectOptMode(NINEFOLD_RECT_UNIT), SetFilterMode(NINEFOLD_FILTER_POINT);
        SetBlendMode(NINEFOLD_BLEND_ALPHA), SetMultiMode(NINEFOLD_MULTI_NONE);
        rs.tex0 = sprite, rs.tex1 = second;
        path = scratch(".nfc");
        debug::settings().capture = path;
    }
    void TearDown() override
    {
        debug::stopRecording();
        debug::settings().captureFlush = debug::settings().captureTextures = debug::settings().capturePause = 0;
        std::remove(path.c_str());
        SetFrameBuffer(screen);
        for (Texture *texture : {screen, sprite, second})
            DeleteTexture(texture);
    }
    void place(int32_t x, int32_t y)
    {
        rs.vertex[0] = {x, y, 0}, rs.vertex[1] = {x + 32, y + 32, 0};
        SearchDrawFunc(CreateDrawCode())();
    }
    // Sprites that move over what the host clears by plain writes.
    void record()
    {
        ASSERT_TRUE(debug::startRecording());
        for (int frame = 0; frame < frames; ++frame) {
            std::fill_n(screen->pixels, 128 * 80, 0xFF000000u + uint32_t(frame));
            for (int k = 0; k < sprites; ++k)
                place(7 * k + frame, 5 * k);
            debug::recordFrame(false);
        }
        debug::stopRecording();
        file = contentsOf(path);
        ASSERT_GT(file.size(), 1000u);
    }
};

TEST(CaptureFormat, PicturesComeBack)
{
    support::Random random(7);
    for (const auto &[width, rows] : {std::pair{1u, 1u}, {1u, 40u}, {17u, 3u}, {64u, 64u}, {301u, 5u}})
        for (int kind = 0; kind < 3; ++kind) {
            Bytes bytes(size_t{4} * width * rows), encoded, decoded;
            for (size_t k = 0; k < bytes.size(); ++k)
                bytes[k] = uint8_t(kind == 0 ? random.word() : kind == 1 ? k / 4 + k % 4 * 50 : 255);
            encodePicture(4 * width, rows, bytes.data(), encoded);
            ASSERT_EQ(encoded.size(), encodedPictureSize(4 * width, rows));
            ASSERT_TRUE(decodePicture(4 * width, rows, encoded, decoded));
            EXPECT_EQ(decoded, bytes) << width << " x " << rows;
            encoded[0] = 5; // no such filter
            EXPECT_FALSE(decodePicture(4 * width, rows, encoded, decoded));
            encoded.pop_back();
            EXPECT_FALSE(decodePicture(4 * width, rows, encoded, decoded));
        }
}

TEST(CaptureFormat, NumbersComeBack)
{
    Out out;
    const uint64_t numbers[] = {0, 1, 127, 128, 0x4000, UINT32_MAX, UINT64_MAX};
    const int64_t differences[] = {0, -1, 1, INT32_MIN, INT64_MAX, INT64_MIN};
    for (const uint64_t number : numbers)
        out.number(number);
    for (const int64_t difference : differences)
        out.difference(difference);
    out.word(0x0123456789ABCDEF), out.text("name");
    In in(out.bytes);
    for (const uint64_t number : numbers)
        EXPECT_EQ(in.number(), number);
    for (const int64_t difference : differences)
        EXPECT_EQ(in.difference(), difference);
    EXPECT_EQ(in.word(), 0x0123456789ABCDEFu);
    EXPECT_EQ(in.text(4), "name");
    EXPECT_TRUE(in.good());
    EXPECT_EQ(in.byte(), 0);
    EXPECT_FALSE(in.good());
    In limited(out.bytes);
    EXPECT_EQ(limited.number(0), 0u);
    EXPECT_EQ(limited.number(0), 0u); // a 1
    EXPECT_FALSE(limited.good());
}

TEST(CaptureFormat, MemoryAtAddresses)
{
    Store store;
    ASSERT_TRUE(store.ensure(1000, 100));
    store.at(1000)[5] = 7;
    ASSERT_TRUE(store.ensure(1200, 10));
    store.at(1200)[0] = 9;
    EXPECT_EQ(store.at(999), nullptr);
    EXPECT_EQ(store.at(1100), nullptr);
    ASSERT_TRUE(store.ensure(1050, 160)); // meets both
    EXPECT_EQ(*store.at(1005), 7);
    EXPECT_EQ(*store.at(1200), 9);
    EXPECT_EQ(store.at(1200) - store.at(1000), 200);
    EXPECT_EQ(store.addressOf(store.at(1200)), 1200u);
    uint8_t bytes[30];
    store.read(990, sizeof bytes, bytes);
    EXPECT_EQ(bytes[15], 7);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_FALSE(store.ensure(0, Store::usualLimit + 1));
    EXPECT_FALSE(store.ensure(UINT64_MAX - 5, 10));
}

TEST_F(Captured, DrawsAgain)
{
    record();
    const Outcome outcome = replay(file);
    EXPECT_EQ(outcome.problem, "");
    EXPECT_EQ(outcome.draws, uint64_t{frames} * sprites);
    EXPECT_EQ(outcome.frames, uint64_t{frames});
    EXPECT_EQ(outcome.different + outcome.notMade, 0u);
}

TEST_F(Captured, HoldsEachPictureOnce)
{
    record();
    // Noise does not compress: were it there twice, the file would be larger.
    EXPECT_LT(file.size(), size_t{4} * (32 * 32 + 16 * 16) + 6000);
}

TEST_F(Captured, EndsWhereTheFileDoes)
{
    record();
    const std::vector<uint64_t> starts = replay(file).starts;
    ASSERT_GE(starts.size(), size_t{frames});
    uint64_t before = 0;
    for (const uint64_t start : starts)
        for (const int64_t cut : {int64_t(start), int64_t(start) + 3, int64_t(start) + 19, int64_t(start) + 21}) {
            if (cut >= int64_t(file.size()))
                continue;
            const Outcome outcome = replay(Bytes(file.begin(), file.begin() + cut));
            EXPECT_EQ(outcome.refused, "");
            EXPECT_NE(outcome.problem, "") << cut;
            EXPECT_EQ(outcome.different + outcome.notMade, 0u) << cut;
            EXPECT_GE(outcome.draws, before);
            EXPECT_LT(outcome.draws, uint64_t{frames} * sprites + 1);
            before = outcome.draws;
        }
    EXPECT_EQ(before, uint64_t{frames} * sprites); // only the end was missing
    EXPECT_EQ(replay(Bytes(file.begin(), file.begin() + 11)).refused, "no capture file");
    Bytes later = file;
    later[8] = 2;
    EXPECT_NE(replay(later).refused.find("version 2"), std::string::npos);
}

TEST_F(Captured, TellsEveryChangedByte)
{
    record();
    support::Random random(3);
    for (int k = 0; k < 300; ++k) {
        Bytes changed = file;
        const size_t at = 12 + random.below(uint32_t(file.size() - 12));
        changed[at] ^= uint8_t(1 << random.below(8));
        const Outcome outcome = replay(changed);
        // Of a chunk's header some bits say only what is skipped; then the end is missing.
        EXPECT_NE(outcome.problem, "") << at;
        EXPECT_EQ(outcome.different, 0u) << at;
    }
}

// Backwards and forwards, what is drawn is what was recorded.
TEST_F(Captured, GoesBack)
{
    record();
    for (const bool cutOff : {false, true}) {
        if (cutOff)
            file.erase(file.end() - 5, file.end());
        std::string error;
        const std::unique_ptr<Reader> reader = Reader::open(std::span<const uint8_t>(file), error);
        Player player(*reader);
        std::vector<std::optional<Player::Snapshot>> snapshots;
        snapshots.push_back(player.snapshot(nullptr));
        std::string problem;
        const auto forward = [&] {
            switch (player.next()) {
            case Player::Step::end: return false;
            case Player::Step::frame: EXPECT_EQ(player.frameHash(), player.frame().hash); break;
            case Player::Step::draw:
                EXPECT_TRUE(player.prepare()) << player.refusal();
                player.make(Library::linked());
                EXPECT_EQ(player.compare(), "");
                player.finish();
            }
            return true;
        };
        while (forward())
            snapshots.push_back(player.snapshot(&*snapshots.back()));
        problem = player.problem();
        EXPECT_EQ(problem.empty(), !cutOff);
        ASSERT_EQ(snapshots.size(), 1 + player.draws() + player.frames());
        EXPECT_LT(snapshots[3]->bytes(), snapshots[1]->bytes()); // the sprite is there once
        const std::unique_ptr<Reader> fresh = Reader::open(std::span<const uint8_t>(file), error);
        EXPECT_FALSE(Player(*fresh).restore(*snapshots.back())); // it has not read what is needed there
        support::Random random(5);
        for (int k = 0; k < 60; ++k) {
            const uint32_t to = random.below(uint32_t(snapshots.size()));
            ASSERT_TRUE(player.restore(*snapshots[to]));
            uint32_t steps = 0;
            for (const uint32_t most = k % 3 ? 1 + random.below(8) : 1000; steps < most && forward(); ++steps) {
            }
            if (k % 3 == 0) {
                EXPECT_EQ(to + steps + 1, snapshots.size());
                EXPECT_EQ(player.problem(), problem);
            }
        }
    }
}

TEST_F(Captured, TheHostsOperatorsSpeakAgain)
{
    ASSERT_TRUE(debug::startRecording());
    SetBlendMode(NINEFOLD_BLEND_CUSTOM), SetMultiMode(NINEFOLD_MULTI_TEXTURE);
    rs.blendFunc = hostAdd;
    rs.multiFunc = hostAdd;
    place(3, 4);
    EXPECT_EQ(rs.blendFunc, hostAdd);
    EXPECT_EQ(rs.multiFunc, hostAdd);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL); // one of the library's beside the host's
    place(40, 4);
    debug::stopRecording();
    const Bytes bytes = contentsOf(path);
    std::string error;
    const std::unique_ptr<Reader> reader = Reader::open(std::span<const uint8_t>(bytes), error);
    Player player(*reader);
    ASSERT_EQ(player.next(), Player::Step::draw);
    EXPECT_EQ(player.draw().words[0].size(), 1024u);
    EXPECT_EQ(player.draw().words[1].size(), 1024u);
    ASSERT_EQ(player.next(), Player::Step::draw);
    EXPECT_EQ(player.draw().words[0].size(), 0u);
    EXPECT_EQ(player.draw().words[1].size(), 1024u);
    const Outcome outcome = replay(bytes);
    EXPECT_EQ(outcome.different + outcome.notMade, 0u) << outcome.refusal;
    EXPECT_EQ(outcome.draws, 2u);
}

TEST_F(Captured, APictureThatIsChangedBetweenDrawsIsSeenWhereItIsDrawn)
{
    ASSERT_TRUE(debug::startRecording());
    place(0, 0);
    std::fill_n(sprite->pixels, 1024, 0xFF00FF00u);
    place(40, 0);
    rs.uv0[0] = {30 << 16, -(3 << 16)}; // around the edges
    std::fill_n(sprite->pixels, 1024, 0xFF00FF10u);
    place(20, 40);
    rs.clipLeft = 10, rs.clipTop = 5, rs.uv0[0] = {4 << 16, 4 << 16};
    for (int k = 0; k < 1024; k += 3)
        sprite->pixels[k] = 0xFF0000FF + uint32_t(k);
    place(-10, -10);
    rs.clipLeft = rs.clipTop = 0;
    SetRectOptMode(NINEFOLD_RECT_STRETCH), SetFilterMode(NINEFOLD_FILTER_BILINEAR);
    rs.uv0[0] = {16 << 16, 16 << 16}, rs.uv0[1] = {7 << 16, 30 << 16};
    std::fill_n(sprite->pixels, 1024, 0xFFFF00FFu);
    place(60, 40);
    SetFilterMode(NINEFOLD_FILTER_POINT);
    debug::stopRecording();
    const Outcome outcome = replay(contentsOf(path));
    EXPECT_EQ(outcome.draws, 5u);
    EXPECT_EQ(outcome.different, 0u) << outcome.refusal;
}

// Where much more of it may be read than is drawn it is looked at once a frame, unless the settings ask for more.
TEST_F(Captured, APictureThatIsChangedInAFrameIsSeenAtTheNext)
{
    for (const bool eachDraw : {false, true}) {
        debug::settings().captureTextures = eachDraw;
        ASSERT_TRUE(debug::startRecording());
        SetRectOptMode(NINEFOLD_RECT_STRETCH);
        rs.uv0[0] = {0, 0}, rs.uv0[1] = {32 << 16, 32 << 16};
        const auto small = [&](int32_t x, int32_t y) {
            rs.vertex[0] = {x, y, 0}, rs.vertex[1] = {x + 8, y + 8, 0};
            SearchDrawFunc(CreateDrawCode())();
        };
        small(0, 0);
        std::fill_n(sprite->pixels, 1024, 0xFF00FF00u + eachDraw);
        small(40, 0);
        debug::recordFrame(false);
        small(0, 40);
        ReplacePixel(sprite, 0xFFFFFFFF, 0xFF00FF00u + eachDraw); // the library's own calls are known
        small(40, 40);
        debug::stopRecording();
        const Outcome outcome = replay(contentsOf(path));
        // What was missed is one draw, and the two frames that show it.
        EXPECT_EQ(outcome.different, eachDraw ? 0u : 3u) << outcome.refusal;
    }
}

TEST_F(Captured, AFrameIsWholeWithWhatTheHostWroteItself)
{
    ASSERT_TRUE(debug::startRecording());
    std::vector<std::vector<uint32_t>> pictures;
    const auto keep = [&] {
        std::vector<uint32_t> &picture = pictures.emplace_back();
        for (int y = 0; y < 80; ++y)
            picture.insert(picture.end(), screen->pixels + 128 * y, screen->pixels + 128 * y + 100);
    };
    std::fill_n(screen->pixels, 128 * 80, 0xFF102030u); // only a part of it is drawn over
    place(5, 6);
    screen->pixels[128 * 79 + 99] = 0xFF0000FF; // a cursor that the host draws
    screen->pixels[128 * 7 + 6] = 0xFF00FFFF; // over a sprite
    keep();
    debug::recordFrame(false);
    place(50, 6);
    keep();
    SetFrameBuffer(second), SetFrameBuffer(screen);
    place(20, 30);
    screen->pixels[128 * 3 + 90] = 0xFF00FF00; // the last frame ends with the program
    keep();
    debug::stopRecording();
    file = contentsOf(path);
    std::string error;
    const std::unique_ptr<Reader> reader = Reader::open(std::span<const uint8_t>(file), error);
    Player player(*reader);
    size_t seen = 0;
    for (Player::Step step; (step = player.next()) != Player::Step::end;) {
        if (step == Player::Step::draw) {
            ASSERT_TRUE(player.prepare());
            player.make(Library::linked());
            player.finish();
            continue;
        }
        EXPECT_EQ(player.frameHash(), player.frame().hash);
        ASSERT_LT(seen, pictures.size());
        EXPECT_EQ(player.framePicture().pixels, pictures[seen]) << seen;
        ++seen;
    }
    EXPECT_EQ(seen, pictures.size());
}

// When the host has ended, memory of its own may hold anything, and textures may be gone.
TEST_F(Captured, TheLastFrameIsWhatWasDrawnWhereItsMemoryMayBeFreed)
{
    for (const bool deleted : {false, true}) {
        Texture *const made = CreateTexture(100, 80);
        Texture own = *made; // a record that the host filled
        own.pixels = screen->pixels;
        ClearTexture(screen), ClearTexture(made);
        Texture *const target = deleted ? made : &own;
        SetFrameBuffer(target);
        ASSERT_TRUE(debug::startRecording());
        place(5, 6);
        target->pixels[128 * 79 + 99] = 0xFF0000FF;
        if (deleted)
            DeleteTexture(made);
        debug::stopRecording();
        if (!deleted)
            DeleteTexture(made);
        const Saved saved;
        const Bytes bytes = contentsOf(path);
        std::string error;
        const std::unique_ptr<Reader> reader = Reader::open(std::span<const uint8_t>(bytes), error);
        Player player(*reader);
        ASSERT_EQ(player.next(), Player::Step::draw);
        ASSERT_TRUE(player.prepare()) << player.refusal();
        player.make(Library::linked());
        player.finish();
        ASSERT_EQ(player.next(), Player::Step::frame);
        const layer::Pixels &reached = player.frame().reached;
        EXPECT_EQ(std::vector({reached.left, reached.top, reached.right, reached.bottom}), std::vector({5, 6, 37, 38}));
        EXPECT_EQ(player.frameHash(), player.frame().hash);
    }
    SetFrameBuffer(screen);
}

TEST_F(Captured, APauseEndsAFrame)
{
    debug::settings().capturePause = 1;
    ASSERT_TRUE(debug::startRecording());
    place(0, 0);
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
    while (std::chrono::steady_clock::now() < until) {
    }
    place(1, 0);
    debug::stopRecording();
    EXPECT_EQ(replay(contentsOf(path)).frames, 2u);
}

TEST_F(Captured, WhatACrashLeaves)
{
    debug::settings().captureFlush = 1;
    ASSERT_TRUE(debug::startRecording());
    for (int k = 0; k < 4; ++k)
        place(k, k);
    const Outcome outcome = replay(contentsOf(path)); // as it is on the disk now
    EXPECT_EQ(outcome.draws, 4u);
    EXPECT_NE(outcome.problem, "");
    EXPECT_EQ(outcome.different, 0u);
}

// Kernels of the library that draw a pixel too much, or leave too much in rs, where they are told to.
int mistake; // 1: in the frame buffer, 2: in rs
DrawFunc rightKernel;
void drawWithMistake()
{
    rightKernel();
    if (mistake == 1)
        ++rs.dstPixels[(rs.vertex[0].y << rs.dstShift) + rs.vertex[0].x];
    if (mistake == 2)
        ++rs.mipFrac;
}
DrawFunc searchMistaken(unsigned long code)
{
    rightKernel = own_SearchDrawFunc(code);
    return drawWithMistake;
}

TEST_F(Captured, ATapeIsPlayedAgainAndAgain)
{
    record();
    std::string error;
    const std::unique_ptr<Tape> tape = Tape::read(path, false, nullptr, error);
    ASSERT_TRUE(tape) << error;
    EXPECT_EQ(tape->draws(), uint64_t{frames} * sprites);
    EXPECT_EQ(tape->frames(), uint64_t{frames});
    EXPECT_EQ(tape->difference(), "");
    EXPECT_EQ(tape->refused(), 0u);
    Exports exports{&rs, searchMistaken, own_SetBlendMode, own_SetBlendModeMulti, own_SetPrescaleMultiMode, {}};
    const std::unique_ptr<Library> library = Library::of(exports);
    static int flushes;
    flushes = 0;
    const auto flush = [] { ++flushes; };
    std::vector<double> seconds;
    const RenderState before = rs;
    for (int turn = 0; turn < 2; ++turn) {
        mistake = 0;
        EXPECT_EQ(tape->verify(*library, flush), "");
        EXPECT_EQ(tape->verify(Library::linked(), nullptr), "");
        tape->play(
            *library, flush, [] { return double(flushes); }, seconds);
        EXPECT_EQ(seconds.size(), size_t{frames});
        mistake = 1;
        EXPECT_EQ(tape->verify(*library, flush),
                  "draw 1 of frame 1, rect.unit.point.alpha: what it may write is not as recorded at the end of the frame");
        mistake = 2;
        EXPECT_EQ(tape->verify(*library, flush), "draw 1 of frame 1, rect.unit.point.alpha: rs.mipFrac is 1 instead of 0");
    }
    // Before what the host wrote itself, and at the end of frames.
    EXPECT_GE(flushes, 4 * 2 * frames);
    EXPECT_EQ(std::memcmp(&before, &rs, sizeof rs), 0);
    EXPECT_FALSE(Tape::read(std::string("nowhere.nfc"), false, nullptr, error));
    EXPECT_NE(error.find("nowhere.nfc"), std::string::npos);
}

TEST_F(Captured, OnTapeTheHostsOperatorsSpeakAgain)
{
    ASSERT_TRUE(debug::startRecording());
    SetBlendMode(NINEFOLD_BLEND_CUSTOM), SetMultiMode(NINEFOLD_MULTI_TEXTURE);
    rs.blendFunc = rs.multiFunc = hostAdd;
    place(3, 4);
    place(9, 9);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL);
    place(40, 4);
    debug::stopRecording();
    std::string error;
    const std::unique_ptr<Tape> tape = Tape::read(path, false, nullptr, error);
    ASSERT_TRUE(tape) << error;
    EXPECT_EQ(tape->difference(), "");
    EXPECT_EQ(tape->verify(Library::linked(), nullptr), "");
    EXPECT_EQ(tape->draws(), 3u);
}

TEST_F(Captured, NoDrawThatTheRulesForbid)
{
    record();
    ASSERT_TRUE(debug::startRecording());
    rs.clipRight = 200; // beyond the frame buffer, with the host's memory behind it
    place(0, 0);
    debug::stopRecording();
    const Outcome outcome = replay(contentsOf(path));
    EXPECT_EQ(outcome.draws, 1u);
    EXPECT_EQ(outcome.notMade, 1u);
}

} // namespace
