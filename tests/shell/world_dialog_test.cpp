#include "shell/world_browser.h"
#include "shell/world_dialog.h"

#include "support/qt_print.h"

#include <QApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
}

// A bitmap header that claims a picture of 100,000 pixels a side, with no pixels after.
QByteArray hugeBitmapHeader() {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("BM", 2);
    out << quint32(54) << quint32(0) << quint32(54);
    out << quint32(40) << qint32(100000) << qint32(100000) << quint16(1) << quint16(24)
        << quint32(0) << quint32(0) << qint32(2835) << qint32(2835) << quint32(0) << quint32(0);
    return bytes;
}

// A folder of worlds as a user's might be: a world with a picture (its name in capitals),
// one without, one whose picture is text, one whose picture claims to be huge, a folder
// with a script but no scene, and a plain file.
class WorldsFolder {
public:
    WorldsFolder() {
        QDir root(dir.path());
        for (const char* name : {"Garden", "Bare", "Broken", "Huge", "Stuff", "Stuff/Deep"})
            root.mkpath(QLatin1String(name));
        for (const char* world : {"Garden", "Bare", "Broken", "Huge", "Stuff/Deep"})
            writeFile(path(world) + QStringLiteral("/World_Scene.py"), "# scene\n");
        QImage picture(200, 100, QImage::Format_RGB32);
        picture.fill(Qt::red);
        picture.save(path("Garden") + QStringLiteral("/WORLD_THUMBNAIL.BMP"), "BMP");
        writeFile(path("Broken") + QStringLiteral("/world_thumbnail.bmp"), "not a picture");
        writeFile(path("Huge") + QStringLiteral("/world_thumbnail.bmp"), hugeBitmapHeader());
        writeFile(path("Stuff") + QStringLiteral("/world_script.py"), "# script\n");
        writeFile(path("notes.txt"), "notes");
    }
    QString path(const char* name = nullptr) const {
        return name ? dir.filePath(QLatin1String(name)) : dir.path();
    }

    QTemporaryDir dir;
};

// Asks the view's question for every row's picture and waits for the readers.
void readAllThumbnails(WorldFolderModel& model) {
    for (int row = 0; row < model.rowCount(); ++row)
        model.index(row).data(Qt::DecorationRole);
    QTRY_COMPARE(model.thumbnailsPending(), 0);
}

QImage picture(const WorldFolderModel& model, int row) {
    return model.index(row).data(Qt::DecorationRole).value<QImage>();
}

} // namespace

TEST(WorldFolderModel, ListsFoldersByNameAndTellsWorldsFromFolders) {
    WorldsFolder worlds;
    WorldFolderModel model;
    ASSERT_TRUE(model.setFolder(worlds.path()));
    QStringList names;
    QStringList kinds;
    for (int row = 0; row < model.rowCount(); ++row) {
        names << model.index(row).data().toString();
        kinds << model.index(row).data(Qt::AccessibleDescriptionRole).toString();
    }
    EXPECT_EQ(names, QStringList({"Bare", "Broken", "Garden", "Huge", "Stuff"}));
    EXPECT_EQ(kinds, QStringList({"World", "World", "World", "World", "Folder"}));
    // A folder that is gone lists nothing and says so.
    EXPECT_FALSE(model.setFolder(worlds.path("Gone")));
    EXPECT_EQ(model.rowCount(), 0);
}

