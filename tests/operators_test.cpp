// The scalar definitions of the operators, and what the setters put behind blendFunc and multiFunc.
#include "ops/operators.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <set>
#include <utility>

using namespace ninefold::ops;

namespace {

// The operators on single pixels.
constexpr auto opAlpha = ninefold::ops::opAlpha<uint32_t>;
constexpr auto opAlphaFast = ninefold::ops::opAlphaFast<uint32_t>;
constexpr auto opConstAlpha = ninefold::ops::opConstAlpha<true, uint32_t>;
constexpr auto opAdd = ninefold::ops::opAdd<uint32_t>;
constexpr auto opSub = ninefold::ops::opSub<uint32_t>;
constexpr auto opMul = ninefold::ops::opMul<uint32_t>;
constexpr auto opMul2 = ninefold::ops::opMul2<uint32_t>;
constexpr auto opScreen = ninefold::ops::opScreen<uint32_t>;
constexpr auto opOverlay = ninefold::ops::opOverlay<uint32_t>;
constexpr auto opMerge = ninefold::ops::opMerge<uint32_t>;
constexpr auto luma = ninefold::ops::luma<uint32_t>;
constexpr auto scaleRgb = ninefold::ops::scaleRgb<true, uint32_t>;
constexpr auto scaleAlpha = ninefold::ops::scaleAlpha<true, uint32_t>;

uint32_t prescaleSource(int blend, uint32_t source, uint32_t factor)
{
    uint32_t result = 0;
    const auto all = [&]<int... n>(std::integer_sequence<int, n...>)
    {
        ((n == blend ? void(result = prescaled<n, true>(source, factor)) : void()), ...);
    };
    all(std::make_integer_sequence<int, NINEFOLD_BLEND_CUSTOM + 1>());
    return result;
}

int multiIndex(bool bank, int value) { return indexOf(multiOp(bank, value)); }

// The operators once more, channel by channel in plain integers.
namespace plain {

struct Pixel {
    int a, r, g, b;
};

Pixel split(uint32_t word)
{
    const auto byte = [word](int shift) { return static_cast<int>(word >> shift & 255); };
    return {byte(24), byte(16), byte(8), byte(0)};
}

uint32_t join(int a, int r, int g, int b)
{
    const auto place = [](int channel, int shift) { return static_cast<uint32_t>(channel) << shift; };
    return place(a, 24) + place(r, 16) + place(g, 8) + place(b, 0);
}

template <class Channel>
uint32_t each(uint32_t dst, uint32_t src, int alpha, Channel channel)
{
    const Pixel d = split(dst), s = split(src);
    return join(alpha, channel(d.r, s.r), channel(d.g, s.g), channel(d.b, s.b));
}

uint32_t constAlpha(uint32_t dst, uint32_t src, int a)
{
    return each(dst, src, 0, [a](int d, int s) { return (s * a + d * (255 - a)) / 256; });
}

uint32_t alpha(uint32_t dst, uint32_t src) { return constAlpha(dst, src, split(src).a); }

uint32_t alphaFast(uint32_t dst, uint32_t src)
{
    const int a = split(src).a;
    return a == 255 ? src : a == 0 ? dst : alpha(dst, src);
}

uint32_t add(uint32_t dst, uint32_t src)
{
    const Pixel d = split(dst), s = split(src);
    const int blue = d.b + s.b, green = d.g / 2 * 2 + s.g / 2 * 2, red = d.r / 2 * 2 + s.r / 2 * 2;
    const bool carryB = blue > 255, carryG = green + carryB > 255, carryR = red + carryG > 255;
    return join(1, carryR ? 255 : red + 1, carryG ? 255 : green + 1, carryB ? blue % 256 | 0xFE : blue);
}

uint32_t sub(uint32_t dst, uint32_t src)
{
    const Pixel d = split(dst), s = split(src);
    const int blue = (d.b | 1) - (s.b | 1);
    const int borrowB = blue < 0;
    const int green = (d.g | 1) - (s.g | 1) - borrowB;
    const int borrowG = green < 0;
    const int red = (d.r | 1) - (s.r | 1) - borrowG;
    const int borrowR = red < 0;
    const int alpha = (d.a | 1) - (s.a | 1) - borrowR;
    return join(alpha & 255, borrowR ? borrowG : red, borrowG ? borrowB : green, borrowB ? 0 : blue);
}

uint32_t mul(uint32_t dst, uint32_t src)
{
    return each(dst, src, 0, [](int d, int s) { return d * s / 256; });
}

uint32_t mul2(uint32_t dst, uint32_t src)
{
    const Pixel p = split(mul(dst, src));
    const auto channel = [](int product, int below) { return product >= 128 ? 255 : product * 2 + (below >= 128); };
    return join(p.r >= 128, channel(p.r, p.g), channel(p.g, p.b), channel(p.b, 0));
}

uint32_t screen(uint32_t dst, uint32_t src)
{
    return each(dst, src, 255, [](int d, int s) { return 255 - (255 - d) * (255 - s) / 256; });
}

uint32_t overlay(uint32_t dst, uint32_t src)
{
    return each(dst, src, 0, [](int d, int s) { return d < 128 ? d * s / 256 * 2 : 255 - (255 - d) * (255 - s) / 256 * 2; });
}

uint32_t luma(uint32_t word)
{
    const Pixel p = split(word);
    const int level = p.r * 76 / 256 + p.g * 150 / 256 + p.b * 29 / 256;
    return join(0, level, level, level);
}

uint32_t merge(uint32_t dst, uint32_t src, uint32_t mask)
{
    uint32_t result = 0;
    for (int bit = 0; bit < 32; ++bit)
        result |= ((mask >> bit & 1 ? src : dst) >> bit & 1) << bit;
    return result;
}

uint32_t scaleRgb(uint32_t word, int factor) // 0 to 256
{
    const Pixel p = split(word);
    return join(0, p.r * factor / 256, p.g * factor / 256, p.b * factor / 256);
}

uint32_t scaleAlpha(uint32_t word, int factor) { return (word & 0xFFFFFF) + join(split(word).a * factor / 256 % 256, 0, 0, 0); }

} // namespace plain

// All pairs of values in every colour channel, with changing neighbours, and random words.
template <class Check>
void forPairs(Check check)
{
    for (uint32_t d = 0; d < 256; ++d) {
        for (uint32_t s = 0; s < 256; ++s) {
            const uint32_t x = d * 5 + s, y = s * 3 + d * 7;
            check(d << 16 | (x & 255) << 8 | (255 - d) | x << 24, s << 16 | (y & 255) << 8 | s | y << 24);
            check((y & 255) << 16 | d << 8 | (x & 255) | s << 24, (x & 255) << 16 | s << 8 | (y & 255) | d << 24);
            check((x & 255) << 16 | (y & 255) << 8 | d | y << 24, (y & 255) << 16 | (x & 255) << 8 | s | x << 24);
        }
    }
    std::mt19937 random(1);
    for (int i = 0; i < 50000; ++i) {
        const uint32_t d = static_cast<uint32_t>(random());
        check(d, static_cast<uint32_t>(random()));
    }
    for (uint32_t d : {0x00000000u, 0x000000FFu, 0x0000FF00u, 0x00FF0000u, 0xFF000000u, 0x80808080u, 0x7F7F7F7Fu, 0xFFFFFFFFu}) {
        for (uint32_t s : {0x00000000u, 0x00000001u, 0x000000FFu, 0x0000FF00u, 0x00FF0000u, 0xFF000000u, 0xFFFFFFFFu})
            check(d, s);
    }
}

template <class Op, class Formula>
void expectSame(Op op, Formula formula)
{
    int wrong = 0;
    forPairs([&](uint32_t d, uint32_t s) {
        if (op(d, s) != formula(d, s) && wrong++ == 0)
            ADD_FAILURE() << std::hex << "(" << d << ", " << s << ") gives " << op(d, s) << ", not " << formula(d, s);
    });
    EXPECT_EQ(wrong, 0);
}

class Operators : public testing::Test {
protected:
    void SetUp() override { rs = RenderState{}; }
    void TearDown() override { rs = RenderState{}; }

