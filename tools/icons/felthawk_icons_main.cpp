// felthawk-icons: table layouts and the card templates that capture
// recognises.
//
//   felthawk-icons --calibrate
//       The calibration window: pick the client, frame the seven card
//       places on a picture of it, name the cards it shows, save.
//   felthawk-icons --layout NAME --places "hole1=x,y,w,h;...;river=x,y,w,h"
//                  [--title PATTERN] [--at-my-seat] [--me-seat N] [--cards CELLS]
//       The same without a window: makes (or remakes) the layout NAME from
//       the client's content as it shows now, and with --cards keeps the
//       templates of the cards named, e.g. "AS,KD,2C,,,," for the hole cards
//       and the first flop card.
//   felthawk-icons [--layout NAME] --cards CELLS [--me-seat N] [--out DIR]
//       Keeps the templates of the cards the client shows now, read through
//       the layout (by default the built-in one, whose templates go to DIR
//       or the per-user template folder). Deal after deal until none is
//       missing; each run says which still are.
//   felthawk-icons --from-table --out DIR [--table PATH]
//       Runs felthawk-table, deals all 52 cards seven at a time and keeps
//       every template: the set that ships with the program.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <iostream>

#include "capture/calibration.h"
#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/xcb_window_system.h"
#include "tools/icons/calibration_window.h"
#include "tools/table/table_process.h"

