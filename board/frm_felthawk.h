// frmFelthawk: the main window. A picture of a poker table with a deck beside
// it, the eight chance rows, the strength, the advice and the red gauge, the
// ten seats and the dealer button, the menu bar, and the compact strip that
// stands in for the window while capture runs.
//
// The window keeps the table as seven text cells (mCards) and the engine's
// CalcState (seats, dealer and the calculation's working state). Every card
// and seat change ends in RecalculateHand, which renders the engine's
// DisplayModel onto the labels.
//
// Positions given to and taken from the handlers are in twips (15 to a pixel)
// relative to the control, and mouse buttons are numbered 1 left, 2 right,
// 4 middle. The handlers apply the mouse setting themselves: with the setting
// "RIGHT" a button 2 acts as 1 and every other button as 2.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include <QMainWindow>
#include <QString>

#include "board/layout.h"
#include "board/picture_box.h"
#include "board/services.h"
#include "cards/recalculate.h"
#include "settings/settings_store.h"
#include "settings/transparency.h"

class QAction;
class QFrame;
class QLabel;
class QMenu;
class QTextBrowser;
class QTimer;

namespace felthawk {

class EquityLine;
class GaugeLine;
class IDialogs;

class frmFelthawk : public QMainWindow {
    Q_OBJECT

  public:
    // The services may all be null; a missing service leaves its feature
    // doing nothing. Both references must outlive the window.
    frmFelthawk(const BoardServices& services, IDialogs& dialogs, QWidget* parent = nullptr);
    ~frmFelthawk() override;

    // The start, in this order: save and force the display mode, lay the
    // window out with capture off, show the splash (modal; it runs the
    // version check), create the transparency object, read the settings,
    // seat the table, start the first hand and draw the seats. Without
    // `showSplash` the splash step is left out (for tests).
    void FormLoad(bool showSplash = true);
    // The window has been closed and the end order has run (a signal may
    // close it while the splash still shows, before the event loop runs).
    bool Unloaded() const { return mUnloading; }

    // ---- The table --------------------------------------------------------

    // The seven text cells: 0, 1 hole cards; 2, 3, 4 flop; 5 turn; 6 river.
    // "" or a card text such as "AS". Capture fills them through the deck and
    // cell handlers below, then calls RecalculateHand once.
    TextCells mCards;
    // Capture mode is on. Set it, then call ApplyCaptureMode.
    bool mCaptureOn = false;
    // The seat before the user's seat, 9 when the user sits at seat 0.
    // Capture reads the user's cards from this seat's place of the client.
    int16_t mPreviousSeat = 9;

    // The calculation state; gSeats and gDealerSeat live here.
    CalcState& State() { return mState; }
    const CalcState& State() const { return mState; }
    // The mouse and transparency settings as read at start and changed since.
    const FelthawkSettings& Settings() const { return mSettings; }

    // Wipes every result and recalculates the board from mCards and the seats.
    void RecalculateHand();
    // Blanks all results and collapses the gauge.
    void ClearLabels();
    // Returns every card to the deck, gives every deck slot its card's face
    // back (a card dropped over by another comes back here) and empties the
    // seven cells.
    void ClearCards();

    // ---- The deck: rows kSpadesRow (iss), kHeartsRow (IH), kClubsRow (IC),
    // kDiamondsRow (ID), ranks 2..14 ----------------------------------------

    PictureBox* DeckImage(int row, int rank) const;
    // The deck image of a suit letter "S", "H", "C", "D"; null for others.
    PictureBox* DeckImageOf(QChar suitLetter, int rank) const;
    // Press on a deck image: logical button 1 arms a drag, logical button 2
    // toggles the card on and off the table.
    void DeckMouseDown(int row, int rank, int button, int x, int y);
    // Release on a deck image: a release of logical button 1 where the press
    // was places the card. Every release ends the drag.
    void DeckMouseUp(int row, int rank, int button, int x, int y);

    // ---- The cells IM(1)..IM(7); IM(n) shows mCards[n - 1] ---------------

