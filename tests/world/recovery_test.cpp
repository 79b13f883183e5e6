// Work a program had not saved when it was killed is offered at the next start, with
// when its copy was kept; declined, it is kept until a program exits cleanly.
#include "world/world_on_engine.h"

#include <QProcess>
#include <gtest/gtest.h>

#include <signal.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// A program that makes world B, keeps a copy of it as unsaved work in root, and is
// killed then. Answers the times between which the copy was kept.
std::pair<QDateTime, QDateTime> killedWithUnsavedWork(const QString& root) {
    const QDateTime started = QDateTime::currentDateTime();
    QProcess child;
    child.start(QStringLiteral(SAVING_CHILD),
                {root, QStringLiteral("B"), QStringLiteral("unsaved")});
    EXPECT_TRUE(child.waitForReadyRead(60'000)) << child.readAllStandardError().toStdString();
    EXPECT_EQ(child.readAllStandardOutput(), QByteArray("kept\n"));
    const QDateTime kept = QDateTime::currentDateTime();
    ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
    EXPECT_TRUE(child.waitForFinished(60'000));
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
    return {started, kept};
}

int copiesIn(const QString& root) {
    return static_cast<int>(QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

} // namespace

TEST(Recovery, WorkOfAKilledProgramIsOfferedWithItsTimeAndBroughtBackOrKeptUntilACleanExit) {
    QTemporaryDir dir;
    const QString root = dir.filePath(QStringLiteral("Recovery"));
    const QString savedB = dir.filePath(QStringLiteral("B"));
    ASSERT_TRUE(QDir().mkdir(savedB));
    QProcess saving;
    saving.start(QStringLiteral(SAVING_CHILD), {savedB, QStringLiteral("B")});
    ASSERT_TRUE(saving.waitForFinished(60'000) && saving.exitCode() == 0);
    QString shownB;
    {
        WorldOnEngine w;
        ASSERT_TRUE(w.files.LoadWorld(savedB, false));
        w.poll();
        shownB = w.shown();
    }

    const auto [started, kept] = killedWithUnsavedWork(root);
    ASSERT_EQ(copiesIn(root), 1);
    {
        // Declined, and this program killed in its turn: the copy stays.
        WorldOnEngine w(root);
        w.view.bringBack = false;
        w.files.offerRecoveredWork();
        ASSERT_EQ(w.view.offered.size(), 1);
        const RecoveredWork& work = w.view.offered[0];
        EXPECT_EQ(work.worldSaveFile, QString());
        EXPECT_GE(work.savedAt.toMSecsSinceEpoch(), started.toMSecsSinceEpoch() / 1000 * 1000);
        EXPECT_LE(work.savedAt, kept);
        EXPECT_FALSE(w.world.IsWorldDirty());
    }
    ASSERT_EQ(copiesIn(root), 1);
    {
        // Brought back: the unsaved world, unsaved still; saving it makes the copy go.
        WorldOnEngine w(root);
        w.files.offerRecoveredWork();
        ASSERT_EQ(w.view.offered.size(), 1);
        w.poll();
        EXPECT_EQ(w.shown(), shownB);
        EXPECT_TRUE(w.world.IsWorldDirty());
        EXPECT_EQ(w.world.status().worldSaveFile(), QString());
        QTemporaryDir into;
        ASSERT_EQ(w.files.SaveWorld(into.path()), kYesSave);
        EXPECT_EQ(copiesIn(root), 0);
    }

    killedWithUnsavedWork(root);
    {
        // Declined, then a clean exit: the copy goes with it.
        WorldOnEngine w(root);
        w.view.bringBack = false;
        w.files.offerRecoveredWork();
        ASSERT_EQ(w.view.offered.size(), 1);
        EXPECT_EQ(copiesIn(root), 1);
        w.recovery.cleanExit();
    }
    EXPECT_EQ(copiesIn(root), 0);
    WorldOnEngine next(root);
    next.files.offerRecoveredWork();
    EXPECT_TRUE(next.view.offered.isEmpty());
}
