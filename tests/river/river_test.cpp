// The river strength stage, always through the recalculation driver: every
// leaf by its trace line and figure, the one-hole flush against a player's
// sense of order, and random deals.
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cards/recalculate.h"

namespace felthawk {
namespace {

constexpr const char* kFull = "MHHHHHHHHH";
constexpr const char* kOne = "MEHHHHHHHH";
constexpr const char* kFour = "MHEEEEHHHH";
constexpr const char* kFive = "MEEEEEHHHH";
constexpr const char* kSix = "MHEEEEEEHH";
constexpr const char* kSeven = "MEEEEEEEHH";
constexpr const char* kEight = "MEEEEEEEEH";
constexpr const char* kNine = "MEEEEEEEEE";

struct RiverRun {
    int stage = 0;
    int strength = 0;
    std::vector<std::string> trace;
    bool Mentions(const std::string& text) const {
        for (const std::string& line : trace) {
            if (line.find(text) != std::string::npos) return true;
        }
        return false;
    }
};

// cells: seven comma-separated cards; seats: ten letters, seat 0 first.
RiverRun RunRiver(const std::string& cells, const std::string& seats = kFull) {
    TextCells mCards;
    std::istringstream list(cells);
    std::string card;
    for (std::size_t cell = 0; cell < mCards.size() && std::getline(list, card, ','); ++cell) {
        mCards[cell] = card;
    }
    CalcState state;
    for (std::size_t seat = 0; seat < seats.size(); ++seat) {
        state.gSeats[static_cast<long>(seat)] = seats[seat];
    }
    state.trace.enabled = true;
    const DisplayModel display = RecalculateHand(state, mCards);
    return RiverRun{display.stage, state.gStrength, state.trace.Lines()};
}

struct Row {
    const char* cells;
    const char* leaf;  // text the deciding trace line holds
    int strength;
    const char* seats = kFull;
    bool fault = false;  // the seat table read past its end
};

// Outs leaves close over 45 unseen cards: figure = 100 * (1 - (45-o)/45 * (44-o)/44).
const Row kRows[] = {
    {"9S,2C,5S,6S,7S,8S,KH", "RiverStraightFlush: hole card at the top", 100},
    {"9S,KD,5S,6S,7S,8S,2H", "RiverStraightFlush: no hole card at either end", 100},
    {"5S,AD,6S,7S,8S,9S,KH", "RiverStraightFlush: hole card at the foot", 99},
    {"5S,AD,6S,7S,8S,9S,JD", "RiverStraightFlush: hole card at the foot", 60},
    {"5S,AD,6S,7S,8S,9S,TS", "RiverStraightFlush: hole card at the foot", 61},
    {"5S,6S,7S,8S,9S,TS,JS", "RiverStraightFlush: hole card at the foot", 58},
    // The top straight flush leaves the hand search's run unset: 0.
    {"TS,KD,JS,QS,KS,AS,QD", "RiverStraightFlush: hole card at the foot", 0},
    {"7C,7D,7H,7S,2C,9D,KH", "RiverQuadsPocket: fixed 100", 100},
    {"7C,7D,7H,7S,2S,9S,KS", "RiverQuadsPocket: fixed 99", 99},
    {"AC,2D,9C,9D,9H,9S,3C", "RiverQuadsBoard: fixed 100", 100},
    {"9C,7D,9D,9H,9S,5H,6H", "RiverQuadsOneHole: fixed 97", 97},
    {"9C,7D,9D,9H,9S,5H,6H", "RiverQuadsOneHole: fixed 100", 100, kFour},
    // The run that opens at the other hole rank is left out; one holding it is not.
    {"9C,5D,9H,9D,9S,6H,7H", "RiverQuadsOneHole: fixed 100", 100},
    {"9C,6D,9H,9D,9S,5H,7H", "RiverQuadsOneHole: fixed 97", 97},
    // Seat tables at 0, 1 and 8 empty seats; at 9 the read faults and the default stands.
    {"7C,7D,7H,7S,8S,9S,TS", "seat table A", 35},
    {"7C,7D,7H,7S,8S,9S,TS", "seat table A", 40, kOne},
    {"7C,7D,7H,7S,8S,9S,TS", "seat table A", 91, kEight},
    {"7C,7D,7H,7S,8S,9S,TS", "seat table A", 35, kNine, true},
    {"7C,7D,7H,7S,8S,9S,JS", "seat table B", 59},
    {"7C,7D,7H,7S,8S,9S,JS", "seat table B", 65, kOne},
    {"7C,7D,7H,7S,8S,9S,JS", "seat table B", 95, kEight},
    {"7C,7D,7H,7S,8S,9S,JS", "seat table B", 59, kNine, true},
    {"KC,2D,9C,9D,9H,9S,3C", "seat table C", 12},
    {"5D,2D,AC,AD,AH,AS,3C", "seat table C", 12},
    {"KC,2D,9C,9D,9H,9S,3C", "seat table C", 16, kOne},
    {"KC,2D,9C,9D,9H,9S,3C", "seat table C", 83, kEight},
    {"KC,2D,9C,9D,9H,9S,3C", "seat table C", 12, kNine, true},
    {"QC,2D,9C,9D,9H,9S,3C", "seat table D", 2},
    {"5D,2D,KC,KD,KH,KS,3C", "seat table D", 2},
    {"QC,2D,9C,9D,9H,9S,3C", "seat table D", 2, kOne},
    {"QC,2D,9C,9D,9H,9S,3C", "seat table D", 67, kEight},
    {"QC,2D,9C,9D,9H,9S,3C", "seat table D", 2, kNine, true},
    {"8C,2D,9C,9D,9H,9S,3C", "seat table E", 0},
    {"8C,2D,9C,9D,9H,9S,3C", "seat table E", 0, kOne},
    {"8C,2D,9C,9D,9H,9S,3C", "seat table E", 41, kEight},
    {"8C,2D,9C,9D,9H,9S,3C", "seat table E", 0, kNine, true},
    {"8C,2D,9C,9D,9H,9S,3C", "seat table E", 0, "MFFFFFFFFH"},  // folded seats are not empty
    {"AC,5D,9S,9H,7C,3D,JS", "RiverPair: the pair is on the board", 0},
    {"2C,5D,9S,9H,9D,KC,7S", "RiverThreeOfAKind: the trips are on the board", 0},
    {"AC,2D,3S,4H,5C,5D,4S", "RiverStraight: no five-rank span", 0},  // the ace opens none
    {"7C,7D,7H,KH,2H,9C,4D", "RiverSet: three of a suit on the board", 25},
    {"7C,7D,7H,8H,9H,TC,2D", "RiverSet: three of a suit on the board", 5},
    // No pair: by the higher hole card and 6 to 8 empty seats, else 0 (nine: no fault).
    {"AC,5D,KS,9H,7C,3D,JS", "RiverNoPair", 0},
    {"AC,5D,KS,9H,7C,3D,JS", "RiverNoPair", 0, kFive},
    {"AC,5D,KS,9H,7C,3D,JS", "RiverNoPair", 2, kSix},
    {"AC,5D,KS,9H,7C,3D,JS", "RiverNoPair", 32, kEight},
    {"5C,AD,KS,9H,7C,3D,JS", "RiverNoPair", 32, kEight},
    {"AC,5D,KS,9H,7C,3D,JS", "RiverNoPair", 0, kNine},
    {"KC,5D,QS,9H,7C,3D,2S", "RiverNoPair", 24, kEight},
    {"TC,5D,KS,9H,7C,3D,2S", "RiverNoPair", 1, kSeven},
    {"9C,5D,KS,JH,7C,3D,2S", "RiverNoPair", 2, kEight},
    {"AS,2D,KS,8S,4S,3S,9H", "RiverFlushOneHole: outs", 96},
    {"2C,3D,AS,KS,8S,6S,4S", "RiverFlushOneHole: outs", 2},   // the board plays
    {"KS,7C,AS,3S,4S,9S,2D", "RiverFlushOneHole: outs", 46},  // low-ace run: straight flush open
    {"QC,QD,9S,7H,2C,4D,JS", "RiverPocketPair: outs", 27},    // pocket pair over a quiet board
    {"TC,TD,9S,7H,2C,4D,JS", "RiverPocketPair: outs", 7},     // pocket pair under one overcard
    {"8C,8D,9S,KH,2C,5D,3S", "RiverPocketPair: outs", 2},     // pocket pair under two overcards
    {"QC,QD,9S,8H,7C,2D,JS", "RiverPocketPair: outs", 3},     // four to a straight on the board
    {"AC,AD,9S,8H,2C,6D,JS", "RiverPocketPair: outs", 21},    // four ranks in six take 1.5 off
    {"QC,QD,9S,7S,2S,4D,JH", "RiverPocketPair: outs", 18},    // three of a suit cut to 63 in 100
    {"QC,QD,9S,7S,2S,4S,JH", "RiverPocketPair: outs", 0},     // four of a suit leave nothing
    {"QC,QD,9S,8S,7S,2D,JH", "RiverPocketPair: outs", 2},
    {"KC,5D,KS,9H,7C,3D,AS", "RiverHolePair: outs", 8},   // kings under an ace
    {"2C,QD,QS,9H,7C,3D,5S", "RiverHolePair: outs", 13},  // queens
    {"JC,5D,JS,KH,7C,3D,AS", "RiverHolePair: outs", 1},   // jacks under two overcards
    {"5C,3D,5S,8H,JC,KD,2S", "RiverHolePair: outs", 0},   // fives under three overcards
    // Below 0 outs, a later stage faults on the figure; the river figure stands.
    {"9C,5D,9S,KH,QC,3D,AS", "RiverHolePair: outs", -7, kFull, true},
    {"TC,KD,TS,2H,3C,6D,8S", "RiverHolePair: outs", 10},  // tens
    {"AC,5D,AS,9S,7S,3D,JH", "RiverHolePair: outs", 11},  // three of a suit cut to 55 in 100
    {"7C,7D,7H,KS,2D,9C,4H", "RiverSet: outs", 85},       // set, no straight picture, no suit
    {"7C,7D,7H,8S,9D,TC,2H", "RiverSet: outs", 1},        // set under four in a row
    {"AC,AD,AH,8S,9D,TC,JH", "RiverSet: outs", 12},       // set of aces under four in a row
    {"7C,7D,7H,8S,9D,JC,2H", "RiverSet: outs", 14},       // set, four ranks in five
    {"7C,7D,7H,8S,9D,QC,2H", "RiverSet: outs", 67},
    {"QC,QD,QH,7S,8D,JC,2H", "RiverSet: outs", 59},  // set, four ranks in six, nothing above
    {"7C,7D,7H,KH,2H,9H,4D", "RiverSet: outs", 1},   // set on four of one suit
    {"7C,2D,7H,7S,KD,9C,4H", "RiverTripsOneHole: outs", 79},  // trips with one hole card
    {"7C,2D,7H,7S,KH,9S,4D", "RiverTripsOneHole: outs", 72},
    {"7C,2D,7H,7S,9H,TD,JC", "RiverTripsOneHole: outs", 62},
    {"7C,2D,7H,7S,KH,9H,4D", "RiverTripsOneHole: outs", 45},
    {"7C,2D,7H,7S,KS,9S,4S", "RiverTripsOneHole: outs", 1},     // trips on four of one suit
    {"2C,3D,TS,JD,QH,KC,AS", "RiverStraightBoard: outs", 100},  // broadway on the board
    {"2C,3D,9S,TD,JH,QC,KS", "RiverStraightBoard: outs", 12},   // a straight on the board
    {"AD,3C,9S,TD,JH,QC,KS", "RiverStraightBoard: outs", 89},
    {"2C,3D,9S,TS,JS,QC,KH", "RiverStraightBoard: outs", 8},
    {"8C,2D,9S,TD,JH,QC,3S", "RiverStraightOneHole: outs", 11},  // one hole card at the low end
    {"KC,KD,9S,TD,JH,QC,3S", "RiverStraightOneHole: outs", 89},
    {"AC,2D,TS,JD,QH,KC,3S", "RiverStraightOneHole: outs", 100},
    {"QC,2D,8S,9D,TH,JC,3S", "RiverStraightOneHole: outs", 77},
    {"QC,2D,8S,9D,TH,JC,AS", "RiverStraightOneHole: outs", 89},
    {"QC,2D,8S,9S,TS,JS,3H", "RiverStraightOneHole: outs", 0},
    {"9C,8D,TS,JD,QH,2C,3S", "RiverStraightTwoHole: outs", 77},
    {"8C,9D,TS,JD,QH,2C,3S", "RiverStraightTwoHole: outs", 100},
    {"QC,8D,9S,TD,JH,2C,3S", "RiverStraightTwoHole: outs", 89},
    {"TC,9D,JS,QD,KH,2C,3S", "RiverStraightTwoHole: outs", 89},
    {"8C,9D,TS,JD,QH,QC,3S", "RiverStraightTwoHole: outs", 95},
    {"8C,9D,TS,JS,QH,QC,3S", "RiverStraightTwoHole: outs", 92},
    {"AC,AD,KS,KD,5H,3C,8S", "RiverTwoPairPocket: outs", 33},  // pocket aces over a board pair
    {"8C,8D,KS,KD,5H,3C,2S", "RiverTwoPairPocket: outs", 27},
    {"9C,9D,5S,5D,TH,JC,2S", "RiverTwoPairPocket: outs", 1},     // pocket pair, two higher ranks
    {"AC,AD,9S,9D,TH,JC,QS", "RiverTwoPairPocket: outs", 2},     // pocket pair, four ranks in five
    {"AC,AD,KS,KD,5S,3S,8H", "RiverTwoPairPocket: outs", 28},    // pocket pair, three of a suit
    {"KC,9D,KS,9H,2C,5D,7S", "RiverTwoPairBothHole: outs", 38},  // both hole cards, no picture
    {"KC,9D,KS,9S,2S,5D,7H", "RiverTwoPairBothHole: outs", 25},
    {"4C,3D,4S,3H,9C,KD,QS", "RiverTwoPairBothHole: outs", 1},
    {"KC,9D,KS,9S,2S,5S,7H", "RiverTwoPairBothHole: outs", 0},
    {"KC,4D,KS,9H,9C,2D,7S", "RiverTwoPairOneHole: outs", 21},
    {"9C,4D,KS,9H,KC,2D,7S", "RiverTwoPairOneHole: outs", 7},
    {"KC,4D,KS,9S,9C,2S,7H", "RiverTwoPairOneHole: outs", 11},
    {"KC,4D,KS,TH,TC,JD,QS", "RiverTwoPairOneHole: outs", 1},
    {"KC,4D,KS,9H,9C,TD,QS", "RiverTwoPairOneHole: outs", 2},
    {"AC,4D,KS,KH,9C,9D,2S", "RiverTwoPairBoard: outs", 0},  // both pairs on the board
    {"KC,5D,KS,5H,9C,9D,2S", "RiverTwoPairBothHole: outs", 1},
    {"AS,5S,KS,8S,2S,9D,3H", "RiverFlushTwoHole: outs", 100},  // two hole cards with the ace
    {"5S,KS,QS,8S,2S,9D,3H", "RiverFlushTwoHole: outs", 93},   // two hole cards, king high
    {"7S,5S,QD,8S,2S,JS,3H", "RiverFlushTwoHole: outs", 76},   // two hole cards, low
    {"AS,5S,KS,8S,2S,8D,3H", "RiverFlushTwoHole: outs", 100},
    {"AS,5S,9S,9D,9H,2S,3S", "RiverFlushTwoHole: outs", 1},
    {"AS,5S,KS,8S,2S,9S,3H", "RiverFlushTwoHole: outs", 4},
    {"AS,5S,7S,8S,9S,2S,3H", "RiverFlushTwoHole: outs", 13},
    {"2C,3C,9S,TS,JS,QS,AS", "RiverFlushBoard: outs", 35},
    {"2C,3C,4S,7S,9S,JS,KS", "RiverFlushBoard: outs", 2},  // board flush, no five in six
    {"2C,3C,8S,9S,TS,QS,KS", "RiverFlushBoard: outs", 35},
    {"5C,5D,9C,9D,9H,2S,3H", "RiverFullHousePocket: outs", 38},
    {"KC,KD,9C,9D,9H,2S,2H", "RiverFullHousePocket: outs", 55},
    {"5C,5D,4C,4D,4H,KS,QH", "RiverFullHousePocket: outs", 1},
    {"6C,6D,4C,4D,4H,2S,3H", "RiverFullHousePocket: outs", 37},
    {"9C,9D,4C,4D,4H,KS,KH", "RiverFullHousePocket: outs", 18},
    {"8C,8D,4C,4D,4H,KS,2H", "RiverFullHousePocket: outs", 10},
    {"5C,5D,9C,9D,9H,KS,7H", "RiverFullHousePocket: outs", 2},
    {"5C,5D,9C,9D,9H,3S,3H", "RiverFullHousePocket: outs", 33},
    {"5C,5D,9C,9D,9H,7S,7H", "RiverFullHousePocket: outs", 43},
    {"AS,AD,AH,KS,KD,2C,7H", "RiverFullHouseSet: outs", 86},  // set, both places below
    {"7S,7D,7H,KS,KD,QC,QH", "RiverFullHouseSet: outs", 11},  // set, a second board pair above
    {"9S,9D,9H,KS,KD,2C,2H", "RiverFullHouseSet: outs", 34},  // set, a second board pair below
    {"5S,5D,5H,KS,KD,QC,JH", "RiverFullHouseSet: outs", 82},  // set, both places above
    {"9S,9D,9H,KS,KD,QS,2S", "RiverFullHouseSet: outs", 80},
    {"9C,KD,9H,9S,KS,2C,3D", "RiverFullHouseTwoHole: outs", 100},
    {"9C,KD,9H,9S,KS,2C,2D", "RiverFullHouseTwoHole: outs", 97},
    {"9C,KD,9H,9S,KS,TC,TD", "RiverFullHouseTwoHole: outs", 29},
    {"9C,KD,9H,9S,KS,AC,2D", "RiverFullHouseTwoHole: outs", 91},
    {"4C,9D,4H,4S,9S,AC,KD", "RiverFullHouseTwoHole: outs", 89},
    {"9C,KD,9H,9S,KS,TS,JS", "RiverFullHouseTwoHole: outs", 94},
    {"2C,3D,9H,9S,9D,KS,KD", "RiverFullHouseBoard: outs", 15},
    {"2C,3D,KH,KS,KD,9S,9D", "RiverFullHouseBoard: outs", 58},
    {"9C,4D,9H,9S,KS,KD,2C", "RiverFullHouseOneHole: outs", 33},  // trips card in slot 0
    {"4D,9C,9H,9S,KS,KD,2C", "RiverFullHouseOneHole: outs", 62},  // trips card in slot 1
    {"4D,KC,9H,9S,9D,KS,2C", "RiverFullHouseOneHole: outs", 33},  // pair card in slot 1
    {"KC,4D,KH,KS,9S,9D,2C", "RiverFullHouseOneHole: outs", 94},
    {"QD,9C,9H,9S,5S,5D,KC", "RiverFullHouseOneHole: outs", 8},
};

TEST(RiverStrength, EveryLeafGivesItsFigure) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::string(row.cells) + " " + row.seats);
        const RiverRun run = RunRiver(row.cells, row.seats);
        ASSERT_EQ(run.stage, kRiverStage);
        EXPECT_TRUE(run.Mentions(row.leaf)) << row.leaf;
        EXPECT_EQ(run.Mentions("fault"), row.fault);
        EXPECT_EQ(run.strength, row.strength);
        // Seats never enter an outs leaf.
        if (std::string(row.leaf).find(": outs") != std::string::npos) {
            EXPECT_EQ(RunRiver(row.cells, "MFFFEEEHHH").strength, row.strength);
        }
    }
}

