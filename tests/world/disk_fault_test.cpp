// The disk refusing a save or a load: a full disk, one that can only be read, a folder
// gone while the world was open, a file the user may not read. Each is told with what
// happened and what to do, and the world in memory stays as it was, so that Save As
// elsewhere still keeps it.
#include "world/staged_save.h"
#include "world/world_folder.h"

#include "world/world_on_engine.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// A file system of its own, small enough to fill: a tmpfs mounted on a temporary folder.
class SmallDisk {
public:
    explicit SmallDisk(int kilobytes) : options_(QStringLiteral("size=%1k").arg(kilobytes)) {
        mounted_ = ::mount("tmpfs", QFile::encodeName(dir_.path()).constData(), "tmpfs", 0,
                           options_.toLatin1().constData()) == 0;
    }
    ~SmallDisk() {
        if (mounted_)
            ::umount2(QFile::encodeName(dir_.path()).constData(), MNT_DETACH);
    }
    bool mounted() const { return mounted_; }
    QString path() const { return dir_.path(); }
    bool makeReadOnly() {
        return ::mount(nullptr, QFile::encodeName(dir_.path()).constData(), nullptr,
                       MS_REMOUNT | MS_RDONLY, options_.toLatin1().constData()) == 0;
    }

private:
    QTemporaryDir dir_;
    QString options_;
    bool mounted_ = false;
};

// A world saved once, then changed so that it holds unsaved work.
struct ChangedWorld {
    WorldOnEngine w;
    QString folder;
    QString saved;   // the world as its folder holds it
    QString changed; // as it is in memory

    explicit ChangedWorld(const QString& into) : folder(into + QStringLiteral("/Garden")) {
        buildWorld(w);
        EXPECT_TRUE(QDir().mkdir(folder));
        EXPECT_EQ(w.files.SaveWorld(folder), kYesSave);
        saved = w.shown();
        TreeControl& tree = w.world.script().TreeView1();
        tree.Add(tree.FirstRoot(), Relation::Child, {}, QStringLiteral("Hi.Move(Up, 3)"));
        // As the script's history tells the world of a change.
        w.world.status().markModified();
        w.poll();
        changed = w.shown();
    }

    // Save refused: said once, and why; nothing of the world lost or left half written.
    void expectRefused(const QString& says, const QString& advice) {
        w.view.messages.clear();
        w.files.FileSaveMenuButton_Click();
        EXPECT_EQ(w.files.result(), kNoSave);
        ASSERT_EQ(w.view.messages.size(), 1);
        EXPECT_TRUE(w.view.messages[0].text.contains(says))
            << w.view.messages[0].text.toStdString();
        EXPECT_TRUE(w.view.messages[0].details.contains(advice))
            << w.view.messages[0].details.toStdString();
        w.poll();
        EXPECT_EQ(w.shown(), changed);
        EXPECT_TRUE(w.world.IsWorldDirty());
        EXPECT_EQ(w.world.status().worldSaveFile(), folder);
    }

    // Save As into a folder that can be written keeps the world as it is in memory.
    void expectSavedElsewhere() {
        QTemporaryDir elsewhere;
        w.view.messages.clear();
        w.view.folders << elsewhere.path();
        w.files.FileSaveAsMenuButton_Click();
        EXPECT_EQ(w.files.result(), kYesSave);
        EXPECT_TRUE(w.view.messages.isEmpty());
        w.files.FileNewMenuButton_Click();
        ASSERT_TRUE(w.files.LoadWorld(elsewhere.path(), false));
        w.poll();
        EXPECT_TRUE(w.shown().contains(QStringLiteral("Hi.Move(Up, 3)")));
    }
};

} // namespace

TEST(DiskFaults, AFullDiskKeepsTheWorldSavedBeforeAndTheOneInMemory) {
    SmallDisk disk(2048);
    if (!disk.mounted())
        GTEST_SKIP() << "a small file system can't be mounted here";
    ChangedWorld world(disk.path());
    // More code than the disk has room for.
    world.w.world.ArbitraryCodeBox().Text = QStringLiteral("x = 1\r\n").repeated(600'000);
    world.changed = world.w.shown();
    world.expectRefused(QStringLiteral("unable to save"), QStringLiteral("The disk is full"));
    const QDir folder(world.folder);
    EXPECT_FALSE(folder.exists(staged_save::Writing));
    EXPECT_FALSE(folder.exists(staged_save::Written));
    world.expectSavedElsewhere();
    // The folder on the full disk still holds the world of the save before.
    ASSERT_TRUE(world.w.files.LoadWorld(world.folder, false));
    world.w.poll();
    EXPECT_FALSE(world.w.shown().contains(QStringLiteral("Hi.Move(Up, 3)")));
}

TEST(DiskFaults, ADiskThatCanOnlyBeReadIsToldAndSaveAsElsewhereKeepsTheWork) {
    SmallDisk disk(2048);
    if (!disk.mounted())
        GTEST_SKIP() << "a small file system can't be mounted here";
    ChangedWorld world(disk.path());
    ASSERT_TRUE(disk.makeReadOnly());
    world.expectRefused(QStringLiteral("marked read only"), QString());
    world.expectSavedElsewhere();
}

TEST(DiskFaults, AFolderDeletedWhileTheWorldWasOpenIsToldAndSaveAsElsewhereKeepsTheWork) {
    QTemporaryDir dir;
    ChangedWorld world(dir.path());
    ASSERT_TRUE(QDir(world.folder).removeRecursively());
    world.expectRefused(QStringLiteral("the world directory has been deleted"), QString());
    EXPECT_FALSE(QFileInfo::exists(world.folder));
    world.expectSavedElsewhere();
}

TEST(DiskFaults, AFileTheUserMayNotReadIsToldAndTheOpenWorldStays) {
    QTemporaryDir dir;
    ChangedWorld world(dir.path());
    QTemporaryDir otherDir;
    const QString other = otherDir.path() + QStringLiteral("/Other");
    QDir().mkdir(other);
    QFile::copy(world.folder + QStringLiteral("/World_Scene.py"),
                other + QStringLiteral("/World_Scene.py"));
    QFile::copy(world.folder + QStringLiteral("/world_script.tv"),
                other + QStringLiteral("/world_script.tv"));
    const QString script = other + QStringLiteral("/world_script.tv");
    ASSERT_EQ(::chmod(QFile::encodeName(otherDir.path()).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(script).constData(), 0), 0);

    // Whoever runs the tests may read anything: the load is tried as a user who may not.
    const bool asRoot = ::geteuid() == 0;
    if (asRoot) {
        ASSERT_EQ(::seteuid(65534), 0);
    }
    const bool loaded = world.w.files.LoadWorld(other, false);
    if (asRoot) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    EXPECT_FALSE(loaded);
    ASSERT_EQ(world.w.view.messages.size(), 1);
    EXPECT_TRUE(world.w.view.messages[0].text.contains(QStringLiteral("world_script.tv")));
    EXPECT_TRUE(world.w.view.messages[0].details.contains(QStringLiteral("not allowed to read")))
        << world.w.view.messages[0].details.toStdString();
    world.w.poll();
    EXPECT_EQ(world.w.shown(), world.changed);
    EXPECT_EQ(world.w.world.status().worldSaveFile(), world.folder);
}
