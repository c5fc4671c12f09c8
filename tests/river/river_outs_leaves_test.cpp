// The river leaves that rate the hand as outs and close over 45 unseen
// cards: every leaf of pair, three of a kind, straight, two pair, the board
// and two-hole flush, and full house.
#include <gtest/gtest.h>

#include "cards/recalculate.h"
#include "tests/river/river_test_support.h"

namespace felthawk::river_test {
namespace {

struct OutsCase {
    const char* what;
    const char* cells;
    const char* leaf;
    double outs;
};
void PrintTo(const OutsCase& c, std::ostream* os) {
    *os << c.what;
}

class RiverOutsLeaf : public testing::TestWithParam<OutsCase> {};

TEST_P(RiverOutsLeaf, SetsItsOutsAndClosesOverFortyFive) {
    const OutsCase& c = GetParam();
    const RiverRun run = RunRiver(c.cells);
    ASSERT_EQ(run.stage, kRiverStage) << c.what;
    const std::optional<double> outs = run.OutsOf(c.leaf);
    ASSERT_TRUE(outs.has_value()) << c.what << ": " << c.leaf << " did not run";
    EXPECT_NEAR(*outs, c.outs, 1e-9) << c.what;
    EXPECT_EQ(run.strength, PercentFromOuts(c.outs)) << c.what;
}

// Seats never enter an outs leaf: the same cards give the same figure with
// seats folded and empty.
TEST_P(RiverOutsLeaf, IgnoresFoldedAndEmptySeats) {
    const OutsCase& c = GetParam();
    EXPECT_EQ(RunRiver(c.cells, "MFFFEEEHHH").strength, RunRiver(c.cells).strength) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Pair, RiverOutsLeaf,
    testing::Values(
        OutsCase{"pocket pair over a quiet board", "QC,QD,9S,7H,2C,4D,JS", "RiverPocketPair", 6.5},
        OutsCase{"pocket pair under one overcard", "TC,TD,9S,7H,2C,4D,JS", "RiverPocketPair", 1.5},
        OutsCase{"pocket pair under two overcards", "8C,8D,9S,KH,2C,5D,3S", "RiverPocketPair", 0.5},
        OutsCase{"pocket pair under three overcards", "5C,5D,9S,KH,2C,7D,JS", "RiverPocketPair",
                 0.0},
        // Four board ranks in five replace the outs, overcards and all.
        OutsCase{"four to a straight on the board", "QC,QD,9S,8H,7C,2D,JS", "RiverPocketPair",
                 0.75},
        OutsCase{"four ranks in six take 1.5 off", "AC,AD,9S,8H,2C,6D,JS", "RiverPocketPair", 5.0},
        OutsCase{"three of a suit cut to 63 in 100", "QC,QD,9S,7S,2S,4D,JH", "RiverPocketPair",
                 6.5 * 63 / 100},
        OutsCase{"four of a suit leave nothing", "QC,QD,9S,7S,2S,4S,JH", "RiverPocketPair", 0.0},
        // The suit step acts on the 0.75 of the straight step.
        OutsCase{"straight picture and three of a suit", "QC,QD,9S,8S,7S,2D,JH", "RiverPocketPair",
                 0.75 * 63 / 100},
        OutsCase{"aces with one hole card, nothing above", "AC,5D,AS,9H,7C,3D,JS", "RiverHolePair",
                 4.75},
        OutsCase{"kings with one hole card", "KC,5D,KS,9H,7C,3D,JS", "RiverHolePair", 3.75},
        OutsCase{"kings under an ace", "KC,5D,KS,9H,7C,3D,AS", "RiverHolePair", 3.75 * 50 / 100},
        OutsCase{"queens", "2C,QD,QS,9H,7C,3D,5S", "RiverHolePair", 3.0},
        OutsCase{"jacks under two overcards", "JC,5D,JS,KH,7C,3D,AS", "RiverHolePair",
                 2.5 * 10 / 100},
        OutsCase{"fives under three overcards", "5C,3D,5S,8H,JC,KD,2S", "RiverHolePair", 0.0},
        // The six-rank straight step takes 1.5 off the 0 of three overcards.
        OutsCase{"nothing left, and a straight picture", "9C,5D,9S,KH,QC,3D,AS", "RiverHolePair",
                 -1.5},
        OutsCase{"tens", "TC,KD,TS,2H,3C,6D,8S", "RiverHolePair", 2.25},
        OutsCase{"three of a suit cut to 55 in 100", "AC,5D,AS,9S,7S,3D,JH", "RiverHolePair",
                 4.75 * 55 / 100}),
    CaseNamer{});

INSTANTIATE_TEST_SUITE_P(
    ThreeOfAKind, RiverOutsLeaf,
    testing::Values(
        OutsCase{"set, no straight picture, no suit", "7C,7D,7H,KS,2D,9C,4H", "RiverSet", 27.0},
        OutsCase{"set under four in a row", "7C,7D,7H,8S,9D,TC,2H", "RiverSet", 0.25},
        OutsCase{"set of aces under four in a row", "AC,AD,AH,8S,9D,TC,JH", "RiverSet", 2.75},
        OutsCase{"set, four ranks in five", "7C,7D,7H,8S,9D,JC,2H", "RiverSet", 3.25},
        OutsCase{"set, four ranks in six, a board card above", "7C,7D,7H,8S,9D,QC,2H", "RiverSet",
                 19.0},
        OutsCase{"set, four ranks in six, nothing above", "QC,QD,QH,7S,8D,JC,2H", "RiverSet", 16.0},
        OutsCase{"set on four of one suit", "7C,7D,7H,KH,2H,9H,4D", "RiverSet", 0.2},
        OutsCase{"trips with one hole card", "7C,2D,7H,7S,KD,9C,4H", "RiverTripsOneHole", 24.0},
        OutsCase{"trips on a two-two-one suit board", "7C,2D,7H,7S,KH,9S,4D", "RiverTripsOneHole",
                 21.0},
        OutsCase{"trips, three single board ranks in four", "7C,2D,7H,7S,9H,TD,JC",
                 "RiverTripsOneHole", 17.0},
        OutsCase{"trips, three of a suit cap the figure", "7C,2D,7H,7S,KH,9H,4D",
                 "RiverTripsOneHole", 11.5},
        OutsCase{"trips on four of one suit", "7C,2D,7H,7S,KS,9S,4S", "RiverTripsOneHole", 0.25}),
    CaseNamer{});

INSTANTIATE_TEST_SUITE_P(
    Straight, RiverOutsLeaf,
    testing::Values(
        OutsCase{"broadway on the board", "2C,3D,TS,JD,QH,KC,AS", "RiverStraightBoard", 45.0},
        OutsCase{"a straight on the board", "2C,3D,9S,TD,JH,QC,KS", "RiverStraightBoard", 2.75},
        OutsCase{"a hole card one above the board's straight", "AD,3C,9S,TD,JH,QC,KS",
                 "RiverStraightBoard", 30.0},
        OutsCase{"the board's straight with three of a suit", "2C,3D,9S,TS,JS,QC,KH",
                 "RiverStraightBoard", 2.75 * 63 / 100},
        OutsCase{"one hole card at the low end", "8C,2D,9S,TD,JH,QC,3S", "RiverStraightOneHole",
                 2.5},
        OutsCase{"a pocket pair one above the four", "KC,KD,9S,TD,JH,QC,3S", "RiverStraightOneHole",
                 30.0},
        OutsCase{"one hole card, span opening at 9", "AC,2D,TS,JD,QH,KC,3S", "RiverStraightOneHole",
                 45.0},
        OutsCase{"one hole card, a loose board card below", "QC,2D,8S,9D,TH,JC,3S",
                 "RiverStraightOneHole", 23.0},
        OutsCase{"one hole card, a loose board card above", "QC,2D,8S,9D,TH,JC,AS",
                 "RiverStraightOneHole", 30.0},
        OutsCase{"one hole card, four of a suit on the board", "QC,2D,8S,9S,TS,JS,3H",
                 "RiverStraightOneHole", 0.0},
        // The same two cards in the other slots read differently.
        OutsCase{"two hole cards, slot 1 at the bottom", "9C,8D,TS,JD,QH,2C,3S",
                 "RiverStraightTwoHole", 23.0},
        OutsCase{"two hole cards, slot 0 at the bottom", "8C,9D,TS,JD,QH,2C,3S",
                 "RiverStraightTwoHole", 45.0},
        OutsCase{"two hole cards, slot 1 at the bottom, gap above", "QC,8D,9S,TD,JH,2C,3S",
                 "RiverStraightTwoHole", 30.0},
        OutsCase{"two hole cards, 9 and 10 under the board", "TC,9D,JS,QD,KH,2C,3S",
                 "RiverStraightTwoHole", 30.0},
        OutsCase{"two hole cards, a paired board", "8C,9D,TS,JD,QH,QC,3S", "RiverStraightTwoHole",
                 45.0 * 0.77},
        OutsCase{"two hole cards, a paired board and three of a suit", "8C,9D,TS,JS,QH,QC,3S",
                 "RiverStraightTwoHole", 45.0 * 0.77 - 3.0}),
    CaseNamer{});

INSTANTIATE_TEST_SUITE_P(
    TwoPair, RiverOutsLeaf,
    testing::Values(
        OutsCase{"pocket aces over a board pair", "AC,AD,KS,KD,5H,3C,8S", "RiverTwoPairPocket",
                 8.0},
        OutsCase{"pocket pair under the board pair", "8C,8D,KS,KD,5H,3C,2S", "RiverTwoPairPocket",
                 4.0 + 2.5},
        OutsCase{"pocket pair, one higher rank", "9C,9D,5S,5D,TH,3C,2S", "RiverTwoPairPocket", 1.0},
        OutsCase{"pocket pair, two higher ranks", "9C,9D,5S,5D,TH,JC,2S", "RiverTwoPairPocket",
                 0.25},
        OutsCase{"pocket pair, three higher ranks", "9C,9D,5S,5D,TH,JC,QS", "RiverTwoPairPocket",
                 0.0},
        OutsCase{"pocket pair, four ranks in five", "AC,AD,9S,9D,TH,JC,QS", "RiverTwoPairPocket",
                 0.5},
        OutsCase{"pocket pair, three of a suit", "AC,AD,KS,KD,5S,3S,8H", "RiverTwoPairPocket",
                 8.0 * 85 / 100},
        OutsCase{"both hole cards, no picture", "KC,9D,KS,9H,2C,5D,7S", "RiverTwoPairBothHole",
                 9.5},
        OutsCase{"both hole cards, three of a suit", "KC,9D,KS,9S,2S,5D,7H", "RiverTwoPairBothHole",
                 9.5 * 0.63},
        // The running count hits 4 after the first two four-rank spans.
        OutsCase{"both hole cards, running count of 4", "4C,3D,4S,3H,9C,KD,QS",
                 "RiverTwoPairBothHole", 0.25},
        OutsCase{"both hole cards, four of a suit", "KC,9D,KS,9S,2S,5S,7H", "RiverTwoPairBothHole",
                 0.0},
        OutsCase{"one hole card in the higher pair", "KC,4D,KS,9H,9C,2D,7S", "RiverTwoPairOneHole",
                 5.0},
        OutsCase{"one hole card in the lower pair", "9C,4D,KS,9H,KC,2D,7S", "RiverTwoPairOneHole",
                 1.5},
        OutsCase{"one hole card in the top pair of aces", "4D,AC,AS,9H,9C,2D,7S",
                 "RiverTwoPairOneHole", 6.0},
        OutsCase{"one hole card, three of a suit", "KC,4D,KS,9S,9C,2S,7H", "RiverTwoPairOneHole",
                 2.5},
        OutsCase{"one hole card, four ranks in a row", "KC,4D,KS,TH,TC,JD,QS",
                 "RiverTwoPairOneHole", 0.2},
        OutsCase{"one hole card, four ranks in five", "KC,4D,KS,9H,9C,TD,QS", "RiverTwoPairOneHole",
                 0.5},
        OutsCase{"both pairs on the board", "AC,4D,KS,KH,9C,9D,2S", "RiverTwoPairBoard", 0.0},
        // Of three pairs the highest and the lowest count; the 9s are lost,
        // so both hole cards are in the pairs kept. The running count of the
        // four-rank spans reaches 4 at the span 4..7.
        OutsCase{"three pairs, hole cards in the outer two", "KC,5D,KS,5H,9C,9D,2S",
                 "RiverTwoPairBothHole", 0.25}),
    CaseNamer{});

INSTANTIATE_TEST_SUITE_P(
    Flush, RiverOutsLeaf,
    testing::Values(
        OutsCase{"two hole cards with the ace", "AS,5S,KS,8S,2S,9D,3H", "RiverFlushTwoHole", 45.0},
        OutsCase{"two hole cards, king high", "5S,KS,QS,8S,2S,9D,3H", "RiverFlushTwoHole", 32.5},
        OutsCase{"two hole cards, ten high", "TS,5S,QD,8S,2S,9S,3H", "RiverFlushTwoHole", 25.0},
        OutsCase{"two hole cards, low", "7S,5S,QD,8S,2S,JS,3H", "RiverFlushTwoHole", 22.5},
        OutsCase{"two hole cards, a board pair changes nothing", "AS,5S,KS,8S,2S,8D,3H",
                 "RiverFlushTwoHole", 45.0},
        OutsCase{"two hole cards, three of a kind on the board", "AS,5S,9S,9D,9H,2S,3S",
                 "RiverFlushTwoHole", 0.25},
        OutsCase{"two hole cards, four of the suit spread", "AS,5S,KS,8S,2S,9S,3H",
                 "RiverFlushTwoHole", 1.0},
        OutsCase{"two hole cards, four of the suit close", "AS,5S,7S,8S,9S,2S,3H",
                 "RiverFlushTwoHole", 3.0},
        OutsCase{"board flush, closest run tops at the ace", "2C,3C,9S,TS,JS,QS,AS",
                 "RiverFlushBoard", 8.5},
        OutsCase{"board flush, no five in six", "2C,3C,4S,7S,9S,JS,KS", "RiverFlushBoard", 0.5},
        OutsCase{"board flush, five in six topped by the king", "2C,3C,8S,9S,TS,QS,KS",
                 "RiverFlushBoard", 8.5}),
    CaseNamer{});

INSTANTIATE_TEST_SUITE_P(
    FullHouse, RiverOutsLeaf,
    testing::Values(
        OutsCase{"pocket pair under board trips", "5C,5D,9C,9D,9H,2S,3H", "RiverFullHousePocket",
                 9.5},
        OutsCase{"pocket pair over board trips, a board pair", "KC,KD,9C,9D,9H,2S,2H",
                 "RiverFullHousePocket", 14.5},
        OutsCase{"pocket pair over trips, both kickers above", "5C,5D,4C,4D,4H,KS,QH",
                 "RiverFullHousePocket", 0.25},
        OutsCase{"pocket pair over trips and the kickers", "KC,KD,9C,9D,9H,2S,3H",
                 "RiverFullHousePocket", 14.5},
        OutsCase{"low pocket pair over trips and the kickers", "6C,6D,4C,4D,4H,2S,3H",
                 "RiverFullHousePocket", 9.25},
        OutsCase{"pocket pair over trips under a board pair", "9C,9D,4C,4D,4H,KS,KH",
                 "RiverFullHousePocket", 4.25},
        OutsCase{"pocket pair between the kickers", "8C,8D,4C,4D,4H,KS,2H", "RiverFullHousePocket",
                 2.25},
        OutsCase{"pocket pair under trips, a kicker above", "5C,5D,9C,9D,9H,KS,7H",
                 "RiverFullHousePocket", 0.4},
        OutsCase{"pocket pair under trips, board pair below it", "5C,5D,9C,9D,9H,3S,3H",
                 "RiverFullHousePocket", 8.1},
        OutsCase{"pocket pair under trips, board pair between", "5C,5D,9C,9D,9H,7S,7H",
                 "RiverFullHousePocket", 11.0},
        OutsCase{"set, both places below", "AS,AD,AH,KS,KD,2C,7H", "RiverFullHouseSet", 28.0},
        OutsCase{"set, a second board pair above", "7S,7D,7H,KS,KD,QC,QH", "RiverFullHouseSet",
                 2.5},
        OutsCase{"set, a second board pair below", "9S,9D,9H,KS,KD,2C,2H", "RiverFullHouseSet",
                 8.25},
        OutsCase{"set, both places above", "5S,5D,5H,KS,KD,QC,JH", "RiverFullHouseSet", 25.5},
        OutsCase{"set, places around it, three of a suit", "9S,9D,9H,KS,KD,QS,2S",
                 "RiverFullHouseSet", 24.5},
        OutsCase{"two hole cards, kickers below both", "9C,KD,9H,9S,KS,2C,3D",
                 "RiverFullHouseTwoHole", 45.0},
        OutsCase{"two hole cards, a board pair below both", "9C,KD,9H,9S,KS,2C,2D",
                 "RiverFullHouseTwoHole", 37.0},
        OutsCase{"two hole cards, a board pair above one", "9C,KD,9H,9S,KS,TC,TD",
                 "RiverFullHouseTwoHole", 7.0},
        OutsCase{"two hole cards, kickers between", "9C,KD,9H,9S,KS,TC,JD", "RiverFullHouseTwoHole",
                 34.5},
        OutsCase{"two hole cards, one kicker above both", "9C,KD,9H,9S,KS,AC,2D",
                 "RiverFullHouseTwoHole", 31.5},
        OutsCase{"two hole cards, both kickers above", "4C,9D,4H,4S,9S,AC,KD",
                 "RiverFullHouseTwoHole", 30.0},
        OutsCase{"two hole cards, three of a suit in three ranks", "9C,KD,9H,9S,KS,TS,JS",
                 "RiverFullHouseTwoHole", 34.5 - 1.0},
        OutsCase{"board trips below the board pair", "2C,3D,9H,9S,9D,KS,KD", "RiverFullHouseBoard",
                 3.5},
        OutsCase{"board trips above the board pair", "2C,3D,KH,KS,KD,9S,9D", "RiverFullHouseBoard",
                 15.5},
        OutsCase{"board trips of aces", "2C,3D,AH,AS,AD,9S,9D", "RiverFullHouseBoard", 8.0}),
    CaseNamer{});

// The one-hole leaf asks slot 1 for the pair and slot 0 for the trips, so
// the same two cards read differently when they change slots.
INSTANTIATE_TEST_SUITE_P(
    FullHouseOneHoleSlots, RiverOutsLeaf,
    testing::Values(
        OutsCase{"trips card in slot 0", "9C,4D,9H,9S,KS,KD,2C", "RiverFullHouseOneHole", 8.0},
        OutsCase{"trips card in slot 1", "4D,9C,9H,9S,KS,KD,2C", "RiverFullHouseOneHole", 17.0},
        OutsCase{"pair card in slot 1", "4D,KC,9H,9S,9D,KS,2C", "RiverFullHouseOneHole", 8.0},
        OutsCase{"pair card in slot 0", "KC,4D,9H,9S,9D,KS,2C", "RiverFullHouseOneHole", 17.0},
        OutsCase{"trips above the pair, trips card in slot 0", "KC,4D,KH,KS,9S,9D,2C",
                 "RiverFullHouseOneHole", 34.0},
        OutsCase{"trips above the pair, trips card in slot 1", "4D,KC,KH,KS,9S,9D,2C",
                 "RiverFullHouseOneHole", 10.5},
        OutsCase{"trips below a kicker, low pair", "QD,9C,9H,9S,5S,5D,KC", "RiverFullHouseOneHole",
                 1.75}),
    CaseNamer{});

}  // namespace
}  // namespace felthawk::river_test