    static uint32_t multi(long value, uint32_t first, uint32_t second)
    {
        SetBlendModeMulti(value);
        return rs.multiFunc(first, second);
    }
};

uint32_t hostOperator(uint32_t first, uint32_t second) { return first * 3 + second; }

using Blend = Operators;
using Multi = Operators;
using Prescale = Operators;

// ---- blends ----

TEST_F(Blend, AlphaByChannel)
{
    EXPECT_EQ(opAlpha(0x00000000, 0xFFFFFFFF), 0x00FEFEFEu);
    expectSame(opAlpha, plain::alpha);
}

TEST_F(Blend, AlphaDarkensAtBothEnds)
{
    EXPECT_EQ(opAlpha(0x00FFFFFF, 0xFFFFFFFF), 0x00FEFEFEu);
    EXPECT_EQ(opAlpha(0xFF808080, 0x00FFFFFF), 0x007F7F7Fu);
}

TEST_F(Blend, AlphaOfAllWeights)
{
    for (uint32_t a = 0; a < 256; ++a) {
        for (uint32_t s = 0; s < 256; s += 3) {
            for (uint32_t d = 0; d < 256; ++d) {
                const uint32_t dst = d * 0x10001 | s << 8, src = a << 24 | s * 0x10001 | d << 8;
                ASSERT_EQ(opAlpha(dst, src), plain::alpha(dst, src));
            }
        }
    }
}

TEST_F(Blend, AlphaFastReturnsWholeWordsAtTheEnds)
{
    EXPECT_EQ(opAlphaFast(0x22345678, 0xFFFFFFFF), 0xFFFFFFFFu);
    EXPECT_EQ(opAlphaFast(0x22345678, 0x00FFFFFF), 0x22345678u);
    EXPECT_EQ(opAlphaFast(0xFF345678, 0xFE345678), opAlpha(0xFF345678, 0xFE345678));
    EXPECT_EQ(opAlphaFast(0xFF345678, 0x01345678), opAlpha(0xFF345678, 0x01345678));
    expectSame(opAlphaFast, plain::alphaFast);
}

TEST_F(Blend, ConstAlphaIgnoresAlphaOfBoth)
{
    EXPECT_EQ(opConstAlpha(0xFF102030, 0x00405060, 255), opConstAlpha(0x00102030, 0xFF405060, 255));
    for (int a : {0, 1, 127, 128, 254, 255}) {
        expectSame([a](uint32_t d, uint32_t s) { return opConstAlpha(d, s, static_cast<uint32_t>(a)); },
                   [a](uint32_t d, uint32_t s) { return plain::constAlpha(d, s, a); });
    }
}

TEST_F(Blend, ConstAlphaBeyondItsRangeWraps)
{
    EXPECT_EQ(opConstAlpha(0x00000001, 0, 256), 0x00FF00FFu); // weight -1 fills red from blue
    EXPECT_EQ(opConstAlpha(0, 0x00FFFFFF, 256), 0x00FFFFFFu); // weight 256 of the source alone
    EXPECT_EQ(opConstAlpha(0xFF123456, 0, 0xFFFFFFFF), 0x00123456u); // weight 256 of the destination
    EXPECT_EQ(opConstAlpha(0, 0x00000001, 0xFFFFFFFF), 0x00FF00FFu);
    EXPECT_EQ(opConstAlpha(0, 0x0000FF00, 0x10000), 0u); // green leaves the word's middle
    EXPECT_EQ(opConstAlpha(0x00000000, 0x000000FF, 0x20000), 0x00010000u); // blue arrives in red
}

TEST_F(Blend, AddByChannel)
{
    EXPECT_EQ(opAdd(0, 0), 0x01010100u);
    EXPECT_EQ(opAdd(1, 1), 0x01010102u);
    EXPECT_EQ(opAdd(0x00FFFFFF, 0x00FFFFFF), 0x01FFFFFEu);
    expectSame(opAdd, plain::add);
}

TEST_F(Blend, AddSaturatesBlueTo254Or255)
{
    EXPECT_EQ(opAdd(0x000000FF, 0x000000FF) & 0xFF, 0xFEu);
    EXPECT_EQ(opAdd(0x000000FF, 0x000000FE) & 0xFF, 0xFFu);
}

TEST_F(Blend, AddAlwaysLeavesAlphaOne)
{
    EXPECT_EQ(opAdd(0xFF000000, 0xFF000000), 0x01010100u);
    EXPECT_EQ(opAdd(0xFF000000, 0x80FFFFFF) >> 24, 1u);
}

TEST_F(Blend, SubByChannel)
{
    EXPECT_EQ(opSub(0xFFFFFFFF, 0xFFFFFFFF), 0u);
    EXPECT_EQ(opSub(0, 0xFFFFFFFF), 0x01010100u);
    expectSame(opSub, plain::sub);
}

TEST_F(Blend, SubWrapsAlpha)
{
    EXPECT_EQ(opSub(0x01FFFFFF, 0x03000000) >> 24, 0xFEu);
    EXPECT_EQ(opSub(0xFF000000, 0xFF0000FF) >> 24, 0xFFu); // the borrow runs through to alpha
    EXPECT_EQ(opSub(0xFF000000, 0xFF000000) >> 24, 0u);
}

TEST_F(Blend, MulByChannel)
{
    EXPECT_EQ(opMul(0xFFFFFFFF, 0xFFFFFFFF), 0x00FEFEFEu);
    expectSame(opMul, plain::mul);
}

TEST_F(Blend, Mul2ByChannel)
{
    EXPECT_EQ(opMul2(0xFFFFFFFF, 0xFFFFFFFF), 0x01FFFFFFu);
    EXPECT_EQ(opMul2(0x00808080, 0x00FFFFFF), 0x00FEFEFEu);
    expectSame(opMul2, plain::mul2);
}

TEST_F(Blend, Mul2LeaksIntoTheChannelAbove)
{
    EXPECT_EQ(opMul2(0x000000FF, 0x000000FF), 0x000001FFu); // blue into green
    EXPECT_EQ(opMul2(0x0000FF00, 0x0000FF00), 0x0001FF00u); // green into red
    EXPECT_EQ(opMul2(0x00FF0000, 0x00FF0000), 0x01FF0000u); // red into alpha
    EXPECT_EQ(opMul2(0x00404080, 0x00FFFFFF), 0x007E7EFEu); // none below 128
}

TEST_F(Blend, ScreenByChannel)
{
    EXPECT_EQ(opScreen(0, 0), 0xFF010101u);
    expectSame(opScreen, plain::screen);
}

TEST_F(Blend, OverlayByChannel)
{
    EXPECT_EQ(opOverlay(0x00808080, 0), 0x00030303u);
    EXPECT_EQ(opOverlay(0x007F7F7F, 0x00FFFFFF), 0x00FCFCFCu);
    expectSame(opOverlay, plain::overlay);
}

TEST_F(Blend, OverlayIsDecidedByTheDestination)
{
    EXPECT_EQ(opOverlay(0x00404040, 0x00F0F0F0), 0x00787878u);
    EXPECT_EQ(opOverlay(0x00F0F0F0, 0x00404040), 0x00E9E9E9u);
}

TEST_F(Blend, MergeTakesAlphaByTheMaskToo)
{
    EXPECT_EQ(opMerge(0x12345678, 0x9ABCDEF0, 0xFF0000FF), 0x9A3456F0u);
    for (uint32_t mask : {0u, 0xFFFFFFFFu, 0x80000001u, 0x0F0F0F0Fu}) {
        std::mt19937 random(2);
        for (int i = 0; i < 1000; ++i) {
            const uint32_t d = static_cast<uint32_t>(random()), s = static_cast<uint32_t>(random());
            ASSERT_EQ(opMerge(d, s, mask), plain::merge(d, s, mask));
        }
    }
}

TEST_F(Blend, LumaOfWhiteIs252)
{
    EXPECT_EQ(luma(0x00FFFFFF), 0x00FCFCFCu);
    EXPECT_EQ(luma(0xFF000000), 0u);
    EXPECT_EQ(luma(0x00FF0000), 0x004B4B4Bu);
    EXPECT_EQ(luma(0x0000FF00), 0x00959595u);
    EXPECT_EQ(luma(0x000000FF), 0x001C1C1Cu);
    expectSame([](uint32_t, uint32_t s) { return luma(s); }, [](uint32_t, uint32_t s) { return plain::luma(s); });
}

TEST_F(Blend, SetBlendModeStoresValuesUpTo12AsTheyAre)
{
    rs.blendFunc = hostOperator;
    for (long value : {0l, 1l, 2l, 3l, 4l, 5l, 6l, 7l, 8l, 9l, 10l, 11l, 12l, -1l, -13l, -20l, long{INT_MIN}}) {
        SetBlendMode(value);
        EXPECT_EQ(rs.blendMode, value);
        EXPECT_EQ(rs.blendFunc, &hostOperator) << value;
    }
}

TEST_F(Blend, SetBlendModeDerivesTheCustomBlends)
{
    const uint32_t d = 0x12345678, s = 0xFEDCBA98;
    const struct {
        long value;
        uint32_t result;
    } cases[] = {{NINEFOLD_BLEND_LUMA_SRC, plain::luma(s)},
                 {NINEFOLD_BLEND_LUMA_DST, plain::luma(d)},
                 {NINEFOLD_BLEND_XOR, d ^ s},
                 {NINEFOLD_BLEND_AND, d & s},
                 {NINEFOLD_BLEND_OR, d | s},
                 {NINEFOLD_BLEND_DST, d}};
    for (const auto &c : cases) {
        SetBlendMode(c.value);
        EXPECT_EQ(rs.blendMode, NINEFOLD_BLEND_CUSTOM) << c.value;
        EXPECT_EQ(rs.blendFunc(d, s), c.result) << c.value;
    }
}

TEST_F(Blend, SetBlendModeOf13And20UpIsPlainSource)
{
    for (long value : {13l, 20l, 21l, 1000l, long{INT_MAX}}) {
        rs.blendMode = NINEFOLD_BLEND_ADD;
        rs.blendFunc = hostOperator;
        SetBlendMode(value);
        EXPECT_EQ(rs.blendMode, 0) << value;
        EXPECT_EQ(operatorIndex(rs.blendFunc), indexOf(blendOp(NINEFOLD_BLEND_COPY))) << value;
        EXPECT_EQ(rs.blendFunc(0x12345678, 0xFEDCBA98), 0xFEDCBA98u);
    }
}

TEST_F(Blend, SetBlendModeTouchesTwoFields)
{
    for (long value : {1l, 13l, 16l}) {
        std::memset(&rs, 0x5A, sizeof rs);
        RenderState expected;
        std::memcpy(&expected, &rs, sizeof rs);
        SetBlendMode(value);
        expected.blendMode = rs.blendMode;
        expected.blendFunc = rs.blendFunc;
        EXPECT_EQ(std::memcmp(&rs, &expected, sizeof rs), 0) << value;
    }
}

TEST_F(Blend, LowWordOfTheModeCounts)
{
    if constexpr (sizeof(long) > 4) {
        const long high = 3l << 16 << 16;
        SetBlendMode(high + 5);
        EXPECT_EQ(rs.blendMode, 5);
        EXPECT_EQ(rs.blendFunc, nullptr);
        SetBlendMode(high + 16);
        EXPECT_EQ(rs.blendMode, NINEFOLD_BLEND_CUSTOM);
        EXPECT_EQ(operatorIndex(rs.blendFunc), indexOf(blendOp(NINEFOLD_BLEND_XOR)));
        SetBlendMode(high + 0xFFFFFFFF); // -1, not the many that are 20 and up
        EXPECT_EQ(rs.blendMode, -1);
        EXPECT_EQ(operatorIndex(rs.blendFunc), indexOf(blendOp(NINEFOLD_BLEND_XOR)));
    }
}

// ---- multi operators ----

// The value's result in a bank, from the channel formulas; `scale` is the factor of the second bank, -1 in the first.
uint32_t expectedMulti(long value, int scale, uint32_t f, uint32_t s)
{
    const auto keep = [f](uint32_t color) { return (f & 0xFF000000) | (color & 0xFFFFFF); };
    const uint32_t rgb = scale < 0 ? s & 0xFFFFFF : plain::scaleRgb(s, scale);
    const uint32_t faded = scale < 0 ? s : plain::scaleAlpha(s, scale);
    switch (value) {
    case 1: return keep(plain::alpha(f, faded));
    case 2: {
        const uint32_t mixed = plain::constAlpha(f, s, static_cast<int>(rs.blendAlpha));
        return scale < 0 ? mixed : keep(mixed);
    }
    case 3: return keep(plain::constAlpha(f, s, static_cast<int>(rs.blendAlphaRgb)));
    case 4: return keep(plain::alphaFast(f, faded));
    case 5: return keep(plain::add(f, rgb));
    case 6: return keep(plain::sub(f, rgb));
    case 7: return keep(plain::mul(f, rgb));
    case 8: return keep(plain::mul2(f, rgb));
    case 9: return keep(plain::screen(f, rgb));
    case 10: return keep(plain::overlay(f, rgb));
    case 11: return plain::merge(f, rgb | (s & 0xFF000000), rs.writeMask);
    case 14: return keep(plain::luma(rgb));
    case 15: return keep(plain::luma(f));
    case 16: return f ^ rgb;
    case 17: return keep(f & rgb);
    case 18: return f | rgb;
    case 19: return f;
    default: return keep(rgb);
    }
}

TEST_F(Multi, EveryValueOfBothBanks)
{
    std::mt19937 random(4);
    for (int scale : {-1, 0, 1, 100, 128, 255, 256}) {
        SetPrescaleMultiMode(scale >= 0);
        for (long value = 0; value < 20; ++value) {
            SetBlendModeMulti(value);
            int wrong = 0;
            for (int i = 0; i < 20000; ++i) {
                const uint32_t f = static_cast<uint32_t>(random());
                uint32_t s = static_cast<uint32_t>(random());
                if (i % 8 == 0)
                    s |= 0xFF000000;
                else if (i % 8 == 1)
                    s &= 0x00FFFFFF;
                rs.blendAlpha = i % 256;
                rs.blendAlphaRgb = 255 - i % 256;
                rs.prescaleMulti = static_cast<uint32_t>(scale < 0 ? 77 : scale);
                rs.writeMask = i % 16 ? static_cast<uint32_t>(random()) : 0xFFFFFFFF;
                wrong += rs.multiFunc(f, s) != expectedMulti(value, scale, f, s);
            }
            EXPECT_EQ(wrong, 0) << "value " << value << ", scale " << scale;
        }
    }
}

TEST_F(Multi, ZeroTakesColourFromTheSecondAndAlphaFromTheFirst)
{
    EXPECT_EQ(multi(0, 0xAA000000, 0x00123456), 0xAA123456u);
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    rs.prescaleMulti = 128;
    EXPECT_EQ(multi(0, 0xAA000000, 0x00123456), 0xAA091A2Bu);
}

TEST_F(Multi, ConstAlphaLosesAlphaInTheFirstBankOnly)
{
    rs.blendAlpha = 128;
    EXPECT_EQ(multi(2, 0xFF102030, 0xFF405060) >> 24, 0u);
    EXPECT_EQ(multi(2, 0x7F102030, 0x00405060) >> 24, 0u);
    const uint32_t color = multi(2, 0x7F102030, 0x00405060);
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    EXPECT_EQ(multi(2, 0xFF102030, 0x00405060) >> 24, 0xFFu);
    EXPECT_EQ(multi(2, 0x7F102030, 0x00405060), 0x7F000000u | color);
}

TEST_F(Multi, ConstAlphasOfTheSecondBankAreNotScaled)
{
    rs.blendAlpha = 200;
    rs.blendAlphaRgb = 50;
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    for (uint32_t scale : {0u, 100u, 256u}) {
        rs.prescaleMulti = scale;
        EXPECT_EQ(multi(2, 0xFF000000, 0x00FFFFFF), 0xFFC7C7C7u); // 255 * 200 / 256
        EXPECT_EQ(multi(3, 0xFF000000, 0x00FFFFFF), 0xFF313131u); // 255 * 50 / 256
    }
}

TEST_F(Multi, ValueThreeReadsItsOwnFactor)
{
    rs.blendAlpha = 0;
    rs.blendAlphaRgb = 255;
    EXPECT_EQ(multi(3, 0x80000000, 0x00FFFFFF), 0x80FEFEFEu);
    EXPECT_EQ(multi(2, 0x80000000, 0x00FFFFFF), 0u);
}

TEST_F(Multi, Values3And15And19AreOneFunctionInBothBanks)
{
    for (long value = 0; value < 20; ++value) {
        SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN);
        SetBlendModeMulti(value);
        const PixelOperator first = rs.multiFunc;
        SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
        EXPECT_EQ(first == rs.multiFunc, value == 3 || value == 15 || value == 19) << value;
    }
}

