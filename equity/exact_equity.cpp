// Exact equity: every joint holding of the opponents, and for each every
// board still to come.
//
// Boards are not dealt one by one. A flush needs five cards of one suit, so
// a player's flush needs three of its suit on the final board, and no final
// board holds three of two suits. The walk therefore
//   1. counts every board by its ranks alone, each rank pattern weighted by
//      the number of ways to pick its cards, as if no flush were possible;
//   2. then, suit by suit, walks only the boards where that suit could give
//      somebody a flush (its new cards exact, the others by rank), taking off
//      the rank-only result and putting in the true one.
// Deals that differ only by a renaming of suits, or by the order of the
// opponents, score the same; with many boards to come each such class is
// walked once.
#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "equity/showdown.h"

namespace felthawk::equity::detail {
namespace {

// Binomial[n][k] for n <= 4 (cards of one rank) and n <= 13 (ranks of a suit).
constexpr std::array<std::array<int64_t, 6>, 14> kBinomial = [] {
    std::array<std::array<int64_t, 6>, 14> c{};
    for (int n = 0; n < 14; ++n) {
        c[n][0] = 1;
        for (int k = 1; k < 6 && k <= n; ++k)
            c[n][k] = c[n - 1][k - 1] + (k <= n - 1 ? c[n - 1][k] : 0);
    }
    return c;
}();

// Part 0 is the rank pass; part 1 + s the flush pass of suit s.
constexpr int kParts = 1 + kSuitCount;

// One fixed deal of hole cards, the board still to come.
class BoardWalk {
  public:
    BoardWalk(const Spot& spot, const std::array<std::array<Card, 2>, kMaxPlayers>& holes,
              int players)
        : players_(players), toCome_(spot.cardsToCome) {
        Hand board;
        CardMask dead = spot.known;
        for (Card c : spot.board) {
            board += Hand::Of(c);
            ++boardSuits_[SuitOf(c)];
        }
        std::array<int, kSuitCount> mostHeld{};
        for (int p = 0; p < players; ++p) {
            made_[p] = board + Hand::Of(holes[p][0]) + Hand::Of(holes[p][1]);
            for (Card c : holes[p]) {
                dead |= Bit(c);
                ++held_[p][SuitOf(c)];
            }
            for (int s = 0; s < kSuitCount; ++s) mostHeld[s] = std::max(mostHeld[s], held_[p][s]);
        }
        for (int s = 0; s < kSuitCount; ++s) {
            fewestNew_[s] = std::max(0, 5 - boardSuits_[s] - mostHeld[s]);
        }
        for (Card c = 0; c < kDeckSize; ++c) {
            if (!(dead & Bit(c))) ++live_[RankOf(c)];
        }
        dead_ = dead;
    }

    Tally Run(int part) {
        Tally tally;
        if (part == 0) {
            WalkRanks(kRankCount - 1, toCome_, 0, 1, live_, [&](uint32_t key, int64_t weight) {
                HandValue values[kMaxPlayers] = {};
                for (int p = 0; p < players_; ++p)
                    values[p] = EvaluateRanks(made_[p].RankKey() + key);
                tally.deals += weight;
                Score(values, players_, weight, tally);
            });
        } else {
            FlushPass(part - 1, tally);
        }
        return tally;
    }

  private:
    // Every multiset of `left` ranks from `rank` down, at most live[r] of
    // rank r, with the number of ways to pick its cards.
    template <class Leaf>
    static void WalkRanks(int rank, int left, uint32_t key, int64_t weight,
                          const std::array<int, kRankCount>& live, const Leaf& leaf) {
        if (left == 0) {
            leaf(key, weight);
            return;
        }
        if (rank < 0) return;
        const int most = std::min(live[rank], left);
        for (int n = 0; n <= most; ++n) {
            WalkRanks(rank - 1, left - n, key + n * kRankKey[rank],
                      weight * kBinomial[live[rank]][n], live, leaf);
        }
    }

