// The banners of the advertising strip and the collection that holds them.
#pragma once

#include <QHash>
#include <QString>
#include <QtGlobal>
#include <memory>
#include <vector>

namespace felthawk {

class Banner {
  public:
    // The picture for the large window.
    QString Path;
    // The picture for the small window.
    QString SmallPath;
    // Where a click on the banner leads.
    QString Reference;
    // Seconds on show.
    qint16 Duration = 0;
};

// A keyed collection of banners, numbered from 1 like the collections the
// program's forms always used. Keys are optional, unique and compared
// without regard to case; a key is found without a walk over the list. A bad
// position or key, or a key used twice, throws std::out_of_range or
// std::invalid_argument.
class Banners {
  public:
    // A new banner, stored last, under `sKey` unless that is "".
    Banner& Add(const QString& sKey);
    Banner& Item(int index);
    Banner& Item(const QString& key);
    int Count() const { return static_cast<int>(entries_.size()); }
    void Remove(int index);

    // For a walk over all, in order.
    class Enumerator;
    Enumerator begin() const;
    Enumerator end() const;

  private:
    struct Entry {
        QString key;
        std::unique_ptr<Banner> banner;
    };
    std::vector<Entry> entries_;
    // The keyed banners by their key in lower case.
    QHash<QString, Banner*> byKey_;

  public:
    class Enumerator {
      public:
        explicit Enumerator(std::vector<Entry>::const_iterator at) : at_(at) {}
        const Banner& operator*() const { return *at_->banner; }
        Enumerator& operator++() {
            ++at_;
            return *this;
        }
        bool operator==(const Enumerator&) const = default;

      private:
        std::vector<Entry>::const_iterator at_;
    };
};

}  // namespace felthawk