TEST_F(Multi, LumaOfTheFirstIgnoresTheSecond)
{
    EXPECT_EQ(multi(15, 0x80FFFFFF, 0x12345678), 0x80FCFCFCu);
    EXPECT_EQ(multi(15, 0x80FFFFFF, 0), 0x80FCFCFCu);
}

TEST_F(Multi, BitOperationsLeaveAlphaOfTheFirst)
{
    for (long bank : {0l, 1l}) {
        SetPrescaleMultiMode(bank);
        rs.prescaleMulti = 256;
        EXPECT_EQ(multi(16, 0xA5FF00FF, 0xFF0F0F0F), 0xA5F00FF0u);
        EXPECT_EQ(multi(17, 0xA5FF00FF, 0x000F0F0F), 0xA50F000Fu);
        EXPECT_EQ(multi(18, 0xA5FF00FF, 0xFF0F0F0F), 0xA5FF0FFFu);
    }
}

TEST_F(Multi, MergeMayChangeAlpha)
{
    rs.writeMask = 0xFF00FF00;
    EXPECT_EQ(multi(11, 0x11223344, 0xAABBCCDD), 0xAA22CC44u);
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    rs.prescaleMulti = 128; // scales the colour, not the alpha
    EXPECT_EQ(multi(11, 0x11223344, 0xAABBCCDD), 0xAA226644u);
}

