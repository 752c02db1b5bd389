// Row forms of the operators and backs of every instruction set against the scalar definitions.
#include "kernels/parts.h"
#include "ops/operators.h"
#include "support/canvas.h"

#include <ninefold/ninefold.h>

#include <gtest/gtest.h>

#include <random>
#include <utility>

using namespace ninefold;
using canvas::thin;

namespace {

constexpr int chunk = 64; // pixels at a time; most a chunk holds are Chunk::size

// Which second operand a pixel has: its own, or the first one of sixteen alike.
constexpr int each = -1, repeated = 0;

struct alignas(64) Words {
    uint32_t at[Chunk::padded];
};

// A set of pixels: those with a word other than 0.
struct Picked {
    Chunk::Pixels at;
};

Picked picked(const Words &words)
{
    Picked set{};
    for (int i = 0; i < Chunk::size; ++i)
        set.at[i / 64] |= uint64_t{words.at[i] != 0} << i % 64;
    return set;
}

class Lanes : public testing::Test {
protected:
    void SetUp() override
    {
        rs = RenderState{};
        rs.blendAlpha = 100, rs.blendAlphaRgb = 50, rs.prescale = 200, rs.prescaleMulti = 180, rs.writeMask = 0xF0CC33AA;
        for (int set = 0; set < usableSets() && useSet(set); ++set)
            sets.push_back(activeSets.any);
    }

    void TearDown() override { rs = RenderState{}; }

    template <class Body>
    void forEachSet(Body &&body)
    {
        for (size_t k = 0; k < sets.size() && !HasFatalFailure(); ++k) {
            SCOPED_TRACE(setNames[k]);
            body(*sets[k]);
        }
    }

    std::vector<const InstructionSet *> sets;
    std::mt19937 random{107};
};

// An operator's row form over whole chunks of operand pairs.
class RowOperators : public Lanes {
protected:
    // Compares `count` pairs made by `pairAt`, chunk by chunk, in the form of this width.
    template <class PairAt>
    void expectPairs(int op, bool wide, uint64_t count, PairAt &&pairAt)
    {
        const PixelOperator scalar = ops::operators[size_t(op)];
        Words first, second, expected, out;
        Picked pick{};
        std::fill(std::begin(pick.at), std::end(pick.at), ~uint64_t{0});
        for (uint64_t k = 0; k < count; k += chunk) {
            for (uint64_t i = 0; i < chunk; ++i) {
                pairAt(k + i, first.at[i], second.at[i]);
                expected.at[i] = scalar(first.at[i], second.at[i]);
            }
            for (const InstructionSet *set : sets) {
                set->operators[wide][size_t(op)](out.at, first.at, second.at, each, pick.at, chunk);
                for (int i = 0; i < chunk; ++i)
                    ASSERT_EQ(out.at[i], expected.at[i])
                        << "operator " << int(op) << " of " << std::hex << first.at[i] << " and " << second.at[i];
            }
        }
    }

    void expectRandomPairs(int op, bool wide, uint64_t count)
    {
        expectPairs(op, wide, count,
                    [this](uint64_t, uint32_t &f, uint32_t &s) { f = uint32_t(random()), s = uint32_t(random()); });
    }

    // All pairs of channel values, equal in all channels of a word but alpha.
    void expectChannelPairs(int op, bool wide, uint32_t firstAlpha = 0x5A, uint32_t secondAlpha = 0xA7)
    {
        expectPairs(op, wide, 65536 / (thin == 1 ? 1 : 4), [=](uint64_t k, uint32_t &f, uint32_t &s) {
            if (thin != 1)
                k = k * 5;
            f = firstAlpha << 24 | uint32_t(k >> 8 & 255) * 0x10101, s = secondAlpha << 24 | uint32_t(k & 255) * 0x10101;
        });
    }

