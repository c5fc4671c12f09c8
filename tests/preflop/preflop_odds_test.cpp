#include "preflop/update_odds.h"

#include <gtest/gtest.h>

namespace felthawk {
namespace {

TEST(StraightOdds, AsymmetricCellsStayAsymmetric) {
    EXPECT_EQ(StraightOddsCell(0, 13, 4), "3 ");
    EXPECT_EQ(StraightOddsCell(0, 4, 13), "2 ");
    EXPECT_EQ(StraightOddsCell(0, 11, 9), "7");
    EXPECT_EQ(StraightOddsCell(0, 9, 11), "7 ");
    EXPECT_EQ(StraightOddsCell(0, 2, 2), "");
}

}  // namespace
}  // namespace felthawk
