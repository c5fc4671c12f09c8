#include "board/gauge_line.h"

#include <QPainter>

#include "board/layout.h"

namespace felthawk {

GaugeLine::GaugeLine(QWidget* parent, int x1, int y1, int x2, int y2, int penWidth)
    : QWidget(parent), x1_(x1), y1_(y1), x2_(x2), y2_(y2), penWidth_(penWidth) {
    setObjectName(QStringLiteral("l_Temp"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(parent->rect());
}

void GaugeLine::SetX2(double x2) {
    if (x2 == x2_) return;
    x2_ = x2;
    update();
}

void GaugeLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(220, 30, 30), penWidth_, Qt::SolidLine, Qt::RoundCap));
    const double scale = 1.0 / kTwipsPerPixel;
    painter.drawLine(QPointF(x1_ * scale, y1_ * scale), QPointF(x2_ * scale, y2_ * scale));
}

}  // namespace felthawk
