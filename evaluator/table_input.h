// The evaluator's input: seven cells and ten seats, as text, checked.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cards/recalculate.h"

namespace felthawk {

constexpr std::string_view kDefaultSeats = "MHHHHHHHHH";

struct TableInput {
    std::string cellsText;  // as given
    std::string seatsText;  // as given
    TextCells cells;
    std::array<char, kSeatCount> seats{};
};

// Parses "AS,KS,,,,," and "MHHHHHHHHH". On bad input returns nothing and
// puts a clear message in `error`.
std::optional<TableInput> ParseTable(std::string_view cells, std::string_view seats,
                                     std::string& error);

// Parses one batch line: "<cells> <seats>" separated by blanks; the seats may
// be left out.
std::optional<TableInput> ParseBatchLine(std::string_view line, std::string& error);

}  // namespace felthawk
