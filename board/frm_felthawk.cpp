#include "board/frm_felthawk.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QCursor>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QTextBrowser>
#include <QTimer>

#include "board/equity_line.h"
#include "board/frm_splash.h"
#include "board/gauge_line.h"
#include "board/info_forms.h"
#include "board/layout.h"
#include "board/shell.h"
#include "settings/dialogs.h"
#include "settings/display_mode.h"
#include "settings/frm_save_hands.h"
#include "settings/transparency.h"

namespace felthawk {
namespace {

constexpr int kReadInterval = 2000;
constexpr int kFirstBannerInterval = 1000;

// Key codes of the key-down handler.
constexpr int kKeyBackspace = 8;
constexpr int kKeyF1 = 112;
constexpr int kKeyF2 = 113;
constexpr int kKeyF3 = 114;
constexpr int kKeyF4 = 115;
constexpr int kKeyF5 = 116;
constexpr int kKeyF6 = 117;
constexpr int kKeyF8 = 119;
constexpr int kKeyPad0 = 96;
constexpr int kKeyPadLast = 107;  // the pad's "+": 96..107 count as 48..59
constexpr int kKeyPadMultiply = 106;

// The class names of the results panel, one per row, and the object names of
// the labels beside them that are only ever blanked.
constexpr std::array<const char*, kHandClassCount> kClassCaptions{
    "Pair",  "Two Pair",   "Three Of A Kind", "Straight",
    "Flush", "Full House", "Four Of A Kind",  "Straight Flush"};
constexpr std::array<const char*, kHandClassCount> kBlankedNames{
    "lt_p", "lt_tp", "lt_tk", "lt_st", "lt_f", "lt_fh", "lt_fok", "lt_stf"};

// The rows alternate between white and pale yellow text.
const QColor kWhiteText(255, 255, 255);
const QColor kYellowText(255, 243, 160);
const QColor kRowColour(int row) {
    return row % 2 == 0 ? kWhiteText : kYellowText;
}

// The board's background: takes the presses that no control takes.
class BoardSurface : public QWidget {
  public:
    using Handler = std::function<void(int button, int x, int y)>;

    BoardSurface(QWidget* parent, Handler down, Handler up)
        : QWidget(parent), down_(std::move(down)), up_(std::move(up)) {
        setObjectName(QStringLiteral("frmFelthawkSurface"));
        background_ = LoadPicture(QStringLiteral("table")).pixmap;
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(24, 40, 32));
        painter.drawPixmap(0, 0, background_);
    }
    void mousePressEvent(QMouseEvent* event) override {
        down_(ButtonNumber(event->button()), Twips(event->position().x()),
              Twips(event->position().y()));
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        up_(ButtonNumber(event->button()), Twips(event->position().x()),
            Twips(event->position().y()));
    }

  private:
    QPixmap background_;
    Handler down_, up_;
};

QLabel* MakeLabel(QWidget* parent, const QString& name, const QString& caption, int left, int top,
                  int width, int height, const QColor& colour, bool bold = false) {
    auto* label = new QLabel(caption, parent);
    label->setObjectName(name);
    label->setGeometry(TwipRect(left, top, width, height));
    // A press on a label is the label's own, not the background's.
    label->setAttribute(Qt::WA_NoMousePropagation);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(Px(height) - 3);
    font.setBold(bold);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, colour);
    label->setPalette(palette);
    return label;
}

PictureBox* MakeImage(QWidget* parent, const QString& arrayName, int index, int left, int top,
                      int width, int height) {
    auto* image = new PictureBox(parent, arrayName, index);
    image->setGeometry(TwipRect(left, top, width, height));
    return image;
}

// The key code of a Qt key event, as the key-down handler numbers keys.
int KeyCode(const QKeyEvent& event) {
    const int key = event.key();
    const bool pad = event.modifiers().testFlag(Qt::KeypadModifier);
    if (key == Qt::Key_Backspace) return kKeyBackspace;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return kKeyF1 + (key - Qt::Key_F1);
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return pad ? kKeyPad0 + (key - Qt::Key_0) : key;
    if (pad && key == Qt::Key_Asterisk) return kKeyPadMultiply;
    if (pad && key == Qt::Key_Plus) return kKeyPadLast;
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return key;
    return 0;
}

// The suit letter of a deck array ("iss" gives "S"); "" for the cells.
std::string SuitOfArray(const QString& arrayName) {
    for (int row = 0; row < kDeckRows; ++row) {
        if (arrayName == QLatin1String(kDeckRowName[row])) return std::string(1, kDeckRowSuit[row]);
    }
    return std::string();
}

}  // namespace

frmFelthawk::frmFelthawk(const BoardServices& services, IDialogs& dialogs, QWidget* parent)
    : QMainWindow(parent), mServices(services), mDialogs(dialogs) {
    setObjectName(QStringLiteral("frmFelthawk"));
    setWindowTitle(QStringLiteral("Felthawk"));
    setWindowIcon(QIcon(LoadPicture(QStringLiteral("icon")).pixmap));

    mBlank = LoadPicture(kBlankPicture);
    mHandPicture = LoadPicture(QStringLiteral("iHand"));
    mFoldPicture = LoadPicture(QStringLiteral("ifold"));
    mEmptyPicture = LoadPicture(QStringLiteral("iempty"));
    mDealerPicture = LoadPicture(QStringLiteral("dl2"));
    mNoDealerPicture = LoadPicture(QStringLiteral("DL1"));
    mCaptureOffPicture = LoadPicture(QStringLiteral("sp1"));
    mCaptureOnPicture = LoadPicture(QStringLiteral("sp2"));

    auto* surface = new BoardSurface(
        this, [this](int button, int x, int y) { FormMouseDown(button, x, y); },
        [this](int button, int x, int y) { FormMouseUp(button, x, y); });
    surface->resize(Px(kFormWidth), Px(kFormInnerHeight));
    setCentralWidget(surface);

    // Built bottom up: later controls lie over earlier ones.
    BuildCompactView(surface);
    BuildResults(surface);
    BuildDeck(surface);
    BuildTable(surface);
    BuildSeats(surface);
    BuildButtons(surface);
    l_Temp = new GaugeLine(surface, kGaugeX1, kGaugeY1, kGaugeX1 + static_cast<int>(kGaugeLength),
                           kGaugeY2, kGaugeWidth);
    mEquity = new EquityLine(surface, l_Me, this);
    BuildMenus();
    BuildSeatMenu();

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(kFirstBannerInterval);
    tmr_Read = new QTimer(this);
    tmr_Read->setObjectName(QStringLiteral("tmr_Read"));
    tmr_Read->setInterval(kReadInterval);
    connect(tmr_Read, &QTimer::timeout, this, [this] {
        if (mServices.capture != nullptr) mServices.capture->CapturePass(*this);
    });

    mState.showMessage = [this](const std::string& text) { ShowCalcMessage(text); };
    setFocusPolicy(Qt::StrongFocus);
}

