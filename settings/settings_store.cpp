#include "settings/settings_store.h"

#include <stdexcept>

#include <QSettings>
#include <QStringList>
#include <QVariant>

#include "cards/card_codes.h"
#include "cards/runtime_fault.h"

namespace felthawk {

namespace {

// How a stored text is read back.
enum class SettingType {
    Number,  // a positive whole number; anything else gives the default
    Text,    // the text as it stands
};

enum class Setting { Transparency, Mouse, SavedHand };

struct SettingRow {
    Setting id;
    const char* key;  // the saved hands append their place 1..10
    SettingType type;
    const char* fallback;
};

constexpr SettingRow kSettingsTable[] = {
    {Setting::Transparency, "MTRANS", SettingType::Number, "80"},
    {Setting::Mouse, "MOUSE", SettingType::Text, "LEFT"},
    {Setting::SavedHand, "HAND", SettingType::Text, ""},
};

constexpr const SettingRow& RowOf(Setting id) {
    for (const SettingRow& row : kSettingsTable) {
        if (row.id == id) return row;
    }
    throw std::logic_error("setting missing from the table");
}

constexpr const char* kLeft = "LEFT";
constexpr const char* kRight = "RIGHT";

QString HandKey(uint8_t place) {
    return QString::fromLatin1(RowOf(Setting::SavedHand).key) + QString::number(place);
}

// A positive whole number from a stored text, read the way the runtime reads
// numbers ("150", " 150", "150abc"), halves to even; the default for no
// number, 0, a negative number or one too large for the setting. A fraction
// that rounds to 0 counts as 0: a setting of 0 would make the window vanish.
int16_t ReadNumber(const SettingRow& row, const QString& text) {
    const auto fallback = static_cast<int16_t>(QString::fromLatin1(row.fallback).toInt());
    const double value = Val(text.toStdString());
    if (!(value > 0)) return fallback;
    try {
        const int16_t whole = ToInt16(value);
        return whole > 0 ? whole : fallback;
    } catch (const RuntimeFault&) {
        return fallback;
    }
}

class Store {
  public:
    Store() : settings_("FELTHAWK", "FELTHAWK") { settings_.beginGroup("SETTINGS"); }

    // The value under `key` as the setting's type reads it.
    QVariant Read(const SettingRow& row, const QString& key) const {
        const QString text = RawText(row, key);
        switch (row.type) {
            case SettingType::Number:
                return ReadNumber(row, text);
            case SettingType::Text:
                break;
        }
        return text;
    }
    QVariant Read(Setting id) const {
        const SettingRow& row = RowOf(id);
        return Read(row, QString::fromLatin1(row.key));
    }

    void Write(const QString& key, const QString& text) { settings_.setValue(key, text); }
    void Remove(const QString& key) { settings_.remove(key); }

  private:
    QString RawText(const SettingRow& row, const QString& key) const {
        const QVariant value = settings_.value(key);
        if (!value.isValid()) return QString::fromLatin1(row.fallback);
        // A text with commas that was written by hand, unquoted, comes back
        // as a list; put the commas back rather than lose the text.
        if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(',');
        return value.toString();
    }

    QSettings settings_;
};

}  // namespace

FelthawkSettings GetFelthawkSettings() {
    const Store store;
    FelthawkSettings settings;
    settings.transparency = static_cast<int16_t>(store.Read(Setting::Transparency).toInt());
    settings.leftMouse = store.Read(Setting::Mouse).toString() == QLatin1String(kLeft);
    return settings;
}

void SetFelthawksettings(const FelthawkSettings& settings) {
    Store store;
    store.Write(QString::fromLatin1(RowOf(Setting::Transparency).key),
                QString::number(settings.transparency));
    store.Write(QString::fromLatin1(RowOf(Setting::Mouse).key),
                QString::fromLatin1(settings.leftMouse ? kLeft : kRight));
}

QString GetSavedHand(uint8_t place) {
    return Store().Read(RowOf(Setting::SavedHand), HandKey(place)).toString();
}

void PutSavedHand(const QString& text, uint8_t place) {
    Store().Write(HandKey(place), text);
}

void DeleteSavedHand(uint8_t place) {
    Store().Remove(HandKey(place));
}

}  // namespace felthawk
