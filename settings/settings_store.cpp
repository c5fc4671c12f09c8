#include "settings/settings_store.h"

#include <stdexcept>

#include <QSettings>
#include <QStringList>
#include <QVariant>

#include "cards/card_codes.h"
#include "cards/runtime_fault.h"
#include "settings/store_file.h"

namespace felthawk {

namespace {

// How a stored text is read back.
enum class SettingType {
    Number,  // a positive whole number; anything else gives the default
    Text,    // the text as it stands
};

enum class Setting { Transparency, Mouse, SwitchMode, SavedHand };

struct SettingRow {
    Setting id;
    const char* key;  // the saved hands append their place 1..10
    SettingType type;
    const char* fallback;
};

constexpr SettingRow kSettingsTable[] = {
    {Setting::Transparency, "MTRANS", SettingType::Number, "80"},
    {Setting::Mouse, "MOUSE", SettingType::Text, "LEFT"},
    {Setting::SwitchMode, "SWITCHMODE", SettingType::Text, "1"},
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
constexpr const char* kOff = "0";
constexpr const char* kOn = "1";

QString KeyOf(Setting id) {
    return QString::fromLatin1(RowOf(id).key);
}

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

const QString kSection = QStringLiteral("SETTINGS");

// The file of the platform's per-user store, where QSettings keeps
// organisation and application "FELTHAWK". Asked once: QSettings reads the
// whole file when it is made.
const QString& StorePath() {
    static const QString path =
        QSettings(QStringLiteral("FELTHAWK"), QStringLiteral("FELTHAWK")).fileName();
    return path;
}

// The value under `key` as the setting's type reads it.
QVariant Read(const SettingRow& row, const QString& key) {
    const QString text =
        ReadStoreText(StorePath(), kSection, key).value_or(QString::fromLatin1(row.fallback));
    switch (row.type) {
        case SettingType::Number:
            return ReadNumber(row, text);
        case SettingType::Text:
            break;
    }
    return text;
}

QVariant Read(Setting id) {
    return Read(RowOf(id), KeyOf(id));
}

}  // namespace

StoreWrite::StoreWrite() = default;
StoreWrite::~StoreWrite() = default;

void StoreWrite::Put(const QString& key, const QString& text) {
    changes_.push_back({key, text});
}

void StoreWrite::Remove(const QString& key) {
    changes_.push_back({key, std::nullopt});
}

QString StoreWrite::Commit() {
    return WriteStoreFile(StorePath(), kSection, changes_);
}

FelthawkSettings GetFelthawkSettings() {
    FelthawkSettings settings;
    settings.transparency = static_cast<int16_t>(Read(Setting::Transparency).toInt());
    settings.leftMouse = Read(Setting::Mouse).toString() == QLatin1String(kLeft);
    settings.switchDisplayMode = Read(Setting::SwitchMode).toString() != QLatin1String(kOff);
    return settings;
}

QString SetFelthawksettings(const FelthawkSettings& settings) {
    StoreWrite write;
    write.Put(KeyOf(Setting::Transparency), QString::number(settings.transparency));
    write.Put(KeyOf(Setting::Mouse), QString::fromLatin1(settings.leftMouse ? kLeft : kRight));
    write.Put(KeyOf(Setting::SwitchMode),
              QString::fromLatin1(settings.switchDisplayMode ? kOn : kOff));
    return write.Commit();
}

QString GetSavedHand(uint8_t place) {
    return Read(RowOf(Setting::SavedHand), HandKey(place)).toString();
}

void PutSavedHand(StoreWrite& write, const QString& text, uint8_t place) {
    write.Put(HandKey(place), text);
}

void DeleteSavedHand(StoreWrite& write, uint8_t place) {
    write.Remove(HandKey(place));
}

}  // namespace felthawk
