#include "preflop/hand_search.h"

#include <cstdio>

#include "preflop/chance_formulas.h"

namespace felthawk {
namespace {

// ---------------------------------------------------------------------------
// The run table: one row per run of present ranks, lo the rank just below the
// run and hi the first absent rank above it, so that hi - lo is the width
// (6 five in a row, 5 four, 4 three, 3 two).
//
// The ace never opens a run; it can only close one. A run that reaches the
// ace finds no gap and keeps the hi of the row before it (0 for the first
// row): T J Q K A alone reads (9, 0), and 2 3 4 5 reads (1, 6) with or
// without an ace. The later stages rely on these readings.
struct RunRow {
    int16_t lo = 0;
    int16_t hi = 0;
};

class RunTable {
  public:
    explicit RunTable(const FixedArray<int16_t, 0, 14>& counts) {
        int16_t hi = 0;
        int i = 2;
        while (i <= 13) {
            if (counts[i] >= 1) {
                const int16_t lo = static_cast<int16_t>(i - 1);
                int j = i + 1;
                for (; j <= 14; ++j) {
                    if (counts[j] == 0) {
                        hi = static_cast<int16_t>(j);
                        break;
                    }
                }
                rows_[size_++] = RunRow{lo, hi};
                i = j;
            }
            ++i;
        }
    }

    int Size() const { return size_; }
    bool IsLast(int index) const { return index == size_ - 1; }

    // Reading a row that is not there is a subscript fault, as it was for the
    // empty table of a hand made of aces alone.
    const RunRow& operator[](int index) const {
        if (index < 0 || index >= size_) RaiseSubscriptFault(index, 0, size_ - 1);
        return rows_[static_cast<std::size_t>(index)];
    }

    // The widest row, strictly wider than those before it, so that the lowest
    // of equal runs stays. Returns the row index, or -1 when no row is wider
    // than 0.
    int Widest(int& width) const {
        width = 0;
        int taken = -1;
        for (int index = 0; index < size_; ++index) {
            const int rowWidth = rows_[static_cast<std::size_t>(index)].hi -
                                 rows_[static_cast<std::size_t>(index)].lo;
            if (rowWidth > width) {
                width = rowWidth;
                taken = index;
            }
        }
        return taken;
    }

    // The rank where a run of three touches its neighbour across a single
    // gap; the lower gap wins. 0 when the run stands alone.
    int16_t SharedGap(int index) const {
        int16_t gap = 0;
        const RunRow& row = (*this)[index];
        if (!IsLast(index) && row.hi == (*this)[index + 1].lo) gap = row.hi;
        if (index > 0 && row.lo == (*this)[index - 1].hi) gap = row.lo;
        return gap;
    }

