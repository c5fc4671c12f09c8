// The flop strength through the real driver: the hand search decides which
// class is made, the cascade rates it. Each table is picked to reach one
// branch and leaf; the figures come from the outs worked out by hand in the
// comments.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cards/recalculate.h"

namespace felthawk {
namespace {

constexpr int kNoClass = -1;
constexpr const char* kAllIn = "MHHHHHHHHH";

struct FlopCase {
    const char* name;
    const char* cards;  // five cards, hole first: "QC 7H QS 9H 3D"
    const char* seats;
    int made;          // the gOdds cell the search must call "Current"
    const char* leaf;  // the leaf the trace must name
    int strength;
};

std::ostream& operator<<(std::ostream& out, const FlopCase& c) {
    return out << c.name;
}

struct FlopRun {
    DisplayModel display;
    std::vector<std::string> trace;
    std::vector<std::string> messages;
};

FlopRun RunFlop(const std::string& cards, const std::string& seats) {
    CalcState state;
    FlopRun run;
    state.trace.enabled = true;
    state.showMessage = [&](const std::string& text) { run.messages.push_back(text); };
    for (int seat = 0; seat < kSeatCount; ++seat) state.gSeats[seat] = seats.at(seat);
    TextCells cells;
    std::istringstream words(cards);
    for (std::string& cell : cells) {
        if (!(words >> cell)) break;
    }
    run.display = RecalculateHand(state, cells);
    run.trace = state.trace.Lines();
    return run;
}

bool TraceNames(const FlopRun& run, const std::string& leaf) {
    return std::any_of(run.trace.begin(), run.trace.end(),
                       [&](const std::string& line) { return line.rfind(leaf + ":", 0) == 0; });
}

class FlopFigure : public testing::TestWithParam<FlopCase> {};

TEST_P(FlopFigure, ReachesItsLeafAndFigure) {
    const FlopCase& c = GetParam();
    const FlopRun run = RunFlop(c.cards, c.seats);
    ASSERT_EQ(run.display.stage, kFlopStage);
    // The best made class decides the branch: that cell and none above it.
    for (int cell = kHandClassCount - 1; cell >= 0; --cell) {
        const bool current = run.display.chances[cell] == kCurrent;
        if (cell > c.made) {
            EXPECT_FALSE(current) << "cell " << cell;
        } else if (cell == c.made) {
            EXPECT_TRUE(current) << "cell " << cell;
        }
    }
    EXPECT_TRUE(TraceNames(run, c.leaf)) << testing::PrintToString(run.trace);
    ASSERT_TRUE(run.display.hasStrength);
    EXPECT_EQ(run.display.strength, c.strength);
    EXPECT_EQ(run.display.me, std::to_string(c.strength) + " %");
}

std::string CaseName(const testing::TestParamInfo<FlopCase>& info) {
    return info.param.name;
}

// Fixed figures: a hole card at the foot of the run loses four points.
const FlopCase kFixedCases[] = {
    {"RoyalWithHoleTen", "TS JS QS KS AS", kAllIn, kStraightFlush, "FlopStraightFlush", 96},
    {"RoyalWithAceKing", "AS KS TS JS QS", kAllIn, kStraightFlush, "FlopStraightFlush", 100},
    {"WheelWithFive", "5H 4H AH 2H 3H", kAllIn, kStraightFlush, "FlopStraightFlush", 100},
    {"WheelWithAce", "AH 2H 3H 4H 5H", kAllIn, kStraightFlush, "FlopStraightFlush", 96},
    {"FootOfRun", "5C 6C 7C 8C 9C", kAllIn, kStraightFlush, "FlopStraightFlush", 96},
    {"TopOfRun", "9C 8C 5C 6C 7C", kAllIn, kStraightFlush, "FlopStraightFlush", 100},
    {"QuadsKickerInHoleSuit", "AS AH AD AC KS", kAllIn, kFourOfAKind, "FlopFourOfAKind", 100},
    {"QuadsCloseOffsuitKicker", "9S 9H 9D 9C JC", kAllIn, kFourOfAKind, "FlopFourOfAKind", 99},
    {"QuadsFarKicker", "9S 9H 9D 9C 2C", kAllIn, kFourOfAKind, "FlopFourOfAKind", 100},
    {"QuadsOneHoleCard", "AS KD AH AD AC", kAllIn, kFourOfAKind, "FlopFourOfAKind", 100},
};
INSTANTIATE_TEST_SUITE_P(Fixed, FlopFigure, testing::ValuesIn(kFixedCases), CaseName);

const FlopCase kFullHouseCases[] = {
    // Grid 7 over K reads 33-33: 100 * (1 - 14/47 * 13/46).
    {"OpenSevensOverKings", "7S KD 7H 7C KH", kAllIn, kFullHouse, "FlopFullHouseOpen", 92},
    {"OpenSwapped", "KD 7S 7H 7C KH", kAllIn, kFullHouse, "FlopFullHouseOpen", 92},
    // Pocket aces above the kings: second row, 36.
    {"PocketAbove", "AS AH KD KC AD", kAllIn, kFullHouse, "FlopFullHousePocket", 95},
    // Board trips run first (outs -1), the pocket leaf then says 22.
    {"PocketUnderBoardTrips", "2S 2H AD AC AH", kAllIn, kFullHouse, "FlopFullHousePocket", 72},
    // One folded: row 0 column 0 adds 0, N 46.
    {"PocketOneFolded", "2S 2H AD AC AH", "MFHHHHHHHH", kFullHouse, "FlopFullHousePocket", 73},
    // Six empty: column 5 of the above-20 table adds 6 (the other gives 7).
    {"PocketSixEmpty", "2S 2H AD AC AH", "MEEEEEEHHH", kFullHouse, "FlopFullHousePocket", 90},
};
INSTANTIATE_TEST_SUITE_P(FullHouse, FlopFigure, testing::ValuesIn(kFullHouseCases), CaseName);

const FlopCase kFlushCases[] = {
    // 13 + 13 for the ace, no window missing one or two: 26.
    {"AceHigh", "AH 3H 9H 6H QH", kAllIn, kFlush, "FlopFlush", 81},
    // 13 + 7; window 3..7 misses two and its first card is the hole five: -1.
    {"HoldsFootOfGap", "5H KH 6H 7H JH", kAllIn, kFlush, "FlopFlush", 65},
    // 2..6 misses one, then 3..7 misses two and replaces it: 26 + 1.5.
    {"WorseWindowReplaces", "2H AH 5H 4H 6H", kAllIn, kFlush, "FlopFlush", 83},
    // 6..10 misses two and 8..12 missing one can't replace it: 13 + 7 + 1.5.
    {"OneCantReplaceTwo", "KH QH 9H TH 8H", kAllIn, kFlush, "FlopFlush", 71},
    // Five of 9..A not in a row: 13 + 7 for the hole king, 8..12 misses two
    // (+1.5), and the 30-outs rule never fires (30 would show 87).
    {"HighCardsNeverThirty", "KD JD 9D QD AD", kAllIn, kFlush, "FlopFlush", 71},
};
INSTANTIATE_TEST_SUITE_P(Flush, FlopFigure, testing::ValuesIn(kFlushCases), CaseName);

const FlopCase kStraightCases[] = {
    // lo is low: marks from hi + 1; one unsafe suit; ranks 2..7, K, A: 24.
    {"HoleAtFoot", "8C 9D TS JH QD", kAllIn, kStraight, "FlopStraight", 77},
    // Slots 3 and 4 share a suit but slot 2 differs from both: still one.
    {"SlotsThreeFourSuited", "8C 9D TS JH QH", kAllIn, kStraight, "FlopStraight", 77},
    {"WheelAceTwo", "AS 2D 3C 4H 5S", kAllIn, kStraight, "FlopStraight", 77},
    // hi is high: marks 2 and 8; slot 2 shares slot 4's suit: 6 ranks * 3.
    {"HoleAtTop", "6S 7D 3C 4H 5C", kAllIn, kStraight, "FlopStraight", 62},
    // One-suit board, hi is high: two unsafe suits, 6 * 2.
    {"SuitedBoardHoleAtTop", "6S 7D 3C 4C 5C", kAllIn, kStraight, "FlopStraight", 45},
    // Both hole cards inside on a one-suit board: nothing unsafe, 5 * 4.
    {"SuitedBoardHoleInside", "4D 5S 3C 6C 7C", kAllIn, kStraight, "FlopStraight", 68},
    // lo is low, hi isn't high: three unsafe suits, 8 * 1.
    {"SuitedBoardHoleAtFoot", "3D 4S 5C 6C 7C", kAllIn, kStraight, "FlopStraight", 31},
    // Four hearts led by the hole nine: 6 * 3 + 1.
    {"FourFlushLedByHighCard", "9H 8H 5H 6H 7C", kAllIn, kStraight, "FlopStraight", 65},
    // Led by the second card: 6 * 2 - 0.5.
    {"FourFlushLedBySecond", "9S 8H 5H 6H 7H", kAllIn, kStraight, "FlopStraight", 43},
    // 2 3 4 5 with a second five reads as a straight: low 2, high 4, 24.
    {"PairedRunOfFour", "2S 3D 4H 5C 5S", kAllIn, kStraight, "FlopStraight", 77},
    // Six empty: column 5 adds 6 above 20 outs and 7 up to 20.
    {"SixEmptyAbove20", "8C 9D TS JH QD", "MEEEEEEHHH", kStraight, "FlopStraight", 93},
    {"SixEmptyUpTo20", "4D 5S 3C 6C 7C", "MEEEEEEHHH", kStraight, "FlopStraight", 89},
};
INSTANTIATE_TEST_SUITE_P(Straight, FlopFigure, testing::ValuesIn(kStraightCases), CaseName);

const FlopCase kTripsCases[] = {
    {"BoardTrips", "9S 4D KH KC KD", kAllIn, kThreeOfAKind, "FlopBoardTrips", 0},
    {"HoleOnBoardPair", "KS 4D KH KC 9D", kAllIn, kThreeOfAKind, "FlopTripsBoardPair", 0},
    // Shapes, first that fits; then the suit correction.
    {"ShapeUpFromSet", "4S 4H 4D 5C 6S", kAllIn, kThreeOfAKind, "FlopSet", 38},        // 10
    {"ShapeDownToSet", "6S 6H 6D 4C 5H", kAllIn, kThreeOfAKind, "FlopSet", 51},        // 14
    {"ShapeAroundSet", "QS QH QD JC KS", kAllIn, kThreeOfAKind, "FlopSet", 38},        // 10
    {"ShapeAroundTwoSuited", "QS QH QD JC KC", kAllIn, kThreeOfAKind, "FlopSet", 35},  // 10 - 1
    {"ShapeGapsBelow", "9S 9H 9D 5C 7C", kAllIn, kThreeOfAKind, "FlopSet", 54},        // 17 - 2
    {"ShapeGapsAboveSuited", "TS TH TD QD AD", kAllIn, kThreeOfAKind, "FlopSet", 28},  // 13 - 6
    {"ShapeStraddle", "8S 8H 8D 6C TH", kAllIn, kThreeOfAKind, "FlopSet", 57},         // 16
    // Both others above, by B - P.
    {"AboveBy3Jacks", "JS JH JD QC AH", kAllIn, kThreeOfAKind, "FlopSet", 62},    // 18
    {"AboveBy4", "5S 5H 5D 8C 9H", kAllIn, kThreeOfAKind, "FlopSet", 54},         // 15
    {"AboveBy5", "5S 5H 5D 8C TH", kAllIn, kThreeOfAKind, "FlopSet", 63},         // 17 + 9/7
    {"AboveBy5KingLow", "9S 9H 9D KC AH", kAllIn, kThreeOfAKind, "FlopSet", 74},  // 20 + 3
    {"AboveBy6", "4S 4H 4D 7C TH", kAllIn, kThreeOfAKind, "FlopSet", 65},         // 19
    {"AboveBy9LowSet", "2S 2H 2D 9C JH", kAllIn, kThreeOfAKind, "FlopSet", 66},   // 19.5
    // Both others below, by P - A.
    {"BelowBy3Aces", "AS AH AD JC QH", kAllIn, kThreeOfAKind, "FlopSet", 65},           // 19
    {"BelowBy4JustUnder", "KS KH KD 9C QH", kAllIn, kThreeOfAKind, "FlopSet", 58},      // 16.5
    {"BelowBy5SevenTwoThree", "7S 7H 7D 2C 3H", kAllIn, kThreeOfAKind, "FlopSet", 77},  // 24
    {"BelowBy6OneSuit", "AS AD AH QH 8H", kAllIn, kThreeOfAKind, "FlopSet", 45},        // 23 - 11
    {"BelowFarCloseLows", "9S 9H 9D 2C 3H", kAllIn, kThreeOfAKind, "FlopSet", 74},      // 23
    {"BelowFarJustUnder", "KS KH KD 3C QH", kAllIn, kThreeOfAKind, "FlopSet", 68},      // 20
    {"BelowFarSpread", "KS KH KD 2C 7H", kAllIn, kThreeOfAKind, "FlopSet", 66},         // 19.5
    // Between the two: the message, and no outs.
    {"OneHighOneLow", "7S 7H 7D KC 2H", kAllIn, kThreeOfAKind, "FlopSet", 0},
    // No seat handling: any seat out leaves the set at 0.
    {"SetOneFolded", "AS AD AH QH 8H", "MFHHHHHHHH", kThreeOfAKind, "FlopSet", 0},
    {"SetOneEmpty", "4S 4H 4D 5C 6S", "MHHHHHHHHE", kThreeOfAKind, "FlopSet", 0},
};
INSTANTIATE_TEST_SUITE_P(ThreeOfAKind, FlopFigure, testing::ValuesIn(kTripsCases), CaseName);

const FlopCase kTwoPairCases[] = {
    // a ace (+5), b 4, kicker 9: 7.
    {"AceOverBoardFours", "AS 9D AH 4C 4S", kAllIn, kTwoPair, "FlopTwoPairBoard", 28},
    // a 9, b ace above it (-1.5), kicker king (+1.5): 2.
    {"NinesUnderBoardAces", "KS 9D 9H AC AS", kAllIn, kTwoPair, "FlopTwoPairBoard", 8},
    // Pocket nines over fours (+1), queen above: 3.
    {"PocketOverBoardPair", "9S 9H 4D 4C QS", kAllIn, kTwoPair, "FlopTwoPairPocket", 12},
    {"PocketOneFolded", "9S 9H 4D 4C QS", "MFHHHHHHHH", kTwoPair, "FlopTwoPairPocket", 13},
    // Board J 7 2 covers 1..3, 6..8, 10..12: 4 + 5 free ranks.
    {"BothHoleCardsPaired", "JS 7H JD 7C 2H", kAllIn, kTwoPair, "FlopTwoPairHole", 35},
    // Board J 7 A covers 6..8 and 10..14 (the ace also 15): 4 + 5.
    {"BothPairedAceOnBoard", "JS 7H JD 7C AH", kAllIn, kTwoPair, "FlopTwoPairHole", 35},
    // Board 9 6 5 covers 4..10: 4 + 6; a two-suited board takes 1.
    {"BothPairedRainbow", "9S 6H 9D 6C 5H", kAllIn, kTwoPair, "FlopTwoPairHole", 38},
    {"BothPairedTwoSuited", "9S 6H 9D 6D 5H", kAllIn, kTwoPair, "FlopTwoPairHole", 35},
};
INSTANTIATE_TEST_SUITE_P(TwoPair, FlopFigure, testing::ValuesIn(kTwoPairCases), CaseName);

const FlopCase kPairCases[] = {
    // The pair seen through the queen of clubs: 4.25.
    {"ClubQueen", "QC 7H QS 9H 3D", kAllIn, kPair, "FlopHolePair", 17},
    // No club in the pair: P 0, 2.5 + 1.
    {"NoClubInPair", "QH 7H QS 9H 3D", kAllIn, kPair, "FlopHolePair", 14},
    // Both clubs: the spades on the board count. Two: +6, one: +2.5.
    {"ClubsTwoSpades", "QC 7C QS 9S 3D", kAllIn, kPair, "FlopHolePair", 39},
    {"ClubsOneSpade", "QC 7C QS 9H 3D", kAllIn, kPair, "FlopHolePair", 27},
    // One-suit board: -1.
    {"OneSuitBoard", "QC 7H QS 9S 3S", kAllIn, kPair, "FlopHolePair", 13},
    // Slot 4 is never compared: a nine under J and above 2 still gains 1.
    {"SlotFourIgnored", "9C KH 9H JD 2S", kAllIn, kPair, "FlopHolePair", 14},
    {"BoardPairNoDraw", "AS 7D 9C 9H 2S", kAllIn, kPair, "FlopBoardPair", 4},
    {"BoardPairFlushDraw", "AS 7S 9S 9H 2S", kAllIn, kPair, "FlopBoardPair", 20},
    // Tens, nothing above: 2 + 1.5.
    {"PocketTensNoDraw", "TS TH 2C 5D 7H", kAllIn, kPair, "FlopPocketPair", 14},
    // Three singles above the fives: +2.
    {"PocketUnderThree", "5S 5H 6C 7D 8S", kAllIn, kPair, "FlopPocketPair", 16},
    {"PocketSmallNoDraw", "5S 5H 4C 6D 7S", kAllIn, kPair, "FlopPocketPair", 12},
    // Slots 3, 4 in slot 0's suit and slot 2 in slot 1's: +6.5, +10.5.
    {"KingsSuitCountThree", "KS KH 2H 7S 9S", kAllIn, kPair, "FlopPocketPair", 33},
    {"AcesSuitCountThree", "AS AH 2H 7S 9S", kAllIn, kPair, "FlopPocketPair", 47},
};
INSTANTIATE_TEST_SUITE_P(Pair, FlopFigure, testing::ValuesIn(kPairCases), CaseName);

const FlopCase kNoPairCases[] = {
    {"NothingRainbow", "AS 7D 2C 9H JS", kAllIn, kNoClass, "FlopNoPair", 2},  // 0.4
    // J Q K A: E1 10, E2 15.
    {"BroadwayOpenLowOnly", "AS KD QC JH 3S", kAllIn, kNoClass, "FlopNoPair", 21},
    // Open-ended 6 7 8 9: both windows, 5.2.
    {"OpenEnded", "8S 9D 4C 6H 7S", kAllIn, kNoClass, "FlopNoPair", 21},
    // hi is first + 1: 2.5, or 6.5 when the run starts at 9.
    {"HighSecondInRun", "8S 2D 7C 9H TS", kAllIn, kNoClass, "FlopNoPair", 10},
    {"HighSecondFromNine", "TS 2D 9C JH QS", kAllIn, kNoClass, "FlopNoPair", 26},
    // Connected hole cards in a gutshot: 3.
    {"ConnectedGutshot", "8S 7D 4C 5H KS", kAllIn, kNoClass, "FlopNoPair", 12},
    // Four in a window and nothing else: 2.1; a two-suited board takes 1.
    {"LooseFour", "KD 4S 5C 7H 8S", kAllIn, kNoClass, "FlopNoPair", 9},
    {"LooseFourTwoSuited", "KD 4S 5C 7C 8S", kAllIn, kNoClass, "FlopNoPair", 5},
    // 5.2 on a board of three clubs: -4.
    {"BroadwayThreeSuited", "AS KD QC JC 3C", kAllIn, kNoClass, "FlopNoPair", 5},
    // Flush draw with the ace alone in the suit: (14 - 4) / 2 + 1.
    {"AceFlushDraw", "AH 7S 2H 9H KH", kAllIn, kNoClass, "FlopNoPair", 24},
    // Both hole cards in the suit: 2 + (14 - 4).
    {"SuitedHoleFlushDraw", "AH 7H 2H 9H KC", kAllIn, kNoClass, "FlopNoPair", 45},
    // Eight folded: the table by outs, 2.1 reads +3 at column 7, 1.1 +1.5.
    {"EightFoldedStrongTable", "KD 4S 5C 7H 8S", "MFFFFFFFFH", kNoClass, "FlopNoPair", 25},
    {"EightFoldedWeakTable", "KD 4S 5C 7C 8S", "MFFFFFFFFH", kNoClass, "FlopNoPair", 13},
};
INSTANTIATE_TEST_SUITE_P(NoPair, FlopFigure, testing::ValuesIn(kNoPairCases), CaseName);

// Seats: the flush with 26 outs under every way of seats being out.
const FlopCase kSeatCases[] = {
    {"OneFoldedOneEmptyIsTheMean", "AH 3H 9H 6H QH", "MFEHHHHHHH", kFlush, "FlopFlush", 83},
    {"OneFolded", "AH 3H 9H 6H QH", "MFHHHHHHHH", kFlush, "FlopFlush", 82},
    {"TwoEmpty", "AH 3H 9H 6H QH", "MEEHHHHHHH", kFlush, "FlopFlush", 86},
    {"ThreeFoldedOneEmpty", "AH 3H 9H 6H QH", "MFFFEHHHHH", kFlush, "FlopFlush", 86},
};
INSTANTIATE_TEST_SUITE_P(Seats, FlopFigure, testing::ValuesIn(kSeatCases), CaseName);

TEST(FlopSeats, NineSeatsOutGiveZeroInEveryComputingLeaf) {
    const char* const hands[] = {
        "7S KD 7H 7C KH", "AS AH KD KC AD", "AH 3H 9H 6H QH", "8C 9D TS JH QD",
        "AS 9D AH 4C 4S", "9S 9H 4D 4C QS", "JS 7H JD 7C 2H", "QC 7H QS 9H 3D",
        "AS 7D 9C 9H 2S", "TS TH 2C 5D 7H", "AS KD QC JH 3S",
    };
    for (const char* seats : {"MFFFFFFFFF", "MEEEEEEEEE", "MFFFFFEEEE"}) {
        for (const char* hand : hands) {
            const FlopRun run = RunFlop(hand, seats);
            EXPECT_EQ(run.display.strength, 0) << hand << " " << seats;
        }
    }
}

TEST(FlopSet, SetBetweenTheOthersShowsTheMessageOnce) {
    EXPECT_EQ(RunFlop("7S 7H 7D KC 2H", kAllIn).messages,
              std::vector<std::string>{"one high and one low"});
    EXPECT_TRUE(RunFlop("AS AD AH QH 8H", kAllIn).messages.empty());
}

TEST(FlopFullHouse, BoardTripsLeafRunsBeforeThePocketLeaf) {
    const FlopRun run = RunFlop("2S 2H AD AC AH", kAllIn);
    const auto at = [&](const std::string& leaf) {
        return std::find_if(run.trace.begin(), run.trace.end(), [&](const std::string& line) {
            return line.rfind(leaf + ": outs", 0) == 0;
        });
    };
    ASSERT_NE(at("FlopFullHouseBoardTrips"), run.trace.end());
    ASSERT_NE(at("FlopFullHousePocket"), run.trace.end());
    EXPECT_LT(at("FlopFullHouseBoardTrips"), at("FlopFullHousePocket"));
}

// Every legal flop, sampled, stays a percentage, and a table of any five
// card texts (duplicates included) never takes the engine down.
TEST(FlopProperties, FiguresStayPercentagesAndNothingEscapes) {
    std::vector<std::string> deck;
    for (char rank : std::string("23456789TJQKA")) {
        for (char suit : std::string("CSHD")) deck.push_back({rank, suit});
    }
    std::mt19937 random(20240611);
    std::uniform_int_distribution<std::size_t> anyCard(0, deck.size() - 1);
    for (int round = 0; round < 4000; ++round) {
        std::shuffle(deck.begin(), deck.end(), random);
        std::string legal = deck[0] + " " + deck[1] + " " + deck[2] + " " + deck[3] + " " + deck[4];
        const FlopRun run = RunFlop(legal, round % 3 == 0 ? "MFHEHHHHHH" : kAllIn);
        ASSERT_EQ(run.display.stage, kFlopStage) << legal;
        EXPECT_GE(run.display.strength, 0) << legal;
        EXPECT_LE(run.display.strength, 100) << legal;

        std::string any;
        for (int i = 0; i < 5; ++i) any += deck[anyCard(random) % 8] + " ";
        EXPECT_NO_THROW(RunFlop(any, kAllIn)) << any;
    }
}

}  // namespace
}  // namespace felthawk
