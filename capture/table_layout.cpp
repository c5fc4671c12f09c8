#include "capture/table_layout.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>
#include <cctype>
#include <cmath>

#include "capture/client_capture.h"
#include "capture/client_layout.h"

namespace felthawk {
namespace {

// A layout file is a page of text; anything larger is not one.
constexpr qint64 kMaxLayoutFileBytes = 64 * 1024;
// Window titles are read up to this many characters.
constexpr std::size_t kMaxTitlePattern = 254;
constexpr int kMaxLayoutNameLength = 64;
constexpr int kMaxContentSide = 16384;
constexpr int kHoleCells = 2;
constexpr std::string_view kLayoutSuffix = ".json";

std::string Quoted(std::string_view field) {
    return "field \"" + std::string(field) + "\"";
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

TableLayout MakeDefaultLayout() {
    TableLayout layout;
    layout.name = kDefaultLayoutName;
    layout.titlePattern = kDefaultTitlePattern;
    auto place = [](PixelPoint origin) {
        return CropRect{origin.x, origin.y, kCropWidth, kCropHeight};
    };
    for (int k = 0; k < kBoardPlaces; ++k) layout.board[k] = place(CropOrigin(k + kHoleCells, 0));
    for (int seat = 0; seat < kSeatCount; ++seat) {
        layout.seatHoles[seat] = HolePlaces{place(CropOrigin(0, seat)), place(CropOrigin(1, seat))};
    }
    return layout;
}

// "" when the place fits the content and the picture a crop is painted into.
std::string CheckPlace(const CropRect& place, const TableLayout& layout, std::string_view field) {
    const std::string name = Quoted(field);
    if (place.width <= 0 || place.height <= 0) {
        return name + ": the size " + std::to_string(place.width) + " by " +
               std::to_string(place.height) + " is not positive";
    }
    if (place.width > kPictureBoxWidth || place.height > kPictureBoxHeight) {
        return name + ": " + std::to_string(place.width) + " by " + std::to_string(place.height) +
               " is larger than a card crop can be (" + std::to_string(kPictureBoxWidth) + " by " +
               std::to_string(kPictureBoxHeight) + ")";
    }
    if (place.x < 0 || place.y < 0 || place.x + place.width > layout.contentWidth ||
        place.y + place.height > layout.contentHeight) {
        return name + ": [" + std::to_string(place.x) + ", " + std::to_string(place.y) + ", " +
               std::to_string(place.width) + ", " + std::to_string(place.height) +
               "] lies outside the window of " + std::to_string(layout.contentWidth) + " by " +
               std::to_string(layout.contentHeight);
    }
    return {};
}

std::string PlacesField(std::string_view slot) {
    return "places." + std::string(slot);
}

std::string SeatField(int seat, std::string_view slot) {
    return "seatPlaces." + std::to_string(seat) + "." + std::string(slot);
}

// Reading a file: each step either fills its value or leaves a message.
class LayoutReader {
  public:
    std::string error;

    std::string Text(const QJsonObject& object, std::string_view key, std::string_view field) {
        const QJsonValue value = object.value(QLatin1String(key.data(), key.size()));
        if (!value.isString()) {
            Fail(field, value.isUndefined() ? "is missing" : "must be text");
            return {};
        }
        return value.toString().toStdString();
    }

    int Whole(const QJsonValue& value, std::string_view field) {
        const double number = value.toDouble(std::nan(""));
        if (!value.isDouble() || number != std::floor(number) || std::abs(number) > 1e6) {
            Fail(field, value.isUndefined() ? "is missing" : "must be a whole number of pixels");
            return 0;
        }
        return static_cast<int>(number);
    }

    CropRect Place(const QJsonValue& value, std::string_view field) {
        const QJsonArray array = value.toArray();
        if (!value.isArray() || array.size() != 4) {
            Fail(field, value.isUndefined() ? "is missing" : "must be [x, y, width, height]");
            return {};
        }
        CropRect place;
        place.x = Whole(array[0], field);
        place.y = Whole(array[1], field);
        place.width = Whole(array[2], field);
        place.height = Whole(array[3], field);
        return place;
    }

    // Both hole places of an object; nothing when it has neither.
    std::optional<HolePlaces> Holes(const QJsonObject& object, std::string_view prefix) {
        if (!object.contains("hole1") && !object.contains("hole2")) return std::nullopt;
        return HolePlaces{Place(object.value("hole1"), std::string(prefix) + "hole1"),
                          Place(object.value("hole2"), std::string(prefix) + "hole2")};
    }

    void Fail(std::string_view field, std::string_view what) {
        if (error.empty()) error = Quoted(field) + " " + std::string(what);
    }
};

void ReadLayout(const QJsonObject& root, TableLayout& layout, LayoutReader& reader) {
    layout.name = reader.Text(root, "name", "name");
    layout.titlePattern = reader.Text(root, "title", "title");
    const QJsonObject content = root.value("content").toObject();
    if (!root.value("content").isObject()) reader.Fail("content", "is missing");
    layout.contentWidth = reader.Whole(content.value("width"), "content.width");
    layout.contentHeight = reader.Whole(content.value("height"), "content.height");
    layout.templates = reader.Text(root, "templates", "templates");

    const QJsonObject places = root.value("places").toObject();
    if (!root.value("places").isObject()) reader.Fail("places", "is missing");
    for (const QString& key : places.keys()) {
        if (CellFromSlotName(key.toStdString()) < 0) {
            reader.Fail(PlacesField(key.toStdString()), "is not a place");
        }
    }
    for (int k = 0; k < kBoardPlaces; ++k) {
        const std::string_view slot = SlotName(k + kHoleCells);
        layout.board[k] =
            reader.Place(places.value(QLatin1String(slot.data(), slot.size())), PlacesField(slot));
    }
    layout.anySeatHoles = reader.Holes(places, "places.");

    const QJsonObject seats = root.value("seatPlaces").toObject();
    for (const QString& key : seats.keys()) {
        bool isSeat = false;
        const int seat = key.toInt(&isSeat);
        const QJsonObject seatPlaces = seats.value(key).toObject();
        if (!isSeat || seat < 0 || seat >= kSeatCount || !seats.value(key).isObject()) {
            reader.Fail("seatPlaces." + key.toStdString(), "is not a seat 0..9 with places");
            continue;
        }
        for (const QString& slot : seatPlaces.keys()) {
            if (slot != "hole1" && slot != "hole2") {
                reader.Fail(SeatField(seat, slot.toStdString()), "is not a hole place");
            }
        }
        layout.seatHoles[seat] = reader.Holes(seatPlaces, "seatPlaces." + key.toStdString() + ".");
    }
}

QJsonArray PlaceJson(const CropRect& place) {
    return {place.x, place.y, place.width, place.height};
}

QJsonObject HolesJson(const HolePlaces& holes) {
    return {{"hole1", PlaceJson(holes[0])}, {"hole2", PlaceJson(holes[1])}};
}

}  // namespace

const TableLayout& DefaultLayout() {
    static const TableLayout layout = MakeDefaultLayout();
    return layout;
}

std::optional<CropRect> CellPlace(const TableLayout& layout, int cell, int previousSeat) {
    if (cell >= kHoleCells) return layout.board.at(cell - kHoleCells);
    // Any other seat reads at seat point 0, as the fixed points always did.
    const int seat = previousSeat >= 0 && previousSeat < kSeatCount ? previousSeat : 0;
    const std::optional<HolePlaces>& holes =
        layout.seatHoles[seat] ? layout.seatHoles[seat] : layout.anySeatHoles;
    if (!holes) return std::nullopt;
    return (*holes).at(cell);
}

bool TitleMatches(const TableLayout& layout, std::string_view title) {
    return LikePattern(Lower(title), Lower(layout.titlePattern));
}

LayoutScale ScaleFor(const TableLayout& layout, int contentWidth, int contentHeight) {
    if (layout.contentWidth <= 0 || layout.contentHeight <= 0) return {};
    return {static_cast<double>(contentWidth) / layout.contentWidth,
            static_cast<double>(contentHeight) / layout.contentHeight};
}

void PaintPlace(const QImage& content, const CropRect& place, LayoutScale scale, QImage& box) {
    // Each pixel of the place takes the content pixel under its centre.
    const double left = std::floor(place.x * scale.x + 0.5);
    const double top = std::floor(place.y * scale.y + 0.5);
    const int width = std::min(place.width, box.width());
    const int height = std::min(place.height, box.height());
    for (int y = 0; y < height; ++y) {
        const int sourceY = static_cast<int>(top + std::floor((y + 0.5) * scale.y));
        for (int x = 0; x < width; ++x) {
            const int sourceX = static_cast<int>(left + std::floor((x + 0.5) * scale.x));
            if (content.valid(sourceX, sourceY))
                box.setPixel(x, y, content.pixel(sourceX, sourceY));
        }
    }
}

QImage BlankPictureBox() {
    QImage box(kPictureBoxWidth, kPictureBoxHeight, QImage::Format_RGB32);
    box.fill(QColor::fromRgb(kPictureBoxBackground));
    return box;
}

QImage PlacePicture(const QImage& content, const TableLayout& layout, int cell, int previousSeat) {
    QImage box = BlankPictureBox();
    const std::optional<CropRect> place = CellPlace(layout, cell, previousSeat);
    if (place)
        PaintPlace(content, *place, ScaleFor(layout, content.width(), content.height()), box);
    return box;
}

bool IsLayoutName(std::string_view name) {
    if (name.empty() || name.size() > kMaxLayoutNameLength) return false;
    return std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_';
    });
}

