#include "cards/recalculate.h"

#include <gtest/gtest.h>

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
}

}  // namespace
}  // namespace felthawk
