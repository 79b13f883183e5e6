// Adding things to the scene: the gallery of objects, read from a home folder made here
// with a few hostile files among the good ones, reached through the keyboard; and the
// Add Text form. Only the engine's calls come out of them.
#include "scene/adding_commands.h"
#include "scene/gallery_dialog.h"
#include "scene/gallery_model.h"

#include "support/scripted_engine.h"
#include "support/window_wait.h"

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// Objects/ with Rock.obj of its own, Animals/ (Bunny with a red picture, Cat with none)
// and Nature/ (Tree whose picture is not a picture, Giant whose picture is too big to be
// a thumbnail), and files that are no objects.
struct Home {
    QTemporaryDir dir;
    QString objects = dir.filePath(QStringLiteral("Objects"));

    Home() {
        for (const char* theme : {"Animals", "Nature", "Empty"})
            QDir(objects).mkpath(QString::fromLatin1(theme));
        for (const char* file :
             {"Rock.obj", "Animals/Bunny.mdl", "Animals/Cat.MDL", "Nature/Tree.mdl",
              "Nature/Giant.mdl", "Nature/notes.txt", "Animals/Bunny.3ds"})
            write(QString::fromLatin1(file), "model");
        picture(QStringLiteral("Animals/Bunny.png"), {40, 40}, Qt::red);
        picture(QStringLiteral("Nature/Giant.png"), {2000, 8}, Qt::green);
        write(QStringLiteral("Nature/Tree.png"), "\x89PNG but not one");
    }

    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(objects + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    void picture(const QString& name, QSize size, Qt::GlobalColor colour) const {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(objects + u'/' + name));
    }
    QString path(const char* name) const { return objects + u'/' + QString::fromLatin1(name); }
};

QStringList names(const QAbstractItemModel& model) {
    QStringList shown;
    for (int row = 0; row < model.rowCount(); ++row)
        shown << model.index(row, 0).data().toString();
    return shown;
}

// The colour near the corner of an object's picture, clear of any initial drawn on it.
QColor groundOf(const GalleryModel& gallery, int row) {
    const QImage picture = gallery.index(row).data(Qt::DecorationRole).value<QPixmap>().toImage();
    EXPECT_LE(std::max(picture.width(), picture.height()), GalleryModel::PictureSize);
    return picture.pixelColor(2, 2);
}

struct Adding : ScriptedProgram, ::testing::Test {
    Home home;
    QWidget window;
    AddingCommands adding{state, engine, reporter, &window};

    Adding() {
        state.HomeDir = home.dir.path() + u'/';
        scripted->answers[QStringLiteral("GetModelFileKinds")] =
            QVariantList{QStringLiteral("mdl"), QStringLiteral("obj")};
        window.show();
    }

    GalleryDialog& openGallery() {
        adding.AddObjectFile();
        GalleryDialog& gallery = *adding.gallery();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&gallery, kWindowWaitMs));
        QApplication::setActiveWindow(&gallery);
        return gallery;
    }
    void type(const QString& keys) { QTest::keyClicks(QApplication::focusWidget(), keys); }
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    // The paths the engine was asked to add, in order.
    QStringList added() const {
        QStringList paths;
        for (qsizetype i = 0; i < log.calls.size(); ++i)
            if (log.calls[i] == QStringLiteral("addobject"))
                paths << log.arguments[i][0].toString();
        return paths;
    }
};

} // namespace

TEST(GalleryModel, ReadsTheObjectsByThemeAndShowsAPictureOnlyWhereOneCanBeRead) {
    Home home;
    GalleryModel gallery;
    gallery.load(home.objects, {QStringLiteral("mdl"), QStringLiteral("obj")});
    // The folder's own objects first, then each theme; case ignored; other files passed by.
    EXPECT_EQ(names(gallery), (QStringList{"Rock", "Bunny", "Cat", "Giant", "Tree"}));
    EXPECT_EQ(gallery.themes(), (QStringList{"", "Animals", "Nature"}));
    EXPECT_EQ(gallery.index(1).data(GalleryModel::PathRole), home.path("Animals/Bunny.mdl"));
    EXPECT_EQ(gallery.index(1).data(Qt::AccessibleDescriptionRole), "Animals");

    EXPECT_EQ(groundOf(gallery, 1), QColor(Qt::red));
    // No picture, a broken one and a huge one: the object's initial on the plain ground.
    const QColor ground = groundOf(gallery, 2);
    EXPECT_NE(ground, QColor(Qt::red));
    EXPECT_EQ(groundOf(gallery, 3), ground);
    EXPECT_EQ(groundOf(gallery, 4), ground);

    // Read anew at each load.
    QFile::remove(home.path("Animals/Cat.MDL"));
    gallery.load(home.objects, {QStringLiteral("mdl")});
    EXPECT_EQ(names(gallery), (QStringList{"Bunny", "Giant", "Tree"}));
    gallery.load(home.dir.filePath(QStringLiteral("nowhere")), {QStringLiteral("mdl")});
    EXPECT_EQ(gallery.rowCount(), 0);
}