TEST_F(Multi, FactorsBeyondTheirRangeWrap)
{
    rs.blendAlpha = rs.blendAlphaRgb = 256;
    EXPECT_EQ(multi(2, 1, 0), 0x00FF00FFu);
    EXPECT_EQ(multi(3, 0x80000001, 0), 0x80FF00FFu);
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    rs.prescaleMulti = 0x20000;
    EXPECT_EQ(multi(0, 0x80000000, 0x000000FF), 0x80010000u);
    rs.prescaleMulti = 512;
    EXPECT_EQ(multi(1, 0x80000000, 0xC0FFFFFF), 0x807F7F7Fu); // alpha 192 doubles to 128
    EXPECT_EQ(multi(4, 0x80123456, 0x80FFFFFF), 0x80123456u); // alpha 128 doubles to 0
}

TEST_F(Multi, Values12And13ActAsZero)
{
    for (long bank : {0l, 1l}) {
        SetPrescaleMultiMode(bank);
        SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
        const PixelOperator zero = rs.multiFunc;
        for (long value : {12l, 13l}) {
            SetBlendModeMulti(value);
            EXPECT_EQ(rs.multiFunc, zero) << value;
            EXPECT_EQ(rs.blendModeMulti, value);
        }
    }
}

TEST_F(Multi, ValuesOutsideTheTableActAsZeroInEitherBank)
{
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
    const PixelOperator first = rs.multiFunc;
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    const PixelOperator second = rs.multiFunc;
    EXPECT_NE(first, second);
    for (long value : {20l, 21l, -1l, long{INT_MAX}, long{INT_MIN}}) {
        SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN);
        SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
        SetBlendModeMulti(value);
        EXPECT_EQ(rs.blendModeMulti, value);
        EXPECT_EQ(rs.multiFunc, first) << value;
        SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
        EXPECT_EQ(rs.blendModeMulti, value);
        EXPECT_EQ(rs.multiFunc, second) << value;
    }
}

