#include "capture/client_capture.h"

#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>
#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <thread>

#include "capture/compare_files.h"
#include "datafiles/data_folders.h"

namespace felthawk {
namespace {

// After raising the client, give it a moment to show before reading it.
constexpr int kRaiseWaitMs = 10;
// A window manager activates the raised client in its own time; when it
// has not done so after the moment above, the pass waits on, this long at
// most, rather than read another window.
constexpr auto kActivationWait = std::chrono::milliseconds(100);
constexpr int kActivationPollMs = 1;

void ProcessPendingEvents() {
    if (QCoreApplication::instance() != nullptr) QCoreApplication::processEvents();
}

// Lets the given time pass while the program goes on handling its events.
void WaitProcessingEvents(int ms) {
    if (QCoreApplication::instance() == nullptr) {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        return;
    }
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

// The busy pointer while an icon is written, as the writer always showed.
class BusyPointer {
  public:
    BusyPointer() : shown_(qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (shown_) QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    }
    ~BusyPointer() {
        if (shown_) QGuiApplication::restoreOverrideCursor();
    }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

  private:
    bool shown_;
};

QImage BlankPictureBox() {
    QImage box(kPictureBoxWidth, kPictureBoxHeight, QImage::Format_RGB32);
    box.fill(QColor::fromRgb(kPictureBoxBackground));
    return box;
}

std::filesystem::path PathOf(const QString& folder) {
    return std::filesystem::path(folder.toStdString());
}

}  // namespace

CaptureFolders DefaultCaptureFolders() {
    CaptureFolders folders;
    folders.dataFolder = PathOf(WritableDataFolder());
    for (const QString& folder : ReadOnlyDataFolders()) {
        folders.templateFolders.push_back(PathOf(folder) / "Icons");
    }
    return folders;
}

bool LikePattern(std::string_view text, std::string_view pattern) {
    // Greedy matching with one step back to the last star.
    std::size_t t = 0, p = 0, starP = std::string_view::npos, starT = 0;
    while (t < text.size()) {
        if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++t;
            ++p;
        } else if (p < pattern.size() && pattern[p] == '*') {
            starP = p++;
            starT = t;
        } else if (starP != std::string_view::npos) {
            p = starP + 1;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

bool TitleNamesClient(std::string_view title) {
    constexpr std::string_view kWord = "hold'em";
    if (title.size() < kWord.size()) return false;
    for (std::size_t start = 0; start + kWord.size() <= title.size(); ++start) {
        std::size_t i = 0;
        while (i < kWord.size() &&
               std::tolower(static_cast<unsigned char>(title[start + i])) == kWord[i]) {
            ++i;
        }
        if (i == kWord.size()) return true;
    }
    return false;
}

DockPlaces DockPlacesFor(const WindowRect& stripFrame, const WindowRect& clientFrame,
                         const WindowRect& screen) {
    DockPlaces places;
    const int lowestTop = std::max(screen.top + kLowestStripTop, screen.top + clientFrame.height);
    places.strip = {stripFrame.left, std::max(stripFrame.top, lowestTop)};
    // Centred; halves round to even.
    const double left = stripFrame.left + stripFrame.width / 2.0 - clientFrame.width / 2.0;
    places.client = {static_cast<int>(std::nearbyint(left)), places.strip.y - clientFrame.height};
    // Where the client would reach past a side of the screen, both move
    // sideways; a client wider than the screen keeps its left edge on it.
    const int right = screen.left + screen.width;
    int shift = 0;
    if (places.client.x + clientFrame.width > right) {
        shift = right - (places.client.x + clientFrame.width);
    }
    if (places.client.x + shift < screen.left) shift = screen.left - places.client.x;
    places.strip.x += shift;
    places.client.x += shift;
    places.stripBelowScreen = places.strip.y + stripFrame.height > screen.top + screen.height;
    return places;
}

QImage CropToPictureBox(const ContentGrab& content, int cell, int previousSeat) {
    QImage box = BlankPictureBox();
    const PixelPoint origin = CropOrigin(cell, previousSeat);
    for (int y = 0; y < kCropHeight; ++y) {
        for (int x = 0; x < kCropWidth; ++x) {
            if (const std::optional<uint32_t> colour = content.Pixel(origin.x + x, origin.y + y)) {
                box.setPixel(x, y, *colour | 0xFF000000u);
            }
        }
    }
    return box;
}

IconPixels IconPixelsOf(const QImage& pictureBox) {
    IconPixels pixels{};
    for (int y = 0; y < kIconSide; ++y) {
        for (int x = 0; x < kIconSide; ++x) {
            pixels[y * kIconSide + x] = pictureBox.pixel(x, y) & 0xFFFFFF;
        }
    }
    return pixels;
}

IconWriteResult SavePictureBox(const QImage& pictureBox, const std::filesystem::path& path) {
    IconWriteResult result;
    {
        BusyPointer busy;
        ProcessPendingEvents();
        result = SavePicToIcon(IconPixelsOf(pictureBox), pictureBox.pixel(0, 0), path,
                               kCaptureIconDepth);
    }
    ProcessPendingEvents();
    return result;
}

ClientCapture::ClientCapture(IWindowSystem& windows, CaptureFolders folders)
    : windows_(windows), folders_(std::move(folders)), pictureBox_(BlankPictureBox()) {}

void ClientCapture::ReadClientCards(ICaptureBoard& board) {
    // Events are processed inside a pass; a timer tick that arrives then
    // must not start a second pass on top of this one.
    if (passRunning_) return;
    passRunning_ = true;
    struct Done {
        bool& flag;
        ~Done() { flag = false; }
    } done{passRunning_};

    const std::string unreadable = windows_.ScreenUnreadable();
    if (!unreadable.empty()) {
        board.StopCapture(unreadable);
        return;
    }
    DeleteCardFiles();
    FindClient(board, 0);
    board.ClearCards();  // every pass starts from an empty board, found or not
    if (mClientFound) ReadFoundClient(board);
}

void ClientCapture::ReadFoundClient(ICaptureBoard& board) {
    mHoleMode = true;
    mClientWnd = 0;
    for (mHoleCardIndex = 0; mHoleCardIndex < 2; ++mHoleCardIndex) {
        if (!CaptureAndSave(board, mHoleCardIndex)) return;
    }
    mHoleMode = false;
    for (mBoardCardIndex = 0; mBoardCardIndex < 5; ++mBoardCardIndex) {
        if (!CaptureAndSave(board, mBoardCardIndex + 2)) return;
    }
    TextCells cells;
    if (!RecogniseCards(board, cells)) return;
    board.ShowCapturedCards(cells);
}

void ClientCapture::FindClient(ICaptureBoard& board, int boardIndex) {
    mClientWnd = 0;
    mBoardCardIndex = boardIndex;
    mClientFound = false;
    std::vector<WindowId> hWndArray;
    FindWindowLike(hWndArray, 0, "*", "*", true, board);
    if (mClientFound) SaveProbeIcon();
}

void ClientCapture::FindWindowLike(std::vector<WindowId>& hWndArray, WindowId hWndStart,
                                   std::string_view windowText, std::string_view className,
                                   bool restart, ICaptureBoard& board) {
    if (restart) {
        mWindowSearchLevel = 0;
        mWindowSearchFound = 0;
    }
    if (mWindowSearchLevel == 0) {
        mWindowSearchFound = 0;
        hWndArray.assign(1, 0);
        if (hWndStart == 0) hWndStart = windows_.DesktopWindow();
    }
    ++mWindowSearchLevel;
    for (WindowId window = windows_.FirstChild(hWndStart); window != 0;
         window = windows_.NextSibling(window)) {
        // The desktop's children and their children, no deeper.
        if (mWindowSearchLevel < 2) {
            FindWindowLike(hWndArray, window, windowText, className, false, board);
        }
        const std::string title = windows_.WindowText(window);
        const std::string windowClass = windows_.ClassName(window);
        if (LikePattern(title, windowText) && LikePattern(windowClass, className)) {
            ++mWindowSearchFound;
            hWndArray.resize(mWindowSearchFound + 1);
            hWndArray[mWindowSearchFound] = window;
        }
        if (TitleNamesClient(title)) {
            // The level stays raised: after a hit on a child window no
            // further children are searched, and a hit on a top-level
            // window ends the walk. The last hit is the client.
            mClientWnd = static_cast<std::size_t>(mWindowSearchFound) < hWndArray.size()
                             ? hWndArray[mWindowSearchFound]
                             : 0;
            DockClient(mClientWnd, board.OwnWindow(), board);
            mClientFound = true;
            BringClientForward(board);
            return;
        }
    }
    --mWindowSearchLevel;
}

void ClientCapture::DockClient(WindowId clientWnd, WindowId ownWnd, ICaptureBoard& board) {
    board.EnterCompactView();
    const std::optional<WindowRect> own = windows_.GetWindowRect(ownWnd);
    const std::optional<WindowRect> client = windows_.GetWindowRect(clientWnd);
    if (!own || !client) return;
    const WindowRect strip = FrameRect({own->left, own->top, own->width, board.StripHeight()},
                                       windows_.GetFrameExtents(ownWnd));
    const WindowRect table = FrameRect(*client, windows_.GetFrameExtents(clientWnd));
    const DockPlaces places = DockPlacesFor(strip, table, windows_.Screen());
    // A window that stands where it should is left alone: no request, and
    // nothing for a window manager to do on every pass.
    if (places.strip != PixelPoint{strip.left, strip.top}) {
        windows_.MoveFrame(ownWnd, places.strip.x, places.strip.y);
    }
    if (places.client != PixelPoint{table.left, table.top}) {
        windows_.MoveFrame(clientWnd, places.client.x, places.client.y);
    }
    if (places.stripBelowScreen != stripBelowNoted_) {
        stripBelowNoted_ = places.stripBelowScreen;
        board.ShowStripNote(stripBelowNoted_ ? std::string(kStripBelowScreenNote) : std::string());
    }
}

void ClientCapture::BringClientForward(ICaptureBoard& board) {
    windows_.SetShowCommand(mClientWnd, kShow);
    if (windows_.GetShowCommand(mClientWnd) == kShowMinimised) {
        windows_.SetShowCommand(mClientWnd, kShowNormal);
    }
    windows_.BringWindowToTop(mClientWnd);
    const auto start = std::chrono::steady_clock::now();
    WaitProcessingEvents(kRaiseWaitMs);
    while (windows_.ForegroundWindow() != mClientWnd &&
           std::chrono::steady_clock::now() - start < kActivationWait) {
        WaitProcessingEvents(kActivationPollMs);
    }
    raiseWait_ = std::chrono::steady_clock::now() - start;
    // The one reading of the screen that the pass crops all its cards from.
    picture1_ = windows_.GrabContent(windows_.ForegroundWindow());
    CaptureCardImage(board.PreviousSeat());
}

QImage ClientCapture::CaptureCell(int cell, int previousSeat) {
    // The foreground window as it is: after the raise that is the client,
    // but the pass does not insist.
    return CropToPictureBox(windows_.GrabContent(windows_.ForegroundWindow()), cell, previousSeat);
}

void ClientCapture::CaptureCardImage(int previousSeat) {
    pictureBox_ =
        CropToPictureBox(picture1_, mHoleMode ? mHoleCardIndex : mBoardCardIndex + 2, previousSeat);
}

void ClientCapture::SaveProbeIcon() {
    // Nothing reads the probe, so a failure to write it changes nothing.
    std::error_code ignored;
    std::filesystem::create_directories(folders_.dataFolder, ignored);
    SavePictureBox(pictureBox_, folders_.dataFolder / kProbeIconName);
}

void ClientCapture::DeleteCardFiles() {
    for (int cell = 0; cell < kSlotCount; ++cell) {
        std::error_code ignored;  // a file that is not there is no error
        std::filesystem::remove(folders_.dataFolder / CaptureFileName(cell), ignored);
    }
}

bool ClientCapture::CaptureAndSave(ICaptureBoard& board, int cell) {
    CaptureCardImage(board.PreviousSeat());
    std::error_code ignored;
    std::filesystem::create_directories(folders_.dataFolder, ignored);
    const IconWriteResult written =
        SavePictureBox(pictureBox_, folders_.dataFolder / CaptureFileName(cell));
    if (!written.written) {
        board.StopCapture(written.error);
        return false;
    }
    return true;
}

std::filesystem::path ClientCapture::TemplateFolder() const {
    for (const std::filesystem::path& folder : folders_.templateFolders) {
        std::error_code ignored;
        if (std::filesystem::is_directory(folder, ignored)) return folder;
    }
    return folders_.dataFolder / "Icons";
}

bool ClientCapture::RecogniseCards(ICaptureBoard& board, TextCells& cells) {
    // The whole set is checked first, so that an incomplete folder is named
    // on every pass, whatever the cards on the table.
    std::filesystem::path unreadable;
    if (!templates_.Refresh(TemplateFolder(), unreadable)) {
        board.StopCapture("Card template missing or unreadable: " + unreadable.string());
        return false;
    }
    for (int n = 0; n < kSlotCount; ++n) {
        const int cell = n < 5 ? n + 2 : n - 5;  // t1..t5 the board, t6 and t7 the hole
        // A capture file that went away leaves its cell empty.
        const std::optional<std::string> joined =
            ReadJoinedLines(folders_.dataFolder / CaptureFileName(cell));
        if (joined) cells[cell] = templates_.Match(*joined);
    }
    return true;
}

}  // namespace felthawk
