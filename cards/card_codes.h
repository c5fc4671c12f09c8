// Card codes and the text helpers shared by every stage.
//
// A CardCode is rank (2..14, the ace high) plus a suit base: 0 clubs,
// 100 spades, 200 hearts, 300 diamonds. The ace of diamonds is 314, the two
// of clubs 2, and 0 is an empty slot. Higher ranks are better everywhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace felthawk {

using CardCode = int16_t;

constexpr CardCode kNoCard = 0;
constexpr int kSlotCount = 7;  // 0, 1 hole; 2, 3, 4 flop; 5 turn; 6 river
constexpr int kSeatCount = 10;

// Suit bases as the card codes carry them.
constexpr int kClubsBase = 0;
constexpr int kSpadesBase = 100;
constexpr int kHeartsBase = 200;
constexpr int kDiamondsBase = 300;

// 1 for 2..14, 100 for 102..114, 200 for 202..214, 300 for 302..314, else 0.
// Clubs give 1, not 0, so that 0 always means "no card"; dividing by 100 and
// truncating turns the 1 back into suit index 0.
constexpr int16_t SuitBase(long card) {
    if (card >= 2 && card <= 14) return 1;
    if (card >= 102 && card <= 114) return 100;
    if (card >= 202 && card <= 214) return 200;
    if (card >= 302 && card <= 314) return 300;
    return 0;
}

// Suit index 0 clubs, 1 spades, 2 hearts, 3 diamonds (0 also for no card).
constexpr int SuitIndex(long card) {
    return SuitBase(card) / 100;
}

constexpr int RankOf(long card) {
    return static_cast<int>(card % 100);
}

// The suit base of a suit letter "C", "S", "H", "D"; -1 for anything else.
int SuitBaseOfLetter(char letter);

// Text of a rank: "T".."A" for 10..14, the digits below 10, "" above 14.
std::string RankToLetter(long rank);
// Val of the text when that is not 0, else 14, 13, 12, 11, 10 for A K Q J T.
// A number outside 16 bits raises an overflow fault (cards/runtime_fault.h).
int RankFromLetter(std::string_view text);
// As RankToLetter, but 2..9 carry the leading blank of a number turned into
// text, and any rank outside 2..14 gives "". Callers trim.
std::string RankText(long rank);
// 2..9 by numeric value, else T J Q K A, else 0.
int RankValue(std::string_view text);

// The code of a card text such as "AS"; kNoCard when the text holds no suit
// letter (the path of every empty cell). Overflows as RankFromLetter does.
CardCode CardFromText(std::string_view text);

// The two-character text of a legal card code ("AS", "TH", "2C").
std::string CardText(CardCode card);

// Whether a text is a legal card: a rank from 23456789TJQKA and a suit from
// SHCD, nothing else.
bool IsCardText(std::string_view text);

// The runtime's Val: the leading number of a text, blanks skipped, 0 if none.
double Val(std::string_view text);

std::string Trim(std::string_view text);

}  // namespace felthawk