TEST_F(Multi, BankChangesTheOperatorAtOnce)
{
    SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
    EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(false, NINEFOLD_MULTI_OP_ADD));
    for (long mode : {1l, 2l, -1l, long{INT_MIN}}) { // all but 0 are the second
        SetPrescaleMultiMode(mode);
        EXPECT_EQ(rs.prescaleMultiMode, mode);
        EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(true, NINEFOLD_MULTI_OP_ADD)) << mode;
    }
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN);
    EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(false, NINEFOLD_MULTI_OP_ADD));
}

TEST_F(Multi, LowWordsOfValueAndBankCount)
{
    if constexpr (sizeof(long) > 4) {
        const long high = 3l << 16 << 16;
        SetBlendModeMulti(high + 5);
        EXPECT_EQ(rs.blendModeMulti, 5);
        EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(false, NINEFOLD_MULTI_OP_ADD));
        SetPrescaleMultiMode(high); // 0: the first bank
        EXPECT_EQ(rs.prescaleMultiMode, 0);
        EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(false, NINEFOLD_MULTI_OP_ADD));
        SetPrescaleMultiMode(high + 1);
        EXPECT_EQ(rs.prescaleMultiMode, 1);
        EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(true, NINEFOLD_MULTI_OP_ADD));
    }
}

