#include "tools/table/table_picture.h"

#include <QPainter>
#include <set>

#include "capture/client_layout.h"

namespace felthawk {
namespace {

// Glyphs of five columns, drawn two pixels to a dot so that every card's
// corner, rank over suit, differs from every other even in black and white.
using Glyph = std::array<std::string_view, 7>;

constexpr std::array<Glyph, 13> kRankGlyphs{{
    {".###.", "#...#", "....#", "...#.", "..#..", ".#...", "#####"},  // 2
    {"####.", "....#", "....#", ".###.", "....#", "....#", "####."},  // 3
    {"...#.", "..##.", ".#.#.", "#..#.", "#####", "...#.", "...#."},  // 4
    {"#####", "#....", "####.", "....#", "....#", "#...#", ".###."},  // 5
    {"..##.", ".#...", "#....", "####.", "#...#", "#...#", ".###."},  // 6
    {"#####", "....#", "...#.", "..#..", ".#...", ".#...", ".#..."},  // 7
    {".###.", "#...#", "#...#", ".###.", "#...#", "#...#", ".###."},  // 8
    {".###.", "#...#", "#...#", ".####", "....#", "...#.", ".##.."},  // 9
    {"#.###", "#.#.#", "#.#.#", "#.#.#", "#.#.#", "#.#.#", "#.###"},  // 10
    {"..###", "...#.", "...#.", "...#.", "#..#.", "#..#.", ".##.."},  // J
    {".###.", "#...#", "#...#", "#...#", "#.#.#", "#..#.", ".##.#"},  // Q
    {"#...#", "#..#.", "#.#..", "##...", "#.#..", "#..#.", "#...#"},  // K
    {"..#..", ".#.#.", "#...#", "#...#", "#####", "#...#", "#...#"},  // A
}};

// Suits in the order of the suit letters "SHCD".
constexpr std::string_view kSuitLetters = "SHCD";
constexpr std::array<Glyph, 4> kSuitGlyphs{{
    {"..#..", ".###.", "#####", "#####", "..#..", ".###.", ""},       // spades
    {"##.##", "#####", "#####", ".###.", "..#..", "", ""},            // hearts
    {".###.", ".###.", "##.##", "#####", "##.##", "..#..", ".###."},  // clubs
    {"..#..", ".###.", "#####", ".###.", "..#..", "", ""},            // diamonds
}};

constexpr QRgb kRail = qRgb(92, 52, 24);
constexpr QRgb kSeatDisc = qRgb(0, 70, 36);
constexpr QRgb kCardBack = qRgb(30, 60, 160);
constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kRed = qRgb(204, 0, 0);
constexpr QRgb kBlack = qRgb(20, 20, 20);
constexpr int kPipDot = 4;
constexpr int kRailWidth = 8;
constexpr int kFeltCorner = 150;
constexpr int kSeatRadius = 26;
constexpr PixelPoint kSeatDiscCentre{22, 28};

constexpr std::array<PixelPoint, 5> BoardRow(PixelPoint first, int step) {
    return {{{first.x, first.y},
             {first.x + step, first.y},
             {first.x + 2 * step, first.y},
             {first.x + 3 * step, first.y},
             {first.x + 4 * step, first.y}}};
}

// The client capture always knew: white cards whose index, rank over suit,
// starts at their top left; the user's cards beside the seat point.
constexpr TableDesign kDefaultDesign{
    .name = "default",
    .width = kTableWidth,
    .height = kTableHeight,
    .cards = {.holeWidth = 44,
              .boardWidth = 50,
              .height = 64,
              .dot = 2,
              .rankAt = {3, 3},
              .suitAt = {3, 20},
              .pipAt = {20, 28},
              .face = kWhite,
              .edge = qRgb(70, 70, 70),
              .ink = {kBlack, kRed, kBlack, kRed},
              .placeWidth = kCropWidth,
              .placeHeight = kCropHeight},
    .seats = kSeatPoints,
    .heroAtSeat = true,
    .holeOffset = kHoleCropOffset,
    .holeStep = kHoleCropStep,
    .boardCards = BoardRow(kFirstBoardCrop, kBoardCropStep),
    .felt = qRgb(0, 96, 48),
};

// The same cards on a larger table, every place elsewhere.
constexpr TableDesign kWideDesign{
    .name = "wide",
    .width = 960,
    .height = 560,
    .cards = kDefaultDesign.cards,
    .seats = {{{582, 42},
               {810, 78},
               {875, 238},
               {827, 416},
               {556, 481},
               {318, 481},
               {73, 414},
               {21, 233},
               {90, 78},
               {321, 41}}},
    .heroAtSeat = true,
    .holeOffset = {1, -4},
    .holeStep = 22,
    .boardCards = BoardRow({318, 236}, 66),
    .felt = qRgb(0, 88, 60),
};

// Six seats, the user's cards always at the bottom, larger cream cards in
// four colours with the suit beside the rank.
constexpr TableDesign kSixSeatDesign{
    .name = "six-seat",
    .width = 860,
    .height = 520,
    .cards = {.holeWidth = 56,
              .boardWidth = 56,
              .height = 78,
              .dot = 2,
              .rankAt = {4, 4},
              .suitAt = {16, 4},
              .pipAt = {20, 36},
              .face = qRgb(250, 246, 232),
              .edge = qRgb(40, 40, 40),
              .ink = {kBlack, qRgb(200, 0, 0), qRgb(0, 120, 0), qRgb(0, 60, 200)},
              .placeWidth = 28,
              .placeHeight = 20},
    .seats = {{{60, 230}, {180, 40}, {620, 40}, {760, 230}, {600, 420}, {200, 420}}},
    .heroAtSeat = false,
    .holeOffset = {0, 0},
    .holeStep = 0,
    .heroCards = {{{372, 420}, {432, 420}}},
    .boardCards = BoardRow({255, 200}, 72),
    .seatsShown = 6,
    .felt = qRgb(0, 70, 110),
};

constexpr std::array<const TableDesign*, 3> kDesigns{&kDefaultDesign, &kWideDesign,
                                                     &kSixSeatDesign};

void DrawGlyph(QPainter& painter, const Glyph& glyph, PixelPoint at, int dot, QRgb colour) {
    for (int row = 0; row < static_cast<int>(glyph.size()); ++row) {
        for (int column = 0; column < static_cast<int>(glyph[row].size()); ++column) {
            if (glyph[row][column] == '#') {
                painter.fillRect(at.x + column * dot, at.y + row * dot, dot, dot,
                                 QColor::fromRgb(colour));
            }
        }
    }
}

PixelPoint Offset(PixelPoint point, PixelPoint by) {
    return {point.x + by.x, point.y + by.y};
}

void DrawCard(QPainter& painter, std::string_view card, PixelPoint topLeft, int width,
              const CardStyle& style) {
    const QRect face(topLeft.x, topLeft.y, width, style.height);
    painter.fillRect(face, QColor::fromRgb(style.edge));
    const QRect inside = face.adjusted(1, 1, -1, -1);
    if (card == kFaceDown) {
        painter.fillRect(inside, QColor::fromRgb(kCardBack));
        painter.setPen(QColor::fromRgb(kWhite));
        painter.setClipRect(inside);
        for (int d = -style.height; d < width; d += 6) {
            painter.drawLine(inside.left() + d, inside.top(), inside.left() + d + style.height,
                             inside.bottom());
        }
        painter.setClipping(false);
        painter.setPen(Qt::NoPen);
        return;
    }
    painter.fillRect(inside, QColor::fromRgb(style.face));
    const int rank = static_cast<int>(kTemplateRanks.find(card[0]));
    const int suit = static_cast<int>(kSuitLetters.find(card[1]));
    const QRgb ink = style.ink[suit];
    DrawGlyph(painter, kRankGlyphs[rank], Offset(topLeft, style.rankAt), style.dot, ink);
    DrawGlyph(painter, kSuitGlyphs[suit], Offset(topLeft, style.suitAt), style.dot, ink);
    // The big pip in the middle, away from the index.
    DrawGlyph(painter, kSuitGlyphs[suit], Offset(topLeft, style.pipAt), kPipDot, ink);
}

}  // namespace

std::optional<TextCells> ParseTableCells(std::string_view text, std::string& error) {
    TextCells cells;
    std::set<std::string> dealt;
    int cell = 0;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = text.find(',', start);
        const std::string field = Trim(text.substr(start, comma - start));
        if (cell >= kSlotCount) {
            error = "--cells needs exactly seven comma-separated cells";
            return std::nullopt;
        }
        if (!field.empty() && field != kFaceDown) {
            if (!IsCardText(field)) {
                error = "cell " + std::to_string(cell + 1) + " \"" + field +
                        "\" is not a card (rank from 23456789TJQKA, suit from SHCD, or XX)";
                return std::nullopt;
            }
            if (!dealt.insert(field).second) {
                error = "the card " + field + " is dealt twice";
                return std::nullopt;
            }
        }
        cells[cell++] = field;
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    if (cell != kSlotCount) {
        error = "--cells needs exactly seven comma-separated cells";
        return std::nullopt;
    }
    return cells;
}

const TableDesign* FindTableDesign(std::string_view name) {
    for (const TableDesign* design : kDesigns) {
        if (design->name == name) return design;
    }
    return nullptr;
}

const TableDesign& DefaultTableDesign() {
    return kDefaultDesign;
}

std::vector<std::string_view> TableDesignNames() {
    std::vector<std::string_view> names;
    for (const TableDesign* design : kDesigns) names.push_back(design->name);
    return names;
}

PixelPoint CardOrigin(const TableDesign& design, int cell, int meSeat) {
    if (cell >= 2) return design.boardCards.at(cell - 2);
    if (!design.heroAtSeat) return design.heroCards.at(cell);
    const PixelPoint seat = design.seats.at(PreviousSeat(meSeat));
    return {seat.x + design.holeOffset.x + design.holeStep * cell, seat.y + design.holeOffset.y};
}

CropRect CardIndexPlace(const TableDesign& design, int cell, int meSeat) {
    const PixelPoint origin = CardOrigin(design, cell, meSeat);
    return {origin.x, origin.y, design.cards.placeWidth, design.cards.placeHeight};
}

QImage DrawTable(const TextCells& cells, int meSeat, const TableDesign& design) {
    QImage image(design.width, design.height, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(kRail));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(design.felt));
    painter.drawRoundedRect(QRect(kRailWidth, kRailWidth, design.width - 2 * kRailWidth,
                                  design.height - 2 * kRailWidth),
                            kFeltCorner, kFeltCorner);
    painter.setBrush(QColor::fromRgb(kSeatDisc));
    for (int seat = 0; seat < design.seatsShown; ++seat) {
        const PixelPoint centre = Offset(design.seats[seat], kSeatDiscCentre);
        painter.drawEllipse(QPoint(centre.x, centre.y), kSeatRadius, kSeatRadius);
    }

    for (int cell = 0; cell < kSlotCount; ++cell) {
        if (cells[cell].empty()) continue;
        const bool hole = cell < 2;
        DrawCard(painter, cells[cell], CardOrigin(design, cell, meSeat),
                 hole ? design.cards.holeWidth : design.cards.boardWidth, design.cards);
    }
    painter.end();
    return image;
}

}  // namespace felthawk