    // Boards with `m` new cards of `suit`, enough for somebody's flush.
    void FlushPass(int suit, Tally& tally) {
        if (fewestNew_[suit] > toCome_) return;
        std::array<int, kRankCount> otherSuits = live_;
        std::vector<int> suitRanks;
        for (int r = kRankCount - 1; r >= 0; --r) {
            if (!(dead_ & Bit(MakeCard(r, suit)))) {
                suitRanks.push_back(r);
                --otherSuits[r];
            }
        }
        // Only players who can reach five of the suit may score otherwise than by ranks.
        auto leaf = [&](Hand suited, int m) {
            std::array<bool, kMaxPlayers> canFlush{};
            for (int p = 0; p < players_; ++p)
                canFlush[p] = held_[p][suit] + boardSuits_[suit] + m >= 5;
            return [&, suited, canFlush](uint32_t key, int64_t weight) {
                HandValue exact[kMaxPlayers] = {};
                HandValue byRanks[kMaxPlayers] = {};
                bool differs = false;
                for (int p = 0; p < players_; ++p) {
                    const Hand all = made_[p] + suited + Hand{key, 0};
                    byRanks[p] = EvaluateRanks(all.RankKey());
                    exact[p] = canFlush[p] ? Evaluate(all) : byRanks[p];
                    differs |= exact[p] != byRanks[p];
                }
                if (!differs) return;
                Score(exact, players_, weight, tally);
                Score(byRanks, players_, -weight, tally);
            };
        };
        const int most = std::min<int>(toCome_, static_cast<int>(suitRanks.size()));
        for (int m = fewestNew_[suit]; m <= most; ++m) {
            ForEachSubset(suitRanks, 0, m, suit, Hand{}, [&](Hand suited) {
                WalkRanks(kRankCount - 1, toCome_ - m, 0, 1, otherSuits, leaf(suited, m));
            });
        }
    }

    template <class Visit>
    static void ForEachSubset(const std::vector<int>& ranks, std::size_t from, int left, int suit,
                              Hand suited, const Visit& visit) {
        if (left == 0) {
            visit(suited);
            return;
        }
        for (std::size_t i = from; i + left <= ranks.size(); ++i) {
            ForEachSubset(ranks, i + 1, left - 1, suit, suited + Hand::Of(MakeCard(ranks[i], suit)),
                          visit);
        }
    }

    int players_;
    int toCome_;
    CardMask dead_ = 0;
    std::array<Hand, kMaxPlayers> made_{};
    std::array<std::array<int, kSuitCount>, kMaxPlayers> held_{};  // hole cards by suit
    std::array<int, kSuitCount> boardSuits_{};
    std::array<int, kSuitCount> fewestNew_{};
    std::array<int, kRankCount> live_{};
};

using Holes = std::array<std::array<Card, 2>, kMaxPlayers>;

Holes HolesOf(const Spot& spot, const std::array<int, kMaxOpponents>& combos) {
    Holes holes{};
    holes[0] = spot.hero;
    for (std::size_t i = 0; i < spot.ranges.size(); ++i) {
        const auto& combo = spot.ranges[i][combos[i]];
        holes[i + 1] = {combo.high, combo.low};
    }
    return holes;
}

// The same text for every deal that a renaming of suits and a reordering of
// the opponents turn into each other: the smallest of the 24 renamings, each
// written as board, user, and the opponents' hands in sorted order.
std::string ClassKey(const Spot& spot, const Holes& holes, int players) {
    static constexpr auto kRenamings = [] {
        std::array<std::array<int, kSuitCount>, 24> all{};
        std::array<int, kSuitCount> order{0, 1, 2, 3};
        for (auto& r : all) {
            r = order;
            std::next_permutation(order.begin(), order.end());
        }
        return all;
    }();
    std::string best;
    std::string key;
    for (const auto& rename : kRenamings) {
        auto renamed = [&](Card c) {
            return static_cast<char>(MakeCard(RankOf(c), rename[SuitOf(c)]));
        };
        key.clear();
        std::string board;
        for (Card c : spot.board) board += renamed(c);
        std::sort(board.begin(), board.end());
        key += board;
        std::vector<std::string> hands;
        for (int p = 0; p < players; ++p) {
            std::string hand{renamed(holes[p][0]), renamed(holes[p][1])};
            std::sort(hand.begin(), hand.end());
            hands.push_back(hand);
        }
        std::sort(hands.begin() + 1, hands.end());
        for (const auto& h : hands) key += h;
        if (best.empty() || key < best) best = key;
    }
    return best;
}

struct DealClass {
    Holes holes;
    double weight = 0;  // the summed weight of the joint holdings in the class
    int64_t members = 0;
};

// Weighted sums over deals of the user's results.
struct Totals {
    double wins = 0, ties = 0, shares = 0, weight = 0;
    uint64_t deals = 0;

