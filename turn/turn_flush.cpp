// Flush on the turn: how likely a higher flush or a full house stands
// against the user, by the height of the user's flush card and the board.
#include <array>

#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

// A rank held by exactly one of the six cards ("counted once").
bool Once(const CalcState& state, long rank) {
    return state.gRankCount[rank] == 1;
}

int OnceBetween(const CalcState& state, long first, long last) {
    return CountRanksIn(first, last, [&](long rank) { return Once(state, rank); });
}

// c(x): board cards below rank x.
int BoardBelow(const CalcState& state, int rank) {
    return CountBoardCards(state, [&](CardCode card) { return RankOf(card) < rank; });
}

int BoardAbove(const CalcState& state, int rank) {
    return CountBoardCards(state, [&](CardCode card) { return RankOf(card) > rank; });
}

// ---- Two suited hole cards and three of their suit on the board ----

// With a paired board the lower matching hole rank decides what a full
// house against the user is worth.
double PairedBoardBonus(const HoleRanks& hole) {
    if (hole.high < 5) return hole.low > 3 ? 10.0 : 10.5;
    struct Band {
        int first;
        int last;
        double bonus;
    };
    constexpr std::array<Band, 6> kBands = {{
        {5, 6, 11.0},
        {7, 8, 12.0},
        {9, 11, 12.5},
        {12, 12, 13.0},
        {13, 13, 15.5},
        {14, 14, 17.5},
    }};
    const auto matches = [&](int rank, const Band& band) {
        return rank >= band.first && rank <= band.last;
    };
    for (const Band& band : kBands) {
        if (matches(hole.high, band) || matches(hole.low, band)) return band.bonus;
    }
    return 0.0;
}

void TurnFlushTwoHole(CalcState& state, int suit) {
    const HoleRanks hole = HoleRanksOf(state);
    const bool paired =
        CountRanksIn(2, 14, [&](long rank) { return state.gRankCount[rank] == 2; }) > 0;
    FixedArray<int16_t, 2, 14> flushRanks;
    for (int slot = 0; slot <= kLastBoardSlot; ++slot) {
        if (SuitIndex(state.gCards[slot]) == suit) flushRanks[RankAt(state, slot)] += 1;
    }
    double outs = paired ? 0.0 : 18.0;
    // Five of the suit within six ranks: a straight flush is near.
    const SpanHit near = FirstSpan(
        2, 9, 6, [&](long rank) { return flushRanks[rank] > 0; },
        [](int count) { return count >= 5; });
    if (near.found) {
        if (hole.high >= near.start + 5) {
            outs += 2.0;
        } else if (hole.high > near.start + 1) {
            outs += 1.0;
        } else {
            outs -= 0.5;
        }
    }
    if (paired) outs += PairedBoardBonus(hole);
    TurnStrengthFromOuts(state, "TurnFlushTwoHole", outs, UnseenRule::kLarger);
}

// ---- All six cards of one suit ----

// Below an eight-high flush: how many low ranks the six cards spread over.
double AllSuitedLow(const CalcState& state, int high) {
    const int n = OnceBetween(state, 2, 10) - 2;
    if (high < 5) {
        switch (n) {
            case 4:
                return 1.1;
            case 2:
                return 1.0;
            case 1:
                return 0.75;
            case 0:
                return 1.2;
            default:
                return 0.0;
        }
    }
    if (high == 5) return 0.0;
    return n == 4 ? 1.5 : 2.2;
}

double AllSuitedNineOrTen(const CalcState& state, int high) {
    // By the board cards below ten: 0, 1, 2, 3, 4. Three below a ten-high
    // flush sets nothing.
    constexpr std::array<double, 5> kNine = {16.25, 8.5, 5.25, 3.75, 2.01};
    constexpr std::array<double, 5> kTen = {16.0, 8.5, 5.25, 0.0, 2.75};
    const auto below = static_cast<std::size_t>(BoardBelow(state, 10));
    return high == 9 ? kNine[below] : kTen[below];
}

double AllSuitedJack(const CalcState& state) {
    double outs = 0.0;
    if (BoardBelow(state, 6) == 4) outs = 3.25;
    switch (OnceBetween(state, 6, 10)) {
        case 1:
            return 3.25;
        case 2:
            return 4.25;
        case 3:
            return 5.5;
        case 4:
            return 2.25;
        default:
            break;
    }
    int high = 0;  // tens and above among the flop cards
    for (int slot = kFirstBoardSlot; slot <= 4; ++slot) {
        if (RankAt(state, slot) >= 10) ++high;
    }
    switch (high) {
        case 1:
            return 9.5;
        case 2:
            return 16.5;
        case 3:
            return 34.0;
        default:
            return outs;
    }
}