frmFelthawk::~frmFelthawk() = default;

frmFelthawk::UserAction::UserAction(frmFelthawk& form) : form_(form) {
    ++form_.mActionDepth;
}

frmFelthawk::UserAction::~UserAction() {
    if (--form_.mActionDepth == 0) form_.mActionMessages.clear();
}

// The one message box a calculation can raise, shown modally. A click runs
// the driver more than once (press and release both recalculate), and the
// same text would come up again for the same click.
void frmFelthawk::ShowCalcMessage(const std::string& text) {
    if (mActionDepth > 0 && !mActionMessages.insert(text).second) return;
    mDialogs.MessageBox(this, QString::fromStdString(text), QStringLiteral("Felthawk"),
                        MessageIcon::Information);
}

// ---- Building the window --------------------------------------------------

void frmFelthawk::BuildCompactView(QWidget* surface) {
    imgSmall = MakeImage(surface, QStringLiteral("imgSmall"), 0, 0, 0, kSmallWidth, kSmallHeight);
    imgSmall->SetPicture(LoadPicture(QStringLiteral("imgSmall")));
    imgSmall->hide();
    for (int i = 0; i < kCellCount; ++i) {
        ITEMP[i] = MakeImage(surface, QStringLiteral("ITEMP"), i, kTempLeft[i], kTempTop,
                             kCardWidth, kCardHeight);
        ITEMP[i]->SetPicture(mBlank);
        ITEMP[i]->hide();
    }
    // The advice takes two lines beside the cards, and the strength row
    // sits below it: the longest advice is twice as wide as the room.
    LBLSUG = MakeLabel(surface, QStringLiteral("LBLSUG"), QString(), 1440, kSmallAdviceTop,
                       kSmallAdviceWidth, kSmallAdviceHeight, kYellowText, true);
    QFont adviceFont = LBLSUG->font();
    adviceFont.setPixelSize(kSmallAdvicePixels);
    LBLSUG->setFont(adviceFont);
    LBLSUG->setWordWrap(true);
    LBLSUG->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    mCompactMeCaption = MakeLabel(surface, QStringLiteral("LBLPERCENT"), QStringLiteral("Me >> "),
                                  1440, kSmallMeTop, 720, kLabelHeight, kWhiteText, true);
    mCompactMeCaption->setProperty("index", 1);
    LBLPERCENTSMALL = MakeLabel(surface, QStringLiteral("LBLPERCENTSMALL"), QString(), 2160,
                                kSmallMeTop, 900, kLabelHeight, kWhiteText, true);
    // Capture's own line runs along the foot of the strip, clear of the
    // advice; the caption carries it too.
    mCaptureNote = MakeLabel(surface, QStringLiteral("lblCaptureNote"), QString(), 1440, 870,
                             8160, kLabelHeight, kYellowText, true);
    mCaptureNote->setTextFormat(Qt::PlainText);
    for (QLabel* label : {LBLSUG, mCompactMeCaption, LBLPERCENTSMALL, mCaptureNote}) {
        label->hide();
    }
}

void frmFelthawk::BuildResults(QWidget* surface) {
    for (int row = 0; row < kHandClassCount; ++row) {
        // The class captions are the array elements 20 down to 13.
        QLabel* caption = MakeLabel(surface, QStringLiteral("LBLPERCENT"),
                                    QString::fromLatin1(kClassCaptions[row]), kClassLeft,
                                    kClassRowTop[row], kClassWidth, kLabelHeight, kRowColour(row));
        caption->setProperty("index", 20 - row);
        lP[row] = MakeLabel(surface, QStringLiteral("lP"), QStringLiteral("00 %"), kChanceLeft,
                            kChanceTop[row], kChanceWidth, kLabelHeight, kRowColour(row), true);
        lP[row]->setProperty("index", row);
        mBlankedOnly[row] =
            MakeLabel(surface, QString::fromLatin1(kBlankedNames[row]), QStringLiteral("00 %"),
                      kBlankedLeft, kBlankedTop[row], kBlankedWidth, kLabelHeight, kRowColour(row));
    }
    // Each caption reaches to the figure beside it.
    struct Fixed {
        int index;
        const char* caption;
        int left, width;
    };
    for (const Fixed& fixed : {Fixed{11, "Win / Split", 495, 1400}, Fixed{10, "Me >> ", 1965, 660},
                               Fixed{0, "Them >>", 3330, 765}}) {
        QLabel* label =
            MakeLabel(surface, QStringLiteral("LBLPERCENT"), QString::fromLatin1(fixed.caption),
                      fixed.left, kWinRowTop, fixed.width, kLabelHeight, kYellowText, true);
        label->setProperty("index", fixed.index);
    }
    l_Me = MakeLabel(surface, QStringLiteral("l_Me"), QStringLiteral("100 %"), 2625, kWinRowTop,
                     700, kLabelHeight, kWhiteText, true);
    l_Them = MakeLabel(surface, QStringLiteral("l_Them"), QStringLiteral("100 %"), 4095, kWinRowTop,
                       700, kLabelHeight, kWhiteText, true);
    lblSuggestion =
        MakeLabel(surface, QStringLiteral("lblSuggestion"), QStringLiteral(" Raise / Re-raise"),
                  1575, 1290, 3600, kTallLabelHeight, kYellowText, true);
    lbl_CardType = MakeLabel(surface, QStringLiteral("lbl_CardType"), QStringLiteral("Royal Flush"),
                             4380, 6795, 1800, kTallLabelHeight, kWhiteText, true);
}

