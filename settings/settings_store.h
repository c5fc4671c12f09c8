// The per-user settings store: the two preferences of the main window and up
// to ten saved hands, all under organisation and application "FELTHAWK",
// group "SETTINGS", one text value per key.
//
//   "MTRANS"            the transparency percentage as digits, default 80
//   "MOUSE"             "LEFT" or "RIGHT", default "LEFT"
//   "HAND1".."HAND10"   one saved hand each, absent when unused
//
// Settings are written the moment they change; nothing is saved at exit.
#pragma once

#include <cstdint>

#include <QString>

namespace felthawk {

// The number of saved hands the store and the list keep.
constexpr int kMaxSavedHands = 10;

struct FelthawkSettings {
    // Acts as the opacity of the window: 100 opaque, 80 four fifths opaque.
    // 1..100 through the menu; the store may hold any positive number.
    int16_t transparency = 80;
    // true: the buttons mean what they say ("LEFT"); false: they are swapped.
    bool leftMouse = true;
};

// Reads "MTRANS" and "MOUSE". A transparency that is no positive number (or
// too large for the setting) falls back to 80; any mouse text other than
// exactly "LEFT" means right.
FelthawkSettings GetFelthawkSettings();

// Writes "MTRANS" as digits and "MOUSE" as "LEFT" or "RIGHT".
void SetFelthawksettings(const FelthawkSettings& settings);

// The text of "HAND<place>", "" when absent. `place` is 1..10.
QString GetSavedHand(uint8_t place);
// Writes "HAND<place>".
void PutSavedHand(const QString& text, uint8_t place);
// Deletes "HAND<place>"; a key that is not there is no fault.
void DeleteSavedHand(uint8_t place);

}  // namespace felthawk
