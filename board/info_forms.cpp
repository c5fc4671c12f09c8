#include "board/info_forms.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "board/shell.h"

namespace felthawk {
namespace {

constexpr int kAboutTextWidth = 400;

// A label that starts a mail to its own text when clicked.
class MailLabel : public QLabel {
  public:
    using QLabel::QLabel;

  protected:
    void mouseReleaseEvent(QMouseEvent*) override { OpenMailTo(text()); }
};

QLabel* NamedLabel(QWidget* parent, const char* name, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

}  // namespace

QString AboutDescription() {
    // The double blanks after the full stops are part of the text.
    return QStringLiteral(
               "While we understand that there is more to poker than probability,  Felthawk "
               "will allow you to focus on those other factors, improving your all-around "
               "game.") +
           QStringLiteral("\n\n") +
           QStringLiteral(
               "Felthawk is FREE software and it's constantly evolving.  Updates will be "
               "released frequently and we always appreciate suggestions for improvement.  We "
               "take every conceivable idea seriously.  If you have a suggestion, please email");
}

QString RequirementsText() {
    return QStringLiteral("Processor \t:Intel Celeron 1.7 GHz or more\n") +
           QStringLiteral("Memory    \t:128 MB RAM\n") +
           QStringLiteral("Disk Space\t:6 MB Space\n");
}

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About FeltHawk"));
    lblTitle_ = NamedLabel(this, "lblTitle", QStringLiteral("Felthawk"));
    QFont titleFont = lblTitle_->font();
    titleFont.setPointSize(titleFont.pointSize() * 2);
    titleFont.setBold(true);
    lblTitle_->setFont(titleFont);
    lblVersion_ = NamedLabel(this, "lblVersion", QStringLiteral("Version 10"));
    lblDescription_ = NamedLabel(this, "lblDescription", AboutDescription());
    lblDescription_->setWordWrap(true);
    label1_ = new MailLabel(SuggestionMail(), this);
    label1_->setObjectName(QStringLiteral("Label1"));
    label1_->setCursor(Qt::PointingHandCursor);
    label1_->setStyleSheet(QStringLiteral("color: #1a4fb5; text-decoration: underline;"));
    cmdOK_ = new QPushButton(QStringLiteral("OK"), this);
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTitle_);
    layout->addWidget(lblVersion_);
    layout->addWidget(lblDescription_);
    layout->addWidget(label1_);
    layout->addWidget(cmdOK_, 0, Qt::AlignRight);
    // A wrapped text tells its height only for a given width: fix the width
    // and ask, so that the form is as tall as the text at any font size.
    lblDescription_->setFixedWidth(kAboutTextWidth);
    lblDescription_->setMinimumHeight(lblDescription_->heightForWidth(kAboutTextWidth));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

frmReq::frmReq(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmReq"));
    setWindowTitle(QStringLiteral("Requirements"));
    lblDescription_ = NamedLabel(this, "lblDescription", RequirementsText());
    // "&Close" was never given a handler; the window's own close button
    // closes the form.
    auto* cmdOK = new QPushButton(QStringLiteral("&Close"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblDescription_);
    layout->addWidget(cmdOK, 0, Qt::AlignRight);
}

}  // namespace felthawk
