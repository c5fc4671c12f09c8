#include "capture/compare_files.h"

#include <fstream>
#include <iterator>

namespace felthawk {

std::string JoinLines(std::string text) {
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
    return text;
}

std::optional<std::string> ReadJoinedLines(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad()) return std::nullopt;
    return JoinLines(std::move(text));
}

}  // namespace felthawk