TEST(GalleryModel, TheFilterKeepsOneThemeAndWhatTheSearchFindsInNamesAndThemes) {
    Home home;
    GalleryModel gallery;
    gallery.load(home.objects, {QStringLiteral("mdl"), QStringLiteral("obj")});
    GalleryFilter shown;
    shown.setSourceModel(&gallery);
    shown.setSearch(QStringLiteral(" BUN "));
    EXPECT_EQ(names(shown), QStringList{"Bunny"});
    shown.setSearch(QStringLiteral("nature"));
    EXPECT_EQ(names(shown), (QStringList{"Giant", "Tree"}));
    shown.setSearch(QString());
    shown.setTheme(QString());
    EXPECT_EQ(names(shown), QStringList{"Rock"});
    shown.setTheme(QStringLiteral("Animals"));
    shown.setSearch(QStringLiteral("t"));
    EXPECT_EQ(names(shown), QStringList{"Cat"});
    shown.showAllThemes();
    EXPECT_EQ(names(shown), (QStringList{"Cat", "Giant", "Tree"}));

    EXPECT_EQ(modelFileFilter({QStringLiteral("mdl"), QStringLiteral("3ds")}),
              "Objects (*.mdl *.3ds);;MDL (*.mdl);;3DS (*.3ds);;All Files (*)");
    EXPECT_EQ(modelFileFilter({}), "All Files (*)");
}

TEST_F(Adding, TypingBunnyAndReturnAddsTheBunnyOnceAndEscapeAddsNothing) {
    GalleryDialog& gallery = openGallery();
    EXPECT_EQ(QApplication::focusWidget(), &gallery.searchBox());
    EXPECT_EQ(gallery.countLabel().text(), "5 objects");
    type(QStringLiteral("bunny"));
    EXPECT_EQ(gallery.countLabel().text(), "1 object");
    EXPECT_EQ(
        QAccessible::queryAccessibleInterface(&gallery.searchBox())->text(QAccessible::Description),
        "1 object");
    press(Qt::Key_Return);
    EXPECT_FALSE(gallery.isVisible());
    EXPECT_EQ(added(), QStringList{home.path("Animals/Bunny.mdl")});

    // Opened again, the search is empty; Escape closes it and sends nothing.
    openGallery();
    EXPECT_TRUE(gallery.searchBox().text().isEmpty());
    type(QStringLiteral("zebra"));
    EXPECT_EQ(gallery.countLabel().text(), "No object found");
    press(Qt::Key_Return);
    EXPECT_TRUE(gallery.isVisible());
    press(Qt::Key_Escape);
    EXPECT_FALSE(gallery.isVisible());
    EXPECT_EQ(added().size(), 1);
}

TEST_F(Adding, TheArrowsAndTabReachEveryObjectAndThemeAndAReaderHearsTheirNames) {
    GalleryDialog& gallery = openGallery();
    press(Qt::Key_Down); // from the search to the pictures
    ASSERT_EQ(QApplication::focusWidget(), &gallery.objectList());
    press(Qt::Key_Right);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&gallery.objectList());
    ASSERT_TRUE(list->focusChild());
    EXPECT_EQ(list->focusChild()->text(QAccessible::Name), "Bunny");
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    EXPECT_EQ(added(), QStringList{home.path("Animals/Cat.MDL")});

    openGallery();
    // Tab from the search reaches the themes; Nature shows its two objects.
    press(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &gallery.themeList());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&gallery.themeList())->text(QAccessible::Name),
              "Themes");
    press(Qt::Key_End);
    EXPECT_EQ(gallery.themeList().currentItem()->text(), "Nature");
    EXPECT_EQ(gallery.countLabel().text(), "2 objects");
    press(Qt::Key_Home);
    EXPECT_EQ(gallery.countLabel().text(), "5 objects");
    press(Qt::Key_Down);
    EXPECT_EQ(gallery.themeList().currentItem()->text(), "Other objects");
    press(Qt::Key_Tab);
    press(Qt::Key_Return); // Rock, the only one shown
    EXPECT_EQ(added().last(), home.path("Rock.obj"));
    EXPECT_EQ(added().size(), 2);
}