    PictureBox* CellImage(int n) const;
    // A drop on IM(n): the source's card goes there, overwriting; no
    // recalculation.
    void CellDragDrop(int n, PictureBox* source);
    // A press on IM(n) with any button takes its card back to the deck.
    void CellMouseDown(int n, int button);
    // The picture of an empty cell and of a deck slot whose card is away.
    const Picture& BlankPicture() const { return mBlank; }

    // ---- The compact capture view ----------------------------------------

    // ITEMP(0)..ITEMP(6): the compact strip's copies of the seven cells.
    PictureBox* TempImage(int i) const;
    // imgSmall: the strip's backdrop, 672 by 66 pixels.
    PictureBox* SmallImage() const { return imgSmall; }
    // Lays the window out from mCaptureOn: the full board, or the strip.
    void ApplyCaptureMode();
    // tmr_Read: one capture pass every 2000 ms while capture is on.
    QTimer* ReadTimer() const { return tmr_Read; }
    // A line of capture's own along the top of the strip; "" takes it away.
    void ShowCaptureNote(const QString& note);

    // ---- Seats and dealer -------------------------------------------------

    // "H", "F", "E" set seat `number`; "" cycles the seat shown by io(number).
    // Redraws the seats and recalculates.
    void SetSeatState(int number, const QString& state);
    void DrawSeats();
    void DrawDealer();
    // A new deal: the button moves on, folded seats come back in, the table
    // is cleared.
    void NextHand();
    // io(0)..io(8): the pictures of the seats that are not the user's.
    PictureBox* SeatImage(int k) const;
    // A press on io(n): logical button 2 opens the seat menu, others cycle.
    void SeatMouseDown(int n, int button);
    // A press on the user's marker iME: logical button 2 opens the seat menu
    // with only "Dealer" enabled.
    void MeMouseDown(int button);
    // A click on the dealer place dl(n) moves the button there.
    void DealerClick(int n);

    // ---- Keys and the form's background ----------------------------------

    // The key-down handler, with the key code of the original keyboard
    // layout: 8 Backspace, 65..90 letters, 48..57 digits, 96..105 the numeric
    // pad, 112.. F1 and on.
    void KeyDown(int keyCode);
    // Press and release on the window's background: the while-held
    // transparency of the top band.
    void FormMouseDown(int button, int x, int y);
    void FormMouseUp(int button, int x, int y);

