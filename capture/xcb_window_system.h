// The window calls of capture on an X server, through XCB.
#pragma once

#include <memory>
#include <string>
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

    WindowId DesktopWindow() override;
    WindowId FirstChild(WindowId window) override;
    WindowId NextSibling(WindowId window) override;
    std::string WindowText(WindowId window) override;
    std::string ClassName(WindowId window) override;
    std::optional<WindowRect> GetWindowRect(WindowId window) override;
    void MoveWindow(WindowId window, const WindowRect& rect) override;
    ShowCommand GetShowCommand(WindowId window) override;
    void SetShowCommand(WindowId window, ShowCommand command) override;
    void BringWindowToTop(WindowId window) override;
    WindowId ForegroundWindow() override;
    QImage CaptureWindow(WindowId window) override;

    // Waits until the server has handled every request sent so far.
    void Sync();

  private:
    struct Atoms;
    XcbWindowSystem(xcb_connection_t* connection, bool owned);

    // Parent and children (bottom to top) of a window; false when it is gone.
    bool QueryTree(WindowId window, WindowId& parent, std::vector<WindowId>& children);
    std::string ReadTextProperty(WindowId window, uint32_t property, uint32_t type);
    QImage ConvertImage(const uint8_t* data, int width, int height, int depth);
    // The screen's pixels in the rectangle, through shared memory when the
    // server offers it (a pass reads the whole client seven times), else
    // through the connection.
    QImage ReadScreen(int left, int top, int width, int height);
    bool AttachSharedMemory();

    xcb_connection_t* connection_;
    bool owned_;
    WindowId root_ = 0;
    int screenWidth_ = 0;
    int screenHeight_ = 0;
    uint32_t rootVisual_ = 0;
    std::unique_ptr<Atoms> atoms_;

    bool sharedMemoryTried_ = false;
    uint32_t sharedSegment_ = 0;  // 0 when shared memory is not in use
    uint8_t* sharedPixels_ = nullptr;
};

}  // namespace felthawk
