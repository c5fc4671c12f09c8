// l_Temp: the red gauge, a line whose end point X2 grows with the strength.
// It lies over the whole board without taking the mouse, and draws from its
// fixed start (X1, Y1) to (X2, Y2), all in twips.
#pragma once

#include <QWidget>

namespace felthawk {

class GaugeLine : public QWidget {
  public:
    GaugeLine(QWidget* parent, int x1, int y1, int x2, int y2, int penWidth);

    double X1() const { return x1_; }
    double X2() const { return x2_; }
    void SetX2(double x2);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double x1_, y1_, x2_, y2_;
    int penWidth_;
};

}  // namespace felthawk
