#include "cards/card_codes.h"

#include <cctype>
#include <cmath>

#include "cards/runtime_fault.h"

namespace felthawk {

int SuitBaseOfLetter(char letter) {
    switch (letter) {
        case 'C':
            return kClubsBase;
        case 'S':
            return kSpadesBase;
        case 'H':
            return kHeartsBase;
        case 'D':
            return kDiamondsBase;
        default:
            return -1;
    }
}

std::string RankToLetter(long rank) {
    switch (rank) {
        case 14:
            return "A";
        case 13:
            return "K";
        case 12:
            return "Q";
        case 11:
            return "J";
        case 10:
            return "T";
        default:
            break;
    }
    if (rank > 14) return "";
    return std::to_string(rank);
}

double Val(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    double sign = 1.0;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) sign = text[i++] == '-' ? -1.0 : 1.0;
    // Digits, with blanks inside the number skipped, and one decimal point.
    double value = 0.0;
    double scale = 0.0;  // 0 before the point, then 0.1, 0.01, ...
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (std::isdigit(static_cast<unsigned char>(c))) {
            if (scale == 0.0) {
                value = value * 10.0 + (c - '0');
            } else {
                value += (c - '0') * scale;
                scale /= 10.0;
            }
        } else if (c == '.' && scale == 0.0) {
            scale = 0.1;
        } else if (c != ' ') {
            break;
        }
    }
    return sign * value;
}

int RankFromLetter(std::string_view text) {
    double value = Val(text);
    if (value != 0.0) return ToInt16(std::trunc(value));
    if (text == "A") return 14;
    if (text == "K") return 13;
    if (text == "Q") return 12;
    if (text == "J") return 11;
    if (text == "T") return 10;
    return 0;
}

std::string RankText(long rank) {
    if (rank < 2 || rank > 14) return "";
    if (rank < 10) return " " + std::to_string(rank);
    return RankToLetter(rank);
}

int RankValue(std::string_view text) {
    double value = Val(text);
    if (value >= 2 && value <= 9) return static_cast<int>(value);
    if (text == "T") return 10;
    if (text == "J") return 11;
    if (text == "Q") return 12;
    if (text == "K") return 13;
    if (text == "A") return 14;
    return 0;
}

CardCode CardFromText(std::string_view text) {
    // The first letter found in the order C, S, H, D decides the suit.
    for (char letter : {'C', 'S', 'H', 'D'}) {
        std::size_t at = text.find(letter);
        if (at == std::string_view::npos) continue;
        std::string rest(text.substr(0, at));
        rest += text.substr(at + 1);
        return ToInt16(RankFromLetter(rest) + SuitBaseOfLetter(letter));
    }
    return kNoCard;
}

std::string CardText(CardCode card) {
    static constexpr char kSuitLetters[] = {'C', 'S', 'H', 'D'};
    std::string text = Trim(RankText(RankOf(card)));
    int suit = card / 100;
    if (suit >= 0 && suit <= 3) text += kSuitLetters[suit];
    return text;
}

bool IsCardText(std::string_view text) {
    static constexpr std::string_view kRanks = "23456789TJQKA";
    static constexpr std::string_view kSuits = "SHCD";
    return text.size() == 2 && kRanks.find(text[0]) != std::string_view::npos &&
           kSuits.find(text[1]) != std::string_view::npos;
}

std::string Trim(std::string_view text) {
    std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return "";
    std::size_t last = text.find_last_not_of(' ');
    return std::string(text.substr(first, last - first + 1));
}

}  // namespace felthawk
