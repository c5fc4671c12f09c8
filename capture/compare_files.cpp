#include "capture/compare_files.h"

#include <fstream>
#include <iterator>

namespace felthawk {

std::optional<std::string> ReadJoinedLines(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::string text;
    for (auto it = std::istreambuf_iterator<char>(file); it != std::istreambuf_iterator<char>();
         ++it) {
        if (*it != '\r' && *it != '\n') text.push_back(*it);
    }
    if (file.bad()) return std::nullopt;
    return text;
}

FileComparison compare_files(const std::filesystem::path& path1,
                             const std::filesystem::path& path2) {
    FileComparison result;
    const std::optional<std::string> first = ReadJoinedLines(path1);
    if (!first) {
        result.unreadable = path1;
        return result;
    }
    const std::optional<std::string> second = ReadJoinedLines(path2);
    if (!second) {
        result.unreadable = path2;
        return result;
    }
    result.identical = *first == *second;
    return result;
}

}  // namespace felthawk
