// Properties of the turn stage over many random tables and seatings: the
// driver always finishes with a whole percentage, one leaf (or a fault, or a
// branch that recognises nothing) decides, and the N in the trace is the one
// the leaf's rule makes of the seats.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "cards/recalculate.h"

namespace felthawk {
namespace {

struct Seating {
    std::string letters;
    int folded = 0;
    int empty = 0;
};

Seating RandomSeating(std::mt19937& random) {
    constexpr std::array<char, 3> kLetters = {kSeatIn, kSeatFolded, kSeatEmpty};
    std::uniform_int_distribution<int> pick(0, 2);
    Seating seating;
    seating.letters = std::string(1, kSeatMe);
    for (int seat = 1; seat < kSeatCount; ++seat) {
        const char letter = kLetters[static_cast<std::size_t>(pick(random))];
        seating.letters += letter;
        seating.folded += letter == kSeatFolded;
        seating.empty += letter == kSeatEmpty;
    }
    return seating;
}

TextCells RandomTurnTable(std::mt19937& random) {
    std::vector<std::string> deck;
    for (char rank : std::string("23456789TJQKA")) {
        for (char suit : std::string("CSHD")) deck.push_back(std::string{rank, suit});
    }
    std::shuffle(deck.begin(), deck.end(), random);
    TextCells cells;
    for (int slot = 0; slot < 6; ++slot)
        cells.at(static_cast<std::size_t>(slot)) = deck.at(static_cast<std::size_t>(slot));
    return cells;
}

int ExpectedUnseen(const std::string& rule, const Seating& seating) {
    if (rule == "Larger") return 46 - std::max(seating.folded, seating.empty);
    if (rule == "Sum") return 46 - seating.folded - seating.empty;
    if (rule == "Fixed 46") return 46;
    return 45;
}

TEST(TurnProperties, EveryRandomTableEndsInOneDecidingLeaf) {
    std::mt19937 random(20240611);
    const std::regex outsLine(
        R"(^(Turn\w+): outs [-0-9.e]+, N (\d+) \((Larger|Sum|Fixed 46|Fixed 45)\)$)");
    const std::regex fixedLine(R"(^(Turn\w+): fixed (\d+)$)");
    const std::regex nothingLine(R"(^Turn\w+: .*(nothing|sets nothing).*$)");
    std::map<std::string, int> leaves;
    for (int round = 0; round < 20000; ++round) {
        const TextCells cells = RandomTurnTable(random);
        const Seating seating = RandomSeating(random);
        CalcState state;
        state.trace.enabled = true;
        for (int seat = 0; seat < kSeatCount; ++seat)
            state.gSeats[seat] = seating.letters.at(static_cast<std::size_t>(seat));
        const DisplayModel display = RecalculateHand(state, cells);

        std::string table;
        for (const std::string& cell : cells) table += cell + ",";
        SCOPED_TRACE(table + " " + seating.letters);
        ASSERT_EQ(display.stage, kTurnStage);
        ASSERT_TRUE(display.hasStrength);
        EXPECT_GE(display.strength, 0);
        EXPECT_LE(display.strength, 100);
        EXPECT_EQ(display.me, std::to_string(display.strength) + " %");

        int deciding = 0;
        for (const std::string& line : state.trace.Lines()) {
            std::smatch match;
            if (std::regex_match(line, match, outsLine)) {
                ++deciding;
                ++leaves[match[1]];
                EXPECT_EQ(std::stoi(match[2]), ExpectedUnseen(match[3], seating)) << line;
            } else if (std::regex_match(line, match, fixedLine)) {
                ++deciding;
                ++leaves[match[1]];
                EXPECT_EQ(std::stoi(match[2]), display.strength) << line;
            } else if (std::regex_match(line, nothingLine) || line.rfind("fault: ", 0) == 0) {
                ++deciding;
                EXPECT_EQ(display.strength, 0) << line;
            }
        }
        EXPECT_EQ(deciding, 1);
    }
    // The common classes turn up among random tables in their thousands.
    for (const char* leaf : {"TurnNoPair", "TurnPair", "TurnTwoPairHole", "TurnTripsBoardPair"}) {
        EXPECT_GT(leaves[leaf], 100) << leaf;
    }
}

}  // namespace
}  // namespace felthawk
