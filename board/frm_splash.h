// frmSplash: the picture shown while the program starts. When it becomes
// active it starts the silent version check; the check's dialogue closes it.
// Its own timer closes it after 2000 ms unless the check shows a question or
// a download, so a slow server, a program without an update service, or a
// splash that never became active, does not stand in the way.
#pragma once

#include <QDialog>

class QTimer;

namespace felthawk {

class IUpdateService;

class frmSplash : public QDialog {
    Q_OBJECT

  public:
    // `update` may be null: then there is no check and the timer closes the
    // splash.
    explicit frmSplash(IUpdateService* update, QWidget* parent = nullptr);

    // Set once the version check has started; the timer leaves a busy
    // splash alone while the check shows its dialogue.
    bool Busy() const { return busy_; }
    QTimer* Timer1() const { return timer_; }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Activated();
    void TimerTick();

    IUpdateService* update_;
    QTimer* timer_;
    bool busy_ = false;
    bool activated_ = false;
};

}  // namespace felthawk
