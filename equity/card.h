// Cards as the equity library sees them: 0..51, rank * 4 + suit, with the
// deuce rank 0 and the ace rank 12; suits 0 clubs, 1 diamonds, 2 hearts,
// 3 spades. Text is a rank character and a suit letter, as "As" or "Td".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace felthawk::equity {

using Card = uint8_t;
using CardMask = uint64_t;  // bit c for card c

constexpr int kRankCount = 13;
constexpr int kSuitCount = 4;
constexpr int kDeckSize = 52;

constexpr Card MakeCard(int rank, int suit) {
    return static_cast<Card>(rank * kSuitCount + suit);
}
constexpr int RankOf(Card card) {
    return card / kSuitCount;
}
constexpr int SuitOf(Card card) {
    return card % kSuitCount;
}
constexpr CardMask Bit(Card card) {
    return CardMask{1} << card;
}

// "23456789TJQKA" position of a rank character (either case), or nullopt.
std::optional<int> ParseRank(char c);
// "cdhs" position of a suit letter (either case), or nullopt.
std::optional<int> ParseSuit(char c);
// A two-character card such as "As"; nullopt when it is not one.
std::optional<Card> ParseCard(std::string_view text);
std::string CardText(Card card);

}  // namespace felthawk::equity
