#include "capture/template_set.h"

#include <sys/stat.h>

#include "capture/compare_files.h"

namespace felthawk {

TemplateSet::FileStamp TemplateSet::StampOf(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return {};
    return {true,
            static_cast<unsigned long>(status.st_dev),
            static_cast<unsigned long>(status.st_ino),
            static_cast<long long>(status.st_size),
            static_cast<long long>(status.st_mtim.tv_sec),
            static_cast<long long>(status.st_mtim.tv_nsec)};
}

bool TemplateSet::Refresh(const std::filesystem::path& folder, std::filesystem::path& unreadable) {
    if (folder != folder_) {
        folder_ = folder;
        entries_ = {};
    }
    bool complete = true;
    for (int i = 0; i < kTemplateCount; ++i) {
        const std::filesystem::path file = folder / TemplateFileName(TemplateCard(i));
        Entry& entry = entries_[i];
        const FileStamp stamp = StampOf(file);
        if (!stamp.exists || stamp != entry.stamp || !entry.joined) {
            entry.stamp = stamp;
            entry.joined = stamp.exists ? ReadJoinedLines(file) : std::nullopt;
        }
        if (!entry.joined && complete) {
            unreadable = file;
            complete = false;
        }
    }
    return complete;
}

std::string TemplateSet::Match(const std::string& joined) const {
    for (int i = 0; i < kTemplateCount; ++i) {
        if (entries_[i].joined == joined) return TemplateCard(i);
    }
    return {};
}

}  // namespace felthawk
