#include "online/banners.h"

#include <algorithm>
#include <stdexcept>

namespace felthawk {

namespace {

bool SameKey(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

}  // namespace

Banner& Banners::Add(const QString& sKey) {
    if (!sKey.isEmpty() && std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
            return SameKey(entry.key, sKey);
        }))
        throw std::invalid_argument("banner key used twice: " + sKey.toStdString());
    entries_.push_back({sKey, std::make_unique<Banner>()});
    return *entries_.back().banner;
}

Banner& Banners::Item(int index) {
    if (index < 1 || index > Count())
        throw std::out_of_range("no banner at " + std::to_string(index));
    return *entries_[static_cast<std::size_t>(index - 1)].banner;
}

Banner& Banners::Item(const QString& key) {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return !entry.key.isEmpty() && SameKey(entry.key, key);
    });
    if (found == entries_.end()) throw std::out_of_range("no banner " + key.toStdString());
    return *found->banner;
}

void Banners::Remove(int index) {
    Item(index);
    entries_.erase(entries_.begin() + (index - 1));
}

Banners::Enumerator Banners::begin() const {
    return Enumerator(entries_.cbegin());
}
Banners::Enumerator Banners::end() const {
    return Enumerator(entries_.cend());
}

}  // namespace felthawk