void frmFelthawk::BuildDeck(QWidget* surface) {
    MakeLabel(surface, QStringLiteral("Label1"), QStringLiteral("Deck"), 7365, 1440, 900,
              kTallLabelHeight, kYellowText, true);
    for (int row = 0; row < kDeckRows; ++row) {
        for (int rank = kLowRank; rank <= kHighRank; ++rank) {
            PictureBox* image =
                MakeImage(surface, QString::fromLatin1(kDeckRowName[row]), rank,
                          DeckLeft(row, rank), kDeckRowTop[row], kCardWidth, kCardHeight);
            Picture& face = mFaces[row][rank - kLowRank];
            face = LoadPicture(QString::fromStdString(Trim(RankText(rank))) +
                               QChar(kDeckRowSuit[row]));
            image->SetPicture(face);
            image->setCursor(Qt::PointingHandCursor);
            image->OnMouseDown([this, row, rank](int button, int x, int y) {
                DeckMouseDown(row, rank, button, x, y);
            });
            image->OnMouseUp([this, row, rank](int button, int x, int y) {
                DeckMouseUp(row, rank, button, x, y);
            });
            mDeck[row][rank - kLowRank] = image;
        }
    }
}

void frmFelthawk::BuildTable(QWidget* surface) {
    for (int n = 1; n <= kCellCount; ++n) {
        PictureBox* cell = MakeImage(surface, QStringLiteral("IM"), n, kCellLeft[n - 1],
                                     kCellTop[n - 1], kCardWidth, kCardHeight);
        cell->SetPicture(mBlank);
        cell->OnMouseDown([this, n](int button, int, int) { CellMouseDown(n, button); });
        cell->OnDragDrop([this, n](PictureBox* source) { CellDragDrop(n, source); });
        IM[n - 1] = cell;
    }
}

void frmFelthawk::BuildSeats(QWidget* surface) {
    ShMe = new QFrame(surface);
    ShMe->setObjectName(QStringLiteral("ShMe"));
    ShMe->setStyleSheet(QStringLiteral("QFrame#ShMe { border: 2px solid #ffd84a; }"));
    ShMe->setAttribute(Qt::WA_TransparentForMouseEvents);
    ShMe->lower();
    for (int k = 0; k < kSeatCount - 1; ++k) {
        io[k] = MakeImage(surface, QStringLiteral("io"), k, kSeatPlaces[k].anchorX,
                          kSeatPlaces[k].anchorY, kSeatPictureWidth, kSeatPictureHeight);
        io[k]->OnMouseDown([this, k](int button, int, int) { SeatMouseDown(k, button); });
    }
    for (int i = 0; i < kSeatCount; ++i) {
        dl[i] = MakeImage(surface, QStringLiteral("dl"), i, kSeatPlaces[i].dealerLeft,
                          kSeatPlaces[i].dealerTop, kDealerSize, kDealerSize);
        dl[i]->SetPicture(mNoDealerPicture);
        dl[i]->hide();
        dl[i]->OnMouseUp([this, i](int button, int, int) {
            if (button == kLeftButton) DealerClick(i);
        });
    }
    ld = new QLabel(QStringLiteral("D"), surface);
    ld->setObjectName(QStringLiteral("ld"));
    QFont verdana(QStringLiteral("Verdana"));
    verdana.setPixelSize(9);
    verdana.setBold(true);
    ld->setFont(verdana);
    ld->setStyleSheet(QStringLiteral("color: #d01818;"));
    ld->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    ld->resize(Px(kDealerSize), Px(kDealerSize));
    ld->setAttribute(Qt::WA_TransparentForMouseEvents);
    iME = MakeImage(surface, QStringLiteral("iME"), 0, 0, 0, kMeWidth, kMeHeight);
    iME->SetPicture(LoadPicture(QStringLiteral("iME")));
    iME->OnMouseDown([this](int button, int, int) { MeMouseDown(button); });
}

void frmFelthawk::BuildButtons(QWidget* surface) {
    auto button = [&](const char* name, const QPoint& at, const QString& tip,
                      const Picture& picture, std::function<void()> click) {
        PictureBox* image = MakeImage(surface, QString::fromLatin1(name), 0, at.x(), at.y(),
                                      kButtonSize, kButtonSize);
        image->SetPicture(picture);
        image->setToolTip(tip);
        image->setCursor(Qt::PointingHandCursor);
        image->OnMouseUp([click = std::move(click)](int pressed, int, int) {
            if (pressed == kLeftButton) click();
        });
        return image;
    };
    Image1 = button("Image1", kImage1At, QStringLiteral("New Hand"),
                    LoadPicture(QStringLiteral("Image1")), [this] { NextHand(); });
    Image2 = button("Image2", kImage2At, QStringLiteral("Close FeltHawk"),
                    LoadPicture(QStringLiteral("Image2")), [this] { close(); });
    imSp = button("imSp", kImSpAt, QStringLiteral("Capture Palisade Poker"), mCaptureOffPicture,
                  [this] { ToggleCapture(); });

    Picture1 = new QFrame(surface);
    Picture1->setObjectName(QStringLiteral("Picture1"));
    Picture1->setFrameShape(QFrame::NoFrame);
    Picture1->setGeometry(TwipRect(kPictureLeft, kPictureTop, kPictureWidth, kPictureHeight));
    wb = new QTextBrowser(Picture1);
    wb->setObjectName(QStringLiteral("wb"));
    wb->setFrameShape(QFrame::NoFrame);
    wb->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    wb->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    wb->setOpenExternalLinks(true);
    // The keys belong to the board, not to the banner.
    wb->setFocusPolicy(Qt::NoFocus);
    wb->setStyleSheet(QStringLiteral("background: transparent;"));
    wb->setGeometry(Picture1->rect());
}

