// A full house on the river, by where its cards lie. T is the rank of the
// three, P of the pair, K1 and K2 the two other places (K1 the higher, K2
// the lower kicker). The danger is a bigger full house: the higher the board
// cards outside ours, the more hands beat us.
#include <algorithm>

#include "river/river_common.h"

namespace felthawk::river {
namespace {

struct FullHouseCards {
    int16_t pair = 0;     // P
    int16_t trips = 0;    // T
    int16_t kicker1 = 0;  // K1, the higher place
    int16_t kicker2 = 0;  // K2, the lower place
};

// All five board cards in the full house, T below P: by T.
//                                          2    3     4    5     6    7    8     9    10
constexpr OutsByRank kBoardTripsBelowPair = {{2.0, 2.25, 2.5, 2.75, 3.0, 3.1, 3.25, 3.5, 3.75,
                                              // J    Q    K     A
                                              3.75, 4.0, 4.25, 5.0},
                                             0.0};
// All five board cards in the full house, T at least P: by T. The ace sits
// at the bottom with the 2 and the 3, as designed.
//                                       2    3    4    5    6     7     8     9     10
constexpr OutsByRank kBoardTripsOnTop = {{8.0, 8.0, 9.0, 9.5, 10.0, 11.0, 11.5, 12.0, 13.6,
                                          // J    Q      K     A
                                          14.25, 15.25, 15.5, 8.0},
                                         0.0};

// Four board cards in the full house and the hole cards out of the first
// test: by P.
//                                      2       3       4       5       6       7     8     9
constexpr OutsByRank kOneHoleByPair = {{kOther, kOther, kOther, kOther, kOther, 10.5, 10.5, 10.5,
                                        // 10  J     Q     K     A
                                        12.5, 13.5, 15.0, 17.0, kOther},
                                       8.5};

// The pocket pair leaf's tables, by rank; kOther takes the last figure.
// clang-format off
//                                 2       3       4       5       6       7       8
constexpr OutsByRank kPocketA = {{kOther, kOther, kOther, 8.5,    9.0,    9.75,   10.5,
                                  11.5,   12.5,   13.25,  13.75,  14.5,   16.0},  8.0};  // by P
//                                9       10      J       Q       K       A       other
constexpr OutsByRank kPocketB = {{kOther, kOther, kOther, 2.5,    2.5,    2.75,   2.75,
                                  3.0,    3.25,   3.5,    4.0,    4.25,   5.0},   2.0};  // by K1
constexpr OutsByRank kPocketC = {{kOther, kOther, kOther, kOther, 9.25,   9.5,    10.5,
                                  11.0,   12.0,   13.0,   13.75,  14.5,   16.0},  8.5};  // by P
constexpr OutsByRank kPocketE = {{kOther, kOther, 8.5,    9.5,    10.0,   10.75,  11.2,
                                  12.5,   13.0,   14.0,   15.5,   16.5,   kOther}, 0.0}; // by P
constexpr OutsByRank kPocketF = {{kOther, 8.1,    9.0,    9.5,    10.0,   11.0,   11.5,
                                  12.5,   13.5,   14.5,   16.0,   17.0,   kOther}, 0.0}; // by K1
constexpr OutsByRank kPocketG = {{kOther, 8.1,    9.0,    9.5,    10.0,   11.0,   12.0,
                                  12.5,   13.5,   14.5,   15.0,   16.5,   kOther}, 0.0}; // by K1
// clang-format on

// Goes through the seven cards in slot order: the first rank seen twice is
// the pair, the last rank seen three times the trips, and every other rank
// takes the first free kicker place.
FullHouseCards SortFullHouse(const CalcState& state) {
    FullHouseCards cards;
    FixedArray<int16_t, 0, 1> places;
    for (int slot = 0; slot <= 6; ++slot) {
        const int16_t rank = static_cast<int16_t>(RankOf(state.gCards[slot]));
        const int16_t count = state.gRiverRankCount[rank];
        if (count == 2 && cards.pair == 0) {
            cards.pair = rank;
        } else if (count == 3) {
            cards.trips = rank;
        } else if (rank != cards.trips && rank != cards.pair) {
            if (places[0] == 0) {
                places[0] = rank;
            } else if (places[1] == 0) {
                places[1] = rank;
            }
        }
    }
    cards.kicker1 = std::max(places[0], places[1]);
    cards.kicker2 = std::min(places[0], places[1]);
    return cards;
}

void RiverFullHousePocket(CalcState& state, const FullHouseCards& c) {
    const int16_t p = c.pair;
    const int16_t t = c.trips;
    const int16_t k1 = c.kicker1;
    const int16_t k2 = c.kicker2;
    double outs = 0.0;
    if (p >= t) {
        if (k1 == k2) {
            outs = (p >= k1 && t >= k1) ? kPocketA(p) : kPocketB(k1);
        } else if (p < k2) {
            outs = 0.25;
        } else if (p >= k1 || k2 >= t) {
            outs = kPocketC(p);
        } else {
            outs = p < 7 ? 1.25 : (p < 11 ? 2.25 : 2.5);
        }
    } else if (k1 != k2 && p < k2) {
        outs = 0.4;
    } else if (k1 == k2 && k1 < p) {
        outs = kPocketG(k1);
    } else if (k1 == k2 && k1 > p && k1 < t) {
        outs = kPocketF(k1);
    } else if (k1 == k2) {
        outs = 0.0;
    } else if (p > k1) {
        outs = kPocketE(p);
    }
    CloseRiverLeaf(state, "RiverFullHousePocket", outs);
}

void RiverFullHouseSet(CalcState& state, const FullHouseCards& c) {
    const int16_t p = c.pair;
    const int16_t t = c.trips;
    const int16_t k1 = c.kicker1;
    const int16_t k2 = c.kicker2;
    const int16_t most = CountBoardSuits(state).most;
    double outs = 0.0;
    if (k1 == k2) {
        // A second pair on the board.
        if (k1 < t) outs = 8.25;
        if (k2 > t) outs = 2.5;
    } else if (k2 > t) {
        // Both places above the set.
        outs = most == 3 ? 24.5 : 25.5;
        if (most == 4) {
            if (t == p - 1 && k1 == p + 2) outs = 6.75;
            if (t != p - 1 && k1 == p + 2) outs = 12.5;
            if (t == p - 1 && k1 == p + 3) outs = 12.75;
        }
    } else if (k1 < t) {
        // Both places below the set.
        outs = most == 3 ? 27.0 : 28.0;
        if (most == 4) {
            if (k2 == t - 3) outs = 7.5;
            if (k2 == t - 4) outs = 13.5;
        }
    } else if (k2 < t && t < k1) {
        outs = most == 3 ? 24.5 : 25.5;
        if (most == 4) {
            if (k2 == t - 2 && k1 == t + 1) outs = 7.5;
            if (k1 - k2 == 3) outs = 12.5;  // tested second, so it wins
        }
    }
    CloseRiverLeaf(state, "RiverFullHouseSet", outs);
}

void RiverFullHouseTwoHole(CalcState& state, const FullHouseCards& c) {
    const int16_t lo = std::min(c.pair, c.trips);
    const int16_t hi = std::max(c.pair, c.trips);
    const int16_t k1 = c.kicker1;
    const int16_t k2 = c.kicker2;
    if (k1 == k2) {
        // A pair on the board: nothing higher may pair it.
        const double outs = (k2 >= c.pair || k2 >= c.trips) ? 7.0 : 37.0;
        return CloseRiverLeaf(state, "RiverFullHouseTwoHole", outs);
    }
    double outs = 34.5;
    if (k1 < lo) {
        outs = 45.0;
    } else if (k2 < lo && k1 < hi) {
        outs = 37.0;
    } else if (k1 > lo && k1 < hi && k2 > lo && k2 < hi) {
        outs = 34.5;
    } else if (k1 > hi && k2 < hi) {
        outs = 31.5;
    } else if (k2 > hi) {
        outs = 30.0;
    }
    // The board's strongest suit: four in four ranks make a straight flush
    // likely, three in three ranks possible.
    const BoardSuits suits = CountBoardSuits(state);
    RankCounts suitRanks;
    for (int slot = 2; slot <= 6; ++slot) {
        if (SuitIndex(state.gCards[slot]) == suits.mostSuit) {
            suitRanks[RankOf(state.gCards[slot])] += 1;
        }
    }
    if (FirstSpanWithCount(suitRanks, 4, 4, RankTest::AtLeastOne) != 0) {
        outs = 8.0;
    } else if (FirstSpanWithCount(suitRanks, 3, 3, RankTest::AtLeastOne) != 0) {
        outs -= 1.0;
    }
    CloseRiverLeaf(state, "RiverFullHouseTwoHole", outs);
}

void RiverFullHouseOneHole(CalcState& state, const FullHouseCards& c) {
    const int16_t p = c.pair;
    const int16_t t = c.trips;
    const int16_t k = c.kicker2;
    double outs = 0.0;
    // Slots 0 and 1 are asked apart on purpose: the test is not symmetric.
    if (HoleRank(state, 1) == p || HoleRank(state, 0) == t) {
        if (t < p) {
            outs = p > k ? 8.0 : 8.5;
        } else {
            outs = p > k ? 34.0 : 38.5;
        }
    } else if (t < k) {
        outs = p < 10 ? 1.75 : 2.75;
    } else {
        outs = kOneHoleByPair(p);
    }
    CloseRiverLeaf(state, "RiverFullHouseOneHole", outs);
}

void RiverFullHouseBoard(CalcState& state, const FullHouseCards& c) {
    const double outs =
        c.trips < c.pair ? kBoardTripsBelowPair(c.trips) : kBoardTripsOnTop(c.trips);
    CloseRiverLeaf(state, "RiverFullHouseBoard", outs);
}

}  // namespace

void RiverFullHouse(CalcState& state) {
    const FullHouseCards cards = SortFullHouse(state);
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    if (a == cards.pair && b == cards.pair) {
        RiverFullHousePocket(state, cards);
    } else if (a == cards.trips && b == cards.trips) {
        RiverFullHouseSet(state, cards);
    } else if ((a == cards.trips && b == cards.pair) || (a == cards.pair && b == cards.trips)) {
        RiverFullHouseTwoHole(state, cards);
    } else {
        int onBoard = 0;
        for (int slot = 2; slot <= 6; ++slot) {
            const int rank = RankOf(state.gCards[slot]);
            if (rank == cards.trips || rank == cards.pair) ++onBoard;
        }
        if (onBoard == 4) {
            RiverFullHouseOneHole(state, cards);
        } else if (onBoard == 5) {
            RiverFullHouseBoard(state, cards);
        } else {
            state.trace.Note("RiverFullHouse: ", onBoard, " board cards in it, 0");
        }
    }
}

}  // namespace felthawk::river
