// felthawk-save-loop <count>: makes <count> saves through the saved-hands
// form, as a user would, printing "saved <i>" once save i is in the store.
// The settings folder comes from XDG_CONFIG_HOME.
#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QListWidget>
#include <QPushButton>

#include "settings/dialogs.h"
#include "settings/frm_save_hands.h"
#include "tests/settings/save_loop.h"

namespace {

// Names every hand as asked and answers Yes to every removal.
class LoopDialogs : public felthawk::IDialogs {
  public:
    QString name;
    QString InputBox(QWidget*, const QString&, const QString&, const QString&,
                     bool* accepted) override {
        if (accepted != nullptr) *accepted = true;
        return name;
    }
    void MessageBox(QWidget*, const QString& text, const QString&, felthawk::MessageIcon) override {
        std::fprintf(stderr, "message: %s\n", qPrintable(text));
    }
    bool AskYesNo(QWidget*, const QString&, const QString&) override { return true; }
};

}  // namespace

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("FELTHAWK"));
    QApplication::setApplicationName(QStringLiteral("FELTHAWK"));
    const int count = argc > 1 ? std::atoi(argv[1]) : 0;
    LoopDialogs dialogs;
    felthawk::frmSaveHands form(dialogs);
    for (int i = 0; i < count; ++i) {
        if (form.lstSave()->count() == felthawk::kMaxSavedHands) {
            form.lstSave()->setCurrentRow(0);
            form.Command1()->click();
        } else {
            dialogs.name = felthawk::testing::LoopHandName(i);
            form.NewHand(felthawk::testing::kLoopCells);
        }
        std::printf("saved %d\n", i);
        std::fflush(stdout);
    }
    return 0;
}
