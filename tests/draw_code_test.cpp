// Draw codes, the catalogue and the look-up.
#include "support/furnished.h"

#include "core/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <unordered_set>

using namespace ninefold;
using canvas::thin;

namespace {

constexpr uint32_t lineDefault = 0xDC0368, rectDefault = 0x369, triangleDefault = 0x1C036A;

// The catalogue once more, a line for each family of shapes and filters.
enum class Pairs { all, withoutPlane, planeOnly };

struct Family {
    int shape;
    std::vector<int> filters, rectOpts, multis, rules, prescales, perses;
    Pairs pairs;
    size_t records;
};

const std::vector<int> anyMulti = {0, 1, 2, 3}, onlyNone = {3}, both = {0, 1}, off = {0};

const Family families[] = {
    {0, {6, 7}, {7}, onlyNone, off, both, off, Pairs::all, 192},
    {1, {0}, {0, 1, 2, 3}, anyMulti, both, both, off, Pairs::all, 3072},
    {1, {0}, {5}, anyMulti, both, both, off, Pairs::withoutPlane, 736},
    {1, {0}, {6}, anyMulti, both, both, off, Pairs::planeOnly, 32},
    {1, {1, 8}, {0, 1, 2, 3}, anyMulti, both, both, off, Pairs::all, 6144},
    {1, {2, 3, 4, 5}, {1, 2, 3}, anyMulti, both, both, off, Pairs::all, 9216},
    {1, {6, 7}, {7}, onlyNone, both, both, off, Pairs::all, 384},
    {2, {0, 1, 2, 3, 4, 5, 8}, {7}, anyMulti, both, both, both, Pairs::all, 10752},
    {2, {6, 7}, {7}, onlyNone, both, off, both, Pairs::all, 384},
};

bool pairOf(int shahei, int blend, Pairs pairs)
{
    if (blend == 3 || blend > 12 || shahei > 5)
        return false;
    const bool plane = marksPlane(shahei), zTest = testsPriority(shahei);
    if ((plane && blend != NINEFOLD_BLEND_COPY) || (zTest && blend == NINEFOLD_BLEND_COPY))
        return false;
    return pairs == Pairs::all || plane == (pairs == Pairs::planeOnly);
}

struct Combination {
    int shape, pers, rule, prescale, filter, rectOpt, shahei, blend, multi;
    uint32_t code() const
    {
        return uint32_t(pers << 27 | rule << 26 | prescale << 25 | filter << 21 | rectOpt << 18 | shahei << 15 | blend << 10 |
                        multi << 8 | 0x68 | shape);
    }
};

std::vector<Combination> combinationsOf(const Family &f)
{
    std::vector<Combination> all;
    for (int pers : f.perses)
        for (int rule : f.rules)
            for (int prescale : f.prescales)
                for (int filter : f.filters)
                    for (int rectOpt : f.rectOpts)
                        for (int shahei = 0; shahei < 8; ++shahei)
                            for (int blend = 0; blend < 32; ++blend)
                                for (int multi : f.multis)
                                    if (pairOf(shahei, blend, f.pairs))
                                        all.push_back({f.shape, pers, rule, prescale, filter, rectOpt, shahei, blend, multi});
    return all;
}

const std::vector<Combination> &catalogue()
{
    static const std::vector<Combination> all = [] {
        std::vector<Combination> list;
        for (const Family &f : families)
            for (const Combination &c : combinationsOf(f))
                list.push_back(c);
        return list;
    }();
    return all;
}

const std::unordered_set<uint32_t> &codes()
{
    static const std::unordered_set<uint32_t> set = [] {
        std::unordered_set<uint32_t> s;
        for (const Combination &c : catalogue())
            s.insert(c.code());
        return s;
    }();
    return set;
}

// CRC-32/BZIP2 bit by bit over the four bytes of a code, least significant first.
uint32_t crc(uint32_t code)
{
    uint32_t value = 0xFFFFFFFF;
    for (int bit = 0; bit < 32; ++bit) {
        const uint32_t in = code >> (bit / 8 * 8 + 7 - bit % 8) & 1;
        value = value << 1 ^ ((value >> 31 ^ in) ? 0x04C11DB7u : 0u);
    }
    return ~value;
}

TEST(DrawCode, EachAxisHasItsField)
{
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, 0, 0, 1), 0x69u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, 0, 3, 1), 0x369u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, 12, 0, 1), 0x3069u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 5, 0, 0, 1), 0x28069u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 6, 0, 0, 0, 1), 0x180069u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 8, 0, 0, 0, 0, 1), 0x1000069u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 1, 0, 0, 0, 0, 0, 1), 0x2000069u);
    EXPECT_EQ(CreateDrawCodeSub(0, 1, 0, 0, 0, 0, 0, 0, 1), 0x4000069u);
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 0, 0, 0, 0, 0, 2), 0x81C006Au); // triangles: rect option 7
}