  private:
    std::array<RunRow, 8> rows_{};
    int size_ = 0;
};

// Widths of runs: five, four, three and two ranks in a row.
constexpr int kFiveInARow = 6;
constexpr int kFourInARow = 5;
constexpr int kThreeInARow = 4;
constexpr int kTwoInARow = 3;

// A list of candidate cards, 17 entries, filled four suits at a time.
using SpreadList = FixedArray<int16_t, 0, 16>;

// Writes rank % 100 + 100 * s to entry slot * 4 + s for the four suits. No
// range guard: ranks 0, 1, 15 and 16 are spread like any other.
void SpreadRank(SpreadList& list, long rank, int slot) {
    for (int s = 0; s <= 3; ++s) list[slot * 4 + s] = ToInt16(rank % 100 + 100L * s);
}

int CountNonZero(const SpreadList& list) {
    int n = 0;
    for (int16_t entry : list) n += entry != 0 ? 1 : 0;
    return n;
}

// Spreads the four ranks around a lone run of three: both ends, and one
// further out on each side.
void SpreadAroundRun(SpreadList& list, const RunRow& row) {
    SpreadRank(list, row.lo, 0);
    SpreadRank(list, row.hi, 1);
    SpreadRank(list, row.lo - 1, 2);
    SpreadRank(list, row.hi + 1, 3);
}

// Each suit that already shows three cards makes two of the straight's
// cards flush cards for someone else.
int LessThreeCardSuits(const CalcState& state, int n) {
    for (int suit = 0; suit <= 3; ++suit) {
        if (state.gSuitCount[suit] == 3) n -= 2;
    }
    return n;
}

bool InOuts(const CalcState& state, long value) {
    for (long i = 0; i <= state.gOuts.UpperBound(); ++i) {
        if (state.gOuts[i] != 0 && state.gOuts[i] == value) return true;
    }
    return false;
}

// ---------------------------------------------------------------------------
// Writing a cell.

void WriteChance(CalcState& state, int cell, double chance) {
    state.gOdds[cell] = ChanceText(chance);
}

// The usual write: two cards to come, or one; nothing on the river.
void UsualWrite(CalcState& state, int cell, long outs, long unknown) {
    if (unknown == 2) {
        WriteChance(state, cell, ChanceTwoCards(ToByte(outs)));
    } else if (unknown == 1) {
        WriteChance(state, cell, ChanceOneCard(ToByte(outs)));
    }
}

int16_t Unknown(const CalcState& state) {
    return state.gRankCount[0];
}

void AddOut(CalcState& state, long card) {
    if (card != 0) state.gOuts.Append(ToInt16(card));
}

// Appends factor * 100 + rank. The straight flush stage passes a suit factor
// that is already a multiple of 100, so its outs land at 10000, 20000 or
// 30000 plus the rank (and at 100 plus the rank for clubs, which then reads
// as the spade of that rank). The later stages compare outs with real card
// values, so such an out is not left out of their counts, save for clubs.
int AddOutCard(CalcState& state, long rank, long factor) {
    state.gOuts.Append(ToInt16(factor * 100 + rank));
    return 1;
}

int AddRankOuts(CalcState& state, long rank) {
    int added = 0;
    for (long base : {kClubsBase, kSpadesBase, kHeartsBase, kDiamondsBase}) {
        if (!InOuts(state, rank + base)) {
            state.gOuts.Append(ToInt16(rank + base));
            ++added;
        }
    }
    return added;
}

// The ranks of a suit not yet seen, neither among the cards nor among the
// outs already counted. The outs are read at the indices of gCards: an out
// whose card slot is empty is not looked at.
int SuitCardsLeft(CalcState& state, int base) {
    state.gSuitRanks.Erase();
    for (int slot = 0; slot < kSlotCount; ++slot) {
        const CardCode card = state.gCards[slot];
        if (card != kNoCard && SuitBase(card) == base) state.gSuitRanks[RankOf(card) - 2] = true;
    }
    for (long i = 0; i <= state.gOuts.UpperBound(); ++i) {
        if (state.gCards[i] != kNoCard && SuitBase(state.gOuts[i]) == base) {
            state.gSuitRanks[RankOf(state.gOuts[i]) - 2] = true;
        }
    }
    int flagged = 0;
    for (bool flag : state.gSuitRanks) flagged += flag ? 1 : 0;
    return 13 - flagged;
}

// ---------------------------------------------------------------------------
// The stages, from the top class down. Each hands over only when its own
// cell is not "Current".

void PairOdds(CalcState& state) {
    const int16_t unknown = Unknown(state);
    int pairs = 0;
    FixedArray<int16_t, 0, 55> singles;  // four cards for each single rank
    int listed = 0;
    for (int rank = 1; rank <= 14; ++rank) {
        if (state.gRankCount[rank] == 2) ++pairs;
        if (state.gRankCount[rank] == 1) {
            for (int s = 0; s <= 3; ++s) singles[listed++] = ToInt16(rank + 100L * s);
        }
    }
    if (pairs >= 2) {
        state.gOdds[kTwoPair] = kCurrent;
        return;
    }

    int n = 0;
    for (int i = 0; i < listed; ++i) {
        bool known = false;
        for (int slot = 0; slot < kSlotCount; ++slot) {
            if (state.gCards[slot] != kNoCard && state.gCards[slot] == singles[i]) known = true;
        }
        if (known || InOuts(state, singles[i])) continue;
        AddOut(state, singles[i]);
        ++n;
    }

    if (unknown == 2) {
        WriteChance(state, kTwoPair,
                    pairs == 1 ? ChanceTwoCards(ToByte(n)) : ChanceBoth(ToByte(n), ToByte(n)));
    } else if (unknown == 1 && pairs == 1) {
        WriteChance(state, kTwoPair, ChanceOneCard(ToByte(n)));
    }

    if (pairs == 1) {
        state.gOdds[kPair] = kCurrent;
    } else if (unknown == 2) {
        // A straight draw's cards are already counted above.
        if (state.gOpenEndedDraw != 0) {
            n -= 6;
        } else if (state.gOpenEndedDraw2 != 0) {
            n -= 4;
        } else if (n > 12) {
            n = 13;
        }
        WriteChance(state, kPair, ChanceTwoCards(ToByte(n)));
    } else if (unknown == 1) {
        WriteChance(state, kPair, ChanceOneCard(ToByte(n)));
    }
}

void ThreeOfAKindOdds(CalcState& state) {
    const int16_t unknown = Unknown(state);
    int pairs = 0;
    int pairRank = 0;
    bool trips = false;
    for (int rank = 1; rank <= 14; ++rank) {
        if (state.gRankCount[rank] == 3) {
            state.gOdds[kThreeOfAKind] = kCurrent;
            trips = true;
            break;
        }
        if (state.gRankCount[rank] == 2) {
            ++pairs;
            pairRank = rank;
            if (pairs == 2) break;
        }
    }
    if (trips) return;

    int n = 0;
    if (pairs == 2) {
        state.gOdds[kThreeOfAKind].clear();
    } else if (pairs == 1) {
        for (int s = 0; s <= 3; ++s) {
            const long card = pairRank + 100L * s;
            bool known = false;
            for (int slot = 0; slot < kSlotCount; ++slot) {
                if (state.gCards[slot] == card) known = true;
            }
            if (known || InOuts(state, card)) continue;
            AddOut(state, card);
            ++n;
        }
    } else if (unknown == 2) {
        // Each single card can still pair twice more: fifteen cards, less
        // those already counted as outs above.
        FixedArray<int16_t, 0, 27> others;
        int listed = 0;
        for (int slot = 0; slot < kSlotCount; ++slot) {
            const CardCode card = state.gCards[slot];
            if (card == kNoCard) continue;
            for (int s = 0; s <= 3; ++s) {
                const long value = s * 100L + RankOf(card);
                others[listed++] = value == card ? 0 : ToInt16(value);
            }
        }
        int counter = 15;
        for (long i = 0; i <= state.gOuts.UpperBound(); ++i) {
            const int16_t out = state.gOuts[i];
            if (out == 0) continue;
            for (int j = 0; j < listed; ++j) {
                if (others[j] != 0 && others[j] == out) {
                    others[j] = 0;
                    --counter;
                }
            }
        }
        if (counter > 0) WriteChance(state, kThreeOfAKind, ChanceBoth(ToByte(counter), 3));
    }

    if (n != 0) {
        WriteChance(state, kThreeOfAKind,
                    unknown == 2 ? ChanceTwoCards(ToByte(n)) : ChanceOneCard(ToByte(n)));
    }
    PairOdds(state);
}

void StraightOdds(CalcState& state) {
    const int16_t unknown = Unknown(state);
    const RunTable runs(state.gRankCount);

    // Five single ranks in a row. A paired rank inside the five fails here.
    bool made = false;
    for (int i = 2; i <= 10; ++i) {
        bool allSingle = true;
        for (int rank = i; rank <= i + 4; ++rank)
            allSingle = allSingle && state.gRankCount[rank] == 1;
        made = made || allSingle;
    }

    // No ace is looked for: 2 3 4 5 with a paired rank and nothing else reads
    // as a made straight.
    int width = 0;
    int taken = -1;
    const bool topRun = runs[0].lo == 9 && runs[0].hi == 0;
    if (topRun || made) {
        width = kFiveInARow;
    } else if (runs.Size() == 1 && runs[0].lo == 1 && runs[0].hi == 6) {
        width = kFiveInARow;
    } else {
        taken = runs.Widest(width);
    }

    if (width >= kFiveInARow) {
        state.gOdds[kStraight] = kCurrent;
    } else if (width == kFourInARow) {
        int16_t lo = runs[taken].lo;
        const int16_t hi = runs[taken].hi;
        if (lo == 1 && hi == 6) lo = 14;
        const int sum = AddRankOuts(state, lo) + AddRankOuts(state, hi);
        UsualWrite(state, kStraight, sum, unknown);
        if (unknown == 2) state.gOpenEndedDraw = -1;
    } else if (width == kThreeInARow) {
        const int16_t gap = runs.SharedGap(taken);
        SpreadList list;
        if (gap == 0) {
            SpreadAroundRun(list, runs[taken]);
            for (int16_t& entry : list) {
                if (entry != 0 && InOuts(state, entry)) entry = 0;
            }
            const int n = LessThreeCardSuits(state, CountNonZero(list));
            if (n != 0) {
                WriteChance(state, kStraight,
                            ChanceBoth(ToByte(n), ToByte(RoundHalfEven(n / 2.0))));
            }
        } else {
            for (int s = 0; s <= 3; ++s) list[s] = ToInt16(gap + 100L * s);
            for (int16_t& entry : list) {
                if (entry != 0 && InOuts(state, entry)) entry = 0;
            }
            WriteChance(state, kStraight, ChanceTwoCards(ToByte(CountNonZero(list))));
        }
    } else if (width == kTwoInARow && unknown == 2) {
        // Two runs of two one rank apart, or touching, can still become five.
        // The second comparison has its operands the other way round, and
        // the later write wins.
        const RunRow& row = runs[taken];
        if (!runs.IsLast(taken)) {
            const RunRow& next = runs[taken + 1];
            if (next.lo - row.hi == 1) {
                WriteChance(state, kStraight, ChanceBoth(8, 4));
            } else if (next.lo == row.hi) {
                WriteChance(state, kStraight, ChanceBoth(8, 8));
            }
        }
        if (taken > 0) {
            const RunRow& previous = runs[taken - 1];
            if (previous.hi - row.lo == 1) {
                WriteChance(state, kStraight, ChanceBoth(8, 4));
            } else if (row.lo == previous.hi) {
                WriteChance(state, kStraight, ChanceBoth(8, 8));
            }
        }
    }

    if (!state.IsCurrent(kStraight)) ThreeOfAKindOdds(state);
}

void FlushOdds(CalcState& state) {
    const int16_t unknown = Unknown(state);
    for (int s = 0; s <= 3; ++s) {
        const int16_t count = state.gSuitCount[s];
        if (count >= 5) {
            state.gOdds[kFlush] = kCurrent;
            break;
        }
        if (count < 3) continue;
        // Only the first suit with three or more cards counts.
        const int left = SuitCardsLeft(state, s == 0 ? 1 : 100 * s);
        if (count == 4) UsualWrite(state, kFlush, left, unknown);
        if (count == 3 && unknown == 2) {
            WriteChance(state, kFlush, ChanceBoth(ToByte(left), ToByte(left - 1)));
            break;
        }
        for (int rank = 2; rank <= 14; ++rank) {
            if (!state.gSuitRanks[rank - 2]) AddOut(state, rank + 100L * s);
        }
        break;
    }
    if (!state.IsCurrent(kFlush)) StraightOdds(state);
}

void FullHouseOdds(CalcState& state) {
    const int16_t unknown = Unknown(state);
    int pairs = 0;
    int trips = 0;
    if (unknown < 3) {
        for (int rank = 1; rank <= 14; ++rank) {
            if (state.gRankCount[rank] == 2) ++pairs;
            if (state.gRankCount[rank] == 3) ++trips;
        }
    }
    // Two sets of three with no pair fall through every row: the search
    // does not see them as a full house.
    if (pairs > 0 && trips > 0) {
        state.gOdds[kFullHouse] = kCurrent;
        state.gOdds[kThreeOfAKind].clear();
    } else if (pairs >= 2 && trips == 0) {
        // One card to come is the figure on the river too.
        WriteChance(
            state, kFullHouse,
            unknown == 2 ? ChanceTwoCards(ToByte(pairs * 2)) : ChanceOneCard(ToByte(pairs * 2)));
    } else if (pairs == 0 && trips == 1) {
        constexpr double kSetBonus = 4;  // the designers' lift for a set
        WriteChance(state, kFullHouse,
                    unknown == 2 ? ChanceTwoCards(6) + kSetBonus : ChanceOneCard(6));
    } else if (pairs == 1 && trips == 0 && unknown == 2) {
        WriteChance(state, kFullHouse, ChanceBoth(9, 4));
    }
    if (!state.IsCurrent(kFullHouse)) FlushOdds(state);
}

void FourOfAKindOdds(CalcState& state) {
    state.gRankCount.Erase();
    CountRanks(state, state.gRankCount);
    const int16_t unknown = Unknown(state);

    int n = 0;
    if (unknown <= 2) {
        for (int rank = 1; rank <= 14; ++rank) {
            if (state.gRankCount[rank] == 4) state.gOdds[kFourOfAKind] = kCurrent;
            if (state.gRankCount[rank] != 3) continue;
            ++n;
            // The one card of the rank that no slot holds, lowest suit first.
            for (int s = 0; s <= 3; ++s) {
                const long card = rank + 100L * s;
                bool held = false;
                for (int slot = 0; slot < kSlotCount; ++slot)
                    held = held || state.gCards[slot] == card;
                if (!held) {
                    AddOut(state, card);
                    break;
                }
            }
        }
    }
    if (n > 0) UsualWrite(state, kFourOfAKind, n, unknown);
    if (!state.IsCurrent(kFourOfAKind)) FullHouseOdds(state);
}

void StraightFlushOdds(CalcState& state) {
    FixedArray<int16_t, 0, 14> tally;  // every slot by rank; index 0 counts the empty ones
    state.gSuitCount.Erase();
    state.gFlushRunLow = 0;
    state.gFlushRunHigh = 0;
    state.gRankCount.Erase();

    for (int slot = 0; slot < kSlotCount; ++slot) {
        const CardCode card = state.gCards[slot];
        if (card != kNoCard) state.gSuitCount[SuitBase(card) / 100] += 1;
    }
    // The best suit: the strictly largest count, the lowest index on a tie.
    int best = 0;
    for (int s = 1; s <= 3; ++s) {
        if (state.gSuitCount[s] > state.gSuitCount[best]) best = s;
    }
    const int bestCount = state.gSuitCount[best];
    const int factor = best == 0 ? 1 : best * 100;  // equals the suit's SuitBase

    // From here to the end of this stage gRankCount counts the best suit only.
    for (int slot = 0; slot < kSlotCount; ++slot) {
        const CardCode card = state.gCards[slot];
        if (SuitBase(card) == factor) state.gRankCount[RankOf(card)] += 1;
        tally[RankOf(card)] += 1;
    }
    const int16_t unknown = tally[0];

    if (bestCount < 4) {
        state.gOdds[kStraightFlush].clear();
        FourOfAKindOdds(state);
        return;
    }

    const RunTable runs(state.gRankCount);
    // The made hands are read off the first row whatever the count, so four
    // suited aces alone (an empty table) end the search here.
    const RunRow& first = runs[0];
    const bool royal = bestCount == 5 && first.hi == 0 && first.lo == 9;
    const bool wheel = bestCount == 5 && first.hi == 6 && first.lo == 1 && runs.Size() == 1;
    if (royal || wheel) {
        state.gOdds[kStraightFlush] = kCurrent;
    } else {
        int width = 0;
        int taken = -1;
        for (int index = 0; index < runs.Size(); ++index) {
            if (runs[index].hi - runs[index].lo > width) {
                width = runs[index].hi - runs[index].lo;
                taken = index;
                if (width >= kFiveInARow) {
                    state.gFlushRunLow = runs[index].lo;
                    state.gFlushRunHigh = runs[index].hi;
                }
            }
        }

        if (width >= kFiveInARow) {
            state.gOdds[kStraightFlush] = kCurrent;
        } else if (width == kFourInARow) {
            int16_t lo = runs[taken].lo;
            const int16_t hi = runs[taken].hi;
            if (lo == 1 && hi == 6) lo = 14;
            const int sum = AddOutCard(state, lo, factor) + AddOutCard(state, hi, factor);
            if (unknown == 2) {
                WriteChance(state, kStraightFlush, ChanceTwoCards(ToByte(sum)));
                state.gOpenEndedDraw = -1;
            } else if (unknown == 1) {
                WriteChance(state, kStraightFlush, ChanceOneCard(ToByte(sum)));
            }
        } else if (width == kThreeInARow) {
            const int16_t gap = runs.SharedGap(taken);
            if (gap == 0) {
                SpreadList list;
                SpreadAroundRun(list, runs[taken]);
                const int n = LessThreeCardSuits(state, CountNonZero(list));
                if (n != 0) {
                    WriteChance(state, kStraightFlush,
                                ChanceBoth(ToByte(n), ToByte(RoundHalfEven(n / 2.0))));
                }
            } else {
                int n = 0;
                for (int s = 0; s <= 3; ++s) n += SuitBase(gap + 100L * s) == factor ? 1 : 0;
                UsualWrite(state, kStraightFlush, n, unknown);
            }
        }
    }

    if (!state.IsCurrent(kStraightFlush)) FourOfAKindOdds(state);
}

}  // namespace

void PostflopOdds(CalcState& state, int16_t stage) {
    if (stage == 1 || stage == 2) StraightFlushOdds(state);
}

}  // namespace felthawk
