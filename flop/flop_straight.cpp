// A straight made on the flop. The one leaf that counts real cards: every
// card that doesn't help the user, or that would hand someone else a better
// hand, is marked in a grid of the deck, and the outs are the cards left.
#include "flop/flop_leaves.h"

namespace felthawk {
namespace {

// The deck as flags: rank 2..14 by suit index 0..3, 1 for a marked card.
using DeckGrid = FixedArray<FixedArray<int16_t, 0, 3>, 2, 14>;

void MarkRank(DeckGrid& grid, int rank) {
    for (int suit = 0; suit <= 3; ++suit) grid[rank][suit] = 1;
}

// Ranks past the ace don't exist and are skipped.
void MarkRankUpTo14(DeckGrid& grid, int rank) {
    if (rank <= 14) MarkRank(grid, rank);
}

// The rank below the run; below a two that is the ace.
void MarkBelow(DeckGrid& grid, int low) {
    MarkRank(grid, low == 2 ? 14 : low - 1);
}

// The hole card (slot 0 or 1) of the given rank: slot 0 if it has it.
CardCode HoleCardOfRank(const CalcState& state, int rank) {
    return SlotRank(state, 0) == rank ? state.gCards[0] : state.gCards[1];
}

}  // namespace

void FlopStraight(CalcState& state) {
    double outs = 0.0;
    const int hole0 = SlotRank(state, 0);
    const int hole1 = SlotRank(state, 1);
    const int hi = hole0 > hole1 ? hole0 : hole1;
    const int lo = hole0 > hole1 ? hole1 : hole0;

    // The suit with four or five of the five cards; the highest if more, 0 if
    // none.
    const FixedArray<int16_t, 0, 3> suits = CountSuits(state, 0, 4);
    int flushSuit = 0;
    for (int suit = 0; suit <= 3; ++suit) {
        if (suits[suit] >= 4) flushSuit = suit;
    }

    // A four-flush inside the straight counts for the hand when the user's
    // high hole card leads it, and against it when the second card does.
    bool hiSuited = false;
    bool loSuited = false;
    if (hi >= 5) hiSuited = SuitIndex(HoleCardOfRank(state, hi)) == flushSuit;
    if (!hiSuited && lo == hi - 1) loSuited = SuitIndex(HoleCardOfRank(state, lo)) == flushSuit;
    int suitedRun = 0;
    for (int rank = hi; rank >= hi - 4; --rank) {
        for (int slot = 0; slot <= 4; ++slot) {
            const CardCode card = state.gCards[slot];
            if (RankOf(card) == rank && SuitIndex(card) == flushSuit) {
                ++suitedRun;
                break;
            }
        }
    }
    if (hiSuited && suitedRun == 4) outs += 1.0;
    if (!hiSuited && loSuited && suitedRun == 4) outs -= 0.5;

    // The ends of the run: the lowest and highest single ranks.
    int low = 0;
    int high = 0;
    for (int rank = 2; rank <= 14; ++rank) {
        if (state.gRankCount[rank] == 1) {
            if (low == 0) low = rank;
            high = rank;
        }
    }

    DeckGrid grid;
    for (int slot = 0; slot <= 4; ++slot) MarkRank(grid, SlotRank(state, slot));
    // The cards that extend the straight past the user's cards, above all at
    // the high end.
    if (lo != low && hi != high) {
        MarkBelow(grid, low);
        MarkRankUpTo14(grid, high + 1);
        MarkRankUpTo14(grid, high + 2);
    } else if (lo != low) {
        MarkBelow(grid, low);
        MarkRankUpTo14(grid, high + 1);
    } else {
        // Counted from the hole rank, not from the top of the run.
        for (int rank = hi + 1; rank <= hi + 3; ++rank) MarkRankUpTo14(grid, rank);
    }

    // The share of the deck that a suited board makes unsafe, in suits
    // counted from diamonds down, whatever suits the board really shows.
    const int16_t suit2 = SuitBase(state.gCards[2]);
    const int16_t suit3 = SuitBase(state.gCards[3]);
    const int16_t suit4 = SuitBase(state.gCards[4]);
    int unsafeSuits = 0;
    if (suit2 == suit3 && suit2 == suit4) {
        if (hi == high) {
            unsafeSuits = 2;
        } else if (lo == low) {
            unsafeSuits = 3;
        }
    } else if (suit2 != suit3 && suit2 != suit4) {
        // Slots 3 and 4 are never compared: a pair of them in one suit
        // still reads as a scattered board.
        unsafeSuits = 1;
    } else {
        unsafeSuits = hi == high ? 1 : 2;
    }
    if (unsafeSuits > 0) {
        for (int rank = 2; rank <= 14; ++rank) {
            for (int suit = 3; suit >= 4 - unsafeSuits; --suit) grid[rank][suit] = 1;
        }
    }

    int unmarked = 0;
    for (int rank = 2; rank <= 14; ++rank) {
        for (int suit = 0; suit <= 3; ++suit) {
            if (grid[rank][suit] == 0) ++unmarked;
        }
    }
    outs += unmarked;
    state.trace.Note("FlopStraight: low ", low, ", high ", high, ", unsafe suits ", unsafeSuits,
                     ", unmarked cards ", unmarked);
    CloseFlopLeaf(state, "FlopStraight", outs, MadeHandSeats(outs));
}

}  // namespace felthawk
