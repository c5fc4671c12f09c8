// The picture of the test table: felt, seats, and the cards it is given,
// drawn where capture reads them.
#pragma once

#include <QImage>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "cards/recalculate.h"

namespace felthawk {

constexpr int kTableWidth = 780;
constexpr int kTableHeight = 440;

// A cell that shows a card lying face down: there, but unreadable.
inline constexpr std::string_view kFaceDown = "XX";

// Seven comma-separated cells, each empty, a card such as "AS" or "XX";
// nothing, with a message in `error`, for anything else or for a card that
// is dealt twice.
std::optional<TextCells> ParseTableCells(std::string_view text, std::string& error);

// The whole table. The user's hole cards lie at the seat before `meSeat`,
// the seat whose point capture reads them by.
QImage DrawTable(const TextCells& cells, int meSeat);

}  // namespace felthawk
