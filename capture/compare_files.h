// File identity as recognition sees it: both files are read as text, line by
// line, and the lines joined without their ends. Two files that differ only
// in their line-end bytes therefore count as the same.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace felthawk {

// The text with every line end (CR, LF or CR LF) removed.
std::string JoinLines(std::string text);
// The text of a file with every line end (CR, LF or CR LF) removed; nothing
// when the file cannot be read.
std::optional<std::string> ReadJoinedLines(const std::filesystem::path& path);

struct FileComparison {
    bool identical = false;
    // The first of the two files that could not be read, empty when both
    // were read.
    std::filesystem::path unreadable;
};

FileComparison compare_files(const std::filesystem::path& path1,
                             const std::filesystem::path& path2);
// The same, with the first file's joined text already in hand: recognition
// reads a capture file once and each template afresh for every comparison.
FileComparison CompareWithFile(const std::string& joined, const std::filesystem::path& path);

}  // namespace felthawk
