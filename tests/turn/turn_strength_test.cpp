// The turn cascade through the real driver: hand-picked tables reach every
// branch and leaf, and the trace shows which leaf decided, with its outs and
// the N of its rule. Figures were worked out by hand from the rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "cards/recalculate.h"
#include "turn/turn_common.h"

namespace felthawk {
namespace {

constexpr const char* kAllIn = "MHHHHHHHHH";

struct TurnRun {
    DisplayModel display;
    std::vector<std::string> trace;
};

// Six comma-separated card texts into the board's cells; the river stays empty.
TurnRun RunTurn(const std::string& cards, const std::string& seats) {
    TextCells cells;
    std::istringstream in(cards);
    std::string card;
    for (std::size_t i = 0; std::getline(in, card, ','); ++i) cells.at(i) = card;
    CalcState state;
    state.trace.enabled = true;
    for (int seat = 0; seat < kSeatCount; ++seat) state.gSeats[seat] = seats.at(seat);
    TurnRun run{RecalculateHand(state, cells), state.trace.Lines()};
    return run;
}

bool HasLineStartingWith(const std::vector<std::string>& lines, const std::string& prefix) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.rfind(prefix, 0) == 0; });
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += "\n  " + line;
    return text;
}

struct LeafCase {
    const char* label;
    const char* cards;
    const char* line;  // the trace line the deciding leaf writes (a prefix)
    int strength;
};

void PrintTo(const LeafCase& c, std::ostream* out) {
    *out << c.label << " " << c.cards;
}

class TurnLeaf : public testing::TestWithParam<LeafCase> {};

TEST_P(TurnLeaf, ReachesItsLeafWithItsFigure) {
    const LeafCase& c = GetParam();
    const TurnRun run = RunTurn(c.cards, kAllIn);
    ASSERT_EQ(run.display.stage, kTurnStage);
    EXPECT_TRUE(HasLineStartingWith(run.trace, c.line))
        << "expected a line starting with \"" << c.line << "\" in" << Joined(run.trace);
    EXPECT_EQ(run.display.strength, c.strength) << Joined(run.trace);
    EXPECT_EQ(run.display.me, std::to_string(c.strength) + " %");
}

std::string CaseName(const testing::TestParamInfo<LeafCase>& info) {
    return info.param.label;
}

const LeafCase kStraightFlushCases[] = {
    {"HoleAtTop", "TS,KD,6S,7S,8S,9S", "TurnStraightFlush: fixed 100", 100},
    {"HoleAtNeitherEnd", "9S,8S,5S,6S,7S,2D", "TurnStraightFlush: fixed 100", 100},
    {"FootNothingAbove", "5S,6S,7S,8S,9S,KD", "TurnStraightFlush: fixed 98", 98},
    {"FootCardAbove", "5S,6S,7S,8S,9S,JD", "TurnStraightFlush: fixed 60", 60},
    {"FootSixInARow", "5S,6S,7S,8S,9S,TS", "TurnStraightFlush: fixed 59", 59},
    // The search leaves no run bounds for the royal flush: nothing is set.
    {"RoyalTenAtFoot", "TS,9D,JS,QS,KS,AS", "TurnStraightFlush: run width 0", 0},
};
INSTANTIATE_TEST_SUITE_P(StraightFlush, TurnLeaf, testing::ValuesIn(kStraightFlushCases), CaseName);

