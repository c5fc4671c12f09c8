#include "evaluator/table_input.h"

#include <vector>

namespace felthawk {
namespace {

std::vector<std::string_view> SplitCells(std::string_view text) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        std::size_t comma = text.find(',', start);
        parts.push_back(
            text.substr(start, comma == std::string_view::npos ? comma : comma - start));
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    return parts;
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

std::optional<TableInput> ParseTable(std::string_view cells, std::string_view seats,
                                     std::string& error) {
    TableInput table;
    table.cellsText = cells;
    table.seatsText = seats;

    const std::vector<std::string_view> parts = SplitCells(cells);
    if (parts.size() != kSlotCount) {
        error = "cells: expected 7 comma-separated cells, got " + std::to_string(parts.size());
        return std::nullopt;
    }
    for (int i = 0; i < kSlotCount; ++i) {
        if (!parts[i].empty() && !IsCardText(parts[i])) {
            error = "cells: cell " + std::to_string(i) + " \"" + std::string(parts[i]) +
                    "\" is not a card (a rank from 23456789TJQKA, then a suit from SHCD)";
            return std::nullopt;
        }
        table.cells[i] = parts[i];
    }

    if (seats.size() != kSeatCount) {
        error = "seats: expected 10 letters from M H F E, got " + std::to_string(seats.size());
        return std::nullopt;
    }
    int me = 0;
    for (int seat = 0; seat < kSeatCount; ++seat) {
        const char letter = seats[seat];
        if (letter != kSeatMe && letter != kSeatIn && letter != kSeatFolded &&
            letter != kSeatEmpty) {
            error = "seats: seat " + std::to_string(seat) + " is '" + std::string(1, letter) +
                    "', not one of M H F E";
            return std::nullopt;
        }
        if (letter == kSeatMe) ++me;
        table.seats[seat] = letter;
    }
    if (me != 1) {
        error = "seats: exactly one M is needed, found " + std::to_string(me);
        return std::nullopt;
    }
    return table;
}

std::optional<TableInput> ParseBatchLine(std::string_view line, std::string& error) {
    std::vector<std::string_view> words;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && IsBlank(line[i])) ++i;
        std::size_t start = i;
        while (i < line.size() && !IsBlank(line[i])) ++i;
        if (i > start) words.push_back(line.substr(start, i - start));
    }
    if (words.empty()) {
        error = "empty line: expected <cells> <seats>";
        return std::nullopt;
    }
    if (words.size() > 2) {
        error = "expected <cells> <seats>, got " + std::to_string(words.size()) + " words";
        return std::nullopt;
    }
    return ParseTable(words[0], words.size() == 2 ? words[1] : kDefaultSeats, error);
}

}  // namespace felthawk
