// The window calls of capture on an X server, through XCB.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "capture/window_system.h"

struct xcb_connection_t;

namespace felthawk {

class XcbWindowSystem : public IWindowSystem {
  public:
    // Inside a Qt program on X11 this shares Qt's own connection, so that
    // the server sees our requests in order with the window's own moves and
    // resizes; otherwise it opens a connection to $DISPLAY. Nothing and a
    // message in `error` when no X server can be reached.
    static std::unique_ptr<XcbWindowSystem> Open(std::string& error);
    // A connection of its own to `display` (nullptr for $DISPLAY).
    static std::unique_ptr<XcbWindowSystem> Connect(const char* display, std::string& error);

    ~XcbWindowSystem() override;
    XcbWindowSystem(const XcbWindowSystem&) = delete;
    XcbWindowSystem& operator=(const XcbWindowSystem&) = delete;

    // A walk starts at the desktop: its first child lists the top-level
    // windows afresh, and titles and children are then read for the whole
    // walk in a few round trips.
    WindowId DesktopWindow() override;
    WindowId FirstChild(WindowId window) override;
    WindowId NextSibling(WindowId window) override;
    std::string WindowText(WindowId window) override;
    std::string ClassName(WindowId window) override;
    std::optional<WindowRect> GetWindowRect(WindowId window) override;
    FrameExtents GetFrameExtents(WindowId window) override;
    void MoveFrame(WindowId window, int left, int top) override;
    WindowRect Screen() override;
    std::string ScreenUnreadable() override;
    ShowCommand GetShowCommand(WindowId window) override;
    void SetShowCommand(WindowId window, ShowCommand command) override;
    void BringWindowToTop(WindowId window) override;
    WindowId ForegroundWindow() override;
    ContentGrab GrabContent(WindowId window) override;

    // Waits until the server has handled every request sent so far.
    void Sync();
    // The window that stands on the desktop for `window`: its frame when a
    // window manager has put it in one, else the window itself; 0 when it
    // is gone.
    WindowId TopFrame(WindowId window);

  private:
    struct Atoms;
    struct Texts {
        std::optional<std::string> title;
        std::optional<std::string> className;
    };
    XcbWindowSystem(xcb_connection_t* connection, bool owned);

    // Children of each window, top first; empty for a window that is gone.
    std::vector<std::vector<WindowId>> QueryChildren(const std::vector<WindowId>& windows);
    // The parent of a window, 0 when it is gone.
    WindowId ParentOf(WindowId window);
    // The top-level windows, frames replaced by the windows they hold.
    std::vector<WindowId> ManagedTopLevels();
    // Reads titles and classes of all the windows at once into texts_.
    void ReadTexts(const std::vector<WindowId>& windows);
    bool Supports(uint32_t atom);
    bool AttachSharedMemory();

    xcb_connection_t* connection_;
    bool owned_;
    WindowId root_ = 0;
    int screenWidth_ = 0;
    int screenHeight_ = 0;
    int rootDepth_ = 0;
    bool trueColour_ = false;
    PixelFormat format_;
    std::unique_ptr<Atoms> atoms_;

    // What the present walk has read: the children of each window it
    // listed, and the texts of each window.
    std::unordered_map<WindowId, std::vector<WindowId>> childrenOf_;
    std::unordered_map<WindowId, WindowId> listedIn_;
    std::unordered_map<WindowId, Texts> texts_;

    bool sharedMemoryTried_ = false;
    uint32_t sharedSegment_ = 0;  // 0 when shared memory is not in use
    uint8_t* sharedPixels_ = nullptr;
    std::size_t sharedBytes_ = 0;
};

}  // namespace felthawk
