#include "board/frm_splash.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QTimer>

#include "board/picture_box.h"
#include "board/services.h"

namespace felthawk {

constexpr int kSplashInterval = 2000;

frmSplash::frmSplash(IUpdateService* update, QWidget* parent)
    : QDialog(parent, Qt::SplashScreen | Qt::FramelessWindowHint), update_(update) {
    setObjectName(QStringLiteral("frmSplash"));
    setModal(true);
    const Picture picture = LoadPicture(QStringLiteral("splash"));
    auto* image = new QLabel(this);
    image->setObjectName(QStringLiteral("Image1"));
    image->setPixmap(picture.pixmap);
    image->resize(picture.pixmap.size());
    setFixedSize(picture.pixmap.size());

    timer_ = new QTimer(this);
    timer_->setObjectName(QStringLiteral("Timer1"));
    timer_->setInterval(kSplashInterval);
    connect(timer_, &QTimer::timeout, this, &frmSplash::TimerTick);
    timer_->start();
}

void frmSplash::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && !activated_) {
        activated_ = true;
        // Let the splash paint before the check blocks the thread.
        QTimer::singleShot(0, this, &frmSplash::Activated);
    }
}

void frmSplash::Activated() {
    if (update_ == nullptr) return;
    busy_ = true;
    QCoreApplication::processEvents();
    update_->VersionProgram1(this);
}

void frmSplash::TimerTick() {
    if (!busy_ || !update_->DialogueOpen()) close();
}

}  // namespace felthawk
