// The one-hole flush leaf is ours to design; these tests hold it to the
// direction a poker player expects.
#include <gtest/gtest.h>

#include "cards/recalculate.h"
#include "tests/river/river_test_support.h"

namespace felthawk::river_test {
namespace {

constexpr const char* kLeaf = "RiverFlushOneHole";

int OneHoleFlush(const std::string& cells) {
    const RiverRun run = RunRiver(cells);
    EXPECT_EQ(run.stage, kRiverStage) << cells;
    EXPECT_TRUE(run.OutsOf(kLeaf).has_value()) << cells << " did not reach " << kLeaf;
    return run.strength;
}

struct Direction {
    const char* what;
    const char* stronger;  // cells of the hand a player rates higher
    const char* weaker;
};
void PrintTo(const Direction& c, std::ostream* os) {
    *os << c.what;
}

class RiverFlushOneHoleDirection : public testing::TestWithParam<Direction> {};

TEST_P(RiverFlushOneHoleDirection, RatesTheStrongerHandHigher) {
    const Direction& d = GetParam();
    EXPECT_GT(OneHoleFlush(d.stronger), OneHoleFlush(d.weaker)) << d.what;
}

INSTANTIATE_TEST_SUITE_P(
    Directions, RiverFlushOneHoleDirection,
    testing::Values(
        Direction{"the nut flush above king high", "AS,2D,KS,8S,4S,3S,9H", "KS,2D,QS,8S,4S,3S,9H"},
        Direction{"king high above a low flush", "KS,2D,QS,8S,4S,3S,9H", "5S,2D,KS,8S,4S,3S,9H"},
        Direction{"an unpaired board above a paired one", "AS,2D,KS,8S,4S,3S,9H",
                  "AS,2D,KS,8S,4S,3S,3H"},
        Direction{"four of the suit spread out above four within five ranks",
                  "AS,2D,5S,6S,7S,JS,KH", "AS,2D,5S,6S,7S,8S,KH"},
        Direction{"no run on the board above four ranks in a row", "AS,2C,KS,5S,6S,7S,QC",
                  "AS,2C,KS,5S,6S,7S,8C"},
        Direction{"no run on the board above a run from the ace", "KS,7C,AS,3S,4S,9S,QD",
                  "KS,7C,AS,3S,4S,9S,2D"},
        Direction{"a hole card that beats the five-suit board above one that does not",
                  "QS,2D,AS,KS,8S,6S,4S", "2S,3D,AS,KS,8S,6S,4S"}),
    CaseNamer{});

// A card of the suit on the board above ours cannot be out against us: a
// king with the ace on the board is the nut flush.
TEST(RiverFlushOneHole, KingUnderTheBoardsAceIsTheNut) {
    EXPECT_EQ(OneHoleFlush("KS,2D,AS,8S,4S,3S,9H"), OneHoleFlush("AS,2D,KS,8S,4S,3S,9H"));
}

// Both hole cards off the suit and of different suits also end here: the
// board's flush is shared by everyone and rates as low as a hole card that
// does not play.
TEST(RiverFlushOneHole, BoardFlushWithTwoOffSuitCardsIsTheLowestFigure) {
    EXPECT_EQ(OneHoleFlush("2C,3D,AS,KS,8S,6S,4S"), OneHoleFlush("2S,3D,AS,KS,8S,6S,4S"));
    EXPECT_LT(OneHoleFlush("2C,3D,AS,KS,8S,6S,4S"), 5);
}

// The figure climbs with every rank of the hole card on one board.
TEST(RiverFlushOneHole, RisesWithTheRankOfTheHoleCard) {
    int previous = -1;
    for (const char* rank : {"7", "8", "T", "J", "Q", "K", "A"}) {
        const int strength = OneHoleFlush(std::string(rank) + "S,3D,2S,4S,6S,9S,KD");
        EXPECT_GT(strength, previous) << rank;
        previous = strength;
    }
}

// With one hole card the board shows four of the suit, so any one unseen
// card above ours beats us; the same top card with three of the suit on
// the board, where an opponent needs two, stands higher.
TEST(RiverFlushOneHole, FourOfTheSuitOnTheBoardStandsBelowThree) {
    const RiverRun three = RunRiver("AS,5S,KS,8S,2S,9D,3H");
    ASSERT_TRUE(three.OutsOf("RiverFlushTwoHole").has_value());
    EXPECT_GT(three.strength, OneHoleFlush("AS,5D,KS,8S,2S,9S,3H"));
    const RiverRun kingThree = RunRiver("KS,5S,QS,8S,2S,9D,3H");
    EXPECT_GT(kingThree.strength, OneHoleFlush("KS,5D,QS,8S,2S,9S,3H"));
}

}  // namespace
}  // namespace felthawk::river_test
