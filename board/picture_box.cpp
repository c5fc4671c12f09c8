#include "board/picture_box.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>

#include "board/layout.h"

namespace felthawk {
namespace {

const QString kDragMime = QStringLiteral("application/x-felthawk-picture");

}  // namespace

Picture LoadPicture(const QString& name) {
    return Picture{name, QPixmap(QStringLiteral(":/felthawk/%1.png").arg(name))};
}

int ButtonNumber(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return kLeftButton;
        case Qt::RightButton:
            return kRightButton;
        case Qt::MiddleButton:
            return kMiddleButton;
        default:
            return 0;
    }
}

PictureBox::PictureBox(QWidget* parent, const QString& arrayName, int index)
    : QLabel(parent), arrayName_(arrayName), index_(index) {
    // A control array shares one name; the index tells the elements apart.
    setObjectName(arrayName);
    setProperty("index", index);
    setScaledContents(true);
}

void PictureBox::SetPicture(const Picture& picture) {
    picture_ = picture;
    setPixmap(picture.pixmap);
}

void PictureBox::OnDragDrop(DropHandler handler) {
    dragDrop_ = std::move(handler);
    setAcceptDrops(true);
}

void PictureBox::mousePressEvent(QMouseEvent* event) {
    pressPoint_ = event->position().toPoint();
    if (mouseDown_) {
        mouseDown_(ButtonNumber(event->button()), Twips(event->position().x()),
                   Twips(event->position().y()));
    }
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event) {
    if (mouseUp_) {
        mouseUp_(ButtonNumber(event->button()), Twips(event->position().x()),
                 Twips(event->position().y()));
    }
}

void PictureBox::mouseMoveEvent(QMouseEvent* event) {
    if (!dragArmed_) return;
    if ((event->position().toPoint() - pressPoint_).manhattanLength() <
        QApplication::startDragDistance()) {
        return;
    }
    // The drag carries no data of its own: the drop asks for the source box.
    auto* mime = new QMimeData;
    mime->setData(kDragMime, QStringLiteral("%1(%2)").arg(arrayName_).arg(index_).toUtf8());
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    drag->setPixmap(picture_.pixmap);
    drag->setHotSpot(pressPoint_);
    drag->exec(Qt::MoveAction);
    // The release that ends a drag goes to the drop target, so the drag ends
    // here.
    dragArmed_ = false;
}

void PictureBox::dragEnterEvent(QDragEnterEvent* event) {
    if (dragDrop_ && event->mimeData()->hasFormat(kDragMime) &&
        dynamic_cast<PictureBox*>(event->source()) != nullptr) {
        event->acceptProposedAction();
    }
}

void PictureBox::dropEvent(QDropEvent* event) {
    auto* source = dynamic_cast<PictureBox*>(event->source());
    if (!dragDrop_ || source == nullptr) return;
    event->acceptProposedAction();
    dragDrop_(source);
}

}  // namespace felthawk
