// The 52 card templates of a folder, read once and kept in memory; a
// template is read again when its file changes, so that a user may replace
// templates while capture runs.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "capture/client_layout.h"

namespace felthawk {

class TemplateSet {
  public:
    // Brings the set up to date with the files of `folder`. False, with
    // `unreadable` naming the first template in walk order that is missing
    // or cannot be read.
    bool Refresh(const std::filesystem::path& folder, std::filesystem::path& unreadable);
    // The card whose template is identical with `joined`, the joined lines
    // of a capture file, walking the suits and ranks in order; "" when
    // none is.
    std::string Match(const std::string& joined) const;

  private:
    // What tells a file that changed from one that did not.
    struct FileStamp {
        bool exists = false;
        unsigned long device = 0, inode = 0;
        long long size = 0, seconds = 0, nanoseconds = 0;
        bool operator==(const FileStamp&) const = default;
    };
    static FileStamp StampOf(const std::filesystem::path& file);

    struct Entry {
        FileStamp stamp;
        std::optional<std::string> joined;  // nothing until read, or unreadable
    };
    std::filesystem::path folder_;
    std::array<Entry, kTemplateCount> entries_;
};

}  // namespace felthawk
