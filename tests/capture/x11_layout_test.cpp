// Layouts made from the command line against felthawk-table's other
// tables, on the tests' own Xvfb.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <fstream>
#include <iterator>

#include "capture/calibration.h"
#include "capture/client_layout.h"
#include "tests/capture/x11_session.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

struct ToolRun {
    int exitCode = -1;
    std::string out, err;
};

ToolRun Icons(const QStringList& arguments) {
    QProcess icons;
    icons.start(FELTHAWK_ICONS_PROGRAM, arguments);
    ToolRun run;
    if (!icons.waitForFinished(60000)) return run;
    run.exitCode = icons.exitCode();
    run.out = icons.readAllStandardOutput().toStdString();
    run.err = icons.readAllStandardError().toStdString();
    return run;
}

QString Places(const TableDesign& design, int meSeat) {
    std::array<CropRect, kSlotCount> places;
    for (int cell = 0; cell < kSlotCount; ++cell) {
        places[cell] = CardIndexPlace(design, cell, meSeat);
    }
    return QString::fromStdString(FormatPlaces(places));
}

std::string Deal(int first) {
    std::string cells;
    for (int cell = 0; cell < kSlotCount; ++cell) {
        cells += (cell ? "," : "") +
                 (first + cell < kTemplateCount ? TemplateCard(first + cell) : std::string());
    }
    return cells;
}

std::string FileText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// felthawk-icons keeps its layouts in the program's per-user folder.
class LayoutCalibration : public ::testing::Test {
  protected:
    void SetUp() override {
        QCoreApplication::setOrganizationName(kProgramName);
        QCoreApplication::setApplicationName(kProgramName);
    }
    void TearDown() override {
        QCoreApplication::setOrganizationName(organisation_);
        QCoreApplication::setApplicationName(application_);
    }
    static constexpr const char* kProgramName = "FELTHAWK";
    QString organisation_ = QCoreApplication::organizationName();
    QString application_ = QCoreApplication::applicationName();
};

TEST_F(LayoutCalibration, ASixSeatTableGetsItsLayoutAndAllTemplatesDealByDeal) {
    TableProcess table;
    ASSERT_NE(table.Start({"--layout", "six-seat", "--cells", QString::fromStdString(Deal(0))}),
              0u);
    ToolRun run = Icons({"--layout", "six", "--places", Places(*FindTableDesign("six-seat"), 0),
                     "--cards", QString::fromStdString(Deal(0))});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("still missing 45: "), std::string::npos) << run.out;
    for (int first = kSlotCount; first < kTemplateCount; first += kSlotCount) {
        ASSERT_TRUE(table.Deal(Deal(first)));
        run = Icons({"--layout", "six", "--cards", QString::fromStdString(Deal(first))});
        ASSERT_EQ(run.exitCode, 0) << run.err;
    }
    EXPECT_NE(run.out.find("all 52 templates are in "), std::string::npos) << run.out;
    std::string error;
    EXPECT_TRUE(FindLayout("six", LayoutsFolder(), error)) << error;

    // A card named wrongly is refused: its picture is another card's.
    ASSERT_TRUE(table.Deal("2D,3D,,,,,"));
    run = Icons({"--layout", "six", "--cards", "3D,2D,,,,,"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("hole1: its picture is already the template of 2D"), std::string::npos)
        << run.err;
}

// The wide table draws the cards the default one does, elsewhere: a layout
// made at one seat keeps templates identical to the shipped ones.
TEST_F(LayoutCalibration, AWideTableAtOneSeatKeepsTheShippedPictures) {
    constexpr int kMeSeat = 3;
    const std::string cells = "AS,TD,2C,QH,9S,7D,KC";
    TableProcess table;
    ASSERT_NE(table.Start({"--layout", "wide", "--me-seat", QString::number(kMeSeat), "--cells",
                           QString::fromStdString(cells)}),
              0u);
    const ToolRun run = Icons(
        {"--layout", "wide", "--at-my-seat", "--me-seat", QString::number(kMeSeat), "--places",
         Places(*FindTableDesign("wide"), kMeSeat), "--cards", QString::fromStdString(cells)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::string error;
    const std::optional<TableLayout> layout = FindLayout("wide", LayoutsFolder(), error);
    ASSERT_TRUE(layout) << error;
    EXPECT_FALSE(layout->anySeatHoles);
    EXPECT_TRUE(layout->seatHoles[PreviousSeat(kMeSeat)]);
    EXPECT_EQ(layout->contentWidth, 960);
    for (const char* card : {"AS", "TD", "2C", "QH", "9S", "7D", "KC"}) {
        const std::string name = TemplateFileName(card);
        EXPECT_EQ(FileText(LayoutTemplateFolder(*layout, LayoutsFolder()) / name),
                  FileText(fs::path(FELTHAWK_TEST_ICONS_DIR) / name))
            << name;
    }
}

TEST_F(LayoutCalibration, BadRequestsAreRefusedWithAReason) {
    struct Case {
        QStringList arguments;
        std::string message;
    } cases[] = {
        {{"--layout", "six", "--places", "hole1=1,1,1,1"}, "--places: the place hole2 is missing"},
        {{"--layout", "default", "--places", Places(DefaultTableDesign(), 0)},
         "\"default\" stays as it is"},
        {{"--layout", "nothing-saved", "--cards", "AS,,,,,,"}, "nothing-saved.json"},
        {{"--cards", "AS,KS"}, "--cards needs seven"},
        {{"--me-seat", "12", "--cards", ",,,,,,"}, "--me-seat must be 0..9"},
        {{}, "say what to do"},
    };
    for (const Case& c : cases) {
        const ToolRun run = Icons(c.arguments);
        EXPECT_EQ(run.exitCode, 2) << c.arguments.join(' ').toStdString();
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    }
    QProcess table;
    table.start(FELTHAWK_TABLE_PROGRAM, {"--layout", "nine-seat"});
    ASSERT_TRUE(table.waitForFinished(30000));
    EXPECT_EQ(table.exitCode(), 2);
    EXPECT_TRUE(table.readAllStandardError().contains("default, wide, six-seat"));
}

}  // namespace
}  // namespace felthawk
