// Operators of the host's own behind blendFunc and multiFunc: when they are called, with what, and in which order.
#include "support/furnished.h"

#include <gtest/gtest.h>

using namespace canvas;
using ninefold::Axes;
using ninefold::nameOf;

namespace {

struct Call {
    char which; // 'm' or 'b'
    uint32_t first, second;
    bool operator==(const Call &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Call &c)
{
    return out << c.which << std::hex << '(' << c.first << ", " << c.second << ')' << std::dec;
}

std::vector<Call> calls;

uint32_t hostMulti(uint32_t first, uint32_t second)
{
    calls.push_back({'m', first, second});
    return first + second + 1;
}

uint32_t hostBlend(uint32_t first, uint32_t second)
{
    calls.push_back({'b', first, second});
    return first ^ second;
}

class HostOperators : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        rs.multiFunc = hostMulti;
        rs.blendFunc = hostBlend;
        rs.tex0 = equipped(index(64, 32));
        rs.tex1 = equipped(texture(64, 32, [](uint32_t x, uint32_t y) { return 0x20000 + 64 * y + x; }));
        rs.color[0] = 0x50505;
    }

    // All calls of one draw; every instruction set must make the same.
    std::vector<Call> callsOf(const Modes &m)
    {
        std::vector<Call> first;
        bool have = false;
        underEverySet([&] {
            calls.clear();
            kernel(m)();
            if (have) {
                EXPECT_TRUE(calls == first) << m;
            }
            first = calls, have = true;
        });
        return first;
    }
};

TEST_F(HostOperators, AlternatePixelByPixelWhenBothAreTheHosts)
{
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_TEXTURE)) {
        if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        clear();
        place(m, 3, 4, 40, 6); // more than a vector, less than whole ones
        const std::vector<Call> made = callsOf(m);
        std::vector<Call> expected;
        for (uint32_t y = 4; y < 6; ++y) {
            for (uint32_t x = 3; x < 40; ++x) {
                const uint32_t texel = idAt(x, y), second = 0x20000 + 64 * y + x;
                expected.push_back({'m', texel, second});
                expected.push_back({'b', ground, texel + second + 1});
            }
        }
        ASSERT_EQ(made, expected) << m;
        EXPECT_EQ(at(39, 5), ground ^ (idAt(39, 5) + 0x20000 + 64 * 5 + 39 + 1)) << m;
    }
}

TEST_F(HostOperators, RowsOfMoreThanAChunkAlternateToo)
{
    Texture *wide = texture(1024, 2);
    SetFrameBuffer(wide);
    std::fill_n(wide->pixels, 2048, ground);
    corners(1, 0, 1000, 2);
    rs.clipRight = 1024;
    calls.clear();
    kernel({.blend = NINEFOLD_BLEND_CUSTOM, .multi = NINEFOLD_MULTI_COLOUR})();
    ASSERT_EQ(calls.size(), 2u * 2 * 999);
    for (size_t k = 0; k < calls.size(); ++k)
        ASSERT_EQ(calls[k].which, k % 2 ? 'b' : 'm') << k;
    for (uint32_t k = 0; k < 999; ++k)
        ASSERT_EQ(calls[2 * k], (Call{'m', idAt(k & 63, 0), 0x50505})) << k;
    SetFrameBuffer(frame);
}

TEST_F(HostOperators, AreCalledLeftToRightForPixelsThatReachTheirStageOnly)
{
    // Some pixels are stopped by each gate: zeros, stipple, priority plane, rule.
    rs.tex0 = equipped(texture(64, 32, [](uint32_t x, uint32_t y) { return x % 7 ? idAt(x, y) : 0; }));
    rs.tex2 = texture(64, 32, [](uint32_t x, uint32_t) { return x % 5 ? 200u : 100u; });
    rs.ruleThreshold = 100, rs.ruleWidth = 50;
    std::fill_n(rs.drawMask, 16, uint16_t{0x4210});
    rs.zRef = 9;
    for (int shahei :
         {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_SHAHEI_PRIORITY_STIPPLE}) {
        for (int rule : {0, 1}) {
            for (Modes m : pointForms(shahei, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_TEXTURE)) {
                m.rule = rule;
                if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
                    continue;
                clear();
                for (size_t k = 0; k < z.size(); ++k)
                    z[k] = k % 11 ? 9 : 8;
                place(m, 1, 2, 63, 3);
                const std::vector<Call> made = callsOf(m);
                std::vector<Call> expected;
                uint32_t slip = 0;
                for (uint32_t x = 1; x < 63; ++x) {
                    if (x % 7 == 0) { // a new stretch sets the slip of run-length rectangles right
                        slip = 0;
                        continue;
                    }
                    if (rule && x % 5 == 0) {
                        slip += m.rectOpt == NINEFOLD_RECT_RUNS && shahei == NINEFOLD_SHAHEI_NONE;
                        continue;
                    }
                    if ((testsPriority(shahei)) && (2 * 64 + x) % 11 == 0)
                        continue;
                    if ((shahei == NINEFOLD_SHAHEI_STIPPLE || shahei == NINEFOLD_SHAHEI_PRIORITY_STIPPLE) &&
                        (0x4210 >> (15 - x % 16) & 1))
                        continue;
                    const uint32_t texel = idAt(x - slip, 2), second = 0x20000 + 64 * 2 + x;
                    expected.push_back({'m', texel, second});
                    expected.push_back({'b', ground, texel + second + 1});
                }
                ASSERT_EQ(made, expected) << m;
            }
        }
    }
}

