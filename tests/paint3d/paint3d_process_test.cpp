// The paint tool as Vessa47 meets it: started by `jview Paint3d <file>` in
// the home folder's VessaPaint3D, answering on the X server's clipboard,
// and gone only once its last answer has been taken.

#include "paint_support.h"

#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr int kPatienceMs = 30000;

QString clipboardText() {
    return QApplication::clipboard()->text();
}

// xdotool with the arguments; its standard output.
QString xdotool(const QStringList& arguments) {
    QProcess tool;
    tool.start(QStringLiteral("xdotool"), arguments);
    tool.waitForFinished(kPatienceMs);
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

// The tool on a copy of the gallery's cube, its window found and given the keys.
class RunningTool {
public:
    RunningTool() {
        QApplication::clipboard()->setText(QStringLiteral("someone else's words"));
        given = copyOfGalleryObject(folder, QStringLiteral("Cube"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        tool.setProcessEnvironment(environment);
        tool.setWorkingDirectory(QStringLiteral(VESSA_HOME_DIR "/VessaPaint3D"));
        tool.start(QStringLiteral(VESSA_HOME_DIR "/bin/jview"), {QStringLiteral("Paint3d"), given});
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                window = xdotool({"search", "--onlyvisible", "--name", "Vessa47 - Paint - Cube"})
                             .section('\n', 0, 0);
                return !window.isEmpty();
            },
            kPatienceMs));
    }
    ~RunningTool() {
        if (tool.state() != QProcess::NotRunning) {
            tool.kill();
            tool.waitForFinished(kPatienceMs);
        }
    }
    // Presses the keys until the clipboard's text begins with the answer: a
    // key that comes before the new window takes keys is pressed again.
    bool pressUntilAnswered(const QString& keys, const QString& answer) {
        for (int attempt = 0; attempt < 10; ++attempt) {
            xdotool({"windowfocus", "--sync", window});
            xdotool({"key", "--window", window, keys});
            if (QTest::qWaitFor([&] { return clipboardText().startsWith(answer); }, 3000))
                return true;
        }
        return false;
    }

    QTemporaryDir folder;
    QString given;
    QProcess tool;
    QString window;
};

class PaintProcess : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            GTEST_SKIP() << "the tool needs a display";
    }
};

TEST_F(PaintProcess, SaveThenSaveAndExitAnswerWithNewFilesAndTheToolWaitsForTheAnswerToBeTaken) {
    RunningTool t;
    ASSERT_TRUE(t.pressUntilAnswered(QStringLiteral("ctrl+s"), QStringLiteral("PAINT3D_SAVE ")))
        << clipboardText().toStdString();
    const QString saved = clipboardText().mid(13);
    EXPECT_TRUE(QFileInfo::exists(saved));
    EXPECT_EQ(QFileInfo(saved).absolutePath(), QFileInfo(t.given).absolutePath());
    // The program takes the answer and clears the clipboard; the tool paints on.
    QApplication::clipboard()->clear();
    EXPECT_FALSE(t.tool.waitForFinished(500));

    ASSERT_TRUE(
        t.pressUntilAnswered(QStringLiteral("alt+x"), QStringLiteral("PAINT3D_SAVE_AND_EXIT ")));
    const QString last = clipboardText().mid(22);
    EXPECT_NE(last, saved);
    EXPECT_TRUE(QFileInfo::exists(last));
    // Its text lives on the X server only while the tool does: it stays until taken.
    EXPECT_FALSE(t.tool.waitForFinished(500));
    QApplication::clipboard()->clear();
    ASSERT_TRUE(t.tool.waitForFinished(kPatienceMs));
    EXPECT_EQ(t.tool.exitCode(), 0);
}

TEST_F(PaintProcess, DiscardAnswersAndTheToolGoesOnceTheAnswerIsTaken) {
    RunningTool t;
    ASSERT_TRUE(
        t.pressUntilAnswered(QStringLiteral("alt+d"), QStringLiteral("PAINT3D_DISCARD_AND_EXIT")));
    EXPECT_EQ(clipboardText(), QStringLiteral("PAINT3D_DISCARD_AND_EXIT"));
    QApplication::clipboard()->clear();
    ASSERT_TRUE(t.tool.waitForFinished(kPatienceMs));
    EXPECT_EQ(QDir(t.folder.path()).entryList(QDir::Files).size(), 1);
}

} // namespace