void frmFelthawk::BuildMenus() {
    auto item = [this](QMenu* menu, const char* name, const QString& caption,
                       const QKeySequence& shortcut, std::function<void()> action) {
        QAction* act = menu->addAction(caption);
        act->setObjectName(QString::fromLatin1(name));
        act->setShortcut(shortcut);
        connect(act, &QAction::triggered, this, std::move(action));
        return act;
    };
    auto separator = [](QMenu* menu, const char* name) {
        menu->addSeparator()->setObjectName(QString::fromLatin1(name));
    };

    mnuFile = menuBar()->addMenu(QStringLiteral("&File"));
    mnuFile->setObjectName(QStringLiteral("mnuFile"));
    item(mnuFile, "mnuNew", QStringLiteral("&New hand"), QKeySequence(Qt::CTRL | Qt::Key_N),
         [this] { NextHand(); });
    item(mnuFile, "mnuSave", QStringLiteral("&Save Data"), QKeySequence(Qt::CTRL | Qt::Key_S),
         [this] { SaveHand(); });
    item(mnuFile, "mnuOpen", QStringLiteral("&Open Data"), QKeySequence(Qt::CTRL | Qt::Key_O),
         [this] { OpenHands(); });
    separator(mnuFile, "mnuSep");
    item(mnuFile, "mnuSendFriend", QStringLiteral("Send to a Friend"), {}, [this] {
        if (mServices.mail != nullptr) mServices.mail->ShowSendToFriend(this);
    });
    separator(mnuFile, "mnuFriend");
    item(mnuFile, "mnuExit", QStringLiteral("&Exit"), QKeySequence(Qt::CTRL | Qt::Key_X),
         [this] { close(); });

    mnuSettings = menuBar()->addMenu(QStringLiteral("&Settings"));
    mnuSettings->setObjectName(QStringLiteral("mnuSettings"));
    mnuLeftMouse = item(mnuSettings, "mnuLeftMouse", QStringLiteral("Left Mouse Settings"), {},
                        [this] { ChooseMouse(true); });
    mnuRightMouse = item(mnuSettings, "mnuRightMouse", QStringLiteral("Right Mouse Settings"), {},
                         [this] { ChooseMouse(false); });
    mnuLeftMouse->setCheckable(true);
    mnuRightMouse->setCheckable(true);
    separator(mnuSettings, "mnusep2");
    item(mnuSettings, "mnuTransparency", QStringLiteral("Transparency"), {},
         [this] { AskTransparency(this, mDialogs, mSettings); });
    mnuSwitchMode = item(mnuSettings, "mnuSwitchMode",
                         QStringLiteral("Switch the screen to 1024 \u00d7 768 for capture"), {},
                         [this] { ChooseSwitchMode(mnuSwitchMode->isChecked()); });
    mnuSwitchMode->setCheckable(true);

    mnuHelp = menuBar()->addMenu(QStringLiteral("&Help"));
    mnuHelp->setObjectName(QStringLiteral("mnuHelp"));
    item(mnuHelp, "mnuInstr", QStringLiteral("Instructions"), {},
         [] { OpenAddress(WebSite() + QStringLiteral("/manual.html")); });
    item(mnuHelp, "mnuAbout", QStringLiteral("About Us"), {}, [this] {
        frmAbout about(this);
        about.exec();
    });
    item(mnuHelp, "mnuFAQ", QStringLiteral("FAQ"), {},
         [] { OpenAddress(WebSite() + QStringLiteral("/faq.html")); });
    // Kept as a form that exists; the item stays hidden and nothing shows it.
    QAction* requirements = item(mnuHelp, "mnuReq", QStringLiteral("Requirements"), {}, [this] {
        auto* req = new frmReq(this);
        req->setAttribute(Qt::WA_DeleteOnClose);
        req->show();
    });
    requirements->setVisible(false);
    item(mnuHelp, "mnuVisit", QStringLiteral("Visit Web Site"), {}, [] { OpenAddress(WebSite()); });
    item(mnuHelp, "mnuCheck", QStringLiteral("Check for Update"), {}, [this] {
        if (mServices.update != nullptr) mServices.update->VersionProgram2(this);
    });
    item(mnuHelp, "mnuContactUs", QStringLiteral("Contact Us"), {},
         [] { OpenMailTo(SupportMail()); });
}

