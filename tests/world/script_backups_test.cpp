// The dated copies of a world's script, and the rule that prunes them when a world is left.
#include "world/script_backups.h"

#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

QStringList pruned(const QStringList& names, int year, int month, int day) {
    QStringList gone = backupsToPrune(names, QDate(year, month, day));
    gone.sort();
    return gone;
}

} // namespace

TEST(ScriptBackups, NamesCarryTheDayWithoutALeadingZeroAndTheMonthInEnglish) {
    EXPECT_EQ(saveBackupName(QDateTime(QDate(2024, 3, 5), QTime(9, 7, 3))),
              QStringLiteral("Script_as_of_5Mar2024_090703_S.tv"));
    EXPECT_EQ(backupStamp(QDateTime(QDate(2023, 12, 31), QTime(23, 59, 59))),
              QStringLiteral("31Dec2023_235959"));
}

TEST(ScriptBackups, OfEachEarlierDayTheLastCopyStaysAndRunBackupsAllGo) {
    const QStringList names = {
        "Script_as_of_14Mar2024_170000.py", "Script_as_of_14Mar2024_090000.py",
        // Today's copies all stay.
        "Script_as_of_15Mar2024_080000.py", "Script_as_of_15Mar2024_120000.py",
        // The last day of a month and the first of the next are two days.
        "Script_as_of_29Feb2024_235959.py", "Script_as_of_1Mar2024_000001.py",
        "Script_as_of_31Jan2024_120000.py", "script_as_of_31JAN2024_130000.PY",
        "Script_as_of_15Mar2024_120000_Pd.py", "Script_as_of_1Mar2024_000001_Pc.py",
        // Copies of saves, and whatever else the folder holds, are not the rule's.
        "Script_as_of_14Mar2024_090000_S.tv", "Scene_as_of_14Mar2024_090000.py", "notes.txt"};
    EXPECT_EQ(
        pruned(names, 2024, 3, 15),
        (QStringList{"Script_as_of_14Mar2024_090000.py", "Script_as_of_15Mar2024_120000_Pd.py",
                     "Script_as_of_1Mar2024_000001_Pc.py", "Script_as_of_31Jan2024_120000.py"}));
}

TEST(ScriptBackups, OnTheFirstNineDaysOfAMonthTodaysCopiesArePrunedAsAnEarlierDaysAre) {
    // Today is written with two digits and the names with one: they never match.
    const QStringList names = {"Script_as_of_5Mar2024_080000.py", "Script_as_of_5Mar2024_120000.py",
                               "Script_as_of_4Mar2024_080000.py"};
    EXPECT_EQ(pruned(names, 2024, 3, 5), QStringList{"Script_as_of_5Mar2024_080000.py"});
    EXPECT_EQ(pruned({"Script_as_of_10Mar2024_080000.py", "Script_as_of_10Mar2024_120000.py"}, 2024,
                     3, 10),
              QStringList());
}

TEST(ScriptBackups, CleanUpDeletesOnlyInTheWorldsOwnBackupsFolder) {
    QTemporaryDir world;
    const QDir dir(world.path());
    ASSERT_TRUE(dir.mkdir(QStringLiteral("backups")));
    const QStringList names = {"Script_as_of_1Jan2024_080000.py", "Script_as_of_1Jan2024_090000.py",
                               "Script_as_of_1Jan2024_090000_S.tv"};
    for (const QString& name : names)
        QFile(dir.filePath(QStringLiteral("backups/") + name)).open(QIODevice::WriteOnly);
    CleanUpBackups(QString(), QDate(2024, 2, 1)); // an unnamed world has none
    CleanUpBackups(world.path(), QDate(2024, 2, 1));
    EXPECT_EQ(QDir(dir.filePath(QStringLiteral("backups"))).entryList(QDir::Files),
              (QStringList{names[1], names[2]}));

    // A world from elsewhere whose Backups folder leads out of it.
    QTemporaryDir elsewhere;
    QTemporaryDir stranger;
    QFile(elsewhere.filePath(names[0])).open(QIODevice::WriteOnly);
    QFile(elsewhere.filePath(names[1])).open(QIODevice::WriteOnly);
    ASSERT_TRUE(QFile::link(elsewhere.path(), stranger.filePath(QStringLiteral("Backups"))));
    CleanUpBackups(stranger.path(), QDate(2024, 2, 1));
    EXPECT_EQ(QDir(elsewhere.path()).entryList(QDir::Files).size(), 2);
}
