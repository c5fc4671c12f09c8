#include "evaluator/evaluation.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace felthawk {
namespace {

constexpr const char* kRowCaptions[kHandClassCount] = {
    "Pair",  "Two Pair",   "Three Of A Kind", "Straight",
    "Flush", "Full House", "Four Of A Kind",  "Straight Flush",
};

bool NeedsEscape(char c) {
    return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
}

void AppendString(std::string& out, std::string_view text) {
    out += '"';
    std::size_t plain = 0;
    while (plain < text.size() && !NeedsEscape(text[plain])) ++plain;
    out.append(text.substr(0, plain));
    for (char c : text.substr(plain)) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                    out += escaped;
                } else {
                    out += c;
                }
        }
    }
    out += '"';
}

template <class List>
void AppendStringList(std::string& out, const List& items) {
    out += '[';
    bool first = true;
    for (const auto& item : items) {
        if (!first) out += ", ";
        first = false;
        AppendString(out, item);
    }
    out += ']';
}

void AppendNumber(std::string& out, double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 15);
    out.append(text, end.ptr);
}

}  // namespace

Evaluator::Evaluator(bool explain) {
    state_.trace.enabled = explain;
    state_.showMessage = [this](const std::string& text) { result_.messages.push_back(text); };
}

const Evaluation& Evaluator::Evaluate(const TableInput& table) {
    result_.messages.clear();
    for (int seat = 0; seat < kSeatCount; ++seat) state_.gSeats[seat] = table.seats[seat];
    result_.display = RecalculateHand(state_, table.cells);
    result_.odds.assign(state_.gOdds.begin(), state_.gOdds.end());
    if (state_.trace.enabled) result_.trace = state_.trace.Lines();
    return result_;
}

namespace {

// Writes one JSON object, key after key, in the order of the calls.
class JsonObject {
  public:
    explicit JsonObject(std::string& out) : out_(out) { out_ += '{'; }
    ~JsonObject() { out_ += '}'; }
    JsonObject(const JsonObject&) = delete;
    JsonObject& operator=(const JsonObject&) = delete;

    void Text(std::string_view key, std::string_view text) { AppendString(Key(key), text); }
    template <class List>
    void TextList(std::string_view key, const List& items) {
        AppendStringList(Key(key), items);
    }
    void Number(std::string_view key, double value) { AppendNumber(Key(key), value); }
    void Raw(std::string_view key, std::string_view json) { Key(key) += json; }

  private:
    std::string& Key(std::string_view key) {
        if (!first_) out_ += ", ";
        first_ = false;
        AppendString(out_, key);
        out_ += ": ";
        return out_;
    }

    std::string& out_;
    bool first_ = true;
};

}  // namespace

void AppendJson(std::string& out, const TableInput& table, const Evaluation& result, bool explain) {
    const DisplayModel& display = result.display;
    JsonObject json(out);
    json.Text("cells", table.cellsText);
    json.Text("seats", table.seatsText);
    json.TextList("odds", result.odds);
    json.TextList("chances", display.chances);
    json.Number("stage", display.stage);
    json.Raw("strength", display.hasStrength ? std::to_string(display.strength) : "null");
    json.Text("me", display.me);
    json.Text("suggestion", display.suggestion);
    json.Number("gauge_x2", display.gaugeX2);
    json.TextList("messages", result.messages);
    if (explain) json.TextList("trace", result.trace);
}

void AppendErrorJson(std::string& out, const std::string& message) {
    JsonObject json(out);
    json.Text("error", message);
}

std::string PrettyPanel(const TableInput& table, const Evaluation& result, bool explain) {
    const DisplayModel& display = result.display;
    std::string out;
    out += "Cards       ";
    for (int i = 0; i < kSlotCount; ++i) {
        out += table.cells[i].empty() ? "--" : table.cells[i];
        out += i == 1 || i == 4 || i == 5 ? "  " : " ";
    }
    out += "\nSeats       " + table.seatsText + "\n\n";
    for (int i = 0; i < kHandClassCount; ++i) {
        char row[64];
        std::snprintf(row, sizeof row, "%-16s %s\n", kRowCaptions[i], display.chances[i].c_str());
        out += row;
    }
    out += "\nMe >>       " + display.me + "\n";
    out += "Suggestion  " + display.suggestion + "\n";

    constexpr int kBarWidth = 30;
    const double share = (display.gaugeX2 - kGaugeStartX) / kGaugeLength;
    const int filled =
        static_cast<int>(std::lround(std::fmax(0.0, std::fmin(1.0, share)) * kBarWidth));
    out +=
        "Gauge       [" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "]\n";
    for (const std::string& message : result.messages) out += "Message     " + message + "\n";
    if (explain) {
        out += "\nHow the figure came about:\n";
        for (const std::string& line : result.trace) out += "  " + line + "\n";
    }
    return out;
}

}  // namespace felthawk
