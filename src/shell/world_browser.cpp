#include "shell/world_browser.h"

#include "world/world_folder.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QStandardPaths>

#include <algorithm>

namespace vessa {

namespace {

// A thumbnail is a small picture; a file or a picture bigger than these is not one, and
// reading it would only cost memory and time.
constexpr qint64 kLargestThumbnailBytes = 16 * 1024 * 1024;
constexpr int kLargestThumbnailSide = 4096;

QImage placeholderPicture(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame(side * 0.1, side * 0.2, side * 0.8, side * 0.6);
    painter.setPen(QPen(QColor(0x70, 0x80, 0x90), 2));
    painter.setBrush(QColor(0xdd, 0xe6, 0xee));
    painter.drawRect(frame);
    // Hills under a sun: a picture, not yet shown.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x9a, 0xb8, 0x8a));
    painter.drawPolygon(QPolygonF({frame.bottomLeft(), QPointF(side * 0.4, side * 0.45),
                                   QPointF(side * 0.6, side * 0.65),
                                   QPointF(side * 0.75, side * 0.5), frame.bottomRight()}));
    painter.setBrush(QColor(0xe8, 0xc0, 0x50));
    painter.drawEllipse(QPointF(side * 0.72, side * 0.33), side * 0.06, side * 0.06);
    return image;
}

QImage folderPicture(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x9a, 0x7a, 0x30), 2));
    painter.setBrush(QColor(0xf0, 0xcc, 0x70));
    painter.drawPolygon(
        QPolygonF({QPointF(side * 0.1, side * 0.25), QPointF(side * 0.4, side * 0.25),
                   QPointF(side * 0.47, side * 0.33), QPointF(side * 0.9, side * 0.33),
                   QPointF(side * 0.9, side * 0.8), QPointF(side * 0.1, side * 0.8)}));
    return image;
}

} // namespace

std::vector<WorldPlace> worldPlaces(const QString& worldsFolder) {
    const std::vector<WorldPlace> candidates = {
        {QStringLiteral("Vessa47 Worlds"), worldsFolder},
        {QStringLiteral("Home"), QDir::homePath()},
        {QStringLiteral("Desktop"),
         QStandardPaths::writableLocation(QStandardPaths::DesktopLocation)},
        {QStringLiteral("Documents"),
         QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)},
    };
    std::vector<WorldPlace> places;
    for (const WorldPlace& place : candidates) {
        const QFileInfo info(place.path);
        if (place.path.isEmpty() || !info.isDir())
            continue;
        const QString canonical = info.canonicalFilePath();
        const bool seen = std::any_of(places.begin(), places.end(), [&](const WorldPlace& p) {
            return QFileInfo(p.path).canonicalFilePath() == canonical;
        });
        if (!seen)
            places.push_back({place.name, QDir::cleanPath(place.path)});
    }
    return places;
}

QString worldNameProblem(const QString& name) {
    if (name.trimmed().isEmpty())
        return QStringLiteral("Please specify a world name.");
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return QStringLiteral("A world's name can't hold \"/\" or \"\\\": it names one new "
                              "folder in the folder shown. Choose the folder in the list, "
                              "then type the name alone.");
    if (name.contains(QLatin1Char('.')))
        return noPeriodsMessage();
    if (std::any_of(name.begin(), name.end(),
                    [](QChar c) { return c.category() == QChar::Other_Control; }))
        return QStringLiteral("A world's name can't hold control characters.");
    if (name.toUtf8().size() > 255)
        return QStringLiteral("That name is too long for a folder. Please choose a shorter one.");
    return {};
}

QString withoutPeriod(const QString& name) {
    const qsizetype period = name.indexOf(QLatin1Char('.'));
    return period < 0 ? name : name.left(period);
}

QString noPeriodsMessage() {
    return QStringLiteral("No periods are allowed, since you are specifying a folder name "
                          "rather than a file name.");
}

