#include "world/world_folder.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

QString fileInFolder(const QString& folder, const QString& name) {
    const QDir dir(folder);
    const QString spelled = dir.filePath(name);
    if (QFileInfo::exists(spelled))
        return spelled;
    const QStringList entries =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return dir.filePath(entry);
    }
    return spelled;
}

QString existingPath(const QString& path) {
    const QFileInfo info(path);
    return fileInFolder(info.path(), info.fileName());
}

bool isWorldFolder(const QString& path) {
    return QFileInfo(fileInFolder(path, world_files::Scene)).isFile();
}

QString notAWorldMessage(const QString& path) {
    return path + QStringLiteral(" is not a valid world folder.");
}

} // namespace vessa
