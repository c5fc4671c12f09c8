#include "equity/evaluator.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace felthawk::equity {
namespace {

using RankCounts = std::array<int, kRankCount>;

// A hand's order before compaction: the category, then up to five ranks in
// order of weight, one nibble each.
uint32_t RawValue(Category category, std::initializer_list<int> ranks) {
    uint32_t raw = static_cast<uint32_t>(category);
    int nibbles = 0;
    for (int rank : ranks) {
        raw = (raw << 4) | static_cast<uint32_t>(rank);
        ++nibbles;
    }
    return raw << (4 * (5 - nibbles));
}

// The top rank of the best five-rank run in `rankBits`, or -1. The ace also
// plays low, under the deuce, so the wheel's top is the five (rank 3).
int StraightTop(uint32_t rankBits) {
    const uint32_t withLowAce = (rankBits << 1) | (rankBits >> 12 & 1u);
    for (int top = 12; top >= 3; --top) {
        const uint32_t run = 0x1fu << (top - 3);  // bits top-3..top+1 of withLowAce
        if ((withLowAce & run) == run) return top;
    }
    return -1;
}

// Up to seven ranks, highest first.
struct RankList {
    std::array<int, 7> ranks{};
    int size = 0;

    int operator[](int i) const { return ranks[i]; }
    bool empty() const { return size == 0; }
};

// The ranks present with at least `minCount` cards, highest first, skipping
// the ranks in `skip`.
RankList RanksWith(const RankCounts& counts, int minCount, std::initializer_list<int> skip = {}) {
    RankList list;
    for (int rank = kRankCount - 1; rank >= 0; --rank) {
        if (counts[rank] >= minCount && std::find(skip.begin(), skip.end(), rank) == skip.end())
            list.ranks[list.size++] = rank;
    }
    return list;
}

// The best five-card hand that five to seven cards of these ranks make when
// no flush is possible.
uint32_t RawFromRanks(const RankCounts& counts) {
    uint32_t rankBits = 0;
    for (int rank = 0; rank < kRankCount; ++rank) {
        if (counts[rank] > 0) rankBits |= 1u << rank;
    }
    const auto quads = RanksWith(counts, 4);
    if (!quads.empty()) {
        return RawValue(Category::kFourOfAKind, {quads[0], RanksWith(counts, 1, {quads[0]})[0]});
    }
    const auto trips = RanksWith(counts, 3);
    if (!trips.empty()) {
        const auto pairs = RanksWith(counts, 2, {trips[0]});
        if (!pairs.empty()) return RawValue(Category::kFullHouse, {trips[0], pairs[0]});
    }
    if (const int top = StraightTop(rankBits); top >= 0)
        return RawValue(Category::kStraight, {top});
    if (!trips.empty()) {
        const auto kickers = RanksWith(counts, 1, {trips[0]});
        return RawValue(Category::kThreeOfAKind, {trips[0], kickers[0], kickers[1]});
    }
    const auto pairs = RanksWith(counts, 2);
    if (pairs.size >= 2) {
        const auto kicker = RanksWith(counts, 1, {pairs[0], pairs[1]});
        return RawValue(Category::kTwoPair, {pairs[0], pairs[1], kicker[0]});
    }
    const auto singles = RanksWith(counts, 1);
    if (pairs.size == 1) {
        const auto kickers = RanksWith(counts, 1, {pairs[0]});
        return RawValue(Category::kPair, {pairs[0], kickers[0], kickers[1], kickers[2]});
    }
    return RawValue(Category::kHighCard,
                    {singles[0], singles[1], singles[2], singles[3], singles[4]});
}

// The best hand of one suit's ranks, five or more of them.
uint32_t RawFromFlush(uint32_t suitRanks) {
    if (const int top = StraightTop(suitRanks); top >= 0) {
        return RawValue(Category::kStraightFlush, {top});
    }
    RankList top5;
    for (int rank = kRankCount - 1; rank >= 0 && top5.size < 5; --rank) {
        if (suitRanks >> rank & 1u) top5.ranks[top5.size++] = rank;
    }
    return RawValue(Category::kFlush, {top5[0], top5[1], top5[2], top5[3], top5[4]});
}

// Every rank multiset of five to seven cards, no rank more than four times.
void ForEachRankMultiset(const auto& visit) {
    RankCounts counts{};
    auto walk = [&](auto& self, int rank, int cards) -> void {
        if (rank == kRankCount) {
            if (cards >= 5) visit(counts);
            return;
        }
        for (int n = 0; n <= 4 && cards + n <= 7; ++n) {
            counts[rank] = n;
            self(self, rank + 1, cards + n);
        }
        counts[rank] = 0;
    };
    walk(walk, 0, 0);
}

uint32_t RankKeyOf(const RankCounts& counts) {
    uint32_t key = 0;
    for (int rank = 0; rank < kRankCount; ++rank) key += counts[rank] * kRankKey[rank];
    return key;
}

// Turns raw values into HandValues: the category in the top bits and the
// place among the category's distinct five-card hands below. The distinct
// raw values are those of all five-rank multisets and five-card flushes:
// the 7,462 classes of five-card poker hands.
class Compactor {
  public:
    Compactor() {
        ForEachRankMultiset([&](const RankCounts& counts) {
            int cards = 0;
            for (int n : counts) cards += n;
            if (cards == 5) raws_.push_back(RawFromRanks(counts));
        });
        for (uint32_t mask = 0; mask < (1u << kRankCount); ++mask) {
            if (std::popcount(mask) == 5) raws_.push_back(RawFromFlush(mask));
        }
        std::sort(raws_.begin(), raws_.end());
        raws_.erase(std::unique(raws_.begin(), raws_.end()), raws_.end());
    }

