// The image control of the board: a picture that reports presses, releases
// and drops to its form, with positions in twips and the buttons numbered as
// the form's handlers expect them (1 left, 2 right, 4 middle).
#pragma once

#include <functional>

#include <QLabel>
#include <QPixmap>
#include <QString>

namespace felthawk {

// Mouse buttons as the handlers see them.
constexpr int kLeftButton = 1;
constexpr int kRightButton = 2;
constexpr int kMiddleButton = 4;

// A picture and the name it was loaded by, so that a copy can be told apart
// from the blank without comparing pixels. The name of a card face is its
// text ("AS"); the blank card is kBlankPicture.
struct Picture {
    QString name;
    QPixmap pixmap;
};
inline const QString kBlankPicture = QStringLiteral("blank");

// Loads one of the board's pictures from the built-in resources.
Picture LoadPicture(const QString& name);

class PictureBox : public QLabel {
  public:
    using MouseHandler = std::function<void(int button, int x, int y)>;
    using DropHandler = std::function<void(PictureBox* source)>;

    // `index` is the element of the control array the box belongs to.
    PictureBox(QWidget* parent, const QString& arrayName, int index);

    int Index() const { return index_; }
    QString ArrayName() const { return arrayName_; }

    const Picture& GetPicture() const { return picture_; }
    void SetPicture(const Picture& picture);

    void OnMouseDown(MouseHandler handler) { mouseDown_ = std::move(handler); }
    void OnMouseUp(MouseHandler handler) { mouseUp_ = std::move(handler); }
    // Accepts drops of other boxes from now on.
    void OnDragDrop(DropHandler handler);

    // A manual drag: armed by a press, the picture follows the mouse once it
    // moves, and a release or a drop ends it.
    void BeginDrag() { dragArmed_ = true; }
    void EndDrag() { dragArmed_ = false; }
    bool Dragging() const { return dragArmed_; }

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QString arrayName_;
    int index_;
    Picture picture_;
    MouseHandler mouseDown_;
    MouseHandler mouseUp_;
    DropHandler dragDrop_;
    bool dragArmed_ = false;
    QPoint pressPoint_;
};

// The button number of a Qt button: 1 left, 2 right, 4 middle, 0 other.
int ButtonNumber(Qt::MouseButton button);

}  // namespace felthawk
