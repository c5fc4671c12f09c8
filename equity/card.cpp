#include "equity/card.h"

namespace felthawk::equity {
namespace {

constexpr std::string_view kRankChars = "23456789TJQKA";
constexpr std::string_view kSuitChars = "cdhs";

std::optional<int> Find(std::string_view chars, char c) {
    const char upper = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    const char lower = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    for (std::size_t i = 0; i < chars.size(); ++i) {
        if (chars[i] == upper || chars[i] == lower) return static_cast<int>(i);
    }
    return std::nullopt;
}

}  // namespace

std::optional<int> ParseRank(char c) {
    return Find(kRankChars, c);
}

std::optional<int> ParseSuit(char c) {
    return Find(kSuitChars, c);
}

std::optional<Card> ParseCard(std::string_view text) {
    if (text.size() != 2) return std::nullopt;
    const auto rank = ParseRank(text[0]);
    const auto suit = ParseSuit(text[1]);
    if (!rank || !suit) return std::nullopt;
    return MakeCard(*rank, *suit);
}

std::string CardText(Card card) {
    return {kRankChars[RankOf(card)], kSuitChars[SuitOf(card)]};
}

}  // namespace felthawk::equity
