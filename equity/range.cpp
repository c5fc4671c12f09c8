#include "equity/range.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace felthawk::equity {
namespace {

enum class Suitedness { kAny, kSuited, kOffsuit };

// A hand class such as "AKs" or "QQ", the higher rank first.
struct HandClass {
    int high;
    int low;
    Suitedness suitedness;
};

int ComboIndex(Card high, Card low) {
    return high * (high - 1) / 2 + low;
}

class RangeBuilder {
  public:
    RangeBuilder() { weights_.fill(0.0); }

    void Add(Card a, Card b, double weight) {
        weights_[ComboIndex(std::max(a, b), std::min(a, b))] = weight;
    }

    void AddClass(const HandClass& hand, double weight) {
        for (int s1 = 0; s1 < kSuitCount; ++s1) {
            for (int s2 = 0; s2 < kSuitCount; ++s2) {
                if (hand.high == hand.low && s2 <= s1) continue;
                if (hand.suitedness == Suitedness::kSuited && s1 != s2) continue;
                if (hand.suitedness == Suitedness::kOffsuit && s1 == s2) continue;
                Add(MakeCard(hand.high, s1), MakeCard(hand.low, s2), weight);
            }
        }
    }

    Range Build() const {
        Range range;
        for (int high = 1; high < kDeckSize; ++high) {
            for (int low = 0; low < high; ++low) {
                const double w =
                    weights_[ComboIndex(static_cast<Card>(high), static_cast<Card>(low))];
                if (w > 0) range.push_back({static_cast<Card>(high), static_cast<Card>(low), w});
            }
        }
        return range;
    }

  private:
    std::array<double, kComboCount> weights_;
};

[[noreturn]] void Fail(std::size_t position, const std::string& what) {
    throw EquityError("range: " + what + " at position " + std::to_string(position + 1));
}

std::string_view Trim(std::string_view text, std::size_t& offset) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
        ++offset;
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return (x | 0x20) == (y | 0x20);
           });
}

// "AKs", "QQ", "K4o" at `offset` of the whole text.
HandClass ParseClass(std::string_view text, std::size_t offset) {
    if (text.size() < 2 || text.size() > 3)
        Fail(offset, "\"" + std::string(text) + "\" is not a hand");
    const auto first = ParseRank(text[0]);
    if (!first) Fail(offset, "'" + std::string(1, text[0]) + "' is not a rank");
    const auto second = ParseRank(text[1]);
    if (!second) Fail(offset + 1, "'" + std::string(1, text[1]) + "' is not a rank");
    HandClass hand{std::max(*first, *second), std::min(*first, *second), Suitedness::kAny};
    if (text.size() == 3) {
        const char kind = static_cast<char>(text[2] | 0x20);
        if (kind == 's') {
            hand.suitedness = Suitedness::kSuited;
        } else if (kind == 'o') {
            hand.suitedness = Suitedness::kOffsuit;
        } else {
            Fail(offset + 2, "expected 's' or 'o' after the ranks");
        }
        if (hand.high == hand.low) Fail(offset + 2, "a pair is neither suited nor offsuit");
    }
    return hand;
}

// Every class from `a` to `b` inclusive, for "99-22", "A5s-A2s", "JTs-76s".
std::vector<HandClass> ClassesBetween(const HandClass& a, const HandClass& b, std::size_t offset) {
    if (a.suitedness != b.suitedness) Fail(offset, "the two ends differ in suitedness");
    std::vector<HandClass> classes;
    const bool pairs = a.high == a.low && b.high == b.low;
    if (pairs) {
        for (int r = std::min(a.high, b.high); r <= std::max(a.high, b.high); ++r) {
            classes.push_back({r, r, a.suitedness});
        }
    } else if (a.high == b.high && a.low != a.high && b.low != b.high) {
        for (int r = std::min(a.low, b.low); r <= std::max(a.low, b.low); ++r) {
            classes.push_back({a.high, r, a.suitedness});
        }
    } else if (a.high - a.low == b.high - b.low && a.high != a.low) {
        const int gap = a.high - a.low;
        for (int r = std::min(a.high, b.high); r <= std::max(a.high, b.high); ++r) {
            classes.push_back({r, r - gap, a.suitedness});
        }
    } else {
        Fail(offset, "the two ends of a dash share neither a top card nor a gap");
    }
    return classes;
}

