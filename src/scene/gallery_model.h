#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QPixmap>
#include <QSortFilterProxyModel>
#include <QStringList>

#include <vector>

namespace vessa {

// One object of the gallery: a model file, the theme it stands under (the folder it is
// in; "" for the gallery's own folder), and the picture beside it, "<name>.png".
struct GalleryEntry {
    QString Name;
    QString Theme;
    QString Path;
    QString Picture;
};

// The objects of the home folder's gallery, by theme: the model files in the gallery's
// folder and in each folder directly inside it. The list is read anew at each load; a
// picture is read the first time it is shown and kept, and an object without one, or with
// one that can't be read, shows its initial instead. Names, themes and the picture are
// what a screen reader says of an entry: its name, and its theme as the description.
class GalleryModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { ThemeRole = Qt::UserRole + 1, PathRole };
    // The side of a picture as the gallery shows it, in pixels.
    static constexpr int PictureSize = 96;
    // More files than this in one folder are passed over: a gallery is for choosing by eye.
    static constexpr int MostEntriesAFolder = 1000;

    explicit GalleryModel(QObject* parent = nullptr);

    // Reads the gallery of folder: the files whose extension (lower case, no dot) is one
    // of extensions, ordered by theme and then by name, case ignored.
    void load(const QString& folder, const QStringList& extensions);
    // The themes that have objects, in order; "" stands first when the folder itself has.
    QStringList themes() const;
    const GalleryEntry& entry(int row) const { return entries_[static_cast<size_t>(row)]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void addFolder(const QString& folder, const QString& theme, const QStringList& extensions);
    QPixmap picture(const GalleryEntry& entry) const;

    std::vector<GalleryEntry> entries_;
    mutable QHash<QString, QPixmap> pictures_; // by the picture's path
};

// The gallery as the user narrows it: one theme or all, and a search that keeps the
// objects whose name or theme holds the text typed, case ignored.
class GalleryFilter : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit GalleryFilter(QObject* parent = nullptr);

    // One theme ("" for the gallery's own folder), or all of them.
    void setTheme(const QString& theme);
    void showAllThemes();
    void setSearch(const QString& text);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    QString theme_;
    QString search_;
    bool allThemes_ = true;
};

// The filter of the file dialog for objects from elsewhere: the kinds the engine reads
// (extensions, lower case, no dot) together and one by one, then all files.
QString modelFileFilter(const QStringList& kinds);

} // namespace vessa