void frmFelthawk::BuildSeatMenu() {
    mnuMain = new QMenu(this);
    mnuMain->setObjectName(QStringLiteral("mnuMain"));
    auto item = [this](const char* name, const QString& caption, std::function<void()> action) {
        QAction* act = mnuMain->addAction(caption);
        act->setObjectName(QString::fromLatin1(name));
        act->setCheckable(true);
        connect(act, &QAction::triggered, this, std::move(action));
        return act;
    };
    mnuIn = item("mnuIn", QStringLiteral("In"), [this] { MenuSetsSeat(QStringLiteral("H")); });
    mnuFold =
        item("mnuFold", QStringLiteral("Fold"), [this] { MenuSetsSeat(QStringLiteral("F")); });
    mnuEmpty =
        item("mnuEmpty", QStringLiteral("Empty"), [this] { MenuSetsSeat(QStringLiteral("E")); });
    mnuMain->addSeparator()->setObjectName(QStringLiteral("mnuSep1"));
    mnuDealer = item("mnuDealer", QStringLiteral("Dealer"), [this] { MenuDealer(); });
    mnuMe = item("mnuMe", QStringLiteral("Me"), [this] { MenuMe(); });
    mnuRange = mnuMain->addAction(QStringLiteral("Range\u2026"));
    mnuRange->setObjectName(QStringLiteral("mnuRange"));
    connect(mnuRange, &QAction::triggered, this, [this] {
        mEquity->AskRange(mDialogs, this, mMenuSeat);
        DrawSeats();
    });
}

// ---- Start and end ------------------------------------------------------

void frmFelthawk::FormLoad(bool showSplash) {
    // The one setting needed before the others are read: a user who never
    // captures may keep the screen as it is.
    if (mServices.display != nullptr && GetFelthawkSettings().switchDisplayMode) {
        mServices.display->SaveDisplayMode();
    }
    mCaptureOn = false;
    ApplyCaptureMode();
    if (showSplash) {
        frmSplash splash(mServices.update, this);
        splash.exec();
    }
    mAlpha = std::make_unique<clsAlpha>(mLayer);
    ReadSettings();
    mState.InitSeats();
    // The starting-hand table is constant data, ready before the first hand.
    NextHand();
    DrawSeats();
}

void frmFelthawk::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow() || mActivated) return;
    mActivated = true;
    if (mServices.banners != nullptr) mServices.banners->LoadBanners(this, wb, Timer1);
    mBoardTop = y();
}

void frmFelthawk::closeEvent(QCloseEvent* event) {
    FormUnload();
    event->accept();
}

void frmFelthawk::FormUnload() {
    if (mUnloading) return;
    mUnloading = true;
    if (mServices.display != nullptr) mServices.display->RestoreDisplayMode();
    if (mAlpha) mAlpha->Clear(this);
    // Nothing is saved here: settings and hands are written as they change.
    QCoreApplication::quit();
}

void frmFelthawk::ReadSettings() {
    mSettings = GetFelthawkSettings();
    // The tick is set here only; choosing the other item later moves none.
    mLeftTick = mSettings.leftMouse;
    mRightTick = !mSettings.leftMouse;
    mnuLeftMouse->setChecked(mLeftTick);
    mnuRightMouse->setChecked(mRightTick);
    mnuSwitchMode->setChecked(mSettings.switchDisplayMode);
}

void frmFelthawk::WriteSettings() {
    const QString failure = SetFelthawksettings(mSettings);
    if (!failure.isEmpty()) {
        mDialogs.MessageBox(this, failure, QStringLiteral("Felthawk"), MessageIcon::Warning);
    }
}

void frmFelthawk::ChooseMouse(bool left) {
    mSettings.leftMouse = left;
    WriteSettings();
    mnuLeftMouse->setChecked(mLeftTick);
    mnuRightMouse->setChecked(mRightTick);
}

void frmFelthawk::ChooseSwitchMode(bool on) {
    mSettings.switchDisplayMode = on;
    WriteSettings();
    // At once: on switches the screen now, off puts the noted mode back.
    if (mServices.display == nullptr) return;
    if (on) {
        mServices.display->SaveDisplayMode();
    } else {
        mServices.display->RestoreDisplayMode();
    }
}

void frmFelthawk::SaveHand() {
    QStringList cells;
    bool any = false;
    for (const std::string& cell : mCards) {
        cells << QString::fromStdString(cell);
        any = any || !cell.empty();
    }
    if (!any) return;
    frmSaveHands hands(mDialogs, this);
    hands.NewHand(cells.join(QLatin1Char(',')));
}

void frmFelthawk::OpenHands() {
    frmSaveHands hands(mDialogs, this);
    hands.exec();
}

// ---- Capture view -----------------------------------------------------------

void frmFelthawk::ToggleCapture() {
    if (mCaptureOn) {
        tmr_Read->stop();
        mCaptureOn = false;
        ApplyCaptureMode();
    } else {
        // The window keeps its shape until a pass finds the poker client;
        // meanwhile the switch shows that capture is armed and looking.
        tmr_Read->start();
        mCaptureOn = true;
        imSp->SetPicture(mCaptureOnPicture);
        imSp->setToolTip(
            QStringLiteral("Looking for a window whose title holds \"Hold'em\"; click to cancel"));
    }
}

void frmFelthawk::ShowCaptureNote(const QString& note) {
    mCaptureNote->setText(note);
    mCaptureNote->setToolTip(note);
    mCaptureNote->setVisible(mCaptureOn && !note.isEmpty());
    // The strip's caption is empty; a window manager's title bar is the part
    // of it that shows even when the strip stands low.
    if (mCaptureOn) setWindowTitle(note);
}

