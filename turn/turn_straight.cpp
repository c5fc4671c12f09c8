// Straight on the turn. Only two shapes get a figure: the hole cards as the
// two lowest cards of the run, and a hole card at its top. Any other
// straight, a straight with a paired card in it, and the wheel get 0.
#include <array>

#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

// ---- The hole cards at the foot of the run ----

// The board's shape above the two hole cards.
enum BottomShape : int {
    kFourAbove = 0,   // B4: the board is four in a row above the hole cards
    kGapAbove = 1,    // one rank missing above the run, the next one held
    kBoardBelow = 2,  // a board card below the run
    kPlainRun = 3,    // none of these
};

// Columns of the bottom table: the largest board suit count M and, for M of
// 2 or 3, Hs, the most hole cards in one suit that is on the board. The two
// M = 3, Hs = 1 columns split on whether the hole card of the board's suit is
// the lower (see LowerHoleCardSuited) or the higher hole card.
struct BottomRow {
    double m1;
    double m2Hs1;
    double m2Hs2;
    double m2Other;
    double m3Hs1Lower;
    double m3Hs1Higher;
    double m3Other;
    double m4;
};
constexpr BottomRow kFourAboveBelow8 = {2.5, 2.5, 5.7, 2.1, 1.5, 1.5, 2.25, 0.85};
constexpr BottomRow kFourAbove8 = {4.5, 4.5, 7.75, 4.25, 3.5, 4.25, 2.15, 1.25};
constexpr BottomRow kFourAbove9 = {33.0, 30.5, 32.0, 28.5, 16.0, 18.5, 11.75, 1.5};
constexpr BottomRow kGapBelow8 = {2.5, 2.5, 6.0, 2.0, 1.7, 1.7, 1.7, 0.25};
// L equals the run's start and Gap needs a start below 8, so this row is
// never reached; it stands for the table's sake.
constexpr BottomRow kGap8 = {4.75, 4.25, 8.0, 4.0, 5.0, 5.0, 2.0, 1.0};
constexpr BottomRow kBoardBelowAny = {15.0, 14.0, 16.0, 14.1, 9.0, 9.0, 9.0, 0.5};
constexpr BottomRow kPlainRunAny = {15.0, 14.0, 17.5, 13.5, 8.5, 8.5, 8.5, 0.5};

// The row for a shape and L; none (outs 0) for L of 10 or more, of 9 or more
// under Gap.
const BottomRow* BottomRowFor(BottomShape shape, int low) {
    switch (shape) {
        case kFourAbove:
            return low < 8    ? &kFourAboveBelow8
                   : low == 8 ? &kFourAbove8
                   : low == 9 ? &kFourAbove9
                              : nullptr;
        case kGapAbove:
            return low < 8 ? &kGapBelow8 : low == 8 ? &kGap8 : nullptr;
        case kBoardBelow:
            return &kBoardBelowAny;
        case kPlainRun:
            return &kPlainRunAny;
    }
    return nullptr;
}

// Whether the hole card in the suit the board holds three of is the lower
// hole card: told by the suit and the rank of slot 0.
bool LowerHoleCardSuited(const CalcState& state, const SuitTable& board, int low) {
    int suit = 0;
    while (suit < 3 && board[suit] != 3) ++suit;
    const bool firstOfSuit = SuitIndex(state.gCards[0]) == suit;
    const bool firstIsLow = RankAt(state, 0) == low;
    return firstOfSuit == firstIsLow;
}

double BottomOuts(const BottomRow& row, int m, int hs, bool lowerSuited) {
    switch (m) {
        case 1:
            return row.m1;
        case 2:
            return hs == 1 ? row.m2Hs1 : hs == 2 ? row.m2Hs2 : row.m2Other;
        case 3:
            if (hs != 1) return row.m3Other;
            return lowerSuited ? row.m3Hs1Lower : row.m3Hs1Higher;
        case 4:
            return row.m4;
        default:
            return 0.0;
    }
}

