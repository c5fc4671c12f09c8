#include "evaluator/equity_report.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "equity/table_equity.h"

namespace felthawk {
namespace {

void AppendRounded(std::string& out, double value, double unit) {
    char text[32];
    const double rounded = std::round(value / unit) * unit;
    const auto end =
        std::to_chars(text, text + sizeof text, rounded, std::chars_format::general, 12);
    out.append(text, end.ptr);
}

bool IsExact(const equity::EquityResult& result) {
    return result.method == equity::EquityMethod::kExact;
}

}  // namespace

bool TakeEquityArgument(int argc, char** argv, int& i, EquityOptions& options, std::string& error) {
    const std::string_view arg = argv[i];
    if (arg == "--equity") {
        options.enabled = true;
        return true;
    }
    if (arg != "--range" && arg != "--ranges" && arg != "--equity-target") return false;
    if (i + 1 >= argc) {
        error = std::string(arg) + " needs a value";
        return true;
    }
    const std::string_view value = argv[++i];
    if (arg == "--ranges") {
        options.ranges = value;
    } else if (arg == "--range") {
        const auto equals = value.find('=');
        int seat = 0;
        const auto [end, ec] =
            std::from_chars(value.data(), value.data() + std::min(equals, value.size()), seat);
        if (equals == std::string_view::npos || ec != std::errc() || end != value.data() + equals ||
            seat < 1 || seat > kSeatCount) {
            error =
                "--range takes SEAT=RANGE with SEAT 1 to 10, not \"" + std::string(value) + "\"";
            return true;
        }
        options.seatRanges.emplace_back(seat - 1, std::string(value.substr(equals + 1)));
    } else {
        double percent = 0;
        const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), percent);
        const bool whole = end == value.data() + value.size() ||
                           (end + 1 == value.data() + value.size() && *end == '%');
        if (ec != std::errc() || !whole || !(percent >= 0.001 && percent <= 10)) {
            error = "--equity-target takes a percentage from 0.001 to 10, not \"" +
                    std::string(value) + "\"";
            return true;
        }
        options.targetPercent = percent;
    }
    return true;
}

bool CheckEquityOptions(const EquityOptions& options, std::string& error) {
    if (!options.enabled && (!options.ranges.empty() || !options.seatRanges.empty())) {
        error = "--range and --ranges need --equity";
        return false;
    }
    return true;
}

std::optional<equity::EquityResult> TableEquity(const TableInput& table,
                                                const EquityOptions& options, std::string& error) {
    std::array<std::string, equity::kTableCells> cells;
    for (int i = 0; i < equity::kTableCells; ++i) cells[i] = table.cells[i];
    std::array<char, equity::kTableSeats> seats;
    for (int i = 0; i < equity::kTableSeats; ++i) seats[i] = table.seats[i];

    std::array<std::string, equity::kTableSeats> ranges;
    std::size_t start = 0;
    for (int seat = 0; seat < equity::kTableSeats && !options.ranges.empty(); ++seat) {
        if (seats[seat] != 'H') continue;
        if (start > options.ranges.size()) break;
        const std::size_t end = std::min(options.ranges.find(';', start), options.ranges.size());
        ranges[seat] = options.ranges.substr(start, end - start);
        start = end + 1;
    }
    if (!options.ranges.empty() && start <= options.ranges.size()) {
        error = "--ranges gives more ranges than there are seats in the hand";
        return std::nullopt;
    }
    for (const auto& [seat, range] : options.seatRanges) {
        if (seats[seat] != 'H') {
            error = "--range: seat " + std::to_string(seat + 1) + " is not in the hand";
            return std::nullopt;
        }
        ranges[seat] = range;
    }
    try {
        auto request = equity::TableRequest(cells, seats, ranges);
        request.targetStderr = options.targetPercent / 100;
        return equity::ComputeEquity(request);
    } catch (const equity::EquityError& e) {
        error = std::string("equity: ") + e.what();
        return std::nullopt;
    }
}

void AppendEquityJson(std::string& out, const equity::EquityResult& result) {
    out.pop_back();  // the object's closing brace
    out += ", \"equity\": {\"win\": ";
    AppendRounded(out, result.win * 100, 1e-4);
    out += ", \"tie\": ";
    AppendRounded(out, result.tie * 100, 1e-4);
    out += ", \"equity\": ";
    AppendRounded(out, result.equity * 100, 1e-4);
    out += ", \"opponents\": " + std::to_string(result.opponents);
    out += IsExact(result) ? ", \"method\": \"exact\"" : ", \"method\": \"monte-carlo\"";
    out += ", \"stderr\": ";
    AppendRounded(out, result.stderr * 100, 1e-4);
    out += ", \"samples\": " + std::to_string(result.samples);
    out += ", \"ms\": ";
    AppendRounded(out, result.milliseconds, 0.1);
    out += "}}";
}

std::string EquityPanelLine(const equity::EquityResult& result) {
    char line[160];
    const std::string opponents =
        std::to_string(result.opponents) + (result.opponents == 1 ? " opponent" : " opponents");
    if (IsExact(result)) {
        std::snprintf(line, sizeof line,
                      "Equity      %.2f %%  win %.2f %%  tie %.2f %%  exact, %s\n",
                      result.equity * 100, result.win * 100, result.tie * 100, opponents.c_str());
    } else {
        std::snprintf(line, sizeof line,
                      "Equity      %.2f %% +- %.2f  win %.2f %%  tie %.2f %%  Monte Carlo, %s\n",
                      result.equity * 100, result.stderr * 100, result.win * 100, result.tie * 100,
                      opponents.c_str());
    }
    return line;
}

}  // namespace felthawk
