// What the river branches share: the hole ranks, the board's suit picture,
// the board's ranks without the hole cards, the span scans over a rank
// counter, the rank tables of the leaves and the closing step.
//
// On the river no card is to come, so the figure means how well the finished
// hand stands. Most leaves still express that as outs fed to the two-draw
// chance over the 45 unseen cards, read as the two cards an opponent holds.
// Seats do not enter there; only the table leaves read the empty seats.
#pragma once

#include <array>
#include <cstdint>

#include "cards/calc_state.h"

namespace felthawk::river {

// Counters by rank, index 0..14 (2..14 are the real ranks, the ace high).
using RankCounts = FixedArray<int16_t, 0, 14>;

// Cards unseen on the river: 52 less the seven known.
constexpr int16_t kRiverUnseen = 45;

// Rank of the card in gCards slot 0 or slot 1. The two are never sorted
// here: several leaves treat the slots differently on purpose.
int16_t HoleRank(const CalcState& state, int slot);

// A suit table over the five board cards (slots 2..6).
struct BoardSuits {
    FixedArray<int16_t, 0, 3> count;  // 0 clubs, 1 spades, 2 hearts, 3 diamonds
    int16_t most = 0;                 // the largest count, M
    int16_t mostSuit = 0;             // the suit of M; on a tie the lowest index
};
BoardSuits CountBoardSuits(const CalcState& state);

// gRiverRankCount less one at the rank of slot 0 and one at the rank of
// slot 1: the board's ranks alone.
RankCounts BoardRanksWithoutHole(const CalcState& state);

// The lowest rank 2..14 whose counter equals `wanted`; 0 when none does.
int16_t FirstRankWithCount(const RankCounts& counts, int wanted);

// How a span scan tests one rank's counter.
enum class RankTest { AtLeastOne, ExactlyOne };

// Counts the ranks start..start+width-1 whose counter passes the test.
int CountSpan(const RankCounts& counts, int start, int width, RankTest test);

// The first start, running up from 2, whose span of the given width holds
// exactly `wanted` ranks passing the test; 0 when none does. A span never
// runs past the ace: width 3 starts run to 12, 4 to 11, 5 to 10, 6 to 9.
int FirstSpanWithCount(const RankCounts& counts, int width, int wanted, RankTest test);
constexpr int LastSpanStart(int width) {
    return 15 - width;
}

// A leaf's table of outs by rank, laid out like the printed tables: one cell
// per rank 2..14 and a figure for any other rank. kOther in a cell sends
// that rank to the `other` figure too.
inline constexpr double kOther = -1.0;
struct OutsByRank {
    std::array<double, 13> byRank;  // ranks 2, 3, ..., 14
    double other;

    constexpr double operator()(long rank) const {
        if (rank < 2 || rank > 14) return other;
        const double cell = byRank[static_cast<std::size_t>(rank - 2)];
        return cell == kOther ? other : cell;
    }
};

// The closing step of every outs leaf: gStrength is the chance, in whole
// percent, that one of `outs` cards is among two drawn from the 45 unseen.
void CloseRiverLeaf(CalcState& state, const char* leaf, double outs);

// The branches of the cascade, one per made hand class. Each leaves its
// figure in gStrength, or leaves gStrength at 0 when its hand fits no leaf.
void RiverStraightFlush(CalcState& state);
void RiverFourOfAKind(CalcState& state);
void RiverFullHouse(CalcState& state);
void RiverFlush(CalcState& state);
void RiverStraight(CalcState& state);
void RiverThreeOfAKind(CalcState& state);
void RiverTwoPair(CalcState& state);
void RiverPair(CalcState& state);
void RiverNoPair(CalcState& state);

}  // namespace felthawk::river
