// A program killed at any instant while it saves a world leaves a folder that opens as the
// world before the save or the one after it, never a mix and never a broken file.
#include "world/staged_save.h"

#include "world/world_on_engine.h"

#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include <random>
#include <signal.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

constexpr int kKills = 200;
// Kills come up to this long after the program says it is ready: over its first save
// and the ones after.
constexpr int kLatestKillMs = 60;

bool saveOnce(const QString& folder, const QString& world) {
    QProcess child;
    child.start(QStringLiteral(SAVING_CHILD), {folder, world});
    return child.waitForFinished(60'000) && child.exitStatus() == QProcess::NormalExit &&
           child.exitCode() == 0;
}

} // namespace

TEST(KilledWhileSaving, AfterEachOfTwoHundredKillsTheWorldOpensAsTheOldOrTheNew) {
    QTemporaryDir dir;
    const QString worldA = dir.filePath(QStringLiteral("A"));
    const QString worldB = dir.filePath(QStringLiteral("B"));
    const QString world = dir.filePath(QStringLiteral("World"));
    for (const QString& folder : {worldA, worldB, world})
        ASSERT_TRUE(QDir().mkdir(folder));
    ASSERT_TRUE(saveOnce(worldA, QStringLiteral("A")));
    ASSERT_TRUE(saveOnce(worldB, QStringLiteral("B")));
    ASSERT_TRUE(saveOnce(world, QStringLiteral("A")));

    WorldOnEngine w;
    const auto open = [&w](const QString& folder) {
        EXPECT_TRUE(w.files.LoadWorld(folder, false));
        w.poll();
        return w.shown();
    };
    const QString shownA = open(worldA);
    const QString shownB = open(worldB);
    ASSERT_NE(shownA, shownB);

    std::mt19937 random(47);
    std::uniform_int_distribution<int> killAfterMs(0, kLatestKillMs);
    int cutShort = 0;
    int asA = 0;
    int asB = 0;
    bool holdsA = true;
    for (int kill = 0; kill < kKills; ++kill) {
        // Each program begins by saving the world the folder does not hold.
        QProcess child;
        child.start(
            QStringLiteral(SAVING_CHILD),
            {world, holdsA ? QStringLiteral("B") : QStringLiteral("A"), QStringLiteral("again")});
        ASSERT_TRUE(child.waitForReadyRead(60'000)) << child.readAllStandardError().toStdString();
        QThread::msleep(static_cast<unsigned long>(killAfterMs(random)));
        ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
        ASSERT_TRUE(child.waitForFinished(60'000));
        // Killed, not ended by a save that failed.
        ASSERT_EQ(child.exitStatus(), QProcess::CrashExit)
            << child.readAllStandardError().toStdString();
        const QDir folder(world);
        cutShort += folder.exists(staged_save::Writing) || folder.exists(staged_save::Written);

        w.view.messages.clear();
        const QString shown = open(world);
        ASSERT_TRUE(w.view.messages.isEmpty())
            << "kill " << kill << ": " << w.view.messages.value(0).text.toStdString();
        holdsA = shown == shownA;
        if (shown == shownA)
            ++asA;
        else if (shown == shownB)
            ++asB;
        else
            FAIL() << "kill " << kill << " left a world that is neither:\n" << shown.toStdString();
    }
    std::printf("%d kills: %d opened as A, %d as B, %d left a save cut short\n", kKills, asA, asB,
                cutShort);
    // The kills fell while the program was saving, not only between saves.
    EXPECT_GT(cutShort, 0);
    EXPECT_GT(asA, 0);
    EXPECT_GT(asB, 0);
}
