// One table through the engine, and the two ways the evaluator writes the
// result: one JSON object on one line, or a panel for a person.
#pragma once

#include <string>
#include <vector>

#include "cards/recalculate.h"
#include "evaluator/table_input.h"

namespace felthawk {

struct Evaluation {
    DisplayModel display;
    std::vector<std::string> odds;      // the gOdds cells as stored
    std::vector<std::string> messages;  // message boxes, in order
    std::vector<std::string> trace;     // filled when explaining
};

// Evaluates on a state that the caller keeps, so that a batch reuses it.
class Evaluator {
  public:
    explicit Evaluator(bool explain);
    const Evaluation& Evaluate(const TableInput& table);

  private:
    CalcState state_;
    Evaluation result_;
};

// Appends the JSON line (without the newline) to `out`.
void AppendJson(std::string& out, const TableInput& table, const Evaluation& result, bool explain);
void AppendErrorJson(std::string& out, const std::string& message);

std::string PrettyPanel(const TableInput& table, const Evaluation& result, bool explain);

}  // namespace felthawk
