// felthawk-table: a poker table in a real X11 window, for tests and
// demonstrations of capture. Its title holds "Hold'em", and it draws the
// cards it is given where capture reads them.
//
//   felthawk-table --cells "AS,KS,QH,JD,2C,," --me-seat 0 [--layout six-seat]
//
// --layout chooses the table: "default", the points capture always knew;
// "wide", a larger window with every card elsewhere; "six-seat", six seats
// and other card pictures.
//
// Once the table is on the screen it prints "ready <window id>" on a line
// of its own. With --commands it reads further lines from standard input:
// "cells <cells>" deals anew (and prints "ready" again), "quit" ends it.
#include <unistd.h>
#include <xcb/xcb.h>
#include <QApplication>
#include <QCommandLineParser>
#include <QGuiApplication>
#include <QPainter>
#include <QSocketNotifier>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <iostream>
#include <string>

#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

class TableWindow : public QWidget {
  public:
    TableWindow(const TextCells& cells, int meSeat, const TableDesign& design, QSize size)
        : meSeat_(meSeat), design_(design) {
        setFixedSize(size);
        Deal(cells);
    }

    void Deal(const TextCells& cells) {
        picture_ = DrawTable(cells, meSeat_, design_);
        readyPending_ = true;
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.drawImage(0, 0, picture_);
        if (readyPending_) {
            readyPending_ = false;
            // After this paint has gone out to the server.
            QTimer::singleShot(0, this, [this] { AnnounceReady(); });
        }
    }

  private:
    void AnnounceReady() {
        auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
        if (x11 != nullptr && x11->connection() != nullptr) {
            xcb_connection_t* c = x11->connection();
            std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
        }
        std::cout << "ready 0x" << std::hex << winId() << std::dec << std::endl;
    }

    int meSeat_;
    const TableDesign& design_;
    QImage picture_;
    bool readyPending_ = false;
};

int Fail(const std::string& message) {
    std::cerr << "felthawk-table: " << message << '\n';
    return 2;
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    QApplication app(argc, argv);
    QApplication::setApplicationName("felthawk-table");

    QCommandLineParser parser;
    parser.setApplicationDescription("A poker table in an X11 window, drawn for capture.");
    parser.addHelpOption();
    const QCommandLineOption cellsOption(
        "cells", "Seven comma-separated cells: hole, hole, flop x3, turn, river; XX face down.",
        "cells", ",,,,,,");
    const QCommandLineOption seatOption("me-seat", "The user's seat on the board, 0..9.", "seat",
                                        "0");
    const QCommandLineOption titleOption("title", "The window title.", "title",
                                         "Felthawk Test Table - Texas Hold'em");
    const QCommandLineOption atOption("at", "Where the window opens, as X,Y.", "x,y", "0,0");
    const QCommandLineOption sizeOption(
        "size", "The window's size, as WxH; the table is cut off at the right and the bottom.",
        "wxh");
    const QCommandLineOption commandsOption("commands", "Read further deals from standard input.");
    const QCommandLineOption layoutOption("layout", "The table: default, wide or six-seat.", "name",
                                          "default");
    parser.addOptions(
        {cellsOption, seatOption, titleOption, atOption, sizeOption, commandsOption, layoutOption});
    parser.process(app);

    std::string error;
    const std::optional<TextCells> cells =
        ParseTableCells(parser.value(cellsOption).toStdString(), error);
    if (!cells) return Fail(error);
    bool seatOk = false;
    const int meSeat = parser.value(seatOption).toInt(&seatOk);
    if (!seatOk || meSeat < 0 || meSeat >= kSeatCount) return Fail("--me-seat must be 0..9");
    const QStringList at = parser.value(atOption).split(',');
    bool xOk = false;
    bool yOk = false;
    const int x = at.value(0).toInt(&xOk);
    const int y = at.value(1).toInt(&yOk);
    if (at.size() != 2 || !xOk || !yOk) return Fail("--at must be X,Y");
    const TableDesign* design = FindTableDesign(parser.value(layoutOption).toStdString());
    if (design == nullptr) {
        std::string names;
        for (std::string_view name : TableDesignNames()) {
            names += (names.empty() ? "" : ", ") + std::string(name);
        }
        return Fail("--layout must be one of " + names);
    }

    QSize size(design->width, design->height);
    if (parser.isSet(sizeOption)) {
        const QStringList parts = parser.value(sizeOption).split('x');
        bool widthOk = false;
        bool heightOk = false;
        size = QSize(parts.value(0).toInt(&widthOk), parts.value(1).toInt(&heightOk));
        constexpr int kLargest = 4096;
        if (parts.size() != 2 || !widthOk || !heightOk || size.width() < 1 || size.height() < 1 ||
            size.width() > kLargest || size.height() > kLargest) {
            return Fail("--size must be WxH, each 1..4096");
        }
    }

    TableWindow window(*cells, meSeat, *design, size);
    window.setWindowTitle(parser.value(titleOption));
    window.move(x, y);
    window.show();

    QSocketNotifier* input = nullptr;
    if (parser.isSet(commandsOption)) {
        input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, &app);
        QObject::connect(input, &QSocketNotifier::activated, [&] {
            std::string line;
            if (!std::getline(std::cin, line) || line == "quit") {
                QApplication::quit();
                return;
            }
            constexpr std::string_view kDeal = "cells ";
            std::string dealError;
            const std::optional<TextCells> deal =
                line.rfind(kDeal, 0) == 0 ? ParseTableCells(line.substr(kDeal.size()), dealError)
                                          : std::nullopt;
            if (!deal) {
                std::cout << "error " << (dealError.empty() ? "unknown command" : dealError)
                          << std::endl;
                return;
            }
            window.Deal(*deal);
        });
    }
    return app.exec();
}
