// Pieces that the flop, turn and river strength stages share: the one chance
// formula, the seat-adjusted closing step of the flop, the rank counters and
// the straight-flush run scan.
#pragma once

#include <array>
#include <cstdint>

#include "cards/calc_state.h"

namespace felthawk {

// The chance that one of so many good cards comes in two draws from N unseen:
// 1 - ((N - a) / N) * ((N - 1 - b) / (N - 1)), evaluated in this order so
// that the doubles agree bit for bit.
double DrawChance(int16_t unseen, double outsFirst, double outsSecond);

// Counts "F" and "E" seats.
void CountSeats(const CalcState& state, int16_t& folded, int16_t& empty);

// True when at least minCount of the slots first..last hold the rank. last
// is capped at 6. Rank 0 is a rank like any other: on the flop the two empty
// slots 5 and 6 form a pair of rank 0 whenever a scan reaches them.
bool RankAtLeast(const CalcState& state, long rank, long first, long last, long minCount);

// A flop leaf's adjustment to its outs for seats that are out. Row 0 is
// added for folded seats, row 1 for empty seats; the column is the larger of
// the two counts, less one.
struct SeatAdjustTable {
    std::array<double, 8> folded;
    std::array<double, 8> empty;
};

// The flop's closing step: turns outs into gStrength over 47 unseen cards,
// one unseen card fewer per seat that is out, averaging the folded and the
// empty reading when both kinds of seat are out. A user alone gets 0.
void StrengthFromOuts(CalcState& state, double outs, const SeatAdjustTable& table);

// The run of a made straight flush, scanned from a rank counter array:
// bottom is the first rank present from 2 up, top the last rank before the
// next gap (0 when no gap comes before the ace). The wheel (bottom 2, top 5)
// reads as bottom 14, top 5.
struct StraightFlushRun {
    int bottom = 0;
    int top = 0;
};
StraightFlushRun FindStraightFlushRun(const FixedArray<int16_t, 0, 14>& counts);

}  // namespace felthawk
