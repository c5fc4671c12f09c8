// One batch line, whatever its bytes, through the line parser, a whole
// evaluation and both writers. The evaluator is kept from one input to the
// next, as a batch run keeps it. The answer must be one JSON object of valid
// UTF-8 on one line.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "evaluator/evaluation.h"
#include "evaluator/table_input.h"
#include "tests/evaluator/json_line_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static felthawk::Evaluator evaluator(/*explain=*/true);
    const std::string_view line(reinterpret_cast<const char*>(data), size);

    std::string error;
    std::string out;
    if (auto table = felthawk::ParseBatchLine(line, error)) {
        const felthawk::Evaluation& result = evaluator.Evaluate(*table);
        felthawk::AppendJson(out, *table, result, /*explain=*/true);
        if (felthawk::PrettyPanel(*table, result, true).empty()) std::abort();
    } else {
        if (error.empty()) std::abort();
        felthawk::AppendErrorJson(out, error);
    }
    const std::string problem = felthawk::testing::JsonObjectProblem(out);
    if (!problem.empty() || out.find('\n') != std::string::npos) {
        std::fprintf(stderr, "bad answer (%s): %s\n", problem.c_str(), out.c_str());
        std::abort();
    }
    return 0;
}
