// Properties of the river stage over many dealt tables, legal or with a
// card dealt twice: nothing escapes the driver, every deal ends in a named
// river branch, the figure stays in its range, and a second run repeats the
// first.
#include <gtest/gtest.h>

#include <random>

#include "cards/recalculate.h"
#include "tests/river/river_test_support.h"

namespace felthawk::river_test {
namespace {

constexpr const char* kRanks = "23456789TJQKA";
constexpr const char* kSuits = "CSHD";
constexpr const char* kSeatLetters = "HFE";

std::string Deal(std::mt19937& random, bool allowRepeats) {
    std::vector<int> deck(52);
    for (int card = 0; card < 52; ++card) deck[static_cast<std::size_t>(card)] = card;
    std::shuffle(deck.begin(), deck.end(), random);
    std::string cells;
    for (std::size_t slot = 0; slot < 7; ++slot) {
        const int card = allowRepeats ? deck[random() % 4] : deck[slot];
        if (!cells.empty()) cells += ',';
        cells += kRanks[card % 13];
        cells += kSuits[card / 13];
    }
    return cells;
}

std::string Seats(std::mt19937& random) {
    std::string seats = "M";
    for (int seat = 1; seat < 10; ++seat) seats += kSeatLetters[random() % 3];
    return seats;
}

class RiverDeals : public testing::TestWithParam<bool> {};

TEST_P(RiverDeals, EndInARiverBranchWithinRange) {
    std::mt19937 random(GetParam() ? 7u : 11u);
    for (int deal = 0; deal < 4000; ++deal) {
        const std::string cells = Deal(random, GetParam());
        const std::string seats = Seats(random);
        RiverRun first;
        ASSERT_NO_THROW(first = RunRiver(cells, seats)) << cells << " " << seats;
        ASSERT_EQ(first.stage, kRiverStage) << cells;
        EXPECT_TRUE(first.Mentions("River")) << cells << " " << seats;
        // A negative figure comes only from a pair's straight step.
        EXPECT_GE(first.strength, -7) << cells << " " << seats;
        EXPECT_LE(first.strength, 100) << cells << " " << seats;
        EXPECT_EQ(RunRiver(cells, seats).strength, first.strength) << cells << " " << seats;
    }
}

INSTANTIATE_TEST_SUITE_P(LegalAndRepeatedCards, RiverDeals, testing::Values(false, true));

}  // namespace
}  // namespace felthawk::river_test
