// Seats, the dealer button and the seat menus.
#include <QMenu>

#include "tests/board/board_fixture.h"

namespace felthawk::testing {
namespace {

std::string Seats(const frmFelthawk& form) {
    std::string seats;
    for (int i = 0; i < kSeatCount; ++i) seats += form.State().gSeats[i];
    return seats;
}

// The io image that shows a seat, found by its tag.
int ImageOfSeat(const frmFelthawk& form, int seat) {
    for (int k = 0; k < kSeatCount - 1; ++k) {
        if (form.SeatImage(k)->property("Tag").toString().section(QLatin1Char(','), 1).toInt() ==
            seat) {
            return k;
        }
    }
    ADD_FAILURE() << "no image for seat " << seat;
    return 0;
}

TEST_F(BoardTest, NextHandMovesTheButtonAndBringsFoldedSeatsBack) {
    Start();
    EXPECT_EQ(Seats(*form), "MHHHHHHHHH");
    EXPECT_EQ(form->State().gDealerSeat, 2);
    EXPECT_EQ(form->mPreviousSeat, 9);
    for (const auto& [dealer, after] : std::vector<std::pair<int, int>>{{9, 0}, {0, 1}, {4, 5}}) {
        Start();
        form->State().gDealerSeat = static_cast<int16_t>(dealer);
        form->State().gSeats[3] = kSeatFolded;
        form->State().gSeats[5] = kSeatEmpty;
        form->NextHand();
        EXPECT_EQ(form->State().gDealerSeat, after);
        EXPECT_EQ(Seats(*form), "MHHHHEHHHH");
        EXPECT_EQ(form->SeatImage(2)->GetPicture().name, "iHand") << "seat 3 drawn in again";
    }
}

TEST_F(BoardTest, ClickingASeatCyclesItAndRecalculates) {
    Start();
    Type("ASKS");
    const QString preFlop = Text("l_Me");
    const int k = ImageOfSeat(*form, 4);
    const char* pictures[] = {"ifold", "iempty", "iHand"};
    const char* expected[] = {"MHHHFHHHHH", "MHHHEHHHHH", "MHHHHHHHHH"};
    for (int step = 0; step < 3; ++step) {
        form->SeatMouseDown(k, kLeftButton);
        EXPECT_EQ(Seats(*form), expected[step]);
        EXPECT_EQ(form->SeatImage(k)->GetPicture().name, pictures[step]);
        EXPECT_EQ(Text("l_Me"), preFlop) << "seats do not change the pre-flop figure";
    }

    Type("QSJS2D");  // on the flop the folded seats count
    const QString allIn = Text("l_Me");
    for (int seat = 1; seat < kSeatCount; ++seat) {
        form->SeatMouseDown(ImageOfSeat(*form, seat), kLeftButton);
    }
    EXPECT_EQ(Seats(*form), "MFFFFFFFFF");
    CalcState alone;
    for (int seat = 1; seat < kSeatCount; ++seat) alone.gSeats[seat] = kSeatFolded;
    EXPECT_EQ(Text("l_Me").toStdString(), RecalculateHand(alone, form->mCards).me);
    EXPECT_NE(Text("l_Me"), allIn);
}

TEST_F(BoardTest, TheSeatMenusAreTickedForTheSeatAndActOnIt) {
    Start();
    QMenu* menu = form->findChild<QMenu*>(QStringLiteral("mnuMain"));
    form->SeatMouseDown(ImageOfSeat(*form, 2), kRightButton);  // the dealer's seat
    EXPECT_TRUE(Action(*form, "mnuIn")->isChecked());
    EXPECT_TRUE(Action(*form, "mnuDealer")->isChecked());
    for (const char* name : {"mnuFold", "mnuEmpty", "mnuMe"}) {
        EXPECT_FALSE(Action(*form, name)->isChecked()) << name;
    }
    Action(*form, "mnuEmpty")->trigger();
    EXPECT_EQ(Seats(*form), "MHEHHHHHHH");
    form->SeatMouseDown(ImageOfSeat(*form, 2), kRightButton);
    EXPECT_TRUE(Action(*form, "mnuEmpty")->isChecked());
    EXPECT_FALSE(Action(*form, "mnuIn")->isChecked());
    Action(*form, "mnuFold")->trigger();
    EXPECT_EQ(Seats(*form), "MHFHHHHHHH");

    form->SeatMouseDown(ImageOfSeat(*form, 7), kRightButton);
    EXPECT_FALSE(Action(*form, "mnuDealer")->isChecked());
    Action(*form, "mnuDealer")->trigger();
    EXPECT_EQ(form->State().gDealerSeat, 7);
    menu->close();

    // The user's marker: the right button offers only "Dealer"; a seat's menu
    // has everything again.
    form->MeMouseDown(kLeftButton);
    EXPECT_FALSE(menu->isVisible());
    form->MeMouseDown(kRightButton);
    for (const char* name : {"mnuIn", "mnuFold", "mnuEmpty", "mnuMe"}) {
        EXPECT_FALSE(Action(*form, name)->isEnabled()) << name;
    }
    Action(*form, "mnuDealer")->trigger();
    EXPECT_EQ(form->State().gDealerSeat, 0);
    menu->close();
    form->SeatMouseDown(ImageOfSeat(*form, 5), kRightButton);
    EXPECT_TRUE(Action(*form, "mnuFold")->isEnabled());
    menu->close();

    form->DealerClick(6);  // only the chosen dealer place shows
    EXPECT_EQ(form->State().gDealerSeat, 6);
    std::vector<int> shown;
    for (PictureBox* place : form->findChildren<PictureBox*>(QStringLiteral("dl"))) {
        if (place->isVisibleTo(form.get())) shown.push_back(place->Index());
    }
    EXPECT_EQ(shown, std::vector<int>{6});
}

TEST_F(BoardTest, MeMovesTheHoleCardsAndThePreviousSeat) {
    for (const auto& [seat, previous] : std::vector<std::pair<int, int>>{{3, 2}, {1, 0}}) {
        Start();
        Type("AHKH");
        form->SeatMouseDown(ImageOfSeat(*form, seat), kRightButton);
        Action(*form, "mnuMe")->trigger();
        std::string seats(kSeatCount, kSeatIn);
        seats[seat] = kSeatMe;
        EXPECT_EQ(Seats(*form), seats);
        EXPECT_EQ(form->mPreviousSeat, previous);
        const SeatPlace& place = kSeatPlaces[seat];
        EXPECT_EQ(form->CellImage(1)->pos(), QPoint(Px(place.anchorX), Px(place.anchorY)));
        EXPECT_EQ(form->CellImage(1)->GetPicture().name, "AH") << "the cards move with the seat";
        form->findChild<QMenu*>(QStringLiteral("mnuMain"))->close();
    }
    form->SeatMouseDown(ImageOfSeat(*form, 0), kRightButton);  // back to seat 0
    Action(*form, "mnuMe")->trigger();
    EXPECT_EQ(form->mPreviousSeat, 9);
}

}  // namespace
}  // namespace felthawk::testing
