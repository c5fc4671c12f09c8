// Made-up windows, top of the stack first, and a board that records the pass.
#pragma once

#include <map>
#include <vector>

#include "capture/client_capture.h"

namespace felthawk {

struct FakeWindow {
    WindowId parent = 0;
    std::string title;
    WindowRect rect;  // the content
    QImage picture;
    FrameExtents frame;
};

class FakeWindowSystem : public IWindowSystem {
  public:
    static constexpr WindowId kDesktop = 1;

    WindowId Add(WindowId parent, std::string title, WindowRect rect = {0, 0, 780, 440}) {
        windows_[nextId_] = FakeWindow{parent, std::move(title), rect, {}, {}};
        order_.push_back(nextId_);
        return nextId_++;
    }
    FakeWindow& operator[](WindowId id) { return windows_.at(id); }
    void Close(WindowId id) {
        windows_.erase(id);
        std::erase(order_, id);
    }

    WindowId DesktopWindow() override { return kDesktop; }
    WindowId FirstChild(WindowId window) override { return After(window, 0, true); }
    WindowId NextSibling(WindowId window) override {
        return windows_.count(window) ? After(windows_[window].parent, window, false) : 0;
    }
    std::string WindowText(WindowId window) override {
        titlesRead.push_back(window);
        return windows_.count(window) ? windows_[window].title : "";
    }
    std::string ClassName(WindowId window) override { return windows_.count(window) ? "Fake" : ""; }
    std::optional<WindowRect> GetWindowRect(WindowId window) override {
        if (!windows_.count(window)) return std::nullopt;
        return windows_[window].rect;
    }
    FrameExtents GetFrameExtents(WindowId window) override {
        return windows_.count(window) ? windows_[window].frame : FrameExtents{};
    }
    void MoveFrame(WindowId window, int left, int top) override {
        if (!windows_.count(window)) return;
        FakeWindow& moved = windows_[window];
        moved.rect.left = left + moved.frame.left;
        moved.rect.top = top + moved.frame.top;
        moves.push_back(window);
    }
    WindowRect Screen() override { return screen; }
    std::string ScreenUnreadable() override { return unreadable; }
    ShowCommand GetShowCommand(WindowId) override { return kShowNormal; }
    void SetShowCommand(WindowId, ShowCommand) override {}
    void BringWindowToTop(WindowId window) override { raised.push_back(window); }
    WindowId ForegroundWindow() override { return raised.empty() ? 0 : raised.back(); }
    ContentGrab GrabContent(WindowId window) override {
        return windows_.count(window) ? ContentGrab::FromImage(windows_[window].picture)
                                      : ContentGrab();
    }

    std::vector<WindowId> titlesRead, raised, moves;
    WindowRect screen{0, 0, 1024, 768};
    std::string unreadable;

  private:
    WindowId After(WindowId parent, WindowId previous, bool first) {
        bool passed = first;
        for (WindowId id : order_) {
            if (windows_[id].parent != parent) continue;
            if (passed) return id;
            passed = id == previous;
        }
        return 0;
    }

    std::map<WindowId, FakeWindow> windows_;
    std::vector<WindowId> order_;
    WindowId nextId_ = 2;
};

class RecordingBoard : public ICaptureBoard {
  public:
    WindowId own = 0;
    int previousSeat = 9;
    int compactViews = 0;
    int clears = 0;
    int stripHeight = 71;
    std::vector<TextCells> shown;
    std::vector<std::string> stops, notes;

    WindowId OwnWindow() override { return own; }
    void EnterCompactView() override { ++compactViews; }
    int StripHeight() override { return stripHeight; }
    void ShowStripNote(const std::string& note) override { notes.push_back(note); }
    void ClearCards() override { ++clears; }
    int PreviousSeat() override { return previousSeat; }
    void ShowCapturedCards(const TextCells& cells) override { shown.push_back(cells); }
    void StopCapture(const std::string& message) override { stops.push_back(message); }
};

}  // namespace felthawk