void frmFelthawk::ApplyCaptureMode() {
    const bool on = mCaptureOn;
    for (QMenu* menu : {mnuFile, mnuSettings, mnuHelp}) menu->menuAction()->setVisible(!on);
    menuBar()->setVisible(!on);
    for (QLabel* label : {LBLSUG, LBLPERCENTSMALL, mCompactMeCaption}) label->setVisible(on);
    mEquity->SetCompact(on);
    mCaptureNote->setVisible(on && !mCaptureNote->text().isEmpty());
    for (PictureBox* image : ITEMP) image->setVisible(on);
    int clientHeight = 0;
    if (!on) {
        clientHeight = Px(kFormInnerHeight);
        move(x(), mBoardTop);
        imgSmall->hide();
        imSp->SetPicture(mCaptureOffPicture);
        imSp->setToolTip(QStringLiteral("Capture Palisade Poker"));
        tmr_Read->stop();
        setWindowTitle(QStringLiteral("Felthawk"));
        Picture1->setGeometry(TwipRect(kPictureLeft, kPictureTop, kPictureWidth, kPictureHeight));
    } else {
        clientHeight = Px(kSmallHeight + kSmallExtraHeight);
        imSp->SetPicture(mCaptureOnPicture);
        imSp->setToolTip(QStringLiteral("Cancel Capture"));
        tmr_Read->start();
        setWindowTitle(mCaptureNote->text());
        imgSmall->move(0, 0);
        imgSmall->show();
        Picture1->setGeometry(
            TwipRect(kSmallPictureLeft, kSmallPictureTop, kSmallPictureWidth, kSmallPictureHeight));
    }
    wb->setGeometry(Picture1->rect());
    const int menuHeight = on ? 0 : menuBar()->sizeHint().height();
    setFixedSize(Px(kFormWidth), clientHeight + menuHeight);
}

// ---- Results ------------------------------------------------------------------

void frmFelthawk::RecalculateHand() {
    Render(felthawk::RecalculateHand(mState, mCards));
    std::array<char, kSeatCount> seats;
    for (int i = 0; i < kSeatCount; ++i) seats[i] = mState.gSeats[i];
    mEquity->Restart(mCards, seats);
}

void frmFelthawk::Render(const DisplayModel& display) {
    ClearLabels();
    for (int i = 0; i < kHandClassCount; ++i) {
        lP[i]->setText(QString::fromStdString(display.chances[i]));
    }
    SetMeCaption(QString::fromStdString(display.me));
    SetSuggestionCaption(QString::fromStdString(display.suggestion));
    SetGaugeEnd(display.gaugeX2);
}

void frmFelthawk::ClearLabels() {
    for (QLabel* label : lP) label->clear();
    for (QLabel* label : mBlankedOnly) label->clear();
    ClearWinSplit();
    SetSuggestionCaption(QString());
    lbl_CardType->clear();
    SetGaugeEnd(kGaugeX1);
    mEquity->Clear();
}

void frmFelthawk::ClearWinSplit() {
    SetMeCaption(QString());
    l_Them->clear();
}

// The compact view mirrors these two captions; nothing else writes there.
void frmFelthawk::SetMeCaption(const QString& text) {
    l_Me->setText(text);
    LBLPERCENTSMALL->setText(text);
}

void frmFelthawk::SetSuggestionCaption(const QString& text) {
    lblSuggestion->setText(text);
    LBLSUG->setText(text);
}

void frmFelthawk::SetGaugeEnd(double x2) {
    l_Temp->SetX2(x2);
}

// ---- Cards ---------------------------------------------------------------------

PictureBox* frmFelthawk::DeckImage(int row, int rank) const {
    if (row < 0 || row >= kDeckRows || rank < kLowRank || rank > kHighRank) return nullptr;
    return mDeck[row][rank - kLowRank];
}

PictureBox* frmFelthawk::DeckImageOf(QChar suitLetter, int rank) const {
    for (int row = 0; row < kDeckRows; ++row) {
        if (suitLetter == QChar(kDeckRowSuit[row])) return DeckImage(row, rank);
    }
    return nullptr;
}

PictureBox* frmFelthawk::CellImage(int n) const {
    return n >= 1 && n <= kCellCount ? IM[n - 1] : nullptr;
}

PictureBox* frmFelthawk::TempImage(int i) const {
    return i >= 0 && i < kCellCount ? ITEMP[i] : nullptr;
}

int frmFelthawk::LogicalButton(int button) const {
    if (mSettings.leftMouse) return button;
    return button == kRightButton ? kLeftButton : kRightButton;
}

void frmFelthawk::DeckMouseDown(int row, int rank, int button, int x, int y) {
    const UserAction action(*this);
    PictureBox* image = DeckImage(row, rank);
    if (image == nullptr) return;
    mMouseDownX = static_cast<int16_t>(x);
    mMouseDownY = static_cast<int16_t>(y);
    const int logical = LogicalButton(button);
    if (logical == kLeftButton) {
        image->BeginDrag();
    } else if (logical == kRightButton) {
        ClearLabels();
        const std::string text = Trim(RankText(rank)) + kDeckRowSuit[row];
        // Taking a card off recalculates twice; both runs give the same board.
        if (!RemoveIfPlaced(text)) {
            AddCard(image);
        } else {
            RecalculateHand();
        }
    }
}

void frmFelthawk::DeckMouseUp(int row, int rank, int button, int x, int y) {
    const UserAction action(*this);
    PictureBox* image = DeckImage(row, rank);
    if (image == nullptr) return;
    const int logical = LogicalButton(button);
    // A click without movement places the card. There is no test for a card
    // already on the table: clicking a blank slot places a blank copy.
    if (x == mMouseDownX && y == mMouseDownY && logical == kLeftButton) {
        ClearLabels();
        AddCard(image);
        RecalculateHand();
    }
    image->EndDrag();
}

void frmFelthawk::CellDragDrop(int n, PictureBox* source) {
    PictureBox* target = CellImage(n);
    if (target == nullptr || source == nullptr) return;
    // No recalculation: the board catches up at the next action that
    // recalculates.
    PlaceCard(source, target);
}

void frmFelthawk::CellMouseDown(int n, int) {
    const UserAction action(*this);
    if (CellImage(n) == nullptr || mCards[n - 1].empty()) return;
    ReturnCard(n);
    RecalculateHand();
}

void frmFelthawk::PlaceCard(PictureBox* source, PictureBox* target) {
    target->SetPicture(source->GetPicture());
    source->SetPicture(mBlank);
    // A card moved from cell to cell keeps the text of the target.
    if (source->ArrayName() != QLatin1String("IM")) {
        mCards[target->Index() - 1] =
            Trim(RankText(source->Index()) + SuitOfArray(source->ArrayName()));
    }
}

