// Full house on the turn, sorted by where the trips and the pair lie.
#include <array>

#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

// The three ranks of a full house on six cards: trips, pair and the odd
// card. One upward scan, the last hit winning.
struct FullHouseRanks {
    int trips = 0;   // T
    int pair = 0;    // P
    int kicker = 0;  // K
};

// Three ranks in a row, each held once. With a full house at most one rank
// is held once, so this never holds; the figures it selects are kept.
bool RunOfThreeSingles(const CalcState& state) {
    return FirstSpan(
               2, 12, 3, [&](long rank) { return state.gRankCount[rank] == 1; },
               [](int count) { return count == 3; })
        .found;
}

bool BoardHasSuitedThree(const CalcState& state) {
    const SuitTable board = BoardSuitTable(state);
    for (int16_t count : board) {
        if (count == 3) return true;
    }
    return false;
}

// The trips rank bands of the one-hole and two-hole leaves: below 5, 5 to 9,
// above 10. Trips of ten fall in no band and set nothing.
template <class Cell>
const Cell* TripsBand(int trips, const std::array<Cell, 3>& bands) {
    if (trips < 5) return &bands[0];
    if (trips <= 9) return &bands[1];
    if (trips > 10) return &bands[2];
    return nullptr;
}

// One hole card makes trips with a board pair, and the board holds a second
// pair. Rows by trips band; columns: the board pair at most the trips, above
// the trips.
struct OneHoleRow {
    double pairBelow;
    double pairAbove;
};
constexpr std::array<OneHoleRow, 3> kOneHoleOuts = {{
    /* below 5  */ {33.0, 8.5},
    /* 5 to 9   */ {34.0, 9.25},
    /* above 10 */ {35.0, 10.0},
}};

void TurnFullHouseOneHole(CalcState& state, const FullHouseRanks& fh) {
    double outs = 0.0;
    if (const OneHoleRow* row = TripsBand(fh.trips, kOneHoleOuts)) {
        outs = fh.pair <= fh.trips ? row->pairBelow : row->pairAbove;
    }
    TurnStrengthFromOuts(state, "TurnFullHouseOneHole", outs, UnseenRule::kLarger);
}

// Each hole card is paired or tripled by the board. The second figure of each
// cell applies when both a run of three singles and three suited board cards
// are present.
struct FlaggedOuts {
    double plain;
    double bothFlags;
};
// By trips band: below 5, 5 to 9, above 10.
constexpr std::array<FlaggedOuts, 3> kTwoHoleKickerBelow = {
    {{35.5, 31.0}, {35.5, 31.5}, {37.5, 31.5}}};
constexpr std::array<FlaggedOuts, 3> kTwoHoleKickerAbove = {
    {{28.0, 25.5}, {29.5, 26.5}, {30.5, 27.5}}};
// An ace in the hole, kicker below the trips.
constexpr FlaggedOuts kTwoHoleAceKickerBelow = {40.0, 36.5};
// An ace in the hole, kicker above the trips, and the two and three held once.
constexpr FlaggedOuts kTwoHoleAceKickerAbove = {33.0, 30.0};

void TurnFullHouseTwoHole(CalcState& state, const FullHouseRanks& fh) {
    const bool bothFlags = RunOfThreeSingles(state) && BoardHasSuitedThree(state);
    const auto pick = [&](const FlaggedOuts& cell) {
        return bothFlags ? cell.bothFlags : cell.plain;
    };
    const bool kickerBelow = fh.trips >= fh.kicker;
    double outs = 0.0;
    if (const FlaggedOuts* cell =
            TripsBand(fh.trips, kickerBelow ? kTwoHoleKickerBelow : kTwoHoleKickerAbove)) {
        outs = pick(*cell);
    }
    if (HoleRanksOf(state).high == 14) {
        if (kickerBelow) {
            outs = pick(kTwoHoleAceKickerBelow);
        } else if (state.gRankCount[3] == 1 && state.gRankCount[2] == 1) {
            outs = pick(kTwoHoleAceKickerAbove);
        }
    }
    TurnStrengthFromOuts(state, "TurnFullHouseTwoHole", outs, UnseenRule::kLarger);
}

