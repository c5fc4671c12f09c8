#include "evaluator/calc_command.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "evaluator/equity_report.h"
#include "evaluator/evaluation.h"

namespace felthawk {
namespace {

constexpr int kExitBadInput = 2;

constexpr std::string_view kUsage =
    "usage: felthawk-calc --cells \"AS,KS,,,,,\" [--seats MHHHHHHHHH] [--pretty] [--explain]\n"
    "       felthawk-calc --batch [--explain] [--pretty]   (one \"<cells> <seats>\" per line)\n"
    "       either with --equity [--range SEAT=RANGE]... [--ranges \"R1;R2;...\"]\n"
    "                            [--equity-target PERCENT]\n";

bool WriteAll(int fd, std::string_view text) {
    while (!text.empty()) {
        ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

struct Options {
    bool batch = false;
    bool pretty = false;
    bool explain = false;
    bool haveCells = false;
    std::string cells;
    std::string seats{kDefaultSeats};
    EquityOptions equity;
};

bool ParseOptions(int argc, char** argv, Options& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= argc) {
                error = std::string(arg) + " needs a value";
                return false;
            }
            into = argv[++i];
            return true;
        };
        if (arg == "--batch") {
            options.batch = true;
        } else if (arg == "--pretty") {
            options.pretty = true;
        } else if (arg == "--explain") {
            options.explain = true;
        } else if (arg == "--cells") {
            if (!value(options.cells)) return false;
            options.haveCells = true;
        } else if (arg == "--seats") {
            if (!value(options.seats)) return false;
        } else if (TakeEquityArgument(argc, argv, i, options.equity, error)) {
            if (!error.empty()) return false;
        } else {
            error = "unknown argument " + std::string(arg);
            return false;
        }
    }
    if (!options.batch && !options.haveCells) {
        error = "--cells is needed unless --batch is given";
        return false;
    }
    return CheckEquityOptions(options.equity, error);
}

// Appends the table's answer; false, with nothing appended, when its equity
// cannot be had.
bool AppendResult(std::string& out, const Options& options, Evaluator& evaluator,
                  const TableInput& table, std::string& error) {
    std::optional<equity::EquityResult> equity;
    if (options.equity.enabled && !(equity = TableEquity(table, options.equity, error))) {
        return false;
    }
    const Evaluation& result = evaluator.Evaluate(table);
    if (options.pretty) {
        out += PrettyPanel(table, result, options.explain);
        if (equity) out += EquityPanelLine(*equity);
    } else {
        AppendJson(out, table, result, options.explain);
        if (equity) AppendEquityJson(out, *equity);
        out += '\n';
    }
    return true;
}

int RunBatch(const Options& options, int inputFd, int outputFd) {
    Evaluator evaluator(options.explain);
    std::string pending;  // input not yet ending in a newline
    std::string out;
    char buffer[1 << 16];
    auto answerLine = [&](std::string_view line) {
        std::string error;
        auto table = ParseBatchLine(line, error);
        if (!table || !AppendResult(out, options, evaluator, *table, error)) {
            AppendErrorJson(out, error);
            out += '\n';
        }
    };
    while (true) {
        // Everything answered so far goes out before we wait for more input.
        if (!out.empty()) {
            if (!WriteAll(outputFd, out)) return 1;
            out.clear();
        }
        ssize_t got = ::read(inputFd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        pending.append(buffer, static_cast<std::size_t>(got));
        std::size_t start = 0;
        for (std::size_t end; (end = pending.find('\n', start)) != std::string::npos;
             start = end + 1) {
            answerLine(std::string_view(pending).substr(start, end - start));
        }
        pending.erase(0, start);
    }
    if (!pending.empty()) answerLine(pending);
    return WriteAll(outputFd, out) ? 0 : 1;
}

}  // namespace

int RunCalcCommand(int argc, char** argv, int inputFd, int outputFd, int errorFd) {
    Options options;
    std::string error;
    if (!ParseOptions(argc, argv, options, error)) {
        WriteAll(errorFd, "felthawk-calc: " + error + "\n");
        WriteAll(errorFd, kUsage);
        return kExitBadInput;
    }
    if (options.batch) return RunBatch(options, inputFd, outputFd);

    auto table = ParseTable(options.cells, options.seats, error);
    if (!table) {
        WriteAll(errorFd, "felthawk-calc: " + error + "\n");
        return kExitBadInput;
    }
    Evaluator evaluator(options.explain);
    std::string out;
    if (!AppendResult(out, options, evaluator, *table, error)) {
        WriteAll(errorFd, "felthawk-calc: " + error + "\n");
        return kExitBadInput;
    }
    return WriteAll(outputFd, out) ? 0 : 1;
}

}  // namespace felthawk
