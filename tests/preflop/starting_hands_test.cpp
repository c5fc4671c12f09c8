#include "preflop/starting_hands.h"

#include <gtest/gtest.h>

namespace felthawk {
namespace {

TEST(StartingHands, EveryNameOnce) {
    for (std::size_t i = 0; i < gStartingHands.size(); ++i) {
        for (std::size_t j = i + 1; j < gStartingHands.size(); ++j) {
            EXPECT_NE(gStartingHands[i].name, gStartingHands[j].name);
        }
    }
}

}  // namespace
}  // namespace felthawk