const LeafCase kFourOfAKindCases[] = {
    {"BoardQuadsAceKicker", "AH,2C,KS,KH,KD,KC", "TurnFourOfAKind: fixed 100", 100},
    {"BoardQuadsQueenKicker", "QH,2C,KS,KH,KD,KC", "TurnFourOfAKind: outs 2.25, N 46 (Sum)", 10},
    {"BoardQuadsKingKicker", "KH,2C,QS,QH,QD,QC", "TurnFourOfAKind: outs 4.25, N 46 (Sum)", 18},
    {"OneHoleCard", "KS,2C,KH,KD,KC,5S", "TurnFourOfAKind: fixed 100", 100},
    {"PocketSuitedSpread2", "7C,7D,7S,7H,8S,9S", "TurnFourOfAKind: outs 32, N 46 (Sum)", 91},
    {"PocketSuitedSpread3", "7C,7D,7S,7H,8S,TS", "TurnFourOfAKind: outs 35, N 46 (Sum)", 95},
    {"PocketSuitedSpread4", "7C,7D,7S,7H,9S,JS", "TurnFourOfAKind: outs 37, N 46 (Sum)", 97},
    {"PocketSuitedSpread5", "7C,7D,7S,7H,8S,QS", "TurnFourOfAKind: fixed 100", 100},
    {"PocketNoSuitedThree", "7C,7D,7S,7H,8S,9H", "TurnFourOfAKind: fixed 100", 100},
};
INSTANTIATE_TEST_SUITE_P(FourOfAKind, TurnLeaf, testing::ValuesIn(kFourOfAKindCases), CaseName);

const LeafCase kFullHouseCases[] = {
    {"BoardTripsAcesOverKings", "KC,KD,AS,AH,AD,3C", "TurnFullHouseBoardTrips: outs 0, N 46", 0},
    {"BoardTripsKickerBetween", "9C,9D,5S,5H,5D,7C", "TurnFullHouseBoardTrips: outs 1.25,", 5},
    {"BoardTripsKickerBelow", "9C,9D,5S,5H,5D,2C", "TurnFullHouseBoardTrips: outs 7.5,", 30},
    {"BoardTripsKickerAbovePair", "9C,9D,5S,5H,5D,KC", "TurnFullHouseBoardTrips: outs 2.5,", 11},
    {"BoardTripsFarAbovePair", "4C,4D,9S,9H,9D,KC", "TurnFullHouseBoardTrips: outs 1.5,", 6},
    {"BoardTripsNearAbovePair", "7C,7D,9S,9H,9D,KC", "TurnFullHouseBoardTrips: outs 1.1,", 5},
    {"SetPairBelowKickerAbove", "8C,8D,8S,5H,5D,KC", "TurnFullHouseSet: outs 30, N 46 (Sum)", 88},
    {"SetOfTens", "TC,TD,TS,5H,5D,KC", "TurnFullHouseSet: outs 24,", 78},
    {"SetHighAllBelow", "QC,QD,QS,5H,5D,2C", "TurnFullHouseSet: outs 36,", 96},
    {"SetLowPairAbove", "3C,3D,3S,KH,KD,2C", "TurnFullHouseSet: outs 24.5,", 79},
    {"TwoHoleKickerAbove", "8C,5D,8S,8H,5H,KC", "TurnFullHouseTwoHole: outs 29.5, N 46 (Larger)",
     88},
    {"TwoHoleAceHeld", "AC,5D,AS,AH,5H,3C", "TurnFullHouseTwoHole: outs 40,", 99},
    {"TwoHoleTensKickerBelow", "TC,5D,TS,TH,5H,3C", "TurnFullHouseTwoHole: outs 0,", 0},
    {"TwoHoleTensKickerAbove", "TC,5D,TS,TH,5H,KC", "TurnFullHouseTwoHole: outs 0,", 0},
    {"OneHoleEights", "8C,2D,8S,8H,5H,5D", "TurnFullHouseOneHole: outs 34, N 46 (Larger)", 94},
    {"OneHoleTens", "TC,2D,TS,TH,5H,5D", "TurnFullHouseOneHole: outs 0,", 0},
    {"OneHoleJacks", "JC,2D,JS,JH,5H,5D", "TurnFullHouseOneHole: outs 35,", 95},
    {"OneHolePairAbove", "8C,2D,8S,8H,KH,KD", "TurnFullHouseOneHole: outs 9.25,", 37},
    {"NoShapeFits", "9C,2D,5S,5H,5D,9H", "TurnFullHouse: no shape fits", 0},
};
INSTANTIATE_TEST_SUITE_P(FullHouse, TurnLeaf, testing::ValuesIn(kFullHouseCases), CaseName);

