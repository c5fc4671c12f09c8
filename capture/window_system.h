// The window calls that capture needs, behind one interface: the real one
// talks to the X server (XcbWindowSystem), tests may give a fake.
#pragma once

#include <QImage>
#include <cstdint>
#include <optional>
#include <string>

namespace felthawk {

// An X window id; 0 is no window.
using WindowId = uint32_t;

struct WindowRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool operator==(const WindowRect&) const = default;
};

// Show commands as placements carry them.
enum ShowCommand : int {
    kShowNormal = 1,
    kShowMinimised = 2,
    kShow = 5,
};

class IWindowSystem {
  public:
    virtual ~IWindowSystem() = default;

    // The desktop, whose children are the top-level windows.
    virtual WindowId DesktopWindow() = 0;
    // The topmost child of `window`, 0 when it has none.
    virtual WindowId FirstChild(WindowId window) = 0;
    // The sibling just below `window` in the stacking order, 0 at the end.
    virtual WindowId NextSibling(WindowId window) = 0;

    virtual std::string WindowText(WindowId window) = 0;
    virtual std::string ClassName(WindowId window) = 0;

    // The window's rectangle on the desktop, frame included; nothing when
    // the window is gone.
    virtual std::optional<WindowRect> GetWindowRect(WindowId window) = 0;
    virtual void MoveWindow(WindowId window, const WindowRect& rect) = 0;

    // kShowMinimised when the window is minimised (not shown), else
    // kShowNormal.
    virtual ShowCommand GetShowCommand(WindowId window) = 0;
    // kShow and kShowNormal both bring the window back on screen.
    virtual void SetShowCommand(WindowId window, ShowCommand command) = 0;
    virtual void BringWindowToTop(WindowId window) = 0;

    // The active window with its frame: the top-level window that holds the
    // input focus; 0 when there is none.
    virtual WindowId ForegroundWindow() = 0;
    // What the screen shows of the window, frame included, in the window's
    // own coordinates; parts off the screen are black. A null image when the
    // window is gone.
    virtual QImage CaptureWindow(WindowId window) = 0;
};

}  // namespace felthawk
