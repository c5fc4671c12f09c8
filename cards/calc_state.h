// The shared calculation state: what the board, the driver and the stage
// modules hand each other. One instance per table; each stage reads and writes
// it by reference, so a stage can be run alone in a test.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "cards/card_codes.h"
#include "cards/runtime_fault.h"
#include "cards/trace.h"

namespace felthawk {

// Hand classes in the order of the gOdds cells and of the board rows.
enum HandClass : int {
    kPair = 0,
    kTwoPair = 1,
    kThreeOfAKind = 2,
    kStraight = 3,
    kFlush = 4,
    kFullHouse = 5,
    kFourOfAKind = 6,
    kStraightFlush = 7,
};
constexpr int kHandClassCount = 8;

// A gOdds cell that says the class is already made.
inline constexpr std::string_view kCurrent = "Current";

// Seat letters.
constexpr char kSeatMe = 'M';
constexpr char kSeatIn = 'H';
constexpr char kSeatFolded = 'F';
constexpr char kSeatEmpty = 'E';

// Receives the text of a message box raised inside a calculation. The board
// shows it modally; the command-line evaluator records it.
using MessageSink = std::function<void(const std::string&)>;

struct CalcState {
    // The table as numbers, slot i from text cell i; 0 is an empty slot.
    FixedArray<CardCode, 0, 6> gCards;
    // One text cell per hand class: "", "Current" or a whole percentage.
    FixedArray<std::string, 0, 7> gOdds;
    // One letter per seat: M me, H in the hand, F folded, E empty.
    FixedArray<char, 0, 9> gSeats;
    int16_t gDealerSeat = 1;

    // The single result of the flop, turn and river stages, in percent.
    int16_t gStrength = 0;
    int16_t gFoldedCount = 0;
    int16_t gEmptyCount = 0;
    int16_t gRiverFoldedCount = 0;
    int16_t gRiverEmptyCount = 0;

    // Hand search working arrays. gRankCount index 0 counts the empty slots.
    FixedArray<int16_t, 0, 14> gRankCount;
    FixedArray<int16_t, 0, 14> gRiverRankCount;
    FixedArray<int16_t, 0, 3> gSuitCount;  // 0 clubs, 1 spades, 2 hearts, 3 diamonds
    FixedArray<bool, 0, 12> gSuitRanks;    // index rank - 2
    GrowingList<int16_t> gOuts;            // index 0 holds 0 and is never a real out
    int16_t gOpenEndedDraw = 0;
    int16_t gOpenEndedDraw2 = 0;
    int16_t gFlushRunLow = 0;
    int16_t gFlushRunHigh = 0;

    Trace trace;
    MessageSink showMessage;

    CalcState() { InitSeats(); }

    // Seat 0 is the user, the others are in the hand, the button at seat 1.
    void InitSeats() {
        gSeats.Fill(kSeatIn);
        gSeats[0] = kSeatMe;
        gDealerSeat = 1;
    }

    bool IsCurrent(int handClass) const { return gOdds[handClass] == kCurrent; }

    void MessageBox(const std::string& text) {
        if (showMessage) showMessage(text);
    }
};

// Adds one at the rank of every slot of gCards to the given counter array
// (an empty slot counts at index 0).
inline void CountRanks(const CalcState& state, FixedArray<int16_t, 0, 14>& counts) {
    for (int slot = 0; slot < kSlotCount; ++slot) counts[RankOf(state.gCards[slot])] += 1;
}

}  // namespace felthawk
