#include "board/equity_line.h"

#include <QFutureWatcher>
#include <QLabel>
#include <QPalette>
#include <QtConcurrent/QtConcurrentRun>

#include "equity/table_equity.h"
#include "settings/dialogs.h"

namespace felthawk {

// One computation: what it answers, the flag that cancels it, and what it found.
struct EquityLine::Job {
    equity::EquityRequest request;
    std::atomic<bool> cancel{false};
    equity::EquityResult result;
    QString fault;
};

namespace {

// Where the lines stand, in twips: under the Win / Split row of the results
// panel, and under the captions at the strip's left.
constexpr int kPanelLeft = 495, kPanelTop = 4365, kPanelWidth = 4650;
constexpr int kStripLeft = 300, kStripTop = 750, kStripWidth = 3540;
constexpr int kLineHeight = 195;
constexpr int kTwipsPerPixel = 15;

QLabel* MakeLine(QWidget* surface, const char* name, int left, int top, int width) {
    auto* label = new QLabel(surface);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->setGeometry(left / kTwipsPerPixel, top / kTwipsPerPixel, width / kTwipsPerPixel,
                       kLineHeight / kTwipsPerPixel);
    label->setAttribute(Qt::WA_NoMousePropagation);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(kLineHeight / kTwipsPerPixel - 3);
    font.setBold(true);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, QColor(0x9f, 0xe8, 0xff));
    label->setPalette(palette);
    return label;
}

QString Percent(double fraction) {
    return QString::number(fraction * 100, 'f', 1) + QStringLiteral(" %");
}

QString Opponents(int n) {
    return n == 1 ? QStringLiteral("1 opponent") : QStringLiteral("%1 opponents").arg(n);
}

}  // namespace

EquityLine::EquityLine(QWidget* surface, QLabel* meLabel, QObject* parent)
    : QObject(parent),
      mPanelLine(MakeLine(surface, "lblEquity", kPanelLeft, kPanelTop, kPanelWidth)),
      mStripLine(MakeLine(surface, "lblEquitySmall", kStripLeft, kStripTop, kStripWidth)),
      mMeLabel(meLabel) {
    mStripLine->hide();
    mSeats.fill('E');
}

void EquityLine::SetCompact(bool on) {
    mStripLine->setVisible(on);
}

EquityLine::~EquityLine() {
    if (mRunning) mRunning->cancel = true;
}

void EquityLine::Clear() {
    if (mRunning) mRunning->cancel = true;
    mRunning.reset();
    Show(QString(), QString());
}

void EquityLine::Restart(const TextCells& cells, const std::array<char, kSeatCount>& seats) {
    mCells = cells;
    mSeats = seats;
    if (mRunning) mRunning->cancel = true;
    mRunning.reset();

    std::array<std::string, equity::kTableCells> cellTexts;
    for (int i = 0; i < equity::kTableCells; ++i) cellTexts[i] = cells[i];
    std::array<std::string, equity::kTableSeats> ranges;
    for (int i = 0; i < kSeatCount; ++i) ranges[i] = mRanges[i].toStdString();
    auto job = std::make_shared<Job>();
    try {
        if (cells[0].empty() || cells[1].empty()) {
            Show(QString(), QString());
            return;
        }
        job->request = equity::TableRequest(cellTexts, seats, ranges);
    } catch (const equity::EquityError& e) {
        Show(QStringLiteral("Equity: ") + QString::fromStdString(e.what()), QString());
        return;
    }
    job->request.cancel = &job->cancel;
    mRunning = job;
    for (QLabel* label : {mPanelLine, mStripLine}) label->setText(QStringLiteral("Equity: ..."));

    auto* watcher = new QFutureWatcher<void>(this);
    connect(watcher, &QFutureWatcher<void>::finished, this, [this, watcher, job] {
        watcher->deleteLater();
        if (mRunning != job) return;  // a newer table has taken over
        mRunning.reset();
        if (!job->fault.isEmpty()) {
            Show(QStringLiteral("Equity: ") + job->fault, QString());
            return;
        }
        const auto& r = job->result;
        QString text = QStringLiteral("Equity ") + Percent(r.equity);
        if (r.method == equity::EquityMethod::kMonteCarlo) {
            text += QStringLiteral(" \u00b1 ") + QString::number(r.stderr * 100, 'f', 1);
        }
        text += QStringLiteral(" v ") + Opponents(r.opponents);
        const QString tip =
            QStringLiteral("Equity %1: win %2, tie %3, against %4 (%5)")
                .arg(Percent(r.equity), Percent(r.win), Percent(r.tie), Opponents(r.opponents),
                     r.method == equity::EquityMethod::kExact ? QStringLiteral("exact")
                                                              : QStringLiteral("Monte Carlo"));
        Show(text, tip);
    });
    watcher->setFuture(QtConcurrent::run([job] {
        try {
            job->result = equity::ComputeEquity(job->request);
        } catch (const equity::EquityError& e) {
            job->fault = QString::fromStdString(e.what());
        }
    }));
}

QString EquityLine::SetRange(int seat, const QString& text) {
    const QString trimmed = text.trimmed();
    if (!trimmed.isEmpty()) {
        try {
            equity::ParseRange(trimmed.toStdString());
        } catch (const equity::EquityError& e) {
            return QString::fromStdString(e.what());
        }
    }
    mRanges[seat] = trimmed;
    return QString();
}

void EquityLine::AskRange(IDialogs& dialogs, QWidget* parent, int seat) {
    QString answer = mRanges[seat];
    while (true) {
        bool accepted = false;
        answer = dialogs.InputBox(
            parent,
            QStringLiteral("Range of seat %1, for example QQ+,AKs,A5s-A2s (empty: random)")
                .arg(seat + 1),
            QStringLiteral("Range"), answer, &accepted);
        if (!accepted) return;
        const QString fault = SetRange(seat, answer);
        if (fault.isEmpty()) break;
        dialogs.MessageBox(parent, fault, QStringLiteral("Range"), MessageIcon::Warning);
    }
    Restart(mCells, mSeats);
}

QString EquityLine::RangeTip(int seat) const {
    return mRanges[seat].isEmpty() ? QString() : QStringLiteral("Range: ") + mRanges[seat];
}

QString EquityLine::Text() const {
    return mPanelLine->text();
}

void EquityLine::Show(const QString& text, const QString& tip) {
    mPanelLine->setText(text);
    mStripLine->setText(text);
    mMeLabel->setToolTip(tip);
    emit Shown();
}

}  // namespace felthawk