const LeafCase kFlushCases[] = {
    {"TwoHolePlain", "AH,7H,2H,9H,KH,4C", "TurnFlushTwoHole: outs 18, N 46 (Larger)", 63},
    {"TwoHoleNearStraightFlush", "9H,8H,5H,6H,4H,2C", "TurnFlushTwoHole: outs 20,", 69},
    {"TwoHolePairedSevenFirst", "QH,7H,2H,9H,KH,QC", "TurnFlushTwoHole: outs 12,", 46},
    {"TwoHolePairedQueenJack", "QH,JH,2H,9H,KH,QC", "TurnFlushTwoHole: outs 12.5,", 47},
    {"AllSuitedTenThreeBelow", "TH,2H,3H,5H,7H,QH", "TurnFlushAllSuited: outs 0,", 0},
    {"AllSuitedTenFourBelow", "TH,2H,3H,5H,7H,9H", "TurnFlushAllSuited: outs 2.75,", 12},
    {"AllSuitedTenTwoBelow", "TH,2H,3H,5H,JH,QH", "TurnFlushAllSuited: outs 5.25,", 22},
    {"AllSuitedEightSpread", "8H,2H,3H,4H,6H,7H", "TurnFlushAllSuited: outs 1.5,", 6},
    {"AllSuitedNineThreeBelow", "9H,2H,3H,5H,7H,JH", "TurnFlushAllSuited: outs 3.75,", 16},
    {"AllSuitedJackTwoMiddle", "JH,2H,3H,5H,7H,9H", "TurnFlushAllSuited: outs 4.25,", 18},
    {"AllSuitedJackHighFlop", "JH,2H,KH,QH,3H,4H", "TurnFlushAllSuited: outs 16.5,", 59},
    {"AllSuitedQueenKingAbove", "QH,2H,3H,5H,7H,KH", "TurnFlushAllSuited: outs 16.5,", 59},
    {"AllSuitedQueenAceOverLowBoard", "QH,7H,3H,4H,5H,AH", "TurnFlushAllSuited: outs 8.5,", 34},
    {"AllSuitedKingFourLow", "KH,2H,3H,4H,5H,8H", "TurnFlushAllSuited: outs 8.5,", 34},
    {"AllSuitedAceLoose", "AH,2H,4H,7H,9H,JH", "TurnFlushAllSuited: outs 30,", 88},
    {"AllSuitedKingThreeMiddle", "KH,2H,4H,7H,9H,JH", "TurnFlushAllSuited: outs 34.5,", 94},
    {"OneHoleAce", "AH,2C,3H,6H,9H,JH", "TurnFlushOneHole: outs 32, N 46 (Larger)", 91},
    {"OneHoleKingNotAtW", "KH,2C,3H,5H,9H,JH", "TurnFlushOneHole: outs 24.5,", 79},
    {"OneHoleNineOneHigh", "9H,2C,3H,4H,5H,JH", "TurnFlushOneHole: outs 3.7,", 16},
    {"OneHoleEightAllHigh", "8H,2C,9H,TH,QH,KH", "TurnFlushOneHole: outs 8.5,", 34},
    {"OneHoleQueenTwoHigh", "QH,2C,3H,5H,9H,JH", "TurnFlushOneHole: outs 34,", 94},
    {"OneHoleSevenTwoHigh", "7H,2C,3H,5H,9H,JH", "TurnFlushOneHole: outs 2,", 9},
    {"OneHoleTenLowBoard", "TH,2C,3H,4H,5H,7H", "TurnFlushOneHole: outs 2.5,", 11},
    {"OneHoleSixHighBoard", "6H,2C,7H,9H,JH,KH", "TurnFlushOneHole: outs 1.25,", 5},
    {"OneHoleSixConnected", "6H,2C,7H,8H,9H,KH", "TurnFlushOneHole: outs 2,", 9},
};
INSTANTIATE_TEST_SUITE_P(Flush, TurnLeaf, testing::ValuesIn(kFlushCases), CaseName);

