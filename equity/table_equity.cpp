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
    for (int seat = 0; seat < kTableSeats; ++seat) {
        if (seats[seat] != 'H') continue;
        try {
            request.opponents.push_back(ParseRange(ranges[seat].empty() ? "random" : ranges[seat]));
        } catch (const EquityError& e) {
            throw EquityError("seat " + std::to_string(seat + 1) + ": " + e.what());
        }
    }
    if (request.opponents.empty()) throw EquityError("no seat is in the hand (\"H\")");
    return request;
}

}  // namespace felthawk::equity