double AllSuitedQueen(const CalcState& state) {
    if (BoardBelow(state, 6) == 4) return 5.75;
    switch (BoardAbove(state, 12)) {
        case 0:
            break;
        case 1:
            return Once(state, 14) && BoardBelow(state, 6) == 3 ? 8.5 : 16.5;
        case 2:
            return 34.0;
        default:
            return 0.0;
    }
    const int middle =
        CountBoardCards(state, [](CardCode card) { return RankOf(card) > 5 && RankOf(card) < 10; });
    constexpr std::array<double, 5> kByMiddle = {8.0, 7.75, 8.5, 9.0, 3.25};
    return kByMiddle[static_cast<std::size_t>(middle)];
}

double AllSuitedKing(const CalcState& state) {
    SpanHit hit = FirstSpan(
        2, 11, 4, [&](long rank) { return Once(state, rank); },
        [](int count) { return count >= 3; });
    // Three of four with the top one held and room above counts as four.
    if (hit.count == 3 && Once(state, hit.start + 3) && hit.start + 4 < 14) hit.count = 4;
    if (hit.count == 4) return hit.start == 2 ? 8.5 : 5.5;
    const int middle = OnceBetween(state, 6, 12);
    return middle == 1 || middle == 3 ? 34.5 : 16.5;
}

double AllSuitedAce(const CalcState& state, int other) {
    // Spans that start at the rank O are left out whole.
    const auto spanHit = [&](long lastStart, long width, int wanted) {
        for (long start = 2; start <= lastStart; ++start) {
            const int count = CountRanksIn(start, start + width - 1, [&](long rank) {
                return start != other && Once(state, rank);
            });
            if (count == wanted) return SpanHit{true, start, count};
        }
        return SpanHit{};
    };
    if (spanHit(10, 4, 4).found) return 8.5;
    const SpanHit three = spanHit(11, 3, 3);
    if (!three.found) return 30.0;
    const long start = three.start;
    double outs = 0.0;
    if (start - 2 >= 2 && Once(state, start - 2)) outs = 15.5;
    if (start - 3 >= 2 && Once(state, start - 3)) outs = 29.0;
    if (start + 4 <= 14 && Once(state, start + 4)) outs = 15.5;
    if (start + 5 <= 14 && Once(state, start + 5)) outs = 29.0;
    return outs == 0.0 ? 33.5 : outs;
}

void TurnFlushAllSuited(CalcState& state) {
    const HoleRanks hole = HoleRanksOf(state);
    const int other = RankAt(state, 0) == 13 ? RankAt(state, 1) : RankAt(state, 0);  // O
    double outs = 0.0;
    switch (hole.high) {
        case 9:
        case 10:
            outs = AllSuitedNineOrTen(state, hole.high);
            break;
        case 11:
            outs = AllSuitedJack(state);
            break;
        case 12:
            outs = AllSuitedQueen(state);
            break;
        case 13:
            outs = AllSuitedKing(state);
            break;
        case 14:
            outs = AllSuitedAce(state, other);
            break;
        default:
            outs = AllSuitedLow(state, hole.high);
            break;
    }
    TurnStrengthFromOuts(state, "TurnFlushAllSuited", outs, UnseenRule::kLarger);
}

// ---- One hole card of the suit and four on the board ----

// How the board connects around the flush card F and the other hole card O.
struct Connection {
    int kind = 0;    // 1 four in a row, 2 three then four with F, 3 three only
    long start = 0;  // W
};

Connection ConnectionScan(const CalcState& state, int flushRank, int otherRank) {
    const auto counted = [&](long rank) {
        return Once(state, rank) && rank != flushRank && rank != otherRank;
    };
    const auto four = [](int count) { return count == 4; };
    if (const SpanHit hit = FirstSpan(2, 10, 4, counted, four); hit.found) return {1, hit.start};
    const SpanHit three = FirstSpan(2, 10, 4, counted, [](int count) { return count == 3; });
    if (!three.found) return {};
    // The test is on the span's start, not on the rank.
    for (long start = 2; start <= 10; ++start) {
        const int count = CountRanksIn(
            start, start + 3, [&](long rank) { return Once(state, rank) && start != otherRank; });
        if (four(count)) return {2, start};
    }
    return {3, three.start};
}

// A cell of the one-hole table: a plain figure, replaced by a second one
// when F is not W, or when F is at least W + 4. Cells marked kWorked are
// worked out below the table.
enum class Replace { kNever, kIfFNotW, kIfFAtLeastW4, kWorked };
struct OneHoleCell {
    double plain;
    Replace when;
    double replacement;
};
constexpr OneHoleCell Plain(double outs) {
    return {outs, Replace::kNever, 0.0};
}
constexpr OneHoleCell NotW(double outs, double replacement) {
    return {outs, Replace::kIfFNotW, replacement};
}
constexpr OneHoleCell AtLeastW4(double outs, double replacement) {
    return {outs, Replace::kIfFAtLeastW4, replacement};
}
constexpr OneHoleCell kWorkedCell = {0.0, Replace::kWorked, 0.0};

