// Ranges: the two-card holdings an opponent may have, each with a weight.
//
// Notation, elements separated by commas, blanks allowed around them:
//   AKs  AKo  AK       suited, offsuit, or both (16 combos)
//   QQ                 a pair (6 combos)
//   QQ+  K4o+          the pair and every higher pair; the kicker up to one
//                      below the top card (K4o, K5o ... KQo)
//   99-22  A5s-A2s  JTs-67s
//                      every class between the two ends: pairs, one top card
//                      with the kicker between, or a run with the same gap
//   AcKd               one combo
//   random             all 1,326 combos
// An element may end in ":weight" with 0 < weight <= 1 (AKs:0.5). A combo
// named twice keeps the last weight.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "equity/card.h"

namespace felthawk::equity {

// Every fault the equity library reports: a malformed range or a request
// that no deal can satisfy. The message is meant for the user.
class EquityError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct WeightedCombo {
    Card high;  // the higher card code of the two
    Card low;
    double weight;

    CardMask Mask() const { return Bit(high) | Bit(low); }
};

using Range = std::vector<WeightedCombo>;

constexpr int kComboCount = 1326;

// Throws EquityError naming the 1-based character position of the fault.
Range ParseRange(std::string_view text);

// The combos that hold none of the cards in `known`.
Range WithoutCards(const Range& range, CardMask known);

// True when the range is every combo at one weight, as "random" gives.
bool IsEveryCombo(const Range& range);

}  // namespace felthawk::equity
