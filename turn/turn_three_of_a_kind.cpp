// Three of a kind on the turn: a set from a pocket pair, one hole card with a
// pair on the board, or all three on the board.
#include <array>

#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

// The set's five span tests, first that fires wins: a span of `width` ranks
// from each start in 2..lastStart holding `wanted` ranks of more than one card
// scales the outs by percent / 100. On six cards with a set only the set's
// rank holds more than one card, so none of them fires; the factors stand.
struct SetSpanTest {
    long lastStart;
    long width;
    int wanted;
    double percent;
};
constexpr std::array<SetSpanTest, 5> kSetSpanTests = {{
    {12, 3, 3, 48},
    {11, 4, 3, 62},
    {9, 6, 4, 56},
    {8, 7, 4, 70},
    {8, 7, 3, 83},
}};

void TurnSet(CalcState& state) {
    const RankCounts counts = state.gRankCount;
    double outs = 26.5;
    for (const SetSpanTest& test : kSetSpanTests) {
        const SpanHit hit = FirstSpan(
            2, test.lastStart, test.width, [&](long rank) { return counts[rank] > 1; },
            [&](int count) { return count == test.wanted; });
        if (hit.found) {
            outs = outs * test.percent / 100;
            break;
        }
    }
    TurnStrengthFromOuts(state, "TurnSet", outs, UnseenRule::kFixed46);
}

// One hole card with a pair on the board.
void TurnTripsBoardPair(CalcState& state, int trips) {
    const HoleRanks hole = HoleRanksOf(state);
    const int above =
        CountBoardCards(state, [&](CardCode card) { return RankOf(card) > hole.high; });
    const int below =
        CountBoardCards(state, [&](CardCode card) { return RankOf(card) < hole.low; });
    const int m = LargestOf(BoardSuitTable(state));
    const bool lowTrips = trips < 8;
    double outs = 0.0;
    if (above == 3) {
        outs = m == 3 ? 12.5 : 19.5;
    } else if (below == 3) {
        switch (m) {
            case 3:
                outs = lowTrips ? 15.0 : 13.0;
                break;
            case 2:
                outs = lowTrips ? 22.0 : 15.0;
                break;
            default:
                outs = lowTrips ? 22.0 : 19.75;
                break;
        }
    } else {
        switch (m) {
            case 1:
                outs = 14.0;
                break;
            case 2:
                outs = 13.5;
                break;
            case 3:
                outs = 9.5;
                break;
            default:
                break;  // four suited on the board set nothing
        }
    }
    // Three ranks in a row among the six cards: a straight threatens.
    const bool connected = FirstSpan(
                               2, 12, 3, [&](long rank) { return state.gRankCount[rank] >= 1; },
                               [](int count) { return count == 3; })
                               .found;
    if (connected) {
        const bool highCard = hole.high >= 10;
        switch (m) {
            case 1:
                outs = highCard ? 9.0 : 11.0;
                break;
            case 2:
                outs = highCard ? 10.5 : 12.0;
                break;
            case 3:
                outs = 8.5;
                break;
            default:
                break;  // four suited on the board keep their figure
        }
    }
    TurnStrengthFromOuts(state, "TurnTripsBoardPair", outs, UnseenRule::kFixed45);
}

// Trips on the board: every hand at the table holds them, so the kickers and
// the fourth board card K decide, and the figures are small.
double BoardTripsKickerBelow(const HoleRanks& hole, int trips) {
    if (hole.low > trips) return hole.high == 14 ? 2.75 : 1.9;
    switch (hole.high) {
        case 14:
            return 2.75;
        case 13:
            return 2.25;
        case 12:
            return 2.0;
        case 11:
            return 1.9;
        default:
            return 1.8;
    }
}

double BoardTripsKickerAbove(const HoleRanks& hole, int trips, int kicker) {
    if (hole.low <= trips) return 0.75;
    switch (kicker - trips) {
        case 1:
            return 0.25;
        case 2:
            return 0.5;
        default:
            return 0.75;
    }
}

void TurnBoardTrips(CalcState& state, int trips, const RankCounts& boardCounts) {
    int kicker = 0;
    for (int rank = 2; rank <= 14 && kicker == 0; ++rank) {
        if (boardCounts[rank] == 1) kicker = rank;
    }
    const HoleRanks hole = HoleRanksOf(state);
    const double outs = kicker < trips ? BoardTripsKickerBelow(hole, trips)
                                       : BoardTripsKickerAbove(hole, trips, kicker);
    state.trace.Note("TurnBoardTrips: K ", kicker);
    TurnStrengthFromOuts(state, "TurnBoardTrips", outs, UnseenRule::kFixed45);
}

}  // namespace

void TurnThreeOfAKind(CalcState& state) {
    int trips = 0;
    for (int rank = 2; rank <= 14 && trips == 0; ++rank) {
        if (state.gRankCount[rank] == 3) trips = rank;
    }
    const HoleRanks hole = HoleRanksOf(state);
    if (hole.high == trips && hole.low == trips) {
        TurnSet(state);
        return;
    }
    // Without the hole cards: are the trips all on the board?
    RankCounts boardCounts = state.gRankCount;
    boardCounts[RankAt(state, 0)] -= 1;
    boardCounts[RankAt(state, 1)] -= 1;
    const bool boardTrips =
        CountRanksIn(2, 14, [&](long rank) { return boardCounts[rank] == 3; }) > 0;
    if (boardTrips) {
        TurnBoardTrips(state, trips, boardCounts);
    } else {
        TurnTripsBoardPair(state, trips);
    }
}

}  // namespace felthawk