void TurnStraightBottom(CalcState& state, long start, int low) {
    const RankCounts& counts = state.gRankCount;
    // All four ranks are read: with a run from ten the rank past the ace is
    // read and the stage ends there.
    bool fourAbove = true;
    for (long rank = start + 2; rank <= start + 5; ++rank) {
        if (counts[rank] != 1) fourAbove = false;
    }
    BottomShape shape = kPlainRun;
    if (fourAbove) {
        shape = kFourAbove;
    } else if (start < 8 && counts[start + 7] == 1 && counts[start + 6] == 0) {
        shape = kGapAbove;
    } else if (CountBoardCards(state, [&](CardCode card) { return RankOf(card) < start; }) > 0) {
        shape = kBoardBelow;
    }

    const SuitTable board = BoardSuitTable(state);
    const SuitTable holeSuits = SuitTableOf(state, 0, 1);
    const int m = LargestOf(board);
    int hs = 0;
    for (int suit = 0; suit <= 3; ++suit) {
        if (board[suit] >= 1 && holeSuits[suit] > hs) hs = holeSuits[suit];
    }
    const BottomRow* row = BottomRowFor(shape, low);
    const double outs =
        row == nullptr ? 0.0 : BottomOuts(*row, m, hs, LowerHoleCardSuited(state, board, low));
    state.trace.Note("TurnStraightBottom: shape ", static_cast<int>(shape), ", M ", m, ", Hs ", hs);
    TurnStrengthFromOuts(state, "TurnStraightBottom", outs, UnseenRule::kFixed46);
}

// ---- A hole card at the top of the run ----

// Three board cards of a suit with one of them in the hole, by H. A high
// card of ten sets nothing.
double TopSuitedThree(int high) {
    switch (high) {
        case 10:
            return 0.0;
        case 11:
            return 16.0;
        case 12:
            return 17.0;
        case 13:
            return 18.5;
        case 14:
            return 19.5;
        default:
            return 14.25;
    }
}

// The user holds the top of the run; what remains is a flush against it.
// Rows by M, the largest board suit count; Hs is how many hole cards share
// the first suit that reaches M.
void TurnStraightTop(CalcState& state, int high) {
    const SuitTable board = BoardSuitTable(state);
    const SuitTable holeSuits = SuitTableOf(state, 0, 1);
    const int m = LargestOf(board);
    int suit = 0;
    while (board[suit] != m) ++suit;
    const int hs = holeSuits[suit];
    constexpr std::array<double, 3> kTwoSuitedByHs = {27.5, 28.75, 30.5};
    double outs = 0.0;
    switch (m) {
        case 1:
            outs = 32.0;
            break;
        case 2:
            outs = kTwoSuitedByHs[static_cast<std::size_t>(hs)];
            break;
        case 3:
            outs = hs == 0 ? 12.0 : hs == 1 ? TopSuitedThree(high) : 0.0;
            break;
        case 4:
            outs = 0.5;
            break;
        default:
            break;
    }
    state.trace.Note("TurnStraightTop: M ", m, ", Hs ", hs);
    TurnStrengthFromOuts(state, "TurnStraightTop", outs, UnseenRule::kFixed46);
}

}  // namespace

void TurnStraight(CalcState& state) {
    const RankCounts& counts = state.gRankCount;
    const auto once = [&](long rank) { return counts[rank] == 1; };
    // The lowest five ranks in a row held once each; 0 when a pair breaks
    // every such span.
    const long start = FirstSpan(2, 10, 5, once, [](int count) { return count == 5; }).start;
    const HoleRanks hole = HoleRanksOf(state);
    if (hole.high == hole.low + 1 && hole.low == start) {
        TurnStraightBottom(state, start, hole.low);
        return;
    }
    long top = 0;
    long rank = start;
    while (rank <= 14 && counts[rank] != 0) ++rank;
    if (rank <= 14) {
        top = rank - 1;
    } else if (start <= 10) {
        top = 14;  // the run reaches the ace
    }
    if (hole.high == top || hole.low == top) {
        TurnStraightTop(state, hole.high);
    } else {
        state.trace.Note("TurnStraight: no hole card at the foot or the top, nothing set");
    }
}

}  // namespace felthawk