TEST(DrawCode, RectanglesHaveNoPerspective) { EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 0, 3, 0, 0, 3, 1), 0xC0369u); }

TEST(DrawCode, ColourRectanglesHaveNeitherRectOptionNorMulti)
{
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 6, 2, 0, 0, 0, 1), 0xDC0369u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 7, 2, 0, 0, 0, 1), 0xFC0369u);
    // Filters next to them keep what they are given.
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 5, 2, 0, 0, 0, 1), 0xA80069u);
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 8, 2, 0, 0, 0, 1), 0x1080069u);
}

TEST(DrawCode, ColourTrianglesHaveNeitherMultiNorPerspective)
{
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 6, 2, 0, 0, 0, 2), 0xDC036Au);
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 7, 2, 0, 0, 1, 2), 0xFC036Au);
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 0, 2, 0, 0, 1, 2), 0x81C016Au);
}

TEST(DrawCode, LinesHaveRectOptionSevenNoMultiNoPerspective)
{
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 0, 0, 0, 0, 0, 0), 0x1C0368u);
    // Rule, prescale, Shahei and blend are left as they are, also where no line has them.
    EXPECT_EQ(CreateDrawCodeSub(1, 1, 1, 7, 3, 5, 9, 1, 0), 0x6FEA768u);
}

TEST(DrawCode, ShapesAboveTwoKeepRectOptionAndMultiButNoPerspective)
{
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 0, 2, 0, 0, 1, 3), 0x8016Bu);
    EXPECT_EQ(CreateDrawCodeSub(1, 0, 0, 6, 2, 0, 0, 1, 3), 0xC8036Bu); // filters 6, 7 drop multi for any shape
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 2, 0, 0, 1, 0x104), 0x8016Cu | 0x100u);
}

TEST(DrawCode, ValuesTooWideSpillIntoTheFieldToTheLeft)
{
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, 0, 7, 1), 0x769u); // multi 4 is blend 1
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, 33, 3, 1), 0x8769u); // blend 32 is Shahei 1
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 8, 0, 3, 1), 0x40369u); // Shahei 8 is rect option 1
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 9, 0, 0, 3, 1), 0x240369u); // rect option 8 is filter 1
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 16, 0, 0, 0, 3, 1), 0x2000369u); // filter 16 is prescale
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 2, 0, 0, 0, 0, 3, 1), 0x4000369u); // prescale 2 is rule
    EXPECT_EQ(CreateDrawCodeSub(0, 2, 0, 0, 0, 0, 0, 3, 1), 0x8000369u); // rule 2 is pers
    EXPECT_EQ(CreateDrawCodeSub(2, 0, 0, 0, 0, 0, 0, 3, 2), 0x101C036Au); // pers 2 is bit 28
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, -1, 3, 1), 0xFFFFFF69u); // a negative blend fills all above
    EXPECT_EQ(CreateDrawCodeSub(0, 0, 0, 0, 0, 0, 0, -1, 1), 0xFFFFFF69u);
}

TEST(DrawCode, OnlyTheLow32BitsOfArgumentsCount)
{
    if (sizeof(long) == 4)
        GTEST_SKIP() << "long has 32 bits here";
    const auto high = [](long value) { return static_cast<long>(static_cast<unsigned long>(value) + (0x5A5Aul << 16 << 16)); };
    EXPECT_EQ(CreateDrawCodeSub(high(1), high(1), high(0), high(6), high(2), high(4), high(5), high(0), high(1)), 0x4DE1769u);
    MakeDrawFuncTable();
    EXPECT_EQ(SearchDrawFunc(static_cast<unsigned long>(high(0x40769))), SearchDrawFunc(0x40769));
}

