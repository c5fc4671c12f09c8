#include "evaluator/table_input.h"

namespace felthawk {
namespace {

// Splits at commas into at most kSlotCount parts; returns the number of
// parts the text really has.
std::size_t SplitCells(std::string_view text, std::array<std::string_view, kSlotCount>& parts) {
    std::size_t count = 0;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = text.find(',', start);
        const std::size_t end = comma == std::string_view::npos ? text.size() : comma;
        if (count < parts.size()) parts[count] = text.substr(start, end - start);
        ++count;
        if (comma == std::string_view::npos) return count;
        start = comma + 1;
    }
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

    std::array<std::string_view, kSlotCount> parts;
    const std::size_t count = SplitCells(cells, parts);
    if (count != kSlotCount) {
        error = "cells: expected 7 comma-separated cells, got " + std::to_string(count);
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
    std::array<std::string_view, 2> words;
    std::size_t count = 0;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && IsBlank(line[i])) ++i;
        const std::size_t start = i;
        while (i < line.size() && !IsBlank(line[i])) ++i;
        if (i == start) continue;
        if (count < words.size()) words[count] = line.substr(start, i - start);
        ++count;
    }
    if (count == 0) {
        error = "empty line: expected <cells> <seats>";
        return std::nullopt;
    }
    if (count > 2) {
        error = "expected <cells> <seats>, got " + std::to_string(count) + " words";
        return std::nullopt;
    }
    return ParseTable(words[0], count == 2 ? words[1] : kDefaultSeats, error);
}

}  // namespace felthawk
