// Seats, the dealer button and the seat menus.
#include <QAction>
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

TEST_F(BoardTest, StartSeatsTheUserAtZeroAndTheButtonAtTwo) {
    Start();
    EXPECT_EQ(Seats(*form), "MHHHHHHHHH");
    EXPECT_EQ(form->State().gDealerSeat, 2);
    EXPECT_EQ(form->mPreviousSeat, 9);
    // Nine seat images for the nine other seats, in seat order.
    for (int k = 0; k < kSeatCount - 1; ++k) {
        EXPECT_EQ(form->SeatImage(k)->property("Tag").toString(),
                  QStringLiteral("H,%1").arg(k + 1));
        EXPECT_EQ(form->SeatImage(k)->pos(),
                  QPoint(Px(kSeatPlaces[k + 1].anchorX), Px(kSeatPlaces[k + 1].anchorY)));
    }
    EXPECT_EQ(form->CellImage(1)->pos(), QPoint(Px(3930), Px(4830)));
}

TEST_F(BoardTest, NextHandMovesTheButtonAndBringsFoldedSeatsBack) {
    struct Case {
        int16_t dealer;
        int16_t after;
    };
    for (const Case& c : {Case{9, 0}, Case{0, 1}, Case{4, 5}}) {
        Start();
        form->State().gDealerSeat = c.dealer;
        form->State().gSeats[3] = kSeatFolded;
        form->State().gSeats[5] = kSeatEmpty;
        form->NextHand();
        EXPECT_EQ(form->State().gDealerSeat, c.after);
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

    // On the flop the folded and empty seats count.
    Type("QSJS2D");
    const QString allIn = Text("l_Me");
    for (int seat = 1; seat < kSeatCount; ++seat) {
        form->SeatMouseDown(ImageOfSeat(*form, seat), kLeftButton);  // fold all
    }
    EXPECT_EQ(Seats(*form), "MFFFFFFFFF");
    CalcState alone;
    for (int seat = 1; seat < kSeatCount; ++seat) alone.gSeats[seat] = kSeatFolded;
    EXPECT_EQ(Text("l_Me").toStdString(), RecalculateHand(alone, form->mCards).me);
    EXPECT_NE(Text("l_Me"), allIn);
}

TEST_F(BoardTest, TheSeatMenuIsTickedForTheSeatAndActsOnIt) {
    Start();
    const int k = ImageOfSeat(*form, 2);  // the dealer's seat
    form->SeatMouseDown(k, kRightButton);
    EXPECT_TRUE(Action(*form, "mnuIn")->isChecked());
    EXPECT_TRUE(Action(*form, "mnuDealer")->isChecked());
    for (const char* name : {"mnuFold", "mnuEmpty", "mnuMe"}) {
        EXPECT_FALSE(Action(*form, name)->isChecked()) << name;
        EXPECT_TRUE(Action(*form, name)->isEnabled()) << name;
    }
    Action(*form, "mnuEmpty")->trigger();
    EXPECT_EQ(Seats(*form), "MHEHHHHHHH");

    form->SeatMouseDown(ImageOfSeat(*form, 2), kRightButton);
    EXPECT_TRUE(Action(*form, "mnuEmpty")->isChecked());
    EXPECT_FALSE(Action(*form, "mnuIn")->isChecked());
    Action(*form, "mnuFold")->trigger();
    EXPECT_EQ(Seats(*form), "MHFHHHHHHH");

    // A seat that is not the dealer's has no tick on "Dealer"; choosing it
    // moves the button there.
    form->SeatMouseDown(ImageOfSeat(*form, 7), kRightButton);
    EXPECT_FALSE(Action(*form, "mnuDealer")->isChecked());
    Action(*form, "mnuDealer")->trigger();
    EXPECT_EQ(form->State().gDealerSeat, 7);
    form->findChild<QMenu*>(QStringLiteral("mnuMain"))->close();
}

TEST_F(BoardTest, TheMarkerMenuOffersOnlyDealer) {
    Start();
    form->MeMouseDown(kLeftButton);
    EXPECT_FALSE(form->findChild<QMenu*>(QStringLiteral("mnuMain"))->isVisible());
    form->MeMouseDown(kRightButton);
    for (const char* name : {"mnuIn", "mnuFold", "mnuEmpty", "mnuMe"}) {
        EXPECT_FALSE(Action(*form, name)->isEnabled()) << name;
    }
    EXPECT_TRUE(Action(*form, "mnuDealer")->isEnabled());
    Action(*form, "mnuDealer")->trigger();
    EXPECT_EQ(form->State().gDealerSeat, 0);
    form->findChild<QMenu*>(QStringLiteral("mnuMain"))->close();
}

TEST_F(BoardTest, MeMovesTheHoleCardsAndThePreviousSeat) {
    struct Case {
        int seat;
        int16_t previous;
    };
    for (const Case& c : {Case{3, 2}, Case{9, 8}, Case{1, 0}}) {
        Start();
        Type("AHKH");
        form->SeatMouseDown(ImageOfSeat(*form, c.seat), kRightButton);
        Action(*form, "mnuMe")->trigger();
        std::string seats(kSeatCount, kSeatIn);
        seats[c.seat] = kSeatMe;
        EXPECT_EQ(Seats(*form), seats);
        EXPECT_EQ(form->mPreviousSeat, c.previous);
        const SeatPlace& place = kSeatPlaces[c.seat];
        EXPECT_EQ(form->CellImage(1)->pos(), QPoint(Px(place.anchorX), Px(place.anchorY)));
        EXPECT_EQ(form->CellImage(2)->pos(), QPoint(Px(place.anchorX + 300), Px(place.anchorY)));
        EXPECT_EQ(form->CellImage(1)->GetPicture().name, "AH") << "the cards move with the seat";
        EXPECT_EQ(form->SeatImage(0)->property("Tag").toString(), QStringLiteral("H,0"));
        form->findChild<QMenu*>(QStringLiteral("mnuMain"))->close();
    }
    // Back to seat 0: the previous seat is 9 again.
    form->SeatMouseDown(ImageOfSeat(*form, 0), kRightButton);
    Action(*form, "mnuMe")->trigger();
    EXPECT_EQ(form->mPreviousSeat, 9);
}

TEST_F(BoardTest, ClickingADealerPlaceMovesTheButton) {
    Start();
    form->DealerClick(6);
    EXPECT_EQ(form->State().gDealerSeat, 6);
    std::vector<int> shown;
    for (PictureBox* place : form->findChildren<PictureBox*>(QStringLiteral("dl"))) {
        if (place->isVisibleTo(form.get())) shown.push_back(place->Index());
    }
    EXPECT_EQ(shown, std::vector<int>{6});
}

}  // namespace
}  // namespace felthawk::testing
