#include "cards/recalculate.h"

#include <gtest/gtest.h>

#include <random>

#include "cards/suggestion.h"

namespace felthawk {
namespace {

TEST(Recalculate, EmptyTableLeavesEverythingBlank) {
    CalcState state;
    const DisplayModel display = RecalculateHand(state, TextCells{});
    for (const std::string& chance : display.chances) EXPECT_EQ(chance, "");
    EXPECT_EQ(display.me, "");
    EXPECT_EQ(display.suggestion, "");
    EXPECT_EQ(display.gaugeX2, kGaugeStartX);
    EXPECT_EQ(display.stage, kNoStage);
    EXPECT_FALSE(display.hasStrength);
}

struct StageCase {
    TextCells cells;
    int stage;
    bool chancesShown;
};

class StageSelection : public testing::TestWithParam<StageCase> {};

TEST_P(StageSelection, PatternOfFilledCellsDecides) {
    CalcState state;
    const DisplayModel display = RecalculateHand(state, GetParam().cells);
    EXPECT_EQ(display.stage, GetParam().stage);
    EXPECT_EQ(!display.chances[0].empty(), GetParam().chancesShown);
    if (GetParam().stage == kNoStage) {
        EXPECT_EQ(display.me, "");
        EXPECT_EQ(display.suggestion, "");
    } else {
        EXPECT_NE(display.me, "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, StageSelection,
    testing::Values(StageCase{{"AS"}, kNoStage, false},
                    StageCase{{"AS", "KD", "2C"}, kNoStage, false},
                    StageCase{{"AS", "KD", "2C", "7H"}, kNoStage, false},
                    StageCase{{"AS", "", "", "KD"}, kNoStage, true},
                    StageCase{{"AS", "KD"}, kPreFlopStage, true},
                    StageCase{{"AS", "KD", "2C", "7H", "9D"}, kFlopStage, true},
                    StageCase{{"AS", "KD", "2C", "", "9D", "4S"}, kNoStage, true},
                    StageCase{{"AS", "KD", "2C", "7H", "9D", "4S"}, kTurnStage, true},
                    StageCase{{"AS", "KD", "2C", "7H", "9D", "", "4S"}, kNoStage, true},
                    StageCase{{"AS", "KD", "2C", "7H", "9D", "4S", "AC"}, kRiverStage, true}),
    [](const testing::TestParamInfo<StageCase>& info) {
        return "Table" + std::to_string(info.index);
    });

TEST(ChanceCaption, OneAndTwoCharacterTexts) {
    const struct {
        const char* odds;
        const char* caption;
    } cases[] = {{"Current", "Current"}, {"12", "12 %"}, {"NA", "NA %"},   {"", ""},
                 {"5", "05 %"},          {"3 ", "03 %"}, {"100", "0100 %"}};
    for (const auto& c : cases) EXPECT_EQ(ChanceCaption(c.odds), c.caption) << c.odds;
}

TEST(Suggestion, BoundsOfEachRow) {
    const struct {
        int score;
        int stage;
        const char* caption;  // nullptr: the caption stays as it was
    } cases[] = {
        {0, kSuggestPreFlop, "Fold"},
        {10, kSuggestPreFlop, "Fold"},
        {11, kSuggestPreFlop, "Small Blind. Call. Fold if raised "},
        {15, kSuggestPreFlop, "Small Blind. Call. Fold if raised "},
        {16, kSuggestPreFlop, "Raise or call 1 small Raise"},
        {21, kSuggestPreFlop, "Raise or call Raised"},
        {25, kSuggestPreFlop, "Raise or call Raised"},
        {26, kSuggestPreFlop, "Raise or Re-Raise"},
        {255, kSuggestPreFlop, "Raise or Re-Raise"},
        {10, kSuggestAfterFlop, "Check or fold"},
        {11, kSuggestAfterFlop, "Check or call one small bet"},
        {30, kSuggestAfterFlop, "Check or call one small bet"},
        {31, kSuggestAfterFlop, "Bet or call one small bet"},
        {55, kSuggestAfterFlop, "Bet or call one small bet"},
        {56, kSuggestAfterFlop, "Raise or call one Raise"},
        {81, kSuggestAfterFlop, "Raise or Re-raise"},
        {100, kSuggestAfterFlop, "Raise or Re-raise"},
        {101, kSuggestAfterFlop, nullptr},
        {50, 3, nullptr},
    };
    for (const auto& c : cases) {
        const auto text = SuggestionText(static_cast<uint8_t>(c.score), c.stage);
        if (c.caption == nullptr) {
            EXPECT_FALSE(text.has_value()) << c.score;
        } else {
            ASSERT_TRUE(text.has_value()) << c.score;
            EXPECT_EQ(*text, c.caption) << c.score;
        }
    }
}

TEST(Gauge, EndPointFollowsTheRoundedShare) {
    EXPECT_DOUBLE_EQ(GaugeEndPoint(0, 100), 900);
    EXPECT_DOUBLE_EQ(GaugeEndPoint(100, 100), 4650);
    EXPECT_DOUBLE_EQ(GaugeEndPoint(31, 31), 4650);
    EXPECT_DOUBLE_EQ(GaugeEndPoint(33, 100), 900 + 0.33 * 3750);
    EXPECT_DOUBLE_EQ(GaugeEndPoint(1, 8), 900 + 0.12 * 3750);  // 12.5 rounds to 12
    EXPECT_THROW(GaugeEndPoint(1, 0), RuntimeFault);
}

TextCells RandomTable(std::mt19937& random) {
    static constexpr const char* kRanks = "23456789TJQKA";
    static constexpr const char* kSuits = "SHCD";
    TextCells cells;
    for (std::string& cell : cells) {
        if (random() % 3 == 0) continue;  // leave gaps and odd counts
        // A small deck makes duplicated cards common.
        cell = {kRanks[random() % (random() % 2 ? 13 : 3)], kSuits[random() % 4]};
    }
    return cells;
}

void RandomSeats(std::mt19937& random, CalcState& state) {
    static constexpr char kLetters[] = {'H', 'F', 'E'};
    for (int seat = 0; seat < kSeatCount; ++seat) state.gSeats[seat] = kLetters[random() % 3];
    state.gSeats[random() % kSeatCount] = kSeatMe;
}

bool SameDisplay(const DisplayModel& a, const DisplayModel& b) {
    return a.chances == b.chances && a.me == b.me && a.suggestion == b.suggestion &&
           a.gaugeX2 == b.gaugeX2 && a.stage == b.stage;
}

TEST(Recalculate, RandomTablesNeverLetAFaultOutAndTwiceEqualsOnce) {
    std::mt19937 random(20261121);
    for (int round = 0; round < 20000; ++round) {
        CalcState state;
        RandomSeats(random, state);
        const TextCells cells = RandomTable(random);
        DisplayModel once;
        ASSERT_NO_THROW(once = RecalculateHand(state, cells));
        const DisplayModel twice = RecalculateHand(state, cells);
        ASSERT_TRUE(SameDisplay(once, twice)) << cells[0] << cells[1] << cells[2];
        // The figure shown and the advice can never disagree.
        if (once.stage >= kFlopStage && once.hasStrength && once.strength >= 0 &&
            once.strength <= 100) {
            EXPECT_EQ(
                once.suggestion,
                SuggestionText(static_cast<uint8_t>(once.strength), kSuggestAfterFlop).value());
        }
    }
}

}  // namespace
}  // namespace felthawk