double ParseWeight(std::string_view text, std::size_t offset) {
    double weight = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), weight);
    if (ec != std::errc() || end != text.data() + text.size() || !(weight > 0 && weight <= 1)) {
        Fail(offset, "the weight must be a number above 0 and at most 1");
    }
    return weight;
}

void ParseElement(std::string_view element, std::size_t offset, RangeBuilder& builder) {
    element = Trim(element, offset);
    if (element.empty()) Fail(offset, "empty element");
    double weight = 1.0;
    if (const auto colon = element.find(':'); colon != std::string_view::npos) {
        std::size_t weightOffset = offset + colon + 1;
        weight = ParseWeight(Trim(element.substr(colon + 1), weightOffset), weightOffset);
        element = element.substr(0, colon);
        while (!element.empty() && element.back() == ' ') element.remove_suffix(1);
        if (element.empty()) Fail(offset, "a weight needs a hand before it");
    }

    if (EqualsIgnoringCase(element, "random")) {
        for (int a = 1; a < kDeckSize; ++a) {
            for (int b = 0; b < a; ++b)
                builder.Add(static_cast<Card>(a), static_cast<Card>(b), weight);
        }
        return;
    }
    if (const auto dash = element.find('-'); dash != std::string_view::npos) {
        const auto from = ParseClass(element.substr(0, dash), offset);
        const auto to = ParseClass(element.substr(dash + 1), offset + dash + 1);
        for (const auto& hand : ClassesBetween(from, to, offset)) builder.AddClass(hand, weight);
        return;
    }
    if (element.size() == 4 && ParseSuit(element[1]) && ParseSuit(element[3])) {
        const auto a = ParseCard(element.substr(0, 2));
        if (!a) Fail(offset, "\"" + std::string(element.substr(0, 2)) + "\" is not a card");
        const auto b = ParseCard(element.substr(2, 2));
        if (!b) Fail(offset + 2, "\"" + std::string(element.substr(2, 2)) + "\" is not a card");
        if (*a == *b) Fail(offset, "a combo needs two different cards");
        builder.Add(*a, *b, weight);
        return;
    }
    if (element.back() == '+') {
        const auto hand = ParseClass(element.substr(0, element.size() - 1), offset);
        const int last = hand.high == hand.low ? kRankCount - 1 : hand.high - 1;
        for (int r = hand.low; r <= last; ++r) {
            builder.AddClass(hand.high == hand.low ? HandClass{r, r, hand.suitedness}
                                                   : HandClass{hand.high, r, hand.suitedness},
                             weight);
        }
        return;
    }
    builder.AddClass(ParseClass(element, offset), weight);
}

}  // namespace

Range ParseRange(std::string_view text) {
    constexpr std::size_t kMaxLength = 4096;
    if (text.size() > kMaxLength) Fail(kMaxLength, "the range is too long");
    std::size_t offset = 0;
    if (Trim(text, offset).empty()) throw EquityError("range: empty");
    RangeBuilder builder;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = text.find(',', start);
        const std::size_t end = comma == std::string_view::npos ? text.size() : comma;
        ParseElement(text.substr(start, end - start), start, builder);
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    return builder.Build();
}

Range WithoutCards(const Range& range, CardMask known) {
    Range kept;
    for (const auto& combo : range) {
        if ((combo.Mask() & known) == 0) kept.push_back(combo);
    }
    return kept;
}

bool IsEveryCombo(const Range& range) {
    return range.size() == kComboCount &&
           std::all_of(range.begin(), range.end(),
                       [&](const WeightedCombo& c) { return c.weight == range.front().weight; });
}

}  // namespace felthawk::equity
