// A flush on the river, by how many hole cards are of its suit. A flush on
// the board alone is shared; one made with two hole cards is rated by the
// higher of them; one made with a single hole card by how many unseen cards
// of the suit still beat it.
#include <algorithm>

#include "river/river_common.h"

namespace felthawk::river {
namespace {

// The board's flush, by the top of the closest run its ranks make.
//                                      2       3       4       5       6       7       8
constexpr OutsByRank kBoardFlushOuts = {{kOther, kOther, kOther, kOther, kOther, kOther, kOther,
                                         // 9  10   J    Q    K    A
                                         1.0, 1.5, 3.0, 5.0, 8.5, 17.0},
                                        0.5};

// Two suited hole cards, by the higher of them.
//                                       2       3       4       5       6       7       8
constexpr OutsByRank kTwoHoleFlushOuts = {{kOther, kOther, kOther, kOther, kOther, kOther, kOther,
                                           // 9   10    J     Q     K     A
                                           24.0, 25.0, 27.0, 27.0, 32.5, 45.0},
                                          22.5};

// One suited hole card. The board then shows at least four of the suit, so
// any one unseen card of the suit above ours beats us, and every opponent
// holding one has a flush. We rate the card by the rank it takes among what
// can still be out: its own rank plus every card of the suit above it that
// lies on the board, so a king with the ace on the board is the nut flush.
//  - The figure falls quickly with each unseen card of the suit above ours.
//    All of them sit below the two-hole figures, where the board shows only
//    three of the suit and an opponent needs two suited cards to beat us.
//  - A five-suited board that our card does not improve is the board's
//    flush, shared by everyone: the lowest figure of the board leaf.
//  - A paired board makes a full house possible: half the figure. (Four
//    board cards of the suit leave room for one pair at most.)
//  - Four cards of the suit on the board within five ranks, or four or five
//    board ranks in a row, leave a straight flush open: a third of the figure.
//                                         2       3       4       5       6       7       8
constexpr OutsByRank kOneHoleFlushOuts = {{kOther, kOther, kOther, kOther, kOther, kOther, kOther,
                                           // 9  10   J     Q     K     A (the nut flush)
                                           6.0, 9.0, 12.0, 17.0, 24.0, 36.0},
                                          4.0};
constexpr double kBoardFlushPlaysOuts = 0.5;
constexpr int kPairedBoardKeptPercent = 50;
constexpr int kStraightFlushOpenKeptPercent = 33;

// Ranks of the board cards of one suit (slots 2..6).
RankCounts BoardSuitRanks(const CalcState& state, int suit) {
    RankCounts ranks;
    for (int slot = 2; slot <= 6; ++slot) {
        if (SuitIndex(state.gCards[slot]) == suit) ranks[RankOf(state.gCards[slot])] += 1;
    }
    return ranks;
}

void RiverFlushBoard(CalcState& state) {
    const RankCounts board = BoardRanksWithoutHole(state);
    int16_t top = 0;
    int16_t gap = 0;
    // The first six-rank span that opens on a board rank and holds five of
    // them; the last rank missing in it is the gap.
    for (int start = 2; start <= 9; ++start) {
        if (board[start] != 1) continue;
        int present = 0;
        for (int rank = start; rank <= start + 5; ++rank) {
            if (board[rank] >= 1) {
                ++present;
            } else {
                gap = static_cast<int16_t>(rank);
            }
        }
        if (present == 5) {
            top = static_cast<int16_t>(start + 5);
            break;
        }
    }
    if (top - gap < 2) top = ToInt16(top - 1);
    state.trace.Note("RiverFlushBoard: top ", top, ", gap ", gap);
    CloseRiverLeaf(state, "RiverFlushBoard", kBoardFlushOuts(top));
}

void RiverFlushTwoHole(CalcState& state) {
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    const int16_t high = std::max(a, b);
    const int16_t low = std::min(a, b);
    double outs = kTwoHoleFlushOuts(high);
    // A board pair counts for nothing here; three of a kind among the other
    // ranks nearly sinks the flush.
    for (int rank = 2; rank <= 14; ++rank) {
        if (rank == high || rank == low) continue;
        const int16_t count = state.gRiverRankCount[rank];
        if (count == 2) break;
        if (count == 3) {
            outs = 0.25;
            break;
        }
    }
    const BoardSuits suits = CountBoardSuits(state);
    if (suits.most == 4) {
        // Four of the suit on the board: anyone with one card of it has a
        // flush, and three of them close together make a straight flush
        // likely.
        const RankCounts suitRanks = BoardSuitRanks(state, suits.mostSuit);
        bool closeTogether = false;
        for (int start = 2; start <= LastSpanStart(4) && !closeTogether; ++start) {
            if (suitRanks[start] >= 1) {
                closeTogether = CountSpan(suitRanks, start, 4, RankTest::AtLeastOne) >= 3;
            }
        }
        outs = closeTogether ? 3.0 : 1.0;
    }
    CloseRiverLeaf(state, "RiverFlushTwoHole", outs);
}

void RiverFlushOneHole(CalcState& state, int suit) {
    const RankCounts suitOnBoard = BoardSuitRanks(state, suit);
    // Our flush card: the higher hole card of the suit, 0 with none.
    int16_t ours = 0;
    for (int slot = 0; slot <= 1; ++slot) {
        if (SuitIndex(state.gCards[slot]) == suit) ours = std::max(ours, HoleRank(state, slot));
    }
    int lowestOnBoard = 15;
    int onBoard = 0;
    int aboveOurs = 0;
    for (int rank = 2; rank <= 14; ++rank) {
        if (suitOnBoard[rank] == 0) continue;
        ++onBoard;
        if (rank < lowestOnBoard) lowestOnBoard = rank;
        if (rank > ours) ++aboveOurs;
    }
    const bool boardPlays = ours == 0 || (onBoard == 5 && ours < lowestOnBoard);
    const int standing = ours + aboveOurs;
    double outs = boardPlays ? kBoardFlushPlaysOuts : kOneHoleFlushOuts(standing);

    const RankCounts board = BoardRanksWithoutHole(state);
    bool pairedBoard = false;
    for (int rank = 2; rank <= 14; ++rank) {
        if (board[rank] >= 2) pairedBoard = true;
    }
    if (pairedBoard) outs = outs * kPairedBoardKeptPercent / 100;
    // Four ranks in a row on the board, whatever their suits, hold at least
    // three of the suit close together beside four of it on the board, so a
    // straight flush is open there too. The ace also plays low.
    RankCounts boardWithLowAce = board;
    boardWithLowAce[1] = board[14];
    bool straightFlushOpen = false;
    for (int start = 2; start <= LastSpanStart(5); ++start) {
        if (CountSpan(suitOnBoard, start, 5, RankTest::AtLeastOne) >= 4) straightFlushOpen = true;
    }
    for (int start = 1; start <= LastSpanStart(4); ++start) {
        if (CountSpan(boardWithLowAce, start, 4, RankTest::AtLeastOne) == 4)
            straightFlushOpen = true;
    }
    if (straightFlushOpen) outs = outs * kStraightFlushOpenKeptPercent / 100;
    state.trace.Note("RiverFlushOneHole: flush card ", ours, ", standing ", standing,
                     boardPlays ? ", the board plays" : "", pairedBoard ? ", paired board" : "",
                     straightFlushOpen ? ", straight flush open" : "");
    CloseRiverLeaf(state, "RiverFlushOneHole", outs);
}

}  // namespace

void RiverFlush(CalcState& state) {
    FixedArray<int16_t, 0, 3> suitCount;
    for (int slot = 0; slot <= 6; ++slot) suitCount[SuitIndex(state.gCards[slot])] += 1;
    int flushSuit = 0;
    for (int suit = 0; suit <= 3; ++suit) {
        if (suitCount[suit] >= 5) flushSuit = suit;
    }
    const int first = SuitIndex(state.gCards[0]);
    const int second = SuitIndex(state.gCards[1]);
    if (first == flushSuit && second == flushSuit) {
        RiverFlushTwoHole(state);
    } else if (first == second) {
        RiverFlushBoard(state);
    } else {
        RiverFlushOneHole(state, flushSuit);
    }
}

}  // namespace felthawk::river
