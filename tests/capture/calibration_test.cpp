// Calibration without an X server: the places a user types or frames, the
// templates kept from the cards shown, and the calibration window driven
// as a user would, on a made-up desktop.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QListWidget>
#include <QTest>
#include <QToolButton>
#include <fstream>

#include "capture/calibration.h"
#include "capture/compare_files.h"
#include "tests/capture/fake_windows.h"
#include "tests/capture/temp_folder.h"
#include "tools/icons/calibration_window.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

const TableDesign& SixSeat() {
    return *FindTableDesign("six-seat");
}

std::array<CropRect, kSlotCount> SixSeatPlaces() {
    std::array<CropRect, kSlotCount> places;
    for (int cell = 0; cell < kSlotCount; ++cell) places[cell] = CardIndexPlace(SixSeat(), cell, 0);
    return places;
}

TEST(CalibrationPlaces, TypedPlacesNeedAllSevenAsWholeNumbers) {
    const std::string good = FormatPlaces(SixSeatPlaces());
    std::string error;
    EXPECT_EQ(ParsePlaces(good, error), SixSeatPlaces());
    EXPECT_EQ(ParsePlaces(" ;" + good + "; ", error), SixSeatPlaces());
    const std::pair<std::string, std::string> bad[] = {
        {good.substr(0, good.rfind(';')), "the place river is missing"},
        {good + ";flop4=1,1,1,1", "\"flop4=1,1,1,1\" is not a place"},
        {"hole1=1,2,3" + good.substr(good.find(';')), "hole1 needs four whole numbers"},
        {"hole1=1,2,3,x" + good.substr(good.find(';')), "hole1 needs four whole numbers"},
        {"hole1=1,2,3,4-" + good.substr(good.find(';')), "hole1 needs four whole numbers"},
        {"hole1=1,2,3,99999999" + good.substr(good.find(';')), "hole1 needs four whole numbers"},
        {"hole1" + good.substr(good.find(';')), "\"hole1\" is not a place"},
    };
    for (const auto& [text, message] : bad) {
        EXPECT_FALSE(ParsePlaces(text, error)) << text;
        EXPECT_NE(error.find(message), std::string::npos) << error;
    }
}

TEST(CalibrationTemplates, CardsAreKeptDealByDealAndAWrongNameIsRefused) {
    TempFolder folder;
    const TableLayout layout =
        MakeLayout("six", "*hold'em*", SixSeat().width, SixSeat().height, SixSeatPlaces(), -1);
    auto deal = [&](const TextCells& shown) { return DrawTable(shown, 0, SixSeat()); };
    std::string error;
    const TextCells first{"AS", "KD", "2C", "3H", "XX", "", "TD"};
    TextCells named = first;
    named[4] = "";  // face down: nothing to name
    EXPECT_EQ(SaveTemplates(deal(first), layout, 9, named, folder.path(), error),
              (std::vector<std::string>{"AS", "KD", "2C", "3H", "TD"}))
        << error;
    EXPECT_EQ(MissingTemplates(folder.path()).size(), 47u);

    struct Refused {
        TextCells shown, named;
        std::string message;
    } refused[] = {
        // KD shows again, named as another card.
        {{"KD", "", "", "", "", "", ""},
         {"KH", "", "", "", "", "", ""},
         "hole1: its picture is already the template of KD"},
        {{"5S", "6S", "", "", "", "", ""}, {"5S", "5S", "", "", "", "", ""}, "5S is named twice"},
        {{"5S", "", "", "", "", "", ""}, {"5X", "", "", "", "", "", ""}, "\"5X\" is not a card"},
    };
    for (const Refused& r : refused) {
        EXPECT_FALSE(SaveTemplates(deal(r.shown), layout, 9, r.named, folder.path(), error));
        EXPECT_NE(error.find(r.message), std::string::npos) << error;
    }
    EXPECT_EQ(MissingTemplates(folder.path()).size(), 47u);  // nothing written by a refusal

    TableLayout atOneSeat =
        MakeLayout("six", "*", SixSeat().width, SixSeat().height, SixSeatPlaces(), 4);
    EXPECT_FALSE(SaveTemplates(deal({"5S"}), atOneSeat, 9, {"5S"}, folder.path(), error));
    EXPECT_EQ(error, "hole1: the layout has no place for it at this seat");
    // The same card shown again is simply kept again.
    EXPECT_TRUE(SaveTemplates(deal(first), layout, 9, named, folder.path(), error)) << error;
}

