// The choice of the instruction set.
#include "kernels/parts.h"
#include "kernels/sets.h"
#include "support/furnished.h"

#include <gtest/gtest.h>

using namespace ninefold;

namespace {

const ActiveSets atStart = activeSets; // before anything of the library was called

bool operator==(const ActiveSets &a, const ActiveSets &b) { return a.any == b.any && a.upTo8 == b.upTo8 && a.upTo4 == b.upTo4; }

TEST(InstructionSet, StartsAtTheLowest)
{
    ASSERT_TRUE(useSet(0));
    EXPECT_TRUE(atStart == activeSets);
}

TEST(InstructionSet, MakingTheTableRaisesItToTheBestOfTheMachine)
{
    ASSERT_TRUE(useSet(0));
    MakeDrawFuncTable();
    const ActiveSets best = activeSets;
    ASSERT_TRUE(useSet(usableSets() - 1));
    EXPECT_TRUE(activeSets == best);
}

TEST(InstructionSet, OneThatTheMachineLacksIsRefusedAndChangesNothing)
{
    MakeDrawFuncTable();
    const ActiveSets before = activeSets;
    EXPECT_FALSE(useSet(-1));
    EXPECT_FALSE(useSet(usableSets()));
    EXPECT_FALSE(useSet(setCount));
    EXPECT_TRUE(activeSets == before);
    EXPECT_GE(usableSets(), 1);
    EXPECT_LE(usableSets(), setCount);
}

TEST(InstructionSet, EachHasPartsOfItsOwnAndAName)
{
    std::set<const InstructionSet *> sets;
    for (int set = 0; set < usableSets(); ++set) {
        ASSERT_TRUE(useSet(set));
        sets.insert(activeSets.any);
        EXPECT_STRNE(setNames[set], "");
    }
    EXPECT_EQ(sets.size(), size_t(usableSets()));
}

TEST(InstructionSet, ShortRowsNeverTakeAHigherOne)
{
    for (int set = 0; set < usableSets(); ++set) {
        ASSERT_TRUE(useSet(set));
        EXPECT_LE(activeSets.upTo8->lanes, activeSets.any->lanes);
        EXPECT_LE(activeSets.upTo4->lanes, activeSets.upTo8->lanes);
    }
}

class SetChoice : public canvas::Canvas {};

TEST_F(SetChoice, AKernelThatIsKeptDrawsWithTheSetInForce)
{
    // The kernel itself does not depend on the set: one pointer serves all.
    const DrawFunc before = SearchDrawFunc(0x40769), copy = SearchDrawFunc(0x369);
    for (int set = 0; set < ninefold::usableSets(); ++set) {
        ASSERT_TRUE(useSet(set));
        EXPECT_EQ(SearchDrawFunc(0x369), copy);
        EXPECT_EQ(SearchDrawFunc(0x40769), before);
    }
    rs.tex0 = index(64, 32);
    corners(0, 0, 64, 32);
    draw({});
    EXPECT_EQ(at(63, 31), canvas::idAt(63, 31));
}

} // namespace
