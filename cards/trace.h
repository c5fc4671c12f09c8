// The engine's explanation of a figure: which stage ran, which branch and
// leaf decided, the outs and the N or seat table that made the percentage.
// Off by default; when off, a note costs one test of a flag.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace felthawk {

class Trace {
  public:
    bool enabled = false;

    template <class... Parts>
    void Note(const Parts&... parts) {
        if (!enabled) return;
        std::ostringstream line;
        (line << ... << parts);
        lines_.push_back(line.str());
    }

    void Clear() { lines_.clear(); }
    const std::vector<std::string>& Lines() const { return lines_; }

  private:
    std::vector<std::string> lines_;
};

}  // namespace felthawk