TEST(DrawCode, ComesFromTheModeFields)
{
    rs = RenderState{};
    EXPECT_EQ(CreateDrawCode(), 0x1C0368u); // all modes 0
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE);
    SetRectOptMode(NINEFOLD_RECT_STRETCH);
    SetMultiMode(NINEFOLD_MULTI_NONE);
    SetBlendMode(NINEFOLD_BLEND_ALPHA);
    EXPECT_EQ(CreateDrawCode(), 0x40769u);
    SetShapeMode(NINEFOLD_SHAPE_TRIANGLE);
    SetPersMode(NINEFOLD_PERS_ON);
    SetRuleAlphaMode(NINEFOLD_RULE_ON);
    SetPrescaleMode(NINEFOLD_PRESCALE_ON);
    SetFilterMode(NINEFOLD_FILTER_MIP_BILINEAR);
    SetShaheiMode(NINEFOLD_SHAHEI_PRIORITY);
    SetMultiMode(NINEFOLD_MULTI_COLOUR);
    SetBlendMode(NINEFOLD_BLEND_MERGE);
    EXPECT_EQ(CreateDrawCode(), 0xEBDAE6Au);
    rs = RenderState{};
}

TEST(DrawCode, NeitherBanksNorOperatorsArePartOfIt)
{
    rs = RenderState{};
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE);
    const unsigned long code = CreateDrawCode();
    SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL);
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED);
    EXPECT_EQ(CreateDrawCode(), code);
    SetBlendMode(NINEFOLD_BLEND_LUMA_SRC);
    const unsigned long custom = CreateDrawCode();
    SetBlendMode(NINEFOLD_BLEND_DST);
    EXPECT_EQ(CreateDrawCode(), custom);
    rs = RenderState{};
}

TEST(Catalogue, EveryFamilyHasItsRecords)
{
    for (const Family &f : families)
        EXPECT_EQ(combinationsOf(f).size(), f.records) << "shape " << f.shape << " filter " << f.filters[0];
    EXPECT_EQ(catalogue().size(), 30912u);
    EXPECT_EQ(codes().size(), 30912u) << "codes are unique";
}

TEST(Catalogue, TotalsByAxisValue)
{
    using Counts = std::map<int, int>;
    const auto count = [](int Combination::*axis) {
        Counts counts;
        forEachCombination([&](const Axes &a) {
            const Combination c{a.shape, a.pers, a.rule, a.prescale, a.filter, a.rectOpt, a.shahei, a.blend, a.multi};
            ++counts[c.*axis];
        });
        return counts;
    };
    EXPECT_EQ(count(&Combination::shape), (Counts{{0, 192}, {1, 19584}, {2, 11136}}));
    EXPECT_EQ(count(&Combination::filter),
              (Counts{{0, 5376}, {1, 4608}, {2, 3840}, {3, 3840}, {4, 3840}, {5, 3840}, {6, 480}, {7, 480}, {8, 4608}}));
    EXPECT_EQ(count(&Combination::rectOpt), (Counts{{0, 2304}, {1, 5376}, {2, 5376}, {3, 5376}, {5, 736}, {6, 32}, {7, 11712}}));
    EXPECT_EQ(count(&Combination::shahei), (Counts{{0, 7728}, {4, 7728}, {1, 644}, {2, 644}, {3, 7084}, {5, 7084}}));
    Counts blends;
    for (int blend : canvas::blends)
        blends[blend] = 2576;
    EXPECT_EQ(count(&Combination::blend), blends);
    EXPECT_EQ(count(&Combination::multi), (Counts{{0, 7488}, {1, 7488}, {2, 7488}, {3, 8448}}));
    EXPECT_EQ(count(&Combination::rule), (Counts{{0, 15552}, {1, 15360}}));
    EXPECT_EQ(count(&Combination::prescale), (Counts{{0, 15648}, {1, 15264}}));
    EXPECT_EQ(count(&Combination::pers), (Counts{{0, 25344}, {1, 5568}}));
}

TEST(Catalogue, StandsInTableOrder)
{
    const auto rank = [](const auto &order, uint8_t value) {
        return std::find(std::begin(order), std::end(order), int(value)) - std::begin(order);
    };
    static constexpr int shapes[] = {2, 1, 0}, filters[] = {0, 8, 1, 3, 4, 2, 5, 6, 7}, rectOpts[] = {0, 5, 6, 1, 2, 3, 7},
                         shaheis[] = {0, 4, 1, 2, 3, 5};
    const auto rankOf = [&](uint32_t code) {
        const Axes a = axesOf(code);
        return std::array<ptrdiff_t, 9>{
            rank(shapes, a.shape),   a.pers,  a.rule, a.prescale, rank(filters, a.filter), rank(rectOpts, a.rectOpt),
            rank(shaheis, a.shahei), a.blend, a.multi};
    };
    const auto all = makeCodes();
    for (size_t k = 1; k < all.size(); ++k)
        ASSERT_LT(rankOf(all[k - 1]), rankOf(all[k])) << k;
    EXPECT_EQ(std::unordered_set<uint32_t>(all.begin(), all.end()), codes());
}

