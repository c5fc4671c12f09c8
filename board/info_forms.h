// The two small information forms of the Help menu: frmAbout ("About Us")
// and frmReq ("Requirements", which the menu bar keeps hidden).
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace felthawk {

class frmAbout : public QDialog {
    Q_OBJECT

  public:
    explicit frmAbout(QWidget* parent = nullptr);

    QLabel* lblTitle() const { return lblTitle_; }
    QLabel* lblVersion() const { return lblVersion_; }
    QLabel* lblDescription() const { return lblDescription_; }
    // The suggestion address; a click on it starts a mail there.
    QLabel* Label1() const { return label1_; }
    QPushButton* cmdOK() const { return cmdOK_; }

  private:
    QLabel* lblTitle_;
    QLabel* lblVersion_;
    QLabel* lblDescription_;
    QLabel* label1_;
    QPushButton* cmdOK_;
};

class frmReq : public QDialog {
    Q_OBJECT

  public:
    explicit frmReq(QWidget* parent = nullptr);

    QLabel* lblDescription() const { return lblDescription_; }

  private:
    QLabel* lblDescription_;
};

// The texts of the two forms.
QString AboutDescription();
QString RequirementsText();

}  // namespace felthawk
