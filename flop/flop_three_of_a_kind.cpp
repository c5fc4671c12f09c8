// Three of a kind on the flop. Only a set (a pocket pair with one more on
// the board) is rated; trips on the board, and trips from one hole card and
// a board pair, stay at 0.
#include "flop/flop_leaves.h"

namespace felthawk {
namespace {

// What a set is worth before and after the suit correction: the outs, and
// what comes off them for a board with three, or two, cards of one suit.
struct SetRating {
    double outs = 0.0;
    double suited3 = 0.0;
    double suited2 = 0.0;
};

// The straight shapes around a set, tested in this order. A shape fits when
// the pocket rank P lies within its guard and the three ranks P + offset are
// all present. Outs are by P = 2..14; a 0 stands where the guard excludes P.
struct SetShape {
    int lowestPocket;
    int highestPocket;
    std::array<int, 3> offsets;
    std::array<double, 13> outsByPocket;
    double suited3;
    double suited2;
};

// clang-format off
constexpr std::array<SetShape, 6> kSetShapes = {{
    //  guard   ranks      P: 2   3   4   5   6   7   8   9  10  11  12  13  14   S=3  S=2
    { 2, 12, { 0,  1, 2}, { 8, 10, 10, 10, 10, 10, 10, 10, 12, 14, 14,  0,  0},   2, 0.5},  // P, P+1, P+2
    { 4, 14, {-2, -1, 0}, { 0,  0, 20, 18, 14, 12, 12, 12, 12, 12, 12, 15, 16},   4, 1  },  // P-2, P-1, P
    { 3, 13, {-1,  0, 1}, { 0, 18, 14, 10, 10, 10, 10, 10, 10, 10, 10, 15,  0},   2, 1  },  // P-1, P, P+1
    { 6, 14, {-4, -2, 0}, { 0,  0,  0,  0, 17, 17, 17, 17, 17, 17, 17, 17, 18},   6, 2  },  // P-4, P-2, P
    { 2, 10, { 0,  2, 4}, {16, 16, 16, 16, 16, 16, 16, 16, 13,  0,  0,  0,  0},   6, 2  },  // P, P+2, P+4
    { 4, 12, {-2,  0, 2}, { 0,  0, 16, 16, 16, 16, 16, 16, 16, 16, 16,  0,  0},   6, 2  },  // P-2, P, P+2
}};
// clang-format on

bool ShapeFits(const CalcState& state, const SetShape& shape, int pocket) {
    if (pocket < shape.lowestPocket || pocket > shape.highestPocket) return false;
    for (int offset : shape.offsets) {
        if (state.gRankCount[pocket + offset] < 1) return false;
    }
    return true;
}

// Both other board ranks above the set; by B - P.
SetRating RateBothAbove(int pocket, int lower, int higher) {
    switch (higher - pocket) {
        case 3: {
            double outs = 13.0;
            if (pocket == 11) outs = 18.0;
            if (pocket == 10) outs = 14.0;
            if (pocket == 2) outs = 11.0;
            return {outs, 3.5, 1.5};
        }
        case 4:
            return {15.0, 5.5, 2.0};
        case 5: {
            double outs = 17.0 + 3.0 * (pocket - 2) / 7.0;
            if (lower == 13) outs += 3.0;
            return {outs, 8.0, 2.0};
        }
        case 6:
            return {19.0, 7.5, 2.0};
        default:
            break;
    }
    if (higher - pocket < 3) return {};  // caught by the shapes
    const double outs = pocket == 6 ? 20.5 : (pocket > 6 ? 21.5 : 19.5);
    return {outs, 7.5, 2.0};
}

// Both other board ranks below the set; by P - A.
SetRating RateBothBelow(int pocket, int lower, int higher) {
    switch (pocket - lower) {
        case 3: {
            double outs = 14.0;
            if (pocket == 14) outs = 19.0;
            if (pocket == 10) outs = 15.0;
            if (pocket == 2) outs = 12.0;
            return {outs, 3.5, 1.0};
        }
        case 4:
            return {pocket - higher == 1 ? 16.5 : 17.5, 6.5, 1.0};
        case 5:
            return {(pocket == 7 && lower == 2 && higher == 3) ? 24.0 : 21.0, 9.0, 1.5};
        case 6:
            return {23.0, 11.0, 1.5};
        default:
            break;
    }
    if (pocket - lower < 3) return {};  // caught by the shapes
    // P is at least 9 here. Two close low cards, or one just under the set,
    // make the spread worth more.
    double outs = 19.5;
    const int spread = higher - lower;
    const int underSet = pocket - higher;
    if (spread == 1 || spread == 2) {
        outs = pocket == 9 ? 23.0 : 22.0;
    } else if (underSet == 1 || underSet == 2) {
        outs = pocket == 9 ? 19.0 : 20.0;
    }
    return {outs, 12.5, 2.0};
}

}  // namespace

void FlopThreeOfAKind(CalcState& state) {
    if (!state.IsCurrent(kThreeOfAKind)) {
        FlopTwoPair(state);
        return;
    }
    if (const std::optional<int16_t> trips = BoardRankHeld(state, 3)) {
        FlopBoardTrips(state, *trips);
        return;
    }
    // The empty slots 5 and 6, both rank 0, always pair on the flop, so a
    // pocket pair decides.
    if (BoardRankHeld(state, 2) && RankAtLeast(state, SlotRank(state, 0), 0, 1, 2)) {
        FlopSet(state, ToInt16(SlotRank(state, 0)));
    } else {
        FlopTripsBoardPair(state);
    }
}

void FlopBoardTrips(CalcState& state, int16_t rank) {
    state.trace.Note("FlopBoardTrips: trips of ", rank, " on the board, not rated");
}

void FlopTripsBoardPair(CalcState& state) {
    state.trace.Note("FlopTripsBoardPair: a hole card on a board pair, not rated");
}

void FlopSet(CalcState& state, int16_t pocket) {
    const FixedArray<int16_t, 0, 3> boardSuits = CountSuits(state, 2, 4);
    int suited = 0;
    for (int16_t count : boardSuits) {
        if (count > suited) suited = count;
    }

    SetRating rating;
    bool shaped = false;
    for (const SetShape& shape : kSetShapes) {
        if (ShapeFits(state, shape, pocket)) {
            rating = {TableAt(shape.outsByPocket, pocket, 2), shape.suited3, shape.suited2};
            shaped = true;
            break;
        }
    }
    if (!shaped) {
        // The two other board ranks, lower and higher.
        int lower = 0;
        int higher = 0;
        for (int rank = 2; rank <= 14; ++rank) {
            if (state.gRankCount[rank] >= 1 && rank != pocket) {
                if (lower == 0) lower = rank;
                higher = rank;
            }
        }
        if (pocket < lower) {
            rating = RateBothAbove(pocket, lower, higher);
        } else if (higher < pocket) {
            rating = RateBothBelow(pocket, lower, higher);
        } else {
            // A leftover the user does see, once per evaluation; the set
            // between the two gets no outs at all.
            state.MessageBox("one high and one low");
        }
    }

    double outs = rating.outs;
    if (suited == 3) outs -= rating.suited3;
    if (suited == 2) outs -= rating.suited2;
    state.trace.Note("FlopSet: outs ", outs, ", board suit count ", suited,
                     ", N 47, no seat table");
    // No seat handling: with any seat out the set stays at 0.
    if (state.gFoldedCount == 0 && state.gEmptyCount == 0) {
        state.gStrength = ToInt16(100.0 * DrawChance(47, outs, outs));
    }
}

}  // namespace felthawk
