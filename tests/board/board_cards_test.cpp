// Cards on the board by mouse, drop and keys, checked against the engine run
// on the same seats and cells.
#include <functional>

#include "board/gauge_line.h"
#include "cards/suggestion.h"
#include "tests/board/board_fixture.h"

namespace felthawk::testing {
namespace {

using Cells7 = std::vector<std::string>;

DisplayModel EngineView(const frmFelthawk& form) {
    CalcState state;
    for (int seat = 0; seat < kSeatCount; ++seat) state.gSeats[seat] = form.State().gSeats[seat];
    state.gDealerSeat = form.State().gDealerSeat;
    return RecalculateHand(state, form.mCards);
}

TEST_F(BoardTest, PreFlopHandGoesFromClickToAdvice) {
    Start();
    Click(kSpadesRow, 14, kRightButton);
    EXPECT_EQ(Cells(), (Cells7{"AS", "", "", "", "", "", ""}));
    EXPECT_EQ(form->CellImage(1)->GetPicture().name, "AS");
    EXPECT_EQ(form->DeckImage(kSpadesRow, 14)->GetPicture().name, kBlankPicture);
    EXPECT_EQ(Text("lP", 0), "") << "one card shows nothing";
    EXPECT_EQ(Text("l_Me"), "");

    Click(kSpadesRow, 13, kRightButton);
    const DisplayModel expected = EngineView(*form);
    ASSERT_EQ(expected.stage, kPreFlopStage);
    ASSERT_TRUE(expected.hasStrength);
    for (int i = 0; i < kHandClassCount; ++i) {
        EXPECT_EQ(Text("lP", i).toStdString(), expected.chances[i]) << "row " << i;
    }
    EXPECT_EQ(Text("l_Me").toStdString(), std::to_string(expected.strength) + " %");
    EXPECT_EQ(
        Text("lblSuggestion").toStdString(),
        std::string(*SuggestionText(static_cast<uint8_t>(expected.strength), kSuggestPreFlop)));
    EXPECT_DOUBLE_EQ(form->Gauge()->X2(), GaugeEndPoint(expected.strength, 31));
    EXPECT_GT(form->Gauge()->X2(), 900.0);
    EXPECT_EQ(Text("LBLPERCENTSMALL"), Text("l_Me"));
    EXPECT_EQ(Text("LBLSUG"), Text("lblSuggestion"));
}

TEST_F(BoardTest, DropOnAFilledCellReplacesItWithoutRecalculating) {
    Start();
    Type("ASKS");
    const QString before = Text("l_Me");
    ASSERT_FALSE(before.isEmpty());

    form->DeckMouseDown(kClubsRow, 2, kLeftButton, 30, 45);
    EXPECT_TRUE(form->DeckImage(kClubsRow, 2)->Dragging());
    form->CellDragDrop(1, form->DeckImage(kClubsRow, 2));
    form->DeckMouseUp(kClubsRow, 2, kLeftButton, 180, 60);  // places nothing more
    EXPECT_FALSE(form->DeckImage(kClubsRow, 2)->Dragging());
    EXPECT_EQ(Cells(), (Cells7{"2C", "KS", "", "", "", "", ""}));
    EXPECT_EQ(form->CellImage(1)->GetPicture().name, "2C");
    EXPECT_EQ(Text("l_Me"), before) << "no recalculation on a drop";
    EXPECT_EQ(form->DeckImage(kSpadesRow, 14)->GetPicture().name, kBlankPicture)
        << "the overwritten ace's slot stays blank";
    form->RecalculateHand();
    EXPECT_EQ(Text("l_Me").toStdString(), EngineView(*form).me);

    Click(kHeartsRow, 10, kLeftButton);  // a left click without movement places
    EXPECT_EQ(Cells()[2], "TH");

    // A new hand gives every deck slot its face back, the dropped-over ace's
    // too, so no card is placeable and invisible.
    form->NextHand();
    int faces = 0;
    for (int row = 0; row < kDeckRows; ++row) {
        for (int rank = kLowRank; rank <= kHighRank; ++rank) {
            const QString card = QString::fromStdString(Trim(RankText(rank))) + kDeckRowSuit[row];
            faces += form->DeckImage(row, rank)->GetPicture().name == card;
        }
    }
    EXPECT_EQ(faces, 52);
    Type("AS");
    EXPECT_EQ(form->CellImage(1)->GetPicture().name, "AS");
}

TEST_F(BoardTest, TogglingOffLeavesAHoleThatTheNextCardFills) {
    Start();
    for (int rank : {14, 13, 12, 13}) Click(kSpadesRow, rank, kRightButton);
    EXPECT_EQ(Cells(), (Cells7{"AS", "", "QS", "", "", "", ""}));
    EXPECT_EQ(form->DeckImage(kSpadesRow, 13)->GetPicture().name, "KS");
    EXPECT_EQ(form->CellImage(2)->GetPicture().name, kBlankPicture);
    EXPECT_EQ(Text("l_Me"), "") << "a gap selects no stage";
    EXPECT_FALSE(Text("lP", 0).isEmpty()) << "but two known cards show chances";

    Click(kDiamondsRow, 9, kRightButton);
    EXPECT_EQ(Cells(), (Cells7{"AS", "9D", "QS", "", "", "", ""}));
}

TEST_F(BoardTest, TheMouseSettingMapsTheButtons) {
    struct Case {
        const char* mouse;
        int button;
        bool toggles, drags;
    };
    const Case cases[] = {
        {"LEFT", kLeftButton, false, true},    {"LEFT", kRightButton, true, false},
        {"LEFT", kMiddleButton, false, false}, {"RIGHT", kLeftButton, true, false},
        {"RIGHT", kRightButton, false, true},  {"RIGHT", kMiddleButton, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.mouse) + " button " + std::to_string(c.button));
        StoreSettings(QStringLiteral("80"), QString::fromLatin1(c.mouse));
        Start();
        form->DeckMouseDown(kSpadesRow, 7, c.button, 15, 15);
        EXPECT_EQ(Cells()[0] == "7S", c.toggles);
        EXPECT_EQ(form->DeckImage(kSpadesRow, 7)->Dragging(), c.drags);
    }
}

TEST_F(BoardTest, TypedRanksAndSuitsPlaceCards) {
    const Cells7 none(7, "");
    const std::pair<std::vector<int>, Cells7> cases[] = {
        {{'1', '0', 'D'}, {"TD", "", "", "", "", "", ""}},
        {{'1', 'S'}, none},
        {{'0', 'H'}, none},
        {{'A', 'S', 'H'}, {"AS", "AH", "", "", "", "", ""}},
        {{'9', '1', '0', 'C'}, {"TC", "", "", "", "", "", ""}},
        {{'Q', 'X', 'C'}, {"QC", "", "", "", "", "", ""}},
        {{96 + 7, 'C', 96 + 1, 96 + 0, 'S'}, {"7C", "TS", "", "", "", "", ""}},
        {{'K', 'D', 'Q', 'D', 8}, {"KD", "", "", "", "", "", ""}},
        {{8}, none},
    };
    for (const auto& [keys, cells] : cases) {
        Start();
        for (int key : keys) form->KeyDown(key);
        EXPECT_EQ(Cells(), cells) << "keys starting " << keys.front();
    }
}

// The flop's message comes once per user action, although a click runs the
// driver two or three times.
TEST_F(BoardTest, TheFlopSetMessageShowsOncePerAction) {
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"7S7H7DKC", [this] { Type("2H"); }},
        {"7S7H7DKC", [this] { Click(kHeartsRow, 2, kLeftButton); }},
        {"7S7H7DKC", [this] { Click(kHeartsRow, 2, kRightButton); }},
        {"7S7H7DKC2H5S", [this] { Click(kSpadesRow, 5, kRightButton); }},
        {"7S7H7DKC2H5S", [this] { form->KeyDown(8); }},
        {"7S7H7DKC2H5S", [this] { form->CellMouseDown(6, kLeftButton); }},
    };
    for (const auto& [typed, act] : cases) {
        SCOPED_TRACE(typed);
        Start();
        Type(typed);
        dialogs.messages.clear();
        act();
        EXPECT_EQ(dialogs.messages, std::vector<QString>{QStringLiteral("one high and one low")});
        EXPECT_FALSE(Text("l_Me").isEmpty());
    }
}

