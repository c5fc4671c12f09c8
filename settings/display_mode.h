// Forcing the display mode the capture geometry needs.
//
// At start the mode found is noted and, unless the screen already is 1024 by
// 768 at 16 bits, the screen is switched to 1024 by 768 at 16 bits and 60 Hz
// for the run; at the end the noted mode is put back. A refused change is not
// noticed: the program goes on.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace felthawk {

struct DisplayMode {
    int16_t width = 0;
    int16_t height = 0;
    int16_t depth = 0;      // bits per pixel
    int16_t frequency = 0;  // refresh rate in Hz; 0 or 1 the default rate

    friend bool operator==(const DisplayMode&, const DisplayMode&) = default;
};

// Reading and setting the mode of the screen.
class IDisplayModes {
  public:
    virtual ~IDisplayModes() = default;
    // The current mode; nothing when the platform cannot tell.
    virtual std::optional<DisplayMode> Current() = 0;
    // Asks for `mode`; false when the platform refused or could not.
    virtual bool Apply(const DisplayMode& mode) = 0;
    // Whether the colour depth is fixed for the session, so that asking for
    // another depth is pointless and the depth of the screen counts as given.
    virtual bool DepthIsFixed() const = 0;
};

// The X11 implementation through RandR: the current CRTC mode of the primary
// output (or of the first output that shows something). An X server cannot
// change the colour depth at run time, so the depth is read from the root
// window's visual and a depth asked for is ignored. Without a display, without
// RandR 1.2 or with no fitting mode, Current() gives nothing or Apply()
// refuses.
class XRandrDisplayModes : public IDisplayModes {
  public:
    // `displayName` as for XOpenDisplay; nullptr means $DISPLAY.
    explicit XRandrDisplayModes(const char* displayName = nullptr);
    ~XRandrDisplayModes() override;
    XRandrDisplayModes(const XRandrDisplayModes&) = delete;
    XRandrDisplayModes& operator=(const XRandrDisplayModes&) = delete;

    // Reports frequency 1 (the default rate) when the mode's timings do not
    // give one.
    std::optional<DisplayMode> Current() override;
    // Chooses the output's mode of the given size whose refresh rate is
    // nearest the asked one (nearest 60 Hz when 0 or 1 is asked).
    bool Apply(const DisplayMode& mode) override;
    bool DepthIsFixed() const override { return true; }

  private:
    struct Connection;
    std::unique_ptr<Connection> connection_;
};

// Which values SetDisplayMode was given, and so what it changes.
enum class ModeChange {
    None,         // nothing given: the routine stops
    ChangeResol,  // width and height only
    ChangeColor,  // depth only
    ChangeFreq,   // frequency only
    ChangeAll,    // all four
    Unchanged,    // any other mix: the record is handed back as it stands
};
ModeChange ClassifyModeChange(int16_t width, int16_t height, int16_t depth, int16_t frequency);

// The mode the capture geometry needs.
constexpr DisplayMode kCaptureMode{1024, 768, 16, 60};

// The display mode keeper of the main window: notes the mode at start, forces
// the capture mode, and puts the noted mode back at the end.
class DisplayModeNote;

class modresolution {
  public:
    // With a `note`, the mode found is written there before the screen is
    // switched and the note is removed once the mode is back; a note that
    // cannot be written leaves the screen alone.
    explicit modresolution(IDisplayModes& modes, const DisplayModeNote* note = nullptr)
        : modes_(modes), note_(note) {}

    // Notes the current mode and, unless it is 1024 by 768 at 16 bits (or at
    // any depth where the depth is fixed), sets kCaptureMode.
    void SaveDisplayMode();
    // Sets the noted mode again; afterwards nothing is noted, so a second
    // call changes nothing.
    void RestoreDisplayMode();
    // Changes the values given (non-zero), taking the others from the values
    // last set; see ModeChange. The change is a temporary one.
    void SetDisplayMode(int16_t width, int16_t height, int16_t depth, int16_t frequency);

    // The mode found at start.
    const DisplayMode& StartMode() const { return startMode_; }

  private:
    IDisplayModes& modes_;
    const DisplayModeNote* note_;
    DisplayMode startMode_;
    DisplayMode lastSet_;
    DisplayMode record_;
};

}  // namespace felthawk