// The one-hole flush is ours to design: it must order hands as a player does.
TEST(RiverFlushOneHole, RatesTheStrongerHandHigher) {
    const std::pair<const char*, const char*> kStrongerWeaker[] = {
        {"AS,2D,KS,8S,4S,3S,9H", "KS,2D,QS,8S,4S,3S,9H"},  // the nut flush above king high
        {"KS,2D,QS,8S,4S,3S,9H", "5S,2D,KS,8S,4S,3S,9H"},  // king high above a low flush
        {"AS,2D,KS,8S,4S,3S,9H", "AS,2D,KS,8S,4S,3S,3H"},  // unpaired board above paired
        {"AS,2C,KS,5S,6S,7S,QC", "AS,2C,KS,5S,6S,7S,8C"},  // no run above four in a row
        {"AS,2D,5S,6S,7S,JS,KH", "AS,2D,5S,6S,7S,8S,KH"},  // the suit spread above close
        {"QS,2D,AS,KS,8S,6S,4S", "2S,3D,AS,KS,8S,6S,4S"},  // a hole card that plays on five
        {"AS,5S,KS,8S,2S,9D,3H", "AS,5D,KS,8S,2S,9S,3H"},  // two hole cards above one
    };
    for (const auto& [stronger, weaker] : kStrongerWeaker) {
        const RiverRun high = RunRiver(stronger);
        const RiverRun low = RunRiver(weaker);
        EXPECT_TRUE(low.Mentions("RiverFlushOneHole: outs")) << weaker;
        EXPECT_GT(high.strength, low.strength) << stronger << " over " << weaker;
    }
}

