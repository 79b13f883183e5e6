#include "world/script_backups.h"

#include "world/world_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace vessa {

namespace {

const QString kPrefix = QStringLiteral("Script_as_of_");
const QString kBackups = QStringLiteral("Backups");
// "Script_as_of_" and nine characters: the day, month and year of a two-digit day.
constexpr int kDayHead = 22;

QString monthName(int month) {
    static const char* const names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return QString::fromLatin1(names[month - 1]);
}

bool matches(const QString& name, const QString& pattern) {
    return QRegularExpression::fromWildcard(pattern, Qt::CaseInsensitive).match(name).hasMatch();
}

} // namespace

QString backupStamp(const QDateTime& when) {
    const QDate date = when.date();
    return QString::number(date.day()) + monthName(date.month()) +
           QStringLiteral("%1_%2")
               .arg(date.year(), 4, 10, QLatin1Char('0'))
               .arg(when.time().toString(QStringLiteral("HHmmss")));
}

QString saveBackupName(const QDateTime& when) {
    return kPrefix + backupStamp(when) + QStringLiteral("_S.tv");
}

QString backupsFolderOf(const QString& worldPath) {
    const QString folder = fileInFolder(worldPath, kBackups);
    return QFileInfo(folder).isSymLink() ? QString() : folder;
}

QString makeBackupsFolder(const QString& worldPath) {
    const QString folder = backupsFolderOf(worldPath);
    if (folder.isEmpty() || QFileInfo(folder).isDir() || QDir().mkdir(folder))
        return QFileInfo(folder).isDir() ? folder : QString();
    return {};
}

QStringList backupsToPrune(QStringList names, const QDate& today) {
    QStringList pruned;
    QStringList copies;
    for (const QString& name : names) {
        if (matches(name, kPrefix + QStringLiteral("*_P?.py")))
            pruned << name;
        else if (matches(name, kPrefix + QStringLiteral("*.py")))
            copies << name;
    }
    std::sort(copies.begin(), copies.end(), [](const QString& a, const QString& b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    });
    const QString todayHead = kPrefix +
                              QStringLiteral("%1").arg(today.day(), 2, 10, QLatin1Char('0')) +
                              monthName(today.month()) + QString::number(today.year());
    for (qsizetype k = 0; k + 1 < copies.size(); ++k) {
        const QString head = copies[k].left(kDayHead);
        if (head.compare(todayHead, Qt::CaseInsensitive) != 0 &&
            head.compare(copies[k + 1].left(kDayHead), Qt::CaseInsensitive) == 0)
            pruned << copies[k];
    }
    return pruned;
}

void CleanUpBackups(const QString& worldSaveFile, const QDate& today) {
    if (worldSaveFile.isEmpty())
        return;
    const QString folder = backupsFolderOf(worldSaveFile);
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        return;
    const QDir dir(folder);
    for (const QString& name :
         backupsToPrune(dir.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks), today))
        QFile::remove(dir.filePath(name));
}

} // namespace vessa
