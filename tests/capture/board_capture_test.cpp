// The whole road: felthawk-table on the screen, the real main window, the
// capture switch, one pass of tmr_Read, and the numbers on the board.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <cmath>

#include "board/frm_felthawk.h"
#include "capture/capture_service.h"
#include "capture/client_layout.h"
#include "capture/xcb_window_system.h"
#include "settings/dialogs.h"
#include "tests/capture/temp_folder.h"
#include "tests/capture/x11_session.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

class RecordingDialogs : public IDialogs {
  public:
    QString InputBox(QWidget*, const QString&, const QString&, const QString&,
                     bool* accepted) override {
        if (accepted != nullptr) *accepted = false;
        return {};
    }
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon) override {
        messages.push_back(text.toStdString());
    }
    bool AskYesNo(QWidget*, const QString&, const QString&) override { return false; }

    std::vector<std::string> messages;
};

// What felthawk-calc answers for the same cells and seats.
QJsonObject Calculate(const QString& cells) {
    QProcess calc;
    calc.start(FELTHAWK_CALC_PROGRAM, {"--cells", cells, "--seats", "MHHHHHHHHH"});
    calc.waitForFinished(30000);
    return QJsonDocument::fromJson(calc.readAllStandardOutput()).object();
}

class BoardCapture : public ::testing::Test {
  protected:
    BoardCapture()
        : service(dialogs, {data.path(), {icons}}),
          board(BoardServices{.capture = &service}, dialogs) {}

    void SetUp() override {
        board.FormLoad(false);
        board.move(175, 600);
        board.show();
        QTest::qWait(100);
    }

    void SwitchCaptureOn() {
        QTest::mouseClick(board.findChild<QWidget*>(QStringLiteral("imSp")), Qt::LeftButton);
    }

    // Runs the event loop until one tick of tmr_Read has been handled.
    void WaitOnePass() {
        bool passed = false;
        QObject::connect(board.ReadTimer(), &QTimer::timeout, &board, [&] { passed = true; });
        QElapsedTimer waited;
        waited.start();
        while (!passed && waited.elapsed() < 5000) QTest::qWait(20);
        ASSERT_TRUE(passed);
    }

    TempFolder data;
    std::filesystem::path icons = FELTHAWK_TEST_ICONS_DIR;
    RecordingDialogs dialogs;
    CaptureService service;
    frmFelthawk board;
    TableProcess table;
};

TEST_F(BoardCapture, SwitchingCaptureOnFillsTheBoardWithinOnePassAndShowsTheNumbers) {
    const QString cells = "AS,KS,QH,JD,2C,,";
    const WindowId client = table.Start({"--cells", cells});
    ASSERT_NE(client, 0u);
    SwitchCaptureOn();
    WaitOnePass();

    std::string error;
    EXPECT_EQ(board.mCards, *ParseTableCells(cells.toStdString(), error));
    EXPECT_TRUE(board.mCaptureOn);
    EXPECT_TRUE(dialogs.messages.empty());

    const QJsonObject expected = Calculate(cells);
    ASSERT_FALSE(expected.isEmpty());
    const QList<QLabel*> chances = board.findChildren<QLabel*>(QStringLiteral("lP"));
    ASSERT_EQ(chances.size(), kHandClassCount);
    for (int i = 0; i < kHandClassCount; ++i) {
        EXPECT_EQ(chances[i]->text(), expected["chances"].toArray()[i].toString()) << i;
    }
    EXPECT_EQ(board.findChild<QLabel*>(QStringLiteral("l_Me"))->text(), expected["me"].toString());
    EXPECT_EQ(board.findChild<QLabel*>(QStringLiteral("lblSuggestion"))->text(),
              expected["suggestion"].toString());
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const std::string shown = board.TempImage(cell)->GetPicture().name.toStdString();
        EXPECT_EQ(shown,
                  board.mCards[cell].empty() ? kBlankPicture.toStdString() : board.mCards[cell]);
    }

    // The strip stands right under the table, centred.
    std::string connectError;
    auto windows = XcbWindowSystem::Open(connectError);
    ASSERT_TRUE(windows) << connectError;
    const WindowRect strip = *windows->GetWindowRect(board.winId());
    const WindowRect tableRect = *windows->GetWindowRect(client);
    EXPECT_EQ(tableRect.top + tableRect.height, strip.top);
    EXPECT_EQ(tableRect.left,
              static_cast<int>(std::nearbyint(strip.left + strip.width / 2.0 - kTableWidth / 2.0)));
    EXPECT_LT(strip.height, 100);  // the compact strip, not the full board
}

TEST_F(BoardCapture, AnIncompleteTemplateFolderStopsCaptureWithOneMessage) {
    TempFolder partial;
    for (const auto& entry : std::filesystem::directory_iterator(icons)) {
        if (entry.path().filename() != "Q C.ico") {
            std::filesystem::copy_file(entry.path(), partial.path() / entry.path().filename());
        }
    }
    CaptureService strict(dialogs, {data.path(), {partial.path()}});
    ASSERT_NE(table.Start({"--cells", "AS,KS,,,,,"}), 0u);
    board.mCaptureOn = true;
    strict.CapturePass(board);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0],
              "Card template missing or unreadable: " + (partial.path() / "Q C.ico").string());
    EXPECT_FALSE(board.mCaptureOn);
    EXPECT_FALSE(board.ReadTimer()->isActive());
    EXPECT_EQ(board.mCards, TextCells{});
}

}  // namespace
}  // namespace felthawk
