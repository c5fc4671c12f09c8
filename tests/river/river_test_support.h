// Runs seven cards through the real recalculation driver and reports what
// the river stage left: the strength, the trace, and the outs a leaf noted.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace felthawk::river_test {

constexpr const char* kFullTable = "MHHHHHHHHH";

struct RiverRun {
    int stage = 0;
    int strength = 0;
    std::vector<std::string> trace;

    bool Mentions(const std::string& text) const;
    // The outs the named leaf noted, if it ran.
    std::optional<double> OutsOf(const std::string& leaf) const;
};

// cells: seven card texts separated by commas ("AS,KD,..."); seats: ten
// letters, seat 0 first.
RiverRun RunRiver(const std::string& cells, const std::string& seats = kFullTable);

// The whole percent that `outs` good cards give on two draws from 45,
// worked out here on its own so that the engine's closing step is checked
// against it.
int PercentFromOuts(double outs);

// Names a table case after its description: "pocket pair over a quiet
// board" becomes PocketPairOverAQuietBoard.
std::string CaseName(const std::string& what);
struct CaseNamer {
    template <class Case>
    std::string operator()(const testing::TestParamInfo<Case>& info) const {
        return CaseName(info.param.what);
    }
};

}  // namespace felthawk::river_test
