#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <unordered_map>
#include <vector>

#include "equity/evaluator.h"

namespace felthawk::equity {
namespace {

// A slow five-card judge written from the rules: group the ranks by count,
// bigger groups first and higher ranks first within a count; the pattern of
// counts, the suits and a run decide the category; the grouped ranks then
// order hands of one category. The verdict is the category followed by those
// ranks, one hexadecimal digit each.
uint32_t Judge(const std::array<Card, 5>& cards) {
    std::array<int, kRankCount> countOf{};
    bool oneSuit = true;
    for (Card c : cards) {
        ++countOf[RankOf(c)];
        oneSuit &= SuitOf(c) == SuitOf(cards[0]);
    }
    std::vector<std::pair<int, int>> groups;  // (count, rank)
    for (int rank = 0; rank < kRankCount; ++rank) {
        if (countOf[rank] > 0) groups.emplace_back(countOf[rank], rank);
    }
    std::sort(groups.rbegin(), groups.rend());
    std::vector<int> ranks;
    for (auto [count, rank] : groups) ranks.push_back(rank);

    bool run = groups.size() == 5 && ranks.front() - ranks.back() == 4;
    if (ranks == std::vector<int>{12, 3, 2, 1, 0}) {
        run = true;
        ranks = {3};  // the wheel: the five is its top card
    }
    if (run) ranks.resize(1);
    int category;
    if (run && oneSuit) {
        category = 9;
    } else if (groups[0].first == 4) {
        category = 8;
    } else if (groups[0].first == 3 && groups[1].first == 2) {
        category = 7;
    } else if (oneSuit) {
        category = 6;
    } else if (run) {
        category = 5;
    } else if (groups[0].first == 3) {
        category = 4;
    } else if (groups[0].first == 2 && groups[1].first == 2) {
        category = 3;
    } else if (groups[0].first == 2) {
        category = 2;
    } else {
        category = 1;
    }
    uint32_t verdict = static_cast<uint32_t>(category);
    for (int i = 0; i < 5; ++i) {
        verdict = verdict << 4 | (i < static_cast<int>(ranks.size()) ? ranks[i] : 0);
    }
    return verdict;
}

TEST(Evaluator, EveryFiveCardHandAgreesWithTheJudge) {
    std::unordered_map<uint32_t, HandValue> valueOf;
    std::array<Card, 5> h;
    int64_t hands = 0;
    for (h[0] = 0; h[0] < kDeckSize; ++h[0]) {
        for (h[1] = h[0] + 1; h[1] < kDeckSize; ++h[1]) {
            for (h[2] = h[1] + 1; h[2] < kDeckSize; ++h[2]) {
                for (h[3] = h[2] + 1; h[3] < kDeckSize; ++h[3]) {
                    const Hand four =
                        Hand::Of(h[0]) + Hand::Of(h[1]) + Hand::Of(h[2]) + Hand::Of(h[3]);
                    for (h[4] = h[3] + 1; h[4] < kDeckSize; ++h[4]) {
                        const HandValue value = Evaluate(four + Hand::Of(h[4]));
                        const auto judged = Judge(h);
                        ASSERT_EQ(static_cast<uint32_t>(CategoryOf(value)), judged >> 20);
                        const auto it = valueOf.emplace(judged, value).first;
                        ASSERT_EQ(it->second, value) << "two equal hands valued apart";
                        ++hands;
                    }
                }
            }
        }
    }
    EXPECT_EQ(hands, 2'598'960);
    EXPECT_EQ(valueOf.size(), 7462u);
    // The judge's order and the values' order must be the same order.
    std::vector<std::pair<uint32_t, HandValue>> ordered(valueOf.begin(), valueOf.end());
    std::sort(ordered.begin(), ordered.end());
    for (std::size_t i = 1; i < ordered.size(); ++i) {
        ASSERT_GT(ordered[i].second, ordered[i - 1].second);
    }
}

// A seven-card value is the best of its 21 five-card hands, and counting a
// card by rank alone changes nothing when no flush is possible.
TEST(Evaluator, SevenCardsTakeTheBestFive) {
    std::mt19937 random(7);
    std::vector<Card> deck(kDeckSize);
    for (Card c = 0; c < kDeckSize; ++c) deck[c] = c;
    for (int trial = 0; trial < 20000; ++trial) {
        std::shuffle(deck.begin(), deck.end(), random);
        Hand seven;
        for (int i = 0; i < 7; ++i) seven += Hand::Of(deck[i]);
        HandValue best = 0;
        for (int skipA = 0; skipA < 7; ++skipA) {
            for (int skipB = skipA + 1; skipB < 7; ++skipB) {
                Hand five;
                for (int i = 0; i < 7; ++i) {
                    if (i != skipA && i != skipB) five += Hand::Of(deck[i]);
                }
                best = std::max(best, Evaluate(five));
            }
        }
        ASSERT_EQ(Evaluate(seven), best) << "trial " << trial;
        if (CategoryOf(best) != Category::kFlush && CategoryOf(best) != Category::kStraightFlush) {
            ASSERT_EQ(EvaluateRanks(seven.RankKey()), best);
        }
    }
}

}  // namespace
}  // namespace felthawk::equity
