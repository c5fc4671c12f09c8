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

}  // namespace felthawk
