// The branches of the turn cascade and the small tallies their leaves share.
// Six cards are known: slots 0 and 1 are the hole, 2..5 the board, and slot
// 6 is empty (rank 0), so gRankCount[0] is 1 on the turn.
#pragma once

#include <cstdint>

#include "cards/calc_state.h"
#include "turn/turn_common.h"

namespace felthawk {

// One branch per made class; each ends in a leaf that sets gStrength, or
// leaves it at 0 when no leaf recognises the hand.
void TurnFullHouse(CalcState& state);
void TurnFlush(CalcState& state);
void TurnStraight(CalcState& state);
void TurnThreeOfAKind(CalcState& state);
void TurnTwoPair(CalcState& state);
void TurnPair(CalcState& state);
void TurnNoPair(CalcState& state);

namespace turn {

constexpr int kFirstBoardSlot = 2;
constexpr int kLastBoardSlot = 5;  // the turn card

using RankCounts = FixedArray<int16_t, 0, 14>;
// Cards per suit index: 0 clubs, 1 spades, 2 hearts, 3 diamonds.
using SuitTable = FixedArray<int16_t, 0, 3>;

inline int RankAt(const CalcState& state, int slot) {
    return RankOf(state.gCards[slot]);
}

// H and L: the higher and the lower hole rank, equal for a pocket pair.
struct HoleRanks {
    int high = 0;
    int low = 0;
};
inline HoleRanks HoleRanksOf(const CalcState& state) {
    const int first = RankAt(state, 0);
    const int second = RankAt(state, 1);
    return first >= second ? HoleRanks{first, second} : HoleRanks{second, first};
}

// Tally of the slots first..last by suit index.
inline SuitTable SuitTableOf(const CalcState& state, int first, int last) {
    SuitTable table;
    for (int slot = first; slot <= last; ++slot) table[SuitIndex(state.gCards[slot])] += 1;
    return table;
}
inline SuitTable BoardSuitTable(const CalcState& state) {
    return SuitTableOf(state, kFirstBoardSlot, kLastBoardSlot);
}

// M: the largest value of a suit table.
inline int16_t LargestOf(const SuitTable& table) {
    int16_t largest = 0;
    for (int16_t value : table) largest = value > largest ? value : largest;
    return largest;
}

// How many of the ranks first..last pass the test. The test reads the
// counter arrays itself, so a rank past the ace faults there.
template <class Counted>
int CountRanksIn(long first, long last, Counted counted) {
    int count = 0;
    for (long rank = first; rank <= last; ++rank) {
        if (counted(rank)) ++count;
    }
    return count;
}

// How many board cards pass the test.
template <class Test>
int CountBoardCards(const CalcState& state, Test test) {
    int count = 0;
    for (int slot = kFirstBoardSlot; slot <= kLastBoardSlot; ++slot) {
        if (test(state.gCards[slot])) ++count;
    }
    return count;
}

// The first span start..start+width-1, for start in firstStart..lastStart,
// whose count of passing ranks satisfies `hit`.
struct SpanHit {
    bool found = false;
    long start = 0;
    int count = 0;
};
template <class Counted, class Hit>
SpanHit FirstSpan(long firstStart, long lastStart, long width, Counted counted, Hit hit) {
    for (long start = firstStart; start <= lastStart; ++start) {
        const int count = CountRanksIn(start, start + width - 1, counted);
        if (hit(count)) return {true, start, count};
    }
    return {};
}

}  // namespace turn
}  // namespace felthawk
