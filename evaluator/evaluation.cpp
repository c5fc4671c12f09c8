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

// Bytes that go out as they are: printable ASCII other than the quote and
// the backslash.
bool IsPlain(unsigned char c) {
    return c >= 0x20 && c < 0x80 && c != '"' && c != '\\';
}

// The length of the well-formed UTF-8 sequence that starts `text`, or 0:
// shortest form only, no surrogates, nothing above U+10FFFF.
std::size_t Utf8Length(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    std::size_t length;
    unsigned char low = 0x80;  // the bounds of the second byte
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return 0;
    }
    if (text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if (next < (i == 1 ? low : 0x80) || next > (i == 1 ? high : 0xBF)) return 0;
    }
    return length;
}

// A JSON string of any bytes: escapes what JSON wants escaped and writes
// U+FFFD for every byte that is not part of well-formed UTF-8.
void AppendString(std::string& out, std::string_view text) {
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    out += '"';
    std::size_t i = 0;
    while (i < text.size()) {
        std::size_t plain = i;
        while (plain < text.size() && IsPlain(static_cast<unsigned char>(text[plain]))) ++plain;
        out.append(text, i, plain - i);
        i = plain;
        if (i == text.size()) break;
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x80) {
            const std::size_t length = Utf8Length(text.substr(i));
            if (length == 0) {
                out += kReplacement;
                ++i;
            } else {
                out.append(text, i, length);
                i += length;
            }
            continue;
        }
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
            default: {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                out += escaped;
            }
        }
        ++i;
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
