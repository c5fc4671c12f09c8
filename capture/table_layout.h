// Table layouts: which window is the poker client, and where in its content
// (the window that carries the title, without any frame a window manager
// draws around it) the seven card places lie.
//
// The built-in layout "default" is the one client that capture always knew,
// at its fixed points and any size. Other layouts are files the user makes
// with felthawk-icons --calibrate, one JSON file each in the per-user data
// folder under "layouts":
//
//   {
//     "name": "six-seat",
//     "title": "*hold'em*",
//     "content": {"width": 860, "height": 520},
//     "templates": "six-seat",
//     "places": {"hole1": [x, y, width, height], "hole2": [...],
//                "flop1": [...], "flop2": [...], "flop3": [...],
//                "turn": [...], "river": [...]},
//     "seatPlaces": {"3": {"hole1": [...], "hole2": [...]}}
//   }
//
// "title" is matched against the whole title with `*` and `?`, case
// ignored. "templates" is a folder, relative to the layouts folder unless
// absolute. The hole places in "places" hold for every seat; "seatPlaces"
// gives them per seat point (the seat before the user's, as the board
// numbers its seats), for clients that show the user's cards at the user's
// seat. A layout needs the five board places and, for at least one seat,
// the two hole places.
#pragma once

#include <QImage>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cards/card_codes.h"

namespace felthawk {

// A rectangle of the client's content, in pixels.
struct CropRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const CropRect&) const = default;
};

// The two hole-card places, first and second card.
using HolePlaces = std::array<CropRect, 2>;
constexpr int kBoardPlaces = 5;

struct TableLayout {
    std::string name;
    std::string titlePattern;
    // The content size the places were measured at; 0 by 0 for the built-in
    // layout, which reads any size as it stands.
    int contentWidth = 0;
    int contentHeight = 0;
    // Flop, flop, flop, turn, river.
    std::array<CropRect, kBoardPlaces> board{};
    std::optional<HolePlaces> anySeatHoles;
    std::array<std::optional<HolePlaces>, kSeatCount> seatHoles{};
    // Empty for the built-in layout: the shipped search order of template
    // folders. Otherwise as written in the file.
    std::string templates;

    bool operator==(const TableLayout&) const = default;
};

inline constexpr std::string_view kDefaultLayoutName = "default";
inline constexpr std::string_view kDefaultTitlePattern = "*hold'em*";

// The built-in layout: the client's fixed points, the hole cards read at the
// seat point of the seat before the user's.
const TableLayout& DefaultLayout();

// The place of table cell `cell` (0, 1 hole; 2..6 board) when the user's
// cards are read at seat point `previousSeat`; nothing for a hole cell when
// the layout has no hole places for that seat.
std::optional<CropRect> CellPlace(const TableLayout& layout, int cell, int previousSeat);

// Whether a window title names the layout's client.
bool TitleMatches(const TableLayout& layout, std::string_view title);

// How much larger the client's content is than the layout was made for, in
// each direction; 1 for the built-in layout.
struct LayoutScale {
    double x = 1.0;
    double y = 1.0;
    bool IsOne() const { return x == 1.0 && y == 1.0; }
};
LayoutScale ScaleFor(const TableLayout& layout, int contentWidth, int contentHeight);

// Paints the picture of one place into `box`, at its top left: the place's
// own size, each pixel taken from the content under its centre once the
// place is scaled. Pixels outside the content or beyond the box stay as
// they are.
void PaintPlace(const QImage& content, const CropRect& place, LayoutScale scale, QImage& box);

// The picture box a crop is painted into, blank: the fixed background.
QImage BlankPictureBox();
// The picture box with the place of `cell` painted in, the place scaled to
// the content's size; blank when the layout has no place for the cell.
QImage PlacePicture(const QImage& content, const TableLayout& layout, int cell, int previousSeat);

// Layout names are file names: letters, digits, '-' and '_', at most 64.
bool IsLayoutName(std::string_view name);

// The per-user folder of layout files.
std::filesystem::path LayoutsFolder();
std::filesystem::path LayoutFile(const std::filesystem::path& folder, std::string_view name);
// The template folder of a layout: relative names inside `layoutsFolder`.
std::filesystem::path LayoutTemplateFolder(const TableLayout& layout,
                                           const std::filesystem::path& layoutsFolder);

// What is wrong with a layout, naming the field, or "" when it can be used.
// The template folder must exist.
std::string CheckLayout(const TableLayout& layout, const std::filesystem::path& layoutsFolder);

// Reads and checks a layout file; nothing, with a message naming the file
// and the field, when it cannot be used.
std::optional<TableLayout> LoadLayout(const std::filesystem::path& file, std::string& error);
// The layout of that name: the built-in one for "default", otherwise its
// file in `folder`.
std::optional<TableLayout> FindLayout(std::string_view name, const std::filesystem::path& folder,
                                      std::string& error);
// Checks and writes the layout to its file in `folder` (replacing it at
// once, never half written); false with a message otherwise.
bool SaveLayout(const TableLayout& layout, const std::filesystem::path& folder, std::string& error);
// "default", then the names of the layout files in `folder`, sorted.
std::vector<std::string> ListLayouts(const std::filesystem::path& folder);

}  // namespace felthawk
