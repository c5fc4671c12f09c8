// A strict reader of one JSON text, for checking what felthawk-calc writes:
// valid UTF-8 throughout, no raw control characters, nothing after the value.
#pragma once

#include <string>
#include <string_view>

namespace felthawk::testing {

// Returns "" when `text` is exactly one JSON object, else what is wrong and
// where.
std::string JsonObjectProblem(std::string_view text);

}  // namespace felthawk::testing
