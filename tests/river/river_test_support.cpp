#include "tests/river/river_test_support.h"

#include <cctype>
#include <cmath>
#include <sstream>

#include "cards/recalculate.h"

namespace felthawk::river_test {

bool RiverRun::Mentions(const std::string& text) const {
    for (const std::string& line : trace) {
        if (line.find(text) != std::string::npos) return true;
    }
    return false;
}

std::optional<double> RiverRun::OutsOf(const std::string& leaf) const {
    const std::string prefix = leaf + ": outs ";
    for (const std::string& line : trace) {
        if (line.rfind(prefix, 0) == 0) return std::stod(line.substr(prefix.size()));
    }
    return std::nullopt;
}

RiverRun RunRiver(const std::string& cells, const std::string& seats) {
    TextCells mCards;
    std::istringstream list(cells);
    std::string card;
    for (std::size_t cell = 0; cell < mCards.size() && std::getline(list, card, ','); ++cell) {
        mCards[cell] = card;
    }
    CalcState state;
    for (std::size_t seat = 0; seat < seats.size(); ++seat) {
        state.gSeats[static_cast<long>(seat)] = seats[seat];
    }
    state.trace.enabled = true;
    const DisplayModel display = RecalculateHand(state, mCards);
    return RiverRun{display.stage, state.gStrength, state.trace.Lines()};
}

std::string CaseName(const std::string& what) {
    std::string name;
    bool startWord = true;
    for (const char letter : what) {
        if (std::isalnum(static_cast<unsigned char>(letter))) {
            name += startWord ? static_cast<char>(std::toupper(static_cast<unsigned char>(letter)))
                              : letter;
            startWord = false;
        } else {
            startWord = true;
        }
    }
    return name;
}

int PercentFromOuts(double outs) {
    const double missFirst = (45.0 - outs) / 45.0;
    const double missSecond = (44.0 - outs) / 44.0;
    return static_cast<int>(std::nearbyint(100.0 * (1.0 - missFirst * missSecond)));
}

}  // namespace felthawk::river_test