void frmFelthawk::AddCard(PictureBox* source) {
    const int n = FirstEmptyCell();
    if (n == 0) return;
    PlaceCard(source, IM[n - 1]);
    RecalculateHand();
}

void frmFelthawk::ReturnCard(int cellNumber) {
    const std::string cell = Trim(mCards[cellNumber - 1]);
    const std::string rankText = cell.substr(0, 1);
    const int rank = RankValue(rankText);
    std::string suit;
    for (char c : cell) {
        if (rankText.empty() || c != rankText[0]) suit += c;
    }
    mCards[cellNumber - 1].clear();
    if (suit.size() == 1) {
        if (PictureBox* deck = DeckImageOf(QChar(suit[0]), rank)) {
            RestorePicture(deck, IM[cellNumber - 1]);
        }
    }
    RecalculateHand();
}

bool frmFelthawk::RemoveIfPlaced(const std::string& text) {
    if (text.empty()) return false;
    for (int i = 1; i <= kCellCount; ++i) {
        if (mCards[i - 1] == text) {
            ReturnCard(i);
            mCards[i - 1].clear();
            RecalculateHand();
            return true;
        }
    }
    return false;
}

void frmFelthawk::RestorePicture(PictureBox* deckImage, PictureBox* cellImage) {
    deckImage->SetPicture(cellImage->GetPicture());
    cellImage->SetPicture(mBlank);
}

int frmFelthawk::FirstEmptyCell() const {
    for (int n = 1; n <= kCellCount; ++n) {
        if (mCards[n - 1].empty()) return n;
    }
    return 0;
}

void frmFelthawk::ClearCards() {
    for (int n = 1; n <= kCellCount; ++n) {
        if (!mCards[n - 1].empty()) ReturnCard(n);
    }
    SetGaugeEnd(l_Temp->X1());
    for (int row = 0; row < kDeckRows; ++row) {
        for (int rank = kLowRank; rank <= kHighRank; ++rank) {
            PictureBox* image = mDeck[row][rank - kLowRank];
            image->SetPicture(mFaces[row][rank - kLowRank]);
            image->show();
        }
    }
    for (int n = 1; n <= kCellCount; ++n) {
        IM[n - 1]->SetPicture(mBlank);
        mCards[n - 1].clear();
    }
}

// ---- Keys and background ---------------------------------------------------------

void frmFelthawk::keyPressEvent(QKeyEvent* event) {
    const int code = KeyCode(*event);
    if (code == 0) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    KeyDown(code);
}

void frmFelthawk::KeyDown(int keyCode) {
    const UserAction action(*this);
    switch (keyCode) {
        case kKeyBackspace:
            for (int n = kCellCount; n >= 1; --n) {
                if (!mCards[n - 1].empty()) {
                    ReturnCard(n);
                    break;
                }
            }
            break;
        case kKeyF2:
            NextHand();
            break;
        case kKeyF3:
            // A stored setting above 100 has no byte, and the key does nothing.
            if (auto alpha = F3Alpha(mSettings.transparency); alpha && mAlpha) {
                mAlpha->SetAlpha(this, true, *alpha);
            }
            break;
        case kKeyF4:
            if (mAlpha) mAlpha->SetAlpha(this, true, kF4Alpha);
            break;
        case kKeyF5:
            showMinimized();
            break;
        case kKeyF6:
            showNormal();
            break;
        case kKeyF8:
            close();
            break;
        default:
            break;
    }

    // Typed cards: a rank key, then a suit key. The rank stays for the next
    // suit, so "A", "S", "H" places two aces.
    int code = keyCode;
    if (code >= kKeyPad0 && code <= kKeyPadLast) code -= kKeyPad0 - '0';
    if (code == 'A' || code == 'K' || code == 'Q' || code == 'J' || code == 'T' ||
        (code >= '1' && code <= '9')) {
        mPendingRank = QChar(code);
    } else if (code == '0') {
        if (mPendingRank == QLatin1String("1")) mPendingRank = QStringLiteral("T");
    } else if (code == 'S' || code == 'H' || code == 'C' || code == 'D') {
        if (mPendingRank.isEmpty()) return;
        const int rank = RankValue(mPendingRank.toStdString());
        if (rank < kLowRank || rank > kHighRank) return;
        AddCard(DeckImageOf(QChar(code), rank));
    }
}

void frmFelthawk::FormMouseDown(int button, int x, int y) {
    mMouseDownX = static_cast<int16_t>(x);
    mMouseDownY = static_cast<int16_t>(y);
    if (!HeldPressActs(LogicalButton(button), y)) return;
    int16_t value = HeldAlphaValue(mSettings.transparency);
    SetWindowAlpha(mLayer, this, value);
}

void frmFelthawk::FormMouseUp(int button, int, int) {
    if (LogicalButton(button) == kRightButton) ClearWindowAlpha(mLayer, this);
}

// ---- Seats ----------------------------------------------------------------------

PictureBox* frmFelthawk::SeatImage(int k) const {
    return k >= 0 && k < kSeatCount - 1 ? io[k] : nullptr;
}