// Each axis value of the catalogue has a word, and the list has no others.
template <size_t values, size_t words>
void expectWords(const uint8_t (&axis)[values], const Word (&list)[words])
{
    EXPECT_EQ(values, words);
    std::set<std::string> seen;
    for (const Word &word : list)
        EXPECT_TRUE(seen.insert(word.text).second) << word.text;
    for (uint8_t value : axis)
        EXPECT_EQ(std::count_if(std::begin(list), std::end(list), [&](const Word &w) { return w.value == value; }), 1) << +value;
}

TEST(Catalogue, TheListsOfTheInterfaceNameEveryValueOnce)
{
#define WORD(name, value, word, meaning) {value, word},
    expectWords(axis::shapes, {NINEFOLD_SHAPES(WORD)});
    expectWords(axis::perspectives, {NINEFOLD_PERSPECTIVES(WORD)});
    expectWords(axis::rules, {NINEFOLD_RULES(WORD)});
    expectWords(axis::prescales, {NINEFOLD_PRESCALES(WORD)});
    expectWords(axis::filters, {NINEFOLD_FILTERS(WORD)});
    expectWords(axis::rectOpts, {NINEFOLD_RECT_OPTS(WORD)});
    expectWords(axis::shaheis, {NINEFOLD_SHAHEIS(WORD)});
    expectWords(axis::blends, {NINEFOLD_BLENDS(WORD)});
    expectWords(axis::multis, {NINEFOLD_MULTIS(WORD)});
#undef WORD
}

TEST(Catalogue, NamesAreUniqueAndKnown)
{
    std::set<std::string> names;
    forEachCombination([&](const Axes &a) { names.insert(nameOf(a)); });
    EXPECT_EQ(names.size(), recordCount);
    EXPECT_EQ(nameOf(axesOf(lineDefault)), "line.flat.copy");
    EXPECT_EQ(nameOf(axesOf(rectDefault)), "rect.unit.point.copy");
    EXPECT_EQ(nameOf(axesOf(triangleDefault)), "tri.point.copy");
    EXPECT_EQ(nameOf(axesOf(0x258769)), "rect.stretch.bilinear.alpha.z");
    EXPECT_EQ(nameOf(axesOf(0xFDA768)), "line.gouraud.screen.z");
    EXPECT_EQ(nameOf(axesOf(0x188369)), "rect.planeruns.point.copy.plane");
    EXPECT_EQ(nameOf(axesOf(0xEBDAE6A)), "tri.mipbilinear.merge.z.colour.pers.rule.prescale");
    EXPECT_EQ(nameOf({1, 0, 1, 1, 1, 1, 5, 1, 0}), "rect.stretch.bilinear.alpha.z+mask.tex1.rule.prescale");
}

TEST(Catalogue, HashesAreThoseOfTheCrcAndFillTheBucketsAsKnown)
{
    EXPECT_EQ(crc(0x1C006A), 0x99CCBD1Bu);
    for (uint32_t byte = 0; byte < 256; ++byte) {
        // An entry is the remainder of one byte from an empty register.
        uint32_t entry = byte << 24;
        for (int bit = 0; bit < 8; ++bit)
            entry = entry & 0x80000000 ? (entry << 1) ^ 0x04C11DB7 : entry << 1;
        EXPECT_EQ(crcEntry(byte), entry);
    }
    std::map<uint32_t, int> buckets;
    for (uint32_t code : codes())
        ++buckets[crc(code) & 0x7FFF];
    std::map<int, int> chains;
    for (const auto &[bucket, length] : buckets)
        ++chains[length];
    EXPECT_EQ(buckets.size(), 20250u);
    EXPECT_EQ(chains, (std::map<int, int>{{1, 12212}, {2, 5840}, {3, 1788}, {4, 394}, {5, 16}}));
}

class LookUp : public testing::Test {
protected:
    void SetUp() override { MakeDrawFuncTable(); }
};

// Where a kernel is called too: whichever the look-up gives, it can draw.
class LookUpAndDraw : public canvas::Furnished {};

