#include "export/folder_copy.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace vessa {

FolderCopy copyFolderFiles(const QString& source, const QString& to,
                           const std::function<bool(double)>& going) {
    const QString from = QFileInfo(source).absoluteFilePath();
    QStringList files;
    QDirIterator entries(from, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        if (!entries.fileInfo().isSymLink())
            files << QDir(from).relativeFilePath(path);
    }
    if (!QDir().mkpath(to))
        return {FolderCopy::Failed, QStringLiteral("%1 can't be made").arg(to)};
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString target = QDir(to).filePath(files[i]);
        if (!QDir().mkpath(QFileInfo(target).path()) ||
            !QFile::copy(QDir(from).filePath(files[i]), target))
            return {FolderCopy::Failed, QStringLiteral("%1 can't be written").arg(target)};
        if (going && !going(static_cast<double>(i + 1) / static_cast<double>(files.size())))
            return {FolderCopy::Cancelled, {}};
    }
    return {FolderCopy::Copied, {}};
}

} // namespace vessa
