#include <gtest/gtest.h>

#include <array>

#include "equity/evaluator.h"

namespace felthawk::equity {
namespace {

// The number of seven-card hands whose best five cards fall in each category.
TEST(SevenCardHands, EachCategoryHasItsKnownCount) {
    std::array<int64_t, 10> counts{};
    std::array<Hand, kDeckSize> cards;
    for (Card c = 0; c < kDeckSize; ++c) cards[c] = Hand::Of(c);
    for (int a = 0; a < kDeckSize; ++a) {
        for (int b = a + 1; b < kDeckSize; ++b) {
            const Hand ab = cards[a] + cards[b];
            for (int c = b + 1; c < kDeckSize; ++c) {
                const Hand abc = ab + cards[c];
                for (int d = c + 1; d < kDeckSize; ++d) {
                    const Hand abcd = abc + cards[d];
                    for (int e = d + 1; e < kDeckSize; ++e) {
                        const Hand five = abcd + cards[e];
                        for (int f = e + 1; f < kDeckSize; ++f) {
                            const Hand six = five + cards[f];
                            for (int g = f + 1; g < kDeckSize; ++g) {
                                ++counts[Evaluate(six + cards[g]) >> kCategoryShift];
                            }
                        }
                    }
                }
            }
        }
    }
    const std::array<int64_t, 10> known = {0,         23'294'460, 58'627'800, 31'433'400, 6'461'620,
                                           6'180'020, 4'047'644,  3'473'184,  224'848,    41'584};
    EXPECT_EQ(counts, known);
}

}  // namespace
}  // namespace felthawk::equity
