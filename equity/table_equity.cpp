#include "equity/table_equity.h"

namespace felthawk::equity {

EquityRequest TableRequest(const std::array<std::string, kTableCells>& cells,
                           const std::array<char, kTableSeats>& seats,
                           const std::array<std::string, kTableSeats>& ranges) {
    EquityRequest request;
    for (int i = 0; i < kTableCells; ++i) {
        if (cells[i].empty()) continue;
        const auto card = ParseCard(cells[i]);
        if (!card) throw EquityError("\"" + cells[i] + "\" is not a card");
        if (i < 2) {
            request.hero[i] = *card;
        } else {
            request.board.push_back(*card);
        }
    }
    if (cells[0].empty() || cells[1].empty()) throw EquityError("equity needs your two cards");
    CardMask known = Bit(request.hero[0]) | Bit(request.hero[1]);
    for (Card c : request.board) known |= Bit(c);
    for (int seat = 0; seat < kTableSeats; ++seat) {
        if (seats[seat] != 'H') continue;
        const std::string name = "seat " + std::to_string(seat + 1);
        try {
            request.opponents.push_back(ParseRange(ranges[seat].empty() ? "random" : ranges[seat]));
        } catch (const EquityError& e) {
            throw EquityError(name + ": " + e.what());
        }
        if (WithoutCards(request.opponents.back(), known).empty()) {
            throw EquityError(name + "'s range has no hand left beside the known cards");
        }
    }
    if (request.opponents.empty()) throw EquityError("no seat is in the hand (\"H\")");
    return request;
}

}  // namespace felthawk::equity
