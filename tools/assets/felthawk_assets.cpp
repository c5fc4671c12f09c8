// felthawk-assets: draws every picture of the board with QPainter and writes
// them as PNG files. The pictures are committed under assets/board and built
// into the program; run this again after changing a drawing:
//
//   felthawk-assets assets/board
//
// Sizes follow the board's layout: cards 18 by 31, the table 675 by 534, the
// compact strip 672 by 66, buttons 32 by 32.
#include <array>
#include <cstdio>
#include <functional>

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include "board/layout.h"

namespace {

constexpr int kCardW = 18;
constexpr int kCardH = 31;

const QColor kRed(200, 20, 30);
const QColor kBlack(20, 20, 24);
const QColor kFelt(22, 110, 60);
const QColor kFeltDark(12, 70, 38);
const QColor kBackdrop(24, 40, 32);
const QColor kGold(255, 216, 74);

QFont Font(int pixels, bool bold = true, const char* family = "DejaVu Sans") {
    QFont font(QString::fromLatin1(family));
    font.setPixelSize(pixels);
    font.setBold(bold);
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

QImage Canvas(int w, int h) {
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void Paint(QImage& image, const std::function<void(QPainter&)>& draw) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    draw(painter);
}

bool Save(const QImage& image, const QDir& dir, const QString& name) {
    const QString path = dir.filePath(name + QStringLiteral(".png"));
    if (!image.save(path)) {
        std::fprintf(stderr, "felthawk-assets: cannot write %s\n", qPrintable(path));
        return false;
    }
    return true;
}

// ---- Cards --------------------------------------------------------------------

struct Suit {
    char letter;
    QString sign;
    bool red;
};
const std::array<Suit, 4> kSuits{{{'C', QStringLiteral("\u2663"), false},
                                  {'S', QStringLiteral("\u2660"), false},
                                  {'H', QStringLiteral("\u2665"), true},
                                  {'D', QStringLiteral("\u2666"), true}}};
constexpr std::array<char, 13> kRanks{'2', '3', '4', '5', '6', '7', '8',
                                      '9', 'T', 'J', 'Q', 'K', 'A'};

QImage CardFace(char rank, const Suit& suit) {
    QImage image = Canvas(kCardW, kCardH);
    Paint(image, [&](QPainter& p) {
        p.setPen(QPen(QColor(90, 90, 90), 1));
        p.setBrush(QColor(252, 252, 248));
        p.drawRoundedRect(QRectF(0.5, 0.5, kCardW - 1, kCardH - 1), 2.5, 2.5);
        p.setPen(suit.red ? kRed : kBlack);
        // The ten is written "10" in a narrow face so it fits the card.
        const bool ten = rank == 'T';
        p.setFont(ten ? Font(11, true, "DejaVu Sans Condensed") : Font(13));
        p.drawText(QRect(0, 0, kCardW, 15), Qt::AlignHCenter | Qt::AlignVCenter,
                   ten ? QStringLiteral("10") : QString(QChar(rank)));
        p.setFont(Font(14, false));
        p.drawText(QRect(0, 14, kCardW, 16), Qt::AlignHCenter | Qt::AlignVCenter, suit.sign);
    });
    return image;
}

// An empty place for a card: a faint outline on the felt.
QImage BlankCard() {
    QImage image = Canvas(kCardW, kCardH);
    Paint(image, [](QPainter& p) {
        p.setPen(QPen(QColor(255, 255, 255, 110), 1, Qt::DashLine));
        p.setBrush(QColor(0, 0, 0, 40));
        p.drawRoundedRect(QRectF(0.5, 0.5, kCardW - 1, kCardH - 1), 2.5, 2.5);
    });
    return image;
}

// ---- The table ----------------------------------------------------------------

// Seat anchors in pixels (the design's twips over 15); the seat pictures and
// the user's cards stand there, 40 by 31.
constexpr std::array<QPoint, 10> kSeats{{{262, 322},
                                         {393, 322},
                                         {496, 337},
                                         {561, 397},
                                         {496, 470},
                                         {393, 483},
                                         {262, 483},
                                         {154, 470},
                                         {72, 397},
                                         {154, 337}}};

void Panel(QPainter& p, const QRectF& rect, const QString& title) {
    p.setPen(QPen(QColor(255, 255, 255, 40), 1));
    p.setBrush(QColor(10, 22, 16, 200));
    p.drawRoundedRect(rect, 8, 8);
    if (title.isEmpty()) return;
    p.setPen(QColor(255, 255, 255, 70));
    p.setFont(Font(9, false));
    p.drawText(rect.adjusted(8, 3, -8, 0), Qt::AlignRight | Qt::AlignTop, title);
}

QImage Table() {
    QImage image = Canvas(675, 534);
    Paint(image, [](QPainter& p) {
        QLinearGradient back(0, 0, 0, 534);
        back.setColorAt(0, QColor(30, 48, 40));
        back.setColorAt(1, QColor(16, 28, 22));
        p.fillRect(QRect(0, 0, 675, 534), back);
        // Top band: buttons and banner.
        p.fillRect(QRect(0, 0, 675, 74), QColor(12, 20, 16));
        p.setPen(QColor(255, 255, 255, 30));
        p.drawLine(0, 74, 675, 74);
        // Results and deck.
        Panel(p, QRectF(22, 82, 318, 206), QString());
        Panel(p, QRectF(350, 90, 314, 198), QString());
        // The rail and the felt.
        const QRectF rail(30, 300, 620, 226);
        QLinearGradient wood(0, 300, 0, 526);
        wood.setColorAt(0, QColor(120, 72, 36));
        wood.setColorAt(1, QColor(70, 40, 20));
        p.setPen(QPen(QColor(40, 22, 10), 2));
        p.setBrush(wood);
        p.drawRoundedRect(rail, 113, 113);
        QRadialGradient felt(QPointF(340, 410), 320);
        felt.setColorAt(0, kFelt.lighter(115));
        felt.setColorAt(1, kFeltDark);
        p.setPen(QPen(QColor(8, 50, 26), 2));
        p.setBrush(felt);
        p.drawRoundedRect(rail.adjusted(14, 14, -14, -14), 99, 99);
        // The community card line.
        p.setPen(QPen(QColor(255, 255, 255, 45), 1));
        p.setBrush(Qt::NoBrush);
        // Round all five cells, the river's included.
        const QRect frame = felthawk::TwipRect(
            felthawk::kCommunityFrame.left(), felthawk::kCommunityFrame.top(),
            felthawk::kCommunityFrame.width(), felthawk::kCommunityFrame.height());
        p.drawRoundedRect(QRectF(frame), 5, 5);
        p.setFont(Font(10, true));
        p.setPen(QColor(255, 255, 255, 60));
        p.drawText(QRect(frame.center().x() - 125, frame.bottom() + 5, 250, 16), Qt::AlignHCenter,
                   QStringLiteral("FELTHAWK"));
        // Seat places.
        for (const QPoint& seat : kSeats) {
            p.setPen(QPen(QColor(0, 0, 0, 90), 1));
            p.setBrush(QColor(0, 0, 0, 55));
            p.drawRoundedRect(QRectF(seat.x() - 3, seat.y() - 3, 46, 37), 8, 8);
        }
    });
    return image;
}

// The compact strip: a dark bar with the seven card places.
QImage Strip() {
    QImage image = Canvas(672, 66);
    Paint(image, [](QPainter& p) {
        QLinearGradient back(0, 0, 0, 66);
        back.setColorAt(0, QColor(28, 60, 42));
        back.setColorAt(1, QColor(12, 30, 20));
        p.fillRect(QRect(0, 0, 672, 66), back);
        p.setPen(QColor(255, 255, 255, 40));
        p.drawLine(0, 65, 672, 65);
        for (int left : {259, 280, 349, 370, 392, 413, 435}) {
            p.setPen(QPen(QColor(255, 255, 255, 60), 1, Qt::DashLine));
            p.setBrush(QColor(0, 0, 0, 50));
            p.drawRoundedRect(QRectF(left + 0.5, 19.5, 17, 30), 2.5, 2.5);
        }
    });
    return image;
}

// ---- Seats, dealer, user ------------------------------------------------------

QImage Seat(const QColor& body, const QString& caption, bool dashed) {
    QImage image = Canvas(40, 31);
    Paint(image, [&](QPainter& p) {
        p.setPen(QPen(body.darker(160), 1, dashed ? Qt::DashLine : Qt::SolidLine));
        p.setBrush(dashed ? QColor(0, 0, 0, 60) : body);
        p.drawRoundedRect(QRectF(0.5, 0.5, 39, 30), 7, 7);
        if (!dashed) {
            // A small head and shoulders.
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(255, 255, 255, 170));
            p.drawEllipse(QPointF(20, 8), 4, 4);
            p.drawRoundedRect(QRectF(12, 12, 16, 6), 3, 3);
        }
        p.setPen(dashed ? QColor(230, 230, 230) : QColor(255, 255, 255));
        p.setFont(Font(9, true));
        p.drawText(QRect(0, dashed ? 0 : 17, 40, dashed ? 31 : 13), Qt::AlignCenter, caption);
    });
    return image;
}

QImage DealerButton() {
    QImage image = Canvas(14, 14);
    Paint(image, [](QPainter& p) {
        p.setPen(QPen(QColor(60, 60, 60), 1));
        p.setBrush(QColor(250, 250, 250));
        p.drawEllipse(QRectF(0.5, 0.5, 13, 13));
    });
    return image;
}

QImage MeMarker() {
    QImage image = Canvas(48, 18);
    Paint(image, [](QPainter& p) {
        p.setPen(QPen(kGold.darker(150), 1));
        p.setBrush(kGold);
        p.drawRoundedRect(QRectF(0.5, 0.5, 47, 17), 8, 8);
        p.setPen(kBlack);
        p.setFont(Font(11, true));
        p.drawText(QRect(0, 0, 48, 18), Qt::AlignCenter, QStringLiteral("ME"));
    });
    return image;
}

// ---- Buttons --------------------------------------------------------------------

QImage RoundButton(const QColor& colour, const std::function<void(QPainter&)>& glyph) {
    QImage image = Canvas(32, 32);
    Paint(image, [&](QPainter& p) {
        QRadialGradient shade(QPointF(12, 10), 22);
        shade.setColorAt(0, colour.lighter(140));
        shade.setColorAt(1, colour.darker(120));
        p.setPen(QPen(colour.darker(180), 1.2));
        p.setBrush(shade);
        p.drawEllipse(QRectF(1, 1, 30, 30));
        p.setPen(QPen(Qt::white, 2.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
        glyph(p);
    });
    return image;
}

QImage NewHandButton() {
    return RoundButton(QColor(40, 140, 70), [](QPainter& p) {
        // Two cards fanned out: a new deal.
        p.setPen(QPen(QColor(40, 40, 40), 1));
        p.setBrush(Qt::white);
        p.save();
        p.translate(16, 17);
        p.rotate(-14);
        p.drawRoundedRect(QRectF(-9, -8, 9, 13), 1.5, 1.5);
        p.rotate(28);
        p.drawRoundedRect(QRectF(0, -8, 9, 13), 1.5, 1.5);
        p.restore();
    });
}

QImage CloseButton() {
    return RoundButton(QColor(180, 40, 40), [](QPainter& p) {
        p.drawLine(QPointF(11, 11), QPointF(21, 21));
        p.drawLine(QPointF(21, 11), QPointF(11, 21));
    });
}

// Capture off: a grey eye; capture on: the eye with a red recording dot.
QImage CaptureButton(bool on) {
    return RoundButton(on ? QColor(50, 90, 170) : QColor(110, 110, 118), [on](QPainter& p) {
        QPainterPath eye;
        eye.moveTo(7, 16);
        eye.quadTo(16, 7, 25, 16);
        eye.quadTo(16, 25, 7, 16);
        p.setPen(QPen(Qt::white, 1.8));
        p.drawPath(eye);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(16, 16), 2.6, 2.6);
        if (on) {
            p.setPen(QPen(Qt::white, 1));
            p.setBrush(QColor(230, 30, 30));
            p.drawEllipse(QPointF(25, 7), 4, 4);
        }
    });
}

// ---- Splash and icon ------------------------------------------------------------

QImage Splash() {
    QImage image = Canvas(380, 200);
    Paint(image, [](QPainter& p) {
        QLinearGradient back(0, 0, 0, 200);
        back.setColorAt(0, kFelt);
        back.setColorAt(1, kFeltDark);
        p.setPen(QPen(QColor(120, 72, 36), 6));
        p.setBrush(back);
        p.drawRect(QRectF(3, 3, 374, 194));
        p.setPen(Qt::white);
        p.setFont(Font(40, true));
        p.drawText(QRect(0, 40, 380, 60), Qt::AlignCenter, QStringLiteral("Felthawk"));
        p.setPen(kGold);
        p.setFont(Font(14, false));
        p.drawText(QRect(0, 100, 380, 24), Qt::AlignCenter,
                   QStringLiteral("Texas Hold'em assistant"));
        p.setPen(QColor(230, 230, 230));
        p.setFont(Font(11, false));
        p.drawText(QRect(0, 150, 380, 20), Qt::AlignCenter, QStringLiteral("Version 10"));
    });
    return image;
}

QImage Icon() {
    QImage image = Canvas(64, 64);
    Paint(image, [](QPainter& p) {
        p.setPen(QPen(QColor(8, 50, 26), 2));
        p.setBrush(kFelt);
        p.drawEllipse(QRectF(2, 2, 60, 60));
        p.setPen(Qt::white);
        p.setFont(Font(40, false));
        p.drawText(QRect(0, 0, 64, 62), Qt::AlignCenter, QStringLiteral("\u2660"));
    });
    return image;
}

}  // namespace

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: felthawk-assets <output folder>\n");
        return 2;
    }
    QDir dir(QString::fromLocal8Bit(argv[1]));
    if (!dir.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "felthawk-assets: cannot make %s\n", argv[1]);
        return 1;
    }
    bool ok = true;
    for (const Suit& suit : kSuits) {
        for (char rank : kRanks) {
            ok &= Save(CardFace(rank, suit), dir, QString(QChar(rank)) + QChar(suit.letter));
        }
    }
    ok &= Save(BlankCard(), dir, QStringLiteral("blank"));
    ok &= Save(Table(), dir, QStringLiteral("table"));
    ok &= Save(Strip(), dir, QStringLiteral("imgSmall"));
    ok &=
        Save(Seat(QColor(40, 110, 190), QStringLiteral("IN"), false), dir, QStringLiteral("iHand"));
    ok &= Save(Seat(QColor(120, 120, 120), QStringLiteral("FOLD"), false), dir,
               QStringLiteral("ifold"));
    ok &= Save(Seat(QColor(150, 150, 150), QStringLiteral("EMPTY"), true), dir,
               QStringLiteral("iempty"));
    ok &= Save(DealerButton(), dir, QStringLiteral("dl2"));
    ok &= Save(Canvas(14, 14), dir, QStringLiteral("DL1"));
    ok &= Save(MeMarker(), dir, QStringLiteral("iME"));
    ok &= Save(NewHandButton(), dir, QStringLiteral("Image1"));
    ok &= Save(CloseButton(), dir, QStringLiteral("Image2"));
    ok &= Save(CaptureButton(false), dir, QStringLiteral("sp1"));
    ok &= Save(CaptureButton(true), dir, QStringLiteral("sp2"));
    ok &= Save(Splash(), dir, QStringLiteral("splash"));
    ok &= Save(Icon(), dir, QStringLiteral("icon"));
    return ok ? 0 : 1;
}