TEST_F(Adding, AnObjectTheEngineCannotReadShowsItsWordsAndAFailedCallIsReported) {
    scripted->answers[QStringLiteral("addobject")] =
        QStringLiteral("Tree.mdl is not a model file this program can read");
    openGallery();
    type(QStringLiteral("tree"));
    press(Qt::Key_Return);
    auto* box = window.findChild<QMessageBox*>();
    ASSERT_TRUE(box);
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->text(), "Tree.mdl is not a model file this program can read");
    EXPECT_EQ(box->windowTitle(), "Add An Object");
    box->accept();

    scripted->failures[QStringLiteral("addobject")] = QStringLiteral("the engine broke");
    openGallery();
    type(QStringLiteral("tree"));
    press(Qt::Key_Return);
    ASSERT_EQ(display.shown.size(), 1);
    const QString& report = display.shown[0].labelText;
    EXPECT_TRUE(report.contains(
        QStringLiteral("MainForm:AddObjectButton_MouseUp: Error calling python addobject.")));
    EXPECT_TRUE(report.contains(QStringLiteral("the engine broke")));
}

TEST_F(Adding, OtherFileAddsWhatTheFileDialogGivesAndNothingWhenItIsCancelled) {
    GalleryModel model;
    QString answer;
    GalleryDialog gallery(model, [&] { return answer; });
    QStringList chosen;
    QObject::connect(&gallery, &GalleryDialog::objectChosen,
                     [&](const QString& path) { chosen << path; });
    gallery.showGallery();
    gallery.show();
    auto* other = gallery.findChild<QPushButton*>(QStringLiteral("GalleryOtherFile"));
    QTest::mouseClick(other, Qt::LeftButton);
    EXPECT_TRUE(chosen.isEmpty());
    answer = QStringLiteral("/elsewhere/Robot.3ds");
    QTest::mouseClick(other, Qt::LeftButton);
    EXPECT_EQ(chosen, QStringList{answer});
    EXPECT_FALSE(gallery.isVisible());
}

TEST_F(Adding, AddTextSendsTheTextTypedAndAnEmptyBoxSendsNothing) {
    adding.showAddTextForm();
    QDialog& form = *adding.addTextForm();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form, kWindowWaitMs));
    QApplication::setActiveWindow(&form);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "AddTextBox");
    type(QStringLiteral("Hello"));
    press(Qt::Key_Return);
    EXPECT_FALSE(form.isVisible());
    adding.showAddTextForm();
    QApplication::setActiveWindow(&form);
    EXPECT_TRUE(form.findChild<QLineEdit*>()->text().isEmpty());
    press(Qt::Key_Return);
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(log.calls.filter(QStringLiteral("AddText")).size(), 1);
    EXPECT_EQ(log.arguments[log.calls.indexOf(QStringLiteral("AddText"))],
              QVariantList{QStringLiteral("Hello")});
}

TEST_F(Adding, AddSoundLooksInTheHomeSoundsThenWhereTheLastOneCameFromAndCancelSendsNothing) {
    QDir(home.dir.path()).mkpath(QStringLiteral("Sounds"));
    QDir(home.dir.path()).mkpath(QStringLiteral("mine"));
    const QString boing = home.dir.filePath(QStringLiteral("Sounds/Boing.wav"));
    const QString hum = home.dir.filePath(QStringLiteral("mine/Hum.wav"));
    for (const QString& path : {boing, hum}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QStringList folders; // where the dialog opened each time
    // Answers the sound dialog, once it is up, with file; "" cancels it.
    const auto answer = [&](const QString& file) {
        QTimer::singleShot(0, [&folders, file] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            EXPECT_EQ(dialog->objectName(), "SoundDialog");
            folders << QDir(dialog->directory()).canonicalPath();
            if (file.isEmpty()) {
                dialog->reject();
                return;
            }
            dialog->selectFile(file);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        adding.AddSoundFile();
    };
    answer(hum);
    answer(QString());
    scripted->answers[QStringLiteral("AddSound")] = QStringLiteral("Hum.wav is no sound");
    answer(hum);
    EXPECT_EQ(folders,
              (QStringList{QFileInfo(boing).canonicalPath(), QFileInfo(hum).canonicalPath(),
                           QFileInfo(hum).canonicalPath()}));
    EXPECT_EQ(log.calls.filter(QStringLiteral("AddSound")).size(), 2);
    EXPECT_EQ(QFileInfo(log.arguments.last()[0].toString()).canonicalFilePath(),
              QFileInfo(hum).canonicalFilePath());
    auto* box = window.findChild<QMessageBox*>();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text(), "Hum.wav is no sound");
    EXPECT_EQ(box->windowTitle(), "Add A Sound");
}