// Random deals, legal or with cards dealt twice: nothing escapes the driver,
// each ends in a river branch within range, and a second run repeats the first.
TEST(RiverStrength, RandomDealsStayInRangeAndRepeat) {
    std::mt19937 random(7u);
    for (int deal = 0; deal < 8000; ++deal) {
        std::vector<int> deck(52);
        for (int card = 0; card < 52; ++card) deck[static_cast<std::size_t>(card)] = card;
        std::shuffle(deck.begin(), deck.end(), random);
        std::string cells;
        std::string seats = "M";
        for (std::size_t slot = 0; slot < 7; ++slot) {
            const int card = deal % 2 == 1 ? deck[random() % 4] : deck[slot];
            cells += std::string(cells.empty() ? "" : ",") + "23456789TJQKA"[card % 13] +
                     "CSHD"[card / 13];
        }
        for (int seat = 1; seat < 10; ++seat) seats += "HFE"[random() % 3];
        SCOPED_TRACE(cells + " " + seats);
        RiverRun first;
        ASSERT_NO_THROW(first = RunRiver(cells, seats));
        ASSERT_EQ(first.stage, kRiverStage);
        EXPECT_TRUE(first.Mentions("River"));
        EXPECT_GE(first.strength, -7);  // only a pair's straight step goes below 0
        EXPECT_LE(first.strength, 100);
        EXPECT_EQ(RunRiver(cells, seats).strength, first.strength);
    }
}

}  // namespace
}  // namespace felthawk
