// felthawk-calc --equity: the equity object after the usual keys, the range
// options and their faults.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "evaluator/calc_command.h"

namespace felthawk {
namespace {

struct Answer {
    int status;
    std::string out;
    std::string err;
};

std::string ReadBack(std::FILE* file) {
    std::rewind(file);
    std::string text;
    char buffer[4096];
    for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
        text.append(buffer, got);
    }
    std::fclose(file);
    return text;
}

Answer Calc(std::vector<std::string> args, const std::string& input = "") {
    args.insert(args.begin(), "felthawk-calc");
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    std::FILE* in = std::tmpfile();
    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    std::fputs(input.c_str(), in);
    std::fflush(in);
    std::rewind(in);
    const int status = RunCalcCommand(static_cast<int>(argv.size()), argv.data(), fileno(in),
                                      fileno(out), fileno(err));
    std::fclose(in);
    return {status, ReadBack(out), ReadBack(err)};
}

TEST(EquityOption, AddsItsObjectAfterTheUsualKeys) {
    struct Row {
        std::vector<std::string> table;
        std::vector<std::string> equity;
        std::string expected;  // a piece of the equity object
    };
    const Row rows[] = {
        {{"--cells", "AH,AS,,,,,", "--seats", "MHFFFFFFFF"},
         {"--range", "2=KdKc"},
         "\"equity\": 81.2555, \"opponents\": 1, \"method\": \"exact\", \"stderr\": 0, "
         "\"samples\": 1712304"},
        {{"--cells", "AH,AS,,,,,", "--seats", "MFHEFFFFFF"},
         {"--ranges", "KdKc"},
         "\"equity\": 81.2555, \"opponents\": 1"},
        // --ranges in seat order, --range over it.
        {{"--cells", "KD,KC,,,,,", "--seats", "FFFHFFMFFF"},
         {"--ranges", "QQ", "--range", "4=AhAs"},
         "\"equity\": 18.7445, \"opponents\": 1"},
        {{"--cells", "AS,KS,QS,7D,2C,,", "--seats", "MHHHHHEEEE"},
         {"--equity-target", "0.5%"},
         "\"opponents\": 5, \"method\": \"monte-carlo\""},
    };
    for (const auto& row : rows) {
        const Answer plain = Calc(row.table);
        auto withEquity = row.table;
        withEquity.push_back("--equity");
        withEquity.insert(withEquity.end(), row.equity.begin(), row.equity.end());
        const Answer answer = Calc(withEquity);
        ASSERT_EQ(answer.status, 0) << answer.err;
        // The usual answer stands as it was, the equity object last.
        const std::string before = plain.out.substr(0, plain.out.size() - 2);
        EXPECT_EQ(answer.out.substr(0, before.size()), before);
        const std::string opening = ", \"equity\": {\"win\": ";
        EXPECT_EQ(answer.out.substr(before.size(), opening.size()), opening);
        EXPECT_NE(answer.out.find(row.expected), std::string::npos) << answer.out;
        EXPECT_EQ(answer.out.substr(answer.out.size() - 3), "}}\n");
    }
    const Answer pretty = Calc({"--cells", "AH,AS,,,,,", "--seats", "MHFFFFFFFF", "--range",
                                "2=KdKc", "--equity", "--pretty"});
    EXPECT_NE(pretty.out.find("Equity      81.26 %  win 81.06 %  tie 0.38 %  exact, 1 opponent"),
              std::string::npos)
        << pretty.out;
}

TEST(EquityOption, FaultsAreNamed) {
    struct Row {
        std::vector<std::string> args;
        std::string message;
    };
    const std::vector<std::string> table = {"--cells", "AS,KS,,,,,", "--seats", "MHFFFFFFFF"};
    const Row rows[] = {
        {{"--equity", "--range", "2=AKx"},
         "seat 2: range: expected 's' or 'o' after the ranks at position 3"},
        {{"--equity", "--range", "11=AA"}, "SEAT 1 to 10"},
        {{"--equity", "--range", "AA"}, "SEAT 1 to 10"},
        {{"--equity", "--range", "3=AA"}, "seat 3 is not in the hand"},
        {{"--equity", "--ranges", "AA;KK"}, "more ranges than there are seats"},
        {{"--equity", "--equity-target", "0"}, "percentage from 0.001 to 10"},
        {{"--equity", "--equity-target", "fast"}, "percentage from 0.001 to 10"},
        {{"--equity", "--range"}, "--range needs a value"},
        {{"--range", "2=AA"}, "need --equity"},
        {{"--equity", "--range", "2=AsKs"}, "range has no hand left"},
    };
    for (const auto& row : rows) {
        auto args = table;
        args.insert(args.end(), row.args.begin(), row.args.end());
        const Answer answer = Calc(args);
        EXPECT_EQ(answer.status, 2);
        EXPECT_TRUE(answer.out.empty());
        EXPECT_NE(answer.err.find(row.message), std::string::npos) << answer.err;
    }
    // Batch mode answers each table, a fault as its own line.
    const Answer batch =
        Calc({"--batch", "--equity", "--range", "2=AA"},
             "AS,KS,,,,, MHFFFFFFFF\nAS,,,,,, MHFFFFFFFF\nAS,KS,,,,, MFHFFFFFFF\n");
    EXPECT_EQ(batch.status, 0);
    const auto second = batch.out.find('\n') + 1;
    const auto third = batch.out.find('\n', second) + 1;
    EXPECT_NE(batch.out.find("\"equity\": 12.1405"), std::string::npos) << batch.out;
    EXPECT_EQ(batch.out.substr(second, third - second),
              "{\"error\": \"equity: equity needs your two cards\"}\n");
    EXPECT_EQ(batch.out.substr(third), "{\"error\": \"--range: seat 2 is not in the hand\"}\n");
}

}  // namespace
}  // namespace felthawk
