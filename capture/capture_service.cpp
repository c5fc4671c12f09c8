#include "capture/capture_service.h"

#include <QCursor>

#include "board/frm_felthawk.h"
#include "board/layout.h"
#include "capture/xcb_window_system.h"
#include "settings/dialogs.h"

namespace felthawk {
namespace {

// The press that capture sends: the left button, at one twip in.
constexpr int kPressButton = kLeftButton;
constexpr int kPressAt = 1;

class BoardForCapture : public ICaptureBoard {
  public:
    BoardForCapture(frmFelthawk& board, IDialogs& dialogs) : board_(board), dialogs_(dialogs) {}

    WindowId OwnWindow() override { return static_cast<WindowId>(board_.winId()); }
    void EnterCompactView() override {
        board_.mCaptureOn = true;
        board_.ApplyCaptureMode();
    }
    int StripHeight() override { return board_.height(); }
    void ShowStripNote(const std::string& note) override {
        board_.ShowCaptureNote(QString::fromStdString(note));
    }
    void ClearCards() override { board_.ClearCards(); }
    int PreviousSeat() override { return board_.mPreviousSeat; }
    void ShowCapturedCards(const TextCells& cells) override {
        felthawk::ShowCapturedCards(board_, cells);
    }
    void StopCapture(const std::string& message) override {
        board_.mCaptureOn = false;
        board_.ApplyCaptureMode();  // stops tmr_Read as well
        dialogs_.MessageBox(&board_, QString::fromStdString(message), QStringLiteral("Felthawk"),
                            MessageIcon::Warning);
    }

  private:
    frmFelthawk& board_;
    IDialogs& dialogs_;
};

int DeckRowOf(char suit) {
    for (int row = 0; row < kDeckRows; ++row) {
        if (kDeckRowSuit[row] == suit) return row;
    }
    return -1;
}

}  // namespace

CaptureService::CaptureService(IDialogs& dialogs, CaptureFolders folders)
    : dialogs_(dialogs), folders_(std::move(folders)) {}

CaptureService::CaptureService(IWindowSystem& windows, IDialogs& dialogs, CaptureFolders folders)
    : dialogs_(dialogs),
      folders_(folders),
      capture_(std::make_unique<ClientCapture>(windows, std::move(folders))) {}

CaptureService::~CaptureService() = default;

void CaptureService::CapturePass(frmFelthawk& board) {
    BoardForCapture view(board, dialogs_);
    if (!capture_) {
        std::string error;
        std::unique_ptr<XcbWindowSystem> windows = XcbWindowSystem::Open(error);
        if (!windows) {
            view.StopCapture("Capture needs an X11 desktop: " + error);
            return;
        }
        ownWindows_ = std::move(windows);
        capture_ = std::make_unique<ClientCapture>(*ownWindows_, folders_);
    }
    capture_->ReadClientCards(view);
}

void ShowCapturedCards(frmFelthawk& board, const TextCells& cells) {
    const QPoint mouse = QCursor::pos();
    for (int cell = 1; cell <= kSlotCount; ++cell) {
        const std::string& card = cells[cell - 1];
        board.mCards[cell - 1] = card;
        PictureBox* copy = board.TempImage(cell - 1);
        if (card.size() != 2) {
            copy->SetPicture(board.BlankPicture());
            continue;
        }
        const int rank = RankValue(card.substr(0, 1));
        const int row = DeckRowOf(card[1]);
        PictureBox* deck = board.DeckImage(row, rank);
        if (deck == nullptr) continue;
        board.DeckMouseDown(row, rank, kPressButton, kPressAt, kPressAt);
        board.CellDragDrop(cell, deck);
        deck->EndDrag();
        copy->SetPicture(board.CellImage(cell)->GetPicture());
    }
    QCursor::setPos(mouse);
    board.RecalculateHand();
}

}  // namespace felthawk
