#include "capture/calibration.h"

#include <map>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/compare_files.h"
#include "capture/icon_writer.h"

namespace felthawk {
namespace {

constexpr int kHoleCells = 2;

// "x,y,w,h" as four whole numbers.
std::optional<CropRect> ParseRect(std::string_view text) {
    std::array<int, 4> values{};
    std::size_t start = 0;
    for (int i = 0; i < 4; ++i) {
        const std::size_t comma = i < 3 ? text.find(',', start) : text.size();
        if (comma == std::string_view::npos) return std::nullopt;
        const std::string number = Trim(text.substr(start, comma - start));
        if (number.empty() || number.size() > 6 ||
            number.find_first_not_of("-0123456789") != std::string::npos ||
            number.find('-', 1) != std::string::npos) {
            return std::nullopt;
        }
        values[i] = std::stoi(number);
        start = comma + 1;
    }
    return CropRect{values[0], values[1], values[2], values[3]};
}

std::string IconText(const QImage& box) {
    const std::vector<uint8_t> bytes =
        EncodeIcon(IconPixelsOf(box), box.pixel(0, 0), kCaptureIconDepth);
    return JoinLines(std::string(bytes.begin(), bytes.end()));
}

}  // namespace

std::optional<std::array<CropRect, kSlotCount>> ParsePlaces(std::string_view text,
                                                            std::string& error) {
    std::array<std::optional<CropRect>, kSlotCount> found{};
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(';', start), text.size());
        const std::string_view item = text.substr(start, end - start);
        start = end + 1;
        if (Trim(item).empty()) continue;
        const std::size_t equals = item.find('=');
        const std::string slot = Trim(item.substr(0, equals));
        const int cell = CellFromSlotName(slot);
        if (equals == std::string_view::npos || cell < 0) {
            error = "\"" + std::string(item) +
                    "\" is not a place: hole1, hole2, flop1, flop2, flop3, turn or river=x,y,w,h";
            return std::nullopt;
        }
        found[cell] = ParseRect(item.substr(equals + 1));
        if (!found[cell]) {
            error = "the place " + slot + " needs four whole numbers x,y,w,h";
            return std::nullopt;
        }
    }
    std::array<CropRect, kSlotCount> places{};
    for (int cell = 0; cell < kSlotCount; ++cell) {
        if (!found[cell]) {
            error = "the place " + std::string(SlotName(cell)) + " is missing";
            return std::nullopt;
        }
        places[cell] = *found[cell];
    }
    return places;
}

std::string FormatPlaces(const std::array<CropRect, kSlotCount>& places) {
    std::string text;
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const CropRect& r = places[cell];
        text += (cell ? ";" : "") + std::string(SlotName(cell)) + "=" + std::to_string(r.x) + "," +
                std::to_string(r.y) + "," + std::to_string(r.width) + "," +
                std::to_string(r.height);
    }
    return text;
}

TableLayout MakeLayout(std::string_view name, std::string_view titlePattern, int contentWidth,
                       int contentHeight, const std::array<CropRect, kSlotCount>& places,
                       int seatPoint) {
    TableLayout layout;
    layout.name = name;
    layout.titlePattern = titlePattern;
    layout.contentWidth = contentWidth;
    layout.contentHeight = contentHeight;
    for (int k = 0; k < kBoardPlaces; ++k) layout.board[k] = places[k + kHoleCells];
    const HolePlaces holes{places[0], places[1]};
    if (seatPoint >= 0 && seatPoint < kSeatCount) {
        layout.seatHoles[seatPoint] = holes;
    } else {
        layout.anySeatHoles = holes;
    }
    layout.templates = name;
    return layout;
}

TableLayout KeepSavedPlaces(TableLayout layout, const std::filesystem::path& folder) {
    std::string error;
    const std::optional<TableLayout> saved = FindLayout(layout.name, folder, error);
    if (!saved) return layout;
    layout.templates = saved->templates;
    for (int seat = 0; seat < kSeatCount; ++seat) {
        if (!layout.seatHoles[seat]) layout.seatHoles[seat] = saved->seatHoles[seat];
    }
    if (!layout.anySeatHoles) layout.anySeatHoles = saved->anySeatHoles;
    return layout;
}

std::vector<std::pair<WindowId, std::string>> TitledWindows(IWindowSystem& windows) {
    std::vector<std::pair<WindowId, std::string>> found;
    auto add = [&](WindowId window) {
        std::string title = windows.WindowText(window);
        if (!title.empty()) found.emplace_back(window, std::move(title));
    };
    const WindowId desktop = windows.DesktopWindow();
    for (WindowId top = windows.FirstChild(desktop); top != 0; top = windows.NextSibling(top)) {
        add(top);
        for (WindowId child = windows.FirstChild(top); child != 0;
             child = windows.NextSibling(child)) {
            add(child);
        }
    }
    return found;
}

std::vector<std::string> MissingTemplates(const std::filesystem::path& folder) {
    std::vector<std::string> missing;
    for (int i = 0; i < kTemplateCount; ++i) {
        std::error_code error;
        const std::string card = TemplateCard(i);
        if (!std::filesystem::is_regular_file(folder / TemplateFileName(card), error)) {
            missing.push_back(card);
        }
    }
    return missing;
}

std::optional<std::vector<std::string>> SaveTemplates(const QImage& content,
                                                      const TableLayout& layout, int previousSeat,
                                                      const TextCells& cards,
                                                      const std::filesystem::path& folder,
                                                      std::string& error) {
    // Pictures already named, by their joined text: the templates on disk
    // and the cells of this save.
    std::map<std::string, std::string> named;
    for (int i = 0; i < kTemplateCount; ++i) {
        const std::string card = TemplateCard(i);
        const std::optional<std::string> text = ReadJoinedLines(folder / TemplateFileName(card));
        if (text) named.emplace(*text, card);
    }
    std::vector<std::pair<std::string, QImage>> pictures;
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const std::string& card = cards[cell];
        if (card.empty()) continue;
        const std::string slot(SlotName(cell));
        if (!IsCardText(card)) {
            error = slot + ": \"" + card + "\" is not a card such as AS or TD";
            return std::nullopt;
        }
        for (const auto& [other, picture] : pictures) {
            if (other == card) {
                error = card + " is named twice";
                return std::nullopt;
            }
        }
        if (!CellPlace(layout, cell, previousSeat)) {
            error = slot + ": the layout has no place for it at this seat";
            return std::nullopt;
        }
        const QImage box = PlacePicture(content, layout, cell, previousSeat);
        const auto [at, fresh] = named.emplace(IconText(box), card);
        if (!fresh && at->second != card) {
            error = slot + ": its picture is already the template of " + at->second +
                    ", so it cannot be " + card + " as well";
            return std::nullopt;
        }
        pictures.emplace_back(card, box);
    }
    std::error_code created;
    std::filesystem::create_directories(folder, created);
    std::vector<std::string> written;
    for (const auto& [card, box] : pictures) {
        const IconWriteResult result = SavePictureBox(box, folder / TemplateFileName(card));
        if (!result.written) {
            error = result.error;
            return std::nullopt;
        }
        written.push_back(card);
    }
    return written;
}

}  // namespace felthawk