    void Add(const Tally& tally, double classWeight, int64_t members, bool countsDeals) {
        wins += classWeight * static_cast<double>(tally.wins);
        ties += classWeight * static_cast<double>(tally.ties);
        shares += classWeight * static_cast<double>(tally.shares);
        if (countsDeals) {
            weight += classWeight * static_cast<double>(tally.deals);
            deals += static_cast<uint64_t>(members * tally.deals);
        }
    }
    void operator+=(const Totals& o) {
        wins += o.wins;
        ties += o.ties;
        shares += o.shares;
        weight += o.weight;
        deals += o.deals;
    }
};

// Runs work(thread) on `threads` threads, this one included, and sums their totals.
template <class Work>
Totals OnThreads(int threads, const Work& work) {
    std::vector<Totals> results(threads);
    std::vector<std::thread> helpers;
    for (int t = 1; t < threads; ++t) helpers.emplace_back([&, t] { results[t] = work(); });
    results[0] = work();
    for (auto& h : helpers) h.join();
    Totals sum;
    for (const auto& r : results) sum += r;
    return sum;
}

// Boards to come above this count make grouping deals into classes pay.
constexpr int kClassesFrom = 4;

// Rough evaluations per deal by the number of board cards to come.
constexpr std::array<double, 6> kCostPerDeal = {2, 30, 250, 2'000, 12'000, 60'000};

}  // namespace

double ExactCost(const Spot& spot) {
    double deals = 1;
    for (const auto& range : spot.ranges) deals *= static_cast<double>(range.size());
    return deals * kCostPerDeal[spot.cardsToCome] * static_cast<double>(spot.ranges.size() + 1);
}

EquityResult ExactEquity(const Spot& spot, const EquityRequest& request) {
    const auto start = std::chrono::steady_clock::now();
    const int players = static_cast<int>(spot.ranges.size()) + 1;
    const int threads = std::max(1, request.threads);
    std::array<int, kMaxOpponents> combos{};
    Totals totals;
    auto cancelled = [&] {
        return request.cancel && request.cancel->load(std::memory_order_relaxed);
    };

    if (spot.cardsToCome >= kClassesFrom) {
        std::map<std::string, DealClass> byKey;
        ForEachHolding(spot, 0, spot.known, 1.0, combos, [&](const auto& dealt, double weight) {
            const Holes holes = HolesOf(spot, dealt);
            auto& c = byKey[ClassKey(spot, holes, players)];
            if (c.members++ == 0) c.holes = holes;
            c.weight += weight;
            return true;
        });
        std::vector<const DealClass*> classes;
        for (const auto& [key, c] : byKey) classes.push_back(&c);
        std::atomic<std::size_t> next{0};
        totals = OnThreads(threads, [&] {
            Totals mine;
            for (std::size_t item; !cancelled() && (item = next++) < classes.size() * kParts;) {
                const DealClass& c = *classes[item / kParts];
                const int part = static_cast<int>(item % kParts);
                mine.Add(BoardWalk(spot, c.holes, players).Run(part), c.weight, c.members,
                         part == 0);
            }
            return mine;
        });
    } else {
        // Few boards per deal: share out the first opponent's combos, deal the rest in place.
        std::atomic<std::size_t> next{0};
        totals = OnThreads(threads, [&] {
            Totals mine;
            std::array<int, kMaxOpponents> dealt{};
            const Range& first = spot.ranges[0];
            for (std::size_t i; !cancelled() && (i = next++) < first.size();) {
                dealt[0] = static_cast<int>(i);
                ForEachHolding(spot, 1, spot.known | first[i].Mask(), first[i].weight, dealt,
                               [&](const auto& all, double weight) {
                                   BoardWalk walk(spot, HolesOf(spot, all), players);
                                   for (int part = 0; part < kParts; ++part) {
                                       mine.Add(walk.Run(part), weight, 1, part == 0);
                                   }
                                   return true;
                               });
            }
            return mine;
        });
    }
    EquityResult result;
    result.cancelled = cancelled();
    if (result.cancelled) return result;
    if (totals.weight <= 0)
        throw EquityError("no deal gives every opponent a hand from the ranges");

    result.opponents = players - 1;
    result.method = EquityMethod::kExact;
    result.win = totals.wins / totals.weight;
    result.tie = totals.ties / totals.weight;
    result.equity = totals.shares / (totals.weight * static_cast<double>(kWholePot));
    result.samples = totals.deals;
    result.milliseconds = MillisecondsSince(start);
    return result;
}

}  // namespace felthawk::equity::detail
