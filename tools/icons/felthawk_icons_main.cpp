// felthawk-icons: makes the card templates that capture recognises.
//
//   felthawk-icons --slot flop1 --card AS [--me-seat 0] [--out DIR]
//       Reads one slot of the "Hold'em" window on the screen and keeps it as
//       the template of the named card. This is how templates are made for a
//       real client: deal, then save each card you can see.
//   felthawk-icons --from-table --out DIR [--table PATH]
//       Runs felthawk-table, deals all 52 cards seven at a time and saves
//       every template: the set that ships with the program.
//
// Templates go to DIR, by default the per-user template folder, which
// capture searches first.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <iostream>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/xcb_window_system.h"
#include "tools/table/table_process.h"

namespace felthawk {
namespace {

constexpr int kTableStartMs = 20000;

// The tool has no board: the client is found and raised but docks nowhere.
class NoBoard : public ICaptureBoard {
  public:
    explicit NoBoard(int previousSeat) : previousSeat_(previousSeat) {}
    WindowId OwnWindow() override { return 0; }
    void EnterCompactView() override {}
    void ClearCards() override {}
    int PreviousSeat() override { return previousSeat_; }
    void ShowCapturedCards(const TextCells&) override {}
    void StopCapture(const std::string&) override {}

  private:
    int previousSeat_;
};

int Fail(const std::string& message) {
    std::cerr << "felthawk-icons: " << message << '\n';
    return 2;
}

// Finds the client, cuts `cell` out of it and keeps it as `card`'s template.
bool SaveTemplate(ClientCapture& capture, NoBoard& board, int cell, const std::string& card,
                  const std::filesystem::path& folder, std::string& error) {
    const IconWriteResult written = SavePictureBox(capture.CaptureCell(cell, board.PreviousSeat()),
                                                   folder / TemplateFileName(card));
    if (!written.written) error = written.error;
    return written.written;
}

QString DefaultTablePath() {
    const QString beside = QCoreApplication::applicationDirPath() + "/../table/felthawk-table";
    return QFileInfo::exists(beside) ? beside : QString("felthawk-table");
}

int MakeSetFromTable(ClientCapture& capture, const QString& tablePath,
                     const std::filesystem::path& folder) {
    constexpr int kMeSeat = 0;
    NoBoard board(PreviousSeat(kMeSeat));
    QProcess table;
    table.start(tablePath, {"--commands", "--me-seat", QString::number(kMeSeat)});
    if (!table.waitForStarted()) return Fail("cannot start " + tablePath.toStdString());
    if (WaitForTableReady(table, kTableStartMs) == 0) return Fail("felthawk-table did not come up");

    std::string error;
    for (int first = 0; first < kTemplateCount; first += kSlotCount) {
        TextCells cells;
        for (int cell = 0; cell < kSlotCount && first + cell < kTemplateCount; ++cell) {
            cells[cell] = TemplateCard(first + cell);
        }
        std::string line = "cells ";
        for (int cell = 0; cell < kSlotCount; ++cell) line += (cell ? "," : "") + cells[cell];
        table.write((line + "\n").c_str());
        const WindowId shown = WaitForTableReady(table, kTableStartMs);
        if (shown == 0) return Fail("felthawk-table refused " + line);
        capture.FindClient(board, 0);
        if (capture.ClientWindow() != shown) {
            return Fail("another window with \"Hold'em\" in its title is open; close it first");
        }
        for (int cell = 0; cell < kSlotCount && !cells[cell].empty(); ++cell) {
            if (!SaveTemplate(capture, board, cell, cells[cell], folder, error)) return Fail(error);
        }
    }
    table.write("quit\n");
    table.waitForFinished();
    std::cout << "52 templates written to " << folder.string() << '\n';
    return 0;
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    QGuiApplication app(argc, argv);
    // The same per-user folder as the program's own.
    QCoreApplication::setOrganizationName("FELTHAWK");
    QCoreApplication::setApplicationName("FELTHAWK");

    QCommandLineParser parser;
    parser.setApplicationDescription("Makes the card templates that capture recognises.");
    parser.addHelpOption();
    const QCommandLineOption slotOption(
        "slot", "The slot to read: hole1, hole2, flop1, flop2, flop3, turn, river.", "slot");
    const QCommandLineOption cardOption("card", "The card the slot shows, such as AS or TD.",
                                        "card");
    const QCommandLineOption seatOption("me-seat", "Your seat on the board, 0..9.", "seat", "0");
    const QCommandLineOption outOption("out", "The folder for the templates.", "folder");
    const QCommandLineOption fromTableOption("from-table",
                                             "Make all 52 templates from felthawk-table.");
    const QCommandLineOption tableOption("table", "The felthawk-table program.", "path");
    parser.addOptions(
        {slotOption, cardOption, seatOption, outOption, fromTableOption, tableOption});
    parser.process(app);

    const CaptureFolders defaults = DefaultCaptureFolders();
    const std::filesystem::path folder =
        parser.isSet(outOption) ? std::filesystem::path(parser.value(outOption).toStdString())
                                : defaults.dataFolder / "Icons";
    std::error_code created;
    std::filesystem::create_directories(folder, created);
    if (created) return Fail("cannot create " + folder.string());

    std::string error;
    std::unique_ptr<XcbWindowSystem> windows = XcbWindowSystem::Open(error);
    if (!windows) return Fail(error);
    // The probe icon of each search is of no use here.
    QTemporaryDir scratch;
    ClientCapture capture(*windows, {scratch.path().toStdString(), {}});

    if (parser.isSet(fromTableOption)) {
        const QString tablePath =
            parser.isSet(tableOption) ? parser.value(tableOption) : DefaultTablePath();
        return MakeSetFromTable(capture, tablePath, folder);
    }

    const int cell = CellFromSlotName(parser.value(slotOption).toStdString());
    if (cell < 0)
        return Fail("--slot must be one of hole1, hole2, flop1, flop2, flop3, turn, river");
    const std::string card = parser.value(cardOption).toUpper().toStdString();
    if (!IsCardText(card)) return Fail("--card must be a card such as AS or TD");
    bool seatOk = false;
    const int meSeat = parser.value(seatOption).toInt(&seatOk);
    if (!seatOk || meSeat < 0 || meSeat >= kSeatCount) return Fail("--me-seat must be 0..9");

    NoBoard board(PreviousSeat(meSeat));
    capture.FindClient(board, 0);
    if (!capture.ClientFound()) return Fail("no window with \"Hold'em\" in its title");
    if (!SaveTemplate(capture, board, cell, card, folder, error)) return Fail(error);
    std::cout << (folder / TemplateFileName(card)).string() << '\n';
    return 0;
}
