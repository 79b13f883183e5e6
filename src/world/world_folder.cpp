#include "world/world_folder.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

QString FileInFolder(const QString& folder, const QString& name) {
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

QString ExistingPath(const QString& path) {
    const QFileInfo info(path);
    return FileInFolder(info.path(), info.fileName());
}

bool IsWorldFolder(const QString& path) {
    return QFileInfo(FileInFolder(path, world_files::Scene)).isFile();
}

QString NotAWorldMessage(const QString& path) {
    return path + QStringLiteral(" is not a valid world folder.");
}

} // namespace vessa
