// The choice of the instruction set.
#include "kernels/parts.h"
#include "support/furnished.h"

#include <gtest/gtest.h>

using namespace ninefold;

namespace {

const SetTable *const atStart = activeSet; // before anything of the library was called

TEST(InstructionSet, StartsAtTheBaseline) { EXPECT_EQ(atStart, &v1::set); }

TEST(InstructionSet, MakingTheTableRaisesItToTheBestOfTheMachine)
{
    ASSERT_TRUE(useSet(0));
    EXPECT_EQ(activeSet, &v1::set);
    MakeDrawFuncTable();
    const SetTable *best = activeSet;
    ASSERT_TRUE(useSet(bestSet()));
    EXPECT_EQ(activeSet, best);
}

TEST(InstructionSet, OneThatTheMachineLacksIsRefusedAndChangesNothing)
{
    MakeDrawFuncTable();
    const SetTable *before = activeSet;
    EXPECT_FALSE(useSet(-1));
    EXPECT_FALSE(useSet(bestSet() + 1));
    EXPECT_FALSE(useSet(setCount));
    EXPECT_EQ(activeSet, before);
    EXPECT_GE(bestSet(), 0);
    EXPECT_LT(bestSet(), setCount);
}

TEST(InstructionSet, EachHasATableOfItsOwnAndAName)
{
    std::set<const SetTable *> tables;
    for (int set = 0; set <= bestSet(); ++set) {
        ASSERT_TRUE(useSet(set));
        tables.insert(activeSet);
        EXPECT_STRNE(setNames[set], "");
    }
    EXPECT_EQ(tables.size(), size_t(bestSet()) + 1);
    useSet(bestSet());
}

class SetChoice : public canvas::Canvas {};

TEST_F(SetChoice, AKernelThatIsKeptDrawsWithTheSetInForce)
{
    // The kernel itself does not depend on the set: one pointer serves all.
    const DrawFunc before = SearchDrawFunc(0x40769);
    for (int set = 0; set < setsHere(); ++set) {
        ASSERT_TRUE(useSet(set));
        EXPECT_EQ(SearchDrawFunc(0x369), SearchDrawFunc(0x369));
        EXPECT_EQ(SearchDrawFunc(0x40769), before);
    }
    rs.tex0 = index(64, 32);
    corners(0, 0, 64, 32);
    draw({});
    EXPECT_EQ(at(63, 31), canvas::idAt(63, 31));
}

} // namespace
