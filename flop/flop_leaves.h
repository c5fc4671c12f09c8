// The branches and leaves of the flop cascade, and the small pieces they
// share. Private to flop/: the rest of the program only calls
// CalcFlopStrength.
//
// Every branch takes the shared state; gRankCount, gFoldedCount and
// gEmptyCount are filled by CalcFlopStrength before the first branch runs.
// Ranks are 2..14, ace high; suit indices 0 clubs, 1 spades, 2 hearts,
// 3 diamonds. A leaf turns the hand into "outs" (a figure that grows with
// the hand's worth, not a true count of cards) and closes with
// StrengthFromOuts, which leaves gStrength.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "cards/calc_state.h"
#include "flop/strength_common.h"

namespace felthawk {

// A leaf's seat table with the name the trace shows for it.
struct FlopSeatTable {
    const char* name;
    SeatAdjustTable table;
};

// Notes the leaf's name, its outs and its seat table, then runs the closing
// step.
void CloseFlopLeaf(CalcState& state, const char* leaf, double outs, const FlopSeatTable& seats);

// The seat tables of a made full house and of a made straight: one pair,
// chosen by the outs figure (at most 20, or above).
const FlopSeatTable& MadeHandSeats(double outs);

// A constexpr table read like a fixed array declared Lower..: an index
// outside raises a subscript fault.
template <class T, std::size_t N>
const T& TableAt(const std::array<T, N>& table, long index, long lower) {
    const long upper = lower + static_cast<long>(N) - 1;
    if (index < lower || index > upper) RaiseSubscriptFault(index, lower, upper);
    return table[static_cast<std::size_t>(index - lower)];
}

// Outs added by a card's rank: one figure for each rank from 10 to the ace,
// and one for every other rank (0 included).
struct RankBonus {
    double ten;
    double jack;
    double queen;
    double king;
    double ace;
    double other;

    constexpr double For(int rank) const {
        switch (rank) {
            case 10:
                return ten;
            case 11:
                return jack;
            case 12:
                return queen;
            case 13:
                return king;
            case 14:
                return ace;
            default:
                return other;
        }
    }
};

// Rank of a gCards slot (0 for an empty slot).
inline int SlotRank(const CalcState& state, int slot) {
    return RankOf(state.gCards[slot]);
}

// The rank of the first of slots 2..6 whose rank at least minCount of those
// slots hold. The empty slots 5 and 6 count as a pair of rank 0, so with
// minCount 2 a flop always has one.
std::optional<int16_t> BoardRankHeld(const CalcState& state, long minCount);

// How many of the slots first..last are of each suit index.
FixedArray<int16_t, 0, 3> CountSuits(const CalcState& state, int first, int last);

// Branches, in the order of the cascade.
void FlopStraightFlush(CalcState& state);
void FlopFourOfAKind(CalcState& state);
void FlopFullHouse(CalcState& state);
void FlopFlush(CalcState& state);
void FlopStraightGate(CalcState& state);
void FlopStraight(CalcState& state);
void FlopThreeOfAKind(CalcState& state);
void FlopTwoPair(CalcState& state);
void FlopPair(CalcState& state);
void FlopNoPair(CalcState& state);

// Full-house leaves.
void FlopFullHouseBoardTrips(CalcState& state);
void FlopFullHousePocket(CalcState& state);
void FlopFullHouseOpen(CalcState& state);

// Three-of-a-kind leaves.
void FlopBoardTrips(CalcState& state, int16_t rank);
void FlopTripsBoardPair(CalcState& state);
void FlopSet(CalcState& state, int16_t pocket);

// Two-pair leaves.
void FlopTwoPairPocket(CalcState& state, int16_t pocket);
void FlopTwoPairBoard(CalcState& state, int16_t holePair, int16_t kicker, int16_t boardPair);
void FlopTwoPairHole(CalcState& state, int16_t first, int16_t second);

// One-pair leaves.
void FlopBoardPair(CalcState& state);
void FlopPocketPair(CalcState& state);
void FlopHolePair(CalcState& state);

}  // namespace felthawk
