// The seven-card hand evaluator.
//
// A Hand is additive: adding two hands with no card in common gives the hand
// of both, so hole cards and a known board are summed once and reused. It
// carries
//   - a rank key: the sum of 5^rank over its cards, so that the key is the
//     base-5 number of its rank counts and every rank multiset has its own;
//   - four 4-bit suit counters;
//   - the cards' bits, 16 per suit, so a suit's ranks are one 13-bit mask.
// A card may also be added for its rank alone (RankOnly), for cards whose
// suit cannot matter.
//
// Evaluate() gives a HandValue for five to seven cards: higher is better,
// equal values are equal hands, and value >> 12 is the Category.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "equity/card.h"

namespace felthawk::equity {

using HandValue = uint16_t;

enum class Category : int {
    kHighCard = 1,
    kPair,
    kTwoPair,
    kThreeOfAKind,
    kStraight,
    kFlush,
    kFullHouse,
    kFourOfAKind,
    kStraightFlush,
};
constexpr int kCategoryShift = 12;

constexpr Category CategoryOf(HandValue value) {
    return static_cast<Category>(value >> kCategoryShift);
}

// 5^rank for rank 0..12.
constexpr std::array<uint32_t, kRankCount> kRankKey = [] {
    std::array<uint32_t, kRankCount> keys{};
    uint32_t key = 1;
    for (auto& k : keys) {
        k = key;
        key *= 5;
    }
    return keys;
}();

constexpr int kSuitCounterShift = 32;
constexpr int kSuitMaskBits = 16;

struct Hand {
    uint64_t key = 0;   // bits 0-31 rank key, bits 32-47 the suit counters
    uint64_t mask = 0;  // bit 16 * suit + rank for every card

    static constexpr Hand Of(Card card) {
        const int suit = SuitOf(card);
        return {kRankKey[RankOf(card)] | (uint64_t{1} << (kSuitCounterShift + 4 * suit)),
                uint64_t{1} << (kSuitMaskBits * suit + RankOf(card))};
    }
    static constexpr Hand RankOnly(int rank) { return {kRankKey[rank], 0}; }

    constexpr Hand operator+(Hand other) const { return {key + other.key, mask + other.mask}; }
    constexpr Hand& operator+=(Hand other) {
        key += other.key;
        mask += other.mask;
        return *this;
    }
    constexpr uint32_t RankKey() const { return static_cast<uint32_t>(key); }
};

namespace detail {

constexpr int kBucketBits = 14;
constexpr int kSlotBits = 17;

// Built once at start-up by BuildEvaluatorTables() (evaluator.cpp).
struct EvaluatorTables {
    // Value of a flush or straight flush by the 13-bit mask of the suit's ranks.
    std::array<HandValue, 1 << kRankCount> flush;
    // The rank-key perfect hash: bucket by one multiplier, slot by a second
    // multiplier xor the bucket's displacement.
    uint32_t bucketMultiplier;
    uint32_t slotMultiplier;
    std::array<uint32_t, 1 << kBucketBits> displacement;
    std::array<HandValue, 1 << kSlotBits> byRanks;
};

extern const EvaluatorTables gEvaluatorTables;

}  // namespace detail

// Value of a hand of five to seven cards whose suits cannot make a flush
// (or that were added RankOnly): the value of its ranks alone.
inline HandValue EvaluateRanks(uint32_t rankKey) {
    const auto& t = detail::gEvaluatorTables;
    const uint32_t bucket = (rankKey * t.bucketMultiplier) >> (32 - detail::kBucketBits);
    const uint32_t slot =
        ((rankKey * t.slotMultiplier) >> (32 - detail::kSlotBits)) ^ t.displacement[bucket];
    return t.byRanks[slot];
}

inline HandValue Evaluate(Hand hand) {
    // Each counter plus 3 reaches 8 (its top bit) at five cards of the suit;
    // seven cards hold at most one such suit.
    const uint32_t flushBits =
        (static_cast<uint32_t>(hand.key >> kSuitCounterShift) + 0x3333u) & 0x8888u;
    if (flushBits != 0) {
        const int suit = std::countr_zero(flushBits) >> 2;
        return detail::gEvaluatorTables.flush[(hand.mask >> (kSuitMaskBits * suit)) & 0x1fffu];
    }
    return EvaluateRanks(hand.RankKey());
}

}  // namespace felthawk::equity