    template <class Visitor>
    void forEachOperator(Visitor &&visit)
    {
        for (int op = 0; op < ops::opCount && !HasFatalFailure(); ++op)
            visit(op);
    }
};

TEST_F(RowOperators, AgreeOverAllPairsOfChannels)
{
    forEachOperator([&](int op) {
        for (bool wide : {false, true}) {
            expectChannelPairs(op, wide);
            expectChannelPairs(op, wide, 0, 255);
            expectChannelPairs(op, wide, 255, 0);
        }
    });
}

TEST_F(RowOperators, AgreeOverAllPairsOfChannelsUnderEveryAlphaWhereItWeighs)
{
    for (int op = 0; op < ops::opCount; ++op) {
        const ops::Op is = ops::opList[size_t(op)];
        if (is.blend != NINEFOLD_MULTI_OP_ALPHA && is.blend != NINEFOLD_MULTI_OP_ALPHA_FAST)
            continue;
        for (uint32_t alpha = 0; alpha < 256; alpha += thin) {
            // Of the scaled ones every alpha is seen through the factor that leaves it, and through others.
            for (uint32_t factor : {256u, 77u}) {
                if (factor == 77 && (!is.scales || alpha % 8))
                    continue;
                rs.prescaleMulti = factor;
                expectChannelPairs(op, false, 0x33, alpha);
            }
        }
    }
}

TEST_F(RowOperators, AgreeOverAllPairsOfChannelsUnderEveryConstantAlpha)
{
    for (uint32_t alpha = 0; alpha < 256; alpha += thin) {
        rs.blendAlpha = alpha;
        rs.blendAlphaRgb = 255 - alpha;
        for (bool bank : {false, true})
            for (int value : {NINEFOLD_MULTI_OP_CONST_ALPHA, NINEFOLD_MULTI_OP_CONST_ALPHA_RGB})
                expectChannelPairs(ops::indexOf(ops::multiOp(bank, value)), false);
    }
}

TEST_F(RowOperators, AgreeForEveryFactorOfTheSecondBank)
{
    forEachOperator([&](int op) {
        if (!ops::opList[size_t(op)].scales)
            return;
        for (uint32_t factor = 0; factor <= 256; factor += thin) {
            rs.prescaleMulti = factor;
            expectRandomPairs(op, false, 512);
        }
        for (uint32_t factor : {0u, 1u, 128u, 255u, 256u}) {
            rs.prescaleMulti = factor;
            expectChannelPairs(op, false);
        }
    });
}

TEST_F(RowOperators, AgreeOnRandomWords)
{
    forEachOperator([&](int op) {
        for (bool wide : {false, true}) {
            for (int round = 0; round < 40; ++round) {
                rs.blendAlpha = uint32_t(random()) & 255, rs.blendAlphaRgb = uint32_t(random()) & 255;
                rs.prescaleMulti = uint32_t(random()) % 257, rs.writeMask = uint32_t(random());
                expectRandomPairs(op, wide, 20000 / 40 / thin);
            }
        }
    });
}

TEST_F(RowOperators, WideFormsAgreeForFactorsBeyondTheirRange)
{
    std::vector<uint32_t> factors = {256,     257,     300,     511,        512,        4095,       0xFFFF,
                                     0x10000, 0x10001, 0x10100, 0x7FFFFFFF, 0x80000000, 0xFFFFFF00, 0xFFFFFFFF};
    for (int k = 0; k < 40; ++k)
        factors.push_back(uint32_t(random()) >> k % 24);
    for (uint32_t factor : factors) {
        rs.blendAlpha = rs.blendAlphaRgb = rs.prescaleMulti = factor;
        forEachOperator([&](int op) { expectRandomPairs(op, true, 640 / (thin == 1 ? 1 : 4)); });
    }
}

TEST_F(RowOperators, UnpickedPixelsKeepTheFirstOperandAndOperandsMayBeTheResult)
{
    Words first, second, pick;
    forEachOperator([&](int op) {
        const PixelOperator scalar = ops::operators[size_t(op)];
        for (int n = 1; n <= Chunk::size; n += n < 70 ? 3 : 61) {
            for (int i = 0; i < Chunk::padded; ++i)
                first.at[i] = uint32_t(random()), second.at[i] = uint32_t(random()), pick.at[i] = random() % 2 ? ~0u : 0;
            forEachSet([&](const InstructionSet &set) {
                Words out = first, over = second;
                set.operators[false][size_t(op)](out.at, out.at, second.at, each, picked(pick).at, n);
                set.operators[false][size_t(op)](over.at, first.at, over.at, each, picked(pick).at, n);
                for (int i = 0; i < n; ++i) {
                    const uint32_t expected = pick.at[i] ? scalar(first.at[i], second.at[i]) : first.at[i];
                    ASSERT_EQ(out.at[i], expected) << int(op);
                    ASSERT_EQ(over.at[i], expected) << int(op);
                }
            });
        }
    });
}

TEST_F(RowOperators, OneSecondOperandMayServeAllPixels)
{
    Words first, second, pick;
    forEachOperator([&](int op) {
        const PixelOperator scalar = ops::operators[size_t(op)];
        const uint32_t colour = uint32_t(random());
        for (int i = 0; i < Chunk::padded; ++i)
            first.at[i] = uint32_t(random()), second.at[i] = i < 16 ? colour : ~colour, pick.at[i] = random() % 3 ? ~0u : 0;
        forEachSet([&](const InstructionSet &set) {
            for (int n : {1, 5, 16, 17, 64, int(Chunk::size)}) {
                Words out;
                set.operators[false][size_t(op)](out.at, first.at, second.at, repeated, picked(pick).at, n);
                for (int i = 0; i < n; ++i)
                    ASSERT_EQ(out.at[i], pick.at[i] ? scalar(first.at[i], colour) : first.at[i]) << int(op);
            }
        });
    });
}

TEST_F(RowOperators, AHostsOwnIsCalledForPickedPixelsInOrderAndEachIsWrittenBeforeTheNext)
{
    static std::vector<std::pair<uint32_t, uint32_t>> seen;
    static const uint32_t *frame;
    static std::vector<long> written; // how much of the row at each call
    Words first, second, pick, row;
    for (int i = 0; i < Chunk::padded; ++i)
        first.at[i] = uint32_t(random()) | 1, second.at[i] = uint32_t(random()) & ~1u, pick.at[i] = random() % 3 ? ~0u : 0;
    const int copy = BackKey{Marks::none, NINEFOLD_BLEND_COPY, false, false}.index();
    for (int mask : {each, repeated}) {
        for (bool dropped : {false, true}) {
            for (int n : {1, 7, 16, 63, 64, int(Chunk::size)}) {
                seen.clear();
                written.clear();
                row = {};
                frame = row.at;
                const PixelOperator own = [](uint32_t f, uint32_t s) {
                    written.push_back(std::find(frame, frame + Chunk::size, 0u) - frame);
                    seen.push_back({f, s});
                    return f * 3 + s;
                };
                Chunk c;
                c.source = first.at, c.second = second.at;
                std::copy_n(picked(pick).at, Chunk::size / 64, c.valid);
                Span span{};
                span.dst = row.at;
                for (uint64_t &word : c.live)
                    word = ~uint64_t{0};
                if (n % 64)
                    c.live[n / 64] = (uint64_t{1} << n % 64) - 1;
                hostBacks[size_t(copy)](span, 0, n, c, {own, c.valid, mask, dropped});
                size_t calls = 0;
                for (int i = 0; i < n; ++i) {
                    const uint32_t s = second.at[mask == each ? i : 0];
                    ASSERT_EQ(row.at[i], pick.at[i] && !dropped ? first.at[i] * 3 + s : first.at[i]);
                    if (pick.at[i]) {
                        ASSERT_LT(calls, seen.size());
                        ASSERT_EQ(seen[calls], std::pair(first.at[i], s));
                        ASSERT_EQ(written[calls], i);
                        ++calls;
                    }
                }
                ASSERT_EQ(seen.size(), calls);
            }
        }
    }
}

// Backs: prescale, blend, soft edge and write.
class RowBacks : public Lanes {
protected:
    // Calls the body with the blend as a type's value.
    template <class Body>
    static void with(int blend, Body &&body)
    {
        const auto all = [&]<int... n>(std::integer_sequence<int, n...>)
        {
            ((n == blend ? body(std::integral_constant<int, n>()) : void()), ...);
        };
        all(std::make_integer_sequence<int, blendCount>());
    }

