#include "flop/strength_common.h"

namespace felthawk {

double DrawChance(int16_t unseen, double outsFirst, double outsSecond) {
    const double n = unseen;
    if (n == 0.0 || n - 1.0 == 0.0) {
        throw RuntimeFault(RuntimeFault::Kind::DivisionByZero, "Division by zero");
    }
    return 1.0 - ((n - outsFirst) / n) * ((n - 1.0 - outsSecond) / (n - 1.0));
}

void CountSeats(const CalcState& state, int16_t& folded, int16_t& empty) {
    folded = 0;
    empty = 0;
    for (int seat = 0; seat < kSeatCount; ++seat) {
        if (state.gSeats[seat] == kSeatFolded) ++folded;
        if (state.gSeats[seat] == kSeatEmpty) ++empty;
    }
}

bool RankAtLeast(const CalcState& state, long rank, long first, long last, long minCount) {
    if (last > 6) last = 6;
    long count = 0;
    for (long slot = first; slot <= last; ++slot) {
        if (RankOf(state.gCards[slot]) == rank) ++count;
    }
    return count >= minCount;
}

void StrengthFromOuts(CalcState& state, double outs, const SeatAdjustTable& table) {
    constexpr int16_t kUnseen = 47;
    const int16_t folded = state.gFoldedCount;
    const int16_t empty = state.gEmptyCount;
    if (folded == 0 && empty == 0) {
        state.trace.Note("closing: outs ", outs, ", N ", kUnseen);
        state.gStrength = ToInt16(100.0 * DrawChance(kUnseen, outs, outs));
        return;
    }
    const int16_t larger = folded > empty ? folded : empty;
    if (folded + empty == 9) {
        state.trace.Note("closing: the user is alone, 0");
        state.gStrength = 0;
        return;
    }
    FixedArray<double, 0, 7> foldedRow;
    FixedArray<double, 0, 7> emptyRow;
    for (int column = 0; column < 8; ++column) {
        foldedRow[column] = table.folded[column];
        emptyRow[column] = table.empty[column];
    }
    const int16_t unseen = ToInt16(kUnseen - larger);
    const double withFolded = outs + foldedRow[larger - 1];
    const double withEmpty = outs + emptyRow[larger - 1];
    const double chanceFolded = 100.0 * DrawChance(unseen, withFolded, withFolded);
    const double chanceEmpty = 100.0 * DrawChance(unseen, withEmpty, withEmpty);
    state.trace.Note("closing: outs ", outs, ", N ", unseen, ", seat column ", larger - 1,
                     ", folded outs ", withFolded, ", empty outs ", withEmpty);
    if (folded >= 1 && empty >= 1) {
        state.gStrength = ToInt16((chanceFolded + chanceEmpty) / 2.0);
    } else if (folded >= 1) {
        state.gStrength = ToInt16(chanceFolded);
    } else {
        state.gStrength = ToInt16(chanceEmpty);
    }
}

StraightFlushRun FindStraightFlushRun(const FixedArray<int16_t, 0, 14>& counts) {
    StraightFlushRun run;
    int rank = 2;
    while (rank <= 14 && counts[rank] == 0) ++rank;
    run.bottom = rank;
    for (int next = rank + 1; next <= 14; ++next) {
        if (counts[next] == 0) {
            run.top = next - 1;
            break;
        }
    }
    if (run.bottom == 2 && run.top == 5) run.bottom = 14;
    return run;
}

}  // namespace felthawk