TEST_F(Multi, BankAloneSelectsTheOperatorOfZeroAtFirst)
{
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(true, NINEFOLD_MULTI_OP_SECOND));
}

TEST_F(Multi, FactorsAreReadWhenCalled)
{
    SetBlendModeMulti(NINEFOLD_MULTI_OP_CONST_ALPHA);
    const PixelOperator function = rs.multiFunc;
    rs.blendAlpha = 255;
    EXPECT_EQ(function(0, 0x00808080), 0x007F7F7Fu);
    rs.blendAlpha = 128;
    EXPECT_EQ(function(0, 0x00808080), 0x00404040u);
}

TEST_F(Multi, SettersTouchTheirFieldsOnly)
{
    std::memset(&rs, 0x5A, sizeof rs);
    RenderState expected;
    std::memcpy(&expected, &rs, sizeof rs);
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL);
    expected.prescaleMultiMode = 0;
    expected.blendModeMulti = 7;
    expected.multiFunc = rs.multiFunc;
    EXPECT_EQ(std::memcmp(&rs, &expected, sizeof rs), 0);
}

// ---- pointers ----

TEST_F(Operators, EachHasAnAddressOfItsOwn)
{
    const std::set<PixelOperator> distinct(operators.begin(), operators.end());
    EXPECT_EQ(distinct.size(), 39u);
    EXPECT_EQ(opCount, 39);
}