    static uint32_t prescaled(int blend, uint32_t s)
    {
        with(blend, [&](auto number) { s = ops::prescaled<number(), true>(s, rs.prescale); });
        return s;
    }

    // Behind blendFunc is exclusive or.
    static uint32_t blended(int blend, uint32_t d, uint32_t s)
    {
        uint32_t result = d ^ s;
        if (blend != NINEFOLD_BLEND_CUSTOM)
            with(blend, [&](auto number) { result = ops::blended<number(), true>(d, s, {}); });
        return result;
    }
    static constexpr size_t xorWord = size_t(ops::indexOf(ops::blendOp(NINEFOLD_BLEND_XOR)));

    struct Form {
        bool prescale, soft, wide;
        int blend;
        Marks marks;
        int index() const { return BackKey{marks, uint8_t(blend), prescale, soft}.index(); }
    };

    template <class Visitor>
    void forEachForm(Visitor &&visit)
    {
        for (bool wide : {false, true})
            for (bool prescale : {false, true})
                for (bool soft : {false, true})
                    for (int blend : canvas::blends)
                        for (Marks marks : {Marks::none, Marks::plane, Marks::planeZ})
                            visit(Form{prescale, soft, wide, blend, marks});
    }

    // n pixels of these operands, of which `live` go on, onto a row that starts anywhere.
    void expectRow(const Form &form, const Words &destination, const Words &source, const Words &live, const Words &rule, int n,
                   int offset = 0)
    {
        const auto expectBack = [&](auto &&back) {
            Words row[3];
            std::memset(row, 0x5A, sizeof row);
            uint32_t *dst = row[1].at + offset;
            std::copy_n(destination.at, n, dst);
            uint16_t plane[32] = {};
            uint8_t z[Chunk::padded + 32];
            std::fill(std::begin(z), std::end(z), uint8_t{7});
            Chunk c;
            std::copy_n(source.at, Chunk::padded, c.words);
            c.source = c.words;
            std::copy_n(picked(live).at, Chunk::size / 64, c.live);
            std::copy_n(rule.at, Chunk::padded, c.rules);
            c.rule = c.rules;
            std::fill(std::begin(c.marks), std::end(c.marks), uint64_t{0});
            for (int i = 0; i < n; ++i)
                c.marks[i / 64] |= live.at[i] ? uint64_t{1} << i % 64 : 0;
            Span s{};
            s.dst = dst, s.plane = plane + 1, s.z = z + 16, s.x = 32 + uint32_t(offset);
            back(s, c);
            for (int i = 0; i < n; ++i) {
                uint32_t src = source.at[i];
                if (form.prescale)
                    src = prescaled(form.blend, src);
                uint32_t expected = blended(form.blend, destination.at[i], src);
                const int value = int(rule.at[i]);
                if (form.soft && rs.ruleThreshold + rs.ruleWidth > value) {
                    const uint32_t w = (uint32_t(value - rs.ruleThreshold) << 8) / uint32_t(rs.ruleWidth);
                    expected = ops::opConstAlpha(destination.at[i], expected, w);
                }
                ASSERT_EQ(dst[i], live.at[i] ? expected : destination.at[i])
                    << "blend " << form.blend << " prescale " << form.prescale << " soft " << form.soft << " wide " << form.wide
                    << " pixel " << i << std::hex << " destination " << destination.at[i] << " source " << source.at[i];
                const bool marked = form.marks != Marks::none && live.at[i];
                const int bit = offset % 16 + i;
                ASSERT_EQ(plane[1 + bit / 16] >> (15 - bit % 16) & 1, marked);
                ASSERT_EQ(z[16 + i], marked && form.marks == Marks::planeZ ? uint8_t(rs.zRef) : 7);
            }
            // What lies around is not written.
            ASSERT_EQ(dst[-1], 0x5A5A5A5Au);
            ASSERT_EQ(dst[n], 0x5A5A5A5Au);
            ASSERT_EQ(plane[0], 0);
            ASSERT_EQ(z[15], 7);
            ASSERT_EQ(z[16 + n], 7);
        };
        forEachSet([&](const InstructionSet &set) {
            const Back back = set.backs[form.wide][form.index()];
            if (!back)
                return;
            ++formsSeen;
            expectBack([&](const Span &span, Chunk &c) { back(span, 0, n, c, set.operators[0][xorWord]); });
        });
        // Where an operator is a host's own each pixel goes by itself, with the same bits.
        rs.blendFunc = ops::operators[xorWord];
        if (const HostBack back = hostBacks[size_t(form.index())])
            expectBack([&](const Span &span, Chunk &c) { back(span, 0, n, c, {}); });
    }

