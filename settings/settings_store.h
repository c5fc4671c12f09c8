// The per-user settings store: the preferences of the main window and up to
// ten saved hands, all under organisation and application "FELTHAWK", group
// "SETTINGS", one text value per key.
//
//   "MTRANS"            the transparency percentage as digits, default 80
//   "MOUSE"             "LEFT" or "RIGHT", default "LEFT"
//   "SWITCHMODE"        "1" or "0": switch the screen to 1024 x 768 for
//                       capture, default "1"
//   "HAND1".."HAND10"   one saved hand each, absent when unused
//
// Settings are written the moment they change; nothing is saved at exit.
// Every change a user makes is one StoreWrite: its removals and puts reach
// the file together, as one new file renamed over the old one, so a kill or
// a full disk leaves either the old store or the new one, never a mix.
#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "settings/store_file.h"

namespace felthawk {

// The number of saved hands the store and the list keep.
constexpr int kMaxSavedHands = 10;

struct FelthawkSettings {
    // Acts as the opacity of the window: 100 opaque, 80 four fifths opaque.
    // 1..100 through the menu; the store may hold any positive number.
    int16_t transparency = 80;
    // true: the buttons mean what they say ("LEFT"); false: they are swapped.
    bool leftMouse = true;
    // Whether the screen is switched to the capture mode for the run.
    bool switchDisplayMode = true;
};

// The changes of one user action, written to the store at once by Commit.
// A StoreWrite that is not committed writes nothing.
class StoreWrite {
  public:
    StoreWrite();
    ~StoreWrite();
    StoreWrite(const StoreWrite&) = delete;
    StoreWrite& operator=(const StoreWrite&) = delete;

    void Put(const QString& key, const QString& text);
    // A key that is not there is no fault.
    void Remove(const QString& key);
    // Replaces the store's file once with every change put in. On failure
    // the file stays as it was and the result is a message for the user
    // saying what could not be written and why; on success it is empty.
    QString Commit();

  private:
    std::vector<StoreChange> changes_;
};

// Reads "MTRANS", "MOUSE" and "SWITCHMODE". A transparency that is no
// positive number (or too large for the setting) falls back to 80; any mouse
// text other than exactly "LEFT" means right; any switch text other than
// "0" means on.
FelthawkSettings GetFelthawkSettings();

// Writes "MTRANS" as digits, "MOUSE" as "LEFT" or "RIGHT" and "SWITCHMODE",
// in one write. Gives the message of a failed write, "" when written.
QString SetFelthawksettings(const FelthawkSettings& settings);

// The text of "HAND<place>", "" when absent. `place` is 1..10.
QString GetSavedHand(uint8_t place);
// Puts "HAND<place>" into `write`.
void PutSavedHand(StoreWrite& write, const QString& text, uint8_t place);
// Removes "HAND<place>" in `write`.
void DeleteSavedHand(StoreWrite& write, uint8_t place);

}  // namespace felthawk
