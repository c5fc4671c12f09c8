#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <string>

#include "cards/recalculate.h"
#include "preflop/update_odds.h"

namespace felthawk {
namespace {

using Odds = std::array<std::string, kHandClassCount>;

Odds OddsOf(const TextCells& cells) {
    CalcState state;
    RecalculateHand(state, cells);
    Odds odds;
    for (int i = 0; i < kHandClassCount; ++i) odds[i] = state.gOdds[i];
    return odds;
}

struct OddsCase {
    const char* what;
    TextCells cells;
    Odds odds;
};

class PreflopAndSearchOdds : public testing::TestWithParam<OddsCase> {};

TEST_P(PreflopAndSearchOdds, CellsReadAsDesigned) {
    EXPECT_EQ(OddsOf(GetParam().cells), GetParam().odds) << GetParam().what;
}

const Odds kEmpty{};

INSTANTIATE_TEST_SUITE_P(
    Tables, PreflopAndSearchOdds,
    testing::Values(
        OddsCase{"nothing known", {}, kEmpty}, OddsCase{"one card", {"AS"}, kEmpty},
        OddsCase{"three cards", {"AS", "KS", "QS"}, kEmpty},
        OddsCase{"four cards", {"AS", "KS", "QS", "JS"}, kEmpty},
        OddsCase{"pocket sevens, unsuited column",
                 {"7C", "7H"},
                 {"Current", "40", "12", "2 ", "2", "9", "1", ""}},
        OddsCase{"unsuited six five", {"6H", "5C"}, {"44", "22", "4", "9 ", "2", "2", "", ""}},
        OddsCase{"suited ace king", {"AS", "KS"}, {"44", "22", "4", "3 ", "7", "2", "", ""}},
        OddsCase{"suited king ace", {"KS", "AS"}, {"44", "22", "4", "3 ", "7", "2", "", ""}},
        OddsCase{"suited ace queen", {"AH", "QH"}, {"44", "22", "4", "3 ", "7", "2", "", ""}},
        OddsCase{"suited queen ace", {"QH", "AH"}, {"44", "22", "4", "4 ", "7", "2", "", ""}},
        OddsCase{"the same card twice is a suited pair",
                 {"AS", "AS"},
                 {"Current", "40", "12", "NA", "7", "9", "1", ""}},
        OddsCase{"suited two two was never filled",
                 {"2D", "2D"},
                 {"Current", "40", "12", "", "7", "9", "1", ""}},
        OddsCase{"two cards anywhere count",
                 {"9C", "", "", "JC"},
                 {"44", "22", "4", "7", "7", "2", "", ""}},
        OddsCase{"royal flush on the flop",
                 {"AS", "KS", "QS", "JS", "TS"},
                 {"", "", "", "", "", "", "", "Current"}},
        OddsCase{"top run plus one below is no straight flush",
                 {"AS", "KS", "QS", "JS", "TS", "9S"},
                 {"", "", "", "", "Current", "", "", ""}},
        OddsCase{"flush made with a pair held",
                 {"AH", "AS", "2S", "7S", "9S", "KS"},
                 {"", "", "", "", "Current", "", "", ""}},
        OddsCase{"a paired wheel without the ace is a straight",
                 {"2C", "3H", "4D", "5S", "5C"},
                 {"", "", "", "Current", "", "2", "", ""}},
        OddsCase{"open-ended straight draw on the flop",
                 {"5C", "6H", "7D", "8S", "KC"},
                 {"35", "10", "2", "31", "", "", "", ""}},
        OddsCase{"two pair on the flop",
                 {"AS", "AH", "KD", "KS", "2C"},
                 {"", "Current", "", "", "", "16", "", ""}},
        OddsCase{"two pair on the river still counts one card",
                 {"AS", "AH", "KD", "KS", "2C", "9H", "3D"},
                 {"", "Current", "", "", "", "9", "", ""}},
        OddsCase{"four suited aces alone end the search", {"AD", "AD", "AD", "AD", "7S"}, kEmpty},
        OddsCase{"a set on the flop",
                 {"7C", "7H", "7D", "KS", "2C"},
                 {"", "", "Current", "", "", "28", "4", ""}}),
    [](const testing::TestParamInfo<OddsCase>& info) {
        std::string name;
        for (const char* c = info.param.what; *c != '\0'; ++c) {
            if (std::isalnum(static_cast<unsigned char>(*c))) name += *c;
        }
        return name;
    });

TEST(StraightOdds, AsymmetricCellsStayAsymmetric) {
    EXPECT_EQ(StraightOddsCell(0, 13, 4), "3 ");
    EXPECT_EQ(StraightOddsCell(0, 4, 13), "2 ");
    EXPECT_EQ(StraightOddsCell(0, 11, 9), "7");
    EXPECT_EQ(StraightOddsCell(0, 9, 11), "7 ");
    EXPECT_THROW(StraightOddsCell(1, 15, 2), RuntimeFault);
}

TEST(StraightOdds, EveryOtherCellIsADigitAndABlankOrNA) {
    for (int column = 0; column <= 1; ++column) {
        for (int first = 2; first <= 14; ++first) {
            for (int second = 2; second <= 14; ++second) {
                const std::string cell(StraightOddsCell(column, second, first));
                if (column == 0 && ((first == 9 && second == 11) || (first == 2 && second == 2))) {
                    continue;
                }
                if (column == 0 && first == second) {
                    EXPECT_EQ(cell, "NA");
                } else {
                    ASSERT_EQ(cell.size(), 2u) << column << " " << first << " " << second;
                    EXPECT_TRUE(cell[0] >= '1' && cell[0] <= '9');
                    EXPECT_EQ(cell[1], ' ');
                }
            }
        }
    }
}

}  // namespace
}  // namespace felthawk
