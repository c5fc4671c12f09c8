// RecalculateHand: the one routine that brings the display up to date with
// the table. It starts from nothing every time, so running it twice gives the
// same display as running it once.
#pragma once

#include <array>
#include <string>

#include "cards/calc_state.h"
#include "cards/suggestion.h"

namespace felthawk {

// The seven text cells of the board: "" or a card text such as "AS".
using TextCells = std::array<std::string, kSlotCount>;

// Stage codes: which cells are filled decides the stage.
enum Stage : int {
    kNoStage = 0,
    kPreFlopStage = 2,
    kFlopStage = 5,
    kTurnStage = 6,
    kRiverStage = 7,
};

// What the board shows after a recalculation.
struct DisplayModel {
    std::array<std::string, kHandClassCount> chances;  // the lP captions
    std::string me;                                    // l_Me
    std::string suggestion;                            // lblSuggestion
    double gaugeX2 = kGaugeStartX;                     // X2 of l_Temp, twips
    int stage = kNoStage;
    // The whole number that l_Me shows, when it shows one.
    bool hasStrength = false;
    int strength = 0;
};

DisplayModel RecalculateHand(CalcState& state, const TextCells& mCards);

// The stage of a pattern of filled cells; three or four cards or a gap give
// none.
int ChooseStage(const TextCells& mCards);

// The caption of an lP label for a gOdds cell: "Current", "12 %", "05 %".
std::string ChanceCaption(const std::string& odds);

}  // namespace felthawk
