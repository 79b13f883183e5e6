// A program killed at any instant while it saves a world leaves a folder that opens as the
// world before the save or the one after it, never a mix and never a broken file.
#include "world/staged_save.h"

#include "world/world_on_engine.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <signal.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

constexpr int kKills = 200;
// Where a kill lands is the machine's doing: on a loaded one many fall between saves.
// Kills go on past kKills, up to this many, until some have cut a save short and both
// worlds have been seen.
constexpr int kMostKills = 2'000;
// How long one round of the saving program takes here (making a world and saving it), from
// four rounds it is let run: kills then come at any instant over its first two rounds, the
// same share of them in each step of a save however fast or loaded the machine is.
int roundMs(const QString& folder) {
    QProcess child;
    child.start(QStringLiteral(SAVING_CHILD),
                {folder, QStringLiteral("B"), QStringLiteral("again")});
    if (!child.waitForReadyRead(60'000))
        return 0;
    child.readLine(); // ready
    QElapsedTimer clock;
    clock.start();
    for (int saved = 0; saved < 4;) {
        if (!child.canReadLine() && !child.waitForReadyRead(60'000))
            return 0;
        while (child.canReadLine() && saved < 4)
            saved += child.readLine().startsWith("saved");
    }
    const qint64 round = clock.elapsed() / 4;
    child.kill();
    child.waitForFinished(60'000);
    return static_cast<int>(std::max<qint64>(round, 1));
}

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

    const QString rounds = dir.filePath(QStringLiteral("Rounds"));
    ASSERT_TRUE(QDir().mkdir(rounds));
    const int round = roundMs(rounds);
    ASSERT_GT(round, 0) << "the saving program did not save";
    std::mt19937 random(47);
    std::uniform_int_distribution<int> killAfterMs(0, 2 * round);
    int cutShort = 0;
    int asA = 0;
    int asB = 0;
    bool holdsA = true;
    int kills = 0;
    for (; kills < kMostKills && (kills < kKills || cutShort == 0 || asA == 0 || asB == 0);
         ++kills) {
        const int kill = kills;
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
    std::printf("%d kills: %d opened as A, %d as B, %d left a save cut short\n", kills, asA, asB,
                cutShort);
    // The kills fell while the program was saving, not only between saves.
    EXPECT_GT(cutShort, 0);
    EXPECT_GT(asA, 0);
    EXPECT_GT(asB, 0);
}
