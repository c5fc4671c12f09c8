// The river leaves that give a fixed figure or read a seat table: straight
// flush, four of a kind and no pair.
#include <gtest/gtest.h>

#include "cards/recalculate.h"
#include "tests/river/river_test_support.h"

namespace felthawk::river_test {
namespace {

struct FixedCase {
    const char* what;
    const char* cells;
    const char* seats;
    const char* leaf;  // text the deciding trace line holds
    int strength;
};
void PrintTo(const FixedCase& c, std::ostream* os) {
    *os << c.what;
}

class RiverFixedFigure : public testing::TestWithParam<FixedCase> {};

TEST_P(RiverFixedFigure, GivesTheFigureOfItsLeaf) {
    const FixedCase& c = GetParam();
    const RiverRun run = RunRiver(c.cells, c.seats);
    ASSERT_EQ(run.stage, kRiverStage);
    EXPECT_TRUE(run.Mentions(c.leaf)) << c.what;
    EXPECT_FALSE(run.Mentions("fault")) << c.what;
    EXPECT_EQ(run.strength, c.strength) << c.what;
}

constexpr const char* kOneEmpty = "MEHHHHHHHH";
constexpr const char* kFourEmpty = "MHEEEEHHHH";
constexpr const char* kEightEmpty = "MEEEEEEEEH";
constexpr const char* kSixEmpty = "MHEEEEEEHH";
constexpr const char* kSevenEmpty = "MEEEEEEEHH";

INSTANTIATE_TEST_SUITE_P(
    StraightFlush, RiverFixedFigure,
    testing::Values(
        FixedCase{"a hole card at the top of the run", "9S,2C,5S,6S,7S,8S,KH", kFullTable,
                  "hole card at the top", 100},
        FixedCase{"no hole card at either end", "9S,KD,5S,6S,7S,8S,2H", kFullTable,
                  "no hole card at either end", 100},
        FixedCase{"five in the suited run, nothing above it", "5S,AD,6S,7S,8S,9S,KH", kFullTable,
                  "at the foot", 99},
        FixedCase{"five in the suited run, a single card just above it", "5S,AD,6S,7S,8S,9S,JD",
                  kFullTable, "at the foot", 60},
        FixedCase{"six in the suited run", "5S,AD,6S,7S,8S,9S,TS", kFullTable, "at the foot", 61},
        FixedCase{"seven in the suited run", "5S,6S,7S,8S,9S,TS,JS", kFullTable, "at the foot", 58},
        // The top straight flush leaves the hand search's run unset, so a
        // ten in hand at its foot finds no run length: 0, as designed.
        FixedCase{"ten to ace with the ten in hand", "TS,KD,JS,QS,KS,AS,QD", kFullTable,
                  "at the foot", 0}),
    CaseNamer{});

INSTANTIATE_TEST_SUITE_P(
    FourOfAKind, RiverFixedFigure,
    testing::Values(
        FixedCase{"pocket pair, no four of a suit", "7C,7D,7H,7S,2C,9D,KH", kFullTable,
                  "RiverQuadsPocket: fixed 100", 100},
        FixedCase{"pocket pair, four of a suit spread out", "7C,7D,7H,7S,2S,9S,KS", kFullTable,
                  "RiverQuadsPocket: fixed 99", 99},
        FixedCase{"board quads, the ace kicker in hand", "AC,2D,9C,9D,9H,9S,3C", kFullTable,
                  "RiverQuadsBoard: fixed 100", 100},
        FixedCase{"one hole card, three of a suit and three in a row", "9C,7D,9D,9H,9S,5H,6H",
                  kFullTable, "RiverQuadsOneHole: fixed 97", 97},
        FixedCase{"the same with four empty seats", "9C,7D,9D,9H,9S,5H,6H", kFourEmpty,
                  "RiverQuadsOneHole: fixed 100", 100},
        // The span that opens at the other hole rank is left out.
        FixedCase{"one hole card, the run opens at the other hole rank", "9C,5D,9H,9D,9S,6H,7H",
                  kFullTable, "RiverQuadsOneHole: fixed 100", 100},
        FixedCase{"one hole card, the other hole rank inside the run", "9C,6D,9H,9D,9S,5H,7H",
                  kFullTable, "RiverQuadsOneHole: fixed 97", 97}),
    CaseNamer{});

// Made hands that fit no leaf show 0.
INSTANTIATE_TEST_SUITE_P(
    NoLeaf, RiverFixedFigure,
    testing::Values(FixedCase{"a pair on the board alone", "AC,5D,9S,9H,7C,3D,JS", kFullTable,
                              "the pair is on the board", 0},
                    FixedCase{"trips on the board alone", "2C,5D,9S,9H,9D,KC,7S", kFullTable,
                              "the trips are on the board", 0},
                    // The ace never opens a five-rank span, so the wheel finds none.
                    FixedCase{"the wheel", "AC,2D,3S,4H,5C,5D,4S", kFullTable, "no five-rank span",
                              0}),
    CaseNamer{});

// A set on three of a suit loses 60 points and never shows less than 5.
INSTANTIATE_TEST_SUITE_P(
    SetOnThreeOfASuit, RiverFixedFigure,
    testing::Values(FixedCase{"sixty off the figure of 27 outs", "7C,7D,7H,KH,2H,9C,4D", kFullTable,
                              "RiverSet: three of a suit on the board", 25},
                    FixedCase{"a floor of 5", "7C,7D,7H,8H,9H,TC,2D", kFullTable,
                              "RiverSet: three of a suit on the board", 5}),
    CaseNamer{});

// Every seat table at no, one and eight empty seats.
INSTANTIATE_TEST_SUITE_P(
    SeatTables, RiverFixedFigure,
    testing::Values(
        FixedCase{"A, full table", "7C,7D,7H,7S,8S,9S,TS", kFullTable, "seat table A", 35},
        FixedCase{"A, one empty", "7C,7D,7H,7S,8S,9S,TS", kOneEmpty, "seat table A", 40},
        FixedCase{"A, eight empty", "7C,7D,7H,7S,8S,9S,TS", kEightEmpty, "seat table A", 91},
        FixedCase{"B, full table", "7C,7D,7H,7S,8S,9S,JS", kFullTable, "seat table B", 59},
        FixedCase{"B, one empty", "7C,7D,7H,7S,8S,9S,JS", kOneEmpty, "seat table B", 65},
        FixedCase{"B, eight empty", "7C,7D,7H,7S,8S,9S,JS", kEightEmpty, "seat table B", 95},
        FixedCase{"C by a king", "KC,2D,9C,9D,9H,9S,3C", kFullTable, "seat table C", 12},
        FixedCase{"C by four aces", "5D,2D,AC,AD,AH,AS,3C", kFullTable, "seat table C", 12},
        FixedCase{"C, one empty", "KC,2D,9C,9D,9H,9S,3C", kOneEmpty, "seat table C", 16},
        FixedCase{"C, eight empty", "KC,2D,9C,9D,9H,9S,3C", kEightEmpty, "seat table C", 83},
        FixedCase{"D by a queen", "QC,2D,9C,9D,9H,9S,3C", kFullTable, "seat table D", 2},
        FixedCase{"D by four kings", "5D,2D,KC,KD,KH,KS,3C", kFullTable, "seat table D", 2},
        FixedCase{"D, one empty", "QC,2D,9C,9D,9H,9S,3C", kOneEmpty, "seat table D", 2},
        FixedCase{"D, eight empty", "QC,2D,9C,9D,9H,9S,3C", kEightEmpty, "seat table D", 67},
        FixedCase{"E, full table", "8C,2D,9C,9D,9H,9S,3C", kFullTable, "seat table E", 0},
        FixedCase{"E, one empty", "8C,2D,9C,9D,9H,9S,3C", kOneEmpty, "seat table E", 0},
        FixedCase{"E, eight empty", "8C,2D,9C,9D,9H,9S,3C", kEightEmpty, "seat table E", 41},
        FixedCase{"folded seats do not count", "8C,2D,9C,9D,9H,9S,3C", "MFFFFFFFFH", "seat table E",
                  0}),
    CaseNamer{});

// With nine empty seats the table's list ends before the count: the read
// faults, the stage ends, and the default set just before stands.
struct NineEmptyCase {
    const char* what;  // the table
    const char* cells;
    int fallback;
};
void PrintTo(const NineEmptyCase& c, std::ostream* os) {
    *os << c.what;
}

class RiverSeatTableNineEmpty : public testing::TestWithParam<NineEmptyCase> {};

TEST_P(RiverSeatTableNineEmpty, FaultsAfterTheDefault) {
    const NineEmptyCase& c = GetParam();
    const RiverRun run = RunRiver(c.cells, "MEEEEEEEEE");
    ASSERT_EQ(run.stage, kRiverStage);
    EXPECT_TRUE(run.Mentions(std::string("seat table ") + c.what));
    EXPECT_TRUE(run.Mentions("fault")) << c.what;
    EXPECT_EQ(run.strength, c.fallback) << c.what;
}

INSTANTIATE_TEST_SUITE_P(AllTables, RiverSeatTableNineEmpty,
                         testing::Values(NineEmptyCase{"A", "7C,7D,7H,7S,8S,9S,TS", 35},
                                         NineEmptyCase{"B", "7C,7D,7H,7S,8S,9S,JS", 59},
                                         NineEmptyCase{"C", "KC,2D,9C,9D,9H,9S,3C", 12},
                                         NineEmptyCase{"D", "QC,2D,9C,9D,9H,9S,3C", 2},
                                         NineEmptyCase{"E", "8C,2D,9C,9D,9H,9S,3C", 0}),
                         CaseNamer{});

// No pair: by the higher hole card and the empty seats; anything the table
// does not list is 0, nine empty seats included (no fault here).
INSTANTIATE_TEST_SUITE_P(
    NoPair, RiverFixedFigure,
    testing::Values(
        FixedCase{"ace high, full table", "AC,5D,KS,9H,7C,3D,JS", kFullTable, "RiverNoPair", 0},
        FixedCase{"ace high, five empty", "AC,5D,KS,9H,7C,3D,JS", "MEEEEEHHHH", "RiverNoPair", 0},
        FixedCase{"ace high, six empty", "AC,5D,KS,9H,7C,3D,JS", kSixEmpty, "RiverNoPair", 2},
        FixedCase{"ace high, seven empty", "AC,5D,KS,9H,7C,3D,JS", kSevenEmpty, "RiverNoPair", 8},
        FixedCase{"ace high, eight empty", "AC,5D,KS,9H,7C,3D,JS", kEightEmpty, "RiverNoPair", 32},
        FixedCase{"ace in slot 1 reads the same", "5C,AD,KS,9H,7C,3D,JS", kEightEmpty,
                  "RiverNoPair", 32},
        FixedCase{"ace high, nine empty", "AC,5D,KS,9H,7C,3D,JS", "MEEEEEEEEE", "RiverNoPair", 0},
        FixedCase{"king high, eight empty", "KC,5D,QS,9H,7C,3D,2S", kEightEmpty, "RiverNoPair", 24},
        FixedCase{"queen high, seven empty", "QC,5D,KS,9H,7C,3D,2S", kSevenEmpty, "RiverNoPair", 3},
        FixedCase{"jack high, eight empty", "JC,5D,KS,9H,7C,3D,2S", kEightEmpty, "RiverNoPair", 9},
        FixedCase{"ten high, seven empty", "TC,5D,KS,9H,7C,3D,2S", kSevenEmpty, "RiverNoPair", 1},
        FixedCase{"nine high, eight empty", "9C,5D,KS,JH,7C,3D,2S", kEightEmpty, "RiverNoPair", 2},
        FixedCase{"nine high, seven empty", "9C,5D,KS,JH,7C,3D,2S", kSevenEmpty, "RiverNoPair", 0}),
    CaseNamer{});

}  // namespace
}  // namespace felthawk::river_test
