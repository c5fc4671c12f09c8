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

constexpr QRgb kFelt = qRgb(0, 96, 48);
constexpr QRgb kRail = qRgb(92, 52, 24);
constexpr QRgb kSeatDisc = qRgb(0, 70, 36);
constexpr QRgb kCardEdge = qRgb(70, 70, 70);
constexpr QRgb kCardFace = qRgb(255, 255, 255);
constexpr QRgb kRed = qRgb(204, 0, 0);
constexpr QRgb kBlack = qRgb(20, 20, 20);
constexpr QRgb kCardBack = qRgb(30, 60, 160);

constexpr int kHoleCardWidth = 44;
constexpr int kBoardCardWidth = 50;
constexpr int kCardHeight = 64;
constexpr int kDot = 2;
// Where the corner index starts inside a card; the crop starts at the
// card's top left pixel, its edge.
constexpr int kIndexInset = 3;
constexpr int kSuitTop = 20;

void DrawGlyph(QPainter& painter, const Glyph& glyph, int left, int top, int dot, QRgb colour) {
    for (int row = 0; row < static_cast<int>(glyph.size()); ++row) {
        for (int column = 0; column < static_cast<int>(glyph[row].size()); ++column) {
            if (glyph[row][column] == '#') {
                painter.fillRect(left + column * dot, top + row * dot, dot, dot,
                                 QColor::fromRgb(colour));
            }
        }
    }
}

void DrawCard(QPainter& painter, std::string_view card, PixelPoint topLeft, int width) {
    const QRect face(topLeft.x, topLeft.y, width, kCardHeight);
    painter.fillRect(face, QColor::fromRgb(kCardEdge));
    const QRect inside = face.adjusted(1, 1, -1, -1);
    if (card == kFaceDown) {
        painter.fillRect(inside, QColor::fromRgb(kCardBack));
        painter.setPen(QColor::fromRgb(kCardFace));
        painter.setClipRect(inside);
        for (int d = -kCardHeight; d < width; d += 6) {
            painter.drawLine(inside.left() + d, inside.top(), inside.left() + d + kCardHeight,
                             inside.bottom());
        }
        painter.setClipping(false);
        painter.setPen(Qt::NoPen);
        return;
    }
    painter.fillRect(inside, QColor::fromRgb(kCardFace));
    const int rank = static_cast<int>(kTemplateRanks.find(card[0]));
    const int suit = static_cast<int>(kSuitLetters.find(card[1]));
    const QRgb ink = card[1] == 'H' || card[1] == 'D' ? kRed : kBlack;
    DrawGlyph(painter, kRankGlyphs[rank], topLeft.x + kIndexInset, topLeft.y + kIndexInset, kDot,
              ink);
    DrawGlyph(painter, kSuitGlyphs[suit], topLeft.x + kIndexInset, topLeft.y + kSuitTop, kDot, ink);
    // The big pip in the middle, right of what capture cuts out.
    DrawGlyph(painter, kSuitGlyphs[suit], topLeft.x + 20, topLeft.y + 28, 4, ink);
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

QImage DrawTable(const TextCells& cells, int meSeat) {
    QImage image(kTableWidth, kTableHeight, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(kRail));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(kFelt));
    painter.drawRoundedRect(QRect(8, 8, kTableWidth - 16, kTableHeight - 16), 150, 150);
    painter.setBrush(QColor::fromRgb(kSeatDisc));
    for (const PixelPoint& seat : kSeatPoints) {
        painter.drawEllipse(QPoint(seat.x + 22, seat.y + 28), 26, 26);
    }

    const int previousSeat = PreviousSeat(meSeat);
    for (int cell = 0; cell < kSlotCount; ++cell) {
        if (cells[cell].empty()) continue;
        const bool hole = cell < 2;
        DrawCard(painter, cells[cell], CropOrigin(cell, previousSeat),
                 hole ? kHoleCardWidth : kBoardCardWidth);
    }
    painter.end();
    return image;
}

}  // namespace felthawk