std::filesystem::path LayoutsFolder() {
    return std::filesystem::path(
               QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString()) /
           "layouts";
}

std::filesystem::path LayoutFile(const std::filesystem::path& folder, std::string_view name) {
    return folder / (std::string(name) + std::string(kLayoutSuffix));
}

std::filesystem::path LayoutTemplateFolder(const TableLayout& layout,
                                           const std::filesystem::path& layoutsFolder) {
    const std::filesystem::path templates(layout.templates);
    return templates.is_absolute() ? templates : layoutsFolder / templates;
}

std::string CheckLayout(const TableLayout& layout, const std::filesystem::path& layoutsFolder) {
    if (!IsLayoutName(layout.name) || layout.name == kDefaultLayoutName) {
        return Quoted("name") + ": \"" + layout.name +
               "\" must be letters, digits, '-' or '_' (at most 64), and not \"default\"";
    }
    if (layout.titlePattern.empty() || layout.titlePattern.size() > kMaxTitlePattern) {
        return Quoted("title") + " must hold 1 to 254 characters";
    }
    if (layout.contentWidth <= 0 || layout.contentHeight <= 0 ||
        layout.contentWidth > kMaxContentSide || layout.contentHeight > kMaxContentSide) {
        return Quoted("content") + ": the window size " + std::to_string(layout.contentWidth) +
               " by " + std::to_string(layout.contentHeight) + " must be 1 to 16384 each way";
    }
    for (int k = 0; k < kBoardPlaces; ++k) {
        const std::string problem =
            CheckPlace(layout.board[k], layout, PlacesField(SlotName(k + kHoleCells)));
        if (!problem.empty()) return problem;
    }
    bool anyHoles = false;
    for (int seat = -1; seat < kSeatCount; ++seat) {
        const std::optional<HolePlaces>& holes =
            seat < 0 ? layout.anySeatHoles : layout.seatHoles[seat];
        if (!holes) continue;
        anyHoles = true;
        for (int cell = 0; cell < kHoleCells; ++cell) {
            const std::string field =
                seat < 0 ? PlacesField(SlotName(cell)) : SeatField(seat, SlotName(cell));
            const std::string problem = CheckPlace((*holes)[cell], layout, field);
            if (!problem.empty()) return problem;
        }
    }
    if (!anyHoles) return Quoted("places.hole1") + " is missing, and no seat has hole places";
    if (layout.templates.empty()) return Quoted("templates") + " is missing";
    const std::filesystem::path templates = LayoutTemplateFolder(layout, layoutsFolder);
    std::error_code error;
    if (!std::filesystem::is_directory(templates, error)) {
        return Quoted("templates") + ": the folder " + templates.string() + " does not exist";
    }
    return {};
}