void frmFelthawk::DrawSeats() {
    int k = 0;
    for (int i = 0; i < kSeatCount; ++i) {
        const SeatPlace& place = kSeatPlaces[i];
        const char state = mState.gSeats[i];
        if (state == kSeatMe) {
            IM[0]->move(Px(place.anchorX), Px(place.anchorY));
            IM[1]->move(Px(place.anchorX + kHoleCardGap), Px(place.anchorY));
            const int cardLeft = Twips(IM[0]->x());
            const int cardTop = Twips(IM[0]->y());
            const int shLeft = cardLeft - 50;
            const int shTop = cardTop - 50;
            const int shHeight = Twips(IM[0]->height()) + 100;
            const int shWidth = Twips(IM[1]->width()) + Twips(IM[1]->x()) - shLeft + 50;
            ShMe->setGeometry(TwipRect(shLeft, shTop, shWidth, shHeight));
            iME->move(Px(shLeft - 25), Px(shTop - 300));
        } else if (k < static_cast<int>(io.size())) {
            const Picture& picture = state == kSeatFolded  ? mFoldPicture
                                     : state == kSeatEmpty ? mEmptyPicture
                                                           : mHandPicture;
            io[k]->move(Px(place.anchorX), Px(place.anchorY));
            io[k]->SetPicture(picture);
            io[k]->setProperty("Tag", QStringLiteral("%1,%2").arg(QChar(state)).arg(i));
            const QString range = mEquity->RangeTip(i);
            io[k]->setToolTip(QStringLiteral("Seat %1").arg(i + 1) +
                              (range.isEmpty() ? QString() : QStringLiteral("\n") + range));
            ++k;
        }
    }
    DrawDealer();
}

void frmFelthawk::DrawDealer() {
    for (int i = 0; i < kSeatCount; ++i) {
        if (i == mState.gDealerSeat) {
            dl[i]->SetPicture(mDealerPicture);
            dl[i]->show();
            dl[i]->raise();
            ld->move(dl[i]->x(), dl[i]->y() + Px(50));
            ld->raise();
        } else {
            dl[i]->SetPicture(mNoDealerPicture);
            dl[i]->hide();
        }
    }
}

void frmFelthawk::SetSeatState(int number, const QString& state) {
    const UserAction action(*this);
    if (!state.isEmpty()) {
        if (number >= 0 && number < kSeatCount) mState.gSeats[number] = state.at(0).toLatin1();
    } else if (PictureBox* image = SeatImage(number)) {
        const QStringList tag = image->property("Tag").toString().split(QLatin1Char(','));
        if (tag.size() == 2) {
            const int seat = tag[1].toInt();
            char& letter = mState.gSeats[seat];
            if (letter == kSeatIn) {
                letter = kSeatFolded;
            } else if (letter == kSeatFolded) {
                letter = kSeatEmpty;
            } else if (letter == kSeatEmpty) {
                letter = kSeatIn;
            }
        }
    }
    DrawSeats();
    RecalculateHand();
}

void frmFelthawk::NextHand() {
    const UserAction action(*this);
    mState.gDealerSeat = static_cast<int16_t>(mState.gDealerSeat + 1);
    if (mState.gDealerSeat == kSeatCount) mState.gDealerSeat = 0;
    for (int i = 0; i < kSeatCount; ++i) {
        if (mState.gSeats[i] == kSeatFolded) {
            mState.gSeats[i] = kSeatIn;
            SetSeatState(i, QStringLiteral("H"));
        }
    }
    DrawDealer();
    ClearLabels();
    ClearCards();
}

void frmFelthawk::PrepareSeatMenu(const QString& tag) {
    const QStringList parts = tag.split(QLatin1Char(','));
    for (QAction* act : {mnuIn, mnuFold, mnuEmpty, mnuDealer, mnuMe, mnuRange}) {
        act->setChecked(false);
        act->setEnabled(true);
    }
    const QString state = parts.value(0);
    if (state == QLatin1String("M")) mnuMe->setChecked(true);
    if (state == QLatin1String("F")) mnuFold->setChecked(true);
    if (state == QLatin1String("E")) mnuEmpty->setChecked(true);
    if (state == QLatin1String("H")) mnuIn->setChecked(true);
    if (parts.size() > 1 && parts[1].toInt() == mState.gDealerSeat) mnuDealer->setChecked(true);
}

void frmFelthawk::SeatMouseDown(int n, int button) {
    PictureBox* image = SeatImage(n);
    if (image == nullptr) return;
    if (LogicalButton(button) == kRightButton) {
        const QString tag = image->property("Tag").toString();
        PrepareSeatMenu(tag);
        // The seat number is the tag's third character, a single digit.
        mMenuSeat = static_cast<int16_t>(Val(tag.mid(2, 1).toStdString()));
        PopUpSeatMenu(image->mapToGlobal(QPoint(image->width(), 0)));
    } else {
        mMenuSeat = static_cast<int16_t>(n);
        SetSeatState(n, QString());
    }
}

void frmFelthawk::MeMouseDown(int button) {
    if (LogicalButton(button) != kRightButton) return;
    // The user's own seat can only be made the dealer from here.
    for (QAction* act : {mnuIn, mnuMe, mnuFold, mnuEmpty, mnuRange}) act->setEnabled(false);
    mnuDealer->setEnabled(true);
    for (int i = 0; i < kSeatCount; ++i) {
        if (mState.gSeats[i] == kSeatMe) mMenuSeat = static_cast<int16_t>(i);
    }
    PopUpSeatMenu(QCursor::pos());
}

void frmFelthawk::PopUpSeatMenu(const QPoint& globalAt) {
    mnuMain->popup(globalAt);
}

void frmFelthawk::MenuSetsSeat(const QString& state) {
    SetSeatState(mMenuSeat, state);
}

void frmFelthawk::MenuDealer() {
    mState.gDealerSeat = mMenuSeat;
    DrawSeats();
}

void frmFelthawk::MenuMe() {
    for (int i = 0; i < kSeatCount; ++i) {
        if (mState.gSeats[i] == kSeatMe) mState.gSeats[i] = kSeatIn;
    }
    mState.gSeats[mMenuSeat] = kSeatMe;
    DrawSeats();
    mPreviousSeat = static_cast<int16_t>(mMenuSeat == 0 ? kSeatCount - 1 : mMenuSeat - 1);
}

void frmFelthawk::DealerClick(int n) {
    mState.gDealerSeat = static_cast<int16_t>(n);
    DrawDealer();
}

}  // namespace felthawk
