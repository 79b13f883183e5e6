// Worlds saved and opened again through the real engine, as the File commands do it, and
// worlds that can't be opened.
#include "world/script_file_format.h"
#include "world/staged_save.h"
#include "world/world_folder.h"

#include "world/world_on_engine.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// What the world shows once it is saved and opened again: the code gains a line end
// when it is written and another when it is read, as it always has.
QString afterLoad(const QString& shown) {
    QStringList lines = shown.split(u'\n');
    for (QString& line : lines)
        if (line.startsWith(QStringLiteral("code: ")))
            line += QStringLiteral("<CRLF><CRLF>");
    return lines.join(u'\n');
}

struct SavedWorld {
    QTemporaryDir dir;
    QString folder = dir.path() + QStringLiteral("/Garden");
};

} // namespace

TEST(WorldFiles, AWorldSavedIntoANewFolderOpensAgainAsItWasMade) {
    WorldOnEngine w;
    buildWorld(w);
    const QString made = w.shown();
    SavedWorld saved;
    ASSERT_TRUE(QDir().mkdir(saved.folder));

    // An unnamed world is named first: the folder the user chooses.
    w.view.folders << saved.folder;
    w.files.FileSaveMenuButton_Click();
    ASSERT_EQ(w.files.result(), kYesSave);
    EXPECT_TRUE(w.view.messages.isEmpty());
    EXPECT_EQ(w.world.status().worldSaveFile(), saved.folder);
    EXPECT_FALSE(w.world.IsWorldDirty());
    EXPECT_EQ(w.engine.call(QStringLiteral("GetRecentFiles")).toList().value(0).toList().value(1),
              saved.folder);
    const QDir folder(saved.folder);
    for (const char* file : {"World_Scene.py", "world_script.tv", "world_script.py", "Bunny.mdl"})
        EXPECT_TRUE(folder.exists(QString::fromLatin1(file))) << file;
    // Nothing of the save's own making is left, and the script has a dated copy.
    EXPECT_EQ(folder.entryList(QDir::Hidden | QDir::AllEntries | QDir::NoDotAndDotDot)
                  .filter(QStringLiteral(".vessa")),
              QStringList());
    const QStringList backups =
        QDir(folder.filePath(QStringLiteral("Backups"))).entryList(QDir::Files);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_TRUE(backups[0].startsWith(QStringLiteral("Script_as_of_")) &&
                backups[0].endsWith(QStringLiteral("_S.tv")));
    EXPECT_EQ(bytesOf(folder.filePath(QStringLiteral("Backups/")) + backups[0]),
              bytesOf(folder.filePath(QStringLiteral("world_script.tv"))));

    // A clean world is left without a question; the saved one comes back as it was made.
    w.files.FileNewMenuButton_Click();
    EXPECT_TRUE(w.view.questions.isEmpty());
    EXPECT_EQ(w.world.status().worldSaveFile(), QString());
    ASSERT_TRUE(w.files.LoadWorld(saved.folder, true));
    w.poll();
    EXPECT_EQ(w.shown(), afterLoad(made));
    EXPECT_EQ(w.world.status().worldSaveFile(), saved.folder);
    EXPECT_FALSE(w.world.IsWorldDirty());
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(WorldFiles, WorldsFromElsewhereOpenWhateverTheCaseOfTheirNamesAndTheirLineEnds) {
    WorldOnEngine w;
    buildWorld(w);
    SavedWorld saved;
    QDir().mkdir(saved.folder);
    ASSERT_EQ(w.files.SaveWorld(saved.folder), kYesSave);
    const QString shown = afterLoad(w.shown());
    const QDir folder(saved.folder);
    for (const auto& [from, to] : {std::pair{"World_Scene.py", "world_scene.py"},
                                   std::pair{"world_script.tv", "WORLD_SCRIPT.TV"}}) {
        const QString renamed = folder.filePath(QString::fromLatin1(to));
        ASSERT_TRUE(QFile::rename(folder.filePath(QString::fromLatin1(from)), renamed));
        write(renamed, bytesOf(renamed).replace("\r\n", "\n"));
    }
    w.files.FileNewMenuButton_Click();
    ASSERT_TRUE(w.files.LoadWorld(saved.folder + u'/', false));
    w.poll();
    EXPECT_EQ(w.shown(), shown);
    // Saved again, each file keeps the name it had: no second spelling beside it.
    ASSERT_EQ(w.files.SaveWorld(saved.folder), kYesSave);
    const QStringList files = folder.entryList(QDir::Files);
    EXPECT_TRUE(files.contains(QStringLiteral("world_scene.py")) &&
                files.contains(QStringLiteral("WORLD_SCRIPT.TV")));
    EXPECT_FALSE(files.contains(QStringLiteral("World_Scene.py")) ||
                 files.contains(QStringLiteral("world_script.tv")));
}

TEST(WorldFiles, AWorldThatCantBeOpenedIsRefusedWithWhyAndTheOpenWorldStaysAsItWas) {
    WorldOnEngine w;
    buildWorld(w);
    SavedWorld open;
    QDir().mkdir(open.folder);
    ASSERT_EQ(w.files.SaveWorld(open.folder), kYesSave);
    const QString shown = w.shown();

    const QByteArray scene = bytesOf(open.folder + QStringLiteral("/World_Scene.py"));
    const QByteArray script = bytesOf(open.folder + QStringLiteral("/world_script.tv"));
    // Each bad world: what its folder holds, and what the refusal says.
    const std::vector<std::tuple<const char*, std::function<void(const QDir&)>, QString>> bad = {
        {"no scene file",
         [&](const QDir& d) { write(d.filePath(QStringLiteral("world_script.tv")), script); },
         QStringLiteral("is not a valid world folder.")},
        {"a damaged script file",
         [&](const QDir& d) {
             write(d.filePath(QStringLiteral("World_Scene.py")), scene);
             write(d.filePath(QStringLiteral("world_script.tv")),
                   QByteArray(script).replace("\r\n1\r\n", "\r\nnine\r\n"));
         },
         QStringLiteral("world_script.tv line 2")},
        {"a scene file that would run code",
         [&](const QDir& d) {
             write(d.filePath(QStringLiteral("World_Scene.py")), "import os\r\n" + scene);
             write(d.filePath(QStringLiteral("world_script.tv")), script);
         },
         QStringLiteral("World_Scene.py line 1")},
        {"a script file that is a pipe",
         [&](const QDir& d) {
             write(d.filePath(QStringLiteral("World_Scene.py")), scene);
             ::mkfifo(QFile::encodeName(d.filePath(QStringLiteral("world_script.tv"))).constData(),
                      0644);
         },
         QStringLiteral("it is not a file")},
        {"a script file too big to be one",
         [&](const QDir& d) {
             write(d.filePath(QStringLiteral("World_Scene.py")), scene);
             QFile huge(d.filePath(QStringLiteral("world_script.tv")));
             ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
             huge.resize(script_file::MaxBytes + 1);
         },
         QStringLiteral("world_script.tv")},
    };
    for (const auto& [what, make, says] : bad) {
        QTemporaryDir other;
        const QDir folder(other.path());
        make(folder);
        w.view.messages.clear();
        EXPECT_FALSE(w.files.LoadWorld(other.path(), true)) << what;
        ASSERT_EQ(w.view.messages.size(), 1) << what;
        EXPECT_EQ(w.view.messages[0].title, QStringLiteral("Vessa47 - World Load")) << what;
        EXPECT_TRUE(w.view.messages[0].text.contains(says))
            << what << ": " << w.view.messages[0].text.toStdString();
        w.poll();
        EXPECT_EQ(w.shown(), shown) << what;
        EXPECT_EQ(w.world.status().worldSaveFile(), open.folder) << what;
    }
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(WorldFiles, ASaveCutShortIsFinishedOrDroppedBeforeTheWorldIsOpened) {
    WorldOnEngine w;
    buildWorld(w);
    SavedWorld saved;
    QDir().mkdir(saved.folder);
    ASSERT_EQ(w.files.SaveWorld(saved.folder), kYesSave);
    const QString first = afterLoad(w.shown());
    const QDir folder(saved.folder);
    const QByteArray firstScript = bytesOf(folder.filePath(QStringLiteral("world_script.tv")));
    w.world.ArbitraryCodeBox().Text = QStringLiteral("second = 2\r\n");
    ASSERT_EQ(w.files.SaveWorld(saved.folder), kYesSave);
    const QString second = afterLoad(w.shown());
    const QByteArray secondScript = bytesOf(folder.filePath(QStringLiteral("world_script.tv")));

    // Killed while writing the second save: its files never took the world's place.
    write(folder.filePath(QStringLiteral("world_script.tv")), firstScript);
    ASSERT_TRUE(folder.mkdir(staged_save::Writing));
    write(folder.filePath(staged_save::Writing + QStringLiteral("/world_script.tv")), "half");
    w.files.FileNewMenuButton_Click();
    ASSERT_TRUE(w.files.LoadWorld(saved.folder, false));
    w.poll();
    EXPECT_EQ(w.shown(), first);
    EXPECT_FALSE(folder.exists(staged_save::Writing));

    // Killed after the save happened, with one of its files moved in: the rest follow.
    ASSERT_TRUE(folder.mkdir(staged_save::Written));
    write(folder.filePath(staged_save::Written + QStringLiteral("/world_script.tv")), secondScript);
    w.files.FileNewMenuButton_Click();
    ASSERT_TRUE(w.files.LoadWorld(saved.folder, false));
    w.poll();
    EXPECT_EQ(w.shown(), second);
    EXPECT_FALSE(folder.exists(staged_save::Written));
}

TEST(WorldFiles, SaveAsIntoAnotherWorldAsksFirstAndNoChoosesAgain) {
    WorldOnEngine w;
    buildWorld(w);
    SavedWorld other;
    QDir().mkdir(other.folder);
    ASSERT_EQ(w.files.SaveWorld(other.folder), kYesSave);
    const QByteArray otherScript = bytesOf(other.folder + QStringLiteral("/world_script.tv"));
    w.world.ArbitraryCodeBox().Text = QStringLiteral("mine = 1\r\n");
    QTemporaryDir fresh;

    w.view.overwrite = WorldFilesView::Answer::No;
    w.view.folders = {other.folder, fresh.path()};
    w.files.FileSaveAsMenuButton_Click();
    EXPECT_EQ(w.view.questions, QStringList{QStringLiteral("overwrite")});
    EXPECT_EQ(w.files.result(), kYesSave);
    EXPECT_EQ(w.world.status().worldSaveFile(), fresh.path());
    EXPECT_EQ(bytesOf(other.folder + QStringLiteral("/world_script.tv")), otherScript);

    w.view.overwrite = WorldFilesView::Answer::Cancel;
    w.view.folders = {other.folder};
    w.files.FileSaveAsMenuButton_Click();
    EXPECT_EQ(w.files.result(), kNoSave);
    EXPECT_EQ(bytesOf(other.folder + QStringLiteral("/world_script.tv")), otherScript);
}

// A name typed in the dialog that is no folder yet becomes the world's folder; one that
// can't be made is told, and nothing is saved.
TEST(WorldFiles, SaveAsUnderANewNameMakesTheFolder) {
    WorldOnEngine w;
    buildWorld(w);
    QTemporaryDir worlds;
    const QString fresh = worlds.filePath(QStringLiteral("Garden"));
    w.view.folders = {fresh};
    w.files.FileSaveAsMenuButton_Click();
    EXPECT_EQ(w.files.result(), kYesSave);
    EXPECT_TRUE(QFile::exists(fresh + QStringLiteral("/world_script.tv")));
    EXPECT_TRUE(w.view.messages.isEmpty());

    const QString underAFile = fresh + QStringLiteral("/world_script.tv/Inside");
    w.view.folders = {underAFile};
    w.files.FileSaveAsMenuButton_Click();
    EXPECT_EQ(w.files.result(), kNoSave);
    ASSERT_EQ(w.view.messages.size(), 1);
    EXPECT_EQ(w.view.messages.first().title, QStringLiteral("Vessa - Error"));
    EXPECT_TRUE(w.view.messages.first().text.startsWith(
        QStringLiteral("Error - I was unable to create the directory you specified.")));
    EXPECT_EQ(w.world.status().worldSaveFile(), fresh);
}

TEST(WorldFiles, ASaveFromAScriptTabWritesTheSceneAsItStoodBeforeTheRun) {
    WorldOnEngine w;
    buildWorld(w);
    const QString opening = w.sceneText();
    w.run(QStringLiteral("PreserveHandbasket()"));
    w.world.status().setSceneScriptTab(1);
    w.run(QStringLiteral("Bunny.Move(Up, 5, Duration=0)"));
    ASSERT_NE(w.sceneText(), opening);
    SavedWorld saved;
    QDir().mkdir(saved.folder);
    ASSERT_EQ(w.files.SaveWorld(saved.folder), kYesSave);
    EXPECT_EQ(w.sceneText(), opening);
}

TEST(WorldFiles, LeavingAChangedWorldAsksFirstYesSavesNoLeavesItAndCancelStays) {
    using Answer = WorldFilesView::Answer;
    enum class Command { New, Open };
    for (const Command command : {Command::New, Command::Open}) {
        for (const Answer answer : {Answer::Yes, Answer::No, Answer::Cancel}) {
            const std::string what = std::string(command == Command::New ? "New" : "Open") +
                                     " answered " + std::to_string(static_cast<int>(answer));
            WorldOnEngine w;
            buildWorld(w);
            SavedWorld saved;
            SavedWorld other;
            QDir().mkdir(saved.folder);
            QDir().mkdir(other.folder);
            ASSERT_EQ(w.files.SaveWorld(other.folder), kYesSave);
            ASSERT_EQ(w.files.SaveWorld(saved.folder), kYesSave);
            const QByteArray before = bytesOf(saved.folder + QStringLiteral("/world_script.tv"));
            TreeControl& tree = w.world.script().TreeView1();
            tree.Add(tree.FirstRoot(), Relation::Child, {}, QStringLiteral("Hi.Move(Up, 3)"));
            // As the script's history tells the world of a change.
            w.world.status().markModified();
            ASSERT_TRUE(w.world.IsWorldDirty()) << what;
            const QString changed = w.shown();

            w.view.saveChanges = answer;
            w.view.folders << other.folder;
            if (command == Command::New)
                w.files.FileNewMenuButton_Click();
            else
                w.files.FileOpenMenuButton_Click();
            w.poll();
            EXPECT_EQ(w.view.questions, QStringList{QStringLiteral("save changes")}) << what;
            const QByteArray after = bytesOf(saved.folder + QStringLiteral("/world_script.tv"));
            EXPECT_EQ(after.contains("Hi.Move(Up, 3)"), answer == Answer::Yes) << what;
            EXPECT_EQ(after == before, answer != Answer::Yes) << what;
            const QString left = w.world.status().worldSaveFile();
            if (answer == Answer::Cancel) {
                EXPECT_EQ(left, saved.folder) << what;
                EXPECT_EQ(w.shown(), changed) << what;
                EXPECT_TRUE(w.world.IsWorldDirty()) << what;
            } else {
                EXPECT_EQ(left, command == Command::New ? QString() : other.folder) << what;
                EXPECT_FALSE(w.world.IsWorldDirty()) << what;
            }
        }
    }
}

TEST(WorldFiles, YesForAWorldWithoutANameAsksForAFolderAndNoneChosenKeepsTheWorld) {
    WorldOnEngine w;
    buildWorld(w);
    ASSERT_TRUE(w.world.IsWorldDirty());
    const QString made = w.shown();
    w.view.saveChanges = WorldFilesView::Answer::Yes;
    w.files.FileNewMenuButton_Click();
    w.poll();
    EXPECT_EQ(w.files.result(), kNoSave);
    EXPECT_EQ(w.shown(), made);
    EXPECT_TRUE(w.world.IsWorldDirty());

    SavedWorld saved;
    QDir().mkdir(saved.folder);
    w.view.folders << saved.folder;
    w.files.FileNewMenuButton_Click();
    w.poll();
    EXPECT_EQ(w.files.result(), kYesSave);
    EXPECT_TRUE(isWorldFolder(saved.folder));
    EXPECT_EQ(w.world.status().worldSaveFile(), QString());
    EXPECT_EQ(w.world.script().TreeView1().FirstRoot()->Child(), nullptr);
}
