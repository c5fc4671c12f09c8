// Where every control of the main window stands. The window was laid out in
// twips, 15 to a pixel, and we keep those numbers so they can be checked
// against the design one by one; Px() turns them into pixels.
#pragma once

#include <array>

#include <QRect>

namespace felthawk {

constexpr int kTwipsPerPixel = 15;
constexpr int Px(int twips) {
    return (twips + kTwipsPerPixel / 2) / kTwipsPerPixel;
}
constexpr int Twips(int pixels) {
    return pixels * kTwipsPerPixel;
}

inline QRect TwipRect(int left, int top, int width, int height) {
    return QRect(Px(left), Px(top), Px(width), Px(height));
}

// The window.
constexpr int kFormWidth = 10110;
constexpr int kFormInnerHeight = 7995;
constexpr int kFormHeight = 8655;  // outer height: caption and menu bar included
constexpr int kFormChromeHeight = kFormHeight - kFormInnerHeight;

// Every card picture, in the deck and on the table.
constexpr int kCardWidth = 270;
constexpr int kCardHeight = 465;

// The deck: four rows of thirteen, in the order they stand on the screen.
// Rank r stands in column r - 2.
enum DeckRow : int { kSpadesRow = 0, kHeartsRow = 1, kClubsRow = 2, kDiamondsRow = 3 };
constexpr int kDeckRows = 4;
constexpr int kLowRank = 2;
constexpr int kHighRank = 14;
constexpr std::array<int, kDeckRows> kDeckRowTop{1905, 2520, 3120, 3720};
constexpr std::array<char, kDeckRows> kDeckRowSuit{'S', 'H', 'C', 'D'};
constexpr std::array<const char*, kDeckRows> kDeckRowName{"iss", "IH", "IC", "ID"};
constexpr int kDeckFirstLeft = 5370;
constexpr int kDeckColumnStep = 345;

// The spade row's 3 and 4 were nudged by hand in the design and stayed so.
constexpr int DeckLeft(int row, int rank) {
    if (row == kSpadesRow && rank == 3) return 5700;
    if (row == kSpadesRow && rank == 4) return 6075;
    return kDeckFirstLeft + (rank - kLowRank) * kDeckColumnStep;
}

// The seven cells IM(1)..IM(7); the first two move with the user's seat.
constexpr int kCellCount = 7;
constexpr std::array<int, kCellCount> kCellLeft{3900, 4200, 4215, 4537, 4859, 5181, 5505};
constexpr std::array<int, kCellCount> kCellTop{4845, 4845, 5940, 5940, 5940, 5940, 5940};
constexpr int kHoleCardGap = 300;  // IM(2) stands this far right of IM(1)

// The frame drawn round the five community cards on the table picture.
constexpr QRect kCommunityFrame{4140, 5865, 1710, 615};

// The compact view's card images ITEMP(0)..ITEMP(6) and its backdrop.
constexpr std::array<int, kCellCount> kTempLeft{3885, 4200, 5235, 5550, 5880, 6195, 6525};
constexpr int kTempTop = 285;
constexpr int kSmallWidth = 10080;
constexpr int kSmallHeight = 990;
constexpr int kSmallExtraHeight = 80;  // the compact window is the strip plus this
// The strip's advice, two lines beside the cards, and its strength row.
constexpr int kSmallAdviceTop = 150;
constexpr int kSmallAdviceWidth = 2430;
constexpr int kSmallAdviceHeight = 480;
constexpr int kSmallAdvicePixels = 12;
constexpr int kSmallMeTop = 660;

// The results panel: one row per hand class.
constexpr int kLabelHeight = 195;
constexpr int kTallLabelHeight = 240;
constexpr std::array<int, 8> kClassRowTop{1905, 2175, 2445, 2700, 2970, 3240, 3510, 3780};
constexpr std::array<int, 8> kChanceTop{1920, 2190, 2460, 2715, 2985, 3255, 3525, 3795};
constexpr std::array<int, 8> kBlankedTop{1935, 2205, 2475, 2730, 3000, 3270, 3540, 3810};
constexpr int kClassLeft = 495;
constexpr int kClassWidth = 2200;
constexpr int kChanceLeft = 2775;
constexpr int kChanceWidth = 1300;
constexpr int kBlankedLeft = 4245;
constexpr int kBlankedWidth = 1000;
constexpr int kWinRowTop = 4110;

// The red gauge l_Temp.
constexpr int kGaugeX1 = 900;
constexpr int kGaugeY1 = 1710;
constexpr int kGaugeY2 = 1725;
constexpr int kGaugeWidth = 2;

// Buttons in the top band, and the banner box.
constexpr int kButtonSize = 480;
constexpr QPoint kImage1At{315, 105};
constexpr QPoint kImage2At{9540, 120};
constexpr QPoint kImSpAt{870, 120};
constexpr int kPictureLeft = 1530, kPictureTop = 90, kPictureWidth = 7035, kPictureHeight = 915;
constexpr int kSmallPictureLeft = 7065, kSmallPictureTop = 165, kSmallPictureWidth = 2400,
              kSmallPictureHeight = 600;

// The held-transparency band: a press above this line acts.
constexpr int kTopBand = 1140;

// Seats, clockwise from the top left. The anchor is where the seat's picture
// (or, for the user's seat, the first hole card) goes; dl is the place of the
// dealer button at that seat.
struct SeatPlace {
    int anchorX, anchorY;
    int dealerLeft, dealerTop;
};
constexpr std::array<SeatPlace, 10> kSeatPlaces{{
    {3930, 4830, 4065, 5565},
    {5895, 4830, 5940, 5565},
    {7440, 5055, 7125, 5745},
    {8415, 5955, 7740, 6030},
    {7440, 7050, 7140, 6390},
    {5895, 7245, 5970, 6510},
    {3930, 7245, 4080, 6525},
    {2310, 7050, 2820, 6375},
    {1080, 5955, 2130, 6030},
    {2310, 5055, 2805, 5745},
}};
constexpr int kSeatPictureWidth = 600;
constexpr int kSeatPictureHeight = 465;
constexpr int kDealerSize = 210;
constexpr int kMeWidth = 720;
constexpr int kMeHeight = 270;

}  // namespace felthawk
