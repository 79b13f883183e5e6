#pragma once

#include <QDate>
#include <QDateTime>
#include <QStringList>

namespace vessa {

// The dated copies of a world's script in its Backups folder, a safety net that never
// troubles the user. A name is "Script_as_of_", the date and time as "dmmmyyyy_hhmmss"
// (the day without a leading zero, the month's three letters in English, the year,
// hours, minutes, seconds) and a suffix: "_S.tv" for a save, "_Pd.py" and "_Pc.py" for
// the run backups of older versions.

QString backupStamp(const QDateTime& when);
// The name of the copy a save makes.
QString saveBackupName(const QDateTime& when);

// The world's Backups folder, whatever the case of its name. "" when it is a link: a
// world from elsewhere could point it anywhere, and nothing is written or deleted
// there.
QString backupsFolderOf(const QString& worldPath);
// Makes it if there is none; "" when it can't be used.
QString makeBackupsFolder(const QString& worldPath);

// What the rule of retention deletes of the names in a Backups folder on the day today:
// every run backup, and of the other ".py" copies of each day but today all but the last
// in text order, case ignored. Days are told apart by the first 22 characters of a
// name, and today is written with a two-digit day; so on the 1st to the 9th of a month
// today's copies are pruned as an earlier day's would be, as it has always been.
// Copies of saves ("_S.tv") stay for good.
QStringList backupsToPrune(QStringList names, const QDate& today);

// Prunes the Backups folder of the world at worldSaveFile ("" for an unnamed world:
// nothing), errors ignored.
void CleanUpBackups(const QString& worldSaveFile, const QDate& today);

} // namespace vessa
