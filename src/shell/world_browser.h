#pragma once

#include <QAbstractListModel>
#include <QImage>
#include <QString>
#include <QThreadPool>

#include <vector>

namespace vessa {

// A folder the world dialog offers beside the list: the program's worlds and the
// platform's own folders.
struct WorldPlace {
    QString name;
    QString path;
};

// The program's worlds folder first, then home, desktop and documents: each once, and
// only those that exist.
std::vector<WorldPlace> worldPlaces(const QString& worldsFolder);

// What is wrong with a name typed for a world to save: "" when it can name a new
// folder in the folder being shown, otherwise the message the user is told.
QString worldNameProblem(const QString& name);
// A typed name as the name box keeps it: a world is a folder, so a period and all after
// it are taken away.
QString withoutPeriod(const QString& name);
// The message that goes with that.
QString noPeriodsMessage();

// A thumbnail as the dialog shows it: the world's picture scaled to fit, in the middle
// of a clear square of side pixels. A file that is missing, too big, or no picture gives a null
// image.
QImage readThumbnail(const QString& path, int side);

// The folders inside one folder, as the world dialog lists them: worlds and plain
// folders, by name, case ignored. Each world shows its thumbnail, read on a thread of
// the model's own as the view first asks for it and handed back by a queued signal, so
// that a folder of many worlds never holds the interface; until then, and for a world
// without a picture that can be read, it shows a placeholder. A plain folder shows a
// folder. A screen reader hears the name, and "World" or "Folder" as the description.
//
// State: the folder shown and its entries; for each world whether its picture was
// asked for and what came back. Results for a folder no longer shown are dropped.
class WorldFolderModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { PathRole = Qt::UserRole + 1, IsWorldRole, ThumbnailReadRole };
    // The side of a thumbnail, in pixels.
    static constexpr int ThumbnailSide = 96;

    explicit WorldFolderModel(QObject* parent = nullptr);
    ~WorldFolderModel() override;

    // Lists folder; false, with nothing listed, if it can't be read.
    bool setFolder(const QString& folder);
    const QString& folder() const { return folder_; }
    // The row of the entry named name, case ignored; -1 if there is none.
    int rowNamed(const QString& name) const;
    bool isWorld(int row) const { return entries_[static_cast<size_t>(row)].isWorld; }
    QString path(int row) const;
    // Thumbnails asked for and not yet come back.
    int thumbnailsPending() const { return pending_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

Q_SIGNALS:
    // From a reading thread: the picture of row of the folder listed as generation.
    void thumbnailRead(int generation, int row, const QImage& image);

private:
    struct Entry {
        QString name;
        bool isWorld = false;
        enum class Picture { NotAsked, Asked, Read, Unreadable } picture = Picture::NotAsked;
        QImage thumbnail;
    };

    void askForThumbnail(int row) const;
    void takeThumbnail(int generation, int row, const QImage& image);

    QString folder_;
    int generation_ = 0;
    mutable std::vector<Entry> entries_; // pictures are asked for as the view reads them
    mutable int pending_ = 0;
    QImage placeholder_;
    QImage folderPicture_;
    mutable QThreadPool readers_; // waited for before the model goes
};

} // namespace vessa
