// The equity line: worked out off the window's thread, restarted on every
// change, and the seats' ranges behind it.
#include <QSignalSpy>
#include <QTest>

#include "board/equity_line.h"
#include "equity/table_equity.h"
#include "tests/board/board_fixture.h"

namespace felthawk::testing {
namespace {

// What the line must read once the window's current table is worked out,
// from the library directly.
QString Expected(const frmFelthawk& form, const std::array<std::string, 10>& ranges) {
    std::array<std::string, equity::kTableCells> cells;
    std::array<char, equity::kTableSeats> seats;
    for (int i = 0; i < equity::kTableCells; ++i) cells[i] = form.mCards[i];
    for (int i = 0; i < equity::kTableSeats; ++i) seats[i] = form.State().gSeats[i];
    const auto result = equity::ComputeEquity(equity::TableRequest(cells, seats, ranges));
    return QStringLiteral("Equity %1 %").arg(result.equity * 100, 0, 'f', 1);
}

class EquityLineTest : public BoardTest {
  protected:
    // Waits for the line to settle on a finished result.
    QString Settled() {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !form->Equity()->Busy(); }, 20000));
        return Text("lblEquity");
    }
};

TEST_F(EquityLineTest, FollowsEveryChangeWithoutHoldingTheWindow) {
    Start();
    EXPECT_EQ(Text("lblEquity"), QString()) << "no hole cards, no line";
    for (int seat = 2; seat < kSeatCount; ++seat) form->SetSeatState(seat, QStringLiteral("F"));
    Type("AHAS");
    // The figure is not worked out on the window's thread: right after the
    // change the line says it is on its way.
    EXPECT_EQ(Text("lblEquity"), QStringLiteral("Equity: ..."));
    const std::array<std::string, 10> random{};
    EXPECT_TRUE(Settled().startsWith(Expected(*form, random)));
    EXPECT_TRUE(Text("lblEquity").endsWith(QStringLiteral("v 1 opponent")));
    EXPECT_TRUE(form->findChild<QLabel*>(QStringLiteral("l_Me"))
                    ->toolTip()
                    .contains(QStringLiteral("exact")));

    // Changes in a row: only the last table's figure is shown.
    Type("KD");
    Type("7C");
    Type("2H");
    form->SetSeatState(5, QStringLiteral("H"));
    const QString last = Settled();
    EXPECT_TRUE(last.startsWith(Expected(*form, random))) << last.toStdString();
    EXPECT_TRUE(last.endsWith(QStringLiteral("v 2 opponents")));

    // The strip shows the same line while capture runs.
    form->mCaptureOn = true;
    form->ApplyCaptureMode();
    auto* strip = form->findChild<QLabel*>(QStringLiteral("lblEquitySmall"));
    EXPECT_TRUE(strip->isVisibleTo(form.get()));
    EXPECT_EQ(strip->text(), last);
}

TEST_F(EquityLineTest, SeatRangesAreCheckedKeptAndUsed) {
    Start();
    for (int seat = 2; seat < kSeatCount; ++seat) form->SetSeatState(seat, QStringLiteral("F"));
    Type("AHAS");
    Settled();

    // A malformed range is refused with its place and asked again.
    dialogs.answers = {QStringLiteral("KK,AKx"), QStringLiteral("KdKc")};
    form->SeatMouseDown(0, kRightButton);
    const int seat =
        form->SeatImage(0)->property("Tag").toString().section(QLatin1Char(','), 1).toInt();
    Action(*form, "mnuRange")->trigger();
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_TRUE(dialogs.messages[0].contains(QStringLiteral("position 6")));
    EXPECT_EQ(form->Equity()->Range(seat), QStringLiteral("KdKc"));
    EXPECT_TRUE(form->SeatImage(0)->toolTip().contains(QStringLiteral("Range: KdKc")));
    std::array<std::string, 10> ranges{};
    ranges[seat] = "KdKc";
    EXPECT_TRUE(Settled().startsWith(QStringLiteral("Equity 81.3 %")));
    EXPECT_EQ(Expected(*form, ranges), QStringLiteral("Equity 81.3 %"));

    // The range stays for the next hand; a board that empties it says so.
    form->NextHand();
    Type("KDKC");
    EXPECT_EQ(Settled(), QStringLiteral("Equity: seat %1's range has no hand left beside the "
                                        "known cards")
                             .arg(seat + 1));

    // Cancel keeps the range; an empty answer makes the seat random again.
    dialogs.answers.clear();
    Action(*form, "mnuRange")->trigger();
    EXPECT_EQ(form->Equity()->Range(seat), QStringLiteral("KdKc"));
    dialogs.answers = {QString()};
    Action(*form, "mnuRange")->trigger();
    EXPECT_EQ(form->Equity()->Range(seat), QString());
    EXPECT_TRUE(Settled().startsWith(QStringLiteral("Equity ")));
}

}  // namespace
}  // namespace felthawk::testing