TEST(CalibrationWindow, FramedPlacesAndNamedCardsAreSavedAsALayoutWithTemplates) {
    TempFolder layouts;
    FakeWindowSystem windows;
    windows.Add(FakeWindowSystem::kDesktop, "Editor");
    const WindowId client = windows.Add(FakeWindowSystem::kDesktop, "Six Hold'em table");
    const TextCells shown{"QS", "JH", "7C", "8D", "9S", "", ""};
    windows[client].picture = DrawTable(shown, 0, SixSeat());

    CalibrationWindow window(windows, layouts.path());
    window.show();
    window.RefreshWindows();
    window.TakePicture();  // the client is listed first
    ASSERT_EQ(window.View()->Picture().size(), QSize(SixSeat().width, SixSeat().height));
    PlacesView* view = window.View();
    view->SetZoom(2);

    // Every place framed roughly with the mouse, then put right with the
    // arrow keys, as a user would.
    const std::array<CropRect, kSlotCount> places = SixSeatPlaces();
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const CropRect& p = places[cell];
        QTest::keyClick(view, static_cast<Qt::Key>(Qt::Key_1 + cell));
        const QPoint from((p.x + 1) * 2, (p.y + 2) * 2);
        const QPoint to((p.x + p.width - 1) * 2, (p.y + p.height) * 2);
        QTest::mousePress(view, Qt::LeftButton, {}, from);
        QTest::mouseMove(view, to);
        QTest::mouseRelease(view, Qt::LeftButton, {}, to);
        QTest::keyClick(view, Qt::Key_Left);
        QTest::keyClick(view, Qt::Key_Up);
        QTest::keyClick(view, Qt::Key_Up);
        QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
        EXPECT_EQ(view->Places()[cell], p) << cell;
    }
    // Dragging inside a place moves it, and the keys move it back.
    QTest::keyClick(view, Qt::Key_7);
    const QPoint inside((places[6].x + 2) * 2, (places[6].y + 2) * 2);
    QTest::mousePress(view, Qt::LeftButton, {}, inside);
    QTest::mouseMove(view, inside + QPoint(6, 0));
    QTest::mouseRelease(view, Qt::LeftButton, {}, inside + QPoint(6, 0));
    EXPECT_EQ(view->Places()[6].x, places[6].x + 3);
    for (int i = 0; i < 3; ++i) QTest::keyClick(view, Qt::Key_Left);
    EXPECT_EQ(view->Places()[6], places[6]);

    // Cards named by a click on the deck, or typed.
    QTest::keyClick(view, Qt::Key_1);
    for (const char* card : {"QS", "JH", "7C"}) {
        QTest::mouseClick(window.findChild<QToolButton*>(QStringLiteral("deck") + card),
                          Qt::LeftButton);
    }
    window.NameCard("8d");
    window.NameCard("9S");
    EXPECT_EQ(window.Cards(), shown);
    ASSERT_TRUE(window.Save()) << window.Status().toStdString();
    EXPECT_TRUE(window.Status().contains("Templates still missing (47)"))
        << window.Status().toStdString();
    EXPECT_EQ(window.Cards(), TextCells{});

    std::string error;
    const std::optional<TableLayout> layout = FindLayout("my-client", layouts.path(), error);
    ASSERT_TRUE(layout) << error;
    EXPECT_EQ(*layout,
              MakeLayout("my-client", "*hold'em*", SixSeat().width, SixSeat().height, places, -1));
    // The templates are what capture cuts from the same places.
    const QImage box = PlacePicture(windows[client].picture, *layout, 3, 9);
    TempFolder again;
    SavePictureBox(box, again.path() / "x.ico");
    EXPECT_EQ(ReadJoinedLines(again.path() / "x.ico"),
              ReadJoinedLines(layouts.path() / "my-client" / "8 D.ico"));

    // A name capture cannot use is refused before anything is written.
    window.findChild<QComboBox*>(QStringLiteral("layoutName"))->setEditText("default");
    EXPECT_FALSE(window.Save());
    EXPECT_TRUE(window.Status().startsWith("Not saved: ")) << window.Status().toStdString();
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    felthawk::TempFolder home;  // the per-user folders stay inside the test
    ::setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