const LeafCase kStraightCases[] = {
    {"BottomBoardBelow", "5C,6D,7S,8H,9C,2D", "TurnStraightBottom: outs 15, N 46 (Fixed 46)", 55},
    {"BottomFourAbove", "5C,6D,7S,8H,9C,TD", "TurnStraightBottom: outs 2.5,", 11},
    {"BottomFourAboveFromNine", "9C,TD,JS,QH,KC,AD", "TurnStraightBottom: outs 33,", 92},
    // Three of the board's suit and one hole card of it: slot 0 tells
    // whether that card is the lower or the higher hole card.
    {"BottomEightSuitedLower", "8S,9C,TS,JS,QS,KH", "TurnStraightBottom: outs 3.5,", 15},
    {"BottomEightSuitedHigher", "8C,9S,TS,JS,QS,KH", "TurnStraightBottom: outs 4.25,", 18},
    {"BottomEightSuitedHigherSwapped", "9S,8C,TS,JS,QS,KH", "TurnStraightBottom: outs 4.25,", 18},
    {"BottomEightSuitedLowerSwapped", "9C,8S,TS,JS,QS,KH", "TurnStraightBottom: outs 3.5,", 15},
    {"BottomNineSuitedLower", "9S,TC,JS,QS,KS,AH", "TurnStraightBottom: outs 16,", 58},
    {"BottomNineSuitedHigher", "TS,9C,JS,QS,KS,AH", "TurnStraightBottom: outs 18.5,", 65},
    {"BottomGapSuited", "5C,6C,7C,8C,9H,QD", "TurnStraightBottom: outs 6,", 25},
    {"BottomPlainHoleOffBoard", "5D,6D,7S,8S,9C,KH", "TurnStraightBottom: outs 13.5,", 51},
    {"TopRainbow", "9C,2D,5S,6H,7C,8D", "TurnStraightTop: outs 32, N 46 (Fixed 46)", 91},
    {"TopSuitedThreeNine", "9S,2C,5S,6S,7S,8D", "TurnStraightTop: outs 14.25,", 53},
    {"TopSuitedThreeTen", "TS,2C,6S,7S,8S,9D", "TurnStraightTop: outs 0,", 0},
    {"TopSuitedThreeJack", "JS,2C,7S,8S,9S,TD", "TurnStraightTop: outs 16,", 58},
    {"HoleCardInside", "7C,2D,5S,6H,8C,9D", "TurnStraight: no hole card", 0},
    {"WheelWithPair", "AC,2D,3S,4H,5C,5D", "TurnStraight: no hole card", 0},
};
INSTANTIATE_TEST_SUITE_P(Straight, TurnLeaf, testing::ValuesIn(kStraightCases), CaseName);

const LeafCase kThreeOfAKindCases[] = {
    {"Set", "7C,7D,7S,2H,9C,KD", "TurnSet: outs 26.5, N 46 (Fixed 46)", 83},
    {"TripsRainbow", "7C,AD,7S,7H,2C,KD", "TurnTripsBoardPair: outs 14, N 45 (Fixed 45)", 53},
    {"TripsConnectedHighCard", "TC,2D,TS,TH,JC,QD", "TurnTripsBoardPair: outs 9,", 36},
    {"TripsConnectedLowCard", "7C,2D,7S,7H,8C,9D", "TurnTripsBoardPair: outs 11,", 43},
    {"TripsSuitedThree", "7C,2D,7S,7H,9S,KS", "TurnTripsBoardPair: outs 9.5,", 38},
    {"BoardTripsKickerBelow", "AC,KD,7S,7H,7D,2C", "TurnBoardTrips: outs 2.75, N 45", 12},
    {"BoardTripsKickerJustAbove", "AC,KD,7S,7H,7D,8C", "TurnBoardTrips: outs 0.25,", 1},
};
INSTANTIATE_TEST_SUITE_P(ThreeOfAKind, TurnLeaf, testing::ValuesIn(kThreeOfAKindCases), CaseName);

