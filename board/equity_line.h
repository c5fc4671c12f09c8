// The true equity of the user's cards against the seats still in the hand,
// beside the design's rule-of-thumb figures: a line of its own under the
// results panel, its twin in the capture strip, and the tool tip of l_Me.
//
// The figure is worked out away from the window's thread. Every change of
// cards, seats or ranges starts a new computation and cancels the one
// before; a result that arrives after a newer start is dropped, so the line
// always speaks of the table as it is and the window never waits.
//
// Each seat may hold a range in players' notation ("QQ+,AKs", "random" when
// none is set); ranges are checked when entered and kept until the program
// ends.
#pragma once

#include <array>
#include <atomic>
#include <memory>

#include <QObject>
#include <QString>

#include "cards/recalculate.h"

class QAction;
class QLabel;
class QMenu;
class QWidget;

namespace felthawk {

class IDialogs;

class EquityLine : public QObject {
    Q_OBJECT

  public:
    // Puts its two lines on `surface`, the window's background, and its tool
    // tip on `meLabel`; both must outlive this object.
    EquityLine(QWidget* surface, QLabel* meLabel, QObject* parent = nullptr);
    ~EquityLine() override;

    // The strip's line shows while the window is the capture strip.
    void SetCompact(bool on);

    // Drops the figure and any computation under way.
    void Clear();
    // Starts over for this table: seats "M" the user, "H" in the hand.
    void Restart(const TextCells& cells, const std::array<char, kSeatCount>& seats);

    // The seat's range text, "" for random.
    QString Range(int seat) const { return mRanges[seat]; }
    // A line for the seat's tool tip: "Range: QQ+,AKs", or "" for random.
    QString RangeTip(int seat) const;
    // Sets the seat's range, "" for random; returns the fault of a
    // malformed range (and keeps the old one) or "".
    QString SetRange(int seat, const QString& text);
    // Asks for the seat's range with an input box until it is valid or the
    // user cancels; restarts the computation when it changed.
    void AskRange(IDialogs& dialogs, QWidget* parent, int seat);

    // The line as it reads now.
    QString Text() const;
    // A computation is under way.
    bool Busy() const { return mRunning != nullptr; }

  signals:
    // The line shows a finished computation's result (or its fault).
    void Shown();

  private:
    struct Job;
    void Show(const QString& text, const QString& tip);

    QLabel* mPanelLine;
    QLabel* mStripLine;
    QLabel* mMeLabel;
    std::array<QString, kSeatCount> mRanges;
    TextCells mCells;
    std::array<char, kSeatCount> mSeats{};
    std::shared_ptr<Job> mRunning;
};

}  // namespace felthawk