// Rows by F from 14 down to 7, columns by c, the board cards above 7.
constexpr std::array<std::array<OneHoleCell, 5>, 8> kOneHoleOuts = {{
    /* 14 */ {Plain(32.0), Plain(32.0), Plain(32.0), Plain(32.0), Plain(32.0)},
    /* 13 */
    {NotW(15.5, 24.5), NotW(32.0, 34.0), NotW(15.5, 24.5), NotW(15.5, 24.5), NotW(15.5, 24.5)},
    /* 12 */ {Plain(8.5), NotW(6.0, 8.0), Plain(34.0), Plain(8.5), Plain(8.5)},
    /* 11 */ {Plain(4.75), Plain(8.5), NotW(15.5, 16.5), Plain(34.0), Plain(4.75)},
    /* 10 */ {kWorkedCell, NotW(5.0, 6.0), Plain(8.5), Plain(16.5), Plain(0.0)},
    /*  9 */
    {NotW(1.5, 2.0), kWorkedCell, NotW(5.25, 6.25), NotW(8.25, 9.25), AtLeastW4(16.0, 17.0)},
    /*  8 */ {NotW(1.0, 1.5), kWorkedCell, NotW(2.5, 3.5), NotW(4.75, 6.0), AtLeastW4(8.5, 10.5)},
    /*  7 */ {Plain(5.25), kWorkedCell, kWorkedCell, kWorkedCell, Plain(1.1)},
}};

double OneHoleWorkedCell(int f, int c, const Connection& link) {
    const long w = link.start;
    const bool wellAbove = f >= w + 4;
    if (f == 10) {
        if (link.kind == 3 || link.kind == 1) return 2.5;
        return f == w ? 1.6 : f < w ? 2.0 : 2.5;
    }
    if (f == 9) return (wellAbove ? 3.5 : 3.0) + (f != w ? 0.2 : 0.0);
    if (f == 8) return (wellAbove ? 2.5 : 1.5) + (f != w ? 0.5 : 0.0);
    // F of 7: one card above seven on the board, then two, then three.
    const bool kindTwo = link.kind == 2;
    if (c == 1) return 3.0 + (kindTwo ? 1.0 : 0.0);
    const double outs = c == 2 ? 1.5 + (kindTwo ? 1.0 : 0.0) : 1.1 + (kindTwo ? 0.5 : 0.0);
    return outs + (wellAbove ? 0.5 : 0.0);
}

// A flush of six high or lower loses to almost any other flush.
double OneHoleLowFlush(const CalcState& state, const Connection& link, int f, int o) {
    double outs = link.kind == 1 ? 1.5 : link.kind == 0 ? 0.25 : 1.0;
    const bool boardAboveSix = BoardAbove(state, 6) == 4;
    if (f == 6 && boardAboveSix) {
        outs += 1.0;
        if (link.start == 2) outs = 3.25;
        const SpanHit three = FirstSpan(
            2, 10, 4, [&](long rank) { return Once(state, rank) && rank != f && rank != o; },
            [](int count) { return count == 3; });
        if (three.found) outs = link.kind == 2 ? 2.0 : 1.5;
    }
    return outs;
}

void TurnFlushOneHole(CalcState& state, int suit) {
    const bool firstIsFlush = SuitIndex(state.gCards[0]) == suit;
    const int f = RankAt(state, firstIsFlush ? 0 : 1);
    const int o = RankAt(state, firstIsFlush ? 1 : 0);
    const Connection link = ConnectionScan(state, f, o);
    const int c = BoardAbove(state, 7);
    double outs = 0.0;
    if (f <= 6) {
        outs = OneHoleLowFlush(state, link, f, o);
    } else {
        const OneHoleCell& cell =
            kOneHoleOuts[static_cast<std::size_t>(14 - f)][static_cast<std::size_t>(c)];
        switch (cell.when) {
            case Replace::kNever:
                outs = cell.plain;
                break;
            case Replace::kIfFNotW:
                outs = f != link.start ? cell.replacement : cell.plain;
                break;
            case Replace::kIfFAtLeastW4:
                outs = f >= link.start + 4 ? cell.replacement : cell.plain;
                break;
            case Replace::kWorked:
                outs = OneHoleWorkedCell(f, c, link);
                break;
        }
    }
    state.trace.Note("TurnFlushOneHole: F ", f, ", O ", o, ", kind ", link.kind, ", W ", link.start,
                     ", c ", c);
    TurnStrengthFromOuts(state, "TurnFlushOneHole", outs, UnseenRule::kLarger);
}

}  // namespace

void TurnFlush(CalcState& state) {
    const SuitTable board = BoardSuitTable(state);
    int suit = 0;
    int16_t count = 0;
    for (int index = 0; index <= 3; ++index) {
        if (board[index] >= 3) {
            suit = index;
            count = board[index];
            break;
        }
    }
    if (SuitBase(state.gCards[0]) != SuitBase(state.gCards[1])) {
        TurnFlushOneHole(state, suit);
    } else if (count == 3) {
        TurnFlushTwoHole(state, suit);
    } else if (count == 4) {
        TurnFlushAllSuited(state);
    } else {
        state.trace.Note("TurnFlush: no suit of three on the board, nothing set");
    }
}

}  // namespace felthawk
