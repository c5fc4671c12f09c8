// Capture as the main window sees it: tmr_Read calls CapturePass, which runs
// one pass against the X server and fills the board through its own deck
// and cell handlers.
#pragma once

#include <memory>

#include "board/services.h"
#include "capture/client_capture.h"

namespace felthawk {

class IDialogs;

class CaptureService : public ICaptureService {
  public:
    // The X server is reached at the first pass. `dialogs` shows the one
    // message that stops capture.
    explicit CaptureService(IDialogs& dialogs, CaptureFolders folders = DefaultCaptureFolders());
    // With a window system of the caller's; it must outlive the service.
    CaptureService(IWindowSystem& windows, IDialogs& dialogs, CaptureFolders folders);
    ~CaptureService() override;

    void CapturePass(frmFelthawk& board) override;

  private:
    IDialogs& dialogs_;
    CaptureFolders folders_;
    std::unique_ptr<IWindowSystem> ownWindows_;
    std::unique_ptr<ClientCapture> capture_;
};

// Shows recognised cells on the board as capture always did: for each card
// a press with button 1 on its deck image, a drop on its cell and the end
// of the drag, with the mouse put back afterwards; then one recalculation.
// The compact strip's copies follow the cells.
void ShowCapturedCards(frmFelthawk& board, const TextCells& cells);

}  // namespace felthawk
