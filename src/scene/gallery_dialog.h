#pragma once

#include "scene/gallery_model.h"

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QPushButton;

namespace vessa {

// "Add An Object": the gallery as pictures, by theme, with a search box that narrows it
// as the user types, and "Other file..." for an object from elsewhere. Everything works
// from the keyboard: typing goes to the search, Return takes the first object found (or
// the one chosen), Down goes from the search to the pictures, the arrows move among them
// and through the themes. A screen reader hears each object's name and theme, and how
// many objects the search found.
class GalleryDialog : public QDialog {
    Q_OBJECT
public:
    // chooseOtherFile asks for a model file from elsewhere: its path, or "" if none.
    GalleryDialog(GalleryModel& gallery, std::function<QString()> chooseOtherFile,
                  QWidget* parent = nullptr);

    // Shows the whole gallery as it was loaded, the search empty and focused.
    void showGallery();

    QLineEdit& searchBox() const { return *search_; }
    QListWidget& themeList() const { return *themes_; }
    QListView& objectList() const { return *objects_; }
    QLabel& countLabel() const { return *count_; }

Q_SIGNALS:
    // The user chose an object, from the gallery or from elsewhere.
    void objectChosen(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillThemes();
    void themeChosen(int row);
    void showFound();
    void choose(const QModelIndex& index);
    void chooseOtherFile();

    GalleryModel& gallery_; // Not owned.
    GalleryFilter shown_;
    std::function<QString()> chooseOtherFile_;
    QLineEdit* search_;   // Owned by Qt.
    QLabel* count_;       // Owned by Qt.
    QListWidget* themes_; // Owned by Qt.
    QListView* objects_;  // Owned by Qt.
    QPushButton* other_;  // Owned by Qt.
    QPushButton* add_;    // Owned by Qt.
    QPushButton* cancel_; // Owned by Qt.
};

} // namespace vessa