TEST(WorldFolderModel, ReadsPicturesThatArePicturesAndShowsThePlaceholderForTheRest) {
    WorldsFolder worlds;
    WorldFolderModel model;
    model.setFolder(worlds.path());
    const QImage placeholder = picture(model, model.rowNamed("Bare"));
    readAllThumbnails(model);

    const int garden = model.rowNamed("garden");
    EXPECT_TRUE(model.index(garden).data(WorldFolderModel::ThumbnailReadRole).toBool());
    const QImage thumbnail = picture(model, garden);
    EXPECT_EQ(thumbnail.size(), QSize(96, 96));
    EXPECT_EQ(thumbnail.pixelColor(48, 48), QColor(Qt::red));
    EXPECT_EQ(thumbnail.pixelColor(48, 10).alpha(), 0); // the picture is half as high
    for (const char* name : {"Bare", "Broken", "Huge"}) {
        const int row = model.rowNamed(QLatin1String(name));
        EXPECT_FALSE(model.index(row).data(WorldFolderModel::ThumbnailReadRole).toBool()) << name;
        EXPECT_EQ(picture(model, row), placeholder) << name;
    }
    EXPECT_NE(picture(model, model.rowNamed("Stuff")), placeholder);
}

TEST(WorldFolderModel, PicturesOfAFolderLeftNeverLandInTheNextOne) {
    WorldsFolder worlds;
    WorldFolderModel model;
    model.setFolder(worlds.path());
    for (int row = 0; row < model.rowCount(); ++row)
        model.index(row).data(Qt::DecorationRole);
    // The folder changes before the readers' answers are taken.
    model.setFolder(worlds.path("Stuff"));
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QCoreApplication::processEvents();
    ASSERT_EQ(model.rowCount(), 1);
    EXPECT_FALSE(model.index(0).data(WorldFolderModel::ThumbnailReadRole).toBool());
    readAllThumbnails(model);
    EXPECT_EQ(changed.count(), 1); // Deep's own, and nothing of the folder left
}

TEST(WorldNames, RefusesWhatCannotNameOneNewFolder) {
    for (const QString& bad :
         {QString(), QStringLiteral("  "), QStringLiteral("a/b"), QStringLiteral("a\\b"),
          QStringLiteral("a.b"), QStringLiteral("tab\there"), QString(300, QLatin1Char('x'))})
        EXPECT_FALSE(worldNameProblem(bad).isEmpty()) << bad.toStdString();
    EXPECT_EQ(worldNameProblem(QStringLiteral("My World 2")), QString());
    EXPECT_EQ(withoutPeriod(QStringLiteral("a.b.c")), QStringLiteral("a"));
}

namespace {

// The dialog shown and active, as a user meets it.
class DialogFixture : public ::testing::Test {
protected:
    void begin(WorldForm::Use use, const QString& name = QString()) {
        form.begin(use, worlds.path(), name);
        form.show();
        activate();
    }
    // Offscreen, a closed message box hands the activation back to no window.
    void activate() {
        QApplication::setActiveWindow(&form);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    }
    // The text of the next message box, which is closed when it has come.
    void answerNextMessage() {
        auto* watch = new QTimer(&form);
        QObject::connect(watch, &QTimer::timeout, &form, [this, watch] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                message = box->text();
                box->done(QMessageBox::Ok);
                watch->deleteLater();
            }
        });
        watch->start(0);
    }
    QString currentName() const { return form.worldList().currentIndex().data().toString(); }

    WorldsFolder worlds;
    WorldForm form;
    QString message;
};

} // namespace

TEST_F(DialogFixture, OpenFromTheKeyboardGoesIntoFoldersAndTakesAWorld) {
    begin(WorldForm::Use::Open);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Vessa47 - Open World"));
    QListView& list = form.worldList();
    EXPECT_EQ(QApplication::focusWidget(), &list);

    // Typing finds a folder in the list; a plain folder can't be opened as a world.
    QTest::keyClicks(&list, "Stu");
    EXPECT_EQ(currentName(), QStringLiteral("Stuff"));
    EXPECT_FALSE(form.okButton().isEnabled());
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(form.folderModel().folder(), worlds.path("Stuff"));
    EXPECT_TRUE(form.isVisible());
    // Backspace comes back up, to the folder left.
    QTest::keyClick(&list, Qt::Key_Backspace);
    EXPECT_EQ(form.folderModel().folder(), worlds.path());
    EXPECT_EQ(currentName(), QStringLiteral("Stuff"));

    QTest::keyClick(&list, Qt::Key_Home);
    QTest::keyClick(&list, Qt::Key_Right);
    EXPECT_EQ(currentName(), QStringLiteral("Broken"));
    EXPECT_TRUE(form.okButton().isEnabled());
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_EQ(form.chosenFolder(), worlds.path("Broken"));
}