    HandValue operator()(uint32_t raw) const {
        const auto it = std::lower_bound(raws_.begin(), raws_.end(), raw);
        const uint32_t category = raw >> 20;
        const auto first = std::lower_bound(raws_.begin(), raws_.end(), category << 20);
        return static_cast<HandValue>((category << kCategoryShift) | (it - first));
    }

  private:
    std::vector<uint32_t> raws_;
};

struct KeyedValue {
    uint32_t rankKey;
    HandValue value;
};

// Places every key with hash-and-displace: buckets, largest first, each get
// the first displacement that sends all their keys to free slots. A second
// multiplier is tried when two keys of one bucket share a slot hash, which
// no displacement can part.
void BuildRankHash(const std::vector<KeyedValue>& keys, detail::EvaluatorTables& t) {
    constexpr uint32_t kSlotCount = 1u << detail::kSlotBits;
    t.bucketMultiplier = 0x9e3779b1u;
    for (uint32_t multiplier = 0x85ebca6bu;; multiplier += 0x6a09e668u) {
        t.slotMultiplier = multiplier | 1u;
        std::vector<std::vector<std::pair<uint32_t, HandValue>>> buckets(1u << detail::kBucketBits);
        for (const auto& k : keys) {
            const uint32_t bucket = (k.rankKey * t.bucketMultiplier) >> (32 - detail::kBucketBits);
            const uint32_t slot = (k.rankKey * t.slotMultiplier) >> (32 - detail::kSlotBits);
            buckets[bucket].emplace_back(slot, k.value);
        }
        bool separable = true;
        for (auto& b : buckets) {
            std::sort(b.begin(), b.end());
            for (std::size_t i = 1; i < b.size(); ++i) separable &= b[i].first != b[i - 1].first;
        }
        if (!separable) continue;

        std::vector<uint32_t> order(buckets.size());
        for (uint32_t i = 0; i < order.size(); ++i) order[i] = i;
        std::stable_sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
            return buckets[a].size() > buckets[b].size();
        });
        std::vector<bool> used(kSlotCount);
        t.displacement.fill(0);
        for (uint32_t bucket : order) {
            const auto& entries = buckets[bucket];
            if (entries.empty()) break;
            uint32_t d = 0;
            auto fits = [&] {
                for (const auto& e : entries) {
                    if (used[e.first ^ d]) return false;
                }
                return true;
            };
            while (d < kSlotCount && !fits()) ++d;
            if (d == kSlotCount) throw std::logic_error("rank hash: a bucket found no place");
            t.displacement[bucket] = d;
            for (const auto& e : entries) {
                used[e.first ^ d] = true;
                t.byRanks[e.first ^ d] = e.second;
            }
        }
        return;
    }
}

detail::EvaluatorTables BuildEvaluatorTables() {
    detail::EvaluatorTables t{};
    const Compactor compact;
    for (uint32_t mask = 0; mask < (1u << kRankCount); ++mask) {
        t.flush[mask] = std::popcount(mask) >= 5 ? compact(RawFromFlush(mask)) : 0;
    }
    std::vector<KeyedValue> keys;
    ForEachRankMultiset([&](const RankCounts& counts) {
        keys.push_back({RankKeyOf(counts), compact(RawFromRanks(counts))});
    });
    BuildRankHash(keys, t);
    return t;
}

}  // namespace

namespace detail {
// Built before main() from the rules of poker alone; nothing is read from disk.
const EvaluatorTables gEvaluatorTables = BuildEvaluatorTables();
}  // namespace detail

}  // namespace felthawk::equity