const LeafCase kTwoPairCases[] = {
    {"BothOnBoard", "AC,2D,7S,7H,9C,9D", "TurnTwoPairBoard: outs 1, N 46 (Larger)", 4},
    {"PocketOneSingleAbove", "5C,5D,9S,9H,2C,KD", "TurnTwoPairPocket: outs 1.24,", 5},
    {"PocketNoSingleAbove", "5C,5D,9S,9H,2C,3D", "TurnTwoPairPocket: outs 4.5,", 19},
    {"PocketTwoSinglesAbove", "5C,5D,9S,9H,JC,KD", "TurnTwoPairPocket: outs 1,", 4},
    {"PocketAboveBoardPair", "9C,9D,5S,5H,2C,KD", "TurnTwoPairPocket: outs 0,", 0},
    // Three pairs: a pocket pair below the highest plays as the low pair.
    {"PocketMiddleOfThree", "5S,5H,9H,3D,9C,3H", "TurnTwoPairPocket: outs 4.5,", 19},
    {"PocketTensMiddleOfThree", "TS,TD,JH,6D,6C,JD", "TurnTwoPairPocket: outs 4.5,", 19},
    {"PocketLowestOfThree", "3S,3H,9H,5D,9C,5H", "TurnTwoPairPocket: outs 4.5,", 19},
    {"PocketHighestOfThree", "JS,JD,TH,6D,6C,TC", "TurnTwoPairPocket: outs 0,", 0},
    {"PocketInsideRun", "5C,5D,7S,7H,4C,6D", "TurnTwoPairPocket: outs 4,", 17},
    {"PocketRunAboveSuited", "5C,5D,6S,6H,4S,7S", "TurnTwoPairPocket: outs 3,", 13},
    {"HoleLowPair", "KC,7D,KS,7H,2C,9D", "TurnTwoPairHole: outs 12, N 45 (Fixed 45)", 47},
    {"HoleTensTwoSuited", "TC,AD,TS,AS,2C,5D", "TurnTwoPairHole: outs 11.96,", 47},
    {"HoleThirdPair", "9C,5D,9S,5H,2C,2D", "TurnTwoPairHole: outs 4.2,", 18},
};
INSTANTIATE_TEST_SUITE_P(TwoPair, TurnLeaf, testing::ValuesIn(kTwoPairCases), CaseName);

const LeafCase kPairCases[] = {
    {"PocketSixes", "6C,6D,2S,9H,JD,KC", "TurnPair: outs 1.25, N 46 (Larger)", 5},
    {"PocketAces", "AC,AD,2S,7H,9D,KC", "TurnPair: outs 6.75,", 27},
    {"PocketKingsUnderAce", "KC,KD,AS,2H,7D,9C", "TurnPair: outs 2.25,", 10},
    {"PocketFoursDraw", "4C,4D,6S,7H,8D,9C", "TurnPair: outs 3.25,", 14},
    {"PocketTwosDraw", "2C,2D,6S,7H,8D,9C", "TurnPair: outs 2.75,", 12},
    {"HolePairedFlushDraw", "AH,7H,7S,2H,9H,KC", "TurnPair: outs 10.25,", 40},
    {"BoardPairedFlushDraw", "AH,7H,9S,9C,2H,KH", "TurnPair: outs 5.75,", 24},
    {"OffsuitHole", "AH,7C,7S,2H,9H,KC", "TurnPair: outs 0.25,", 1},
    {"NothingMade", "AC,7D,2S,9H,JD,KC", "TurnNoPair: outs 0, N 46 (Larger)", 0},
    {"NoPairFlushDraw", "AH,7H,2H,9H,JD,KC", "TurnNoPair: outs 4,", 17},
    {"NoPairGapDraw", "5C,6D,8S,9H,2D,KC", "TurnNoPair: outs 1,", 4},
    {"NoPairGapDrawCardAbove", "5C,6D,8S,9H,TD,KC", "TurnNoPair: outs 2,", 9},
};
INSTANTIATE_TEST_SUITE_P(Pair, TurnLeaf, testing::ValuesIn(kPairCases), CaseName);

