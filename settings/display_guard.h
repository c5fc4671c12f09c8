// Putting the screen back however the program ends.
//
// An X server keeps a mode that a client set after the client is gone, so a
// program that switched the screen and then crashed, or was killed with
// SIGKILL, would leave it switched for good. Two things prevent that:
//
// - the note: before the screen is switched, the mode found is written to a
//   file of the data folder, and it is removed once that mode is back; a
//   note found at start was left by a run that did not end cleanly, and its
//   mode is put back first;
// - the guard: a small child process, forked before anything else runs,
//   that waits for the program to end by any means (the end of a pipe only
//   the program holds) and then puts back the mode of a note still there.
#pragma once

#include <optional>
#include <string>

#include <QString>

#include "settings/display_mode.h"

namespace felthawk {

// The note of the mode to put back, one per display.
class DisplayModeNote {
  public:
    explicit DisplayModeNote(QString path) : path_(std::move(path)) {}

    // The note's file in `dataFolder` for the X display `display` (":0").
    static QString PathFor(const QString& dataFolder, const QString& display);

    // Writes the mode as one atomic replacement of the file; false when it
    // could not be written.
    bool Write(const DisplayMode& mode) const;
    // The noted mode; nothing when there is no note or it is not one.
    std::optional<DisplayMode> Read() const;
    void Remove() const;
    const QString& Path() const { return path_; }

  private:
    QString path_;
};

// Puts back the mode of a note left behind and removes the note. True when
// there was a note to act on.
bool RestoreNotedMode(const DisplayModeNote& note, IDisplayModes& modes);

// Forks the guard of this process. It holds no file of the program's open,
// ignores the terminal's signals, and when this process ends it puts back
// the mode of `notePath` on `display` through RestoreNotedMode, then exits.
// Must be called before any thread is started. False when it could not be
// started; the program then runs without one.
bool StartDisplayGuard(const std::string& notePath, const std::string& display);

}  // namespace felthawk
