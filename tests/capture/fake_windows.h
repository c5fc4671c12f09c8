// Made-up windows, top of the stack first, and a board that records the pass.
#pragma once

#include <map>
#include <vector>

#include "capture/client_capture.h"

namespace felthawk {

struct FakeWindow {
    WindowId parent = 0;
    std::string title;
    WindowRect rect;
    QImage picture;
};

class FakeWindowSystem : public IWindowSystem {
  public:
    static constexpr WindowId kDesktop = 1;

    WindowId Add(WindowId parent, std::string title, WindowRect rect = {0, 0, 780, 440}) {
        windows_[nextId_] = FakeWindow{parent, std::move(title), rect, {}};
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
    void MoveWindow(WindowId window, const WindowRect& rect) override {
        if (windows_.count(window)) windows_[window].rect = rect;
    }
    ShowCommand GetShowCommand(WindowId) override { return kShowNormal; }
    void SetShowCommand(WindowId, ShowCommand) override {}
    void BringWindowToTop(WindowId window) override { raised.push_back(window); }
    WindowId ForegroundWindow() override { return raised.empty() ? 0 : raised.back(); }
    QImage CaptureWindow(WindowId window) override {
        return windows_.count(window) ? windows_[window].picture : QImage();
    }

    std::vector<WindowId> titlesRead, raised;

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
    std::vector<TextCells> shown;
    std::vector<std::string> stops;

    WindowId OwnWindow() override { return own; }
    void EnterCompactView() override { ++compactViews; }
    void ClearCards() override { ++clears; }
    int PreviousSeat() override { return previousSeat; }
    void ShowCapturedCards(const TextCells& cells) override { shown.push_back(cells); }
    void StopCapture(const std::string& message) override { stops.push_back(message); }
};

}  // namespace felthawk
