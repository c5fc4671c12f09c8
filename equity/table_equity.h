// The equity question of a table as the board and felthawk-calc hold it:
// seven card cells ("AS", "TD", "" for none; 0, 1 the user's cards, 2 to 6
// the board), ten seats ("M" the user, "H" still in the hand) and a range
// text per seat ("" for random).
#pragma once

#include <array>
#include <string>

#include "equity/equity.h"

namespace felthawk::equity {

constexpr int kTableSeats = 10;
constexpr int kTableCells = 7;

// The request against the seats marked "H", each with its range. Throws
// EquityError when the user's two cards are missing, a cell is not a card,
// no seat is in the hand, or a range is malformed (named by its seat, 1-10).
EquityRequest TableRequest(const std::array<std::string, kTableCells>& cells,
                           const std::array<char, kTableSeats>& seats,
                           const std::array<std::string, kTableSeats>& ranges);

}  // namespace felthawk::equity