TEST_F(HostOperators, UnderThePlaneWalkSkippedPixelsAreNoCalls)
{
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_PLANE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_TEXTURE)) {
        wipe();
        plane[4 * 2] = 0x0FF0;
        plane[4 * 2 + 1] = 0xFFFF;
        place(m, 2, 2, 40, 3);
        const std::vector<Call> made = callsOf(m);
        std::vector<Call> expected;
        for (uint32_t x = 2; x < 40; ++x)
            if (x < 4 || (x > 11 && x < 16) || x > 31)
                expected.push_back({'m', idAt(x, 2), 0x20000 + 64 * 2 + x});
        if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        ASSERT_EQ(made, expected) << m;
    }
}

TEST_F(HostOperators, OneOfTheHostBesideOneOfTheLibrary)
{
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_COLOUR)) {
        if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        place(m, 1, 2, 60, 3);
        // Only the blend is the host's: the library's xor of 24 bits comes before.
        SetBlendModeMulti(NINEFOLD_MULTI_OP_XOR);
        rs.blendFunc = hostBlend;
        clear();
        std::vector<Call> made = callsOf(m);
        ASSERT_EQ(made.size(), 59u) << m;
        for (uint32_t k = 0; k < 59; ++k)
            ASSERT_EQ(made[k], (Call{'b', ground, idAt(k + 1, 2) ^ 0x50505})) << m;
        // Only the multi operator is.
        rs.multiFunc = hostMulti;
        SetBlendMode(NINEFOLD_BLEND_XOR);
        clear();
        made = callsOf(m);
        ASSERT_EQ(made.size(), 59u) << m;
        for (uint32_t k = 0; k < 59; ++k)
            ASSERT_EQ(made[k], (Call{'m', idAt(k + 1, 2), 0x50505})) << m;
        EXPECT_EQ(at(7, 2), ground ^ (idAt(7, 2) + 0x50505 + 1)) << m;
    }
}

TEST_F(HostOperators, EveryPixelOfALineIsBlendedOnceFromStartToEnd)
{
    rs.color[0] = 0x12345678;
    corners(60, 3, 5, 20);
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_STIPPLE}) {
        for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
            std::fill_n(rs.color, 2, 0x12345678u);
            std::fill_n(rs.drawMask, 16, uint16_t{0});
            clear();
            const std::vector<Call> made =
                callsOf({.shape = NINEFOLD_SHAPE_LINE, .filter = filter, .shahei = shahei, .blend = NINEFOLD_BLEND_CUSTOM});
            EXPECT_EQ(made, std::vector<Call>(55, Call{'b', ground, 0x12345678}));
        }
    }
}

// A wrapper is a host's own operator and must draw just what the library's operator does behind it.
PixelOperator wrappedMulti, wrappedBlend;

class WrappedOperators : public Furnished {};

TEST_F(WrappedOperators, DrawLikeTheLibrarysOwn)
{
    for (int value = 0; value < 20; ++value) {
        SetPrescaleMultiMode(value % 2);
        SetBlendModeMulti(value);
        SetBlendMode(14 + value % 6);
        wrappedMulti = rs.multiFunc, wrappedBlend = rs.blendFunc;
        int n = 0;
        forEachKernel([&](const Axes &a, DrawFunc func) {
            if (a.multi == NINEFOLD_MULTI_NONE && a.blend != NINEFOLD_BLEND_CUSTOM)
                return;
            if (n++ % 20 != value) // every kernel meets one operator
                return;
            placeLargely(a.shape);
            const State before = state();
            func();
            const State expected = state();
            restore(before);
            rs.multiFunc = [](uint32_t f, uint32_t s) { return wrappedMulti(f, s); };
            rs.blendFunc = [](uint32_t f, uint32_t s) { return wrappedBlend(f, s); };
            func();
            rs.multiFunc = wrappedMulti, rs.blendFunc = wrappedBlend;
            const State after = state();
            ASSERT_TRUE(after.looksLike(expected)) << nameOf(a) << " operator " << value;
            restore(before);
        });
    }
}

// A host may put operators of one kind behind the pointer of the other.
TEST_F(HostOperators, EitherPointerTakesAnyOperatorOfTheLibrary)
{
    SetBlendMode(NINEFOLD_BLEND_LUMA_SRC); // luma of the source: alpha 0
    const PixelOperator luma = rs.blendFunc;
    SetBlendModeMulti(NINEFOLD_MULTI_OP_CONST_ALPHA); // constant alpha
    rs.blendAlpha = 128;
    rs.blendFunc = rs.multiFunc;
    rs.multiFunc = luma;
    rs.color[0] = 0x00FFFFFF;
    for (const Modes &m : pointForms(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_COLOUR)) {
        if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
            continue;
        clear();
        place(m, 0, 0, 8, 8);
        draw(m);
        // Luma 252: (252 * 128 + d * 127) / 256 for d = 0x22, 0x33, 0x44.
        EXPECT_EQ(at(1, 1), 0x008E979Fu) << m;
    }
}

} // namespace
