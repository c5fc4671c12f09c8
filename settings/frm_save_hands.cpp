#include "settings/frm_save_hands.h"

#include <QListWidget>
#include <QPushButton>

#include "settings/dialogs.h"
#include "settings/settings_store.h"

namespace felthawk {

namespace {

// Form units are twips, 15 to a pixel.
constexpr int Px(int twips) {
    return twips / 15;
}

// Both buttons end where the list does: "&Close" lines up with its right edge.
constexpr int kButtonWidth = 855;
constexpr int kButtonHeight = 375;

}  // namespace

frmSaveHands::frmSaveHands(IDialogs& dialogs, QWidget* parent)
    : QDialog(parent),
      dialogs_(dialogs),
      lstSave_(new QListWidget(this)),
      Command1_(new QPushButton(QStringLiteral("&Remove"), this)),
      cmdOK_(new QPushButton(QStringLiteral("&Close"), this)) {
    setObjectName(QStringLiteral("frmSaveHands"));
    setWindowTitle(QStringLiteral("Save Hands"));
    setFixedSize(Px(3120), Px(2880));

    lstSave_->setObjectName(QStringLiteral("lstSave"));
    lstSave_->setGeometry(Px(75), Px(75), Px(2880), Px(2205));
    Command1_->setObjectName(QStringLiteral("Command1"));
    Command1_->setGeometry(Px(90), Px(2385), Px(kButtonWidth), Px(kButtonHeight));
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setGeometry(Px(2100), Px(2385), Px(kButtonWidth), Px(kButtonHeight));

    // Enter closes the form; only a click or the space bar on "&Remove"
    // removes.
    Command1_->setAutoDefault(false);
    cmdOK_->setDefault(true);

    connect(Command1_, &QPushButton::clicked, this, &frmSaveHands::RemoveSelected);
    connect(cmdOK_, &QPushButton::clicked, this, &QDialog::accept);

    LoadHands();
}

void frmSaveHands::NewHand(const QString& joinedCells) {
    const int count = lstSave_->count();
    bool accepted = false;
    // A cancelled box answers "", and the hand is kept with an empty name.
    const QString name =
        dialogs_.InputBox(parentWidget(), QStringLiteral("Enter an appropriate Handname"),
                          QStringLiteral("Save Hand"), joinedCells, &accepted);
    if (count < kMaxSavedHands) {
        lstSave_->addItem(name + QLatin1Char(':') + joinedCells);
        WriteList();
    } else {
        dialogs_.MessageBox(parentWidget(),
                            QStringLiteral("You have exceeded the limit, Please remove one Item "
                                           "and try again"),
                            QStringLiteral("Felthawk"), MessageIcon::Information);
    }
}

void frmSaveHands::LoadHands() {
    lstSave_->clear();
    for (int place = 1; place <= kMaxSavedHands; ++place) {
        QString hand = GetSavedHand(static_cast<uint8_t>(place));
        if (!hand.isEmpty()) lstSave_->addItem(hand);
    }
}

void frmSaveHands::DeleteAllHands(StoreWrite& write) {
    for (int place = 1; place <= kMaxSavedHands; ++place) {
        DeleteSavedHand(write, static_cast<uint8_t>(place));
    }
}

void frmSaveHands::StoreHands(StoreWrite& write) {
    for (int place = 1; place <= lstSave_->count(); ++place) {
        PutSavedHand(write, lstSave_->item(place - 1)->text(), static_cast<uint8_t>(place));
    }
    const QString failure = write.Commit();
    if (!failure.isEmpty()) {
        dialogs_.MessageBox(parentWidget() != nullptr ? parentWidget() : this, failure,
                            QStringLiteral("Felthawk"), MessageIcon::Warning);
    }
    LoadHands();
}

void frmSaveHands::WriteList() {
    StoreWrite write;
    DeleteAllHands(write);
    StoreHands(write);
}

void frmSaveHands::RemoveSelected() {
    QListWidgetItem* selected = lstSave_->currentItem();
    if (selected == nullptr || !selected->isSelected()) return;
    // The record is the name, ":" and the seven cells, which hold no ":".
    const QString record = selected->text();
    const QString name = record.left(record.lastIndexOf(QLatin1Char(':')));
    if (!dialogs_.AskYesNo(this, QStringLiteral("Remove %1?").arg(name),
                           QStringLiteral("Save Hands"))) {
        return;
    }
    delete lstSave_->takeItem(lstSave_->row(selected));
    WriteList();
}

}  // namespace felthawk
