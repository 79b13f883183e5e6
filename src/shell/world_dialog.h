#pragma once

#include "shell/world_browser.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QPushButton;

namespace vessa {

// The world dialog, for opening a world and for saving one under a new name. It shows
// the worlds and folders of one folder, each world with its thumbnail, beside the
// places a world is likely to be: the program's worlds, home, desktop, documents.
//
// From the keyboard: the arrows move in the list, Return opens a folder or takes a
// world, Backspace goes up a folder, typing a name and Return opens (or saves) that
// world. When saving, a world chosen in the list puts its name in the name box, and a
// name that can't name a folder is refused with the reason.
class WorldForm : public QDialog {
    Q_OBJECT
public:
    enum class Use { Open, Save };

    explicit WorldForm(QWidget* parent = nullptr);

    // Readies the dialog for one use, showing worldsFolder; name is the name the box
    // starts with when saving.
    void begin(Use use, const QString& worldsFolder, const QString& name = QString());
    // The world folder chosen; "" until one was.
    const QString& chosenFolder() const { return chosen_; }

    // Shows folder in the list.
    Q_INVOKABLE void showFolder(const QString& folder);
    WorldFolderModel& folderModel() { return folders_; }
    QListView& worldList() const { return *list_; }
    QListWidget& placeList() const { return *places_; }
    QLineEdit& nameBox() const { return *name_; }
    QPushButton& okButton() const { return *ok_; }

    void accept() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void entryActivated(const QModelIndex& index);
    void entryChosen(const QModelIndex& index);
    void nameEdited(const QString& text);
    void goUp();
    void updateOkButton();
    void openChosen();
    void saveChosen();
    void take(const QString& folder);
    void tell(const QString& title, const QString& text);

    Use use_ = Use::Open;
    QString chosen_;
    WorldFolderModel folders_;
    QLabel* choose_;      // Owned by Qt.
    QListWidget* places_; // Owned by Qt.
    QPushButton* up_;     // Owned by Qt.
    QLabel* where_;       // Owned by Qt.
    QListView* list_;     // Owned by Qt.
    QLabel* nameLabel_;   // Owned by Qt.
    QLineEdit* name_;     // Owned by Qt.
    QPushButton* ok_;     // Owned by Qt.
    QPushButton* cancel_; // Owned by Qt.
};

} // namespace vessa
