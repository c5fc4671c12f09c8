// The window calls that capture needs, behind one interface: the real one
// talks to the X server (XcbWindowSystem), tests may give a fake.
//
// A window here is what its program made: a window manager's frame is never
// one. Where a window manager has put a window into a frame, the window
// stands among the desktop's children in the frame's place, its rectangle is
// its content, and the frame shows only as the extents round it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "capture/content_grab.h"

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

// What a window manager draws on each side of a window; all 0 without one.
struct FrameExtents {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
    bool operator==(const FrameExtents&) const = default;
};

// The rectangle of the frame round `content`.
constexpr WindowRect FrameRect(const WindowRect& content, const FrameExtents& frame) {
    return {content.left - frame.left, content.top - frame.top,
            content.width + frame.left + frame.right, content.height + frame.top + frame.bottom};
}

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

    // The window's content on the desktop, without any frame; nothing when
    // the window is gone.
    virtual std::optional<WindowRect> GetWindowRect(WindowId window) = 0;
    virtual FrameExtents GetFrameExtents(WindowId window) = 0;
    // Moves the window, its size unchanged, so that the top left corner of
    // its frame (of the window itself when it has none) stands at the point.
    virtual void MoveFrame(WindowId window, int left, int top) = 0;
    // The screen: 0, 0 and its size.
    virtual WindowRect Screen() = 0;
    // Empty when capture can read the screen's pixels, else why not.
    virtual std::string ScreenUnreadable() = 0;

    // kShowMinimised when the window is minimised (not shown), else
    // kShowNormal.
    virtual ShowCommand GetShowCommand(WindowId window) = 0;
    // kShow and kShowNormal both bring the window back on screen.
    virtual void SetShowCommand(WindowId window, ShowCommand command) = 0;
    virtual void BringWindowToTop(WindowId window) = 0;

    // The active top-level window: the one that holds the input focus; 0
    // when there is none.
    virtual WindowId ForegroundWindow() = 0;
    // What the screen shows at the window's content; a null grab when the
    // window is gone.
    virtual ContentGrab GrabContent(WindowId window) = 0;
};

}  // namespace felthawk