TEST_F(Operators, PointersAreFound)
{
    for (int i = 0; i < opCount; ++i)
        EXPECT_EQ(operatorIndex(operators[static_cast<size_t>(i)]), i);
    EXPECT_EQ(operatorIndex(nullptr), -1);
    EXPECT_EQ(operatorIndex(hostOperator), -1);
}

TEST_F(Operators, TableNamesWhatTheSetterSelects)
{
    for (int bank : {0, 1}) {
        SetPrescaleMultiMode(bank);
        for (int value = 0; value < 20; ++value) {
            SetBlendModeMulti(value);
            EXPECT_EQ(operatorIndex(rs.multiFunc), multiIndex(bank, value)) << bank << " " << value;
        }
    }
}

TEST_F(Operators, EitherKindWorksBehindEitherPointer)
{
    SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
    rs.blendFunc = rs.multiFunc;
    EXPECT_EQ(operatorIndex(rs.blendFunc), multiIndex(false, NINEFOLD_MULTI_OP_ADD));
    SetBlendMode(NINEFOLD_BLEND_XOR);
    rs.multiFunc = rs.blendFunc;
    EXPECT_EQ(operatorIndex(rs.multiFunc), indexOf(blendOp(NINEFOLD_BLEND_XOR)));
    EXPECT_EQ(rs.multiFunc(0xFF000000, 0xFF000001), 1u);
}