// A read past the ace ends the stage; the driver goes on with the strength
// as it stood, 0.
struct FaultCase {
    const char* label;
    const char* cards;
};

TEST(TurnFault, ReadPastTheAceEndsTheStageAtZero) {
    const FaultCase cases[] = {
        {"straight from ten, hole cards at its foot", "TC,JD,QS,KH,AC,2D"},
        {"no pair, ten to ace with the jack missing", "TC,QD,KS,AH,3C,5D"},
    };
    for (const FaultCase& c : cases) {
        SCOPED_TRACE(c.label);
        const TurnRun run = RunTurn(c.cards, kAllIn);
        EXPECT_EQ(run.display.stage, kTurnStage);
        EXPECT_TRUE(HasLineStartingWith(run.trace, "fault: ")) << Joined(run.trace);
        EXPECT_EQ(run.display.me, "0 %");
        EXPECT_FALSE(HasLineStartingWith(run.trace, "TurnStraightBottom: outs"));
        EXPECT_FALSE(HasLineStartingWith(run.trace, "TurnNoPair: outs"));
    }
}

// Seats that are out thin the field under Larger and Sum, and leave Fixed 46
// and Fixed 45 alone. Larger takes the bigger of the two counts, Sum both.
struct SeatRuleCase {
    const char* rule;
    const char* cards;
    std::array<int, 5> strengths;  // for the seat rows below, in order
};

TEST(TurnSeats, EachRuleCountsTheSeatsItsOwnWay) {
    const std::array<const char*, 5> seatRows = {
        "MHHHHHHHHH",  // everyone in
        "MFFFHHHHHH",  // three folded
        "MFFFEEHHHH",  // three folded, two empty
        "MEEEEEHHHH",  // five empty
        "MFFFFFEEEE",  // the user alone
    };
    const SeatRuleCase cases[] = {
        {"Larger", "AC,AD,2S,7H,9D,KC", {27, 29, 29, 31, 31}},
        {"Larger, pocket pair in the middle", "TS,TD,JH,6D,6C,JD", {19, 20, 20, 21, 21}},
        {"Sum", "KH,2C,QS,QH,QD,QC", {18, 19, 20, 20, 22}},
        {"Fixed 46", "7C,7D,7S,2H,9C,KD", {83, 83, 83, 83, 83}},
        {"Fixed 45", "TC,2D,TS,TH,JC,QD", {36, 36, 36, 36, 36}},
    };
    for (const SeatRuleCase& c : cases) {
        for (std::size_t row = 0; row < seatRows.size(); ++row) {
            SCOPED_TRACE(std::string(c.rule) + " with seats " + seatRows[row]);
            const TurnRun run = RunTurn(c.cards, seatRows[row]);
            EXPECT_EQ(run.display.strength, c.strengths[row]) << Joined(run.trace);
            EXPECT_TRUE(HasLineStartingWith(run.trace, "Turn")) << Joined(run.trace);
        }
    }
}

TEST(TurnSeats, UnseenCardsFollowTheRule) {
    struct Row {
        int folded;
        int empty;
        UnseenRule rule;
        int unseen;
    };
    const Row rows[] = {
        {0, 0, UnseenRule::kLarger, 46},  {3, 2, UnseenRule::kLarger, 43},
        {2, 5, UnseenRule::kLarger, 41},  {0, 0, UnseenRule::kSum, 46},
        {3, 2, UnseenRule::kSum, 41},     {5, 4, UnseenRule::kSum, 37},
        {5, 4, UnseenRule::kFixed46, 46}, {5, 4, UnseenRule::kFixed45, 45},
    };
    for (const Row& row : rows) {
        CalcState state;
        state.gFoldedCount = static_cast<int16_t>(row.folded);
        state.gEmptyCount = static_cast<int16_t>(row.empty);
        EXPECT_EQ(UnseenCards(state, row.rule), row.unseen)
            << row.folded << " folded, " << row.empty << " empty";
    }
}

}  // namespace
}  // namespace felthawk
