// Where the cards stand in the poker client's window, and how the capture
// names its files. All points are pixels of the client's whole window, frame
// included, for the one client layout that capture knows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "cards/card_codes.h"

namespace felthawk {

struct PixelPoint {
    int x = 0;
    int y = 0;
    bool operator==(const PixelPoint&) const = default;
};

// One point per seat of the client's table, seats 0..9 clockwise from the
// top left; hole cards are read near these points.
constexpr std::array<PixelPoint, kSeatCount> kSeatPoints{{
    {473, 33},
    {658, 61},
    {711, 187},
    {672, 327},
    {452, 378},
    {258, 378},
    {59, 325},
    {17, 183},
    {73, 61},
    {261, 32},
}};

// The strip cut out of each card: its top left corner with the rank and suit.
constexpr int kCropWidth = 15;
constexpr int kCropHeight = 35;

// Board cards stand side by side from this point on.
constexpr PixelPoint kFirstBoardCrop{256, 175};
constexpr int kBoardCropStep = 59;
// The second hole card lies 20 pixels right of the first; both are read one
// pixel right of and four above the seat point.
constexpr int kHoleCropStep = 20;
constexpr PixelPoint kHoleCropOffset{1, -4};

// The picture box a crop is painted into, at its top left. The icon is cut
// from its top left 32 by 32 pixels, so part of the background belongs to
// every icon, which is why the colour is fixed.
constexpr int kPictureBoxWidth = 48;
constexpr int kPictureBoxHeight = 59;
constexpr uint32_t kPictureBoxBackground = 0xF0F0F0;

// Capture files and templates are 1-bit icons.
constexpr int kCaptureIconDepth = 1;

// The seat before `meSeat`, 9 for seat 0: the client draws the user's hole
// cards at the point that the board numbers one seat earlier.
constexpr int PreviousSeat(int meSeat) {
    return meSeat == 0 ? kSeatCount - 1 : meSeat - 1;
}

// Top left of the crop for table cell `cell` (0, 1 hole; 2..6 board).
// `previousSeat` is the seat before the user's; other values give the point
// of seat 0.
PixelPoint CropOrigin(int cell, int previousSeat);

// The capture file of a cell: t1..t5 for the board cards, t6 and t7 for the
// hole cards.
std::string CaptureFileName(int cell);

// The names a user or a tool gives the cells: hole1, hole2, flop1, flop2,
// flop3, turn, river. -1 for any other name.
int CellFromSlotName(std::string_view name);
std::string_view SlotName(int cell);

// Templates are walked suit by suit in this order, each from 2 to the ace.
inline constexpr std::string_view kTemplateSuits = "DCHS";
inline constexpr std::string_view kTemplateRanks = "23456789TJQKA";
constexpr int kTemplateCount = 52;

// The card text of template number i of the walk, e.g. "2D" for 0.
std::string TemplateCard(int index);
// The template file of a card text: "AS" gives "A S.ico".
std::string TemplateFileName(std::string_view card);

}  // namespace felthawk