TEST_F(DialogFixture, OpenATypedNameAndRefuseOneThatIsNoWorld) {
    begin(WorldForm::Use::Open);
    QLineEdit& name = form.nameBox();
    name.setFocus();
    QTest::keyClicks(&name, "notes.txt");
    answerNextMessage();
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_TRUE(message.endsWith(QStringLiteral(" is not a valid world folder.")))
        << message.toStdString();
    EXPECT_TRUE(form.chosenFolder().isEmpty());

    activate();
    name.clear();
    QTest::keyClicks(&name, "Garden");
    EXPECT_EQ(currentName(), QStringLiteral("Garden")); // the list follows what is typed
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(form.chosenFolder(), worlds.path("Garden"));
}

TEST_F(DialogFixture, SaveChecksTheNameAndTakesAWorldChosenInTheList) {
    begin(WorldForm::Use::Save, QStringLiteral("Untitled"));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Vessa47 - Save World As..."));
    EXPECT_EQ(form.okButton().accessibleName(), QStringLiteral("Save"));
    QLineEdit& name = form.nameBox();
    EXPECT_EQ(QApplication::focusWidget(), &name);
    EXPECT_EQ(name.text(), QStringLiteral("Untitled"));

    // A period goes at once, with the reason.
    name.selectAll();
    answerNextMessage();
    QTest::keyClicks(&name, "a.");
    EXPECT_EQ(message, noPeriodsMessage());
    EXPECT_EQ(name.text(), QStringLiteral("a"));

    QTest::keyClicks(&name, "/b");
    answerNextMessage();
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_TRUE(message.contains(QStringLiteral("can't hold"))) << message.toStdString();
    name.clear();
    answerNextMessage();
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(message, QStringLiteral("Please specify a world name."));
    EXPECT_TRUE(form.chosenFolder().isEmpty());

    // Choosing a world in the list names it, to be saved over.
    activate();
    ASSERT_EQ(QApplication::focusWidget(), &name);
    QTest::keyClick(&name, Qt::Key_Tab, Qt::ShiftModifier);
    ASSERT_EQ(QApplication::focusWidget(), &form.worldList());
    QTest::keyClick(&form.worldList(), Qt::Key_End);
    QTest::keyClick(&form.worldList(), Qt::Key_Left);
    EXPECT_EQ(name.text(), QStringLiteral("Huge"));
    QTest::keyClick(&form.worldList(), Qt::Key_Return);
    EXPECT_EQ(form.chosenFolder(), worlds.path("Huge"));
}

TEST_F(DialogFixture, SaveANewNameInAPlaceChosenFromTheKeyboard) {
    begin(WorldForm::Use::Save, QStringLiteral("Untitled"));
    // Tab reads the dialog in order, and the places lead back to the worlds.
    QStringList order;
    for (int i = 0; i < 6; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order << QApplication::focusWidget()->accessibleName();
    }
    EXPECT_EQ(order, QStringList({"Save", "Cancel", "Places", "Up one folder", "Worlds and folders",
                                  "World name"}));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
    QTest::keyClick(&form.worldList(), Qt::Key_End);
    QTest::keyClick(&form.worldList(), Qt::Key_Return); // into Stuff
    QTest::keyClick(&form.worldList(), Qt::Key_Tab);
    QLineEdit& name = form.nameBox();
    name.selectAll();
    QTest::keyClicks(&name, "My World");
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(form.chosenFolder(), worlds.path("Stuff/My World"));
}