// A set from a pocket pair and a pair on the board. Rows by the trips rank,
// columns by where the board pair P and the odd card K lie against it; the
// second figure applies with a run of three singles.
struct SetCell {
    double plain;
    double withRun;
};
using SetRow = std::array<SetCell, 4>;
// Columns: P above, K above | P above, K below | P below, K above | P below, K below.
constexpr SetRow kSetUpTo5 = {{{22.0, 20.5}, {24.5, 23.0}, {30.0, 26.5}, {35.0, 31.0}}};
constexpr SetRow kSet6To9 = {{{23.0, 23.0}, {24.0, 21.5}, {30.0, 26.5}, {36.0, 31.5}}};
constexpr SetRow kSet11Up = {{{24.0, 22.0}, {25.0, 23.0}, {30.0, 27.0}, {36.0, 32.0}}};
// A set of tens fits no row.
constexpr double kSetOfTens = 24.0;

void TurnFullHouseSet(CalcState& state, const FullHouseRanks& fh) {
    const bool run = RunOfThreeSingles(state);
    const int t = fh.trips;
    const SetRow* row = t <= 5 ? &kSetUpTo5 : t <= 9 ? &kSet6To9 : t >= 11 ? &kSet11Up : nullptr;
    double outs = kSetOfTens;
    if (row != nullptr) {
        const int column = (fh.pair > t ? 0 : 2) + (fh.kicker > t ? 0 : 1);
        const SetCell& cell = (*row)[static_cast<std::size_t>(column)];
        outs = run ? cell.withRun : cell.plain;
    }
    TurnStrengthFromOuts(state, "TurnFullHouseSet", outs, UnseenRule::kSum);
}

// A pocket pair against trips on the board: the fourth board card K may pair
// into a bigger full house for anyone holding it.
double BoardTripsOverPair(int pair) {
    switch (pair) {
        case 5:
            return 2.0;
        case 6:
        case 7:
        case 8:
        case 9:
            return 2.5;
        case 10:
            return 3.0;
        case 11:
            return 3.25;
        case 12:
            return 3.5;
        case 13:
            return 4.0;
        default:
            return 1.4;
    }
}

double BoardTripsUnderPair(int trips) {
    switch (trips) {
        case 8:
            return 1.25;
        case 9:
            return 1.5;
        case 10:
            return 2.0;
        case 11:
            return 2.25;
        case 12:
            return 2.5;
        case 13:
            return 3.0;
        default:
            return 1.0;
    }
}

void TurnFullHouseBoardTrips(CalcState& state, const FullHouseRanks& fh) {
    const int p = fh.pair;
    const int t = fh.trips;
    const int k = fh.kicker;
    double outs = 0.0;
    if ((p < k && k < t) || (t < k && k < p)) {
        outs = 1.25;
    } else if (const int m = p > t ? p : t; m >= k) {
        outs = (14 - m) * 1.5;
    } else if (p > t) {
        outs = BoardTripsOverPair(p);
    } else if (t - p < 4) {
        outs = 1.1;
    } else {
        outs = BoardTripsUnderPair(t);
    }
    TurnStrengthFromOuts(state, "TurnFullHouseBoardTrips", outs, UnseenRule::kLarger);
}

}  // namespace

void TurnFullHouse(CalcState& state) {
    FullHouseRanks fh;
    for (int rank = 2; rank <= 14; ++rank) {
        switch (state.gRankCount[rank]) {
            case 3:
                fh.trips = rank;
                break;
            case 2:
                fh.pair = rank;
                break;
            case 1:
                fh.kicker = rank;
                break;
            default:
                break;
        }
    }
    const auto hole = [&](int rank, int wanted) { return RankCountIs(state, rank, 0, 1, wanted); };
    const auto board = [&](int rank, int wanted) {
        return RankCountIs(state, rank, kFirstBoardSlot, kLastBoardSlot, wanted);
    };
    if (board(fh.trips, 3) && hole(fh.pair, 2)) {
        TurnFullHouseBoardTrips(state, fh);
    } else if (board(fh.pair, 2) && hole(fh.trips, 2) && board(fh.trips, 1)) {
        TurnFullHouseSet(state, fh);
    } else if (hole(fh.trips, 1) && hole(fh.pair, 1) && board(fh.pair, 1) && board(fh.trips, 2)) {
        TurnFullHouseTwoHole(state, fh);
    } else if (board(fh.trips, 2) && hole(fh.trips, 1) && board(fh.pair, 2)) {
        TurnFullHouseOneHole(state, fh);
    } else {
        state.trace.Note("TurnFullHouse: no shape fits, nothing set");
    }
}

}  // namespace felthawk
