// The card and seat text readers on any bytes. The input is split at its
// first newline into the cells text and the seats text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "cards/card_codes.h"
#include "cards/runtime_fault.h"
#include "evaluator/table_input.h"

namespace {

void Check(bool ok, const char* what, std::string_view text) {
    if (ok) return;
    std::fprintf(stderr, "%s: \"%.*s\"\n", what, static_cast<int>(text.size()), text.data());
    std::abort();
}

// What every reader must hold to for one piece of text.
void CheckCardText(std::string_view text) {
    felthawk::CardCode card = felthawk::kNoCard;
    try {
        card = felthawk::CardFromText(text);
    } catch (const felthawk::RuntimeFault&) {
        // A rank number beyond 16 bits: the engine's own overflow fault.
        Check(!felthawk::IsCardText(text), "a legal card text faults", text);
    }
    if (felthawk::IsCardText(text)) {
        Check(felthawk::SuitBase(card) != 0, "a legal card text reads as no card", text);
        Check(felthawk::CardText(card) == text, "a card text does not read back", text);
    }
    const int rank = felthawk::RankValue(text);
    Check(rank == 0 || (rank >= 2 && rank <= 14), "rank out of range", text);
    (void)felthawk::Val(text);
    const std::string trimmed = felthawk::Trim(text);
    Check(trimmed.size() <= text.size(), "trimming made the text longer", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = input.find('\n');
    const std::string_view cells = input.substr(0, newline);
    const std::string_view seats =
        newline == std::string_view::npos ? felthawk::kDefaultSeats : input.substr(newline + 1);

    CheckCardText(cells);
    std::string error;
    const auto table = felthawk::ParseTable(cells, seats, error);
    Check(table.has_value() != !error.empty(), "a table and an error, or neither", input);
    if (!table) return 0;
    int me = 0;
    for (char seat : table->seats) {
        Check(std::string_view("MHFE").find(seat) != std::string_view::npos, "bad seat kept",
              input);
        me += seat == 'M';
    }
    Check(me == 1, "not exactly one M", input);
    for (const std::string& cell : table->cells) {
        Check(cell.empty() || felthawk::IsCardText(cell), "a bad cell kept", cell);
        CheckCardText(cell);
    }
    return 0;
}