namespace felthawk {
namespace {

constexpr int kTableStartMs = 20000;
// After raising the client, give it a moment to show before reading it.
constexpr int kRaiseWaitMs = 10;

int Fail(const std::string& message) {
    std::cerr << "felthawk-icons: " << message << '\n';
    return 2;
}

std::string Join(const std::vector<std::string>& cards) {
    std::string text;
    for (const std::string& card : cards) text += (text.empty() ? "" : " ") + card;
    return text;
}

// Raises the first window whose title the layout names and takes a picture
// of it; a null image, with a message, when there is none.
QImage ClientPicture(XcbWindowSystem& windows, const TableLayout& layout, std::string& error) {
    for (const auto& [window, title] : TitledWindows(windows)) {
        if (!TitleMatches(layout, title)) continue;
        windows.BringWindowToTop(window);
        windows.Sync();
        QThread::msleep(kRaiseWaitMs);
        QImage picture = windows.GrabContent(window).ToImage();
        if (picture.isNull()) error = "the window \"" + title + "\" went away";
        return picture;
    }
    error = "no window whose title matches \"" + layout.titlePattern + "\"";
    return {};
}

// Keeps the templates of `cells` and says what is still missing.
int SaveCards(const QImage& picture, const TableLayout& layout, int previousSeat,
              const TextCells& cells, const std::filesystem::path& folder) {
    std::string error;
    const std::optional<std::vector<std::string>> written =
        SaveTemplates(picture, layout, previousSeat, cells, folder, error);
    if (!written) return Fail(error);
    if (!written->empty()) std::cout << "templates written: " << Join(*written) << '\n';
    const std::vector<std::string> missing = MissingTemplates(folder);
    if (missing.empty()) {
        std::cout << "all 52 templates are in " << folder.string() << '\n';
    } else {
        std::cout << "still missing " << missing.size() << ": " << Join(missing) << '\n';
    }
    return 0;
}

// felthawk-table beside this program when installed, in its own folder of
// the build otherwise, and from the PATH when neither is there.
QString DefaultTablePath() {
    const QString folder = QCoreApplication::applicationDirPath();
    for (const QString& path : {folder + "/felthawk-table", folder + "/../table/felthawk-table"}) {
        if (QFileInfo::exists(path)) return path;
    }
    return QStringLiteral("felthawk-table");
}

int MakeSetFromTable(XcbWindowSystem& windows, const QString& tablePath,
                     const std::filesystem::path& folder) {
    constexpr int kMeSeat = 0;
    QProcess table;
    table.start(tablePath, {"--commands", "--me-seat", QString::number(kMeSeat)});
    if (!table.waitForStarted()) return Fail("cannot start " + tablePath.toStdString());
    const WindowId shown = WaitForTableReady(table, kTableStartMs);
    if (shown == 0) return Fail("felthawk-table did not come up");
    for (const auto& [window, title] : TitledWindows(windows)) {
        if (window != shown && TitleMatches(DefaultLayout(), title)) {
            return Fail("another window with \"Hold'em\" in its title is open; close it first");
        }
    }
    for (int first = 0; first < kTemplateCount; first += kSlotCount) {
        TextCells cells;
        std::string line = "cells ";
        for (int cell = 0; cell < kSlotCount; ++cell) {
            if (first + cell < kTemplateCount) cells[cell] = TemplateCard(first + cell);
            line += (cell ? "," : "") + cells[cell];
        }
        table.write((line + "\n").c_str());
        if (WaitForTableReady(table, kTableStartMs) == 0) {
            return Fail("felthawk-table refused " + line);
        }
        std::string error;
        const QImage picture = ClientPicture(windows, DefaultLayout(), error);
        if (picture.isNull()) return Fail(error);
        if (!SaveTemplates(picture, DefaultLayout(), PreviousSeat(kMeSeat), cells, folder, error)) {
            return Fail(error);
        }
    }
    table.write("quit\n");
    table.waitForFinished();
    std::cout << "52 templates written to " << folder.string() << '\n';
    return 0;
}

// Makes the layout `name` from the places framed on `picture` and saves
// it, keeping what an earlier save of it holds for other seats.
std::optional<TableLayout> RemakeLayout(const std::string& name, const std::string& title,
                                        const QImage& picture,
                                        const std::array<CropRect, kSlotCount>& places,
                                        int seatPoint, std::string& error) {
    const TableLayout layout = KeepSavedPlaces(
        MakeLayout(name, title, picture.width(), picture.height(), places, seatPoint),
        LayoutsFolder());
    std::error_code created;
    std::filesystem::create_directories(LayoutTemplateFolder(layout, LayoutsFolder()), created);
    if (!SaveLayout(layout, LayoutsFolder(), error)) return std::nullopt;
    std::cout << "layout saved: " << LayoutFile(LayoutsFolder(), name).string() << '\n';
    return layout;
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    QApplication app(argc, argv);
    // The same per-user folder as the program's own.
    QCoreApplication::setOrganizationName("FELTHAWK");
    QCoreApplication::setApplicationName("FELTHAWK");

    QCommandLineParser parser;
    parser.setApplicationDescription("Table layouts and the card templates capture recognises.");
    parser.addHelpOption();
    parser.addOptions({
        {"calibrate", "Open the calibration window."},
        {"layout", "The layout to make or read through.", "name", "default"},
        {"places", "hole1=x,y,w,h;hole2=...;flop1;flop2;flop3;turn;river of the layout.", "places"},
        {"title", "The title pattern of the client (* and ?, case ignored).", "pattern"},
        {"at-my-seat", "The hole places hold at my seat only, not at every seat."},
        {"cards", "Seven comma-separated cells the client shows: hole, hole, flop x3, turn, river.",
         "cells"},
        {"me-seat", "Your seat on the board, 0..9.", "seat", "0"},
        {"out", "The template folder of the built-in layout.", "folder"},
        {"from-table", "Make all 52 templates from felthawk-table."},
        {"table", "The felthawk-table program.", "path"},
    });
    parser.process(app);

    std::string error;
    std::unique_ptr<XcbWindowSystem> windows = XcbWindowSystem::Open(error);
    if (!windows) return Fail(error);
    if (parser.isSet("calibrate")) {
        CalibrationWindow window(*windows, LayoutsFolder());
        window.show();
        return app.exec();
    }

    const CaptureFolders defaults = DefaultCaptureFolders();
    const std::filesystem::path out = parser.isSet("out")
                                          ? std::filesystem::path(parser.value("out").toStdString())
                                          : defaults.dataFolder / "Icons";
    if (parser.isSet("from-table")) {
        const QString tablePath =
            parser.isSet("table") ? parser.value("table") : DefaultTablePath();
        return MakeSetFromTable(*windows, tablePath, out);
    }

    bool seatOk = false;
    const int meSeat = parser.value("me-seat").toInt(&seatOk);
    if (!seatOk || meSeat < 0 || meSeat >= kSeatCount) return Fail("--me-seat must be 0..9");
    TextCells cells;
    if (parser.isSet("cards")) {
        const QStringList given = parser.value("cards").split(',');
        if (given.size() != kSlotCount) return Fail("--cards needs seven comma-separated cells");
        for (int cell = 0; cell < kSlotCount; ++cell) {
            cells[cell] = given[cell].trimmed().toUpper().toStdString();
        }
    } else if (!parser.isSet("places")) {
        return Fail("say what to do: --calibrate, --places, --cards or --from-table");
    }

    const std::string name = parser.value("layout").toStdString();
    std::optional<std::array<CropRect, kSlotCount>> places;
    if (parser.isSet("places")) {
        places = ParsePlaces(parser.value("places").toStdString(), error);
        if (!places) return Fail("--places: " + error);
        if (name == kDefaultLayoutName) {
            return Fail("the built-in layout \"default\" stays as it is; name the new one");
        }
    }
    std::optional<TableLayout> layout = FindLayout(name, LayoutsFolder(), error);
    if (!layout && !places) return Fail(error);
    TableLayout search = layout.value_or(DefaultLayout());
    if (parser.isSet("title")) search.titlePattern = parser.value("title").toStdString();
    const QImage picture = ClientPicture(*windows, search, error);
    if (picture.isNull()) return Fail(error);
    if (places) {
        layout = RemakeLayout(name, search.titlePattern, picture, *places,
                              parser.isSet("at-my-seat") ? PreviousSeat(meSeat) : -1, error);
        if (!layout) return Fail(error);
    }
    const std::filesystem::path templates =
        name == kDefaultLayoutName ? out : LayoutTemplateFolder(*layout, LayoutsFolder());
    return SaveCards(picture, *layout, PreviousSeat(meSeat), cells, templates);
}