    int formsSeen = 0;
};

TEST_F(RowBacks, AgreeOnRandomPixelsForEveryFormLengthAndPlace)
{
    Words d, s, live, rule;
    rs.zRef = 0x1C4;
    forEachForm([&](const Form &form) {
        if (HasFatalFailure())
            return;
        for (int n = 1; n <= Chunk::size; n += n >= chunk ? 64 : thin == 1 ? 1 : 9) {
            rs.blendAlpha = uint32_t(random()) & 255, rs.prescale = uint32_t(random()) % 257, rs.writeMask = uint32_t(random());
            rs.ruleThreshold = int(random() % 100), rs.ruleWidth = 2 + int(random() % 150);
            for (int i = 0; i < Chunk::padded; ++i) {
                d.at[i] = uint32_t(random()), s.at[i] = uint32_t(random());
                live.at[i] = i < n && random() % 4 ? ~0u : 0;
                rule.at[i] = uint32_t(rs.ruleThreshold) + 1 + uint32_t(random()) % 155; // what the rule lets through
            }
            expectRow(form, d, s, live, rule, n, n % 16);
        }
    });
    EXPECT_GT(formsSeen, 54 * 10);
}

TEST_F(RowBacks, AgreeForFactorsBeyondTheirRange)
{
    Words d, s, live, rule{};
    std::fill(std::begin(live.at), std::end(live.at), ~0u);
    for (uint32_t factor : {256u, 257u, 511u, 0xFFFFu, 0x10000u, 0x10101u, 0x80000000u, 0xFFFFFFFFu, 0x12345678u}) {
        rs.prescale = rs.blendAlpha = factor;
        forEachForm([&](const Form &form) {
            if (!form.wide || form.soft || HasFatalFailure())
                return;
            for (int round = 0; round < 4; ++round) {
                for (int i = 0; i < Chunk::padded; ++i)
                    d.at[i] = uint32_t(random()), s.at[i] = uint32_t(random());
                expectRow(form, d, s, live, rule, chunk);
            }
        });
    }
}

TEST_F(RowBacks, AgreeOverAllPairsOfChannels)
{
    Words d, s, live, expected;
    std::fill(std::begin(live.at), std::end(live.at), ~0u);
    for (int blend : canvas::blends) {
        if (blend == NINEFOLD_BLEND_CUSTOM)
            continue;
        const bool weighs = ops::weighsByAlpha(blend);
        for (uint32_t alpha = 0; alpha < 256; alpha += weighs ? thin : 51) {
            rs.blendAlpha = alpha;
            for (uint32_t k = 0; k < 65536; k += chunk * (thin == 1 ? 1 : 8)) {
                for (uint32_t i = 0; i < uint32_t(chunk); ++i) {
                    d.at[i] = 0x33000000 | (k + i) / 256 * 0x10101, s.at[i] = alpha << 24 | (k + i) % 256 * 0x10101;
                    expected.at[i] = blended(blend, d.at[i], s.at[i]);
                }
                for (const InstructionSet *set : sets) {
                    Words row = d;
                    Chunk c;
                    c.source = s.at;
                    std::copy_n(picked(live).at, Chunk::size / 64, c.live);
                    Span span{};
                    span.dst = row.at;
                    set->backs[0][BackKey{Marks::none, uint8_t(blend), false, false}.index()](span, 0, chunk, c, nullptr);
                    for (int i = 0; i < chunk; ++i)
                        ASSERT_EQ(row.at[i], expected.at[i]) << "blend " << blend << std::hex << " " << d.at[i] << " " << s.at[i];
                }
            }
        }
    }
}

TEST_F(RowBacks, AgreeForEveryPrescaleFactorAndChannel)
{
    Words d, s, live, rule{};
    std::fill(std::begin(live.at), std::end(live.at), ~0u);
    for (int blend : {NINEFOLD_BLEND_COPY, NINEFOLD_BLEND_ALPHA, NINEFOLD_BLEND_ADD, NINEFOLD_BLEND_SUB}) {
        for (uint32_t factor = 0; factor <= 256; factor += thin) {
            rs.prescale = factor;
            for (uint32_t k = 0; k < 256; k += chunk) {
                for (uint32_t i = 0; i < uint32_t(chunk); ++i)
                    d.at[i] = uint32_t(random()), s.at[i] = (k + i) * 0x01010101;
                for (Marks marks : {Marks::none, Marks::plane})
                    if (blend == NINEFOLD_BLEND_COPY || marks == Marks::none)
                        expectRow({true, false, false, blend, marks}, d, s, live, rule, chunk);
            }
        }
    }
}

// Accumulators beyond 24 bits, which no primitive makes: bits 24 and up of green reach red, those of red reach alpha, those of
// blue reach green's fraction and are cut; those of alpha are shifted out.
TEST_F(Lanes, ThePackOfRunningColoursLetsWhatIsAboveTheirRangeLeak)
{
    const auto pack = [](uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
        return ((g & 0xFFFF00FF) | b >> 8) >> 8 | ((((a & 0xFFFF00FF) << 8) | r) & 0xFFFF0000);
    };
    EXPECT_EQ(pack(0x0012FFFF, 0x0034FFFF, 0x0056FFFF, 0x0078FFFF), 0x12345678u);
    EXPECT_EQ(pack(0x00120000, 0x00340000, 0x01560000, 0x00780000), 0x12355678u);
    EXPECT_EQ(pack(0x00100000, 0x01340000, 0x00560000, 0x00780000), 0x11345678u);
    forEachSet([&](const InstructionSet &set) {
        int forms = 0;
        for (Rule rule : {Rule::none, Rule::row, Rule::free}) {
            const FrontKey key{{Motion::free, Reading::gouraud}, rule, Gate::none};
            const Front front = set.fronts[int(Reading::gouraud)][key.index()];
            if (!front)
                continue;
            ++forms;
            const uint32_t open[] = {255};
            rs.ruleThreshold = 1;
            for (int round = 0; round < 200; ++round) {
                Span s{};
                s.rule = {open, 0, 0, 0};
                for (Linear &channel : s.colour)
                    channel = {uint32_t(random()), uint32_t(random())};
                Chunk c;
                ASSERT_TRUE(front(s, 0, chunk, c));
                for (uint32_t i = 0; i < uint32_t(chunk); ++i) {
                    const auto at = [&](int k) { return s.colour[k].start + s.colour[k].step * i; };
                    ASSERT_EQ(c.source[i], pack(at(0), at(1), at(2), at(3)));
                    ASSERT_EQ(c.live[0] >> i & 1, 1u);
                }
            }
        }
        EXPECT_GT(forms, 0);
    });
}

} // namespace
