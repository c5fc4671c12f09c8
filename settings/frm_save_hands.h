// frmSaveHands: the list of saved hands ("Save Hands").
//
// A saved hand is one text, the name the user typed, ":" and the seven table
// cells joined by commas ("pair:AS,AH,,,,,"). The list is for looking at
// only: nothing leads from an item back to the table, and the record is never
// split again, so a ":" or "," in the name is harmless.
//
// Every change of the list is one write of the store, and Enter never
// removes a hand: "&Close" is the default button, and "&Remove" asks first.
#pragma once

#include <QDialog>
#include <QString>

class QListWidget;
class QPushButton;

namespace felthawk {

class IDialogs;
class StoreWrite;

class frmSaveHands : public QDialog {
    Q_OBJECT

  public:
    // Loads the list from the store, as the form's load does. The form is
    // not shown; "&Open Data" shows it with exec().
    explicit frmSaveHands(IDialogs& dialogs, QWidget* parent = nullptr);

    // Saves `joinedCells` (the seven cells joined with commas) under a name
    // asked with an input box. The name is asked first and the limit of ten
    // tested afterwards, so a user with a full list types a name in vain and
    // is then told so. A cancelled box stores the hand with an empty name.
    void NewHand(const QString& joinedCells);
    // Refills the list from "HAND1".."HAND10", skipping absent keys.
    void LoadHands();
    // Deletes all ten hand keys in `write`.
    void DeleteAllHands(StoreWrite& write);
    // Writes the list from "HAND1" on, without holes, commits `write`, and
    // reloads the list. A failed write is reported and the list shows what
    // the store still holds.
    void StoreHands(StoreWrite& write);

    QListWidget* lstSave() const { return lstSave_; }
    QPushButton* Command1() const { return Command1_; }
    QPushButton* cmdOK() const { return cmdOK_; }

  private:
    // "&Remove": asks "Remove <name>?", then drops the selected item and
    // writes the list back.
    void RemoveSelected();
    // Replaces the stored hands with the list as it stands.
    void WriteList();

    IDialogs& dialogs_;
    QListWidget* lstSave_;
    QPushButton* Command1_;
    QPushButton* cmdOK_;
};

}  // namespace felthawk