// ---- prescale ----

TEST_F(Prescale, ScaleRgb)
{
    EXPECT_EQ(scaleRgb(0xFF123456, 256), 0x00123456u);
    EXPECT_EQ(scaleRgb(0x00FFFFFF, 255), 0x00FEFEFEu);
    EXPECT_EQ(scaleRgb(0xFFFFFFFF, 0), 0u);
    for (int factor = 0; factor <= 256; ++factor) {
        for (uint32_t c = 0; c < 256; ++c) {
            const uint32_t pixel = c * 0x01000100 | (255 - c) * 0x00010001;
            ASSERT_EQ(scaleRgb(pixel, static_cast<uint32_t>(factor)), plain::scaleRgb(pixel, factor));
        }
    }
}

TEST_F(Prescale, ScaleRgbAbove256Spills)
{
    EXPECT_EQ(scaleRgb(0x000000FF, 0x20000), 0x00010000u); // blue in red
    EXPECT_EQ(scaleRgb(0x00FF0000, 512), 0x00FE0000u); // red's carry is lost
    EXPECT_EQ(scaleRgb(0x0000FF00, 512), 0x0000FE00u); // green's too
    EXPECT_EQ(scaleRgb(0x00000001, 0xFFFFFFFF), 0x00FF00FFu);
}

TEST_F(Prescale, ScaleAlpha)
{
    EXPECT_EQ(scaleAlpha(0x80112233, 128), 0x40112233u);
    EXPECT_EQ(scaleAlpha(0xFF112233, 256), 0xFF112233u);
    EXPECT_EQ(scaleAlpha(0xFF112233, 255), 0xFE112233u);
    EXPECT_EQ(scaleAlpha(0xFF112233, 0), 0x00112233u);
    for (int factor = 0; factor <= 600; ++factor) {
        for (uint32_t a = 0; a < 256; ++a)
            ASSERT_EQ(scaleAlpha(a << 24 | 0xABCDEF, static_cast<uint32_t>(factor)),
                      plain::scaleAlpha(a << 24 | 0xABCDEF, factor));
    }
}

TEST_F(Prescale, FormFollowsTheBlend)
{
    const uint32_t source = 0x80FF8040;
    for (int blend : {NINEFOLD_BLEND_COPY, NINEFOLD_BLEND_SUB, NINEFOLD_BLEND_MUL, NINEFOLD_BLEND_MUL2, NINEFOLD_BLEND_SCREEN,
                      NINEFOLD_BLEND_OVERLAY, NINEFOLD_BLEND_MERGE, NINEFOLD_BLEND_CUSTOM})
        EXPECT_EQ(prescaleSource(blend, source, 128), 0x807F4020u) << blend;
    for (int blend : {NINEFOLD_BLEND_ALPHA, NINEFOLD_BLEND_CONST_ALPHA, NINEFOLD_BLEND_ALPHA_FAST})
        EXPECT_EQ(prescaleSource(blend, source, 128), 0x40FF8040u) << blend;
    EXPECT_EQ(prescaleSource(5, source, 128) & 0xFFFFFF, 0x007F4020u);
}

TEST_F(Prescale, ConstAlphaDoesNotSeeIt)
{
    for (uint32_t factor : {0u, 1u, 128u, 255u, 256u, 1000u})
        EXPECT_EQ(opConstAlpha(0x00123456, prescaleSource(2, 0x80FF8040, factor), 99), opConstAlpha(0x00123456, 0x80FF8040, 99));
}

TEST_F(Prescale, AddIsTheFoldedForm)
{
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        const uint32_t d = static_cast<uint32_t>(random()), s = static_cast<uint32_t>(random());
        const uint32_t m = i % 2 ? static_cast<uint32_t>(random()) : static_cast<uint32_t>(random()) % 257;
        const uint32_t folded = ((((s & 0xFF00FF) * m) & 0xFE00FFFF) | (((s & 0xFF00) * m) & 0xFE0000)) >> 8;
        const uint32_t sum = (d & 0xFEFEFF) + folded;
        ASSERT_EQ(opAdd(d, prescaleSource(5, s, m)), ((0x80808000 - (sum & 0x1010100)) >> 7) | sum);
    }
}

TEST_F(Prescale, ZeroUnderCopyLeavesAlpha)
{
    EXPECT_EQ(prescaleSource(0, 0x80FF8040, 0), 0x80000000u);
    EXPECT_EQ(prescaleSource(0, 0x00FF8040, 0), 0u);
}

} // namespace