std::optional<TableLayout> LoadLayout(const std::filesystem::path& file, std::string& error) {
    const std::string where = file.string() + ": ";
    QFile input(QString::fromStdString(file.string()));
    if (!input.open(QIODevice::ReadOnly)) {
        error = where + input.errorString().toStdString();
        return std::nullopt;
    }
    if (input.size() > kMaxLayoutFileBytes) {
        error = where + "larger than a layout file can be (64 KiB)";
        return std::nullopt;
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(input.read(kMaxLayoutFileBytes), &parse);
    if (parse.error != QJsonParseError::NoError || !document.isObject()) {
        error = where + "not a JSON object (" + parse.errorString().toStdString() + " at byte " +
                std::to_string(parse.offset) + ")";
        return std::nullopt;
    }
    TableLayout layout;
    LayoutReader reader;
    ReadLayout(document.object(), layout, reader);
    std::string problem = reader.error;
    if (problem.empty()) problem = CheckLayout(layout, file.parent_path());
    if (problem.empty() && file.filename() != LayoutFile({}, layout.name)) {
        problem = Quoted("name") + ": \"" + layout.name + "\" is not the file's name";
    }
    if (!problem.empty()) {
        error = where + problem;
        return std::nullopt;
    }
    return layout;
}

std::optional<TableLayout> FindLayout(std::string_view name, const std::filesystem::path& folder,
                                      std::string& error) {
    if (name == kDefaultLayoutName) return DefaultLayout();
    if (!IsLayoutName(name)) {
        error = "\"" + std::string(name) + "\" is not a layout name";
        return std::nullopt;
    }
    return LoadLayout(LayoutFile(folder, name), error);
}

bool SaveLayout(const TableLayout& layout, const std::filesystem::path& folder,
                std::string& error) {
    const std::string problem = CheckLayout(layout, folder);
    if (!problem.empty()) {
        error = "layout \"" + layout.name + "\": " + problem;
        return false;
    }
    QJsonObject places;
    for (int k = 0; k < kBoardPlaces; ++k) {
        const std::string_view slot = SlotName(k + kHoleCells);
        places.insert(QLatin1String(slot.data(), slot.size()), PlaceJson(layout.board[k]));
    }
    if (layout.anySeatHoles) {
        places.insert("hole1", PlaceJson((*layout.anySeatHoles)[0]));
        places.insert("hole2", PlaceJson((*layout.anySeatHoles)[1]));
    }
    QJsonObject seats;
    for (int seat = 0; seat < kSeatCount; ++seat) {
        if (layout.seatHoles[seat]) {
            seats.insert(QString::number(seat), HolesJson(*layout.seatHoles[seat]));
        }
    }
    QJsonObject root{
        {"name", QString::fromStdString(layout.name)},
        {"title", QString::fromStdString(layout.titlePattern)},
        {"content", QJsonObject{{"width", layout.contentWidth}, {"height", layout.contentHeight}}},
        {"templates", QString::fromStdString(layout.templates)},
        {"places", places},
    };
    if (!seats.isEmpty()) root.insert("seatPlaces", seats);

    const std::filesystem::path file = LayoutFile(folder, layout.name);
    QSaveFile output(QString::fromStdString(file.string()));
    if (!output.open(QIODevice::WriteOnly) ||
        output.write(QJsonDocument(root).toJson(QJsonDocument::Indented)) < 0 || !output.commit()) {
        error = file.string() + ": " + output.errorString().toStdString();
        return false;
    }
    return true;
}

std::vector<std::string> ListLayouts(const std::filesystem::path& folder) {
    std::vector<std::string> names{std::string(kDefaultLayoutName)};
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::filesystem::path& path = entry.path();
        const std::string stem = path.stem().string();
        if (path.extension() == kLayoutSuffix && IsLayoutName(stem) && stem != kDefaultLayoutName) {
            names.push_back(stem);
        }
    }
    std::sort(names.begin() + 1, names.end());
    return names;
}

}  // namespace felthawk
