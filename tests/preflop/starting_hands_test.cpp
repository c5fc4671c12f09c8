#include "preflop/starting_hands.h"

#include <gtest/gtest.h>

#include <set>

#include "cards/recalculate.h"

namespace felthawk {
namespace {

TEST(StartingHands, EveryTwoCardHandFindsItsRow) {
    CalcState state;
    int hands = 0;
    std::set<std::string> keys;
    for (int first = 0; first < 52; ++first) {
        for (int second = first + 1; second < 52; ++second) {
            state.gCards[0] = static_cast<CardCode>((first / 13) * 100 + first % 13 + 2);
            state.gCards[1] = static_cast<CardCode>((second / 13) * 100 + second % 13 + 2);
            ASSERT_TRUE(HoleCardValue(state, 9).has_value()) << StartingHandKey(state);
            keys.insert(StartingHandKey(state));
            ++hands;
        }
    }
    EXPECT_EQ(hands, 1326);
    // Only spades earn the suited rows, so every row is reachable.
    EXPECT_EQ(keys.size(), 169u);
}

TEST(StartingHands, RowsRunBestFirstByTheNineOpponentFigure) {
    for (std::size_t row = 1; row < gStartingHands.size(); ++row) {
        EXPECT_GE(gStartingHands[row - 1].winPercent[8], gStartingHands[row].winPercent[8])
            << gStartingHands[row].name;
    }
}

TEST(StartingHands, ColumnOutsideTheTableFaults) {
    CalcState state;
    state.gCards[0] = 114;
    state.gCards[1] = 214;
    EXPECT_THROW(HoleCardValue(state, 10), RuntimeFault);
    EXPECT_DOUBLE_EQ(HoleCardValue(state, 1).value(), 85.3);
}

struct PreFlopCase {
    TextCells cells;
    const char* me;
    const char* suggestion;
    double gaugeX2;
};

class PreFlopDisplay : public testing::TestWithParam<PreFlopCase> {};

TEST_P(PreFlopDisplay, FigureAdviceAndGauge) {
    CalcState state;
    const DisplayModel display = RecalculateHand(state, GetParam().cells);
    EXPECT_EQ(display.stage, kPreFlopStage);
    EXPECT_EQ(display.me, GetParam().me);
    EXPECT_EQ(display.suggestion, GetParam().suggestion);
    EXPECT_DOUBLE_EQ(display.gaugeX2, GetParam().gaugeX2);
}

// The gauge reads the figure against a full scale of 31: 900 + p / 100 * 3750
// with p the rounded share in percent.
INSTANTIATE_TEST_SUITE_P(
    Hands, PreFlopDisplay,
    testing::Values(
        PreFlopCase{{"AS", "KS"}, "21 %", "Raise or call Raised", 900 + 0.68 * 3750},
        PreFlopCase{{"AH", "KH"}, "17 %", "Raise or call 1 small Raise", 900 + 0.55 * 3750},
        PreFlopCase{{"AC", "KS"}, "17 %", "Raise or call 1 small Raise", 900 + 0.55 * 3750},
        PreFlopCase{{"KS", "AC"}, "17 %", "Raise or call 1 small Raise", 900 + 0.55 * 3750},
        PreFlopCase{{"7H", "2C"}, "5 %", "Fold", 900 + 0.16 * 3750},
        PreFlopCase{{"AS", "AH"}, "31 %", "Raise or Re-Raise", 4650},
        PreFlopCase{{"3S", "2S"}, "9 %", "Fold", 900 + 0.29 * 3750},
        PreFlopCase{{"3H", "2H"}, "6 %", "Fold", 900 + 0.19 * 3750},
        // 12.5 rounds to the even 12.
        PreFlopCase{{"KS", "5S"}, "12 %", "Small Blind. Call. Fold if raised ", 900 + 0.39 * 3750}),
    [](const testing::TestParamInfo<PreFlopCase>& info) {
        return info.param.cells[0] + info.param.cells[1];
    });

}  // namespace
}  // namespace felthawk