    // The window's opacity route kept by the transparency keys (F3, F4).
    clsAlpha* Alpha() const { return mAlpha.get(); }
    // The red gauge l_Temp.
    const GaugeLine* Gauge() const { return l_Temp; }
    // The true equity against the live seats, and the seats' ranges.
    EquityLine* Equity() const { return mEquity; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    // One user action: a press, a release, a key, a menu item. A message a
    // calculation raises is shown once per action, however many times the
    // action recalculates. Actions nest; the outermost one counts.
    class UserAction {
      public:
        explicit UserAction(frmFelthawk& form);
        ~UserAction();
        UserAction(const UserAction&) = delete;
        UserAction& operator=(const UserAction&) = delete;

      private:
        frmFelthawk& form_;
    };
    void ShowCalcMessage(const std::string& text);

    void BuildResults(QWidget* surface);
    void BuildDeck(QWidget* surface);
    void BuildTable(QWidget* surface);
    void BuildSeats(QWidget* surface);
    void BuildButtons(QWidget* surface);
    void BuildCompactView(QWidget* surface);
    void BuildMenus();
    void BuildSeatMenu();

    // Card moves.
    int LogicalButton(int button) const;
    void PlaceCard(PictureBox* source, PictureBox* target);
    void AddCard(PictureBox* source);
    void ReturnCard(int cellNumber);
    bool RemoveIfPlaced(const std::string& text);
    void RestorePicture(PictureBox* deckImage, PictureBox* cellImage);
    int FirstEmptyCell() const;

    // Results.
    void Render(const DisplayModel& display);
    void ClearWinSplit();
    void SetMeCaption(const QString& text);
    void SetSuggestionCaption(const QString& text);
    void SetGaugeEnd(double x2);

    // Seats.
    void PrepareSeatMenu(const QString& tag);
    void PopUpSeatMenu(const QPoint& globalAt);
    void MenuSetsSeat(const QString& state);
    void MenuDealer();
    void MenuMe();

    // Menus and life cycle.
    void ReadSettings();
    // Writes the settings; a failed write is reported once.
    void WriteSettings();
    void ChooseMouse(bool left);
    // "Switch the screen to 1024 x 768 for capture".
    void ChooseSwitchMode(bool on);
    void SaveHand();
    void OpenHands();
    void ToggleCapture();
    void FormUnload();

    BoardServices mServices;
    IDialogs& mDialogs;
    CalcState mState;
    FelthawkSettings mSettings;
    QtWindowLayer mLayer;
    std::unique_ptr<clsAlpha> mAlpha;

    QString mPendingRank;
    int16_t mMenuSeat = 0;
    int16_t mMouseDownX = 0;
    int16_t mMouseDownY = 0;
    int mBoardTop = 0;
    bool mActivated = false;
    bool mUnloading = false;
    // The ticks of the mouse items, set once at start and kept.
    bool mLeftTick = false;
    bool mRightTick = false;

    int mActionDepth = 0;
    std::set<std::string> mActionMessages;  // shown in the current action

    Picture mBlank;
    std::array<std::array<Picture, kHighRank - kLowRank + 1>, kDeckRows> mFaces;
    Picture mHandPicture, mFoldPicture, mEmptyPicture;
    Picture mDealerPicture, mNoDealerPicture;
    Picture mCaptureOffPicture, mCaptureOnPicture;

    std::array<std::array<PictureBox*, kHighRank - kLowRank + 1>, kDeckRows> mDeck{};
    std::array<PictureBox*, kCellCount> IM{};
    std::array<PictureBox*, kCellCount> ITEMP{};
    PictureBox* imgSmall = nullptr;
    std::array<QLabel*, kHandClassCount> lP{};
    std::array<QLabel*, kHandClassCount> mBlankedOnly{};  // lt_p .. lt_stf
    QLabel* l_Me = nullptr;
    QLabel* l_Them = nullptr;
    QLabel* lblSuggestion = nullptr;
    QLabel* lbl_CardType = nullptr;
    QLabel* LBLSUG = nullptr;
    QLabel* LBLPERCENTSMALL = nullptr;
    QLabel* mCompactMeCaption = nullptr;  // LBLPERCENT(1)
    QLabel* mCaptureNote = nullptr;
    GaugeLine* l_Temp = nullptr;
    EquityLine* mEquity = nullptr;

    PictureBox* Image1 = nullptr;
    PictureBox* Image2 = nullptr;
    PictureBox* imSp = nullptr;
    QFrame* Picture1 = nullptr;
    QTextBrowser* wb = nullptr;

    std::array<PictureBox*, kSeatCount - 1> io{};
    std::array<PictureBox*, kSeatCount> dl{};
    PictureBox* iME = nullptr;
    QFrame* ShMe = nullptr;
    QLabel* ld = nullptr;

    QMenu* mnuMain = nullptr;
    QAction* mnuIn = nullptr;
    QAction* mnuFold = nullptr;
    QAction* mnuEmpty = nullptr;
    QAction* mnuDealer = nullptr;
    QAction* mnuMe = nullptr;
    QAction* mnuRange = nullptr;
    QMenu* mnuFile = nullptr;
    QMenu* mnuSettings = nullptr;
    QMenu* mnuHelp = nullptr;
    QAction* mnuLeftMouse = nullptr;
    QAction* mnuRightMouse = nullptr;
    QAction* mnuSwitchMode = nullptr;

    QTimer* Timer1 = nullptr;
    QTimer* tmr_Read = nullptr;
};

}  // namespace felthawk
