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

FileComparison compare_files(const std::filesystem::path& path1,
                             const std::filesystem::path& path2) {
    const std::optional<std::string> first = ReadJoinedLines(path1);
    if (!first) return {false, path1};
    return CompareWithFile(*first, path2);
}

FileComparison CompareWithFile(const std::string& joined, const std::filesystem::path& path) {
    FileComparison result;
    const std::optional<std::string> second = ReadJoinedLines(path);
    if (!second) {
        result.unreadable = path;
        return result;
    }
    result.identical = joined == *second;
    return result;
}

}  // namespace felthawk
