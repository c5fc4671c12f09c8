#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "capture/client_capture.h"
#include "capture/icon_writer.h"
#include "capture/table_layout.h"
#include "tests/capture/temp_folder.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

// A layout as calibration makes it: the six-seat table's index places.
TableLayout SixSeatLayout() {
    const TableDesign& design = *FindTableDesign("six-seat");
    TableLayout layout;
    layout.name = "six-seat";
    layout.titlePattern = "*six*hold'em*";
    layout.contentWidth = design.width;
    layout.contentHeight = design.height;
    for (int k = 0; k < kBoardPlaces; ++k) layout.board[k] = CardIndexPlace(design, k + 2, 0);
    layout.anySeatHoles = HolePlaces{CardIndexPlace(design, 0, 0), CardIndexPlace(design, 1, 0)};
    layout.seatHoles[3] = HolePlaces{CropRect{10, 10, 20, 20}, CropRect{40, 10, 20, 20}};
    layout.templates = "six-seat";
    return layout;
}

TEST(DefaultLayout, IsTheFixedPointsAtAnySizeAndNamesTheClientAsBefore) {
    const TableLayout& layout = DefaultLayout();
    for (int seat = -1; seat <= kSeatCount; ++seat) {
        for (int cell = 0; cell < kSlotCount; ++cell) {
            const PixelPoint at = CropOrigin(cell, seat);
            EXPECT_EQ(CellPlace(layout, cell, seat),
                      (CropRect{at.x, at.y, kCropWidth, kCropHeight}))
                << cell << " at seat " << seat;
        }
    }
    EXPECT_TRUE(ScaleFor(layout, 1600, 900).IsOne());
    for (const char* title : {"Texas HOLD'EM - 4", "Texas Holdem", "hold'em", "Hold'e", ""}) {
        EXPECT_EQ(TitleMatches(layout, title), TitleNamesClient(title)) << title;
    }
}

TEST(TableLayoutPlaces, ASeatOfItsOwnComesBeforeTheOneForAnySeat) {
    TableLayout layout = SixSeatLayout();
    EXPECT_EQ(CellPlace(layout, 1, 3), (CropRect{40, 10, 20, 20}));
    EXPECT_EQ(CellPlace(layout, 1, 4), layout.anySeatHoles->at(1));
    EXPECT_EQ(CellPlace(layout, 6, 3), layout.board[4]);
    layout.anySeatHoles.reset();
    EXPECT_EQ(CellPlace(layout, 0, 4), std::nullopt);
    EXPECT_EQ(PlacePicture(DrawTable({}, 0), layout, 0, 4), BlankPictureBox());
    EXPECT_TRUE(TitleMatches(layout, "My SIX seat Hold'em"));
    EXPECT_FALSE(TitleMatches(layout, "Hold'em six"));
}

TEST(TableLayoutFiles, SaveLoadAndListRoundTrip) {
    TempFolder folder;
    fs::create_directory(folder.path() / "six-seat");
    const TableLayout layout = SixSeatLayout();
    std::string error;
    ASSERT_TRUE(SaveLayout(layout, folder.path(), error)) << error;
    EXPECT_EQ(LoadLayout(LayoutFile(folder.path(), "six-seat"), error), layout) << error;
    EXPECT_EQ(FindLayout("default", folder.path(), error), DefaultLayout());
    std::ofstream(folder.path() / "notes.txt") << "not a layout";
    EXPECT_EQ(ListLayouts(folder.path()), (std::vector<std::string>{"default", "six-seat"}));

    TableLayout bad = layout;
    bad.board[2].width = 0;
    EXPECT_FALSE(SaveLayout(bad, folder.path(), error));
    EXPECT_NE(error.find("places.flop3"), std::string::npos) << error;
    EXPECT_EQ(LoadLayout(LayoutFile(folder.path(), "six-seat"), error), layout);
    EXPECT_FALSE(FindLayout("../six-seat", folder.path(), error));
}

