// Calibration: a layout made from the places a user framed on a picture of
// the client, and card templates cut from the cards the client shows, deal
// after deal, until all 52 are there.
#pragma once

#include <QImage>
#include <filesystem>
#include <string>
#include <vector>

#include "capture/table_layout.h"
#include "capture/window_system.h"
#include "cards/recalculate.h"

namespace felthawk {

// "hole1=x,y,w,h;hole2=...;flop1=...;..." as typed on a command line; all
// seven places. Nothing, with a message, for anything else.
std::optional<std::array<CropRect, kSlotCount>> ParsePlaces(std::string_view text,
                                                            std::string& error);
std::string FormatPlaces(const std::array<CropRect, kSlotCount>& places);

// A new layout of `name` for content of the given size: the board places
// and the hole places, for every seat (`seatPoint` -1) or for that seat
// point only. Its templates go to the folder of its own name.
TableLayout MakeLayout(std::string_view name, std::string_view titlePattern, int contentWidth,
                       int contentHeight, const std::array<CropRect, kSlotCount>& places,
                       int seatPoint);

// `layout` with the hole places of the seats it does not set taken from
// the saved layout of its name in `folder`, and the saved template folder;
// as it is when nothing is saved.
TableLayout KeepSavedPlaces(TableLayout layout, const std::filesystem::path& folder);

// The windows that have a title, as the client search walks them: the
// desktop's children and theirs, top of the stack first.
std::vector<std::pair<WindowId, std::string>> TitledWindows(IWindowSystem& windows);

// The cards of the walk whose template file is not in `folder`.
std::vector<std::string> MissingTemplates(const std::filesystem::path& folder);

// Writes the template of each cell that names a card: the cell's place in
// `content`, as capture cuts and writes it. Refuses, writing nothing, a
// card named twice, a cell without a place, or a picture that already is
// the template of another card (the name would make capture misread).
// The cards written, in cell order, or nothing with a message.
std::optional<std::vector<std::string>> SaveTemplates(const QImage& content,
                                                      const TableLayout& layout, int previousSeat,
                                                      const TextCells& cards,
                                                      const std::filesystem::path& folder,
                                                      std::string& error);

}  // namespace felthawk
