#include "online/banners.h"

#include <stdexcept>

namespace felthawk {

Banner& Banners::Add(const QString& sKey) {
    const QString key = sKey.toLower();
    if (!key.isEmpty() && byKey_.contains(key))
        throw std::invalid_argument("banner key used twice: " + sKey.toStdString());
    entries_.push_back({sKey, std::make_unique<Banner>()});
    Banner& banner = *entries_.back().banner;
    if (!key.isEmpty()) byKey_.insert(key, &banner);
    return banner;
}

Banner& Banners::Item(int index) {
    if (index < 1 || index > Count())
        throw std::out_of_range("no banner at " + std::to_string(index));
    return *entries_[static_cast<std::size_t>(index - 1)].banner;
}

Banner& Banners::Item(const QString& key) {
    Banner* banner = key.isEmpty() ? nullptr : byKey_.value(key.toLower());
    if (!banner) throw std::out_of_range("no banner " + key.toStdString());
    return *banner;
}

void Banners::Remove(int index) {
    Item(index);
    const auto at = entries_.begin() + (index - 1);
    byKey_.remove(at->key.toLower());
    entries_.erase(at);
}

Banners::Enumerator Banners::begin() const {
    return Enumerator(entries_.cbegin());
}
Banners::Enumerator Banners::end() const {
    return Enumerator(entries_.cend());
}

}  // namespace felthawk