TEST_F(LookUp, EveryCodeOfTheCatalogueIsFoundAndNoOther)
{
    const DrawFunc defaults[] = {SearchDrawFunc(lineDefault), SearchDrawFunc(rectDefault), SearchDrawFunc(triangleDefault)};
    ASSERT_NE(defaults[0], nullptr);
    ASSERT_NE(defaults[1], nullptr);
    ASSERT_NE(defaults[2], nullptr);
    const std::set<uint32_t> defaultCodes{lineDefault, rectDefault, triangleDefault};
    size_t found = 0;
    // All values that fit their fields.
    for (uint32_t high = 0; high < 0x100000; ++high) {
        for (uint32_t shape = 0; shape < 3; ++shape) {
            const uint32_t code = high << 8 | 0x68 | shape;
            const bool exists = codes().contains(code);
            if (!exists && high % thin)
                continue;
            const DrawFunc func = SearchDrawFunc(code);
            ASSERT_EQ(func != defaults[shape], exists && !defaultCodes.contains(code)) << std::hex << code;
            found += exists;
        }
    }
    EXPECT_EQ(found, 30912u);
}

TEST_F(LookUpAndDraw, PerLineMipFormsOutsideLineTablesAreOneFunction)
{
    std::set<DrawFunc> functions;
    size_t records = 0;
    for (const Combination &c : catalogue()) {
        if ((c.filter == NINEFOLD_FILTER_LINE_POINT || c.filter == NINEFOLD_FILTER_LINE_BILINEAR) &&
            c.rectOpt != NINEFOLD_RECT_TABLE) {
            functions.insert(SearchDrawFunc(c.code()));
            ++records;
        }
    }
    EXPECT_EQ(records, 6144u);
    ASSERT_EQ(functions.size(), 1u);
    const DrawFunc nothing = *functions.begin();
    ASSERT_NE(nothing, nullptr);
    for (int shape : {NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_SHAPE_TRIANGLE}) {
        placeLargely(shape);
        const State before = state();
        nothing();
        ASSERT_TRUE(state() == before) << "shape " << shape;
    }
    // It returns at once, whatever rs holds.
    rs = RenderState{};
    nothing();
}

TEST_F(LookUp, ColourTrianglesHaveOneFunctionForBothPerspectives)
{
    size_t records = 0;
    for (const Combination &c : catalogue()) {
        if (c.shape == NINEFOLD_SHAPE_TRIANGLE && c.pers == NINEFOLD_PERS_ON && (hasColoursOnly(c.filter))) {
            Combination affine = c;
            affine.pers = NINEFOLD_PERS_OFF;
            EXPECT_EQ(SearchDrawFunc(c.code()), SearchDrawFunc(affine.code())) << std::hex << c.code();
            ++records;
        }
    }
    EXPECT_EQ(records, 192u);
}

TEST_F(LookUp, DistinctFunctionsAreAtMostAsManyAsTheTableNames)
{
    std::unordered_set<DrawFunc> functions;
    for (uint32_t code : codes())
        functions.insert(SearchDrawFunc(code));
    EXPECT_LE(functions.size(), 24468u);
    EXPECT_GT(functions.size(), 18000u) << "combinations that draw differently cannot share so much";
}

TEST_F(LookUp, KernelsExportedByNameStandUnderTheirCodes)
{
    EXPECT_EQ(SearchDrawFunc(0x188369), &DrawRectTexRunlen_TEST);
    EXPECT_EQ(SearchDrawFunc(0xFDA768), &DrawLineTest);
    EXPECT_EQ(SearchDrawFunc(0x81C036A), &DrawPolygon_PERS_TEST);
}

TEST_F(LookUp, AMissGivesTheDefaultOfItsShape)
{
    EXPECT_EQ(SearchDrawFunc(0x1C0368), SearchDrawFunc(lineDefault)); // a textured line
    EXPECT_EQ(SearchDrawFunc(0x1C0369), SearchDrawFunc(rectDefault)); // a textured rectangle of rect option 7
    EXPECT_EQ(SearchDrawFunc(0x1C0F6A), SearchDrawFunc(triangleDefault)); // blend 3
    // The two lowest bits alone decide.
    EXPECT_EQ(SearchDrawFunc(0xFFFFFFFC), SearchDrawFunc(lineDefault));
    EXPECT_EQ(SearchDrawFunc(0xFFFFFFFD), SearchDrawFunc(rectDefault));
    EXPECT_EQ(SearchDrawFunc(0xFFFFFFFE), SearchDrawFunc(triangleDefault));
    EXPECT_EQ(SearchDrawFunc(0x1), SearchDrawFunc(rectDefault));
}

