#include "scene/gallery_model.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

#include <algorithm>

namespace vessa {

namespace {

// Larger pictures than this are no thumbnails: they are not read.
constexpr int LargestPictureSide = 1024;

QPixmap initialOf(const QString& name) {
    QPixmap pixmap(GalleryModel::PictureSize, GalleryModel::PictureSize);
    pixmap.fill(QColor(0xE8, 0xEC, 0xF0));
    QPainter painter(&pixmap);
    QFont font = painter.font();
    font.setPixelSize(GalleryModel::PictureSize / 2);
    painter.setFont(font);
    painter.setPen(QColor(0x60, 0x68, 0x70));
    painter.drawText(pixmap.rect(), Qt::AlignCenter, name.left(1).toUpper());
    return pixmap;
}

} // namespace

GalleryModel::GalleryModel(QObject* parent) : QAbstractListModel(parent) {
}

void GalleryModel::load(const QString& folder, const QStringList& extensions) {
    beginResetModel();
    entries_.clear();
    addFolder(folder, QString(), extensions);
    const QFileInfoList themes =
        QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Readable);
    for (const QFileInfo& theme : themes)
        addFolder(theme.filePath(), theme.fileName(), extensions);
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    std::stable_sort(entries_.begin(), entries_.end(),
                     [&collator](const GalleryEntry& a, const GalleryEntry& b) {
                         if (const int theme = collator.compare(a.Theme, b.Theme); theme != 0)
                             return theme < 0;
                         return collator.compare(a.Name, b.Name) < 0;
                     });
    endResetModel();
}

void GalleryModel::addFolder(const QString& folder, const QString& theme,
                             const QStringList& extensions) {
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::Readable);
    int added = 0;
    for (const QFileInfo& file : files) {
        if (!extensions.contains(file.suffix().toLower()))
            continue;
        if (++added > MostEntriesAFolder)
            return;
        entries_.push_back({file.completeBaseName(), theme, file.filePath(),
                            file.dir().filePath(file.completeBaseName() + QStringLiteral(".png"))});
    }
}

QStringList GalleryModel::themes() const {
    QStringList themes;
    for (const GalleryEntry& entry : entries_)
        if (themes.isEmpty() || themes.last() != entry.Theme)
            themes << entry.Theme;
    return themes;
}

int GalleryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant GalleryModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const GalleryEntry& shown = entry(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return shown.Name;
    case Qt::DecorationRole:
        return picture(shown);
    case Qt::ToolTipRole:
        return shown.Theme.isEmpty() ? shown.Name
                                     : shown.Name + QStringLiteral(" (") + shown.Theme + u')';
    case Qt::AccessibleDescriptionRole:
    case ThemeRole:
        return shown.Theme;
    case PathRole:
        return shown.Path;
    default:
        return {};
    }
}

QPixmap GalleryModel::picture(const GalleryEntry& entry) const {
    if (const auto kept = pictures_.constFind(entry.Picture); kept != pictures_.constEnd())
        return *kept;
    QImageReader reader(entry.Picture);
    const QSize size = reader.size();
    QImage image;
    if (size.isValid() && size.width() <= LargestPictureSide && size.height() <= LargestPictureSide)
        image = reader.read();
    const QPixmap shown =
        image.isNull()
            ? initialOf(entry.Name)
            : QPixmap::fromImage(image.scaled(PictureSize, PictureSize, Qt::KeepAspectRatio,
                                              Qt::SmoothTransformation));
    pictures_.insert(entry.Picture, shown);
    return shown;
}

GalleryFilter::GalleryFilter(QObject* parent) : QSortFilterProxyModel(parent) {
}

void GalleryFilter::setTheme(const QString& theme) {
    allThemes_ = false;
    theme_ = theme;
    invalidateFilter();
}

void GalleryFilter::showAllThemes() {
    allThemes_ = true;
    invalidateFilter();
}

void GalleryFilter::setSearch(const QString& text) {
    search_ = text.trimmed();
    invalidateFilter();
}

bool GalleryFilter::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    const QString theme = index.data(GalleryModel::ThemeRole).toString();
    if (!allThemes_ && theme != theme_)
        return false;
    return search_.isEmpty() ||
           index.data(Qt::DisplayRole).toString().contains(search_, Qt::CaseInsensitive) ||
           theme.contains(search_, Qt::CaseInsensitive);
}

QString modelFileFilter(const QStringList& kinds) {
    QStringList patterns;
    for (const QString& kind : kinds)
        patterns << QStringLiteral("*.") + kind;
    QStringList filters;
    if (!kinds.isEmpty()) {
        filters << QStringLiteral("Objects (") + patterns.join(u' ') + u')';
        for (qsizetype i = 0; i < kinds.size(); ++i)
            filters << kinds[i].toUpper() + QStringLiteral(" (") + patterns[i] + u')';
    }
    filters << QStringLiteral("All Files (*)");
    return filters.join(QStringLiteral(";;"));
}

} // namespace vessa
