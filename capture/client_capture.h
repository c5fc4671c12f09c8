// The capture pass: find the poker client's window, dock it above the
// board's strip, cut each card out of a screenshot of it, write the cuts as
// icon files and recognise them against the card templates.
#pragma once

#include <QImage>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "capture/client_layout.h"
#include "capture/icon_writer.h"
#include "capture/template_set.h"
#include "capture/window_system.h"
#include "cards/recalculate.h"

namespace felthawk {

// What a capture pass needs of the main window.
class ICaptureBoard {
  public:
    virtual ~ICaptureBoard() = default;
    virtual WindowId OwnWindow() = 0;
    // Capture on, and the window laid out as the compact strip.
    virtual void EnterCompactView() = 0;
    // The height of the strip's content. The window system may not have
    // caught up with the new layout yet; the board knows it already.
    virtual int StripHeight() = 0;
    // A line in the strip about where it stands; "" takes it away.
    virtual void ShowStripNote(const std::string& note) = 0;
    virtual void ClearCards() = 0;
    // The seat before the user's; the hole cards are read there.
    virtual int PreviousSeat() = 0;
    // Puts the recognised cells on the table through the deck and the cell
    // handlers, as a user would, and recalculates once.
    virtual void ShowCapturedCards(const TextCells& cells) = 0;
    // Switches capture off and tells the user why, in one message.
    virtual void StopCapture(const std::string& message) = 0;
};

struct CaptureFolders {
    // Where the pass writes t1.icc .. t7.icc and its probe icon.
    std::filesystem::path dataFolder;
    // Where the card templates may be, in order; the first that exists is
    // the template set.
    std::vector<std::filesystem::path> templateFolders;
};

// The per-user data folders, then the data folder installed with the program.
CaptureFolders DefaultCaptureFolders();

// The file name of the probe icon that each search writes; nothing reads it.
inline constexpr std::string_view kProbeIconName = ".ico";

// `*` stands for any run of characters, `?` for one; case counts.
bool LikePattern(std::string_view text, std::string_view pattern);
// Whether a window title names the poker client: "Hold'em" in any case.
bool TitleNamesClient(std::string_view title);

// The strip never stands higher than this, so the client has room above.
constexpr int kLowestStripTop = 90;

// Where docking puts the frames of the strip and of the client.
struct DockPlaces {
    PixelPoint strip;
    PixelPoint client;
    // The strip had to go so low that it leaves the screen at the bottom.
    bool stripBelowScreen = false;
};

// The client's frame centred directly above the strip's frame, touching
// it. The strip moves first where the client would reach past the top or
// a side of the screen: it is there to show the whole table.
DockPlaces DockPlacesFor(const WindowRect& stripFrame, const WindowRect& clientFrame,
                         const WindowRect& screen);
// What the strip says when docking put it partly below the screen.
inline constexpr std::string_view kStripBelowScreenNote =
    "The table is too tall: the strip reaches below the screen.";

// Paints the crop of `cell` out of the client's content into the picture
// box, at its top left, over the box's fixed background.
QImage CropToPictureBox(const ContentGrab& content, int cell, int previousSeat);
// The top left 32 by 32 pixels of the picture box, as the icon writer takes
// them; the transparent colour is the box's pixel (0, 0).
IconPixels IconPixelsOf(const QImage& pictureBox);
// Writes the picture box as a capture icon, transparent at its pixel (0, 0),
// showing the busy pointer meanwhile.
IconWriteResult SavePictureBox(const QImage& pictureBox, const std::filesystem::path& path);

class ClientCapture {
  public:
    ClientCapture(IWindowSystem& windows, CaptureFolders folders);

    // One pass, run by the capture timer.
    void ReadClientCards(ICaptureBoard& board);
    // The part of the pass after a successful search: the seven crops,
    // their files and their recognition, shown on the board.
    void ReadFoundClient(ICaptureBoard& board);

    // One search of the desktop for the client, docking and reading each
    // window whose title names it.
    void FindClient(ICaptureBoard& board, int boardIndex);
    WindowId ClientWindow() const { return mClientWnd; }
    bool ClientFound() const { return mClientFound; }

    // A fresh reading of the foreground window and the crop of `cell`.
    QImage CaptureCell(int cell, int previousSeat);
    // The template folder in use: the first candidate that exists, else the
    // per-user one, where the message about a missing template points.
    std::filesystem::path TemplateFolder() const;
    // How long the last raise of the client was waited for.
    std::chrono::nanoseconds RaiseWaitTime() const { return raiseWait_; }

  private:
    void FindWindowLike(std::vector<WindowId>& hWndArray, WindowId hWndStart,
                        std::string_view windowText, std::string_view className, bool restart,
                        ICaptureBoard& board);
    void DockClient(WindowId clientWnd, WindowId ownWnd, ICaptureBoard& board);
    void BringClientForward(ICaptureBoard& board);
    // Crops the present slot (hole or board, and which) out of the pass's
    // one reading of the screen into the picture box.
    void CaptureCardImage(int previousSeat);
    void SaveProbeIcon();
    void DeleteCardFiles();
    // Captures `cell` and writes its file; false, with the board told, when
    // the file cannot be written.
    bool CaptureAndSave(ICaptureBoard& board, int cell);
    // False, with the board told, when a template is missing.
    bool RecogniseCards(ICaptureBoard& board, TextCells& cells);

    IWindowSystem& windows_;
    CaptureFolders folders_;
    ContentGrab picture1_;  // the foreground window as the pass read it
    QImage pictureBox_;
    TemplateSet templates_;
    bool stripBelowNoted_ = false;
    std::chrono::nanoseconds raiseWait_{0};

    WindowId mClientWnd = 0;
    bool mClientFound = false;
    int mBoardCardIndex = 0;
    bool mHoleMode = false;
    int mHoleCardIndex = 0;
    int mWindowSearchLevel = 0;
    int mWindowSearchFound = 0;
    bool passRunning_ = false;
};

}  // namespace felthawk