// An eighth card stays in the deck; Backspace, a cell press and F2 take cards back.
TEST_F(BoardTest, ARiverHandMatchesTheEngineAndCardsGoBack) {
    Start();
    Type("ASKSQSJS2D9H3CAC");
    EXPECT_EQ(form->DeckImage(kClubsRow, 14)->GetPicture().name, "AC");
    ASSERT_EQ(EngineView(*form).stage, kRiverStage);
    EXPECT_EQ(Text("lblSuggestion").toStdString(), EngineView(*form).suggestion);
    form->KeyDown(8);
    EXPECT_EQ(Cells()[6], "");
    EXPECT_EQ(Text("l_Me").toStdString(), EngineView(*form).me) << "the turn is shown";
    form->CellMouseDown(2, kMiddleButton);
    EXPECT_EQ(Cells(), (Cells7{"AS", "", "QS", "JS", "2D", "9H", ""}));
    EXPECT_EQ(form->DeckImage(kSpadesRow, 13)->GetPicture().name, "KS");

    form->KeyDown(113);  // F2
    EXPECT_EQ(Cells(), Cells7(7, ""));
    for (int row = 0; row < kDeckRows; ++row) {
        for (int rank = kLowRank; rank <= kHighRank; ++rank) {
            EXPECT_NE(form->DeckImage(row, rank)->GetPicture().name, kBlankPicture);
        }
    }
    EXPECT_EQ(Text("lblSuggestion"), "");
    EXPECT_DOUBLE_EQ(form->Gauge()->X2(), 900.0);
}

}  // namespace
}  // namespace felthawk::testing