QImage readThumbnail(const QString& path, int side) {
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > kLargestThumbnailBytes)
        return {};
    QImageReader reader(path);
    reader.setAllocationLimit(64); // megabytes
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > kLargestThumbnailSide ||
        size.height() > kLargestThumbnailSide)
        return {};
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    // Centred in a square, so that every world's name stands at the same height.
    const QImage scaled = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    QPainter painter(&square);
    painter.drawImage((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled);
    return square;
}

WorldFolderModel::WorldFolderModel(QObject* parent)
    : QAbstractListModel(parent), placeholder_(placeholderPicture(ThumbnailSide)),
      folderPicture_(folderPicture(ThumbnailSide)) {
    // Two readers keep the disk busy without taking the interface's core from it.
    readers_.setMaxThreadCount(2);
    connect(this, &WorldFolderModel::thumbnailRead, this, &WorldFolderModel::takeThumbnail,
            Qt::QueuedConnection);
}

WorldFolderModel::~WorldFolderModel() {
    readers_.clear();
    readers_.waitForDone();
}

bool WorldFolderModel::setFolder(const QString& folder) {
    beginResetModel();
    readers_.clear(); // pictures of the folder left that no reader has begun on
    ++generation_;
    pending_ = 0;
    entries_.clear();
    folder_ = QDir::cleanPath(folder);
    const QDir dir(folder_);
    const bool readable = dir.exists() && dir.isReadable();
    if (readable) {
        QStringList names = dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCollator collator;
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        collator.setNumericMode(true);
        std::sort(names.begin(), names.end(), collator);
        entries_.reserve(static_cast<size_t>(names.size()));
        for (const QString& name : names)
            entries_.push_back(
                {name, isWorldFolder(dir.filePath(name)), Entry::Picture::NotAsked, QImage()});
    }
    endResetModel();
    return readable;
}

int WorldFolderModel::rowNamed(const QString& name) const {
    for (size_t row = 0; row < entries_.size(); ++row)
        if (entries_[row].name.compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(row);
    return -1;
}

QString WorldFolderModel::path(int row) const {
    return QDir(folder_).filePath(entries_[static_cast<size_t>(row)].name);
}

int WorldFolderModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant WorldFolderModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Entry& entry = entries_[static_cast<size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return entry.name;
    case Qt::AccessibleDescriptionRole:
        return entry.isWorld ? QStringLiteral("World") : QStringLiteral("Folder");
    case PathRole:
        return path(index.row());
    case IsWorldRole:
        return entry.isWorld;
    case ThumbnailReadRole:
        return entry.picture == Entry::Picture::Read;
    case Qt::DecorationRole:
        if (!entry.isWorld)
            return folderPicture_;
        if (entry.picture == Entry::Picture::NotAsked)
            askForThumbnail(index.row());
        return entry.picture == Entry::Picture::Read ? entry.thumbnail : placeholder_;
    default:
        return {};
    }
}

void WorldFolderModel::askForThumbnail(int row) const {
    entries_[static_cast<size_t>(row)].picture = Entry::Picture::Asked;
    ++pending_;
    const QString picture = fileInFolder(path(row), world_files::Thumbnail);
    auto* self = const_cast<WorldFolderModel*>(this);
    const int generation = generation_;
    readers_.start([self, generation, row, picture] {
        Q_EMIT self->thumbnailRead(generation, row, readThumbnail(picture, ThumbnailSide));
    });
}

void WorldFolderModel::takeThumbnail(int generation, int row, const QImage& image) {
    if (generation != generation_)
        return;
    --pending_;
    Entry& entry = entries_[static_cast<size_t>(row)];
    entry.thumbnail = image;
    entry.picture = image.isNull() ? Entry::Picture::Unreadable : Entry::Picture::Read;
    const QModelIndex at = index(row);
    Q_EMIT dataChanged(at, at, {Qt::DecorationRole, ThumbnailReadRole});
}

} // namespace vessa
