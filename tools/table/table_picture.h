// The picture of the test table: felt, seats, and the cards it is given,
// drawn where capture reads them.
#pragma once

#include <QImage>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "capture/client_layout.h"
#include "capture/table_layout.h"
#include "cards/recalculate.h"

namespace felthawk {

constexpr int kTableWidth = 780;
constexpr int kTableHeight = 440;

// How the table draws a card. The corner index is the rank glyph and the
// suit glyph, each 5 by 7 dots; capture reads it from the card's top left.
struct CardStyle {
    int holeWidth = 0;
    int boardWidth = 0;
    int height = 0;
    int dot = 0;        // pixels to a dot of the index
    PixelPoint rankAt;  // where the rank glyph starts inside the card
    PixelPoint suitAt;  // and the suit glyph
    PixelPoint pipAt;   // the big pip in the middle, 4 pixels to a dot
    QRgb face = 0;
    QRgb edge = 0;
    std::array<QRgb, 4> ink{};  // by suit letter "SHCD"
    // The part of the card a user would frame as its corner: the index.
    int placeWidth = 0;
    int placeHeight = 0;
};

// One table the program can draw: its size, where its seats and cards are
// and how its cards look.
struct TableDesign {
    std::string_view name;
    int width = 0;
    int height = 0;
    CardStyle cards;
    // The seat discs; with `heroAtSeat` the user's cards lie at the disc of
    // the seat before the user's, `holeOffset` from its point and
    // `holeStep` apart.
    std::array<PixelPoint, kSeatCount> seats{};
    bool heroAtSeat = true;
    PixelPoint holeOffset;
    int holeStep = 0;
    // Without `heroAtSeat`, the user's cards always lie here.
    std::array<PixelPoint, 2> heroCards{};
    std::array<PixelPoint, 5> boardCards{};
    int seatsShown = kSeatCount;
    QRgb felt = 0;
};

// The designs by name: "default" (the points capture always knew),
// "wide" (a larger window, cards elsewhere) and "six-seat" (six seats,
// the user's cards at the bottom whatever the seat, larger four-colour
// cards with the suit beside the rank). Nothing for another name.
const TableDesign* FindTableDesign(std::string_view name);
const TableDesign& DefaultTableDesign();
std::vector<std::string_view> TableDesignNames();

// Top left of the card in table cell `cell` (0, 1 hole; 2..6 board).
PixelPoint CardOrigin(const TableDesign& design, int cell, int meSeat);
// The corner of that card that shows its index, as a user calibrating the
// table would frame it.
CropRect CardIndexPlace(const TableDesign& design, int cell, int meSeat);

// A cell that shows a card lying face down: there, but unreadable.
inline constexpr std::string_view kFaceDown = "XX";

// Seven comma-separated cells, each empty, a card such as "AS" or "XX";
// nothing, with a message in `error`, for anything else or for a card that
// is dealt twice.
std::optional<TextCells> ParseTableCells(std::string_view text, std::string& error);

// The whole table. With the default design the user's hole cards lie at
// the seat before `meSeat`, the seat whose point capture reads them by.
QImage DrawTable(const TextCells& cells, int meSeat,
                 const TableDesign& design = DefaultTableDesign());

}  // namespace felthawk
