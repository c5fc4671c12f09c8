// felthawk-calc --equity: the user's equity against the seats still in the
// hand, after the usual keys of the answer.
//
//   --equity                 adds "equity": {"win", "tie", "equity", "opponents",
//                            "method", "stderr", "samples", "ms"}, percentages
//   --range SEAT=RANGE       a range for the seat at place SEAT (1-10) of --seats
//   --ranges "R1;R2;..."     ranges for the live seats in seat order; --range wins
//   --equity-target PERCENT  Monte Carlo's standard error target (default 0.2)
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "equity/equity.h"
#include "evaluator/table_input.h"

namespace felthawk {

struct EquityOptions {
    bool enabled = false;
    std::string ranges;                                   // --ranges
    std::vector<std::pair<int, std::string>> seatRanges;  // --range, seat 0-9
    double targetPercent = 0.2;
};

// Takes argv[i], and its value into argv[i + 1], when it is an equity
// option; false when it is not one. A bad value leaves a message in `error`.
bool TakeEquityArgument(int argc, char** argv, int& i, EquityOptions& options, std::string& error);

// Checks the options as a whole once all are read; false with `error` set.
bool CheckEquityOptions(const EquityOptions& options, std::string& error);

// The equity of the table, or nothing with `error` set.
std::optional<equity::EquityResult> TableEquity(const TableInput& table,
                                                const EquityOptions& options, std::string& error);

// Adds `, "equity": {...}` inside the JSON object that ends `out`.
void AppendEquityJson(std::string& out, const equity::EquityResult& result);
// The panel's equity line.
std::string EquityPanelLine(const equity::EquityResult& result);

}  // namespace felthawk
