// A fresh folder under the system's temporary folder, removed at the end.
#pragma once

#include <unistd.h>
#include <filesystem>
#include <string>

namespace felthawk {

class TempFolder {
  public:
    TempFolder() {
        static int counter = 0;
        path_ =
            std::filesystem::temp_directory_path() /
            ("felthawk-capture-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace felthawk