TEST(TableLayoutFiles, AMalformedFileIsRefusedNamingTheFileAndTheField) {
    const std::string places =
        R"("hole1": [10, 10, 15, 35], "hole2": [30, 10, 15, 35], "flop1": [100, 100, 15, 35],
           "flop2": [160, 100, 15, 35], "flop3": [220, 100, 15, 35], "turn": [280, 100, 15, 35])";
    auto file = [&](const std::string& river, const std::string& rest) {
        return R"({"name": "t", "title": "*hold'em*", "content": {"width": 400, "height": 300},
                   "places": {)" +
               places + river + "}" + rest + "}";
    };
    const std::string good = R"(, "river": [340, 100, 15, 35])";
    const std::string templates = R"(, "templates": "icons")";
    struct Case {
        std::string text, field;
    } cases[] = {
        {file(good, templates), ""},
        {file("", templates), "\"places.river\" is missing"},
        {file(R"(, "river": [340, 100, -15, 35])", templates), "\"places.river\": the size -15"},
        {file(R"(, "river": [390, 100, 15, 35])", templates), "\"places.river\": [390, 100"},
        {file(R"(, "river": [340, 280, 15, 35])", templates), "outside the window of 400 by 300"},
        {file(R"(, "river": [340, 100, 60, 35])", templates), "larger than a card crop can be"},
        {file(R"(, "river": [340, 100, 15.5, 35])", templates), "\"places.river\" must be a whole"},
        {file(R"(, "river": [340, 100])", templates), "\"places.river\" must be [x, y, width"},
        {file(good + R"(, "flop4": [1, 1, 1, 1])", templates), "\"places.flop4\" is not a place"},
        {file(good, ""), "\"templates\" is missing"},
        {file(good, R"(, "templates": "gone")"), "\"templates\": the folder"},
        {file(good, templates + R"(, "seatPlaces": {"10": {}})"), "\"seatPlaces.10\" is not a"},
        {file(good, templates + R"(, "seatPlaces": {"2": {"hole1": [1, 1, 5, 5]}})"),
         "\"seatPlaces.2.hole2\" is missing"},
        {R"({"name": "other"})", "\"title\" is missing"},
        {"[1, 2]", "not a JSON object"},
        {"{\"name\": ", "not a JSON object"},
        {std::string(70 * 1024, ' '), "larger than a layout file can be"},
    };
    TempFolder folder;
    fs::create_directory(folder.path() / "icons");
    const fs::path path = folder.path() / "t.json";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.substr(c.text.size() > 200 ? c.text.size() - 200 : 0));
        std::ofstream(path, std::ios::trunc) << c.text;
        std::string error;
        const std::optional<TableLayout> layout = LoadLayout(path, error);
        if (c.field.empty()) {
            EXPECT_TRUE(layout) << error;
            continue;
        }
        EXPECT_FALSE(layout);
        EXPECT_EQ(error.rfind(path.string() + ": ", 0), 0u) << error;
        EXPECT_NE(error.find(c.field), std::string::npos) << error;
    }
    std::string error;
    std::ofstream(folder.path() / "u.json") << file(good, templates);
    EXPECT_FALSE(LoadLayout(folder.path() / "u.json", error));
    EXPECT_NE(error.find("\"name\": \"t\" is not the file's name"), std::string::npos) << error;
    EXPECT_FALSE(LoadLayout(folder.path() / "none.json", error));
    EXPECT_NE(error.find("none.json"), std::string::npos) << error;
}

// Scaling samples the content under each pixel's centre, so a table drawn
// at twice its size, pixel for pixel doubled, gives the same crops.
TEST(TableLayoutScale, ATwiceLargerTableGivesTheSameCrops) {
    const TableLayout layout = SixSeatLayout();
    const TableDesign& design = *FindTableDesign("six-seat");
    const QImage table = DrawTable({"AS", "TD", "2C", "QH", "9S", "", "XX"}, 0, design);
    const QImage doubled =
        table.scaled(table.size() * 2, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    const LayoutScale twice = ScaleFor(layout, doubled.width(), doubled.height());
    EXPECT_EQ(twice.x, 2.0);
    EXPECT_EQ(twice.y, 2.0);
    EXPECT_FALSE(twice.IsOne());
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const QImage plain = PlacePicture(table, layout, cell, 0);
        EXPECT_EQ(PlacePicture(doubled, layout, cell, 0), plain) << cell;
    }
}

// Every table felthawk-table draws shows 52 cards whose index places fit
// the window and make 52 different icons, at every seat.
TEST(TableDesigns, EachShowsFiftyTwoDistinctCardsInsideItsWindow) {
    for (std::string_view name : TableDesignNames()) {
        SCOPED_TRACE(std::string(name));
        const TableDesign& design = *FindTableDesign(name);
        for (int seat = 0; seat < kSeatCount; ++seat) {
            for (int cell = 0; cell < kSlotCount; ++cell) {
                const CropRect place = CardIndexPlace(design, cell, seat);
                EXPECT_TRUE(place.x >= 0 && place.y >= 0 && place.x + place.width <= design.width &&
                            place.y + place.height <= design.height)
                    << cell << " at seat " << seat;
            }
        }
        TableLayout layout = DefaultLayout();
        for (int k = 0; k < kBoardPlaces; ++k) layout.board[k] = CardIndexPlace(design, k + 2, 4);
        std::set<std::vector<uint8_t>> icons;
        for (int i = 0; i < kTemplateCount; ++i) {
            TextCells cells;
            cells[2 + i % kBoardPlaces] = TemplateCard(i);
            const QImage box =
                PlacePicture(DrawTable(cells, 4, design), layout, 2 + i % kBoardPlaces, 0);
            icons.insert(EncodeIcon(IconPixelsOf(box), box.pixel(0, 0), kCaptureIconDepth));
        }
        EXPECT_EQ(icons.size(), 52u);
    }
    EXPECT_EQ(FindTableDesign("nine-seat"), nullptr);
}

}  // namespace
}  // namespace felthawk