TEST_F(LookUp, CodeZeroIsAMissLikeAnyOtherOnceSomethingWasFound)
{
    ASSERT_NE(SearchDrawFunc(rectDefault), nullptr);
    EXPECT_EQ(SearchDrawFunc(0), SearchDrawFunc(lineDefault));
}

TEST_F(LookUp, ABlendThatDoesNotExistDropsEveryOtherAxis)
{
    rs = RenderState{};
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE);
    SetFilterMode(NINEFOLD_FILTER_BILINEAR);
    SetRectOptMode(NINEFOLD_RECT_TABLE);
    SetShaheiMode(NINEFOLD_SHAHEI_STIPPLE);
    SetMultiMode(NINEFOLD_MULTI_COLOUR);
    SetRuleAlphaMode(NINEFOLD_RULE_ON);
    SetPrescaleMode(NINEFOLD_PRESCALE_ON);
    for (long blend : {3l, -1l}) {
        SetBlendMode(blend);
        EXPECT_EQ(SearchDrawFunc(CreateDrawCode()), SearchDrawFunc(rectDefault)) << blend;
    }
    rs = RenderState{};
}

TEST_F(LookUpAndDraw, ABlendThatDoesNotExistDrawsAsTheUnitCopy)
{
    Texture *const source = texture(8, 1, [](uint32_t x, uint32_t) { return x == 2 ? 0 : 0x80000000 | x; });
    for (uint32_t x = 0; x < 8; ++x)
        frame->pixels[x] = 0x11223344;
    corners(0, 0, 8, 1);
    rs.tex0 = source;
    rs.uv0[0] = {};
    rs.uv0[1] = {0x20000, 0}; // a stretch would read this
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE);
    SetRectOptMode(NINEFOLD_RECT_STRETCH);
    SetPrescaleMode(NINEFOLD_PRESCALE_ON);
    SetBlendMode(3);
    const DrawFunc copy = SearchDrawFunc(CreateDrawCode());
    ASSERT_NE(copy, nullptr);
    copy();
    for (uint32_t x = 0; x < 8; ++x)
        EXPECT_EQ(frame->pixels[x], x == 2 ? 0x11223344 : 0x80000000 | x) << x;
}

TEST_F(LookUp, LowBitsThreeGiveNullAndLeaveTheCache)
{
    const DrawFunc copy = SearchDrawFunc(rectDefault);
    EXPECT_EQ(SearchDrawFunc(0x6B), nullptr);
    EXPECT_EQ(SearchDrawFunc(0xFFFFFFFF), nullptr);
    EXPECT_EQ(SearchDrawFunc(0x36B), nullptr);
    EXPECT_EQ(SearchDrawFunc(rectDefault), copy);
}

TEST_F(LookUp, HitMissAndTheFirstHitAgain)
{
    const DrawFunc stretch = SearchDrawFunc(0x40369), copy = SearchDrawFunc(rectDefault);
    ASSERT_NE(stretch, copy);
    EXPECT_EQ(SearchDrawFunc(0x40369), stretch);
    for (int repeat = 0; repeat < 3; ++repeat)
        EXPECT_EQ(SearchDrawFunc(0x100369), copy); // rect option 4: what is cached is the default, not the code asked for
    EXPECT_EQ(SearchDrawFunc(0x40369), stretch);
    EXPECT_EQ(SearchDrawFunc(0x40369), stretch);
    // A miss of another shape while a default is cached.
    EXPECT_EQ(SearchDrawFunc(0x100369), copy);
    EXPECT_EQ(SearchDrawFunc(0x10036A), SearchDrawFunc(triangleDefault));
    EXPECT_EQ(SearchDrawFunc(0x100369), copy);
}

TEST_F(LookUp, MakingTheTableAgainChangesNothing)
{
    std::vector<DrawFunc> before;
    for (const Combination &c : catalogue())
        before.push_back(SearchDrawFunc(c.code()));
    MakeDrawFuncTable();
    MakeDrawFuncTable();
    for (size_t k = 0; k < before.size(); ++k)
        ASSERT_EQ(SearchDrawFunc(catalogue()[k].code()), before[k]) << std::hex << catalogue()[k].code();
}

} // namespace
